#include "Tools/DatabaseTool/CommandLine.h"

#include <QList>
#include <QRegularExpression>

namespace zelmor::tools::databasetool {

namespace {

enum class Kind { FLAG, TEXT, NUMBER, TIME };

struct Option
{
    const char* name;
    const char* valueName; // nullptr for a flag
    Kind kind;
    const char* help;
};

const Option optionTable[] = {
    {"--key", "KEY", Kind::TEXT, "the key of FILE (default: the monitoring application's\nfixed key)"},
    {"--catalogue", "CATALOGUE", Kind::TEXT,
     "the chamber type catalogue (default: found as chamber-\n"
     "simulator finds it: the path under General/ConfigDatabasePath\n"
     "in ../ZELMOR4.ini, else database/configuration.sqlite3 or\n"
     "../../../database/configuration.sqlite3)"},
    {"--json", nullptr, Kind::FLAG, "JSON for scripts instead of a table"},
    {"--max", "N", Kind::NUMBER, "at most N rows, spread evenly as the store thins them"},
    {"--from", "TIME", Kind::TIME,
     "the first moment wanted: 2024-03-01T10:00 (local time),\n2024-03-01T09:00Z, 2024-03-01T10:00+01:00"},
    {"--to", "TIME", Kind::TIME, "the last moment wanted; a date alone means its midnight"},
    {"--csv", "OUT", Kind::TEXT, "the CSV file to write; - writes to standard output"},
    {"--user", "ID", Kind::NUMBER, "the user who imports; the program is recorded as theirs"},
};

// Every command knows these.
const QStringList commonOptions = {"--key", "--catalogue"};

struct Command
{
    const char* name;
    QStringList arguments; // "[NAME]" is optional
    QStringList options;
    QStringList requiredOptions;
    const char* summary;
    const char* description;
};

const QList<Command>& commandTable()
{
    static const QList<Command> table = {
        {"create",
         {"FILE"},
         {},
         {},
         "a new, empty database of schema version 19",
         "Makes FILE a new encrypted application database of schema version 19 from the\n"
         "schema built into zelmor-db, and confirms with the facade's initialize() that the\n"
         "monitoring application accepts it (when a catalogue is found). FILE must not exist."},
        {"check",
         {"FILE"},
         {},
         {},
         "whether FILE is a database the application can open",
         "Tells whether FILE opens with the key, its schema version, whether the facade's\n"
         "initialize() passes (tried on a copy: FILE is only read) and which tables are\n"
         "missing if not, and what PRAGMA integrity_check says. Stops at the first fault,\n"
         "with its own exit status."},
        {"add-chambers",
         {"FILE", "[EXTRACT]"},
         {},
         {},
         "enters a simulated fleet's chambers",
         "Enters the chambers of a fleet that chamber-simulator built with -n or -a into\n"
         "FILE, through the chamber store. EXTRACT is the sqlextract.sql the simulator\n"
         "writes (default: sqlextract.sql in the documents folder, where it writes it).\n"
         "Chambers already in FILE (the same address and Modbus address) are skipped and\n"
         "counted. A line that can't be read is named with its number, and nothing of the\n"
         "run is written."},
        {"chambers", {"FILE"}, {"--json"}, {}, "lists the chambers", "Lists the chambers of FILE."},
        {"programs", {"FILE"}, {"--json"}, {}, "lists the programs", "Lists the programs of FILE."},
        {"recordings",
         {"FILE"},
         {"--json"},
         {},
         "lists the recordings",
         "Lists the recordings of FILE, with the number of their measured rows."},
        {"users",
         {"FILE"},
         {"--json"},
         {},
         "lists the users",
         "Lists the users of FILE (deleted ones are left out). Passwords don't show."},
        {"export-program",
         {"FILE", "ID", "OUT"},
         {},
         {},
         "writes a program to a program file",
         "Writes program ID of FILE, with the programs it calls, to the new program file\n"
         "OUT through the program store's export. OUT must not exist."},
        {"import-program",
         {"FILE", "IN"},
         {"--user"},
         {"--user"},
         "adds the program of a program file",
         "Adds the program of the program file IN, with the programs it calls, to FILE\n"
         "through the program store's import, in the name of user ID. The store names it\n"
         "after the file: Cycle.prg becomes \"Cycle_imported\"."},
        {"recordsets",
         {"FILE", "RECORDING"},
         {"--max", "--from", "--to", "--csv"},
         {"--csv"},
         "writes a recording's measured rows as CSV",
         "Writes the measured rows of recording RECORDING to OUT as CSV: a header with\n"
         "the signals' names and units, then one row for each moment (local time with its\n"
         "offset), values in the signal's unit, an empty field for a missing value. Rows\n"
         "come through the recordset store. With --from/--to only the rows of that span;\n"
         "with --max at most N of them, taken as the store thins a recording for a chart.\n"
         "On a terminal, standard error shows the progress."},
    };
    return table;
}

const Command* findCommand(const QString& name)
{
    for (const Command& command : commandTable()) {
        if (name == QLatin1String(command.name))
            return &command;
    }
    return nullptr;
}

const Option* findOption(const QString& name)
{
    for (const Option& option : optionTable) {
        if (name == QLatin1String(option.name))
            return &option;
    }
    return nullptr;
}

bool isOptional(const QString& argument)
{
    return argument.startsWith(QLatin1Char('['));
}

QString bare(const QString& argument)
{
    return isOptional(argument) ? argument.mid(1, argument.size() - 2) : argument;
}

Kind argumentKind(const QString& name)
{
    return name == QLatin1String("ID") || name == QLatin1String("RECORDING") ? Kind::NUMBER : Kind::TEXT;
}

bool isNumber(const QString& text)
{
    bool ok = false;
    const qint64 value = text.toLongLong(&ok, 10);
    return ok && value > 0 && !text.startsWith(QLatin1Char('+'));
}

QString usageLine(const Command& command)
{
    QString line = QStringLiteral("zelmor-db ") + QLatin1String(command.name);
    for (const QString& argument : command.arguments)
        line += QLatin1Char(' ') + argument;
    for (const QString& option : command.options) {
        const Option* info = findOption(option);
        QString text = option;
        if (info->valueName)
            text += QLatin1Char(' ') + QLatin1String(info->valueName);
        line += QLatin1Char(' ') + (command.requiredOptions.contains(option) ? text : QLatin1Char('[') + text + ']');
    }
    return line;
}

constexpr int optionColumn = 26;

QString optionLines(const QStringList& options)
{
    QString text;
    for (const QString& name : options) {
        const Option* option = findOption(name);
        QString head = QStringLiteral("  ") + name;
        if (option->valueName)
            head += QLatin1Char(' ') + QLatin1String(option->valueName);
        const QStringList lines = QString::fromLatin1(option->help).split(QLatin1Char('\n'));
        text += head.leftJustified(optionColumn) + lines.first() + QLatin1Char('\n');
        for (int index = 1; index < lines.size(); ++index)
            text += QString(optionColumn, QLatin1Char(' ')) + lines.at(index) + QLatin1Char('\n');
    }
    return text + QStringLiteral("  -h, --help").leftJustified(optionColumn) + QStringLiteral("this text\n");
}

const char exitStatusText[] = "Exit status: 0 done; 1 an operation of the stores failed; 2 a bad command line;\n"
                              "3 a file can't be opened or written; 4 not a database, or another key;\n"
                              "5 schema older than 19; 6 initialize() fails; 7 damaged file;\n"
                              "8 no catalogue; 9 an extract or program file that can't be read;\n"
                              "10 no program, recording or user of that id.\n";

} // namespace

CommandLine CommandLine::parse(const QStringList& arguments)
{
    CommandLine line;
    line.take(arguments);
    line.check();
    return line;
}

void CommandLine::take(const QStringList& elements)
{
    bool optionsEnded = false;
    for (int index = 0; index < elements.size(); ++index) {
        const QString& element = elements.at(index);
        if (optionsEnded || !element.startsWith(QLatin1Char('-')) || element == QLatin1String("-")) {
            if (command_.isEmpty())
                command_ = element;
            else
                positionals_.append(element);
            continue;
        }
        if (element == QLatin1String("--")) {
            optionsEnded = true;
            continue;
        }
        if (element == QLatin1String("-h") || element == QLatin1String("--help")) {
            helpRequested_ = true;
            continue;
        }
        const int equals = element.indexOf(QLatin1Char('='));
        const QString name = equals < 0 ? element : element.left(equals);
        const Option* option = findOption(name);
        if (!option) {
            fail(QStringLiteral("unknown option '%1'").arg(name));
            continue;
        }
        QString value;
        if (!option->valueName) {
            if (equals >= 0)
                fail(QStringLiteral("%1 takes no value").arg(name));
        } else if (equals >= 0) {
            value = element.mid(equals + 1);
        } else if (index + 1 < elements.size()) {
            value = elements.at(++index);
        } else {
            fail(QStringLiteral("%1 needs a value (%2)").arg(name, QLatin1String(option->valueName)));
            continue;
        }
        if (options_.contains(name))
            fail(QStringLiteral("%1 is given twice").arg(name));
        options_.insert(name, value);
    }
}

void CommandLine::check()
{
    if (command_ == QLatin1String("help")) {
        helpRequested_ = true;
        command_ = positionals_.value(0);
        positionals_.clear();
    }
    const Command* command = findCommand(command_);
    if (command_.isEmpty()) {
        if (!helpRequested_)
            fail(QStringLiteral("no command given"));
        return;
    }
    if (!command) {
        error_ = QStringLiteral("unknown command '%1'").arg(command_);
        return;
    }
    if (helpRequested_) {
        error_.clear();
        return;
    }
    for (auto it = options_.cbegin(); it != options_.cend(); ++it) {
        if (!commonOptions.contains(it.key()) && !command->options.contains(it.key()))
            fail(QStringLiteral("'%1' has no option %2").arg(command_, it.key()));
        const Option* option = findOption(it.key());
        if (option->kind == Kind::NUMBER && !isNumber(it.value()))
            fail(QStringLiteral("%1 wants a whole number above 0, not '%2'").arg(it.key(), it.value()));
        if (option->kind == Kind::TIME && !parseTime(it.value()).isValid())
            fail(QStringLiteral("%1 wants a time such as 2024-03-01T10:00:00, not '%2'").arg(it.key(), it.value()));
        if (option->kind == Kind::TEXT && it.value().isEmpty())
            fail(QStringLiteral("%1 needs a value that isn't empty").arg(it.key()));
        // The key goes into the text of a pragma.
        if (it.key() == QLatin1String("--key") && it.value().contains(QLatin1Char('\'')))
            fail(QStringLiteral("--key can't hold a quote"));
    }
    for (const QString& required : command->requiredOptions) {
        if (!options_.contains(required))
            fail(QStringLiteral("'%1' needs %2 %3")
                     .arg(command_, required, QLatin1String(findOption(required)->valueName)));
    }
    int index = 0;
    for (const QString& argument : command->arguments) {
        const QString name = bare(argument);
        if (index < positionals_.size()) {
            const QString& value = positionals_.at(index++);
            if (argumentKind(name) == Kind::NUMBER && !isNumber(value))
                fail(QStringLiteral("%1 wants a whole number above 0, not '%2'").arg(name, value));
            if (value.isEmpty())
                fail(QStringLiteral("%1 is empty").arg(name));
            arguments_.insert(name, value);
        } else if (!isOptional(argument)) {
            fail(QStringLiteral("'%1' needs %2").arg(command_, name));
        }
    }
    if (index < positionals_.size())
        fail(QStringLiteral("'%1' takes no argument '%2'").arg(command_, positionals_.at(index)));
}

void CommandLine::fail(const QString& error)
{
    // The first error is the one to fix first.
    if (error_.isEmpty())
        error_ = error;
}

qint64 CommandLine::number(const QString& name) const
{
    const QString text = name.startsWith(QLatin1Char('-')) ? value(name) : argument(name);
    return text.toLongLong(nullptr, 10);
}

QDateTime CommandLine::time(const QString& option) const
{
    return isSet(option) ? parseTime(value(option)) : QDateTime();
}

QDateTime CommandLine::parseTime(const QString& text)
{
    // Qt's own reading takes more (week dates, "24:00"); keep to what is promised.
    static const QRegularExpression form(
        QStringLiteral("^\\d{4}-\\d{2}-\\d{2}([T ]\\d{2}:\\d{2}(:\\d{2}(\\.\\d{1,3})?)?(Z|[+-]\\d{2}:\\d{2})?)?$"));
    if (!form.match(text).hasMatch())
        return {};
    QString iso = text;
    iso.replace(QLatin1Char(' '), QLatin1Char('T'));
    const QDateTime time = QDateTime::fromString(iso, Qt::ISODateWithMs);
    return time.isValid() ? time : QDateTime();
}

QString CommandLine::generalHelp()
{
    QString text = QStringLiteral("Usage: zelmor-db COMMAND FILE [ARGUMENTS] [OPTIONS]\n\n"
                                  "Prepares and inspects the monitoring application's encrypted database FILE\n"
                                  "through its own stores.\n\nCommands:\n");
    for (const Command& command : commandTable()) {
        QString head = QLatin1String(command.name);
        for (const QString& argument : command.arguments)
            head += QLatin1Char(' ') + argument;
        text += QStringLiteral("  ") + head.leftJustified(30) + QLatin1Char(' ') + QLatin1String(command.summary)
                + QLatin1Char('\n');
    }
    text += QStringLiteral("\nOptions of every command:\n") + optionLines(commonOptions);
    text += QStringLiteral("\n") + QLatin1String(exitStatusText);
    text += QStringLiteral("\n'zelmor-db COMMAND --help' tells more about a command.\n");
    return text;
}

QString CommandLine::commandHelp(const QString& name)
{
    const Command* command = findCommand(name);
    if (!command)
        return {};
    return QStringLiteral("Usage: ") + usageLine(*command) + QStringLiteral(" [--key KEY] [--catalogue CATALOGUE]\n\n")
           + QLatin1String(command->description) + QStringLiteral("\n\nOptions:\n")
           + optionLines(command->options + commonOptions) + QStringLiteral("\n") + QLatin1String(exitStatusText);
}

} // namespace zelmor::tools::databasetool
