#include "Tools/Simulation/ModbusRtuOverTcpChamberSimulation.h"

#include "Domain/Types/ChamberTypeData.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/ModbusOverTcpServer.h"
#include "Tools/Simulation/ModbusOverTcpServerFactory.h"
#include "Tools/Simulation/ModbusRtuConversion.h"
#include "Tools/Simulation/SimulationReader.h"

#include <QElapsedTimer>
#include <QMap>
#include <QPointer>
#include <QTcpSocket>
#include <QTextStream>
#include <QTimer>
#include <QVariantList>

namespace zelmor::simulation {

namespace {

// Positions in a request frame.
constexpr int slaveAt = 0;
constexpr int functionAt = 1;
constexpr int registerAt = 2;
constexpr int quantityLowAt = 5;
constexpr int singleValueAt = 4;
constexpr int byteCountAt = 6;
constexpr int firstValueAt = 7;
// Slave, function and byte count in front of a read reply's data.
constexpr int readHeaderSize = 3;
constexpr int writeReplyHeaderSize = 6;

// Function codes.
constexpr int readHoldingRegistersFunction = 3;
constexpr int readInputRegistersFunction = 4;
constexpr int writeSingleRegisterFunction = 6;
constexpr int writeMultipleRegistersFunction = 16;
constexpr char exceptionFlag = char(0x80);
constexpr char serverDeviceFailure = 0x04;

// Registers of the data logger.
constexpr int loggerMinutesRegister = 0x1310;
constexpr int loggerMinutesSecondRegister = 0x1312;
constexpr int loggerRecordsRegister = 0x6500;
constexpr int loggerIndexRegister = 0x1308;
constexpr int loggerCountRegister = 0x130A;
constexpr int loggerRecordSize = 23; // as the automatic count reckons; a record has 27 bytes
constexpr int loggerRecordStepSeconds = 60;
constexpr int loggerRecordFloats = 4;
constexpr float loggerRecordFloat = 22.2f;
constexpr int loggerRecordChars = 3;

int byteAt(const QByteArray& data, int index)
{
    return quint8(data.at(index));
}

// Missing bytes count as 0.
quint32 bigEndianAt(const QByteArray& data, int index, int size)
{
    quint32 value = 0;
    for (int i = index; i < index + size; ++i)
        value = value << 8 | (i < data.size() ? quint32(quint8(data.at(i))) : 0u);
    return value;
}

// Function code with its high bit set, code 4 (server device failure).
QByteArray exceptionReply(const QByteArray& request)
{
    QByteArray reply = request.left(1);
    reply.append(char(byteAt(request, functionAt) | exceptionFlag));
    reply.append(serverDeviceFailure);
    return reply + ModbusOverTcpServer::calcCrc(reply);
}

// What a register that the reader doesn't know answers. Built at first need
// and never changed.
const QMap<int, QVariant>& valueReplacements()
{
    static const QMap<int, QVariant> valueReplacements = {
        {0x0, QVariant(int(1))},
        {0x1087, QVariant(uint(4294967295u))},
        {0x1089, QVariant(uint(4294967295u))},
        {0x10A8, QVariant(uint(0))},
        {0x10A6, QVariant(uint(0))},
        {0x10B6, QVariant(10.0f)},
        {0x1060, QVariant(10.0f)},
        {0x10B2, QVariant(20.1f)},
        {0x1310, QVariant(uint(4711))},
        {0x1307, QVariant::fromValue(ushort(0))},
        {0x130B, QVariant::fromValue(ushort(0))},
        {0x1308, QVariant(uint(1))},
        {0x130A, QVariant(uint(1))},
        {0x130E, QVariant::fromValue(ushort(60))},
        {0x130F, QVariant::fromValue(ushort(60))},
    };
    return valueReplacements;
}

} // namespace

ModbusRtuOverTcpChamberSimulation::ModbusRtuOverTcpChamberSimulation(
    QSharedPointer<domain::types::ChamberTypeData> chamberType, const QString& ipAddress, int port, int modbusAddress,
    QObject* parent)
    : QObject(parent)
    , ChamberSimulation(std::move(chamberType))
    , converter(ModbusOverTcpServerFactory::create(ipAddress, port))
    , modbusAddress(modbusAddress)
    , ipAddress(ipAddress)
    , port(port)
    , loggerEpoch(QDate(2019, 1, 1), QTime(0, 0), Qt::LocalTime)
{
    // Direct: the answer must be written while the converter handles the frame.
    // By name, not by address: every frame reaches all chambers of the
    // converter, and a connection by address takes and drops a reference
    // (two locked operations) for each of them, which doubles what a chamber
    // that doesn't answer costs.
    connect(converter, SIGNAL(dataReceived(QByteArray)), this, SLOT(dataReceived(QByteArray)), Qt::DirectConnection);
}

ModbusRtuOverTcpChamberSimulation::~ModbusRtuOverTcpChamberSimulation() = default;

bool ModbusRtuOverTcpChamberSimulation::start()
{
    const QString qualifiedTypeName = chamberType ? chamberType->getQualifiedTypeName() : QString();
    consoleOutput() << "Start Modbus RTU over TCP simulation " << qualifiedTypeName << " on " << ipAddress
                    << " Modbus Address: " << modbusAddress << consoleEndLine;
    return true;
}

int ModbusRtuOverTcpChamberSimulation::getProtocolId() const
{
    return protocolId_;
}

QString ModbusRtuOverTcpChamberSimulation::getIpAddress() const
{
    return ipAddress;
}

int ModbusRtuOverTcpChamberSimulation::getModbusAddress() const
{
    return modbusAddress;
}

int ModbusRtuOverTcpChamberSimulation::getModbusAdr() const
{
    return modbusAddress;
}

bool ModbusRtuOverTcpChamberSimulation::setOnline(bool online)
{
    this->online = online;
    return true;
}

int ModbusRtuOverTcpChamberSimulation::getPort() const
{
    return port;
}

int ModbusRtuOverTcpChamberSimulation::getClientCount() const
{
    return converter->getClientCount();
}

bool ModbusRtuOverTcpChamberSimulation::acceptsFaults() const
{
    return true;
}

QByteArray ModbusRtuOverTcpChamberSimulation::strayAnswer(QByteArray bytes)
{
    if (bytes.size() <= ModbusOverTcpServer::crcSize_)
        bytes.prepend(ModbusOverTcpServer::crcSize_ + 1 - bytes.size(), '\0');
    const int body = bytes.size() - ModbusOverTcpServer::crcSize_;
    if (bytes.mid(body) == ModbusOverTcpServer::calcCrc(bytes.left(body)))
        bytes[body] = char(bytes.at(body) ^ 0x01);
    return bytes;
}

void ModbusRtuOverTcpChamberSimulation::dataReceived(const QByteArray& data)
{
    // Every chamber of the converter runs here for every frame: the others'
    // frames must cost no more than these two tests.
    if (data.size() < ModbusOverTcpServer::minimumFrameSize_)
        return;
    // Signed, so that slaves above 127 never answer.
    if (qint8(data.constData()[slaveAt]) != modbusAddress || !online)
        return;
    sinceArrival.start();
    statistics.countRequest();
    const RequestFault fault = nextFault();
    answerDelayMs = fault.delayMs;
    switch (fault.kind) {
    case RequestFault::Drop:
        return;
    case RequestFault::Error:
        answer(exceptionReply(data), true);
        return;
    case RequestFault::Stray:
        answer(strayAnswer(fault.strayBytes));
        return;
    case RequestFault::None:
        break;
    }
    switch (byteAt(data, functionAt)) {
    case readHoldingRegistersFunction:
    case readInputRegistersFunction:
        readRegisters(data);
        break;
    case writeSingleRegisterFunction:
        writeSingleRegister(data);
        break;
    case writeMultipleRegistersFunction:
        writeMultipleRegisters(data);
        break;
    default:
        break;
    }
}

void ModbusRtuOverTcpChamberSimulation::readRegisters(const QByteArray& request)
{
    // The high byte of the quantity doesn't count.
    const int quantity = byteAt(request, quantityLowAt);
    const int start = int(bigEndianAt(request, registerAt, 2));
    QByteArray reply = request.left(2);
    reply.append(char(quantity * 2));

    if (simulationReader && quantity > 0) {
        int address = start;
        int done = 0;
        // No guard against a pass without progress: see the class comment.
        do {
            QVariant value = read(address);
            if (!value.isValid()) {
                // The start register decides, not the one at hand.
                value = valueReplacements().value(start);
                if (start == loggerMinutesRegister || start == loggerMinutesSecondRegister)
                    value = QVariant(uint(loggerEpoch.secsTo(QDateTime::currentDateTime()) / 60));
                else if (start == loggerRecordsRegister)
                    value = loggerRecords(quantity);
                if (!value.isValid()) {
                    if (quantity == 4)
                        value = QVariant(0.0f);
                    else if (quantity == 2)
                        value = QVariant::fromValue(ushort(0));
                }
            }
            const QByteArray bytes = convertQVariant(value);
            reply.append(bytes.left((quantity - done) * 2));
            const int step = bytes.size() / 2;
            done += step;
            address += step;
            if (value.userType() == QMetaType::QString)
                break;
        } while (done < quantity);
    }

    const int size = readHeaderSize + quantity * 2;
    if (reply.size() < size)
        reply.append(size - reply.size(), '\0');
    reply += ModbusOverTcpServer::calcCrc(reply);
    answer(reply);
}

QVariant ModbusRtuOverTcpChamberSimulation::loggerRecords(int quantity)
{
    const int count = loggerCount != 0 ? loggerCount : quantity * 2 / loggerRecordSize;
    QVariantList records;
    for (int record = 0; record < count; ++record) {
        records << QVariant(loggerIndex);
        records << QVariant(
            uint(loggerEpoch.addSecs(qint64(loggerIndex) * loggerRecordStepSeconds).toSecsSinceEpoch()));
        for (int i = 0; i < loggerRecordFloats; ++i)
            records << QVariant(loggerRecordFloat);
        for (int i = 0; i < loggerRecordChars; ++i)
            records << QVariant::fromValue(char(0));
        ++loggerIndex;
        loggerSeconds += loggerRecordStepSeconds;
    }
    return records;
}

void ModbusRtuOverTcpChamberSimulation::writeSingleRegister(const QByteArray& request)
{
    const int address = int(bigEndianAt(request, registerAt, 2));
    const QByteArray word = request.mid(singleValueAt, 2);
    if (address == loggerCountRegister)
        loggerCount = ushort(bigEndianAt(word, 0, 2));
    // Refused or not, the write is echoed.
    write(address, convertQVariant(word, read(address)));
    answer(request);
}

void ModbusRtuOverTcpChamberSimulation::writeMultipleRegisters(const QByteArray& request)
{
    QByteArray reply = request.left(writeReplyHeaderSize);
    int address = int(bigEndianAt(request, registerAt, 2));
    int offset = firstValueAt;
    // Signed: a byte count of 128 or more writes nothing.
    int remaining = qint8(request.constData()[byteCountAt]);
    while (remaining > 0) {
        const QVariant current = read(address);
        int size = 2;
        if (current.isValid()) {
            // A value without bytes makes no progress: see the class comment.
            size = convertQVariant(current).size();
            write(address, convertQVariant(request.mid(offset, size), current));
            address += size / 2;
        } else if (address == loggerIndexRegister) {
            size = 4;
            loggerIndex = bigEndianAt(request, offset, size);
            address += 2;
        } else if (address == loggerCountRegister) {
            loggerCount = ushort(bigEndianAt(request, offset, size));
            address += 1;
        } else {
            address += 1;
        }
        offset += size;
        remaining -= size;
    }
    reply += ModbusOverTcpServer::calcCrc(reply);
    answer(reply);
}

QVariant ModbusRtuOverTcpChamberSimulation::read(int address)
{
    return simulationReader ? simulationReader->read(address) : QVariant();
}

void ModbusRtuOverTcpChamberSimulation::answer(const QByteArray& reply, bool isError)
{
    if (answerDelayMs <= 0) {
        converter->write(reply);
        statistics.countAnswer(sinceArrival.nsecsElapsed(), isError);
        return;
    }
    // Past the converter's handling of the frame: straight to the client that sent it.
    const QPointer<QTcpSocket> client(converter->getSendingSocket());
    const QElapsedTimer arrival = sinceArrival;
    QTimer::singleShot(answerDelayMs, this, [this, client, reply, arrival, isError] {
        if (!client || !client->isOpen())
            return;
        client->write(reply);
        statistics.countAnswer(arrival.nsecsElapsed(), isError);
    });
}

void ModbusRtuOverTcpChamberSimulation::write(int address, const QVariant& value)
{
    if (simulationReader)
        simulationReader->write(address, value);
}

} // namespace zelmor::simulation
