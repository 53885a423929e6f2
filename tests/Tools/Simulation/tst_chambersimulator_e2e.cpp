// The real chamber-simulator executable on the sample catalogue, spoken to
// over real sockets on this binary's own loopback addresses 127.0.57.x.
// The wire format's patterns are the in-process test's business; here: what
// the catalogue's types answer, the command line, the console.

#include "support/FileLimits.h"
#include "support/SampleCatalogue.h"
#include "support/SimulatorProcess.h"
#include "support/TestDatabase.h"
#include "support/TlxClient.h"

#include <QNetworkDatagram>
#include <QRegularExpression>
#include <QUdpSocket>
#include <QtTest>

#include <cmath>
#include <map>
#include <memory>

#include <sys/resource.h>
#include <unistd.h>

using zelmor::testsupport::SimulatorProcess;
using zelmor::testsupport::TestDatabase;
using zelmor::testsupport::TlxClient;

namespace {

const QByteArray linkTest = "CANIDGetValue:10010010\r\n";
const QByteArray linkAnswer = "41\r\nCANIDGetValue:10010010:Communication OK\r\n";
const QByteArray error = "07\r\nError\r\n";
const QByteArray readingDefault = "Reading database in default folders\r\n";
const QByteArray usage = "Usage: \n [-iXXXX] XXXX=IPAddress\n [-pXXXX] XXXX=Internet Port\n"
                         " [tlx] creates a TLX chamber\n [kv2] creates a TLX chamber\n"
                         " [-mXXX] creates a chamber based on the database id XXX\n"
                         " [-nXXX] creates XXX instances of chambers\n [-xXXX] Defines the value file\n";

QString address(int host)
{
    return QStringLiteral("127.0.57.%1").arg(host);
}

// The output of a single chamber, signal lines folded: their choice is the
// fleet test's business.
QByteArray started(int signalCount, const QByteArray& typeName, int host)
{
    return readingDefault + QByteArray(signalCount, '+') + "Start TLX simulation " + typeName + " on "
           + address(host).toLatin1() + ":9000\r\n";
}

// A request and its framed answer.
QByteArrayList get(const QByteArray& identifier, const QByteArray& value)
{
    const QByteArray body = "CANIDGetValue:" + identifier + ':' + value + "\r\n";
    return {"CANIDGetValue:" + identifier + "\r\n", QByteArray::number(body.size()) + "\r\n" + body};
}
QByteArrayList set(const QByteArray& identifier, const QByteArray& value)
{
    const QByteArray request = "CANIDWriteValue:" + identifier + ':' + value + "\r\n";
    return {request, QByteArray::number(request.size()) + "\r\n" + request};
}

// The chambers shared by the wire tests: host -> arguments. Host 1 is only
// read, so that its values stay at their defaults; host 5 takes the writes.
const std::map<int, QStringList> sharedChambers = {
    {1, {"tlx", "-i127.0.57.1"}},
    {3, {"-m12", "-i127.0.57.3"}},
    {5, {"-i127.0.57.5", "tlx"}},
};

} // namespace

class TestChamberSimulatorEndToEnd : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void exchanges_data();
    void exchanges();
    void processValueFollowsTheLag();
    void discovery();
    void startsWithoutDisplayAndRaisesTheFileLimit();
    void catalogueStaysWritable();
    void typeWordsKeepTheirOrder_data();
    void typeWordsKeepTheirOrder();
    void commandLine_data();
    void commandLine();

private:
    TestDatabase databases;
    QString catalogue;
    QString wrongKeyCatalogue;
    rlim_t hardFileLimit = 0;
    std::map<int, std::unique_ptr<SimulatorProcess>> chambers;
    std::map<int, std::unique_ptr<TlxClient>> clients;
    QElapsedTimer sinceStart;
    qint64 host5StartedMs = 0;
    qint64 host5StartLineMs = 0;
};

