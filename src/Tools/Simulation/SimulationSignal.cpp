#include "Tools/Simulation/SimulationSignal.h"

#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ControllerAddress.h"
#include "Tools/Simulation/SimulationValueBool.h"
#include "Tools/Simulation/SimulationValueDuplicator.h"
#include "Tools/Simulation/SimulationValueFloat.h"
#include "Tools/Simulation/SimulationValueInt.h"
#include "Tools/Simulation/SimulationValueUChar.h"
#include "Tools/Simulation/SimulationValueUInt.h"
#include "Tools/Simulation/SimulationValueUShort.h"
#include "Tools/Simulation/SimulationValueWriter.h"

#include <QMap>
#include <QMetaType>

namespace zelmor::simulation {

using domain::types::ChamberSignal;
using domain::types::ControllerAddress;
using domain::types::Unit;

namespace {

constexpr float unknownUnitDefault = 42.42f;
constexpr unsigned char unsignedCharStart = 42;

float lookUp(const QMap<Unit::UnitId, float>& table, Unit::UnitId unit)
{
    return table.value(unit, unknownUnitDefault);
}

// The three temperatures are one room temperature in three units.
float valueDefault(Unit::UnitId unit)
{
    static const QMap<Unit::UnitId, float> table{
        {Unit::CELSIUS, 23.3f},
        {Unit::FAHRENHEIT, 90.7f},
        {Unit::KELVIN, 296.6f},
        {Unit::RELATIVE_HUMIDITY_RF, 22.0f},
        {Unit::RELATIVE_HUMIDITY_RH, 22.0f},
        {Unit::PERCENT, 50.0f},
        {Unit::VOLUME_PERCENT, 10.0f},
        {Unit::HECTOPASCAL, 22.0f},
        {Unit::MILLIBAR, 22.0f},
        {Unit::KILOLUX, 50.0f},
        {Unit::MEGALUX_HOURS, 22.0f},
        {Unit::WATT_PER_SQUARE_METRE, 22.0f},
        {Unit::WATT_HOURS_PER_SQUARE_METRE, 22.0f},
        {Unit::BOOLEAN, 1.0f},
        {Unit::VOLT, 23.5f},
    };
    return lookUp(table, unit);
}

QSharedPointer<SimulationReader> makeValue(int type, float start, float timeConstant, int setAddress,
                                           int currentAddress)
{
    switch (type) {
    case QMetaType::Bool:
        return QSharedPointer<SimulationValueBool>::create(false, false, timeConstant, setAddress, currentAddress);
    case QMetaType::Int: {
        const int value = lagarithmetic::truncateToInt(start);
        return QSharedPointer<SimulationValueInt>::create(value, value, timeConstant, setAddress, currentAddress);
    }
    case QMetaType::UInt: {
        const unsigned int value = lagarithmetic::fromFloat<unsigned int>(start);
        return QSharedPointer<SimulationValueUInt>::create(value, value, timeConstant, setAddress, currentAddress);
    }
    case QMetaType::Short: // a short signal gets the unsigned class, as it always has
    case QMetaType::UShort: {
        const unsigned short value = lagarithmetic::fromFloat<unsigned short>(start);
        const float lag = type == QMetaType::UShort ? 0.0f : timeConstant;
        return QSharedPointer<SimulationValueUShort>::create(value, value, lag, setAddress, currentAddress);
    }
    case QMetaType::UChar:
        return QSharedPointer<SimulationValueUChar>::create(unsignedCharStart, unsignedCharStart, timeConstant,
                                                            setAddress, currentAddress);
    case QMetaType::Float:
        return QSharedPointer<SimulationValueFloat>::create(start, start, timeConstant, setAddress, currentAddress);
    default:
        return QSharedPointer<SimulationReader>();
    }
}

} // namespace

SimulationSignal::SimulationSignal(const ChamberSignal& signal)
{
    QList<int> writeAddresses;
    QList<int> foreignReadAddresses;

    int readAddress = SimulationValue::noAddress_;
    int type = QMetaType::Float;
    if (signal.read) {
        signalNames.append(signal.name);
        // A read address that doesn't convert counts as 0.
        readAddress = signal.read->address.toInt(nullptr, 16);
        type = signal.read->type;
        addressDescription = signal.read->description;
        checkAddress(signal.writeAuto, writeAddresses);
        checkAddress(signal.writeBasic, writeAddresses);
        checkAddress(signal.writeManual, writeAddresses);
    }

    if (signal.setPointSignal) {
        const ChamberSignal& setPoint = *signal.setPointSignal;
        signalNames.append(setPoint.name);
        checkAddress(setPoint.writeAuto, writeAddresses);
        checkAddress(setPoint.writeBasic, writeAddresses);
        checkAddress(setPoint.writeManual, writeAddresses);
        checkAddress(setPoint.read, foreignReadAddresses);
    }

    const int firstWriteAddress = writeAddresses.isEmpty() ? SimulationValue::noAddress_ : writeAddresses.first();

    // Current and set start equal, so a fresh chamber reads steady values.
    const float start = SimulationSignal::getCurrentDefault(signal.unit);
    const QSharedPointer<SimulationReader> value =
        makeValue(type, start, SimulationSignal::getTimeConstantDefault(signal.unit), firstWriteAddress, readAddress);
    // A type nobody simulates leaves a null child; the device passes over it.
    add(value);

    for (int i = 1; i < writeAddresses.size(); ++i) {
        add(QSharedPointer<SimulationValueDuplicator>::create(value, writeAddresses.at(i), firstWriteAddress));
        add(QSharedPointer<SimulationValueWriter>::create(value, writeAddresses.at(i), firstWriteAddress));
    }
    for (int foreignReadAddress : qAsConst(foreignReadAddresses))
        add(QSharedPointer<SimulationValueDuplicator>::create(value, foreignReadAddress, firstWriteAddress));
}

QList<QString> SimulationSignal::getSignalNames() const
{
    return signalNames;
}

QString SimulationSignal::getAddressDescription() const
{
    return addressDescription;
}

float SimulationSignal::getSetDefault(Unit::UnitId unit) const
{
    return valueDefault(unit);
}

float SimulationSignal::getCurrentDefault(Unit::UnitId unit) const
{
    return valueDefault(unit);
}

float SimulationSignal::getTimeConstantDefault(Unit::UnitId unit) const
{
    static const QMap<Unit::UnitId, float> table{
        {Unit::CELSIUS, 360.3f},
        {Unit::FAHRENHEIT, 360.7f},
        {Unit::KELVIN, 360.6f},
        {Unit::RELATIVE_HUMIDITY_RF, 160.0f},
        {Unit::RELATIVE_HUMIDITY_RH, 140.0f},
        {Unit::PERCENT, 180.0f},
        {Unit::VOLUME_PERCENT, 200.0f},
        {Unit::HECTOPASCAL, 120.0f},
        {Unit::MILLIBAR, 60.0f},
        {Unit::KILOLUX, 20.0f},
        {Unit::MEGALUX_HOURS, 280.0f},
        {Unit::WATT_PER_SQUARE_METRE, 222.0f},
        {Unit::WATT_HOURS_PER_SQUARE_METRE, 150.0f},
        {Unit::BOOLEAN, 60.0f},
        {Unit::VOLT, 23.5f},
    };
    return lookUp(table, unit);
}

void SimulationSignal::checkAddress(QSharedPointer<ControllerAddress> address, QList<int>& addresses)
{
    if (!address)
        return;
    bool ok = false;
    const int number = address->address.toInt(&ok, 16);
    if (!ok || addresses.contains(number))
        return;
    addresses.append(number);
}

} // namespace zelmor::simulation
