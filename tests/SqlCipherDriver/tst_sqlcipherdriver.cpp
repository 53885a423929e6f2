#include "SqlCipherDriver/SqlCipherDriver.h"

#include "support/TestDatabase.h"
#include "support/TestPaths.h"

#include <QFile>
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

Q_DECLARE_METATYPE(QSql::TableType)
Q_DECLARE_METATYPE(QVariant::Type)

namespace {

const QString projectKey = QLatin1String(TestDatabase::projectKey_);
const QString otherKey = QStringLiteral("99887766554433221100ffeeddccbbaa");

// Three rows in t, a child table with a foreign key, nothing else.
const QString seedSql = QStringLiteral(
    "CREATE TABLE t(id INTEGER PRIMARY KEY, name TEXT NOT NULL, amount REAL DEFAULT 0.5, data BLOB);"
    "INSERT INTO t(id, name) VALUES (1, 'one'), (2, 'two'), (3, 'three');"
    "CREATE TABLE c(id INTEGER PRIMARY KEY, t_id INTEGER REFERENCES t(id));");

// Type and value: QVariant's operator== converts between types.
QString describe(const QVariant& value)
{
    const QString text = value.type() == QVariant::ByteArray ? QString::fromLatin1(value.toByteArray().toHex())
                                                             : value.toString();
    return QStringLiteral("%1(%2)%3").arg(QString::fromLatin1(value.typeName()), text,
                                          value.isNull() ? QStringLiteral(" null") : QString());
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

    void unreadableFiles_data();
    void unreadableFiles();
    void openFailsInMissingFolder();

    void rowsAffectedAndLastInsertId_data();
    void rowsAffectedAndLastInsertId();
    void transactionEnds_data();
    void transactionEnds();
    void reportsEngineErrors_data();
    void reportsEngineErrors();
    void statementTexts_data();
    void statementTexts();

    void listsTablesByType_data();
    void listsTablesByType();
    void describesTableColumns();

    void sameTextInTwoLiveQueries();
    void reusesOneQueryForSeveralStatements();
    void cachedStatementSeesSchemaChange_data();
    void cachedStatementSeesSchemaChange();
    void pragmaRunsEachTime();
    void closeWithLiveQueries();
    void vacuumAfterCachedStatements();
    void exportsAndRekeys();

    void loadsThroughPluginPath_data();
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

    for (QVariant::Type type : {QVariant::Invalid, QVariant::Int, QVariant::String, QVariant::ByteArray, QVariant::DateTime})
        QTest::newRow(qPrintable(QStringLiteral("null %1").arg(QLatin1String(QVariant::typeToName(type))))) << QVariant(type) << "null|NULL" << QVariant();

    QTest::newRow("true") << QVariant(true) << "integer|1" << QVariant(qlonglong(1));
    QTest::newRow("false") << QVariant(false) << "integer|0" << QVariant(qlonglong(0));
    QTest::newRow("int min") << QVariant(std::numeric_limits<int>::min()) << "integer|-2147483648"
                             << QVariant(qlonglong(-2147483648LL));
    QTest::newRow("uint max") << QVariant(std::numeric_limits<uint>::max()) << "integer|4294967295"
                              << QVariant(qlonglong(4294967295LL));
    QTest::newRow("qlonglong min") << QVariant(std::numeric_limits<qlonglong>::min())
                                   << "integer|-9223372036854775808" << QVariant(std::numeric_limits<qlonglong>::min());
    // Above the signed range the bits are kept: toULongLong() gives the value back.
    QTest::newRow("qulonglong max") << QVariant(std::numeric_limits<qulonglong>::max()) << "integer|-1"
                                    << QVariant(qlonglong(-1));
    QTest::newRow("double max") << QVariant(std::numeric_limits<double>::max())
                                << "real|1.79769313486231562234e+308" << QVariant(std::numeric_limits<double>::max());
    QTest::newRow("float") << QVariant(0.5f) << "real|0.5" << QVariant(0.5);

    QTest::newRow("empty text") << QVariant(QString(QLatin1String(""))) << "text|''"
                                << QVariant(QString(QLatin1String("")));
    const QString text = QString::fromUtf8("it's Grüße ✓ 温度 😀");
    QTest::newRow("text") << QVariant(text) << "text|'it''s Grüße ✓ 温度 😀'" << QVariant(text);
    const QByteArray zeros("\x00\x01\x00\xff", 4);
    QTest::newRow("blob with zero bytes") << QVariant(zeros) << "blob|X'000100FF'" << QVariant(zeros);
    QTest::newRow("empty blob") << QVariant(QByteArray("")) << "blob|X''" << QVariant(QByteArray(""));

    // Read back as text that toDateTime() turns into the same instant, in UTC.
    QTest::newRow("date time utc") << QVariant(QDateTime(QDate(2024, 2, 29), QTime(23, 59, 58, 123), Qt::UTC))
                                   << "text|'2024-02-29T23:59:58.123Z'"
                                   << QVariant(QStringLiteral("2024-02-29T23:59:58.123Z"));
    QTest::newRow("date time with offset")
        << QVariant(QDateTime(QDate(2024, 7, 1), QTime(1, 0), Qt::OffsetFromUTC, 7200))
        << "text|'2024-06-30T23:00:00.000Z'" << QVariant(QStringLiteral("2024-06-30T23:00:00.000Z"));
    // Europe/Berlin: UTC+2 in summer.
    QTest::newRow("local summer") << QVariant(QDateTime(QDate(2024, 7, 1), QTime(0, 30), Qt::LocalTime))
                                  << "text|'2024-06-30T22:30:00.000Z'"
                                  << QVariant(QStringLiteral("2024-06-30T22:30:00.000Z"));
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
        QCOMPARE(query.isNull(0), !readBack.isValid());
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

void tst_SqlCipherDriver::unreadableFiles_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("key");

    // The engine takes any key; it is only checked when a page is read.
    QTest::newRow("other key") << "encrypted" << "ffffffffffffffffffffffffffffffff";
    QTest::newRow("key one character short") << "encrypted" << projectKey.left(31);
    QTest::newRow("no key") << "encrypted" << QString();
    QTest::newRow("plain sqlite3 file") << "plain" << projectKey;
    QTest::newRow("text file") << "text" << projectKey;
    QTest::newRow("encrypted file cut in half") << "half" << projectKey;
}

void tst_SqlCipherDriver::unreadableFiles()
{
    QFETCH(QString, kind);
    QFETCH(QString, key);

    const QString sql = QStringLiteral(
        "CREATE TABLE t(id INTEGER PRIMARY KEY, name TEXT);"
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 400) "
        "INSERT INTO t(name) SELECT 'secret ' || printf('%0200d', i) FROM n;");
    QString path;
    if (kind == QLatin1String("plain")) {
        path = files_->createPlain(QStringLiteral("plain.sqlite3"), sql);
    } else if (kind == QLatin1String("text")) {
        path = files_->createFile(QStringLiteral("text.sqlite3"), QByteArray("no database, just text\n").repeated(200));
    } else {
        path = seeded(sql);
        QFile file(path);
        QVERIFY(kind == QLatin1String("encrypted") || (file.open(QIODevice::ReadOnly) && file.size() > 40000));
        if (kind == QLatin1String("half"))
            path = files_->createFile(QStringLiteral("cut.sqlite3"), file.readAll().left(int(file.size() / 2)));
    }
    QVERIFY2(!path.isEmpty(), qPrintable(files_->lastError()));

