#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QHostAddress>
#include <QTcpSocket>
#include <QTest>

namespace zelmor::testsupport {

// A TLX client on a real TCP socket, blocking, for talking to a simulator in
// another process. Header only: the helper library doesn't link the network
// module, the test executables that use this do.
//
//     TlxClient client;
//     QVERIFY(client.connectTo("127.0.57.1"));
//     QCOMPARE(client.request("CANIDGetValue:10010010\r\n").frame, linkAnswer);
class TlxClient
{
public:
    struct Answer
    {
        QByteArray frame;     // length line and body; empty when none came in time
        qint64 elapsedNs = 0; // from before sending to the last byte of the frame
    };

    // Retries while nobody listens yet: a chamber prints its start line just
    // before it listens.
    bool connectTo(const QString& address, quint16 port = 9000, int timeoutMs = 10000)
    {
        QDeadlineTimer deadline(timeoutMs);
        while (!deadline.hasExpired()) {
            socket_.connectToHost(QHostAddress(address), port);
            if (socket_.waitForConnected(int(qMax<qint64>(1, deadline.remainingTime()))))
                return true;
            socket_.abort();
            QTest::qWait(20);
        }
        return false;
    }

    // A connected socket made elsewhere, e.g. inside another network namespace.
    bool adopt(qintptr descriptor)
    {
        return socket_.setSocketDescriptor(descriptor);
    }

    bool send(const QByteArray& bytes)
    {
        if (socket_.write(bytes) != bytes.size())
            return false;
        return socket_.waitForBytesWritten(5000) || socket_.bytesToWrite() == 0;
    }

    // One framed answer: a decimal length line, then that many characters.
    QByteArray readFrame(int timeoutMs = 5000)
    {
        QDeadlineTimer deadline(timeoutMs);
        for (;;) {
            const int lineEnd = buffer_.indexOf("\r\n");
            if (lineEnd >= 0) {
                bool ok = false;
                const int length = buffer_.left(lineEnd).toInt(&ok);
                const int frameSize = lineEnd + 2 + length;
                if (!ok)
                    return takeAll();
                if (buffer_.size() >= frameSize) {
                    const QByteArray frame = buffer_.left(frameSize);
                    buffer_.remove(0, frameSize);
                    return frame;
                }
            }
            if (deadline.hasExpired() || !waitForMore(deadline))
                return QByteArray();
        }
    }

    Answer request(const QByteArray& bytes, int timeoutMs = 5000)
    {
        Answer answer;
        QElapsedTimer clock;
        clock.start();
        if (send(bytes))
            answer.frame = readFrame(timeoutMs);
        answer.elapsedNs = clock.nsecsElapsed();
        return answer;
    }

    // True when the peer closed the connection within the time.
    bool waitForClosed(int timeoutMs = 5000)
    {
        QDeadlineTimer deadline(timeoutMs);
        while (socket_.state() == QAbstractSocket::ConnectedState && !deadline.hasExpired()) {
            if (!waitForMore(deadline))
                break;
        }
        return socket_.state() != QAbstractSocket::ConnectedState;
    }

    // Whatever arrived and was not taken as a frame.
    QByteArray takeAll()
    {
        buffer_ += socket_.readAll();
        QByteArray all;
        all.swap(buffer_);
        return all;
    }

    QTcpSocket& socket()
    {
        return socket_;
    }

private:
    bool waitForMore(const QDeadlineTimer& deadline)
    {
        if (socket_.bytesAvailable() == 0
            && !socket_.waitForReadyRead(int(qMax<qint64>(1, deadline.remainingTime()))))
            return false;
        buffer_ += socket_.readAll();
        return true;
    }

    QTcpSocket socket_;
    QByteArray buffer_;
};

} // namespace zelmor::testsupport
