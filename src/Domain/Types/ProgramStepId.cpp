#include "Domain/Types/ProgramStepId.h"

namespace zelmor::domain::types {

ProgramStepId::ProgramStepId(int id)
    : id(id)
{
}

ProgramStepId& ProgramStepId::operator=(int other)
{
    id = other;
    return *this;
}

bool ProgramStepId::operator==(const ProgramStepId& other) const
{
    return id == other.id;
}

bool ProgramStepId::operator!=(const ProgramStepId& other) const
{
    return id != other.id;
}

bool ProgramStepId::operator==(int other) const
{
    return id == other;
}

bool ProgramStepId::operator!=(int other) const
{
    return id != other;
}

ProgramStepId::operator int() const
{
    return id;
}

} // namespace zelmor::domain::types
