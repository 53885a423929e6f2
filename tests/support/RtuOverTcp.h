#pragma once

#include "support/TcpExchange.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QTcpSocket>
#include <QTest>

#include <linux/sockios.h>
#include <sys/ioctl.h>

// Modbus RTU frames through a TCP socket, as a client of a simulated
// serial-to-Ethernet converter sends them. Header only: the support library
// doesn't link the network module, the tests that include this do.
namespace zelmor::testsupport {

// The frame with its CRC-16/MODBUS behind it, low byte first. Computed bit
// by bit here, independently of the table the converter uses.
inline QByteArray withCrc(const QByteArray& frame)
{
    quint16 crc = 0xFFFF;
    for (const char byte : frame) {
        crc ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) ? quint16((crc >> 1) ^ 0xA001) : quint16(crc >> 1);
    }
    return frame + char(crc & 0xFF) + char(crc >> 8);
}

// Writes the bytes and returns once the server in this process has read
// them, so that one call is one read on the far side: the converter takes
// each read as one frame. False when they weren't acknowledged in time.
inline bool deliver(QTcpSocket& client, const QByteArray& bytes, int timeoutMs = 10000)
{
    client.write(bytes);
    client.flush();
    // Bytes the peer hasn't acknowledged yet.
    const auto unacknowledged = [&client] {
        int count = 0;
        return ::ioctl(int(client.socketDescriptor()), SIOCOUTQ, &count) == 0 ? count : -1;
    };
    // Acknowledged on loopback means queued at the server's socket; one
    // turn of the event loop then reads it there. A reply carries the
    // acknowledgement at once, silence waits for the delayed one.
    QCoreApplication::processEvents();
    const bool acknowledged =
        (client.bytesToWrite() == 0 && unacknowledged() == 0)
        || QTest::qWaitFor([&] { return client.bytesToWrite() == 0 && unacknowledged() == 0; }, timeoutMs);
    QCoreApplication::processEvents();
    return acknowledged;
}

} // namespace zelmor::testsupport
