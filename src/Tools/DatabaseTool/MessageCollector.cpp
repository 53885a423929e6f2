#include "Tools/DatabaseTool/MessageCollector.h"

namespace zelmor::tools::databasetool {

namespace {

MessageCollector* current = nullptr;

} // namespace

MessageCollector::MessageCollector()
    : previous_(qInstallMessageHandler(&MessageCollector::handle))
{
    Q_ASSERT(!current);
    current = this;
}

MessageCollector::~MessageCollector()
{
    current = nullptr;
    qInstallMessageHandler(previous_);
}

void MessageCollector::handle(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (type == QtDebugMsg || type == QtInfoMsg || !current)
        return;
    const QString category = QString::fromLatin1(context.category ? context.category : "default");
    current->problems_.append(category + QStringLiteral(": ") + message);
    // A fatal message ends the program; it must be seen.
    if (type == QtFatalMsg && current->previous_)
        current->previous_(type, context, message);
}

} // namespace zelmor::tools::databasetool
