#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"

#include <QFile>
#include <QSqlDatabase>
#include <QtTest>

#include <limits>
#include <memory>

using zelmor::base::connection::databaseconnection::SqlQuery;
using zelmor::base::connection::databaseconnection::SqliteConnection;
using zelmor::domain::api::ISqlConnection;
using zelmor::domain::api::ISqlQuery;
using zelmor::domain::types::DatabaseConnectionError;
using zelmor::testsupport::LogCapture;
using zelmor::testsupport::TestDatabase;

using ErrorCodes = QList<int>;
// Statement text and values; a null text stands for a null entry.
using Statement = QPair<QString, QVariantList>;
using Statements = QList<Statement>;

Q_DECLARE_METATYPE(ErrorCodes)
Q_DECLARE_METATYPE(Statements)

namespace {

const QString category = QStringLiteral("zelmor.SqliteConnection");
const QString projectKey = QLatin1String(TestDatabase::projectKey_);
const QString otherKey = QStringLiteral("ffeeddccbbaa99887766554433221100");

// A statement written by hand, for texts that the builder has no call for.
class FixedStatement : public ISqlQuery
{
public:
    explicit FixedStatement(const QString& text, const QVariantList& values = {})
        : text(text)
        , values(values)
    {
    }
    const QString& getPreparedQueryString() const override { return text; }
    const QList<QVariant>& getBindValues() const override { return values; }

private:
    QString text;
    QVariantList values;
};

QString uniqueConnectionName()
{
    static int count = 0;
    return QStringLiteral("tst_sqliteconnection_%1").arg(++count);
}

ErrorCodes codesOf(const QSignalSpy& spy)
{
    ErrorCodes codes;
    for (const QList<QVariant>& arguments : spy)
        codes.append(int(arguments.at(0).value<DatabaseConnectionError>()));
    return codes;
}

// Type and value, so that an integer 1 and a text "1" differ; lists as [a, b].
QString describe(const QVariant& value)
{
    if (!value.isValid())
        return QStringLiteral("NULL");
    if (value.type() == QVariant::List) {
        QStringList items;
        for (const QVariant& item : value.toList())
            items.append(describe(item));
        return QLatin1Char('[') + items.join(QStringLiteral(", ")) + QLatin1Char(']');
    }
    const QString text = value.type() == QVariant::ByteArray ? QString::fromLatin1(value.toByteArray().toHex())
                                                             : value.toString();
    return QString::fromLatin1(value.typeName()) + QLatin1Char('(') + text + QLatin1Char(')');
}

// What another process sees in the file: only committed data.
QString shell(const QString& path, const QString& sql, const QString& key = projectKey)
{
    const TestDatabase::ShellResult result = TestDatabase::runSqlcipher(path, key, sql);
    return result.ok ? result.output.trimmed() : QStringLiteral("shell failed: ") + result.errorOutput.trimmed();
}

// The log; engine errors are logged as the framework prints them: keep their words.
QStringList logTexts(const LogCapture& log)
{
    QStringList texts = log.texts();
    for (QString& text : texts) {
        const int start = text.lastIndexOf(QStringLiteral(", \""));
        if (text.startsWith(QLatin1String("critical: QSqlError(")) && start > 0)
            text = QStringLiteral("critical: ") + text.mid(start + 3).chopped(2);
    }
    return texts;
}

} // namespace

class TestSqliteConnection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void openDatabase_data();
    void openDatabase();
    void bindValuesRoundTrip();
    void statementCalls_data();
    void statementCalls();
    void executeTransaction_data();
    void executeTransaction();
    void emptyDatabase();
    void getDatabaseVersionInfo_data();
    void getDatabaseVersionInfo();
    void rekeyDatabase();
    void tablesAndColumns();
    void closeAndDestroy();

private:
    // Opens a fresh connection, with key, on a file that the shell made with sql.
    std::unique_ptr<SqliteConnection> openOn(const QString& sql, const QString& key = projectKey);

    std::unique_ptr<TestDatabase> files;
    QString path;
};

