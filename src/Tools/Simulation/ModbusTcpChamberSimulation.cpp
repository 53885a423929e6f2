#include "Tools/Simulation/ModbusTcpChamberSimulation.h"

#include "Domain/Types/ChamberTypeData.h"
#include "Domain/Types/ControllerAddress.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/FaultPolicy.h"
#include "Tools/Simulation/OpenFileLimit.h"
#include "Tools/Simulation/SimulationReader.h"
#include "Tools/Simulation/XPortBroadcastSimulation.h"

#include <QDataStream>
#include <QElapsedTimer>
#include <QModbusPdu>
#include <QPointer>
#include <QTcpSocket>
#include <QTextStream>
#include <QTimer>

#include <algorithm>
#include <cstring>

namespace zelmor::simulation {

namespace {

constexpr int wordBits = 16;
constexpr quint32 wordMask = 0xffff;

QVector<unsigned short> lowWordFirst(quint32 value)
{
    return {static_cast<unsigned short>(value & wordMask), static_cast<unsigned short>(value >> wordBits)};
}

quint32 fromLowWordFirst(const QVector<unsigned short>& words)
{
    return quint32(words.value(0)) | (quint32(words.value(1)) << wordBits);
}

// The MBAP header in front of each request and answer: transaction,
// protocol, length (of unit and PDU), unit.
constexpr int mbapHeaderSize = 7;
constexpr int protocolIdAt = 2;

// An answer framed as Qt's server frames it.
QByteArray framed(quint16 transactionId, quint16 protocolId, quint8 unitId, const QModbusResponse& response)
{
    QByteArray frame;
    QDataStream output(&frame, QIODevice::WriteOnly);
    output << transactionId << protocolId << quint16(response.size() + 1) << unitId << response;
    return frame;
}

} // namespace

// Sees each new client before Qt's server does, so that the chamber's own
// reading comes first.
class ModbusTcpChamberSimulation::ConnectionObserver : public QModbusTcpConnectionObserver
{
public:
    explicit ConnectionObserver(ModbusTcpChamberSimulation* chamber)
        : chamber(chamber)
    {
    }

