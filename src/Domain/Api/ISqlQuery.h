#pragma once

#include <QList>
#include <QString>
#include <QVariant>

namespace zelmor::domain::api {

// A prepared statement: the text with its "?" placeholders and the values for
// them, in the order of the placeholders. Connections run statements through
// this interface only, and builders take sub-queries through it.
class ISqlQuery
{
public:
    virtual ~ISqlQuery();

    virtual const QString& getPreparedQueryString() const = 0;
    virtual const QList<QVariant>& getBindValues() const = 0;
};

} // namespace zelmor::domain::api
