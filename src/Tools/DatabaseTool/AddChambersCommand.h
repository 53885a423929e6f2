#pragma once

#include "Tools/DatabaseTool/CommandOutcome.h"

namespace zelmor::tools::databasetool {

struct ToolContext;

// zelmor-db add-chambers FILE [EXTRACT]: the chambers of a simulated fleet
// into FILE through the chamber store. FILE is read first to see what is new;
// the new chambers go into a working copy that takes FILE's place when all
// of them are in, so a run adds all its chambers or none.
class AddChambersCommand
{
public:
    static CommandOutcome run(const ToolContext& context);

    // Where chamber-simulator writes the extract.
    static QString defaultExtract();
};

} // namespace zelmor::tools::databasetool
