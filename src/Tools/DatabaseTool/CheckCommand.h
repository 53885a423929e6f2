#pragma once

#include "Tools/DatabaseTool/CommandOutcome.h"

namespace zelmor::tools::databasetool {

struct ToolContext;

// zelmor-db check FILE: whether the monitoring application can open FILE, one
// test after the other, each failure with its own exit status. FILE is only
// read: initialize(), which writes, runs on a copy in the temporary folder.
class CheckCommand
{
public:
    static CommandOutcome run(const ToolContext& context);
};

} // namespace zelmor::tools::databasetool