    QSqlDatabase db = open(path, key);
    QVERIFY2(db.isOpen(), qPrintable(db.lastError().text()));
    QSqlQuery query(db);
    query.setForwardOnly(true);
    QStringList read;
    if (query.exec(QStringLiteral("SELECT name FROM t")))
        read = firstColumn(query);
    QVERIFY2(query.lastError().isValid(), qPrintable(QStringLiteral("%1 rows read").arg(read.size())));
    QCOMPARE(query.lastError().type(), QSqlError::StatementError);
    QVERIFY(read.size() < 400);
    if (kind == QLatin1String("half"))
        return; // its first page is intact
    QVERIFY(read.isEmpty());
    QVERIFY(db.tables(QSql::AllTables).isEmpty());
    QVERIFY(db.record(QStringLiteral("t")).isEmpty());
    QCOMPARE(query.lastError().databaseText(), QStringLiteral("file is encrypted or is not a database"));
    QCOMPARE(query.lastError().nativeErrorCode(), QStringLiteral("26"));
}

void tst_SqlCipherDriver::openFailsInMissingFolder()
{
    QSqlDatabase db = open(files_->filePath(QStringLiteral("missing/deeper/db.sqlite3")));
    QVERIFY(!db.isOpen());
    QCOMPARE(db.lastError().type(), QSqlError::ConnectionError);
    QCOMPARE(db.lastError().databaseText(), QStringLiteral("unable to open database file"));
    QCOMPARE(db.lastError().nativeErrorCode(), QStringLiteral("14"));
    QVERIFY(!QFileInfo::exists(files_->filePath(QStringLiteral("missing"))));
}

