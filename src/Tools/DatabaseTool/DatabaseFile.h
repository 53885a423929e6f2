#pragma once

#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Tools/DatabaseTool/CommandOutcome.h"

#include <QString>
#include <QStringList>

namespace zelmor::tools::databasetool {

// One encrypted database file opened for the tool, with the tests the tool
// makes before the facade comes near it. Messages name the file as the user
// named it, also when a copy is what is opened.
//
// Opened read-only, the engine refuses every write on the connection: a
// command that only reads can't change a byte of the file, whatever the
// stores do on it.
class DatabaseFile
{
public:
    enum Access { READ_ONLY, WRITABLE };

    explicit DatabaseFile(const QString& connectionName);
    ~DatabaseFile();
    DatabaseFile(const DatabaseFile&) = delete;
    DatabaseFile& operator=(const DatabaseFile&) = delete;

    // Opens the file and reads its schema with the key; messages call it
    // shownName from here on. CANNOT_OPEN for a file
    // that is missing or can't be read, NOT_A_DATABASE for one that doesn't
    // decrypt (also an empty or an unencrypted one), DAMAGED for one that is
    // cut short.
    CommandOutcome open(const QString& path, const QString& shownName, const QString& key, Access access);
    // Opens a new, empty file to build a database in; nothing is tested.
    CommandOutcome openNew(const QString& path, const QString& shownName, const QString& key);
    // The schema version as the facade reads it; SCHEMA_TOO_OLD below the
    // facade's 19.
    CommandOutcome checkVersion();
    int version() { return connection_.getDatabaseVersionInfo(); }
    // DAMAGED with the first faults that PRAGMA integrity_check finds.
    CommandOutcome checkIntegrity();
    QStringList tableNames() const;

    zelmor::base::connection::databaseconnection::SqliteConnection& connection() { return connection_; }
    QString shownName() const { return shownName_; }
    void close();

private:
    CommandOutcome failure(ExitStatus status, const QString& what) const;

    zelmor::base::connection::databaseconnection::SqliteConnection connection_;
    QString shownName_;
    bool opened_ = false;
};

} // namespace zelmor::tools::databasetool
