#pragma once

#include <QByteArray>
#include <QSignalSpy>
#include <QString>
#include <QTcpSocket>

// The client side of a TCP exchange with a server in the test's own process.
// Header only: the helper library doesn't link the network module.
namespace zelmor::testsupport {

// Connects and waits for the connection; false when it didn't come in time.
inline bool connected(QTcpSocket& client, const QString& address, int port, int timeoutMs = 10000)
{
    client.connectToHost(address, quint16(port));
    return client.waitForConnected(timeoutMs);
}

// The next `size` bytes, or what came of them in time. Waited for in an event
// loop, not in steps of a polling wait, so that the time taken is the server's.
inline QByteArray receive(QTcpSocket& client, qint64 size, int timeoutMs = 10000)
{
    QSignalSpy arrived(&client, &QTcpSocket::readyRead);
    while (client.bytesAvailable() < size && arrived.wait(timeoutMs)) {
    }
    return client.read(size);
}

} // namespace zelmor::testsupport
