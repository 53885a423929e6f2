#include "Tools/DatabaseTool/CheckCommand.h"

#include "Tools/DatabaseTool/ApplicationSchema.h"
#include "Tools/DatabaseTool/ToolContext.h"
#include "Tools/DatabaseTool/ToolDatabase.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

namespace zelmor::tools::databasetool {

namespace {

QStringList without(QStringList names, const QStringList& others)
{
    for (const QString& other : others)
        names.removeAll(other);
    return names;
}

} // namespace

CommandOutcome CheckCommand::run(const ToolContext& context)
{
    const QString file = context.file();
    ToolDatabase database(context.key(), context.line.value(QStringLiteral("--catalogue")));
    CommandOutcome outcome = database.openUnchecked(file, file, DatabaseFile::READ_ONLY);
    if (!outcome.isSuccess())
        return outcome;
    context.out << file << QStringLiteral(": opens with the key\n");
    outcome = database.file().checkVersion();
    if (!outcome.isSuccess())
        return outcome;
    context.out << file << QStringLiteral(": schema version ") << database.file().version() << '\n';
    outcome = database.file().checkIntegrity();
    if (!outcome.isSuccess())
        return outcome;
    context.out << file << QStringLiteral(": integrity_check ok\n");
    outcome = database.openCatalogue(ToolDatabase::CATALOGUE_NEEDED);
    if (!outcome.isSuccess())
        return outcome;

    const QStringList tablesBefore = database.file().tableNames();
    database.file().close();
    QTemporaryDir folder;
    const QString copy = folder.filePath(QStringLiteral("check.sqlite3"));
    if (!folder.isValid() || !QFile::copy(file, copy))
        return CommandOutcome::failure(
            CANNOT_OPEN, file + QStringLiteral(": no room for a copy to try initialize() on in ") + QDir::tempPath());
    outcome = database.openUnchecked(copy, file, DatabaseFile::WRITABLE);
    if (!outcome.isSuccess())
        return outcome;
    const bool initialized = database.facade().initialize();
    const QStringList tablesAfter = database.file().tableNames();
    database.close();
    const QStringList missing = without(ApplicationSchema::tableNames(), tablesAfter);
    if (!initialized) {
        QString message = file + QStringLiteral(": initialize() fails");
        if (!missing.isEmpty())
            message += QStringLiteral("; missing tables: ") + missing.join(QStringLiteral(", "));
        return CommandOutcome::failure(INITIALIZE_FAILS, message);
    }
    context.out << file << QStringLiteral(": initialize() passes");
    const QStringList created = without(tablesAfter, tablesBefore);
    if (!created.isEmpty())
        context.out << QStringLiteral(" (it creates the tables ") << created.join(QStringLiteral(", "))
                    << QStringLiteral(")");
    context.out << '\n';
    if (!missing.isEmpty())
        context.out << file << QStringLiteral(": tables of the delivered schema that it lacks: ")
                    << missing.join(QStringLiteral(", ")) << '\n';
    return CommandOutcome::success();
}

} // namespace zelmor::tools::databasetool
