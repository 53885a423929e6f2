#include "Domain/Types/Unit.h"
#include "Domain/Types/UnitValue.h"

#include <QtTest>

#include <cmath>
#include <cstring>

using zelmor::domain::types::Unit;
using zelmor::domain::types::UnitValue;

namespace {

quint32 bitsOf(float value)
{
    quint32 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

float floatOf(quint32 bits)
{
    float value = 0.0f;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

const QChar degreeSign(0x00B0);
const QChar superscriptTwo(0x00B2);

} // namespace

class TestUnit : public QObject
{
    Q_OBJECT

private slots:
    void convert_data();
    void convert();
    void convertWithoutTableRowIsNan_data();
    void convertWithoutTableRowIsNan();
    void convertToSameUnitKeepsValue_data();
    void convertToSameUnitKeepsValue();
    void helperConverters();
    void toUnitId_data();
    void toUnitId();
    void toString_data();
    void toString();
    void nameIdMappingCoversAllUnits();
    void quantityPredicates_data();
    void quantityPredicates();

    void unitValueGetValue_data();
    void unitValueGetValue();
    void unitValueRelativeValue_data();
    void unitValueRelativeValue();
    void unitValueDefaultAndTextConstruction();
    void unitValueComparison_data();
    void unitValueComparison();
};

void TestUnit::convert_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<float>("value");
    QTest::addColumn<quint32>("expectedBits");

    // Expected bit patterns worked out step by step in single precision, each
    // operation rounded to float, with 5/9 as 0x3F0E38E4.
    QTest::newRow("C->F 100 is 212") << 0 << 1 << 100.0f << 0x43540000u;
    QTest::newRow("C->F -40 is -40") << 0 << 1 << -40.0f << 0xC2200000u;
    // 1.8f * 20.5f rounds down; in double the result would be 0x4289CCCD
    QTest::newRow("C->F 20.5 is 68.899994") << 0 << 1 << 20.5f << 0x4289CCCCu;
    QTest::newRow("C->K 0 is 273.15f") << 0 << 2 << 0.0f << 0x43889333u;
    QTest::newRow("C->K 25") << 0 << 2 << 25.0f << 0x43951333u;
    QTest::newRow("C->K -273.15 is 0") << 0 << 2 << -273.15f << 0x00000000u;
    // 180 * 0x3F0E38E4 lands one ulp above 100
    QTest::newRow("F->C 212 is 100 plus one ulp") << 1 << 0 << 212.0f << 0x42C80001u;
    QTest::newRow("F->C 32 is 0") << 1 << 0 << 32.0f << 0x00000000u;
    QTest::newRow("F->C -40 is -40") << 1 << 0 << -40.0f << 0xC2200000u;
    QTest::newRow("F->C 98.6 is 37") << 1 << 0 << 98.6f << 0x42140000u;
    QTest::newRow("F->C 33 is the factor itself") << 1 << 0 << 33.0f << 0x3F0E38E4u;
    QTest::newRow("F->K 0") << 1 << 2 << 0.0f << 0x437F5F4Bu;
    // with the exact 5/9 the result would be 0x43889333
    QTest::newRow("F->K 32 is 273.15002") << 1 << 2 << 32.0f << 0x43889334u;
    QTest::newRow("F->K -459.67 is 0") << 1 << 2 << -459.67f << 0x00000000u;
    QTest::newRow("K->C 0 is -273.15") << 2 << 0 << 0.0f << 0xC3889333u;
    QTest::newRow("K->C 300") << 2 << 0 << 300.0f << 0x41D6CCD0u;
    QTest::newRow("K->F 0 is -459.67") << 2 << 1 << 0.0f << 0xC3E5D5C3u;
    QTest::newRow("K->F 273.15 is 31.99997") << 2 << 1 << 273.15f << 0x41FFFFF0u;
    QTest::newRow("K->F 373.15") << 2 << 1 << 373.15f << 0x4353FFFEu;
    QTest::newRow("hPa->mbar") << 7 << 8 << 1013.25f << bitsOf(1013.25f);
    QTest::newRow("mbar->hPa") << 8 << 7 << 987.5f << bitsOf(987.5f);
    QTest::newRow("% r.F.->% r.H.") << 3 << 4 << 55.5f << bitsOf(55.5f);
    QTest::newRow("% r.H.->% r.F.") << 4 << 3 << -0.25f << bitsOf(-0.25f);
}

void TestUnit::convert()
{
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(float, value);
    QFETCH(quint32, expectedBits);

    const float result = Unit::convert(Unit::UnitId(from), Unit::UnitId(to), value);
    QCOMPARE(QString::number(bitsOf(result), 16), QString::number(expectedBits, 16));
    QCOMPARE(result, floatOf(expectedBits));
}

void TestUnit::convertWithoutTableRowIsNan_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");

