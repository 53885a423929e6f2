#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/sqlhelper.h"
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

namespace sqlhelper = zelmor::base::connection::databaseconnection::sqlhelper;

using Rows = QList<QVariantList>;
using ErrorCodes = QList<int>;
// Statement text and values; a null text stands for a null entry.
using Statement = QPair<QString, QVariantList>;
using Statements = QList<Statement>;

Q_DECLARE_METATYPE(Rows)
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

// Type and value, so that an integer 1 and a text "1" differ.
QString describe(const QVariant& value)
{
    if (!value.isValid())
        return QStringLiteral("NULL");
    if (value.userType() == QMetaType::QByteArray)
        return QStringLiteral("QByteArray(%1)").arg(QString::fromLatin1(value.toByteArray().toHex()));
    return QString::fromLatin1(value.typeName()) + QLatin1Char('(') + value.toString() + QLatin1Char(')');
}

QString describe(const QVariantList& row)
{
    QStringList items;
    for (const QVariant& value : row)
        items.append(describe(value));
    return QLatin1Char('[') + items.join(QStringLiteral(", ")) + QLatin1Char(']');
}

QStringList describe(const Rows& rows)
{
    QStringList items;
    for (const QVariantList& row : rows)
        items.append(describe(row));
    return items;
}

QList<QSharedPointer<ISqlQuery>> toQueries(const Statements& statements)
{
    QList<QSharedPointer<ISqlQuery>> queries;
    for (const Statement& statement : statements) {
        if (statement.first.isNull())
            queries.append(QSharedPointer<ISqlQuery>());
        else
            queries.append(QSharedPointer<FixedStatement>::create(statement.first, statement.second));
    }
    return queries;
}

// What another process sees in the file: only committed data.
QString shell(const QString& path, const QString& key, const QString& sql)
{
    const TestDatabase::ShellResult result = TestDatabase::runSqlcipher(path, key, sql);
    if (!result.ok)
        return QStringLiteral("shell failed: ") + result.errorOutput.trimmed();
    return result.output.trimmed();
}

// A file of about 20 pages that the shell wrote, for cutting short.
QByteArray encryptedFileContent(TestDatabase& db)
{
    const QString path = db.createEncrypted(
        QStringLiteral("whole.db"),
        QStringLiteral("CREATE TABLE t(a INTEGER);"
                       "WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c WHERE x < 2000)"
                       " INSERT INTO t SELECT x FROM c;"));
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

} // namespace

class TestSqliteConnection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void openDatabase_data();
    void openDatabase();
    void bindValuesRoundTrip_data();
    void bindValuesRoundTrip();
    void executeFailures_data();
    void executeFailures();
    void singleShapes_data();
    void singleShapes();
    void textInIntegerColumn_data();
    void textInIntegerColumn();
    void fetchWithCallback_data();
    void fetchWithCallback();
    void executeTransaction_data();
    void executeTransaction();
    void emptyDatabase_data();
    void emptyDatabase();
    void getDatabaseVersionInfo_data();
    void getDatabaseVersionInfo();
    void rekeyDatabase();
    void containsTable_data();
    void containsTable();
    void getColumnNames_data();
    void getColumnNames();
    void closeAndDestroy();
    void errorTravelsQueued();

private:
    // Opens a fresh connection on a file that the shell made with sql.
    std::unique_ptr<SqliteConnection> openOn(const QString& sql, QString* pathOut = nullptr);

    std::unique_ptr<TestDatabase> db;
};

void TestSqliteConnection::initTestCase()
{
    QLoggingCategory::setFilterRules(QStringLiteral("zelmor.SqliteConnection.info=true"));
    qRegisterMetaType<DatabaseConnectionError>();
}

std::unique_ptr<SqliteConnection> TestSqliteConnection::openOn(const QString& sql, QString* pathOut)
{
    db = std::make_unique<TestDatabase>();
    const QString path = db->createEncrypted(QStringLiteral("test.db"), sql);
    if (path.isEmpty()) {
        qWarning("shell failed: %s", qPrintable(db->lastError()));
        return nullptr;
    }
    auto connection = std::make_unique<SqliteConnection>(uniqueConnectionName());
    if (!connection->openDatabase(path, QString(), QString(), projectKey))
        return nullptr;
    if (pathOut)
        *pathOut = path;
    return connection;
}

