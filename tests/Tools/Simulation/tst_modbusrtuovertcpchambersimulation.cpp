#include "Domain/Types/ChamberTypeData.h"
#include "Tools/Simulation/ModbusRtuOverTcpChamberSimulation.h"
#include "support/FixedFaultPolicy.h"
#include "support/MapReader.h"
#include "support/RtuOverTcp.h"

#include <QRandomGenerator>
#include <QTcpSocket>
#include <QtTest>

#include <memory>

using namespace zelmor::simulation;
using namespace zelmor::testsupport;
using zelmor::domain::types::ChamberTypeData;

namespace {

constexpr int port = ModbusRtuOverTcpChamberSimulation::converterPort_;
constexpr int slave = 5;

QByteArray hex(const char* text)
{
    return QByteArray::fromHex(text);
}

// This binary's own loopback addresses, so that test binaries run side by side.
QString address(int host)
{
    return QStringLiteral("127.0.78.%1").arg(host);
}

// A chamber with one value of each type the byte forms know. Its start
// line is the end-to-end tests'.
std::unique_ptr<ModbusRtuOverTcpChamberSimulation> chamber(int host, int modbusAddress)
{
    auto made = std::make_unique<ModbusRtuOverTcpChamberSimulation>(QSharedPointer<ChamberTypeData>::create(),
                                                                    address(host), port, modbusAddress);
    auto reader = QSharedPointer<MapReader>::create();
    reader->values = {{0x100, 23.5f},
                      {0x200, QVariant::fromValue(ushort(0x1234))},
                      {0x300, 0x11223344},
                      {0x302, 1.0f},
                      {0x320, true},
                      {0x330, QVariant::fromValue(short(-2))},
                      {0x340, QStringLiteral("abc")},
                      {0x350, 0xA1B2C3D4u}};
    made->setSimulationReader(reader);
    return made;
}

// A data logger record as sent: index, time, four floats 22.2, three zero bytes; little-endian.
QByteArray record(quint32 index)
{
    QByteArray bytes(8, Qt::Uninitialized);
    qToLittleEndian(index, bytes.data());
    const qint64 epoch = QDateTime(QDate(2019, 1, 1), QTime(0, 0)).toSecsSinceEpoch();
    qToLittleEndian(quint32(epoch + 60 * index), bytes.data() + 4);
    return bytes + hex("9A99B141").repeated(4) + QByteArray(3, '\0');
}

} // namespace

class TestModbusRtuOverTcpChamberSimulation : public QObject
{
    Q_OBJECT

private slots:
    void exchange_data();
    void exchange();
    void loggerMinutes();
    void badInputHarmsNobody();
    void faults_data();
    void faults();
    void offlineSlaveAmongNeighbours();
};

void TestModbusRtuOverTcpChamberSimulation::exchange_data()
{
    // Requests and their replies in turn, without their CRC; an empty reply
    // is silence.
    QTest::addColumn<QByteArrayList>("exchanges");
    const auto bytes = [](const char* name, const QByteArrayList& exchanges) { QTest::newRow(name) << exchanges; };
    // "request>reply" in hexadecimal.
    const auto row = [&](const char* name, const QStringList& pairs) {
        QByteArrayList exchanges;
        for (QString const& pair : pairs)
            exchanges << QByteArray::fromHex(pair.section('>', 0, 0).toLatin1())
                      << QByteArray::fromHex(pair.section('>', 1, 1).toLatin1());
        bytes(name, exchanges);
    };
    // Slave, function, register, quantity > slave, function, byte count, data.
    row("float: quantity 1 gives its first word; function 4 as 3, quantity high byte ignored",
        {"050301000001>0503020000", "050401000002>050404000041BC", "05030100FF02>050304000041BC"});
    row("unsigned short then unknown at quantity 4; int and float; unsigned int; bool; short; text ends the read",
        {"050302000004>050308 1234 00000000 0000", "050303000004>050308 11223344 00003F80",
         "050303500002>050304 A1B2C3D4", "050303200001>050302 0001", "050303300001>050302 FFFE",
         "050303400003>050306 616263 000000"});
    row("unknown: the table's values at 0 and beyond 1000, else zeros at quantity 2 or 4",
        {"050300000002>050304 00000001", "050310870002>050304 FFFFFFFF", "050310B20002>050304 CCCD41A0",
         "0503130E0001>050302 003C", "050304000002>050304 00000000", "050304000004>050308 0000000000000000"});
    row("quantity 0, and 200: byte count 144, 400 bytes",
        {"050301000000>050300", "050310B600C8>050390" + QStringLiteral("00004120").repeated(100)});

    // Slave, 6, register, word > the same. Slave, 16, register, quantity,
    // byte count, data > the first six bytes.
    row("function 6: int takes the high word, float the low word, short and unknown both",
        {"050603000007>050603000007", "050303000002>050304 00070000", "050603024120>050603024120",
         "050303020002>050304 41200000", "05060330FFFB>05060330FFFB", "050303300001>050302 FFFB",
         "050605000009>050605000009", "050305000002>050304 00000000"});
    row("function 6: bool takes the low byte", {"050603200100>050603200100", "050303200001>050302 0000",
                                                "050603200001>050603200001", "050303200001>050302 0001"});
    row("function 16: byte count 128 writes nothing; int and float; unknown register skipped",
        {"05100300000280 00000001>051003000002", "050303000002>050304 11223344",
         "05100300000408 AABBCCDD 00004120>051003000004", "050303000004>050308 AABBCCDD 00004120",
         "051001FF000204 9999 ABCD>051001FF0002", "050302000001>050302 ABCD"});
    // 85 as a signed byte is -123: slave 133 never answers.
    row("functions 1, 2, 5, 15, other slaves: silence",
        {"050100000001", "050200000001", "050500000000", "050F00000001", "060301000002", "850301000002"});

    // Data logger records at 6500: 23 bytes each by the automatic count, 27
    // given out and cut to the quantity.
    auto read = [](int quantity, const QByteArray& data) { return hex("0503") + char(quantity * 2) + data; };
    const QByteArray quantity12 = hex("05036500000C");
    bytes("logger count 0: quantity 12 one record, 23 two",
          {quantity12, read(12, record(0).left(24)), hex("050365000017"), read(23, (record(1) + record(2)).left(46)),
           quantity12, read(12, record(3).left(24))});
    bytes("logger count 3 by function 6: three records a read",
          {hex("0506130A0003"), hex("0506130A0003"), hex("050365000004"), read(4, record(0).left(8)), quantity12,
           read(12, record(3).left(24))});
    // The table, not the logger, answers 1308 and 130A.
    bytes("logger index 100 and count 1 by function 16",
          {hex("05101308000306000000640001"), hex("051013080003"), hex("050313080002"), hex("05030400000001"),
           hex("0503130A0002"), hex("05030400000001"), hex("05036500000D"), read(13, record(100).left(26))});
}

