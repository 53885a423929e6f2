#include "Domain/Types/ToleranceRange.h"

namespace zelmor::domain::types {

ToleranceRange::ToleranceRange()
    : type(INVALID)
{
}

ToleranceRange::ToleranceRange(const UnitValue& lower, const UnitValue& upper)
    : ToleranceRange(lower, upper, RELATIVE)
{
}

ToleranceRange::ToleranceRange(const UnitValue& lower, const UnitValue& upper, Type type)
    : lower(lower)
    , upper(upper)
    , type(type)
{
}

QString ToleranceRange::toString(Type type)
{
    switch (type) {
    case INVALID:
        return QStringLiteral("invalid");
    case ABSOLUTE:
        return QStringLiteral("absolute");
    case RELATIVE:
        return QStringLiteral("relative");
    }
    return QString();
}

bool ToleranceRange::isViolation(Violation violation)
{
    return violation == BELOW_RANGE || violation == ABOVE_RANGE;
}

bool ToleranceRange::isAbsolute() const
{
    return type == ABSOLUTE;
}

bool ToleranceRange::isRelative() const
{
    return type == RELATIVE;
}

bool ToleranceRange::isValid() const
{
    return type != INVALID;
}

void ToleranceRange::convertToUnit(Unit::UnitId unit)
{
    if (lower.unit == unit && upper.unit == unit) {
        return;
    }
    lower = UnitValue(unit, lower.getValue(unit));
    upper = UnitValue(unit, upper.getValue(unit));
}

ToleranceRange::Violation ToleranceRange::computeViolation(const UnitValue& value, const UnitValue& setPoint) const
{
    if (!value.isValid() || !lower.isValid() || !upper.isValid()) {
        return NOT_COMPUTABLE;
    }
    const float v = value.getValue().toFloat();
    const Unit::UnitId unit = value.getUnit();
    float lowest = 0.0f;
    float highest = 0.0f;
    switch (type) {
    case ABSOLUTE:
        lowest = lower.getValue(unit).toFloat();
        highest = upper.getValue(unit).toFloat();
        break;
    case RELATIVE: {
        if (!setPoint.isValid()) {
            return NOT_COMPUTABLE;
        }
        const float s = setPoint.getValue(unit).toFloat();
        lowest = s - lower.getRelativeValue(unit).toFloat();
        highest = s + upper.getRelativeValue(unit).toFloat();
        break;
    }
    default:
        return NOT_COMPUTABLE;
    }
    if (v < lowest) {
        return BELOW_RANGE;
    }
    if (v > highest) {
        return ABOVE_RANGE;
    }
    return NO_VIOLATION;
}

bool operator==(const ToleranceRange& left, const ToleranceRange& right)
{
    return left.type == right.type && left.lower == right.lower && left.upper == right.upper;
}

bool operator!=(const ToleranceRange& left, const ToleranceRange& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
