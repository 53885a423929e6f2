#pragma once

#include <QString>
#include <QStringList>

namespace zelmor::tools::databasetool {

// The application database as it is delivered (database/application-schema.sql),
// built into the binary as a resource.
class ApplicationSchema
{
public:
    // The script as shipped.
    static QString text();
    // Its statements in order, each whole and without its comments in front.
    static QStringList statements();
    // The tables it creates, in its order.
    static QStringList tableNames();

    // Splits an SQL script into its complete statements, as the engine reads
    // them: a ";" inside a text or a comment ends nothing. A rest that isn't a
    // whole statement is left out.
    static QStringList split(const QString& script);
};

} // namespace zelmor::tools::databasetool
