#include "Tools/Simulation/ModbusOverTcpServer.h"

#include "Tools/Simulation/OpenFileLimit.h"

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>

#include <algorithm>
#include <array>

namespace zelmor::simulation {

namespace {

constexpr quint16 crcPolynomial = 0xA001; // 8005, reflected
constexpr quint16 crcInitial = 0xFFFF;

constexpr std::array<quint16, 256> makeCrcTable()
{
    std::array<quint16, 256> table{};
    for (unsigned int index = 0; index < table.size(); ++index) {
        quint16 crc = quint16(index);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1u) ? quint16((crc >> 1) ^ crcPolynomial) : quint16(crc >> 1);
        table[index] = crc;
    }
    return table;
}

constexpr std::array<quint16, 256> crcTable = makeCrcTable();

} // namespace

ModbusOverTcpServer::ModbusOverTcpServer(const QString& address, int port)
    : server(new QTcpServer)
{
    if (!server->listen(QHostAddress(address), static_cast<quint16>(port)))
        OpenFileLimit::reportIfExhausted();
    connect(server.get(), &QTcpServer::newConnection, this, &ModbusOverTcpServer::newConnectionRequest);
    connect(server.get(), &QTcpServer::acceptError, this, &OpenFileLimit::reportIfExhausted);
}

ModbusOverTcpServer::~ModbusOverTcpServer() = default;

void ModbusOverTcpServer::write(const QByteArray& data)
{
    if (sendingSocket)
        sendingSocket->write(data);
}

QTcpSocket* ModbusOverTcpServer::getSendingSocket() const
{
    return sendingSocket;
}

int ModbusOverTcpServer::getClientCount() const
{
    const QList<QTcpSocket*> clients = server->findChildren<QTcpSocket*>();
    return int(std::count_if(clients.cbegin(), clients.cend(), [](const QTcpSocket* client) {
        return client->state() == QAbstractSocket::ConnectedState;
    }));
}

QByteArray ModbusOverTcpServer::calcCrc(const QByteArray& data)
{
    quint16 crc = crcInitial;
    for (const char byte : data)
        crc = quint16((crc >> 8) ^ crcTable[(crc ^ quint8(byte)) & 0xFFu]);
    const char bytes[] = {char(crc & 0xFFu), char(crc >> 8)};
    return QByteArray(bytes, crcSize_);
}

void ModbusOverTcpServer::newConnectionRequest()
{
    // Every client is answered on its own socket, which nobody keeps.
    QTcpSocket* const socket = server->nextPendingConnection();
    if (!socket)
        return;
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QTcpSocket::readyRead, this, &ModbusOverTcpServer::newDataAvailable);
}

void ModbusOverTcpServer::newDataAvailable()
{
    sendingSocket = qobject_cast<QTcpSocket*>(sender());
    if (!sendingSocket)
        return;
    const QByteArray data = sendingSocket->readAll();
    if (data.size() >= minimumFrameSize_) {
        // Computed and not compared: a frame with a wrong CRC goes on like a good one.
        calcCrc(data.left(data.size() - crcSize_));
        emit dataReceived(data);
    }
    sendingSocket = nullptr;
}

} // namespace zelmor::simulation
