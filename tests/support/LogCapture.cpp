#include "support/LogCapture.h"

namespace zelmor::testsupport {

namespace {

LogCapture* active = nullptr;

QString levelName(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return QStringLiteral("debug");
    case QtInfoMsg:
        return QStringLiteral("info");
    case QtWarningMsg:
        return QStringLiteral("warning");
    case QtCriticalMsg:
        return QStringLiteral("critical");
    case QtFatalMsg:
        return QStringLiteral("fatal");
    }
    return QStringLiteral("unknown");
}

} // namespace

LogCapture::LogCapture(const QString& categoryPrefix)
    : prefix_(categoryPrefix)
{
    Q_ASSERT(!active);
    active = this;
    previous_ = qInstallMessageHandler(&LogCapture::handle);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(previous_);
    active = nullptr;
}

QStringList LogCapture::texts() const
{
    QStringList texts;
    for (const Record& record : records_)
        texts.append(levelName(record.type) + QLatin1String(": ") + record.message);
    return texts;
}

QStringList LogCapture::messages(QtMsgType type) const
{
    QStringList texts;
    for (const Record& record : records_) {
        if (record.type == type)
            texts.append(record.message);
    }
    return texts;
}

void LogCapture::handle(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    LogCapture* capture = active;
    const QString category = QString::fromLatin1(context.category ? context.category : "default");
    if (capture && category.startsWith(capture->prefix_)) {
        capture->records_.append({type, message});
        return;
    }
    if (capture && capture->previous_)
        capture->previous_(type, context, message);
}

} // namespace zelmor::testsupport