void TestChamberSimulatorEndToEnd::initTestCase()
{
    catalogue = zelmor::testsupport::createSampleCatalogue(databases);
    const QString otherKey = QStringLiteral("ffeeddccbbaa99887766554433221100");
    wrongKeyCatalogue = databases.createEncrypted(QStringLiteral("wrongkey.sqlite3"), "CREATE TABLE t(a);", otherKey);
    QVERIFY2(!catalogue.isEmpty() && !wrongKeyCatalogue.isEmpty(), qPrintable(databases.lastError()));
    // The tools started here inherit a low soft limit of open files.
    rlimit limit{};
    QCOMPARE(getrlimit(RLIMIT_NOFILE, &limit), 0);
    hardFileLimit = limit.rlim_max;
    limit.rlim_cur = qMin<rlim_t>(256, limit.rlim_max);
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &limit), 0);

    sinceStart.start();
    // Host 5 comes last: its times are the ones kept for the lag.
    for (const auto& [host, arguments] : sharedChambers) {
        auto& simulator = chambers[host] = std::make_unique<SimulatorProcess>();
        QVERIFY(simulator->installCatalogue(catalogue));
        host5StartedMs = sinceStart.elapsed();
        simulator->start(arguments);
        QVERIFY2(simulator->waitForOutput("Start TLX simulation"), simulator->standardError().constData());
        host5StartLineMs = sinceStart.elapsed();
        clients[host] = std::make_unique<TlxClient>();
        QVERIFY(clients[host]->connectTo(address(host)));
    }
}

void TestChamberSimulatorEndToEnd::exchanges_data()
{
    QTest::addColumn<int>("host");
    QTest::addColumn<QList<QByteArrayList>>("exchanges");
    auto row = [](const char* name, int host, const QList<QByteArrayList>& exchanges) {
        QTest::newRow(name) << host << exchanges;
    };
    // Every value type of the sample's TLX types, at its default.
    row("link test", 1, {{linkTest, linkAnswer}});
    row("float process value", 1, {get("11400080", "23.299999237060547")});
    // An unsigned char prints as the character of its code: 42 is '*'.
    row("unsigned char", 1, {get("11400300", "*")});
    row("unsigned short of a boolean unit", 1, {get("11500010", "1")});
    row("bool", 1, {get("11500020", "false")});
    row("unsigned int", 1, {get("11600000", "42")});
    row("short", 1, {get("11600002", "42")});
    row("int of a percentage", 1, {get("11600004", "50")});
    row("unknown identifier", 1, {{"CANIDGetValue:12345678\r\n", error}});
    row("lower-case hex repeated as sent", 3, {get("114000a0", "10")});
    // C0000010 overflows to 0 in the catalogue and on the wire alike.
    row("identifier above 7FFFFFFF", 3, {get("C0000010", "42")});
    // One read of the socket is one request: a split line fails in both
    // halves, of two merged lines the first is answered, a NUL behind the
    // line end is ignored.
    row("split request", 1, {{"CANIDGetValue:1160", error}, {"0000\r\n", error}});
    row("merged requests", 1, {{"CANIDGetValue:11600000\r\nCANIDGetValue:11600002\r\n", get("11600000", "42").at(1)}});
    row("NUL behind the line end", 1,
        {{QByteArrayLiteral("CANIDGetValue:11600000\r\n\0z"), get("11600000", "42").at(1)}});

    row("bool set point", 5, {set("11500030", "1"), get("11500030", "true")});
    row("control word takes a write at once", 5, {set("11700000", "5"), get("11700000", "5")});
    // The humidity set point's manual register is a second write address of
    // its process value: known to a write, written through to the first.
    row("float set point through an alias", 5, {set("11400181", "55"), get("11400181", "55"), get("11400281", "55")});
    row("float process value: no write", 5, {{"CANIDWriteValue:11400080:40\r\n", error}});
    row("read-only bool refuses, echoed all the same", 5, {set("11500020", "1"), get("11500020", "false")});
    row("write to an unknown identifier", 5, {{"CANIDWriteValue:12345678:1\r\n", error}});
}

