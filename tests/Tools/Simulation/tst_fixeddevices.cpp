#include "Tools/Simulation/CanidCo2.h"
#include "Tools/Simulation/CanidDoorOpen.h"
#include "Tools/Simulation/CanidFanSpeed.h"
#include "Tools/Simulation/CanidHumidity.h"
#include "Tools/Simulation/CanidHumiditySensor.h"
#include "Tools/Simulation/CanidO2.h"
#include "Tools/Simulation/CanidTemperature.h"
#include "Tools/Simulation/Kv2FanSpeed.h"
#include "Tools/Simulation/Kv2Functions.h"
#include "Tools/Simulation/Kv2Humidity.h"
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

// Makes the value's clock see the given seconds since its last update.
template<typename T>
void age(T& value, int seconds)
{
    value.setLastRequest(QDateTime::currentDateTime().addSecs(-seconds));
}

} // namespace

Q_DECLARE_METATYPE(Factory)

class TestFixedDevices : public QObject
{
    Q_OBJECT

private slots:
    // The lagged values: set point, start value and, after 60 s, the value
    // on its way (worked out by hand with 1 - e^(-60/tau)).
    void laggedValues_data()
    {
        QTest::addColumn<Factory>("make");
        QTest::addColumn<int>("setAddress");
        QTest::addColumn<int>("currentAddress");
        QTest::addColumn<float>("setPoint");
        QTest::addColumn<float>("start");
        QTest::addColumn<float>("after60s");

        QTest::newRow("CanidTemperature") << factory<CanidTemperature>() << 0x114000C0 << 0x11400080
                                          << 222.2f << 263.4f << 259.4793f;
        QTest::newRow("CanidHumidity") << factory<CanidHumidity>() << 0x116000C6 << 0x11600083
                                       << 23.3f << 50.0f << 33.1224f;
        QTest::newRow("CanidO2") << factory<CanidO2>() << 0x116000CC << 0x11600082
                                 << 23.3f << 80.3f << 73.8545f;
        QTest::newRow("CanidCo2") << factory<CanidCo2>() << 0x116000C9 << 0x11600B07
                                  << 15.6f << 0.0f << 1.4845f;
        QTest::newRow("Kv2FanSpeed") << factory<Kv2FanSpeed>() << 4432 << 4278
                                     << 60.0f << 50.0f << 56.3212f;
    }

    void laggedValues()
    {
        QFETCH(Factory, make);
        QFETCH(int, setAddress);
        QFETCH(int, currentAddress);
        QFETCH(float, setPoint);
        QFETCH(float, start);
        QFETCH(float, after60s);

        auto const reader = make();
        auto* const value = dynamic_cast<SimulationValueFloat*>(reader.data());
        QVERIFY(value);

        QCOMPARE(reader->read(setAddress), QVariant(setPoint));
        QCOMPARE(reader->read(currentAddress), QVariant(start));
        QCOMPARE(reader->getType(setAddress), QVariant());
        QCOMPARE(reader->getType(currentAddress), QVariant());
        QCOMPARE(reader->read(currentAddress + 1), QVariant());
        QVERIFY(!reader->write(currentAddress, QVariant(1.0f)));

        age(*value, 60);
        QVariant const moved = reader->read(currentAddress);
        QCOMPARE(moved.userType(), int(QMetaType::Float));
        QVERIFY2(qAbs(moved.toFloat() - after60s) < 0.01f, qPrintable(moved.toString()));

        // Ten time constants and more: on the set point. 100000 s exceeds every one.
        age(*value, 100000);
        QCOMPARE(reader->read(currentAddress), QVariant(setPoint));

        QVERIFY(reader->write(setAddress, QVariant(QStringLiteral("not a number"))));
        QCOMPARE(reader->read(setAddress), QVariant(0.0f));
    }