void tst_SqlCipherDriver::rowsAffectedAndLastInsertId_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("statement");
    QTest::addColumn<int>("rowsAffected");
    QTest::addColumn<QVariant>("lastInsertId");

    const QVariant none;
    const QString four = QStringLiteral("INSERT INTO t(name) VALUES ('four')");
    QTest::newRow("insert") << "" << four << 1 << QVariant(qlonglong(4));
    QTest::newRow("insert of three rows") << "" << "INSERT INTO t(name) SELECT name FROM t" << 3
                                          << QVariant(qlonglong(6));
    QTest::newRow("insert ignored") << "" << "INSERT OR IGNORE INTO t(id, name) VALUES (1, 'again')" << 0 << none;
    QTest::newRow("replace") << "" << "REPLACE INTO t(id, name) VALUES (2, 'deux')" << 1 << QVariant(qlonglong(2));
    QTest::newRow("update all") << "" << "UPDATE t SET name = name || '!'" << 3 << none;
    QTest::newRow("update of no row after insert") << four << "UPDATE t SET name = 'x' WHERE id = 99" << 0 << none;
    QTest::newRow("delete") << "" << "DELETE FROM t WHERE id > 1" << 2 << none;
    QTest::newRow("create table after insert") << four << "CREATE TABLE u(a)" << 0 << none;
    QTest::newRow("select") << "" << "SELECT id FROM t" << -1 << none;
}

void tst_SqlCipherDriver::rowsAffectedAndLastInsertId()
{
    QFETCH(QString, before);
    QFETCH(QString, statement);
    QFETCH(int, rowsAffected);
    QFETCH(QVariant, lastInsertId);

    QSqlDatabase db = open(seeded());
    QSqlQuery query(db);
    if (!before.isEmpty())
        QVERIFY2(query.exec(before), qPrintable(query.lastError().text()));
    QVERIFY(query.prepare(statement));
    QVERIFY2(query.exec(), qPrintable(query.lastError().text()));
    QCOMPARE(query.numRowsAffected(), rowsAffected);
    QCOMPARE(query.size(), -1);
    QCOMPARE(describe(query.lastInsertId()), describe(lastInsertId));
}

void tst_SqlCipherDriver::transactionEnds_data()
{
    QTest::addColumn<bool>("commit");
    QTest::addColumn<QString>("rowsAfter");

    QTest::newRow("commit") << true << "1|one\n2|two\n3|changed\n4|four\n5|five\n";
    QTest::newRow("rollback") << false << "1|one\n2|two\n3|three\n";
}