// Each exchange: the exact framed answer, never earlier than 20 ms.
void TestChamberSimulatorEndToEnd::exchanges()
{
    QFETCH(int, host);
    QFETCH(QList<QByteArrayList>, exchanges);
    for (const QByteArrayList& exchange : exchanges) {
        TlxClient::Answer const answer = clients.at(host)->request(exchange.at(0));
        QCOMPARE(answer.frame, exchange.at(1));
        QVERIFY2(answer.elapsedNs >= 20 * 1000 * 1000, qPrintable(QString::number(answer.elapsedNs)));
    }
}

// After a set point write the process value moves along a first-order lag
// with the time constant of its unit (360.3 s for °C). Its clock ticks in
// whole seconds and counts from the chamber's construction, since the value
// was at rest until the write.
void TestChamberSimulatorEndToEnd::processValueFollowsTheLag()
{
    TlxClient& tlx = *clients.at(5);
    QCOMPARE(tlx.request("CANIDWriteValue:11400180:40\r\n").frame, QByteArray("29\r\nCANIDWriteValue:11400180:40\r\n"));
    QCOMPARE(tlx.request("CANIDGetValue:11400180\r\n").frame, QByteArray("27\r\nCANIDGetValue:11400180:40\r\n"));
    const QByteArray atRest = "43\r\nCANIDGetValue:11400080:23.299999237060547\r\n";
    QByteArray frame = atRest;
    qint64 sentMs = 0;
    QTRY_VERIFY_WITH_TIMEOUT(
        (sentMs = sinceStart.elapsed(), frame = tlx.request("CANIDGetValue:11400080\r\n").frame, frame != atRest),
        15000);
    const qint64 answeredMs = sinceStart.elapsed();
    QVERIFY2(frame.mid(4).startsWith("CANIDGetValue:11400080:"), frame.constData());
    const float value = frame.mid(4 + 23).trimmed().toFloat();

    auto lagged = [](double seconds) { return 40.0 - 16.7 * std::exp(-seconds / 360.3); };
    // The last step was taken less than a second before the read.
    const double fewest = (sentMs - 1000 - host5StartLineMs) / 1000.0;
    const double most = (answeredMs - host5StartedMs) / 1000.0;
    QVERIFY2(value >= lagged(fewest) - 1e-4 && value <= lagged(most) + 1e-4,
             qPrintable(QStringLiteral("%1 not within %2..%3").arg(value).arg(lagged(fewest)).arg(lagged(most))));
}

void TestChamberSimulatorEndToEnd::discovery()
{
    QUdpSocket socket;
    QVERIFY(socket.bind(QHostAddress(address(200)), 0));
    QVERIFY(socket.writeDatagram("hello", QHostAddress(address(5)), 9001) == 5);
    QVERIFY(socket.waitForReadyRead(5000));
    const QNetworkDatagram reply = socket.receiveDatagram();
    // No interface but the loopback carries the address: the hardware address is zeros.
    const QByteArray expected = "IP:127.0.57.5 Port:9001 MAC:00:00:00:00:00:00\tChambertype:HX 60 Z6\t"
                                "Controllertype:TLX\tCOMType:TLXDirect\tProgramController:False\r\n";
    QCOMPARE(reply.data(), expected);
    QCOMPARE(reply.senderAddress(), QHostAddress(address(5)));
    QCOMPARE(reply.senderPort(), 9001);

    const QByteArray sender = address(200).toLatin1() + ':' + QByteArray::number(socket.localPort());
    const QByteArray lines = "UDP Request hello from " + sender + "\r\nSender:" + sender + " \r\n" + expected + "\r\n";
    QVERIFY2(chambers.at(5)->waitForOutput(lines, 5000), chambers.at(5)->standardOutput().constData());
}