    void fixedValues_data()
    {
        QTest::addColumn<Factory>("make");
        QTest::addColumn<int>("address");
        QTest::addColumn<QVariant>("initial");
        QTest::addColumn<QVariant>("written");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<QVariant>("afterWrite");

        QTest::newRow("CanidDoorOpen") << factory<CanidDoorOpen>() << 0x10010100
                                       << QVariant(4369) << QVariant(0) << false << QVariant(4369);
        QTest::newRow("CanidDoorOpen twice") << factory<CanidDoorOpen>() << 0x10010100
                                             << QVariant(4369) << QVariant(1.0f) << false << QVariant(4369);
        QTest::newRow("CanidFanSpeed") << factory<CanidFanSpeed>() << 0x112000E1
                                       << QVariant(66.6f) << QVariant(12.5f) << true << QVariant(12.5f);
        QTest::newRow("CanidFanSpeed from int") << factory<CanidFanSpeed>() << 0x112000E1
                                                << QVariant(66.6f) << QVariant(40) << true << QVariant(40.0f);
        QTest::newRow("CanidFanSpeed from text") << factory<CanidFanSpeed>() << 0x112000E1
                                                 << QVariant(66.6f) << QVariant(QStringLiteral("fast"))
                                                 << true << QVariant(0.0f);
        QTest::newRow("CanidHumiditySensor") << factory<CanidHumiditySensor>() << 0x100C1066
                                             << QVariant(50.0f) << QVariant(1.0f) << false << QVariant(50.0f);
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
        QCOMPARE(reader->read(address).userType(), initial.userType());
        QCOMPARE(reader->read(address), initial);
        QCOMPARE(reader->getType(address), initial);

        for (int other : {address - 1, address + 1, 0}) {
            QCOMPARE(reader->read(other), QVariant());
            QCOMPARE(reader->getType(other), QVariant());
            QVERIFY(!reader->write(other, written));
        }

        QCOMPARE(reader->write(address, written), accepted);
        QCOMPARE(reader->read(address).userType(), afterWrite.userType());
        QCOMPARE(reader->read(address), afterWrite);
        QCOMPARE(reader->getType(address), afterWrite);
        QCOMPARE(reader->write(address, written), accepted);
        QCOMPARE(reader->read(address), afterWrite);
    }

    // Set point, process value and a read-only mirror of the set point.
    void mirroredValues_data()
    {
        QTest::addColumn<Factory>("make");
        QTest::addColumn<int>("setAddress");
        QTest::addColumn<int>("currentAddress");
        QTest::addColumn<int>("mirrorAddress");
        QTest::addColumn<float>("setPoint");
        QTest::addColumn<float>("start");

        QTest::newRow("Kv2Temperature") << factory<Kv2Temperature>() << 4428 << 4100 << 4274 << 256.0f << 266.0f;
        QTest::newRow("Kv2Humidity") << factory<Kv2Humidity>() << 4430 << 4106 << 4276 << 60.0f << 50.0f;
    }

    void mirroredValues()
    {
        QFETCH(Factory, make);
        QFETCH(int, setAddress);
        QFETCH(int, currentAddress);
        QFETCH(int, mirrorAddress);
        QFETCH(float, setPoint);
        QFETCH(float, start);

        auto const device = make();
        QCOMPARE(device->read(setAddress), QVariant(setPoint));
        QCOMPARE(device->read(mirrorAddress), QVariant(setPoint));
        QCOMPARE(device->read(currentAddress), QVariant(start));
        QCOMPARE(device->read(mirrorAddress + 1), QVariant());

        // The float value has no type; the mirror answers with its read.
        QCOMPARE(device->getType(setAddress), QVariant());
        QCOMPARE(device->getType(currentAddress), QVariant());
        QCOMPARE(device->getType(mirrorAddress), QVariant(setPoint));

        QVERIFY(!device->write(mirrorAddress, QVariant(30.0f)));
        QVERIFY(!device->write(currentAddress, QVariant(30.0f)));
        QCOMPARE(device->read(setAddress), QVariant(setPoint));

        QVERIFY(device->write(setAddress, QVariant(30.0f)));
        QCOMPARE(device->read(setAddress), QVariant(30.0f));
        QCOMPARE(device->read(mirrorAddress), QVariant(30.0f));
    }

    void kv2FanSpeedHasNoMirror()
    {
        Kv2FanSpeed fan;
        for (int address : {4276, 4280, 4294})
            QCOMPARE(fan.read(address), QVariant());
    }

    void kv2FunctionsIsEmpty_data()
    {
        QTest::addColumn<int>("address");
        for (int address : {0, 4100, 4428, 0x10010100})
            QTest::addRow("%d", address) << address;
    }

    void kv2FunctionsIsEmpty()
    {
        QFETCH(int, address);
        Kv2Functions functions;
        QCOMPARE(functions.read(address), QVariant());
        QCOMPARE(functions.getType(address), QVariant());
        QVERIFY(!functions.write(address, QVariant(1)));
    }
};

QTEST_GUILESS_MAIN(TestFixedDevices)
#include "tst_fixeddevices.moc"
