#include "Base/Connection/DatabaseConnection/sqlhelper.h"

#include <QtTest>

namespace sqlhelper = zelmor::base::connection::databaseconnection::sqlhelper;

namespace {

// Runs the reader named by kind, so that one table covers all of them.
QVariant readAs(const QString& kind, const QVariant& value, const QVariant& fallback)
{
    if (kind == QLatin1String("variant"))
        return sqlhelper::readSqlValue(value, fallback);
    if (kind == QLatin1String("string"))
        return sqlhelper::readStringSqlValue(value, fallback.toString());
    if (kind == QLatin1String("int"))
        return sqlhelper::readIntSqlValue(value, fallback.toInt());
    if (kind == QLatin1String("uint"))
        return sqlhelper::readUIntSqlValue(value, fallback.toUInt());
    if (kind == QLatin1String("float"))
        return sqlhelper::readFloatSqlValue(value, fallback.toFloat());
    if (kind == QLatin1String("bool"))
        return sqlhelper::readBoolSqlValue(value, fallback.toBool());
    if (kind == QLatin1String("datetime"))
        return sqlhelper::readDateTimeSqlValue(value, fallback.toDateTime());
    if (kind == QLatin1String("time"))
        return sqlhelper::readTimeSqlValue(value, fallback.toTime());
    qFatal("unknown kind");
    return QVariant();
}

} // namespace

class TestSqlHelper : public QObject
{
    Q_OBJECT

private slots:
    void read_data();
    void read();
};

void TestSqlHelper::read_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("valid"); // isSqlValueValid: NULL and the empty text are one thing
    QTest::addColumn<QVariant>("fallback");
    QTest::addColumn<QVariant>("expected");

    const auto row = [](const char* name, const char* kind, const QVariant& value, bool valid, const QVariant& fallback,
                        const QVariant& expected) {
        QTest::newRow(name) << QString(kind) << value << valid << fallback << expected;
    };
    // NULL as the driver gives it, and no value at all (no row).
    const QVariant null(QVariant::String);
    const QVariant none;
    const QVariant emptyText = QVariant(QString(QLatin1String("")));
    const QVariant text = QStringLiteral("fallback");
    const QDateTime time2000(QDate(2000, 1, 1), QTime(0, 0), Qt::UTC);

    row("variant: NULL", "variant", null, false, text, text);
    row("variant: no value", "variant", none, false, text, text);
    row("int: no value, fallback -1", "int", none, false, -1, -1);
    row("variant: empty text", "variant", emptyText, false, text, text);
    row("variant: blank text", "variant", QStringLiteral(" "), true, text, QStringLiteral(" "));
    row("variant: integer 0", "variant", qlonglong(0), true, text, qlonglong(0));
    row("variant: empty blob is not text", "variant", QByteArray(), true, text, QByteArray());
    row("string: empty text", "string", emptyText, false, text, text);
    row("string: integer", "string", qlonglong(12), true, text, QStringLiteral("12"));
    row("int: empty text, fallback -1", "int", emptyText, false, -1, -1);
    // a value that doesn't convert gives the conversion's zero, not the fallback
    row("int: text abc is 0", "int", QStringLiteral("abc"), true, -1, 0);
    row("int: text 17", "int", QStringLiteral("17"), true, -1, 17);
    row("uint: NULL", "uint", null, false, 5u, 5u);
    row("uint: above the int range", "uint", qlonglong(4000000000LL), true, 5u, 4000000000u);
    row("float: NULL", "float", null, false, 1.5f, 1.5f);
    row("float: text", "float", QStringLiteral("-0.5"), true, 1.5f, -0.5f);
    row("bool: empty text, fallback true", "bool", emptyText, false, true, true);
    row("bool: integer 0", "bool", qlonglong(0), true, true, false);
    row("datetime: empty text", "datetime", emptyText, false, time2000, time2000);
    row("datetime: ISO text in UTC", "datetime", QStringLiteral("2024-03-01T10:20:30.123Z"), true, time2000,
        QDateTime(QDate(2024, 3, 1), QTime(10, 20, 30, 123), Qt::UTC));
    row("datetime: garbage is invalid", "datetime", QStringLiteral("garbage"), true, time2000, QDateTime());
    row("time: NULL", "time", null, false, QTime(1, 2, 3), QTime(1, 2, 3));
    row("time: text", "time", QStringLiteral("12:34:56"), true, QTime(1, 2, 3), QTime(12, 34, 56));
}

void TestSqlHelper::read()
{
    QFETCH(QString, kind);
    QFETCH(QVariant, value);
    QFETCH(QVariant, fallback);
    QFETCH(QVariant, expected);

    QTEST(sqlhelper::isSqlValueValid(value), "valid");
    const QVariant actual = readAs(kind, value, fallback);
    QCOMPARE(actual.userType(), expected.userType());
    QCOMPARE(actual, expected);
}

QTEST_GUILESS_MAIN(TestSqlHelper)
#include "tst_sqlhelper.moc"
