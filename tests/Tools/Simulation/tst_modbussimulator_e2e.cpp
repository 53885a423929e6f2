// The real chamber-simulator executable serving the Modbus chambers of the
// sample catalogue to clients outside the project (Debian's pymodbus and
// mbpoll), on this binary's own loopback addresses 127.0.83.x and its own
// serial port names COM8 and COM9: a Modbus TCP chamber (port 502, root
// only), two tunnelled chambers behind one converter (port 10001) and serial
// chambers on pseudo-terminals.
//
// No request here reaches the reads that the tunnelled chambers never end
// (an unknown register asked with a quantity other than 2 or 4, a one-byte
// value, the logger records with a quantity below 12 while the count is 0):
// they would freeze the tool, and every test behind it.

#include "support/ClientProcess.h"
#include "support/RtuOverTcp.h"
#include "support/SampleCatalogue.h"
#include "support/SimulatorProcess.h"
#include "support/TestDatabase.h"

#include <QDateTime>
#include <QNetworkDatagram>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QUdpSocket>
#include <QtTest>

#include <memory>

#include <unistd.h>

using namespace zelmor::testsupport;

namespace {

QString const modbusTcpAddress = QStringLiteral("127.0.83.1");
QString const converterAddress = QStringLiteral("127.0.83.2");
QString const searcherAddress = QStringLiteral("127.0.83.200");
constexpr quint16 modbusTcpPort = 502;
constexpr quint16 converterPort = 10001;
constexpr quint16 xPortSearchPort = 30718;
constexpr quint16 wutSearchPort = 8513;
// Qt's Modbus TCP server answers this unit id only.
constexpr int modbusTcpUnit = 255;

QByteArray const readingDefault = "Reading database in default folders\r\n";
QByteArray const dataChanged = " Modbus: data changed!!\r\n";

// Type 247 ("kv2"): its set points are taken in by their process values.
QByteArray const kv2Output = readingDefault
    + "Adding Signal PV_Temperature\r\nAdding Signal PV_Humidity\r\nAdding Signal PV_Specimen_Temperature\r\n"
      "Adding Signal PV_Pressure\r\nAdding Signal PV_Door_Open\r\nAdding Signal PV_Compressor_Fault\r\n"
      "Adding Signal PV_Collective_Alarm\r\nAdding Signal PV_Operating_Hours\r\n"
      "Adding Signal PV_Compressor_Stage\r\nAdding Signal PV_Fan_Stage\r\nAdding Signal PV_Heating_Output\r\n"
      "Start Modbus simulation VC 7034 Z2 on 127.0.83.1:502\r\n";

// Types 60 (Q3) and 30 (KV2 tunnelled), slaves 1 and 2 of one converter.
QByteArray const converterOutput = readingDefault
    + "Adding Signal PV_Temperature\r\nAdding Signal PV_Humidity\r\nAdding Signal PV_Door_Open\r\n"
      "Adding Signal PV_Collective_Alarm\r\n"
      "Adding Signal PV_Temperature\r\nAdding Signal PV_Humidity\r\nAdding Signal PV_Door_Open\r\n"
      "Adding Signal PV_Collective_Alarm\r\nAdding Signal PV_Operating_Hours\r\n"
      "Start Modbus RTU over TCP simulation VT 4021 Z3 on 127.0.83.2 Modbus Address: 1\r\n"
      "Start Modbus RTU over TCP simulation MKF 115 E2 on 127.0.83.2 Modbus Address: 2\r\n";

// A data logger record cut to 13 registers, as pymodbus prints it: index and
// time low byte first, four floats 22.2 (9A 99 B1 41), two of the three zero
// bytes. The time is 2019-01-01 00:00 local time plus a minute per index.
QString loggerRegisters(quint32 index)
{
    quint32 const time = quint32(QDateTime(QDate(2019, 1, 1), QTime(0, 0)).toSecsSinceEpoch()) + 60 * index;
    auto const swapped = [](quint32 number) {
        return QStringLiteral("%1 %2").arg(((number & 0xFF) << 8) | ((number >> 8) & 0xFF))
            .arg(((number >> 16) & 0xFF) << 8 | (number >> 24));
    };
    return swapped(index) + ' ' + swapped(time) + QStringLiteral(" 39577 45377").repeated(4) + QStringLiteral(" 0");
}

} // namespace

