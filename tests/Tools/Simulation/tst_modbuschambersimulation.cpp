#include "Domain/Types/ChamberTypeData.h"
#include "Tools/Simulation/ModbusChamberSimulation.h"
#include "support/ClientProcess.h"
#include "support/MapReader.h"

#include <QtTest>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <memory>
#include <unistd.h>

using namespace zelmor::simulation;
using namespace zelmor::testsupport;
using zelmor::domain::types::ChamberTypeData;

namespace {

// Qt opens "/dev/<name>" for a port name without a path. This binary's own
// name, so that test binaries run side by side.
constexpr char portName[] = "COM62";
constexpr char devicePath[] = "/dev/COM62";
constexpr int slaveAddress = 7;

} // namespace

// One chamber on one pseudo-terminal pair for the whole run: the chamber's
// device outlives it and keeps its port, so a second chamber could not share
// the terminal. Rows use addresses of their own.
class TestModbusChamberSimulation : public QObject
{
    Q_OBJECT

private slots:
    void connectionText_data();
    void connectionText();
    void initTestCase();
    void cleanupTestCase();
    void copyTowardsInputRegisters();
    void writesBackToReader_data();
    void writesBackToReader();

private:
    QStringList request(QStringList const& operations);

    QTemporaryDir folder;
    QProcess terminals;
    QSharedPointer<MapReader> reader;
    std::unique_ptr<ModbusChamberSimulation> chamber;
    QString clientEnd;
    bool ready = false;
};

void TestModbusChamberSimulation::connectionText_data()
{
    QTest::addColumn<QString>("connection");
    QTest::addColumn<QString>("port");
    QTest::addColumn<int>("slave");
    QTest::newRow("COM3:1") << "COM3:1" << "COM3" << 1;
    QTest::newRow("COM9:247") << "COM9:247" << "COM9" << 247;
}

void TestModbusChamberSimulation::connectionText()
{
    QFETCH(QString, connection);
    QFETCH(QString, port);
    QFETCH(int, slave);
    ModbusChamberSimulation const chamber(QSharedPointer<ChamberTypeData>::create(), connection);
    QCOMPARE(chamber.getSerialPortName(), port);
    QCOMPARE(chamber.getServerAddress(), slave);
    QCOMPARE(chamber.getProtocolId(), 1);
}

void TestModbusChamberSimulation::initTestCase()
{
    // The serial tests below skip themselves when `ready` stays false.
    if (::geteuid() != 0 || QStandardPaths::findExecutable(QStringLiteral("socat")).isEmpty() || !hasPymodbus()
        || QFileInfo::exists(QLatin1String(devicePath)) || QFileInfo(QLatin1String(devicePath)).isSymLink())
        return;
    clientEnd = folder.filePath(QStringLiteral("client"));
    terminals.start(QStringLiteral("socat"),
                    {QStringLiteral("pty,raw,echo=0,link=") + QLatin1String(devicePath),
                     QStringLiteral("pty,raw,echo=0,link=") + clientEnd});
    QVERIFY(terminals.waitForStarted());
    QTRY_VERIFY(QFileInfo::exists(QLatin1String(devicePath)) && QFileInfo::exists(clientEnd));

    reader = QSharedPointer<MapReader>::create();
    reader->values = {
        {4, QVariant(74565)}, // 0x00012345: both registers get 0x2345
        {5, QVariant(true)},  // inside the int: never copied
        {8, QVariant(0.1f)},  // bits 3DCCCCCD
        {10, QVariant(true)},
        {11, QVariant::fromValue<unsigned short>(77)}, // not copied
        {14, QVariant(false)},
        {16, QVariant(0)},
        {18, QVariant(2.5f)},
        {31, QVariant(-3)}, // its second register would be 32
    };
    chamber = std::make_unique<ModbusChamberSimulation>(QSharedPointer<ChamberTypeData>::create(),
                                                        QStringLiteral("%1:%2").arg(portName).arg(slaveAddress));
    chamber->setSimulationReader(reader);
    QVERIFY(chamber->start());
    ready = true;
}