void tst_SqlCipherDriver::transactionEnds()
{
    QFETCH(bool, commit);
    QFETCH(QString, rowsAfter);

    const QString path = seeded();
    {
        QSqlDatabase db = open(path);
        QVERIFY2(db.transaction(), qPrintable(db.lastError().text()));
        QVERIFY(!db.transaction());
        QCOMPARE(db.lastError().type(), QSqlError::TransactionError);
        QCOMPARE(db.lastError().databaseText(), QStringLiteral("cannot start a transaction within a transaction"));
        QSqlQuery query(db);
        for (const char* name : {"four", "five"})
            QVERIFY(run(query, QStringLiteral("INSERT INTO t(name) VALUES (?)"), {name}));
        QVERIFY(query.exec(QStringLiteral("UPDATE t SET name = 'changed' WHERE id = 3")));
        // Inside the transaction the connection sees its own rows.
        QVERIFY(query.exec(QStringLiteral("SELECT count(*) FROM t")));
        QVERIFY(query.next());
        QCOMPARE(query.value(0).toInt(), 5);
        query.finish();
        QVERIFY2(commit ? db.commit() : db.rollback(), qPrintable(db.lastError().text()));
        QVERIFY(!db.commit());
        QCOMPARE(db.lastError().databaseText(), QStringLiteral("cannot commit - no transaction is active"));
    }
    QCOMPARE(shell(path, QStringLiteral("SELECT id, name FROM t ORDER BY id;")), rowsAfter);
}

void tst_SqlCipherDriver::reportsEngineErrors_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QVariantList>("values");
    QTest::addColumn<bool>("failsOnPrepare");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("code");

    QTest::newRow("missing table") << "SELECT * FROM missing" << QVariantList() << true << "no such table: missing"
                                   << "1";
    QTest::newRow("two statements") << "SELECT 1; SELECT 2" << QVariantList() << true
                                    << "Unable to execute multiple statements at a time" << "";
    QTest::newRow("duplicate key") << "INSERT INTO t(id, name) VALUES (?, ?)" << QVariantList{1, QStringLiteral("uno")}
                                   << false << "UNIQUE constraint failed: t.id" << "19";
    QTest::newRow("foreign key") << "INSERT INTO c(t_id) VALUES (?)" << QVariantList{99} << false
                                 << "FOREIGN KEY constraint failed" << "19";
    QTest::newRow("too few values") << "SELECT ?, ?" << QVariantList{1} << false << "Parameter count mismatch" << "";
    QTest::newRow("value of no SQL type") << "SELECT ?" << QVariantList{QPoint(1, 2)} << false
                                          << "unsupported type QPoint" << "";
}

void tst_SqlCipherDriver::reportsEngineErrors()
{
    QFETCH(QString, statement);
    QFETCH(QVariantList, values);
    QFETCH(bool, failsOnPrepare);
    QFETCH(QString, message);
    QFETCH(QString, code);

    QSqlDatabase db = open(seeded());
    QSqlQuery query(db);
    QVERIFY(query.exec(QStringLiteral("PRAGMA foreign_keys = ON;")));
    QCOMPARE(query.prepare(statement), !failsOnPrepare);
    if (!failsOnPrepare) {
        for (const QVariant& value : qAsConst(values))
            query.addBindValue(value);
        QVERIFY(!query.exec());
        QVERIFY(!query.isActive());
    }
    QCOMPARE(query.lastError().type(), QSqlError::StatementError);
    QVERIFY2(query.lastError().text().contains(message), qPrintable(query.lastError().text()));
    QCOMPARE(query.lastError().nativeErrorCode(), code);

    // The connection goes on working after a failed statement.
    QVERIFY(query.exec(QStringLiteral("SELECT count(*) FROM t")));
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toInt(), 3);
}

void tst_SqlCipherDriver::statementTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("prepared");

    QTest::newRow("space and semicolons") << "  SELECT 7 ;  \n\t;" << true;
    QTest::newRow("trailing comments") << "SELECT 7; /* done */ ; -- the answer" << true;
    QTest::newRow("three statements in exec") << "CREATE TABLE m(x); INSERT INTO m VALUES (7); SELECT x FROM m;"
                                              << false;
    QTest::newRow("two pragmas in exec") << "PRAGMA user_version = 7; PRAGMA user_version;" << false;
}

void tst_SqlCipherDriver::statementTexts()
{
    QFETCH(QString, text);
    QFETCH(bool, prepared);

    QSqlDatabase db = open(seeded());
    QSqlQuery query(db);
    const bool ran = prepared ? query.prepare(text) && query.exec() : query.exec(text);
    QVERIFY2(ran, qPrintable(query.lastError().text()));
    QVERIFY(query.next());
    QCOMPARE(describe(query.value(0)), describe(qlonglong(7)));
}

