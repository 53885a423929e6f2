#pragma once

#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Domain/Api/ISqlQuery.h"
#include "Domain/Types/DatabaseConnectionError.h"
#include "support/TestDatabase.h"

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QSignalSpy>
#include <QString>
#include <QVariant>

#include <utility>

// Header only: the helpers need the persistence layer, which the support
// library doesn't link; the store tests do.
namespace zelmor::testsupport {

// A real connection that cuts the last column off the rows of statements whose
// text contains the marker, all of them or only the row at cutRow: rows of the
// wrong width, which no well-formed statement on a real engine gives. The
// single-row and single-value reads go through here too.
class CuttingConnection : public zelmor::base::connection::databaseconnection::SqliteConnection
{
public:
    using SqliteConnection::fetch;
    using SqliteConnection::SqliteConnection;

    QList<QList<QVariant>> fetch(const zelmor::domain::api::ISqlQuery& query) const override
    {
        QList<QList<QVariant>> rows = SqliteConnection::fetch(query);
        if (!marker.isEmpty() && query.getPreparedQueryString().contains(marker)) {
            for (int index = 0; index < rows.size(); ++index) {
                if (cutRow < 0 || index == cutRow) {
                    rows[index].removeLast();
                }
            }
        }
        return rows;
    }

    QString marker;
    int cutRow = -1;
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
        store.setDependencies(&connection);
    }

    static int& count()
    {
        static int value = 0;
        return value;
    }

    CuttingConnection connection;
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

} // namespace zelmor::testsupport
