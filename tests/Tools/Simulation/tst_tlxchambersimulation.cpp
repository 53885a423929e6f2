#include "Domain/Types/ChamberTypeData.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/SimulationDevice.h"
#include "Tools/Simulation/SimulationValueBool.h"
#include "Tools/Simulation/SimulationValueFloat.h"
#include "Tools/Simulation/SimulationValueInt.h"
#include "Tools/Simulation/SimulationValueShort.h"
#include "Tools/Simulation/SimulationValueUInt.h"
#include "Tools/Simulation/TlxChamberSimulation.h"
#include "support/StreamCapture.h"

#include <QtTest>
#include <QTcpSocket>

#include <functional>
#include <memory>
#include <tuple>

#include <sys/socket.h>

using namespace zelmor::simulation;
using zelmor::testsupport::StreamCapture;

namespace {

constexpr int timeoutMs = 10000;
constexpr int noAddress = SimulationValue::noAddress_;
QByteArray const linkTest = "CANIDGetValue:10010010\r\n";
QByteArray const linkAnswer = "41\r\nCANIDGetValue:10010010:Communication OK\r\n";
QByteArray const error = "07\r\nError\r\n";

// This binary's own loopback addresses, so that test binaries can run side by side.
QString address(int host)
{
    return QStringLiteral("127.0.41.%1").arg(host);
}

// Values of any kind, writable where present; each read is reported.
class MapReader : public SimulationReader
{
public:
    QVariant read(int address) override
    {
        onRead();
        return values.value(address);
    }
    bool write(int address, QVariant value) override { return values.contains(address) && (values[address] = value, true); }
    QVariant getType(int address) override { return values.value(address); }

    QMap<int, QVariant> values{{0x60, QPoint(1, 2)}, {0x61, QString(74, 'a')}, {0x62, QString(75, 'b')},
                               {0x63, QString(98, 'c')}, {0x70, QString()}, {0x10010010, 5}};
    std::function<void()> onRead = [] {};
};

auto hx60()
{
    auto type = QSharedPointer<zelmor::domain::types::ChamberTypeData>::create();
    std::tie(type->type, type->size, type->developementState, type->controller) = std::make_tuple("HX", 60, "Z6", "TLX");
    return type;
}

// A started chamber. Reads go to set addresses, which don't move with time;
// 0x11 is the process side of 0x10.
struct Bench
{
    explicit Bench(int host, bool withReader = true) : chamber(hx60(), address(host))
    {
        auto device = QSharedPointer<SimulationDevice>::create();
        device->add(QSharedPointer<SimulationValueInt>::create(7, 7, 0.0f, 0x0, noAddress));
        device->add(QSharedPointer<SimulationValueInt>::create(3, 42, 0.0f, 0x10, 0x11));
        device->add(QSharedPointer<SimulationValueFloat>::create(20.0f, 23.5f, 60.0f, 0x1001A0F0, 0x1001A0F1));
        device->add(QSharedPointer<SimulationValueFloat>::create(0.0f, 0.1f, 60.0f, 0x50, noAddress));
        device->add(QSharedPointer<SimulationValueBool>::create(false, true, 60.0f, 0x20, noAddress));
        device->add(QSharedPointer<SimulationValueBool>::create(true, false, 60.0f, 0x21, noAddress));
        device->add(QSharedPointer<SimulationValueUInt>::create(0u, 4000000000u, 60.0f, 0x30, noAddress));
        device->add(QSharedPointer<SimulationValueShort>::create(short(0), short(-5), 60.0f, 0x40, noAddress));
        device->add(map);
        if (withReader)
            chamber.setSimulationReader(device);
        chamber.start();
    }

    QSharedPointer<MapReader> map = QSharedPointer<MapReader>::create();
    TlxChamberSimulation chamber;
};

bool connected(QTcpSocket& client, int host, int port = TlxChamberSimulation::defaultPort_)
{
    client.connectToHost(address(host), port);
    return client.waitForConnected(timeoutMs);
}

// The next `size` bytes, or what came of them in time.
QByteArray receive(QTcpSocket& client, qint64 size)
{
    static_cast<void>(QTest::qWaitFor([&] { return client.bytesAvailable() >= size; }, timeoutMs));
    return client.read(size);
}

// What arrives until it ends with `tail`.
QByteArray receiveUpTo(QTcpSocket& client, QByteArray const& tail)
{
    QByteArray received;
    static_cast<void>(QTest::qWaitFor([&] { return (received += client.readAll()).endsWith(tail); }, timeoutMs));
    return received;
}

} // namespace

