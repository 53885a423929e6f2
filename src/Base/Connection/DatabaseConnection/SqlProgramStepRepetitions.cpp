#include "Base/Connection/DatabaseConnection/SqlProgramStepRepetitions.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Base/Connection/DatabaseConnection/SqlStoreChecks.h"
#include "Base/Connection/DatabaseConnection/sqlvalue.h"
#include "Domain/Api/ISqlConnection.h"
#include "Domain/Types/ProgramId.h"
#include "Domain/Types/ProgramStepId.h"
#include "Domain/Types/ProgramStepRepetition.h"
#include "Domain/Types/ProgramStepRepetitionId.h"

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;
using zelmor::domain::api::ISqlConnection;
using zelmor::domain::api::ProgramStepRepetitionProperty;

namespace {

using DC = DatabaseSchema;

// Positions in a row of "program_step_repetition": its columns in order.
enum RepetitionColumn {
    REPETITION_ID,
    REPETITION_PROGRAM_ID,
    REPETITION_START_STEP_ID,
    REPETITION_END_STEP_ID,
    REPETITION_NUM_REPETITIONS,
    REPETITION_COLUMNS
};

const ProgramStepRepetitionProperty repetitionLayout[REPETITION_COLUMNS] = {
    ProgramStepRepetitionProperty::ID,
    ProgramStepRepetitionProperty::PROGRAM_ID,
    ProgramStepRepetitionProperty::START_STEP_ID,
    ProgramStepRepetitionProperty::END_STEP_ID,
    ProgramStepRepetitionProperty::NUM_REPETITIONS,
};

QString repetitionColumn(ProgramStepRepetitionProperty property)
{
    return DC::lookupProgramStepRepetitionColumnName(property);
}

// The columns a repetition is written with; the id is the database's.
QList<SqlQuery::ColumnValuePair> repetitionValues(const ProgramStepRepetition& repetition)
{
    return {
        {repetitionColumn(ProgramStepRepetitionProperty::PROGRAM_ID), sqlvalue::orNull(int(repetition.programId), 0)},
        {repetitionColumn(ProgramStepRepetitionProperty::START_STEP_ID),
         sqlvalue::orNull(int(repetition.startStepId), 0)},
        {repetitionColumn(ProgramStepRepetitionProperty::END_STEP_ID), sqlvalue::orNull(int(repetition.endStepId), 0)},
        {repetitionColumn(ProgramStepRepetitionProperty::NUM_REPETITIONS), repetition.repetitions},
    };
}

} // namespace

SqlProgramStepRepetitions::SqlProgramStepRepetitions(const SqlStoreChecks& checks)
    : checks(checks)
{
}

QList<ProgramStepRepetition> SqlProgramStepRepetitions::getProgramStepRepetitions(const ISqlConnection& connection,
                                                                                  const ProgramId& program) const
{
    return getRepetitions(connection, repetitionColumn(ProgramStepRepetitionProperty::PROGRAM_ID), program);
}

ProgramStepRepetition SqlProgramStepRepetitions::getProgramStepRepetition(const ISqlConnection& connection,
                                                                          const ProgramStepId& startStep,
                                                                          const ProgramStepId& endStep) const
{
    const QList<ProgramStepRepetition> repetitions =
        getRepetitions(connection, repetitionColumn(ProgramStepRepetitionProperty::START_STEP_ID), startStep,
                       repetitionColumn(ProgramStepRepetitionProperty::END_STEP_ID), endStep);
    if (repetitions.size() > 1) {
        checks.reportUnexpected("getProgramStepRepetition",
                                QStringLiteral("found %1 repetitions from step %2 to step %3")
                                    .arg(repetitions.size())
                                    .arg(int(startStep))
                                    .arg(int(endStep)));
        return ProgramStepRepetition();
    }
    return repetitions.value(0);
}

bool SqlProgramStepRepetitions::addProgramStepRepetition(ISqlConnection& connection,
                                                         ProgramStepRepetition& repetition) const
{
    SqlQuery query;
    query.insertTableColumnValuePairs(DC::lookupProgramStepRepetitionTableName(), repetitionValues(repetition));
    const ISqlConnection::ExecuteResult result = connection.execute(query);
    if (result.success) {
        repetition.id = int(result.lastInsertId);
    }
    return result.success;
}

bool SqlProgramStepRepetitions::updateProgramStepRepetition(ISqlConnection& connection,
                                                            const ProgramStepRepetition& repetition) const
{
    SqlQuery query;
    query.updateTable(DC::lookupProgramStepRepetitionTableName())
        .setColumnValuePairs(repetitionValues(repetition))
        .whereColumn(repetitionColumn(ProgramStepRepetitionProperty::ID))
        .equals(int(repetition.id));
    return connection.execute(query).success;
}

