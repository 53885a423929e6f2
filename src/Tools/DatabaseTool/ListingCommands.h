#pragma once

#include "Tools/DatabaseTool/CommandOutcome.h"

#include <QDateTime>
#include <QJsonValue>

namespace zelmor::tools::databasetool {

class OutputTable;
class ToolDatabase;
struct ToolContext;

// zelmor-db chambers, programs, recordings and users: what the stores give,
// as a table for a person or with --json for a script. FILE is only read.
class ListingCommands
{
public:
    static CommandOutcome chambers(const ToolContext& context);
    static CommandOutcome programs(const ToolContext& context);
    static CommandOutcome recordings(const ToolContext& context);
    static CommandOutcome users(const ToolContext& context);

    // The texts the tables show for the numbers of the chamber columns.
    static QString protocolName(int protocol);
    static QString converterName(int converter);
    // A moment in local time with its offset, "2024-03-01T10:00:00+01:00"; null when invalid.
    static QJsonValue timeValue(const QDateTime& time);

private:
    // Prints the table, or the failure when the stores reported one.
    static CommandOutcome print(const ToolContext& context, ToolDatabase& database, const OutputTable& table,
                                const QString& what);
};

} // namespace zelmor::tools::databasetool
