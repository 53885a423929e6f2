#pragma once

#include "Domain/Types/DatabaseConnectionError.h"

#include <QList>
#include <QUrl>

namespace zelmor::domain::types {
class ChamberId;
class Room;
class RoomId;
class RoomPosition;
} // namespace zelmor::domain::types

namespace zelmor::domain::api {

// Rooms with their floor plans, and where each chamber stands on one. Every
// operation returns its empty value (false, an empty list, a default object)
// on failure and reports it through error().
class IRoomDatabaseConnection
{
public:
    virtual ~IRoomDatabaseConnection();

    // Each room with the chambers placed in it.
    virtual QList<zelmor::domain::types::Room> getAllRooms() const = 0;
    virtual QUrl getRoomImagePath(const zelmor::domain::types::RoomId& id) const = 0;
    // The new room's id goes into the argument.
    virtual bool addRoom(zelmor::domain::types::Room& room) = 0;
    virtual bool updateRoom(const zelmor::domain::types::Room& room) = 0;
    virtual bool deleteRoom(const zelmor::domain::types::RoomId& id) = 0;
    // A position without a room when the chamber isn't placed.
    virtual zelmor::domain::types::RoomPosition
    getRoomPosition(const zelmor::domain::types::ChamberId& chamber) const = 0;
    // A position without a room removes the chamber from its room.
    virtual bool setRoomPosition(const zelmor::domain::types::ChamberId& chamber,
                                 const zelmor::domain::types::RoomPosition& position) = 0;
    virtual QList<zelmor::domain::types::ChamberId>
    getChambersInRoom(const zelmor::domain::types::RoomId& id) const = 0;

    // A signal in the implementations.
    virtual void error(zelmor::domain::types::DatabaseConnectionError error) const = 0;
};

} // namespace zelmor::domain::api