bool SqlProgramStepRepetitions::deleteProgramStepRepetition(ISqlConnection& connection,
                                                            const ProgramStepRepetitionId& id) const
{
    SqlQuery query;
    query.deleteFromTable(DC::lookupProgramStepRepetitionTableName())
        .whereColumn(repetitionColumn(ProgramStepRepetitionProperty::ID))
        .equals(int(id));
    return connection.execute(query).success;
}

bool SqlProgramStepRepetitions::updateProgramStepRepetitions(ISqlConnection& connection, const ProgramId& program,
                                                             QList<ProgramStepRepetition>& repetitions) const
{
    for (ProgramStepRepetition& repetition : repetitions) {
        repetition.programId = program;
        if (!(repetition.id != 0 ? updateProgramStepRepetition(connection, repetition)
                                 : addProgramStepRepetition(connection, repetition))) {
            return false;
        }
    }
    deleteUnusedProgramStepRepetitions(connection, program, repetitions);
    return true;
}

bool SqlProgramStepRepetitions::deleteUnusedProgramStepRepetitions(
    ISqlConnection& connection, const ProgramId& program, const QList<ProgramStepRepetition>& repetitions) const
{
    QList<QVariant> kept;
    for (const ProgramStepRepetition& repetition : repetitions) {
        kept.append(int(repetition.id));
    }
    SqlQuery query;
    query.selectColumn(repetitionColumn(ProgramStepRepetitionProperty::ID))
        .fromTable(DC::lookupProgramStepRepetitionTableName())
        .whereColumn(repetitionColumn(ProgramStepRepetitionProperty::PROGRAM_ID))
        .equals(int(program))
        .andColumn(repetitionColumn(ProgramStepRepetitionProperty::ID))
        .notInList(kept);
    for (const QVariant& id : connection.fetchSingleColumn(query)) {
        if (!deleteProgramStepRepetition(connection, id.toInt())) {
            return false;
        }
    }
    return true;
}

bool SqlProgramStepRepetitions::containsProgramStepRepetitions(const ISqlConnection& connection,
                                                               const ProgramStepRepetition& repetition) const
{
    const QString table = DC::lookupProgramStepRepetitionTableName();
    const QString programId = repetitionColumn(ProgramStepRepetitionProperty::PROGRAM_ID);
    SqlQuery program;
    program.selectColumn(programId)
        .fromTable(table)
        .whereColumn(repetitionColumn(ProgramStepRepetitionProperty::ID))
        .equals(int(repetition.id));
    SqlQuery query;
    query.selectCount()
        .fromTable(table)
        .whereColumn(programId)
        .inSelectQuery(program)
        .andColumn(repetitionColumn(ProgramStepRepetitionProperty::START_STEP_ID))
        .isGreaterEqual(int(repetition.startStepId))
        .andColumn(repetitionColumn(ProgramStepRepetitionProperty::END_STEP_ID))
        .equals(int(repetition.endStepId));
    return connection.fetchSingleValue(query).toInt() != 0;
}

QList<ProgramStepRepetition> SqlProgramStepRepetitions::getRepetitions(const ISqlConnection& connection,
                                                                       const QString& column, int value,
                                                                       const QString& secondColumn,
                                                                       int secondValue) const
{
    SqlQuery query;
    query.selectColumns(SqlRow::columnNames(repetitionColumn, repetitionLayout))
        .fromTable(DC::lookupProgramStepRepetitionTableName())
        .whereColumn(column)
        .equals(value);
    if (!secondColumn.isEmpty()) {
        query.andColumn(secondColumn).equals(secondValue);
    }
    query.orderBy(repetitionColumn(ProgramStepRepetitionProperty::ID));

    QList<ProgramStepRepetition> repetitions;
    for (const QList<QVariant>& values : connection.fetch(query)) {
        if (!checks.hasWidth(values, REPETITION_COLUMNS, "getProgramStepRepetitions")) {
            continue;
        }
        const SqlRow row(values);
        repetitions.append(ProgramStepRepetition(
            row.toInt(REPETITION_ID, 0), row.toInt(REPETITION_PROGRAM_ID, 0), row.toInt(REPETITION_START_STEP_ID, 0),
            row.toInt(REPETITION_END_STEP_ID, 0), row.toInt(REPETITION_NUM_REPETITIONS, 0)));
    }
    return repetitions;
}

} // namespace zelmor::base::connection::databaseconnection
