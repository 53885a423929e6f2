#include "Domain/Types/ProgramStepRepetition.h"

namespace zelmor::domain::types {

ProgramStepRepetition::ProgramStepRepetition()
    : ProgramStepRepetition(0, 0, 0, 0, 0)
{
}

ProgramStepRepetition::ProgramStepRepetition(const ProgramStepRepetitionId& id, const ProgramId& programId,
                                             const ProgramStepId& startStepId, const ProgramStepId& endStepId,
                                             int repetitions)
    : id(id)
    , programId(programId)
    , startStepId(startStepId)
    , endStepId(endStepId)
    , repetitions(repetitions)
{
}

bool operator==(const ProgramStepRepetition& left, const ProgramStepRepetition& right)
{
    return left.id == right.id && left.programId == right.programId && left.startStepId == right.startStepId
           && left.endStepId == right.endStepId && left.repetitions == right.repetitions;
}

bool operator!=(const ProgramStepRepetition& left, const ProgramStepRepetition& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
