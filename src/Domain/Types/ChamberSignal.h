#pragma once

#include "Domain/Types/SignalId.h"
#include "Domain/Types/Unit.h"
#include "Domain/Types/UserLevel.h"

#include <QColor>
#include <QSharedPointer>
#include <QString>

namespace zelmor::domain::types {

class ControllerAddress;

// One signal of a chamber type.
class ChamberSignal
{
public:
    enum SignalType : int {
        PROCESS_VALUE = 0,
        SET_POINT = 1,
        SET_POINT_PROCESS_VALUE = 2, // set point and process value in one
        NO_SIGNAL_TYPE = 3
    };

    // The empty signal: what the catalogue gives for a row it can't read. Id -1,
    // unit UNDEFINED, invalid colour, the widest finite limits, no links, no addresses.
    ChamberSignal();
    ChamberSignal(SignalId id, const QString& name, Unit::UnitId unit, const QColor& color, int decimalPlaces,
                  UserLevel userLevel, float limitMin, float limitMax, int bitPosition, SignalType signalType,
                  const QSharedPointer<ChamberSignal>& setPointSignal, bool timeProgrammable, bool weekProgrammable,
                  const QSharedPointer<ControllerAddress>& read, const QSharedPointer<ControllerAddress>& writeBasic,
                  const QSharedPointer<ControllerAddress>& writeManual,
                  const QSharedPointer<ControllerAddress>& writeAuto);

    bool isReadSignal() const;
    bool isWriteSignal() const;
    bool isReadOnlySignal() const;
    // Decided by the user level and the write addresses; the read address isn't looked at.
    bool isSubscribable() const;
    float getTolarenceOffset() const;
    float getToleranceLimitMax() const;
    float getToleranceLimitMin() const;
    bool isDigitalSignal() const;
    bool isAlarmSignal() const;

    // Process values sort next to their set points: linked signals compare by the
    // ids of their set point signals, unlinked ones by their own ids and before
    // any linked one. The left side is taken non-constant.
    bool operator<(const ChamberSignal& other);
    bool operator>(const ChamberSignal& other);

    SignalId id;
    QString name;
    Unit::UnitId unit;
    QColor color;
    int decimalPlaces;
    UserLevel userLevel;
    float limitMin;
    float limitMax;
    int bitPosition; // -1 for a whole-register signal
    SignalType signalType;
    QSharedPointer<ChamberSignal> setPointSignal;
    bool timeProgrammable;
    bool weekProgrammable;
    QSharedPointer<ControllerAddress> read;
    QSharedPointer<ControllerAddress> writeBasic;
    QSharedPointer<ControllerAddress> writeManual;
    QSharedPointer<ControllerAddress> writeAuto;
};

// Links and addresses compare by content, deeply; a NaN limit makes signals unequal.
bool operator==(const ChamberSignal& left, const ChamberSignal& right);
bool operator!=(const ChamberSignal& left, const ChamberSignal& right);

uint qHash(const ChamberSignal& signal, uint seed = 0);

} // namespace zelmor::domain::types
