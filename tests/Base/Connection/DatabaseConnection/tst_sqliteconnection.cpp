#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Domain/Api/ISqlQuery.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"

#include <QFile>
#include <QSqlDatabase>
#include <QtTest>

#include <limits>
#include <memory>

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

// A statement written by hand: the connection knows only the interface.
struct FixedStatement : ISqlQuery
{
    explicit FixedStatement(const QString& text, const QVariantList& values = {})
        : text(text)
        , values(values)
    {
    }
    const QString& getPreparedQueryString() const override { return text; }
    const QList<QVariant>& getBindValues() const override { return values; }
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

// Type and value, so that an integer 1 and a text "1" differ, and a NULL
// differs from no value at all ("none"); lists as [a, b].
QString describe(const QVariant& value)
{
    if (!value.isValid())
        return QStringLiteral("none");
    if (value.isNull())
        return QString::fromLatin1(value.typeName()) + QLatin1String("(NULL)");
    if (value.type() == QVariant::List) {
        QStringList items;
        for (const QVariant& item : value.toList())
            items.append(describe(item));
        return QLatin1Char('[') + items.join(QStringLiteral(", ")) + QLatin1Char(']');
    }
    return QString::fromLatin1(value.typeName()) + QLatin1Char('(') + value.toString() + QLatin1Char(')');
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
    void pragmasAfterOpening();
    void statementCalls_data();
    void statementCalls();
    void executeTransaction_data();
    void executeTransaction();
    void emptyDatabase();
    void getDatabaseVersionInfo_data();
    void getDatabaseVersionInfo();
    void tablesRekeyAndClose();

private:
    // Opens a fresh connection on a file that the shell made with sql.
    std::unique_ptr<SqliteConnection> openOn(const QString& sql);

    std::unique_ptr<TestDatabase> files;
    QString path;
};

void TestSqliteConnection::initTestCase()
{
    QLoggingCategory::setFilterRules(QStringLiteral("zelmor.SqliteConnection.info=true"));
    qRegisterMetaType<DatabaseConnectionError>();
}

std::unique_ptr<SqliteConnection> TestSqliteConnection::openOn(const QString& sql)
{
    files = std::make_unique<TestDatabase>();
    path = files->createEncrypted(QStringLiteral("test.db"), sql);
    if (path.isEmpty()) {
        qWarning("shell failed: %s", qPrintable(files->lastError()));
        return nullptr;
    }
    auto connection = std::make_unique<SqliteConnection>(uniqueConnectionName());
    if (!connection->openDatabase(path, QString(), QString(), projectKey))
        return nullptr;
    return connection;
}

void TestSqliteConnection::openDatabase_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("opened");
    QTest::addColumn<bool>("readable");

    files = std::make_unique<TestDatabase>();
    const QString sql = QStringLiteral("CREATE TABLE t(a INTEGER); INSERT INTO t VALUES (1), (2);");
    const QString encrypted = files->createEncrypted(QStringLiteral("e.db"), sql);
    // About 20 pages, cut short.
    QFile whole(files->createEncrypted(QStringLiteral("whole.db"),
                                       sql
                                           + "WITH RECURSIVE c(x) AS (SELECT 3 UNION ALL SELECT x + 1 FROM c"
                                             " WHERE x < 2000) INSERT INTO t SELECT x FROM c;"));
    QVERIFY2(whole.open(QIODevice::ReadOnly) && whole.size() > 8 * 1024, qPrintable(files->lastError()));
    const QString cut = files->createFile(QStringLiteral("cut.db"), whole.readAll().left(int(whole.size() / 2)));

    QTest::newRow("encrypted, right key") << encrypted << projectKey << true << true;
    // A wrong key shows only at the first statement that reads a page.
    QTest::newRow("encrypted, wrong key") << encrypted << otherKey << true << false;
    // A plain file must not pass for encrypted data.
    QTest::newRow("plain sqlite3 file") << files->createPlain(QStringLiteral("p.db"), sql) << projectKey << true
                                        << false;
    QTest::newRow("text file") << files->createFile("x.db", QByteArray("no database\n").repeated(99)) << projectKey
                               << true << false;
    QTest::newRow("truncated to half") << cut << projectKey << true << false;
    QTest::newRow("missing folder") << files->filePath("no/such/folder/x.db") << projectKey << false << false;
}

