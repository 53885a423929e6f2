#include "Tools/DatabaseTool/CreateCommand.h"

#include "Tools/DatabaseTool/ApplicationSchema.h"
#include "Tools/DatabaseTool/ScratchFile.h"
#include "Tools/DatabaseTool/ScriptStatement.h"
#include "Tools/DatabaseTool/ToolContext.h"
#include "Tools/DatabaseTool/ToolDatabase.h"

#include <QFileInfo>
#include <QSharedPointer>
#include <QTextStream>

namespace zelmor::tools::databasetool {

using zelmor::domain::api::ISqlQuery;

CommandOutcome CreateCommand::run(const ToolContext& context)
{
    const QString file = context.file();
    const QFileInfo info(file);
    if (info.exists() || info.isSymLink())
        return CommandOutcome::failure(CANNOT_OPEN,
                                       file
                                           + QStringLiteral(": exists already; create makes a new file and never "
                                                            "writes over one"));
    ScratchFile scratch(file, file);
    CommandOutcome outcome = scratch.createEmpty();
    if (!outcome.isSuccess())
        return outcome;

    ToolDatabase database(context.key(), context.line.value(QStringLiteral("--catalogue")));
    outcome = database.file().openNew(scratch.path(), file, context.key());
    if (!outcome.isSuccess())
        return outcome;
    QList<QSharedPointer<ISqlQuery>> statements;
    for (const QString& statement : ApplicationSchema::statements())
        statements.append(QSharedPointer<ScriptStatement>::create(statement));
    // The connection commits whatever the engine says; what was built is looked at below.
    if (!database.file().connection().executeTransaction(statements) || database.hasErrors())
        return CommandOutcome::failure(COMMAND_FAILED, file + QStringLiteral(": the schema could not be built"));
    outcome = database.file().checkVersion();
    if (outcome.isSuccess())
        outcome = database.file().checkIntegrity();
    if (outcome.isSuccess())
        outcome = database.openCatalogue(ToolDatabase::CATALOGUE_IF_FOUND);
    if (!outcome.isSuccess())
        return outcome;
    // What the monitoring application does first with the file: it writes its settings row.
    if (database.hasCatalogue() && !database.facade().initialize())
        return CommandOutcome::failure(INITIALIZE_FAILS,
                                       file + QStringLiteral(": the new database is not accepted by initialize()"));
    const int version = database.file().version();
    const bool initialized = database.hasCatalogue();
    const QString catalogue = database.catalogueName();
    database.close();
    outcome = scratch.publishAsNew();
    if (!outcome.isSuccess())
        return outcome;

    context.out << file << QStringLiteral(": new application database of schema version ") << version;
    if (initialized)
        context.out << QStringLiteral(", accepted by initialize() (catalogue ") << catalogue << QStringLiteral(")\n");
    else
        context.out << QStringLiteral("; initialize() not tried: no catalogue found (--catalogue names one)\n");
    return outcome;
}

} // namespace zelmor::tools::databasetool
