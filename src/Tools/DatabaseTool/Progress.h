#pragma once

#include <QString>

class QTextStream;

namespace zelmor::tools::databasetool {

// One line on a terminal that tells how far a long command has come,
// written over in place. Without a terminal it says nothing: a log or a
// pipe gets no carriage returns.
class Progress
{
public:
    Progress(QTextStream& stream, bool enabled);
    ~Progress();

    // A phase without numbers: "reading 12000 rows of recording 3".
    void say(const QString& text);
    // "writing 45% (5400 of 12000 rows)"; only when the percentage moves.
    void count(const QString& what, qint64 done, qint64 total);
    // Takes the line away again.
    void finish();

private:
    void show(const QString& text);

    QTextStream& stream_;
    bool enabled_;
    bool shown_ = false;
    int percent_ = -1;
};

} // namespace zelmor::tools::databasetool
