#include "Tools/Simulation/ModbusChamberSimulation.h"

#include "Tools/Simulation/SimulationReader.h"

#include <QModbusRtuSerialSlave>
#include <QSerialPort>
#include <QSignalBlocker>
#include <QStringList>

#include <cstring>

namespace zelmor::simulation {

namespace {

constexpr quint32 wordMask = 0xffff;
constexpr int wordBits = 16;

quint16 lowWordOf(float value)
{
    quint32 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return static_cast<quint16>(bits & wordMask);
}

} // namespace

ModbusChamberSimulation::ModbusChamberSimulation(QSharedPointer<domain::types::ChamberTypeData> chamberType,
                                                 const QString& connection)
    : ChamberSimulation(std::move(chamberType))
    // No parent: the chamber owns it and deletes it with itself.
    , device(new QModbusRtuSerialSlave)
    , timer(0)
{
    const QStringList parts = connection.split(QLatin1Char(':'));
    device->setConnectionParameter(QModbusDevice::SerialPortNameParameter, parts.value(0));
    device->setConnectionParameter(QModbusDevice::SerialParityParameter, QSerialPort::NoParity);
    device->setConnectionParameter(QModbusDevice::SerialBaudRateParameter, baudRate_);
    device->setConnectionParameter(QModbusDevice::SerialDataBitsParameter, QSerialPort::Data8);
    device->setConnectionParameter(QModbusDevice::SerialStopBitsParameter, QSerialPort::OneStop);
    device->setServerAddress(parts.value(1).toInt());

    timer = startTimer(copyIntervalMs_, Qt::CoarseTimer);

    QModbusDataUnitMap map;
    for (QModbusDataUnit::RegisterType table : {QModbusDataUnit::Coils, QModbusDataUnit::DiscreteInputs,
                                                QModbusDataUnit::InputRegisters, QModbusDataUnit::HoldingRegisters})
        map.insert(table, QModbusDataUnit(table, 0, tableSize_));
    device->setMap(map);
    for (quint16 address = 0; address < tableSize_; ++address) {
        device->setData(QModbusDataUnit::HoldingRegisters, address, 0);
        device->setData(QModbusDataUnit::InputRegisters, address, 0);
    }
    connect(device, &QModbusServer::dataWritten, this, &ModbusChamberSimulation::dataWritten);
}

ModbusChamberSimulation::~ModbusChamberSimulation()
{
    killTimer(timer);
    delete device;
}

bool ModbusChamberSimulation::start()
{
    device->connectDevice();
    return true;
}

bool ModbusChamberSimulation::setOnline(bool online)
{
    if (online == this->online)
        return true;
    if (!online) {
        openAgain = device->state() == QModbusDevice::ConnectedState;
        device->disconnectDevice();
    } else if (openAgain && !device->connectDevice()) {
        return false;
    }
    this->online = online;
    return true;
}

int ModbusChamberSimulation::getProtocolId() const
{
    return protocolId_;
}

QString ModbusChamberSimulation::getSerialPortName() const
{
    return device->connectionParameter(QModbusDevice::SerialPortNameParameter).toString();
}

int ModbusChamberSimulation::getServerAddress() const
{
    return device->serverAddress();
}

void ModbusChamberSimulation::timerEvent(QTimerEvent*)
{
    if (!simulationReader)
        return;
    // Qt signals dataWritten for every change of a table, ours too; only a
    // client's write is to go back to the reader.
    const QSignalBlocker copying(device);
    int address = 0;
    while (address < tableSize_) {
        const QVariant value = simulationReader->read(address);
        const auto at = static_cast<quint16>(address);
        switch (static_cast<int>(value.type())) {
        case QMetaType::Int:
        case QMetaType::Float: {
            // Both registers of a 32-bit value get its low word; the serial
            // clients of these chambers expect it so. At register 31 the
            // second falls outside the table and is dropped.
            const quint16 word = value.type() == QVariant::Int ? static_cast<quint16>(value.toInt() & wordMask)
                                                               : lowWordOf(value.toFloat());
            device->setData(QModbusDataUnit::InputRegisters, at, word);
            device->setData(QModbusDataUnit::InputRegisters, static_cast<quint16>(address + 1), word);
            address += 2;
            break;
        }
        case QMetaType::Bool:
            device->setData(QModbusDataUnit::InputRegisters, at, value.toBool() ? 1 : 0);
            ++address;
            break;
        default:
            ++address;
            break;
        }
    }
}

void ModbusChamberSimulation::dataWritten(QModbusDataUnit::RegisterType table, int address, int)
{
    if (!simulationReader)
        return;
    const QVariant value = simulationReader->read(address);
    const auto at = static_cast<quint16>(address);
    switch (static_cast<int>(value.type())) {
    case QMetaType::Int:
    case QMetaType::Float: {
        quint16 low = 0;
        quint16 high = 0;
        device->data(table, at, &low);
        device->data(table, static_cast<quint16>(address + 1), &high);
        if (value.type() == QVariant::Int)
            simulationReader->write(address, QVariant(static_cast<int>(quint32(low) | (quint32(high) << wordBits))));
        else
            // The words are fetched but no float is built from them: this
            // path can't set a float.
            simulationReader->write(address, QVariant(0.0f));
        break;
    }
    case QMetaType::Bool: {
        quint16 word = 0;
        device->data(table, at, &word);
        simulationReader->write(address, QVariant(word != 0));
        break;
    }
    default:
        break;
    }
}

} // namespace zelmor::simulation
