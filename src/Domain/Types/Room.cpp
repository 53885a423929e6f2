#include "Domain/Types/Room.h"

namespace zelmor::domain::types {

Room::Room()
    : Room(0, QString(), QUrl(), 1.0f)
{
}

Room::Room(const RoomId& id, const QString& name, const QUrl& image, float scale, const QList<ChamberId>& chamberIds)
    : id(id)
    , name(name)
    , image(image)
    , scale(scale)
    , chamberIds(chamberIds)
{
}

bool operator==(const Room& left, const Room& right)
{
    return left.id == right.id && left.name == right.name && left.image == right.image && left.scale == right.scale
           && left.chamberIds == right.chamberIds;
}

bool operator!=(const Room& left, const Room& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
