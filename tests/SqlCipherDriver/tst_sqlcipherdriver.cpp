#include "SqlCipherDriver/SqlCipherDriver.h"

#include "support/TestDatabase.h"
#include "support/TestPaths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QPluginLoader>
#include <QPoint>
#include <QProcess>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlDriverPlugin>
#include <QSqlError>
#include <QSqlField>
#include <QSqlIndex>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QtTest>

#include <limits>
#include <memory>

#include <time.h>

using zelmor::sqldriver::SqlCipherDriver;
using zelmor::testsupport::TestDatabase;

Q_DECLARE_METATYPE(QSql::TableType)
Q_DECLARE_METATYPE(QSql::NumericalPrecisionPolicy)
Q_DECLARE_METATYPE(QVariant::Type)

namespace {

const QString projectKey = QLatin1String(TestDatabase::projectKey_);

// Three rows in t, a child table with a foreign key, nothing else.
const QString seedSql = QStringLiteral(
    "CREATE TABLE t(id INTEGER PRIMARY KEY, name TEXT NOT NULL, amount REAL DEFAULT 0.5, data BLOB);"
    "INSERT INTO t(id, name) VALUES (1, 'one'), (2, 'two'), (3, 'three');"
    "CREATE TABLE c(id INTEGER PRIMARY KEY, t_id INTEGER REFERENCES t(id));");

// Compares type and value: QVariant's operator== converts between types.
bool sameValue(const QVariant& actual, const QVariant& expected, QString* why)
{
    if (actual.userType() != expected.userType() || actual.isNull() != expected.isNull()
        || actual != expected) {
        *why = QStringLiteral("got %1(%2), null %3; expected %4(%5), null %6")
                   .arg(QString::fromLatin1(actual.typeName()), actual.toString())
                   .arg(actual.isNull())
                   .arg(QString::fromLatin1(expected.typeName()), expected.toString())
                   .arg(expected.isNull());
        return false;
    }
    return true;
}

QString bytesAsQuotedBlob(const QByteArray& bytes)
{
    return QLatin1String("X'") + QString::fromLatin1(bytes.toHex().toUpper()) + QLatin1Char('\'');
}

} // namespace

class tst_SqlCipherDriver : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void registersOnce();

    void readsValuesWrittenByShell_data();
    void readsValuesWrittenByShell();
    void bindsAndReadsBack_data();
    void bindsAndReadsBack();
    void dateTimeRoundTrip_data();
    void dateTimeRoundTrip();
    void precisionPolicy_data();
    void precisionPolicy();

    void wrongKeyShowsNoTables_data();
    void wrongKeyShowsNoTables();
    void rejectsFilesThatAreNoEncryptedDatabase_data();
    void rejectsFilesThatAreNoEncryptedDatabase();
    void openFailsInMissingFolder_data();
    void openFailsInMissingFolder();
    void keyAsPassword_data();
    void keyAsPassword();
    void readOnlyOption();

    void rowsAffectedAndLastInsertId_data();
    void rowsAffectedAndLastInsertId();
    void transactionEnds_data();
    void transactionEnds();
    void nestedTransactionFails();
    void reportsEngineErrors_data();
    void reportsEngineErrors();
    void statementTexts_data();
    void statementTexts();
    void navigation_data();
    void navigation();

    void listsTablesByType_data();
    void listsTablesByType();
    void describesTableColumns();
    void formatsLiteralsTheEngineReadsBack_data();
    void formatsLiteralsTheEngineReadsBack();
    void escapedIdentifierNamesTable();

    void sameTextInTwoLiveQueries();
    void reusesOneQueryForSeveralStatements();
    void cachedStatementSeesSchemaChange_data();
    void cachedStatementSeesSchemaChange();
    void recordCarriesCurrentRowValues();
    void namedPlaceholders();
    void pragmaRunsEachTime();
    void cacheIsBounded();
    void closeWithLiveQueries();
    void removeDatabaseWithLiveQuery();
    void vacuumAfterCachedStatements();
    void exportsAndRekeys();

    void loadsThroughPluginLoader();
    void loadsThroughPluginPath_data();
    void loadsThroughPluginPath();

private:
    // Opens a new connection and, unless key is null, runs "PRAGMA key".
    QSqlDatabase open(const QString& path, const QString& key = projectKey,
                      const QString& options = QString(), const QString& password = QString());
    QString seeded(const QString& fileName = QStringLiteral("seed.sqlite3"));
    static const SqlCipherDriver* driverOf(const QSqlDatabase& db);

    std::unique_ptr<TestDatabase> files_;
    QStringList connections_;
    int connectionCounter_ = 0;
};

