#include "SqlCipherDriver/SqlCipherDriver.h"

#include "support/TestDatabase.h"
#include "support/TestPaths.h"

#include <QFileInfo>
#include <QPoint>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QtTest>

#include <limits>
#include <memory>

#include <time.h>

using zelmor::sqldriver::SqlCipherDriver;
using zelmor::testsupport::TestDatabase;

namespace {

const QString projectKey = QLatin1String(TestDatabase::projectKey_);
const QString otherKey = QStringLiteral("99887766554433221100ffeeddccbbaa");

// Three rows in t, a child table with a foreign key, nothing else.
const QString seedSql =
    QStringLiteral("CREATE TABLE t(id INTEGER PRIMARY KEY, name TEXT NOT NULL, amount REAL DEFAULT 0.5, data BLOB);"
                   "INSERT INTO t(id, name) VALUES (1, 'one'), (2, 'two'), (3, 'three');"
                   "CREATE TABLE c(id INTEGER PRIMARY KEY, t_id INTEGER REFERENCES t(id));");

// Type and value: QVariant's operator== converts between types.
QString describe(const QVariant& value)
{
    const QString text =
        value.type() == QVariant::ByteArray ? QString::fromLatin1(value.toByteArray().toHex()) : value.toString();
    return QStringLiteral("%1(%2)%3")
        .arg(QString::fromLatin1(value.typeName()), text, value.isNull() ? QStringLiteral(" null") : QString());
}

// What another process sees in the file, or the shell's complaint.
QString shell(const QString& path, const QString& sql, const QString& key = projectKey)
{
    const TestDatabase::ShellResult result = TestDatabase::runSqlcipher(path, key, sql);
    return result.ok ? result.output : QStringLiteral("shell failed: ") + result.errorOutput;
}

// Prepares text, binds values in order and runs it; prints the error when that fails.
bool run(QSqlQuery& query, const QString& text, const QVariantList& values = {})
{
    bool ok = query.prepare(text);
    for (const QVariant& value : values)
        query.addBindValue(value);
    ok = ok && query.exec();
    if (!ok)
        qWarning() << text << query.lastError().text();
    return ok;
}

QStringList firstColumn(QSqlQuery& query)
{
    QStringList values;
    while (query.next())
        values << query.value(0).toString();
    return values;
}

// Names and types of a record's fields.
QString fields(const QSqlRecord& record)
{
    QStringList items;
    for (int i = 0; i < record.count(); ++i)
        items << record.fieldName(i) + QLatin1Char(':') + QLatin1String(QVariant::typeToName(record.field(i).type()));
    return items.join(QLatin1Char(' '));
}

} // namespace

class tst_SqlCipherDriver : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void bindsAndReadsBack_data();
    void bindsAndReadsBack();

    void readsNullsAsQtsSqliteDriver_data();
    void readsNullsAsQtsSqliteDriver();

    void unreadableFiles_data();
    void unreadableFiles();

    void rowsAffectedAndLastInsertId_data();
    void rowsAffectedAndLastInsertId();
    void transactionEnds_data();
    void transactionEnds();
    void reportsEngineErrors_data();
    void reportsEngineErrors();
    void tablesAndColumns();

    void sameTextInTwoLiveQueries();
    void bindsByPositionAndByName();
    void closeWithLiveQueries();
    void rekeysAndVacuums();
    void loadsThroughPluginPath();

private:
    // Opens a new connection and, unless key is null, runs "PRAGMA key".
    QSqlDatabase open(const QString& path, const QString& key = projectKey);
    QString seeded(const QString& sql = seedSql);

    std::unique_ptr<TestDatabase> files_;
    QStringList connections_;
};

void tst_SqlCipherDriver::initTestCase()
{
    QVERIFY(SqlCipherDriver::registerDriver());
    QVERIFY(SqlCipherDriver::registerDriver());
    QCOMPARE(QSqlDatabase::drivers().count(QStringLiteral("QSQLCIPHER")), 1);
    // Local times below are in a zone with summer time, whatever the machine's.
    qputenv("TZ", "Europe/Berlin");
    tzset();
}

void tst_SqlCipherDriver::init()
{
    files_ = std::make_unique<TestDatabase>();
    QVERIFY(files_->isValid());
}