class TestModbusSimulatorEndToEnd : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void modbusTcp_data();
    void modbusTcp();
    void modbusTcpFrames_data();
    void modbusTcpFrames();
    void mbpoll_data();
    void mbpoll();
    void tunnelled_data();
    void tunnelled();
    void badInputOnTheWire_data();
    void badInputOnTheWire();
    void serial_data();
    void serial();

private:
    // The reply of a search datagram to the responder, with the console line
    // that it prints (and that flushes what was printed before it).
    QByteArray search(QString const& responder, quint16 port, QByteArray* line);
    void checkConsole(SimulatorProcess& simulator, int from, QString const& responder, quint16 port,
                      QByteArray const& console);

    TestDatabase databases;
    QString catalogue;
    bool root = false;
    std::unique_ptr<SimulatorProcess> kv2;
    std::unique_ptr<SimulatorProcess> converter;
};

void TestModbusSimulatorEndToEnd::initTestCase()
{
    QVERIFY2(QFile::exists(SimulatorProcess::executable()), qPrintable(SimulatorProcess::executable()));
    catalogue = createSampleCatalogue(databases);
    QVERIFY2(!catalogue.isEmpty(), qPrintable(databases.lastError()));
    root = ::geteuid() == 0;

    converter = std::make_unique<SimulatorProcess>();
    QVERIFY(converter->installCatalogue(catalogue));
    converter->start({"-m60", "-m30", "-i" + converterAddress});
    QVERIFY2(converter->waitForOutput(converterOutput), converter->standardError().constData());

    if (root) {
        kv2 = std::make_unique<SimulatorProcess>();
        QVERIFY(kv2->installCatalogue(catalogue));
        kv2->start({"kv2", "-i" + modbusTcpAddress});
        QVERIFY2(kv2->waitForOutput(kv2Output), kv2->standardError().constData());
        // The start line comes just before the listening socket.
        QVERIFY(kv2->waitUntilIdle());
        QCOMPARE(kv2->standardOutput(), kv2Output);
    }
    QVERIFY(converter->waitUntilIdle());
    QCOMPARE(converter->standardOutput(), converterOutput);
}

QByteArray TestModbusSimulatorEndToEnd::search(QString const& responder, quint16 port, QByteArray* line)
{
    QUdpSocket socket;
    if (!socket.bind(QHostAddress(searcherAddress), 0) || socket.writeDatagram("search", QHostAddress(responder), port) != 6
        || !socket.waitForReadyRead(5000))
        return "no reply";
    *line = "UDP Request from " + searcherAddress.toLatin1() + ':' + QByteArray::number(socket.localPort()) + "\r\n";
    return socket.receiveDatagram().data();
}

// What the chamber printed since `from` is `console`, then the responder's
// line. A console line of a write is flushed only by the next line that the
// tool flushes, such as the one of a search datagram.
void TestModbusSimulatorEndToEnd::checkConsole(SimulatorProcess& simulator, int from, QString const& responder,
                                               quint16 port, QByteArray const& console)
{
    QByteArray line;
    // No interface but the loopback carries the address: no hardware address.
    QCOMPARE(search(responder, port, &line).toHex(' '), QByteArray(28, '\0').toHex(' '));
    QVERIFY2(simulator.waitForOutput(line), simulator.standardOutput().constData());
    QCOMPARE(simulator.standardOutput().mid(from), console + line);
}

