#include "Domain/Types/ChamberTypeData.h"
#include "Domain/Types/ControllerAddress.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/RampSimulationReader.h"
#include "support/StreamCapture.h"

#include <QtTest>

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
    auto address = [](QString const& text, QMetaType::Type addressType) {
        auto result = QSharedPointer<ControllerAddress>::create();
        result->address = text;
        result->type = addressType;
        return result;
    };
    QList<QMetaType::Type> const types{QMetaType::Int, QMetaType::Float, QMetaType::Bool, QMetaType::UShort,
                                       QMetaType::UInt, QMetaType::Float, QMetaType::Float, QMetaType::Int};
    QStringList const reads{"10", "11", "12", "13", "14", "20", "21", "21"};
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

class TestRampSimulationReader : public QObject
{
    Q_OBJECT

private slots:
    void sequence_data()
    {
        QTest::addColumn<int>("address");
        QTest::addColumn<QVariantList>("expected");

        // 20 up to 101, the top a client sees, then back to 20
        QTest::newRow("int") << 0x10 << counting(20, 101, false) + QVariantList{20, 21};
        QTest::newRow("float") << 0x11 << counting(20, 101, true) + QVariantList{20.0f, 21.0f};
        QTest::newRow("bool") << 0x12 << QVariantList{false, true, false, true};
        // first 32.5 (no first value of its own), then from the truncated 32
        QTest::newRow("ushort") << 0x13 << QVariantList{32.5f} + counting(33, 101, false) + QVariantList{20, 21};
        QTest::newRow("unknown address stands") << 0x99 << QVariantList{32.5f, 32.5f, 32.5f};
        QTest::newRow("writeManual wins") << 0x20 << QVariantList{false, true, false};
        QTest::newRow("later key wins") << 0x21 << QVariantList{20, 21, 22};
        QTest::newRow("writeBasic doesn't count") << 0x30 << QVariantList{32.5f, 32.5f};
    }

    void sequence()
    {
        QFETCH(int, address);
        QFETCH(QVariantList, expected);

        RampSimulationReader reader(chamberType());
        StreamCapture quiet(consoleOutput());
        QVariantList seen;
        for (int i = 0; i < expected.size(); ++i)
            seen << reader.read(address);
        QCOMPARE(seen, expected);
        for (int i = 0; i < expected.size(); ++i)
            QCOMPARE(seen.at(i).userType(), expected.at(i).userType());
        QVERIFY(!reader.getType(address).isValid());
    }

    void addressesRampIndependentlyAndWritesChangeNothing()
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
};

QTEST_GUILESS_MAIN(TestRampSimulationReader)
#include "tst_rampsimulationreader.moc"