void TestSqliteConnection::openDatabase_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("opened");
    QTest::addColumn<ErrorCodes>("openErrors");
    QTest::addColumn<QStringList>("openLog");
    QTest::addColumn<bool>("hasTable");
    QTest::addColumn<Rows>("rows");
    QTest::addColumn<ErrorCodes>("fetchErrors");

    const Rows twoRows{{qlonglong(1)}, {qlonglong(2)}};
    QTest::newRow("encrypted, right key") << "encrypted" << projectKey << true << ErrorCodes{} << QStringList{}
                                          << true << twoRows << ErrorCodes{};
    // A wrong key shows only at the first statement that reads a page.
    QTest::newRow("encrypted, wrong key") << "encrypted" << otherKey << true << ErrorCodes{} << QStringList{}
                                          << false << Rows{} << ErrorCodes{6};
    // A plain file must not pass for encrypted data.
    QTest::newRow("plain sqlite3 file") << "plain" << projectKey << true << ErrorCodes{} << QStringList{} << false
                                        << Rows{} << ErrorCodes{6};
    QTest::newRow("text file") << "text" << projectKey << true << ErrorCodes{} << QStringList{} << false << Rows{}
                               << ErrorCodes{6};
    QTest::newRow("truncated to one page") << "cut 1024" << projectKey << true << ErrorCodes{} << QStringList{}
                                           << false << Rows{} << ErrorCodes{6};
    QTest::newRow("truncated to half") << "cut half" << projectKey << true << ErrorCodes{} << QStringList{}
                                       << false << Rows{} << ErrorCodes{6};
    QTest::newRow("empty file is a new database") << "empty" << projectKey << true << ErrorCodes{} << QStringList{}
                                                  << false << Rows{} << ErrorCodes{6};
    QTest::newRow("missing folder") << "missing folder" << projectKey << false << ErrorCodes{2}
                                    << QStringList{QStringLiteral("critical: Could not open database '%path%'")}
                                    << false << Rows{} << ErrorCodes{6};
}

void TestSqliteConnection::openDatabase()
{
    QFETCH(QString, file);
    QFETCH(QString, key);
    QFETCH(bool, opened);
    QFETCH(ErrorCodes, openErrors);
    QFETCH(QStringList, openLog);
    QFETCH(bool, hasTable);
    QFETCH(Rows, rows);
    QFETCH(ErrorCodes, fetchErrors);

    TestDatabase files;
    const QString tableSql = QStringLiteral("CREATE TABLE t(a INTEGER); INSERT INTO t VALUES (1), (2);");
    QString path;
    if (file == QLatin1String("encrypted")) {
        path = files.createEncrypted(QStringLiteral("e.db"), tableSql);
    } else if (file == QLatin1String("plain")) {
        path = files.createPlain(QStringLiteral("p.db"), tableSql);
    } else if (file == QLatin1String("text")) {
        path = files.createFile(QStringLiteral("x.db"), QByteArray("no database, just some text\n").repeated(100));
    } else if (file.startsWith(QLatin1String("cut"))) {
        const QByteArray whole = encryptedFileContent(files);
        QVERIFY2(whole.size() > 8 * 1024, qPrintable(files.lastError()));
        const int length = file == QLatin1String("cut half") ? whole.size() / 2 : 1024;
        path = files.createFile(QStringLiteral("cut.db"), whole.left(length));
    } else if (file == QLatin1String("empty")) {
        path = files.createFile(QStringLiteral("empty.db"), QByteArray());
    } else {
        path = files.filePath(QStringLiteral("no/such/folder/x.db"));
    }
    QVERIFY2(!path.isEmpty(), qPrintable(files.lastError()));
    openLog.replaceInStrings(QStringLiteral("%path%"), path);

    SqliteConnection connection(uniqueConnectionName());
    QSignalSpy errors(&connection, &SqliteConnection::error);
    {
        LogCapture log(category);
        QCOMPARE(connection.openDatabase(path, QStringLiteral("ignored"), QStringLiteral("ignored"), key), opened);
        QCOMPARE(log.texts(), openLog);
    }
    QCOMPARE(codesOf(errors), openErrors);
    errors.clear();

    QCOMPARE(connection.containsTable(QStringLiteral("t")), hasTable);
    QCOMPARE(codesOf(errors), ErrorCodes{});

    SqlQuery select;
    select.selectColumn(QStringLiteral("a")).fromTable(QStringLiteral("t"));
    LogCapture log(category);
    QCOMPARE(describe(connection.fetch(select)), describe(rows));
    QCOMPARE(codesOf(errors), fetchErrors);
    // Each failure is logged once, as critical.
    QCOMPARE(log.messages(QtCriticalMsg).size(), fetchErrors.size());
}