void TestSqliteConnection::initTestCase()
{
    QLoggingCategory::setFilterRules(QStringLiteral("zelmor.SqliteConnection.info=true"));
    qRegisterMetaType<DatabaseConnectionError>();
}

std::unique_ptr<SqliteConnection> TestSqliteConnection::openOn(const QString& sql, const QString& key)
{
    files = std::make_unique<TestDatabase>();
    path = files->createEncrypted(QStringLiteral("test.db"), sql);
    if (path.isEmpty()) {
        qWarning("shell failed: %s", qPrintable(files->lastError()));
        return nullptr;
    }
    auto connection = std::make_unique<SqliteConnection>(uniqueConnectionName());
    if (!connection->openDatabase(path, QString(), QString(), key))
        return nullptr;
    return connection;
}

void TestSqliteConnection::openDatabase_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("opened");
    QTest::addColumn<bool>("readable");

    QTest::newRow("encrypted, right key") << "encrypted" << projectKey << true << true;
    // A wrong key shows only at the first statement that reads a page.
    QTest::newRow("encrypted, wrong key") << "encrypted" << otherKey << true << false;
    // A plain file must not pass for encrypted data.
    QTest::newRow("plain sqlite3 file") << "plain" << projectKey << true << false;
    QTest::newRow("text file") << "text" << projectKey << true << false;
    QTest::newRow("truncated to half") << "cut" << projectKey << true << false;
    QTest::newRow("missing folder") << "missing" << projectKey << false << false;
}

void TestSqliteConnection::openDatabase()
{
    QFETCH(QString, file);
    QFETCH(QString, key);
    QFETCH(bool, opened);
    QFETCH(bool, readable);

    files = std::make_unique<TestDatabase>();
    const QString sql = QStringLiteral("CREATE TABLE t(a INTEGER); INSERT INTO t VALUES (1), (2);");
    if (file == QLatin1String("encrypted")) {
        path = files->createEncrypted(QStringLiteral("e.db"), sql);
    } else if (file == QLatin1String("plain")) {
        path = files->createPlain(QStringLiteral("p.db"), sql);
    } else if (file == QLatin1String("text")) {
        path = files->createFile(QStringLiteral("x.db"), QByteArray("no database, just some text\n").repeated(100));
    } else if (file == QLatin1String("cut")) {
        // About 20 pages, cut short.
        QFile whole(files->createEncrypted(QStringLiteral("whole.db"),
                                           sql + "WITH RECURSIVE c(x) AS (SELECT 3 UNION ALL SELECT x + 1 FROM c"
                                                 " WHERE x < 2000) INSERT INTO t SELECT x FROM c;"));
        QVERIFY2(whole.open(QIODevice::ReadOnly) && whole.size() > 8 * 1024, qPrintable(files->lastError()));
        path = files->createFile(QStringLiteral("cut.db"), whole.readAll().left(int(whole.size() / 2)));
    } else {
        path = files->filePath(QStringLiteral("no/such/folder/x.db"));
    }
    QVERIFY2(!path.isEmpty(), qPrintable(files->lastError()));

    SqliteConnection connection(uniqueConnectionName());
    QSignalSpy errors(&connection, &SqliteConnection::error);
    {
        // The key is never logged.
        LogCapture log(category);
        QCOMPARE(connection.openDatabase(path, QStringLiteral("ignored"), QStringLiteral("ignored"), key), opened);
        QCOMPARE(log.texts(), opened ? QStringList() : QStringList{"critical: Could not open database '" + path + "'"});
    }
    QCOMPARE(codesOf(errors), opened ? ErrorCodes{} : ErrorCodes{2});
    errors.clear();

    QCOMPARE(connection.containsTable(QStringLiteral("t")), readable);
    QCOMPARE(codesOf(errors), ErrorCodes{});

    LogCapture log(category);
    const QVariantList column = connection.fetchSingleColumn(FixedStatement(QStringLiteral("SELECT a FROM t")));
    QCOMPARE(describe(column), readable ? QStringLiteral("[qlonglong(1), qlonglong(2)]") : QStringLiteral("[]"));
    QCOMPARE(codesOf(errors), readable ? ErrorCodes{} : ErrorCodes{6});
    // Each failure is logged once, as critical.
    QCOMPARE(log.messages(QtCriticalMsg).size(), readable ? 0 : 1);
}

