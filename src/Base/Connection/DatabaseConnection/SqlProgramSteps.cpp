#include "Base/Connection/DatabaseConnection/SqlProgramSteps.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlProgramDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlProgramSections.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Base/Connection/DatabaseConnection/SqlStoreChecks.h"
#include "Base/Connection/DatabaseConnection/sqlvalue.h"
#include "Domain/Api/ISqlConnection.h"
#include "Domain/Types/ProgramId.h"
#include "Domain/Types/ProgramSection.h"
#include "Domain/Types/ProgramSectionId.h"
#include "Domain/Types/ProgramStep.h"
#include "Domain/Types/ProgramStepId.h"

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;
using zelmor::domain::api::ISqlConnection;
using zelmor::domain::api::ProgramStepProperty;

namespace {

using DC = DatabaseSchema;

// Positions in a row of "program_step": its columns in order.
enum StepColumn {
    STEP_ID,
    STEP_PROGRAM_ID,
    STEP_ORDER_NUMBER,
    STEP_STEP_TYPE,
    STEP_SECTION_ID,
    STEP_SUB_PROGRAM_ID,
    STEP_COLUMNS
};

const ProgramStepProperty stepLayout[STEP_COLUMNS] = {
    ProgramStepProperty::ID,        ProgramStepProperty::PROGRAM_ID, ProgramStepProperty::ORDER_NUMBER,
    ProgramStepProperty::STEP_TYPE, ProgramStepProperty::SECTION_ID, ProgramStepProperty::SUB_PROGRAM_ID,
};

QString stepColumn(ProgramStepProperty property)
{
    return DC::lookupProgramStepColumnName(property);
}

// The columns that every step is written with.
QList<SqlQuery::ColumnValuePair> stepValues(const ProgramStep& step)
{
    return {
        {stepColumn(ProgramStepProperty::PROGRAM_ID), sqlvalue::orNull(int(step.programId), 0)},
        {stepColumn(ProgramStepProperty::ORDER_NUMBER), step.orderNumber},
        {stepColumn(ProgramStepProperty::STEP_TYPE), int(step.type)},
    };
}

// Before anything is written. A called program must be one that can be
// stored: 0 is none.
bool hasPayload(const ProgramStep& step)
{
    if (step.isSection() || (step.isSubProgram() && step.getSubProgramId() != 0)) {
        return true;
    }
    if (step.type == ProgramStep::SECTION) {
        qCWarning(SQLPROGRAMDATABASECONNECTION) << "Refused a section step without a section";
    } else if (step.type == ProgramStep::SUB_PROGRAM) {
        qCWarning(SQLPROGRAMDATABASECONNECTION) << "Refused a sub program step without a program to call";
    } else {
        qCWarning(SQLPROGRAMDATABASECONNECTION) << "Refused a program step of the unknown type" << int(step.type);
    }
    return false;
}

} // namespace

SqlProgramSteps::SqlProgramSteps(const SqlStoreChecks& checks, const SqlProgramSections& sections)
    : checks(checks)
    , sections(sections)
{
}

QList<ProgramStep> SqlProgramSteps::getProgramSteps(const ISqlConnection& connection, const ProgramId& program) const
{
    SqlQuery query;
    query.selectColumns(SqlRow::columnNames(stepColumn, stepLayout))
        .fromTable(DC::lookupProgramStepTableName())
        .whereColumn(stepColumn(ProgramStepProperty::PROGRAM_ID))
        .equals(int(program))
        .orderBy(stepColumn(ProgramStepProperty::ORDER_NUMBER));

    QList<ProgramStep> steps;
    for (const QList<QVariant>& values : connection.fetch(query)) {
        if (!checks.hasWidth(values, STEP_COLUMNS, "getProgramSteps")) {
            continue;
        }
        const SqlRow row(values);
        QVariant payload;
        if (!row.isNull(STEP_SECTION_ID)) {
            payload = QVariant::fromValue(sections.getProgramSection(connection, row.toInt(STEP_SECTION_ID, 0)));
        } else if (!row.isNull(STEP_SUB_PROGRAM_ID)) {
            payload = QVariant::fromValue(ProgramId(row.toInt(STEP_SUB_PROGRAM_ID, 0)));
        }
        steps.append(ProgramStep(row.toInt(STEP_ID, 0), row.toInt(STEP_PROGRAM_ID, 0), row.toInt(STEP_ORDER_NUMBER, 0),
                                 ProgramStep::Type(row.toInt(STEP_STEP_TYPE, ProgramStep::INVALID)), payload));
    }
    return steps;
}

bool SqlProgramSteps::addProgramStep(ISqlConnection& connection, ProgramStep& step) const
{
    if (!hasPayload(step)) {
        return false;
    }
    ProgramStep stored = step;
    QList<SqlQuery::ColumnValuePair> values = stepValues(step);
    ProgramSection section;
    if (step.isSection()) {
        // Always a section of its own, even one copied from another step.
        section = step.getSection();
        section.id = 0;
        if (!sections.addSection(connection, section)) {
            return false;
        }
        stored.payload = QVariant::fromValue(section);
        values.append({stepColumn(ProgramStepProperty::SECTION_ID), int(section.id)});
    } else {
        values.append({stepColumn(ProgramStepProperty::SUB_PROGRAM_ID), int(step.getSubProgramId())});
    }

    SqlQuery query;
    query.insertTableColumnValuePairs(DC::lookupProgramStepTableName(), values);
    const ISqlConnection::ExecuteResult result = connection.execute(query);
    if (!result.success) {
        if (section.id != 0) {
            sections.deleteProgramSection(connection, section.id);
        }
        return false;
    }
    stored.id = int(result.lastInsertId);
    step = stored;
    return true;
}

