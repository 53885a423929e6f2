#include "Domain/Types/ChamberTypeData.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/ModbusTcpChamberSimulation.h"
#include "support/ClientProcess.h"
#include "support/FixedFaultPolicy.h"
#include "support/MapReader.h"
#include "support/RtuOverTcp.h"
#include "support/StreamCapture.h"

#include <QTcpSocket>
#include <QUdpSocket>
#include <QtTest>

#include <unistd.h>

using namespace zelmor::simulation;
using namespace zelmor::testsupport;
using zelmor::domain::types::ChamberTypeData;

namespace {

// This binary's own loopback addresses (port 502 is fixed), a new one for
// each chamber, so that test binaries run side by side.
QString nextAddress()
{
    static int host = 0;
    return QStringLiteral("127.0.62.%1").arg(++host);
}

// A started chamber. Start lines and the second start() are the end-to-end tests'.
struct Chamber
{
    Chamber()
        : server(QSharedPointer<ChamberTypeData>::create(), ipAddress)
    {
        // The float's bits are 3F800000; the ints 0x00012345, -2 and 0xFFFF0001.
        reader->values = {
            {0x10, 1.0f}, {0x20, QVariant::fromValue<ushort>(4660)}, {0x30, 74565}, {0x34, -2}, {0x38, 4294901761u},
            {0x40, true}, {0x50, QVariant::fromValue<short>(5)},     {0x60, 1.0f},  {0x70, 1.0}};
        reader->readOnly = {0x60};
        server.setSimulationReader(reader);
        started = server.start();
    }
    const QString ipAddress = nextAddress();
    const QSharedPointer<MapReader> reader = QSharedPointer<MapReader>::create();
    ModbusTcpChamberSimulation server;
    bool started = false;
};

} // namespace

class TestModbusTcpChamberSimulation : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void pymodbusRequests_data();
    void pymodbusRequests();
    void frameBytes();
    void faults_data();
    void faults();
    void offlineAndBack();
};

void TestModbusTcpChamberSimulation::initTestCase()
{
    if (::geteuid() != 0)
        QSKIP("port 502 needs root");
}

void TestModbusTcpChamberSimulation::pymodbusRequests_data()
{
    QTest::addColumn<QStringList>("operations");
    QTest::addColumn<QStringList>("replies");
    QTest::addColumn<QByteArray>("console");
    // The reader's writes ("address=type(value)"), then the dataWritten
    // signals ("signal address/registers").
    QTest::addColumn<QString>("effects");
    const auto row = [](const char* name, const QStringList& operations, const QStringList& replies,
                        const QByteArray& console = {}, const QString& effects = {}) {
        QTest::newRow(name) << operations << replies << console << effects;
    };
    const QByteArray changed = " Modbus: data changed!!\r\n";
    const QByteArray wrongCount = " not the right number of characters received\r\n";

    // Reads: the value's type decides the registers, low word first. A
    // float's are the end-to-end test's.
    row("32-bit integers", {"holding:0x30:2", "input:0x34:2", "holding:0x38:2"}, {"9029 1", "65534 65535", "1 65535"});
    row("true reads 0; unknown, short, double: 32767",
        {"holding:0x40:1", "holding:0x99:1", "holding:0x50:1", "input:0x70:1"}, {"0", "32767", "32767", "32767"});
    // Writes must cover the whole value.
    row("one or three registers to a float", {"register:0x10:5", "registers:0x10:0:16448:0", "holding:0x10:2"},
        {"exception 4", "exception 4", "0 16256"}, wrongCount + wrongCount);
    row("two registers to a float and to an int",
        {"registers:0x10:0:16448", "holding:0x10:2", "registers:0x30:0xfffe:0x7fff", "holding:0x30:2"},
        {"ok", "0 16448", "ok", "65534 32767"}, changed + changed,
        "0x10=float(3) 0x30=int(2147483646) signal 0x10/2 signal 0x30/2");
    row("the same value again: written, not changed", {"registers:0x10:0:16256"}, {"ok"}, {}, "0x10=float(1)");
    row("a non-zero word sets a bool; a short gets an invalid value",
        {"register:0x40:2", "holding:0x40:1", "register:0x50:7"}, {"ok", "0", "ok"}, changed + changed,
        "0x40=bool(true) 0x50=() signal 0x40/1 signal 0x50/1");
    // Qt hands a coil's ON on as the word of the request, FF00.
    row("coils and registers on one address",
        {"coils:0x20:1", "coil:0x20:1", "holding:0x20:1", "register:0x20:0", "coils:0x20:1"},
        {"1", "ok", "65280", "ok", "0"}, changed + changed,
        "0x20=ushort(65280) 0x20=ushort(0) signal 0x20/1 signal 0x20/1");
    row("refused: unknown address, read-only value", {"register:0x99:1", "registers:0x60:0:16384"},
        {"exception 4", "exception 4"}, " Modbus: no valid address 153\r\n Modbus: Writing new data failed\r\n");
}