void TestModbusRtuOverTcpChamberSimulation::exchange()
{
    QFETCH(QByteArrayList, exchanges);
    const auto slaveFive = chamber(1, slave);
    const auto slave133 = chamber(1, 133);
    QTcpSocket client;
    QVERIFY(connected(client, address(1), port));
    for (int i = 0; i < exchanges.size(); i += 2) {
        QVERIFY(deliver(client, withCrc(exchanges.at(i))));
        if (!exchanges.at(i + 1).isEmpty())
            QCOMPARE(receive(client, exchanges.at(i + 1).size() + 2).toHex(), withCrc(exchanges.at(i + 1)).toHex());
    }
    // Nothing else came: the next bytes answer slave 5's read of the float
    // 23.5, asked with a wrong CRC, which goes unnoticed. CRC low byte first.
    QVERIFY(deliver(client, hex("0503010000020000")));
    QCOMPARE(receive(client, 9).toHex(), QByteArray("050304000041bc8e12"));
}

// 1310 and 1312 count whole minutes since 2019-01-01 00:00 local time; at
// quantity 4 both come from the rule of the start register.
void TestModbusRtuOverTcpChamberSimulation::loggerMinutes()
{
    const auto slaveFive = chamber(2, slave);
    QTcpSocket client;
    QVERIFY(connected(client, address(2), port));
    const auto now = [] { return QDateTime(QDate(2019, 1, 1), QTime(0, 0)).secsTo(QDateTime::currentDateTime()) / 60; };
    const qint64 before = now();
    QVERIFY(deliver(client, withCrc(hex("050313100004"))));
    const QByteArray reply = receive(client, 3 + 8 + 2);
    const qint64 minutes = qFromBigEndian<quint32>(reply.constData() + 3);
    QVERIFY2(minutes == before || minutes == now(), QByteArray::number(minutes).constData());
    QCOMPARE(reply.toHex(), withCrc(hex("050308") + reply.mid(3, 4) + reply.mid(3, 4)).toHex());
}

// Random writes of functions 6 and 16 and frames cut short, two with a byte
// count beyond their end, harm nobody. Nothing here may read: a read without
// progress would never end. Register 0 is unknown to the reader: the
// table's int 1 comes back, whatever was written.
void TestModbusRtuOverTcpChamberSimulation::badInputHarmsNobody()
{
    const auto target = chamber(7, 0x64);
    QTcpSocket attacker;
    QVERIFY(connected(attacker, address(7), port));
    QRandomGenerator generator(4711);
    QByteArrayList frames;
    for (int i = 0; i < 100; ++i) {
        frames << hex(i % 2 ? "6406" : "6410");
        for (int size = generator.bounded(0, 40); size > 0; --size)
            frames.last() += char(generator.bounded(256));
    }
    frames << hex("6403010000") << hex("64100300000408") << hex("6410030000040811") << hex("6410130800020400")
           << withCrc(hex("640300000002"));
    for (const QByteArray& frame : frames)
        QVERIFY(deliver(attacker, frame));
    QByteArray received;
    QVERIFY(QTest::qWaitFor([&] { return (received += attacker.readAll()).endsWith(withCrc(hex("64030400000001"))); },
                            10000));
}

