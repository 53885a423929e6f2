#pragma once

namespace zelmor::domain::types {

// Row id of table "program_step"; 0 means a step not stored yet.
class ProgramStepId
{
public:
    ProgramStepId(int id = 0);
    ProgramStepId(const ProgramStepId& other) = default;
    ProgramStepId& operator=(const ProgramStepId& other) = default;
    ProgramStepId& operator=(int id);

    bool operator==(const ProgramStepId& other) const;
    bool operator!=(const ProgramStepId& other) const;
    // Spelled out so that comparing with a plain number isn't ambiguous.
    bool operator==(int other) const;
    bool operator!=(int other) const;

    operator int() const;

    int id;
};

} // namespace zelmor::domain::types