void TestSqliteConnection::bindValuesRoundTrip_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QVariant>("readBack");

    QTest::newRow("int") << QVariant(42) << "integer|42" << QVariant(qlonglong(42));
    QTest::newRow("64-bit integer") << QVariant(qlonglong(-9000000000LL)) << "integer|-9000000000"
                                    << QVariant(qlonglong(-9000000000LL));
    QTest::newRow("bool") << QVariant(true) << "integer|1" << QVariant(qlonglong(1));
    QTest::newRow("real") << QVariant(2.5) << "real|2.5" << QVariant(2.5);
    QTest::newRow("text") << QVariant(QString::fromUtf8("Gr\xc3\xb6\xc3\x9f" "e")) << QString::fromUtf8("text|'Gr\xc3\xb6\xc3\x9f" "e'")
                          << QVariant(QString::fromUtf8("Gr\xc3\xb6\xc3\x9f" "e"));
    // A quote in a value never reaches the statement text.
    QTest::newRow("text with quote") << QVariant(QStringLiteral("it's'); DROP TABLE v; --"))
                                     << "text|'it''s''); DROP TABLE v; --'"
                                     << QVariant(QStringLiteral("it's'); DROP TABLE v; --"));
    QTest::newRow("empty text stays text") << QVariant(QLatin1String("")) << "text|''" << QVariant(QLatin1String(""));
    QTest::newRow("blob") << QVariant(QByteArray("\x00\x01\xff", 3)) << "blob|X'0001FF'"
                          << QVariant(QByteArray("\x00\x01\xff", 3));
    QTest::newRow("NULL") << QVariant() << "null|NULL" << QVariant();
}

void TestSqliteConnection::bindValuesRoundTrip()
{
    QFETCH(QVariant, value);
    QFETCH(QString, stored);
    QFETCH(QVariant, readBack);

    QString path;
    // No declared type: the column keeps what was bound.
    auto connection = openOn(QStringLiteral("CREATE TABLE v(id INTEGER PRIMARY KEY, x);"
                                            "INSERT INTO v VALUES (1, 'first');"),
                             &path);
    QVERIFY(connection);
    QSignalSpy errors(connection.get(), &SqliteConnection::error);

    SqlQuery insert;
    insert.insertTable(QStringLiteral("v")).column(QStringLiteral("x")).value(value);
    const ISqlConnection::ExecuteResult result = connection->execute(insert);
    QVERIFY(result.success);
    QCOMPARE(result.lastInsertId, quint64(2));

    QCOMPARE(shell(path, projectKey, QStringLiteral("SELECT typeof(x), quote(x) FROM v WHERE id = 2;")), stored);

    SqlQuery select;
    select.selectColumn(QStringLiteral("x")).fromTable(QStringLiteral("v")).whereColumn(QStringLiteral("id")).equals(2);
    QCOMPARE(describe(connection->fetchSingleValue(select)), describe(readBack));
    QCOMPARE(codesOf(errors), ErrorCodes{});
}

void TestSqliteConnection::executeFailures_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariantList>("values");
    QTest::addColumn<ErrorCodes>("expectedErrors");
    QTest::addColumn<QString>("engineMessage");

    QTest::newRow("constraint violated") << "INSERT INTO v (id, x) VALUES (?, ?)" << QVariantList{1, 2}
                                         << ErrorCodes{5} << "UNIQUE constraint failed: v.id";
    QTest::newRow("unknown table") << "INSERT INTO nowhere VALUES (?)" << QVariantList{1} << ErrorCodes{6}
                                   << "no such table: nowhere";
    QTest::newRow("syntax") << "INSERT INTO v x VALUES" << QVariantList{} << ErrorCodes{6} << "syntax error";
    QTest::newRow("value missing") << "INSERT INTO v (x) VALUES (?)" << QVariantList{} << ErrorCodes{5}
                                   << "0 value(s) bound";
    QTest::newRow("value too many") << "INSERT INTO v (x) VALUES (?)" << QVariantList{1, 2} << ErrorCodes{5}
                                    << "2 value(s) bound";
}

