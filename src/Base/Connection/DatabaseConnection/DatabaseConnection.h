#pragma once

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Domain/Types/DatabaseConnectionError.h"

#include <QList>
#include <QLoggingCategory>
#include <QObject>
#include <QString>

namespace zelmor::domain::api {
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::base::connection::databaseconnection {

Q_DECLARE_LOGGING_CATEGORY(DATABASECONNECTION)

// The one object through which the system reaches its persistent data: it owns
// the stores, wires them to the two databases, checks the schema version and
// creates the application tables. The names of all tables and columns come with
// DatabaseSchema.
//
// Neither database is owned. setDependencies() must come first; initialize()
// follows before any store is used. The simulator only sets the dependencies.
class DatabaseConnection : public QObject, public DatabaseSchema
{
    Q_OBJECT

public:
    // The flag goes to the protocol and user stores: it merges user levels on reading.
    explicit DatabaseConnection(bool mergeUserLevels, QObject* parent = nullptr);
    ~DatabaseConnection() override;

    // Stores both pointers, then hands them to the stores. False when either is
    // null, or when a store refuses its dependencies.
    bool setDependencies(zelmor::domain::api::ISqlConnection* applicationDatabase,
                         zelmor::domain::api::ISqlConnection* configurationDatabase);
    bool areDependenciesSet() const;
    // Checks the application database's version, creates its missing tables and
    // initialises the stores. On false, isDatabaseVersionWrong() tells a too old
    // database from a missing table or a failed creation.
    bool initialize();
    bool isDatabaseVersionWrong() const;

    // Each creates its table on the application database unless it exists,
    // whatever columns it has, after the tables its foreign keys reference.
    // True when the table is there afterwards.
    bool createTableChamber();
    bool createTableGlobalSettings();
    bool createTableMetaRecordingHasRecordings();
    bool createTableProtocolEntry();
    bool createTableRecording();
    bool createTableRecordset();
    bool createTableRecordsetComment();
    bool createTableToleranceRange();
    bool createTableRoom();
    bool createTableRoomChamberPosition();
    bool createTableUser();
    bool createTableUserHasChamberSignalVisibilityPreference();
    bool createTableUserPreferences();

signals:
    // Passes on the stores' errors with their number.
    void error(zelmor::domain::types::DatabaseConnectionError error) const;

private:
    void connectSignals();
    bool createApplicationTables();
    bool initializeStores();

    bool createZelmorTable(const QString& table, const QList<SqlQuery::ColumnConfiguration>& columns,
                           const QList<SqlQuery::ForeignKeyConfiguration>& foreignKeys = {});
    bool createReferenceTable(const QString& table);
    bool executeZelmorCreateTableQuery(const SqlQuery& query, const QString& table);

    zelmor::domain::api::ISqlConnection* applicationDatabase = nullptr;
    zelmor::domain::api::ISqlConnection* configurationDatabase = nullptr;
    // The stores join here, as QSharedPointers in this order: access, alarm,
    // camera, chamber, configuration, program, protocol, recording, recordset,
    // room, settings, user.
    bool mergeUserLevels;
    bool databaseVersionWrong = false;
};

} // namespace zelmor::base::connection::databaseconnection
