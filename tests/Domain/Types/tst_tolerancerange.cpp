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
    void typeToString_data();
    void typeToString();
    void isViolation_data();
    void isViolation();
    void constructionAndTypePredicates();
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
    QTest::addColumn<int>("setPointUnit");
    QTest::addColumn<QVariant>("setPoint");
    QTest::addColumn<int>("expected");

    const QVariant none;
    const int absolute = ToleranceRange::ABSOLUTE;
    const int relative = ToleranceRange::RELATIVE;
    const int celsius = Unit::CELSIUS;
    const int fahrenheit = Unit::FAHRENHEIT;
    const int kelvin = Unit::KELVIN;
    const int percent = Unit::PERCENT;

    QTest::newRow("absolute, on the lower bound") << absolute << celsius << QVariant(10) << QVariant(20) << celsius
                                                  << QVariant(10) << celsius << none << 0;
    QTest::newRow("absolute, on the upper bound") << absolute << celsius << QVariant(10) << QVariant(20) << celsius
                                                  << QVariant(20) << celsius << none << 0;
    QTest::newRow("absolute, below") << absolute << celsius << QVariant(10) << QVariant(20) << celsius << QVariant(9)
                                     << celsius << none << 2;
    QTest::newRow("absolute, above") << absolute << celsius << QVariant(10) << QVariant(20) << celsius << QVariant(21)
                                     << celsius << none << 3;
    QTest::newRow("absolute, just above") << absolute << celsius << QVariant(10) << QVariant(20) << celsius
                                          << QVariant(20.001) << celsius << none << 3;
    // bounds 10..20 C are 50..68 F in the value's unit
    QTest::newRow("absolute, bounds converted to F, inside") << absolute << celsius << QVariant(10) << QVariant(20)
                                                             << fahrenheit << QVariant(50) << celsius << none << 0;
    QTest::newRow("absolute, bounds converted to F, below") << absolute << celsius << QVariant(10) << QVariant(20)
                                                            << fahrenheit << QVariant(49.9) << celsius << none << 2;
    QTest::newRow("absolute, bounds converted to F, above") << absolute << celsius << QVariant(10) << QVariant(20)
                                                            << fahrenheit << QVariant(68.1) << celsius << none << 3;
    QTest::newRow("absolute, set point not needed") << absolute << celsius << QVariant(10) << QVariant(20) << celsius
                                                    << QVariant(15) << celsius << none << 0;
    // percent bounds in C are NaN; no comparison with NaN violates
    QTest::newRow("absolute, incompatible units") << absolute << percent << QVariant(10) << QVariant(20) << celsius
                                                  << QVariant(1000) << celsius << none << 0;

    QTest::newRow("relative, inside") << relative << celsius << QVariant(2) << QVariant(3) << celsius << QVariant(48)
                                      << celsius << QVariant(50) << 0;
    QTest::newRow("relative, below") << relative << celsius << QVariant(2) << QVariant(3) << celsius << QVariant(47.9)
                                     << celsius << QVariant(50) << 2;
    QTest::newRow("relative, above") << relative << celsius << QVariant(2) << QVariant(3) << celsius << QVariant(53.1)
                                     << celsius << QVariant(50) << 3;
    QTest::newRow("relative, on the upper edge") << relative << celsius << QVariant(2) << QVariant(3) << celsius
                                                 << QVariant(53) << celsius << QVariant(50) << 0;
    QTest::newRow("relative, no set point") << relative << celsius << QVariant(2) << QVariant(3) << celsius
                                            << QVariant(50) << celsius << none << 1;
    // set point 50 C is 122 F; 2 K and 3 K are 3.6 F and 5.4 F wide: band 118.4..127.4
    QTest::newRow("relative, mixed units, inside low") << relative << kelvin << QVariant(2) << QVariant(3)
                                                       << fahrenheit << QVariant(118.5) << celsius << QVariant(50) << 0;
    QTest::newRow("relative, mixed units, below") << relative << kelvin << QVariant(2) << QVariant(3) << fahrenheit
                                                  << QVariant(118.3) << celsius << QVariant(50) << 2;
    QTest::newRow("relative, mixed units, inside high") << relative << kelvin << QVariant(2) << QVariant(3)
                                                        << fahrenheit << QVariant(127.3) << celsius << QVariant(50)
                                                        << 0;
    QTest::newRow("relative, mixed units, above") << relative << kelvin << QVariant(2) << QVariant(3) << fahrenheit
                                                  << QVariant(127.5) << celsius << QVariant(50) << 3;

    QTest::newRow("invalid type") << int(ToleranceRange::INVALID) << celsius << QVariant(10) << QVariant(20) << celsius
                                  << QVariant(5) << celsius << QVariant(15) << 1;
    QTest::newRow("unknown type number") << 7 << celsius << QVariant(10) << QVariant(20) << celsius << QVariant(5)
                                         << celsius << QVariant(15) << 1;
    QTest::newRow("no value") << absolute << celsius << QVariant(10) << QVariant(20) << celsius << none << celsius
                              << none << 1;
    QTest::newRow("no lower bound") << absolute << celsius << none << QVariant(20) << celsius << QVariant(5)
                                    << celsius << none << 1;
    QTest::newRow("no upper bound") << relative << celsius << QVariant(10) << none << celsius << QVariant(50)
                                    << celsius << QVariant(50) << 1;
}