    QTest::newRow("temperature to pressure") << 0 << 7;
    QTest::newRow("pressure to temperature") << 8 << 1;
    QTest::newRow("percentage to volume percentage") << 5 << 6;
    QTest::newRow("kLUX to Mluxh") << 9 << 10;
    QTest::newRow("relative humidity to percentage") << 3 << 5;
    QTest::newRow("percentage to relative humidity") << 5 << 4;
    QTest::newRow("irradiance to its dose") << 11 << 12;
    QTest::newRow("boolean to celsius") << 13 << 0;
    QTest::newRow("dimensionless to undefined") << 15 << 16;
    QTest::newRow("undefined to celsius") << 16 << 0;
    QTest::newRow("outside the table") << 42 << 0;
}

void TestUnit::convertWithoutTableRowIsNan()
{
    QFETCH(int, from);
    QFETCH(int, to);

    QVERIFY(std::isnan(Unit::convert(Unit::UnitId(from), Unit::UnitId(to), 20.0f)));
    QVERIFY(std::isnan(Unit::convert(Unit::UnitId(from), Unit::UnitId(to), 0.0f)));
}

void TestUnit::convertToSameUnitKeepsValue_data()
{
    QTest::addColumn<int>("unit");

    for (int unit = 0; unit <= 16; ++unit) {
        QTest::addRow("unit %d", unit) << unit;
    }
    QTest::newRow("number outside the table") << 99;
    QTest::newRow("negative number") << -1;
}

void TestUnit::convertToSameUnitKeepsValue()
{
    QFETCH(int, unit);

    const Unit::UnitId id = Unit::UnitId(unit);
    QCOMPARE(bitsOf(Unit::convert(id, id, 20.0f)), bitsOf(20.0f));
    QCOMPARE(bitsOf(Unit::convert(id, id, -0.1f)), bitsOf(-0.1f));
    QVERIFY(std::isinf(Unit::convert(id, id, INFINITY)));
}

void TestUnit::helperConverters()
{
    QCOMPARE(Unit::identityConverter_(-12.5f), -12.5f);
    QCOMPARE(Unit::nullConverter_(12.5f), 0.0f);
    QVERIFY(std::isnan(Unit::nanConverter_(12.5f)));

    // nothing in the table converts to zero
    for (auto it = Unit::converters_.cbegin(); it != Unit::converters_.cend(); ++it) {
        QVERIFY(it.value()(1.0f) != 0.0f);
    }
    QCOMPARE(Unit::converters_.size(), 10);
}

void TestUnit::toUnitId_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("expected");

    QTest::newRow("degree Celsius") << (QString(degreeSign) + QLatin1Char('C')) << 0;
    QTest::newRow("degree Fahrenheit") << (QString(degreeSign) + QLatin1Char('F')) << 1;
    QTest::newRow("Kelvin") << QStringLiteral("K") << 2;
    QTest::newRow("% r.F.") << QStringLiteral("% r.F.") << 3;
    QTest::newRow("% r.H.") << QStringLiteral("% r.H.") << 4;
    QTest::newRow("%") << QStringLiteral("%") << 5;
    QTest::newRow("Vol.-%") << QStringLiteral("Vol.-%") << 6;
    QTest::newRow("hPa") << QStringLiteral("hPa") << 7;
    QTest::newRow("mbar") << QStringLiteral("mbar") << 8;
    QTest::newRow("kLUX") << QStringLiteral("kLUX") << 9;
    QTest::newRow("Mluxh") << QStringLiteral("Mluxh") << 10;
    QTest::newRow("W/m squared") << (QStringLiteral("W/m") + superscriptTwo) << 11;
    QTest::newRow("Wh/m squared") << (QStringLiteral("Wh/m") + superscriptTwo) << 12;
    QTest::newRow("BOOL") << QStringLiteral("BOOL") << 13;
    QTest::newRow("V") << QStringLiteral("V") << 14;
    QTest::newRow("empty text") << QStringLiteral("") << 15;
    QTest::newRow("null text") << QString() << 15;

    QTest::newRow("lower-case mluxh") << QStringLiteral("mluxh") << 16;
    QTest::newRow("lower-case degree c") << (QString(degreeSign) + QLatin1Char('c')) << 16;
    QTest::newRow("C without degree sign") << QStringLiteral("C") << 16;
    // the UTF-8 bytes of the degree sign read as Latin-1
    QTest::newRow("mis-decoded degree Celsius") << QString::fromLatin1("\xC2\xB0" "C") << 16;
    QTest::newRow("W/m2 with a plain digit") << QStringLiteral("W/m2") << 16;
    QTest::newRow("bool lower case") << QStringLiteral("bool") << 16;
    QTest::newRow("leading blank") << QStringLiteral(" %") << 16;
    QTest::newRow("a blank") << QStringLiteral(" ") << 16;
    QTest::newRow("unknown word") << QStringLiteral("Pa") << 16;
}

