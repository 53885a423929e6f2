#include "Domain/Types/RecordsetId.h"

namespace zelmor::domain::types {

RecordsetId::RecordsetId(int id)
    : id(id)
{
}

RecordsetId& RecordsetId::operator=(int other)
{
    id = other;
    return *this;
}

bool RecordsetId::operator==(const RecordsetId& other) const
{
    return id == other.id;
}

bool RecordsetId::operator!=(const RecordsetId& other) const
{
    return id != other.id;
}

bool RecordsetId::operator==(int other) const
{
    return id == other;
}

bool RecordsetId::operator!=(int other) const
{
    return id != other;
}

RecordsetId::operator int() const
{
    return id;
}

} // namespace zelmor::domain::types
