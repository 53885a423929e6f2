#include "SqlCipherDriver/SqlCipherDriver.h"

#include "SqlCipherDriver/SqlCipherResult_p.h"
#include "SqlCipherDriver/SqlCipherStatementCache_p.h"

#include <QDateTime>
#include <QSqlDatabase>
#include <QSqlField>
#include <QSqlIndex>
#include <QSqlRecord>
#include <QStringList>

#include <algorithm>

// sqlite3_key() is only declared for builds with the codec, which SQLCipher is.
#ifndef SQLITE_HAS_CODEC
#define SQLITE_HAS_CODEC 1
#endif
#include <sqlite3.h>

namespace zelmor::sqldriver {

const char* const SqlCipherDriver::driverName_ = "QSQLCIPHER";

namespace {

constexpr int defaultBusyTimeoutMs = 5000;

QSqlError engineError(sqlite3* db, const QString& text, int code, QSqlError::ErrorType type)
{
    const QString message = db ? QString::fromUtf8(sqlite3_errmsg(db)) : QString::fromUtf8(sqlite3_errstr(code));
    return QSqlError(text, message, type, QString::number(code));
}

QString quoteLiteral(QString text)
{
    text.replace(QLatin1Char('\''), QLatin1String("''"));
    return QLatin1Char('\'') + text + QLatin1Char('\'');
}

QString unquoteIdentifier(const QString& identifier)
{
    if (identifier.size() >= 2 && identifier.startsWith(QLatin1Char('"')) && identifier.endsWith(QLatin1Char('"'))) {
        QString inner = identifier.mid(1, identifier.size() - 2);
        inner.replace(QLatin1String("\"\""), QLatin1String("\""));
        return inner;
    }
    return identifier;
}

struct ColumnInfo
{
    QString name;
    QByteArray declaredType;
    bool notNull = false;
    QVariant defaultValue;
    int primaryKeyPosition = 0;
};

} // namespace

SqlCipherDriver::SqlCipherDriver(QObject* parent)
    : QSqlDriver(parent)
    , cache_(std::make_unique<SqlCipherStatementCache>())
{
}

SqlCipherDriver::~SqlCipherDriver()
{
    close();
    for (SqlCipherResult* result : results_)
        result->forgetDriver();
}

bool SqlCipherDriver::registerDriver()
{
    static const bool registered = [] {
        QSqlDatabase::registerSqlDriver(QLatin1String(driverName_), new QSqlDriverCreator<SqlCipherDriver>);
        return true;
    }();
    return registered;
}

bool SqlCipherDriver::hasFeature(DriverFeature feature) const
{
    switch (feature) {
    case Transactions:
    case BLOB:
    case Unicode:
    case PreparedQueries:
    case PositionalPlaceholders:
    case LastInsertId:
    case LowPrecisionNumbers:
    case FinishQuery:
        return true;
    case QuerySize:
    case NamedPlaceholders:
    case BatchOperations:
    case SimpleLocking:
    case EventNotifications:
    case MultipleResultSets:
    case CancelQuery:
        return false;
    }
    return false;
}

bool SqlCipherDriver::open(const QString& databaseName, const QString& /*user*/, const QString& password,
                           const QString& /*host*/, int /*port*/, const QString& connectOptions)
{
    if (isOpen())
        close();

    bool readOnly = false;
    bool uri = false;
    int busyTimeoutMs = defaultBusyTimeoutMs;
    const QStringList options = connectOptions.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    for (const QString& raw : options) {
        const QString option = raw.trimmed();
        if (option == QLatin1String("QSQLCIPHER_OPEN_READONLY")) {
            readOnly = true;
        } else if (option == QLatin1String("QSQLCIPHER_OPEN_URI")) {
            uri = true;
        } else if (option.startsWith(QLatin1String("QSQLCIPHER_BUSY_TIMEOUT="))) {
            bool ok = false;
            const int value = option.mid(option.indexOf(QLatin1Char('=')) + 1).toInt(&ok);
            if (ok && value >= 0)
                busyTimeoutMs = value;
        }
    }

    int flags = readOnly ? SQLITE_OPEN_READONLY : (SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    if (uri)
        flags |= SQLITE_OPEN_URI;
    // One connection is used by one thread only.
    flags |= SQLITE_OPEN_NOMUTEX;

    sqlite3* db = nullptr;
    int rc = sqlite3_open_v2(databaseName.toUtf8().constData(), &db, flags, nullptr);
    if (rc == SQLITE_OK)
        rc = sqlite3_busy_timeout(db, busyTimeoutMs);
    if (rc == SQLITE_OK && !password.isEmpty()) {
        const QByteArray key = password.toUtf8();
        rc = sqlite3_key(db, key.constData(), key.size());
        // The key is only checked when a page is read.
        if (rc == SQLITE_OK)
            rc = sqlite3_exec(db, "SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr);
    }
    if (rc != SQLITE_OK) {
        setLastError(engineError(db, QStringLiteral("Error opening database"), rc, QSqlError::ConnectionError));
        // The engine hands out a handle even when opening fails.
        sqlite3_close(db);
        setOpen(false);
        setOpenError(true);
        return false;
    }

    db_ = db;
    setOpen(true);
    setOpenError(false);
    return true;
}

void SqlCipherDriver::close()
{
    if (!db_) {
        setOpen(false);
        return;
    }
    for (SqlCipherResult* result : results_)
        result->dropStatement();
    cache_->clear();
    // close_v2 defers the close if statements made through nativeHandle() are left.
    const int rc = sqlite3_close_v2(db_);
    if (rc != SQLITE_OK)
        setLastError(engineError(db_, QStringLiteral("Error closing database"), rc, QSqlError::ConnectionError));
    db_ = nullptr;
    setOpen(false);
    setOpenError(false);
}

QSqlResult* SqlCipherDriver::createResult() const
{
    return new SqlCipherResult(this);
}

bool SqlCipherDriver::executeSimple(const char* sql, const QString& failureText, QSqlError::ErrorType type)
{
    if (!db_) {
        setLastError(QSqlError(failureText, QStringLiteral("database not open"), type));
        return false;
    }
    const int rc = sqlite3_exec(db_, sql, nullptr, nullptr, nullptr);
    if (rc != SQLITE_OK) {
        setLastError(engineError(db_, failureText, rc, type));
        return false;
    }
    return true;
}

bool SqlCipherDriver::beginTransaction()
{
    return executeSimple("BEGIN", QStringLiteral("Unable to begin transaction"), QSqlError::TransactionError);
}

bool SqlCipherDriver::commitTransaction()
{
    return executeSimple("COMMIT", QStringLiteral("Unable to commit transaction"), QSqlError::TransactionError);
}

bool SqlCipherDriver::rollbackTransaction()
{
    return executeSimple("ROLLBACK", QStringLiteral("Unable to roll back transaction"), QSqlError::TransactionError);
}

QStringList SqlCipherDriver::tables(QSql::TableType type) const
{
    QStringList names;
    if (!db_)
        return names;

    QStringList conditions;
    if (type & QSql::Tables)
        conditions << QStringLiteral("(type = 'table' AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\')");
    if (type & QSql::Views)
        conditions << QStringLiteral("type = 'view'");
    if (type & QSql::SystemTables)
        conditions << QStringLiteral("(type = 'table' AND name LIKE 'sqlite\\_%' ESCAPE '\\')");
    if (conditions.isEmpty())
        return names;
    const QString where = conditions.join(QLatin1String(" OR "));
    const QByteArray sql = QStringLiteral("SELECT name FROM sqlite_master WHERE %1 "
                                          "UNION ALL SELECT name FROM sqlite_temp_master WHERE %1")
                               .arg(where)
                               .toUtf8();

    auto* self = const_cast<SqlCipherDriver*>(this);
    sqlite3_stmt* statement = nullptr;
    int rc = sqlite3_prepare_v2(db_, sql.constData(), sql.size(), &statement, nullptr);
    if (rc == SQLITE_OK) {
        while ((rc = sqlite3_step(statement)) == SQLITE_ROW) {
            const char* name = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
            names << QString::fromUtf8(name, sqlite3_column_bytes(statement, 0));
        }
    }
    if (rc != SQLITE_DONE) {
        // A wrong key or a file that is no database: no tables.
        self->setLastError(engineError(db_, QStringLiteral("Unable to list tables"), rc, QSqlError::StatementError));
        names.clear();
    }
    sqlite3_finalize(statement);

    if ((type & QSql::SystemTables) && rc == SQLITE_DONE)
        names.prepend(QStringLiteral("sqlite_master"));
    return names;
}

namespace {

// The columns of a table by "PRAGMA table_info"; "schema.table" is understood.
QVector<ColumnInfo> readColumns(sqlite3* db, const QString& tableName, bool* ok)
{
    QVector<ColumnInfo> columns;
    *ok = false;
    if (!db)
        return columns;
    QString schema;
    QString table = tableName;
    if (!tableName.startsWith(QLatin1Char('"')) || !tableName.endsWith(QLatin1Char('"'))) {
        const int dot = tableName.indexOf(QLatin1Char('.'));
        if (dot > 0) {
            schema = unquoteIdentifier(tableName.left(dot));
            table = tableName.mid(dot + 1);
        }
    }
    table = unquoteIdentifier(table);
    QString text = QStringLiteral("PRAGMA ");
    if (!schema.isEmpty())
        text +=
            QLatin1Char('"') + QString(schema).replace(QLatin1Char('"'), QLatin1String("\"\"")) + QLatin1String("\".");
    text += QLatin1String("table_info(") + quoteLiteral(table) + QLatin1Char(')');
    const QByteArray sql = text.toUtf8();

    sqlite3_stmt* statement = nullptr;
    int rc = sqlite3_prepare_v2(db, sql.constData(), sql.size(), &statement, nullptr);
    if (rc == SQLITE_OK) {
        while ((rc = sqlite3_step(statement)) == SQLITE_ROW) {
            ColumnInfo column;
            column.name = QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(statement, 1)));
            column.declaredType = reinterpret_cast<const char*>(sqlite3_column_text(statement, 2));
            column.notNull = sqlite3_column_int(statement, 3) != 0;
            if (sqlite3_column_type(statement, 4) != SQLITE_NULL)
                column.defaultValue =
                    QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(statement, 4)));
            column.primaryKeyPosition = sqlite3_column_int(statement, 5);
            columns.append(column);
        }
    }
    sqlite3_finalize(statement);
    *ok = rc == SQLITE_DONE;
    if (!*ok)
        columns.clear();
    return columns;
}

} // namespace

