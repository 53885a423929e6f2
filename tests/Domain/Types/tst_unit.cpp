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

const quint32 nanBits = 0x7FC00000u;
const QString celsiusText = QString(QChar(0x00B0)) + QLatin1Char('C');

// Exact single-precision comparison; a NaN expectation accepts any NaN.
void compareBits(float actual, quint32 expectedBits)
{
    if (expectedBits == nanBits) {
        QVERIFY2(std::isnan(actual), qPrintable(QString::number(actual)));
    } else {
        QCOMPARE(QString::number(bitsOf(actual), 16), QString::number(expectedBits, 16));
    }
}

} // namespace

class TestUnit : public QObject
{
    Q_OBJECT

private slots:
    void convert_data();
    void convert();
    void toUnitId_data();
    void toUnitId();
    void texts_data();
    void texts();
    void namesAndQuantities();
    void unitValueConversion_data();
    void unitValueConversion();
    void unitValueConstructionAndComparison();
};

void TestUnit::convert_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<float>("value");
    QTest::addColumn<quint32>("expectedBits");

    // Worked out step by step in single precision, 5/9 as 0x3F0E38E4.
    // 1.8f * 20.5f rounds down; in double the result would be 0x4289CCCD
    QTest::newRow("C->F 20.5 is 68.899994") << 0 << 1 << 20.5f << 0x4289CCCCu;
    QTest::newRow("C->K 0 is 273.15f") << 0 << 2 << 0.0f << 0x43889333u;
    // 180 * 0x3F0E38E4 lands one ulp above 100
    QTest::newRow("F->C 212 is 100 plus one ulp") << 1 << 0 << 212.0f << 0x42C80001u;
    // with the exact 5/9 the result would be 0x43889333
    QTest::newRow("F->K 32 is 273.15002") << 1 << 2 << 32.0f << 0x43889334u;
    QTest::newRow("K->F 0 is -459.67") << 2 << 1 << 0.0f << 0xC3E5D5C3u;
    QTest::newRow("K->C 0 is -273.15") << 2 << 0 << 0.0f << 0xC3889333u;
    // 300 - 273.149994 rounds to 26.850006
    QTest::newRow("K->C 300 is 26.850006") << 2 << 0 << 300.0f << 0x41D6CCD0u;
    QTest::newRow("hPa->mbar") << 7 << 8 << 1013.25f << 0x447D5000u;
    QTest::newRow("mbar->hPa") << 8 << 7 << 1013.25f << 0x447D5000u;
    QTest::newRow("% r.F. -> % r.H.") << 3 << 4 << 55.5f << 0x425E0000u;
    QTest::newRow("% r.H. -> % r.F.") << 4 << 3 << 55.5f << 0x425E0000u;
    // same unit: untouched, even without any table row
    QTest::newRow("% to %") << 5 << 5 << 20.0f << bitsOf(20.0f);
    QTest::newRow("number outside the table to itself") << 99 << 99 << -0.1f << bitsOf(-0.1f);
    // no row: NaN
    QTest::newRow("temperature to pressure") << 0 << 7 << 20.0f << nanBits;
    QTest::newRow("% to Vol.-%") << 5 << 6 << 20.0f << nanBits;
    QTest::newRow("% r.F. to %") << 3 << 5 << 20.0f << nanBits;
    QTest::newRow("kLUX to Mluxh") << 9 << 10 << 20.0f << nanBits;
    QTest::newRow("undefined to celsius") << 16 << 0 << 20.0f << nanBits;
}

void TestUnit::convert()
{
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(float, value);
    QFETCH(quint32, expectedBits);

    compareBits(Unit::convert(Unit::UnitId(from), Unit::UnitId(to), value), expectedBits);
}

void TestUnit::toUnitId_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("expected");

    QTest::newRow("degree Celsius") << celsiusText << 0;
    QTest::newRow("W/m squared") << (QStringLiteral("W/m") + QChar(0x00B2)) << 11;
    QTest::newRow("BOOL") << QStringLiteral("BOOL") << 13;
    QTest::newRow("empty text") << QStringLiteral("") << 15;
    QTest::newRow("null text") << QString() << 15;
    QTest::newRow("lower-case mluxh") << QStringLiteral("mluxh") << 16;
    // the UTF-8 bytes of the degree sign read as Latin-1
    QTest::newRow("mis-decoded degree Celsius") << QString::fromLatin1("\xC2\xB0"
                                                                       "C")
                                                << 16;
}

void TestUnit::toUnitId()
{
    QFETCH(QString, text);
    QFETCH(int, expected);

    QCOMPARE(int(Unit::toUnitId(text)), expected);
    QCOMPARE(int(UnitValue(text, 1).getUnit()), expected);
}

