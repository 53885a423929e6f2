#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ControllerAddress.h"
#include "Tools/Simulation/SimulationSignal.h"
#include "Tools/Simulation/SimulationValueBool.h"
#include "Tools/Simulation/SimulationValueDuplicator.h"
#include "Tools/Simulation/SimulationValueFloat.h"
#include "Tools/Simulation/SimulationValueInt.h"
#include "Tools/Simulation/SimulationValueUChar.h"
#include "Tools/Simulation/SimulationValueUInt.h"
#include "Tools/Simulation/SimulationValueUShort.h"
#include "Tools/Simulation/SimulationValueWriter.h"

#include <QtTest>

#include <cmath>

using namespace zelmor::simulation;
using zelmor::domain::types::ChamberSignal;
using zelmor::domain::types::ControllerAddress;
using zelmor::domain::types::Unit;

namespace {

QSharedPointer<ControllerAddress> address(QString const& text, int type)
{
    if (text.isEmpty())
        return {};
    auto result = QSharedPointer<ControllerAddress>::create();
    result->address = text;
    result->type = static_cast<QMetaType::Type>(type);
    result->description = QStringLiteral("register ") + text;
    return result;
}

// Addresses as {read, writeAuto, writeBasic, writeManual}; an empty text is
// no address.
ChamberSignal makeSignal(QString const& name, QStringList const& addresses, int type, int unit)
{
    ChamberSignal signal;
    signal.name = name;
    signal.unit = static_cast<Unit::UnitId>(unit);
    signal.read = address(addresses.value(0), type);
    signal.writeAuto = address(addresses.value(1), type);
    signal.writeBasic = address(addresses.value(2), type);
    signal.writeManual = address(addresses.value(3), type);
    return signal;
}

QString kindOf(QSharedPointer<SimulationReader> const& child)
{
    if (!child)
        return QStringLiteral("null");
    if (child.dynamicCast<SimulationValueDuplicator>())
        return QStringLiteral("duplicator");
    if (child.dynamicCast<SimulationValueWriter>())
        return QStringLiteral("writer");
    return QStringLiteral("value");
}

template<typename V>
bool timeConstantOf(QSharedPointer<SimulationReader> const& reader, float& timeConstant)
{
    if (auto value = reader.dynamicCast<V>()) {
        timeConstant = value->getTimeConstant();
        return true;
    }
    return false;
}

float timeConstantOf(QSharedPointer<SimulationReader> const& reader)
{
    float result = std::nanf("");
    timeConstantOf<SimulationValueBool>(reader, result) || timeConstantOf<SimulationValueInt>(reader, result)
        || timeConstantOf<SimulationValueUInt>(reader, result) || timeConstantOf<SimulationValueUShort>(reader, result)
        || timeConstantOf<SimulationValueUChar>(reader, result) || timeConstantOf<SimulationValueFloat>(reader, result);
    return result;
}

SimulationValue* clockOf(SimulationSignal const& signal)
{
    return dynamic_cast<SimulationValue*>(signal.getChildren().value(0).data());
}

using Reads = QVariantList; // of QVariantList{address, expected}

QVariantList at(int a, QVariant const& expected)
{
    return QVariantList{a, expected};
}

} // namespace

class TestSimulationSignal : public QObject
{
    Q_OBJECT

private slots:
    void addresses_data();
    void addresses();
    void valueByType_data();
    void valueByType();
    void defaultsByUnit_data();
    void defaultsByUnit();
    void aliasWriteMovesTheProcessValue();
    void descriptionOfTheReadAddress();
    void checkAddress();
};