void tst_SqlCipherDriver::initTestCase()
{
    QVERIFY(SqlCipherDriver::registerDriver());
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

QSqlDatabase tst_SqlCipherDriver::open(const QString& path, const QString& key,
                                       const QString& options, const QString& password)
{
    const QString name = QStringLiteral("tst%1").arg(++connectionCounter_);
    connections_ << name;
    QSqlDatabase db = QSqlDatabase::addDatabase(QLatin1String(SqlCipherDriver::driverName_), name);
    db.setDatabaseName(path);
    db.setConnectOptions(options);
    db.setPassword(password);
    if (!db.open())
        return db;
    if (!key.isNull()) {
        QSqlQuery query(db);
        if (!query.exec(QStringLiteral("PRAGMA key = '%1';").arg(key)))
            qWarning() << "PRAGMA key failed:" << query.lastError().text();
    }
    return db;
}

QString tst_SqlCipherDriver::seeded(const QString& fileName)
{
    const QString path = files_->createEncrypted(fileName, seedSql);
    if (path.isEmpty())
        qWarning() << "sqlcipher shell failed:" << files_->lastError();
    return path;
}

const SqlCipherDriver* tst_SqlCipherDriver::driverOf(const QSqlDatabase& db)
{
    return qobject_cast<const SqlCipherDriver*>(db.driver());
}

void tst_SqlCipherDriver::registersOnce()
{
    QVERIFY(SqlCipherDriver::registerDriver());
    QVERIFY(SqlCipherDriver::registerDriver());
    QCOMPARE(QSqlDatabase::drivers().count(QStringLiteral("QSQLCIPHER")), 1);
    QVERIFY(QSqlDatabase::isDriverAvailable(QStringLiteral("QSQLCIPHER")));
}

void tst_SqlCipherDriver::readsValuesWrittenByShell_data()
{
    QTest::addColumn<QString>("literal");
    QTest::addColumn<QVariant>("expected");

    QTest::newRow("integer") << "42" << QVariant(qlonglong(42));
    QTest::newRow("smallest integer") << "-9223372036854775807 - 1"
                                      << QVariant(std::numeric_limits<qlonglong>::min());
    QTest::newRow("largest integer") << "9223372036854775807"
                                     << QVariant(std::numeric_limits<qlonglong>::max());
    QTest::newRow("real") << "-2.5" << QVariant(-2.5);
    QTest::newRow("text") << "'chamber'" << QVariant(QStringLiteral("chamber"));
    QTest::newRow("empty text") << "''" << QVariant(QString(QLatin1String("")));
    QTest::newRow("unicode text") << QString::fromUtf8("'Grüße ✓ 温度 😀'")
                                  << QVariant(QString::fromUtf8("Grüße ✓ 温度 😀"));
    QTest::newRow("blob with zero bytes") << "X'00FF0001'"
                                          << QVariant(QByteArray("\x00\xff\x00\x01", 4));
    QTest::newRow("empty blob") << "X''" << QVariant(QByteArray(""));
    QTest::newRow("null") << "NULL" << QVariant();
}

void tst_SqlCipherDriver::readsValuesWrittenByShell()
{
    QFETCH(QString, literal);
    QFETCH(QVariant, expected);

    const QString path = files_->createEncrypted(
        QStringLiteral("values.sqlite3"),
        QStringLiteral("CREATE TABLE v(x); INSERT INTO v VALUES (%1);").arg(literal));
    QVERIFY2(!path.isEmpty(), qPrintable(files_->lastError()));
    QSqlDatabase db = open(path);
    QVERIFY2(db.isOpen(), qPrintable(db.lastError().text()));

    QSqlQuery query(db);
    query.setForwardOnly(true);
    QVERIFY2(query.exec(QStringLiteral("SELECT x FROM v")), qPrintable(query.lastError().text()));
    QVERIFY(query.next());
    QString why;
    QVERIFY2(sameValue(query.value(0), expected, &why), qPrintable(why));
    QCOMPARE(query.isNull(0), !expected.isValid());
    QVERIFY(!query.next());
}

void tst_SqlCipherDriver::bindsAndReadsBack_data()
{
    QTest::addColumn<QVariant>("bound");
    QTest::addColumn<QString>("storedAs"); // typeof() and quote() by the shell
    QTest::addColumn<QVariant>("readBack");

    const QVariant null;
    QTest::newRow("invalid") << QVariant() << "null|NULL" << null;
    QTest::newRow("null int") << QVariant(QVariant::Int) << "null|NULL" << null;
    QTest::newRow("null uint") << QVariant(QVariant::UInt) << "null|NULL" << null;
    QTest::newRow("null qlonglong") << QVariant(QVariant::LongLong) << "null|NULL" << null;
    QTest::newRow("null qulonglong") << QVariant(QVariant::ULongLong) << "null|NULL" << null;
    QTest::newRow("null double") << QVariant(QVariant::Double) << "null|NULL" << null;
    QTest::newRow("null bool") << QVariant(QVariant::Bool) << "null|NULL" << null;
    QTest::newRow("null string") << QVariant(QVariant::String) << "null|NULL" << null;
    QTest::newRow("null bytes") << QVariant(QVariant::ByteArray) << "null|NULL" << null;
    QTest::newRow("null date time") << QVariant(QVariant::DateTime) << "null|NULL" << null;
    QTest::newRow("null date") << QVariant(QVariant::Date) << "null|NULL" << null;
    QTest::newRow("null time") << QVariant(QVariant::Time) << "null|NULL" << null;

    QTest::newRow("true") << QVariant(true) << "integer|1" << QVariant(qlonglong(1));
    QTest::newRow("false") << QVariant(false) << "integer|0" << QVariant(qlonglong(0));
    QTest::newRow("int") << QVariant(-7) << "integer|-7" << QVariant(qlonglong(-7));
    QTest::newRow("int min") << QVariant(std::numeric_limits<int>::min()) << "integer|-2147483648"
                             << QVariant(qlonglong(-2147483648LL));
    QTest::newRow("uint max") << QVariant(std::numeric_limits<uint>::max()) << "integer|4294967295"
                              << QVariant(qlonglong(4294967295LL));
    QTest::newRow("qlonglong min") << QVariant(std::numeric_limits<qlonglong>::min())
                                   << "integer|-9223372036854775808"
                                   << QVariant(std::numeric_limits<qlonglong>::min());
    QTest::newRow("qlonglong max") << QVariant(std::numeric_limits<qlonglong>::max())
                                   << "integer|9223372036854775807"
                                   << QVariant(std::numeric_limits<qlonglong>::max());
    QTest::newRow("qulonglong in range") << QVariant(qulonglong(1) << 62) << "integer|4611686018427387904"
                                         << QVariant(qlonglong(1) << 62);
    // Above the signed range the bits are kept: toULongLong() gives the value back.
    QTest::newRow("qulonglong max") << QVariant(std::numeric_limits<qulonglong>::max())
                                    << "integer|-1" << QVariant(qlonglong(-1));
    QTest::newRow("double") << QVariant(1.25) << "real|1.25" << QVariant(1.25);
    QTest::newRow("double max") << QVariant(std::numeric_limits<double>::max())
                                << "real|1.79769313486231562234e+308"
                                << QVariant(std::numeric_limits<double>::max());
    QTest::newRow("float") << QVariant(0.5f) << "real|0.5" << QVariant(0.5);

    QTest::newRow("text") << QVariant(QStringLiteral("hello")) << "text|'hello'"
                          << QVariant(QStringLiteral("hello"));
    QTest::newRow("empty text") << QVariant(QString(QLatin1String(""))) << "text|''"
                                << QVariant(QString(QLatin1String("")));
    QTest::newRow("text with quote") << QVariant(QStringLiteral("it's")) << "text|'it''s'"
                                     << QVariant(QStringLiteral("it's"));
    const QString unicode = QString::fromUtf8("Grüße ✓ 温度 😀");
    QTest::newRow("unicode text") << QVariant(unicode) << (QLatin1String("text|'") + unicode + QLatin1Char('\''))
                                  << QVariant(unicode);

    const QByteArray zeros("\x00\x01\x00\xff", 4);
    QTest::newRow("blob with zero bytes") << QVariant(zeros) << "blob|X'000100FF'" << QVariant(zeros);
    QTest::newRow("empty blob") << QVariant(QByteArray("")) << "blob|X''" << QVariant(QByteArray(""));
    QByteArray large(100000, '\0');
    for (int i = 0; i < large.size(); ++i)
        large[i] = char(i * 7);
    QTest::newRow("blob over many pages") << QVariant(large) << (QLatin1String("blob|") + bytesAsQuotedBlob(large))
                                          << QVariant(large);

    QTest::newRow("date time utc")
        << QVariant(QDateTime(QDate(2024, 2, 29), QTime(23, 59, 58, 123), Qt::UTC))
        << "text|'2024-02-29T23:59:58.123Z'" << QVariant(QStringLiteral("2024-02-29T23:59:58.123Z"));
    QTest::newRow("date time with offset")
        << QVariant(QDateTime(QDate(2024, 7, 1), QTime(1, 0), Qt::OffsetFromUTC, 7200))
        << "text|'2024-06-30T23:00:00.000Z'" << QVariant(QStringLiteral("2024-06-30T23:00:00.000Z"));
    QTest::newRow("date") << QVariant(QDate(2024, 3, 1)) << "text|'2024-03-01'"
                          << QVariant(QStringLiteral("2024-03-01"));
    QTest::newRow("time") << QVariant(QTime(13, 14, 15, 16)) << "text|'13:14:15.016'"
                          << QVariant(QStringLiteral("13:14:15.016"));
}

void tst_SqlCipherDriver::bindsAndReadsBack()
{
    QFETCH(QVariant, bound);
    QFETCH(QString, storedAs);
    QFETCH(QVariant, readBack);

    const QString path = files_->createEncrypted(QStringLiteral("bind.sqlite3"), QStringLiteral("CREATE TABLE v(x);"));
    QVERIFY2(!path.isEmpty(), qPrintable(files_->lastError()));
    {
        QSqlDatabase db = open(path);
        QSqlQuery insert(db);
        QVERIFY2(insert.prepare(QStringLiteral("INSERT INTO v(x) VALUES (?)")), qPrintable(insert.lastError().text()));
        insert.addBindValue(bound);
        QVERIFY2(insert.exec(), qPrintable(insert.lastError().text()));

        QSqlQuery select(db);
        select.setForwardOnly(true);
        QVERIFY2(select.exec(QStringLiteral("SELECT x FROM v")), qPrintable(select.lastError().text()));
        QVERIFY(select.next());
        QString why;
        QVERIFY2(sameValue(select.value(0), readBack, &why), qPrintable(why));
        if (bound.userType() == QMetaType::ULongLong && !bound.isNull())
            QCOMPARE(select.value(0).toULongLong(), bound.toULongLong());
    }

    // What the engine itself holds, seen by the shell rather than the driver.
    const TestDatabase::ShellResult shell =
        TestDatabase::runSqlcipher(path, projectKey, QStringLiteral("SELECT typeof(x), quote(x) FROM v;"));
    QVERIFY2(shell.ok, qPrintable(shell.errorOutput));
    QCOMPARE(shell.output, storedAs + QLatin1Char('\n'));
}

void tst_SqlCipherDriver::dateTimeRoundTrip_data()
{
    QTest::addColumn<QDateTime>("written");
    QTest::addColumn<QString>("stored");

    // Europe/Berlin: UTC+1 in winter, UTC+2 in summer.
    QTest::newRow("local winter") << QDateTime(QDate(2024, 1, 15), QTime(8, 30, 0, 250), Qt::LocalTime)
                                  << "2024-01-15T07:30:00.250Z";
    QTest::newRow("local summer") << QDateTime(QDate(2024, 7, 1), QTime(0, 30), Qt::LocalTime)
                                  << "2024-06-30T22:30:00.000Z";
    QTest::newRow("local new year") << QDateTime(QDate(2025, 1, 1), QTime(0, 0, 0, 999), Qt::LocalTime)
                                    << "2024-12-31T23:00:00.999Z";
    QTest::newRow("utc") << QDateTime(QDate(2023, 10, 29), QTime(1, 15), Qt::UTC)
                         << "2023-10-29T01:15:00.000Z";
}

void tst_SqlCipherDriver::dateTimeRoundTrip()
{
    QFETCH(QDateTime, written);
    QFETCH(QString, stored);

    if (!QFileInfo::exists(QStringLiteral("/usr/share/zoneinfo/Europe/Berlin")))
        QSKIP("no time zone data for Europe/Berlin");
    const QString path = files_->createEncrypted(QStringLiteral("time.sqlite3"), QStringLiteral("CREATE TABLE v(x TEXT);"));
    QVERIFY2(!path.isEmpty(), qPrintable(files_->lastError()));
    QSqlDatabase db = open(path);
    QSqlQuery query(db);
    QVERIFY(query.prepare(QStringLiteral("INSERT INTO v VALUES (?)")));
    query.addBindValue(written);
    QVERIFY2(query.exec(), qPrintable(query.lastError().text()));
    QVERIFY(query.exec(QStringLiteral("SELECT x FROM v")));
    QVERIFY(query.next());

    const QVariant value = query.value(0);
    QCOMPARE(value.toString(), stored);
    const QDateTime read = value.toDateTime();
    QCOMPARE(read.timeSpec(), Qt::UTC);
    QCOMPARE(read, written);
    QCOMPARE(read.toLocalTime().time(), written.toLocalTime().time());
    QCOMPARE(read.toLocalTime().date(), written.toLocalTime().date());
}

void tst_SqlCipherDriver::precisionPolicy_data()
{
    QTest::addColumn<QSql::NumericalPrecisionPolicy>("policy");
    QTest::addColumn<QVariant>("integer");
    QTest::addColumn<QVariant>("real");

    QTest::newRow("default") << QSql::LowPrecisionDouble << QVariant(qlonglong(7)) << QVariant(2.75);
    QTest::newRow("int32") << QSql::LowPrecisionInt32 << QVariant(7) << QVariant(2);
    QTest::newRow("int64") << QSql::LowPrecisionInt64 << QVariant(qlonglong(7)) << QVariant(qlonglong(2));
    QTest::newRow("high") << QSql::HighPrecision << QVariant(qlonglong(7)) << QVariant(QStringLiteral("2.75"));
}

void tst_SqlCipherDriver::precisionPolicy()
{
    QFETCH(QSql::NumericalPrecisionPolicy, policy);
    QFETCH(QVariant, integer);
    QFETCH(QVariant, real);

    QSqlDatabase db = open(seeded());
    QSqlQuery query(db);
    query.setNumericalPrecisionPolicy(policy);
    QVERIFY(query.exec(QStringLiteral("SELECT 7, 2.75")));
    QVERIFY(query.next());
    QString why;
    QVERIFY2(sameValue(query.value(0), integer, &why), qPrintable(why));
    QVERIFY2(sameValue(query.value(1), real, &why), qPrintable(why));
}

void tst_SqlCipherDriver::wrongKeyShowsNoTables_data()
{
    QTest::addColumn<QString>("key");

    QTest::newRow("other key") << "ffffffffffffffffffffffffffffffff";
    QTest::newRow("key in capitals") << projectKey.toUpper();
    QTest::newRow("key one character short") << projectKey.left(31);
    QTest::newRow("empty key") << "";
    QTest::newRow("no key") << QString();
}

void tst_SqlCipherDriver::wrongKeyShowsNoTables()
{
    QFETCH(QString, key);

    const QString path = seeded();
    QVERIFY(!path.isEmpty());
    QSqlDatabase db = open(path, QString());
    QVERIFY2(db.isOpen(), qPrintable(db.lastError().text()));
    if (!key.isNull()) {
        // The engine takes any key; it is only checked when a page is read.
        QSqlQuery pragma(db);
        QVERIFY2(pragma.exec(QStringLiteral("PRAGMA key = '%1';").arg(key)), qPrintable(pragma.lastError().text()));
    }

    QVERIFY(db.tables(QSql::Tables).isEmpty());
    QVERIFY(db.tables(QSql::AllTables).isEmpty());
    QVERIFY(db.record(QStringLiteral("t")).isEmpty());

    QSqlQuery query(db);
    const bool ran = query.prepare(QStringLiteral("SELECT name FROM t")) && query.exec();
    QVERIFY(!ran);
    QCOMPARE(query.lastError().databaseText(), QStringLiteral("file is encrypted or is not a database"));
    QCOMPARE(query.lastError().nativeErrorCode(), QStringLiteral("26"));
    QCOMPARE(query.lastError().type(), QSqlError::StatementError);
}

void tst_SqlCipherDriver::rejectsFilesThatAreNoEncryptedDatabase_data()
{
    QTest::addColumn<QString>("kind");

    QTest::newRow("plain sqlite3 file") << "plain";
    QTest::newRow("random bytes, four pages") << "random4096";
    QTest::newRow("random bytes, less than a header") << "random50";
    QTest::newRow("encrypted file cut in half") << "half";
    QTest::newRow("encrypted file cut inside the first page") << "head";
}

void tst_SqlCipherDriver::rejectsFilesThatAreNoEncryptedDatabase()
{
    QFETCH(QString, kind);

    const QString rows = QStringLiteral(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 400) "
        "INSERT INTO t(name) SELECT 'secret ' || printf('%0200d', i) FROM n;");
    const QString schema = QStringLiteral("CREATE TABLE t(id INTEGER PRIMARY KEY, name TEXT);");
    QString path;
    if (kind == QLatin1String("plain")) {
        path = files_->createPlain(QStringLiteral("plain.sqlite3"), schema + rows);
    } else if (kind.startsWith(QLatin1String("random"))) {
        QRandomGenerator random(4711);
        QByteArray bytes(kind.mid(6).toInt(), '\0');
        for (char& byte : bytes)
            byte = char(random.bounded(256));
        path = files_->createFile(QStringLiteral("random.sqlite3"), bytes);
    } else {
        const QString whole = files_->createEncrypted(QStringLiteral("whole.sqlite3"), schema + rows);
        QVERIFY2(!whole.isEmpty(), qPrintable(files_->lastError()));
        QFile file(whole);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray content = file.readAll();
        QVERIFY(content.size() > 40000);
        path = files_->createFile(QStringLiteral("cut.sqlite3"),
                                  content.left(kind == QLatin1String("half") ? content.size() / 2 : 512));
    }
    QVERIFY2(!path.isEmpty(), qPrintable(files_->lastError()));

    QSqlDatabase db = open(path);
    QVERIFY2(db.isOpen(), qPrintable(db.lastError().text()));
    QSqlQuery query(db);
    query.setForwardOnly(true);
    QStringList read;
    if (query.exec(QStringLiteral("SELECT name FROM t"))) {
        while (query.next())
            read << query.value(0).toString();
    }
    QVERIFY2(query.lastError().isValid(), qPrintable(QStringLiteral("%1 rows read").arg(read.size())));
    QCOMPARE(query.lastError().type(), QSqlError::StatementError);
    QVERIFY(!query.lastError().databaseText().isEmpty());
    if (kind == QLatin1String("plain"))
        QVERIFY(read.isEmpty());
    QVERIFY(read.size() < 400);
}

