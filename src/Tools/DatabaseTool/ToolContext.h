#pragma once

#include "Tools/DatabaseTool/CommandLine.h"

#include <QString>

class QTextStream;

namespace zelmor::tools::databasetool {

// What a command is given: its command line and where its words go.
struct ToolContext
{
    // The key that the monitoring application and the simulator open their databases with.
    static const char* const fixedKey_;

    const CommandLine& line;
    QTextStream& out;
    QTextStream& err;
    // Standard error is a terminal: progress may show there.
    bool errIsTerminal = false;

    QString file() const { return line.argument(QStringLiteral("FILE")); }
    // --key, or the fixed key that the monitoring application opens its database with.
    QString key() const;
};

} // namespace zelmor::tools::databasetool
