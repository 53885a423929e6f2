#pragma once

#include "Tools/DatabaseTool/CommandOutcome.h"

namespace zelmor::tools::databasetool {

struct ToolContext;

// zelmor-db export-program and import-program: the program store's own
// export and import, with the files kept whole. An export goes to a new file
// only: the store empties a file it exports to, and a slip of the hand must
// not empty a database. An import goes into a working copy of FILE that takes
// its place only when the import succeeded.
class ProgramCommands
{
public:
    static CommandOutcome exportProgram(const ToolContext& context);
    static CommandOutcome importProgram(const ToolContext& context);

private:
    // Whether IN is a program file at all, before the store is given it.
    static CommandOutcome checkProgramFile(const QString& path);
};

} // namespace zelmor::tools::databasetool
