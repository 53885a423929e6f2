#pragma once

#include "support/NetworkNamespace.h"

#include <QByteArray>
#include <QHostAddress>
#include <QMap>
#include <QTcpSocket>
#include <QTest>

namespace zelmor::testsupport {

struct HttpResponse
{
    int status = 0;                       // 0 when no complete answer came
    QMap<QByteArray, QByteArray> headers; // names in lower case
    QByteArray body;
};

// A blocking HTTP/1.1 client: one request per connection, read to the
// connection's end. Header only: the helper library doesn't link the
// network module. With `space`, the socket is made inside it.
inline HttpResponse httpRequest(const QString& address, quint16 port, const QByteArray& method, const QByteArray& path,
                                const QByteArray& body = QByteArray(), const NetworkNamespace* space = nullptr,
                                int timeoutMs = 10000)
{
    HttpResponse response;
    QTcpSocket socket;
    if (space) {
        if (!socket.setSocketDescriptor(space->connectedTcpSocket(address, port)))
            return response;
    } else {
        socket.connectToHost(QHostAddress(address), port);
        if (!socket.waitForConnected(timeoutMs))
            return response;
    }
    QByteArray request = method + ' ' + path + " HTTP/1.1\r\nHost: " + address.toLatin1() + "\r\nConnection: close\r\n";
    if (!body.isEmpty() || method == "PUT")
        request += "Content-Length: " + QByteArray::number(body.size()) + "\r\n";
    socket.write(request + "\r\n" + body);
    // The event loop runs meanwhile, so that a server in this process answers.
    static_cast<void>(
        QTest::qWaitFor([&socket] { return socket.state() != QAbstractSocket::ConnectedState; }, timeoutMs));
    const QByteArray received = socket.readAll();
    const int headerEnd = received.indexOf("\r\n\r\n");
    if (headerEnd < 0)
        return response;
    const QList<QByteArray> lines = received.left(headerEnd).split('\n');
    for (int index = 1; index < lines.size(); ++index) {
        const int colon = lines.at(index).indexOf(':');
        if (colon > 0)
            response.headers.insert(lines.at(index).left(colon).trimmed().toLower(),
                                    lines.at(index).mid(colon + 1).trimmed());
    }
    response.body = received.mid(headerEnd + 4);
    const QList<QByteArray> statusLine = lines.value(0).split(' ');
    if (response.body.size() >= response.headers.value("content-length").toInt())
        response.status = statusLine.value(1).toInt();
    return response;
}

} // namespace zelmor::testsupport