class TestTlxChamberSimulation : public QObject
{
    Q_OBJECT

private slots:
    void exchange_data();
    void exchange();
    void answerWaitsTwentyMilliseconds_data();
    void answerWaitsTwentyMilliseconds();
    void newestClientWins();
    void destroyedChamberDropsPendingAnswer();
    void start_data();
    void start();
    void badInputHarmsNobody_data();
    void badInputHarmsNobody();
    void shortBodyTakesTwoDigits();
};

void TestTlxChamberSimulation::exchange_data()
{
    // Requests go out one by one, each after the answer to the one before.
    QTest::addColumn<QByteArrayList>("requests");
    QTest::addColumn<QByteArrayList>("answers");
    auto row = [](char const* name, QByteArrayList requests, QByteArrayList answers) {
        QTest::newRow(name) << requests << answers;
    };
    row("link test", {linkTest}, {linkAnswer});
    row("link test in lower case", {"canidgetvalue:10010010\r\n"}, {error});
    row("link test behind rubbish", {"x" + linkTest}, {error});
    row("float", {"CANIDGetValue:1001A0F0\r\n"}, {"29\r\nCANIDGetValue:1001A0F0:23.5\r\n"});
    // The shortest form of the float widened to double, as QVariant prints it.
    row("float 0.1", {"CANIDGetValue:00000050\r\n"}, {"44\r\nCANIDGetValue:00000050:0.10000000149011612\r\n"});
    row("bool true", {"CANIDGetValue:00000020\r\n"}, {"29\r\nCANIDGetValue:00000020:true\r\n"});
    row("bool false", {"CANIDGetValue:00000021\r\n"}, {"30\r\nCANIDGetValue:00000021:false\r\n"});
    row("int", {"CANIDGetValue:00000010\r\n"}, {"27\r\nCANIDGetValue:00000010:42\r\n"});
    row("unsigned int", {"CANIDGetValue:00000030\r\n"}, {"35\r\nCANIDGetValue:00000030:4000000000\r\n"});
    row("short", {"CANIDGetValue:00000040\r\n"}, {"27\r\nCANIDGetValue:00000040:-5\r\n"});
    row("value without text", {"CANIDGetValue:00000060\r\n"}, {"25\r\nCANIDGetValue:00000060:\r\n"});
    row("lower case hex kept", {"CANIDGetValue:1001a0f0\r\n"}, {"29\r\nCANIDGetValue:1001a0f0:23.5\r\n"});
    row("80000000 is address 0", {"CANIDGetValue:80000000\r\n"}, {"26\r\nCANIDGetValue:80000000:7\r\n"});
    row("ffffffff is address 0", {"CANIDGetValue:ffffffff\r\n"}, {"26\r\nCANIDGetValue:ffffffff:7\r\n"});
    row("unknown identifier", {"CANIDGetValue:00000099\r\n"}, {error});
    row("seven digits", {"CANIDGetValue:1001A0F\r\n"}, {error});
    row("nine digits", {"CANIDGetValue:1001A0F00\r\n"}, {error});
    row("LF alone", {"CANIDGetValue:1001A0F0\n"}, {error});
    row("no line end", {"CANIDGetValue:1001A0F0"}, {error});
    row("split over two reads", {"CANIDGetValue:1001", "A0F0\r\n"}, {error, error});
    row("two reads in one", {"CANIDGetValue:1001A0F0\r\nCANIDGetValue:00000010\r\n"}, {"29\r\nCANIDGetValue:1001A0F0:23.5\r\n"});
    row("rubbish behind", {"CANIDGetValue:00000010\r\nxyz"}, {"27\r\nCANIDGetValue:00000010:42\r\n"});
    row("NUL before the line end", {QByteArrayLiteral("CANIDGetValue:00000010\0\r\n")}, {error});
    row("NUL behind it", {QByteArrayLiteral("CANIDGetValue:00000010\r\n\0z")}, {"27\r\nCANIDGetValue:00000010:42\r\n"});
    row("length 99", {"CANIDGetValue:00000061\r\n"}, {"99\r\nCANIDGetValue:00000061:" + QByteArray(74, 'a') + "\r\n"});
    row("length 100", {"CANIDGetValue:00000062\r\n"}, {"100\r\nCANIDGetValue:00000062:" + QByteArray(75, 'b') + "\r\n"});
    row("length 123", {"CANIDGetValue:00000063\r\n"}, {"123\r\nCANIDGetValue:00000063:" + QByteArray(98, 'c') + "\r\n"});
    row("write, read back", {"CANIDWriteValue:00000010:17\r\n", "CANIDGetValue:00000010\r\n"},
        {"29\r\nCANIDWriteValue:00000010:17\r\n", "27\r\nCANIDGetValue:00000010:17\r\n"});
    row("refused write echoed", {"CANIDWriteValue:00000011:5\r\n", "CANIDGetValue:00000011\r\n"},
        {"28\r\nCANIDWriteValue:00000011:5\r\n", "27\r\nCANIDGetValue:00000011:42\r\n"});
    // A float has no type sample, so this protocol can't write it.
    row("write to a float", {"CANIDWriteValue:1001A0F0:30\r\n", "CANIDGetValue:1001A0F0\r\n"},
        {error, "29\r\nCANIDGetValue:1001A0F0:23.5\r\n"});
    row("write to unknown identifier", {"CANIDWriteValue:00000099:1\r\n"}, {error});
    row("write of nothing", {"CANIDWriteValue:00000010:\r\n"}, {error});
    row("write to 80000000", {"CANIDWriteValue:80000000:9\r\n", "CANIDGetValue:00000000\r\n"},
        {"28\r\nCANIDWriteValue:80000000:9\r\n", "26\r\nCANIDGetValue:00000000:9\r\n"});
    row("two writes in one", {"CANIDWriteValue:00000010:1\r\nCANIDWriteValue:00000010:2\r\n", "CANIDGetValue:00000010\r\n"},
        {"56\r\nCANIDWriteValue:00000010:1\r\nCANIDWriteValue:00000010:2\r\n", "26\r\nCANIDGetValue:00000010:0\r\n"});
    row("write cut at NUL", {QByteArrayLiteral("CANIDWriteValue:00000010:5\r\n\0z\r\n")}, {"28\r\nCANIDWriteValue:00000010:5\r\n"});
    // The length counts characters: "\xc3\xa4" is one.
    row("length in characters", {"CANIDWriteValue:00000070:\xc3\xa4\r\n", "CANIDGetValue:00000070\r\n"},
        {"28\r\nCANIDWriteValue:00000070:\xc3\xa4\r\n", "26\r\nCANIDGetValue:00000070:\xc3\xa4\r\n"});
}

