// Fleets of the real chamber-simulator in network namespaces of their own,
// each with a veth pair (both ends inside) carrying several addresses. The
// test's client sockets are made inside the namespace too.

#include "support/NetworkNamespace.h"
#include "support/RtuOverTcp.h"
#include "support/SampleCatalogue.h"
#include "support/SimulatorProcess.h"
#include "support/TestDatabase.h"
#include "support/TlxClient.h"

#include <QNetworkDatagram>
#include <QRandomGenerator>
#include <QTcpSocket>
#include <QUdpSocket>
#include <QtTest>

#include <memory>

using namespace zelmor::testsupport;

namespace {

const QByteArray linkTest = "CANIDGetValue:10010010\r\n";
const QByteArray linkAnswer = "41\r\nCANIDGetValue:10010010:Communication OK\r\n";
const QByteArray readingDefault = "Reading database in default folders\r\n";
const QString extractFile = QStringLiteral("sqlextract.sql");
// The float 23.3 (41BA6666) as a Modbus register pair, low word first.
const QByteArray temperatureWords = QByteArray::fromHex("666641ba");

QByteArray startLine(const QByteArray& typeName, const QByteArray& address)
{
    return "Start TLX simulation " + typeName + " on " + address + ":9000\r\n";
}

QByteArray tunnelledStartLine(const QByteArray& typeName, const QByteArray& converter, int slave)
{
    return "Start Modbus RTU over TCP simulation " + typeName + " on " + converter
           + " Modbus Address: " + QByteArray::number(slave) + "\r\n";
}

// The row of the extract file for the index-th chamber of a fleet whose ids start at firstId.
QString extractRow(int firstId, int index, int type, const QString& name, const QString& address, const QString& mac,
                   int slave, const char* protocol)
{
    return QStringLiteral("INSERT INTO \"chamber\" VALUES(%1,%2,%2,'666-%3',0,1,'%4','%5',NULL,'%6',%7,"
                          "NULL,NULL,NULL,NULL,NULL,%8);\n")
        .arg(firstId + index)
        .arg(type)
        .arg(100000 + index)
        .arg(name, address, mac)
        .arg(slave)
        .arg(protocol);
}

// A tunnelled chamber's answer to a read of two input registers; empty when silent.
QByteArray readTunnelled(const NetworkNamespace& space, const QString& converter, int slave, quint16 address)
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

// The reply of a responder to an empty datagram; empty when none comes.
QByteArray search(const NetworkNamespace& space, const QString& address, quint16 port)
{
    QUdpSocket udp;
    if (!udp.setSocketDescriptor(space.boundUdpSocket(address))
        || udp.writeDatagram("", QHostAddress(address), port) != 0)
        return "not sent";
    return udp.waitForReadyRead(1000) ? udp.receiveDatagram().data() : QByteArray();
}

// The chamber answers on its own address, its responder names it with the
// hardware address of the interface that carries it.
void checkChamber(const NetworkNamespace& space, const QByteArray& address, const QString& mac,
                  const QByteArray& typeName)
{
    TlxClient client;
    QVERIFY2(client.connectTo(QString::fromLatin1(address), &space), address.constData());
    QCOMPARE(client.request(linkTest).frame, linkAnswer);
    QCOMPARE(search(space, QString::fromLatin1(address), 9001),
             "IP:" + address + " Port:9001 MAC:" + mac.toLatin1() + "\tChambertype:" + typeName
                 + "\tControllertype:TLX\tCOMType:TLXDirect\tProgramController:False\r\n");
}

// A simulator in a namespace of its own. The simulator goes first: a
// namespace goes only with its last process.
struct Fleet
{
    std::unique_ptr<NetworkNamespace> space;
    std::unique_ptr<SimulatorProcess> simulator = std::make_unique<SimulatorProcess>();
};

} // namespace

class TestChamberFleetEndToEnd : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void instancesFleet();
    void automaticFleet();
    void tunnelledInstances();
    void realAddresses_data();
    void realAddresses();
    void severalTypesOfInstances();
    void countTextsRunTogether();
    void badInputOnTheWire_data();
    void badInputOnTheWire();

