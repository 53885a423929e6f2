#pragma once

#include "Domain/Types/ChamberId.h"
#include "Domain/Types/RoomId.h"

#include <QList>
#include <QMetaType>
#include <QString>
#include <QUrl>

namespace zelmor::domain::types {

// A room with its floor plan.
class Room
{
public:
    // Id 0 (not stored yet), no name, no image, scale 1.
    Room();
    Room(const RoomId& id, const QString& name, const QUrl& image, float scale,
         const QList<ChamberId>& chamberIds = QList<ChamberId>());

    RoomId id;
    QString name;
    QUrl image; // the floor plan
    float scale;
    // The chambers placed in the room, as the room store reads them; not written
    // with the room, each chamber's position is stored by itself.
    QList<ChamberId> chamberIds;
};

bool operator==(const Room& left, const Room& right);
bool operator!=(const Room& left, const Room& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::Room)