void tst_SqlCipherDriver::cleanup()
{
    for (const QString& name : qAsConst(connections_)) {
        QSqlDatabase::database(name, false).close();
        QSqlDatabase::removeDatabase(name);
    }
    connections_.clear();
    files_.reset();
}

QSqlDatabase tst_SqlCipherDriver::open(const QString& path, const QString& key)
{
    static int counter = 0;
    const QString name = QStringLiteral("tst%1").arg(++counter);
    connections_ << name;
    QSqlDatabase db = QSqlDatabase::addDatabase(QLatin1String(SqlCipherDriver::driverName_), name);
    db.setDatabaseName(path);
    if (db.open() && !key.isNull()) {
        QSqlQuery query(db);
        if (!query.exec(QStringLiteral("PRAGMA key = '%1';").arg(key)))
            qWarning() << "PRAGMA key failed:" << query.lastError().text();
    }
    return db;
}

QString tst_SqlCipherDriver::seeded(const QString& sql)
{
    const QString path = files_->createEncrypted(QStringLiteral("seed.sqlite3"), sql);
    if (path.isEmpty())
        qWarning() << "sqlcipher shell failed:" << files_->lastError();
    return path;
}

void tst_SqlCipherDriver::bindsAndReadsBack_data()
{
    QTest::addColumn<QVariant>("bound");
    QTest::addColumn<QString>("storedAs"); // typeof() and quote() by the shell
    QTest::addColumn<QVariant>("readBack");
    const auto row = [](const QString& name, const QVariant& bound, const char* storedAs, const QVariant& readBack) {
        QTest::newRow(qPrintable(name)) << bound << QString::fromUtf8(storedAs) << readBack;
    };

    for (QVariant::Type type :
         {QVariant::Int, QVariant::String, QVariant::ByteArray, QVariant::DateTime, QVariant::Invalid})
        row(QStringLiteral("null %1").arg(QVariant::typeToName(type)), QVariant(type), "null|NULL",
            QVariant(QVariant::String));
    row("true", true, "integer|1", qlonglong(1));
    row("int min", std::numeric_limits<int>::min(), "integer|-2147483648", qlonglong(-2147483648LL));
    row("uint max", std::numeric_limits<uint>::max(), "integer|4294967295", qlonglong(4294967295LL));
    row("qlonglong min", std::numeric_limits<qlonglong>::min(), "integer|-9223372036854775808",
        std::numeric_limits<qlonglong>::min());
    // Above the signed range the bits are kept: toULongLong() gives the value back.
    row("qulonglong max", std::numeric_limits<qulonglong>::max(), "integer|-1", qlonglong(-1));
    row("double max", std::numeric_limits<double>::max(), "real|1.79769313486231562234e+308",
        std::numeric_limits<double>::max());
    row("float", 0.5f, "real|0.5", 0.5);
    const QString text = QString::fromUtf8("it's Grüße ✓ 温度 😀");
    row("text", text, "text|'it''s Grüße ✓ 温度 😀'", text);
    const QByteArray zeros("\x00\x01\x00\xff", 4);
    row("blob with zero bytes", zeros, "blob|X'000100FF'", zeros);
    row("empty blob", QByteArray(""), "blob|X''", QByteArray(""));
    // Read back as text that toDateTime() turns into the same instant, in UTC.
    row("date time utc", QDateTime(QDate(2024, 2, 29), QTime(23, 59, 58, 123), Qt::UTC),
        "text|'2024-02-29T23:59:58.123Z'", QStringLiteral("2024-02-29T23:59:58.123Z"));
    // Europe/Berlin: UTC+2 in summer.
    row("local summer", QDateTime(QDate(2024, 7, 1), QTime(0, 30), Qt::LocalTime), "text|'2024-06-30T22:30:00.000Z'",
        QStringLiteral("2024-06-30T22:30:00.000Z"));
    row("offset, the day before in UTC", QDateTime(QDate(2024, 1, 1), QTime(1, 2, 3, 4), Qt::OffsetFromUTC, 5400),
        "text|'2023-12-31T23:32:03.004Z'", QStringLiteral("2023-12-31T23:32:03.004Z"));
    row("year of three digits", QDateTime(QDate(987, 6, 5), QTime(4, 3, 2, 10), Qt::UTC),
        "text|'0987-06-05T04:03:02.010Z'", QStringLiteral("0987-06-05T04:03:02.010Z"));
}