void TestToleranceRange::computeViolation()
{
    QFETCH(int, type);
    QFETCH(int, boundUnit);
    QFETCH(QVariant, lower);
    QFETCH(QVariant, upper);
    QFETCH(int, valueUnit);
    QFETCH(QVariant, value);
    QFETCH(int, setPointUnit);
    QFETCH(QVariant, setPoint);
    QFETCH(int, expected);

    const ToleranceRange range(UnitValue(Unit::UnitId(boundUnit), lower),
                               UnitValue(Unit::UnitId(boundUnit), upper),
                               ToleranceRange::Type(type));
    const ToleranceRange::Violation violation =
        range.computeViolation(UnitValue(Unit::UnitId(valueUnit), value),
                               UnitValue(Unit::UnitId(setPointUnit), setPoint));
    QCOMPARE(int(violation), expected);
}

void TestToleranceRange::typeToString_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("expected");

    QTest::newRow("0") << 0 << QStringLiteral("invalid");
    QTest::newRow("1") << 1 << QStringLiteral("absolute");
    QTest::newRow("2") << 2 << QStringLiteral("relative");
    QTest::newRow("3") << 3 << QString();
    QTest::newRow("-1") << -1 << QString();
}

void TestToleranceRange::typeToString()
{
    QFETCH(int, type);
    QFETCH(QString, expected);

    const QString text = ToleranceRange::toString(ToleranceRange::Type(type));
    QCOMPARE(text, expected);
    QCOMPARE(text.isEmpty(), expected.isEmpty());
}

void TestToleranceRange::isViolation_data()
{
    QTest::addColumn<int>("violation");
    QTest::addColumn<bool>("expected");

    QTest::newRow("none") << 0 << false;
    QTest::newRow("not computable") << 1 << false;
    QTest::newRow("below") << 2 << true;
    QTest::newRow("above") << 3 << true;
}

void TestToleranceRange::isViolation()
{
    QFETCH(int, violation);
    QFETCH(bool, expected);

    QCOMPARE(ToleranceRange::isViolation(ToleranceRange::Violation(violation)), expected);
}

void TestToleranceRange::constructionAndTypePredicates()
{
    const ToleranceRange empty;
    QCOMPARE(int(empty.type), 0);
    QVERIFY(!empty.isValid());
    QVERIFY(!empty.isAbsolute());
    QVERIFY(!empty.isRelative());
    QVERIFY(!empty.lower.isValid());
    QCOMPARE(empty.upper.getUnit(), Unit::UNDEFINED);

    const ToleranceRange twoArguments(UnitValue(Unit::CELSIUS, 1), UnitValue(Unit::CELSIUS, 2));
    QCOMPARE(int(twoArguments.type), 2);
    QVERIFY(twoArguments.isRelative());
    QVERIFY(!twoArguments.isAbsolute());
    QVERIFY(twoArguments.isValid());
    QCOMPARE(twoArguments.lower.getValue(), QVariant(1));
    QCOMPARE(twoArguments.upper.getValue(), QVariant(2));

    const ToleranceRange absolute(UnitValue(Unit::CELSIUS, 1), UnitValue(Unit::CELSIUS, 2), ToleranceRange::ABSOLUTE);
    QVERIFY(absolute.isAbsolute());
    QVERIFY(absolute.isValid());
    QVERIFY(absolute != twoArguments);
    QCOMPARE(absolute, ToleranceRange(absolute.lower, absolute.upper, ToleranceRange::ABSOLUTE));
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

    QTest::newRow("C to F") << 0 << QVariant(10) << 0 << QVariant(20) << 1 << QVariant(50.0f) << QVariant(68.0f);
    // bounds go through getValue, not getRelativeValue, even for a relative range
    QTest::newRow("K to C shifts") << 2 << QVariant(2) << 2 << QVariant(3) << 0 << QVariant(-271.15f)
                                   << QVariant(-270.15f);
    QTest::newRow("already in the unit: untouched") << 1 << QVariant(10) << 1 << QVariant(20) << 1 << QVariant(10)
                                                    << QVariant(20);
    QTest::newRow("one of two in the unit: both become floats") << 1 << QVariant(50) << 0 << QVariant(20) << 1
                                                                 << QVariant(50.0f) << QVariant(68.0f);
    QTest::newRow("invalid bound stays invalid") << 0 << QVariant() << 0 << QVariant(20) << 1 << QVariant()
                                                 << QVariant(68.0f);
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

    QCOMPARE(int(range.lower.getUnit()), target);
    QCOMPARE(int(range.upper.getUnit()), target);
    QCOMPARE(range.lower.getValue().userType(), expectedLower.userType());
    QCOMPARE(range.upper.getValue().userType(), expectedUpper.userType());
    QCOMPARE(range.lower.getValue(), expectedLower);
    QCOMPARE(range.upper.getValue(), expectedUpper);
    QVERIFY(range.isRelative());
}

QTEST_GUILESS_MAIN(TestToleranceRange)
#include "tst_tolerancerange.moc"
