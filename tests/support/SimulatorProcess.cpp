#include "support/SimulatorProcess.h"

#include "support/TestPaths.h"

#include <QDeadlineTimer>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

namespace zelmor::testsupport {

namespace {

const QString workingFolder = QStringLiteral("a/b/c/work/");
const QString documentsFolder = QStringLiteral("home/Documents/");

// Whether the process's main thread sleeps in an event loop's wait. The
// kernel names the function it sleeps in (do_epoll_wait, ep_poll,
// do_sys_poll, do_select); where it keeps that to itself ("0"), sleeping at
// all has to do.
bool isWaitingInEventLoop(qint64 processId)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(processId));
    if (!stat.open(QIODevice::ReadOnly))
        return false;
    // The state follows the command name in parentheses, which may hold any character.
    const QByteArray fields = stat.readAll();
    const int nameEnd = fields.lastIndexOf(')');
    if (nameEnd < 0 || fields.mid(nameEnd + 2, 1) != "S")
        return false;
    QFile channel(QStringLiteral("/proc/%1/wchan").arg(processId));
    const QByteArray function = channel.open(QIODevice::ReadOnly) ? channel.readAll().trimmed() : QByteArray();
    return function.isEmpty() || function == "0" || function.contains("poll") || function.contains("select");
}

} // namespace

SimulatorProcess::SimulatorProcess()
    : environment_(QProcessEnvironment::systemEnvironment())
{
    QDir(dir_.path()).mkpath(workingFolder);
    QDir(dir_.path()).mkpath(documentsFolder);
    environment_.insert(QStringLiteral("HOME"), path(QStringLiteral("home")));
    // Else the documents folder could come from the user's own user-dirs.dirs.
    for (const char* name : {"XDG_CONFIG_HOME", "QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
        environment_.remove(QLatin1String(name));
    process_.setWorkingDirectory(path(workingFolder));
}

SimulatorProcess::~SimulatorProcess()
{
    process_.kill();
    process_.waitForFinished(5000);
}

QString SimulatorProcess::path(const QString& relative) const
{
    return QDir::cleanPath(QDir(dir_.path()).filePath(relative));
}

bool SimulatorProcess::installCatalogue(const QString& sourceFile, const QString& relativeTarget)
{
    const QString target = path(workingFolder + relativeTarget);
    QDir().mkpath(QFileInfo(target).path());
    return QFile::copy(sourceFile, target);
}

bool SimulatorProcess::writeIni(const QByteArray& content)
{
    QFile file(path(workingFolder + QStringLiteral("../ZELMOR4.ini")));
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray SimulatorProcess::documentsFile(const QString& name) const
{
    QFile file(path(documentsFolder + name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool SimulatorProcess::hasDocumentsFile(const QString& name) const
{
    return QFile::exists(path(documentsFolder + name));
}

void SimulatorProcess::start(const QStringList& arguments)
{
    const QString executable = binaryDir() + QStringLiteral("/bin/chamber-simulator");
    process_.setProcessEnvironment(environment_);
    if (networkNamespace_.isEmpty())
        process_.start(executable, arguments);
    else
        process_.start(QStringLiteral("ip"), QStringList{"netns", "exec", networkNamespace_, executable} + arguments);
    if (!process_.waitForStarted())
        qWarning() << executable << process_.errorString();
}

void SimulatorProcess::collect()
{
    output_ += process_.readAllStandardOutput();
    error_ += process_.readAllStandardError();
}

QByteArray SimulatorProcess::foldedOutput()
{
    const QRegularExpression signalLine(QStringLiteral("Adding Signal [^\r]*\r\n"));
    return QString::fromUtf8(standardOutput()).replace(signalLine, QStringLiteral("+")).toUtf8();
}

bool SimulatorProcess::waitForOutput(const QByteArray& text, int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    for (;;) {
        collect();
        if (output_.contains(text))
            return true;
        if (!isRunning() || deadline.hasExpired())
            return false;
        process_.waitForReadyRead(int(qMax<qint64>(1, deadline.remainingTime())));
    }
}

int SimulatorProcess::waitForExit(int timeoutMs)
{
    const bool finished = !isRunning() || process_.waitForFinished(timeoutMs);
    collect();
    return finished && process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -2;
}

bool SimulatorProcess::waitUntilIdle(int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    int quietProbes = 0;
    while (!deadline.hasExpired() && isRunning()) {
        const QByteArray before = output_;
        collect();
        const bool waiting = isWaitingInEventLoop(process_.processId());
        // Two probes in a row, with no new output in between.
        quietProbes = (waiting && before == output_) ? quietProbes + 1 : 0;
        if (quietProbes >= 2)
            return true;
        QTest::qWait(20);
    }
    return false;
}

} // namespace zelmor::testsupport
