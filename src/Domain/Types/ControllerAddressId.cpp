#include "Domain/Types/ControllerAddressId.h"

namespace zelmor::domain::types {

ControllerAddressId::ControllerAddressId(int id)
    : id(id)
{
}

ControllerAddressId& ControllerAddressId::operator=(int other)
{
    id = other;
    return *this;
}

bool ControllerAddressId::operator==(const ControllerAddressId& other) const
{
    return id == other.id;
}

bool ControllerAddressId::operator!=(const ControllerAddressId& other) const
{
    return id != other.id;
}

bool ControllerAddressId::operator==(int other) const
{
    return id == other;
}

bool ControllerAddressId::operator!=(int other) const
{
    return id != other;
}

ControllerAddressId::operator int() const
{
    return id;
}

} // namespace zelmor::domain::types
