#include "Domain/Types/CameraId.h"

namespace zelmor::domain::types {

CameraId::CameraId(int id)
    : id(id)
{
}

CameraId& CameraId::operator=(int other)
{
    id = other;
    return *this;
}

bool CameraId::operator==(const CameraId& other) const
{
    return id == other.id;
}

bool CameraId::operator!=(const CameraId& other) const
{
    return id != other.id;
}

bool CameraId::operator==(int other) const
{
    return id == other;
}

bool CameraId::operator!=(int other) const
{
    return id != other;
}

CameraId::operator int() const
{
    return id;
}

} // namespace zelmor::domain::types
