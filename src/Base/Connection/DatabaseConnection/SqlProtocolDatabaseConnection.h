#pragma once

#include "Base/Connection/DatabaseConnection/SqlStoreChecks.h"
#include "Domain/Api/IInitializing.h"
#include "Domain/Api/IProtocolDatabaseConnection.h"
#include "Domain/Types/DatabaseConnectionError.h"

#include <QLoggingCategory>
#include <QObject>

#include <functional>

namespace zelmor::domain::api {
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::base::connection::databaseconnection {

class SqlQuery;

Q_DECLARE_LOGGING_CATEGORY(SQLPROTOCOLDATABASECONNECTION)

// The application's log in table "log_entry". An entry's arguments lie in the
// columns "arg_1" to "arg_10" as the texts they are shown as, "num_args" of
// them in use; times are kept in UTC. Entries are read with their author's
// login name, " (deleted)" behind it for a deleted user; entries without an
// author aren't read.
//
// Failures are logged in "zelmor.SqlProtocolDatabaseConnection" and emitted
// through error(). Use on the thread of the connection.
class SqlProtocolDatabaseConnection : public QObject,
                                      public zelmor::domain::api::IProtocolDatabaseConnection,
                                      public zelmor::domain::api::IInitializing
{
    Q_OBJECT

public:
    // With mergeUserLevels, users of level ADVANCED count as BASIC ones, as the
    // user store reads them: asking for BASIC finds both.
    explicit SqlProtocolDatabaseConnection(bool mergeUserLevels, QObject* parent = nullptr);
    ~SqlProtocolDatabaseConnection() override;

    // The number of argument columns.
    static int getMaxNumArguments();

    // The connection is not owned. True when it is not null.
    virtual bool setDependencies(zelmor::domain::api::ISqlConnection* connection);
    // True when the database has the table "log_entry" (MISSING_TABLE if not).
    bool initialize() override;

    // More arguments than columns make the insert fail.
    bool addProtocolEntry(const zelmor::domain::types::ProtocolEntry& entry) override;
    QList<zelmor::domain::types::ProtocolEntry>
    getProtocolEntries(const zelmor::domain::types::TimeSpan& span,
                       zelmor::domain::types::UserLevel level) const override;
    QList<zelmor::domain::types::ProtocolEntry>
    getProtocolEntries(const zelmor::domain::types::TimeSpan& span,
                       const zelmor::domain::types::UserId& user) const override;
    bool hasProtocolEntries(const zelmor::domain::types::UserId& user) const override;

    virtual bool areDependenciesSet() const;

signals:
    void error(zelmor::domain::types::DatabaseConnectionError error) const override;

protected:
    // The entry columns joined to their authors, within the span. A condition
    // that follows must begin with "AND" when the span has an end.
    static SqlQuery prepareProtocolEntrySelectQuery(const zelmor::domain::types::TimeSpan& span);
    // Runs a statement of prepareProtocolEntrySelectQuery; rows of another
    // width are reported and passed over.
    virtual QList<zelmor::domain::types::ProtocolEntry> getProtocolEntries(const SqlQuery& query,
                                                                           int expectedColumns) const;

private:
    // The statement of the span with the condition on the author that
    // authorCondition appends behind "user_id"; oldest first.
    static SqlQuery prepareProtocolEntrySelectQuery(const zelmor::domain::types::TimeSpan& span,
                                                    const std::function<void(SqlQuery&)>& authorCondition);

    zelmor::domain::api::ISqlConnection* connection = nullptr;
    SqlStoreChecks checks;
    bool mergeUserLevels;
};

} // namespace zelmor::base::connection::databaseconnection
