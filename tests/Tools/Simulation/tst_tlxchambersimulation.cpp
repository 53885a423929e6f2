// The TLX wire format and discovery reply of one chamber, on real sockets on
// this binary's own loopback addresses 127.0.41.x, where no broadcasting
// interface gives a hardware address, against a reader of fixed values.
// Plain reads and writes of the catalogue's types are the end-to-end test's.

#include "Domain/Types/ChamberTypeData.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/TlxChamberSimulation.h"
#include "support/FixedFaultPolicy.h"
#include "support/MapReader.h"
#include "support/StreamCapture.h"
#include "support/TcpExchange.h"

#include <QNetworkDatagram>
#include <QTcpSocket>
#include <QUdpSocket>
#include <QtTest>

#include <tuple>

using namespace zelmor::simulation;
using namespace zelmor::testsupport;

namespace {

constexpr int timeoutMs = 10000;
const QByteArray linkTest = "CANIDGetValue:10010010\r\n";
const QByteArray linkAnswer = "41\r\nCANIDGetValue:10010010:Communication OK\r\n";
const QByteArray error = "07\r\nError\r\n";

QString address(int host)
{
    return QStringLiteral("127.0.41.%1").arg(host);
}

auto hx60()
{
    auto type = QSharedPointer<zelmor::domain::types::ChamberTypeData>::create();
    std::tie(type->type, type->size, type->developementState, type->controller) =
        std::make_tuple("HX", 60, "Z6", "TLX");
    return type;
}

// A started chamber on its own address.
struct Bench
{
    explicit Bench(int host, bool withReader = true, int port = 9000)
        : chamber(hx60(), address(host), port)
    {
        map->values = {{0x0, 7},
                       {0x10, 42},
                       {0x1001A0F0, 23.5f},
                       {0x60, QPoint(1, 2)},
                       {0x61, QString(74, 'a')},
                       {0x62, QString(75, 'b')},
                       {0x70, QString()}};
        if (withReader)
            chamber.setSimulationReader(map);
        chamber.start();
    }

    QSharedPointer<MapReader> map = QSharedPointer<MapReader>::create();
    TlxChamberSimulation chamber;
};

} // namespace

class TestTlxChamberSimulation : public QObject
{
    Q_OBJECT

private slots:
    void exchange_data();
    void exchange();
    void newestClientWins();
    void shortBodyTakesTwoDigits();
    void discoveryBeforeStart();
    void faults_data();
    void faults();
    void offlineAndBack();
};

void TestTlxChamberSimulation::exchange_data()
{
    // Requests go out one by one, each after the answer to the one before.
    QTest::addColumn<bool>("withReader");
    QTest::addColumn<QByteArrayList>("requests");
    QTest::addColumn<QByteArrayList>("answers");
    auto row = [](const char* name, QByteArrayList requests, QByteArrayList answers, bool withReader = true) {
        QTest::newRow(name) << withReader << requests << answers;
    };
    // Only a match at position 0 counts.
    row("keyword in lower case, rubbish in front",
        {"canidgetvalue:10010010\r\n", "x" + linkTest, "xCANIDGetValue:00000010\r\n",
         "xCANIDWriteValue:00000010:5\r\n"},
        {error, error, error, error});
    row("no reader: even the link test fails", {linkTest, "CANIDGetValue:00000010\r\n"}, {error, error}, false);
    row("7 or 9 digits, LF alone, no line end, empty write value",
        {"CANIDGetValue:1001A0F\r\n", "CANIDGetValue:1001A0F00\r\n", "CANIDGetValue:1001A0F0\n",
         "CANIDGetValue:1001A0F0", "CANIDWriteValue:00000010:\r\n"},
        {error, error, error, error, error});
    row("split over two reads; two in one, the first answered",
        {"CANIDGetValue:1001", "A0F0\r\n", "CANIDGetValue:1001A0F0\r\nCANIDGetValue:00000010\r\n"},
        {error, error, "29\r\nCANIDGetValue:1001A0F0:23.5\r\n"});
    row("NUL before the line end, NUL behind it, in a write",
        {QByteArrayLiteral("CANIDGetValue:00000010\0\r\n"), QByteArrayLiteral("CANIDGetValue:00000010\r\n\0z"),
         QByteArrayLiteral("CANIDWriteValue:00000010:5\r\n\0z\r\n")},
        {error, "27\r\nCANIDGetValue:00000010:42\r\n", "28\r\nCANIDWriteValue:00000010:5\r\n"});
    row("lengths 99 and 100", {"CANIDGetValue:00000061\r\n", "CANIDGetValue:00000062\r\n"},
        {"99\r\nCANIDGetValue:00000061:" + QByteArray(74, 'a') + "\r\n",
         "100\r\nCANIDGetValue:00000062:" + QByteArray(75, 'b') + "\r\n"});
    row("80000000 and above are address 0, repeated as sent",
        {"CANIDWriteValue:80000000:9\r\n", "CANIDGetValue:ffffffff\r\n"},
        {"28\r\nCANIDWriteValue:80000000:9\r\n", "26\r\nCANIDGetValue:ffffffff:9\r\n"});
    // The value runs up to the last CR LF.
    row("two writes in one",
        {"CANIDWriteValue:00000010:1\r\nCANIDWriteValue:00000010:2\r\n", "CANIDGetValue:00000010\r\n"},
        {"56\r\nCANIDWriteValue:00000010:1\r\nCANIDWriteValue:00000010:2\r\n",
         "54\r\nCANIDGetValue:00000010:1\r\nCANIDWriteValue:00000010:2\r\n"});
    // The length counts characters: "\xc3\xa4" is one.
    row("length in characters", {"CANIDWriteValue:00000070:\xc3\xa4\r\n", "CANIDGetValue:00000070\r\n"},
        {"28\r\nCANIDWriteValue:00000070:\xc3\xa4\r\n", "26\r\nCANIDGetValue:00000070:\xc3\xa4\r\n"});
}

