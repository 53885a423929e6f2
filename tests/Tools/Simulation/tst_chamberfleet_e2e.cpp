// Fleets of the real chamber-simulator in network namespaces of their own,
// each with a veth pair (both ends inside) carrying several addresses. The
// test's client sockets are made inside the namespace too.

#include "support/NetworkNamespace.h"
#include "support/SampleCatalogue.h"
#include "support/SimulatorProcess.h"
#include "support/TestDatabase.h"
#include "support/TlxClient.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QNetworkDatagram>
#include <QRandomGenerator>
#include <QUdpSocket>
#include <QtTest>

#include <memory>

using zelmor::testsupport::NetworkNamespace;
using zelmor::testsupport::SimulatorProcess;
using zelmor::testsupport::TestDatabase;
using zelmor::testsupport::TlxClient;

namespace {

QByteArray const linkTest = "CANIDGetValue:10010010\r\n";
QByteArray const linkAnswer = "41\r\nCANIDGetValue:10010010:Communication OK\r\n";
QByteArray const readingDefault = "Reading database in default folders\r\n";
QString const extractFile = QStringLiteral("sqlextract.sql");

QByteArray const type9Signals = "Adding Signal PV_Temperature\r\n"
                                "Adding Signal PV_Humidity\r\n"
                                "Adding Signal PV_Door_Open\r\n"
                                "Adding Signal PV_Collective_Alarm\r\n"
                                "Adding Signal PV_Illuminance_Top\r\n"
                                "Adding Signal PV_Illuminance_Bottom\r\n"
                                "Adding Signal PV_Light_Dose\r\n"
                                "Adding Signal PV_UV_Irradiance\r\n"
                                "Adding Signal PV_UV_Dose\r\n"
                                "Adding Signal PV_Dew_Point\r\n";

QByteArray startLine(QByteArray const& typeName, QByteArray const& address)
{
    return "Start TLX simulation " + typeName + " on " + address + ":9000\r\n";
}

QByteArray discoveryReply(QByteArray const& address, QString const& mac, QByteArray const& typeName)
{
    return "IP:" + address + " Port:9001 MAC:" + mac.toLatin1() + "\tChambertype:" + typeName
           + "\tControllertype:TLX\tCOMType:TLXDirect\tProgramController:False\r\n";
}

// A namespace with veth ends "fa" and "fb", addresses given per end.
std::unique_ptr<NetworkNamespace> makeNamespace(QStringList const& onFa, QStringList const& onFb, QString* error)
{
    auto space = std::make_unique<NetworkNamespace>();
    bool ok = space->isValid() && space->addVethPair(QStringLiteral("fa"), QStringLiteral("fb"));
    for (QString const& address : onFa)
        ok = ok && space->addAddress(QStringLiteral("fa"), address);
    for (QString const& address : onFb)
        ok = ok && space->addAddress(QStringLiteral("fb"), address);
    if (!ok)
        *error = space->lastError();
    return space;
}

} // namespace

class TestChamberFleetEndToEnd : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void instancesFleet();
    void automaticFleet();
    void badInputOnTheWire_data();
    void badInputOnTheWire();

private:
    bool connectInside(NetworkNamespace const& space, TlxClient& client, QString const& address);
    void checkChamber(NetworkNamespace const& space, QByteArray const& address, QString const& mac,
                      QByteArray const& typeName);

    TestDatabase databases;
    QString catalogue;
    // Shared by the instance fleet and the bad input tests: three chambers of type 9.
    std::unique_ptr<NetworkNamespace> instances;
    std::unique_ptr<SimulatorProcess> instancesSimulator;
};

void TestChamberFleetEndToEnd::initTestCase()
{
    QString why;
    if (!NetworkNamespace::isAvailable(&why))
        QSKIP(qPrintable(why));
    catalogue = zelmor::testsupport::createSampleCatalogue(databases);
    QVERIFY2(!catalogue.isEmpty(), qPrintable(databases.lastError()));

    // Three addresses of one subnet on "fa", one of another subnet on "fb".
    instances = makeNamespace({"10.201.0.1/24", "10.201.0.2/24", "10.201.0.3/24"}, {"10.202.0.1/24"}, &why);
    QVERIFY2(why.isEmpty(), qPrintable(why));
    instancesSimulator = std::make_unique<SimulatorProcess>();
    QVERIFY(instancesSimulator->installCatalogue(catalogue));
    instancesSimulator->setNetworkNamespace(instances->name());
    // More instances than addresses in the subnet of 10.201.0.2: cut down to three.
    instancesSimulator->start({"-n5", "-i10.201.0.2"});
    QVERIFY2(instancesSimulator->waitForOutput(startLine("KBF 240 E6", "10.201.0.3")),
             instancesSimulator->standardError().constData());
}