private:
    // The veth ends carry these addresses.
    Fleet launch(const QStringList& onFa, const QStringList& onFb, const QStringList& arguments);

    TestDatabase databases;
    QString catalogue;
    // Shared by the instance fleet and the bad input tests: three chambers of type 9.
    Fleet instances;
};

Fleet TestChamberFleetEndToEnd::launch(const QStringList& onFa, const QStringList& onFb, const QStringList& arguments)
{
    Fleet fleet{std::make_unique<NetworkNamespace>(onFa, onFb)};
    if (fleet.space->lastError().isEmpty() && fleet.simulator->installCatalogue(catalogue)) {
        fleet.simulator->setNetworkNamespace(fleet.space->name());
        fleet.simulator->start(arguments);
    }
    return fleet;
}

void TestChamberFleetEndToEnd::initTestCase()
{
    if (!NetworkNamespace::isAvailable())
        QSKIP("needs root and \"ip netns\"");
    catalogue = createSampleCatalogue(databases);
    QVERIFY2(!catalogue.isEmpty(), qPrintable(databases.lastError()));
    // Three addresses of one subnet on "fa", one of another subnet on "fb";
    // more instances than addresses in the subnet of 10.201.0.2: cut down to three.
    instances = launch({"10.201.0.1/24", "10.201.0.2/24", "10.201.0.3/24"}, {"10.202.0.1/24"}, {"-n5", "-i10.201.0.2"});
    QVERIFY2(instances.simulator->waitForOutput(startLine("KBF 240 E6", "10.201.0.3")),
             qPrintable(instances.space->lastError() + instances.simulator->standardError()));
}

void TestChamberFleetEndToEnd::instancesFleet()
{
    const QString mac = instances.space->macAddress();
    QVERIFY(!mac.isEmpty());
    QVERIFY(instances.simulator->waitUntilIdle());
    QString rows;
    QByteArray starts;
    for (int index = 0; index < 3; ++index) {
        const QString address = QStringLiteral("10.201.0.%1").arg(index + 1);
        rows += extractRow(1000, index, 9, "KBF 240 E6 at " + address, address, mac, 0, "4,-1");
        starts += startLine("KBF 240 E6", address.toLatin1());
    }
    QCOMPARE(instances.simulator->foldedOutput(), readingDefault + QByteArray(30, '+') + starts);
    QCOMPARE(QString::fromUtf8(instances.simulator->documentsFile(extractFile)), rows);

    for (const QByteArray address : {"10.201.0.1", "10.201.0.2", "10.201.0.3"})
        checkChamber(*instances.space, address, mac, "KBF 240 E6");
    // The address of the other subnet serves nothing.
    QCOMPARE(instances.space->connectedTcpSocket(QStringLiteral("10.202.0.1"), 9000), qintptr(-1));
}

