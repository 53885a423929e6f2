#include "Domain/Types/RecordingId.h"

namespace zelmor::domain::types {

RecordingId::RecordingId(int id)
    : id(id)
{
}

RecordingId& RecordingId::operator=(int other)
{
    id = other;
    return *this;
}

bool RecordingId::operator==(const RecordingId& other) const
{
    return id == other.id;
}

bool RecordingId::operator!=(const RecordingId& other) const
{
    return id != other.id;
}

bool RecordingId::operator==(int other) const
{
    return id == other;
}

bool RecordingId::operator!=(int other) const
{
    return id != other;
}

RecordingId::operator int() const
{
    return id;
}

} // namespace zelmor::domain::types
