#include "Base/Connection/DatabaseConnection/SqlProgramTables.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlProgramDatabaseConnection.h"
#include "Domain/Api/ISqlConnection.h"

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::api;

using Column = SqlQuery::ColumnConfiguration;
using ForeignKey = SqlQuery::ForeignKeyConfiguration;
using DC = DatabaseSchema;

namespace {

// The numbered id column that SQLite fills by itself.
constexpr SqlQuery::ColumnFlag autoId = SqlQuery::PRIMARY_KEY | SqlQuery::NOT_NULL | SqlQuery::AUTO_INCREMENT;
constexpr SqlQuery::ColumnFlag key = SqlQuery::PRIMARY_KEY | SqlQuery::NOT_NULL;

} // namespace

bool SqlProgramTables::createTables(ISqlConnection& connection)
{
    return createProgramTable(connection) && createProgramStepTable(connection)
           && createProgramStepRepetitionTable(connection) && createProgramSectionTable(connection)
           && createProgramSetpointTable(connection);
}

bool SqlProgramTables::createProgramTable(ISqlConnection& connection)
{
    const QList<Column> columns = {
        {DC::lookupProgramColumnName(ProgramProperty::ID), SqlQuery::INTEGER, autoId},
        {DC::lookupProgramColumnName(ProgramProperty::PROGRAM_NAME), SqlQuery::TEXT},
        {DC::lookupProgramColumnName(ProgramProperty::USER_ID), SqlQuery::INTEGER},
        {DC::lookupProgramColumnName(ProgramProperty::INFO_TEXT), SqlQuery::TEXT},
        {DC::lookupProgramColumnName(ProgramProperty::PROGRAM_TYPE), SqlQuery::ENUMERATION},
        {DC::lookupProgramColumnName(ProgramProperty::EDITED), SqlQuery::BOOLEAN},
        {DC::lookupProgramColumnName(ProgramProperty::CHAMBER_TYPE_ID), SqlQuery::INTEGER},
    };
    return createTable(connection, DC::lookupProgramTableName(), columns);
}

bool SqlProgramTables::createProgramSectionTable(ISqlConnection& connection)
{
    const QList<Column> columns = {
        {DC::lookupProgramSectionColumnName(ProgramSectionProperty::ID), SqlQuery::INTEGER, autoId},
        {DC::lookupProgramSectionColumnName(ProgramSectionProperty::DURATION_IN_SECONDS), SqlQuery::INTEGER},
        {DC::lookupProgramSectionColumnName(ProgramSectionProperty::TRANSITION_TYPE), SqlQuery::ENUMERATION},
        {DC::lookupProgramSectionColumnName(ProgramSectionProperty::BREAKPOINT), SqlQuery::BOOLEAN},
        {DC::lookupProgramSectionColumnName(ProgramSectionProperty::PROGRAM_EVENT_MESSAGE), SqlQuery::TEXT},
    };
    return createTable(connection, DC::lookupProgramSectionTableName(), columns);
}

bool SqlProgramTables::createProgramStepTable(ISqlConnection& connection)
{
    const auto column = [](ProgramStepProperty property) { return DC::lookupProgramStepColumnName(property); };
    const QList<Column> columns = {
        {column(ProgramStepProperty::ID), SqlQuery::INTEGER, autoId},
        {column(ProgramStepProperty::PROGRAM_ID), SqlQuery::INTEGER, SqlQuery::NOT_NULL},
        {column(ProgramStepProperty::ORDER_NUMBER), SqlQuery::INTEGER, SqlQuery::NOT_NULL},
        {column(ProgramStepProperty::STEP_TYPE), SqlQuery::ENUMERATION, SqlQuery::NOT_NULL},
        {column(ProgramStepProperty::SECTION_ID), SqlQuery::INTEGER},
        {column(ProgramStepProperty::SUB_PROGRAM_ID), SqlQuery::INTEGER},
    };
    const QString programKey = DC::lookupProgramColumnName(ProgramProperty::ID);
    const QList<ForeignKey> foreignKeys = {
        {column(ProgramStepProperty::PROGRAM_ID), DC::lookupProgramTableName(), programKey},
        {column(ProgramStepProperty::SUB_PROGRAM_ID), DC::lookupProgramTableName(), programKey},
        {column(ProgramStepProperty::SECTION_ID), DC::lookupProgramSectionTableName(),
         DC::lookupProgramSectionColumnName(ProgramSectionProperty::ID)},
    };
    return createTable(connection, DC::lookupProgramStepTableName(), columns, foreignKeys);
}

