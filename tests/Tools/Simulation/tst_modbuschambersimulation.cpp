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
    void copyTowardsInputRegisters();
    void writesBackToReader_data();
    void writesBackToReader();

private:
    QStringList request(QStringList const& operations);

    QString const devicePath = QStringLiteral("/dev/COM62");
    QTemporaryDir folder;
    QProcess terminals;
    QSharedPointer<MapReader> reader = QSharedPointer<MapReader>::create();
    std::unique_ptr<ModbusChamberSimulation> chamber;
    bool ready = false;
};

void TestModbusChamberSimulation::initTestCase()
{
    // The serial tests below skip themselves when `ready` stays false.
    if (::geteuid() != 0 || QStandardPaths::findExecutable(QStringLiteral("socat")).isEmpty() || !hasPymodbus()
        || QFileInfo::exists(devicePath) || QFileInfo(devicePath).isSymLink())
        return;
    terminals.start(QStringLiteral("socat"),
                    {"pty,raw,echo=0,link=" + devicePath, "pty,raw,echo=0,link=" + folder.filePath("client")});
    QVERIFY(terminals.waitForStarted());
    QTRY_VERIFY(QFileInfo::exists(devicePath) && QFileInfo::exists(folder.filePath("client")));

    reader->values = {
        {4, 74565},     // 0x00012345: both registers get 0x2345
        {5, true},      // inside the int: never copied
        {8, 0.1f},      // bits 3DCCCCCD
        {10, true},
        {11, QVariant::fromValue<unsigned short>(77)}, // not copied
        {14, false},
        {16, 0},
        {18, 2.5f},
        {31, -3},       // its second register would be 32
    };
    chamber = std::make_unique<ModbusChamberSimulation>(QSharedPointer<ChamberTypeData>::create(), "COM62:7");
    chamber->setSimulationReader(reader);
    QVERIFY(chamber->start());
    ready = true;
}

void TestModbusChamberSimulation::cleanupTestCase()
{
    // socat removes its links as it ends; make sure all the same.
    terminals.terminate();
    terminals.waitForFinished();
    if (QFileInfo(devicePath).isSymLink())
        QFile::remove(devicePath);
}

QStringList TestModbusChamberSimulation::request(QStringList const& operations)
{
    return runModbusOperations("rtu:" + folder.filePath("client") + ":7", operations);
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
    auto const row = [](char const* name, QStringList const& operations, QStringList const& replies,
                        QVariantList const& writes = {}) { QTest::newRow(name) << operations << replies << writes; };
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