void TestSimulationSignal::addresses_data()
{
    QTest::addColumn<QStringList>("own");
    QTest::addColumn<QStringList>("setPoint"); // empty: no set point signal
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("unit");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<Reads>("reads");
    QTest::addColumn<QList<int>>("writable");
    QTest::addColumn<QList<int>>("typed");
    QTest::addColumn<QStringList>("children");

    int const f = QMetaType::Float;
    QTest::newRow("float, two write addresses")
        << QStringList{"1A", "1B", "1C", ""} << QStringList() << f << 0 << QStringList{"PV"}
        << Reads{at(0x1A, 23.3f), at(0x1B, 23.3f), at(0x1C, 23.3f)} << QList<int>{0x1B, 0x1C}
        // a float value has no type; its alias has, through the duplicator
        << QList<int>{0x1C} << QStringList{"value", "duplicator", "writer"};
    QTest::newRow("repeated write address")
        << QStringList{"10", "11", "11", "12"} << QStringList() << f << 5 << QStringList{"PV"}
        << Reads{at(0x10, 50.0f), at(0x11, 50.0f), at(0x12, 50.0f)} << QList<int>{0x11, 0x12} << QList<int>{0x12}
        << QStringList{"value", "duplicator", "writer"};
    // Without a read address the own write addresses don't count, the value
    // is a float on current address -1, its set address from the set point.
    QTest::newRow("set point only")
        << QStringList{"", "05", "", ""} << QStringList{"20", "21", "", ""} << int(QMetaType::Int) << 0
        << QStringList{"SP"} << Reads{at(0x20, 23.3f), at(0x21, 23.3f)} << QList<int>{0x21}
        << QList<int>{0x20} << QStringList{"value", "duplicator"};
    // The set address is -1, no address at all: nothing is writable.
    QTest::newRow("read only")
        << QStringList{"30", "", "", ""} << QStringList() << f << 3 << QStringList{"PV"}
        << Reads{at(0x30, 22.0f)} << QList<int>() << QList<int>() << QStringList{"value"};
    QTest::newRow("process value with set point")
        << QStringList{"30", "", "34", ""} << QStringList{"31", "32", "", "33"} << f << 3 << QStringList{"PV", "SP"}
        << Reads{at(0x30, 22.0f), at(0x31, 22.0f), at(0x32, 22.0f), at(0x33, 22.0f), at(0x34, 22.0f)}
        << QList<int>{0x32, 0x33, 0x34} << QList<int>{0x31, 0x32, 0x33}
        << QStringList{"value", "duplicator", "writer", "duplicator", "writer", "duplicator"};
    // The set point's read address aliases address -1 and answers invalid.
    QTest::newRow("set point without write address")
        << QStringList{"30", "", "", ""} << QStringList{"31", "", "", ""} << f << 3 << QStringList{"PV", "SP"}
        << Reads{at(0x30, 22.0f)} << QList<int>() << QList<int>()
        << QStringList{"value", "duplicator"};
    QTest::newRow("int") << QStringList{"40", "41", "", ""} << QStringList() << int(QMetaType::Int) << 5
                         << QStringList{"PV"} << Reads{at(0x40, 50), at(0x41, 50)} << QList<int>{0x41}
                         << QList<int>{0x40, 0x41} << QStringList{"value"};
    // A read address that doesn't convert is 0, a write address is left out.
    QTest::newRow("bad texts") << QStringList{"zz", "41", "q", "42"} << QStringList() << int(QMetaType::Int) << 5
                               << QStringList{"PV"} << Reads{at(0, 50), at(0x41, 50), at(0x42, 50)}
                               << QList<int>{0x41, 0x42} << QList<int>{0, 0x41, 0x42}
                               << QStringList{"value", "duplicator", "writer"};
    QTest::newRow("unsimulated type") << QStringList{"50", "51", "52", ""} << QStringList() << int(QMetaType::QString)
                                      << 0 << QStringList{"PV"} << Reads() << QList<int>() << QList<int>()
                                      << QStringList{"null", "duplicator", "writer"};
}

