#pragma once

#include "Domain/Api/ISqlQuery.h"

namespace zelmor::tools::databasetool {

// One statement of a shipped SQL script, run through a connection as it
// stands, without values to bind.
class ScriptStatement : public zelmor::domain::api::ISqlQuery
{
public:
    explicit ScriptStatement(const QString& text);

    const QString& getPreparedQueryString() const override { return text_; }
    const QList<QVariant>& getBindValues() const override { return values_; }

private:
    QString text_;
    QList<QVariant> values_;
};

} // namespace zelmor::tools::databasetool