void tst_SqlCipherDriver::listsTablesByType_data()
{
    QTest::addColumn<QSql::TableType>("type");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("tables") << QSql::Tables << QStringList{"c", "s", "t", "temporary"};
    QTest::newRow("views") << QSql::Views << QStringList{"v"};
    QTest::newRow("system tables") << QSql::SystemTables << QStringList{"sqlite_master", "sqlite_sequence"};
    QTest::newRow("all") << QSql::AllTables
                         << QStringList{"c", "s", "sqlite_master", "sqlite_sequence", "t", "temporary", "v"};
}

void tst_SqlCipherDriver::listsTablesByType()
{
    QFETCH(QSql::TableType, type);
    QFETCH(QStringList, expected);

    QSqlDatabase db = open(seeded(seedSql + QStringLiteral("CREATE TABLE s(id INTEGER PRIMARY KEY AUTOINCREMENT, x);"
                                                           "INSERT INTO s(x) VALUES (1);"
                                                           "CREATE VIEW v AS SELECT id FROM t;")));
    QSqlQuery query(db);
    QVERIFY(query.exec(QStringLiteral("CREATE TEMP TABLE temporary(a)")));
    QStringList tables = db.tables(type);
    tables.sort();
    QCOMPARE(tables, expected);
}

void tst_SqlCipherDriver::describesTableColumns()
{
    QSqlDatabase db = open(seeded());
    for (const QString& table : {QStringLiteral("t"), QStringLiteral("main.t"), QStringLiteral("\"t\"")}) {
        const QSqlRecord record = db.record(table);
        QCOMPARE(record.count(), 4);
        QCOMPARE(record.fieldName(0), QStringLiteral("id"));
        QCOMPARE(record.fieldName(3), QStringLiteral("data"));
        QCOMPARE(record.field(0).type(), QVariant::LongLong);
        QCOMPARE(record.field(1).type(), QVariant::String);
        QCOMPARE(record.field(2).type(), QVariant::Double);
        QCOMPARE(record.field(3).type(), QVariant::ByteArray);
        QCOMPARE(record.field(1).requiredStatus(), QSqlField::Required);
        QCOMPARE(record.field(2).defaultValue().toString(), QStringLiteral("0.5"));
    }
    QVERIFY(db.record(QStringLiteral("missing")).isEmpty());
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
        QVERIFY(run(first, text, {1}));
        QVERIFY(first.next());
        QCOMPARE(first.value(0).toInt(), 1);

        QSqlQuery second(db);
        second.setForwardOnly(true);
        QVERIFY(run(second, text, {2}));
        QCOMPARE(firstColumn(second), (QStringList{"2", "3"}));

        // The first query still walks its own rows with its own parameter.
        QCOMPARE(firstColumn(first), (QStringList{"2", "3"}));
    }
    QCOMPARE(driver->cachedStatementCount(), cachedBefore + 1);

    // Taken from the cache while in use, back afterwards.
    {
        QSqlQuery again(db);
        QVERIFY(run(again, text, {3}));
        QCOMPARE(driver->cachedStatementCount(), cachedBefore);
        QCOMPARE(firstColumn(again), QStringList{"3"});
    }
    QCOMPARE(driver->cachedStatementCount(), cachedBefore + 1);

    // Bounded; the most recent text is still there.
    for (int i = 0; i < 200; ++i)
        QVERIFY(QSqlQuery(db).exec(QStringLiteral("SELECT %1").arg(i)));
    const int cached = driver->cachedStatementCount();
    QVERIFY(cached > 0 && cached <= 64);
    QSqlQuery last(db);
    QVERIFY(last.prepare(QStringLiteral("SELECT 199")));
    QCOMPARE(driver->cachedStatementCount(), cached - 1);
}

