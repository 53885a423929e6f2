#pragma once

#include <QDateTime>
#include <QMap>
#include <QString>
#include <QStringList>

namespace zelmor::tools::databasetool {

// The command line of zelmor-db: a command, its arguments and its options in
// any order behind the program name. An option's value is the next element or
// stands behind "=" (--key=...); "--" ends the options, so that a file name may
// start with "-". Only what the named command knows is accepted, and every
// value is checked here: a command gets numbers and times it can use as they are.
//
//     const CommandLine line = CommandLine::parse({"chambers", "app.sqlite3", "--json"});
//     line.command();            // "chambers"
//     line.argument("FILE");     // "app.sqlite3"
//     line.isSet("--json");      // true
class CommandLine
{
public:
    // The arguments without the program name.
    static CommandLine parse(const QStringList& arguments);

    // No usage error. A request for help is valid even where the rest is not.
    bool isValid() const { return error_.isEmpty(); }
    // The first usage error, one line without the program name.
    QString errorText() const { return error_; }
    // -h, --help or the command "help"; command() then names the command asked
    // about, or is empty for the general help.
    bool isHelpRequested() const { return helpRequested_; }
    QString command() const { return command_; }

    // A positional argument by its name in the usage ("FILE", "ID", "EXTRACT");
    // empty when it isn't given.
    QString argument(const QString& name) const { return arguments_.value(name); }
    bool isSet(const QString& option) const { return options_.contains(option); }
    QString value(const QString& option) const { return options_.value(option); }
    // Of an argument or option that takes a whole number above 0 ("ID", "--max").
    qint64 number(const QString& name) const;
    // Of an option that takes a time ("--from"); invalid when not given.
    QDateTime time(const QString& option) const;

    static QString generalHelp();
    // Empty for a command that doesn't exist.
    static QString commandHelp(const QString& command);

    // "2024-03-01T10:00:00" (local time), with "Z" or an offset such as
    // "+01:00", with a space for the "T", with minutes only, or a date alone,
    // which means its midnight. Invalid for anything else.
    static QDateTime parseTime(const QString& text);

private:
    void take(const QStringList& elements);
    void check();
    void fail(const QString& error);

    QString command_;
    QStringList positionals_;
    QMap<QString, QString> arguments_;
    QMap<QString, QString> options_;
    bool helpRequested_ = false;
    QString error_;
};

} // namespace zelmor::tools::databasetool