void tst_SqlCipherDriver::bindsAndReadsBack()
{
    QFETCH(QVariant, bound);
    QFETCH(QString, storedAs);
    QFETCH(QVariant, readBack);

    if (bound.type() == QVariant::DateTime && !QFileInfo::exists(QStringLiteral("/usr/share/zoneinfo/Europe/Berlin")))
        QSKIP("no time zone data for Europe/Berlin");
    const QString path = seeded(QStringLiteral("CREATE TABLE v(x);"));
    {
        QSqlDatabase db = open(path);
        QSqlQuery query(db);
        QVERIFY(run(query, QStringLiteral("INSERT INTO v(x) VALUES (?)"), {bound}));

        query.setForwardOnly(true);
        QVERIFY2(query.exec(QStringLiteral("SELECT x FROM v")), qPrintable(query.lastError().text()));
        QVERIFY(query.next());
        const QVariant value = query.value(0);
        QCOMPARE(describe(value), describe(readBack));
        QCOMPARE(query.isNull(0), readBack.isNull());
        if (bound.type() == QVariant::ULongLong && !bound.isNull())
            QCOMPARE(value.toULongLong(), bound.toULongLong());
        if (bound.type() == QVariant::DateTime && !bound.isNull()) {
            QCOMPARE(value.toDateTime().timeSpec(), Qt::UTC);
            QCOMPARE(value.toDateTime(), bound.toDateTime());
        }
    }
    // What the engine itself holds, seen by the shell rather than the driver.
    QCOMPARE(shell(path, QStringLiteral("SELECT typeof(x), quote(x) FROM v;")), storedAs + QLatin1Char('\n'));
}

void tst_SqlCipherDriver::readsNullsAsQtsSqliteDriver_data()
{
    QTest::addColumn<QString>("expression");
    QTest::addColumn<QString>("readBack"); // as describe() gives it
    QTest::addColumn<bool>("isNull");

    // Row 1 of n holds NULL in every column; row 2 of n holds values.
    const QString nullText = QStringLiteral("QString() null");
    for (const char* column : {"i", "t", "r", "b", "d", "f", "u"})
        QTest::newRow(column) << QString::fromLatin1(column) << nullText << true;
    QTest::newRow("literal") << "NULL" << nullText << true;
    QTest::newRow("cast to integer") << "CAST(NULL AS INTEGER)" << nullText << true;
    QTest::newRow("outer join") << "(SELECT m.x FROM n AS o LEFT JOIN n AS m ON 0 WHERE o.id = 1)" << nullText << true;
    QTest::newRow("aggregate of no rows") << "(SELECT max(i) FROM n WHERE 0)" << nullText << true;
    // Neither an empty text nor a zero is NULL.
    QTest::newRow("empty text") << "''"
                                << "QString()" << false;
    QTest::newRow("zero") << "0"
                          << "qlonglong(0)" << false;
}

// The rules of the code above the driver ("one row whose value is NULL" apart
// from "no row at all") were written for Qt's own SQLite driver: same file,
// both drivers, both read modes.
void tst_SqlCipherDriver::readsNullsAsQtsSqliteDriver()
{
    QFETCH(QString, expression);
    QFETCH(QString, readBack);
    QFETCH(bool, isNull);

    QVERIFY2(QSqlDatabase::isDriverAvailable(QStringLiteral("QSQLITE")),
             "Qt's SQLite driver is missing (Debian package libqt5sql5-sqlite)");
    const QString path =
        files_->createPlain(QStringLiteral("n.sqlite3"),
                            QStringLiteral("CREATE TABLE n(id INTEGER PRIMARY KEY, i INTEGER, t TEXT, r REAL, b BLOB, "
                                           "d DATETIME, f BOOLEAN, u, x);"
                                           "INSERT INTO n(id) VALUES (1);"
                                           "INSERT INTO n VALUES (2, 7, 'seven', 7.5, x'07', '2024-01-01', 1, 7, 7);"));
    QVERIFY2(!path.isEmpty(), qPrintable(files_->lastError()));

    QSqlDatabase sqlite = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("qsqlite"));
    connections_ << sqlite.connectionName();
    sqlite.setDatabaseName(path);
    QVERIFY2(sqlite.open(), qPrintable(sqlite.lastError().text()));
    const QSqlDatabase cipher = open(path, QString());

    const QString select = QStringLiteral("SELECT %1 FROM n WHERE id = 1").arg(expression);
    for (const bool forwardOnly : {true, false}) {
        for (const QSqlDatabase& db : {sqlite, cipher}) {
            const QString context = db.driverName() + (forwardOnly ? QLatin1String(" forward") : QLatin1String(""));
            QSqlQuery query(db);
            query.setForwardOnly(forwardOnly);
            QVERIFY2(query.exec(select) && query.next(), qPrintable(context + query.lastError().text()));
            QCOMPARE(context + QLatin1Char(' ') + describe(query.value(0)), context + QLatin1Char(' ') + readBack);
            QCOMPARE(query.isNull(0), isNull);
        }
    }
}

