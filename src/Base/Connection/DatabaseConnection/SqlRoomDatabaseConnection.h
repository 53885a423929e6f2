#pragma once

#include "Base/Connection/DatabaseConnection/SqlStoreChecks.h"
#include "Domain/Api/IInitializing.h"
#include "Domain/Api/IRoomDatabaseConnection.h"
#include "Domain/Types/DatabaseConnectionError.h"

#include <QLoggingCategory>
#include <QObject>

namespace zelmor::domain::api {
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::base::connection::databaseconnection {

Q_DECLARE_LOGGING_CATEGORY(SQLROOMDATABASECONNECTION)

// Rooms in table "room" and the positions of chambers on their floor plans in
// "room_chamber_position", one row per placed chamber. A chamber that is taken
// out of its room loses its row. The floor plan is kept as the text of its URL.
//
// Failures are logged in "zelmor.SqlRoomDatabaseConnection" and emitted
// through error(). Use on the thread of the connection.
class SqlRoomDatabaseConnection : public QObject,
                                  public zelmor::domain::api::IRoomDatabaseConnection,
                                  public zelmor::domain::api::IInitializing
{
    Q_OBJECT

public:
    explicit SqlRoomDatabaseConnection(QObject* parent = nullptr);
    ~SqlRoomDatabaseConnection() override;

    // The connection is not owned. True when it is not null.
    virtual bool setDependencies(zelmor::domain::api::ISqlConnection* connection);
    // True when the database has the table "room" (MISSING_TABLE if not).
    bool initialize() override;

    QList<zelmor::domain::types::Room> getAllRooms() const override;
    QUrl getRoomImagePath(const zelmor::domain::types::RoomId& id) const override;
    bool addRoom(zelmor::domain::types::Room& room) override;
    bool updateRoom(const zelmor::domain::types::Room& room) override;
    bool deleteRoom(const zelmor::domain::types::RoomId& id) override;
    zelmor::domain::types::RoomPosition getRoomPosition(const zelmor::domain::types::ChamberId& chamber) const override;
    bool setRoomPosition(const zelmor::domain::types::ChamberId& chamber,
                         const zelmor::domain::types::RoomPosition& position) override;
    QList<zelmor::domain::types::ChamberId> getChambersInRoom(const zelmor::domain::types::RoomId& id) const override;

    virtual bool areDependenciesSet() const;

signals:
    void error(zelmor::domain::types::DatabaseConnectionError error) const override;

private:
    zelmor::domain::api::ISqlConnection* connection = nullptr;
    SqlStoreChecks checks;
};

} // namespace zelmor::base::connection::databaseconnection
