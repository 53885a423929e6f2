#include "Tools/DatabaseTool/DatabaseFile.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

namespace zelmor::tools::databasetool {

namespace {

// The engine's primary result codes that tell what kind of file it met.
constexpr int sqliteCorrupt = 11;
constexpr int sqliteNotADatabase = 26;
constexpr int integrityFaultsShown = 5;

const QByteArray plainHeader = QByteArrayLiteral("SQLite format 3\0");

bool isPlainSqlite(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.read(plainHeader.size()) == plainHeader;
}

int primaryCode(const QSqlError& error)
{
    return error.nativeErrorCode().toInt() & 0xff;
}

} // namespace

DatabaseFile::DatabaseFile(const QString& connectionName)
    : connection_(connectionName)
{
}

DatabaseFile::~DatabaseFile()
{
    close();
}

CommandOutcome DatabaseFile::failure(ExitStatus status, const QString& what) const
{
    return CommandOutcome::failure(status, shownName_ + QStringLiteral(": ") + what);
}

CommandOutcome DatabaseFile::open(const QString& path, const QString& shownName, const QString& key, Access access)
{
    close();
    shownName_ = shownName;
    const QFileInfo info(path);
    // The engine would make a missing file; nothing is made here.
    if (!info.exists())
        return failure(CANNOT_OPEN, QStringLiteral("no such file"));
    if (info.isDir())
        return failure(CANNOT_OPEN, QStringLiteral("is a folder, not a file"));
    if (!info.isReadable())
        return failure(CANNOT_OPEN, QStringLiteral("can't be read (no permission)"));
    // The engine takes an empty file for a new, empty database.
    if (info.size() == 0)
        return failure(NOT_A_DATABASE, QStringLiteral("is empty, not a database"));
    if (!connection_.openDatabase(path, QString(), QString(), key))
        return failure(CANNOT_OPEN, QStringLiteral("can't be opened"));
    opened_ = true;

    QSqlDatabase database = connection_.getDatabase();
    QSqlQuery query(database);
    if (access == READ_ONLY && !query.exec(QStringLiteral("PRAGMA query_only = ON")))
        return failure(CANNOT_OPEN, QStringLiteral("can't be opened read-only: ") + query.lastError().text());
    // A wrong key only shows at the first statement that reads a page.
    if (query.exec(QStringLiteral("SELECT count(*) FROM sqlite_master")) && query.next())
        return CommandOutcome::success();
    const QSqlError error = query.lastError();
    switch (primaryCode(error)) {
    case sqliteNotADatabase:
        if (isPlainSqlite(path))
            return failure(NOT_A_DATABASE,
                           QStringLiteral("is an SQLite database without encryption, not an application database"));
        return failure(NOT_A_DATABASE, QStringLiteral("is not a database, or not one encrypted with this key"));
    case sqliteCorrupt:
        return failure(DAMAGED, QStringLiteral("is damaged or cut short (%1)").arg(error.databaseText()));
    default:
        return failure(CANNOT_OPEN, QStringLiteral("can't be read: ") + error.text());
    }
}

CommandOutcome DatabaseFile::openNew(const QString& path, const QString& shownName, const QString& key)
{
    close();
    shownName_ = shownName;
    if (!connection_.openDatabase(path, QString(), QString(), key))
        return failure(CANNOT_OPEN, QStringLiteral("can't be made"));
    opened_ = true;
    return CommandOutcome::success();
}

CommandOutcome DatabaseFile::checkVersion()
{
    using zelmor::base::connection::databaseconnection::databaseSchemaVersionNumber;
    if (!connection_.containsTable(
            QLatin1String(zelmor::base::connection::databaseconnection::databaseVersionInfoString)))
        return failure(SCHEMA_TOO_OLD, QStringLiteral("has no schema version (no table database_version_info); "
                                                      "the monitoring application needs %1 or later")
                                           .arg(databaseSchemaVersionNumber));
    const int found = version();
    if (found < databaseSchemaVersionNumber)
        return failure(SCHEMA_TOO_OLD, QStringLiteral("has schema version %1; the monitoring application needs %2 "
                                                      "or later")
                                           .arg(found)
                                           .arg(databaseSchemaVersionNumber));
    return CommandOutcome::success();
}

CommandOutcome DatabaseFile::checkIntegrity()
{
    QSqlQuery query(connection_.getDatabase());
    if (!query.exec(QStringLiteral("PRAGMA integrity_check")))
        return failure(DAMAGED,
                       QStringLiteral("is damaged: integrity_check stops (%1)").arg(query.lastError().databaseText()));
    QStringList faults;
    while (query.next())
        faults.append(query.value(0).toString().simplified());
    if (faults == QStringList{QStringLiteral("ok")})
        return CommandOutcome::success();
    const int count = faults.size();
    if (count > integrityFaultsShown) {
        faults = faults.mid(0, integrityFaultsShown);
        faults.append(QStringLiteral("and %1 more").arg(count - integrityFaultsShown));
    }
    return failure(DAMAGED, QStringLiteral("is damaged: integrity_check finds %1 fault(s): %2")
                                .arg(count)
                                .arg(faults.join(QStringLiteral("; "))));
}

QStringList DatabaseFile::tableNames() const
{
    return connection_.getDatabase().tables(QSql::Tables);
}

void DatabaseFile::close()
{
    if (!opened_)
        return;
    connection_.closeDatabase();
    // The next open registers the name afresh, without the framework's warning about a duplicate.
    QSqlDatabase::removeDatabase(connection_.getDatabaseFilePath());
    opened_ = false;
}

} // namespace zelmor::tools::databasetool
