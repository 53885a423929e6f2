#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/WutBroadcastSimulation.h"
#include "Tools/Simulation/XPortBroadcastSimulation.h"
#include "support/StreamCapture.h"

#include <QtTest>
#include <QNetworkDatagram>
#include <QUdpSocket>

using namespace zelmor::simulation;
using zelmor::testsupport::StreamCapture;

class TestConverterDiscovery : public QObject
{
    Q_OBJECT

private slots:
    void answersEveryDatagram();
};

// Whatever a datagram holds, even nothing, it gets 22 reserved bytes and the
// hardware address of a loopback address: 28 zero bytes. On this binary's
// own loopback addresses, so that test binaries run side by side.
void TestConverterDiscovery::answersEveryDatagram()
{
    QHostAddress const xPortAddress(QStringLiteral("127.0.61.1"));
    QHostAddress const wutAddress(QStringLiteral("127.0.61.2"));
    XPortBroadcastSimulation const xPort(xPortAddress);
    WutBroadcastSimulation const wut(wutAddress);
    StreamCapture console(consoleOutput());
    QUdpSocket client;
    QVERIFY(client.bind(QHostAddress(QStringLiteral("127.0.61.200")), 0));
    QByteArray const line = "UDP Request from 127.0.61.200:" + QByteArray::number(client.localPort()) + "\r\n";

    QByteArray const datagrams[] = {"", "\x01", QByteArray(300, '\xff'), QByteArray::fromHex("000000f6")};
    for (QByteArray const& datagram : datagrams) {
        for (auto const& [responder, port] : {std::pair{xPortAddress, 30718}, std::pair{wutAddress, 8513}}) {
            QCOMPARE(client.writeDatagram(datagram, responder, quint16(port)), datagram.size());
            QTRY_VERIFY(client.hasPendingDatagrams());
            QNetworkDatagram const answer = client.receiveDatagram();
            QCOMPARE(answer.data(), QByteArray(28, '\0'));
            QCOMPARE(answer.senderAddress(), responder);
            QCOMPARE(answer.senderPort(), port);
        }
    }
    QCOMPARE(console.text(), line.repeated(8));
}

QTEST_GUILESS_MAIN(TestConverterDiscovery)

#include "tst_converterdiscovery.moc"
