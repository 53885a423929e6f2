#include "Tools/Simulation/TlxBroadCastSimulation.h"

#include "Tools/Simulation/ConsoleOutput.h"

#include <QHostAddress>
#include <QNetworkDatagram>
#include <QTextStream>
#include <QUdpSocket>

namespace zelmor::simulation {

namespace {

constexpr char defaultControllerType[] = "S4.1";
constexpr char defaultChamberType[] = "HX 60 Z6";

// The port field names the discovery port, not the chamber's TCP port; the
// monitoring application expects it so.
constexpr char replyPattern[] =
    "IP:%1 Port:%2 MAC:%3\tChambertype:%4\tControllertype:%5\tCOMType:TLXDirect\tProgramController:%6\r\n";
constexpr char replyPort[] = "9001";
constexpr char replyProgramController[] = "False";

} // namespace

TlxBroadCastSimulation::TlxBroadCastSimulation(const QHostAddress& address, QString controllerType, QString chamberType)
    : UdpBroadCaster(address, discoveryPort_)
    , controllerType(std::move(controllerType))
    , chamberType(std::move(chamberType))
{
}

TlxBroadCastSimulation::TlxBroadCastSimulation(const QHostAddress& address)
    : TlxBroadCastSimulation(address, QLatin1String(defaultControllerType), QLatin1String(defaultChamberType))
{
}

void TlxBroadCastSimulation::readUdpData()
{
    const QNetworkDatagram request = socket->receiveDatagram();
    // A wake-up without a datagram (a socket error) has nobody to answer.
    if (!request.isValid())
        return;
    const QHostAddress sender = request.senderAddress();
    const int senderPort = request.senderPort();
    QByteArray content = request.data();
    // Printed up to a NUL byte.
    const int nul = content.indexOf('\0');
    if (nul >= 0)
        content.truncate(nul);
    const QString senderText = sender.toString();
    const QString senderPortText = QString::number(senderPort);

    QTextStream& console = consoleOutput();
    // Every arg() in one pass, so that a '%' in the request or a type text is
    // printed as it is and not taken for a place holder.
    console
        << QStringLiteral("UDP Request %1 from %2:%3\r\n").arg(QString::fromUtf8(content), senderText, senderPortText);

    const QString reply = QLatin1String(replyPattern)
                              .arg(socket->localAddress().toString(), QLatin1String(replyPort),
                                   getMacAddress().replace(QLatin1Char('-'), QLatin1Char(':')), chamberType,
                                   controllerType, QLatin1String(replyProgramController));

    console << QStringLiteral("Sender:%1:%2 \r\n").arg(senderText, senderPortText) << reply << "\r\n";
    console.flush();

    socket->writeDatagram(reply.toUtf8(), sender, static_cast<quint16>(senderPort));
}

} // namespace zelmor::simulation
