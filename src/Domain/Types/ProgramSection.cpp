#include "Domain/Types/ProgramSection.h"

#include <algorithm>

namespace zelmor::domain::types {

ProgramSection::ProgramSection()
    : ProgramSection(0, {}, 0, INVALID, false, ProgramSectionEvent())
{
}

ProgramSection::ProgramSection(const ProgramSectionId& id, const QList<SignalValuePair>& setpoints,
                               int durationInSeconds, TransitionType transitionType, bool breakpoint,
                               const ProgramSectionEvent& event)
    : id(id)
    , setpoints(setpoints)
    , durationInSeconds(durationInSeconds)
    , transitionType(transitionType)
    , breakpoint(breakpoint)
    , event(event)
{
}

bool ProgramSection::hasToleranceRange() const
{
    return std::any_of(setpoints.cbegin(), setpoints.cend(),
                       [](const SignalValuePair& setpoint) { return setpoint.hasValidToleranceRange(); });
}

bool operator==(const ProgramSection& left, const ProgramSection& right)
{
    return left.id == right.id && left.setpoints == right.setpoints && left.durationInSeconds == right.durationInSeconds
           && left.transitionType == right.transitionType && left.breakpoint == right.breakpoint
           && left.event == right.event;
}

bool operator!=(const ProgramSection& left, const ProgramSection& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