// Every kind of chamber of the catalogue, one for each qualified type name
// in catalogue order, while addresses last, each started twice. A TLX or
// Modbus TCP chamber takes an address of its own; the tunnelled ones share
// the converter of the first, and the iterator waits meanwhile. Type 3 has
// the qualified name of type 1 and is passed over; types 32, 41, 63, 80 and
// 90 get no chamber (41 is serial only: no COM port in a dotted address).
void TestChamberFleetEndToEnd::automaticFleet()
{
    QStringList addresses;
    for (int host = 1; host <= 9; ++host)
        addresses << QStringLiteral("10.206.0.%1/24").arg(host);
    // The selector isn't held by the machine, it picks the subnet on "fa";
    // -m, -n, -i and the type words play no part.
    const auto [space, simulator] =
        launch(addresses, {"10.203.0.1/24"}, {"-a10.206.0.77", "-m12", "-n1", "kv2", "-i10.203.0.1"});

    // Protocol "4,-1": TLX, "3,-1": Modbus TCP, "1,0": tunnelled.
    struct Chamber
    {
        int type;
        const char* name;
        int host;
        int slave;
        const char* protocol;
    };
    const QList<Chamber> fleet{
        {1, "HX 60 Z6", 1, 0, "4,-1"},    {2, "HX 120 Z6", 2, 0, "4,-1"},   {9, "KBF 240 E6", 3, 0, "4,-1"},
        {11, "WIK", 4, 0, "4,-1"},        {12, "KBF 720 E6", 5, 0, "4,-1"}, {30, "MKF 115 E2", 6, 1, "1,0"},
        {31, "MKF 240 E2", 7, 0, "3,-1"}, {40, "KMF 240 E5", 6, 2, "1,0"},  {50, "TSC 150 Z4", 6, 3, "1,0"},
        {60, "VT 4021 Z3", 6, 4, "1,0"},  {61, "VT 4034 Z3", 6, 5, "1,0"},  {62, "VT 4060 Z3", 6, 6, "1,0"},
        {70, "VCL 4010 Z5", 6, 7, "1,0"}, {247, "VC 7034 Z2", 8, 0, "3,-1"}};
    const QString mac = space->macAddress();
    QByteArray starts;
    QString rows;
    for (int index = 0; index < fleet.size(); ++index) {
        const Chamber& chamber = fleet.at(index);
        const QByteArray address = "10.206.0." + QByteArray::number(chamber.host);
        if (chamber.slave > 0)
            starts += tunnelledStartLine(chamber.name, address, chamber.slave);
        else if (chamber.protocol[0] == '3')
            starts += "Start Modbus simulation " + QByteArray(chamber.name) + " on " + address + ":502\r\n";
        else
            starts += startLine(chamber.name, address);
        rows += extractRow(100, index, chamber.type, chamber.name, address, mac, chamber.slave, chamber.protocol);
    }
    QVERIFY2(simulator->waitForOutput(starts + starts), qPrintable(space->lastError() + simulator->standardOutput()));
    QVERIFY(simulator->waitUntilIdle());
    const QByteArray output = simulator->foldedOutput();
    QVERIFY2(output.startsWith(readingDefault + '+') && output.endsWith(starts + starts), output.constData());
    QCOMPARE(QString::fromUtf8(simulator->documentsFile(extractFile)), rows);

    // Each answers on its own address: TLX chambers, the tunnelled slave 1
    // (type 30) and 7 (type 70); the Modbus TCP chambers listen on theirs.
    // Nothing on the ninth address nor in the other subnet.
    checkChamber(*space, "10.206.0.1", mac, "HX 60 Z6");
    checkChamber(*space, "10.206.0.5", mac, "KBF 720 E6");
    QCOMPARE(readTunnelled(*space, "10.206.0.6", 1, 0x1000), withCrc("\x01\x04\x04" + temperatureWords));
    QCOMPARE(readTunnelled(*space, "10.206.0.6", 7, 0x500), withCrc("\x07\x04\x04" + temperatureWords));
    for (const QString address : {"10.206.0.7", "10.206.0.8", "10.206.0.9", "10.203.0.1"}) {
        for (quint16 port : {9000, 502, 10001}) {
            QTcpSocket client;
            const bool modbusTcp = port == 502 && QStringList{"10.206.0.7", "10.206.0.8"}.contains(address);
            QCOMPARE(client.setSocketDescriptor(space->connectedTcpSocket(address, port)), modbusTcp);
        }
    }
}