void TestUnit::toUnitId()
{
    QFETCH(QString, text);
    QFETCH(int, expected);

    QCOMPARE(int(Unit::toUnitId(text)), expected);
}

void TestUnit::toString_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("expected");

    QTest::newRow("0") << 0 << (QString(degreeSign) + QLatin1Char('C'));
    QTest::newRow("1") << 1 << (QString(degreeSign) + QLatin1Char('F'));
    QTest::newRow("3") << 3 << QStringLiteral("% r.F.");
    QTest::newRow("6") << 6 << QStringLiteral("Vol.-%");
    QTest::newRow("11") << 11 << (QStringLiteral("W/m") + superscriptTwo);
    QTest::newRow("12") << 12 << (QStringLiteral("Wh/m") + superscriptTwo);
    QTest::newRow("13 shows nothing") << 13 << QString();
    QTest::newRow("14") << 14 << QStringLiteral("V");
    QTest::newRow("15") << 15 << QString();
    QTest::newRow("16") << 16 << QString();
    QTest::newRow("17 outside the table") << 17 << QString();
    QTest::newRow("-1 outside the table") << -1 << QString();
}

void TestUnit::toString()
{
    QFETCH(int, unit);
    QFETCH(QString, expected);

    const QString text = Unit::toString(Unit::UnitId(unit));
    QCOMPARE(text, expected);
    QCOMPARE(text.isEmpty(), expected.isEmpty());
}

void TestUnit::nameIdMappingCoversAllUnits()
{
    const QMap<Unit::UnitId, QString>& mapping = Unit::getNameIdMapping();
    QCOMPARE(mapping.size(), 17);
    QCOMPARE(int(mapping.firstKey()), 0);
    QCOMPARE(int(mapping.lastKey()), 16);
    QCOMPARE(mapping.value(Unit::BOOLEAN), QStringLiteral("BOOL"));
    // the same object on every call
    QCOMPARE(&Unit::getNameIdMapping(), &mapping);

    // every unit with a text of its own is found again by that text
    for (auto it = mapping.cbegin(); it != mapping.cend(); ++it) {
        const Unit::UnitId expected = it.value().isEmpty() ? Unit::DIMENSIONLESS : it.key();
        QCOMPARE(Unit::toUnitId(it.value()), expected);
    }
}

void TestUnit::quantityPredicates_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<bool>("temperature");
    QTest::addColumn<bool>("humidity");
    QTest::addColumn<bool>("light");

    const QList<int> temperatures = {0, 1, 2};
    const QList<int> humidities = {3, 4};
    const QList<int> lights = {9, 10};
    for (int unit = -1; unit <= 17; ++unit) {
        QTest::addRow("unit %d", unit) << unit << temperatures.contains(unit) << humidities.contains(unit)
                                       << lights.contains(unit);
    }
}

void TestUnit::quantityPredicates()
{
    QFETCH(int, unit);
    QFETCH(bool, temperature);
    QFETCH(bool, humidity);
    QFETCH(bool, light);

    QCOMPARE(Unit::isTemperature(Unit::UnitId(unit)), temperature);
    QCOMPARE(Unit::isHumidity(Unit::UnitId(unit)), humidity);
    QCOMPARE(Unit::isLight(Unit::UnitId(unit)), light);
}

void TestUnit::unitValueGetValue_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("target");
    QTest::addColumn<QVariant>("expected");

    QTest::newRow("int 20 C in C is the float 20") << 0 << QVariant(20) << 0 << QVariant(20.0f);
    QTest::newRow("double 100 C in F") << 0 << QVariant(100.0) << 1 << QVariant(212.0f);
    QTest::newRow("text 212 F in C") << 1 << QVariant(QStringLiteral("212")) << 0 << QVariant(floatOf(0x42C80001u));
    QTest::newRow("hPa in mbar") << 7 << QVariant(1000) << 8 << QVariant(1000.0f);
    QTest::newRow("invalid stays invalid") << 0 << QVariant() << 1 << QVariant();
}