void TestSqliteConnection::executeFailures()
{
    QFETCH(QString, text);
    QFETCH(QVariantList, values);
    QFETCH(ErrorCodes, expectedErrors);
    QFETCH(QString, engineMessage);

    QString path;
    auto connection = openOn(QStringLiteral("CREATE TABLE v(id INTEGER PRIMARY KEY, x); INSERT INTO v VALUES (1, 'a');"),
                             &path);
    QVERIFY(connection);
    QSignalSpy errors(connection.get(), &SqliteConnection::error);
    LogCapture log(category);

    const ISqlConnection::ExecuteResult result = connection->execute(FixedStatement(text, values));
    QVERIFY(!result.success);
    QCOMPARE(result.lastInsertId, quint64(0));
    QCOMPARE(codesOf(errors), expectedErrors);
    QCOMPARE(log.records().size(), 1);
    QCOMPARE(log.records().first().type, QtCriticalMsg);
    QVERIFY2(log.records().first().message.contains(engineMessage), qPrintable(log.records().first().message));
    QCOMPARE(shell(path, projectKey, QStringLiteral("SELECT id, x FROM v;")), QStringLiteral("1|a"));
}

void TestSqliteConnection::singleShapes_data()
{
    QTest::addColumn<QString>("shape");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariantList>("values");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<ErrorCodes>("expectedErrors");
    QTest::addColumn<QStringList>("warnings");

    const QString oneColumn = QStringLiteral("SELECT label FROM n WHERE k < ? ORDER BY k");
    const QString twoColumns = QStringLiteral("SELECT k, label FROM n WHERE k < ? ORDER BY k");

    QTest::newRow("value: one") << "value" << oneColumn << QVariantList{2} << "QString(one)" << ErrorCodes{}
                                << QStringList{};
    QTest::newRow("value: none, silently") << "value" << oneColumn << QVariantList{1} << "NULL" << ErrorCodes{}
                                           << QStringList{};
    QTest::newRow("value: two rows") << "value" << oneColumn << QVariantList{3} << "NULL" << ErrorCodes{8}
                                     << QStringList{QStringLiteral("The result should consist of 1 or 0 values but "
                                                                   "instead it consists of 2 row(s) and 1 column(s)")};
    QTest::newRow("value: one row of two columns")
        << "value" << twoColumns << QVariantList{2} << "NULL" << ErrorCodes{8}
        << QStringList{QStringLiteral(
               "The result should consist of 1 or 0 values but instead it consists of 1 row(s) and 2 column(s)")};
    QTest::newRow("value: three rows of two columns")
        << "value" << twoColumns << QVariantList{9} << "NULL" << ErrorCodes{8}
        << QStringList{QStringLiteral(
               "The result should consist of 1 or 0 values but instead it consists of 3 row(s) and 2 column(s)")};
    QTest::newRow("value: failing statement, no shape warning")
        << "value" << "SELECT label FROM missing" << QVariantList{} << "NULL" << ErrorCodes{6} << QStringList{};
    QTest::newRow("value: binds in list order") << "value" << "SELECT ? || ? || ?" << QVariantList{"a", "b", "c"}
                                                << "QString(abc)" << ErrorCodes{} << QStringList{};

    QTest::newRow("row: one") << "row" << twoColumns << QVariantList{2} << "[qlonglong(1), QString(one)]"
                              << ErrorCodes{} << QStringList{};
    QTest::newRow("row: none, silently") << "row" << twoColumns << QVariantList{0} << "[]" << ErrorCodes{}
                                         << QStringList{};
    QTest::newRow("row: three rows")
        << "row" << twoColumns << QVariantList{9} << "[]" << ErrorCodes{8}
        << QStringList{QStringLiteral("The result should consist of 1 or 0 rows but instead it consists of 3 rows")};
    QTest::newRow("row: values in bind order") << "row" << "SELECT ?, ?, ?" << QVariantList{1, "b", QVariant()}
                                               << "[qlonglong(1), QString(b), NULL]" << ErrorCodes{} << QStringList{};

    QTest::newRow("column: three rows in order") << "column" << oneColumn << QVariantList{9}
                                                 << "[QString(one), QString(two), QString(three)]" << ErrorCodes{}
                                                 << QStringList{};
    QTest::newRow("column: none, silently") << "column" << oneColumn << QVariantList{0} << "[]" << ErrorCodes{}
                                            << QStringList{};
    QTest::newRow("column: two columns")
        << "column" << twoColumns << QVariantList{9} << "[]" << ErrorCodes{8}
        << QStringList{QStringLiteral(
               "The result should consist of exactly 1 or 0 columns but instead it consists of 2 columns")};
}

