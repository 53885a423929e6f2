#pragma once

#include "Domain/Types/DatabaseConnectionError.h"

#include <QList>
#include <QSharedPointer>
#include <QString>
#include <QVariant>

#include <functional>

namespace zelmor::domain::api {

class ISqlQuery;

// A connection to one database. Every operation returns its empty value on
// failure (false, an empty list, an invalid QVariant) and reports the failure
// through error(); an empty result can't be told from a failed one otherwise.
class ISqlConnection
{
public:
    struct ExecuteResult
    {
        bool success = false;
        quint64 lastInsertId = 0; // 0 when the driver offers none
    };

    virtual ~ISqlConnection();

    virtual ExecuteResult execute(const ISqlQuery& query) = 0;
    // All or nothing: a failing or null entry rolls back the whole list.
    virtual bool executeTransaction(const QList<QSharedPointer<ISqlQuery>>& queries) = 0;
    virtual QList<QList<QVariant>> fetch(const ISqlQuery& query) const = 0;
    // Hands over row by row, for results too big to hold; the second argument
    // is the driver's size() of the result (-1 where the driver can't tell).
    virtual void fetch(const ISqlQuery& query, std::function<void(QList<QVariant>, int)> callback) = 0;
    virtual QList<QVariant> fetchSingleColumn(const ISqlQuery& query) const = 0;
    virtual QList<QVariant> fetchSingleRow(const ISqlQuery& query) const = 0;
    virtual QVariant fetchSingleValue(const ISqlQuery& query) const = 0;
    // The second and third argument are ignored.
    virtual bool openDatabase(const QString& databaseFile, const QString& userName, const QString& password,
                              const QString& key) = 0;
    virtual void closeDatabase() = 0;
    // Deletes the rows of every table except the schema version's.
    virtual bool emptyDatabase() = 0;
    virtual bool containsTable(const QString& table) const = 0;
    // The highest schema version recorded, 0 without a version table.
    virtual int getDatabaseVersionInfo() = 0;

    // A signal in the implementations.
    virtual void error(zelmor::domain::types::DatabaseConnectionError error) const = 0;
};

} // namespace zelmor::domain::api
