#include "Domain/Types/AlarmId.h"

namespace zelmor::domain::types {

AlarmId::AlarmId(int id)
    : id(id)
{
}

AlarmId& AlarmId::operator=(int other)
{
    id = other;
    return *this;
}

bool AlarmId::operator==(const AlarmId& other) const
{
    return id == other.id;
}

bool AlarmId::operator!=(const AlarmId& other) const
{
    return id != other.id;
}

bool AlarmId::operator==(int other) const
{
    return id == other;
}

bool AlarmId::operator!=(int other) const
{
    return id != other;
}

AlarmId::operator int() const
{
    return id;
}

} // namespace zelmor::domain::types