QSqlRecord SqlCipherDriver::record(const QString& tableName) const
{
    QSqlRecord result;
    bool ok = false;
    const QVector<ColumnInfo> columns = readColumns(db_, tableName, &ok);
    if (!ok) {
        if (db_)
            const_cast<SqlCipherDriver*>(this)->setLastError(
                engineError(db_, QStringLiteral("Unable to read the columns of %1").arg(tableName),
                            sqlite3_errcode(db_), QSqlError::StatementError));
        return result;
    }
    const int keyColumns = int(
        std::count_if(columns.cbegin(), columns.cend(), [](const ColumnInfo& c) { return c.primaryKeyPosition > 0; }));
    for (const ColumnInfo& column : columns) {
        QSqlField field(column.name, SqlCipherResult::fieldType(column.declaredType.constData()), tableName);
        field.setRequiredStatus(column.notNull ? QSqlField::Required : QSqlField::Optional);
        if (column.defaultValue.isValid())
            field.setDefaultValue(column.defaultValue);
        // The one INTEGER PRIMARY KEY column is the rowid and numbers itself.
        if (keyColumns == 1 && column.primaryKeyPosition > 0
            && column.declaredType.compare("INTEGER", Qt::CaseInsensitive) == 0)
            field.setAutoValue(true);
        result.append(field);
    }
    return result;
}