void TestSqliteConnection::singleShapes()
{
    QFETCH(QString, shape);
    QFETCH(QString, text);
    QFETCH(QVariantList, values);
    QFETCH(QString, expected);
    QFETCH(ErrorCodes, expectedErrors);
    QFETCH(QStringList, warnings);

    auto connection = openOn(QStringLiteral("CREATE TABLE n(k INTEGER, label TEXT);"
                                            "INSERT INTO n VALUES (1, 'one'), (2, 'two'), (3, 'three');"));
    QVERIFY(connection);
    QSignalSpy errors(connection.get(), &SqliteConnection::error);
    LogCapture log(category);

    const FixedStatement statement(text, values);
    QString actual;
    if (shape == QLatin1String("value"))
        actual = describe(connection->fetchSingleValue(statement));
    else if (shape == QLatin1String("row"))
        actual = describe(connection->fetchSingleRow(statement));
    else
        actual = describe(connection->fetchSingleColumn(statement));

    QCOMPARE(actual, expected);
    QCOMPARE(codesOf(errors), expectedErrors);
    QCOMPARE(log.messages(QtWarningMsg), warnings);
    for (const LogCapture::Record& record : log.records())
        QCOMPARE(record.category, category);
}

void TestSqliteConnection::textInIntegerColumn_data()
{
    QTest::addColumn<QString>("literal");
    QTest::addColumn<QString>("fetched");
    QTest::addColumn<int>("readInt");

    // An INTEGER column keeps what does not look like a number as text.
    QTest::newRow("text abc") << "'abc'" << "QString(abc)" << 0;
    QTest::newRow("empty text") << "''" << "QString()" << -1;
    QTest::newRow("NULL") << "NULL" << "NULL" << -1;
    QTest::newRow("number as text") << "'17'" << "qlonglong(17)" << 17;
}

void TestSqliteConnection::textInIntegerColumn()
{
    QFETCH(QString, literal);
    QFETCH(QString, fetched);
    QFETCH(int, readInt);

    auto connection =
        openOn(QStringLiteral("CREATE TABLE m(id INTEGER PRIMARY KEY, n INTEGER); INSERT INTO m VALUES (1, %1);")
                   .arg(literal));
    QVERIFY(connection);
    QSignalSpy errors(connection.get(), &SqliteConnection::error);

    SqlQuery select;
    select.selectColumn(QStringLiteral("n")).fromTable(QStringLiteral("m"));
    const QVariantList column = connection->fetchSingleColumn(select);
    QCOMPARE(column.size(), 1);
    QCOMPARE(describe(column.first()), fetched);
    QCOMPARE(sqlhelper::readIntSqlValue(column.first(), -1), readInt);
    QCOMPARE(codesOf(errors), ErrorCodes{});
}

void TestSqliteConnection::fetchWithCallback_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariantList>("values");
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<ErrorCodes>("expectedErrors");

    QTest::newRow("three rows in order") << "SELECT k, label FROM n ORDER BY k DESC" << QVariantList{}
                                         << QStringList{"[qlonglong(3), QString(three)]", "[qlonglong(2), QString(two)]",
                                                        "[qlonglong(1), QString(one)]"}
                                         << ErrorCodes{};
    QTest::newRow("bound filter") << "SELECT label FROM n WHERE k = ?" << QVariantList{2}
                                  << QStringList{"[QString(two)]"} << ErrorCodes{};
    QTest::newRow("no rows") << "SELECT label FROM n WHERE k = ?" << QVariantList{7} << QStringList{} << ErrorCodes{};
    QTest::newRow("not preparable") << "SELECT label FROM missing" << QVariantList{} << QStringList{}
                                    << ErrorCodes{6};
    // Prepares, but fails when run.
    QTest::newRow("fails when run") << "SELECT abs(?)" << QVariantList{QVariant(std::numeric_limits<qlonglong>::min())}
                                    << QStringList{} << ErrorCodes{5};
}