// The chambers came up without a display, and lifted their soft limit of
// open files to the hard limit, and the hard limit too where they may: a TLX
// chamber holds three descriptors.
void TestChamberSimulatorEndToEnd::startsWithoutDisplayAndRaisesTheFileLimit()
{
    QFile limits(QStringLiteral("/proc/%1/limits").arg(chambers.at(1)->processId()));
    QVERIFY(limits.open(QIODevice::ReadOnly));
    const QByteArray text = limits.readAll();
    const QByteArray hard =
        QByteArray::number(zelmor::testsupport::mayRaiseHardLimits() ? zelmor::testsupport::simulatorFileLimitCeiling()
                                                                     : qulonglong(hardFileLimit));
    QVERIFY2(text.simplified().contains("Max open files " + hard + ' ' + hard + " files"), text.constData());
}

// The ini file is the monitoring application's own: both name the same
// catalogue, and the application may write to it while the tool runs.
void TestChamberSimulatorEndToEnd::catalogueStaysWritable()
{
    const QString shared = databases.filePath(QStringLiteral("shared.sqlite3"));
    QVERIFY(QFile::copy(catalogue, shared));
    SimulatorProcess simulator;
    QVERIFY(simulator.writeIni("[%General]\nConfigDatabasePath=" + shared.toUtf8() + '\n'));
    simulator.start({"tlx", "-i127.0.57.34"});
    QVERIFY2(simulator.waitForOutput("Start TLX simulation"), simulator.standardError().constData());
    QVERIFY(simulator.waitUntilIdle());

    // The shell waits for no lock: a catalogue still locked fails at once.
    const TestDatabase::ShellResult written = TestDatabase::runSqlcipher(
        shared, QLatin1String(TestDatabase::projectKey_),
        QStringLiteral("UPDATE chamber_type SET description = 'written meanwhile' WHERE id = 1; SELECT changes();"));
    QVERIFY2(written.ok, qPrintable(written.errorOutput));
    QCOMPARE(written.output, QStringLiteral("1\n"));
    QVERIFY(simulator.isRunning());
}

void TestChamberSimulatorEndToEnd::typeWordsKeepTheirOrder_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("starts");
    const QByteArray tlx = "Start TLX simulation HX 60 Z6 on 127.0.57.36:9000\r\n";
    const QByteArray kv2 = "Start Modbus simulation VC 7034 Z2 on 127.0.57.36:502\r\n";
    QTest::newRow("tlx kv2") << QStringList{"tlx", "kv2", "-i127.0.57.36"} << tlx + kv2;
    QTest::newRow("kv2 tlx") << QStringList{"kv2", "-i127.0.57.36", "tlx"} << kv2 + tlx;
}

// The type words add their types in command-line order, one chamber each on the one address.
void TestChamberSimulatorEndToEnd::typeWordsKeepTheirOrder()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, starts);
    if (::geteuid() != 0)
        QSKIP("Modbus TCP's port 502 needs root");
    SimulatorProcess simulator;
    QVERIFY(simulator.installCatalogue(catalogue));
    simulator.start(arguments);
    QVERIFY2(simulator.waitForOutput(starts.mid(starts.indexOf('\n') + 1)), simulator.standardError().constData());
    QVERIFY(simulator.waitUntilIdle());
    QCOMPARE(simulator.foldedOutput().replace('+', ""), readingDefault + starts);
}

