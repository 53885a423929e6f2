#include "Domain/Types/ProgramSectionEvent.h"

namespace zelmor::domain::types {

ProgramSectionEvent::ProgramSectionEvent() = default;

ProgramSectionEvent::ProgramSectionEvent(const QString& message)
    : message(message)
{
}

bool ProgramSectionEvent::isValid() const
{
    return !message.isEmpty();
}

bool operator==(const ProgramSectionEvent& left, const ProgramSectionEvent& right)
{
    return left.message == right.message;
}

bool operator!=(const ProgramSectionEvent& left, const ProgramSectionEvent& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
