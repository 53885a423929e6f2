#include "Domain/Types/RoomId.h"

namespace zelmor::domain::types {

RoomId::RoomId(int id)
    : id(id)
{
}

RoomId& RoomId::operator=(int other)
{
    id = other;
    return *this;
}

bool RoomId::operator==(const RoomId& other) const
{
    return id == other.id;
}

bool RoomId::operator!=(const RoomId& other) const
{
    return id != other.id;
}

bool RoomId::operator==(int other) const
{
    return id == other;
}

bool RoomId::operator!=(int other) const
{
    return id != other;
}

RoomId::operator int() const
{
    return id;
}

} // namespace zelmor::domain::types
