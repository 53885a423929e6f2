#pragma once

#include <QStringList>

class QTextStream;

namespace zelmor::tools::databasetool {

// zelmor-db: the commands over the monitoring application's database, on top
// of the facade and its stores. One run is one command line.
class DatabaseTool
{
public:
    // The arguments without the program name. Results go to out, messages and
    // progress to err, help to out. Gives the exit status (ExitStatus).
    static int run(const QStringList& arguments, QTextStream& out, QTextStream& err, bool errIsTerminal = false);
};

} // namespace zelmor::tools::databasetool