void TestSqliteConnection::bindValuesRoundTrip()
{
    // No declared types: the columns keep what was bound.
    auto connection = openOn(QStringLiteral("CREATE TABLE v(id INTEGER PRIMARY KEY, a, b, c, d, e, f, g, h);"
                                            "INSERT INTO v (id) VALUES (1);"));
    QVERIFY(connection);
    QSignalSpy errors(connection.get(), &SqliteConnection::error);
    const QDateTime time(QDate(2024, 7, 1), QTime(0, 30), Qt::OffsetFromUTC, 7200);
    // A quote in a value never reaches the statement text.
    const QString text = QString::fromUtf8("Grüße'); DROP TABLE v; --");
    SqlQuery insert;
    insert.insertTable(QStringLiteral("v"))
        .columns({"a", "b", "c", "d", "e", "f", "g", "h"})
        .values({qlonglong(-9000000000LL), true, 2.5, text, QLatin1String(""), QByteArray("\x00\x01\xff", 3), QVariant(),
                 time});
    const ISqlConnection::ExecuteResult result = connection->execute(insert);
    QVERIFY(result.success);
    QCOMPARE(result.lastInsertId, quint64(2));
    QCOMPARE(shell(path, QStringLiteral("SELECT quote(a), quote(b), quote(c), quote(d), quote(e), quote(f), quote(g),"
                                        " quote(h) FROM v WHERE id = 2;")),
             QString::fromUtf8("-9000000000|1|2.5|'Grüße''); DROP TABLE v; --'|''|X'0001FF'|NULL|"
                               "'2024-06-30T22:30:00.000Z'"));

    SqlQuery select;
    select.selectColumns({"a", "b", "c", "d", "e", "f", "g", "h"})
        .fromTable(QStringLiteral("v"))
        .whereColumn(QStringLiteral("id"))
        .equals(2);
    const QVariantList row = connection->fetchSingleRow(select);
    QCOMPARE(describe(row), QStringLiteral("[qlonglong(-9000000000), qlonglong(1), double(2.5), QString(") + text
                                + "), QString(), QByteArray(0001ff), NULL, QString(2024-06-30T22:30:00.000Z)]");
    QCOMPARE(row.value(7).toDateTime(), time);
    QCOMPARE(codesOf(errors), ErrorCodes{});
}

