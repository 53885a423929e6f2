#include "Domain/Types/ChamberSignal.h"

#include "Domain/Types/ControllerAddress.h"

#include <limits>

namespace zelmor::domain::types {

namespace {

constexpr float toleranceFactor = 0.25f;

template<typename T>
bool haveSameContent(const QSharedPointer<T>& left, const QSharedPointer<T>& right)
{
    if (left && right) {
        return *left == *right;
    }
    return !left && !right;
}

} // namespace

ChamberSignal::ChamberSignal()
    : ChamberSignal(-1, QString(), Unit::UNDEFINED, QColor(), 0, NONE, std::numeric_limits<float>::lowest(),
                    std::numeric_limits<float>::max(), -1, NO_SIGNAL_TYPE, {}, false, false, {}, {}, {}, {})
{
}

ChamberSignal::ChamberSignal(SignalId id, const QString& name, Unit::UnitId unit, const QColor& color,
                             int decimalPlaces, UserLevel userLevel, float limitMin, float limitMax, int bitPosition,
                             SignalType signalType, const QSharedPointer<ChamberSignal>& setPointSignal,
                             bool timeProgrammable, bool weekProgrammable,
                             const QSharedPointer<ControllerAddress>& read,
                             const QSharedPointer<ControllerAddress>& writeBasic,
                             const QSharedPointer<ControllerAddress>& writeManual,
                             const QSharedPointer<ControllerAddress>& writeAuto)
    : id(id)
    , name(name)
    , unit(unit)
    , color(color)
    , decimalPlaces(decimalPlaces)
    , userLevel(userLevel)
    , limitMin(limitMin)
    , limitMax(limitMax)
    , bitPosition(bitPosition)
    , signalType(signalType)
    , setPointSignal(setPointSignal)
    , timeProgrammable(timeProgrammable)
    , weekProgrammable(weekProgrammable)
    , read(read)
    , writeBasic(writeBasic)
    , writeManual(writeManual)
    , writeAuto(writeAuto)
{
}

bool ChamberSignal::isReadSignal() const
{
    return !read.isNull();
}

bool ChamberSignal::isWriteSignal() const
{
    return writeBasic || writeManual || writeAuto;
}

bool ChamberSignal::isReadOnlySignal() const
{
    return isReadSignal() && !isWriteSignal();
}

bool ChamberSignal::isSubscribable() const
{
    return userLevel < ADVANCED && !isWriteSignal();
}

float ChamberSignal::getTolarenceOffset() const
{
    return (limitMax - limitMin) * toleranceFactor;
}

float ChamberSignal::getToleranceLimitMax() const
{
    return limitMax + (limitMax - limitMin) * toleranceFactor;
}

float ChamberSignal::getToleranceLimitMin() const
{
    return limitMin - (limitMax - limitMin) * toleranceFactor;
}

bool ChamberSignal::isDigitalSignal() const
{
    if (unit == Unit::BOOLEAN) {
        return true;
    }
    const QSharedPointer<ControllerAddress> addresses[] = {read, writeBasic, writeManual, writeAuto};
    bool anyAddress = false;
    for (const auto& address : addresses) {
        anyAddress = anyAddress || !address.isNull();
    }
    if (!anyAddress) {
        return false;
    }
    // a single bit of a register is a switch, whatever the register's type
    if (bitPosition != -1) {
        return true;
    }
    for (const auto& address : addresses) {
        if (address && address->type != QMetaType::Bool) {
            return false;
        }
    }
    return true;
}

bool ChamberSignal::isAlarmSignal() const
{
    return name == QLatin1String("PV_Collective_Alarm");
}

bool ChamberSignal::operator<(const ChamberSignal& other)
{
    if (setPointSignal && other.setPointSignal) {
        return setPointSignal->id < other.setPointSignal->id;
    }
    if (setPointSignal) {
        return false;
    }
    if (other.setPointSignal) {
        return true;
    }
    return id < other.id;
}

bool ChamberSignal::operator>(const ChamberSignal& other)
{
    if (setPointSignal && other.setPointSignal) {
        return setPointSignal->id > other.setPointSignal->id;
    }
    if (setPointSignal) {
        return true;
    }
    if (other.setPointSignal) {
        return false;
    }
    return id > other.id;
}

bool operator==(const ChamberSignal& left, const ChamberSignal& right)
{
    return left.id == right.id && left.name == right.name && left.unit == right.unit && left.color == right.color
           && left.userLevel == right.userLevel && left.decimalPlaces == right.decimalPlaces
           && left.limitMin == right.limitMin && left.limitMax == right.limitMax
           && left.bitPosition == right.bitPosition && left.signalType == right.signalType
           && haveSameContent(left.setPointSignal, right.setPointSignal)
           && left.timeProgrammable == right.timeProgrammable && left.weekProgrammable == right.weekProgrammable
           && haveSameContent(left.read, right.read) && haveSameContent(left.writeBasic, right.writeBasic)
           && haveSameContent(left.writeManual, right.writeManual) && haveSameContent(left.writeAuto, right.writeAuto);
}

bool operator!=(const ChamberSignal& left, const ChamberSignal& right)
{
    return !(left == right);
}

uint qHash(const ChamberSignal& signal, uint seed)
{
    return uint(signal.id) ^ seed;
}

} // namespace zelmor::domain::types
