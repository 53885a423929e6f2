#include "Domain/Types/ProgramStepRepetitionId.h"

namespace zelmor::domain::types {

ProgramStepRepetitionId::ProgramStepRepetitionId(int id)
    : id(id)
{
}

ProgramStepRepetitionId& ProgramStepRepetitionId::operator=(int other)
{
    id = other;
    return *this;
}

bool ProgramStepRepetitionId::operator==(const ProgramStepRepetitionId& other) const
{
    return id == other.id;
}

bool ProgramStepRepetitionId::operator!=(const ProgramStepRepetitionId& other) const
{
    return id != other.id;
}

bool ProgramStepRepetitionId::operator==(int other) const
{
    return id == other;
}

bool ProgramStepRepetitionId::operator!=(int other) const
{
    return id != other;
}

ProgramStepRepetitionId::operator int() const
{
    return id;
}

} // namespace zelmor::domain::types
