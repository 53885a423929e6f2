// Cost of one small indexed SELECT through the QSQLCIPHER driver, used the way
// the connection layer uses it (a new QSqlQuery per call, prepare, bind, exec,
// read the row), against the same statement run through the sqlcipher C API
// in a prepare-once, bind/step/reset loop on the same connection.
//
// Usage: bench_sqlcipher_driver [statements per round] [layer|capi]
// Default 50000 statements. "layer" or "capi" runs only that path, once,
// inside one transaction: for a profiler, or for counting instructions with
// callgrind (run with N and 2N statements, take the difference over N).

#include "SqlCipherDriver/SqlCipherDriver.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QList>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QTextStream>
#include <QVariant>

#include <sqlite3.h>

#include <algorithm>
#include <functional>
#include <vector>

using zelmor::sqldriver::SqlCipherDriver;

namespace {

const char* const connectionName = "bench";
const char* const selectText = "SELECT id, name, value, stamp FROM item WHERE id = ?";
constexpr int tableRows = 10000;
constexpr int rounds = 5;

QTextStream out(stdout);

bool run(QSqlQuery& query, const QString& text)
{
    if (query.exec(text))
        return true;
    out << "failed: " << text << ": " << query.lastError().text() << '\n';
    return false;
}

bool createTable(QSqlDatabase& db)
{
    QSqlQuery query(db);
    if (!run(query, QStringLiteral("PRAGMA key = '0a1b2c3d4e5f60718293a4b5c6d7e8f9';"))
        || !run(query, QStringLiteral("PRAGMA foreign_keys = ON;"))
        || !run(query, QStringLiteral("PRAGMA journal_mode = MEMORY"))
        || !run(query, QStringLiteral("PRAGMA temp_store = MEMORY"))
        || !run(query, QStringLiteral("CREATE TABLE item(id INTEGER PRIMARY KEY, name TEXT NOT NULL, "
                                      "value REAL, stamp TEXT)")))
        return false;
    if (!db.transaction())
        return false;
    for (int id = 1; id <= tableRows; ++id) {
        query.prepare(QStringLiteral("INSERT INTO item(id, name, value, stamp) VALUES (?, ?, ?, ?)"));
        query.addBindValue(id);
        query.addBindValue(QStringLiteral("chamber %1").arg(id));
        query.addBindValue(id * 0.25);
        query.addBindValue(QStringLiteral("2024-01-01T00:00:%1.000Z").arg(id % 60, 2, 10, QLatin1Char('0')));
        if (!query.exec()) {
            out << "insert failed: " << query.lastError().text() << '\n';
            return false;
        }
    }
    return db.commit();
}

// Nanoseconds per statement for each variant, best of several rounds. The
// variants take turns in each round, so that a busy machine hits all alike.
std::vector<double> best(int statements, const std::vector<std::function<void(int)>>& variants)
{
    std::vector<double> bestNs(variants.size(), 0);
    for (int round = 0; round < rounds; ++round) {
        for (size_t i = 0; i < variants.size(); ++i) {
            QElapsedTimer timer;
            timer.start();
            variants[i](round);
            const double ns = double(timer.nsecsElapsed()) / statements;
            bestNs[i] = round == 0 ? ns : std::min(bestNs[i], ns);
        }
    }
    return bestNs;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const int statements = argc > 1 ? std::max(1, atoi(argv[1])) : 50000;
    SqlCipherDriver::registerDriver();

    QTemporaryDir dir;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLCIPHER"), QLatin1String(connectionName));
        db.setDatabaseName(dir.filePath(QStringLiteral("bench.sqlite3")));
        if (!db.open() || !createTable(db)) {
            out << "set-up failed: " << db.lastError().text() << '\n';
            return 1;
        }
    }

    // The same pseudo-random keys for every variant.
    std::vector<int> ids(static_cast<size_t>(statements));
    quint32 state = 12345;
    for (int& id : ids) {
        state = state * 1664525u + 1013904223u;
        id = int(state % tableRows) + 1;
    }
    qint64 checksum = 0;

    QSqlDatabase db = QSqlDatabase::database(QLatin1String(connectionName), true);
    sqlite3* handle = static_cast<const SqlCipherDriver*>(db.driver())->nativeHandle();

