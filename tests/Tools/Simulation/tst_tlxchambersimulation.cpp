// The TLX wire format of one chamber, on a real socket on this binary's own
// loopback addresses 127.0.41.x, against a reader of fixed values.

#include "Domain/Types/ChamberTypeData.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/SimulationReader.h"
#include "Tools/Simulation/TlxChamberSimulation.h"
#include "support/StreamCapture.h"

#include <QtTest>
#include <QTcpSocket>

#include <functional>
#include <memory>
#include <tuple>

using namespace zelmor::simulation;
using zelmor::testsupport::StreamCapture;

namespace {

constexpr int timeoutMs = 10000;
QByteArray const linkTest = "CANIDGetValue:10010010\r\n";
QByteArray const linkAnswer = "41\r\nCANIDGetValue:10010010:Communication OK\r\n";
QByteArray const error = "07\r\nError\r\n";

QString address(int host)
{
    return QStringLiteral("127.0.41.%1").arg(host);
}

// Fixed values by address; 0x11 refuses writes, and the float at 0x1001A0F0
// has no type sample, as a float signal has none. Each read is reported.
class MapReader : public SimulationReader
{
public:
    QVariant read(int address) override
    {
        onRead();
        return values.value(address);
    }
    bool write(int address, QVariant value) override
    {
        return address != 0x11 && values.contains(address) && (values[address] = value, true);
    }
    QVariant getType(int address) override { return address == 0x1001A0F0 ? QVariant() : values.value(address); }

    QMap<int, QVariant> values{{0x0, 7}, {0x10, 42}, {0x11, 42}, {0x1001A0F0, 23.5f}, {0x60, QPoint(1, 2)},
                               {0x61, QString(74, 'a')}, {0x62, QString(75, 'b')}, {0x63, QString(98, 'c')},
                               {0x70, QString()}, {0x10010010, 5}};
    std::function<void()> onRead = [] {};
};

auto hx60()
{
    auto type = QSharedPointer<zelmor::domain::types::ChamberTypeData>::create();
    std::tie(type->type, type->size, type->developementState, type->controller) = std::make_tuple("HX", 60, "Z6", "TLX");
    return type;
}

// A started chamber on its own address.
struct Bench
{
    explicit Bench(int host, bool withReader = true) : chamber(hx60(), address(host))
    {
        if (withReader)
            chamber.setSimulationReader(map);
        chamber.start();
    }

    QSharedPointer<MapReader> map = QSharedPointer<MapReader>::create();
    TlxChamberSimulation chamber;
};

bool connected(QTcpSocket& client, int host, int port = 9000)
{
    client.connectToHost(address(host), port);
    return client.waitForConnected(timeoutMs);
}

// The next `size` bytes, or what came of them in time; returns as soon as they are there.
QByteArray receive(QTcpSocket& client, qint64 size)
{
    QSignalSpy arrived(&client, &QTcpSocket::readyRead);
    while (client.bytesAvailable() < size && arrived.wait(timeoutMs)) {
    }
    return client.read(size);
}

} // namespace

class TestTlxChamberSimulation : public QObject
{
    Q_OBJECT

private slots:
    void exchange_data();
    void exchange();
    void newestClientWins();
    void destroyedChamberDropsPendingAnswer();
    void constructorsAndStart();
    void shortBodyTakesTwoDigits();
};