void tst_SqlCipherDriver::openFailsInMissingFolder_data()
{
    QTest::addColumn<QString>("folder");

    QTest::newRow("missing folder") << "missing";
    QTest::newRow("missing folder below a missing folder") << "missing/deeper";
}

void tst_SqlCipherDriver::openFailsInMissingFolder()
{
    QFETCH(QString, folder);

    const QString dir = files_->filePath(folder);
    QSqlDatabase db = open(dir + QLatin1String("/db.sqlite3"));
    QVERIFY(!db.isOpen());
    QVERIFY(db.isOpenError());
    QCOMPARE(db.lastError().type(), QSqlError::ConnectionError);
    QCOMPARE(db.lastError().databaseText(), QStringLiteral("unable to open database file"));
    QCOMPARE(db.lastError().nativeErrorCode(), QStringLiteral("14"));
    QVERIFY(!QFileInfo::exists(files_->filePath(QStringLiteral("missing"))));
}

void tst_SqlCipherDriver::keyAsPassword_data()
{
    QTest::addColumn<bool>("plainFile");
    QTest::addColumn<QString>("password");
    QTest::addColumn<bool>("opens");

    QTest::newRow("right key") << false << projectKey << true;
    QTest::newRow("wrong key") << false << "ffffffffffffffffffffffffffffffff" << false;
    QTest::newRow("plain file") << true << projectKey << false;
}