QSqlIndex SqlCipherDriver::primaryIndex(const QString& tableName) const
{
    QSqlIndex index(tableName);
    bool ok = false;
    QVector<ColumnInfo> columns = readColumns(db_, tableName, &ok);
    columns.erase(
        std::remove_if(columns.begin(), columns.end(), [](const ColumnInfo& c) { return c.primaryKeyPosition == 0; }),
        columns.end());
    std::sort(columns.begin(), columns.end(),
              [](const ColumnInfo& a, const ColumnInfo& b) { return a.primaryKeyPosition < b.primaryKeyPosition; });
    for (const ColumnInfo& column : qAsConst(columns))
        index.append(QSqlField(column.name, SqlCipherResult::fieldType(column.declaredType.constData()), tableName));
    return index;
}

QString SqlCipherDriver::escapeIdentifier(const QString& identifier, IdentifierType type) const
{
    if (identifier.isEmpty() || isIdentifierEscaped(identifier, type))
        return identifier;
    if (type == TableName && identifier.contains(QLatin1Char('.'))) {
        QStringList parts = identifier.split(QLatin1Char('.'));
        for (QString& part : parts)
            part = escapeIdentifier(part, FieldName);
        return parts.join(QLatin1Char('.'));
    }
    QString escaped = identifier;
    escaped.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + escaped + QLatin1Char('"');
}

QString SqlCipherDriver::formatValue(const QSqlField& field, bool trimStrings) const
{
    const QVariant value = field.value();
    if (field.isNull() || value.isNull())
        return QStringLiteral("NULL");
    switch (value.userType()) {
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case QMetaType::QByteArray:
        return QLatin1String("X'") + QString::fromLatin1(value.toByteArray().toHex()) + QLatin1Char('\'');
    case QMetaType::QDateTime:
        return quoteLiteral(value.toDateTime().toUTC().toString(Qt::ISODateWithMs));
    case QMetaType::QDate:
        return quoteLiteral(value.toDate().toString(Qt::ISODate));
    case QMetaType::QTime:
        return quoteLiteral(value.toTime().toString(Qt::ISODateWithMs));
    case QMetaType::QString: {
        QString text = value.toString();
        if (trimStrings) {
            int end = text.size();
            while (end > 0 && text.at(end - 1).isSpace())
                --end;
            text.truncate(end);
        }
        return quoteLiteral(text);
    }
    default:
        return QSqlDriver::formatValue(field, trimStrings);
    }
}

QVariant SqlCipherDriver::handle() const
{
    return QVariant::fromValue(db_);
}

sqlite3* SqlCipherDriver::nativeHandle() const
{
    return db_;
}

int SqlCipherDriver::cachedStatementCount() const
{
    return cache_->count();
}

void SqlCipherDriver::registerResult(SqlCipherResult* result) const
{
    results_.push_back(result);
}

void SqlCipherDriver::unregisterResult(SqlCipherResult* result) const
{
    // Results mostly die in the order they were made: search from the back.
    const auto it = std::find(results_.rbegin(), results_.rend(), result);
    if (it != results_.rend())
        results_.erase(std::next(it).base());
}

SqlCipherStatementCache& SqlCipherDriver::statementCache() const
{
    return *cache_;
}

} // namespace zelmor::sqldriver
