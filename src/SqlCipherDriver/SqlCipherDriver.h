#pragma once

#include <QMetaType>
#include <QSqlDriver>
#include <QSqlError>

#include <memory>
#include <vector>

struct sqlite3;
Q_DECLARE_OPAQUE_POINTER(sqlite3*)
Q_DECLARE_METATYPE(sqlite3*)

namespace zelmor::sqldriver {

class SqlCipherResult;
class SqlCipherStatementCache;

// Qt SQL driver "QSQLCIPHER": SQLite with SQLCipher's page encryption.
//
// The database name is the file path; its folder must exist (none is
// created). The key is set with the statement "PRAGMA key = '...';" right
// after open(), or by passing it as the password to open(), in which case a
// wrong key makes open() fail. With "PRAGMA key" a wrong key is only noticed by
// the first statement that reads a page ("file is encrypted or is not a
// database"); tables() then gives an empty list.
//
// Connect options, separated by ';': "QSQLCIPHER_OPEN_READONLY",
// "QSQLCIPHER_OPEN_URI", "QSQLCIPHER_BUSY_TIMEOUT=<ms>" (default 5000).
//
// Values read back are typed by the engine's storage class: INTEGER as
// qlonglong, REAL as double, TEXT as QString, BLOB as QByteArray, NULL as an
// invalid QVariant. Bound QDateTime values are stored as ISO-8601 text in UTC
// with milliseconds, QDate and QTime as ISO-8601 text; bool as 0 or 1; a
// qulonglong above the signed range keeps its bits (read it back with
// toULongLong()). size() of a result is always -1; numRowsAffected() counts
// the rows the statement itself changed (-1 for a SELECT); lastInsertId() is
// valid only after an INSERT or REPLACE that added a row.
//
// Prepared statements are kept per connection by their SQL text (at most 64
// idle ones) and reused by later results with the same text; pragmas and
// texts with several statements (allowed in exec(), not in prepare()) are not
// kept. Use on the thread that opened it.
class SqlCipherDriver : public QSqlDriver
{
    Q_OBJECT

public:
    explicit SqlCipherDriver(QObject* parent = nullptr);
    ~SqlCipherDriver() override;

    // Makes "QSQLCIPHER" known to QSqlDatabase in this process. Cheap and
    // idempotent; call it before the first addDatabase("QSQLCIPHER", ...).
    static bool registerDriver();

    static const char* const driverName_;

    bool hasFeature(DriverFeature feature) const override;
    bool open(const QString& databaseName, const QString& user, const QString& password, const QString& host, int port,
              const QString& connectOptions) override;
    void close() override;
    QSqlResult* createResult() const override;

    bool beginTransaction() override;
    bool commitTransaction() override;
    bool rollbackTransaction() override;

    QStringList tables(QSql::TableType type) const override;
    QSqlRecord record(const QString& tableName) const override;
    QSqlIndex primaryIndex(const QString& tableName) const override;

    QString escapeIdentifier(const QString& identifier, IdentifierType type) const override;
    QString formatValue(const QSqlField& field, bool trimStrings = false) const override;

    // The sqlite3* of the open connection (metatype "sqlite3*"), or null.
    QVariant handle() const override;
    sqlite3* nativeHandle() const;

    // Statements currently parked in the cache (for diagnostics and tests).
    int cachedStatementCount() const;

private:
    friend class SqlCipherResult;

    bool executeSimple(const char* sql, const QString& failureText, QSqlError::ErrorType type);
    void registerResult(SqlCipherResult* result) const;
    void unregisterResult(SqlCipherResult* result) const;
    SqlCipherStatementCache& statementCache() const;

    sqlite3* db_ = nullptr;
    std::unique_ptr<SqlCipherStatementCache> cache_;
    mutable std::vector<SqlCipherResult*> results_;
};

} // namespace zelmor::sqldriver
