#include "Domain/Types/ChamberTypeData.h"
#include "Domain/Types/ControllerAddress.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/RampSimulationReader.h"
#include "Tools/Simulation/RandomSimulationReader.h"
#include "support/StreamCapture.h"

#include <QtTest>

#include <cmath>
#include <cstdlib>

using namespace zelmor::simulation;
using zelmor::domain::types::ChamberTypeData;
using zelmor::domain::types::ControllerAddress;
using zelmor::testsupport::StreamCapture;

namespace {

// Signals by key: read 10 int, 11 float, 12 bool, 13 ushort, 14 uint; key 6
// has read 20 float and writeManual 20 bool, key 7 read 21 float and key 8
// read 21 int; key 9 only writeBasic 30.
QSharedPointer<ChamberTypeData> chamberType()
{
    auto type = QSharedPointer<ChamberTypeData>::create();
    auto address = [](const QString& text, QMetaType::Type addressType) {
        auto result = QSharedPointer<ControllerAddress>::create();
        result->address = text;
        result->type = addressType;
        return result;
    };
    const QList<QMetaType::Type> types{QMetaType::Int,  QMetaType::Float, QMetaType::Bool,  QMetaType::UShort,
                                       QMetaType::UInt, QMetaType::Float, QMetaType::Float, QMetaType::Int};
    const QStringList reads{"10", "11", "12", "13", "14", "20", "21", "21"};
    for (int key = 1; key <= 8; ++key)
        type->chamberSignals[key].read = address(reads.at(key - 1), types.at(key - 1));
    type->chamberSignals[6].writeManual = address("20", QMetaType::Bool);
    type->chamberSignals[9].writeBasic = address("30", QMetaType::Int);
    return type;
}

QVariantList counting(int from, int to, bool asFloat)
{
    QVariantList result;
    for (int i = from; i <= to; ++i)
        result << (asFloat ? QVariant(float(i)) : QVariant(i));
    return result;
}

} // namespace

// The two readers that fill a whole chamber from its type: the saw-tooth of
// the ramp and the noise of the random reader.
class TestStandaloneReaders : public QObject
{
    Q_OBJECT

private slots:
    void perAddress_data()
    {
        QTest::addColumn<int>("address");
        QTest::addColumn<QVariantList>("ramp");
        QTest::addColumn<int>("randomType"); // 0: invalid
        QTest::addColumn<double>("randomTop");
        QTest::addColumn<double>("randomStep");

        const int i = QMetaType::Int;
        // 20 up to 101, the top a client sees, then back to 20; noise from 0 to 99
        QTest::newRow("int") << 0x10 << counting(20, 101, false) + QVariantList{20, 21} << i << 99.0 << 1.0;
        QTest::newRow("float") << 0x11 << counting(20, 101, true) + QVariantList{20.0f, 21.0f} << int(QMetaType::Float)
                               << 99.9 << 0.1;
        // The random bool never turns on.
        QTest::newRow("bool") << 0x12 << QVariantList{false, true, false, true} << i << 0.0 << 1.0;
        // first 32.5 (no first value of its own), then from the truncated 32
        QTest::newRow("ushort") << 0x13 << QVariantList{32.5f} + counting(33, 101, false) + QVariantList{20, 21} << i
                                << 99.0 << 1.0;
        QTest::newRow("other type") << 0x14 << QVariantList{32.5f, 32.5f, 32.5f} << 0 << 0.0 << 1.0;
        QTest::newRow("unknown address") << 0x99 << QVariantList{32.5f, 32.5f, 32.5f} << 0 << 0.0 << 1.0;
        QTest::newRow("writeManual wins") << 0x20 << QVariantList{false, true, false} << i << 0.0 << 1.0;
        QTest::newRow("later key wins") << 0x21 << QVariantList{20, 21, 22} << i << 99.0 << 1.0;
        QTest::newRow("writeBasic doesn't count") << 0x30 << QVariantList{32.5f, 32.5f} << 0 << 0.0 << 1.0;
    }

    // The ramp's sequence of reads, and 2000 random reads within their range
    // and on their steps; neither has a type, and both take any write.
    void perAddress()
    {
        QFETCH(int, address);
        QFETCH(QVariantList, ramp);
        QFETCH(int, randomType);
        QFETCH(double, randomTop);
        QFETCH(double, randomStep);

        RampSimulationReader rampReader(chamberType());
        StreamCapture quiet(consoleOutput());
        const auto typed = [](const QVariant& value) { return QString(value.typeName()) + ' ' + value.toString(); };
        for (const QVariant& expected : ramp)
            QCOMPARE(typed(rampReader.read(address)), typed(expected));
        QVERIFY(!rampReader.getType(address).isValid());

        RandomSimulationReader randomReader(chamberType());
        QSet<double> distinct;
        for (int i = 0; i < 2000; ++i) {
            const QVariant value = randomReader.read(address);
            QCOMPARE(value.userType(), randomType);
            const double number = value.toDouble();
            const bool onAStep = std::abs(number / randomStep - std::round(number / randomStep)) < 1e-3;
            QVERIFY2(number >= 0.0 && number <= randomTop + 1e-4 && onAStep, qPrintable(value.toString()));
            distinct.insert(number);
        }
        // noise, not a constant
        QCOMPARE(distinct.size() > 50, randomTop > 0);
        QVERIFY(!randomReader.getType(address).isValid());
        QVERIFY(randomReader.write(address, 5));
    }

    void rampAddressesRampIndependentlyAndWritesChangeNothing()
    {
        RampSimulationReader reader(chamberType());
        StreamCapture capture(consoleOutput());
        QVariantList seen{reader.read(0x10), reader.read(0x11), reader.read(0x10)};
        seen << reader.write(0x10, 99) << reader.write(-5, QVariant());
        seen << reader.read(0x10) << reader.read(0x11) << reader.read(-3);
        seen << RampSimulationReader(QSharedPointer<ChamberTypeData>()).read(0x10);
        QCOMPARE(capture.text(), QByteArray("Read Address: 16\r\nRead Address: 17\r\nRead Address: 16\r\n"
                                            "Read Address: 16\r\nRead Address: 17\r\nRead Address: -3\r\n"
                                            "Read Address: 16\r\n"));
        QCOMPARE(seen, (QVariantList{20, 20.0f, 21, true, true, 22, 21.0f, 32.5f, 32.5f}));
    }

    // A random bool uses up exactly one draw of the process's generator.
    void randomBoolDrawsOnce()
    {
        RandomSimulationReader reader(chamberType());
        std::srand(7);
        std::rand();
        const int second = std::rand();
        std::srand(7);
        QCOMPARE(reader.read(0x12), QVariant(0));
        QCOMPARE(std::rand(), second);
        QVERIFY(!RandomSimulationReader(QSharedPointer<ChamberTypeData>()).read(0x10).isValid());
    }
};

QTEST_GUILESS_MAIN(TestStandaloneReaders)
#include "tst_standalonereaders.moc"
