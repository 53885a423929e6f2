// Fleets of the real chamber-simulator in network namespaces of their own,
// each with a veth pair (both ends inside) carrying several addresses. The
// test's client sockets are made inside the namespace too.

#include "support/NetworkNamespace.h"
#include "support/RtuOverTcp.h"
#include "support/SampleCatalogue.h"
#include "support/SimulatorProcess.h"
#include "support/TestDatabase.h"
#include "support/TlxClient.h"

#include <QDeadlineTimer>
#include <QNetworkDatagram>
#include <QRandomGenerator>
#include <QTcpSocket>
#include <QUdpSocket>
#include <QtTest>

#include <memory>

using zelmor::testsupport::deliver;
using zelmor::testsupport::NetworkNamespace;
using zelmor::testsupport::receive;
using zelmor::testsupport::withCrc;
using zelmor::testsupport::SimulatorProcess;
using zelmor::testsupport::TestDatabase;
using zelmor::testsupport::TlxClient;

namespace {

QByteArray const linkTest = "CANIDGetValue:10010010\r\n";
QByteArray const linkAnswer = "41\r\nCANIDGetValue:10010010:Communication OK\r\n";
QByteArray const readingDefault = "Reading database in default folders\r\n";
QString const extractFile = QStringLiteral("sqlextract.sql");

QByteArray const type9Signals = "Adding Signal PV_Temperature\r\nAdding Signal PV_Humidity\r\n"
                                "Adding Signal PV_Door_Open\r\nAdding Signal PV_Collective_Alarm\r\n"
                                "Adding Signal PV_Illuminance_Top\r\nAdding Signal PV_Illuminance_Bottom\r\n"
                                "Adding Signal PV_Light_Dose\r\nAdding Signal PV_UV_Irradiance\r\n"
                                "Adding Signal PV_UV_Dose\r\nAdding Signal PV_Dew_Point\r\n";
QByteArray const type60Signals = "Adding Signal PV_Temperature\r\nAdding Signal PV_Humidity\r\n"
                                 "Adding Signal PV_Door_Open\r\nAdding Signal PV_Collective_Alarm\r\n";

QByteArray startLine(QByteArray const& typeName, QByteArray const& address)
{
    return "Start TLX simulation " + typeName + " on " + address + ":9000\r\n";
}

QByteArray tunnelledStartLine(QByteArray const& typeName, QByteArray const& converter, int slave)
{
    return "Start Modbus RTU over TCP simulation " + typeName + " on " + converter
           + " Modbus Address: " + QByteArray::number(slave) + "\r\n";
}

// The float 23.3 (41BA6666) of the read, as a Modbus register pair, and the reply.
QByteArray const temperatureWords = QByteArray::fromHex("666641ba");

// A tunnelled chamber's answer to a read of two input registers; empty when silent.
QByteArray readTunnelled(NetworkNamespace const& space, QString const& converter, int slave, quint16 address)
{
    QTcpSocket client;
    if (!client.setSocketDescriptor(space.connectedTcpSocket(converter, 10001)))
        return "no connection";
    QByteArray request(1, char(slave));
    request += QByteArray::fromHex("04") + char(address >> 8) + char(address & 0xFF) + QByteArray::fromHex("0002");
    if (!deliver(client, withCrc(request)))
        return "not delivered";
    return receive(client, 9, 500);
}

// A Modbus TCP chamber's answer to a read of two holding registers.
QByteArray readModbusTcp(NetworkNamespace const& space, QString const& address, quint16 registerNumber)
{
    QTcpSocket client;
    if (!client.setSocketDescriptor(space.connectedTcpSocket(address, 502)))
        return "no connection";
    client.write(QByteArray::fromHex("0001 0000 0006 ff 03") + char(registerNumber >> 8) + char(registerNumber & 0xFF)
                 + QByteArray::fromHex("0002"));
    return receive(client, 13);
}

// The reply of a responder to an empty datagram; empty when none comes.
QByteArray search(NetworkNamespace const& space, QString const& address, quint16 port)
{
    QUdpSocket udp;
    if (!udp.setSocketDescriptor(space.boundUdpSocket(address)) || udp.writeDatagram("", QHostAddress(address), port) != 0)
        return "not sent";
    return udp.waitForReadyRead(1000) ? udp.receiveDatagram().data() : QByteArray();
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

// A chamber prints its start line just before it listens.
bool connectInside(NetworkNamespace const& space, TlxClient& client, QString const& address)
{
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
void checkChamber(NetworkNamespace const& space, QByteArray const& address, QString const& mac,
                  QByteArray const& typeName)
{
    TlxClient client;
    QVERIFY2(connectInside(space, client, QString::fromLatin1(address)), address.constData());
    QCOMPARE(client.request(linkTest).frame, linkAnswer);
    QCOMPARE(search(space, QString::fromLatin1(address), 9001),
             "IP:" + address + " Port:9001 MAC:" + mac.toLatin1() + "\tChambertype:" + typeName
                 + "\tControllertype:TLX\tCOMType:TLXDirect\tProgramController:False\r\n");
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
    void tunnelledInstances_data();
    void tunnelledInstances();
    void badInputOnTheWire_data();
    void badInputOnTheWire();

private:
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

void TestChamberFleetEndToEnd::instancesFleet()
{
    QString const mac = instances->macAddress(QStringLiteral("fa")).toUpper();
    QVERIFY(!mac.isEmpty());
    QByteArray const expectedOutput = readingDefault + type9Signals + type9Signals + type9Signals
                                      + startLine("KBF 240 E6", "10.201.0.1") + startLine("KBF 240 E6", "10.201.0.2")
                                      + startLine("KBF 240 E6", "10.201.0.3");
    QVERIFY(instancesSimulator->waitUntilIdle());
    QCOMPARE(instancesSimulator->standardOutput(), expectedOutput);

    QString const row = QStringLiteral("INSERT INTO \"chamber\" VALUES(%1,9,9,'666-%2',0,1,'KBF 240 E6 at %3','%3',"
                                       "NULL,'%4',0,NULL,NULL,NULL,NULL,NULL,4,-1);\n");
    QCOMPARE(QString::fromUtf8(instancesSimulator->documentsFile(extractFile)),
             row.arg("1000", "100000", "10.201.0.1", mac) + row.arg("1001", "100001", "10.201.0.2", mac)
                 + row.arg("1002", "100002", "10.201.0.3", mac));

    for (QByteArray const address : {"10.201.0.1", "10.201.0.2", "10.201.0.3"})
        checkChamber(*instances, address, mac, "KBF 240 E6");
    // The address of the other subnet serves nothing.
    QCOMPARE(instances->connectedTcpSocket(QStringLiteral("10.202.0.1"), 9000), qintptr(-1));
}

// Every kind of chamber of the catalogue, one for each qualified type name
// in catalogue order, while addresses last, each started twice. A TLX or
// Modbus TCP chamber takes an address of its own; the tunnelled ones share
// the converter of the first, and the iterator waits meanwhile. Type 3 has
// the qualified name of type 1 and is passed over; types 32, 41, 63, 80 and
// 90 get no chamber (41 is serial only: no COM port in a dotted address).
void TestChamberFleetEndToEnd::automaticFleet()
{
    QString error;
    QStringList addresses;
    for (int host = 1; host <= 9; ++host)
        addresses << QStringLiteral("10.206.0.%1/24").arg(host);
    std::unique_ptr<NetworkNamespace> space = makeNamespace(addresses, {"10.203.0.1/24"}, &error);
    QVERIFY2(error.isEmpty(), qPrintable(error));
    SimulatorProcess simulator;
    QVERIFY(simulator.installCatalogue(catalogue));
    simulator.setNetworkNamespace(space->name());
    // The selector isn't held by the machine, it picks the subnet on "fa";
    // -m, -n, -i and the type words play no part.
    simulator.start({"-a10.206.0.77", "-m12", "-n1", "kv2", "-i10.203.0.1"});

    QByteArray const starts = startLine("HX 60 Z6", "10.206.0.1") + startLine("HX 120 Z6", "10.206.0.2")
                              + startLine("KBF 240 E6", "10.206.0.3") + startLine("WIK", "10.206.0.4")
                              + startLine("KBF 720 E6", "10.206.0.5")
                              + tunnelledStartLine("MKF 115 E2", "10.206.0.6", 1)
                              + "Start Modbus simulation MKF 240 E2 on 10.206.0.7:502\r\n"
                              + tunnelledStartLine("KMF 240 E5", "10.206.0.6", 2)
                              + tunnelledStartLine("TSC 150 Z4", "10.206.0.6", 3)
                              + tunnelledStartLine("VT 4021 Z3", "10.206.0.6", 4)
                              + tunnelledStartLine("VT 4034 Z3", "10.206.0.6", 5)
                              + tunnelledStartLine("VT 4060 Z3", "10.206.0.6", 6)
                              + tunnelledStartLine("VCL 4010 Z5", "10.206.0.6", 7)
                              + "Start Modbus simulation VC 7034 Z2 on 10.206.0.8:502\r\n";
    QVERIFY2(simulator.waitForOutput(starts + starts), simulator.standardOutput().constData());
    QVERIFY(simulator.waitUntilIdle());
    QByteArray const output = simulator.standardOutput();
    QVERIFY2(output.startsWith(readingDefault + "Adding Signal PV_Temperature\r\n"), output.constData());
    QVERIFY2(output.endsWith(starts + starts), output.constData());

    QString const mac = space->macAddress(QStringLiteral("fa")).toUpper();
    auto const row = [&mac](int id, int type, QString const& name, int host, int slave, char const* protocol) {
        return QStringLiteral("INSERT INTO \"chamber\" VALUES(%1,%2,%2,'666-%3',0,1,'%4','10.206.0.%5',NULL,'%6',%7,"
                              "NULL,NULL,NULL,NULL,NULL,%8);\n")
            .arg(id).arg(type).arg(100000 + id - 100).arg(name).arg(host).arg(mac).arg(slave).arg(protocol);
    };
    QString const rows = row(100, 1, "HX 60 Z6", 1, 0, "4,-1") + row(101, 2, "HX 120 Z6", 2, 0, "4,-1")
                         + row(102, 9, "KBF 240 E6", 3, 0, "4,-1") + row(103, 11, "WIK", 4, 0, "4,-1")
                         + row(104, 12, "KBF 720 E6", 5, 0, "4,-1") + row(105, 30, "MKF 115 E2", 6, 1, "1,0")
                         + row(106, 31, "MKF 240 E2", 7, 0, "3,-1") + row(107, 40, "KMF 240 E5", 6, 2, "1,0")
                         + row(108, 50, "TSC 150 Z4", 6, 3, "1,0") + row(109, 60, "VT 4021 Z3", 6, 4, "1,0")
                         + row(110, 61, "VT 4034 Z3", 6, 5, "1,0") + row(111, 62, "VT 4060 Z3", 6, 6, "1,0")
                         + row(112, 70, "VCL 4010 Z5", 6, 7, "1,0") + row(113, 247, "VC 7034 Z2", 8, 0, "3,-1");
    QCOMPARE(QString::fromUtf8(simulator.documentsFile(extractFile)), rows);

    // Each answers on its own address: TLX chambers, the tunnelled slave 1
    // (type 30) and 7 (type 70), the Modbus TCP chambers; nothing on the
    // ninth address nor in the other subnet.
    checkChamber(*space, "10.206.0.1", mac, "HX 60 Z6");
    checkChamber(*space, "10.206.0.5", mac, "KBF 720 E6");
    QCOMPARE(readTunnelled(*space, "10.206.0.6", 1, 0x1000), withCrc("\x01\x04\x04" + temperatureWords));
    QCOMPARE(readTunnelled(*space, "10.206.0.6", 7, 0x500), withCrc("\x07\x04\x04" + temperatureWords));
    // Words low first in Modbus TCP: 6666 then 41BA, as the tunnelled float.
    QByteArray const modbusTcpReply = QByteArray::fromHex("0001 0000 0007 ff 03 04") + temperatureWords;
    QCOMPARE(readModbusTcp(*space, "10.206.0.7", 0x1000), modbusTcpReply);
    QCOMPARE(readModbusTcp(*space, "10.206.0.8", 0x1000), modbusTcpReply);
    for (QString const address : {"10.206.0.9", "10.203.0.1"}) {
        for (quint16 port : {9000, 502, 10001})
            QCOMPARE(space->connectedTcpSocket(address, port), qintptr(-1));
    }
}

void TestChamberFleetEndToEnd::tunnelledInstances_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("onFirst");  // chambers on the converter of 10.205.0.1
    QTest::addColumn<int>("onSecond"); // and of 10.205.0.2
    QTest::addColumn<QString>("lastRow"); // "%1": the hardware address

    // The iterator moves on at the first chamber, whose converter is its
    // address; the next ones join that converter while the iterator waits
    // at the second address, until 100 slaves are full.
    QString const row = QStringLiteral("INSERT INTO \"chamber\" VALUES(%2,60,60,'666-%3',0,1,'VT 4021 Z3 at %4',"
                                       "'%5',NULL,'%1',%6,NULL,NULL,NULL,NULL,NULL,1,0);\n");
    QTest::newRow("3 on two addresses: all on the first converter")
        << 3 << 3 << 0 << row.arg("%1", "1002", "100002", "10.205.0.2", "10.205.0.1", "3");
    QTest::newRow("200: 100 and 1, then the addresses have run out")
        << 200 << 100 << 1 << row.arg("%1", "1100", "100100", "10.205.0.2", "10.205.0.2", "1");
}

void TestChamberFleetEndToEnd::tunnelledInstances()
{
    QFETCH(int, count);
    QFETCH(int, onFirst);
    QFETCH(int, onSecond);
    QFETCH(QString, lastRow);
    QString error;
    std::unique_ptr<NetworkNamespace> space = makeNamespace({"10.205.0.1/24", "10.205.0.2/24"}, {}, &error);
    QVERIFY2(error.isEmpty(), qPrintable(error));
    SimulatorProcess simulator;
    QVERIFY(simulator.installCatalogue(catalogue));
    simulator.setNetworkNamespace(space->name());
    simulator.start({"-m60", "-n" + QString::number(count), "-i10.205.0.1"});

    QByteArray output = readingDefault + type60Signals.repeated(onFirst + onSecond);
    for (int slave = 1; slave <= onFirst; ++slave)
        output += tunnelledStartLine("VT 4021 Z3", "10.205.0.1", slave);
    for (int slave = 1; slave <= onSecond; ++slave)
        output += tunnelledStartLine("VT 4021 Z3", "10.205.0.2", slave);
    QVERIFY2(simulator.waitForOutput(output, 20000), simulator.standardError().constData());
    QVERIFY(simulator.waitUntilIdle());
    QCOMPARE(simulator.standardOutput(), output);

    QString const mac = space->macAddress(QStringLiteral("fa")).toUpper();
    QString const rows = QString::fromUtf8(simulator.documentsFile(extractFile));
    QCOMPARE(rows.count(QLatin1Char('\n')), onFirst + onSecond);
    QVERIFY2(rows.endsWith(lastRow.arg(mac)), qPrintable(rows.right(300)));

    // Each converter answers its slaves only, and has one Wut responder.
    QByteArray const searchReply = QByteArray(22, '\0') + QByteArray::fromHex(mac.toLatin1().replace(':', ""));
    for (auto const& [converter, slaves] : {std::pair{QStringLiteral("10.205.0.1"), onFirst},
                                             std::pair{QStringLiteral("10.205.0.2"), onSecond}}) {
        if (slaves == 0) {
            QCOMPARE(space->connectedTcpSocket(converter, 10001), qintptr(-1));
            QCOMPARE(search(*space, converter, 8513), QByteArray());
            continue;
        }
        for (int slave : {1, slaves})
            QCOMPARE(readTunnelled(*space, converter, slave, 0x300),
                     withCrc(QByteArray(1, char(slave)) + "\x04\x04" + temperatureWords));
        QCOMPARE(readTunnelled(*space, converter, slaves + 1, 0x300), QByteArray());
        QCOMPARE(search(*space, converter, 8513), searchReply);
    }
}

void TestChamberFleetEndToEnd::badInputOnTheWire_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<int>("connections");
    QTest::addColumn<int>("repeats");
    QTest::addColumn<bool>("abort"); // each connection right after sending

    QByteArray random(1 << 20, Qt::Uninitialized);
    QRandomGenerator(4711).fillRange(reinterpret_cast<quint32*>(random.data()), random.size() / 4);
    QTest::newRow("random bytes") << random << 1 << 1 << false;
    QTest::newRow("a very long line") << QByteArray(8 << 20, 'A') << 1 << 1 << false;
    // Near misses everywhere: a search that tried every position would be quadratic.
    QTest::newRow("near misses") << QByteArray("CANIDWriteValue:11700000:x").repeated((1 << 20) / 26) << 1 << 1 << false;
    QTest::newRow("a very long write value") << "CANIDWriteValue:11700000:" + QByteArray(4 << 20, '7') + "\r\n" << 1
                                             << 1 << false;
    QTest::newRow("silent half-open connections") << QByteArray("CANIDGetVal") << 50 << 1 << false;
    QTest::newRow("request, then gone") << linkTest << 20 << 1 << true;
    QTest::newRow("many requests, never read") << linkTest << 1 << 2000 << false;
}

// Rubbish for the chamber on 10.201.0.1 must neither end nor stall the
// process: the chamber on 10.201.0.2 keeps answering in time meanwhile, and
// the first one answers a new client afterwards.
void TestChamberFleetEndToEnd::badInputOnTheWire()
{
    QFETCH(QByteArray, payload);
    QFETCH(int, connections);
    QFETCH(int, repeats);
    QFETCH(bool, abort);
    TlxClient other;
    QVERIFY(connectInside(*instances, other, QStringLiteral("10.201.0.2")));

    std::vector<std::unique_ptr<TlxClient>> attackers;
    for (int connection = 0; connection < connections; ++connection) {
        attackers.push_back(std::make_unique<TlxClient>());
        QVERIFY(connectInside(*instances, *attackers.back(), QStringLiteral("10.201.0.1")));
        for (int repeat = 0; repeat < repeats; ++repeat)
            QVERIFY(attackers.back()->send(payload));
        if (abort)
            attackers.back()->socket().abort();
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