void TestTlxChamberSimulation::exchange_data()
{
    // Requests go out one by one, each after the answer to the one before.
    QTest::addColumn<bool>("withReader");
    QTest::addColumn<QByteArrayList>("requests");
    QTest::addColumn<QByteArrayList>("answers");
    auto row = [](char const* name, QByteArrayList requests, QByteArrayList answers, bool withReader = true) {
        QTest::newRow(name) << withReader << requests << answers;
    };
    row("link test", {linkTest}, {linkAnswer});
    row("link test in lower case", {"canidgetvalue:10010010\r\n"}, {error});
    row("link test behind rubbish", {"x" + linkTest}, {error});
    row("no reader: even the link test fails", {linkTest, "CANIDGetValue:00000010\r\n"}, {error, error}, false);
    row("int", {"CANIDGetValue:00000010\r\n"}, {"27\r\nCANIDGetValue:00000010:42\r\n"});
    row("float", {"CANIDGetValue:1001A0F0\r\n"}, {"29\r\nCANIDGetValue:1001A0F0:23.5\r\n"});
    row("value without text", {"CANIDGetValue:00000060\r\n"}, {"25\r\nCANIDGetValue:00000060:\r\n"});
    row("lower case hex kept", {"CANIDGetValue:1001a0f0\r\n"}, {"29\r\nCANIDGetValue:1001a0f0:23.5\r\n"});
    row("80000000 and above are address 0", {"CANIDGetValue:80000000\r\n", "CANIDGetValue:ffffffff\r\n"},
        {"26\r\nCANIDGetValue:80000000:7\r\n", "26\r\nCANIDGetValue:ffffffff:7\r\n"});
    row("unknown identifier", {"CANIDGetValue:00000099\r\n"}, {error});
    row("7 or 9 digits, LF alone, no line end",
        {"CANIDGetValue:1001A0F\r\n", "CANIDGetValue:1001A0F00\r\n", "CANIDGetValue:1001A0F0\n", "CANIDGetValue:1001A0F0"},
        {error, error, error, error});
    row("split over two reads", {"CANIDGetValue:1001", "A0F0\r\n"}, {error, error});
    row("two reads in one", {"CANIDGetValue:1001A0F0\r\nCANIDGetValue:00000010\r\n"}, {"29\r\nCANIDGetValue:1001A0F0:23.5\r\n"});
    row("rubbish behind", {"CANIDGetValue:00000010\r\nxyz"}, {"27\r\nCANIDGetValue:00000010:42\r\n"});
    row("NUL before the line end, NUL behind it",
        {QByteArrayLiteral("CANIDGetValue:00000010\0\r\n"), QByteArrayLiteral("CANIDGetValue:00000010\r\n\0z")},
        {error, "27\r\nCANIDGetValue:00000010:42\r\n"});
    row("lengths 99, 100 and 123",
        {"CANIDGetValue:00000061\r\n", "CANIDGetValue:00000062\r\n", "CANIDGetValue:00000063\r\n"},
        {"99\r\nCANIDGetValue:00000061:" + QByteArray(74, 'a') + "\r\n",
         "100\r\nCANIDGetValue:00000062:" + QByteArray(75, 'b') + "\r\n",
         "123\r\nCANIDGetValue:00000063:" + QByteArray(98, 'c') + "\r\n"});
    row("write, read back", {"CANIDWriteValue:00000010:17\r\n", "CANIDGetValue:00000010\r\n"},
        {"29\r\nCANIDWriteValue:00000010:17\r\n", "27\r\nCANIDGetValue:00000010:17\r\n"});
    row("refused write echoed", {"CANIDWriteValue:00000011:5\r\n", "CANIDGetValue:00000011\r\n"},
        {"28\r\nCANIDWriteValue:00000011:5\r\n", "27\r\nCANIDGetValue:00000011:42\r\n"});
    row("no type sample: not written", {"CANIDWriteValue:1001A0F0:30\r\n", "CANIDGetValue:1001A0F0\r\n"},
        {error, "29\r\nCANIDGetValue:1001A0F0:23.5\r\n"});
    row("write to unknown identifier, write of nothing",
        {"CANIDWriteValue:00000099:1\r\n", "CANIDWriteValue:00000010:\r\n"}, {error, error});
    row("write to 80000000", {"CANIDWriteValue:80000000:9\r\n", "CANIDGetValue:00000000\r\n"},
        {"28\r\nCANIDWriteValue:80000000:9\r\n", "26\r\nCANIDGetValue:00000000:9\r\n"});
    // The value runs up to the last CR LF.
    row("two writes in one", {"CANIDWriteValue:00000010:1\r\nCANIDWriteValue:00000010:2\r\n", "CANIDGetValue:00000010\r\n"},
        {"56\r\nCANIDWriteValue:00000010:1\r\nCANIDWriteValue:00000010:2\r\n",
         "54\r\nCANIDGetValue:00000010:1\r\nCANIDWriteValue:00000010:2\r\n"});
    row("write cut at NUL", {QByteArrayLiteral("CANIDWriteValue:00000010:5\r\n\0z\r\n")}, {"28\r\nCANIDWriteValue:00000010:5\r\n"});
    // The length counts characters: "\xc3\xa4" is one.
    row("length in characters", {"CANIDWriteValue:00000070:\xc3\xa4\r\n", "CANIDGetValue:00000070\r\n"},
        {"28\r\nCANIDWriteValue:00000070:\xc3\xa4\r\n", "26\r\nCANIDGetValue:00000070:\xc3\xa4\r\n"});
}

