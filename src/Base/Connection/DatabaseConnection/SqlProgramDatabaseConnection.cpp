#include "Base/Connection/DatabaseConnection/SqlProgramDatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlProgramTables.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Base/Connection/DatabaseConnection/sqlhelper.h"
#include "Base/Connection/DatabaseConnection/sqlvalue.h"
#include "Domain/Api/IConfigurationDatabaseConnection.h"
#include "Domain/Api/ISqlConnection.h"
#include "Domain/Types/ChamberTypeId.h"
#include "Domain/Types/ProgramSection.h"
#include "Domain/Types/ProgramSectionId.h"
#include "Domain/Types/ProgramStepRepetitionId.h"
#include "Domain/Types/SignalValuePair.h"

namespace zelmor::base::connection::databaseconnection {

Q_LOGGING_CATEGORY(SQLPROGRAMDATABASECONNECTION, "zelmor.SqlProgramDatabaseConnection")

using namespace zelmor::domain::types;
using zelmor::domain::api::IConfigurationDatabaseConnection;
using zelmor::domain::api::ISqlConnection;
using zelmor::domain::api::ProgramProperty;
using zelmor::domain::api::ProgramStepProperty;
using zelmor::domain::api::ProgramStepRepetitionProperty;

namespace {

using DC = DatabaseSchema;

// Positions in a row of "program": its columns in order.
enum ProgramColumn {
    PROGRAM_ID,
    PROGRAM_NAME,
    PROGRAM_USER_ID,
    PROGRAM_INFO_TEXT,
    PROGRAM_TYPE,
    PROGRAM_EDITED,
    PROGRAM_CHAMBER_TYPE_ID,
    PROGRAM_COLUMNS
};

const ProgramProperty programLayout[PROGRAM_COLUMNS] = {
    ProgramProperty::ID,
    ProgramProperty::PROGRAM_NAME,
    ProgramProperty::USER_ID,
    ProgramProperty::INFO_TEXT,
    ProgramProperty::PROGRAM_TYPE,
    ProgramProperty::EDITED,
    ProgramProperty::CHAMBER_TYPE_ID,
};

QString programColumn(ProgramProperty property)
{
    return DC::lookupProgramColumnName(property);
}

QString stepColumn(ProgramStepProperty property)
{
    return DC::lookupProgramStepColumnName(property);
}

QString repetitionColumn(ProgramStepRepetitionProperty property)
{
    return DC::lookupProgramStepRepetitionColumnName(property);
}

// The columns a program is written with; the id is the database's.
QList<SqlQuery::ColumnValuePair> programValues(const ProgramData& program)
{
    return {
        {programColumn(ProgramProperty::PROGRAM_NAME), sqlvalue::text(program.name)},
        {programColumn(ProgramProperty::USER_ID), sqlvalue::orNull(int(program.userId), 0)},
        {programColumn(ProgramProperty::INFO_TEXT), sqlvalue::text(program.infoText)},
        {programColumn(ProgramProperty::PROGRAM_TYPE), int(program.type)},
        {programColumn(ProgramProperty::EDITED), program.edited},
        {programColumn(ProgramProperty::CHAMBER_TYPE_ID),
         sqlvalue::orNull(program.chamberType.chamberTypeId.typeId, quint64(0))},
    };
}

QSharedPointer<SqlQuery> deleteIn(const QString& table, const QString& column, const QList<QVariant>& values)
{
    QSharedPointer<SqlQuery> query = QSharedPointer<SqlQuery>::create();
    query->deleteFromTable(table).whereColumn(column).inList(values);
    return query;
}

} // namespace

SqlProgramDatabaseConnection::SqlProgramDatabaseConnection(QObject* parent)
    : QObject(parent)
    , checks(this, SQLPROGRAMDATABASECONNECTION)
    , catalogueChecks(
          SQLPROGRAMDATABASECONNECTION, [this] { return isCatalogueSet(); },
          [this](DatabaseConnectionError code) { emit error(code); })
    , sections(catalogueChecks)
    , steps(catalogueChecks, sections)
    , repetitions(checks)
    , transfer(*this)
{
}

SqlProgramDatabaseConnection::~SqlProgramDatabaseConnection() = default;

bool SqlProgramDatabaseConnection::setDependencies(ISqlConnection* connection,
                                                   IConfigurationDatabaseConnection* configuration)
{
    this->connection = connection;
    this->configuration = configuration;
    sections.setConfiguration(configuration);
    return areDependenciesSet();
}

bool SqlProgramDatabaseConnection::areDependenciesSet() const
{
    return connection != nullptr && configuration != nullptr;
}

bool SqlProgramDatabaseConnection::isCatalogueSet() const
{
    return configuration != nullptr;
}

bool SqlProgramDatabaseConnection::initialize()
{
    return checks.hasDependencies("initialize")
           && checks.hasTables(*connection,
                               {DC::lookupProgramTableName(), DC::lookupProgramStepTableName(),
                                DC::lookupProgramSectionTableName(), DC::lookupProgramSetpointTableName()});
}

// ---------------------------------------------------------------------------
// Programs

QList<ProgramData> SqlProgramDatabaseConnection::getAllPrograms() const
{
    if (!checks.hasDependencies("getAllPrograms")) {
        return {};
    }
    SqlQuery query;
    query.selectColumns(SqlRow::columnNames(programColumn, programLayout))
        .fromTable(DC::lookupProgramTableName())
        .orderBy(programColumn(ProgramProperty::ID));
    return getPrograms(*connection, query, PROGRAM_COLUMNS);
}

ProgramData SqlProgramDatabaseConnection::getProgram(const ProgramId& id) const
{
    return checks.hasDependencies("getProgram") ? getProgram(*connection, id) : ProgramData();
}

ProgramData SqlProgramDatabaseConnection::getProgram(const ISqlConnection& connection, const ProgramId& id) const
{
    SqlQuery query;
    query.selectColumns(SqlRow::columnNames(programColumn, programLayout))
        .fromTable(DC::lookupProgramTableName())
        .whereColumn(programColumn(ProgramProperty::ID))
        .equals(int(id));
    return getPrograms(connection, query, PROGRAM_COLUMNS).value(0);
}

QList<ProgramData> SqlProgramDatabaseConnection::getPrograms(const ISqlConnection& connection, const SqlQuery& query,
                                                             int columnCount) const
{
    if (!catalogueChecks.hasDependencies("getPrograms")) {
        return {};
    }
    QList<ProgramData> programs;
    for (const QList<QVariant>& values : connection.fetch(query)) {
        if (!checks.hasWidth(values, columnCount, "getPrograms")) {
            continue;
        }
        const SqlRow row(values);
        const ProgramId id = row.toInt(PROGRAM_ID, 0);
        // A type the catalogue doesn't give by its id alone keeps the id.
        const quint64 typeId = row.toLongLong(PROGRAM_CHAMBER_TYPE_ID, 0);
        ChamberTypeData chamberType;
        if (typeId != 0) {
            chamberType = configuration->getChamberTypeData(ChamberTypeId(typeId, 0), false);
            if (chamberType.chamberTypeId.typeId != typeId) {
                chamberType = ChamberTypeData();
                chamberType.chamberTypeId = ChamberTypeId(typeId, 0);
            }
        }
        programs.append(ProgramData(
            id, row.toString(PROGRAM_NAME), row.toInt(PROGRAM_USER_ID, 0), row.toString(PROGRAM_INFO_TEXT),
            ProgramData::Type(row.toInt(PROGRAM_TYPE, ProgramData::TIME_PROGRAM)), row.toBool(PROGRAM_EDITED, false),
            chamberType, steps.getProgramSteps(connection, id), repetitions.getProgramStepRepetitions(connection, id)));
    }
    return programs;
}

QString SqlProgramDatabaseConnection::getProgramName(const ProgramId& id) const
{
    return sqlhelper::readStringSqlValue(getProgramProperty(id, ProgramProperty::PROGRAM_NAME), QString());
}

bool SqlProgramDatabaseConnection::getProgramStateEdited(const ProgramId& id) const
{
    return sqlhelper::readBoolSqlValue(getProgramProperty(id, ProgramProperty::EDITED), false);
}

UserId SqlProgramDatabaseConnection::getProgramUserId(const ProgramId& id) const
{
    return sqlhelper::readIntSqlValue(getProgramProperty(id, ProgramProperty::USER_ID), 0);
}

ChamberTypeId SqlProgramDatabaseConnection::getProgramChamberTypeId(const ProgramId& id) const
{
    const QVariant value = getProgramProperty(id, ProgramProperty::CHAMBER_TYPE_ID);
    return ChamberTypeId(sqlhelper::isSqlValueValid(value) ? value.toULongLong() : 0, 0);
}

ProgramData::Type SqlProgramDatabaseConnection::getProgramType(const ProgramId& id) const
{
    return ProgramData::Type(
        sqlhelper::readIntSqlValue(getProgramProperty(id, ProgramProperty::PROGRAM_TYPE), ProgramData::TIME_PROGRAM));
}

QVariant SqlProgramDatabaseConnection::getProgramProperty(const ProgramId& id, ProgramProperty property) const
{
    if (!checks.hasDependencies("getProgramProperty")) {
        return QVariant();
    }
    SqlQuery query;
    query.selectColumn(programColumn(property))
        .fromTable(DC::lookupProgramTableName())
        .whereColumn(programColumn(ProgramProperty::ID))
        .equals(int(id));
    return connection->fetchSingleValue(query);
}

bool SqlProgramDatabaseConnection::updateProgramProperty(const ProgramId& id, ProgramProperty property,
                                                         const QVariant& value)
{
    if (!checks.hasDependencies("updateProgramProperty")) {
        return false;
    }
    SqlQuery query;
    query.updateTable(DC::lookupProgramTableName())
        .setColumnValuePair({programColumn(property), value})
        .whereColumn(programColumn(ProgramProperty::ID))
        .equals(int(id));
    return connection->execute(query).success;
}

bool SqlProgramDatabaseConnection::exportProgram(const ProgramId& id, const QUrl& file) const
{
    return checks.hasDependencies("exportProgram") && transfer.exportProgram(id, file);
}

ProgramId SqlProgramDatabaseConnection::exportProgram(ISqlConnection& file, const ProgramId& id) const
{
    return checks.hasDependencies("exportProgram") ? transfer.exportProgram(file, id) : ProgramId(0);
}

ProgramId SqlProgramDatabaseConnection::importProgram(const QUrl& file, const UserId& user)
{
    return checks.hasDependencies("importProgram") ? transfer.importProgram(file, user) : ProgramId(0);
}

ProgramId SqlProgramDatabaseConnection::importProgram(const ISqlConnection& file, const ProgramId& id,
                                                      const UserId& user, const QString& baseName, bool isSubProgram)
{
    return checks.hasDependencies("importProgram") ? transfer.importProgram(file, id, user, baseName, isSubProgram)
                                                   : ProgramId(0);
}

bool SqlProgramDatabaseConnection::addProgram(ProgramData& program)
{
    return checks.hasDependencies("addProgram") && addProgram(*connection, program);
}

bool SqlProgramDatabaseConnection::addProgram(ISqlConnection& connection, ProgramData& program) const
{
    SqlQuery query;
    query.insertTableColumnValuePairs(DC::lookupProgramTableName(), programValues(program));
    const ISqlConnection::ExecuteResult result = connection.execute(query);
    if (!result.success) {
        qCWarning(SQLPROGRAMDATABASECONNECTION) << "Failed to add program" << program.name;
        return false;
    }
    program.id = int(result.lastInsertId);
    return true;
}

bool SqlProgramDatabaseConnection::updateProgram(const ProgramData& program)
{
    if (!checks.hasDependencies("updateProgram")) {
        return false;
    }
    SqlQuery query;
    query.updateTable(DC::lookupProgramTableName())
        .setColumnValuePairs(programValues(program))
        .whereColumn(programColumn(ProgramProperty::ID))
        .equals(int(program.id));
    return connection->execute(query).success;
}

bool SqlProgramDatabaseConnection::updateProgramName(const ProgramId& id, QString name)
{
    return updateProgramProperty(id, ProgramProperty::PROGRAM_NAME, sqlvalue::text(name));
}

bool SqlProgramDatabaseConnection::deleteProgram(const ProgramId& id)
{
    return checks.hasDependencies("deleteProgram") && deletePrograms(*connection, {id});
}

bool SqlProgramDatabaseConnection::deletePrograms(const QList<ProgramId>& ids)
{
    return checks.hasDependencies("deletePrograms") && deletePrograms(*connection, ids);
}

bool SqlProgramDatabaseConnection::deletePrograms(ISqlConnection& connection, const QList<ProgramId>& ids) const
{
    QList<QVariant> programs;
    for (const ProgramId& id : ids) {
        programs.append(int(id));
    }
    // Gathered first: the steps that name the sections go before them.
    QList<QVariant> sectionIds;
    for (const QVariant& section : connection.fetchSingleColumn(SqlProgramSections::sectionsOfSteps(programs))) {
        if (sqlhelper::isSqlValueValid(section)) {
            sectionIds.append(section);
        }
    }
    const QString programId = stepColumn(ProgramStepProperty::PROGRAM_ID);
    SqlProgramSections::Statements statements = {
        deleteIn(DC::lookupProgramStepRepetitionTableName(),
                 repetitionColumn(ProgramStepRepetitionProperty::PROGRAM_ID), programs),
        deleteIn(DC::lookupProgramStepTableName(), programId, programs),
    };
    statements += SqlProgramSections::deleteSections(sectionIds);
    statements.append(deleteIn(DC::lookupProgramTableName(), programColumn(ProgramProperty::ID), programs));
    return connection.executeTransaction(statements);
}

ProgramId SqlProgramDatabaseConnection::findProgramByName(const QString& name) const
{
    if (!checks.hasDependencies("findProgramByName")) {
        return 0;
    }
    // Names aren't unique: any program of the name is found.
    SqlQuery query;
    query.selectColumn(programColumn(ProgramProperty::ID))
        .fromTable(DC::lookupProgramTableName())
        .whereColumn(programColumn(ProgramProperty::PROGRAM_NAME))
        .equals(name)
        .limitTo(1);
    return sqlhelper::readIntSqlValue(connection->fetchSingleValue(query), 0);
}

bool SqlProgramDatabaseConnection::isProgramIdValid(const ProgramId& id) const
{
    if (!checks.hasDependencies("isProgramIdValid")) {
        return false;
    }
    SqlQuery query;
    query.selectCount()
        .fromTable(DC::lookupProgramTableName())
        .whereColumn(programColumn(ProgramProperty::ID))
        .equals(int(id));
    return sqlhelper::readIntSqlValue(connection->fetchSingleValue(query), 0) != 0;
}

bool SqlProgramDatabaseConnection::hasSubPrograms(const ProgramId& id) const
{
    return checks.hasDependencies("hasSubPrograms") && steps.hasSubPrograms(*connection, id);
}

bool SqlProgramDatabaseConnection::containsProgramStepRepetitions(const ProgramStepRepetition& repetition) const
{
    return checks.hasDependencies("containsProgramStepRepetitions")
           && repetitions.containsProgramStepRepetitions(*connection, repetition);
}

// ---------------------------------------------------------------------------
// Steps and repetitions

bool SqlProgramDatabaseConnection::addProgramStep(ProgramStep& step)
{
    return checks.hasDependencies("addProgramStep") && addProgramStep(*connection, step);
}

bool SqlProgramDatabaseConnection::addProgramStep(ISqlConnection& connection, ProgramStep& step) const
{
    return catalogueChecks.hasDependencies("addProgramStep") && steps.addProgramStep(connection, step);
}

bool SqlProgramDatabaseConnection::updateProgramStep(const ProgramStep& step)
{
    ProgramStep written = step;
    return checks.hasDependencies("updateProgramStep") && steps.updateProgramStep(*connection, written);
}

bool SqlProgramDatabaseConnection::updateProgramSteps(const ProgramId& program, QList<ProgramStep>& steps)
{
    return checks.hasDependencies("updateProgramSteps") && this->steps.updateProgramSteps(*connection, program, steps);
}

bool SqlProgramDatabaseConnection::deleteUnusedProgramSteps(const ProgramId& program, const QList<ProgramStep>& steps)
{
    return checks.hasDependencies("deleteUnusedProgramSteps")
           && this->steps.deleteUnusedProgramSteps(*connection, program, steps);
}

QList<ProgramStep> SqlProgramDatabaseConnection::getProgramSteps(const ProgramId& program) const
{
    return checks.hasDependencies("getProgramSteps") ? getProgramSteps(*connection, program) : QList<ProgramStep>();
}

QList<ProgramStep> SqlProgramDatabaseConnection::getProgramSteps(const ISqlConnection& connection,
                                                                 const ProgramId& program) const
{
    return catalogueChecks.hasDependencies("getProgramSteps") ? steps.getProgramSteps(connection, program)
                                                              : QList<ProgramStep>();
}

bool SqlProgramDatabaseConnection::deleteProgramStep(const ProgramStepId& id)
{
    return checks.hasDependencies("deleteProgramStep") && steps.deleteProgramStep(*connection, id);
}

bool SqlProgramDatabaseConnection::deleteProgramSteps(const ProgramId& program)
{
    return checks.hasDependencies("deleteProgramSteps") && steps.deleteProgramSteps(*connection, program);
}

QVariant SqlProgramDatabaseConnection::getProgramStepPropertyValue(const ProgramStepId& step,
                                                                   ProgramStepProperty property) const
{
    return checks.hasDependencies("getProgramStepPropertyValue")
               ? steps.getProgramStepPropertyValue(*connection, step, property)
               : QVariant();
}

ProgramSectionId SqlProgramDatabaseConnection::getProgramSectionId(const ProgramStepId& step) const
{
    return sqlhelper::readIntSqlValue(getProgramStepPropertyValue(step, ProgramStepProperty::SECTION_ID), 0);
}

bool SqlProgramDatabaseConnection::addProgramStepRepetition(ProgramStepRepetition& repetition)
{
    return checks.hasDependencies("addProgramStepRepetition") && addProgramStepRepetition(*connection, repetition);
}

bool SqlProgramDatabaseConnection::addProgramStepRepetition(ISqlConnection& connection,
                                                            ProgramStepRepetition& repetition) const
{
    return repetitions.addProgramStepRepetition(connection, repetition);
}

bool SqlProgramDatabaseConnection::updateProgramStepRepetition(const ProgramStepRepetition& repetition)
{
    return checks.hasDependencies("updateProgramStepRepetition")
           && repetitions.updateProgramStepRepetition(*connection, repetition);
}

bool SqlProgramDatabaseConnection::updateProgramStepRepetitions(const ProgramId& program,
                                                                QList<ProgramStepRepetition>& repetitions)
{
    return checks.hasDependencies("updateProgramStepRepetitions")
           && this->repetitions.updateProgramStepRepetitions(*connection, program, repetitions);
}

bool SqlProgramDatabaseConnection::deleteUnusedProgramStepRepetitions(const ProgramId& program,
                                                                      const QList<ProgramStepRepetition>& repetitions)
{
    return checks.hasDependencies("deleteUnusedProgramStepRepetitions")
           && this->repetitions.deleteUnusedProgramStepRepetitions(*connection, program, repetitions);
}

bool SqlProgramDatabaseConnection::deleteProgramStepRepetition(const ProgramStepRepetitionId& id)
{
    return checks.hasDependencies("deleteProgramStepRepetition")
           && repetitions.deleteProgramStepRepetition(*connection, id);
}

QList<ProgramStepRepetition> SqlProgramDatabaseConnection::getProgramStepRepetitions(const ProgramId& program) const
{
    return checks.hasDependencies("getProgramStepRepetitions") ? getProgramStepRepetitions(*connection, program)
                                                               : QList<ProgramStepRepetition>();
}

QList<ProgramStepRepetition> SqlProgramDatabaseConnection::getProgramStepRepetitions(const ISqlConnection& connection,
                                                                                     const ProgramId& program) const
{
    return repetitions.getProgramStepRepetitions(connection, program);
}

ProgramStepRepetition SqlProgramDatabaseConnection::getProgramStepRepetition(const ProgramSectionId& startStep,
                                                                             const ProgramSectionId& endStep) const
{
    return checks.hasDependencies("getProgramStepRepetition")
               ? repetitions.getProgramStepRepetition(*connection, int(startStep), int(endStep))
               : ProgramStepRepetition();
}

// ---------------------------------------------------------------------------
// Sections and set points

bool SqlProgramDatabaseConnection::addSection(ProgramSection& section)
{
    return checks.hasDependencies("addSection") && addSection(*connection, section);
}

bool SqlProgramDatabaseConnection::addSection(ISqlConnection& connection, ProgramSection& section) const
{
    return catalogueChecks.hasDependencies("addSection") && sections.addSection(connection, section);
}

bool SqlProgramDatabaseConnection::updateSection(ProgramSection& section)
{
    return checks.hasDependencies("updateSection") && updateSection(*connection, section);
}

bool SqlProgramDatabaseConnection::updateSection(ISqlConnection& connection, ProgramSection& section) const
{
    return catalogueChecks.hasDependencies("updateSection") && sections.updateSection(connection, section);
}

bool SqlProgramDatabaseConnection::addSetpoints(const ProgramSectionId& section,
                                                const QList<SignalValuePair>& setpoints)
{
    return checks.hasDependencies("addSetpoints") && addSetpoints(*connection, section, setpoints);
}

bool SqlProgramDatabaseConnection::addSetpoints(ISqlConnection& connection, const ProgramSectionId& section,
                                                const QList<SignalValuePair>& setpoints) const
{
    return catalogueChecks.hasDependencies("addSetpoints") && sections.addSetpoints(connection, section, setpoints);
}

bool SqlProgramDatabaseConnection::deleteProgramSection(const ProgramSectionId& id)
{
    return checks.hasDependencies("deleteProgramSection") && sections.deleteProgramSection(*connection, id);
}

bool SqlProgramDatabaseConnection::deleteProgramSections(const ProgramId& program)
{
    return checks.hasDependencies("deleteProgramSections") && sections.deleteProgramSections(*connection, program);
}

bool SqlProgramDatabaseConnection::deleteProgramSectionSetpoints(const ProgramSectionId& section)
{
    return checks.hasDependencies("deleteProgramSectionSetpoints")
           && sections.deleteProgramSectionSetpoints(*connection, section);
}

bool SqlProgramDatabaseConnection::deleteProgramSetpoints(const ProgramId& program)
{
    return checks.hasDependencies("deleteProgramSetpoints") && sections.deleteProgramSetpoints(*connection, program);
}

ProgramSection SqlProgramDatabaseConnection::getProgramSection(const ProgramSectionId& id) const
{
    return checks.hasDependencies("getProgramSection") ? getProgramSection(*connection, id) : ProgramSection();
}

ProgramSection SqlProgramDatabaseConnection::getProgramSection(const ISqlConnection& connection,
                                                               const ProgramSectionId& id) const
{
    return catalogueChecks.hasDependencies("getProgramSection") ? sections.getProgramSection(connection, id)
                                                                : ProgramSection();
}

QList<SignalValuePair> SqlProgramDatabaseConnection::getProgramSectionSetpoints(const ProgramSectionId& section) const
{
    return checks.hasDependencies("getProgramSectionSetpoints") ? getProgramSectionSetpoints(*connection, section)
                                                                : QList<SignalValuePair>();
}

QList<SignalValuePair> SqlProgramDatabaseConnection::getProgramSectionSetpoints(const ISqlConnection& connection,
                                                                                const ProgramSectionId& section) const
{
    return catalogueChecks.hasDependencies("getProgramSectionSetpoints")
               ? sections.getProgramSectionSetpoints(connection, section)
               : QList<SignalValuePair>();
}

// ---------------------------------------------------------------------------
// Tables

bool SqlProgramDatabaseConnection::createTables(ISqlConnection& connection) const
{
    return SqlProgramTables::createTables(connection);
}

bool SqlProgramDatabaseConnection::createProgramTable(ISqlConnection& connection) const
{
    return SqlProgramTables::createProgramTable(connection);
}

bool SqlProgramDatabaseConnection::createProgramSectionTable(ISqlConnection& connection) const
{
    return SqlProgramTables::createProgramSectionTable(connection);
}

bool SqlProgramDatabaseConnection::createProgramStepTable(ISqlConnection& connection) const
{
    return SqlProgramTables::createProgramStepTable(connection);
}

bool SqlProgramDatabaseConnection::createProgramStepRepetitionTable(ISqlConnection& connection) const
{
    return SqlProgramTables::createProgramStepRepetitionTable(connection);
}

bool SqlProgramDatabaseConnection::createProgramSetpointTable(ISqlConnection& connection) const
{
    return SqlProgramTables::createProgramSetpointTable(connection);
}

} // namespace zelmor::base::connection::databaseconnection