void TestTlxChamberSimulation::exchange()
{
    QFETCH(QByteArrayList, requests);
    QFETCH(QByteArrayList, answers);
    Bench bench(1);
    QTcpSocket client;
    QVERIFY(connected(client, 1));
    for (int i = 0; i < requests.size(); ++i) {
        client.write(requests.at(i));
        QCOMPARE(receive(client, answers.at(i).size()), answers.at(i));
    }
    // Nothing more came: the next answer is the link test's.
    client.write(linkTest);
    QCOMPARE(receiveUpTo(client, linkAnswer), linkAnswer);
}

void TestTlxChamberSimulation::answerWaitsTwentyMilliseconds_data()
{
    QTest::addColumn<bool>("withReader");
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("link test") << true << linkTest << linkAnswer;
    QTest::newRow("read") << true << QByteArray("CANIDGetValue:00000010\r\n") << QByteArray("27\r\nCANIDGetValue:00000010:42\r\n");
    QTest::newRow("error") << true << QByteArray("?\r\n") << error;
    QTest::newRow("no reader, link test") << false << linkTest << error;
    QTest::newRow("no reader, read") << false << QByteArray("CANIDGetValue:00000010\r\n") << error;
}

void TestTlxChamberSimulation::answerWaitsTwentyMilliseconds()
{
    QFETCH(bool, withReader);
    QFETCH(QByteArray, request);
    QFETCH(QByteArray, answer);
    Bench bench(2, withReader);
    QTcpSocket client;
    QVERIFY(connected(client, 2));
    QSignalSpy answered(&client, &QTcpSocket::readyRead);
    QElapsedTimer clock;
    clock.start();
    client.write(request);
    QVERIFY(answered.wait(timeoutMs));
    qint64 const elapsedNs = clock.nsecsElapsed();
    QVERIFY2(elapsedNs >= TlxChamberSimulation::answerDelayMs_ * 1000000LL, QByteArray::number(elapsedNs).constData());
    QCOMPARE(receive(client, answer.size()), answer);
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
    bench.map->onRead = [&] { second.connectToHost(address(3), TlxChamberSimulation::defaultPort_); };
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
    QTimer later;
    later.setSingleShot(true);
    QSignalSpy fired(&later, &QTimer::timeout);
    later.start(TlxChamberSimulation::answerDelayMs_);
    QVERIFY(fired.wait(timeoutMs));
    QCOMPARE(client.readAll(), QByteArray());
}