void TestModbusSimulatorEndToEnd::modbusTcp_data()
{
    QTest::addColumn<QStringList>("operations");
    QTest::addColumn<QStringList>("replies");
    QTest::addColumn<QByteArray>("console");

    // Rows run in order on one chamber: the writes come last.
    QTest::newRow("float, low word first") << QStringList{"holding:0x1002:2"} << QStringList{"0 16816"}
                                           << QByteArray();
    QTest::newRow("input registers are the same addresses")
        << QStringList{"input:0x1002:2"} << QStringList{"0 16816"} << QByteArray();
    QTest::newRow("unsigned int, low word first") << QStringList{"input:0x1220:2"} << QStringList{"42 0"}
                                                  << QByteArray();
    QTest::newRow("unknown register") << QStringList{"holding:32767:1"} << QStringList{"32767"} << QByteArray();
    QTest::newRow("a boolean reads as 0") << QStringList{"coils:0x1210:1"} << QStringList{"0"} << QByteArray();
    QTest::newRow("two registers to a float, read back")
        << QStringList{"registers:0x1102:0:16950", "holding:0x1102:2"} << QStringList{"ok", "0 16950"}
        << dataChanged;
    QTest::newRow("the same value again: no change")
        << QStringList{"registers:0x1102:0:16950"} << QStringList{"ok"} << QByteArray();
    QTest::newRow("one register to a float")
        << QStringList{"register:0x1102:5", "holding:0x1102:2"} << QStringList{"exception 4", "0 16950"}
        << QByteArray(" not the right number of characters received\r\n");
    QTest::newRow("write to an unknown register") << QStringList{"register:32767:1"} << QStringList{"exception 4"}
                                                  << QByteArray(" Modbus: no valid address 32767\r\n");
    QTest::newRow("read-only value") << QStringList{"registers:0x1004:0:16384"} << QStringList{"exception 4"}
                                     << QByteArray(" Modbus: Writing new data failed\r\n");
    // Qt hands a coil's ON on as the word of the request, FF00.
    QTest::newRow("coil and holding register reach one address")
        << QStringList{"coil:0x1150:1", "holding:0x1150:1", "register:0x1150:7", "coils:0x1150:1"}
        << QStringList{"ok", "65280", "ok", "1"} << dataChanged + dataChanged;
}

void TestModbusSimulatorEndToEnd::modbusTcp()
{
    QFETCH(QStringList, operations);
    QFETCH(QStringList, replies);
    QFETCH(QByteArray, console);
    if (!root)
        QSKIP("port 502 needs root");
    if (!hasPymodbus())
        QSKIP("python3-pymodbus is missing");
    int const from = kv2->standardOutput().size();
    QCOMPARE(runModbusOperations(QStringLiteral("tcp:%1:%2:%3").arg(modbusTcpAddress).arg(modbusTcpPort).arg(modbusTcpUnit),
                                 operations),
             replies);
    checkConsole(*kv2, from, modbusTcpAddress, xPortSearchPort, console);
}

// Replies whose register count differs from the request's: Qt's server
// gives the byte count asked for, and the registers the value has. pymodbus
// decodes such a reply or not depending on how the bytes arrive, so exact
// bytes here.
void TestModbusSimulatorEndToEnd::modbusTcpFrames_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QByteArray>("console");

    // Transaction, protocol 0, length, unit, then function and data.
    QTest::newRow("float asked as one register: a count of 2, both come")
        << QByteArray::fromHex("0007 0000 0006 ff 03 1000 0001")
        << QByteArray::fromHex("0007 0000 0007 ff 03 02 6666 41ba") << QByteArray();
    QTest::newRow("unsigned short asked as two: a count of 4, one comes") << QByteArray::fromHex("0008 0000 0006 ff 04 1200 0002")
                                                            << QByteArray::fromHex("0008 0000 0005 ff 04 04 0001")
                                                            << QByteArray();
    // Had the first been answered, its reply would come first.
    QTest::newRow("unit 1 isn't answered")
        << QByteArray::fromHex("0009 0000 0006 01 03 1000 0002 000a 0000 0006 ff 03 1004 0002")
        << QByteArray::fromHex("000a 0000 0007 ff 03 04 6666 41ba") << QByteArray();
    QTest::newRow("one register to a float: server device failure")
        << QByteArray::fromHex("000b 0000 0006 ff 06 1102 0005") << QByteArray::fromHex("000b 0000 0003 ff 86 04")
        << QByteArray(" not the right number of characters received\r\n");
}