void TestUnit::texts_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("text");  // as the catalogue spells it
    QTest::addColumn<QString>("shown"); // toString()
    QTest::addColumn<int>("foundAs");   // toUnitId(text)

    const QString degree(QChar(0x00B0));
    const QString squared(QChar(0x00B2));
    const auto row = [](int unit, const QString& text, const QString& shown, int foundAs) {
        QTest::newRow(qPrintable(QStringLiteral("%1 \"%2\"").arg(unit).arg(text))) << unit << text << shown << foundAs;
    };
    row(0, degree + "C", degree + "C", 0);
    row(1, degree + "F", degree + "F", 1);
    row(2, "K", "K", 2);
    row(3, "% r.F.", "% r.F.", 3);
    row(4, "% r.H.", "% r.H.", 4);
    row(5, "%", "%", 5);
    row(6, "Vol.-%", "Vol.-%", 6);
    row(7, "hPa", "hPa", 7);
    row(8, "mbar", "mbar", 8);
    row(9, "kLUX", "kLUX", 9);
    row(10, "Mluxh", "Mluxh", 10);
    row(11, "W/m" + squared, "W/m" + squared, 11);
    row(12, "Wh/m" + squared, "Wh/m" + squared, 12);
    // The catalogue's text of the boolean unit is shown as nothing.
    row(13, "BOOL", "", 13);
    row(14, "V", "V", 14);
    // Both have the empty text, which finds the first.
    row(15, "", "", 15);
    row(16, "", "", 15);
}

void TestUnit::texts()
{
    QFETCH(int, unit);
    QFETCH(QString, text);
    QFETCH(QString, shown);
    QFETCH(int, foundAs);

    QCOMPARE(Unit::toString(Unit::UnitId(unit)), shown);
    QCOMPARE(int(Unit::toUnitId(text)), foundAs);
}

void TestUnit::namesAndQuantities()
{
    QCOMPARE(Unit::toString(Unit::CELSIUS), celsiusText);
    QCOMPARE(Unit::toString(Unit::UnitId(12)), QStringLiteral("Wh/m") + QChar(0x00B2));
    // the boolean unit has a catalogue name but shows nothing; numbers outside the table neither
    QVERIFY(Unit::toString(Unit::UnitId(13)).isEmpty() && Unit::toString(Unit::UnitId(17)).isEmpty());

    QVERIFY(Unit::isTemperature(Unit::KELVIN) && !Unit::isTemperature(Unit::RELATIVE_HUMIDITY_RF));
    QVERIFY(Unit::isHumidity(Unit::RELATIVE_HUMIDITY_RH) && !Unit::isHumidity(Unit::PERCENT));
    QVERIFY(Unit::isLight(Unit::MEGALUX_HOURS) && !Unit::isLight(Unit::WATT_PER_SQUARE_METRE));
}

void TestUnit::unitValueConversion_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("target");
    QTest::addColumn<bool>("relative");
    QTest::addColumn<QVariant>("expectedBits"); // invalid: the result is invalid

    const QVariant invalid;
    QTest::newRow("int 20 C in C is the float 20") << 0 << QVariant(20) << 0 << false << QVariant(bitsOf(20.0f));
    QTest::newRow("text 212 F in C") << 1 << QVariant(QStringLiteral("212")) << 0 << false << QVariant(0x42C80001u);
    QTest::newRow("C in hPa is a valid NaN") << 0 << QVariant(20) << 7 << false << QVariant(nanBits);
    QTest::newRow("invalid stays invalid") << 0 << invalid << 1 << false << invalid;
    QTest::newRow("10 C interval is 18 F") << 0 << QVariant(10) << 1 << true << QVariant(bitsOf(18.0f));
    QTest::newRow("2 K interval is 3.6000061 F") << 2 << QVariant(2) << 1 << true << QVariant(0x40666680u);
    QTest::newRow("invalid interval stays invalid") << 0 << invalid << 1 << true << invalid;
}

void TestUnit::unitValueConversion()
{
    QFETCH(int, unit);
    QFETCH(QVariant, value);
    QFETCH(int, target);
    QFETCH(bool, relative);
    QFETCH(QVariant, expectedBits);

    const UnitValue unitValue(Unit::UnitId(unit), value);
    QCOMPARE(unitValue.getValue(), value);
    const QVariant result =
        relative ? unitValue.getRelativeValue(Unit::UnitId(target)) : unitValue.getValue(Unit::UnitId(target));
    QCOMPARE(result.isValid(), expectedBits.isValid());
    if (expectedBits.isValid()) {
        QCOMPARE(result.userType(), int(QMetaType::Float));
        compareBits(result.toFloat(), expectedBits.toUInt());
    }
}

void TestUnit::unitValueConstructionAndComparison()
{
    QVERIFY(!UnitValue().isValid());
    QCOMPARE(UnitValue().getUnit(), Unit::UNDEFINED);
    QVERIFY(UnitValue(QStringLiteral("furlong"), 1).isValid());

    QVERIFY(UnitValue(Unit::CELSIUS, 20) != UnitValue(Unit::KELVIN, 20));
    // 30 C is warmer than 40 F, but the order looks at the numbers alone
    QVERIFY(UnitValue(Unit::CELSIUS, 30) < UnitValue(Unit::FAHRENHEIT, 40));
    QVERIFY(!(UnitValue(Unit::CELSIUS, 30) > UnitValue(Unit::FAHRENHEIT, 40)));
    QVERIFY(UnitValue(Unit::PERCENT, 7.5) > UnitValue(Unit::PERCENT, 7.25));
    QVERIFY(!(UnitValue(Unit::PERCENT, 7.5) < UnitValue(Unit::PERCENT, 7.5)));
}

QTEST_GUILESS_MAIN(TestUnit)
#include "tst_unit.moc"
