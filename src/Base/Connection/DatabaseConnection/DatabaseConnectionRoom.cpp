#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/SqlRoomDatabaseConnection.h"
#include "Domain/Types/ChamberId.h"
#include "Domain/Types/Room.h"
#include "Domain/Types/RoomId.h"
#include "Domain/Types/RoomPosition.h"

// The room store's interface, passed on call by call.

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;

QList<Room> DatabaseConnection::getAllRooms() const
{
    return roomStore->getAllRooms();
}

QUrl DatabaseConnection::getRoomImagePath(const RoomId& id) const
{
    return roomStore->getRoomImagePath(id);
}

bool DatabaseConnection::addRoom(Room& room)
{
    return roomStore->addRoom(room);
}

bool DatabaseConnection::updateRoom(const Room& room)
{
    return roomStore->updateRoom(room);
}

bool DatabaseConnection::deleteRoom(const RoomId& id)
{
    return roomStore->deleteRoom(id);
}

RoomPosition DatabaseConnection::getRoomPosition(const ChamberId& chamber) const
{
    return roomStore->getRoomPosition(chamber);
}

bool DatabaseConnection::setRoomPosition(const ChamberId& chamber, const RoomPosition& position)
{
    return roomStore->setRoomPosition(chamber, position);
}

QList<ChamberId> DatabaseConnection::getChambersInRoom(const RoomId& id) const
{
    return roomStore->getChambersInRoom(id);
}

} // namespace zelmor::base::connection::databaseconnection
