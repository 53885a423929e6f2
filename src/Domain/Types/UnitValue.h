#pragma once

#include "Domain/Types/Unit.h"

#include <QVariant>

namespace zelmor::domain::types {

// A number together with its unit.
class UnitValue
{
public:
    // UNDEFINED unit, invalid value.
    UnitValue();
    UnitValue(Unit::UnitId unit, const QVariant& value);
    // The unit from its catalogue text (Unit::toUnitId).
    UnitValue(const QString& unitText, const QVariant& value);

    QVariant getValue() const;
    // Float in the given unit; invalid when the stored value is invalid.
    QVariant getValue(Unit::UnitId unit) const;
    // Like getValue(unit), but for a difference: offsets between units don't shift it.
    QVariant getRelativeValue(Unit::UnitId unit) const;
    Unit::UnitId getUnit() const;
    bool isValid() const;

    Unit::UnitId unit;
    QVariant value;
};

bool operator==(const UnitValue& left, const UnitValue& right);
bool operator!=(const UnitValue& left, const UnitValue& right);
// Order the stored values alone; callers bring both sides to one unit first.
bool operator<(const UnitValue& left, const UnitValue& right);
bool operator>(const UnitValue& left, const UnitValue& right);

} // namespace zelmor::domain::types
