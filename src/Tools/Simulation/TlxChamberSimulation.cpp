#include "Tools/Simulation/TlxChamberSimulation.h"

#include "Domain/Types/ChamberTypeData.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/OpenFileLimit.h"
#include "Tools/Simulation/SimulationReader.h"
#include "Tools/Simulation/TlxBroadCastSimulation.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QRegExp>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTextStream>
#include <QTimer>

namespace zelmor::simulation {

namespace {

// Only a match at position 0 counts. The caret tells the engine so; without
// it the search would go on trying every later position, which costs time
// quadratic in the length of a line full of near misses.
constexpr char linkTestPattern[] = "^CANIDGetValue:10010010\r\n";
constexpr char readPattern[] = "^(CANIDGetValue):([0-9A-Fa-f]{8})\r\n";
// Greedy: the value runs up to the last CR LF of what arrived.
constexpr char writePattern[] = "^(CANIDWriteValue):([0-9A-Fa-f]{8}):(.+)\r\n";

constexpr char linkTestAnswer[] = "41\r\nCANIDGetValue:10010010:Communication OK\r\n";
constexpr char errorAnswer[] = "07\r\nError\r\n";
constexpr char readAnswerPattern[] = "%1:%2:%3\r\n";
constexpr char lengthLinePattern[] = "%1\r\n";
constexpr int lengthDigits = 2;

// The identifier taken as a signed 32-bit number; from 80000000 on it
// overflows, and the overflow is address 0.
int addressOf(const QString& identifier)
{
    return identifier.toInt(nullptr, 16);
}

} // namespace

TlxChamberSimulation::TlxChamberSimulation(QSharedPointer<domain::types::ChamberTypeData> chamberType)
    : TlxChamberSimulation(std::move(chamberType), QLatin1String(defaultIpAddress_), defaultPort_)
{
}

TlxChamberSimulation::TlxChamberSimulation(QSharedPointer<domain::types::ChamberTypeData> chamberType,
                                           const QString& ipAddress)
    : TlxChamberSimulation(std::move(chamberType), ipAddress, defaultPort_)
{
}

TlxChamberSimulation::TlxChamberSimulation(QSharedPointer<domain::types::ChamberTypeData> chamberType,
                                           const QString& ipAddress, int port)
    : ChamberSimulation(std::move(chamberType))
    , server(new QTcpServer)
    , ipAddress(ipAddress)
    , port(port)
{
    const QString qualifiedTypeName = this->chamberType ? this->chamberType->getQualifiedTypeName() : QString();
    const QString controller = this->chamberType ? this->chamberType->controller : QString();
    broadcaster = QSharedPointer<TlxBroadCastSimulation>::create(this->ipAddress, controller, qualifiedTypeName);
    connect(server.get(), &QTcpServer::newConnection, this, &TlxChamberSimulation::chamberConnected);
    connect(server.get(), &QTcpServer::acceptError, this, &OpenFileLimit::reportIfExhausted);
}

TlxChamberSimulation::~TlxChamberSimulation() = default;

bool TlxChamberSimulation::start()
{
    const QString qualifiedTypeName = chamberType ? chamberType->getQualifiedTypeName() : QString();
    consoleOutput() << "Start TLX simulation " << qualifiedTypeName << " on " << ipAddress.toString() << ":" << port
                    << consoleEndLine;
    // Listening twice would fail anyway; asking first spares the warning.
    if (server->isListening())
        return false;
    if (server->listen(ipAddress, static_cast<quint16>(port)))
        return true;
    OpenFileLimit::reportIfExhausted();
    return false;
}

bool TlxChamberSimulation::setOnline(bool online)
{
    if (online == this->online)
        return true;
    if (!online) {
        listenAgain = server->isListening();
        server->close();
        currentClient.reset();
    } else if (listenAgain && !server->listen(ipAddress, static_cast<quint16>(port))) {
        return false;
    }
    broadcaster->setSilent(!online);
    this->online = online;
    return true;
}

int TlxChamberSimulation::getPort() const
{
    return port;
}

int TlxChamberSimulation::getClientCount() const
{
    return currentClient && currentClient->state() == QAbstractSocket::ConnectedState ? 1 : 0;
}

bool TlxChamberSimulation::acceptsFaults() const
{
    return true;
}

QByteArray TlxChamberSimulation::strayAnswer(QByteArray bytes)
{
    if (bytes.isEmpty() || (bytes.at(0) >= '0' && bytes.at(0) <= '9'))
        bytes.prepend('\xff');
    return bytes;
}

int TlxChamberSimulation::getProtocolId() const
{
    return protocolId_;
}

QString TlxChamberSimulation::getIpAddress() const
{
    return ipAddress.toString();
}

QByteArray TlxChamberSimulation::frame(QString body)
{
    const QString length = QString::number(body.length(), 10).rightJustified(lengthDigits, QLatin1Char('0'));
    body.insert(0, QLatin1String(lengthLinePattern).arg(length));
    return body.toUtf8();
}

void TlxChamberSimulation::chamberConnected()
{
    consoleOutput() << "Connect TLX simulation " << consoleEndLine;
    QTcpSocket* const next = server->nextPendingConnection();
    if (!next)
        return;
    // The chamber owns its client alone, not the server as well.
    next->setParent(nullptr);
    // Destroying the former client here is safe: this runs from the server's
    // signal, never from one of the client's own. Its connection ends at once.
    currentClient.reset(next);
    connect(next, &QTcpSocket::readyRead, this, &TlxChamberSimulation::readData);
}

void TlxChamberSimulation::readData()
{
    if (!currentClient)
        return;
    QElapsedTimer sinceArrival;
    sinceArrival.start();
    statistics.countRequest();
    // Each read is a request of its own: nothing is kept for the next one.
    const QByteArray request = currentClient->readAll();
    const RequestFault fault = nextFault();
    if (fault.kind == RequestFault::Drop)
        return;
    QByteArray answer;
    if (fault.kind == RequestFault::Error)
        answer = errorAnswer;
    else if (fault.kind == RequestFault::Stray)
        answer = strayAnswer(fault.strayBytes);
    else
        answer = answerTo(request);
    // No context object: the answer goes to whoever is the client when the
    // timer fires, which after a reconnection is the new one. The guarded
    // pointer only keeps a chamber destroyed meanwhile from being touched.
    const QPointer<TlxChamberSimulation> chamber(this);
    QTimer::singleShot(answerDelayMs_ + fault.delayMs, [chamber, answer, sinceArrival]() {
        if (!chamber)
            return;
        if (chamber->sendToCurrentClient(answer))
            chamber->statistics.countAnswer(sinceArrival.nsecsElapsed(), answer == errorAnswer);
    });
}

QByteArray TlxChamberSimulation::answerTo(const QByteArray& request) const
{
    QRegExp linkTest(QLatin1String(linkTestPattern), Qt::CaseSensitive, QRegExp::RegExp);
    QRegExp read(QLatin1String(readPattern), Qt::CaseSensitive, QRegExp::RegExp);
    QRegExp write(QLatin1String(writePattern), Qt::CaseSensitive, QRegExp::RegExp);

    // Without a reader even the link test fails.
    if (!simulationReader)
        return QByteArray(errorAnswer);

    // A NUL byte ends the text.
    const int nul = request.indexOf('\0');
    const QString text = QString::fromUtf8(nul < 0 ? request : request.left(nul));

    // The link test goes first, so that its identifier is never read as a value.
    if (linkTest.indexIn(text) == 0)
        return QByteArray(linkTestAnswer);

    if (read.indexIn(text) == 0) {
        const QVariant value = simulationReader->read(addressOf(read.cap(2)));
        if (!value.isValid())
            return QByteArray(errorAnswer);
        return frame(QLatin1String(readAnswerPattern).arg(read.cap(1), read.cap(2), value.toString()));
    }

    if (write.indexIn(text) == 0) {
        const int address = addressOf(write.cap(2));
        if (!simulationReader->getType(address).isValid())
            return QByteArray(errorAnswer);
        // The value converts the text itself; a refused write is echoed all the same.
        simulationReader->write(address, QVariant(write.cap(3)));
        return frame(write.cap(0));
    }

    return QByteArray(errorAnswer);
}

bool TlxChamberSimulation::sendToCurrentClient(const QByteArray& answer)
{
    // A client that went away stays current but is no longer writable.
    if (!currentClient || !currentClient->isWritable())
        return false;
    currentClient->write(answer);
    return true;
}

} // namespace zelmor::simulation
