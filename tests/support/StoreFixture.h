#pragma once

#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/QSqlQueryWrapper.h"
#include "Base/Connection/DatabaseConnection/SqlConfigurationDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Domain/Api/ISqlConnection.h"
#include "Domain/Api/ISqlQuery.h"
#include "Domain/Types/DatabaseConnectionError.h"
#include "support/SampleCatalogue.h"
#include "support/TestDatabase.h"

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QMutex>
#include <QSet>
#include <QSignalSpy>
#include <QString>
#include <QThread>
#include <QVariant>
#include <QtTest>

#include <csignal>
#include <functional>
#include <memory>
#include <utility>

// Header only: the helpers need the persistence layer, which the support
// library doesn't link; the store tests do.
namespace zelmor::testsupport {

// A real connection that cuts the last column off the rows of the given width,
// all of them or only the one at cutRow of each result: rows of the wrong
// width, which no well-formed statement on a real engine gives. Statements are
// told apart by their rows, not by their text. The single-row and
// single-value reads go through here too.
//
// It also notes the thread of every statement, the number of values of each
// statement of each transaction, and ends its process at once with SIGKILL
// when it is about to run statement killAtStatement (counted from 1; 0 never).
class CuttingConnection : public zelmor::base::connection::databaseconnection::SqliteConnection
{
public:
    using SqliteConnection::fetch;
    using SqliteConnection::SqliteConnection;

    bool bindValuesToQuery(zelmor::base::connection::databaseconnection::QSqlQueryWrapper& query,
                           const QString& queryString, const QList<QVariant>& values) const override
    {
        int statement = 0;
        {
            QMutexLocker lock(&mutex);
            statementThreads.insert(QThread::currentThread());
            statement = ++statements;
        }
        if (statement == killAtStatement) {
            std::raise(SIGKILL);
        }
        return SqliteConnection::bindValuesToQuery(query, queryString, values);
    }

    bool executeTransaction(const QList<QSharedPointer<zelmor::domain::api::ISqlQuery>>& queries) override
    {
        QList<int> sizes;
        for (const QSharedPointer<zelmor::domain::api::ISqlQuery>& query : queries) {
            sizes.append(query ? query->getBindValues().size() : -1);
        }
        transactions.append(sizes);
        return SqliteConnection::executeTransaction(queries);
    }

    QList<QList<QVariant>> fetch(const zelmor::domain::api::ISqlQuery& query) const override
    {
        QList<QList<QVariant>> rows = SqliteConnection::fetch(query);
        for (int index = 0; index < rows.size(); ++index) {
            if (rows.at(index).size() == cutWidth && (cutRow < 0 || index == cutRow)) {
                rows[index].removeLast();
            }
        }
        return rows;
    }

    int cutWidth = 0;
    int cutRow = -1;
    int killAtStatement = 0;
    mutable QMutex mutex;
    mutable QSet<QThread*> statementThreads;
    mutable int statements = 0;
    QList<QList<int>> transactions;
};

// How a fixture wires its store to the fixture's connection: as the facade
// wires a store whose only dependency is its database. A store with further
// dependencies gets a specialisation in its test, which owns what the store
// needs besides the connection:
//
//     template<>
//     struct StoreWiring<SqlUserDatabaseConnection>
//     {
//         bool wire(SqlUserDatabaseConnection& store, ISqlConnection* connection) { ... }
//     };
template<typename Store>
struct StoreWiring
{
    bool wire(Store& store, zelmor::domain::api::ISqlConnection* connection)
    {
        return store.setDependencies(connection);
    }
};

// A store on its own connection to one database file, wired as the facade
// wires it. The store's constructor takes the arguments given behind the key.
//
//     StoreFixture<SqlRoomDatabaseConnection> fixture(path);
//     QVERIFY(fixture.opened && fixture.store.initialize());
template<typename Store>
struct StoreFixture
{
    template<typename... Arguments>
    explicit StoreFixture(const QString& file, const QString& key = QLatin1String(TestDatabase::projectKey_),
                          Arguments&&... arguments)
        : connection(QStringLiteral("store_fixture_%1").arg(++count()))
        , store(std::forward<Arguments>(arguments)...)
    {
        opened = connection.openDatabase(file, QString(), QString(), key);
        wiring.wire(store, &connection);
    }

