#pragma once

#include "Domain/Types/UnitValue.h"

namespace zelmor::domain::types {

// The band around a value inside which a signal counts as good. Absolute bounds
// are the band's edges; relative bounds are distances below and above a set point.
class ToleranceRange
{
public:
    enum Type : int { INVALID = 0, ABSOLUTE = 1, RELATIVE = 2 };

    enum Violation : int { NO_VIOLATION = 0, NOT_COMPUTABLE = 1, BELOW_RANGE = 2, ABOVE_RANGE = 3 };

    // INVALID, with two default bounds.
    ToleranceRange();
    // A relative range.
    ToleranceRange(const UnitValue& lower, const UnitValue& upper);
    ToleranceRange(const UnitValue& lower, const UnitValue& upper, Type type);

    static QString toString(Type type);
    static bool isViolation(Violation violation);

    bool isAbsolute() const;
    bool isRelative() const;
    bool isValid() const;

    // Both bounds become floats in the given unit, unless both are in it already.
    void convertToUnit(Unit::UnitId unit);

    // The value on a bound doesn't violate it; a comparison with NaN never does.
    // A relative range needs a valid set point.
    Violation computeViolation(const UnitValue& value, const UnitValue& setPoint = UnitValue()) const;

    UnitValue lower;
    UnitValue upper;
    Type type;
};

bool operator==(const ToleranceRange& left, const ToleranceRange& right);
bool operator!=(const ToleranceRange& left, const ToleranceRange& right);

} // namespace zelmor::domain::types
