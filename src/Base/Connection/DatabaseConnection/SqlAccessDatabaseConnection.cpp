#include "Base/Connection/DatabaseConnection/SqlAccessDatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Domain/Api/ISqlConnection.h"
#include "Domain/Types/ActivityId.h"

#include <QMetaObject>
#include <QMetaType>

namespace zelmor::base::connection::databaseconnection {

Q_LOGGING_CATEGORY(SQLACCESSDATABASECONNECTION, "zelmor.SqlAccessDatabaseConnection")

using namespace zelmor::domain::types;
using zelmor::domain::api::ActivityAccessProperty;
using zelmor::domain::api::ISqlConnection;

namespace {

using DC = DatabaseSchema;

// Positions in a row of the granted activities.
enum GrantedColumn { GRANTED_COMPONENT_ID, GRANTED_ACTIVITY_ID, GRANTED_COLUMNS };

const ActivityAccessProperty grantedLayout[GRANTED_COLUMNS] = {
    ActivityAccessProperty::COMPONENT_ID,
    ActivityAccessProperty::ACTIVITY_ID,
};

QString accessColumn(ActivityAccessProperty property)
{
    return DC::lookupActivityAccessColumnName(property);
}

// The meta type of an enumeration that Q_ENUM or Q_ENUM_NS registered in the
// scope, by the name the meta-type system gives it: "<scope>::<name>".
int enumerationType(const QMetaObject& scope, const char* name)
{
    return QMetaType::type(QByteArray(scope.className()) + "::" + name);
}

// The enumeration's default when the value doesn't convert, NULL included.
template<typename Enumeration>
Enumeration toEnumeration(QVariant value, int type)
{
    return value.convert(type) ? value.value<Enumeration>() : Enumeration();
}

} // namespace

SqlAccessDatabaseConnection::SqlAccessDatabaseConnection(QObject* parent)
    : QObject(parent)
    , checks(this, SQLACCESSDATABASECONNECTION)
{
    // Q_ENUM registers a type only at its first use; the lookups by name need it earlier.
    qRegisterMetaType<UserLevel>();
    qRegisterMetaType<ActivityId::ComponentId>();
}

SqlAccessDatabaseConnection::~SqlAccessDatabaseConnection() = default;

bool SqlAccessDatabaseConnection::setDependencies(ISqlConnection* connection)
{
    this->connection = connection;
    return connection != nullptr;
}

bool SqlAccessDatabaseConnection::areDependenciesSet() const
{
    return connection != nullptr;
}

bool SqlAccessDatabaseConnection::initialize()
{
    return checks.hasDependencies("initialize") && checks.hasTables(*connection, {DC::lookupActivityAccessTableName()});
}

UserLevel SqlAccessDatabaseConnection::getRequiredUserLevel(const ActivityId& activity) const
{
    if (!checks.hasDependencies("getRequiredUserLevel")) {
        return UserLevel();
    }
    SqlQuery query;
    query.selectColumn(accessColumn(ActivityAccessProperty::MIN_USER_LEVEL))
        .fromTable(DC::lookupActivityAccessTableName())
        .whereColumn(accessColumn(ActivityAccessProperty::COMPONENT_ID))
        .equals(int(activity.getComponentId()))
        .andColumn(accessColumn(ActivityAccessProperty::ACTIVITY_ID))
        .equals(int(activity.getComponentActivityId()));
    // An activity without a row gives an invalid value, which converts to nothing.
    return toEnumeration<UserLevel>(connection->fetchSingleValue(query),
                                    enumerationType(zelmor::domain::types::staticMetaObject, "UserLevel"));
}

QList<ActivityId> SqlAccessDatabaseConnection::getGrantedActivities(UserLevel level) const
{
    if (!checks.hasDependencies("getGrantedActivities")) {
        return {};
    }
    SqlQuery query;
    query.selectColumns(SqlRow::columnNames(accessColumn, grantedLayout))
        .fromTable(DC::lookupActivityAccessTableName())
        .whereColumn(accessColumn(ActivityAccessProperty::MIN_USER_LEVEL))
        .isLessEqual(int(level));

    const int componentType = enumerationType(ActivityId::staticMetaObject, "ComponentId");
    QList<ActivityId> activities;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& values : rows) {
        if (!checks.hasWidth(values, GRANTED_COLUMNS, "getGrantedActivities")) {
            continue;
        }
        const SqlRow row(values);
        // Each row as the id's constructor takes it: an activity beyond its
        // component's range becomes the invalid id.
        activities.append(
            ActivityId(toEnumeration<ActivityId::ComponentId>(row.value(GRANTED_COMPONENT_ID), componentType),
                       quint16(row.toUInt(GRANTED_ACTIVITY_ID, 0))));
    }
    return activities;
}

} // namespace zelmor::base::connection::databaseconnection