void tst_SqlCipherDriver::keyAsPassword()
{
    QFETCH(bool, plainFile);
    QFETCH(QString, password);
    QFETCH(bool, opens);

    const QString path = plainFile ? files_->createPlain(QStringLiteral("plain.sqlite3"), seedSql) : seeded();
    QVERIFY(!path.isEmpty());
    QSqlDatabase db = open(path, QString(), QString(), password);
    QCOMPARE(db.isOpen(), opens);
    if (!opens) {
        QCOMPARE(db.lastError().databaseText(), QStringLiteral("file is encrypted or is not a database"));
        return;
    }
    QSqlQuery query(db);
    QVERIFY(query.exec(QStringLiteral("SELECT name FROM t WHERE id = 2")));
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toString(), QStringLiteral("two"));
}

void tst_SqlCipherDriver::readOnlyOption()
{
    QSqlDatabase db = open(seeded(), projectKey, QStringLiteral("QSQLCIPHER_OPEN_READONLY"));
    QVERIFY2(db.isOpen(), qPrintable(db.lastError().text()));
    QSqlQuery query(db);
    QVERIFY(query.exec(QStringLiteral("SELECT count(*) FROM t")));
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toInt(), 3);
    QVERIFY(!query.exec(QStringLiteral("DELETE FROM t")));
    QCOMPARE(query.lastError().databaseText(), QStringLiteral("attempt to write a readonly database"));
}

