#include "Base/Connection/DatabaseConnection/SqlStoreChecks.h"

#include "Domain/Api/ISqlConnection.h"

#include <QLoggingCategory>

namespace zelmor::base::connection::databaseconnection {

using zelmor::domain::types::DatabaseConnectionError;

SqlStoreChecks::SqlStoreChecks(Category category, std::function<bool()> dependenciesSet,
                               std::function<void(DatabaseConnectionError)> report)
    : category_(category)
    , dependenciesSet_(std::move(dependenciesSet))
    , report_(std::move(report))
{
}

bool SqlStoreChecks::hasDependencies(const char* operation) const
{
    if (dependenciesSet_()) {
        return true;
    }
    qCWarning(category_) << operation << "called before the dependencies were set";
    report_(DatabaseConnectionError::DEPENDENCIES_NOT_SET);
    return false;
}

bool SqlStoreChecks::hasTables(const zelmor::domain::api::ISqlConnection& connection, const QStringList& tables) const
{
    for (const QString& table : tables) {
        if (!connection.containsTable(table)) {
            qCCritical(category_).noquote() << QStringLiteral("The database lacks the table '%1'").arg(table);
            report_(DatabaseConnectionError::MISSING_TABLE);
            return false;
        }
    }
    return true;
}

bool SqlStoreChecks::hasWidth(const QList<QVariant>& row, int width, const char* operation) const
{
    if (row.size() == width) {
        return true;
    }
    qCWarning(category_) << operation << "got a row of" << row.size() << "columns instead of" << width;
    report_(DatabaseConnectionError::UNEXPECTED_RESULT);
    return false;
}

void SqlStoreChecks::reportUnexpected(const char* operation, const QString& what) const
{
    qCWarning(category_).noquote() << operation << what;
    report_(DatabaseConnectionError::UNEXPECTED_RESULT);
}

} // namespace zelmor::base::connection::databaseconnection
