#include "Domain/Types/ToleranceRange.h"

#include <QtTest>

using zelmor::domain::types::ToleranceRange;
using zelmor::domain::types::Unit;
using zelmor::domain::types::UnitValue;

class TestToleranceRange : public QObject
{
    Q_OBJECT

private slots:
    void computeViolation_data();
    void computeViolation();
    void typeAndTexts();
    void convertToUnit_data();
    void convertToUnit();
};

void TestToleranceRange::computeViolation_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("boundUnit");
    QTest::addColumn<QVariant>("lower");
    QTest::addColumn<QVariant>("upper");
    QTest::addColumn<int>("valueUnit");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("setPoint"); // in Celsius
    QTest::addColumn<int>("expected");

    const auto row = [](const char* name, int type, int boundUnit, const QVariant& lower, const QVariant& upper,
                        int valueUnit, const QVariant& value, const QVariant& setPoint, int expected) {
        QTest::newRow(name) << type << boundUnit << lower << upper << valueUnit << value << setPoint << expected;
    };
    const QVariant none;
    const int abs = ToleranceRange::ABSOLUTE;
    const int rel = ToleranceRange::RELATIVE;

    row("absolute, on the lower bound", abs, 0, 10, 20, 0, 10, none, 0);
    row("absolute, on the upper bound", abs, 0, 10, 20, 0, 20, none, 0);
    row("absolute, below", abs, 0, 10, 20, 0, 9, none, 2);
    row("absolute, above", abs, 0, 10, 20, 0, 21, none, 3);
    // bounds 10..20 C are 50..68 F in the value's unit
    row("absolute, bounds converted to F, above", abs, 0, 10, 20, 1, 68.1, none, 3);
    // percent bounds in C are NaN; no comparison with NaN violates
    row("absolute, incompatible units", abs, 5, 10, 20, 0, 1000, none, 0);
    row("relative, below", rel, 0, 2, 3, 0, 47.9, 50, 2);
    row("relative, above", rel, 0, 2, 3, 0, 53.1, 50, 3);
    row("relative, on the upper edge", rel, 0, 2, 3, 0, 53, 50, 0);
    row("relative, no set point", rel, 0, 2, 3, 0, 50, none, 1);
    // set point 50 C is 122 F; 2 K and 3 K are 3.6 F and 5.4 F wide: band 118.4..127.4
    row("relative, mixed units, inside low", rel, 2, 2, 3, 1, 118.5, 50, 0);
    row("relative, mixed units, below", rel, 2, 2, 3, 1, 118.3, 50, 2);
    row("relative, mixed units, above", rel, 2, 2, 3, 1, 127.5, 50, 3);
    row("invalid type", ToleranceRange::INVALID, 0, 10, 20, 0, 5, 15, 1);
    row("no value", abs, 0, 10, 20, 0, none, none, 1);
    row("no lower bound", abs, 0, none, 20, 0, 5, none, 1);
    row("no upper bound", rel, 0, 10, none, 0, 50, 50, 1);
}

void TestToleranceRange::computeViolation()
{
    QFETCH(int, type);
    QFETCH(int, boundUnit);
    QFETCH(QVariant, lower);
    QFETCH(QVariant, upper);
    QFETCH(int, valueUnit);
    QFETCH(QVariant, value);
    QFETCH(QVariant, setPoint);

    const ToleranceRange range(UnitValue(Unit::UnitId(boundUnit), lower), UnitValue(Unit::UnitId(boundUnit), upper),
                               ToleranceRange::Type(type));
    QTEST(int(range.computeViolation(UnitValue(Unit::UnitId(valueUnit), value), UnitValue(Unit::CELSIUS, setPoint))),
          "expected");
}

void TestToleranceRange::typeAndTexts()
{
    // two bounds alone make a relative range
    const ToleranceRange range(UnitValue(Unit::CELSIUS, 1), UnitValue(Unit::CELSIUS, 2));
    QVERIFY(range.isValid() && range.isRelative() && !range.isAbsolute() && !ToleranceRange().isValid());
    QCOMPARE(ToleranceRange::toString(range.type), QStringLiteral("relative"));
    QVERIFY(ToleranceRange::toString(ToleranceRange::Type(3)).isNull());
    QVERIFY(ToleranceRange::isViolation(ToleranceRange::BELOW_RANGE));
    QVERIFY(ToleranceRange::isViolation(ToleranceRange::ABOVE_RANGE));
    QVERIFY(!ToleranceRange::isViolation(ToleranceRange::NOT_COMPUTABLE));
}

void TestToleranceRange::convertToUnit_data()
{
    QTest::addColumn<int>("lowerUnit");
    QTest::addColumn<QVariant>("lower");
    QTest::addColumn<int>("upperUnit");
    QTest::addColumn<QVariant>("upper");
    QTest::addColumn<int>("target");
    QTest::addColumn<QVariant>("expectedLower");
    QTest::addColumn<QVariant>("expectedUpper");

    // bounds go through getValue, not getRelativeValue, even for a relative range
    QTest::newRow("one of two in the unit: both become floats")
        << 1 << QVariant(50) << 0 << QVariant(20) << 1 << QVariant(50.0f) << QVariant(68.0f);
    QTest::newRow("already in the unit: untouched")
        << 1 << QVariant(10) << 1 << QVariant(20) << 1 << QVariant(10) << QVariant(20);
}

void TestToleranceRange::convertToUnit()
{
    QFETCH(int, lowerUnit);
    QFETCH(QVariant, lower);
    QFETCH(int, upperUnit);
    QFETCH(QVariant, upper);
    QFETCH(int, target);
    QFETCH(QVariant, expectedLower);
    QFETCH(QVariant, expectedUpper);

    ToleranceRange range(UnitValue(Unit::UnitId(lowerUnit), lower), UnitValue(Unit::UnitId(upperUnit), upper));
    range.convertToUnit(Unit::UnitId(target));
    // types too: a bound left alone keeps its integer
    QCOMPARE(QList<int>({range.lower.getUnit(), range.upper.getUnit(), range.lower.getValue().userType(),
                         range.upper.getValue().userType()}),
             QList<int>({target, target, expectedLower.userType(), expectedUpper.userType()}));
    QCOMPARE(QVariantList({range.lower.getValue(), range.upper.getValue()}),
             QVariantList({expectedLower, expectedUpper}));
}

QTEST_GUILESS_MAIN(TestToleranceRange)
#include "tst_tolerancerange.moc"