    bool acceptNewConnection(QTcpSocket* client) override
    {
        connect(client, &QTcpSocket::readyRead, chamber,
                [chamber = chamber, client] { chamber->takeOverRequests(client); });
        connect(client, &QObject::destroyed, chamber,
                [chamber = chamber, client] { chamber->takenOver.remove(client); });
        return true;
    }

private:
    ModbusTcpChamberSimulation* const chamber;
};

constexpr char ModbusTcpChamberSimulation::defaultIpAddress_[];

domain::types::ControllerAddress const ModbusTcpChamberSimulation::accessibilityTestAddress_(
    -1, QStringLiteral("0x0000"), domain::types::ControllerAddress::READ_ONLY, QMetaType::UShort, 1, -1, QString());

ModbusTcpChamberSimulation::ModbusTcpChamberSimulation(QSharedPointer<domain::types::ChamberTypeData> chamberType)
    : ModbusTcpChamberSimulation(std::move(chamberType), QLatin1String(defaultIpAddress_), defaultPort_)
{
}

ModbusTcpChamberSimulation::ModbusTcpChamberSimulation(QSharedPointer<domain::types::ChamberTypeData> chamberType,
                                                       const QString& ipAddress)
    : ModbusTcpChamberSimulation(std::move(chamberType), ipAddress, defaultPort_)
{
}

ModbusTcpChamberSimulation::ModbusTcpChamberSimulation(QSharedPointer<domain::types::ChamberTypeData> chamberType,
                                                       const QString& ipAddress, int port)
    : ChamberSimulation(std::move(chamberType))
    , ipAddress(ipAddress)
    , port(port)
{
    initClass();
}

ModbusTcpChamberSimulation::~ModbusTcpChamberSimulation() = default;

void ModbusTcpChamberSimulation::initClass()
{
    broadcaster = QSharedPointer<XPortBroadcastSimulation>::create(ipAddress);
    setServerAddress(serverAddress_);
    setConnectionParameter(QModbusDevice::NetworkAddressParameter, ipAddress.toString());
    setConnectionParameter(QModbusDevice::NetworkPortParameter, port);
    // Listening and accepting failures both end here.
    connect(this, &QModbusDevice::errorOccurred, this, &OpenFileLimit::reportIfExhausted);
    installConnectionObserver(new ConnectionObserver(this));
}

bool ModbusTcpChamberSimulation::start()
{
    const QString qualifiedTypeName = chamberType ? chamberType->getQualifiedTypeName() : QString();
    consoleOutput() << "Start Modbus simulation " << qualifiedTypeName << " on " << ipAddress.toString() << ":" << port
                    << consoleEndLine;
    if (state() == QModbusDevice::ConnectedState)
        return true;
    return connectDevice();
}

int ModbusTcpChamberSimulation::getProtocolId() const
{
    return protocolId_;
}

QString ModbusTcpChamberSimulation::getIpAddress() const
{
    return ipAddress.toString();
}

bool ModbusTcpChamberSimulation::setOnline(bool online)
{
    if (online == this->online)
        return true;
    if (!online) {
        listenAgain = state() == QModbusDevice::ConnectedState;
        disconnectDevice();
    } else if (listenAgain && !connectDevice()) {
        return false;
    }
    broadcaster->setSilent(!online);
    this->online = online;
    return true;
}

int ModbusTcpChamberSimulation::getPort() const
{
    return port;
}

int ModbusTcpChamberSimulation::getClientCount() const
{
    const QList<QTcpSocket*> clients = findChildren<QTcpSocket*>();
    return int(std::count_if(clients.cbegin(), clients.cend(), [](const QTcpSocket* client) {
        return client->state() == QAbstractSocket::ConnectedState;
    }));
}

bool ModbusTcpChamberSimulation::acceptsFaults() const
{
    return true;
}

QByteArray ModbusTcpChamberSimulation::strayAnswer(QByteArray bytes)
{
    if (bytes.size() <= protocolIdAt)
        bytes.append(protocolIdAt + 1 - bytes.size(), '\0');
    bytes[protocolIdAt] = char(bytes.at(protocolIdAt) | 0x80);
    return bytes;
}

QModbusResponse ModbusTcpChamberSimulation::processRequest(const QModbusPdu& request)
{
    QElapsedTimer sinceArrival;
    sinceArrival.start();
    statistics.countRequest();
    const QModbusResponse response = QModbusTcpServer::processRequest(request);
    statistics.countAnswer(sinceArrival.nsecsElapsed(), response.isException());
    return response;
}

void ModbusTcpChamberSimulation::takeOverRequests(QTcpSocket* client)
{
    const QSharedPointer<FaultPolicy> policy = getFaultPolicy();
    QByteArray& pending = takenOver[client];
    // Without an active policy Qt's server reads on, unless a request taken
    // over is still incomplete.
    if (pending.isEmpty() && (!policy || !policy->isActive())) {
        takenOver.remove(client);
        return;
    }
    pending += client->readAll();
    while (pending.size() >= mbapHeaderSize) {
        // As Qt's server reckons it, in 16 bits: a length of 0 never completes.
        const quint16 length = quint16((quint8(pending.at(4)) << 8) | quint8(pending.at(5)));
        const int frameSize = mbapHeaderSize + quint16(length - 1);
        if (pending.size() < frameSize)
            return;
        const QByteArray frame = pending.left(frameSize);
        pending.remove(0, frameSize);
        answerWithFault(client, frame);
    }
}

void ModbusTcpChamberSimulation::answerWithFault(QTcpSocket* client, const QByteArray& frame)
{
    QElapsedTimer sinceArrival;
    sinceArrival.start();
    quint16 transactionId = 0;
    quint16 protocolId = 0;
    quint16 length = 0;
    quint8 unitId = 0;
    QModbusRequest request;
    QDataStream input(frame);
    input >> transactionId >> protocolId >> length >> unitId >> request;
    // Another unit's request goes unanswered, as in Qt's server.
    if (unitId != serverAddress())
        return;

    statistics.countRequest();
    const RequestFault fault = nextFault();
    QByteArray answer;
    bool isError = false;
    switch (fault.kind) {
    case RequestFault::Drop:
        return;
    case RequestFault::Stray:
        answer = strayAnswer(fault.strayBytes);
        break;
    case RequestFault::Error:
        isError = true;
        answer =
            framed(transactionId, protocolId, unitId,
                   QModbusExceptionResponse(request.functionCode(), QModbusExceptionResponse::ServerDeviceFailure));
        break;
    case RequestFault::None: {
        const QModbusResponse response = QModbusTcpServer::processRequest(request);
        isError = response.isException();
        answer = framed(transactionId, protocolId, unitId, response);
        break;
    }
    }

    const QPointer<QTcpSocket> guarded(client);
    const auto send = [this, guarded, answer, sinceArrival, isError] {
        if (!guarded || !guarded->isOpen())
            return;
        guarded->write(answer);
        statistics.countAnswer(sinceArrival.nsecsElapsed(), isError);
    };
    if (fault.delayMs > 0)
        QTimer::singleShot(fault.delayMs, this, send);
    else
        send();
}

QVector<unsigned short> ModbusTcpChamberSimulation::convertQVariant(const QVariant& value) const
{
    switch (value.userType()) {
    case QMetaType::Bool:
        // A boolean reads as 0 even when true; the monitoring application
        // expects it so.
        return {0};
    case QMetaType::Int:
        return lowWordFirst(static_cast<quint32>(value.toInt()));
    case QMetaType::UInt:
        return lowWordFirst(value.toUInt());
    case QMetaType::UShort:
        return {static_cast<unsigned short>(value.toUInt() & wordMask)};
    case QMetaType::Float: {
        const float number = value.toFloat();
        quint32 bits = 0;
        std::memcpy(&bits, &number, sizeof bits);
        return lowWordFirst(bits);
    }
    default:
        return {noValueWord_};
    }
}

QVariant ModbusTcpChamberSimulation::convertQVariant(QVector<unsigned short> words, const QVariant& example) const
{
    switch (example.userType()) {
    case QMetaType::Bool:
        return QVariant(words.value(0) != 0);
    case QMetaType::Int:
        return QVariant(static_cast<int>(fromLowWordFirst(words)));
    case QMetaType::UInt:
        return QVariant(static_cast<unsigned int>(fromLowWordFirst(words)));
    case QMetaType::UShort:
        return QVariant::fromValue<unsigned short>(words.value(0));
    case QMetaType::Float: {
        const quint32 bits = fromLowWordFirst(words);
        float number = 0;
        std::memcpy(&number, &bits, sizeof number);
        return QVariant(number);
    }
    default:
        return QVariant();
    }
}

bool ModbusTcpChamberSimulation::readData(QModbusDataUnit* unit) const
{
    if (!unit || unit->startAddress() < 0 || !simulationReader)
        return false;
    const QVector<unsigned short> words = convertQVariant(simulationReader->read(unit->startAddress()));
    unit->setValues(QVector<quint16>(words.cbegin(), words.cend()));
    unit->setValueCount(static_cast<uint>(words.size()));
    return true;
}

bool ModbusTcpChamberSimulation::writeData(const QModbusDataUnit& unit)
{
    QTextStream& console = consoleOutput();
    if (!simulationReader) {
        console << " Modbus: no valid reader"
                << "\r\n";
        return false;
    }
    const int address = unit.startAddress();
    if (!simulationReader->read(address).isValid()) {
        console << " Modbus: no valid address " << address << "\r\n";
        return false;
    }
    // The second reading is the current value from here on.
    const QVariant current = simulationReader->read(address);
    const QVector<unsigned short> currentWords = convertQVariant(current);
    // One half of a 32-bit value can't be written on its own.
    if (currentWords.size() != static_cast<int>(unit.valueCount())) {
        console << " not the right number of characters received\r\n";
        return false;
    }
    QVector<unsigned short> newWords(currentWords.size());
    bool changed = false;
    for (int i = 0; i < currentWords.size(); ++i) {
        newWords[i] = unit.value(i);
        changed = changed || newWords[i] != currentWords[i];
    }
    // A type with no layout hands on an invalid value; the reader decides.
    if (!simulationReader->write(address, convertQVariant(newWords, current))) {
        console << " Modbus: Writing new data failed\r\n";
        return false;
    }
    if (changed) {
        console << " Modbus: data changed!!\r\n";
        emit dataWritten(unit.registerType(), address, newWords.size());
    }
    return true;
}

} // namespace zelmor::simulation
