// The TLX discovery responder on this binary's own loopback addresses
// 127.0.42.x, where no broadcasting interface gives a hardware address.

#include "Domain/Types/ChamberTypeData.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/TlxBroadCastSimulation.h"
#include "Tools/Simulation/TlxChamberSimulation.h"
#include "support/StreamCapture.h"

#include <QtTest>
#include <QNetworkDatagram>
#include <QUdpSocket>

#include <memory>
#include <tuple>

using namespace zelmor::simulation;
using zelmor::testsupport::StreamCapture;

namespace {

QString address(int host)
{
    return QStringLiteral("127.0.42.%1").arg(host);
}

} // namespace

class TestTlxBroadCastSimulation : public QObject
{
    Q_OBJECT

private slots:
    void answersEveryDatagram_data();
    void answersEveryDatagram();
};

void TestTlxBroadCastSimulation::answersEveryDatagram_data()
{
    QTest::addColumn<int>("host");
    QTest::addColumn<QString>("owner"); // "default", "texts" or "chamber"
    QTest::addColumn<QByteArrayList>("datagrams");
    QTest::addColumn<QByteArrayList>("printed");
    QTest::addColumn<QByteArray>("types"); // the reply's chamber and controller fields
    QTest::newRow("default texts; empty, NUL, one answer each")
        << 1 << "default" << QByteArrayList{"search", "", QByteArrayLiteral("ab\0cd"), "%1"}
        << QByteArrayList{"search", "", "ab", "%1"} << QByteArray("HX 60 Z6\tControllertype:S4.1");
    QTest::newRow("texts given") << 2 << "texts" << QByteArrayList{"?"} << QByteArrayList{"?"}
                                 << QByteArray("A %1 B\tControllertype:%2");
    // Up before start(), and port 9001 whatever the chamber's port.
    QTest::newRow("chamber on port 9100") << 3 << "chamber" << QByteArrayList{"x"} << QByteArrayList{"x"}
                                          << QByteArray("HX 60 Z6\tControllertype:TLX");
}

void TestTlxBroadCastSimulation::answersEveryDatagram()
{
    QFETCH(int, host);
    QFETCH(QString, owner);
    QFETCH(QByteArrayList, datagrams);
    QFETCH(QByteArrayList, printed);
    QFETCH(QByteArray, types);
    QHostAddress const responderAddress(address(host));
    auto type = QSharedPointer<zelmor::domain::types::ChamberTypeData>::create();
    std::tie(type->type, type->size, type->developementState, type->controller) = std::make_tuple("HX", 60, "Z6", "TLX");
    std::unique_ptr<QObject> const responder(
        owner == "default" ? new TlxBroadCastSimulation(responderAddress)
        : owner == "texts" ? new TlxBroadCastSimulation(responderAddress, QStringLiteral("%2"), QStringLiteral("A %1 B"))
                           : static_cast<QObject*>(new TlxChamberSimulation(type, address(host), 9100)));

    StreamCapture console(consoleOutput());
    QUdpSocket client;
    QVERIFY(client.bind(QHostAddress(address(200)), 0));
    for (QByteArray const& datagram : datagrams)
        client.writeDatagram(datagram, responderAddress, 9001);

    QByteArray const reply = "IP:" + address(host).toUtf8() + " Port:9001 MAC:00:00:00:00:00:00\tChambertype:" + types
                             + "\tCOMType:TLXDirect\tProgramController:False\r\n";
    QByteArray const sender = address(200).toUtf8() + ':' + QByteArray::number(client.localPort());
    QByteArray expectedConsole;
    for (QByteArray const& text : printed) {
        expectedConsole += "UDP Request " + text + " from " + sender + "\r\nSender:" + sender + " \r\n" + reply + "\r\n";
        QVERIFY(QTest::qWaitFor([&] { return client.hasPendingDatagrams(); }, 10000));
        QNetworkDatagram const answer = client.receiveDatagram();
        QCOMPARE(answer.data(), reply);
        QCOMPARE(answer.senderAddress(), responderAddress);
        QCOMPARE(answer.senderPort(), 9001);
    }
    QCOMPARE(console.text(), expectedConsole);
}

QTEST_GUILESS_MAIN(TestTlxBroadCastSimulation)

#include "tst_tlxbroadcastsimulation.moc"
