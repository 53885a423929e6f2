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

#include <atomic>
#include <functional>
#include <thread>

namespace zelmor::testsupport {

namespace {

constexpr char namePrefix[] = "zelmor-test-";
constexpr char namespaceFolder[] = "/run/netns/";

// "ip" with the words of `command`; false with the messages in `output` on failure.
bool runIp(const QString& command, QString* output = nullptr)
{
    QProcess process;
    process.start(QStringLiteral("ip"), command.split(QLatin1Char(' ')));
    const bool ok = process.waitForStarted(10000) && process.waitForFinished(30000)
                    && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    if (output) {
        *output = QString::fromLocal8Bit(process.readAllStandardOutput() + process.readAllStandardError());
        if (!ok)
            *output = QStringLiteral("ip %1: %2 %3").arg(command, process.errorString(), *output);
    }
    return ok;
}

// Namespaces left behind by test runs that were killed: their process is gone.
void removeOrphans()
{
    const QRegularExpression pattern(QStringLiteral("^%1(\\d+)-\\d+$").arg(QLatin1String(namePrefix)));
    for (const QString& name : QDir(QLatin1String(namespaceFolder)).entryList(QDir::Files)) {
        const QRegularExpressionMatch match = pattern.match(name);
        const pid_t owner = match.hasMatch() ? pid_t(match.captured(1).toInt()) : 0;
        if (owner > 0 && ::kill(owner, 0) != 0 && errno == ESRCH)
            runIp(QStringLiteral("netns delete ") + name);
    }
}

// A socket made on a thread that has entered the namespace stays in it.
int socketInside(const QString& name, const QString& address, quint16 port, int type,
                 const std::function<int(int, const sockaddr*, socklen_t)>& call)
{
    sockaddr_in socketAddress{};
    socketAddress.sin_family = AF_INET;
    socketAddress.sin_port = htons(port);
    if (::inet_pton(AF_INET, address.toLatin1().constData(), &socketAddress.sin_addr) != 1)
        return -1;
    int descriptor = -1;
    std::thread thread([&] {
        const int space = ::open((QLatin1String(namespaceFolder) + name).toLocal8Bit().constData(), O_RDONLY | O_CLOEXEC);
        if (space < 0)
            return;
        if (::setns(space, CLONE_NEWNET) == 0) {
            descriptor = ::socket(AF_INET, type | SOCK_CLOEXEC, 0);
            if (descriptor >= 0
                && call(descriptor, reinterpret_cast<const sockaddr*>(&socketAddress), sizeof socketAddress) != 0) {
                ::close(descriptor);
                descriptor = -1;
            }
        }
        ::close(space);
    });
    thread.join();
    return descriptor;
}

} // namespace

bool NetworkNamespace::isAvailable(QString* why)
{
    if (::geteuid() != 0) {
        *why = QStringLiteral("needs root for network namespaces");
        return false;
    }
    QString output;
    const bool ok = runIp(QStringLiteral("netns list"), &output);
    if (!ok)
        *why = output;
    return ok;
}

NetworkNamespace::NetworkNamespace()
{
    static std::atomic<int> counter{0};
    removeOrphans();
    name_ = QLatin1String(namePrefix) + QString::number(QCoreApplication::applicationPid()) + QLatin1Char('-')
            + QString::number(++counter);
    valid_ = runIp(QStringLiteral("netns add ") + name_, &lastError_) && ip({"link", "set", "lo", "up"});
}

NetworkNamespace::~NetworkNamespace()
{
    runIp(QStringLiteral("netns delete ") + name_);
}

bool NetworkNamespace::ip(const QStringList& arguments)
{
    return runIp(QStringLiteral("-n %1 %2").arg(name_, arguments.join(QLatin1Char(' '))), &lastError_);
}

bool NetworkNamespace::addVethPair(const QString& first, const QString& second)
{
    return ip({"link", "add", first, "type", "veth", "peer", "name", second}) && ip({"link", "set", first, "up"})
           && ip({"link", "set", second, "up"});
}

bool NetworkNamespace::addAddress(const QString& interfaceName, const QString& addressWithPrefix)
{
    return ip({"address", "add", addressWithPrefix, "dev", interfaceName});
}

QString NetworkNamespace::macAddress(const QString& interfaceName)
{
    QString output;
    runIp(QStringLiteral("-n %1 -o link show dev %2").arg(name_, interfaceName), &output);
    const QRegularExpressionMatch match = QRegularExpression(QStringLiteral("link/ether ([0-9a-f:]{17})")).match(output);
    return match.hasMatch() ? match.captured(1) : QString();
}

qintptr NetworkNamespace::connectedTcpSocket(const QString& address, quint16 port) const
{
    return socketInside(name_, address, port, SOCK_STREAM, ::connect);
}

qintptr NetworkNamespace::boundUdpSocket(const QString& address, quint16 port) const
{
    return socketInside(name_, address, port, SOCK_DGRAM, ::bind);
}

} // namespace zelmor::testsupport
