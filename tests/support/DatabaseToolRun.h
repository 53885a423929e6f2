#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace zelmor::testsupport {

// One run of the real zelmor-db executable of the build tree, to its end.
//
//     const DatabaseToolRun run = DatabaseToolRun::start({"check", path}, folder);
//     QCOMPARE(run.exitCode, 0);
struct DatabaseToolRun
{
    // In workingFolder (the test's own when empty), with HOME at home when
    // given (the documents folder is then <home>/Documents), without a
    // display and without the user's folder settings; environment adds
    // "NAME=value" entries (a time zone: "TZ=Europe/Berlin").
    static DatabaseToolRun start(const QStringList& arguments, const QString& workingFolder = QString(),
                                 const QString& home = QString(), const QStringList& environment = {},
                                 int timeoutMs = 120000);

    bool finished = false; // false: didn't start, crashed or was killed at the time limit
    int exitCode = -1;
    QByteArray standardOutput;
    QByteArray standardError;

    // Everything it said, for a failing test's message.
    QByteArray said() const { return standardOutput + standardError; }
};

} // namespace zelmor::testsupport