void tst_SqlCipherDriver::unreadableFiles_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("key");

    // The engine takes any key; it is only checked when a page is read.
    QTest::newRow("other key") << "encrypted" << otherKey;
    QTest::newRow("plain sqlite3 file") << "plain" << projectKey;
    QTest::newRow("missing folder") << "missing" << projectKey;
}

void tst_SqlCipherDriver::unreadableFiles()
{
    QFETCH(QString, kind);
    QFETCH(QString, key);

    const QString path = kind == QLatin1String("plain")     ? files_->createPlain(QStringLiteral("p.sqlite3"), seedSql)
                         : kind == QLatin1String("missing") ? files_->filePath(QStringLiteral("missing/db.sqlite3"))
                                                            : seeded();
    QVERIFY2(!path.isEmpty(), qPrintable(files_->lastError()));
    QSqlDatabase db = open(path, key);
    if (kind == QLatin1String("missing")) {
        QVERIFY(!db.isOpen());
        QCOMPARE(db.lastError().type(), QSqlError::ConnectionError);
        QCOMPARE(db.lastError().databaseText() + db.lastError().nativeErrorCode(),
                 QStringLiteral("unable to open database file14"));
        return;
    }
    QVERIFY2(db.isOpen(), qPrintable(db.lastError().text()));
    QSqlQuery query(db);
    QVERIFY(!query.exec(QStringLiteral("SELECT name FROM t")));
    QCOMPARE(query.lastError().type(), QSqlError::StatementError);
    QCOMPARE(query.lastError().databaseText() + query.lastError().nativeErrorCode(),
             QStringLiteral("file is encrypted or is not a database26"));
    QVERIFY(db.tables(QSql::AllTables).isEmpty());
    QVERIFY(db.record(QStringLiteral("t")).isEmpty());
}

void tst_SqlCipherDriver::rowsAffectedAndLastInsertId_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<int>("rowsAffected");
    QTest::addColumn<QVariant>("lastInsertId");

    // Each runs after the insert of row 4, whose id must not show behind other statements.
    const QVariant none;
    QTest::newRow("insert") << "INSERT INTO t(name) VALUES ('five')" << 1 << QVariant(qlonglong(5));
    QTest::newRow("insert ignored") << "INSERT OR IGNORE INTO t(id, name) VALUES (1, 'again')" << 0 << none;
    QTest::newRow("update all") << "UPDATE t SET name = name || '!'" << 4 << none;
    QTest::newRow("create table") << "CREATE TABLE u(a)" << 0 << none;
    QTest::newRow("select") << "SELECT id FROM t" << -1 << none;
}

void tst_SqlCipherDriver::rowsAffectedAndLastInsertId()
{
    QFETCH(QString, statement);
    QFETCH(int, rowsAffected);
    QFETCH(QVariant, lastInsertId);

    QSqlDatabase db = open(seeded());
    QSqlQuery query(db);
    QVERIFY(run(query, QStringLiteral("INSERT INTO t(name) VALUES ('four')")));
    QVERIFY(run(query, statement));
    QCOMPARE(query.numRowsAffected(), rowsAffected);
    QCOMPARE(describe(query.lastInsertId()), describe(lastInsertId));
}

