#pragma once

#include "Tools/DatabaseTool/ExitStatus.h"

#include <QString>

namespace zelmor::tools::databasetool {

// How a step of a command ended: success, or the exit status with the message
// for standard error. The message names the file and what is wrong with it.
struct CommandOutcome
{
    static CommandOutcome success() { return {}; }
    static CommandOutcome failure(ExitStatus status, const QString& message) { return {status, message}; }

    bool isSuccess() const { return status == SUCCESS; }

    ExitStatus status = SUCCESS;
    QString message;
};

} // namespace zelmor::tools::databasetool
