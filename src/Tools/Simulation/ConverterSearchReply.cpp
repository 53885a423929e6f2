#include "Tools/Simulation/ConverterSearchReply.h"

#include "Domain/Types/MacAddress.h"
#include "Tools/Simulation/ConsoleOutput.h"

#include <QNetworkDatagram>
#include <QTextStream>
#include <QUdpSocket>

namespace zelmor::simulation {

namespace {

// Nothing in the converters' answer is defined before the hardware address;
// zeros keep the reply from depending on chance.
constexpr int reservedBytes = 22;

} // namespace

void answerConverterSearch(QUdpSocket& socket, const QString& macAddress)
{
    const QNetworkDatagram request = socket.receiveDatagram();
    // A wake-up without a datagram (a socket error) has nobody to answer.
    if (!request.isValid())
        return;
    const QHostAddress sender = request.senderAddress();
    const int senderPort = request.senderPort();

    // The place holders start at %2; arg() fills the lowest first all the same.
    consoleOutput() << QStringLiteral("UDP Request from %2:%3\r\n").arg(sender.toString(), QString::number(senderPort));
    consoleOutput().flush();

    QByteArray reply(reservedBytes, '\0');
    reply += domain::types::MacAddress(macAddress).address;
    socket.writeDatagram(reply, sender, static_cast<quint16>(senderPort));
}

} // namespace zelmor::simulation
