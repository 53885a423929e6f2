#pragma once

#include "Domain/Types/DatabaseConnectionError.h"
#include "Domain/Types/UserLevel.h"

#include <QList>

namespace zelmor::domain::types {
class ActivityId;
} // namespace zelmor::domain::types

namespace zelmor::domain::api {

// Which user level each activity requires, as the configuration database's
// access table says. Every operation returns its empty value (NONE, an empty
// list) on failure and reports it through error().
class IAccessDatabaseConnection
{
public:
    virtual ~IAccessDatabaseConnection();

    // NONE for an activity that the table doesn't know.
    virtual zelmor::domain::types::UserLevel
    getRequiredUserLevel(const zelmor::domain::types::ActivityId& activity) const = 0;
    // Every activity that a user of the level may carry out.
    virtual QList<zelmor::domain::types::ActivityId>
    getGrantedActivities(zelmor::domain::types::UserLevel level) const = 0;

    // A signal in the implementations.
    virtual void error(zelmor::domain::types::DatabaseConnectionError error) const = 0;
};

} // namespace zelmor::domain::api