    // As the connection layer does it: look the connection up, a new query
    // object, prepare, bind, exec, record().count() once, rows of value(i).
    const auto layerRound = [&](int) {
        for (const int id : ids) {
            QSqlQuery query(QSqlDatabase::database(QLatin1String(connectionName), true));
            query.setForwardOnly(true);
            query.prepare(QLatin1String(selectText));
            query.addBindValue(id);
            query.exec();
            QList<QList<QVariant>> rows;
            const int columns = query.record().count();
            while (query.next()) {
                QList<QVariant> row;
                for (int column = 0; column < columns; ++column)
                    row.append(query.value(column));
                rows.append(row);
            }
            checksum += rows.value(0).value(0).toLongLong();
        }
    };

    // One query object kept over all statements: what QSqlQuery itself costs
    // per exec, without object creation and prepare.
    const auto reusedRound = [&](int) {
        QSqlQuery query(db);
        query.setForwardOnly(true);
        query.prepare(QLatin1String(selectText));
        for (const int id : ids) {
            query.bindValue(0, id);
            query.exec();
            while (query.next()) {
                for (int column = 0; column < 4; ++column)
                    checksum += query.value(column).isValid();
            }
        }
    };

    // The plain C API on the same connection.
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(handle, selectText, -1, &statement, nullptr) != SQLITE_OK) {
        out << "prepare failed: " << sqlite3_errmsg(handle) << '\n';
        return 1;
    }
    const auto cRound = [&](int) {
        for (const int id : ids) {
            sqlite3_bind_int64(statement, 1, id);
            while (sqlite3_step(statement) == SQLITE_ROW) {
                checksum += sqlite3_column_int64(statement, 0);
                checksum += sqlite3_column_bytes(statement, 1);
                checksum += qint64(sqlite3_column_double(statement, 2));
                checksum += sqlite3_column_bytes(statement, 3);
            }
            sqlite3_reset(statement);
        }
    };

    if (argc > 2) {
        sqlite3_exec(handle, "BEGIN", nullptr, nullptr, nullptr);
        if (qstrcmp(argv[2], "layer") == 0)
            layerRound(0);
        else
            cRound(0);
        sqlite3_exec(handle, "COMMIT", nullptr, nullptr, nullptr);
        sqlite3_finalize(statement);
        return 0;
    }

    // Each statement on its own: the engine opens and ends a read transaction
    // per statement, which costs it a handful of file system calls.
    const std::vector<double> autocommit = best(statements, {layerRound, reusedRound, cRound});
    const double layerNs = autocommit[0];
    const double reusedNs = autocommit[1];
    const double cNs = autocommit[2];

    // All statements inside one open transaction: no file access per
    // statement, so what is left is the CPU cost of each path.
    sqlite3_exec(handle, "BEGIN", nullptr, nullptr, nullptr);
    const std::vector<double> inTransaction = best(statements, {layerRound, reusedRound, cRound});
    const double layerInTxNs = inTransaction[0];
    const double reusedInTxNs = inTransaction[1];
    const double cInTxNs = inTransaction[2];
    sqlite3_exec(handle, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_finalize(statement);

    // New query object and prepare only (the statement comes from the cache).
    const double prepareNs = best(statements, {[&](int) {
                                      for (int i = 0; i < statements; ++i) {
                                          QSqlQuery query(db);
                                          query.setForwardOnly(true);
                                          checksum += query.prepare(QLatin1String(selectText));
                                      }
                                  }})
                                 .front();

    const auto us = [](double ns) { return QString::number(ns / 1000, 'f', 2); };
    const auto ratio = [](double a, double b) { return QString::number(a / b, 'f', 2); };
    out << "SQLCipher driver: one row (4 columns) by primary key from " << tableRows << " rows, " << statements
        << " statements per round, best of " << rounds << " rounds, microseconds per statement\n";
    out << "                                         autocommit   in one transaction\n";
    out << "  connection-layer pattern (new QSqlQuery) " << us(layerNs) << "        " << us(layerInTxNs) << '\n';
    out << "  one QSqlQuery, bind + exec + read        " << us(reusedNs) << "        " << us(reusedInTxNs) << '\n';
    out << "  sqlcipher C API, bind/step/reset         " << us(cNs) << "        " << us(cInTxNs) << '\n';
    out << "  ratio connection-layer pattern / C API   " << ratio(layerNs, cNs) << "         "
        << ratio(layerInTxNs, cInTxNs) << '\n';
    out << "  ratio one QSqlQuery / C API              " << ratio(reusedNs, cNs) << "         "
        << ratio(reusedInTxNs, cInTxNs) << '\n';
    out << "  new QSqlQuery + prepare only             " << us(prepareNs) << '\n';
    out << "  (checksum " << checksum << ")\n";
    db = QSqlDatabase();
    QSqlDatabase::removeDatabase(QLatin1String(connectionName));
    return 0;
}