void TestModbusTcpChamberSimulation::pymodbusRequests()
{
    QFETCH(QStringList, operations);
    QFETCH(QStringList, replies);
    QFETCH(QByteArray, console);
    QFETCH(QString, effects);
    if (!hasPymodbus())
        QSKIP("python3-pymodbus is missing");
    Chamber chamber;
    QVERIFY(chamber.started);
    QSignalSpy dataWritten(&chamber.server, &QModbusServer::dataWritten);
    StreamCapture output(consoleOutput());

    QCOMPARE(runModbusOperations("tcp:" + chamber.ipAddress + ":502:255", operations), replies);
    QCOMPARE(output.text(), console);
    QStringList happened;
    for (const auto& [address, value] : chamber.reader->writes)
        happened << QStringLiteral("0x%1=%2(%3)").arg(address, 0, 16).arg(value.typeName()).arg(value.toString());
    for (const QList<QVariant>& arguments : dataWritten)
        happened << QStringLiteral("signal 0x%1/%2").arg(arguments.at(1).toInt(), 0, 16).arg(arguments.at(2).toInt());
    QCOMPARE(happened.join(' '), effects);
}

// Raw frames: transaction, protocol 0, length, unit 255, then the PDU. An
// unsigned short asked as 2 registers gives a count of 4 and one register;
// a float asked as 1 a count of 2 and two registers. Unit 1 gets no reply:
// its would have come before the last.
void TestModbusTcpChamberSimulation::frameBytes()
{
    Chamber chamber;
    QVERIFY(chamber.started);
    StreamCapture output(consoleOutput());
    QTcpSocket socket;
    socket.connectToHost(chamber.ipAddress, 502);
    QVERIFY(socket.waitForConnected(10000));
    socket.write(QByteArray::fromHex("0007 0000 0006 ff 03 0020 0002  0008 0000 0006 ff 04 0010 0001"
                                     "0009 0000 0006 01 03 0010 0002  000a 0000 0006 ff 03 0020 0001"));
    const QByteArray replies = QByteArray::fromHex("0007 0000 0005 ff 03 04 1234  0008 0000 0007 ff 04 02 0000 3f80"
                                                   "000a 0000 0005 ff 03 02 1234");
    QByteArray answer;
    QTRY_VERIFY((answer += socket.readAll()).size() >= replies.size());
    QCOMPARE(answer.toHex(' '), replies.toHex(' '));
}

void TestModbusTcpChamberSimulation::faults_data()
{
    QTest::addColumn<bool>("active");
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("delayMs");
    QTest::addColumn<QByteArray>("strayBytes");
    QTest::addColumn<QByteArray>("replies");
    // The replies of frameBytes, framed by Qt's server or by the chamber alike.
    const QByteArray own = QByteArray::fromHex("0007 0000 0005 ff 03 04 1234  0008 0000 0007 ff 04 02 0000 3f80"
                                               "000a 0000 0005 ff 03 02 1234");
    QTest::newRow("inactive: Qt's server") << false << int(RequestFault::Error) << 0 << QByteArray() << own;
    QTest::newRow("delay alone") << true << int(RequestFault::None) << 100 << QByteArray() << own;
    // Each function with its exception bit, code 4 (server device failure); unit 1 still unanswered.
    QTest::newRow("error") << true << int(RequestFault::Error) << 0 << QByteArray()
                           << QByteArray::fromHex("0007 0000 0003 ff 83 04  0008 0000 0003 ff 84 04"
                                                  "000a 0000 0003 ff 83 04");
    // Short bytes are filled up to the protocol field, whose high bit is set.
    QTest::newRow("stray bytes") << true << int(RequestFault::Stray) << 0 << QByteArray("ab")
                                 << QByteArray::fromHex("616280").repeated(3);
    QTest::newRow("stray bytes like a frame")
        << true << int(RequestFault::Stray) << 0 << QByteArray::fromHex("0001 0000 0003 ff 83 04")
        << QByteArray::fromHex("0001 8000 0003 ff 83 04").repeated(3);
    QTest::newRow("dropped") << true << int(RequestFault::Drop) << 0 << QByteArray() << QByteArray();
}

