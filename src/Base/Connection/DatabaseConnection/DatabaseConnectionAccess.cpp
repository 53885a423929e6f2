#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/SqlAccessDatabaseConnection.h"
#include "Domain/Types/ActivityId.h"

// The access table's interface, passed on call by call.

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;

UserLevel DatabaseConnection::getRequiredUserLevel(const ActivityId& activity) const
{
    return accessStore->getRequiredUserLevel(activity);
}

QList<ActivityId> DatabaseConnection::getGrantedActivities(UserLevel level) const
{
    return accessStore->getGrantedActivities(level);
}

} // namespace zelmor::base::connection::databaseconnection
