#include "Domain/Types/ChamberTypeData.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/ModbusTcpChamberSimulation.h"
#include "support/ClientProcess.h"
#include "support/MapReader.h"
#include "support/StreamCapture.h"

#include <QtTest>
#include <QNetworkDatagram>
#include <QRandomGenerator>
#include <QTcpSocket>
#include <QUdpSocket>

#include <unistd.h>

using namespace zelmor::simulation;
using namespace zelmor::testsupport;
using zelmor::domain::types::ChamberTypeData;

namespace {

constexpr int timeoutMs = 10000;

// This binary's own loopback addresses (port 502 is fixed), a new one for
// each chamber, so that test binaries run side by side.
QString nextAddress()
{
    static int host = 0;
    return QStringLiteral("127.0.62.%1").arg(++host);
}

struct Chamber
{
    Chamber(QSharedPointer<ChamberTypeData> type = QSharedPointer<ChamberTypeData>::create())
        : server(type, ipAddress)
    {
        reader->values = {{0x10, 1.0f}, // bits 3F800000
                          {0x20, QVariant::fromValue<unsigned short>(4660)},
                          {0x30, 74565}, // 0x00012345
                          {0x34, -2},
                          {0x38, 4294901761u}, // 0xFFFF0001
                          {0x40, true},
                          {0x50, QVariant::fromValue<short>(5)},
                          {0x60, 1.0f},
                          {0x70, 1.0}};
        reader->readOnly = {0x60};
        server.setSimulationReader(reader);
    }
    QString const ipAddress = nextAddress();
    QSharedPointer<MapReader> const reader = QSharedPointer<MapReader>::create();
    ModbusTcpChamberSimulation server;
};

// Raw bytes to port 502; what comes back until `expectedSize` bytes or a hang-up.
QByteArray exchange(QString const& ipAddress, QByteArray const& request, int expectedSize)
{
    QTcpSocket socket;
    socket.connectToHost(ipAddress, 502);
    if (!socket.waitForConnected(timeoutMs))
        return "no connection";
    socket.write(request);
    QByteArray answer;
    (void)QTest::qWaitFor([&] {
        answer += socket.readAll();
        return answer.size() >= expectedSize || socket.state() != QAbstractSocket::ConnectedState;
    }, timeoutMs);
    return answer;
}

} // namespace

class TestModbusTcpChamberSimulation : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void startAndDiscovery();
    void pymodbusRequests_data();
    void pymodbusRequests();
    void frameBytes_data();
    void frameBytes();
    void mbpollFloats();
    void badInputLeavesServerRunning_data();
    void badInputLeavesServerRunning();
};

void TestModbusTcpChamberSimulation::initTestCase()
{
    if (::geteuid() != 0)
        QSKIP("port 502 needs root");
}

void TestModbusTcpChamberSimulation::startAndDiscovery()
{
    auto type = QSharedPointer<ChamberTypeData>::create();
    type->type = QStringLiteral("KV2");
    type->size = 340;
    StreamCapture console(consoleOutput());
    Chamber chamber(type);
    QCOMPARE(chamber.server.getProtocolId(), 3);
    QCOMPARE(chamber.server.getIpAddress(), chamber.ipAddress);
    QCOMPARE(chamber.server.serverAddress(), 255);

    // The converter responder answers before start().
    QUdpSocket search;
    QVERIFY(search.bind(QHostAddress(QStringLiteral("127.0.62.250")), 0));
    search.writeDatagram("", QHostAddress(chamber.ipAddress), 30718);
    QVERIFY(QTest::qWaitFor([&] { return search.hasPendingDatagrams(); }, timeoutMs));
    QCOMPARE(search.receiveDatagram().data(), QByteArray(28, '\0'));

    QVERIFY(chamber.server.start());
    QVERIFY(chamber.server.start()); // prints again and keeps listening
    QByteArray const startLine = "Start Modbus simulation KV2 340 on " + chamber.ipAddress.toUtf8() + ":502\r\n";
    QCOMPARE(console.text(),
             "UDP Request from 127.0.62.250:" + QByteArray::number(search.localPort()) + "\r\n" + startLine + startLine);
}