void TestSqliteConnection::openDatabase()
{
    QFETCH(QString, file);
    QFETCH(QString, key);
    QFETCH(bool, opened);
    QFETCH(bool, readable);
    QVERIFY(!file.isEmpty());

    SqliteConnection connection(uniqueConnectionName());
    QSignalSpy errors(&connection, &SqliteConnection::error);
    LogCapture log(category);
    QCOMPARE(connection.openDatabase(file, QStringLiteral("ignored"), QStringLiteral("ignored"), key), opened);
    // The key is never logged.
    QCOMPARE(log.texts(), opened ? QStringList() : QStringList{"critical: Could not open database '" + file + "'"});

    QCOMPARE(connection.containsTable(QStringLiteral("t")), readable);
    const QVariantList column = connection.fetchSingleColumn(FixedStatement(QStringLiteral("SELECT a FROM t")));
    QCOMPARE(describe(column), readable ? QStringLiteral("[qlonglong(1), qlonglong(2)]") : QStringLiteral("[]"));
    QCOMPARE(codesOf(errors), readable ? ErrorCodes() : opened ? ErrorCodes{6} : (ErrorCodes{2, 6}));
    // Each failure is logged once, as critical.
    QCOMPARE(log.messages(QtCriticalMsg).size(), int(!opened) + int(!readable));
}

// Right after opening: foreign keys enforced, journal and temporary tables in memory.
void TestSqliteConnection::pragmasAfterOpening()
{
    auto connection = openOn(QStringLiteral("CREATE TABLE parent(id INTEGER PRIMARY KEY);"
                                            "CREATE TABLE child(parent_id INTEGER REFERENCES parent(id));"));
    QVERIFY(connection);
    QSignalSpy errors(connection.get(), &SqliteConnection::error);
    const auto pragma = [&](const char* name) {
        return describe(connection->fetchSingleValue(FixedStatement(QStringLiteral("PRAGMA %1").arg(name))));
    };
    QCOMPARE(pragma("foreign_keys"), QStringLiteral("qlonglong(1)"));
    QCOMPARE(pragma("journal_mode"), QStringLiteral("QString(memory)"));
    QCOMPARE(pragma("temp_store"), QStringLiteral("qlonglong(2)")); // 2: MEMORY
    {
        LogCapture log(category);
        QVERIFY(!connection->execute(FixedStatement(QStringLiteral("INSERT INTO child VALUES (99)"))).success);
        QCOMPARE(logTexts(log), QStringList{"critical: FOREIGN KEY constraint failed"});
    }
    QCOMPARE(codesOf(errors), ErrorCodes{5});
    QCOMPARE(shell(path, QStringLiteral("SELECT count(*) FROM child;")), QStringLiteral("0"));
}

void TestSqliteConnection::statementCalls_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariantList>("values");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<ErrorCodes>("expectedErrors");
    QTest::addColumn<QString>("logged");
    // The first word of the name is the call.
    const auto row = [](const char* name, const QString& text, const QVariantList& values, const QString& expected,
                        const ErrorCodes& errors = {}, const QString& logged = QString()) {
        QTest::newRow(name) << text << values << expected << errors << logged;
    };

    const QString oneColumn = QStringLiteral("SELECT label FROM n WHERE k < ? ORDER BY k");
    const QString twoColumns = QStringLiteral("SELECT k, label FROM n WHERE k < ? ORDER BY k");
    const QString values =
        QStringLiteral("warning: The result should consist of 1 or 0 values but instead it consists of ");

    row("execute: insert", "INSERT INTO n (label) VALUES (?)", {"four"}, "true 4");
    row("execute: constraint violated", "INSERT INTO n (k, label) VALUES (?, ?)", {1, 2}, "false 0", {5},
        "critical: UNIQUE constraint failed: n.k");
    row("value: one", oneColumn, {2}, "QString(one)");
    row("value: binds in list order", "SELECT ? || ? || ?", {"a", "b", "c"}, "QString(abc)");
    row("value: none, silently", oneColumn, {1}, "none");
    // One row whose value is NULL is not "no row": the value is there, as a null text.
    row("value: NULL", "SELECT amount FROM n WHERE k = ?", {1}, "QString(NULL)");
    row("value: two rows", oneColumn, {3}, "none", {8}, values + "2 row(s) and 1 column(s)");
    row("value: one row of two columns", twoColumns, {2}, "none", {8}, values + "1 row(s) and 2 column(s)");
    row("row: one", twoColumns, {2}, "[qlonglong(1), QString(one)]");
    row("row: three rows", twoColumns, {9}, "[]", {8},
        "warning: The result should consist of 1 or 0 rows but instead it consists of 3 rows");
    row("column: three rows in order", oneColumn, {9}, "[QString(one), QString(two), QString(three)]");
    row("column: two columns", twoColumns, {9}, "[]", {8},
        "warning: The result should consist of exactly 1 or 0 columns but instead it consists of 2 columns");
    // An INTEGER column keeps what does not look like a number as text.
    row("column: text in an integer column", "SELECT amount FROM n ORDER BY k", {},
        "[QString(NULL), QString(abc), qlonglong(17)]");
    row("callback: rows in order", "SELECT k, label FROM n WHERE k > ? ORDER BY k DESC", {1},
        "[[qlonglong(3), QString(three)], [qlonglong(2), QString(two)]]");
    row("callback: not preparable", "SELECT label FROM missing", {}, "[]", {6}, "critical: no such table: missing");
    // Prepares, but fails when run.
    row("callback: fails when run", "SELECT abs(?)", {std::numeric_limits<qlonglong>::min()}, "[]", {5},
        "critical: integer overflow");
}

