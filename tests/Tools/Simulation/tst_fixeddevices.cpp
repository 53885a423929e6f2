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
    // Set point, start value and time constant; the KV2 temperature also
    // mirrors its set point, read-only, on a third address.
    void laggedValues_data()
    {
        QTest::addColumn<Factory>("make");
        QTest::addColumn<int>("setAddress");
        QTest::addColumn<int>("currentAddress");
        QTest::addColumn<int>("mirrorAddress");
        QTest::addColumn<float>("setPoint");
        QTest::addColumn<float>("start");
        QTest::addColumn<float>("timeConstant");

        QTest::newRow("CanidTemperature") << factory<CanidTemperature>() << 0x114000C0 << 0x11400080 << 0 << 222.2f
                                          << 263.4f << 600.0f;
        QTest::newRow("CanidCo2") << factory<CanidCo2>() << 0x116000C9 << 0x11600B07 << 0 << 15.6f << 0.0f << 600.0f;
        QTest::newRow("Kv2FanSpeed") << factory<Kv2FanSpeed>() << 4432 << 4278 << 0 << 60.0f << 50.0f << 60.0f;
        QTest::newRow("Kv2Temperature") << factory<Kv2Temperature>() << 4428 << 4100 << 4274 << 256.0f << 266.0f
                                        << 600.0f;
    }

    void laggedValues()
    {
        QFETCH(Factory, make);
        QFETCH(int, setAddress);
        QFETCH(int, currentAddress);
        QFETCH(int, mirrorAddress);
        QFETCH(float, setPoint);
        QFETCH(float, start);
        QFETCH(float, timeConstant);

        auto const reader = make();
        auto const device = reader.dynamicCast<SimulationDevice>();
        auto* const value = dynamic_cast<SimulationValueFloat*>(device ? device->getChildren().value(0).data()
                                                                       : reader.data());
        QVERIFY(value);
        QCOMPARE(value->getTimeConstant(), timeConstant);
        QCOMPARE(reader->read(setAddress), QVariant(setPoint));
        QCOMPARE(reader->read(currentAddress), QVariant(start));
        QVERIFY(!reader->write(currentAddress, QVariant(1.0f)));
        if (mirrorAddress != 0) {
            QCOMPARE(reader->getType(mirrorAddress), QVariant(setPoint));
            QVERIFY(!reader->write(mirrorAddress, QVariant(1.0f)));
        }

        QVERIFY(reader->write(setAddress, QVariant(30.0f)));
        QCOMPARE(reader->read(mirrorAddress != 0 ? mirrorAddress : setAddress), QVariant(30.0f));
    }

    void fixedValues_data()
    {
        QTest::addColumn<Factory>("make");
        QTest::addColumn<int>("address");
        QTest::addColumn<QVariant>("initial");
        QTest::addColumn<QVariant>("written");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<QVariant>("afterWrite");

        auto row = [](char const* name, Factory const& make, int address, QVariant const& initial,
                      QVariant const& written, bool accepted, QVariant const& afterWrite) {
            QTest::newRow(name) << make << address << initial << written << accepted << afterWrite;
        };
        row("CanidDoorOpen", factory<CanidDoorOpen>(), 0x10010100, 4369, 0, false, 4369);
        row("CanidFanSpeed", factory<CanidFanSpeed>(), 0x112000E1, 66.6f, 12.5f, true, 12.5f);
        row("CanidFanSpeed from text", factory<CanidFanSpeed>(), 0x112000E1, 66.6f, "fast", true, 0.0f);
        row("Kv2Functions is empty", factory<Kv2Functions>(), 4100, QVariant(), 1, false, QVariant());
    }

    void fixedValues()
    {
        QFETCH(Factory, make);
        QFETCH(int, address);
        QFETCH(QVariant, initial);
        QFETCH(QVariant, written);
        QFETCH(bool, accepted);
        QFETCH(QVariant, afterWrite);

        auto const reader = make();
        QCOMPARE(reader->read(address), initial);
        QCOMPARE(reader->read(address).userType(), initial.userType());
        QCOMPARE(reader->getType(address), initial);
        QVERIFY(!reader->read(address + 1).isValid() && !reader->getType(address + 1).isValid());
        QVERIFY(!reader->write(address + 1, written));
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(reader->write(address, written), accepted);
            QCOMPARE(reader->read(address), afterWrite);
            QCOMPARE(reader->read(address).userType(), afterWrite.userType());
        }
    }
};

QTEST_GUILESS_MAIN(TestFixedDevices)
#include "tst_fixeddevices.moc"