void TestSqliteConnection::statementCalls_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariantList>("values");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<ErrorCodes>("expectedErrors");
    QTest::addColumn<QStringList>("logged");

    const QString insert = QStringLiteral("INSERT INTO n (label) VALUES (?)");
    const QString oneColumn = QStringLiteral("SELECT label FROM n WHERE k < ? ORDER BY k");
    const QString twoColumns = QStringLiteral("SELECT k, label FROM n WHERE k < ? ORDER BY k");
    const QString values = QStringLiteral("warning: The result should consist of 1 or 0 values but instead it consists of ");
    const QStringList noSuchTable{QStringLiteral("critical: no such table: missing")};

    QTest::newRow("execute: insert") << "execute" << insert << QVariantList{"four"} << "true 4" << ErrorCodes{}
                                     << QStringList{};
    QTest::newRow("execute: constraint violated") << "execute" << "INSERT INTO n (k, label) VALUES (?, ?)"
                                                  << QVariantList{1, 2} << "false 0" << ErrorCodes{5}
                                                  << QStringList{"critical: UNIQUE constraint failed: n.k"};
    QTest::newRow("execute: value missing")
        << "execute" << insert << QVariantList{} << "false 0" << ErrorCodes{5}
        << QStringList{"critical: 0 value(s) bound, the statement has 1 parameter(s)"};

    QTest::newRow("value: one") << "value" << oneColumn << QVariantList{2} << "QString(one)" << ErrorCodes{}
                                << QStringList{};
    QTest::newRow("value: none, silently") << "value" << oneColumn << QVariantList{1} << "NULL" << ErrorCodes{}
                                           << QStringList{};
    QTest::newRow("value: two rows") << "value" << oneColumn << QVariantList{3} << "NULL" << ErrorCodes{8}
                                     << QStringList{values + "2 row(s) and 1 column(s)"};
    QTest::newRow("value: one row of two columns") << "value" << twoColumns << QVariantList{2} << "NULL"
                                                   << ErrorCodes{8} << QStringList{values + "1 row(s) and 2 column(s)"};
    QTest::newRow("value: failing statement, no shape warning")
        << "value" << "SELECT label FROM missing" << QVariantList{} << "NULL" << ErrorCodes{6} << noSuchTable;
    QTest::newRow("value: binds in list order") << "value" << "SELECT ? || ? || ?" << QVariantList{"a", "b", "c"}
                                                << "QString(abc)" << ErrorCodes{} << QStringList{};

    QTest::newRow("row: one") << "row" << twoColumns << QVariantList{2} << "[qlonglong(1), QString(one)]"
                              << ErrorCodes{} << QStringList{};
    QTest::newRow("row: none, silently") << "row" << twoColumns << QVariantList{0} << "[]" << ErrorCodes{}
                                         << QStringList{};
    QTest::newRow("row: three rows")
        << "row" << twoColumns << QVariantList{9} << "[]" << ErrorCodes{8}
        << QStringList{"warning: The result should consist of 1 or 0 rows but instead it consists of 3 rows"};

    QTest::newRow("column: three rows in order") << "column" << oneColumn << QVariantList{9}
                                                 << "[QString(one), QString(two), QString(three)]" << ErrorCodes{}
                                                 << QStringList{};
    QTest::newRow("column: none, silently") << "column" << oneColumn << QVariantList{0} << "[]" << ErrorCodes{}
                                            << QStringList{};
    QTest::newRow("column: two columns") << "column" << twoColumns << QVariantList{9} << "[]" << ErrorCodes{8}
                                         << QStringList{"warning: The result should consist of exactly 1 or 0 "
                                                        "columns but instead it consists of 2 columns"};
    // An INTEGER column keeps what does not look like a number as text.
    QTest::newRow("column: text in an integer column") << "column" << "SELECT amount FROM n ORDER BY k"
                                                       << QVariantList{} << "[NULL, QString(abc), qlonglong(17)]"
                                                       << ErrorCodes{} << QStringList{};

    QTest::newRow("callback: rows in order")
        << "callback" << "SELECT k, label FROM n WHERE k > ? ORDER BY k DESC" << QVariantList{1}
        << "[[qlonglong(3), QString(three)], [qlonglong(2), QString(two)]]" << ErrorCodes{} << QStringList{};
    QTest::newRow("callback: not preparable") << "callback" << "SELECT label FROM missing" << QVariantList{} << "[]"
                                              << ErrorCodes{6} << noSuchTable;
    // Prepares, but fails when run.
    QTest::newRow("callback: fails when run")
        << "callback" << "SELECT abs(?)" << QVariantList{QVariant(std::numeric_limits<qlonglong>::min())} << "[]"
        << ErrorCodes{5} << QStringList{"critical: integer overflow"};
}

