#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ProgramSection.h"
#include "Domain/Types/Recordset.h"
#include "Domain/Types/SignalValuePair.h"
#include "Domain/Types/ToleranceRange.h"

#include <QtTest>

using namespace zelmor::domain::types;

namespace {

ChamberSignal makeSignal(SignalId id, Unit::UnitId unit)
{
    ChamberSignal signal;
    signal.id = id;
    signal.unit = unit;
    return signal;
}

QSharedPointer<ToleranceRange> makeRange(ToleranceRange::Type type, const QVariant& lower, const QVariant& upper)
{
    return QSharedPointer<ToleranceRange>::create(UnitValue(Unit::CELSIUS, lower), UnitValue(Unit::CELSIUS, upper),
                                                  type);
}

} // namespace

class TestSignalValuePair : public QObject
{
    Q_OBJECT

private slots:
    void validToleranceRange_data();
    void validToleranceRange();
    void convertToSignal_data();
    void convertToSignal();
    void rangesOfSectionsAndRecordsets();
};

void TestSignalValuePair::validToleranceRange_data()
{
    QTest::addColumn<bool>("present");
    QTest::addColumn<int>("type");
    QTest::addColumn<QVariant>("lower");
    QTest::addColumn<QVariant>("upper");
    QTest::addColumn<bool>("expected");

    const QVariant none;
    QTest::newRow("no range") << false << 0 << none << none << false;
    QTest::newRow("absolute, both bounds") << true << 1 << QVariant(10) << QVariant(20) << true;
    QTest::newRow("relative, lower bound only") << true << 2 << QVariant(2) << none << true;
    QTest::newRow("relative, upper bound only") << true << 2 << none << QVariant(3) << true;
    QTest::newRow("relative, no bounds") << true << 2 << none << none << false;
    QTest::newRow("invalid type with bounds") << true << 0 << QVariant(10) << QVariant(20) << false;
}

void TestSignalValuePair::validToleranceRange()
{
    QFETCH(bool, present);
    QFETCH(int, type);
    QFETCH(QVariant, lower);
    QFETCH(QVariant, upper);

    SignalValuePair pair(4, UnitValue(Unit::CELSIUS, 21.5f));
    if (present) {
        pair.toleranceRange = makeRange(ToleranceRange::Type(type), lower, upper);
    }
    QTEST(pair.hasValidToleranceRange(), "expected");
}

void TestSignalValuePair::convertToSignal_data()
{
    QTest::addColumn<int>("valueUnit");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("signalUnit");
    QTest::addColumn<QVariant>("expected");

    const QVariant none;
    QTest::newRow("Fahrenheit to Celsius")
        << int(Unit::FAHRENHEIT) << QVariant(212.0f) << int(Unit::CELSIUS) << QVariant(100.0f);
    QTest::newRow("Kelvin to Celsius") << int(Unit::KELVIN) << QVariant(273.15f) << int(Unit::CELSIUS)
                                       << QVariant(0.0f);
    // a value without a unit is taken as being in the signal's unit
    QTest::newRow("no unit yet") << int(Unit::UNDEFINED) << QVariant(55.5f) << int(Unit::RELATIVE_HUMIDITY_RF)
                                 << QVariant(55.5f);
    // already in the unit: untouched, so a switch stays a bool
    QTest::newRow("switch") << int(Unit::BOOLEAN) << QVariant(true) << int(Unit::BOOLEAN) << QVariant(true);
    QTest::newRow("no value") << int(Unit::FAHRENHEIT) << none << int(Unit::CELSIUS) << none;
}

void TestSignalValuePair::convertToSignal()
{
    QFETCH(int, valueUnit);
    QFETCH(QVariant, value);
    QFETCH(int, signalUnit);
    QFETCH(QVariant, expected);

    SignalValuePair pair(9, UnitValue(Unit::UnitId(valueUnit), value), UnitValue(Unit::UnitId(valueUnit), value));
    pair.convertToSignal(makeSignal(9, Unit::UnitId(signalUnit)));

    for (const UnitValue& converted : {pair.value, pair.oldValue}) {
        QCOMPARE(int(converted.getUnit()), signalUnit);
        QCOMPARE(converted.getValue().userType(), expected.userType());
        if (expected.userType() == QMetaType::Float) {
            QVERIFY(qFuzzyCompare(converted.getValue().toFloat() + 1.0f, expected.toFloat() + 1.0f));
        } else {
            QCOMPARE(converted.getValue(), expected);
        }
    }
}

void TestSignalValuePair::rangesOfSectionsAndRecordsets()
{
    const QSharedPointer<ToleranceRange> band = makeRange(ToleranceRange::ABSOLUTE, 10, 20);
    const SignalValuePair withBand(3, UnitValue(Unit::CELSIUS, 15.0f), UnitValue(), band);
    const SignalValuePair withoutBand(5, UnitValue(Unit::CELSIUS, 40.0f));
    const SignalValuePair withEmptyBand(6, UnitValue(Unit::CELSIUS, 40.0f), UnitValue(),
                                        makeRange(ToleranceRange::RELATIVE, QVariant(), QVariant()));

    ProgramSection section;
    section.setpoints = {withoutBand, withEmptyBand};
    QVERIFY(!section.hasToleranceRange());
    section.setpoints.append(withBand);
    QVERIFY(section.hasToleranceRange());

    Recordset recordset;
    recordset.values = {withBand, withoutBand};
    QCOMPARE(recordset.getToleranceRange(3), *band);
    QVERIFY(!recordset.getToleranceRange(5).isValid());
    QVERIFY(!recordset.getToleranceRange(99).isValid());
}

QTEST_GUILESS_MAIN(TestSignalValuePair)
#include "tst_signalvaluepair.moc"
