#pragma once

#include <QStringList>
#include <QtGlobal>

namespace zelmor::tools::databasetool {

// Keeps the log messages of the persistence layer for as long as it lives,
// instead of letting them go to standard error: a person reads the tool's own
// message first, and the stores' words only below it when something failed.
// One at a time; the handler before it comes back when it goes.
class MessageCollector
{
public:
    MessageCollector();
    ~MessageCollector();
    MessageCollector(const MessageCollector&) = delete;
    MessageCollector& operator=(const MessageCollector&) = delete;

    // Warnings and worse, each as "category: text", in their order.
    QStringList problems() const { return problems_; }
    void clear() { problems_.clear(); }

private:
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& message);

    QtMessageHandler previous_;
    QStringList problems_;
};

} // namespace zelmor::tools::databasetool
