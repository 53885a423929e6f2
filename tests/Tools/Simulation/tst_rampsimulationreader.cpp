#include "Domain/Types/ChamberTypeData.h"
#include "Domain/Types/ControllerAddress.h"
#include "Tools/Simulation/RampSimulationReader.h"

#include <QTemporaryFile>
#include <QtTest>

#include <cstdio>
#include <unistd.h>

using namespace zelmor::simulation;
using zelmor::domain::types::ChamberSignal;
using zelmor::domain::types::ChamberTypeData;
using zelmor::domain::types::ControllerAddress;

namespace {

QSharedPointer<ControllerAddress> address(QString const& text, QMetaType::Type type)
{
    auto result = QSharedPointer<ControllerAddress>::create();
    result->address = text;
    result->type = type;
    return result;
}

// Signals by key: read 10 int, 11 float, 12 bool, 13 ushort, 14 uint; key 6
// has read 20 float and writeManual 20 bool, key 7 read 21 float and key 8
// read 21 int; key 9 only writeBasic 30 and writeAuto 31.
QSharedPointer<ChamberTypeData> chamberType()
{
    auto type = QSharedPointer<ChamberTypeData>::create();
    auto add = [&](int key, QSharedPointer<ControllerAddress> read, QSharedPointer<ControllerAddress> manual = {}) {
        ChamberSignal signal;
        signal.read = read;
        signal.writeManual = manual;
        type->chamberSignals.insert(key, signal);
    };
    add(1, address("10", QMetaType::Int));
    add(2, address("11", QMetaType::Float));
    add(3, address("12", QMetaType::Bool));
    add(4, address("13", QMetaType::UShort));
    add(5, address("14", QMetaType::UInt));
    add(6, address("20", QMetaType::Float), address("20", QMetaType::Bool));
    add(8, address("21", QMetaType::Int));
    add(7, address("21", QMetaType::Float));
    ChamberSignal writeOnly;
    writeOnly.writeBasic = address("30", QMetaType::Int);
    writeOnly.writeAuto = address("31", QMetaType::Int);
    type->chamberSignals.insert(9, writeOnly);
    return type;
}

// Standard output into a temporary file for the life of the object.
class StdoutCapture
{
public:
    StdoutCapture()
    {
        std::fflush(stdout);
        file.open();
        saved = ::dup(STDOUT_FILENO);
        ::dup2(file.handle(), STDOUT_FILENO);
    }

    QByteArray take()
    {
        std::fflush(stdout);
        ::dup2(saved, STDOUT_FILENO);
        ::close(saved);
        file.seek(0);
        return file.readAll();
    }

private:
    QTemporaryFile file;
    int saved = -1;
};

QVariantList counting(int from, int to)
{
    QVariantList result;
    for (int i = from; i <= to; ++i)
        result << i;
    return result;
}

QVariantList countingFloat(int from, int to)
{
    QVariantList result;
    for (int i = from; i <= to; ++i)
        result << float(i);
    return result;
}

} // namespace

class TestRampSimulationReader : public QObject
{
    Q_OBJECT

private slots:
    void sequence_data();
    void sequence();
    void addressesRampIndependently();
    void writeIsTakenAndIgnored();
    void everyReadIsEchoed();
    void withoutChamberTypeEverythingIsUnknown();
};

void TestRampSimulationReader::sequence_data()
{
    QTest::addColumn<int>("address");
    QTest::addColumn<QVariantList>("expected");

    // 20 up to 101, the top a client sees, then back to 20
    QTest::newRow("int") << 0x10 << counting(20, 101) + QVariantList{20, 21};
    QTest::newRow("float") << 0x11 << countingFloat(20, 101) + QVariantList{20.0f, 21.0f};
    QTest::newRow("bool") << 0x12 << QVariantList{false, true, false, true};
    // first 32.5 (no first value of its own), then from the truncated 32
    QTest::newRow("ushort") << 0x13 << QVariantList{32.5f} + counting(33, 101) + QVariantList{20, 21};
    QTest::newRow("other type stands") << 0x14 << QVariantList{32.5f, 32.5f, 32.5f};
    QTest::newRow("unknown address stands") << 0x99 << QVariantList{32.5f, 32.5f, 32.5f};
    QTest::newRow("writeManual wins") << 0x20 << QVariantList{false, true, false};
    QTest::newRow("later key wins") << 0x21 << QVariantList{20, 21, 22};
    QTest::newRow("writeBasic doesn't count") << 0x30 << QVariantList{32.5f, 32.5f};
    QTest::newRow("writeAuto doesn't count") << 0x31 << QVariantList{32.5f, 32.5f};
}

void TestRampSimulationReader::sequence()
{
    QFETCH(int, address);
    QFETCH(QVariantList, expected);

    RampSimulationReader reader(chamberType());
    StdoutCapture quiet;
    QVariantList seen;
    for (int i = 0; i < expected.size(); ++i)
        seen << reader.read(address);
    quiet.take();
    QCOMPARE(seen, expected);
    for (int i = 0; i < expected.size(); ++i)
        QCOMPARE(seen.at(i).userType(), expected.at(i).userType());
    QVERIFY(!reader.getType(address).isValid());
}

void TestRampSimulationReader::addressesRampIndependently()
{
    RampSimulationReader reader(chamberType());
    StdoutCapture quiet;
    QVariantList const seen{reader.read(0x10), reader.read(0x11), reader.read(0x10), reader.read(0x10),
                            reader.read(0x11)};
    quiet.take();
    QCOMPARE(seen, (QVariantList{20, 20.0f, 21, 22, 21.0f}));
}

void TestRampSimulationReader::writeIsTakenAndIgnored()
{
    RampSimulationReader reader(chamberType());
    StdoutCapture quiet;
    QVERIFY(reader.write(0x99, 1));
    QCOMPARE(reader.read(0x10), QVariant(20));
    QVERIFY(reader.write(0x10, 99));
    QVERIFY(reader.write(-5, QVariant()));
    QCOMPARE(reader.read(0x10), QVariant(21));
    quiet.take();
}

void TestRampSimulationReader::everyReadIsEchoed()
{
    RampSimulationReader reader(chamberType());
    StdoutCapture capture;
    reader.read(26);
    reader.read(0x10);
    reader.read(0x10);
    reader.write(0x10, 1);
    reader.read(-3);
    QCOMPARE(capture.take(), QByteArray("Read Address: 26\r\nRead Address: 16\r\nRead Address: 16\r\n"
                                        "Read Address: -3\r\n"));
}

void TestRampSimulationReader::withoutChamberTypeEverythingIsUnknown()
{
    RampSimulationReader reader{QSharedPointer<ChamberTypeData>()};
    StdoutCapture quiet;
    QCOMPARE(reader.read(0x10), QVariant(32.5f));
    QCOMPARE(reader.read(0x10), QVariant(32.5f));
    quiet.take();
}

QTEST_GUILESS_MAIN(TestRampSimulationReader)
#include "tst_rampsimulationreader.moc"