void TestModbusRtuOverTcpChamberSimulation::faults_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("delayMs");
    QTest::addColumn<QByteArray>("strayBytes");
    QTest::addColumn<QByteArray>("reply"); // empty: none
    // The float 23.5 (41BC0000) as b1 b0 b3 b2.
    QTest::newRow("delay alone") << int(RequestFault::None) << 100 << QByteArray() << withCrc(hex("050404000041bc"));
    // Function 4 with its exception bit, code 4 (server device failure).
    QTest::newRow("error") << int(RequestFault::Error) << 0 << QByteArray() << withCrc(hex("058404"));
    QTest::newRow("error, late") << int(RequestFault::Error) << 100 << QByteArray() << withCrc(hex("058404"));
    // Too short for a CRC: zeros go in front; 00 has the CRC BF 40, not 61 62.
    QTest::newRow("stray bytes") << int(RequestFault::Stray) << 0 << QByteArray("ab") << QByteArray("\0ab", 3);
    // Bytes that happen to end in their CRC get its first byte spoilt.
    QByteArray spoilt = withCrc(hex("0504"));
    spoilt[2] = char(spoilt.at(2) ^ 0x01);
    QTest::newRow("stray bytes with a good CRC") << int(RequestFault::Stray) << 0 << withCrc(hex("0504")) << spoilt;
    QTest::newRow("dropped") << int(RequestFault::Drop) << 0 << QByteArray() << QByteArray();
}

// A read of slave 5 under each fault; slave 6 on the same converter answers
// as always, and so does slave 5 once the faults are gone.
void TestModbusRtuOverTcpChamberSimulation::faults()
{
    QFETCH(int, kind);
    QFETCH(int, delayMs);
    QFETCH(QByteArray, strayBytes);
    QFETCH(QByteArray, reply);
    const auto faulty = chamber(8, 5);
    const auto neighbour = chamber(8, 6);
    const auto policy = QSharedPointer<FixedFaultPolicy>::create();
    policy->fault.kind = RequestFault::Kind(kind);
    policy->fault.delayMs = delayMs;
    policy->fault.strayBytes = strayBytes;
    faulty->setFaultPolicy(policy);
    QTcpSocket client;
    QVERIFY(connected(client, address(8), port));
    QElapsedTimer clock;
    clock.start();
    QVERIFY(deliver(client, withCrc(hex("050401000002"))));
    if (reply.isEmpty()) {
        QCOMPARE(receive(client, 1, 300), QByteArray());
    } else {
        QCOMPARE(receive(client, reply.size()), reply);
        QVERIFY2(clock.nsecsElapsed() >= delayMs * 1000LL * 1000, qPrintable(QString::number(clock.nsecsElapsed())));
    }
    QVERIFY(deliver(client, withCrc(hex("060401000002"))));
    QCOMPARE(receive(client, 9), withCrc(hex("060404000041bc")));
    policy->active = false;
    QVERIFY(deliver(client, withCrc(hex("050401000002"))));
    QCOMPARE(receive(client, 9), withCrc(hex("050404000041bc")));

    QCOMPARE(faulty->getStatistics().getRequests(), quint64(2));
    QCOMPARE(faulty->getStatistics().getErrors(), quint64(kind == RequestFault::Error ? 1 : 0));
    QCOMPARE(neighbour->getStatistics().getRequests(), quint64(1));
    QCOMPARE(faulty->getClientCount(), 1);
}

void TestModbusRtuOverTcpChamberSimulation::offlineSlaveAmongNeighbours()
{
    const auto offline = chamber(9, 5);
    const auto neighbour = chamber(9, 6);
    QVERIFY(offline->setOnline(false));
    QTcpSocket client;
    QVERIFY(connected(client, address(9), port));
    QVERIFY(deliver(client, withCrc(hex("050401000002"))));
    QCOMPARE(receive(client, 1, 300), QByteArray());
    QVERIFY(deliver(client, withCrc(hex("060401000002"))));
    QCOMPARE(receive(client, 9), withCrc(hex("060404000041bc")));
    QCOMPARE(offline->getStatistics().getRequests(), quint64(0));
    QVERIFY(offline->setOnline(true));
    QVERIFY(deliver(client, withCrc(hex("050401000002"))));
    QCOMPARE(receive(client, 9), withCrc(hex("050404000041bc")));
}

QTEST_GUILESS_MAIN(TestModbusRtuOverTcpChamberSimulation)

#include "tst_modbusrtuovertcpchambersimulation.moc"