void TestModbusSimulatorEndToEnd::modbusTcpFrames()
{
    QFETCH(QByteArray, request);
    QFETCH(QByteArray, reply);
    QFETCH(QByteArray, console);
    if (!root)
        QSKIP("port 502 needs root");
    int const from = kv2->standardOutput().size();
    QTcpSocket client;
    client.connectToHost(QHostAddress(modbusTcpAddress), modbusTcpPort);
    QVERIFY(client.waitForConnected(5000));
    client.write(request);
    QCOMPARE(receive(client, reply.size()).toHex(' '), reply.toHex(' '));
    checkConsole(*kv2, from, modbusTcpAddress, xPortSearchPort, console);
}

void TestModbusSimulatorEndToEnd::mbpoll_data()
{
    QTest::addColumn<QStringList>("arguments"); // behind the common ones
    QTest::addColumn<QByteArray>("output");     // a line of mbpoll's output
    QTest::addColumn<QByteArray>("console");

    // mbpoll's floats are low word first, as the chamber's.
    QTest::newRow("float") << QStringList{"-1", "-r", "4100", "-t", "4:float"} << QByteArray("[4100]: \t23.3")
                           << QByteArray();
    QTest::newRow("unsigned short") << QStringList{"-1", "-r", "4608"} << QByteArray("[4608]: \t1") << QByteArray();
    QTest::newRow("unknown register") << QStringList{"-1", "-r", "32767"} << QByteArray("[32767]: \t32767")
                                      << QByteArray();
    QTest::newRow("write a float") << QStringList{"-r", "4358", "-t", "4:float", "--", "-12.5"}
                                   << QByteArray("Written 1 references.") << dataChanged;
    QTest::newRow("read it back") << QStringList{"-1", "-r", "4358", "-t", "4:float"}
                                  << QByteArray("[4358]: \t-12.5") << QByteArray();
}

void TestModbusSimulatorEndToEnd::mbpoll()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, output);
    QFETCH(QByteArray, console);
    if (!root)
        QSKIP("port 502 needs root");
    if (!hasMbpoll())
        QSKIP("mbpoll is missing");
    int const from = kv2->standardOutput().size();
    // Holding registers, numbers from 0, unit 255.
    QStringList const common{"-m", "tcp", "-a", QString::number(modbusTcpUnit), "-0", "-o", "3", modbusTcpAddress};
    ClientResult const result = runClient(QStringLiteral("mbpoll"), common + arguments);
    QCOMPARE(result.exitCode, 0);
    QVERIFY2(result.standardOutput.contains(output), result.standardOutput.constData());
    checkConsole(*kv2, from, modbusTcpAddress, xPortSearchPort, console);
}

void TestModbusSimulatorEndToEnd::tunnelled_data()
{
    QTest::addColumn<int>("slave");
    QTest::addColumn<QStringList>("operations");
    QTest::addColumn<QStringList>("replies");

    // Rows run in order on one converter: the writes come last. Slave 1 is
    // type 60 (Q3), slave 2 type 30 (KV2). Floats are sent as in Modbus TCP,
    // 32-bit integers high word first, unlike there.
    QTest::newRow("float, bytes b1 b0 b3 b2") << 1 << QStringList{"holding:0x300:2"} << QStringList{"26214 16826"};
    QTest::newRow("input registers are the same addresses")
        << 1 << QStringList{"input:0x302:2"} << QStringList{"0 16816"};
    QTest::newRow("float asked as one register: its first two bytes")
        << 1 << QStringList{"holding:0x300:1"} << QStringList{"26214"};
    QTest::newRow("unsigned short, boolean, boolean, half a float 0")
        << 1 << QStringList{"holding:0x320:4"} << QStringList{"1 0 0 0"};
    QTest::newRow("unknown register asked as 2 or 4: zeros")
        << 1 << QStringList{"holding:0x7000:2", "holding:0x7000:4"} << QStringList{"0 0", "0 0 0 0"};
    QTest::newRow("register 0 from the logger's table") << 1 << QStringList{"holding:0:2"} << QStringList{"0 1"};
    QTest::newRow("unsigned int, high word first") << 2 << QStringList{"holding:0x1220:2"} << QStringList{"0 42"};
    // With a logger count of 0, 13 registers hold 26 / 23 = 1 record, cut.
    QTest::newRow("data logger records count up")
        << 2 << QStringList{"input:0x6500:13", "input:0x6500:13"}
        << QStringList{loggerRegisters(0), loggerRegisters(1)};
    QTest::newRow("no slave 3") << 3 << QStringList{"holding:0x300:2"} << QStringList{"error"};
    QTest::newRow("function 6 to an unsigned short")
        << 1 << QStringList{"register:0x330:5", "holding:0x330:1"} << QStringList{"ok", "5"};
    QTest::newRow("function 16 to a float set point")
        << 1 << QStringList{"registers:0x312:0:16928", "holding:0x312:2"} << QStringList{"ok", "0 16928"};
}

