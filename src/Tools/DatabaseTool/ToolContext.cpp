#include "Tools/DatabaseTool/ToolContext.h"

namespace zelmor::tools::databasetool {

const char* const ToolContext::fixedKey_ = "0a1b2c3d4e5f60718293a4b5c6d7e8f9";

QString ToolContext::key() const
{
    return line.isSet(QStringLiteral("--key")) ? line.value(QStringLiteral("--key")) : QLatin1String(fixedKey_);
}

} // namespace zelmor::tools::databasetool