void TestTlxChamberSimulation::exchange()
{
    QFETCH(bool, withReader);
    QFETCH(QByteArrayList, requests);
    QFETCH(QByteArrayList, answers);
    // On the third constructor's port.
    Bench bench(1, withReader, 9100);
    QTcpSocket client;
    QVERIFY(connected(client, address(1), 9100));
    for (int i = 0; i < requests.size(); ++i) {
        QElapsedTimer clock;
        clock.start();
        client.write(requests.at(i));
        QCOMPARE(receive(client, answers.at(i).size()), answers.at(i));
        // Never earlier than 20 ms.
        QVERIFY2(clock.nsecsElapsed() >= 20 * 1000 * 1000, QByteArray::number(clock.nsecsElapsed()).constData());
    }
    // Nothing more came: the next answer is the link test's.
    const QByteArray last = withReader ? linkAnswer : error;
    client.write(linkTest);
    QCOMPARE(receive(client, last.size()), last);
}

// The answer goes to whoever is the client when it is sent; the first
// client's connection ends at once.
void TestTlxChamberSimulation::newestClientWins()
{
    StreamCapture console(consoleOutput());
    Bench bench(3);
    QTcpSocket first;
    QTcpSocket second;
    QVERIFY(connected(first, address(3), 9000));
    QTRY_VERIFY(console.text().endsWith("Connect TLX simulation \r\n"));
    // The second client comes while the answer to the first is pending.
    bench.map->onRead = [&] { second.connectToHost(address(3), 9000); };
    QSignalSpy firstGone(&first, &QTcpSocket::disconnected);
    first.write("CANIDGetValue:00000060\r\n");

    // A value without a text form: an empty third field.
    QCOMPARE(receive(second, 29), QByteArray("25\r\nCANIDGetValue:00000060:\r\n"));
    QVERIFY(firstGone.count() == 1 || firstGone.wait(timeoutMs));
    QCOMPARE(first.readAll(), QByteArray());
    QCOMPARE(console.text(), QByteArray("Start TLX simulation HX 60 Z6 on 127.0.41.3:9000\r\n"
                                        "Connect TLX simulation \r\nConnect TLX simulation \r\n"));
}

// Every answer built from a request is longer: the padding shows only here.
void TestTlxChamberSimulation::shortBodyTakesTwoDigits()
{
    QCOMPARE(TlxChamberSimulation::frame(QStringLiteral("Answer\r\n\xe4")), QByteArray("09\r\nAnswer\r\n\xc3\xa4"));
}

// On port 9001 whatever the chamber's port; every datagram answered, an
// empty one too, and printed up to a NUL byte as it came. The sender of the
// reply is the end-to-end test's.
void TestTlxChamberSimulation::discoveryBeforeStart()
{
    const QHostAddress responder(address(7));
    const TlxChamberSimulation chamber(hx60(), address(7), 9100);
    StreamCapture console(consoleOutput());
    QUdpSocket client;
    QVERIFY(client.bind(QHostAddress(address(200)), 0));
    const QByteArray reply = "IP:127.0.41.7 Port:9001 MAC:00:00:00:00:00:00\tChambertype:HX 60 Z6\t"
                             "Controllertype:TLX\tCOMType:TLXDirect\tProgramController:False\r\n";
    const QByteArray sender = "127.0.41.200:" + QByteArray::number(client.localPort());
    QByteArray expectedConsole;
    for (const QByteArray& datagram : {QByteArray(), QByteArrayLiteral("ab\0cd"), QByteArray("%1")}) {
        QCOMPARE(client.writeDatagram(datagram, responder, 9001), datagram.size());
        QTRY_VERIFY(client.hasPendingDatagrams());
        QCOMPARE(client.receiveDatagram().data(), reply);
        expectedConsole += "UDP Request " + QByteArray(datagram.constData()) + " from " + sender
                           + "\r\nSender:" + sender + " \r\n" + reply + "\r\n";
    }
    QCOMPARE(console.text(), expectedConsole);
}

