#include "Domain/Types/ChamberTypeData.h"
#include "Domain/Types/ControllerAddress.h"
#include "Tools/Simulation/RandomSimulationReader.h"
#include "Tools/Simulation/SimulationDevice.h"
#include "Tools/Simulation/SimulationValueInt.h"

#include <QtTest>

#include <cmath>
#include <cstdlib>

using namespace zelmor::simulation;
using zelmor::domain::types::ChamberSignal;
using zelmor::domain::types::ChamberTypeData;
using zelmor::domain::types::ControllerAddress;

namespace {

// Read 10 int, 11 float, 12 bool, 13 ushort, 14 uint; writeManual 15 float.
QSharedPointer<ChamberTypeData> chamberType()
{
    auto type = QSharedPointer<ChamberTypeData>::create();
    QList<QPair<QString, QMetaType::Type>> const addresses{{"10", QMetaType::Int}, {"11", QMetaType::Float},
                                                           {"12", QMetaType::Bool}, {"13", QMetaType::UShort},
                                                           {"14", QMetaType::UInt}, {"15", QMetaType::Float}};
    for (auto const& entry : addresses) {
        auto address = QSharedPointer<ControllerAddress>::create();
        address->address = entry.first;
        address->type = entry.second;
        ChamberSignal signal;
        (entry.first == "15" ? signal.writeManual : signal.read) = address;
        type->chamberSignals.insert(type->chamberSignals.size() + 1, signal);
    }
    return type;
}

} // namespace

class TestRandomSimulationReader : public QObject
{
    Q_OBJECT

private slots:
    void ranges_data()
    {
        QTest::addColumn<int>("address");
        QTest::addColumn<int>("typeId");
        QTest::addColumn<double>("top");
        QTest::addColumn<double>("step");

        QTest::newRow("int") << 0x10 << int(QMetaType::Int) << 99.0 << 1.0;
        QTest::newRow("ushort") << 0x13 << int(QMetaType::Int) << 99.0 << 1.0;
        QTest::newRow("float by writeManual") << 0x15 << int(QMetaType::Float) << 99.9 << 0.1;
    }

    void ranges()
    {
        QFETCH(int, address);
        QFETCH(int, typeId);
        QFETCH(double, top);
        QFETCH(double, step);

        RandomSimulationReader reader(chamberType());
        QSet<double> distinct;
        for (int i = 0; i < 2000; ++i) {
            QVariant const value = reader.read(address);
            QCOMPARE(value.userType(), typeId);
            double const number = value.toDouble();
            bool const onAStep = std::abs(number / step - std::round(number / step)) < 1e-3;
            QVERIFY2(number >= 0.0 && number <= top + 1e-4 && onAStep, qPrintable(value.toString()));
            distinct.insert(number);
        }
        // noise, not a constant
        QVERIFY(distinct.size() > 50);
    }

    // A bool address uses up one draw and reads an int 0 every time.
    void boolDrawsButNeverTurnsOn()
    {
        RandomSimulationReader reader(chamberType());
        std::srand(7);
        std::rand();
        int const second = std::rand();
        std::srand(7);
        QVariant value = reader.read(0x12);
        QCOMPARE(std::rand(), second);
        for (int i = 0; i < 100; value = reader.read(0x12), ++i)
            QVERIFY(value.userType() == QMetaType::Int && value.toInt() == 0);
    }

    // Unknown addresses, also of a known but unsimulated type, are invalid:
    // a device asks its next child. Writes are taken anywhere and change nothing.
    void unknownAddressLetsTheDeviceAskOn()
    {
        SimulationDevice device;
        auto random = QSharedPointer<RandomSimulationReader>::create(chamberType());
        device.add(random);
        device.add(QSharedPointer<SimulationValueInt>::create(7, 7, 10.0f, 0x99, 0x14));
        QCOMPARE(device.read(0x99), QVariant(7));
        QCOMPARE(device.read(0x14), QVariant(7));
        QVERIFY(random->write(0x99, 5) && random->write(-1, QVariant()));
        QVERIFY(!random->read(0x99).isValid() && !random->getType(0x10).isValid());
        QVERIFY(!RandomSimulationReader(QSharedPointer<ChamberTypeData>()).read(0x10).isValid());
    }
};

QTEST_GUILESS_MAIN(TestRandomSimulationReader)
#include "tst_randomsimulationreader.moc"