void tst_SqlCipherDriver::transactionEnds_data()
{
    QTest::addColumn<bool>("commit");
    QTest::newRow("commit") << true;
    QTest::newRow("rollback") << false;
}

// One query object for every statement, as the connection's transactions do.
void tst_SqlCipherDriver::transactionEnds()
{
    QFETCH(bool, commit);

    const QString path = seeded();
    {
        QSqlDatabase db = open(path);
        QVERIFY2(db.transaction(), qPrintable(db.lastError().text()));
        QVERIFY(!db.transaction());
        QSqlQuery query(db);
        query.setForwardOnly(true);
        const QString insert = QStringLiteral("INSERT INTO t(name) VALUES (?)");
        QVERIFY(run(query, insert, {"four"}));
        QCOMPARE(query.numRowsAffected(), 1);
        // Inside the transaction the connection sees its own rows; a select left in the middle is no hindrance.
        QVERIFY(run(query, QStringLiteral("SELECT name FROM t WHERE id >= ? ORDER BY id"), {3}) && query.next());
        QCOMPARE(query.value(0).toString(), QStringLiteral("three"));
        QVERIFY(run(query, insert, {"five"}) && query.next() == false);
        QVERIFY(run(query, QStringLiteral("SELECT name FROM t WHERE id = ?"), {5}) && query.next());
        QCOMPARE(query.value(0).toString(), QStringLiteral("five"));
        query.finish();
        QVERIFY2(commit ? db.commit() : db.rollback(), qPrintable(db.lastError().text()));
        QVERIFY(!db.commit()); // none left open
    }
    QCOMPARE(shell(path, QStringLiteral("SELECT group_concat(name, ' ') FROM t;")),
             commit ? QStringLiteral("one two three four five\n") : QStringLiteral("one two three\n"));
}

void tst_SqlCipherDriver::reportsEngineErrors_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QVariantList>("values");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("code");

    QTest::newRow("missing table") << "SELECT * FROM missing" << QVariantList() << "no such table: missing"
                                   << "1";
    QTest::newRow("two statements") << "SELECT 1; SELECT 2" << QVariantList()
                                    << "Unable to execute multiple statements at a time"
                                    << "";
    QTest::newRow("duplicate key") << "INSERT INTO t(id, name) VALUES (?, ?)" << QVariantList{1, QStringLiteral("uno")}
                                   << "UNIQUE constraint failed: t.id"
                                   << "19";
    QTest::newRow("too few values") << "SELECT ?, ?" << QVariantList{1} << "Parameter count mismatch"
                                    << "";
    QTest::newRow("value of no SQL type") << "SELECT ?" << QVariantList{QPoint(1, 2)} << "unsupported type QPoint"
                                          << "";
}

void tst_SqlCipherDriver::reportsEngineErrors()
{
    QFETCH(QString, statement);
    QFETCH(QVariantList, values);
    QFETCH(QString, message);
    QFETCH(QString, code);

    QSqlDatabase db = open(seeded());
    QSqlQuery query(db);
    QVERIFY(!run(query, statement, values) && !query.isActive());
    QCOMPARE(query.lastError().type(), QSqlError::StatementError);
    QVERIFY2(query.lastError().text().contains(message), qPrintable(query.lastError().text()));
    QCOMPARE(query.lastError().nativeErrorCode(), code);

    // The connection goes on working; blanks, empty statements and comments behind one don't count.
    QVERIFY(run(query, QStringLiteral("  SELECT count(*) FROM t ; \n\t; /* done */ ; -- end")) && query.next());
    QCOMPARE(query.value(0).toInt(), 3);
}

