#include "Tools/DatabaseTool/ApplicationSchema.h"

#include <QFile>
#include <QRegularExpression>

#include <sqlite3.h>

// Resources of a static library are registered by hand, outside any namespace.
static void registerSchemaResource()
{
    Q_INIT_RESOURCE(ApplicationSchema);
}

namespace zelmor::tools::databasetool {

namespace {

const QString resourcePath = QStringLiteral(":/zelmor/databasetool/application-schema.sql");

// Comment lines and blank lines in front of a statement.
QString withoutLeadingComments(const QString& statement)
{
    static const QRegularExpression leading(QStringLiteral("^(\\s*--[^\\n]*\\n|\\s+)*"));
    return statement.mid(leading.match(statement).capturedLength());
}

} // namespace

QString ApplicationSchema::text()
{
    registerSchemaResource();
    QFile file(resourcePath);
    // The resource is part of the binary; it can't be missing.
    Q_ASSERT(file.exists());
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QStringList ApplicationSchema::statements()
{
    return split(text());
}

QStringList ApplicationSchema::tableNames()
{
    static const QRegularExpression create(QStringLiteral("^CREATE\\s+TABLE\\s+(\\w+)"),
                                           QRegularExpression::CaseInsensitiveOption);
    QStringList names;
    for (const QString& statement : statements()) {
        const QRegularExpressionMatch match = create.match(statement);
        if (match.hasMatch())
            names.append(match.captured(1));
    }
    return names;
}

QStringList ApplicationSchema::split(const QString& script)
{
    QStringList statements;
    int start = 0;
    for (int index = script.indexOf(QLatin1Char(';')); index >= 0;
         index = script.indexOf(QLatin1Char(';'), index + 1)) {
        const QString candidate = script.mid(start, index + 1 - start);
        if (!sqlite3_complete(candidate.toUtf8().constData()))
            continue;
        const QString statement = withoutLeadingComments(candidate);
        if (statement != QLatin1String(";"))
            statements.append(statement);
        start = index + 1;
    }
    return statements;
}

} // namespace zelmor::tools::databasetool