void TestSqliteConnection::fetchWithCallback()
{
    QFETCH(QString, text);
    QFETCH(QVariantList, values);
    QFETCH(QStringList, rows);
    QFETCH(ErrorCodes, expectedErrors);

    auto connection = openOn(QStringLiteral("CREATE TABLE n(k INTEGER, label TEXT);"
                                            "INSERT INTO n VALUES (1, 'one'), (2, 'two'), (3, 'three');"));
    QVERIFY(connection);
    QSignalSpy errors(connection.get(), &SqliteConnection::error);

    QStringList seen;
    QList<int> sizes;
    connection->fetch(FixedStatement(text, values), [&](QList<QVariant> row, int size) {
        seen.append(describe(row));
        sizes.append(size);
    });
    QCOMPARE(seen, rows);
    // The driver can't tell the size in advance.
    QCOMPARE(sizes, QVector<int>(rows.size(), -1).toList());
    QCOMPARE(codesOf(errors), expectedErrors);
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
    const Statement null{QString(), {}};

    QTest::newRow("empty list") << Statements{} << true << "" << ErrorCodes{} << QStringList{};
    QTest::newRow("two inserts on one query") << Statements{a, b} << true << "1|a\n2|b" << ErrorCodes{}
                                              << QStringList{};
    QTest::newRow("second violates a constraint")
        << Statements{a, a} << false << "" << ErrorCodes{} << QStringList{"critical: UNIQUE constraint failed: p.name"};
    QTest::newRow("third violates a constraint")
        << Statements{a, b, a} << false << "" << ErrorCodes{} << QStringList{"critical: UNIQUE constraint failed: p.name"};
    QTest::newRow("second not preparable")
        << Statements{a, {QStringLiteral("INSERT INTO nowhere VALUES (?)"), {1}}} << false << "" << ErrorCodes{6}
        << QStringList{"critical: no such table: nowhere"};
    QTest::newRow("null entry") << Statements{a, null, b} << false << "" << ErrorCodes{} << QStringList{};
}

void TestSqliteConnection::executeTransaction()
{
    QFETCH(Statements, statements);
    QFETCH(bool, result);
    QFETCH(QString, committed);
    QFETCH(ErrorCodes, expectedErrors);
    QFETCH(QStringList, log);

    QString path;
    auto connection = openOn(QStringLiteral("CREATE TABLE p(id INTEGER PRIMARY KEY, name TEXT UNIQUE);"), &path);
    QVERIFY(connection);
    QSignalSpy errors(connection.get(), &SqliteConnection::error);
    {
        LogCapture capture(category);
        QCOMPARE(connection->executeTransaction(toQueries(statements)), result);
        QStringList texts = capture.texts();
        // Engine errors are logged as the framework prints them; keep their words.
        for (QString& text : texts) {
            const int start = text.lastIndexOf(QStringLiteral(", \""));
            if (text.startsWith(QLatin1String("critical: QSqlError(")) && start > 0)
                text = QStringLiteral("critical: ") + text.mid(start + 3).chopped(2);
        }
        QCOMPARE(texts, log);
    }
    QCOMPARE(codesOf(errors), expectedErrors);
    // Another process sees only what was committed.
    QCOMPARE(shell(path, projectKey, QStringLiteral("SELECT id, name FROM p ORDER BY id;")), committed);

    // No transaction is left open: a later write is committed on its own.
    SqlQuery later;
    later.insertTable(QStringLiteral("p")).column(QStringLiteral("name")).value(QStringLiteral("z"));
    QVERIFY(connection->execute(later).success);
    QVERIFY(shell(path, projectKey, QStringLiteral("SELECT name FROM p ORDER BY id DESC LIMIT 1;")) == QLatin1String("z"));
}

void TestSqliteConnection::emptyDatabase_data()
{
    QTest::addColumn<bool>("refuseDelete");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QString>("contents");
    QTest::addColumn<QStringList>("log");

    QTest::newRow("all tables but the version")
        << false << true << "0|0|17,19|0"
        << QStringList{"info: Deactivated foreign key support.", "info: Activated foreign key support.",
                       "info: Emptied all tables of database '%name%'"};
    QTest::newRow("a delete fails")
        << true << false << "2|2|17,19|1"
        << QStringList{"info: Deactivated foreign key support.", "critical: child rows are kept",
                       "warning: Failed to empty tables of database '%name%'", "info: Activated foreign key support."};
}

