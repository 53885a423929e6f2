#pragma once

#include "Domain/Types/SignalId.h"
#include "Domain/Types/ToleranceRange.h"

#include <QString>

namespace zelmor::domain::types {

// A named tolerance band that the catalogue suggests for a chamber type: the set
// point, the process value it watches, the band, and the two alarm delays.
class DefaultToleranceRange
{
public:
    // What the catalogue gives when it has no band: empty name, no signals, an
    // invalid range, no delays.
    DefaultToleranceRange();
    DefaultToleranceRange(const QString& name, SignalId setPointSignal, SignalId processValueSignal,
                          const ToleranceRange& range, int delay1, int delay2);

    QString name;
    SignalId setPointSignal;
    SignalId processValueSignal;
    ToleranceRange range;
    int delay1; // -1 when none
    int delay2; // -1 when none
};

bool operator==(const DefaultToleranceRange& left, const DefaultToleranceRange& right);
bool operator!=(const DefaultToleranceRange& left, const DefaultToleranceRange& right);

} // namespace zelmor::domain::types
