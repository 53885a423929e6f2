#pragma once

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Domain/Api/IConfigurationDatabaseConnection.h"
#include "Domain/Types/DatabaseConnectionError.h"

#include <QList>
#include <QLoggingCategory>
#include <QObject>
#include <QSharedPointer>
#include <QString>

namespace zelmor::domain::api {
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::base::connection::databaseconnection {

Q_DECLARE_LOGGING_CATEGORY(DATABASECONNECTION)

class SqlConfigurationDatabaseConnection;

// The one object through which the system reaches its persistent data: it owns
// the stores, wires them to the two databases, checks the schema version and
// creates the application tables. The names of all tables and columns come with
// DatabaseSchema. Each store's interface is implemented by passing every call
// on to the store.
//
// Neither database is owned. setDependencies() must come first; initialize()
// follows before any store is used. The simulator only sets the dependencies
// and reads the catalogue.
class DatabaseConnection : public QObject,
                           public DatabaseSchema,
                           public zelmor::domain::api::IConfigurationDatabaseConnection
{
    Q_OBJECT

public:
    // The flag is kept for the stores that read user levels: it merges them on reading.
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

    // IConfigurationDatabaseConnection
    QList<zelmor::domain::types::ChamberTypeData> getAllChamberTypeData(bool withSignals) const override;
    QList<zelmor::domain::types::ChamberTypeData> getAllProgrammableChamberTypeData() const override;
    zelmor::domain::types::ChamberTypeData getChamberTypeData(const zelmor::domain::types::ChamberTypeId& id,
                                                              bool withSignals) const override;
    QMap<int, zelmor::domain::types::ChamberSignal>
    getChamberSignals(const zelmor::domain::types::ChamberTypeId& id) const override;
    QList<std::pair<zelmor::domain::types::ChamberSignal, zelmor::domain::types::DefaultToleranceRange>>
    getTimeProgrammableChamberSignals(const zelmor::domain::types::ChamberTypeId& id) const override;
    QMap<int, zelmor::domain::types::ChamberSignal>
    getSetpointChamberSignals(const zelmor::domain::types::ChamberTypeId& id) const override;
    QMap<int, zelmor::domain::types::ChamberSignal>
    getChamberSignals(QList<zelmor::domain::types::SignalId> ids) const override;
    QSharedPointer<zelmor::domain::types::ChamberSignal>
    getChamberSignal(const zelmor::domain::types::SignalId& id) const override;
    QMap<zelmor::domain::types::SignalId, zelmor::domain::types::ChamberSignal>
    getMatchingSignals(const zelmor::domain::types::ChamberTypeId& source,
                       const zelmor::domain::types::ChamberTypeId& destination) const override;
    QList<zelmor::domain::types::ChamberSignal>
    getDataloggerChamberSignal(const zelmor::domain::types::ChamberTypeId& id) const override;
    zelmor::domain::types::DefaultToleranceRange
    getDefaultToleranceRange(const zelmor::domain::types::ChamberTypeId& id,
                             const zelmor::domain::types::SignalId& signalId, bool isSetPoint) const override;
    int getChamberSignalDelay(const zelmor::domain::types::ChamberTypeId& id,
                              const zelmor::domain::types::SignalId& signalId, bool second) const override;
    zelmor::domain::types::Unit::UnitId getSignalUnitId(const zelmor::domain::types::SignalId& id) const override;

signals:
    // Passes on the stores' errors with their number. Connected from construction on.
    void error(zelmor::domain::types::DatabaseConnectionError error) const override;

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
    // The stores, without parents; so far the catalogue alone.
    QSharedPointer<SqlConfigurationDatabaseConnection> configurationStore;
    bool mergeUserLevels;
    bool databaseVersionWrong = false;
};

} // namespace zelmor::base::connection::databaseconnection
