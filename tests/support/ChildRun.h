#pragma once

#include <QByteArray>
#include <QStringList>

// This test program run once more as a child process, for what must stop a
// program (an assertion) without stopping the test:
//
//     int main(int argc, char** argv)
//     {
//         if (isChildRun(argc, argv)) {
//             QTextStream(stdout) << DatabaseConnection::lookupChamberColumnName(ChamberProperty(19));
//             return 0;
//         }
//         ...
//     }
//
//     const ChildRun child = ChildRun::start({});
//     QVERIFY2(child.stoppedOnAssertion("false", "DatabaseSchema.cpp"), child.standardError.constData());
namespace zelmor::testsupport {

struct ChildRun
{
    // Runs this program with arguments() of the child: the switch, then these.
    static ChildRun start(const QStringList& arguments, int timeoutMs = 30000);

    // The child's own arguments behind the switch, as given to start().
    static QStringList arguments(int argc, char** argv);

    bool finished = false; // false: didn't start, or killed at the time limit
    bool crashed = false;
    int exitCode = -1;
    QByteArray standardOutput;
    QByteArray standardError;

    // Ended by Qt's report of a failed Q_ASSERT of this expression, in a file
    // whose path ends so.
    bool stoppedOnAssertion(const char* expression, const char* file) const;
};

// True when this run is the child of ChildRun::start(); switches core files
// off for it, as it is meant to stop.
bool isChildRun(int argc, char** argv);

} // namespace zelmor::testsupport
