#include "Domain/Types/ChamberTypeData.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/TlxBroadCastSimulation.h"
#include "Tools/Simulation/TlxChamberSimulation.h"
#include "support/StreamCapture.h"

#include <QtTest>
#include <QNetworkDatagram>
#include <QNetworkInterface>
#include <QUdpSocket>

#include <memory>
#include <tuple>

using namespace zelmor::simulation;
using zelmor::testsupport::StreamCapture;

namespace {

// This binary's own loopback addresses, so that test binaries can run side by side.
QString address(int host)
{
    return QStringLiteral("127.0.42.%1").arg(host);
}

QByteArray reply(int host, QByteArray const& chamberType, QByteArray const& controllerType)
{
    return "IP:" + address(host).toUtf8() + " Port:9001 MAC:00:00:00:00:00:00\tChambertype:" + chamberType
           + "\tControllertype:" + controllerType + "\tCOMType:TLXDirect\tProgramController:False\r\n";
}

} // namespace

class TestTlxBroadCastSimulation : public QObject
{
    Q_OBJECT

private slots:
    void answersEveryDatagram_data();
    void answersEveryDatagram();
    void macAddressOfInterface();
};

void TestTlxBroadCastSimulation::answersEveryDatagram_data()
{
    QTest::addColumn<int>("host");
    QTest::addColumn<QString>("owner"); // "default", "texts" or "chamber"
    QTest::addColumn<QByteArrayList>("datagrams");
    QTest::addColumn<QByteArrayList>("printed");
    QTest::addColumn<QByteArray>("reply");
    QByteArray const hx60 = "HX 60 Z6";
    QTest::newRow("default texts") << 1 << "default" << QByteArrayList{"search"} << QByteArrayList{"search"} << reply(1, hx60, "S4.1");
    QTest::newRow("texts given") << 2 << "texts" << QByteArrayList{"?"} << QByteArrayList{"?"} << reply(2, "A %1 B", "%2");
    QTest::newRow("empty datagram") << 3 << "default" << QByteArrayList{""} << QByteArrayList{""} << reply(3, hx60, "S4.1");
    QTest::newRow("printed up to NUL") << 3 << "default" << QByteArrayList{QByteArrayLiteral("ab\0cd")}
                                       << QByteArrayList{"ab"} << reply(3, hx60, "S4.1");
    QTest::newRow("one answer each") << 4 << "default" << QByteArrayList{"1", "%1", "3"}
                                     << QByteArrayList{"1", "%1", "3"} << reply(4, hx60, "S4.1");
    // Up before start(), and port 9001 whatever the chamber's port.
    QTest::newRow("chamber on port 9100") << 5 << "chamber" << QByteArrayList{"x"} << QByteArrayList{"x"} << reply(5, hx60, "TLX");
}

void TestTlxBroadCastSimulation::answersEveryDatagram()
{
    QFETCH(int, host);
    QFETCH(QString, owner);
    QFETCH(QByteArrayList, datagrams);
    QFETCH(QByteArrayList, printed);
    QFETCH(QByteArray, reply);
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
        client.writeDatagram(datagram, responderAddress, TlxBroadCastSimulation::discoveryPort_);

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

void TestTlxBroadCastSimulation::macAddressOfInterface()
{
    QCOMPARE(TlxBroadCastSimulation(QHostAddress(address(6))).getMacAddress(), QStringLiteral("00:00:00:00:00:00"));
    for (QNetworkInterface const& candidate : QNetworkInterface::allInterfaces()) {
        auto const flags = candidate.flags();
        if (!flags.testFlag(QNetworkInterface::IsUp) || !flags.testFlag(QNetworkInterface::CanBroadcast)
            || flags.testFlag(QNetworkInterface::IsLoopBack))
            continue;
        for (QNetworkAddressEntry const& entry : candidate.addressEntries()) {
            if (entry.ip().protocol() == QAbstractSocket::IPv4Protocol) {
                QCOMPARE(TlxBroadCastSimulation(entry.ip()).getMacAddress(), candidate.hardwareAddress());
                return;
            }
        }
    }
    QSKIP("no broadcasting interface with an IPv4 address");
}

QTEST_GUILESS_MAIN(TestTlxBroadCastSimulation)

#include "tst_tlxbroadcastsimulation.moc"
