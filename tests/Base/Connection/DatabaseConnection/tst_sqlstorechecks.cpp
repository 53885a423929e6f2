#include "Base/Connection/DatabaseConnection/SqlStoreChecks.h"
#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Domain/Types/DatabaseConnectionError.h"
#include "support/LogCapture.h"
#include "support/StoreFixture.h"
#include "support/TestDatabase.h"

#include <QLoggingCategory>
#include <QtTest>

using zelmor::base::connection::databaseconnection::SqliteConnection;
using zelmor::base::connection::databaseconnection::SqlStoreChecks;
using zelmor::domain::types::DatabaseConnectionError;
using zelmor::testsupport::errorCodes;
using zelmor::testsupport::LogCapture;
using zelmor::testsupport::TestDatabase;

namespace {

Q_LOGGING_CATEGORY(SMALLSTORE, "zelmor.SmallStore")

} // namespace

// The least a store has: its dependencies and its error signal.
class SmallStore : public QObject
{
    Q_OBJECT

public:
    bool areDependenciesSet() const { return wired; }

    bool wired = false;
    SqlStoreChecks checks{this, SMALLSTORE};

signals:
    void error(zelmor::domain::types::DatabaseConnectionError error) const;
};

class TestSqlStoreChecks : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void dependencies();
    void tables_data();
    void tables();
    void width();

private:
    TestDatabase files;
};

void TestSqlStoreChecks::initTestCase()
{
    qRegisterMetaType<DatabaseConnectionError>();
    QLoggingCategory::setFilterRules(QStringLiteral("zelmor.SqliteConnection.*=false"));
    QVERIFY(files.isValid());
}

void TestSqlStoreChecks::dependencies()
{
    SmallStore store;
    QSignalSpy errors(&store, &SmallStore::error);
    {
        LogCapture log(QStringLiteral("zelmor.SmallStore"));
        QVERIFY(!store.checks.hasDependencies("getRooms"));
        QCOMPARE(log.texts(), QStringList{"warning: getRooms called before the dependencies were set"});
    }
    // Asked at each test, not once at construction.
    store.wired = true;
    QVERIFY(store.checks.hasDependencies("getRooms"));
    QCOMPARE(errorCodes(errors), QList<int>{0});
}

void TestSqlStoreChecks::tables_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QStringList>("tables");
    QTest::addColumn<bool>("found");
    QTest::addColumn<QStringList>("log");

    const QString key = QLatin1String(TestDatabase::projectKey_);
    QTest::newRow("all there") << key << QStringList{"room", "camera"} << true << QStringList();
    QTest::newRow("none asked") << key << QStringList() << true << QStringList();
    // The first missing table ends the test; case counts.
    QTest::newRow("second missing") << key << QStringList{"room", "Camera", "log_entry"} << false
                                    << QStringList{"critical: The database lacks the table 'Camera'"};
    QTest::newRow("wrong key") << QStringLiteral("00112233445566778899aabbccddeeff") << QStringList{"room"} << false
                               << QStringList{"critical: The database lacks the table 'room'"};
}

void TestSqlStoreChecks::tables()
{
    QFETCH(QString, key);
    QFETCH(QStringList, tables);
    QFETCH(bool, found);
    QFETCH(QStringList, log);

    static int count = 0;
    const QString path = files.createEncrypted(QStringLiteral("tables%1.db").arg(++count),
                                               QStringLiteral("CREATE TABLE room (id); CREATE TABLE camera (id);"));
    QVERIFY2(!path.isEmpty(), qPrintable(files.lastError()));
    SqliteConnection connection(QStringLiteral("tst_sqlstorechecks_%1").arg(count));
    QVERIFY(connection.openDatabase(path, QString(), QString(), key));

    SmallStore store;
    QSignalSpy errors(&store, &SmallStore::error);
    LogCapture capture(QStringLiteral("zelmor.SmallStore"));
    QCOMPARE(store.checks.hasTables(connection, tables), found);
    QCOMPARE(capture.texts(), log);
    QCOMPARE(errorCodes(errors), found ? QList<int>() : QList<int>{4});
}

void TestSqlStoreChecks::width()
{
    SmallStore store;
    QSignalSpy errors(&store, &SmallStore::error);
    LogCapture log(QStringLiteral("zelmor.SmallStore"));
    QVERIFY(store.checks.hasWidth({1, 2, 3}, 3, "parseRoom"));
    QVERIFY(!store.checks.hasWidth({1, 2}, 3, "parseRoom"));
    QVERIFY(!store.checks.hasWidth({}, 1, "getRoomPosition"));
    store.checks.reportUnexpected("getRoom", QStringLiteral("2 rooms of id 5"));
    QCOMPARE(log.texts(), (QStringList{"warning: parseRoom got a row of 2 columns instead of 3",
                                       "warning: getRoomPosition got a row of 0 columns instead of 1",
                                       "warning: getRoom 2 rooms of id 5"}));
    QCOMPARE(errorCodes(errors), (QList<int>{8, 8, 8}));
}

QTEST_GUILESS_MAIN(TestSqlStoreChecks)

#include "tst_sqlstorechecks.moc"
