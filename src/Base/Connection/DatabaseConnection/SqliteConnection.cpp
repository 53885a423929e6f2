#include "Base/Connection/DatabaseConnection/SqliteConnection.h"

#include "Base/Connection/DatabaseConnection/QSqlQueryWrapper.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "SqlCipherDriver/SqlCipherDriver.h"

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlRecord>

#include <algorithm>

namespace zelmor::base::connection::databaseconnection {

Q_LOGGING_CATEGORY(SQLITECONNECTION, "zelmor.SqliteConnection")

const char* const databaseVersionInfoString = "database_version_info";

using zelmor::domain::api::ISqlQuery;
using zelmor::domain::types::DatabaseConnectionError;

namespace {

const char* const driverName = "QSQLCIPHER";

// The journal on disk from construction to destruction, then in memory again.
class JournalOnDisk
{
public:
    explicit JournalOnDisk(const QSqlDatabase& database)
        : query(database)
    {
        query.exec(QStringLiteral("PRAGMA journal_mode = DELETE"));
        query.finish();
    }
    ~JournalOnDisk() { query.exec(QStringLiteral("PRAGMA journal_mode = MEMORY")); }

private:
    QSqlQueryWrapper query;
};

QString versionTableName()
{
    return QString::fromLatin1(databaseVersionInfoString);
}

// " SELECT name FROM sqlite_master WHERE type = ?" with "table".
SqlQuery tableNamesQuery()
{
    SqlQuery query;
    query.selectColumn(QStringLiteral("name"))
        .fromTable(QStringLiteral("sqlite_master"))
        .whereColumn(QStringLiteral("type"))
        .equals(QStringLiteral("table"));
    return query;
}

} // namespace

SqliteConnection::SqliteConnection(const QString& connectionName, QObject* parent)
    : QObject(parent)
    , connectionName(connectionName)
{
    qRegisterMetaType<DatabaseConnectionError>();
    zelmor::sqldriver::SqlCipherDriver::registerDriver();
    // Loads the driver before the first openDatabase; never used, never removed.
    QSqlDatabase::addDatabase(QLatin1String(driverName), connectionName + QLatin1String("dummy"));
}

SqliteConnection::~SqliteConnection()
{
    QSqlDatabase::removeDatabase(connectionName);
}

SqliteConnection::ExecuteResult SqliteConnection::execute(const ISqlQuery& query)
{
    ExecuteResult result;
    QSqlQueryWrapper wrapper(getDatabase());
    if (!bindValuesToQuery(wrapper, query.getPreparedQueryString(), query.getBindValues()))
        return result;
    if (!wrapper.exec()) {
        qCCritical(SQLITECONNECTION) << wrapper.lastError();
        emit error(DatabaseConnectionError::EXECUTION_FAILED);
        return result;
    }
    result.success = true;
    const QVariant id = wrapper.lastInsertId();
    result.lastInsertId = id.isValid() ? id.toULongLong() : 0;
    return result;
}

bool SqliteConnection::executeTransaction(const QList<QSharedPointer<ISqlQuery>>& queries)
{
    QSqlDatabase database = getDatabase();
    // The journal lies on disk while a transaction runs. Held in memory, it is
    // lost with a process that dies in the middle, while the engine has
    // already written part of the transaction's pages into the file (a large
    // one overflows the page cache): a broken file. Single statements keep
    // the journal in memory.
    const JournalOnDisk journal(database);
    database.transaction();
    QSqlQueryWrapper wrapper(database);
    for (const QSharedPointer<ISqlQuery>& query : queries) {
        if (query.isNull()) {
            database.rollback();
            return false;
        }
        if (!bindValuesToQuery(wrapper, query->getPreparedQueryString(), query->getBindValues())) {
            database.rollback();
            return false;
        }
        if (!wrapper.exec()) {
            qCCritical(SQLITECONNECTION) << wrapper.lastError();
            database.rollback();
            return false;
        }
        wrapper.finish();
    }
    database.commit();
    return true;
}

QList<QList<QVariant>> SqliteConnection::fetch(const ISqlQuery& query) const
{
    QSqlQueryWrapper wrapper(getDatabase());
    wrapper.setForwardOnly(true);
    if (!bindValuesToQuery(wrapper, query.getPreparedQueryString(), query.getBindValues()))
        return {};
    if (!wrapper.exec()) {
        qCCritical(SQLITECONNECTION) << wrapper.lastError();
        emit error(DatabaseConnectionError::EXECUTION_FAILED);
        return {};
    }
    return parseQueryResult(wrapper);
}

void SqliteConnection::fetch(const ISqlQuery& query, std::function<void(QList<QVariant>, int)> callback)
{
    QSqlQueryWrapper wrapper(getDatabase());
    wrapper.setForwardOnly(true);
    if (!bindValuesToQuery(wrapper, query.getPreparedQueryString(), query.getBindValues()))
        return;
    if (!wrapper.exec()) {
        qCCritical(SQLITECONNECTION) << wrapper.lastError();
        emit error(DatabaseConnectionError::EXECUTION_FAILED);
        return;
    }
    parseQueryResult(wrapper, std::move(callback));
}

QList<QVariant> SqliteConnection::fetchSingleColumn(const ISqlQuery& query) const
{
    const QList<QList<QVariant>> rows = fetch(query);
    QList<QVariant> column;
    column.reserve(rows.size());
    for (const QList<QVariant>& row : rows) {
        if (row.size() != 1) {
            qCWarning(SQLITECONNECTION).noquote()
                << "The result should consist of exactly 1 or 0 columns but instead it"
                << QStringLiteral("consists of %1 columns").arg(row.size());
            emit error(DatabaseConnectionError::UNEXPECTED_RESULT);
            return {};
        }
        column.append(row.first());
    }
    return column;
}

QList<QVariant> SqliteConnection::fetchSingleRow(const ISqlQuery& query) const
{
    const QList<QList<QVariant>> rows = fetch(query);
    if (rows.isEmpty())
        return {};
    if (rows.size() > 1) {
        qCWarning(SQLITECONNECTION).noquote()
            << QStringLiteral("The result should consist of 1 or 0 rows but instead it consists of %1 rows")
                   .arg(rows.size());
        emit error(DatabaseConnectionError::UNEXPECTED_RESULT);
        return {};
    }
    return rows.first();
}

QVariant SqliteConnection::fetchSingleValue(const ISqlQuery& query) const
{
    const QList<QList<QVariant>> rows = fetch(query);
    if (rows.isEmpty())
        return QVariant();
    if (rows.size() > 1 || rows.first().size() != 1) {
        qCWarning(SQLITECONNECTION).noquote()
            << "The result should consist of 1 or 0 values but instead it consists of"
            << QStringLiteral("%1 row(s) and %2 column(s)").arg(rows.size()).arg(rows.first().size());
        emit error(DatabaseConnectionError::UNEXPECTED_RESULT);
        return QVariant();
    }
    return rows.first().first();
}

bool SqliteConnection::openDatabase(const QString& databaseFile, const QString& /*userName*/,
                                    const QString& /*password*/, const QString& key)
{
    const QSqlDatabase handle = QSqlDatabase::addDatabase(QLatin1String(driverName), connectionName);
    if (!handle.isValid()) {
        qCCritical(SQLITECONNECTION) << handle.lastError();
        emit error(DatabaseConnectionError::INVALID_CONNECTION);
    }

    QSqlDatabase database = getDatabase();
    database.setDatabaseName(databaseFile);
    database.open();
    if (!database.isOpen()) {
        emit error(DatabaseConnectionError::DATABASE_NOT_OPENED);
        qCCritical(SQLITECONNECTION).noquote() << QStringLiteral("Could not open database '%1'").arg(databaseFile);
        return false;
    }

    QSqlQueryWrapper query(database);
    if (!query.exec(QStringLiteral("PRAGMA key = '%1';").arg(key))) {
        // The key stays out of the log.
        qCCritical(SQLITECONNECTION).noquote() << QStringLiteral("Could not decrypt database '%1'").arg(databaseFile);
        return false;
    }
    if (!query.exec(QStringLiteral("PRAGMA foreign_keys = ON;"))) {
        qCWarning(SQLITECONNECTION) << "Could not enable foreign key support."
                                    << "The application won't obey foreign key constraints.";
    }
    // Journal and temporary tables in memory: speed for the many small writes
    // of recordings, at the cost of the journal's crash safety. Transactions
    // move the journal to disk for their length (executeTransaction).
    query.exec(QStringLiteral("PRAGMA journal_mode = MEMORY"));
    query.exec(QStringLiteral("PRAGMA temp_store = MEMORY"));
    return true;
}

void SqliteConnection::closeDatabase()
{
    qCInfo(SQLITECONNECTION).noquote() << QStringLiteral("Closing Connection to ") + connectionName;
    getDatabase().close();
}

bool SqliteConnection::emptyDatabase()
{
    const QList<QVariant> tables = fetchSingleColumn(tableNamesQuery());
    deactivateForeignKeys();

    const QString versionTable = versionTableName();
    QList<QSharedPointer<ISqlQuery>> statements;
    for (const QVariant& table : tables) {
        if (!table.isValid() || table.userType() != QMetaType::QString)
            continue;
        const QString name = table.toString();
        if (name.isEmpty() || name == versionTable)
            continue;
        QSharedPointer<SqlQuery> statement = QSharedPointer<SqlQuery>::create();
        statement->deleteFromTable(name);
        statements.append(statement);
    }

    if (!executeTransaction(statements)) {
        qCWarning(SQLITECONNECTION).noquote()
            << QStringLiteral("Failed to empty tables of database '%1'").arg(connectionName);
        activateForeignKeys();
        return false;
    }

    // Gives the freed pages back to the file system.
    execute(SqlQuery().vacuum());

    activateForeignKeys();
    qCInfo(SQLITECONNECTION).noquote() << QStringLiteral("Emptied all tables of database '%1'").arg(connectionName);
    return true;
}

bool SqliteConnection::containsTable(const QString& table) const
{
    return getDatabase().tables(QSql::Tables).contains(table, Qt::CaseSensitive);
}

int SqliteConnection::getDatabaseVersionInfo()
{
    const QString versionTable = versionTableName();
    const QList<QList<QVariant>> tables = fetch(tableNamesQuery());
    const bool hasVersionTable = std::any_of(tables.cbegin(), tables.cend(), [&](const QList<QVariant>& row) {
        return row.size() == 1 && row.first().toString() == versionTable;
    });
    if (!hasVersionTable)
        return 0;

    SqlQuery versions;
    versions.selectColumn(QStringLiteral("version")).fromTable(versionTable);
    int version = 0;
    for (const QList<QVariant>& row : fetch(versions))
        version = std::max(version, row.isEmpty() ? 0 : row.first().toInt());
    return version;
}

QString SqliteConnection::getDatabaseFilePath() const
{
    return connectionName;
}

bool SqliteConnection::bindValuesToQuery(QSqlQueryWrapper& query, const QString& queryString,
                                         const QList<QVariant>& values) const
{
    if (!query.prepare(queryString)) {
        qCCritical(SQLITECONNECTION) << query.lastError();
        emit error(DatabaseConnectionError::PREPARATION_FAILED);
        return false;
    }
    for (const QVariant& value : values)
        query.addBindValue(value);
    return true;
}

QList<QList<QVariant>> SqliteConnection::parseQueryResult(QSqlQueryWrapper& query) const
{
    QList<QList<QVariant>> rows;
    if (!query.isActive()) {
        emit error(DatabaseConnectionError::QUERY_NOT_ACTIVE);
        return rows;
    }
    // The width of a result is fixed once it runs; record() is costly per row.
    const int columnCount = query.record().count();
    while (query.next()) {
        QList<QVariant> row;
        row.reserve(columnCount);
        for (int i = 0; i < columnCount; ++i)
            row.append(query.value(i));
        rows.append(row);
    }
    return rows;
}

void SqliteConnection::parseQueryResult(QSqlQueryWrapper& query, std::function<void(QList<QVariant>, int)> callback)
{
    if (!query.isActive()) {
        emit error(DatabaseConnectionError::QUERY_NOT_ACTIVE);
        return;
    }
    const int columnCount = query.record().count();
    while (query.next()) {
        QList<QVariant> row;
        row.reserve(columnCount);
        for (int i = 0; i < columnCount; ++i)
            row.append(query.value(i));
        callback(row, query.size());
    }
}

bool SqliteConnection::activateForeignKeys()
{
    if (changeForeignKeyActivation(true)) {
        qCInfo(SQLITECONNECTION) << "Activated foreign key support.";
        return true;
    }
    qCWarning(SQLITECONNECTION) << "Could not enable foreign key support."
                                << "The application won't obey foreign key constraints.";
    return false;
}

bool SqliteConnection::deactivateForeignKeys()
{
    if (changeForeignKeyActivation(false)) {
        qCInfo(SQLITECONNECTION) << "Deactivated foreign key support.";
        return true;
    }
    qCWarning(SQLITECONNECTION) << "Could not disable foreign key support."
                                << "The application will obey foreign key constraints.";
    return false;
}

bool SqliteConnection::changeForeignKeyActivation(bool on)
{
    QSqlQueryWrapper query(
        QStringLiteral("PRAGMA foreign_keys = %1").arg(on ? QLatin1String("ON") : QLatin1String("OFF")), getDatabase());
    if (!query.exec()) {
        qCCritical(SQLITECONNECTION) << query.lastError();
        return false;
    }
    return true;
}

bool SqliteConnection::rekeyDatabase(QString newKey)
{
    QSqlDatabase database = getDatabase();
    QSqlQueryWrapper query(database);
    if (!query.exec(QStringLiteral("PRAGMA rekey = '%1';").arg(newKey))) {
        // The words of the open path, on purpose.
        qCCritical(SQLITECONNECTION).noquote()
            << QStringLiteral("Could not decrypt database '%1'").arg(database.databaseName());
        return false;
    }
    return true;
}

QSqlDatabase SqliteConnection::getDatabase() const
{
    return QSqlDatabase::database(connectionName, true);
}

QStringList SqliteConnection::getColumnNames(const QString& table)
{
    QStringList names;
    const QSqlRecord record = getDatabase().driver()->record(table);
    names.reserve(record.count());
    for (int i = 0; i < record.count(); ++i)
        names.append(record.fieldName(i));
    return names;
}

} // namespace zelmor::base::connection::databaseconnection