void TestModbusChamberSimulation::cleanupTestCase()
{
    if (terminals.state() != QProcess::NotRunning) {
        terminals.terminate();
        if (!terminals.waitForFinished())
            terminals.kill();
    }
    // socat removes its links as it ends; make sure all the same.
    if (QFileInfo(QLatin1String(devicePath)).isSymLink())
        QFile::remove(QLatin1String(devicePath));
}

QStringList TestModbusChamberSimulation::request(QStringList const& operations)
{
    return runModbusOperations(QStringLiteral("rtu:%1:%2").arg(clientEnd).arg(slaveAddress), operations);
}

void TestModbusChamberSimulation::copyTowardsInputRegisters()
{
    if (!ready)
        QSKIP("needs root (for /dev/COM62), socat and python3-pymodbus");
    QStringList const copied{"0 0 0 0 9029 9029 0 0 52429 52429 1 0", "65533", "exception 2"};
    // The copy runs every 2 s on the chamber's own timer.
    QTRY_COMPARE_WITH_TIMEOUT(request({"input:0:12", "input:31:1", "input:32:1"}), copied, 10000);
    // The holding registers are never filled from the reader.
    QCOMPARE(request({"holding:4:2", "holding:8:2"}), QStringList({"0 0", "0 0"}));

    // A changed value shows at the next copy.
    reader->values[10] = false;
    QTRY_COMPARE_WITH_TIMEOUT(request({"input:10:1"}), QStringList{"0"}, 10000);
}

void TestModbusChamberSimulation::writesBackToReader_data()
{
    QTest::addColumn<QStringList>("operations");
    QTest::addColumn<QStringList>("replies");
    QTest::addColumn<QVariantList>("writes"); // address, value, ...
    QTest::newRow("int from two holding registers, low first")
        << QStringList{"registers:16:0x5678:1", "holding:16:2"} << QStringList{"ok", "22136 1"}
        << QVariantList{16, QVariant(0x15678)};
    QTest::newRow("bool from a coil") << QStringList{"coil:14:1", "coils:14:1"} << QStringList{"ok", "1"}
                                      << QVariantList{14, QVariant(true)};
    QTest::newRow("bool from a holding register") << QStringList{"register:14:5"} << QStringList{"ok"}
                                                  << QVariantList{14, QVariant(true)};
    // Qt signals no write when the table keeps its value.
    QTest::newRow("same word again: nothing written") << QStringList{"register:14:5"} << QStringList{"ok"}
                                                      << QVariantList();
    QTest::newRow("a float only ever gets 0") << QStringList{"registers:18:0:16448"} << QStringList{"ok"}
                                              << QVariantList{18, QVariant(0.0f)};
    QTest::newRow("unknown address stays in the table")
        << QStringList{"register:20:1234", "holding:20:1"} << QStringList{"ok", "1234"} << QVariantList();
    QTest::newRow("unsigned short isn't written back") << QStringList{"register:11:9", "holding:11:1"}
                                                       << QStringList{"ok", "9"} << QVariantList();
    QTest::newRow("register 32 is outside the table")
        << QStringList{"register:32:1", "holding:30:3"} << QStringList{"exception 2", "exception 2"}
        << QVariantList();
}

void TestModbusChamberSimulation::writesBackToReader()
{
    QFETCH(QStringList, operations);
    QFETCH(QStringList, replies);
    QFETCH(QVariantList, writes);
    if (!ready)
        QSKIP("needs root (for /dev/COM62), socat and python3-pymodbus");
    reader->writes.clear();
    QCOMPARE(request(operations), replies);
    QVariantList written;
    for (auto const& [address, value] : reader->writes)
        written << address << value;
    QCOMPARE(written, writes);
}

QTEST_GUILESS_MAIN(TestModbusChamberSimulation)

#include "tst_modbuschambersimulation.moc"