bool SqlProgramTables::createProgramStepRepetitionTable(ISqlConnection& connection)
{
    const auto column = [](ProgramStepRepetitionProperty property) {
        return DC::lookupProgramStepRepetitionColumnName(property);
    };
    const QList<Column> columns = {
        {column(ProgramStepRepetitionProperty::ID), SqlQuery::INTEGER, autoId},
        {column(ProgramStepRepetitionProperty::PROGRAM_ID), SqlQuery::INTEGER, SqlQuery::NOT_NULL},
        {column(ProgramStepRepetitionProperty::START_STEP_ID), SqlQuery::INTEGER, SqlQuery::NOT_NULL},
        {column(ProgramStepRepetitionProperty::END_STEP_ID), SqlQuery::INTEGER, SqlQuery::NOT_NULL},
        {column(ProgramStepRepetitionProperty::NUM_REPETITIONS), SqlQuery::INTEGER},
    };
    const QString stepKey = DC::lookupProgramStepColumnName(ProgramStepProperty::ID);
    const QList<ForeignKey> foreignKeys = {
        {column(ProgramStepRepetitionProperty::PROGRAM_ID), DC::lookupProgramTableName(),
         DC::lookupProgramColumnName(ProgramProperty::ID)},
        {column(ProgramStepRepetitionProperty::START_STEP_ID), DC::lookupProgramStepTableName(), stepKey},
        {column(ProgramStepRepetitionProperty::END_STEP_ID), DC::lookupProgramStepTableName(), stepKey},
    };
    return createTable(connection, DC::lookupProgramStepRepetitionTableName(), columns, foreignKeys);
}

bool SqlProgramTables::createProgramSetpointTable(ISqlConnection& connection)
{
    const auto column = [](ProgramSetpointProperty property) { return DC::lookupProgramSetpointColumnName(property); };
    const QList<Column> columns = {
        {column(ProgramSetpointProperty::PROGRAM_SECTION_ID), SqlQuery::INTEGER, key},
        {column(ProgramSetpointProperty::SIGNAL_ID), SqlQuery::INTEGER, key},
        {column(ProgramSetpointProperty::SETPOINT), SqlQuery::REAL},
        {column(ProgramSetpointProperty::TOLERANCE_RANGE_MIN), SqlQuery::REAL},
        {column(ProgramSetpointProperty::TOLERANCE_RANGE_MAX), SqlQuery::REAL},
    };
    // Without actions: the composite key stands directly behind its bracket.
    const QList<ForeignKey> foreignKeys = {
        {column(ProgramSetpointProperty::PROGRAM_SECTION_ID), DC::lookupProgramSectionTableName(),
         DC::lookupProgramSectionColumnName(ProgramSectionProperty::ID)},
    };
    return createTable(connection, DC::lookupProgramSetpointTableName(), columns, foreignKeys);
}

bool SqlProgramTables::createTable(ISqlConnection& connection, const QString& table, const QList<Column>& columns,
                                   const QList<ForeignKey>& foreignKeys)
{
    if (connection.containsTable(table)) {
        return true;
    }
    for (const ForeignKey& foreignKey : foreignKeys) {
        if (!createReferenceTable(connection, foreignKey.referenceTable)) {
            qCCritical(SQLPROGRAMDATABASECONNECTION).noquote()
                << QStringLiteral("Missing reference table. Can't create '%1'").arg(table);
            return false;
        }
    }
    SqlQuery query;
    query.createTable(table, columns, foreignKeys);
    const bool success = connection.execute(query).success;
    if (!success) {
        qCCritical(SQLPROGRAMDATABASECONNECTION).noquote() << QStringLiteral("Could not create table '%1'").arg(table);
    }
    return success;
}

bool SqlProgramTables::createReferenceTable(ISqlConnection& connection, const QString& table)
{
    if (table == DC::lookupProgramTableName()) {
        return createProgramTable(connection);
    }
    if (table == DC::lookupProgramSectionTableName()) {
        return createProgramSectionTable(connection);
    }
    if (table == DC::lookupProgramStepTableName()) {
        return createProgramStepTable(connection);
    }
    return false;
}

} // namespace zelmor::base::connection::databaseconnection
