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
        return socket_.write(bytes) == bytes.size()
               && (socket_.waitForBytesWritten(5000) || socket_.bytesToWrite() == 0);
    }

    // One framed answer: a decimal length line, then that many characters;
    // whatever came when the length line is no number.
    QByteArray readFrame(int timeoutMs = 5000)
    {
        QDeadlineTimer deadline(timeoutMs);
        for (;;) {
            const int lineEnd = buffer_.indexOf("\r\n");
            bool ok = true;
            const int frameSize = lineEnd < 0 ? -1 : lineEnd + 2 + buffer_.left(lineEnd).toInt(&ok);
            if (!ok || (frameSize >= 0 && buffer_.size() >= frameSize)) {
                const QByteArray frame = buffer_.left(ok ? frameSize : buffer_.size());
                buffer_.remove(0, frame.size());
                return frame;
            }
            if (socket_.bytesAvailable() == 0
                && !socket_.waitForReadyRead(int(qMax<qint64>(1, deadline.remainingTime()))))
                return QByteArray();
            buffer_ += socket_.readAll();
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

    QTcpSocket& socket()
    {
        return socket_;
    }

private:
    QTcpSocket socket_;
    QByteArray buffer_;
};

} // namespace zelmor::testsupport