void tst_SqlCipherDriver::reusesOneQueryForSeveralStatements()
{
    QSqlDatabase db = open(seeded());
    QSqlQuery query(db);
    query.setForwardOnly(true);
    const QString insert = QStringLiteral("INSERT INTO t(name) VALUES (?)");
    const QString select = QStringLiteral("SELECT name FROM t WHERE id = ?");
    const QList<QPair<QString, QVariant>> steps = {
        {insert, QStringLiteral("four")}, {select, 4}, {insert, QStringLiteral("five")}, {select, 5}, {select, 1},
    };
    QStringList names;
    for (const auto& step : steps) {
        QVERIFY(run(query, step.first, {step.second}));
        if (query.isSelect()) {
            QVERIFY(query.next());
            names << query.value(0).toString();
        } else {
            QCOMPARE(query.numRowsAffected(), 1);
        }
        query.finish();
    }
    QCOMPARE(names, (QStringList{"four", "five", "one"}));

    // exec() again without prepare: new parameter, first row again.
    QVERIFY(run(query, select, {2}));
    QVERIFY(query.next());
    query.bindValue(0, 3);
    QVERIFY(query.exec());
    QCOMPARE(firstColumn(query), QStringList{"three"});
}

void tst_SqlCipherDriver::cachedStatementSeesSchemaChange_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<QStringList>("fields");
    QTest::addColumn<QVariant::Type>("firstType");

    QTest::newRow("column added") << "ALTER TABLE t ADD COLUMN extra INTEGER DEFAULT 12"
                                  << QStringList{"id", "name", "amount", "data", "extra"} << QVariant::LongLong;
    QTest::newRow("table made anew, same width")
        << "DROP TABLE c; DROP TABLE t; CREATE TABLE t(key TEXT PRIMARY KEY, label TEXT, size REAL, raw BLOB);"
           "INSERT INTO t VALUES ('1', 'uno', 1.5, NULL);"
        << QStringList{"key", "label", "size", "raw"} << QVariant::String;
}

void tst_SqlCipherDriver::cachedStatementSeesSchemaChange()
{
    QFETCH(QString, change);
    QFETCH(QStringList, fields);
    QFETCH(QVariant::Type, firstType);

    QSqlDatabase db = open(seeded());
    const QString text = QStringLiteral("SELECT * FROM t LIMIT 1");
    {
        QSqlQuery query(db);
        QVERIFY(query.exec(text));
        QCOMPARE(query.record().count(), 4);
    }
    QVERIFY(QSqlQuery(db).exec(change));
    QSqlQuery query(db);
    QVERIFY2(query.exec(text), qPrintable(query.lastError().text()));
    QStringList names;
    for (int i = 0; i < query.record().count(); ++i)
        names << query.record().fieldName(i);
    QCOMPARE(names, fields);
    QCOMPARE(query.record().field(0).type(), firstType);
    QVERIFY(query.next());
    QCOMPARE(query.record().count(), fields.size());
}

void tst_SqlCipherDriver::pragmaRunsEachTime()
{
    const QString path = seeded();
    const QString first = QStringLiteral("11111111111111111111111111111111");
    {
        QSqlDatabase db = open(path);
        // The key pragmas do their work while being prepared: the third
        // statement has the text of the first and must run again all the same.
        for (const QString& key : {first, otherKey, first})
            QVERIFY(QSqlQuery(db).exec(QStringLiteral("PRAGMA rekey = '%1';").arg(key)));
        for (const char* setting : {"ON", "OFF", "ON"}) {
            QVERIFY(QSqlQuery(db).exec(QStringLiteral("PRAGMA foreign_keys = %1").arg(QLatin1String(setting))));
            QSqlQuery query(db);
            QVERIFY(query.exec(QStringLiteral("PRAGMA foreign_keys")));
            QCOMPARE(firstColumn(query), QStringList{qstrcmp(setting, "ON") == 0 ? "1" : "0"});
        }
    }
    QCOMPARE(shell(path, QStringLiteral("SELECT count(*) FROM t;"), first), QStringLiteral("3\n"));
}

