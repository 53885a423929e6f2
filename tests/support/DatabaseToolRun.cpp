#include "support/DatabaseToolRun.h"

#include "support/TestPaths.h"

#include <QProcess>
#include <QProcessEnvironment>

namespace zelmor::testsupport {

DatabaseToolRun DatabaseToolRun::start(const QStringList& arguments, const QString& workingFolder, const QString& home,
                                       const QStringList& environmentEntries, int timeoutMs)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"XDG_CONFIG_HOME", "QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
        environment.remove(QLatin1String(name));
    if (!home.isEmpty())
        environment.insert(QStringLiteral("HOME"), home);
    for (const QString& entry : environmentEntries)
        environment.insert(entry.section(QLatin1Char('='), 0, 0), entry.section(QLatin1Char('='), 1));
    QProcess process;
    process.setProcessEnvironment(environment);
    if (!workingFolder.isEmpty())
        process.setWorkingDirectory(workingFolder);
    process.start(binaryDir() + QStringLiteral("/bin/zelmor-db"), arguments);
    DatabaseToolRun run;
    if (!process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished();
    } else {
        run.finished = process.exitStatus() == QProcess::NormalExit;
        run.exitCode = process.exitCode();
    }
    run.standardOutput = process.readAllStandardOutput();
    run.standardError = process.readAllStandardError();
    return run;
}

} // namespace zelmor::testsupport
