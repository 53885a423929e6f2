#include "Tools/DatabaseTool/ScriptStatement.h"

namespace zelmor::tools::databasetool {

ScriptStatement::ScriptStatement(const QString& text)
    : text_(text)
{
}

} // namespace zelmor::tools::databasetool
