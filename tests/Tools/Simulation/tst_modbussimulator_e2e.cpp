// The real chamber-simulator executable serving Modbus chambers of the sample
// catalogue to Debian's pymodbus and mbpoll, on this binary's own loopback
// addresses 127.0.83.x: a Modbus TCP chamber (port 502, root only), two
// tunnelled chambers behind one converter (port 10001), a serial chamber on a
// pseudo-terminal. The protocols in detail are the server classes' tests;
// here the tool's choice of server, its ports, responders and console. No
// request here reaches the reads that the tunnelled chambers never end (an
// unknown register asked with a quantity other than 2 or 4, logger records
// with a quantity below 12): they would freeze the tool.

#include "support/ClientProcess.h"
#include "support/RtuOverTcp.h"
#include "support/SampleCatalogue.h"
#include "support/SimulatorProcess.h"
#include "support/TestDatabase.h"

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

const QString modbusTcpAddress = QStringLiteral("127.0.83.1");
const QString converterAddress = QStringLiteral("127.0.83.2");
// Qt's Modbus TCP server answers unit 255 only.
const QString modbusTcpTarget = QStringLiteral("tcp:127.0.83.1:502:255");

// What the chamber printed since `from` is `console`, then the line of a
// search datagram to the responder, which answers 28 zero bytes: no
// interface but the loopback carries the address. A write's console line is
// flushed only by the next line that the tool flushes, such as this one.
void checkConsole(SimulatorProcess& simulator, int from, const QString& responder, quint16 port,
                  const QByteArray& console)
{
    QUdpSocket socket;
    QVERIFY(socket.bind(QHostAddress(QStringLiteral("127.0.83.200")), 0));
    QCOMPARE(socket.writeDatagram("search", QHostAddress(responder), port), 6);
    QVERIFY(socket.waitForReadyRead(5000));
    QCOMPARE(socket.receiveDatagram().data().toHex(' '), QByteArray(28, '\0').toHex(' '));
    const QByteArray line = "UDP Request from 127.0.83.200:" + QByteArray::number(socket.localPort()) + "\r\n";
    QVERIFY2(simulator.waitForOutput(line), simulator.standardOutput().constData());
    QCOMPARE(simulator.standardOutput().mid(from), console + line);
}

} // namespace

class TestModbusSimulatorEndToEnd : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void modbusTcp();
    void tunnelled();
    void badInputOnTheWire_data();
    void badInputOnTheWire();
    void serial();

private:
    std::unique_ptr<SimulatorProcess> launch(const QStringList& arguments, const QByteArray& lastLines);

    TestDatabase databases;
    QString catalogue;
    bool root = ::geteuid() == 0;
    std::unique_ptr<SimulatorProcess> kv2;
    std::unique_ptr<SimulatorProcess> converter;
};

// A running tool whose output ends in these lines, with nothing after.
std::unique_ptr<SimulatorProcess> TestModbusSimulatorEndToEnd::launch(const QStringList& arguments,
                                                                      const QByteArray& lastLines)
{
    auto simulator = std::make_unique<SimulatorProcess>();
    if (!simulator->installCatalogue(catalogue))
        return {};
    simulator->start(arguments);
    if (!simulator->waitForOutput(lastLines) || !simulator->waitUntilIdle()
        || !simulator->standardOutput().endsWith(lastLines)) {
        qWarning() << simulator->standardOutput() << simulator->standardError();
        return {};
    }
    return simulator;
}

void TestModbusSimulatorEndToEnd::initTestCase()
{
    catalogue = createSampleCatalogue(databases);
    QVERIFY2(!catalogue.isEmpty(), qPrintable(databases.lastError()));
    // Types 60 (Q3) and 30 (KV2 tunnelled) as slaves 1 and 2 of one converter.
    converter = launch({"-m60", "-m30", "-i" + converterAddress},
                       "Start Modbus RTU over TCP simulation VT 4021 Z3 on 127.0.83.2 Modbus Address: 1\r\n"
                       "Start Modbus RTU over TCP simulation MKF 115 E2 on 127.0.83.2 Modbus Address: 2\r\n");
    QVERIFY(converter);
    if (root) {
        kv2 = launch({"kv2", "-i" + modbusTcpAddress}, "Start Modbus simulation VC 7034 Z2 on 127.0.83.1:502\r\n");
        QVERIFY(kv2);
    }
}

void TestModbusSimulatorEndToEnd::modbusTcp()
{
    if (!root || !hasPymodbus() || QStandardPaths::findExecutable("mbpoll").isEmpty())
        QSKIP("needs root (port 502), python3-pymodbus and mbpoll");
    const int from = kv2->standardOutput().size();
    // Type 247's temperature, a float low word first.
    QCOMPARE(runModbusOperations(modbusTcpTarget, {"holding:0x1002:2"}), QStringList{"0 16816"});
    // mbpoll's floats are low word first as well: its set point written and read back.
    const QStringList mbpoll{"-m", "tcp", "-a", "255", "-0", "-r", "4354", "-t", "4:float", "-1", modbusTcpAddress};
    QCOMPARE(runClient("mbpoll", QStringList(mbpoll) << "--"
                                                     << "-12.5")
                 .exitCode,
             0);
    const ClientResult read = runClient("mbpoll", mbpoll);
    QVERIFY2(read.standardOutput.contains("[4354]: \t-12.5"), read.standardOutput.constData());
    checkConsole(*kv2, from, modbusTcpAddress, 30718, " Modbus: data changed!!\r\n");
}

