#pragma once

#include "Domain/Types/DatabaseConnectionError.h"

#include <QList>
#include <QStringList>
#include <QVariant>

#include <functional>

class QLoggingCategory;

namespace zelmor::domain::api {
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::base::connection::databaseconnection {

// The tests that every store makes, each reported as the stores report: a text
// in the store's log category and the code through the store's error signal.
// A store holds one as a member, made from itself:
//
//     SqlCameraDatabaseConnection::SqlCameraDatabaseConnection(QObject* parent)
//         : QObject(parent)
//         , checks(this, SQLCAMERADATABASECONNECTION)
//
//     if (!checks.hasDependencies("getCameras")) {
//         return {};
//     }
//
// The store must offer areDependenciesSet() and the signal error(); both are
// asked only when a test runs, not during construction.
class SqlStoreChecks
{
public:
    using Category = const QLoggingCategory& (*)();

    template<typename Store>
    SqlStoreChecks(const Store* store, Category category)
        : SqlStoreChecks(
            category, [store] { return store->areDependenciesSet(); },
            [store](zelmor::domain::types::DatabaseConnectionError code) { emit store->error(code); })
    {
    }
    SqlStoreChecks(Category category, std::function<bool()> dependenciesSet,
                   std::function<void(zelmor::domain::types::DatabaseConnectionError)> report);

    // DEPENDENCIES_NOT_SET (0) when the store isn't wired yet.
    bool hasDependencies(const char* operation) const;
    // MISSING_TABLE (4) at the first table, in list order, that the database
    // lacks. Creates nothing.
    bool hasTables(const zelmor::domain::api::ISqlConnection& connection, const QStringList& tables) const;
    // UNEXPECTED_RESULT (8) when the row's width isn't the statement's.
    bool hasWidth(const QList<QVariant>& row, int width, const char* operation) const;
    // UNEXPECTED_RESULT (8) for a result of another shape, told in the text.
    void reportUnexpected(const char* operation, const QString& what) const;

private:
    Category category_;
    std::function<bool()> dependenciesSet_;
    std::function<void(zelmor::domain::types::DatabaseConnectionError)> report_;
};

} // namespace zelmor::base::connection::databaseconnection