void TestSqliteConnection::statementCalls()
{
    QFETCH(QString, text);
    QFETCH(QVariantList, values);

    auto connection =
        openOn(QStringLiteral("CREATE TABLE n(k INTEGER PRIMARY KEY, label TEXT, amount INTEGER);"
                              "INSERT INTO n VALUES (1, 'one', NULL), (2, 'two', 'abc'), (3, 'three', '17');"));
    QVERIFY(connection);
    QSignalSpy errors(connection.get(), &SqliteConnection::error);
    LogCapture log(category);

    const FixedStatement statement(text, values);
    const QString call = QString::fromLatin1(QTest::currentDataTag()).section(QLatin1Char(':'), 0, 0);
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
    QTEST(actual, "expected");
    QTEST(codesOf(errors), "expectedErrors");
    QTEST(logTexts(log).join(QLatin1Char('\n')), "logged");
}

void TestSqliteConnection::executeTransaction_data()
{
    QTest::addColumn<Statements>("statements");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QString>("committed");
    QTest::addColumn<ErrorCodes>("expectedErrors");
    QTest::addColumn<QString>("logged");

    const QString insert = QStringLiteral("INSERT INTO p (name) VALUES (?)");
    const Statement a{insert, {"a"}};
    const Statement b{insert, {"b"}};
    const Statement nowhere{QStringLiteral("INSERT INTO nowhere VALUES (?)"), {1}};

    QTest::newRow("empty list") << Statements{} << true << "" << ErrorCodes{} << "";
    QTest::newRow("two inserts on one query") << Statements{a, b} << true << "1|a\n2|b" << ErrorCodes{} << "";
    QTest::newRow("third violates a constraint")
        << Statements{a, b, a} << false << "" << ErrorCodes{} << "critical: UNIQUE constraint failed: p.name";
    QTest::newRow("second not preparable")
        << Statements{a, nowhere} << false << "" << ErrorCodes{6} << "critical: no such table: nowhere";
    QTest::newRow("null entry") << Statements{a, {QString(), {}}, b} << false << "" << ErrorCodes{} << "";
}

