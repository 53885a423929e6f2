#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ControllerAddress.h"
#include "Tools/Simulation/SimulationSignal.h"
#include "Tools/Simulation/SimulationValueBool.h"
#include "Tools/Simulation/SimulationValueFloat.h"
#include "Tools/Simulation/SimulationValueInt.h"
#include "Tools/Simulation/SimulationValueUChar.h"
#include "Tools/Simulation/SimulationValueUInt.h"
#include "Tools/Simulation/SimulationValueUShort.h"

#include <QtTest>

using namespace zelmor::simulation;
using zelmor::domain::types::ChamberSignal;
using zelmor::domain::types::ControllerAddress;
using zelmor::domain::types::Unit;

namespace {

QSharedPointer<ControllerAddress> address(const QString& text, int type)
{
    if (text.isEmpty())
        return {};
    auto result = QSharedPointer<ControllerAddress>::create();
    result->address = text;
    result->type = static_cast<QMetaType::Type>(type);
    result->description = QStringLiteral("register ") + text;
    return result;
}

// Addresses as {read, writeAuto, writeBasic, writeManual}; a missing or empty
// text is no address.
ChamberSignal makeSignal(const QString& name, const QStringList& addresses, int type, int unit)
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

// The time constant of the value, -1 when no value was made.
template<typename... V>
float timeConstantOf(const QSharedPointer<SimulationReader>& reader)
{
    float result = -1.0f;
    auto take = [&](auto value) { return value && (result = value->getTimeConstant(), true); };
    static_cast<void>((take(reader.template dynamicCast<V>()) || ...));
    return result;
}

} // namespace

class TestSimulationSignal : public QObject
{
    Q_OBJECT

private slots:
    void addresses_data()
    {
        QTest::addColumn<QStringList>("own");
        QTest::addColumn<QStringList>("setPoint"); // empty: no set point signal
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("unit");
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QList<int>>("readable");
        QTest::addColumn<QList<int>>("writable");
        QTest::addColumn<QList<int>>("typed");
        QTest::addColumn<QVariant>("start");
        QTest::addColumn<float>("timeConstant");

        auto row = [](const char* name, const QStringList& own, const QStringList& setPoint, int type,
                      const QStringList& names, const QList<int>& readable, const QList<int>& writable,
                      const QList<int>& typed, const QVariant& start) {
            QTest::newRow(name) << own << setPoint << type << 0 << names << readable << writable << typed << start
                                << (start.isValid() ? 360.3f : -1.0f);
        };
        // One value on read 60 and write 61; integers answer getType on both.
        auto byType = [](const char* name, int type, int unit, const QVariant& start, float timeConstant) {
            QList<int> const both{0x60, 0x61};
            QTest::newRow(name) << QStringList{"60", "61"} << QStringList() << type << unit << QStringList{"PV"} << both
                                << QList<int>{0x61} << (type == QMetaType::Float ? QList<int>() : both) << start
                                << timeConstant;
        };
        const int f = QMetaType::Float;
        const int i = QMetaType::Int;
        // Without a read address the own write addresses don't count: a float
        // on current address -1 whose set address comes from the set point.
        row("set point only", {"", "05", "", ""}, {"20", "21", "", ""}, i, {"SP"}, {0x20, 0x21}, {0x21}, {0x20}, 23.3f);
        // Write addresses 32, 34, 33 (the repeated 32 is dropped): the float has
        // no type at 32, its aliases have, through the writer or the duplicator.
        row("process value with set point", {"30", "32", "34", ""}, {"31", "32", "", "33"}, f, {"PV", "SP"},
            {0x30, 0x31, 0x32, 0x33, 0x34}, {0x32, 0x33, 0x34}, {0x31, 0x33, 0x34}, 23.3f);
        // Read only; the set point's read address aliases address -1 and answers invalid.
        row("set point without write address", {"30", "", "", ""}, {"31", "", "", ""}, f, {"PV", "SP"}, {0x30}, {}, {},
            23.3f);
        // A read address that doesn't convert is 0, a write address is left out.
        row("bad texts", {"zz", "41", "q", "42"}, {}, i, {"PV"}, {0, 0x41, 0x42}, {0x41, 0x42}, {0, 0x41, 0x42}, 23);
        // No value is made, and its aliases answer nothing.
        row("unsimulated type", {"50", "51", "52", ""}, {}, QMetaType::QString, {"PV"}, {}, {}, {}, QVariant());

        byType("bool starts false in unit boolean", QMetaType::Bool, 13, false, 60.0f);
        byType("int, Celsius", i, 0, 23, 360.3f);
        byType("uint, Fahrenheit", QMetaType::UInt, 1, 90u, 360.7f);
        byType("short takes the unsigned class", QMetaType::Short, 5, QVariant::fromValue<ushort>(50), 180.0f);
        byType("ushort has no lag", QMetaType::UShort, 5, QVariant::fromValue<ushort>(50), 0.0f);
        byType("uchar is 42 in any unit", QMetaType::UChar, 5, QVariant::fromValue<uchar>(42), 180.0f);
        byType("float, Kelvin", f, 2, 296.6f, 360.6f);
        byType("float, unknown unit", f, 16, 42.42f, 42.42f);
    }