void TestSqliteConnection::statementCalls()
{
    QFETCH(QString, call);
    QFETCH(QString, text);
    QFETCH(QVariantList, values);
    QFETCH(QString, expected);
    QFETCH(ErrorCodes, expectedErrors);
    QFETCH(QStringList, logged);

    auto connection = openOn(QStringLiteral("CREATE TABLE n(k INTEGER PRIMARY KEY, label TEXT, amount INTEGER);"
                                            "INSERT INTO n VALUES (1, 'one', NULL), (2, 'two', 'abc'), (3, 'three', '17');"));
    QVERIFY(connection);
    QSignalSpy errors(connection.get(), &SqliteConnection::error);
    LogCapture log(category);

    const FixedStatement statement(text, values);
    QString actual;
    QVariantList rows;
    if (call == QLatin1String("execute")) {
        const ISqlConnection::ExecuteResult result = connection->execute(statement);
        actual = QStringLiteral("%1 %2").arg(result.success ? "true" : "false").arg(result.lastInsertId);
    } else if (call == QLatin1String("value")) {
        actual = describe(connection->fetchSingleValue(statement));
    } else if (call == QLatin1String("row")) {
        actual = describe(connection->fetchSingleRow(statement));
    } else if (call == QLatin1String("column")) {
        actual = describe(connection->fetchSingleColumn(statement));
    } else {
        connection->fetch(statement, [&](QList<QVariant> row, int size) {
            rows.append(QVariant(row));
            // The driver can't tell the size in advance.
            QCOMPARE(size, -1);
        });
        actual = describe(rows);
    }
    QCOMPARE(actual, expected);
    QCOMPARE(codesOf(errors), expectedErrors);
    QCOMPARE(logTexts(log), logged);
}

void TestSqliteConnection::executeTransaction_data()
{
    QTest::addColumn<Statements>("statements");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QString>("committed");
    QTest::addColumn<ErrorCodes>("expectedErrors");
    QTest::addColumn<QStringList>("log");

    const QString insert = QStringLiteral("INSERT INTO p (name) VALUES (?)");
    const Statement a{insert, {"a"}};
    const Statement b{insert, {"b"}};

    QTest::newRow("empty list") << Statements{} << true << "" << ErrorCodes{} << QStringList{};
    QTest::newRow("two inserts on one query") << Statements{a, b} << true << "1|a\n2|b" << ErrorCodes{}
                                              << QStringList{};
    QTest::newRow("third violates a constraint")
        << Statements{a, b, a} << false << "" << ErrorCodes{} << QStringList{"critical: UNIQUE constraint failed: p.name"};
    QTest::newRow("second not preparable")
        << Statements{a, {QStringLiteral("INSERT INTO nowhere VALUES (?)"), {1}}} << false << "" << ErrorCodes{6}
        << QStringList{"critical: no such table: nowhere"};
    QTest::newRow("null entry") << Statements{a, {QString(), {}}, b} << false << "" << ErrorCodes{} << QStringList{};
}

void TestSqliteConnection::executeTransaction()
{
    QFETCH(Statements, statements);
    QFETCH(bool, result);
    QFETCH(QString, committed);
    QFETCH(ErrorCodes, expectedErrors);
    QFETCH(QStringList, log);

    auto connection = openOn(QStringLiteral("CREATE TABLE p(id INTEGER PRIMARY KEY, name TEXT UNIQUE);"));
    QVERIFY(connection);
    QSignalSpy errors(connection.get(), &SqliteConnection::error);
    QList<QSharedPointer<ISqlQuery>> queries;
    for (const Statement& statement : statements) {
        queries.append(statement.first.isNull() ? QSharedPointer<ISqlQuery>()
                                                : QSharedPointer<FixedStatement>::create(statement.first, statement.second));
    }
    {
        LogCapture capture(category);
        QCOMPARE(connection->executeTransaction(queries), result);
        QCOMPARE(logTexts(capture), log);
    }
    QCOMPARE(codesOf(errors), expectedErrors);
    // Another process sees only what was committed.
    QCOMPARE(shell(path, QStringLiteral("SELECT id, name FROM p ORDER BY id;")), committed);

    // No transaction is left open: a later write is committed on its own.
    QVERIFY(connection->execute(FixedStatement(QStringLiteral("INSERT INTO p (name) VALUES (?)"), {"z"})).success);
    QCOMPARE(shell(path, QStringLiteral("SELECT name FROM p ORDER BY id DESC LIMIT 1;")), QStringLiteral("z"));
}

