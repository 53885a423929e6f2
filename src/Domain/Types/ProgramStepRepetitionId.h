#pragma once

namespace zelmor::domain::types {

// Row id of table "program_step_repetition"; 0 means a repetition not stored yet.
class ProgramStepRepetitionId
{
public:
    ProgramStepRepetitionId(int id = 0);
    ProgramStepRepetitionId(const ProgramStepRepetitionId& other) = default;
    ProgramStepRepetitionId& operator=(const ProgramStepRepetitionId& other) = default;
    ProgramStepRepetitionId& operator=(int id);

    bool operator==(const ProgramStepRepetitionId& other) const;
    bool operator!=(const ProgramStepRepetitionId& other) const;
    // Spelled out so that comparing with a plain number isn't ambiguous.
    bool operator==(int other) const;
    bool operator!=(int other) const;

    operator int() const;

    int id;
};

} // namespace zelmor::domain::types