void TestModbusTcpChamberSimulation::pymodbusRequests_data()
{
    QTest::addColumn<QStringList>("operations");
    QTest::addColumn<QStringList>("replies");
    QTest::addColumn<QByteArray>("console");
    QTest::addColumn<QVariantList>("writes"); // address, value, address, value ...
    QByteArray const changed = " Modbus: data changed!!\r\n";
    QByteArray const wrongCount = " not the right number of characters received\r\n";
    auto const uShort = [](int value) { return QVariant::fromValue<unsigned short>(value); };

    // Reads: the value's type decides the registers, low word first.
    QTest::newRow("float 1.0") << QStringList{"holding:0x10:2", "input:0x10:2"} << QStringList{"0 16256", "0 16256"}
                               << QByteArray() << QVariantList();
    QTest::newRow("int and unsigned") << QStringList{"holding:0x30:2", "holding:0x34:2", "holding:0x38:2"}
                                      << QStringList{"9029 1", "65534 65535", "1 65535"} << QByteArray()
                                      << QVariantList();
    QTest::newRow("true reads 0; unknown, short, double: 32767")
        << QStringList{"holding:0x40:1", "holding:0x99:1", "holding:0x50:1", "input:0x70:1"}
        << QStringList{"0", "32767", "32767", "32767"} << QByteArray() << QVariantList();
    // Writes must cover the whole value.
    QTest::newRow("one or three registers to a float")
        << QStringList{"register:0x10:5", "registers:0x10:0:16448:0", "holding:0x10:2"}
        << QStringList{"exception 4", "exception 4", "0 16256"} << wrongCount + wrongCount << QVariantList();
    QTest::newRow("two registers to a float") << QStringList{"registers:0x10:0:16448", "holding:0x10:2"}
                                              << QStringList{"ok", "0 16448"} << changed
                                              << QVariantList{0x10, 3.0f};
    QTest::newRow("same value again: written, not changed")
        << QStringList{"registers:0x10:0:16256"} << QStringList{"ok"} << QByteArray() << QVariantList{0x10, 1.0f};
    QTest::newRow("int from two registers") << QStringList{"registers:0x30:0xfffe:0x7fff", "holding:0x30:2"}
                                            << QStringList{"ok", "65534 32767"} << changed
                                            << QVariantList{0x30, 0x7ffffffe};
    QTest::newRow("non-zero word sets a bool") << QStringList{"register:0x40:2", "holding:0x40:1"}
                                               << QStringList{"ok", "0"} << changed << QVariantList{0x40, true};
    QTest::newRow("short: one word, invalid value handed on")
        << QStringList{"register:0x50:7"} << QStringList{"ok"} << changed << QVariantList{0x50, QVariant()};
    // One address space for coils and registers.
    QTest::newRow("coils and registers on one address")
        << QStringList{"coils:0x20:1", "coil:0x20:1", "holding:0x20:1", "register:0x20:0", "coils:0x20:1"}
        << QStringList{"1", "ok", "65280", "ok", "0"} << changed + changed
        << QVariantList{0x20, uShort(65280), 0x20, uShort(0)};
    // Refusals.
    QTest::newRow("unknown address") << QStringList{"register:0x99:1"} << QStringList{"exception 4"}
                                     << QByteArray(" Modbus: no valid address 153\r\n") << QVariantList();
    QTest::newRow("refused by the reader") << QStringList{"registers:0x60:0:16384"} << QStringList{"exception 4"}
                                           << QByteArray(" Modbus: Writing new data failed\r\n") << QVariantList();
}

void TestModbusTcpChamberSimulation::pymodbusRequests()
{
    QFETCH(QStringList, operations);
    QFETCH(QStringList, replies);
    QFETCH(QByteArray, console);
    QFETCH(QVariantList, writes);
    if (!hasPymodbus())
        QSKIP("python3-pymodbus is missing");
    Chamber chamber;
    QSignalSpy dataWritten(&chamber.server, &QModbusServer::dataWritten);
    QVERIFY(chamber.server.start());
    StreamCapture output(consoleOutput());

    QCOMPARE(runModbusOperations("tcp:" + chamber.ipAddress + ":502:255", operations), replies);
    QCOMPARE(output.text(), console);
    QVariantList written;
    for (auto const& [address, value] : chamber.reader->writes)
        written << address << value;
    QCOMPARE(written, writes);
    // One signal for each change, with the address and the value's length.
    QCOMPARE(dataWritten.count(), console.count("changed"));
    for (QList<QVariant> const& arguments : dataWritten) {
        QCOMPARE(arguments.at(1), writes.value(0));
        QCOMPARE(arguments.at(2).toInt(), writes.value(0) == 0x10 || writes.value(0) == 0x30 ? 2 : 1);
    }
}

