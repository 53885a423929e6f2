#include "Tools/Simulation/UdpBroadCaster.h"

#include "Tools/Simulation/OpenFileLimit.h"

#include <QHostAddress>
#include <QNetworkDatagram>
#include <QNetworkInterface>
#include <QUdpSocket>

namespace zelmor::simulation {

namespace {

constexpr char noMacAddress[] = "00:00:00:00:00:00";

} // namespace

UdpBroadCaster::UdpBroadCaster(const QHostAddress& address, int port)
    : socket(new QUdpSocket)
{
    if (!socket->bind(address, static_cast<quint16>(port), QAbstractSocket::ShareAddress))
        OpenFileLimit::reportIfExhausted();
    connect(socket.get(), &QUdpSocket::readyRead, this, &UdpBroadCaster::datagramsArrived);
}

UdpBroadCaster::~UdpBroadCaster() = default;

QString UdpBroadCaster::getMacAddress() const
{
    const QHostAddress local = socket->localAddress();
    QNetworkInterface::InterfaceFlags const required = QNetworkInterface::IsUp | QNetworkInterface::CanBroadcast;
    for (const QNetworkInterface& networkInterface : QNetworkInterface::allInterfaces()) {
        QNetworkInterface::InterfaceFlags const flags = networkInterface.flags();
        if ((flags & required) != required || flags.testFlag(QNetworkInterface::IsLoopBack))
            continue;
        for (const QNetworkAddressEntry& entry : networkInterface.addressEntries()) {
            if (entry.ip().protocol() == QAbstractSocket::IPv4Protocol && entry.ip() == local)
                return networkInterface.hardwareAddress();
        }
    }
    return QLatin1String(noMacAddress);
}

void UdpBroadCaster::setSilent(bool silent)
{
    this->silent = silent;
}

bool UdpBroadCaster::isSilent() const
{
    return silent;
}

void UdpBroadCaster::datagramsArrived()
{
    if (!silent) {
        readUdpData();
        return;
    }
    while (socket->hasPendingDatagrams())
        socket->receiveDatagram(0);
}

} // namespace zelmor::simulation
