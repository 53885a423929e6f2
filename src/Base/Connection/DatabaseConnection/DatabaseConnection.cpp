#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/SqlAccessDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlAlarmDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlCameraDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlChamberDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlConfigurationDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlProgramDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlProtocolDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlRecordingDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlRecordsetDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlRoomDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlSettingsDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlUserDatabaseConnection.h"
#include "Domain/Api/IInitializing.h"
#include "Domain/Api/ISqlConnection.h"

// The creation functions of the application tables are in
// DatabaseConnectionTables.cpp, the calls passed on to each store in
// DatabaseConnection<Store>.cpp (Access, Alarm, Camera, Chamber,
// Configuration, Program, Protocol, Recording, Recordset, Room, Settings, User).

namespace zelmor::base::connection::databaseconnection {

Q_LOGGING_CATEGORY(DATABASECONNECTION, "zelmor.DatabaseConnection")

using zelmor::domain::api::IInitializing;
using zelmor::domain::api::ISqlConnection;
using zelmor::domain::types::DatabaseConnectionError;

DatabaseConnection::DatabaseConnection(bool mergeUserLevels, QObject* parent)
    : QObject(parent)
    , accessStore(new SqlAccessDatabaseConnection(nullptr))
    , alarmStore(new SqlAlarmDatabaseConnection(nullptr))
    , cameraStore(new SqlCameraDatabaseConnection(nullptr))
    , chamberStore(new SqlChamberDatabaseConnection(nullptr))
    , configurationStore(new SqlConfigurationDatabaseConnection(nullptr))
    , programStore(new SqlProgramDatabaseConnection(nullptr))
    , protocolStore(new SqlProtocolDatabaseConnection(mergeUserLevels, nullptr))
    , recordingStore(new SqlRecordingDatabaseConnection(nullptr))
    , recordsetStore(new SqlRecordsetDatabaseConnection(nullptr))
    , roomStore(new SqlRoomDatabaseConnection(nullptr))
    , settingsStore(new SqlSettingsDatabaseConnection(nullptr))
    , userStore(new SqlUserDatabaseConnection(mergeUserLevels, nullptr))
    , mergeUserLevels(mergeUserLevels)
{
    // Early, so that a store used before initialize() reports through the facade too.
    connectSignals();
}

DatabaseConnection::~DatabaseConnection() = default;

bool DatabaseConnection::setDependencies(ISqlConnection* applicationDatabase, ISqlConnection* configurationDatabase)
{
    this->applicationDatabase = applicationDatabase;
    this->configurationDatabase = configurationDatabase;
    if (!areDependenciesSet()) {
        return false;
    }
    // Store by store in this order, stopping the wiring at the first that
    // refuses: access, camera, alarm, configuration, chamber, program,
    // protocol, recording, recordset, room, settings, user.
    return accessStore->setDependencies(configurationDatabase) && cameraStore->setDependencies(applicationDatabase)
           && alarmStore->setDependencies(applicationDatabase, configurationStore.data(), chamberStore.data())
           && configurationStore->setDependencies(configurationDatabase)
           && chamberStore->setDependencies(applicationDatabase, configurationStore.data(), roomStore.data())
           && programStore->setDependencies(applicationDatabase, configurationStore.data())
           && protocolStore->setDependencies(applicationDatabase)
           && recordingStore->setDependencies(applicationDatabase, chamberStore.data(), recordsetStore.data())
           && recordsetStore->setDependencies(applicationDatabase, configurationStore.data(), chamberStore.data())
           && roomStore->setDependencies(applicationDatabase) && settingsStore->setDependencies(applicationDatabase)
           && userStore->setDependencies(applicationDatabase, configurationStore.data(), protocolStore.data());
}

bool DatabaseConnection::areDependenciesSet() const
{
    return applicationDatabase != nullptr && configurationDatabase != nullptr;
}

bool DatabaseConnection::initialize()
{
    connectSignals();
    databaseVersionWrong = false;
    if (!areDependenciesSet()) {
        emit error(DatabaseConnectionError::DEPENDENCIES_NOT_SET);
        return false;
    }
    // Only too old is wrong: a newer database passes. Without the version table
    // the version is 0.
    if (databaseSchemaVersionNumber > applicationDatabase->getDatabaseVersionInfo()) {
        databaseVersionWrong = true;
        return false;
    }
    return createApplicationTables() && initializeStores();
}

bool DatabaseConnection::isDatabaseVersionWrong() const
{
    return databaseVersionWrong;
}

void DatabaseConnection::connectSignals()
{
    // In the order of the stores; a second call adds no second connection.
    connect(accessStore.data(), &SqlAccessDatabaseConnection::error, this, &DatabaseConnection::error,
            Qt::UniqueConnection);
    connect(alarmStore.data(), &SqlAlarmDatabaseConnection::error, this, &DatabaseConnection::error,
            Qt::UniqueConnection);
    connect(cameraStore.data(), &SqlCameraDatabaseConnection::error, this, &DatabaseConnection::error,
            Qt::UniqueConnection);
    connect(chamberStore.data(), &SqlChamberDatabaseConnection::error, this, &DatabaseConnection::error,
            Qt::UniqueConnection);
    connect(configurationStore.data(), &SqlConfigurationDatabaseConnection::error, this, &DatabaseConnection::error,
            Qt::UniqueConnection);
    connect(programStore.data(), &SqlProgramDatabaseConnection::error, this, &DatabaseConnection::error,
            Qt::UniqueConnection);
    connect(protocolStore.data(), &SqlProtocolDatabaseConnection::error, this, &DatabaseConnection::error,
            Qt::UniqueConnection);
    connect(recordingStore.data(), &SqlRecordingDatabaseConnection::error, this, &DatabaseConnection::error,
            Qt::UniqueConnection);
    connect(recordsetStore.data(), &SqlRecordsetDatabaseConnection::error, this, &DatabaseConnection::error,
            Qt::UniqueConnection);
    connect(roomStore.data(), &SqlRoomDatabaseConnection::error, this, &DatabaseConnection::error,
            Qt::UniqueConnection);
    connect(settingsStore.data(), &SqlSettingsDatabaseConnection::error, this, &DatabaseConnection::error,
            Qt::UniqueConnection);
    connect(userStore.data(), &SqlUserDatabaseConnection::error, this, &DatabaseConnection::error,
            Qt::UniqueConnection);
}

bool DatabaseConnection::createApplicationTables()
{
    return createTableChamber() && createTableGlobalSettings() && createTableMetaRecordingHasRecordings()
           && createTableProtocolEntry() && createTableRecording() && createTableRecordset()
           && createTableRecordsetComment() && createTableToleranceRange() && createTableRoom()
           && createTableRoomChamberPosition() && createTableUser()
           && createTableUserHasChamberSignalVisibilityPreference() && createTableUserPreferences();
}

bool DatabaseConnection::initializeStores()
{
    // In the order of the stores, stopping at the first false.
    const QList<IInitializing*> stores = {
        accessStore.data(),        alarmStore.data(),   cameraStore.data(),   chamberStore.data(),
        configurationStore.data(), programStore.data(), protocolStore.data(), recordingStore.data(),
        recordsetStore.data(),     roomStore.data(),    settingsStore.data(), userStore.data(),
    };
    for (IInitializing* store : stores) {
        if (!store->initialize()) {
            return false;
        }
    }
    return true;
}

} // namespace zelmor::base::connection::databaseconnection