    // Every address from -1 to 0x61 is asked for its value, its type and a write.
    void addresses()
    {
        QFETCH(QStringList, own);
        QFETCH(QStringList, setPoint);
        QFETCH(int, type);
        QFETCH(int, unit);
        QFETCH(QStringList, names);
        QFETCH(QList<int>, readable);
        QFETCH(QList<int>, writable);
        QFETCH(QList<int>, typed);
        QFETCH(QVariant, start);
        QFETCH(float, timeConstant);

        ChamberSignal signal = makeSignal(QStringLiteral("PV"), own, type, unit);
        if (!setPoint.isEmpty())
            signal.setPointSignal = QSharedPointer<ChamberSignal>::create(makeSignal("SP", setPoint, type, 13));

        SimulationSignal simulated(signal);
        QCOMPARE(simulated.getSignalNames(), names);
        QCOMPARE(simulated.getAddressDescription(), own.at(0).isEmpty() ? QString() : "register " + own.at(0));
        QCOMPARE((timeConstantOf<SimulationValueBool, SimulationValueInt, SimulationValueUInt, SimulationValueUShort,
                                 SimulationValueUChar, SimulationValueFloat>(simulated.getChildren().value(0))),
                 timeConstant);
        for (int probe = -1; probe <= 0x61; ++probe) {
            const QByteArray where = QByteArray::number(probe, 16);
            const QVariant value = simulated.read(probe);
            QCOMPARE(value, readable.contains(probe) ? start : QVariant());
            QCOMPARE(value.userType(), readable.contains(probe) ? start.userType() : 0);
            QVERIFY2(simulated.getType(probe).isValid() == typed.contains(probe), where.constData());

            SimulationSignal fresh(signal);
            QVERIFY2(fresh.write(probe, 1) == writable.contains(probe), where.constData());
            // Whatever address took it, the set value reads back on every alias.
            for (int alias : writable)
                QCOMPARE(fresh.read(alias).toInt(), writable.contains(probe) ? 1 : start.toInt());
        }
    }

    // Read 1A, writeAuto 1B, writeBasic 1C, in Celsius: a write of the alias
    // 1C drives the process value at 1A towards 30 with 360.3 s.
    void aliasWriteMovesTheProcessValue()
    {
        SimulationSignal simulated(makeSignal(QStringLiteral("T"), {"1A", "1B", "1C", ""}, QMetaType::Float, 0));
        QVERIFY(simulated.write(0x1C, 30));
        QCOMPARE(simulated.read(0x1A), QVariant(23.3f));
        auto* clock = dynamic_cast<SimulationValue*>(simulated.getChildren().value(0).data());
        QVERIFY(clock);
        clock->setLastRequest(clock->getLastRequest().addMSecs(-360300));
        // one time constant: 1 - e^-1 of the step of 6.7
        QVERIFY(qAbs(simulated.read(0x1A).toFloat() - 27.535f) < 0.01f);
    }
};

QTEST_GUILESS_MAIN(TestSimulationSignal)
#include "tst_simulationsignal.moc"
