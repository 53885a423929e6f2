#include "support/SimulatorProcess.h"

#include "support/TestPaths.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QTest>

namespace zelmor::testsupport {

namespace {

constexpr char relativeWorkingDirectory[] = "a/b/c/work";
constexpr char relativeHome[] = "home";
constexpr char relativeDocuments[] = "home/Documents";
constexpr char relativeConfig[] = "home/.config";
constexpr char relativeRuntime[] = "runtime";

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
    const QDir root(dir_.path());
    root.mkpath(QLatin1String(relativeWorkingDirectory));
    root.mkpath(QLatin1String(relativeDocuments));
    root.mkpath(QLatin1String(relativeConfig));
    root.mkpath(QLatin1String(relativeRuntime));
    QFile::setPermissions(root.filePath(QLatin1String(relativeRuntime)),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    environment_.insert(QStringLiteral("HOME"), root.filePath(QLatin1String(relativeHome)));
    environment_.insert(QStringLiteral("XDG_CONFIG_HOME"), root.filePath(QLatin1String(relativeConfig)));
    environment_.insert(QStringLiteral("XDG_DOCUMENTS_DIR"), documentsDirectory());
    environment_.insert(QStringLiteral("XDG_RUNTIME_DIR"), root.filePath(QLatin1String(relativeRuntime)));
    process_.setWorkingDirectory(workingDirectory());
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

QString SimulatorProcess::workingDirectory() const
{
    return QDir(dir_.path()).filePath(QLatin1String(relativeWorkingDirectory));
}

QString SimulatorProcess::documentsDirectory() const
{
    return QDir(dir_.path()).filePath(QLatin1String(relativeDocuments));
}

bool SimulatorProcess::installCatalogue(const QString& sourceFile, const QString& relativeTarget)
{
    const QString target = QDir::cleanPath(workingDirectory() + QLatin1Char('/') + relativeTarget);
    QDir().mkpath(QFileInfo(target).path());
    QFile::remove(target);
    return QFile::copy(sourceFile, target);
}

bool SimulatorProcess::writeIni(const QByteArray& content)
{
    QFile file(workingDirectory() + QStringLiteral("/../ZELMOR4.ini"));
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray SimulatorProcess::documentsFile(const QString& name) const
{
    QFile file(documentsDirectory() + QLatin1Char('/') + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool SimulatorProcess::hasDocumentsFile(const QString& name) const
{
    return QFile::exists(documentsDirectory() + QLatin1Char('/') + name);
}

QProcessEnvironment& SimulatorProcess::environment()
{
    return environment_;
}

void SimulatorProcess::setNetworkNamespace(const QString& name)
{
    networkNamespace_ = name;
}

void SimulatorProcess::start(const QStringList& arguments)
{
    process_.setProcessEnvironment(environment_);
    if (networkNamespace_.isEmpty()) {
        process_.start(executable(), arguments);
    } else {
        // "ip netns exec" replaces itself with the command: the process id stays.
        process_.start(QStringLiteral("ip"),
                       QStringList{QStringLiteral("netns"), QStringLiteral("exec"), networkNamespace_, executable()}
                           + arguments);
    }
}

bool SimulatorProcess::waitForStarted()
{
    return process_.waitForStarted(10000);
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
    while (!deadline.hasExpired()) {
        if (process_.state() == QProcess::NotRunning)
            return false;
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

bool SimulatorProcess::isRunning() const
{
    return process_.state() != QProcess::NotRunning;
}

QByteArray SimulatorProcess::standardOutput()
{
    collect();
    return output_;
}

QByteArray SimulatorProcess::standardError()
{
    collect();
    return error_;
}

int SimulatorProcess::exitCode() const
{
    return process_.exitCode();
}

QProcess::ExitStatus SimulatorProcess::exitStatus() const
{
    return process_.exitStatus();
}

qint64 SimulatorProcess::processId() const
{
    return process_.processId();
}

QProcess& SimulatorProcess::process()
{
    return process_;
}

} // namespace zelmor::testsupport
