#pragma once

namespace zelmor::domain::types {

// Row id of table "program_section"; 0 means a section not stored yet.
class ProgramSectionId
{
public:
    ProgramSectionId(int id = 0);
    ProgramSectionId(const ProgramSectionId& other) = default;
    ProgramSectionId& operator=(const ProgramSectionId& other) = default;
    ProgramSectionId& operator=(int id);

    bool operator==(const ProgramSectionId& other) const;
    bool operator!=(const ProgramSectionId& other) const;
    // Spelled out so that comparing with a plain number isn't ambiguous.
    bool operator==(int other) const;
    bool operator!=(int other) const;

    operator int() const;

    int id;
};

} // namespace zelmor::domain::types