void TestSimulationSignal::addresses()
{
    QFETCH(QStringList, own);
    QFETCH(QStringList, setPoint);
    QFETCH(int, type);
    QFETCH(int, unit);
    QFETCH(QStringList, names);
    QFETCH(Reads, reads);
    QFETCH(QList<int>, writable);
    QFETCH(QList<int>, typed);
    QFETCH(QStringList, children);

    ChamberSignal signal = makeSignal(QStringLiteral("PV"), own, type, unit);
    if (!setPoint.isEmpty())
        signal.setPointSignal = QSharedPointer<ChamberSignal>::create(makeSignal(QStringLiteral("SP"), setPoint, type, 13));

    SimulationSignal simulated(signal);
    QCOMPARE(simulated.getSignalNames(), names);
    QStringList kinds;
    for (auto const& child : simulated.getChildren())
        kinds << kindOf(child);
    QCOMPARE(kinds, children);

    QMap<int, QVariant> expectedReads;
    for (QVariant const& pair : reads)
        expectedReads.insert(pair.toList().at(0).toInt(), pair.toList().at(1));

    for (int probe = -1; probe <= 0x60; ++probe) {
        QByteArray const where = QByteArray::number(probe, 16);
        QCOMPARE(simulated.read(probe), expectedReads.value(probe));
        QVERIFY2(simulated.getType(probe).isValid() == typed.contains(probe), where.constData());
    }
    for (int probe = -1; probe <= 0x60; ++probe) {
        SimulationSignal fresh(signal);
        QByteArray const where = QByteArray::number(probe, 16);
        QVERIFY2(fresh.write(probe, 30) == writable.contains(probe), where.constData());
        // Whatever address took it, the set value reads back on every alias.
        if (writable.contains(probe)) {
            for (int alias : writable)
                QCOMPARE(fresh.read(alias).toInt(), 30);
        }
    }
}

void TestSimulationSignal::valueByType_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("unit");
    QTest::addColumn<QVariant>("start");
    QTest::addColumn<float>("timeConstant");

    QTest::newRow("bool with unit boolean") << int(QMetaType::Bool) << 13 << QVariant(false) << 60.0f;
    QTest::newRow("int") << int(QMetaType::Int) << 0 << QVariant(23) << 360.3f;
    QTest::newRow("uint") << int(QMetaType::UInt) << 1 << QVariant(90u) << 360.7f;
    // a short signal takes the unsigned class
    QTest::newRow("short") << int(QMetaType::Short) << 5 << QVariant::fromValue<unsigned short>(50) << 180.0f;
    // an unsigned short signal has no lag
    QTest::newRow("ushort") << int(QMetaType::UShort) << 5 << QVariant::fromValue<unsigned short>(50) << 0.0f;
    // 42 whatever the unit
    QTest::newRow("uchar") << int(QMetaType::UChar) << 5 << QVariant::fromValue<unsigned char>(42) << 180.0f;
    QTest::newRow("float") << int(QMetaType::Float) << 2 << QVariant(296.6f) << 360.6f;
    QTest::newRow("float, unknown unit") << int(QMetaType::Float) << 16 << QVariant(42.42f) << 42.42f;
}

void TestSimulationSignal::valueByType()
{
    QFETCH(int, type);
    QFETCH(int, unit);
    QFETCH(QVariant, start);
    QFETCH(float, timeConstant);

    SimulationSignal simulated(makeSignal(QStringLiteral("S"), {"60", "61", "", ""}, type, unit));
    QCOMPARE(simulated.read(0x60), start);
    QCOMPARE(simulated.read(0x61), start);
    QCOMPARE(simulated.read(0x60).userType(), start.userType());
    QCOMPARE(timeConstantOf(simulated.getChildren().value(0)), timeConstant);
}

void TestSimulationSignal::defaultsByUnit_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<float>("start");
    QTest::addColumn<float>("timeConstant");

    QTest::newRow("Celsius") << 0 << 23.3f << 360.3f;
    QTest::newRow("Fahrenheit") << 1 << 90.7f << 360.7f;
    QTest::newRow("Kelvin") << 2 << 296.6f << 360.6f;
    QTest::newRow("%rf") << 3 << 22.0f << 160.0f;
    QTest::newRow("%rh") << 4 << 22.0f << 140.0f;
    QTest::newRow("%") << 5 << 50.0f << 180.0f;
    QTest::newRow("Vol%") << 6 << 10.0f << 200.0f;
    QTest::newRow("hPa") << 7 << 22.0f << 120.0f;
    QTest::newRow("mBar") << 8 << 22.0f << 60.0f;
    QTest::newRow("kLUX") << 9 << 50.0f << 20.0f;
    QTest::newRow("mLuxh") << 10 << 22.0f << 280.0f;
    QTest::newRow("Wm2") << 11 << 22.0f << 222.0f;
    QTest::newRow("Whm2") << 12 << 22.0f << 150.0f;
    QTest::newRow("boolean") << 13 << 1.0f << 60.0f;
    QTest::newRow("Volt") << 14 << 23.5f << 23.5f;
    QTest::newRow("dimensionless") << 15 << 42.42f << 42.42f;
    QTest::newRow("undefined") << 16 << 42.42f << 42.42f;
}

