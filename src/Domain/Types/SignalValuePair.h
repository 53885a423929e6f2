#pragma once

#include "Domain/Types/SignalId.h"
#include "Domain/Types/Unit.h"
#include "Domain/Types/UnitValue.h"

#include <QMetaType>
#include <QSharedPointer>
#include <QVariant>

namespace zelmor::domain::types {

class ChamberSignal;
class ToleranceRange;

// The value of one signal at one moment (a recordset column) or as a set point
// of a program section, with the value it had before and the band it is judged by.
class SignalValuePair
{
public:
    // Signal -1, no values, no range.
    SignalValuePair();
    // The value is in the signal's unit.
    SignalValuePair(const ChamberSignal& signal, const QVariant& value,
                    const QSharedPointer<ToleranceRange>& toleranceRange = QSharedPointer<ToleranceRange>());
    SignalValuePair(SignalId signalId, float value, float oldValue, Unit::UnitId unit);
    // A switch: the value in the boolean unit.
    SignalValuePair(SignalId signalId, bool value);
    SignalValuePair(SignalId signalId, const UnitValue& value, const UnitValue& oldValue = UnitValue(),
                    const QSharedPointer<ToleranceRange>& toleranceRange = QSharedPointer<ToleranceRange>());

    bool hasValue() const;
    // As float QVariants in the given unit; invalid without a value.
    QVariant getValue(Unit::UnitId unit) const;
    float getValueInUnit(Unit::UnitId unit) const;
    float getOldValueInUnit(Unit::UnitId unit) const;
    // A range is present, is not INVALID, and has at least one valid bound.
    bool hasValidToleranceRange() const;
    // Brings value and old value into the signal's unit. A value without a unit
    // (UNDEFINED) is taken as being in the signal's unit already; a value in that
    // unit stays as it is, a bool included. The tolerance range is left alone.
    void convertToSignal(const ChamberSignal& signal);

    SignalId signalId;
    UnitValue value;
    UnitValue oldValue;
    // Shared: copies of a pair see one range. Null when there is none.
    QSharedPointer<ToleranceRange> toleranceRange;
};

// Ranges compare by content; two null ranges are equal.
bool operator==(const SignalValuePair& left, const SignalValuePair& right);
bool operator!=(const SignalValuePair& left, const SignalValuePair& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::SignalValuePair)
