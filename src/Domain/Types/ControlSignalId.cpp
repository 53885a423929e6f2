#include "Domain/Types/ControlSignalId.h"

namespace zelmor::domain::types {

ControlSignalId::ControlSignalId(int id)
    : id(id)
{
}

ControlSignalId& ControlSignalId::operator=(int other)
{
    id = other;
    return *this;
}

bool ControlSignalId::operator==(const ControlSignalId& other) const
{
    return id == other.id;
}

bool ControlSignalId::operator!=(const ControlSignalId& other) const
{
    return id != other.id;
}

bool ControlSignalId::operator==(int other) const
{
    return id == other;
}

bool ControlSignalId::operator!=(int other) const
{
    return id != other;
}

ControlSignalId::operator int() const
{
    return id;
}

} // namespace zelmor::domain::types
