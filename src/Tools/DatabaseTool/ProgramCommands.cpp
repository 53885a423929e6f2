#include "Tools/DatabaseTool/ProgramCommands.h"

#include "Domain/Types/ProgramId.h"
#include "Domain/Types/UserData.h"
#include "Tools/DatabaseTool/ScratchFile.h"
#include "Tools/DatabaseTool/ToolContext.h"
#include "Tools/DatabaseTool/ToolDatabase.h"

#include <QFileInfo>
#include <QTextStream>
#include <QUrl>

namespace zelmor::tools::databasetool {

using zelmor::base::connection::databaseconnection::DatabaseConnection;
using zelmor::domain::types::ProgramId;
using zelmor::domain::types::UserId;

namespace {

const char programFileConnection[] = "zelmor-db-program";

CommandOutcome notFound(const ToolDatabase& database, const QString& file, const QString& what)
{
    if (database.hasErrors())
        return CommandOutcome::failure(COMMAND_FAILED, file + QStringLiteral(": can't be read"));
    return CommandOutcome::failure(NOT_FOUND, file + QStringLiteral(": has no ") + what);
}

} // namespace

CommandOutcome ProgramCommands::exportProgram(const ToolContext& context)
{
    const QString file = context.file();
    const QString out = context.line.argument(QStringLiteral("OUT"));
    const ProgramId id = int(context.line.number(QStringLiteral("ID")));
    const QFileInfo outInfo(out);
    if (outInfo.exists() || outInfo.isSymLink())
        return CommandOutcome::failure(CANNOT_OPEN, out
                                                        + QStringLiteral(": exists already; export-program makes a new "
                                                                         "file and never writes over one"));
    // The set points are kept in their signals' units, which the catalogue knows.
    ToolDatabase database(context.key(), context.line.value(QStringLiteral("--catalogue")));
    CommandOutcome outcome = database.open(file, file, DatabaseFile::READ_ONLY, ToolDatabase::CATALOGUE_NEEDED);
    if (!outcome.isSuccess())
        return outcome;
    if (!database.facade().isProgramIdValid(id))
        return notFound(database, file, QStringLiteral("program %1").arg(int(id)));
    const QString name = database.facade().getProgramName(id);

    ScratchFile scratch(out, out);
    outcome = scratch.createEmpty();
    if (!outcome.isSuccess())
        return outcome;
    if (!database.facade().exportProgram(id, QUrl::fromLocalFile(scratch.path())) || database.hasErrors())
        return CommandOutcome::failure(COMMAND_FAILED,
                                       file + QStringLiteral(": program %1 can't be exported").arg(int(id)));
    database.close();
    outcome = scratch.publishAsNew();
    if (!outcome.isSuccess())
        return outcome;
    context.out
        << out
        << QStringLiteral(": program %1 (\"%2\") of %3, with the programs it calls\n").arg(int(id)).arg(name, file);
    return outcome;
}

CommandOutcome ProgramCommands::checkProgramFile(const QString& path)
{
    DatabaseFile programFile{QLatin1String(programFileConnection)};
    // Program files have the fixed key, whatever key the database has.
    CommandOutcome outcome =
        programFile.open(path, path, QLatin1String(ToolContext::fixedKey_), DatabaseFile::READ_ONLY);
    if (outcome.status == NOT_A_DATABASE)
        return CommandOutcome::failure(BAD_INPUT, path
                                                      + QStringLiteral(": is no program file (not a database, or not "
                                                                       "one with the fixed key of program files)"));
    if (outcome.status == DAMAGED)
        return CommandOutcome::failure(BAD_INPUT, outcome.message);
    if (!outcome.isSuccess())
        return outcome;
    if (!programFile.connection().containsTable(DatabaseConnection::lookupProgramTableName()))
        return CommandOutcome::failure(BAD_INPUT, path + QStringLiteral(": is no program file (no table program)"));
    return CommandOutcome::success();
}

CommandOutcome ProgramCommands::importProgram(const ToolContext& context)
{
    const QString file = context.file();
    const QString in = context.line.argument(QStringLiteral("IN"));
    const UserId user = int(context.line.number(QStringLiteral("--user")));
    CommandOutcome outcome = checkProgramFile(in);
    if (!outcome.isSuccess())
        return outcome;

    ToolDatabase database(context.key(), context.line.value(QStringLiteral("--catalogue")));
    outcome = database.open(file, file, DatabaseFile::READ_ONLY, ToolDatabase::CATALOGUE_NEEDED);
    if (!outcome.isSuccess())
        return outcome;
    if (!database.facade().getUserData(user))
        return notFound(database, file, QStringLiteral("user %1").arg(int(user)));
    database.close();

    ScratchFile scratch(file, file);
    outcome = scratch.copyTarget();
    if (outcome.isSuccess())
        outcome = database.open(scratch.path(), file, DatabaseFile::WRITABLE, ToolDatabase::CATALOGUE_NEEDED);
    if (!outcome.isSuccess())
        return outcome;
    const ProgramId id = database.facade().importProgram(QUrl::fromLocalFile(in), user);
    if (int(id) == 0 || database.hasErrors())
        return CommandOutcome::failure(COMMAND_FAILED, in
                                                           + QStringLiteral(": its program can't be imported into %1; "
                                                                            "nothing is written")
                                                                 .arg(file));
    const QString name = database.facade().getProgramName(id);
    outcome = database.file().checkIntegrity();
    database.close();
    if (outcome.isSuccess())
        outcome = scratch.replaceTarget();
    if (!outcome.isSuccess())
        return outcome;
    context.out << file
                << QStringLiteral(": program %1 (\"%2\") imported from %3 for user %4\n")
                       .arg(int(id))
                       .arg(name, in)
                       .arg(int(user));
    return outcome;
}

} // namespace zelmor::tools::databasetool