void tst_SqlCipherDriver::tablesAndColumns()
{
    // Neither the view nor the engine's sqlite_sequence is a table.
    QSqlDatabase db = open(seeded(seedSql
                                  + QStringLiteral("CREATE TABLE s(id INTEGER PRIMARY KEY AUTOINCREMENT, x);"
                                                   "INSERT INTO s(x) VALUES (1);"
                                                   "CREATE VIEW v AS SELECT id FROM t;")));
    QStringList tables = db.tables(QSql::Tables);
    tables.sort();
    QCOMPARE(tables, (QStringList{"c", "s", "t"}));
    QCOMPARE(db.tables(QSql::Views), QStringList{"v"});
    QCOMPARE(fields(db.record(QStringLiteral("t"))),
             QStringLiteral("id:qlonglong name:QString amount:double data:QByteArray"));
    QVERIFY(db.record(QStringLiteral("missing")).isEmpty());

    // The engine prepares a cached statement again when the schema changed; the record follows.
    const QString text = QStringLiteral("SELECT * FROM t LIMIT 1");
    QVERIFY(QSqlQuery(db).exec(text));
    QVERIFY(QSqlQuery(db).exec(QStringLiteral("DROP VIEW v; DROP TABLE c; DROP TABLE t; CREATE TABLE t(key TEXT "
                                              "PRIMARY KEY, label TEXT, size REAL, raw BLOB);"
                                              "INSERT INTO t VALUES ('1', 'uno', 1.5, NULL);")));
    QSqlQuery query(db);
    QVERIFY2(query.exec(text), qPrintable(query.lastError().text()));
    QCOMPARE(fields(query.record()), QStringLiteral("key:QString label:QString size:double raw:QByteArray"));
    QVERIFY(query.next());
    QCOMPARE(query.value(1).toString(), QStringLiteral("uno"));
}

void tst_SqlCipherDriver::sameTextInTwoLiveQueries()
{
    QSqlDatabase db = open(seeded());
    const auto* driver = qobject_cast<const SqlCipherDriver*>(db.driver());
    QVERIFY(driver);
    const QString text = QStringLiteral("SELECT id FROM t WHERE id >= ? ORDER BY id");
    const int cachedBefore = driver->cachedStatementCount();
    {
        QSqlQuery first(db);
        first.setForwardOnly(true);
        QVERIFY(run(first, text, {1}) && first.next());
        QSqlQuery second(db);
        second.setForwardOnly(true);
        QVERIFY(run(second, text, {2}));
        QCOMPARE(firstColumn(second), (QStringList{"2", "3"}));
        // The first query still walks its own rows with its own parameter.
        QCOMPARE(firstColumn(first), (QStringList{"2", "3"}));
    }
    QCOMPARE(driver->cachedStatementCount(), cachedBefore + 1);

    // Bounded; the most recent text is still there, and out of the cache while in use.
    for (int i = 0; i < 200; ++i)
        QVERIFY(QSqlQuery(db).exec(QStringLiteral("SELECT %1").arg(i)));
    const int cached = driver->cachedStatementCount();
    QVERIFY(cached > 0 && cached <= 64);
    QSqlQuery last(db);
    QVERIFY(last.prepare(QStringLiteral("SELECT 199")));
    QCOMPARE(driver->cachedStatementCount(), cached - 1);
}

// Values by position, as the connection binds them, are what the query shows
// as bound; a second prepare starts afresh; names still reach their places.
void tst_SqlCipherDriver::bindsByPositionAndByName()
{
    const QString path = seeded(QStringLiteral("CREATE TABLE v(a, b, c);"));
    {
        QSqlDatabase db = open(path);
        QSqlQuery query(db);
        QVERIFY(query.prepare(QStringLiteral("INSERT INTO v(a, b, c) VALUES (?, ?, ?), (?, ?, ?)")));
        for (int value = 1; value <= 6; ++value)
            query.addBindValue(value);
        QCOMPARE(query.boundValues().size(), 6);
        QCOMPARE(query.boundValue(4), QVariant(5));
        QVERIFY2(query.exec(), qPrintable(query.lastError().text()));

        // Fewer values than places: refused, nothing written.
        QVERIFY(query.prepare(QStringLiteral("INSERT INTO v(a, b, c) VALUES (?, ?, ?)")));
        query.addBindValue(7);
        QVERIFY(!query.exec());
        QVERIFY(query.prepare(QStringLiteral("INSERT INTO v(a, b, c) VALUES (?, ?, ?)")));
        query.addBindValue(7);
        query.addBindValue(8);
        query.addBindValue(9);
        QVERIFY2(query.exec(), qPrintable(query.lastError().text()));

        QVERIFY(query.prepare(QStringLiteral("INSERT INTO v(a, b, c) VALUES (:first, :second, :first)")));
        query.bindValue(QStringLiteral(":second"), QStringLiteral("s"));
        query.bindValue(QStringLiteral(":first"), QStringLiteral("f"));
        QCOMPARE(query.boundValue(QStringLiteral(":second")), QVariant(QStringLiteral("s")));
        QVERIFY2(query.exec(), qPrintable(query.lastError().text()));
    }
    QCOMPARE(shell(path, QStringLiteral("SELECT a, b, c FROM v ORDER BY rowid;")),
             QStringLiteral("1|2|3\n4|5|6\n7|8|9\nf|s|f\n"));
}