void TestChamberFleetEndToEnd::cleanupTestCase()
{
    // The simulator first: a namespace goes only with its last process.
    instancesSimulator.reset();
    instances.reset();
}

bool TestChamberFleetEndToEnd::connectInside(NetworkNamespace const& space, TlxClient& client,
                                             QString const& address)
{
    // A chamber prints its start line just before it listens.
    QDeadlineTimer deadline(10000);
    while (!deadline.hasExpired()) {
        qintptr const descriptor = space.connectedTcpSocket(address, 9000);
        if (descriptor >= 0)
            return client.adopt(descriptor);
        QTest::qWait(20);
    }
    return false;
}

// The chamber answers on its own address, its responder names it with the
// hardware address of the interface that carries it.
void TestChamberFleetEndToEnd::checkChamber(NetworkNamespace const& space, QByteArray const& address,
                                            QString const& mac, QByteArray const& typeName)
{
    TlxClient client;
    QVERIFY2(connectInside(space, client, QString::fromLatin1(address)), address.constData());
    QCOMPARE(client.request(linkTest).frame, linkAnswer);

    QUdpSocket udp;
    QVERIFY(udp.setSocketDescriptor(space.boundUdpSocket(QString::fromLatin1(address))));
    QVERIFY(udp.writeDatagram("search", QHostAddress(QString::fromLatin1(address)), 9001) == 6);
    QVERIFY(udp.waitForReadyRead(5000));
    QCOMPARE(udp.receiveDatagram().data(), discoveryReply(address, mac, typeName));
}

void TestChamberFleetEndToEnd::instancesFleet()
{
    QString const mac = instances->macAddress(QStringLiteral("fa")).toUpper();
    QVERIFY(!mac.isEmpty());
    QByteArray const expectedOutput = readingDefault + type9Signals + type9Signals + type9Signals
                                      + startLine("KBF 240 E6", "10.201.0.1") + startLine("KBF 240 E6", "10.201.0.2")
                                      + startLine("KBF 240 E6", "10.201.0.3");
    QVERIFY(instancesSimulator->waitUntilIdle());
    QCOMPARE(instancesSimulator->standardOutput(), expectedOutput);

    QString const rows = QStringLiteral(
        "INSERT INTO \"chamber\" VALUES(1000,9,9,'666-100000',0,1,'KBF 240 E6 at 10.201.0.1','10.201.0.1',NULL,'%1',"
        "0,NULL,NULL,NULL,NULL,NULL,4,-1);\n"
        "INSERT INTO \"chamber\" VALUES(1001,9,9,'666-100001',0,1,'KBF 240 E6 at 10.201.0.2','10.201.0.2',NULL,'%1',"
        "0,NULL,NULL,NULL,NULL,NULL,4,-1);\n"
        "INSERT INTO \"chamber\" VALUES(1002,9,9,'666-100002',0,1,'KBF 240 E6 at 10.201.0.3','10.201.0.3',NULL,'%1',"
        "0,NULL,NULL,NULL,NULL,NULL,4,-1);\n");
    QCOMPARE(QString::fromUtf8(instancesSimulator->documentsFile(extractFile)), rows.arg(mac));

    for (QByteArray const address : {"10.201.0.1", "10.201.0.2", "10.201.0.3"})
        checkChamber(*instances, address, mac, "KBF 240 E6");
    // The address of the other subnet serves nothing.
    QCOMPARE(instances->connectedTcpSocket(QStringLiteral("10.202.0.1"), 9000), qintptr(-1));
}