void tst_SqlCipherDriver::rowsAffectedAndLastInsertId_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("statement");
    QTest::addColumn<int>("rowsAffected");
    QTest::addColumn<QVariant>("lastInsertId");
    QTest::addColumn<QString>("countAfter"); // SELECT count(*) FROM t, by the shell

    const QVariant none;
    QTest::newRow("insert") << "" << "INSERT INTO t(name) VALUES ('four')" << 1
                            << QVariant(qlonglong(4)) << "4";
    QTest::newRow("insert of three rows") << "" << "INSERT INTO t(name) SELECT name FROM t" << 3
                                          << QVariant(qlonglong(6)) << "6";
    QTest::newRow("insert ignored") << "" << "INSERT OR IGNORE INTO t(id, name) VALUES (1, 'again')" << 0
                                    << none << "3";
    QTest::newRow("replace") << "" << "REPLACE INTO t(id, name) VALUES (2, 'deux')" << 1
                             << QVariant(qlonglong(2)) << "3";
    QTest::newRow("update all") << "" << "UPDATE t SET name = name || '!'" << 3 << none << "3";
    QTest::newRow("update after insert") << "INSERT INTO t(name) VALUES ('four')"
                                         << "UPDATE t SET name = 'x' WHERE id = 1" << 1 << none << "4";
    QTest::newRow("update of no row") << "INSERT INTO t(name) VALUES ('four')"
                                      << "UPDATE t SET name = 'x' WHERE id = 99" << 0 << none << "4";
    QTest::newRow("delete") << "" << "DELETE FROM t WHERE id > 1" << 2 << none << "1";
    QTest::newRow("create table after insert") << "INSERT INTO t(name) VALUES ('four')"
                                               << "CREATE TABLE u(a)" << 0 << none << "4";
    QTest::newRow("select") << "" << "SELECT id FROM t" << -1 << none << "3";
}

void tst_SqlCipherDriver::rowsAffectedAndLastInsertId()
{
    QFETCH(QString, before);
    QFETCH(QString, statement);
    QFETCH(int, rowsAffected);
    QFETCH(QVariant, lastInsertId);
    QFETCH(QString, countAfter);

    const QString path = seeded();
    QVERIFY(!path.isEmpty());
    {
        QSqlDatabase db = open(path);
        QSqlQuery query(db);
        if (!before.isEmpty())
            QVERIFY2(query.exec(before), qPrintable(query.lastError().text()));
        QVERIFY(query.prepare(statement));
        QVERIFY2(query.exec(), qPrintable(query.lastError().text()));
        QCOMPARE(query.numRowsAffected(), rowsAffected);
        QCOMPARE(query.size(), -1);
        QString why;
        QVERIFY2(sameValue(query.lastInsertId(), lastInsertId, &why), qPrintable(why));
    }
    const TestDatabase::ShellResult shell =
        TestDatabase::runSqlcipher(path, projectKey, QStringLiteral("SELECT count(*) FROM t;"));
    QVERIFY2(shell.ok, qPrintable(shell.errorOutput));
    QCOMPARE(shell.output.trimmed(), countAfter);
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
    QVERIFY(!path.isEmpty());
    {
        QSqlDatabase db = open(path);
        QVERIFY2(db.transaction(), qPrintable(db.lastError().text()));
        QSqlQuery query(db);
        for (const QString& name : {QStringLiteral("four"), QStringLiteral("five")}) {
            QVERIFY(query.prepare(QStringLiteral("INSERT INTO t(name) VALUES (?)")));
            query.addBindValue(name);
            QVERIFY2(query.exec(), qPrintable(query.lastError().text()));
            query.finish();
        }
        QVERIFY(query.exec(QStringLiteral("UPDATE t SET name = 'changed' WHERE id = 3")));
        // Inside the transaction the connection sees its own rows.
        QVERIFY(query.exec(QStringLiteral("SELECT count(*) FROM t")));
        QVERIFY(query.next());
        QCOMPARE(query.value(0).toInt(), 5);
        query.finish();
        if (commit)
            QVERIFY2(db.commit(), qPrintable(db.lastError().text()));
        else
            QVERIFY2(db.rollback(), qPrintable(db.lastError().text()));
    }
    const TestDatabase::ShellResult shell =
        TestDatabase::runSqlcipher(path, projectKey, QStringLiteral("SELECT id, name FROM t ORDER BY id;"));
    QVERIFY2(shell.ok, qPrintable(shell.errorOutput));
    QCOMPARE(shell.output, rowsAfter);
}

void tst_SqlCipherDriver::nestedTransactionFails()
{
    QSqlDatabase db = open(seeded());
    QVERIFY(db.transaction());
    QVERIFY(!db.transaction());
    QCOMPARE(db.lastError().type(), QSqlError::TransactionError);
    QCOMPARE(db.lastError().databaseText(), QStringLiteral("cannot start a transaction within a transaction"));
    QVERIFY(db.rollback());
    QVERIFY(!db.commit());
    QCOMPARE(db.lastError().databaseText(), QStringLiteral("cannot commit - no transaction is active"));
}

void tst_SqlCipherDriver::reportsEngineErrors_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QVariantList>("values");
    QTest::addColumn<bool>("failsOnPrepare");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("code");

    QTest::newRow("missing table") << "SELECT * FROM missing" << QVariantList() << true
                                   << "no such table: missing" << "1";
    QTest::newRow("syntax") << "SELEC 1" << QVariantList() << true << "near \"SELEC\": syntax error" << "1";
    QTest::newRow("two statements") << "SELECT 1; SELECT 2" << QVariantList() << true
                                    << "Unable to execute multiple statements at a time" << "";
    QTest::newRow("duplicate key") << "INSERT INTO t(id, name) VALUES (?, ?)"
                                   << QVariantList{1, QStringLiteral("uno")} << false
                                   << "UNIQUE constraint failed: t.id" << "19";
    QTest::newRow("not null") << "INSERT INTO t(id, name) VALUES (?, ?)"
                              << QVariantList{9, QVariant(QVariant::String)} << false
                              << "NOT NULL constraint failed: t.name" << "19";
    QTest::newRow("foreign key") << "INSERT INTO c(t_id) VALUES (?)" << QVariantList{99} << false
                                 << "FOREIGN KEY constraint failed" << "19";
    QTest::newRow("too few values") << "SELECT ?, ?" << QVariantList{1} << false
                                    << "Parameter count mismatch" << "";
    QTest::newRow("too many values") << "SELECT ?" << QVariantList{1, 2} << false
                                     << "Parameter count mismatch" << "";
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
    const bool prepared = query.prepare(statement);
    QCOMPARE(prepared, !failsOnPrepare);
    if (prepared) {
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
    QTest::addColumn<QVariant>("firstValue");

    QTest::newRow("semicolon") << "SELECT 7;" << true << QVariant(qlonglong(7));
    QTest::newRow("space and semicolons") << "  SELECT 7 ;  \n\t;" << true << QVariant(qlonglong(7));
    QTest::newRow("trailing line comment") << "SELECT 7 -- the answer" << true << QVariant(qlonglong(7));
    QTest::newRow("trailing block comment") << "SELECT 7; /* done */ ;" << true << QVariant(qlonglong(7));
    QTest::newRow("three statements in exec")
        << "CREATE TABLE m(x); INSERT INTO m VALUES (5); SELECT x FROM m;" << false << QVariant(qlonglong(5));
    QTest::newRow("two pragmas in exec") << "PRAGMA user_version = 9; PRAGMA user_version;" << false
                                         << QVariant(qlonglong(9));
}

