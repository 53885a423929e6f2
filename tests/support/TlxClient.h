#pragma once

#include "support/NetworkNamespace.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QHostAddress>
#include <QTcpSocket>
#include <QTest>

namespace zelmor::testsupport {

// A blocking TLX client on a real TCP socket, for a simulator in another
// process. Header only: the helper library doesn't link the network module.
class TlxClient
{
public:
    struct Answer
    {
        QByteArray frame;     // length line and body; empty when none came in time
        qint64 elapsedNs = 0; // from before sending to the last byte of the frame
    };

    // Retries while nobody listens yet: a chamber prints its start line just
    // before it listens. With `space`, the socket is made inside it.
    bool connectTo(const QString& address, const NetworkNamespace* space = nullptr, int timeoutMs = 10000)
    {
        QDeadlineTimer deadline(timeoutMs);
        while (!deadline.hasExpired()) {
            if (space) {
                const qintptr descriptor = space->connectedTcpSocket(address, 9000);
                if (descriptor >= 0)
                    return socket_.setSocketDescriptor(descriptor);
            } else {
                socket_.connectToHost(QHostAddress(address), 9000);
                if (socket_.waitForConnected(int(qMax<qint64>(1, deadline.remainingTime()))))
                    return true;
                socket_.abort();
            }
            QTest::qWait(20);
        }
        return false;
    }

    bool send(const QByteArray& bytes)
    {
        return socket_.write(bytes) == bytes.size()
               && (socket_.waitForBytesWritten(5000) || socket_.bytesToWrite() == 0);
    }

    // One framed answer: a decimal length line, then that many characters.
    QByteArray readFrame(int timeoutMs = 5000)
    {
        QDeadlineTimer deadline(timeoutMs);
        for (;;) {
            const int lineEnd = buffer_.indexOf("\r\n");
            const int size = lineEnd < 0 ? INT_MAX : lineEnd + 2 + buffer_.left(lineEnd).toInt();
            if (buffer_.size() >= size) {
                const QByteArray frame = buffer_.left(size);
                buffer_.remove(0, size);
                return frame;
            }
            if (socket_.bytesAvailable() == 0
                && !socket_.waitForReadyRead(int(qMax<qint64>(1, deadline.remainingTime()))))
                return QByteArray();
            buffer_ += socket_.readAll();
        }
    }

    Answer request(const QByteArray& bytes)
    {
        QElapsedTimer clock;
        clock.start();
        const QByteArray frame = send(bytes) ? readFrame() : QByteArray();
        return {frame, clock.nsecsElapsed()};
    }

    QTcpSocket& socket() { return socket_; }

private:
    QTcpSocket socket_;
    QByteArray buffer_;
};

} // namespace zelmor::testsupport
