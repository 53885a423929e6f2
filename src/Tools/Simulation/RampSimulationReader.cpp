#include "Tools/Simulation/RampSimulationReader.h"

#include "Tools/Simulation/ConsoleOutput.h"

#include "Domain/Types/ChamberTypeData.h"
#include "Domain/Types/ControllerAddress.h"

#include <QTextStream>

namespace zelmor::simulation {

namespace {

constexpr int rampBottom = 20;
constexpr int rampTop = 100; // a value above it falls back; 101 is still seen
constexpr float unknownStart = 32.5f;

QVariant firstValue(QMetaType::Type type)
{
    switch (type) {
    case QMetaType::Bool:
        return QVariant(false);
    case QMetaType::Int:
        return QVariant(rampBottom);
    case QMetaType::Float:
        return QVariant(static_cast<float>(rampBottom));
    default:
        return QVariant(unknownStart);
    }
}

// An unsigned short address first reads 32.5 (no row in firstValue) and then
// climbs from the truncated 32; that asymmetry is how this reader behaves.
QVariant nextValue(QMetaType::Type type, const QVariant& stored)
{
    switch (type) {
    case QMetaType::Bool:
        return QVariant(!stored.toBool());
    case QMetaType::Int:
        return stored.toInt() > rampTop ? QVariant(rampBottom) : QVariant(stored.toInt() + 1);
    case QMetaType::UShort: {
        // Truncated, not rounded as QVariant::toUInt would: 32.5 steps to 33.
        const auto number = static_cast<unsigned int>(static_cast<qint64>(stored.toDouble()));
        if (number > static_cast<unsigned int>(rampTop))
            return QVariant(rampBottom);
        return QVariant(static_cast<int>(static_cast<unsigned short>(number)) + 1);
    }
    case QMetaType::Float:
        if (stored.toFloat() > static_cast<float>(rampTop))
            return QVariant(static_cast<float>(rampBottom));
        return QVariant(stored.toFloat() + 1.0f);
    default:
        return stored;
    }
}

void addType(QMap<int, QMetaType::Type>& types, const QSharedPointer<domain::types::ControllerAddress>& address)
{
    if (address)
        types.insert(address->address.toInt(nullptr, 16), address->type);
}

} // namespace

RampSimulationReader::RampSimulationReader(QSharedPointer<domain::types::ChamberTypeData> chamberType)
{
    if (chamberType)
        types = getAddressTypes(*chamberType);
}

QMap<int, QMetaType::Type> RampSimulationReader::getAddressTypes(const domain::types::ChamberTypeData& chamberType)
{
    QMap<int, QMetaType::Type> types;
    for (const auto& signal : chamberType.chamberSignals) {
        addType(types, signal.read);
        addType(types, signal.writeManual);
    }
    return types;
}

QVariant RampSimulationReader::read(int address)
{
    consoleOutput() << "Read Address: " << address << consoleEndLine;

    // operator[] on purpose: an unknown address is remembered with type 0.
    QMetaType::Type const type = types[address];
    const auto stored = values.constFind(address);
    const QVariant value = stored == values.constEnd() ? firstValue(type) : nextValue(type, *stored);
    values.insert(address, value);
    return value;
}

bool RampSimulationReader::write(int address, QVariant value)
{
    Q_UNUSED(address)
    Q_UNUSED(value)
    return true;
}

} // namespace zelmor::simulation