void TestSqliteConnection::emptyDatabase()
{
    QFETCH(bool, refuseDelete);
    QFETCH(bool, result);
    QFETCH(QString, contents);
    QFETCH(QStringList, log);

    // The parent table comes first, so its rows go while the child's still
    // point to them: only possible with foreign keys off.
    QString sql = QStringLiteral(
        "CREATE TABLE parent(id INTEGER PRIMARY KEY, name TEXT);"
        "CREATE TABLE child(id INTEGER PRIMARY KEY AUTOINCREMENT, parent_id INTEGER NOT NULL REFERENCES parent(id));"
        "CREATE TABLE database_version_info(version INTEGER);"
        "INSERT INTO parent VALUES (1, 'a'), (2, 'b');"
        "INSERT INTO child (parent_id) VALUES (1), (2);"
        "INSERT INTO database_version_info VALUES (17), (19);");
    if (refuseDelete)
        sql += QStringLiteral("CREATE TRIGGER keep BEFORE DELETE ON child BEGIN SELECT RAISE(ABORT, 'child rows are kept'); END;");
    QString path;
    auto connection = openOn(sql, &path);
    QVERIFY(connection);
    QSignalSpy errors(connection.get(), &SqliteConnection::error);
    log.replaceInStrings(QStringLiteral("%name%"), connection->getDatabaseFilePath());

    {
        LogCapture capture(category);
        QCOMPARE(connection->emptyDatabase(), result);
        QStringList texts = capture.texts();
        for (QString& text : texts) {
            if (text.startsWith(QLatin1String("critical: QSqlError(")) && text.contains(QLatin1String("child rows are kept")))
                text = QStringLiteral("critical: child rows are kept");
        }
        QCOMPARE(texts, log);
    }
    QCOMPARE(codesOf(errors), ErrorCodes{});

    QCOMPARE(shell(path, projectKey,
                   QStringLiteral("SELECT (SELECT count(*) FROM parent) || '|' || (SELECT count(*) FROM child) || '|'"
                                  " || (SELECT group_concat(version) FROM (SELECT version FROM database_version_info"
                                  " ORDER BY version)) || '|' || (SELECT count(*) FROM sqlite_sequence);")),
             contents);

    // Foreign keys are on again: a dangling reference is refused.
    QCOMPARE(connection->fetchSingleValue(FixedStatement(QStringLiteral("PRAGMA foreign_keys"))), QVariant(qlonglong(1)));
    SqlQuery dangling;
    dangling.insertTable(QStringLiteral("child")).column(QStringLiteral("parent_id")).value(99);
    QVERIFY(!connection->execute(dangling).success);
    QCOMPARE(codesOf(errors), ErrorCodes{5});
}

void TestSqliteConnection::getDatabaseVersionInfo_data()
{
    QTest::addColumn<QString>("sql");
    QTest::addColumn<QString>("key");
    QTest::addColumn<int>("version");
    QTest::addColumn<ErrorCodes>("expectedErrors");

    const QString table = QStringLiteral("CREATE TABLE database_version_info(version INTEGER);");
    QTest::newRow("no version table") << "CREATE TABLE t(a);" << projectKey << 0 << ErrorCodes{};
    QTest::newRow("empty version table") << table << projectKey << 0 << ErrorCodes{};
    QTest::newRow("17 and 19") << table + "INSERT INTO database_version_info VALUES (17), (19);" << projectKey << 19
                               << ErrorCodes{};
    QTest::newRow("19 and 17") << table + "INSERT INTO database_version_info VALUES (19), (17);" << projectKey << 19
                               << ErrorCodes{};
    QTest::newRow("only below zero") << table + "INSERT INTO database_version_info VALUES (-5), (-1);" << projectKey
                                     << 0 << ErrorCodes{};
    QTest::newRow("NULL and 3") << table + "INSERT INTO database_version_info VALUES (NULL), (3);" << projectKey << 3
                                << ErrorCodes{};
    QTest::newRow("only the exact name") << "CREATE TABLE database_version_info_old(version);"
                                            "INSERT INTO database_version_info_old VALUES (30);"
                                         << projectKey << 0 << ErrorCodes{};
    QTest::newRow("wrong key") << table + "INSERT INTO database_version_info VALUES (19);" << otherKey << 0
                               << ErrorCodes{6};
}

void TestSqliteConnection::getDatabaseVersionInfo()
{
    QFETCH(QString, sql);
    QFETCH(QString, key);
    QFETCH(int, version);
    QFETCH(ErrorCodes, expectedErrors);

    TestDatabase files;
    const QString path = files.createEncrypted(QStringLiteral("v.db"), sql);
    QVERIFY2(!path.isEmpty(), qPrintable(files.lastError()));
    SqliteConnection connection(uniqueConnectionName());
    QVERIFY(connection.openDatabase(path, QString(), QString(), key));
    QSignalSpy errors(&connection, &SqliteConnection::error);
    LogCapture log(category);

    QCOMPARE(connection.getDatabaseVersionInfo(), version);
    QCOMPARE(codesOf(errors), expectedErrors);
}

