#include "support/NetworkNamespace.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QRegularExpression>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sched.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <functional>
#include <thread>

namespace zelmor::testsupport {

namespace {

constexpr char namePrefix[] = "zelmor-test-";
constexpr char namespaceFolder[] = "/run/netns/";

// "ip" with the words of `command`; the messages go to `output`.
bool runIp(const QString& command, QString* output = nullptr)
{
    QProcess process;
    process.start(QStringLiteral("ip"), command.split(QLatin1Char(' ')));
    const bool ok =
        process.waitForFinished(30000) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    if (output)
        *output = QStringLiteral("ip %1: %2")
                      .arg(command, QString::fromLocal8Bit(process.readAll() + process.readAllStandardError()));
    return ok;
}

// Namespaces left behind by test runs that were killed: their process is gone.
void removeOrphans()
{
    const QRegularExpression pattern(QStringLiteral("^%1(\\d+)-\\d+$").arg(QLatin1String(namePrefix)));
    for (const QString& name : QDir(QLatin1String(namespaceFolder)).entryList(QDir::Files)) {
        const QRegularExpressionMatch match = pattern.match(name);
        if (match.hasMatch() && ::kill(pid_t(match.captured(1).toInt()), 0) != 0 && errno == ESRCH)
            runIp(QStringLiteral("netns delete ") + name);
    }
}

// A socket made on a thread that has entered the namespace stays in it.
qintptr socketInside(const QString& name, const QString& address, quint16 port, int type,
                     const std::function<int(int, const sockaddr*, socklen_t)>& call)
{
    sockaddr_in socketAddress{};
    socketAddress.sin_family = AF_INET;
    socketAddress.sin_port = htons(port);
    if (::inet_pton(AF_INET, address.toLatin1().constData(), &socketAddress.sin_addr) != 1)
        return -1;
    int descriptor = -1;
    std::thread thread([&] {
        const int space =
            ::open((QLatin1String(namespaceFolder) + name).toLocal8Bit().constData(), O_RDONLY | O_CLOEXEC);
        if (space >= 0 && ::setns(space, CLONE_NEWNET) == 0) {
            descriptor = ::socket(AF_INET, type | SOCK_CLOEXEC, 0);
            if (descriptor >= 0
                && call(descriptor, reinterpret_cast<const sockaddr*>(&socketAddress), sizeof socketAddress) != 0) {
                ::close(descriptor);
                descriptor = -1;
            }
        }
        if (space >= 0)
            ::close(space);
    });
    thread.join();
    return descriptor;
}

} // namespace

bool NetworkNamespace::isAvailable()
{
    return ::geteuid() == 0 && runIp(QStringLiteral("netns list"));
}

NetworkNamespace::NetworkNamespace(const QStringList& onFa, const QStringList& onFb)
{
    static int counter = 0;
    removeOrphans();
    name_ =
        QStringLiteral("%1%2-%3").arg(QLatin1String(namePrefix)).arg(QCoreApplication::applicationPid()).arg(++counter);
    const QString inside = QStringLiteral("-n ") + name_ + QLatin1Char(' ');
    QStringList commands{"netns add " + name_, inside + "link set lo up", inside + "link add fa type veth peer name fb",
                         inside + "link set fa up", inside + "link set fb up"};
    for (const QString& address : onFa)
        commands << inside + "address add " + address + " dev fa";
    for (const QString& address : onFb)
        commands << inside + "address add " + address + " dev fb";
    for (const QString& command : commands) {
        if (!runIp(command, &lastError_))
            return;
    }
    lastError_.clear();
}

NetworkNamespace::~NetworkNamespace()
{
    runIp(QStringLiteral("netns delete ") + name_);
}

QString NetworkNamespace::macAddress(const QString& device) const
{
    QString output;
    runIp(QStringLiteral("-n %1 -o link show dev %2").arg(name_, device), &output);
    return QRegularExpression(QStringLiteral("link/ether ([0-9a-f:]{17})")).match(output).captured(1).toUpper();
}

qintptr NetworkNamespace::connectedTcpSocket(const QString& address, quint16 port) const
{
    return socketInside(name_, address, port, SOCK_STREAM, ::connect);
}

qintptr NetworkNamespace::boundUdpSocket(const QString& address) const
{
    return socketInside(name_, address, 0, SOCK_DGRAM, ::bind);
}

} // namespace zelmor::testsupport
