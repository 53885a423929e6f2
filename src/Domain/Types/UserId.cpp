#include "Domain/Types/UserId.h"

namespace zelmor::domain::types {

UserId::UserId(int id)
    : id(id)
{
}

UserId& UserId::operator=(int other)
{
    id = other;
    return *this;
}

bool UserId::operator==(const UserId& other) const
{
    return id == other.id;
}

bool UserId::operator!=(const UserId& other) const
{
    return id != other.id;
}

bool UserId::operator==(int other) const
{
    return id == other;
}

bool UserId::operator!=(int other) const
{
    return id != other;
}

UserId::operator int() const
{
    return id;
}

} // namespace zelmor::domain::types