void TestSqliteConnection::rekeyDatabase()
{
    QString path;
    auto connection = openOn(QStringLiteral("CREATE TABLE seed(a);"), &path);
    QVERIFY(connection);
    QSignalSpy errors(connection.get(), &SqliteConnection::error);

    SqlQuery create;
    create.createTable(QStringLiteral("r"), {{QStringLiteral("id"), SqlQuery::INTEGER,
                                              SqlQuery::PRIMARY_KEY | SqlQuery::NOT_NULL | SqlQuery::AUTO_INCREMENT},
                                             {QStringLiteral("name"), SqlQuery::TEXT}});
    QVERIFY(connection->execute(create).success);
    SqlQuery insert;
    insert.insertTable(QStringLiteral("r")).column(QStringLiteral("name")).value(QStringLiteral("kept"));
    QCOMPARE(connection->execute(insert).lastInsertId, quint64(1));

    QVERIFY(connection->rekeyDatabase(otherKey));
    connection->closeDatabase();
    connection.reset();

    QCOMPARE(shell(path, otherKey, QStringLiteral("SELECT id, name FROM r;")), QStringLiteral("1|kept"));
    QVERIFY(shell(path, projectKey, QStringLiteral("SELECT id, name FROM r;")).startsWith(QLatin1String("shell failed")));

    SqliteConnection withNewKey(uniqueConnectionName());
    QVERIFY(withNewKey.openDatabase(path, QString(), QString(), otherKey));
    QVERIFY(withNewKey.containsTable(QStringLiteral("r")));
    SqlQuery select;
    select.selectColumn(QStringLiteral("name")).fromTable(QStringLiteral("r"));
    QCOMPARE(withNewKey.fetchSingleValue(select), QVariant(QStringLiteral("kept")));
    withNewKey.closeDatabase();

    SqliteConnection withOldKey(uniqueConnectionName());
    QVERIFY(withOldKey.openDatabase(path, QString(), QString(), projectKey));
    QVERIFY(!withOldKey.containsTable(QStringLiteral("r")));
    QCOMPARE(codesOf(errors), ErrorCodes{});
}

void TestSqliteConnection::containsTable_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("contained");

    QTest::newRow("exact") << "Chamber" << true;
    QTest::newRow("other case") << "chamber" << false;
    QTest::newRow("view is no table") << "chamber_view" << false;
    QTest::newRow("system table") << "sqlite_master" << false;
    QTest::newRow("missing") << "nothing" << false;
}

void TestSqliteConnection::containsTable()
{
    QFETCH(QString, name);
    QFETCH(bool, contained);

    auto connection =
        openOn(QStringLiteral("CREATE TABLE Chamber(id INTEGER); CREATE VIEW chamber_view AS SELECT id FROM Chamber;"));
    QVERIFY(connection);
    QCOMPARE(connection->containsTable(name), contained);
}

void TestSqliteConnection::getColumnNames_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QStringList>("names");

    QTest::newRow("declared order") << "g" << QStringList{"id", "name", "value", "created"};
    QTest::newRow("missing table") << "nothing" << QStringList{};
}

void TestSqliteConnection::getColumnNames()
{
    QFETCH(QString, table);
    QFETCH(QStringList, names);

    auto connection =
        openOn(QStringLiteral("CREATE TABLE g(id INTEGER PRIMARY KEY, name TEXT, value REAL, created DATETIME);"));
    QVERIFY(connection);
    QCOMPARE(connection->getColumnNames(table), names);
}

void TestSqliteConnection::closeAndDestroy()
{
    QString path;
    auto connection = openOn(QStringLiteral("CREATE TABLE t(a);"), &path);
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

void TestSqliteConnection::errorTravelsQueued()
{
    auto connection = openOn(QStringLiteral("CREATE TABLE t(a);"));
    QVERIFY(connection);

    ErrorCodes received;
    QObject receiver;
    connect(connection.get(), &SqliteConnection::error, &receiver,
            [&](DatabaseConnectionError code) { received.append(int(code)); }, Qt::QueuedConnection);

    // Through the interface, as the facade holds it.
    ISqlConnection& asInterface = *connection;
    QVERIFY(asInterface.fetch(FixedStatement(QStringLiteral("SELECT a FROM missing"))).isEmpty());
    asInterface.error(DatabaseConnectionError::UNEXPECTED_RESULT);
    QVERIFY(received.isEmpty());
    QTRY_COMPARE(received, (ErrorCodes{6, 8}));
}

QTEST_GUILESS_MAIN(TestSqliteConnection)
#include "tst_sqliteconnection.moc"