void tst_SqlCipherDriver::statementTexts()
{
    QFETCH(QString, text);
    QFETCH(bool, prepared);
    QFETCH(QVariant, firstValue);

    QSqlDatabase db = open(seeded());
    QSqlQuery query(db);
    if (prepared) {
        QVERIFY2(query.prepare(text), qPrintable(query.lastError().text()));
        QVERIFY2(query.exec(), qPrintable(query.lastError().text()));
    } else {
        QVERIFY2(query.exec(text), qPrintable(query.lastError().text()));
    }
    QVERIFY(query.next());
    QString why;
    QVERIFY2(sameValue(query.value(0), firstValue, &why), qPrintable(why));
}

void tst_SqlCipherDriver::navigation_data()
{
    QTest::addColumn<bool>("forwardOnly");
    QTest::addColumn<QString>("moves");    // n next, p previous, f first, l last, digit seek
    QTest::addColumn<QString>("expected"); // id after each move, '-' when the move fails

    QTest::newRow("forward only, to the end") << true << "nnnn" << "123-";
    QTest::newRow("forward only, last") << true << "nln" << "13-";
    QTest::newRow("forward only, last at once") << true << "l" << "3";
    QTest::newRow("forward only, no way back") << true << "nnp" << "12-";
    QTest::newRow("scrollable") << false << "nnlpf2n" << "123213-";
    QTest::newRow("scrollable, seek past the end") << false << "5l" << "-3";
    QTest::newRow("scrollable, last first") << false << "lfn" << "312";
}

void tst_SqlCipherDriver::navigation()
{
    QFETCH(bool, forwardOnly);
    QFETCH(QString, moves);
    QFETCH(QString, expected);

    QSqlDatabase db = open(seeded());
    QSqlQuery query(db);
    query.setForwardOnly(forwardOnly);
    QVERIFY(query.exec(QStringLiteral("SELECT id, name FROM t ORDER BY id")));
    if (forwardOnly && moves.contains(QLatin1Char('p')))
        QTest::ignoreMessage(QtWarningMsg, "QSqlQuery::seek: cannot seek backwards in a forward only query");
    QString seen;
    for (const QChar move : moves) {
        bool ok = false;
        switch (move.toLatin1()) {
        case 'n': ok = query.next(); break;
        case 'p': ok = query.previous(); break;
        case 'f': ok = query.first(); break;
        case 'l': ok = query.last(); break;
        default: ok = query.seek(move.digitValue()); break;
        }
        seen += ok ? query.value(0).toString() : QStringLiteral("-");
    }
    QCOMPARE(seen, expected);
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

    const QString path = files_->createEncrypted(
        QStringLiteral("tables.sqlite3"),
        seedSql
            + QStringLiteral("CREATE TABLE s(id INTEGER PRIMARY KEY AUTOINCREMENT, x);"
                             "INSERT INTO s(x) VALUES (1);"
                             "CREATE VIEW v AS SELECT id FROM t;"));
    QVERIFY2(!path.isEmpty(), qPrintable(files_->lastError()));
    QSqlDatabase db = open(path);
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
        QVERIFY(record.field(0).isAutoValue());
        QCOMPARE(record.field(1).requiredStatus(), QSqlField::Required);
        QCOMPARE(record.field(2).requiredStatus(), QSqlField::Optional);
        QCOMPARE(record.field(2).defaultValue().toString(), QStringLiteral("0.5"));
    }
    const QSqlIndex key = db.primaryIndex(QStringLiteral("t"));
    QCOMPARE(key.count(), 1);
    QCOMPARE(key.fieldName(0), QStringLiteral("id"));
    QVERIFY(db.record(QStringLiteral("missing")).isEmpty());

    // The result's record: names of the columns as selected, in order.
    QSqlQuery query(db);
    query.setForwardOnly(true);
    QVERIFY(query.exec(QStringLiteral("SELECT name AS n, id, 1 + 1 AS two FROM t")));
    QCOMPARE(query.record().count(), 3);
    QCOMPARE(query.record().fieldName(0), QStringLiteral("n"));
    QCOMPARE(query.record().field(1).tableName(), QStringLiteral("t"));
    QCOMPARE(query.record().fieldName(2), QStringLiteral("two"));
}

void tst_SqlCipherDriver::formatsLiteralsTheEngineReadsBack_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QVariant>("readBack");

    QTest::newRow("null") << QVariant(QVariant::Int) << "null" << QVariant();
    QTest::newRow("bool") << QVariant(true) << "integer" << QVariant(qlonglong(1));
    QTest::newRow("integer") << QVariant(qlonglong(-42)) << "integer" << QVariant(qlonglong(-42));
    QTest::newRow("text with quotes") << QVariant(QStringLiteral("it's \"x\"")) << "text"
                                      << QVariant(QStringLiteral("it's \"x\""));
    QTest::newRow("blob with zero bytes") << QVariant(QByteArray("\x00\x27\x00", 3)) << "blob"
                                          << QVariant(QByteArray("\x00\x27\x00", 3));
    QTest::newRow("date time") << QVariant(QDateTime(QDate(2024, 5, 6), QTime(7, 8, 9, 10), Qt::UTC)) << "text"
                               << QVariant(QStringLiteral("2024-05-06T07:08:09.010Z"));
}

void tst_SqlCipherDriver::formatsLiteralsTheEngineReadsBack()
{
    QFETCH(QVariant, value);
    QFETCH(QString, type);
    QFETCH(QVariant, readBack);

    QSqlDatabase db = open(seeded());
    QSqlField field(QStringLiteral("x"), value.type());
    field.setValue(value);
    const QString literal = db.driver()->formatValue(field);
    QSqlQuery query(db);
    QVERIFY2(query.exec(QStringLiteral("SELECT typeof(%1), %1").arg(literal)), qPrintable(literal));
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toString(), type);
    QString why;
    QVERIFY2(sameValue(query.value(1), readBack, &why), qPrintable(why));
}

