#include "Tools/DatabaseTool/Progress.h"

#include <QTextStream>

namespace zelmor::tools::databasetool {

namespace {

// Back to the start of the line, and the line emptied behind the cursor.
const char overwrite[] = "\r\x1b[K";

} // namespace

Progress::Progress(QTextStream& stream, bool enabled)
    : stream_(stream)
    , enabled_(enabled)
{
}

Progress::~Progress()
{
    finish();
}

void Progress::show(const QString& text)
{
    if (!enabled_)
        return;
    stream_ << overwrite << QStringLiteral("zelmor-db: ") << text;
    stream_.flush();
    shown_ = true;
}

void Progress::say(const QString& text)
{
    percent_ = -1;
    show(text);
}

void Progress::count(const QString& what, qint64 done, qint64 total)
{
    const int percent = total > 0 ? int(done * 100 / total) : 100;
    if (percent == percent_)
        return;
    percent_ = percent;
    show(QStringLiteral("%1 %2% (%3 of %4)").arg(what).arg(percent).arg(done).arg(total));
}

void Progress::finish()
{
    if (!shown_)
        return;
    stream_ << overwrite;
    stream_.flush();
    shown_ = false;
}

} // namespace zelmor::tools::databasetool