void TestModbusSimulatorEndToEnd::tunnelled()
{
    QFETCH(int, slave);
    QFETCH(QStringList, operations);
    QFETCH(QStringList, replies);
    if (!hasPymodbus())
        QSKIP("python3-pymodbus is missing");
    int const from = converter->standardOutput().size();
    QString const target = QStringLiteral("rtu-over-tcp:%1:%2:%3").arg(converterAddress).arg(converterPort).arg(slave);
    QCOMPARE(runModbusOperations(target, operations, 1), replies);
    // The tunnelled chambers print nothing for a frame.
    checkConsole(*converter, from, converterAddress, wutSearchPort, QByteArray());
}

void TestModbusSimulatorEndToEnd::badInputOnTheWire_data()
{
    QTest::addColumn<quint16>("port");
    QTest::addColumn<QString>("kind");

    QTest::newRow("Modbus TCP: random bytes") << modbusTcpPort << "random";
    QTest::newRow("Modbus TCP: truncated frames") << modbusTcpPort << "truncated";
    QTest::newRow("converter: random bytes") << converterPort << "random";
    QTest::newRow("converter: truncated frames") << converterPort << "truncated";
}

// Neither ends the tool, and the chamber answers a new client afterwards.
// The random bytes never hold 1 or 2, the converter's slaves: a read that
// the converter takes as a frame is not answered, since its first byte
// isn't theirs.
void TestModbusSimulatorEndToEnd::badInputOnTheWire()
{
    QFETCH(quint16, port);
    QFETCH(QString, kind);
    bool const tcp = port == modbusTcpPort;
    if (tcp && !root)
        QSKIP("port 502 needs root");
    if (!hasPymodbus())
        QSKIP("python3-pymodbus is missing");
    SimulatorProcess& simulator = tcp ? *kv2 : *converter;
    QString const address = tcp ? modbusTcpAddress : converterAddress;

    // The converter takes each read as a frame: it gets each piece on its
    // own. Qt's Modbus TCP server may hang up on rubbish; that is its answer.
    auto const send = [&](QByteArray const& bytes) {
        QTcpSocket attacker;
        attacker.connectToHost(QHostAddress(address), port);
        if (!attacker.waitForConnected(5000))
            return false;
        if (!tcp)
            return deliver(attacker, bytes);
        attacker.write(bytes);
        attacker.waitForBytesWritten(5000);
        return true;
    };
    if (kind == QLatin1String("random")) {
        QRandomGenerator generator(4711);
        QByteArray noise(256 * 1024, Qt::Uninitialized);
        for (char& byte : noise)
            byte = char(generator.bounded(3, 257));
        QVERIFY(send(noise));
    } else {
        // A read request cut short, each length on a connection of its own.
        QByteArray const request = tcp ? QByteArray::fromHex("0001 0000 0006 ff 04 1002 0002")
                                       : withCrc(QByteArray::fromHex("01 04 0302 0002"));
        for (int size = 1; size < request.size(); ++size)
            QVERIFY(send(request.left(size)));
    }

    QVERIFY(simulator.isRunning());
    QString const target = tcp ? QStringLiteral("tcp:%1:%2:%3").arg(address).arg(port).arg(modbusTcpUnit)
                               : QStringLiteral("rtu-over-tcp:%1:%2:1").arg(address).arg(port);
    // Temperatures of 23.3 whose set points nobody wrote.
    QCOMPARE(runModbusOperations(target, {tcp ? "input:0x1004:2" : "input:0x300:2"}), QStringList{"26214 16826"});
}

