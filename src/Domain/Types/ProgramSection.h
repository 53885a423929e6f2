#pragma once

#include "Domain/Types/ProgramSectionEvent.h"
#include "Domain/Types/ProgramSectionId.h"
#include "Domain/Types/SignalValuePair.h"

#include <QList>
#include <QMetaType>

namespace zelmor::domain::types {

// One stretch of a time program: how long it lasts, how the set points are
// reached, and the set point of each signal.
class ProgramSection
{
public:
    enum TransitionType : int { INVALID = -1, RAMP = 0, JUMP = 1 };

    // Id 0 (not stored yet), no set points, duration 0, INVALID transition.
    ProgramSection();
    ProgramSection(const ProgramSectionId& id, const QList<SignalValuePair>& setpoints, int durationInSeconds,
                   TransitionType transitionType, bool breakpoint, const ProgramSectionEvent& event);

    // Any set point has a valid tolerance range.
    bool hasToleranceRange() const;

    ProgramSectionId id;
    QList<SignalValuePair> setpoints;
    int durationInSeconds;
    TransitionType transitionType;
    bool breakpoint; // the program halts here
    ProgramSectionEvent event;
};

bool operator==(const ProgramSection& left, const ProgramSection& right);
bool operator!=(const ProgramSection& left, const ProgramSection& right);

} // namespace zelmor::domain::types

// The payload of a section step travels in a QVariant.
Q_DECLARE_METATYPE(zelmor::domain::types::ProgramSection)
