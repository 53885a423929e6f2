#include "Domain/Types/ChamberTypeData.h"
#include "Tools/Simulation/ModbusChamberSimulation.h"
#include "support/ClientProcess.h"
#include "support/MapReader.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

using namespace zelmor::simulation;
using namespace zelmor::testsupport;
using zelmor::domain::types::ChamberTypeData;

// One chamber as slave 7 on one pseudo-terminal pair for the whole run: the
// chamber's device outlives it and keeps its port, so a second chamber could
// not share the terminal. Rows use addresses of their own. Qt opens
// "/dev/<name>" for a port name without a path; this binary's own name, so
// that test binaries run side by side.
class TestModbusChamberSimulation : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void serialParameters();
    void copyTowardsInputRegisters();
    void writesBackToReader_data();
    void writesBackToReader();

private:
    QStringList request(const QStringList& operations);

    const QString devicePath = QStringLiteral("/dev/COM62");
    QTemporaryDir folder;
    QProcess terminals;
    QSharedPointer<MapReader> reader = QSharedPointer<MapReader>::create();
    std::unique_ptr<ModbusChamberSimulation> chamber;
};

void TestModbusChamberSimulation::initTestCase()
{
    if (::geteuid() != 0 || QStandardPaths::findExecutable(QStringLiteral("socat")).isEmpty() || !hasPymodbus()
        || QFileInfo::exists(devicePath) || QFileInfo(devicePath).isSymLink())
        QSKIP("needs root (for /dev/COM62, which must not exist yet), socat and python3-pymodbus");
    terminals.start(QStringLiteral("socat"),
                    {"pty,raw,echo=0,link=" + devicePath, "pty,raw,echo=0,link=" + folder.filePath("client")});
    QVERIFY(terminals.waitForStarted());
    QTRY_VERIFY(QFileInfo::exists(devicePath) && QFileInfo::exists(folder.filePath("client")));

    // The int at 4 is 0x00012345, both its registers get 2345; 5 lies inside
    // it and is never copied, nor is the unsigned short at 11. The float at 8
    // has the bits 3DCCCCCD. The int at 31 would have its second register at 32.
    reader->values = {{4, 74565},  {5, true}, {8, 0.1f},  {10, true}, {11, QVariant::fromValue<ushort>(77)},
                      {14, false}, {16, 0},   {18, 2.5f}, {31, -3}};
    chamber = std::make_unique<ModbusChamberSimulation>(QSharedPointer<ChamberTypeData>::create(), "COM62:7");
    chamber->setSimulationReader(reader);
    QVERIFY(chamber->start());
}

void TestModbusChamberSimulation::cleanupTestCase()
{
    // socat removes its links as it ends; make sure all the same.
    terminals.terminate();
    terminals.waitForFinished();
    if (QFileInfo(devicePath).isSymLink())
        QFile::remove(devicePath);
}

// The terminal as the chamber set it up: 9600 baud, one stop bit. A
// pseudo-terminal forces 8 bits without parity whatever it is told, so
// those two can't be seen here. The client's end is a terminal of its own.
void TestModbusChamberSimulation::serialParameters()
{
    const int descriptor = ::open(qPrintable(devicePath), O_RDONLY | O_NOCTTY | O_NONBLOCK);
    termios settings{};
    QVERIFY(descriptor >= 0 && ::tcgetattr(descriptor, &settings) == 0);
    ::close(descriptor);
    QCOMPARE(::cfgetospeed(&settings), speed_t(B9600));
    QCOMPARE(settings.c_cflag & CSTOPB, tcflag_t(0));
}

QStringList TestModbusChamberSimulation::request(const QStringList& operations)
{
    return runModbusOperations("rtu:" + folder.filePath("client") + ":7", operations);
}

void TestModbusChamberSimulation::copyTowardsInputRegisters()
{
    const QStringList copied{"0 0 0 0 9029 9029 0 0 52429 52429 1 0", "65533", "exception 2"};
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
    const auto row = [](const char* name, const QStringList& operations, const QStringList& replies,
                        const QVariantList& writes = {}) { QTest::newRow(name) << operations << replies << writes; };
    row("int from two holding registers, low first", {"registers:16:0x5678:1", "holding:16:2"}, {"ok", "22136 1"},
        {16, 0x15678});
    // Qt signals no write when the table keeps its value.
    row("bool from a coil, from a holding register, not for the same word again",
        {"coil:14:1", "coils:14:1", "register:14:5", "register:14:5"}, {"ok", "1", "ok", "ok"}, {14, true, 14, true});
    row("a float only ever gets 0", {"registers:18:0:16448"}, {"ok"}, {18, 0.0f});
    row("unknown address and unsigned short stay in the table; register 32 is outside",
        {"register:20:1234", "holding:20:1", "register:11:9", "holding:11:1", "register:32:1", "holding:30:3"},
        {"ok", "1234", "ok", "9", "exception 2", "exception 2"});
}

void TestModbusChamberSimulation::writesBackToReader()
{
    QFETCH(QStringList, operations);
    QFETCH(QStringList, replies);
    QFETCH(QVariantList, writes);
    reader->writes.clear();
    QCOMPARE(request(operations), replies);
    QVariantList written;
    for (const auto& [address, value] : reader->writes)
        written << address << value;
    QCOMPARE(written, writes);
}

QTEST_GUILESS_MAIN(TestModbusChamberSimulation)

#include "tst_modbuschambersimulation.moc"
