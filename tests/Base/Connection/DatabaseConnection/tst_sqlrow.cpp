#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Base/Connection/DatabaseConnection/sqlvalue.h"
#include "support/TestDatabase.h"

#include <QtTest>

#include <ctime>

using zelmor::base::connection::databaseconnection::SqliteConnection;
using zelmor::base::connection::databaseconnection::SqlQuery;
using zelmor::base::connection::databaseconnection::SqlRow;
using zelmor::testsupport::TestDatabase;

namespace sqlvalue = zelmor::base::connection::databaseconnection::sqlvalue;

namespace {

const QString projectKey = QLatin1String(TestDatabase::projectKey_);

// Winter (UTC+1) and summer (UTC+2) in the zone the test runs in; made after
// main has set the zone.
QDateTime winter()
{
    return QDateTime(QDate(2024, 3, 1), QTime(10, 0, 0, 250), Qt::LocalTime);
}

QDateTime summer()
{
    return QDateTime(QDate(2024, 7, 1), QTime(10, 0), Qt::LocalTime);
}

} // namespace

// The writing and reading conventions of the stores against a real encrypted
// file: what sqlvalue writes is checked with the sqlcipher shell, what the shell
// wrote is read through SqlRow.
class TestSqlRow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void write_data();
    void write();
    void read_data();
    void read();

private:
    TestDatabase files;
};

void TestSqlRow::initTestCase()
{
    QVERIFY(files.isValid());
    QLoggingCategory::setFilterRules(QStringLiteral("zelmor.*.info=false"));
    // The times below are only meaningful away from UTC.
    QCOMPARE(winter().offsetFromUtc(), 3600);
    QCOMPARE(summer().offsetFromUtc(), 7200);
}

void TestSqlRow::write_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("stored"); // typeof and value as the shell prints them

    QTest::newRow("empty text") << sqlvalue::text(QString()) << "null|";
    QTest::newRow("text") << sqlvalue::text("Lab 2") << "text|Lab 2";
    QTest::newRow("blank text is a text") << sqlvalue::text(" ") << "text| ";
    QTest::newRow("empty bytes") << sqlvalue::bytes(QByteArray()) << "null|";
    QTest::newRow("bytes") << sqlvalue::bytes("\x01\x02") << "blob|0102";
    QTest::newRow("invalid time") << sqlvalue::utcTime(QDateTime()) << "null|";
    QTest::newRow("winter time in UTC") << sqlvalue::utcTime(winter()) << "text|2024-03-01T09:00:00.250Z";
    QTest::newRow("summer time in UTC") << sqlvalue::utcTime(summer()) << "text|2024-07-01T08:00:00.000Z";
    QTest::newRow("id 0") << sqlvalue::orNull(0, 0) << "null|";
    QTest::newRow("id 7") << sqlvalue::orNull(7, 0) << "integer|7";
    QTest::newRow("number -1") << sqlvalue::orNull(-1, -1) << "null|";
    QTest::newRow("number 0 with -1 for none") << sqlvalue::orNull(0, -1) << "integer|0";
    QTest::newRow("unsigned 0") << sqlvalue::orNull(0u, 0u) << "null|";
    QTest::newRow("double NULL") << sqlvalue::null<double>() << "null|";
}

void TestSqlRow::write()
{
    QFETCH(QVariant, value);
    QFETCH(QString, stored);

    // Typed: the NULL keeps its type, as the driver's binding wants it.
    QCOMPARE(value.isValid(), true);
    QCOMPARE(value.isNull(), stored.startsWith(QLatin1String("null")));

    static int count = 0;
    const QString path =
        files.createEncrypted(QStringLiteral("write%1.db").arg(++count), QStringLiteral("CREATE TABLE t (v);"));
    QVERIFY2(!path.isEmpty(), qPrintable(files.lastError()));
    {
        SqliteConnection connection(QStringLiteral("tst_sqlrow_write_%1").arg(count));
        QVERIFY(connection.openDatabase(path, QString(), QString(), projectKey));
        SqlQuery insert;
        insert.insertTableColumnValuePairs(QStringLiteral("t"), {{QStringLiteral("v"), value}});
        QVERIFY(connection.execute(insert).success);
        connection.closeDatabase();
    }
    const TestDatabase::ShellResult result = TestDatabase::runSqlcipher(
        path, projectKey,
        QStringLiteral("SELECT typeof(v) || '|' || CASE typeof(v) WHEN 'blob' THEN hex(v) ELSE ifnull(v, '') END "
                       "FROM t;"));
    QVERIFY2(result.ok, qPrintable(result.errorOutput));
    QCOMPARE(result.output, stored + QLatin1Char('\n'));
}