void TestModbusSimulatorEndToEnd::serial_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("portName"); // empty: a path in a temporary folder
    QTest::addColumn<int>("slave");
    QTest::addColumn<QByteArray>("output");

    // Qt opens "/dev/<name>" for a name without a path; only one digit
    // may stand between "COM" and the colon.
    QTest::newRow("KV1 serial only, on /dev/COM8")
        << "41" << "COM8" << 1
        << readingDefault
            + "Adding Signal PV_Temperature\r\nAdding Signal PV_Operating_Hours\r\nAdding Signal PV_Door_Open\r\n"
              "Adding Signal PV_Collective_Alarm\r\n";
    // The COM port is searched for in the address text: a path works too.
    QTest::newRow("KV1 serial or tunnelled, on a path")
        << "40" << "" << 3
        << readingDefault
            + "Adding Signal PV_Temperature\r\nAdding Signal PV_Humidity\r\nAdding Signal SP_Fan_Stage\r\n"
              "Adding Signal PV_Operating_Hours\r\nAdding Signal PV_Door_Open\r\n"
              "Adding Signal PV_Collective_Alarm\r\nAdding Signal PV_Compressor_Stage\r\n"
              "Adding Signal PV_Status_Word\r\n";
}

// Values reach the input registers every 2 s, a 32-bit one as its low word
// in both of its registers. A float written by a client reaches the reader
// as 0.
void TestModbusSimulatorEndToEnd::serial()
{
    QFETCH(QString, type);
    QFETCH(QString, portName);
    QFETCH(int, slave);
    QFETCH(QByteArray, output);
    if (QStandardPaths::findExecutable(QStringLiteral("socat")).isEmpty() || !hasPymodbus())
        QSKIP("needs socat and python3-pymodbus");
    if (!portName.isEmpty() && !root)
        QSKIP("a name in /dev needs root");
    QTemporaryDir folder;
    QString const chamberEnd = portName.isEmpty() ? folder.filePath(QStringLiteral("COM9"))
                                                  : QStringLiteral("/dev/") + portName;
    if (QFileInfo(chamberEnd).exists() || QFileInfo(chamberEnd).isSymLink())
        QSKIP(qPrintable(chamberEnd + QStringLiteral(" exists already")));
    QString const clientEnd = folder.filePath(QStringLiteral("client"));

    QProcess terminals;
    terminals.start(QStringLiteral("socat"), {"pty,raw,echo=0,link=" + chamberEnd, "pty,raw,echo=0,link=" + clientEnd});
    QVERIFY(terminals.waitForStarted());
    auto const stopTerminals = qScopeGuard([&] {
        terminals.terminate();
        if (!terminals.waitForFinished())
            terminals.kill();
        // socat removes its links as it ends; make sure all the same.
        if (QFileInfo(chamberEnd).isSymLink())
            QFile::remove(chamberEnd);
    });
    QTRY_VERIFY(QFileInfo::exists(chamberEnd) && QFileInfo::exists(clientEnd));

    SimulatorProcess simulator;
    QVERIFY(simulator.installCatalogue(catalogue));
    simulator.start({"-m" + type, "-i" + chamberEnd + ':' + QString::number(slave)});
    // A serial chamber prints no start line.
    QVERIFY2(simulator.waitForOutput(output), simulator.standardError().constData());

    QString const target = QStringLiteral("rtu:%1:%2").arg(clientEnd).arg(slave);
    // Temperature 23.3 (41BA6666) at 2 and its set point at 6; operating hours 42 at 10.
    QStringList const copied{"0 0 26214 26214 0 0 26214 26214 0 0 42 42 0 0"};
    QTRY_COMPARE_WITH_TIMEOUT(runModbusOperations(target, {"input:0:14"}), copied, 15000);
    QCOMPARE(runModbusOperations(target, {"registers:6:0x1234:0x4000", "holding:6:2", "holding:2:2"}),
             QStringList({"ok", "4660 16384", "0 0"}));
    QTRY_COMPARE_WITH_TIMEOUT(runModbusOperations(target, {"input:6:2"}), QStringList{"0 0"}, 15000);
    // Nothing was printed for the serial chamber.
    QCOMPARE(simulator.standardOutput(), output);
}

QTEST_GUILESS_MAIN(TestModbusSimulatorEndToEnd)
#include "tst_modbussimulator_e2e.moc"