bool SqlProgramSteps::updateProgramStep(ISqlConnection& connection, ProgramStep& step) const
{
    if (!hasPayload(step)) {
        return false;
    }
    // A section the step no longer holds goes, as it would with the step.
    const int previous =
        SqlRow({getProgramStepPropertyValue(connection, step.id, ProgramStepProperty::SECTION_ID)}).toInt(0, 0);
    QList<SqlQuery::ColumnValuePair> values = stepValues(step);
    ProgramSection section;
    ProgramSectionId added = 0;
    if (step.isSection()) {
        section = step.getSection();
        const bool isNew = section.id == 0;
        if (!(isNew ? sections.addSection(connection, section) : sections.updateSection(connection, section))) {
            return false;
        }
        if (isNew) {
            added = section.id;
        }
        values.append({stepColumn(ProgramStepProperty::SECTION_ID), int(section.id)});
        values.append({stepColumn(ProgramStepProperty::SUB_PROGRAM_ID), sqlvalue::null<int>()});
    } else {
        values.append({stepColumn(ProgramStepProperty::SECTION_ID), sqlvalue::null<int>()});
        values.append({stepColumn(ProgramStepProperty::SUB_PROGRAM_ID), int(step.getSubProgramId())});
    }

    SqlQuery query;
    query.updateTable(DC::lookupProgramStepTableName())
        .setColumnValuePairs(values)
        .whereColumn(stepColumn(ProgramStepProperty::ID))
        .equals(int(step.id));
    if (connection.execute(query).success) {
        if (added != 0) {
            step.payload = QVariant::fromValue(section);
        }
        if (previous != 0 && previous != int(section.id)) {
            sections.deleteProgramSection(connection, previous);
        }
        return true;
    }
    if (added != 0) {
        sections.deleteProgramSection(connection, added);
    }
    return false;
}

bool SqlProgramSteps::deleteProgramStep(ISqlConnection& connection, const ProgramStepId& id) const
{
    const QVariant section = getProgramStepPropertyValue(connection, id, ProgramStepProperty::SECTION_ID);
    // The step first: its row holds the section.
    QSharedPointer<SqlQuery> step = QSharedPointer<SqlQuery>::create();
    step->deleteFromTable(DC::lookupProgramStepTableName())
        .whereColumn(stepColumn(ProgramStepProperty::ID))
        .equals(int(id));
    SqlProgramSections::Statements statements{step};
    if (SqlRow({section}).toInt(0, 0) != 0) {
        statements += SqlProgramSections::deleteSections({section});
    }
    return connection.executeTransaction(statements);
}

QVariant SqlProgramSteps::getProgramStepPropertyValue(const ISqlConnection& connection, const ProgramStepId& step,
                                                      ProgramStepProperty property) const
{
    SqlQuery query;
    query.selectColumn(stepColumn(property))
        .fromTable(DC::lookupProgramStepTableName())
        .whereColumn(stepColumn(ProgramStepProperty::ID))
        .equals(int(step));
    return connection.fetchSingleValue(query);
}

bool SqlProgramSteps::updateProgramSteps(ISqlConnection& connection, const ProgramId& program,
                                         QList<ProgramStep>& steps) const
{
    for (ProgramStep& step : steps) {
        step.programId = program;
        if (!(step.id != 0 ? updateProgramStep(connection, step) : addProgramStep(connection, step))) {
            return false;
        }
    }
    return deleteUnusedProgramSteps(connection, program, steps);
}

bool SqlProgramSteps::deleteUnusedProgramSteps(ISqlConnection& connection, const ProgramId& program,
                                               const QList<ProgramStep>& steps) const
{
    QList<QVariant> kept;
    for (const ProgramStep& step : steps) {
        kept.append(int(step.id));
    }
    SqlQuery query;
    query.selectColumn(stepColumn(ProgramStepProperty::ID))
        .fromTable(DC::lookupProgramStepTableName())
        .whereColumn(stepColumn(ProgramStepProperty::PROGRAM_ID))
        .equals(int(program))
        .andColumn(stepColumn(ProgramStepProperty::ID))
        .notInList(kept);
    for (const QVariant& id : connection.fetchSingleColumn(query)) {
        if (!deleteProgramStep(connection, id.toInt())) {
            return false;
        }
    }
    return true;
}

bool SqlProgramSteps::deleteProgramSteps(ISqlConnection& connection, const ProgramId& program) const
{
    SqlQuery query;
    query.deleteFromTable(DC::lookupProgramStepTableName())
        .whereColumn(stepColumn(ProgramStepProperty::PROGRAM_ID))
        .equals(int(program));
    return connection.execute(query).success;
}

bool SqlProgramSteps::hasSubPrograms(const ISqlConnection& connection, const ProgramId& program) const
{
    SqlQuery query;
    query.selectCount()
        .fromTable(DC::lookupProgramStepTableName())
        .whereColumn(stepColumn(ProgramStepProperty::PROGRAM_ID))
        .equals(int(program))
        .andColumn(stepColumn(ProgramStepProperty::STEP_TYPE))
        .equals(int(ProgramStep::SUB_PROGRAM));
    return connection.fetchSingleValue(query).toInt() != 0;
}

} // namespace zelmor::base::connection::databaseconnection
