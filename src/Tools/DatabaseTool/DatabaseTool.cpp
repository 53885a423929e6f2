#include "Tools/DatabaseTool/DatabaseTool.h"

#include "Tools/DatabaseTool/AddChambersCommand.h"
#include "Tools/DatabaseTool/CheckCommand.h"
#include "Tools/DatabaseTool/CommandLine.h"
#include "Tools/DatabaseTool/CreateCommand.h"
#include "Tools/DatabaseTool/ListingCommands.h"
#include "Tools/DatabaseTool/MessageCollector.h"
#include "Tools/DatabaseTool/ProgramCommands.h"
#include "Tools/DatabaseTool/RecordsetsCommand.h"
#include "Tools/DatabaseTool/ToolContext.h"

#include <QTextStream>

#include <functional>

namespace zelmor::tools::databasetool {

namespace {

using Run = std::function<CommandOutcome(const ToolContext&)>;

Run commandRun(const QString& name)
{
    static const QMap<QString, Run> runs = {
        {QStringLiteral("create"), &CreateCommand::run},
        {QStringLiteral("check"), &CheckCommand::run},
        {QStringLiteral("add-chambers"), &AddChambersCommand::run},
        {QStringLiteral("chambers"), &ListingCommands::chambers},
        {QStringLiteral("programs"), &ListingCommands::programs},
        {QStringLiteral("recordings"), &ListingCommands::recordings},
        {QStringLiteral("users"), &ListingCommands::users},
        {QStringLiteral("recordsets"), &RecordsetsCommand::run},
        {QStringLiteral("export-program"), &ProgramCommands::exportProgram},
        {QStringLiteral("import-program"), &ProgramCommands::importProgram},
    };
    return runs.value(name);
}

void report(QTextStream& err, const CommandOutcome& outcome, const QStringList& problems)
{
    err << QStringLiteral("zelmor-db: ") << outcome.message << '\n';
    // What the stores and the connection said about it, below the tool's own words.
    QStringList said;
    for (const QString& problem : problems) {
        if (!said.contains(problem)) {
            err << QStringLiteral("  ") << problem << '\n';
            said.append(problem);
        }
    }
}

} // namespace

int DatabaseTool::run(const QStringList& arguments, QTextStream& out, QTextStream& err, bool errIsTerminal)
{
    MessageCollector messages;
    const CommandLine line = CommandLine::parse(arguments);
    if (line.isHelpRequested() && (line.command().isEmpty() || !CommandLine::commandHelp(line.command()).isEmpty())) {
        out << (line.command().isEmpty() ? CommandLine::generalHelp() : CommandLine::commandHelp(line.command()));
        out.flush();
        return SUCCESS;
    }
    if (!line.isValid()) {
        const bool known = !CommandLine::commandHelp(line.command()).isEmpty();
        err << QStringLiteral("zelmor-db: ") << line.errorText() << '\n'
            << QStringLiteral("Try 'zelmor-db ") << (known ? line.command() + QLatin1Char(' ') : QString())
            << QStringLiteral("--help'.\n");
        err.flush();
        return USAGE_ERROR;
    }
    // The command line knows only commands that are here.
    const Run run = commandRun(line.command());
    Q_ASSERT(run);
    const ToolContext context{line, out, err, errIsTerminal};
    const CommandOutcome outcome = run(context);
    out.flush();
    if (!outcome.isSuccess())
        report(err, outcome, messages.problems());
    err.flush();
    return outcome.status;
}

} // namespace zelmor::tools::databasetool