void TestSqliteConnection::emptyDatabase()
{
    // The parent table comes first, so its rows go while the child's still
    // point to them: only possible with foreign keys off. A trigger makes the
    // first attempt fail.
    auto connection = openOn(QStringLiteral(
        "CREATE TABLE parent(id INTEGER PRIMARY KEY, name TEXT);"
        "CREATE TABLE child(id INTEGER PRIMARY KEY AUTOINCREMENT, parent_id INTEGER NOT NULL REFERENCES parent(id));"
        "CREATE TABLE database_version_info(version INTEGER);"
        "INSERT INTO parent VALUES (1, 'a'), (2, 'b');"
        "INSERT INTO child (parent_id) VALUES (1), (2);"
        "INSERT INTO database_version_info VALUES (17), (19);"
        "CREATE TRIGGER keep BEFORE DELETE ON child BEGIN SELECT RAISE(ABORT, 'child rows are kept'); END;"));
    QVERIFY(connection);
    QSignalSpy errors(connection.get(), &SqliteConnection::error);
    const QString name = connection->getDatabaseFilePath();
    const QString off = QStringLiteral("info: Deactivated foreign key support.");
    const QString on = QStringLiteral("info: Activated foreign key support.");
    for (const bool fails : {true, false}) {
        {
            LogCapture capture(category);
            QCOMPARE(connection->emptyDatabase(), !fails);
            const QStringList expected = fails ? QStringList{off, "critical: child rows are kept",
                                                             "warning: Failed to empty tables of database '" + name + "'", on}
                                               : QStringList{off, on, "info: Emptied all tables of database '" + name + "'"};
            QCOMPARE(logTexts(capture), expected);
        }
        QCOMPARE(codesOf(errors), ErrorCodes{});
        QCOMPARE(shell(path, QStringLiteral("SELECT (SELECT count(*) FROM parent) || '|' || (SELECT count(*) FROM child)"
                                            " || '|' || (SELECT group_concat(version) FROM (SELECT version FROM"
                                            " database_version_info ORDER BY version)) || '|' || (SELECT count(*)"
                                            " FROM sqlite_sequence);")),
                 fails ? QStringLiteral("2|2|17,19|1") : QStringLiteral("0|0|17,19|0"));

        // Foreign keys are on again: a dangling reference is refused.
        QCOMPARE(connection->fetchSingleValue(FixedStatement(QStringLiteral("PRAGMA foreign_keys"))), QVariant(qlonglong(1)));
        QVERIFY(!connection->execute(FixedStatement(QStringLiteral("INSERT INTO child (parent_id) VALUES (99)"))).success);
        QCOMPARE(codesOf(errors), ErrorCodes{5});
        errors.clear();
        QVERIFY(connection->execute(FixedStatement(QStringLiteral("DROP TRIGGER IF EXISTS keep"))).success);
    }
}

void TestSqliteConnection::getDatabaseVersionInfo_data()
{
    QTest::addColumn<QString>("sql");
    QTest::addColumn<QString>("key");
    QTest::addColumn<int>("version");
    QTest::addColumn<ErrorCodes>("expectedErrors");

    const QString table = QStringLiteral("CREATE TABLE database_version_info(version INTEGER);");
    const QString rows = table + QStringLiteral("INSERT INTO database_version_info VALUES ");
    QTest::newRow("no version table") << "CREATE TABLE t(a);" << projectKey << 0 << ErrorCodes{};
    QTest::newRow("empty version table") << table << projectKey << 0 << ErrorCodes{};
    QTest::newRow("17 and 19") << rows + "(17), (19);" << projectKey << 19 << ErrorCodes{};
    QTest::newRow("19 and 17") << rows + "(19), (17);" << projectKey << 19 << ErrorCodes{};
    QTest::newRow("only below zero") << rows + "(-5), (-1);" << projectKey << 0 << ErrorCodes{};
    QTest::newRow("only the exact name") << "CREATE TABLE database_version_info_old(version);"
                                            "INSERT INTO database_version_info_old VALUES (30);"
                                         << projectKey << 0 << ErrorCodes{};
    QTest::newRow("wrong key") << rows + "(19);" << otherKey << 0 << ErrorCodes{6};
}