void TestChamberSimulatorEndToEnd::commandLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("catalogueAt"); // relative to the working folder; empty: none
    // QSettings keeps the group "General" under the section name "[%General]".
    QTest::addColumn<QByteArray>("ini");
    QTest::addColumn<int>("exitCode");            // -1: keeps running
    QTest::addColumn<QByteArray>("output");       // all of standard output, signals folded
    QTest::addColumn<QByteArrayList>("exchange"); // with the chamber of the start line, when not empty

    const QString inDefault = QStringLiteral("database/configuration.sqlite3");
    // The process folds main's -1 into 255.
    const int notOpened = 255;
    auto row = [](const char* name, const QStringList& arguments, const QString& catalogueAt, int exitCode,
                  const QByteArray& output, const QByteArrayList& exchange = {}, const QByteArray& ini = {}) {
        QTest::newRow(name) << arguments << catalogueAt << ini << exitCode << output << exchange;
    };
    const QByteArrayList link{linkTest, linkAnswer};
    row("-h behind others, no database touched", {"tlx", "-i127.0.57.20", "-n3", "-h"}, "", 0, usage);
    row("-h in front", {"-h", "tlx"}, "", 0, usage);
    row("missing database; -help is no -h", {"-help"}, "", notOpened, readingDefault);
    row("bad ini path, even with a default database", {"tlx", "-i127.0.57.21"}, inDefault, notOpened,
        "Reading database /nonexistent-zelmor/catalogue.sqlite3\r\n", {},
        "[%General]\nConfigDatabasePath=/nonexistent-zelmor/catalogue.sqlite3\n");
    // A wrong key opens, but the first read fails: the catalogue counts as not opened.
    row("wrong key", {"tlx", "-i127.0.57.30"}, inDefault, notOpened, readingDefault);
    row("second default folder", {"tlx", "-i127.0.57.23"}, "../../../database/configuration.sqlite3", -1,
        started(9, "HX 60 Z6", 23), link);
    row("unknown arguments and -p change nothing, -i texts run together",
        {"--bogus", "x", "-p4000", "-i127.0.57", "-m1", "-i.24"}, inDefault, -1, started(9, "HX 60 Z6", 24), link);
    row("-a empty: the default type, single", {"-a", "-i127.0.57.26"}, inDefault, -1, started(10, "KBF 240 E6", 26),
        link);
    row("-mtlx is type 0: no chamber", {"-mtlx", "-i127.0.57.27"}, inDefault, -1, readingDefault);
    // No local address in the subnet of 127.0.57.28 but the loopback's, which doesn't count.
    row("-n0: instances, none", {"-n0", "-i127.0.57.28"}, inDefault, -1, readingDefault);
    // The value file reader replaces the catalogue's reader before start();
    // a file that can't be read answers 0 for every address.
    row("-x on a missing value file", {"tlx", "-i127.0.57.32", "-x/nonexistent-zelmor/values.xml"}, inDefault, -1,
        started(9, "HX 60 Z6", 32), get("12345678", "0"));
}

void TestChamberSimulatorEndToEnd::commandLine()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, catalogueAt);
    QFETCH(QByteArray, ini);
    QFETCH(int, exitCode);
    QFETCH(QByteArray, output);
    QFETCH(QByteArrayList, exchange);

    SimulatorProcess simulator;
    const bool wrongKey = QTest::currentDataTag() == QByteArray("wrong key");
    if (!catalogueAt.isEmpty())
        QVERIFY(simulator.installCatalogue(wrongKey ? wrongKeyCatalogue : catalogue, catalogueAt));
    if (!ini.isEmpty())
        QVERIFY(simulator.writeIni(ini));

    simulator.start(arguments);
    if (exitCode >= 0) {
        QCOMPARE(simulator.waitForExit(), exitCode);
        QCOMPARE(simulator.standardOutput(), output);
        return;
    }
    QVERIFY2(simulator.waitForOutput(output.mid(output.lastIndexOf('+') + 1)), simulator.standardError().constData());
    if (!exchange.isEmpty()) {
        TlxClient tlx;
        QVERIFY(tlx.connectTo(QRegularExpression(QStringLiteral("on ([0-9.]+):9000")).match(output).captured(1)));
        QCOMPARE(tlx.request(exchange.at(0)).frame, exchange.at(1));
        output += "Connect TLX simulation \r\n";
    }
    QVERIFY(simulator.waitUntilIdle());
    QCOMPARE(simulator.foldedOutput(), output);
    QVERIFY(!simulator.hasDocumentsFile(QStringLiteral("sqlextract.sql")));
}

QTEST_GUILESS_MAIN(TestChamberSimulatorEndToEnd)
#include "tst_chambersimulator_e2e.moc"
