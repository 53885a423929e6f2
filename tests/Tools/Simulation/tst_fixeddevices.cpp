#include "Tools/Simulation/CanidCo2.h"
#include "Tools/Simulation/CanidDoorOpen.h"
#include "Tools/Simulation/CanidFanSpeed.h"
#include "Tools/Simulation/CanidTemperature.h"
#include "Tools/Simulation/Kv2FanSpeed.h"
#include "Tools/Simulation/Kv2Functions.h"
#include "Tools/Simulation/Kv2Temperature.h"

#include <QtTest>

#include <functional>

using namespace zelmor::simulation;

namespace {

using Factory = std::function<QSharedPointer<SimulationReader>()>;

template<typename T>
Factory factory()
{
    return [] { return QSharedPointer<SimulationReader>(QSharedPointer<T>::create()); };
}

} // namespace

Q_DECLARE_METATYPE(Factory)

class TestFixedDevices : public QObject
{
    Q_OBJECT

private slots:
    // A read and getType (floats have none, mirrors and single fixed values
    // have), then a write and a read: set points, process values, mirrors of
    // the set point and single fixed values.
    void values_data()
    {
        QTest::addColumn<Factory>("make");
        QTest::addColumn<int>("address");
        QTest::addColumn<QVariant>("initial");
        QTest::addColumn<bool>("typed");
        QTest::addColumn<int>("writeAddress");
        QTest::addColumn<QVariant>("written");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<QVariant>("afterWrite");

        auto row = [](const char* name, const Factory& make, int address, const QVariant& initial, bool typed,
                      int writeAddress, const QVariant& written, bool accepted, const QVariant& afterWrite) {
            QTest::newRow(name) << make << address << initial << typed << writeAddress << written << accepted
                                << afterWrite;
        };
        const auto temperature = factory<CanidTemperature>();
        row("CanidTemperature set", temperature, 0x114000C0, 222.2f, false, 0x114000C0, 30.0f, true, 30.0f);
        row("CanidTemperature process", temperature, 0x11400080, 263.4f, false, 0x11400080, 30.0f, false, 263.4f);
        row("CanidCo2 process", factory<CanidCo2>(), 0x11600B07, 0.0f, false, 0x116000C9, 30.0f, true, 0.0f);
        row("Kv2FanSpeed set", factory<Kv2FanSpeed>(), 4432, 60.0f, false, 4432, 30.0f, true, 30.0f);
        // The KV2 temperature mirrors its set point, read-only, at 4274.
        const auto kv2Temperature = factory<Kv2Temperature>();
        row("Kv2Temperature process", kv2Temperature, 4100, 266.0f, false, 4274, 30.0f, false, 266.0f);
        row("Kv2Temperature mirror", kv2Temperature, 4274, 256.0f, true, 4428, 30.0f, true, 30.0f);
        row("CanidDoorOpen", factory<CanidDoorOpen>(), 0x10010100, 4369, true, 0x10010100, 0, false, 4369);
        row("CanidFanSpeed", factory<CanidFanSpeed>(), 0x112000E1, 66.6f, true, 0x112000E1, 12.5f, true, 12.5f);
        row("CanidFanSpeed from text", factory<CanidFanSpeed>(), 0x112000E1, 66.6f, true, 0x112000E1, "fast", true,
            0.0f);
        row("Kv2Functions is empty", factory<Kv2Functions>(), 4100, QVariant(), false, 4100, 1, false, QVariant());
    }

    void values()
    {
        QFETCH(Factory, make);
        QFETCH(int, address);
        QFETCH(QVariant, initial);
        QFETCH(bool, typed);
        QFETCH(int, writeAddress);
        QFETCH(QVariant, written);
        QFETCH(bool, accepted);
        QFETCH(QVariant, afterWrite);

        const auto reader = make();
        QCOMPARE(reader->read(address), initial);
        QCOMPARE(reader->read(address).userType(), initial.userType());
        QCOMPARE(reader->getType(address), typed ? initial : QVariant());
        QVERIFY(!reader->read(address + 1).isValid() && !reader->getType(address + 1).isValid());
        QVERIFY(!reader->write(address + 1, written));
        // however often it is written
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(reader->write(writeAddress, written), accepted);
            QCOMPARE(reader->read(address), afterWrite);
            QCOMPARE(reader->read(address).userType(), afterWrite.userType());
        }
    }

    void timeConstants()
    {
        QCOMPARE(CanidTemperature().getTimeConstant(), 600.0f);
        QCOMPARE(Kv2FanSpeed().getTimeConstant(), 60.0f);
        const auto value = Kv2Temperature().getChildren().value(0).dynamicCast<SimulationValueFloat>();
        QVERIFY(value && value->getTimeConstant() == 600.0f);
    }
};

QTEST_GUILESS_MAIN(TestFixedDevices)
#include "tst_fixeddevices.moc"