void TestTlxChamberSimulation::start_data()
{
    QTest::addColumn<int>("host"); // 0: the first constructor, not started (its address is shared)
    QTest::addColumn<int>("port"); // 0: the second constructor
    QTest::addColumn<QString>("ipAddress");
    QTest::newRow("default address") << 0 << 0 << "127.0.0.1";
    QTest::newRow("address given") << 5 << 0 << "127.0.41.5";
    QTest::newRow("port given") << 6 << 9100 << "127.0.41.6";
}

void TestTlxChamberSimulation::start()
{
    QFETCH(int, host);
    QFETCH(int, port);
    QFETCH(QString, ipAddress);
    TlxChamberSimulation* const made = host == 0 ? new TlxChamberSimulation(hx60())
                                       : port == 0 ? new TlxChamberSimulation(hx60(), address(host))
                                                   : new TlxChamberSimulation(hx60(), address(host), port);
    std::unique_ptr<TlxChamberSimulation> chamber(made);
    QCOMPARE(chamber->getIpAddress(), ipAddress);
    QCOMPARE(chamber->getProtocolId(), 4);
    if (host == 0)
        return;

    chamber->setSimulationReader(QSharedPointer<MapReader>::create());
    StreamCapture console(consoleOutput());
    QVERIFY(chamber->start());
    QVERIFY(!chamber->start()); // harmless
    QByteArray const startLine = "Start TLX simulation HX 60 Z6 on " + ipAddress.toUtf8() + (port ? ":9100\r\n" : ":9000\r\n");
    QCOMPARE(console.text(), startLine + startLine);
    QTcpSocket client;
    QVERIFY(connected(client, host, port ? port : 9000));
    client.write(linkTest);
    QCOMPARE(receive(client, linkAnswer.size()), linkAnswer);
}

void TestTlxChamberSimulation::badInputHarmsNobody_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<bool>("halfClose");
    QByteArray random(64 * 1024, Qt::Uninitialized);
    QRandomGenerator(4711).fillRange(reinterpret_cast<quint32*>(random.data()), random.size() / 4);
    int const megabyte = 1024 * 1024;
    QTest::newRow("random bytes") << random << false;
    QTest::newRow("1 MB line") << QByteArray(megabyte, 'x') << false;
    // Near misses everywhere: a search that tried every position would be quadratic.
    QTest::newRow("1 MB of near misses") << QByteArray("CANIDWriteValue:00000070:x").repeated(megabyte / 26) << false;
    QTest::newRow("1 MB write") << "CANIDWriteValue:00000070:" + QByteArray(megabyte, 'v') + "\r\n" << false;
    QTest::newRow("half-open") << QByteArray("CANIDGetValue:0000") << false;
    QTest::newRow("half-closed") << QByteArray("CANIDGetValue:00000010\r\n") << true;
}

void TestTlxChamberSimulation::badInputHarmsNobody()
{
    QFETCH(QByteArray, payload);
    QFETCH(bool, halfClose);
    Bench attacked(7);
    Bench other(8);
    QTcpSocket attacker;
    QVERIFY(connected(attacker, 7));
    attacker.write(payload);
    QVERIFY(QTest::qWaitFor([&] { return attacker.bytesToWrite() == 0; }, timeoutMs));
    if (halfClose)
        QCOMPARE(::shutdown(int(attacker.socketDescriptor()), SHUT_WR), 0);

    QTcpSocket bystander;
    QVERIFY(connected(bystander, 8));
    bystander.write(linkTest);
    QCOMPARE(receive(bystander, linkAnswer.size()), linkAnswer);
    // A new client of the attacked chamber is served, after any answers still due to the old one.
    QTcpSocket next;
    QVERIFY(connected(next, 7));
    next.write(linkTest);
    QVERIFY(receiveUpTo(next, linkAnswer).endsWith(linkAnswer));
}

void TestTlxChamberSimulation::shortBodyTakesTwoDigits()
{
    // Every answer built from a request is longer: the padding shows only here.
    QCOMPARE(TlxChamberSimulation::frame(QStringLiteral("Answer\r\n\xe4")), QByteArray("09\r\nAnswer\r\n\xc3\xa4"));
}

QTEST_GUILESS_MAIN(TestTlxChamberSimulation)

#include "tst_tlxchambersimulation.moc"
