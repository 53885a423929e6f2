// The TLX discovery responder of a chamber on this binary's own loopback
// address 127.0.42.1, where no broadcasting interface gives a hardware
// address. Its reply to a started chamber of the catalogue is the
// end-to-end test's.

#include "Domain/Types/ChamberTypeData.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/TlxChamberSimulation.h"
#include "support/StreamCapture.h"

#include <QtTest>
#include <QNetworkDatagram>
#include <QUdpSocket>

#include <tuple>

using zelmor::testsupport::StreamCapture;

class TestTlxBroadCastSimulation : public QObject
{
    Q_OBJECT

private slots:
    void answersEveryDatagram();
};

// Up before start(), and on port 9001 whatever the chamber's port; every
// datagram answered, an empty one too, and printed up to a NUL byte as it came.
void TestTlxBroadCastSimulation::answersEveryDatagram()
{
    QHostAddress const responder(QStringLiteral("127.0.42.1"));
    auto type = QSharedPointer<zelmor::domain::types::ChamberTypeData>::create();
    std::tie(type->type, type->size, type->developementState, type->controller) = std::make_tuple("HX", 60, "Z6", "TLX");
    zelmor::simulation::TlxChamberSimulation const chamber(type, responder.toString(), 9100);

    StreamCapture console(zelmor::simulation::consoleOutput());
    QUdpSocket client;
    QVERIFY(client.bind(QHostAddress(QStringLiteral("127.0.42.200")), 0));
    QByteArray const reply = "IP:127.0.42.1 Port:9001 MAC:00:00:00:00:00:00\tChambertype:HX 60 Z6\t"
                             "Controllertype:TLX\tCOMType:TLXDirect\tProgramController:False\r\n";
    QByteArray const sender = "127.0.42.200:" + QByteArray::number(client.localPort());
    QByteArray expectedConsole;
    for (QByteArray const& datagram : {QByteArray(), QByteArrayLiteral("ab\0cd"), QByteArray("%1")}) {
        QCOMPARE(client.writeDatagram(datagram, responder, 9001), datagram.size());
        QVERIFY(QTest::qWaitFor([&] { return client.hasPendingDatagrams(); }, 10000));
        QNetworkDatagram const answer = client.receiveDatagram();
        QCOMPARE(answer.data(), reply);
        QCOMPARE(answer.senderAddress(), responder);
        QCOMPARE(answer.senderPort(), 9001);
        expectedConsole += "UDP Request " + QByteArray(datagram.constData()) + " from " + sender + "\r\nSender:"
                           + sender + " \r\n" + reply + "\r\n";
    }
    QCOMPARE(console.text(), expectedConsole);
}

QTEST_GUILESS_MAIN(TestTlxBroadCastSimulation)

#include "tst_tlxbroadcastsimulation.moc"
