#include "Domain/Types/ChamberId.h"

namespace zelmor::domain::types {

ChamberId::ChamberId(int id)
    : id(id)
{
}

ChamberId& ChamberId::operator=(int other)
{
    id = other;
    return *this;
}

bool ChamberId::operator==(const ChamberId& other) const
{
    return id == other.id;
}

bool ChamberId::operator!=(const ChamberId& other) const
{
    return id != other.id;
}

bool ChamberId::operator==(int other) const
{
    return id == other;
}

bool ChamberId::operator!=(int other) const
{
    return id != other;
}

ChamberId::operator int() const
{
    return id;
}

} // namespace zelmor::domain::types
