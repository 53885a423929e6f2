#include "Domain/Types/RoomPosition.h"

namespace zelmor::domain::types {

RoomPosition::RoomPosition()
    : RoomPosition(0, QPointF())
{
}

RoomPosition::RoomPosition(const RoomId& roomId, const QPointF& position)
    : roomId(roomId)
    , position(position)
{
}

bool RoomPosition::hasRoom() const
{
    return roomId != 0;
}

bool operator==(const RoomPosition& left, const RoomPosition& right)
{
    // exact, not fuzzy: a position read back from the database is the one written
    return left.roomId == right.roomId && left.position.x() == right.position.x()
           && left.position.y() == right.position.y();
}

bool operator!=(const RoomPosition& left, const RoomPosition& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
