#include "support/SampleCatalogue.h"

#include "support/TestDatabase.h"
#include "support/TestPaths.h"

#include <QFile>

namespace zelmor::testsupport {

namespace {

QString readSource(const QString& relativePath)
{
    QFile file(sourceDir() + QLatin1Char('/') + relativePath);
    if (!file.open(QIODevice::ReadOnly)) {
        return QString();
    }
    return QString::fromUtf8(file.readAll());
}

QString createFromSchema(TestDatabase& database, const QString& fileName, const QString& schemaPath,
                         const QString& rows)
{
    const QString schema = readSource(schemaPath);
    if (schema.isEmpty()) {
        return QString();
    }
    // One transaction: a commit per statement would cost a disk sync each.
    return database.createEncrypted(fileName, QStringLiteral("BEGIN;\n") + schema + QLatin1Char('\n') + rows
                                                  + QStringLiteral("\nCOMMIT;"));
}

} // namespace

QString createSampleCatalogue(TestDatabase& database, const QString& fileName)
{
    const QString data = readSource(QStringLiteral("database/sample-data.sql"));
    if (data.isEmpty()) {
        return QString();
    }
    return createCatalogue(database, fileName, data);
}

QString createCatalogue(TestDatabase& database, const QString& fileName, const QString& rows)
{
    return createFromSchema(database, fileName, QStringLiteral("database/schema.sql"), rows);
}

QString createApplicationDatabase(TestDatabase& database, const QString& fileName, const QString& rows)
{
    return createFromSchema(database, fileName, QStringLiteral("database/application-schema.sql"), rows);
}

} // namespace zelmor::testsupport