void TestTlxChamberSimulation::faults_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("delayMs");
    QTest::addColumn<QByteArray>("strayBytes");
    QTest::addColumn<QByteArray>("answer"); // empty: none
    QTest::addColumn<int>("errors");
    const QByteArray write = "28\r\nCANIDWriteValue:00000010:5\r\n";
    QTest::newRow("delay alone") << int(RequestFault::None) << 100 << QByteArray() << write << 0;
    QTest::newRow("error") << int(RequestFault::Error) << 0 << QByteArray() << error << 1;
    QTest::newRow("error, late") << int(RequestFault::Error) << 60 << QByteArray() << error << 1;
    // A first digit would start a length line: a byte that is none goes in front.
    QTest::newRow("stray bytes that look like a frame") << int(RequestFault::Stray) << 0 << QByteArray("12\r\nxx")
                                                        << QByteArray("\xff"
                                                                      "12\r\nxx")
                                                        << 0;
    QTest::newRow("stray bytes") << int(RequestFault::Stray) << 0 << QByteArray("ab") << QByteArray("ab") << 0;
    QTest::newRow("dropped") << int(RequestFault::Drop) << 0 << QByteArray() << QByteArray() << 0;
}

// A write under each fault: answered 20 ms plus the delay after it came, and
// taken by the reader only when the chamber answers it itself. Afterwards,
// without faults, the link test is answered as before.
void TestTlxChamberSimulation::faults()
{
    QFETCH(int, kind);
    QFETCH(int, delayMs);
    QFETCH(QByteArray, strayBytes);
    QFETCH(QByteArray, answer);
    QFETCH(int, errors);
    Bench bench(5);
    const auto policy = QSharedPointer<FixedFaultPolicy>::create();
    policy->fault.kind = RequestFault::Kind(kind);
    policy->fault.delayMs = delayMs;
    policy->fault.strayBytes = strayBytes;
    bench.chamber.setFaultPolicy(policy);
    QTcpSocket client;
    QVERIFY(connected(client, address(5), 9000));
    QElapsedTimer clock;
    clock.start();
    client.write("CANIDWriteValue:00000010:5\r\n");
    if (answer.isEmpty()) {
        QSignalSpy arrived(&client, &QTcpSocket::readyRead);
        QVERIFY(!arrived.wait(300));
    } else {
        QCOMPARE(receive(client, answer.size()), answer);
        QVERIFY2(clock.nsecsElapsed() >= (20 + delayMs) * 1000LL * 1000,
                 qPrintable(QString::number(clock.nsecsElapsed())));
    }
    QCOMPARE(bench.map->values.value(0x10),
             QVariant(kind == RequestFault::None ? QVariant(QStringLiteral("5")) : QVariant(42)));
    policy->active = false;
    client.write(linkTest);
    QCOMPARE(receive(client, linkAnswer.size()), linkAnswer);

    const ChamberStatistics& statistics = bench.chamber.getStatistics();
    QCOMPARE(policy->asked, 2);
    QCOMPARE(statistics.getRequests(), quint64(2));
    QCOMPARE(statistics.getAnswers(), quint64(answer.isEmpty() ? 1 : 2));
    QCOMPARE(statistics.getErrors(), quint64(errors));
    QCOMPARE(statistics.getFaults(RequestFault::Kind(kind)), quint64(kind == RequestFault::None ? 0 : 1));
}

// Offline: the client is dropped, nobody can connect, the responder keeps
// silent and prints nothing. Online: all of it as before.
void TestTlxChamberSimulation::offlineAndBack()
{
    StreamCapture console(consoleOutput());
    Bench bench(6);
    QTcpSocket client;
    QVERIFY(connected(client, address(6), 9000));
    QTRY_COMPARE(bench.chamber.getClientCount(), 1);
    QUdpSocket discovery;
    QVERIFY(discovery.bind(QHostAddress(address(200)), 0));

    QVERIFY(bench.chamber.setOnline(false));
    QVERIFY(!bench.chamber.isOnline());
    QCOMPARE(bench.chamber.getClientCount(), 0);
    QTRY_COMPARE(client.state(), QAbstractSocket::UnconnectedState);
    QTcpSocket refused;
    refused.connectToHost(address(6), 9000);
    QVERIFY(!refused.waitForConnected(timeoutMs));
    QCOMPARE(discovery.writeDatagram("", QHostAddress(address(6)), 9001), 0);
    QSignalSpy answered(&discovery, &QUdpSocket::readyRead);
    QVERIFY(!answered.wait(300));
    const QByteArray printed = console.text();

    QVERIFY(bench.chamber.setOnline(true));
    QVERIFY(bench.chamber.setOnline(true));
    QTcpSocket again;
    QVERIFY(connected(again, address(6), 9000));
    again.write(linkTest);
    QCOMPARE(receive(again, linkAnswer.size()), linkAnswer);
    QCOMPARE(discovery.writeDatagram("", QHostAddress(address(6)), 9001), 0);
    QVERIFY(answered.wait(timeoutMs));
    QCOMPARE(printed, QByteArray("Start TLX simulation HX 60 Z6 on 127.0.41.6:9000\r\nConnect TLX simulation \r\n"));
}

QTEST_GUILESS_MAIN(TestTlxChamberSimulation)

#include "tst_tlxchambersimulation.moc"
