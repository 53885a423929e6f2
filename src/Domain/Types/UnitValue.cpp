#include "Domain/Types/UnitValue.h"

namespace zelmor::domain::types {

UnitValue::UnitValue()
    : unit(Unit::UNDEFINED)
{
}

UnitValue::UnitValue(Unit::UnitId unit, const QVariant& value)
    : unit(unit)
    , value(value)
{
}

UnitValue::UnitValue(const QString& unitText, const QVariant& value)
    : unit(Unit::toUnitId(unitText))
    , value(value)
{
}

QVariant UnitValue::getValue() const
{
    return value;
}

QVariant UnitValue::getValue(Unit::UnitId targetUnit) const
{
    if (!isValid()) {
        return QVariant();
    }
    return QVariant(Unit::convert(unit, targetUnit, value.toFloat()));
}

QVariant UnitValue::getRelativeValue(Unit::UnitId targetUnit) const
{
    if (!isValid()) {
        return QVariant();
    }
    const float converted = Unit::convert(unit, targetUnit, value.toFloat());
    const float offset = Unit::convert(unit, targetUnit, 0.0f);
    return QVariant(converted - offset);
}

Unit::UnitId UnitValue::getUnit() const
{
    return unit;
}

bool UnitValue::isValid() const
{
    return value.isValid();
}

bool operator==(const UnitValue& left, const UnitValue& right)
{
    return left.unit == right.unit && left.value == right.value;
}

bool operator!=(const UnitValue& left, const UnitValue& right)
{
    return !(left == right);
}

// QVariant's ordering is deprecated in this Qt version, but it is the comparison
// the stored values are meant to be ordered by.
QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

bool operator<(const UnitValue& left, const UnitValue& right)
{
    return left.value < right.value;
}

bool operator>(const UnitValue& left, const UnitValue& right)
{
    return left.value > right.value;
}

QT_WARNING_POP

} // namespace zelmor::domain::types