void TestSimulationSignal::defaultsByUnit()
{
    QFETCH(int, unit);
    QFETCH(float, start);
    QFETCH(float, timeConstant);

    SimulationSignal simulated(makeSignal(QStringLiteral("S"), {"1", "2", "", ""}, QMetaType::Float, unit));
    auto const id = static_cast<Unit::UnitId>(unit);
    QCOMPARE(simulated.getSetDefault(id), start);
    QCOMPARE(simulated.getCurrentDefault(id), start);
    QCOMPARE(simulated.getTimeConstantDefault(id), timeConstant);

    // The value lives on these figures: steady at the default, then one time
    // constant after a step of 100 it has gone 1 - 1/e of the way.
    QCOMPARE(simulated.read(1), QVariant(start));
    QVERIFY(simulated.write(2, start + 100.0f));
    SimulationValue* clock = clockOf(simulated);
    QVERIFY(clock);
    clock->setLastRequest(clock->getLastRequest().addMSecs(-qint64(timeConstant * 1000.0f)));
    float const moved = simulated.read(1).toFloat() - start;
    QVERIFY2(qAbs(moved - 63.21f) < 0.05f, qPrintable(QString::number(moved)));
}

void TestSimulationSignal::aliasWriteMovesTheProcessValue()
{
    // Read 1A, writeAuto 1B, writeBasic 1C, in Celsius: a write of the alias
    // 1C drives the process value at 1A towards 30 with 360.3 s.
    SimulationSignal simulated(makeSignal(QStringLiteral("T"), {"1A", "1B", "1C", ""}, QMetaType::Float, 0));
    QVERIFY(simulated.write(0x1C, 30));
    QCOMPARE(simulated.read(0x1B), QVariant(30.0f));
    QCOMPARE(simulated.read(0x1C), QVariant(30.0f));
    QCOMPARE(simulated.read(0x1A), QVariant(23.3f));

    SimulationValue* clock = clockOf(simulated);
    clock->setLastRequest(clock->getLastRequest().addMSecs(-360300));
    float const expected = 23.3f + (30.0f - 23.3f) * (1.0f - std::exp(-1.0f));
    QVERIFY(qAbs(simulated.read(0x1A).toFloat() - expected) < 0.01f);
}

void TestSimulationSignal::descriptionOfTheReadAddress()
{
    QCOMPARE(SimulationSignal(makeSignal(QStringLiteral("T"), {"1A", "1B", "", ""}, QMetaType::Float, 0))
                 .getAddressDescription(),
             QStringLiteral("register 1A"));
    ChamberSignal withoutRead = makeSignal(QStringLiteral("T"), {"", "1B", "", ""}, QMetaType::Float, 0);
    QVERIFY(SimulationSignal(withoutRead).getAddressDescription().isEmpty());
    QVERIFY(SimulationSignal(withoutRead).getSignalNames().isEmpty());
}

void TestSimulationSignal::checkAddress()
{
    QList<int> addresses;
    SimulationSignal::checkAddress(QSharedPointer<ControllerAddress>(), addresses);
    SimulationSignal::checkAddress(address(QStringLiteral("ff"), QMetaType::Int), addresses);
    SimulationSignal::checkAddress(address(QStringLiteral("0x10"), QMetaType::Int), addresses);
    SimulationSignal::checkAddress(address(QStringLiteral("FF"), QMetaType::Int), addresses);
    SimulationSignal::checkAddress(address(QStringLiteral("G1"), QMetaType::Int), addresses);
    SimulationSignal::checkAddress(address(QStringLiteral(" "), QMetaType::Int), addresses);
    QCOMPARE(addresses, (QList<int>{0xFF, 0x10}));
}

QTEST_GUILESS_MAIN(TestSimulationSignal)
#include "tst_simulationsignal.moc"
