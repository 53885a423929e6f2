#pragma once

#include "Domain/Types/RoomId.h"

#include <QMetaType>
#include <QPointF>

namespace zelmor::domain::types {

// Where a chamber stands on the floor plan of a room.
class RoomPosition
{
public:
    // No room (id 0), at the origin.
    RoomPosition();
    RoomPosition(const RoomId& roomId, const QPointF& position);

    // A position without a room places the chamber nowhere; storing one removes
    // the chamber's position.
    bool hasRoom() const;

    RoomId roomId;
    QPointF position;
};

bool operator==(const RoomPosition& left, const RoomPosition& right);
bool operator!=(const RoomPosition& left, const RoomPosition& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::RoomPosition)