void tst_SqlCipherDriver::closeWithLiveQueries()
{
    QSqlDatabase db = open(seeded());
    QSqlQuery walking(db);
    walking.setForwardOnly(true);
    QVERIFY(walking.exec(QStringLiteral("SELECT id FROM t ORDER BY id")));
    QVERIFY(walking.next());
    QSqlQuery prepared(db);
    QVERIFY(prepared.prepare(QStringLiteral("SELECT name FROM t WHERE id = ?")));
    QSqlQuery scrolled(db);
    QVERIFY(scrolled.exec(QStringLiteral("SELECT id FROM t")));
    QVERIFY(scrolled.last());

    db.close();
    QVERIFY(!walking.next());
    QVERIFY(!scrolled.first());
    prepared.addBindValue(1);
    QVERIFY(!prepared.exec());

    // Open again with the same queries.
    QVERIFY(db.open());
    QVERIFY(walking.exec(QStringLiteral("PRAGMA key = '%1';").arg(projectKey)));
    QVERIFY(run(prepared, QStringLiteral("SELECT name FROM t WHERE id = ?"), {2}));
    QVERIFY(prepared.next());
    QCOMPARE(prepared.value(0).toString(), QStringLiteral("two"));

    // The connection goes away under a query that is still walking.
    const QString name = db.connectionName();
    db = QSqlDatabase();
    QSqlDatabase::removeDatabase(name);
    connections_.removeAll(name);
    QVERIFY(!prepared.next());
}

void tst_SqlCipherDriver::vacuumAfterCachedStatements()
{
    QSqlDatabase db = open(seeded());
    for (int id = 1; id <= 3; ++id) {
        QSqlQuery query(db);
        QVERIFY(run(query, QStringLiteral("SELECT name FROM t WHERE id >= ?"), {id}));
        QVERIFY(query.next()); // left in the middle of its rows
    }
    QSqlQuery vacuum(db);
    QVERIFY2(vacuum.exec(QStringLiteral("VACUUM")), qPrintable(vacuum.lastError().text()));
}

void tst_SqlCipherDriver::exportsAndRekeys()
{
    const QString path = seeded();
    const QString exported = files_->filePath(QStringLiteral("export.sqlite3"));
    {
        QSqlDatabase db = open(path);
        QSqlQuery query(db);
        for (const QString& sql : {QStringLiteral("ATTACH DATABASE '%1' AS export KEY '%2'").arg(exported, otherKey),
                                   QStringLiteral("SELECT sqlcipher_export('export')"),
                                   QStringLiteral("DETACH DATABASE export"),
                                   QStringLiteral("PRAGMA rekey = '%1';").arg(otherKey)})
            QVERIFY2(query.exec(sql), qPrintable(query.lastError().text()));
    }
    for (const QString& file : {exported, path})
        QCOMPARE(shell(file, QStringLiteral("SELECT name FROM t ORDER BY id;"), otherKey),
                 QStringLiteral("one\ntwo\nthree\n"));
    QVERIFY(shell(path, QStringLiteral("SELECT name FROM t;")).contains(QLatin1String("file is encrypted or is not a database")));
}

void tst_SqlCipherDriver::loadsThroughPluginPath_data()
{
    QTest::addColumn<bool>("withPluginPath");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("output");

    QTest::newRow("with plugin path") << true << 0 << "one\ntwo\nthree\n";
    QTest::newRow("without") << false << 2 << "";
}

// A program that does not link the driver finds it only as a plugin of the build tree.
void tst_SqlCipherDriver::loadsThroughPluginPath()
{
    QFETCH(bool, withPluginPath);
    QFETCH(int, exitCode);
    QFETCH(QString, output);

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("QT_PLUGIN_PATH"));
    if (withPluginPath)
        environment.insert(QStringLiteral("QT_PLUGIN_PATH"), zelmor::testsupport::binaryDir() + QLatin1String("/plugins"));
    QProcess probe;
    probe.setProcessEnvironment(environment);
    probe.start(QCoreApplication::applicationDirPath() + QLatin1String("/sqlcipher_plugin_probe"),
                {seeded(), projectKey, QStringLiteral("SELECT name FROM t ORDER BY id")});
    QVERIFY2(probe.waitForFinished(60000), qPrintable(probe.errorString()));
    QCOMPARE(probe.exitStatus(), QProcess::NormalExit);
    QVERIFY2(probe.exitCode() == exitCode, probe.readAllStandardError().constData());
    QCOMPARE(QString::fromUtf8(probe.readAllStandardOutput()), output);
}

QTEST_GUILESS_MAIN(tst_SqlCipherDriver)
#include "tst_sqlcipherdriver.moc"
