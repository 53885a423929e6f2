#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/WutBroadcastSimulation.h"
#include "Tools/Simulation/XPortBroadcastSimulation.h"
#include "support/StreamCapture.h"

#include <QtTest>
#include <QNetworkDatagram>
#include <QUdpSocket>

#include <memory>

using namespace zelmor::simulation;
using zelmor::testsupport::StreamCapture;

namespace {

constexpr int timeoutMs = 10000;

// This binary's own loopback addresses, so that test binaries run side by side.
QHostAddress address(int host)
{
    return QHostAddress(QStringLiteral("127.0.61.%1").arg(host));
}

std::unique_ptr<UdpBroadCaster> makeResponder(QString const& kind, QHostAddress const& on)
{
    if (kind == QLatin1String("XPort"))
        return std::make_unique<XPortBroadcastSimulation>(on);
    return std::make_unique<WutBroadcastSimulation>(on);
}

} // namespace

class TestConverterDiscovery : public QObject
{
    Q_OBJECT

private slots:
    void answersEveryDatagram_data();
    void answersEveryDatagram();
};

void TestConverterDiscovery::answersEveryDatagram_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("port");
    QTest::addColumn<QByteArrayList>("datagrams");
    QTest::newRow("XPort empty") << "XPort" << 30718 << QByteArrayList{""};
    QTest::newRow("XPort one byte") << "XPort" << 30718 << QByteArrayList{"\x01"};
    QTest::newRow("XPort search packet and noise")
        << "XPort" << 30718 << QByteArrayList{QByteArray::fromHex("000000f6"), QByteArray(300, '\xff')};
    QTest::newRow("Wut empty") << "Wut" << 8513 << QByteArrayList{""};
    QTest::newRow("Wut three in a row") << "Wut" << 8513 << QByteArrayList{"a", QByteArrayLiteral("\0\0"), "%1"};
}

void TestConverterDiscovery::answersEveryDatagram()
{
    QFETCH(QString, kind);
    QFETCH(int, port);
    QFETCH(QByteArrayList, datagrams);
    QHostAddress const responderAddress = address(kind == QLatin1String("XPort") ? 1 : 2);
    auto const responder = makeResponder(kind, responderAddress);

    StreamCapture console(consoleOutput());
    QUdpSocket client;
    QVERIFY(client.bind(address(200), 0));
    for (QByteArray const& datagram : datagrams)
        QCOMPARE(client.writeDatagram(datagram, responderAddress, static_cast<quint16>(port)), datagram.size());

    QByteArray expectedConsole;
    for (int i = 0; i < datagrams.size(); ++i) {
        expectedConsole += "UDP Request from 127.0.61.200:" + QByteArray::number(client.localPort()) + "\r\n";
        QVERIFY(QTest::qWaitFor([&] { return client.hasPendingDatagrams(); }, timeoutMs));
        QNetworkDatagram const answer = client.receiveDatagram();
        // 22 reserved bytes, then a loopback address's hardware address: all zero.
        QCOMPARE(answer.data(), QByteArray(28, '\0'));
        QCOMPARE(answer.senderAddress(), responderAddress);
        QCOMPARE(answer.senderPort(), port);
    }
    QCOMPARE(console.text(), expectedConsole);
}

QTEST_GUILESS_MAIN(TestConverterDiscovery)

#include "tst_converterdiscovery.moc"