void TestUnit::unitValueGetValue()
{
    QFETCH(int, unit);
    QFETCH(QVariant, value);
    QFETCH(int, target);
    QFETCH(QVariant, expected);

    const UnitValue unitValue(Unit::UnitId(unit), value);
    QCOMPARE(unitValue.getValue(), value);
    const QVariant result = unitValue.getValue(Unit::UnitId(target));
    QCOMPARE(result.isValid(), expected.isValid());
    if (expected.isValid()) {
        QCOMPARE(result.userType(), int(QMetaType::Float));
        QCOMPARE(bitsOf(result.toFloat()), bitsOf(expected.toFloat()));
    }
}

void TestUnit::unitValueRelativeValue_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("target");
    QTest::addColumn<quint32>("expectedBits");

    QTest::newRow("10 C interval is 18 F") << 0 << QVariant(10) << 1 << bitsOf(18.0f);
    QTest::newRow("10 K interval is 10 C") << 2 << QVariant(10.0f) << 0 << bitsOf(10.0f);
    QTest::newRow("18 F interval is 10 C") << 1 << QVariant(18) << 0 << bitsOf(10.0f);
    QTest::newRow("2 K interval is 3.6000061 F") << 2 << QVariant(2) << 1 << 0x40666680u;
    QTest::newRow("same unit") << 5 << QVariant(7.5) << 5 << bitsOf(7.5f);
}

void TestUnit::unitValueRelativeValue()
{
    QFETCH(int, unit);
    QFETCH(QVariant, value);
    QFETCH(int, target);
    QFETCH(quint32, expectedBits);

    const QVariant result = UnitValue(Unit::UnitId(unit), value).getRelativeValue(Unit::UnitId(target));
    QCOMPARE(result.userType(), int(QMetaType::Float));
    QCOMPARE(QString::number(bitsOf(result.toFloat()), 16), QString::number(expectedBits, 16));
}

void TestUnit::unitValueDefaultAndTextConstruction()
{
    const UnitValue empty;
    QCOMPARE(empty.getUnit(), Unit::UNDEFINED);
    QVERIFY(!empty.isValid());
    QVERIFY(!empty.getValue(Unit::CELSIUS).isValid());
    QVERIFY(!empty.getRelativeValue(Unit::CELSIUS).isValid());

    const UnitValue celsius(QString(degreeSign) + QLatin1Char('C'), 20);
    QCOMPARE(celsius.getUnit(), Unit::CELSIUS);
    QVERIFY(celsius.isValid());

    QCOMPARE(UnitValue(QStringLiteral("furlong"), 1).getUnit(), Unit::UNDEFINED);
    QCOMPARE(UnitValue(QString(), 1).getUnit(), Unit::DIMENSIONLESS);

    // a valid value of an incompatible unit converts to a valid NaN
    const QVariant nan = UnitValue(Unit::CELSIUS, 20).getValue(Unit::HECTOPASCAL);
    QVERIFY(nan.isValid());
    QVERIFY(std::isnan(nan.toFloat()));

    UnitValue copy = celsius;
    QCOMPARE(copy, celsius);
    copy = empty;
    QCOMPARE(copy, empty);
}

void TestUnit::unitValueComparison_data()
{
    QTest::addColumn<int>("leftUnit");
    QTest::addColumn<QVariant>("leftValue");
    QTest::addColumn<int>("rightUnit");
    QTest::addColumn<QVariant>("rightValue");
    QTest::addColumn<bool>("equal");
    QTest::addColumn<bool>("less");
    QTest::addColumn<bool>("greater");

    QTest::newRow("same unit, same value") << 0 << QVariant(20) << 0 << QVariant(20) << true << false << false;
    QTest::newRow("same value, other unit") << 0 << QVariant(20) << 2 << QVariant(20) << false << false << false;
    // 30 C is warmer than 40 F, but the order looks at the numbers alone
    QTest::newRow("order ignores units") << 0 << QVariant(30) << 1 << QVariant(40) << false << true << false;
    QTest::newRow("greater") << 5 << QVariant(7.5) << 5 << QVariant(7.25) << false << false << true;
    QTest::newRow("both empty") << 16 << QVariant() << 16 << QVariant() << true << false << false;
}

void TestUnit::unitValueComparison()
{
    QFETCH(int, leftUnit);
    QFETCH(QVariant, leftValue);
    QFETCH(int, rightUnit);
    QFETCH(QVariant, rightValue);
    QFETCH(bool, equal);
    QFETCH(bool, less);
    QFETCH(bool, greater);

    const UnitValue left(Unit::UnitId(leftUnit), leftValue);
    const UnitValue right(Unit::UnitId(rightUnit), rightValue);
    QCOMPARE(left == right, equal);
    QCOMPARE(left != right, !equal);
    QCOMPARE(left < right, less);
    QCOMPARE(left > right, greater);
}

QTEST_GUILESS_MAIN(TestUnit)
#include "tst_unit.moc"
