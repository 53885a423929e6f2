#include "Domain/Types/DefaultToleranceRange.h"

namespace zelmor::domain::types {

DefaultToleranceRange::DefaultToleranceRange()
    : DefaultToleranceRange(QString(), -1, -1, ToleranceRange(), -1, -1)
{
}

DefaultToleranceRange::DefaultToleranceRange(const QString& name, SignalId setPointSignal, SignalId processValueSignal,
                                             const ToleranceRange& range, int delay1, int delay2)
    : name(name)
    , setPointSignal(setPointSignal)
    , processValueSignal(processValueSignal)
    , range(range)
    , delay1(delay1)
    , delay2(delay2)
{
}

bool operator==(const DefaultToleranceRange& left, const DefaultToleranceRange& right)
{
    return left.name == right.name && left.setPointSignal == right.setPointSignal
           && left.processValueSignal == right.processValueSignal && left.range == right.range
           && left.delay1 == right.delay1 && left.delay2 == right.delay2;
}

bool operator!=(const DefaultToleranceRange& left, const DefaultToleranceRange& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