    static int& count()
    {
        static int value = 0;
        return value;
    }

    // False: the store can't be wired to nothing.
    bool unwire() { return wiring.wire(store, nullptr); }

    CuttingConnection connection;
    Store store;
    StoreWiring<Store> wiring;
    bool opened = false;
};

// A store that reads the catalogue as well: its own connection to one file,
// and a catalogue store on the file that cataloguePath() names, wired as the
// facade wires them. Set the catalogue once, in initTestCase.
//
//     CatalogueStoreFixture<SqlProgramDatabaseConnection>::cataloguePath() = createSampleCatalogue(database);
//     CatalogueStoreFixture<SqlProgramDatabaseConnection> fixture(path);
template<typename Store>
struct CatalogueStoreFixture
{
    template<typename... Arguments>
    explicit CatalogueStoreFixture(const QString& file, const QString& key = QLatin1String(TestDatabase::projectKey_),
                                   Arguments&&... arguments)
        : connection(QStringLiteral("catalogue_store_fixture_%1").arg(++StoreFixture<Store>::count()))
        , catalogueConnection(QStringLiteral("catalogue_store_fixture_%1").arg(++StoreFixture<Store>::count()))
        , store(std::forward<Arguments>(arguments)...)
    {
        opened = connection.openDatabase(file, QString(), QString(), key)
                 && catalogueConnection.openDatabase(cataloguePath(), QString(), QString(),
                                                     QLatin1String(TestDatabase::projectKey_));
        configuration.setDependencies(&catalogueConnection);
        store.setDependencies(&connection, &configuration);
    }

    static QString& cataloguePath()
    {
        static QString path;
        return path;
    }

    bool unwire() { return store.setDependencies(nullptr, nullptr); }

    CuttingConnection connection;
    zelmor::base::connection::databaseconnection::SqliteConnection catalogueConnection;
    zelmor::base::connection::databaseconnection::SqlConfigurationDatabaseConnection configuration;
    Store store;
    bool opened = false;
};

// The codes of the error signals a spy has seen.
inline QList<int> errorCodes(const QSignalSpy& spy)
{
    QList<int> codes;
    for (const QList<QVariant>& arguments : spy) {
        codes.append(int(arguments.at(0).value<zelmor::domain::types::DatabaseConnectionError>()));
    }
    return codes;
}

// An application database of version 19 whose tables are only those that the
// facade's creation functions build: the older core, as initialize() leaves a
// file without them. Returns the path, or an empty text.
inline QString createByInitialize(TestDatabase& database, const QString& fileName)
{
    const QString path =
        database.createEncrypted(fileName, QStringLiteral("CREATE TABLE database_version_info (version INTEGER);"
                                                          "INSERT INTO database_version_info VALUES (19);"));
    if (path.isEmpty()) {
        return QString();
    }
    zelmor::base::connection::databaseconnection::SqliteConnection connection(QStringLiteral("created_") + fileName);
    zelmor::base::connection::databaseconnection::DatabaseConnection facade(false);
    if (!connection.openDatabase(path, QString(), QString(), QLatin1String(TestDatabase::projectKey_))
        || !facade.setDependencies(&connection, &connection)) {
        return QString();
    }
    // Fails after the creation, at the first store whose table no function builds.
    facade.initialize();
    const bool created = connection.containsTable(facade.lookupUserPreferencesTableName());
    connection.closeDatabase();
    return created ? path : QString();
}

// The whole file, to tell that a failing store left it as it was.
inline QByteArray fileBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The files of a store test: delivered application databases, each with the
// rows that all of the test's files have and those of the one file, and the
// sqlcipher shell to look into them.
class ApplicationFiles
{
public:
    explicit ApplicationFiles(const QString& commonRows = QString())
        : commonRows_(commonRows)
    {
    }