void TestSqliteConnection::executeTransaction()
{
    QFETCH(Statements, statements);

    auto connection = openOn(QStringLiteral("CREATE TABLE p(id INTEGER PRIMARY KEY, name TEXT UNIQUE);"));
    QVERIFY(connection);
    QSignalSpy errors(connection.get(), &SqliteConnection::error);
    QList<QSharedPointer<ISqlQuery>> queries;
    for (const Statement& statement : statements) {
        queries.append(statement.first.isNull()
                           ? QSharedPointer<ISqlQuery>()
                           : QSharedPointer<FixedStatement>::create(statement.first, statement.second));
    }
    {
        LogCapture capture(category);
        QTEST(connection->executeTransaction(queries), "result");
        QTEST(logTexts(capture).join(QLatin1Char('\n')), "logged");
    }
    QTEST(codesOf(errors), "expectedErrors");
    // Another process sees only what was committed.
    QTEST(shell(path, QStringLiteral("SELECT id, name FROM p ORDER BY id;")), "committed");
    // The journal lay on disk for the transaction only (a process killed in
    // the middle of one: tst_sqlrecordsetdatabaseconnection).
    QCOMPARE(describe(connection->fetchSingleValue(FixedStatement(QStringLiteral("PRAGMA journal_mode")))),
             QStringLiteral("QString(memory)"));
    QVERIFY(!QFile::exists(path + QStringLiteral("-journal")));

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
            const QStringList expected =
                fails ? QStringList{off, "critical: child rows are kept",
                                    "warning: Failed to empty tables of database '" + name + "'", on}
                      : QStringList{off, on, "info: Emptied all tables of database '" + name + "'"};
            QCOMPARE(logTexts(capture), expected);
        }
        QCOMPARE(shell(path, QStringLiteral(
                                 "SELECT count(*) FROM parent; SELECT count(*) FROM child;"
                                 " SELECT version FROM database_version_info; SELECT count(*) FROM sqlite_sequence;")),
                 fails ? QStringLiteral("2\n2\n17\n19\n1") : QStringLiteral("0\n0\n17\n19\n0"));

        // Foreign keys are on again: a dangling reference is refused.
        QCOMPARE(connection->fetchSingleValue(FixedStatement(QStringLiteral("PRAGMA foreign_keys"))),
                 QVariant(qlonglong(1)));
        QVERIFY(
            !connection->execute(FixedStatement(QStringLiteral("INSERT INTO child (parent_id) VALUES (99)"))).success);
        QCOMPARE(codesOf(errors), ErrorCodes{5}); // and no other
        errors.clear();
        QVERIFY(connection->execute(FixedStatement(QStringLiteral("DROP TRIGGER IF EXISTS keep"))).success);
    }
}

void TestSqliteConnection::getDatabaseVersionInfo_data()
{
    QTest::addColumn<QString>("sql");
    QTest::addColumn<int>("version");

    const QString table = QStringLiteral("CREATE TABLE database_version_info(version INTEGER);");
    const QString rows = table + QStringLiteral("INSERT INTO database_version_info VALUES ");
    QTest::newRow("no version table") << "CREATE TABLE t(a);" << 0;
    QTest::newRow("empty version table") << table << 0;
    QTest::newRow("17 and 19") << rows + "(17), (19);" << 19;
    QTest::newRow("19 and 17") << rows + "(19), (17);" << 19;
    QTest::newRow("only below zero") << rows + "(-5), (-1);" << 0;
    QTest::newRow("only the exact name")
        << "CREATE TABLE database_version_info_old(version); INSERT INTO database_version_info_old VALUES (30);" << 0;
}

void TestSqliteConnection::getDatabaseVersionInfo()
{
    QFETCH(QString, sql);

    auto connection = openOn(sql);
    QVERIFY(connection);
    QSignalSpy errors(connection.get(), &SqliteConnection::error);
    QTEST(connection->getDatabaseVersionInfo(), "version");
    QCOMPARE(codesOf(errors), ErrorCodes{});
}

void TestSqliteConnection::tablesRekeyAndClose()
{
    auto connection = openOn(QStringLiteral("CREATE TABLE Chamber(id INTEGER PRIMARY KEY, name TEXT, created DATETIME);"
                                            "INSERT INTO Chamber (name) VALUES ('kept');"
                                            "CREATE VIEW chamber_view AS SELECT id FROM Chamber;"));
    QVERIFY(connection);
    QSignalSpy errors(connection.get(), &SqliteConnection::error);
    QVERIFY(connection->containsTable(QStringLiteral("Chamber")));
    // Case-sensitive, and views and the engine's own tables are no tables.
    for (const char* name : {"chamber", "chamber_view", "sqlite_master", "nothing"})
        QVERIFY2(!connection->containsTable(QLatin1String(name)), name);
    QCOMPARE(connection->getColumnNames(QStringLiteral("Chamber")), (QStringList{"id", "name", "created"}));
    QCOMPARE(connection->getColumnNames(QStringLiteral("nothing")), QStringList());

    QVERIFY(connection->rekeyDatabase(otherKey));
    QCOMPARE(codesOf(errors), ErrorCodes{});
    const QString name = connection->getDatabaseFilePath();
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

    QCOMPARE(shell(path, QStringLiteral("SELECT name FROM Chamber;"), otherKey), QStringLiteral("kept"));
}

QTEST_GUILESS_MAIN(TestSqliteConnection)
#include "tst_sqliteconnection.moc"