// The frames of frameBytes, the first of them split over two writes, under
// each fault; the chamber's own answers come as Qt's server gives them.
void TestModbusTcpChamberSimulation::faults()
{
    QFETCH(bool, active);
    QFETCH(int, kind);
    QFETCH(int, delayMs);
    QFETCH(QByteArray, strayBytes);
    QFETCH(QByteArray, replies);
    Chamber chamber;
    QVERIFY(chamber.started);
    StreamCapture output(consoleOutput());
    const auto policy = QSharedPointer<FixedFaultPolicy>::create();
    policy->active = active;
    policy->fault.kind = RequestFault::Kind(kind);
    policy->fault.delayMs = delayMs;
    policy->fault.strayBytes = strayBytes;
    chamber.server.setFaultPolicy(policy);
    QTcpSocket socket;
    socket.connectToHost(chamber.ipAddress, 502);
    QVERIFY(socket.waitForConnected(10000));
    QTRY_COMPARE(chamber.server.getClientCount(), 1);
    QElapsedTimer clock;
    clock.start();
    QVERIFY(deliver(socket, QByteArray::fromHex("0007 0000 00")));
    socket.write(QByteArray::fromHex("06 ff 03 0020 0002  0008 0000 0006 ff 04 0010 0001"
                                     "0009 0000 0006 01 03 0010 0002  000a 0000 0006 ff 03 0020 0001"));
    QByteArray answer;
    if (replies.isEmpty()) {
        QSignalSpy arrived(&socket, &QTcpSocket::readyRead);
        QVERIFY(!arrived.wait(300));
    } else {
        QTRY_VERIFY((answer += socket.readAll()).size() >= replies.size());
        QVERIFY2(clock.nsecsElapsed() >= delayMs * 1000LL * 1000, qPrintable(QString::number(clock.nsecsElapsed())));
    }
    QCOMPARE(answer.toHex(' '), replies.toHex(' '));
    QCOMPARE(chamber.server.getStatistics().getRequests(), quint64(3));
    QCOMPARE(policy->asked, active ? 3 : 0);
}

// Offline the server listens no more and its clients are gone, the
// responder keeps silent; online both are back.
void TestModbusTcpChamberSimulation::offlineAndBack()
{
    Chamber chamber;
    QVERIFY(chamber.started);
    QTcpSocket client;
    client.connectToHost(chamber.ipAddress, 502);
    QVERIFY(client.waitForConnected(10000));
    QTRY_COMPARE(chamber.server.getClientCount(), 1);
    QUdpSocket discovery;
    QVERIFY(discovery.bind(QHostAddress(QStringLiteral("127.0.62.250")), 0));
    QSignalSpy answered(&discovery, &QUdpSocket::readyRead);

    QVERIFY(chamber.server.setOnline(false));
    QTRY_COMPARE(client.state(), QAbstractSocket::UnconnectedState);
    QTRY_COMPARE(chamber.server.getClientCount(), 0);
    QTcpSocket refused;
    refused.connectToHost(chamber.ipAddress, 502);
    QVERIFY(!refused.waitForConnected(2000));
    QCOMPARE(discovery.writeDatagram("", QHostAddress(chamber.ipAddress), 30718), 0);
    QVERIFY(!answered.wait(300));

    QVERIFY(chamber.server.setOnline(true));
    QTcpSocket again;
    again.connectToHost(chamber.ipAddress, 502);
    QVERIFY(again.waitForConnected(10000));
    QCOMPARE(discovery.writeDatagram("", QHostAddress(chamber.ipAddress), 30718), 0);
    QVERIFY(answered.wait(10000));
}

QTEST_GUILESS_MAIN(TestModbusTcpChamberSimulation)

#include "tst_modbustcpchambersimulation.moc"