void TestModbusSimulatorEndToEnd::tunnelled()
{
    if (!hasPymodbus())
        QSKIP("python3-pymodbus is missing");
    const int from = converter->standardOutput().size();
    const QString target = QStringLiteral("rtu-over-tcp:127.0.83.2:10001:%1");
    // Slave 1 (Q3) a float as in Modbus TCP, slave 2 (KV2) an unsigned int
    // high word first, unlike there; no slave 3.
    QCOMPARE(runModbusOperations(target.arg(1), {"holding:0x300:2"}, 1)
                 + runModbusOperations(target.arg(2), {"holding:0x1220:2"}, 1)
                 + runModbusOperations(target.arg(3), {"holding:0x300:2"}, 1),
             QStringList({"26214 16826", "0 42", "error"}));
    // The converter's responder is a Wut one; a frame prints nothing.
    checkConsole(*converter, from, converterAddress, 8513, QByteArray());
}

void TestModbusSimulatorEndToEnd::badInputOnTheWire_data()
{
    QTest::addColumn<quint16>("port");
    QTest::addColumn<QByteArrayList>("pieces"); // each on a connection of its own
    // Never 1 or 2, the converter's slaves, so that no frame of them is answered.
    QRandomGenerator generator(4711);
    QByteArray noise(256 * 1024, Qt::Uninitialized);
    for (char& byte : noise)
        byte = char(generator.bounded(3, 257));
    for (const quint16 port : {502, 10001}) {
        const QByteArray request = port == 502 ? QByteArray::fromHex("0001 0000 0006 ff 04 1002 0002")
                                               : withCrc(QByteArray::fromHex("01 04 0302 0002"));
        QByteArrayList truncated;
        for (int size = 1; size < request.size(); ++size)
            truncated << request.left(size);
        QTest::addRow("%d: random bytes", port) << port << QByteArrayList{noise};
        QTest::addRow("%d: truncated frames", port) << port << truncated;
    }
}

// Neither ends the tool, and the chamber answers a new client afterwards.
void TestModbusSimulatorEndToEnd::badInputOnTheWire()
{
    QFETCH(quint16, port);
    QFETCH(QByteArrayList, pieces);
    const bool tcp = port == 502;
    if ((tcp && !root) || !hasPymodbus())
        QSKIP("needs python3-pymodbus, and root for port 502");
    for (const QByteArray& piece : pieces) {
        QTcpSocket attacker;
        attacker.connectToHost(QHostAddress(tcp ? modbusTcpAddress : converterAddress), port);
        QVERIFY(attacker.waitForConnected(5000));
        // The converter takes each read as a frame. Qt's Modbus TCP server
        // may hang up on rubbish; that is its answer.
        if (!tcp) {
            QVERIFY(deliver(attacker, piece));
        } else if (attacker.write(piece) > 0) {
            attacker.waitForBytesWritten(5000);
        }
    }
    QVERIFY((tcp ? kv2 : converter)->isRunning());
    // Temperatures of 23.3 whose set points nobody wrote.
    QCOMPARE(runModbusOperations(tcp ? modbusTcpTarget : QStringLiteral("rtu-over-tcp:127.0.83.2:10001:1"),
                                 {tcp ? "input:0x1004:2" : "input:0x300:2"}),
             QStringList{"26214 16826"});
}

// A serial chamber (type 40, its COM port taken from the address text, a
// path here) on one end of a pseudo-terminal pair, pymodbus at 9600 8N1 on
// the other.
void TestModbusSimulatorEndToEnd::serial()
{
    if (QStandardPaths::findExecutable(QStringLiteral("socat")).isEmpty() || !hasPymodbus())
        QSKIP("needs socat and python3-pymodbus");
    QTemporaryDir folder;
    const QString chamberEnd = folder.filePath(QStringLiteral("COM9"));
    const QString clientEnd = folder.filePath(QStringLiteral("client"));
    QProcess terminals; // killed as it goes
    terminals.start(QStringLiteral("socat"), {"pty,raw,echo=0,link=" + chamberEnd, "pty,raw,echo=0,link=" + clientEnd});
    QVERIFY(terminals.waitForStarted());
    QTRY_VERIFY(QFileInfo::exists(chamberEnd) && QFileInfo::exists(clientEnd));

    const QByteArray lastLine = "Adding Signal PV_Status_Word\r\n";
    const std::unique_ptr<SimulatorProcess> simulator = launch({"-m40", "-i" + chamberEnd + ":3"}, lastLine);
    QVERIFY(simulator);

    // Every 2 s: temperature 23.3 (41BA6666) at 2, its set point at 6,
    // operating hours 42 at 10, each the low word in both its registers.
    QTRY_COMPARE_WITH_TIMEOUT(runModbusOperations("rtu:" + clientEnd + ":3", {"input:0:14"}),
                              QStringList{"0 0 26214 26214 0 0 26214 26214 0 0 42 42 0 0"}, 15000);
    // A serial chamber prints no start line, nor anything else.
    QVERIFY(simulator->standardOutput().endsWith(lastLine));
}

QTEST_GUILESS_MAIN(TestModbusSimulatorEndToEnd)
#include "tst_modbussimulator_e2e.moc"