// 200 tunnelled instances on two addresses. The iterator moves on at the
// first chamber, whose converter is its address; the next ones join that
// converter while the iterator waits at the second address, until 100
// slaves are full; the 101st opens the second converter, then the
// addresses have run out.
void TestChamberFleetEndToEnd::tunnelledInstances()
{
    const auto [space, simulator] = launch({"10.205.0.1/24", "10.205.0.2/24"}, {}, {"-m60", "-n200", "-i10.205.0.1"});
    const QString mac = space->macAddress();
    QByteArray starts;
    QString rows;
    for (int index = 0; index <= 100; ++index) {
        const QString converter = index < 100 ? QStringLiteral("10.205.0.1") : QStringLiteral("10.205.0.2");
        const int slave = index % 100 + 1;
        starts += tunnelledStartLine("VT 4021 Z3", converter.toLatin1(), slave);
        rows += extractRow(1000, index, 60, index == 0 ? "VT 4021 Z3 at 10.205.0.1" : "VT 4021 Z3 at 10.205.0.2",
                           converter, mac, slave, "1,0");
    }
    QVERIFY2(simulator->waitForOutput(tunnelledStartLine("VT 4021 Z3", "10.205.0.2", 1), 20000),
             qPrintable(space->lastError() + simulator->standardError()));
    QVERIFY(simulator->waitUntilIdle());
    QCOMPARE(simulator->foldedOutput(), readingDefault + QByteArray(4 * 101, '+') + starts);
    QCOMPARE(QString::fromUtf8(simulator->documentsFile(extractFile)), rows);

    // Each converter answers its slaves only, and has one Wut responder.
    const QByteArray searchReply = QByteArray(22, '\0') + QByteArray::fromHex(mac.toLatin1().replace(':', ""));
    for (const auto& [converter, slaves] :
         {std::pair{QStringLiteral("10.205.0.1"), 100}, std::pair{QStringLiteral("10.205.0.2"), 1}}) {
        for (int slave : {1, slaves})
            QCOMPARE(readTunnelled(*space, converter, slave, 0x300),
                     withCrc(QByteArray(1, char(slave)) + "\x04\x04" + temperatureWords));
        QCOMPARE(readTunnelled(*space, converter, slaves + 1, 0x300), QByteArray());
        QCOMPARE(search(*space, converter, 8513), searchReply);
    }
}

void TestChamberFleetEndToEnd::realAddresses_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QList<int>>("types"); // of the chambers on the three addresses in turn
    QTest::addColumn<bool>("automatic");

    // 127.0.0.1, given or by default, selects every address of the real
    // interfaces, whatever their subnet, and never the loopback's.
    QTest::newRow("-n without -i") << QStringList{"-n5"} << QList<int>{9, 9, 9} << false;
    QTest::newRow("-n with -i127.0.0.1") << QStringList{"-i127.0.0.1", "-n2"} << QList<int>{9, 9} << false;
    QTest::newRow("-a127.0.0.1") << QStringList{"-a127.0.0.1"} << QList<int>{1, 2, 9} << true;
}

void TestChamberFleetEndToEnd::realAddresses()
{
    QFETCH(QStringList, arguments);
    QFETCH(QList<int>, types);
    QFETCH(bool, automatic);

    const auto [space, simulator] = launch({"10.231.0.1/24", "10.231.0.2/24"}, {"10.232.0.1/24"}, arguments);
    // "fb" comes first among the interfaces.
    const QStringList addresses{"10.232.0.1", "10.231.0.1", "10.231.0.2"};
    const QStringList macs{space->macAddress(QStringLiteral("fb")), space->macAddress(), space->macAddress()};
    const QMap<int, QByteArray> names{{1, "HX 60 Z6"}, {2, "HX 120 Z6"}, {9, "KBF 240 E6"}};
    QByteArray starts;
    QString rows;
    for (int index = 0; index < types.size(); ++index) {
        const QByteArray name = names.value(types.at(index));
        const QString address = addresses.at(index);
        starts += startLine(name, address.toLatin1());
        rows += extractRow(automatic ? 100 : 1000, index, types.at(index),
                           automatic ? QString::fromLatin1(name) : name + " at " + address, address, macs.at(index), 0,
                           "4,-1");
    }
    if (automatic)
        starts += starts;
    QVERIFY2(simulator->waitForOutput(starts), qPrintable(space->lastError() + simulator->standardError()));
    QVERIFY(simulator->waitUntilIdle());
    QCOMPARE(simulator->foldedOutput().replace('+', ""), readingDefault + starts);
    QCOMPARE(QString::fromUtf8(simulator->documentsFile(extractFile)), rows);
    for (int index = 0; index < types.size(); ++index)
        checkChamber(*space, addresses.at(index).toLatin1(), macs.at(index), names.value(types.at(index)));
    QCOMPARE(space->connectedTcpSocket(QStringLiteral("127.0.0.1"), 9000), qintptr(-1));
}