void tst_SqlCipherDriver::escapedIdentifierNamesTable()
{
    QSqlDatabase db = open(seeded());
    const QString name = QStringLiteral("odd \"name\"");
    const QString escaped = db.driver()->escapeIdentifier(name, QSqlDriver::TableName);
    QSqlQuery query(db);
    QVERIFY2(query.exec(QStringLiteral("CREATE TABLE %1(a)").arg(escaped)), qPrintable(query.lastError().text()));
    QVERIFY(db.tables(QSql::Tables).contains(name));
    QCOMPARE(db.record(name).count(), 1);
}

void tst_SqlCipherDriver::sameTextInTwoLiveQueries()
{
    QSqlDatabase db = open(seeded());
    const SqlCipherDriver* driver = driverOf(db);
    QVERIFY(driver);
    const QString text = QStringLiteral("SELECT id FROM t WHERE id >= ? ORDER BY id");
    const int cachedBefore = driver->cachedStatementCount();
    {
        QSqlQuery first(db);
        first.setForwardOnly(true);
        QVERIFY(first.prepare(text));
        first.addBindValue(1);
        QVERIFY(first.exec());
        QVERIFY(first.next());
        QCOMPARE(first.value(0).toInt(), 1);

        QSqlQuery second(db);
        second.setForwardOnly(true);
        QVERIFY(second.prepare(text));
        second.addBindValue(2);
        QVERIFY(second.exec());
        QStringList ids;
        while (second.next())
            ids << second.value(0).toString();
        QCOMPARE(ids, (QStringList{"2", "3"}));

        // The first query still walks its own rows with its own parameter.
        QVERIFY(first.next());
        QCOMPARE(first.value(0).toInt(), 2);
        QVERIFY(first.next());
        QCOMPARE(first.value(0).toInt(), 3);
        QVERIFY(!first.next());
    }
    QCOMPARE(driver->cachedStatementCount(), cachedBefore + 1);

    // Taken from the cache while in use, back afterwards.
    {
        QSqlQuery again(db);
        QVERIFY(again.prepare(text));
        QCOMPARE(driver->cachedStatementCount(), cachedBefore);
        again.addBindValue(3);
        QVERIFY(again.exec());
        QVERIFY(again.next());
        QCOMPARE(again.value(0).toInt(), 3);
    }
    QCOMPARE(driver->cachedStatementCount(), cachedBefore + 1);
}

void tst_SqlCipherDriver::reusesOneQueryForSeveralStatements()
{
    QSqlDatabase db = open(seeded());
    QSqlQuery query(db);
    query.setForwardOnly(true);
    const QString insert = QStringLiteral("INSERT INTO t(name) VALUES (?)");
    const QString select = QStringLiteral("SELECT name FROM t WHERE id = ?");
    const QList<QPair<QString, QVariant>> steps = {
        {insert, QStringLiteral("four")}, {select, 4}, {insert, QStringLiteral("five")},
        {select, 5}, {select, 1},
    };
    QStringList names;
    for (const auto& step : steps) {
        QVERIFY(query.prepare(step.first));
        query.addBindValue(step.second);
        QVERIFY2(query.exec(), qPrintable(query.lastError().text()));
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
    QVERIFY(query.prepare(select));
    query.addBindValue(2);
    QVERIFY(query.exec());
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toString(), QStringLiteral("two"));
    query.bindValue(0, 3);
    QVERIFY(query.exec());
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toString(), QStringLiteral("three"));
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
    {
        QSqlQuery query(db);
        QVERIFY2(query.exec(change), qPrintable(query.lastError().text()));
    }
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

void tst_SqlCipherDriver::recordCarriesCurrentRowValues()
{
    QSqlDatabase db = open(seeded());
    QSqlQuery query(db);
    query.setForwardOnly(true);
    QVERIFY(query.exec(QStringLiteral("SELECT id, name, data FROM t ORDER BY id")));
    QStringList names;
    while (query.next()) {
        // Each column read several ways, in the order the connection layer does.
        const QSqlRecord record = query.record();
        QCOMPARE(record.value(0), query.value(0));
        QCOMPARE(record.value(QStringLiteral("name")).toString(), query.value(1).toString());
        QVERIFY(!query.value(2).isValid());
        QVERIFY(query.isNull(2));
        names << query.value(1).toString() + QLatin1Char('/') + record.value(1).toString();
    }
    QCOMPARE(names, (QStringList{"one/one", "two/two", "three/three"}));
}

void tst_SqlCipherDriver::namedPlaceholders()
{
    QSqlDatabase db = open(seeded());
    QSqlQuery query(db);
    QVERIFY(query.prepare(QStringLiteral("SELECT name FROM t WHERE id = :id OR name = :name ORDER BY id")));
    query.bindValue(QStringLiteral(":name"), QStringLiteral("three"));
    query.bindValue(QStringLiteral(":id"), 1);
    QVERIFY2(query.exec(), qPrintable(query.lastError().text()));
    QStringList names;
    while (query.next())
        names << query.value(0).toString();
    QCOMPARE(names, (QStringList{"one", "three"}));

    // A colon in a literal is no placeholder.
    QVERIFY(query.prepare(QStringLiteral("SELECT '12:00', ?")));
    query.addBindValue(5);
    QVERIFY2(query.exec(), qPrintable(query.lastError().text()));
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toString(), QStringLiteral("12:00"));
    QCOMPARE(query.value(1).toInt(), 5);
}

void tst_SqlCipherDriver::pragmaRunsEachTime()
{
    const QString path = seeded();
    const QString first = QStringLiteral("11111111111111111111111111111111");
    const QString second = QStringLiteral("22222222222222222222222222222222");
    {
        QSqlDatabase db = open(path);
        // The key pragmas do their work while being prepared: the third
        // statement has the text of the first and must run again all the same.
        for (const QString& key : {first, second, first}) {
            QSqlQuery query(db);
            QVERIFY2(query.exec(QStringLiteral("PRAGMA rekey = '%1';").arg(key)),
                     qPrintable(query.lastError().text()));
        }
        for (const char* setting : {"ON", "OFF", "ON"}) {
            {
                QSqlQuery query(db);
                QVERIFY(query.exec(QStringLiteral("PRAGMA foreign_keys = %1").arg(QLatin1String(setting))));
            }
            QSqlQuery query(db);
            QVERIFY(query.exec(QStringLiteral("PRAGMA foreign_keys")));
            QVERIFY(query.next());
            QCOMPARE(query.value(0).toInt(), qstrcmp(setting, "ON") == 0 ? 1 : 0);
        }
    }
    const TestDatabase::ShellResult shell =
        TestDatabase::runSqlcipher(path, first, QStringLiteral("SELECT count(*) FROM t;"));
    QVERIFY2(shell.ok, qPrintable(shell.errorOutput));
    QCOMPARE(shell.output, QStringLiteral("3\n"));
}

