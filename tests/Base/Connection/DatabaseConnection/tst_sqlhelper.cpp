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

const QVariant null;
const QVariant emptyText = QVariant(QString(QLatin1String("")));

} // namespace

class TestSqlHelper : public QObject
{
    Q_OBJECT

private slots:
    void isSqlValueValid_data();
    void isSqlValueValid();
    void read_data();
    void read();
};

void TestSqlHelper::isSqlValueValid_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("valid");

    // What the driver gives for the storage classes, and the odd ones out.
    QTest::newRow("NULL") << null << false;
    QTest::newRow("empty text") << emptyText << false;
    QTest::newRow("null text") << QVariant(QString()) << false;
    QTest::newRow("blank text") << QVariant(QStringLiteral(" ")) << true;
    QTest::newRow("text 0") << QVariant(QStringLiteral("0")) << true;
    QTest::newRow("integer 0") << QVariant(qlonglong(0)) << true;
    QTest::newRow("real 0") << QVariant(0.0) << true;
    QTest::newRow("empty blob is not text") << QVariant(QByteArray()) << true;
    QTest::newRow("bool false") << QVariant(false) << true;
}

void TestSqlHelper::isSqlValueValid()
{
    QFETCH(QVariant, value);
    QFETCH(bool, valid);
    QCOMPARE(sqlhelper::isSqlValueValid(value), valid);
}

void TestSqlHelper::read_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("fallback");
    QTest::addColumn<QVariant>("expected");

    const QVariant fallbackText = QStringLiteral("fallback");
    QTest::newRow("variant: NULL gives the fallback") << "variant" << null << fallbackText << fallbackText;
    QTest::newRow("variant: empty text gives the fallback") << "variant" << emptyText << fallbackText << fallbackText;
    QTest::newRow("variant: integer 0 is a value") << "variant" << QVariant(qlonglong(0)) << fallbackText
                                                   << QVariant(qlonglong(0));

    QTest::newRow("string: NULL") << "string" << null << fallbackText << fallbackText;
    QTest::newRow("string: empty text") << "string" << emptyText << fallbackText << fallbackText;
    QTest::newRow("string: integer") << "string" << QVariant(qlonglong(12)) << fallbackText
                                     << QVariant(QStringLiteral("12"));

    QTest::newRow("int: empty text, fallback -1") << "int" << emptyText << QVariant(-1) << QVariant(-1);
    QTest::newRow("int: NULL, fallback 7") << "int" << null << QVariant(7) << QVariant(7);
    QTest::newRow("int: text abc is 0, not the fallback") << "int" << QVariant(QStringLiteral("abc")) << QVariant(-1)
                                                          << QVariant(0);
    QTest::newRow("int: text 17") << "int" << QVariant(QStringLiteral("17")) << QVariant(-1) << QVariant(17);
    QTest::newRow("int: integer storage") << "int" << QVariant(qlonglong(-42)) << QVariant(-1) << QVariant(-42);

    QTest::newRow("uint: empty text") << "uint" << emptyText << QVariant(5u) << QVariant(5u);
    QTest::newRow("uint: text abc") << "uint" << QVariant(QStringLiteral("abc")) << QVariant(5u) << QVariant(0u);
    QTest::newRow("uint: above the int range") << "uint" << QVariant(qlonglong(4000000000LL)) << QVariant(5u)
                                               << QVariant(4000000000u);

    QTest::newRow("float: NULL") << "float" << null << QVariant(1.5f) << QVariant(1.5f);
    QTest::newRow("float: real storage") << "float" << QVariant(2.25) << QVariant(1.5f) << QVariant(2.25f);
    QTest::newRow("float: text") << "float" << QVariant(QStringLiteral("-0.5")) << QVariant(1.5f) << QVariant(-0.5f);
    QTest::newRow("float: text x is 0") << "float" << QVariant(QStringLiteral("x")) << QVariant(1.5f)
                                        << QVariant(0.0f);

    QTest::newRow("bool: NULL, fallback false") << "bool" << null << QVariant(false) << QVariant(false);
    QTest::newRow("bool: NULL, fallback true") << "bool" << null << QVariant(true) << QVariant(true);
    QTest::newRow("bool: empty text, fallback true") << "bool" << emptyText << QVariant(true) << QVariant(true);
    QTest::newRow("bool: integer 0") << "bool" << QVariant(qlonglong(0)) << QVariant(true) << QVariant(false);
    QTest::newRow("bool: integer 1") << "bool" << QVariant(qlonglong(1)) << QVariant(false) << QVariant(true);

    const QDateTime fallbackTime(QDate(2000, 1, 1), QTime(0, 0), Qt::UTC);
    QTest::newRow("datetime: empty text") << "datetime" << emptyText << QVariant(fallbackTime)
                                          << QVariant(fallbackTime);
    QTest::newRow("datetime: ISO text in UTC")
        << "datetime" << QVariant(QStringLiteral("2024-03-01T10:20:30.123Z")) << QVariant(fallbackTime)
        << QVariant(QDateTime(QDate(2024, 3, 1), QTime(10, 20, 30, 123), Qt::UTC));
    QTest::newRow("datetime: garbage is invalid, not the fallback")
        << "datetime" << QVariant(QStringLiteral("garbage")) << QVariant(fallbackTime) << QVariant(QDateTime());

    QTest::newRow("time: NULL") << "time" << null << QVariant(QTime(1, 2, 3)) << QVariant(QTime(1, 2, 3));
    QTest::newRow("time: text") << "time" << QVariant(QStringLiteral("12:34:56")) << QVariant(QTime(1, 2, 3))
                                << QVariant(QTime(12, 34, 56));
    QTest::newRow("time: garbage is invalid") << "time" << QVariant(QStringLiteral("xx")) << QVariant(QTime(1, 2, 3))
                                              << QVariant(QTime());
}

void TestSqlHelper::read()
{
    QFETCH(QString, kind);
    QFETCH(QVariant, value);
    QFETCH(QVariant, fallback);
    QFETCH(QVariant, expected);

    const QVariant actual = readAs(kind, value, fallback);
    QCOMPARE(actual.userType(), expected.userType());
    QCOMPARE(actual, expected);
}

QTEST_GUILESS_MAIN(TestSqlHelper)
#include "tst_sqlhelper.moc"
