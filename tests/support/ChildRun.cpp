#include "support/ChildRun.h"

#include <QFileInfo>
#include <QProcess>

#include <cstring>

#include <sys/resource.h>

namespace zelmor::testsupport {

namespace {

constexpr char childSwitch[] = "--zelmor-child-run";

} // namespace

ChildRun ChildRun::start(const QStringList& arguments, int timeoutMs)
{
    ChildRun run;
    QProcess child;
    // The program's own path: the parent may have no application object yet.
    child.start(QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath(),
                QStringList{QLatin1String(childSwitch)} + arguments);
    if (!child.waitForFinished(timeoutMs)) {
        child.kill();
        child.waitForFinished();
    } else {
        run.finished = true;
        run.crashed = child.exitStatus() == QProcess::CrashExit;
        run.exitCode = child.exitCode();
    }
    run.standardOutput = child.readAllStandardOutput();
    run.standardError = child.readAllStandardError();
    return run;
}

QStringList ChildRun::arguments(int argc, char** argv)
{
    QStringList result;
    for (int index = 2; index < argc; ++index)
        result << QString::fromLocal8Bit(argv[index]);
    return result;
}

bool ChildRun::stoppedOnAssertion(const char* expression, const char* file) const
{
    // "ASSERT: \"false\" in file /path/DatabaseSchema.cpp, line 123"
    const QByteArray report = QByteArray("ASSERT: \"") + expression + "\" in file ";
    const int at = standardError.indexOf(report);
    if (!finished || !crashed || at < 0)
        return false;
    const QByteArray path = standardError.mid(at + report.size()).split(',').value(0);
    return path.endsWith(file);
}

bool isChildRun(int argc, char** argv)
{
    if (argc < 2 || std::strcmp(argv[1], childSwitch) != 0)
        return false;
    const rlimit noCoreFile{0, 0};
    setrlimit(RLIMIT_CORE, &noCoreFile);
    return true;
}

} // namespace zelmor::testsupport
