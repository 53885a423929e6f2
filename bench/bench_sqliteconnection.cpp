// Per-statement cost of a small indexed SELECT through
// SqliteConnection::fetchSingleValue, against the same statement run through
// the plain SQLCipher C API (prepared once, then bind/step/reset) on the same
// encrypted file: the floor that no Qt layer can beat.
//
//     bench_sqliteconnection [rows] [lookups] [side]   (defaults 10000, 200000, both)
//
// side "connection" or "capi" times one side only, for a profiler or strace.

#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqliteConnection.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QSharedPointer>
#include <QTemporaryDir>
#include <QTextStream>

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>

using zelmor::base::connection::databaseconnection::SqliteConnection;
using zelmor::base::connection::databaseconnection::SqlQuery;
using zelmor::domain::api::ISqlQuery;

namespace {

const QString key = QStringLiteral("0a1b2c3d4e5f60718293a4b5c6d7e8f9");
const int rounds = 3; // the best of these counts

// The same pseudo-random ids for both sides.
class Ids
{
public:
    explicit Ids(int rows)
        : rows(rows)
    {
    }
    int next()
    {
        state = state * 1103515245u + 12345u;
        return int((state >> 8) % unsigned(rows)) + 1;
    }

private:
    int rows;
    unsigned state = 1;
};

SqlQuery lookup(int id)
{
    SqlQuery query;
    query.selectColumn(QStringLiteral("value"))
        .fromTable(QStringLiteral("data"))
        .whereColumn(QStringLiteral("id"))
        .equals(id);
    return query;
}

bool fill(SqliteConnection& connection, int rows)
{
    SqlQuery create;
    create.createTable(QStringLiteral("data"), {{QStringLiteral("id"), SqlQuery::INTEGER,
                                                 SqlQuery::PRIMARY_KEY | SqlQuery::NOT_NULL | SqlQuery::AUTO_INCREMENT},
                                                {QStringLiteral("name"), SqlQuery::TEXT},
                                                {QStringLiteral("value"), SqlQuery::REAL}});
    if (!connection.execute(create).success)
        return false;
    QList<QSharedPointer<ISqlQuery>> inserts;
    inserts.reserve(rows);
    for (int i = 1; i <= rows; ++i) {
        auto insert = QSharedPointer<SqlQuery>::create();
        insert->insertTable(QStringLiteral("data"))
            .columns({QStringLiteral("id"), QStringLiteral("name"), QStringLiteral("value")})
            .values({i, QStringLiteral("row %1").arg(i), i * 0.5});
        inserts.append(insert);
    }
    return connection.executeTransaction(inserts);
}

// Nanoseconds per lookup through the connection; checksum against dead-code removal.
double viaConnection(SqliteConnection& connection, int rows, int lookups, double& checksum)
{
    Ids ids(rows);
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < lookups; ++i)
        checksum += connection.fetchSingleValue(lookup(ids.next())).toDouble();
    return double(timer.nsecsElapsed()) / lookups;
}

double viaCApi(sqlite3* db, int rows, int lookups, double& checksum)
{
    sqlite3_stmt* statement = nullptr;
    const QByteArray text = lookup(0).getPreparedQueryString().toUtf8();
    if (sqlite3_prepare_v2(db, text.constData(), text.size(), &statement, nullptr) != SQLITE_OK)
        return -1;
    Ids ids(rows);
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < lookups; ++i) {
        sqlite3_bind_int(statement, 1, ids.next());
        if (sqlite3_step(statement) == SQLITE_ROW)
            checksum += sqlite3_column_double(statement, 0);
        sqlite3_reset(statement);
    }
    const double result = double(timer.nsecsElapsed()) / lookups;
    sqlite3_finalize(statement);
    return result;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    const int rows = arguments.size() > 1 ? arguments.at(1).toInt() : 10000;
    const int lookups = arguments.size() > 2 ? arguments.at(2).toInt() : 200000;
    const QString side = arguments.size() > 3 ? arguments.at(3) : QString();
    const bool timeConnection = side != QLatin1String("capi");
    const bool timeC = side != QLatin1String("connection");
    QTextStream out(stdout);

    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("bench.db"));
    SqliteConnection connection(QStringLiteral("bench"));
    if (!connection.openDatabase(path, QString(), QString(), key)) {
        out << "could not open " << path << "\n";
        return 1;
    }
    QElapsedTimer fillTimer;
    fillTimer.start();
    if (!fill(connection, rows)) {
        out << "could not fill the table\n";
        return 1;
    }
    const double fillMs = fillTimer.nsecsElapsed() / 1e6;

    sqlite3* db = nullptr;
    const QByteArray pragma = QStringLiteral("PRAGMA key = '%1';").arg(key).toUtf8();
    if (sqlite3_open_v2(QFile::encodeName(path).constData(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK
        || sqlite3_exec(db, pragma.constData(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        out << "C API could not open " << path << "\n";
        sqlite3_close(db);
        return 1;
    }

    double checksumConnection = 0;
    double checksumC = 0;
    // Warm both page caches first.
    if (timeConnection)
        viaConnection(connection, rows, std::min(lookups, 10000), checksumConnection);
    if (timeC)
        viaCApi(db, rows, std::min(lookups, 10000), checksumC);

    double bestConnection = 1e300;
    double bestC = 1e300;
    for (int round = 0; round < rounds; ++round) {
        checksumConnection = 0;
        checksumC = 0;
        if (timeConnection)
            bestConnection = std::min(bestConnection, viaConnection(connection, rows, lookups, checksumConnection));
        if (timeC)
            bestC = std::min(bestC, viaCApi(db, rows, lookups, checksumC));
    }
    sqlite3_close(db);

    out << "rows " << rows << ", lookups " << lookups << ", best of " << rounds << " rounds\n";
    out << "fill through executeTransaction: " << QString::number(fillMs, 'f', 1) << " ms\n";
    out << "statement: " << lookup(0).getPreparedQueryString() << "\n";
    out << "SqliteConnection::fetchSingleValue: " << QString::number(bestConnection / 1000, 'f', 2)
        << " us/statement\n";
    out << "SQLCipher C API (prepared once):    " << QString::number(bestC / 1000, 'f', 2) << " us/statement\n";
    out << "ratio: " << QString::number(bestConnection / bestC, 'f', 2) << "\n";
    if (timeConnection && timeC && checksumConnection != checksumC) {
        out << "checksums differ: " << checksumConnection << " " << checksumC << "\n";
        return 1;
    }
    return 0;
}