void TestSqliteConnection::getDatabaseVersionInfo()
{
    QFETCH(QString, sql);
    QFETCH(QString, key);
    QFETCH(int, version);
    QFETCH(ErrorCodes, expectedErrors);

    auto connection = openOn(sql, key);
    QVERIFY(connection);
    QSignalSpy errors(connection.get(), &SqliteConnection::error);
    LogCapture log(category);
    QCOMPARE(connection->getDatabaseVersionInfo(), version);
    QCOMPARE(codesOf(errors), expectedErrors);
}

void TestSqliteConnection::rekeyDatabase()
{
    auto connection = openOn(QStringLiteral("CREATE TABLE r(id INTEGER PRIMARY KEY, name TEXT);"));
    QVERIFY(connection);
    QSignalSpy errors(connection.get(), &SqliteConnection::error);
    QCOMPARE(connection->execute(FixedStatement(QStringLiteral("INSERT INTO r (name) VALUES ('kept')"))).lastInsertId,
             quint64(1));
    QVERIFY(connection->rekeyDatabase(otherKey));
    connection->closeDatabase();
    QCOMPARE(codesOf(errors), ErrorCodes{});
    connection.reset();

    QCOMPARE(shell(path, QStringLiteral("SELECT id, name FROM r;"), otherKey), QStringLiteral("1|kept"));
    QVERIFY(shell(path, QStringLiteral("SELECT id, name FROM r;")).startsWith(QLatin1String("shell failed")));
    for (const QString& key : {otherKey, projectKey}) {
        SqliteConnection reopened(uniqueConnectionName());
        QVERIFY(reopened.openDatabase(path, QString(), QString(), key));
        QCOMPARE(reopened.containsTable(QStringLiteral("r")), key == otherKey);
    }
}

void TestSqliteConnection::tablesAndColumns()
{
    auto connection = openOn(QStringLiteral("CREATE TABLE Chamber(id INTEGER PRIMARY KEY, name TEXT, created DATETIME);"
                                            "CREATE VIEW chamber_view AS SELECT id FROM Chamber;"));
    QVERIFY(connection);
    QVERIFY(connection->containsTable(QStringLiteral("Chamber")));
    // Case-sensitive, and views and the engine's own tables are no tables.
    for (const char* name : {"chamber", "chamber_view", "sqlite_master", "nothing"})
        QVERIFY2(!connection->containsTable(QLatin1String(name)), name);
    QCOMPARE(connection->getColumnNames(QStringLiteral("Chamber")), (QStringList{"id", "name", "created"}));
    QCOMPARE(connection->getColumnNames(QStringLiteral("nothing")), QStringList());
}

void TestSqliteConnection::closeAndDestroy()
{
    auto connection = openOn(QStringLiteral("CREATE TABLE t(a);"));
    QVERIFY(connection);
    const QString name = connection->getDatabaseFilePath();
    QVERIFY(name != path);
    QVERIFY(QSqlDatabase::database(name, false).isOpen());
    {
        LogCapture log(category);
        connection->closeDatabase();
        QCOMPARE(log.texts(), QStringList{QStringLiteral("info: Closing Connection to ") + name});
    }
    QVERIFY(!QSqlDatabase::database(name, false).isOpen());

    connection.reset();
    QVERIFY(!QSqlDatabase::contains(name));
    // The early registration that loads the driver stays.
    QVERIFY(QSqlDatabase::contains(name + QStringLiteral("dummy")));
}

QTEST_GUILESS_MAIN(TestSqliteConnection)
#include "tst_sqliteconnection.moc"
