#pragma once

#include "Base/Connection/DatabaseConnection/SqlStoreChecks.h"
#include "Domain/Api/IAccessDatabaseConnection.h"
#include "Domain/Api/IInitializing.h"
#include "Domain/Types/DatabaseConnectionError.h"

#include <QLoggingCategory>
#include <QObject>

namespace zelmor::domain::api {
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::base::connection::databaseconnection {

Q_DECLARE_LOGGING_CATEGORY(SQLACCESSDATABASECONNECTION)

// The access table "activity_access" of the configuration database: one row
// per activity, keyed by component and activity, with the lowest user level
// that may carry it out. Read only. The numbers of the table become the
// registered enumerations UserLevel and ActivityId::ComponentId through the
// meta-type system; a number that doesn't convert reads as the enumeration's
// default.
//
// Failures are logged in "zelmor.SqlAccessDatabaseConnection" and emitted
// through error(). Use on the thread of the connection.
class SqlAccessDatabaseConnection : public QObject,
                                    public zelmor::domain::api::IAccessDatabaseConnection,
                                    public zelmor::domain::api::IInitializing
{
    Q_OBJECT

public:
    explicit SqlAccessDatabaseConnection(QObject* parent = nullptr);
    ~SqlAccessDatabaseConnection() override;

    // The configuration database; not owned. True when it is not null.
    virtual bool setDependencies(zelmor::domain::api::ISqlConnection* connection);
    // True when the database has the table "activity_access" (MISSING_TABLE if not).
    bool initialize() override;

    zelmor::domain::types::UserLevel
    getRequiredUserLevel(const zelmor::domain::types::ActivityId& activity) const override;
    QList<zelmor::domain::types::ActivityId>
    getGrantedActivities(zelmor::domain::types::UserLevel level) const override;

    virtual bool areDependenciesSet() const;

signals:
    void error(zelmor::domain::types::DatabaseConnectionError error) const override;

private:
    zelmor::domain::api::ISqlConnection* connection = nullptr;
    SqlStoreChecks checks;
};

} // namespace zelmor::base::connection::databaseconnection
