#include "Domain/Types/ProgramId.h"

namespace zelmor::domain::types {

ProgramId::ProgramId(int id)
    : id(id)
{
}

ProgramId& ProgramId::operator=(int other)
{
    id = other;
    return *this;
}

bool ProgramId::operator==(const ProgramId& other) const
{
    return id == other.id;
}

bool ProgramId::operator!=(const ProgramId& other) const
{
    return id != other.id;
}

bool ProgramId::operator==(int other) const
{
    return id == other;
}

bool ProgramId::operator!=(int other) const
{
    return id != other;
}

ProgramId::operator int() const
{
    return id;
}

} // namespace zelmor::domain::types
