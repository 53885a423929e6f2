#include "Domain/Types/ProgramSectionId.h"

namespace zelmor::domain::types {

ProgramSectionId::ProgramSectionId(int id)
    : id(id)
{
}

ProgramSectionId& ProgramSectionId::operator=(int other)
{
    id = other;
    return *this;
}

bool ProgramSectionId::operator==(const ProgramSectionId& other) const
{
    return id == other.id;
}

bool ProgramSectionId::operator!=(const ProgramSectionId& other) const
{
    return id != other.id;
}

bool ProgramSectionId::operator==(int other) const
{
    return id == other;
}

bool ProgramSectionId::operator!=(int other) const
{
    return id != other;
}

ProgramSectionId::operator int() const
{
    return id;
}

} // namespace zelmor::domain::types