// Two -m with -n: both types' chambers are built, the slave addresses go on
// counting on the one converter, and the extract holds the last type only,
// its row ids and serial numbers counted anew.
void TestChamberFleetEndToEnd::severalTypesOfInstances()
{
    const auto [space, simulator] =
        launch({"10.233.0.1/24", "10.233.0.2/24"}, {}, {"-m60", "-m30", "-n2", "-i10.233.0.1"});
    const QString mac = space->macAddress();
    const QByteArray starts =
        tunnelledStartLine("VT 4021 Z3", "10.233.0.1", 1) + tunnelledStartLine("VT 4021 Z3", "10.233.0.1", 2)
        + tunnelledStartLine("MKF 115 E2", "10.233.0.1", 3) + tunnelledStartLine("MKF 115 E2", "10.233.0.1", 4);
    QVERIFY2(simulator->waitForOutput(starts), qPrintable(space->lastError() + simulator->standardError()));
    QVERIFY(simulator->waitUntilIdle());
    QCOMPARE(simulator->foldedOutput().replace('+', ""), readingDefault + starts);
    QCOMPARE(QString::fromUtf8(simulator->documentsFile(extractFile)),
             extractRow(1000, 0, 30, "MKF 115 E2 at 10.233.0.1", "10.233.0.1", mac, 3, "1,0")
                 + extractRow(1000, 1, 30, "MKF 115 E2 at 10.233.0.2", "10.233.0.1", mac, 4, "1,0"));
    // Type 60 keeps its temperature at 0x300, type 30 at 0x1000.
    for (const auto& [slave, address] : {std::pair{1, 0x300}, {2, 0x300}, {3, 0x1000}, {4, 0x1000}})
        QCOMPARE(readTunnelled(*space, "10.233.0.1", slave, quint16(address)),
                 withCrc(QByteArray(1, char(slave)) + "\x04\x04" + temperatureWords));
    QCOMPARE(readTunnelled(*space, "10.233.0.1", 5, 0x300), QByteArray());
}

// "-n1 -n2" is the count 12, neither 2 nor 3.
void TestChamberFleetEndToEnd::countTextsRunTogether()
{
    QStringList addresses;
    for (int host = 1; host <= 14; ++host)
        addresses << QStringLiteral("10.234.0.%1/24").arg(host);
    const auto [space, simulator] = launch(addresses, {}, {"-n1", "-n2", "-i10.234.0.1"});
    QByteArray starts;
    for (int host = 1; host <= 12; ++host)
        starts += startLine("KBF 240 E6", "10.234.0." + QByteArray::number(host));
    QVERIFY2(simulator->waitForOutput(starts), qPrintable(space->lastError() + simulator->standardError()));
    QVERIFY(simulator->waitUntilIdle());
    QCOMPARE(simulator->foldedOutput().replace('+', ""), readingDefault + starts);
    QCOMPARE(simulator->documentsFile(extractFile).count("INSERT INTO"), 12);
    QCOMPARE(space->connectedTcpSocket(QStringLiteral("10.234.0.13"), 9000), qintptr(-1));
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
    QTest::newRow("near misses") << QByteArray("CANIDWriteValue:11700000:x").repeated((1 << 20) / 26) << 1 << 1
                                 << false;
    QTest::newRow("a very long write value") << "CANIDWriteValue:11700000:" + QByteArray(4 << 20, '7') + "\r\n"
                                             << 1 << 1 << false;
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
    const QString target = QStringLiteral("10.201.0.1");
    TlxClient other;
    QVERIFY(other.connectTo(QStringLiteral("10.201.0.2"), instances.space.get()));

    std::vector<std::unique_ptr<TlxClient>> attackers;
    for (int connection = 0; connection < connections; ++connection) {
        attackers.push_back(std::make_unique<TlxClient>());
        QVERIFY(attackers.back()->connectTo(target, instances.space.get()));
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
    QVERIFY(instances.simulator->isRunning());
    attackers.clear();
    TlxClient fresh;
    QVERIFY(fresh.connectTo(target, instances.space.get()));
    QCOMPARE(fresh.request(linkTest).frame, linkAnswer);
}

QTEST_GUILESS_MAIN(TestChamberFleetEndToEnd)
#include "tst_chamberfleet_e2e.moc"
