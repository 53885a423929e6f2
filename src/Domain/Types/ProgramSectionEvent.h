#pragma once

#include <QString>

namespace zelmor::domain::types {

// What a program announces when it reaches a section: the section's
// "program_event_message". An empty message is no event.
class ProgramSectionEvent
{
public:
    ProgramSectionEvent();
    explicit ProgramSectionEvent(const QString& message);

    bool isValid() const;

    QString message;
};

bool operator==(const ProgramSectionEvent& left, const ProgramSectionEvent& right);
bool operator!=(const ProgramSectionEvent& left, const ProgramSectionEvent& right);

} // namespace zelmor::domain::types
