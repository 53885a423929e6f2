#pragma once

#include "Domain/Types/ProgramId.h"
#include "Domain/Types/ProgramStepId.h"
#include "Domain/Types/ProgramStepRepetitionId.h"

#include <QMetaType>

namespace zelmor::domain::types {

// A run of steps of one program, from a start step to an end step, done again a
// number of times.
class ProgramStepRepetition
{
public:
    // All ids 0 (not stored yet), no repetitions.
    ProgramStepRepetition();
    ProgramStepRepetition(const ProgramStepRepetitionId& id, const ProgramId& programId,
                          const ProgramStepId& startStepId, const ProgramStepId& endStepId, int repetitions);

    ProgramStepRepetitionId id;
    ProgramId programId;
    ProgramStepId startStepId;
    ProgramStepId endStepId;
    int repetitions;
};

bool operator==(const ProgramStepRepetition& left, const ProgramStepRepetition& right);
bool operator!=(const ProgramStepRepetition& left, const ProgramStepRepetition& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::ProgramStepRepetition)
