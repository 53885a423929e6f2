#include "support/SimulatorProcess.h"

#include "support/TestPaths.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QTest>

namespace zelmor::testsupport {

namespace {

constexpr char workingFolder[] = "a/b/c/work";
constexpr char documentsFolder[] = "home/Documents";

// The system calls in which an event loop waits (x86-64 numbers): poll,
// select, epoll_wait, pselect6, ppoll, epoll_pwait, epoll_pwait2.
bool isWaitingSystemCall(const QByteArray& syscallLine)
{
    static const QList<int> waiting{7, 23, 232, 270, 271, 281, 441};
    bool ok = false;
    const int number = syscallLine.split(' ').value(0).trimmed().toInt(&ok);
    return ok && waiting.contains(number);
}

} // namespace

SimulatorProcess::SimulatorProcess()
    : environment_(QProcessEnvironment::systemEnvironment())
{
    for (const char* folder : {workingFolder, documentsFolder, "home/.config", "runtime"})
        QDir(dir_.path()).mkpath(QLatin1String(folder));
    QFile::setPermissions(path("runtime"), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    environment_.insert(QStringLiteral("HOME"), path("home"));
    environment_.insert(QStringLiteral("XDG_CONFIG_HOME"), path("home/.config"));
    environment_.insert(QStringLiteral("XDG_DOCUMENTS_DIR"), path(documentsFolder));
    environment_.insert(QStringLiteral("XDG_RUNTIME_DIR"), path("runtime"));
    process_.setWorkingDirectory(path(workingFolder));
}

SimulatorProcess::~SimulatorProcess()
{
    if (process_.state() != QProcess::NotRunning) {
        process_.kill();
        process_.waitForFinished(5000);
    }
}

QString SimulatorProcess::executable()
{
    return binaryDir() + QStringLiteral("/bin/chamber-simulator");
}

QString SimulatorProcess::path(const char* relative) const
{
    return QDir(dir_.path()).filePath(QLatin1String(relative));
}

bool SimulatorProcess::installCatalogue(const QString& sourceFile, const QString& relativeTarget)
{
    const QString target = QDir::cleanPath(path(workingFolder) + QLatin1Char('/') + relativeTarget);
    QDir().mkpath(QFileInfo(target).path());
    QFile::remove(target);
    return QFile::copy(sourceFile, target);
}

bool SimulatorProcess::writeIni(const QByteArray& content)
{
    QFile file(path(workingFolder) + QStringLiteral("/../ZELMOR4.ini"));
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray SimulatorProcess::documentsFile(const QString& name) const
{
    QFile file(path(documentsFolder) + QLatin1Char('/') + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool SimulatorProcess::hasDocumentsFile(const QString& name) const
{
    return QFile::exists(path(documentsFolder) + QLatin1Char('/') + name);
}

void SimulatorProcess::start(const QStringList& arguments)
{
    process_.setProcessEnvironment(environment_);
    if (networkNamespace_.isEmpty())
        process_.start(executable(), arguments);
    else // "ip netns exec" replaces itself with the command: the process id stays.
        process_.start(QStringLiteral("ip"), QStringList{"netns", "exec", networkNamespace_, executable()} + arguments);
}

void SimulatorProcess::collect()
{
    output_ += process_.readAllStandardOutput();
    error_ += process_.readAllStandardError();
}

bool SimulatorProcess::waitForOutput(const QByteArray& text, int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    for (;;) {
        collect();
        if (output_.contains(text))
            return true;
        if (process_.state() == QProcess::NotRunning || deadline.hasExpired())
            return false;
        process_.waitForReadyRead(int(qMax<qint64>(1, deadline.remainingTime())));
    }
}

bool SimulatorProcess::waitForFinished(int timeoutMs)
{
    const bool finished = process_.state() == QProcess::NotRunning || process_.waitForFinished(timeoutMs);
    collect();
    return finished;
}

bool SimulatorProcess::waitUntilIdle(int timeoutMs)
{
    const QString syscallFile = QStringLiteral("/proc/%1/syscall").arg(process_.processId());
    QDeadlineTimer deadline(timeoutMs);
    int quietProbes = 0;
    while (!deadline.hasExpired() && process_.state() != QProcess::NotRunning) {
        const QByteArray before = output_;
        collect();
        QFile file(syscallFile);
        const bool waiting = file.open(QIODevice::ReadOnly) && isWaitingSystemCall(file.readAll());
        // Two probes in a row, with no new output in between.
        quietProbes = (waiting && before == output_) ? quietProbes + 1 : 0;
        if (quietProbes >= 2)
            return true;
        QTest::qWait(20);
    }
    return false;
}

} // namespace zelmor::testsupport