void tst_SqlCipherDriver::closeWithLiveQueries()
{
    QSqlDatabase db = open(seeded());
    QSqlQuery walking(db);
    walking.setForwardOnly(true);
    QVERIFY(walking.exec(QStringLiteral("SELECT id FROM t ORDER BY id")) && walking.next());
    const QString select = QStringLiteral("SELECT name FROM t WHERE id = ?");
    QSqlQuery prepared(db);
    QVERIFY(prepared.prepare(select));

    db.close();
    QVERIFY(!walking.next());
    prepared.addBindValue(1);
    QVERIFY(!prepared.exec());

    // Open again with the same queries.
    QVERIFY(db.open());
    QVERIFY(walking.exec(QStringLiteral("PRAGMA key = '%1';").arg(projectKey)));
    QVERIFY(run(prepared, select, {2}));
    QVERIFY(prepared.next());
    QCOMPARE(prepared.value(0).toString(), QStringLiteral("two"));

    // The connection goes away under a query that is still walking.
    const QString name = db.connectionName();
    db = QSqlDatabase();
    QSqlDatabase::removeDatabase(name);
    connections_.removeAll(name);
    QVERIFY(!prepared.next());
}

void tst_SqlCipherDriver::rekeysAndVacuums()
{
    const QString path = seeded();
    const QString first = QStringLiteral("11111111111111111111111111111111");
    {
        QSqlDatabase db = open(path);
        {
            // Given back to the cache in the middle of its rows, it must not hold VACUUM up.
            QSqlQuery walked(db);
            QVERIFY(run(walked, QStringLiteral("SELECT name FROM t WHERE id >= ?"), {1}) && walked.next());
        }
        // The key pragmas do their work while being prepared: the last rekey
        // has the text of an earlier one and must run again all the same.
        QSqlQuery query(db);
        for (const QString& key : {QString(), first, otherKey, first})
            QVERIFY2(
                query.exec(key.isNull() ? QStringLiteral("VACUUM") : QStringLiteral("PRAGMA rekey = '%1';").arg(key)),
                qPrintable(query.lastError().text()));
    }
    QCOMPARE(shell(path, QStringLiteral("SELECT name FROM t ORDER BY id;"), first),
             QStringLiteral("one\ntwo\nthree\n"));
}

// A program that does not link the driver finds it only as a plugin of the build tree.
void tst_SqlCipherDriver::loadsThroughPluginPath()
{
    const QString path = seeded();
    for (const bool withPluginPath : {true, false}) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("QT_PLUGIN_PATH"));
        if (withPluginPath)
            environment.insert(QStringLiteral("QT_PLUGIN_PATH"),
                               zelmor::testsupport::binaryDir() + QLatin1String("/plugins"));
        QProcess probe;
        probe.setProcessEnvironment(environment);
        probe.start(QCoreApplication::applicationDirPath() + QLatin1String("/sqlcipher_plugin_probe"),
                    {path, projectKey, QStringLiteral("SELECT name FROM t ORDER BY id")});
        QVERIFY2(probe.waitForFinished(60000), qPrintable(probe.errorString()));
        QCOMPARE(probe.exitStatus(), QProcess::NormalExit);
        QVERIFY2(probe.exitCode() == (withPluginPath ? 0 : 2), probe.readAllStandardError().constData());
        QCOMPARE(QString::fromUtf8(probe.readAllStandardOutput()),
                 withPluginPath ? QStringLiteral("one\ntwo\nthree\n") : QString());
    }
}

QTEST_GUILESS_MAIN(tst_SqlCipherDriver)
#include "tst_sqlcipherdriver.moc"
