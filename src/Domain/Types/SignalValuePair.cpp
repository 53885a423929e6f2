#include "Domain/Types/SignalValuePair.h"

#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ToleranceRange.h"

namespace zelmor::domain::types {

namespace {

UnitValue takeOverUnit(const UnitValue& value, Unit::UnitId unit)
{
    if (!value.isValid()) {
        return UnitValue(unit, QVariant());
    }
    if (value.unit == unit) {
        return value;
    }
    if (value.unit == Unit::UNDEFINED) {
        return UnitValue(unit, value.value);
    }
    return UnitValue(unit, value.getValue(unit));
}

} // namespace

SignalValuePair::SignalValuePair()
    : signalId(-1)
{
}

SignalValuePair::SignalValuePair(const ChamberSignal& signal, const QVariant& value,
                                 const QSharedPointer<ToleranceRange>& toleranceRange)
    : SignalValuePair(signal.id, UnitValue(signal.unit, value), UnitValue(), toleranceRange)
{
}

SignalValuePair::SignalValuePair(SignalId signalId, float value, float oldValue, Unit::UnitId unit)
    : SignalValuePair(signalId, UnitValue(unit, value), UnitValue(unit, oldValue))
{
}

SignalValuePair::SignalValuePair(SignalId signalId, bool value)
    : SignalValuePair(signalId, UnitValue(Unit::BOOLEAN, value))
{
}

SignalValuePair::SignalValuePair(SignalId signalId, const UnitValue& value, const UnitValue& oldValue,
                                 const QSharedPointer<ToleranceRange>& toleranceRange)
    : signalId(signalId)
    , value(value)
    , oldValue(oldValue)
    , toleranceRange(toleranceRange)
{
}

bool SignalValuePair::hasValue() const
{
    return value.isValid();
}

QVariant SignalValuePair::getValue(Unit::UnitId unit) const
{
    return value.getValue(unit);
}

float SignalValuePair::getValueInUnit(Unit::UnitId unit) const
{
    return value.getValue(unit).toFloat();
}

float SignalValuePair::getOldValueInUnit(Unit::UnitId unit) const
{
    return oldValue.getValue(unit).toFloat();
}

bool SignalValuePair::hasValidToleranceRange() const
{
    return toleranceRange && toleranceRange->isValid()
           && (toleranceRange->lower.isValid() || toleranceRange->upper.isValid());
}

void SignalValuePair::convertToSignal(const ChamberSignal& signal)
{
    value = takeOverUnit(value, signal.unit);
    oldValue = takeOverUnit(oldValue, signal.unit);
}

bool operator==(const SignalValuePair& left, const SignalValuePair& right)
{
    const bool rangesEqual = left.toleranceRange && right.toleranceRange
                                 ? *left.toleranceRange == *right.toleranceRange
                                 : !left.toleranceRange && !right.toleranceRange;
    return left.signalId == right.signalId && left.value == right.value && left.oldValue == right.oldValue
           && rangesEqual;
}

bool operator!=(const SignalValuePair& left, const SignalValuePair& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