    bool isValid() const { return database_->isValid(); }
    TestDatabase& database() { return *database_; }

    // A new file; an empty text when the shell failed (it says why).
    QString create(const QString& rows = QString())
    {
        const QString path = createApplicationDatabase(
            *database_, QStringLiteral("application%1.sqlite3").arg(++count_), commonRows_ + rows);
        if (path.isEmpty()) {
            qWarning() << database_->lastError();
        }
        return path;
    }

    // The shell's output with the project key, rows one per line, or the failure.
    static QString shell(const QString& path, const QString& sql)
    {
        const TestDatabase::ShellResult result =
            TestDatabase::runSqlcipher(path, QLatin1String(TestDatabase::projectKey_), sql);
        return result.ok ? result.output.trimmed() : QStringLiteral("<failed: %1>").arg(result.errorOutput);
    }

private:
    std::unique_ptr<TestDatabase> database_ = std::make_unique<TestDatabase>();
    QString commonRows_;
    int count_ = 0;
};

// The table of a store test's failures: one row for each operation in a
// situation that must fail cleanly. The situations:
// - "unwired": the store has no connection;
// - "wrong key": the file is opened with another key;
// - any other: the file as it is, rows of cutWidth columns coming a column
//   short (all of them, or only the one at check's cutRow).
// A test declares Q_DECLARE_METATYPE(FailureTable<Store>::Operation) first.
// A store that reads the catalogue runs in a CatalogueStoreFixture.
template<typename Store, typename Fixture = StoreFixture<Store>>
struct FailureTable
{
    using Operation = std::function<QString(Store&)>;

    static void addColumns()
    {
        QTest::addColumn<QString>("situation");
        QTest::addColumn<Operation>("operation");
        QTest::addColumn<QString>("result");
        QTest::addColumn<QList<int>>("codes");
        QTest::addColumn<int>("cutWidth");
    }

    static void row(const QByteArray& tag, const QString& situation, const Operation& operation, const QString& result,
                    const QList<int>& codes, int cutWidth = 0)
    {
        QTest::newRow(tag.constData()) << situation << operation << result << codes << cutWidth;
    }

    // Runs the current row on the file: compares the operation's result and
    // the store's error codes, and checks that nothing in the file changed; a
    // file opened with a wrong key keeps its bytes. The arguments are the
    // store's constructor's.
    template<typename... Arguments>
    static void check(const QString& path, int cutRow, Arguments&&... arguments)
    {
        QFETCH(QString, situation);
        QFETCH(Operation, operation);
        QFETCH(QString, result);
        QFETCH(QList<int>, codes);
        QFETCH(int, cutWidth);

        const QString dump = ApplicationFiles::shell(path, QStringLiteral(".dump"));
        const QByteArray bytes = fileBytes(path);
        {
            Fixture fixture(path,
                            situation == QLatin1String("wrong key") ? QStringLiteral("ffeeddccbbaa99887766554433221100")
                                                                    : QLatin1String(TestDatabase::projectKey_),
                            std::forward<Arguments>(arguments)...);
            QVERIFY(fixture.opened);
            if (situation == QLatin1String("unwired")) {
                QVERIFY(!fixture.unwire());
            }
            fixture.connection.cutWidth = cutWidth;
            fixture.connection.cutRow = cutRow;
            QSignalSpy errors(&fixture.store, &Store::error);

            QCOMPARE(operation(fixture.store), result);
            QCOMPARE(errorCodes(errors), codes);
            fixture.connection.closeDatabase();
        }
        QCOMPARE(ApplicationFiles::shell(path, QStringLiteral(".dump")), dump);
        if (situation == QLatin1String("wrong key")) {
            QCOMPARE(fileBytes(path), bytes);
        }
    }
};

} // namespace zelmor::testsupport
