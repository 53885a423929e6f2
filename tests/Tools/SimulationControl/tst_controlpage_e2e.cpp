// The control page in a real browser: headless Chromium, driven over its
// DevTools protocol by control_page.py, against a fleet of 1000 chambers
// (500 TLX, 500 tunnelled) of the real chamber-simulator in a network
// namespace. A click takes a chamber offline; its port is checked here.
// The screenshot stays in the build tree as control-page.png.

#include "support/HttpClient.h"
#include "support/NetworkNamespace.h"
#include "support/SampleCatalogue.h"
#include "support/SimulatorProcess.h"
#include "support/TestDatabase.h"
#include "support/TestPaths.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QtTest>

#include <memory>

using namespace zelmor::testsupport;

namespace {

const QString python = QStringLiteral("/usr/bin/python3");

bool hasDevToolsClient()
{
    QProcess probe;
    probe.start(python, {"-c", "import websocket"});
    return probe.waitForFinished(30000) && probe.exitStatus() == QProcess::NormalExit && probe.exitCode() == 0;
}

} // namespace

class TestControlPageEndToEnd : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void clickTakesAChamberOffline();

private:
    HttpResponse http(const QByteArray& method, const QByteArray& path, const QByteArray& body = QByteArray()) const
    {
        return httpRequest(QStringLiteral("127.0.0.1"), port, method, path, body, space.get());
    }

    TestDatabase databases;
    std::unique_ptr<NetworkNamespace> space;
    std::unique_ptr<SimulatorProcess> simulator;
    quint16 port = 0;
};

void TestControlPageEndToEnd::initTestCase()
{
    if (!NetworkNamespace::isAvailable())
        QSKIP("needs root and \"ip netns\"");
    if (QStandardPaths::findExecutable(QStringLiteral("chromium")).isEmpty())
        QSKIP("needs Debian's chromium");
    if (!hasDevToolsClient())
        QSKIP("needs Debian's python3-websocket");
    const QString catalogue = createSampleCatalogue(databases);
    QVERIFY2(!catalogue.isEmpty(), qPrintable(databases.lastError()));
    QStringList addresses;
    for (int host = 1; host <= 500; ++host)
        addresses << QStringLiteral("10.216.%1.%2/16").arg(host / 256).arg(host % 256);
    space = std::make_unique<NetworkNamespace>(addresses, QStringList());
    QVERIFY2(space->lastError().isEmpty(), qPrintable(space->lastError()));
    simulator = std::make_unique<SimulatorProcess>();
    QVERIFY(simulator->installCatalogue(catalogue));
    simulator->setNetworkNamespace(space->name());
    simulator->start({"-m9", "-m60", "-n500", "-i10.216.0.1", "--control=127.0.0.1:0"});
    QVERIFY2(simulator->waitForOutput("Control interface on http://127.0.0.1:", 60000),
             simulator->standardError().constData());
    const QRegularExpressionMatch line =
        QRegularExpression(QStringLiteral("Control interface on http://127.0.0.1:(\\d+)/\r\n$"))
            .match(QString::fromLatin1(simulator->standardOutput()));
    QVERIFY(line.hasMatch());
    port = quint16(line.captured(1).toUInt());
    QCOMPARE(http("GET", "/chambers?limit=0").headers.value("x-total-count"), QByteArray("1000"));
}

// Chamber 263 is the TLX chamber on the 264th address, 10.216.1.8. The
// page is filtered for that address, the chamber's state button clicked.
void TestControlPageEndToEnd::clickTakesAChamberOffline()
{
    const QString address = QStringLiteral("10.216.1.8");
    QTcpSocket before;
    QVERIFY(before.setSocketDescriptor(space->connectedTcpSocket(address, 9000)));
    before.abort();
    // Some variety for the picture: faults on two chambers, one offline.
    QCOMPARE(http("PUT", "/chambers/1/faults", R"({"delayMs": 250, "dropRate": 0.1})").status, 200);
    QCOMPARE(http("PUT", "/chambers/4/faults", R"({"errorRate": 0.2})").status, 200);
    QCOMPARE(http("PUT", "/chambers/3/online", "false").status, 200);

    const QString screenshot = binaryDir() + QStringLiteral("/control-page.png");
    QFile::remove(screenshot);
    QProcess driver;
    driver.start(QStringLiteral("ip"), {"netns", "exec", space->name(), python,
                                        sourceDir() + "/tests/Tools/SimulationControl/control_page.py",
                                        QStringLiteral("http://127.0.0.1:%1/").arg(port), "263", address, screenshot});
    QVERIFY(driver.waitForStarted());
    QVERIFY(driver.waitForFinished(180000));
    const QByteArray errors = driver.readAllStandardError();
    QVERIFY2(driver.exitStatus() == QProcess::NormalExit && driver.exitCode() == 0, errors.constData());
    const QJsonObject shown = QJsonDocument::fromJson(driver.readAllStandardOutput()).object();
    QCOMPARE(shown.value("firstPageRows").toInt(), 50);
    QCOMPARE(shown.value("range").toString(), QStringLiteral("1\u201350 of 1000"));
    // The filter kept the addresses that contain 10.216.1.8: .8 and .80 to .89.
    QCOMPARE(shown.value("filtered").toArray().size(), 11);
    QCOMPARE(shown.value("filtered").toArray().at(0).toString(), QStringLiteral("263"));
    QCOMPARE(shown.value("state").toString(), QStringLiteral("offline"));

    QCOMPARE(space->connectedTcpSocket(address, 9000), qintptr(-1));
    QCOMPARE(QJsonDocument::fromJson(http("GET", "/chambers/263").body).object().value("online").toBool(true), false);
    QFile picture(screenshot);
    QVERIFY(picture.open(QIODevice::ReadOnly));
    QCOMPARE(picture.read(8), QByteArray("\x89PNG\r\n\x1a\n"));
}

QTEST_GUILESS_MAIN(TestControlPageEndToEnd)
#include "tst_controlpage_e2e.moc"