void TestModbusTcpChamberSimulation::frameBytes_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("reply");
    // Transaction 7, protocol 0, length, unit 255, then the PDU.
    QTest::newRow("unsigned short asked as 2: count of 4, one register follows")
        << QByteArray::fromHex("0007 0000 0006 ff 03 0020 0002") << QByteArray::fromHex("0007 0000 0005 ff 03 04 1234");
    QTest::newRow("float asked as 1: count of 2, two registers follow")
        << QByteArray::fromHex("0007 0000 0006 ff 04 0010 0001")
        << QByteArray::fromHex("0007 0000 0007 ff 04 02 0000 3f80");
    QTest::newRow("one register to a float: server device failure")
        << QByteArray::fromHex("0007 0000 0006 ff 06 0010 0005") << QByteArray::fromHex("0007 0000 0003 ff 86 04");
}

void TestModbusTcpChamberSimulation::frameBytes()
{
    QFETCH(QByteArray, request);
    QFETCH(QByteArray, reply);
    Chamber chamber;
    QVERIFY(chamber.server.start());
    StreamCapture output(consoleOutput());
    QCOMPARE(exchange(chamber.ipAddress, request, reply.size()).toHex(' '), reply.toHex(' '));
}

void TestModbusTcpChamberSimulation::mbpollFloats()
{
    if (!hasMbpoll())
        QSKIP("mbpoll is missing");
    Chamber chamber;
    QVERIFY(chamber.server.start());
    StreamCapture output(consoleOutput());
    // mbpoll's own word order for floats is low word first, as the chamber's.
    QStringList const common{"-m", "tcp", "-a", "255", "-0", "-r", "16", "-t", "4:float", "-1", chamber.ipAddress};
    QCOMPARE(runClient("mbpoll", QStringList(common) << "--" << "-12.5").exitCode, 0);
    QCOMPARE(chamber.reader->values.value(0x10), QVariant(-12.5f));
    ClientResult const read = runClient("mbpoll", common);
    QVERIFY2(read.standardOutput.contains("[16]: \t-12.5"), read.standardOutput.constData());
    QCOMPARE(output.text(), QByteArray(" Modbus: data changed!!\r\n"));
}

void TestModbusTcpChamberSimulation::badInputLeavesServerRunning_data()
{
    QTest::addColumn<QByteArray>("garbage");
    QByteArray noise(4096, '\0');
    QRandomGenerator generator(502);
    for (char& byte : noise)
        byte = static_cast<char>(generator.bounded(256));
    QTest::newRow("random bytes") << noise;
    QTest::newRow("half a header") << QByteArray::fromHex("0001 0000");
    QTest::newRow("length beyond the data") << QByteArray::fromHex("0001 0000 00ff ff 03 00");
    QTest::newRow("length zero") << QByteArray::fromHex("0001 0000 0000 ff 03 0010 0002");
    QTest::newRow("read without its quantity") << QByteArray::fromHex("0001 0000 0004 ff 03 0010");
    QTest::newRow("write count beyond the data") << QByteArray::fromHex("0001 0000 0009 ff 10 0010 0002 04 00");
}

void TestModbusTcpChamberSimulation::badInputLeavesServerRunning()
{
    QFETCH(QByteArray, garbage);
    Chamber chamber;
    QVERIFY(chamber.server.start());
    StreamCapture output(consoleOutput());
    QTcpSocket rude;
    rude.connectToHost(chamber.ipAddress, 502);
    QVERIFY(rude.waitForConnected(timeoutMs));
    rude.write(garbage);
    QVERIFY(rude.waitForBytesWritten(timeoutMs));
    // Whatever the server makes of it (an answer, silence or a hang-up), the
    // next client is served.
    QByteArray const reply = QByteArray::fromHex("0009 0000 0007 ff 03 04 0000 3f80");
    QCOMPARE(exchange(chamber.ipAddress, QByteArray::fromHex("0009 0000 0006 ff 03 0010 0002"), reply.size()), reply);
    QVERIFY(chamber.reader->writes.isEmpty());
}

QTEST_GUILESS_MAIN(TestModbusTcpChamberSimulation)

#include "tst_modbustcpchambersimulation.moc"