void TestTlxChamberSimulation::exchange()
{
    QFETCH(bool, withReader);
    QFETCH(QByteArrayList, requests);
    QFETCH(QByteArrayList, answers);
    Bench bench(1, withReader);
    QTcpSocket client;
    QVERIFY(connected(client, 1));
    for (int i = 0; i < requests.size(); ++i) {
        QElapsedTimer clock;
        clock.start();
        client.write(requests.at(i));
        QCOMPARE(receive(client, answers.at(i).size()), answers.at(i));
        // Never earlier than 20 ms.
        QVERIFY2(clock.nsecsElapsed() >= 20 * 1000 * 1000, QByteArray::number(clock.nsecsElapsed()).constData());
    }
    // Nothing more came: the next answer is the link test's.
    QByteArray const last = withReader ? linkAnswer : error;
    client.write(linkTest);
    QCOMPARE(receive(client, last.size()), last);
}

void TestTlxChamberSimulation::newestClientWins()
{
    StreamCapture console(consoleOutput());
    Bench bench(3);
    QTcpSocket first;
    QTcpSocket second;
    QVERIFY(connected(first, 3));
    QTRY_VERIFY(console.text().endsWith("Connect TLX simulation \r\n"));
    // The second client comes while the answer to the first is pending.
    bench.map->onRead = [&] { second.connectToHost(address(3), 9000); };
    QSignalSpy firstGone(&first, &QTcpSocket::disconnected);
    first.write("CANIDGetValue:00000060\r\n");

    QCOMPARE(receive(second, 29), QByteArray("25\r\nCANIDGetValue:00000060:\r\n"));
    QVERIFY(firstGone.count() == 1 || firstGone.wait(timeoutMs));
    QCOMPARE(first.readAll(), QByteArray());
    QCOMPARE(console.text(), QByteArray("Start TLX simulation HX 60 Z6 on 127.0.41.3:9000\r\n"
                                        "Connect TLX simulation \r\nConnect TLX simulation \r\n"));
}

void TestTlxChamberSimulation::destroyedChamberDropsPendingAnswer()
{
    auto bench = std::make_unique<Bench>(4);
    QTcpSocket client;
    QVERIFY(connected(client, 4));
    bool asked = false;
    bench->map->onRead = [&] { asked = true; };
    client.write("CANIDGetValue:00000060\r\n");
    QTRY_VERIFY(asked);
    QSignalSpy gone(&client, &QTcpSocket::disconnected);
    bench.reset();
    QVERIFY(gone.count() == 1 || gone.wait(timeoutMs));
    // A timer of the same delay started now fires after the pending answer's.
    bool later = false;
    QTimer::singleShot(20, [&] { later = true; });
    QTRY_VERIFY(later);
    QCOMPARE(client.readAll(), QByteArray());
}

// The responder is up from construction, the listener from start(); a
// second start() prints again and leaves the listener as it is.
void TestTlxChamberSimulation::constructorsAndStart()
{
    QCOMPARE(TlxChamberSimulation(hx60()).getIpAddress(), QStringLiteral("127.0.0.1"));
    TlxChamberSimulation chamber(hx60(), address(6), 9100);
    QCOMPARE(chamber.getIpAddress(), address(6));
    QCOMPARE(chamber.getProtocolId(), 4);
    chamber.setSimulationReader(QSharedPointer<MapReader>::create());
    StreamCapture console(consoleOutput());
    QVERIFY(chamber.start());
    QVERIFY(!chamber.start());
    QByteArray const startLine = "Start TLX simulation HX 60 Z6 on 127.0.41.6:9100\r\n";
    QCOMPARE(console.text(), startLine + startLine);
    QTcpSocket client;
    QVERIFY(connected(client, 6, 9100));
    client.write(linkTest);
    QCOMPARE(receive(client, linkAnswer.size()), linkAnswer);
}

void TestTlxChamberSimulation::shortBodyTakesTwoDigits()
{
    // Every answer built from a request is longer: the padding shows only here.
    QCOMPARE(TlxChamberSimulation::frame(QStringLiteral("Answer\r\n\xe4")), QByteArray("09\r\nAnswer\r\n\xc3\xa4"));
}

QTEST_GUILESS_MAIN(TestTlxChamberSimulation)

#include "tst_tlxchambersimulation.moc"
