#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/ModbusOverTcpServer.h"
#include "Tools/Simulation/ModbusOverTcpServerFactory.h"
#include "support/RtuOverTcp.h"
#include "support/StreamCapture.h"

#include <QNetworkDatagram>
#include <QTcpSocket>
#include <QUdpSocket>
#include <QtTest>

using namespace zelmor::simulation;
using namespace zelmor::testsupport;

namespace {

constexpr int port = 10001;
const QByteArray sentinel = "sentinel";

// This binary's own loopback addresses, so that test binaries run side by side.
QString address(int host)
{
    return QStringLiteral("127.0.77.%1").arg(host);
}

// A converter whose one listener answers every frame it hears with "R" and the frame.
struct EchoConverter
{
    explicit EchoConverter(int host)
        : server(address(host), port)
    {
        QObject::connect(&server, &ModbusOverTcpServer::dataReceived, &server, [this](const QByteArray& frame) {
            heard << frame;
            server.write("R" + frame);
        });
    }
    ModbusOverTcpServer server;
    QByteArrayList heard;
};

} // namespace

class TestModbusOverTcpServer : public QObject
{
    Q_OBJECT

private slots:
    void calcCrc();
    void oneReadIsOneFrame();
    void eachClientGetsItsOwnReplies();
    void oneConverterForEachAddressAndPort();
};

// Low byte first, as on the wire: the check value of CRC-16/MODBUS is 4B37.
void TestModbusOverTcpServer::calcCrc()
{
    QCOMPARE(ModbusOverTcpServer::calcCrc("123456789").toHex(), QByteArray("374b"));
    QCOMPARE(ModbusOverTcpServer::calcCrc(QByteArray::fromHex("010300000001")).toHex(), QByteArray("840a"));
}

// Each read on its own: 7 bytes dropped; 8 passed, a wrong CRC too; two
// frames in one read passed as one; a frame split in halves dropped.
void TestModbusOverTcpServer::oneReadIsOneFrame()
{
    const QByteArray frame = QByteArray::fromHex("010300000001840A");
    const QByteArray wrongCrc = QByteArray::fromHex("0203000000010000");
    EchoConverter converter(1);
    QTcpSocket client;
    QVERIFY(connected(client, address(1), port));
    for (const QByteArray& bytes :
         {frame.left(7), frame, wrongCrc, frame + wrongCrc, frame.left(4), frame.mid(4), sentinel})
        QVERIFY(deliver(client, bytes));
    const QByteArrayList heard{frame, wrongCrc, frame + wrongCrc, sentinel};
    const QByteArray replies = "R" + heard.join("R");
    QCOMPARE(receive(client, replies.size()), replies);
    QCOMPARE(converter.heard, heard);
}

void TestModbusOverTcpServer::eachClientGetsItsOwnReplies()
{
    EchoConverter converter(2);
    QTcpSocket first;
    QTcpSocket second;
    QVERIFY(connected(first, address(2), port) && connected(second, address(2), port));
    QVERIFY(deliver(first, "11111111") && deliver(second, "22222222") && deliver(first, "33333333"));
    // Outside of a frame there is nobody to write to.
    converter.server.write("nowhere");
    QCOMPARE(receive(first, 18), QByteArray("R11111111R33333333"));
    QCOMPARE(receive(second, 9), QByteArray("R22222222"));

    // A client that goes away leaves the others and the listener as they were.
    first.disconnectFromHost();
    QTcpSocket third;
    QVERIFY(connected(third, address(2), port));
    QVERIFY(deliver(third, sentinel) && deliver(second, sentinel));
    QCOMPARE(receive(third, 9) + receive(second, 9), "R" + sentinel + "R" + sentinel);
    QCOMPARE(second.readAll() + third.readAll(), QByteArray());
}

// One converter for each address and port, listening from its creation on,
// with a Wut responder on 8513, or an XPort one on 30718 for converter port
// 8000. Either answers any datagram, even an empty one, with 22 reserved
// bytes and the hardware address: 28 zero bytes on a loopback address.
void TestModbusOverTcpServer::oneConverterForEachAddressAndPort()
{
    ModbusOverTcpServer* const converter = ModbusOverTcpServerFactory::create(address(3), port);
    QCOMPARE(ModbusOverTcpServerFactory::create(address(3), port), converter);
    QVERIFY(ModbusOverTcpServerFactory::create(address(3), 10002) != converter);
    QVERIFY(ModbusOverTcpServerFactory::create(address(4), port) != converter);
    ModbusOverTcpServerFactory::create(address(5), 8000);
    QTcpSocket tcpClient;
    QVERIFY(connected(tcpClient, address(3), port));

    StreamCapture console(consoleOutput());
    QUdpSocket client;
    QVERIFY(client.bind(QHostAddress(address(200)), 0));
    for (const QByteArray& datagram : {QByteArray(), QByteArray(300, '\xff')}) {
        for (const auto& [host, discoveryPort] : {std::pair{4, 8513}, std::pair{5, 30718}}) {
            QCOMPARE(client.writeDatagram(datagram, QHostAddress(address(host)), quint16(discoveryPort)),
                     datagram.size());
            QTRY_VERIFY(client.hasPendingDatagrams());
            const QNetworkDatagram reply = client.receiveDatagram();
            QCOMPARE(reply.data(), QByteArray(28, '\0'));
            QCOMPARE(reply.senderAddress(), QHostAddress(address(host)));
            QCOMPARE(reply.senderPort(), discoveryPort);
        }
    }
    QCOMPARE(console.text(),
             ("UDP Request from 127.0.77.200:" + QByteArray::number(client.localPort()) + "\r\n").repeated(4));
}

QTEST_GUILESS_MAIN(TestModbusOverTcpServer)

#include "tst_modbusovertcpserver.moc"