void TestSqlRow::read_data()
{
    QTest::addColumn<QString>("literal"); // as another tool writes it
    QTest::addColumn<QString>("read");    // what SqlRow gives, as text

    // The position read is 0; a NULL and an empty text give the fallbacks.
    QTest::newRow("NULL as text") << "NULL"
                                  << "fallback";
    QTest::newRow("empty text as text") << "''"
                                        << "fallback";
    QTest::newRow("NULL as int") << "NULL"
                                 << "int -1";
    QTest::newRow("text abc as int") << "'abc'"
                                     << "int 0";
    QTest::newRow("NULL as long long") << "NULL"
                                       << "long long -1";
    QTest::newRow("large number as long long") << "5000000000"
                                               << "long long 5000000000";
    QTest::newRow("NULL as double") << "NULL"
                                    << "double -1";
    QTest::newRow("real as double") << "0.1"
                                    << "double 0.1";
    QTest::newRow("NULL as bool") << "NULL"
                                  << "bool true";
    QTest::newRow("0 as bool") << "0"
                               << "bool false";
    QTest::newRow("NULL as bytes") << "NULL"
                                   << "bytes ";
    QTest::newRow("NULL as time of day") << "NULL"
                                         << "time 23:59:00.000";
    QTest::newRow("time of day") << "'02:30:00.000'"
                                 << "time 02:30:00.000";
    QTest::newRow("NULL as time") << "NULL"
                                  << "local invalid";
    QTest::newRow("time in UTC") << "'2024-03-01T09:00:00.250Z'"
                                 << "local 2024-03-01T10:00:00.250";
    QTest::newRow("summer time in UTC") << "'2024-07-01T08:00:00.000Z'"
                                        << "local 2024-07-01T10:00:00.000";
    QTest::newRow("time with an offset") << "'2024-03-01T12:00:00+03:00'"
                                         << "local 2024-03-01T10:00:00.000";
    // SQLite's own datetime() writes UTC without a mark.
    QTest::newRow("time without an offset") << "'2024-03-01 09:00:00'"
                                            << "local 2024-03-01T10:00:00.000";
    // The driver's own form, read without the general parser, gives what the parser gives.
    QTest::newRow("a day that doesn't exist") << "'2024-02-30T09:00:00.000Z'"
                                              << "local invalid";
    QTest::newRow("the end of a day as 24:00") << "'2024-03-01T24:00:00.000Z'"
                                               << "local 2024-03-02T01:00:00.000";
    QTest::newRow("time in UTC, kept in UTC") << "'2024-07-01T08:00:00.250Z'"
                                              << "utc 2024-07-01T08:00:00.250Z";
    QTest::newRow("time with an offset, in UTC") << "'2024-03-01T12:00:00+03:00'"
                                                 << "utc 2024-03-01T09:00:00.000Z";
    QTest::newRow("NULL in UTC") << "NULL"
                                 << "utc invalid";
    QTest::newRow("past the row's end") << "1"
                                        << "beyond -1";
}

void TestSqlRow::read()
{
    QFETCH(QString, literal);
    QFETCH(QString, read);

    static int count = 0;
    const QString path =
        files.createEncrypted(QStringLiteral("read%1.db").arg(++count),
                              QStringLiteral("CREATE TABLE t (v); INSERT INTO t VALUES (%1);").arg(literal));
    QVERIFY2(!path.isEmpty(), qPrintable(files.lastError()));
    SqliteConnection connection(QStringLiteral("tst_sqlrow_read_%1").arg(count));
    QVERIFY(connection.openDatabase(path, QString(), QString(), projectKey));
    SqlQuery select;
    select.selectColumn(QStringLiteral("v")).fromTable(QStringLiteral("t"));
    const SqlRow row(connection.fetchSingleRow(select));
    QCOMPARE(row.width(), 1);

    const QString kind = read.section(QLatin1Char(' '), 0, 0);
    QString got;
    if (kind == QLatin1String("fallback")) {
        got = row.toString(0, QStringLiteral("fallback"));
    } else if (kind == QLatin1String("int")) {
        got = QStringLiteral("int %1").arg(row.toInt(0, -1));
    } else if (kind == QLatin1String("long")) {
        got = QStringLiteral("long long %1").arg(row.toLongLong(0, -1));
    } else if (kind == QLatin1String("double")) {
        got = QStringLiteral("double %1").arg(row.toDouble(0, -1));
    } else if (kind == QLatin1String("bool")) {
        got = QStringLiteral("bool %1").arg(row.toBool(0, true) ? "true" : "false");
    } else if (kind == QLatin1String("bytes")) {
        got = QStringLiteral("bytes ") + QString::fromLatin1(row.toByteArray(0).toHex());
    } else if (kind == QLatin1String("time")) {
        got = QStringLiteral("time ") + row.toTime(0, QTime(23, 59)).toString(Qt::ISODateWithMs);
    } else if (kind == QLatin1String("local")) {
        const QDateTime time = row.toLocalTime(0);
        QVERIFY(!time.isValid() || time.timeSpec() == Qt::LocalTime);
        got = QStringLiteral("local ")
              + (time.isValid() ? time.toString(QStringLiteral("yyyy-MM-ddThh:mm:ss.zzz")) : QStringLiteral("invalid"));
    } else if (kind == QLatin1String("utc")) {
        const QDateTime time = row.toUtcTime(0);
        QVERIFY(!time.isValid() || time.timeSpec() == Qt::UTC);
        got = QStringLiteral("utc ") + (time.isValid() ? time.toString(Qt::ISODateWithMs) : QStringLiteral("invalid"));
    } else if (kind == QLatin1String("beyond")) {
        QVERIFY(row.isNull(1));
        got = QStringLiteral("beyond %1").arg(row.toInt(1, -1));
    }
    QCOMPARE(got, read);
}

int main(int argc, char** argv)
{
    // Local time is Berlin's, so that UTC and local time differ.
    qputenv("TZ", "Europe/Berlin");
    tzset();
    QCoreApplication application(argc, argv);
    TestSqlRow test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_sqlrow.moc"
