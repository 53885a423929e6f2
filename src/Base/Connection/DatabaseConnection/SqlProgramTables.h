#pragma once

#include "Base/Connection/DatabaseConnection/SqlQuery.h"

#include <QList>
#include <QString>

namespace zelmor::domain::api {
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::base::connection::databaseconnection {

// The five program tables of SqlProgramDatabaseConnection, made on whichever
// connection is given: the application database, or the file of an exported
// program. Each function makes the tables its foreign keys reference first and
// leaves a table that is there as it is, whatever its columns. The foreign
// keys carry no actions: deleting a row that another refers to is refused.
// Failures are logged in the store's category.
class SqlProgramTables
{
public:
    SqlProgramTables() = delete;

    // The five in the order program, program_step, program_step_repetition,
    // program_section, program_setpoint, stopping at the first that fails.
    static bool createTables(zelmor::domain::api::ISqlConnection& connection);

    static bool createProgramTable(zelmor::domain::api::ISqlConnection& connection);
    static bool createProgramSectionTable(zelmor::domain::api::ISqlConnection& connection);
    static bool createProgramStepTable(zelmor::domain::api::ISqlConnection& connection);
    static bool createProgramStepRepetitionTable(zelmor::domain::api::ISqlConnection& connection);
    static bool createProgramSetpointTable(zelmor::domain::api::ISqlConnection& connection);

private:
    static bool createTable(zelmor::domain::api::ISqlConnection& connection, const QString& table,
                            const QList<SqlQuery::ColumnConfiguration>& columns,
                            const QList<SqlQuery::ForeignKeyConfiguration>& foreignKeys = {});
    static bool createReferenceTable(zelmor::domain::api::ISqlConnection& connection, const QString& table);
};

} // namespace zelmor::base::connection::databaseconnection
