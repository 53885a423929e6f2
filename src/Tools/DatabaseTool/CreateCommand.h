#pragma once

#include "Tools/DatabaseTool/CommandOutcome.h"

namespace zelmor::tools::databasetool {

struct ToolContext;

// zelmor-db create FILE: a new application database from the schema built
// into the tool, made beside FILE and put in its place only when whole.
class CreateCommand
{
public:
    static CommandOutcome run(const ToolContext& context);
};

} // namespace zelmor::tools::databasetool