// One chamber for each qualified type name, in catalogue order, while
// addresses last; each is started twice.
void TestChamberFleetEndToEnd::automaticFleet()
{
    QString error;
    // The selector 10.204.0.7 isn't held by the machine; it picks the subnet on "fb".
    std::unique_ptr<NetworkNamespace> space =
        makeNamespace({"10.203.0.1/24"}, {"10.204.0.1/24", "10.204.0.2/24", "10.204.0.3/24"}, &error);
    QVERIFY2(error.isEmpty(), qPrintable(error));
    SimulatorProcess simulator;
    QVERIFY(simulator.installCatalogue(catalogue));
    simulator.setNetworkNamespace(space->name());
    // The automatic path ignores -m, -n, -i and the type words.
    simulator.start({"-a10.204.0.7", "-m12", "-n1", "kv2", "-i10.203.0.1"});

    // Type 3 has the qualified name of type 1 and is passed over; type 2's
    // second variant too. Type 9 takes the third address, and then they have run out.
    QByteArray const starts = startLine("HX 60 Z6", "10.204.0.1") + startLine("HX 120 Z6", "10.204.0.2")
                              + startLine("KBF 240 E6", "10.204.0.3");
    QVERIFY2(simulator.waitForOutput(starts + starts), simulator.standardError().constData());
    QVERIFY(simulator.waitUntilIdle());
    QByteArray const output = simulator.standardOutput();
    QVERIFY2(output.startsWith(readingDefault + "Adding Signal PV_Temperature\r\n"), output.constData());
    QVERIFY2(output.endsWith(type9Signals + starts + starts), output.constData());

    QString const mac = space->macAddress(QStringLiteral("fb")).toUpper();
    QString const rows = QStringLiteral(
        "INSERT INTO \"chamber\" VALUES(100,1,1,'666-100000',0,1,'HX 60 Z6','10.204.0.1',NULL,'%1',"
        "0,NULL,NULL,NULL,NULL,NULL,4,-1);\n"
        "INSERT INTO \"chamber\" VALUES(101,2,2,'666-100001',0,1,'HX 120 Z6','10.204.0.2',NULL,'%1',"
        "0,NULL,NULL,NULL,NULL,NULL,4,-1);\n"
        "INSERT INTO \"chamber\" VALUES(102,9,9,'666-100002',0,1,'KBF 240 E6','10.204.0.3',NULL,'%1',"
        "0,NULL,NULL,NULL,NULL,NULL,4,-1);\n");
    QCOMPARE(QString::fromUtf8(simulator.documentsFile(extractFile)), rows.arg(mac));

    checkChamber(*space, "10.204.0.1", mac, "HX 60 Z6");
    checkChamber(*space, "10.204.0.2", mac, "HX 120 Z6");
    checkChamber(*space, "10.204.0.3", mac, "KBF 240 E6");
}

void TestChamberFleetEndToEnd::badInputOnTheWire_data()
{
    QTest::addColumn<QString>("kind");

    QTest::newRow("random bytes") << "random";
    QTest::newRow("a very long line") << "long line";
    QTest::newRow("a very long write value") << "long write";
    QTest::newRow("silent half-open connections") << "half-open";
    QTest::newRow("request, then gone") << "gone";
    QTest::newRow("many requests, never read") << "unread";
}

// Rubbish for the chamber on 10.201.0.1 must neither end nor stall the
// process: the chamber on 10.201.0.2 keeps answering in time meanwhile, and
// the first one answers a new client afterwards.
void TestChamberFleetEndToEnd::badInputOnTheWire()
{
    QFETCH(QString, kind);
    TlxClient other;
    QVERIFY(connectInside(*instances, other, QStringLiteral("10.201.0.2")));

    std::vector<std::unique_ptr<TlxClient>> attackers;
    auto attacker = [&]() -> TlxClient& {
        attackers.push_back(std::make_unique<TlxClient>());
        connectInside(*instances, *attackers.back(), QStringLiteral("10.201.0.1"));
        return *attackers.back();
    };

    if (kind == QLatin1String("random")) {
        QRandomGenerator random(4711);
        QByteArray bytes(1 << 20, Qt::Uninitialized);
        random.fillRange(reinterpret_cast<quint32*>(bytes.data()), bytes.size() / 4);
        QVERIFY(attacker().send(bytes));
    } else if (kind == QLatin1String("long line")) {
        QVERIFY(attacker().send(QByteArray(8 << 20, 'A')));
    } else if (kind == QLatin1String("long write")) {
        QVERIFY(attacker().send("CANIDWriteValue:11700000:" + QByteArray(4 << 20, '7') + "\r\n"));
    } else if (kind == QLatin1String("half-open")) {
        for (int index = 0; index < 50; ++index)
            QVERIFY(attacker().send("CANIDGetVal"));
    } else if (kind == QLatin1String("gone")) {
        for (int index = 0; index < 20; ++index) {
            TlxClient& gone = attacker();
            QVERIFY(gone.send(linkTest));
            gone.socket().abort();
        }
    } else {
        TlxClient& unread = attacker();
        for (int index = 0; index < 2000; ++index)
            QVERIFY(unread.send(linkTest));
    }

    for (int round = 0; round < 5; ++round) {
        TlxClient::Answer const answer = other.request(linkTest);
        QCOMPARE(answer.frame, linkAnswer);
        QVERIFY2(answer.elapsedNs < 2000LL * 1000 * 1000, qPrintable(QString::number(answer.elapsedNs)));
    }
    QVERIFY(instancesSimulator->isRunning());
    attackers.clear();
    TlxClient fresh;
    QVERIFY(connectInside(*instances, fresh, QStringLiteral("10.201.0.1")));
    QCOMPARE(fresh.request(linkTest).frame, linkAnswer);
}

QTEST_GUILESS_MAIN(TestChamberFleetEndToEnd)
#include "tst_chamberfleet_e2e.moc"