void tst_SqlCipherDriver::cacheIsBounded()
{
    QSqlDatabase db = open(seeded());
    const SqlCipherDriver* driver = driverOf(db);
    QVERIFY(driver);
    for (int i = 0; i < 200; ++i) {
        QSqlQuery query(db);
        QVERIFY(query.exec(QStringLiteral("SELECT %1").arg(i)));
    }
    const int cached = driver->cachedStatementCount();
    QVERIFY(cached > 0);
    QVERIFY(cached <= 64);
    // The most recent text is still there.
    QSqlQuery query(db);
    QVERIFY(query.prepare(QStringLiteral("SELECT 199")));
    QCOMPARE(driver->cachedStatementCount(), cached - 1);
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
    QVERIFY(!db.isOpen());
    QVERIFY(!walking.next());
    QVERIFY(!scrolled.first());
    prepared.addBindValue(1);
    QVERIFY(!prepared.exec());

    // Open again with the same queries.
    QVERIFY(db.open());
    QVERIFY(walking.exec(QStringLiteral("PRAGMA key = '%1';").arg(projectKey)));
    QVERIFY(prepared.prepare(QStringLiteral("SELECT name FROM t WHERE id = ?")));
    prepared.addBindValue(2);
    QVERIFY2(prepared.exec(), qPrintable(prepared.lastError().text()));
    QVERIFY(prepared.next());
    QCOMPARE(prepared.value(0).toString(), QStringLiteral("two"));
}

void tst_SqlCipherDriver::removeDatabaseWithLiveQuery()
{
    std::unique_ptr<QSqlQuery> query;
    const QString name = QStringLiteral("tst%1").arg(connectionCounter_ + 1);
    {
        QSqlDatabase db = open(seeded());
        QCOMPARE(db.connectionName(), name);
        query = std::make_unique<QSqlQuery>(db);
        query->setForwardOnly(true);
        QVERIFY(query->exec(QStringLiteral("SELECT id FROM t")));
        QVERIFY(query->next());
    }
    QSqlDatabase::removeDatabase(name);
    connections_.removeAll(name);
    QVERIFY(!query->next());
    query.reset();
}

void tst_SqlCipherDriver::vacuumAfterCachedStatements()
{
    QSqlDatabase db = open(seeded());
    for (int id = 1; id <= 3; ++id) {
        QSqlQuery query(db);
        QVERIFY(query.prepare(QStringLiteral("SELECT name FROM t WHERE id >= ?")));
        query.addBindValue(id);
        QVERIFY(query.exec());
        QVERIFY(query.next()); // left in the middle of its rows
    }
    QSqlQuery finished(db);
    QVERIFY(finished.exec(QStringLiteral("SELECT id FROM t")));
    QVERIFY(finished.next());
    finished.finish();

    QSqlQuery vacuum(db);
    QVERIFY2(vacuum.exec(QStringLiteral("VACUUM")), qPrintable(vacuum.lastError().text()));
}

void tst_SqlCipherDriver::exportsAndRekeys()
{
    const QString path = seeded();
    const QString exported = files_->filePath(QStringLiteral("export.sqlite3"));
    const QString otherKey = QStringLiteral("99887766554433221100ffeeddccbbaa");
    {
        QSqlDatabase db = open(path);
        QSqlQuery query(db);
        QVERIFY2(query.exec(QStringLiteral("ATTACH DATABASE '%1' AS export KEY '%2'").arg(exported, otherKey)),
                 qPrintable(query.lastError().text()));
        QVERIFY2(query.exec(QStringLiteral("SELECT sqlcipher_export('export')")),
                 qPrintable(query.lastError().text()));
        {
            QSqlQuery count(db);
            QVERIFY(count.exec(QStringLiteral("SELECT count(*) FROM export.t")));
            QVERIFY(count.next());
            QCOMPARE(count.value(0).toInt(), 3);
        }
        QVERIFY2(query.exec(QStringLiteral("DETACH DATABASE export")), qPrintable(query.lastError().text()));
        QVERIFY2(query.exec(QStringLiteral("PRAGMA rekey = '%1';").arg(otherKey)),
                 qPrintable(query.lastError().text()));
    }
    for (const QString& file : {exported, path}) {
        const TestDatabase::ShellResult shell =
            TestDatabase::runSqlcipher(file, otherKey, QStringLiteral("SELECT name FROM t ORDER BY id;"));
        QVERIFY2(shell.ok, qPrintable(shell.errorOutput));
        QCOMPARE(shell.output, QStringLiteral("one\ntwo\nthree\n"));
    }
    const TestDatabase::ShellResult old =
        TestDatabase::runSqlcipher(path, projectKey, QStringLiteral("SELECT name FROM t;"));
    QVERIFY(!old.ok);
    QVERIFY2(old.errorOutput.contains(QLatin1String("file is encrypted or is not a database")),
             qPrintable(old.errorOutput));
}

void tst_SqlCipherDriver::loadsThroughPluginLoader()
{
    QPluginLoader loader(zelmor::testsupport::binaryDir() + QLatin1String("/plugins/sqldrivers/libqsqlcipher.so"));
    const QJsonArray keys = loader.metaData().value(QLatin1String("MetaData")).toObject()
                                .value(QLatin1String("Keys")).toArray();
    QCOMPARE(keys, QJsonArray{QStringLiteral("QSQLCIPHER")});
    QVERIFY2(loader.load(), qPrintable(loader.errorString()));
    auto* plugin = qobject_cast<QSqlDriverPlugin*>(loader.instance());
    QVERIFY(plugin);
    QVERIFY(!plugin->create(QStringLiteral("QSQLITE")));

    QSqlDriver* driver = plugin->create(QStringLiteral("QSQLCIPHER"));
    QVERIFY(driver);
    const QString name = QStringLiteral("plugin");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(driver, name);
        connections_ << name;
        db.setDatabaseName(seeded());
        QVERIFY2(db.open(), qPrintable(db.lastError().text()));
        QSqlQuery query(db);
        QVERIFY(query.exec(QStringLiteral("PRAGMA key = '%1';").arg(projectKey)));
        QVERIFY2(query.exec(QStringLiteral("SELECT name FROM t WHERE id = 3")), qPrintable(query.lastError().text()));
        QVERIFY(query.next());
        QCOMPARE(query.value(0).toString(), QStringLiteral("three"));
    }
}

void tst_SqlCipherDriver::loadsThroughPluginPath_data()
{
    QTest::addColumn<bool>("withPluginPath");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("output");

    QTest::newRow("with plugin path") << true << 0 << "one\ntwo\nthree\n";
    QTest::newRow("without") << false << 2 << "";
}

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
