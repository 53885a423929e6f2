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

struct IpResult
{
    bool ok = false;
    QString output;
};

IpResult runIp(const QStringList& arguments)
{
    QProcess process;
    process.start(QStringLiteral("ip"), arguments);
    IpResult result;
    if (!process.waitForStarted(10000) || !process.waitForFinished(30000)) {
        result.output = QStringLiteral("ip %1: %2").arg(arguments.join(QLatin1Char(' ')), process.errorString());
        return result;
    }
    result.ok = process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    result.output = QString::fromLocal8Bit(process.readAllStandardOutput() + process.readAllStandardError());
    return result;
}

// Namespaces left behind by test runs that were killed: their process is gone.
void removeOrphans()
{
    const QStringList names = QDir(QLatin1String(namespaceFolder))
                                  .entryList(QStringList{QLatin1String(namePrefix) + QLatin1Char('*')}, QDir::Files);
    const QRegularExpression pattern(QStringLiteral("^%1(\\d+)-\\d+$").arg(QLatin1String(namePrefix)));
    for (const QString& name : names) {
        const QRegularExpressionMatch match = pattern.match(name);
        if (!match.hasMatch())
            continue;
        const pid_t owner = pid_t(match.captured(1).toInt());
        if (owner > 0 && ::kill(owner, 0) != 0 && errno == ESRCH)
            runIp({QStringLiteral("netns"), QStringLiteral("delete"), name});
    }
}

// Runs `work` on a thread that has entered the namespace; sockets made there
// stay in it.
bool inNamespace(const QString& name, const std::function<void()>& work)
{
    bool entered = false;
    std::thread thread([&] {
        const QByteArray path = (QLatin1String(namespaceFolder) + name).toLocal8Bit();
        const int descriptor = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
        if (descriptor < 0)
            return;
        entered = ::setns(descriptor, CLONE_NEWNET) == 0;
        ::close(descriptor);
        if (entered)
            work();
    });
    thread.join();
    return entered;
}

bool toSocketAddress(const QString& address, quint16 port, sockaddr_in& socketAddress)
{
    socketAddress = sockaddr_in{};
    socketAddress.sin_family = AF_INET;
    socketAddress.sin_port = htons(port);
    return ::inet_pton(AF_INET, address.toLatin1().constData(), &socketAddress.sin_addr) == 1;
}

} // namespace

bool NetworkNamespace::isAvailable(QString* why)
{
    if (::geteuid() != 0) {
        *why = QStringLiteral("needs root for network namespaces");
        return false;
    }
    const IpResult result = runIp({QStringLiteral("netns"), QStringLiteral("list")});
    if (!result.ok)
        *why = QStringLiteral("\"ip netns\" is not available: ") + result.output;
    return result.ok;
}

NetworkNamespace::NetworkNamespace()
{
    static std::atomic<int> counter{0};
    removeOrphans();
    name_ = QLatin1String(namePrefix) + QString::number(QCoreApplication::applicationPid()) + QLatin1Char('-')
            + QString::number(++counter);
    const IpResult created = runIp({QStringLiteral("netns"), QStringLiteral("add"), name_});
    if (!created.ok) {
        lastError_ = created.output;
        return;
    }
    valid_ = ip({QStringLiteral("link"), QStringLiteral("set"), QStringLiteral("lo"), QStringLiteral("up")});
}

NetworkNamespace::~NetworkNamespace()
{
    runIp({QStringLiteral("netns"), QStringLiteral("delete"), name_});
}

bool NetworkNamespace::isValid() const
{
    return valid_;
}

QString NetworkNamespace::name() const
{
    return name_;
}

QString NetworkNamespace::lastError() const
{
    return lastError_;
}

bool NetworkNamespace::ip(const QStringList& arguments)
{
    const IpResult result = runIp(QStringList{QStringLiteral("-n"), name_} + arguments);
    if (!result.ok)
        lastError_ = result.output;
    return result.ok;
}

bool NetworkNamespace::addVethPair(const QString& first, const QString& second)
{
    return ip({QStringLiteral("link"), QStringLiteral("add"), first, QStringLiteral("type"), QStringLiteral("veth"),
               QStringLiteral("peer"), QStringLiteral("name"), second})
           && ip({QStringLiteral("link"), QStringLiteral("set"), first, QStringLiteral("up")})
           && ip({QStringLiteral("link"), QStringLiteral("set"), second, QStringLiteral("up")});
}

bool NetworkNamespace::addAddress(const QString& interfaceName, const QString& addressWithPrefix)
{
    return ip({QStringLiteral("address"), QStringLiteral("add"), addressWithPrefix, QStringLiteral("dev"),
               interfaceName});
}

QString NetworkNamespace::macAddress(const QString& interfaceName)
{
    const IpResult result = runIp({QStringLiteral("-n"), name_, QStringLiteral("-o"), QStringLiteral("link"),
                                   QStringLiteral("show"), QStringLiteral("dev"), interfaceName});
    const QRegularExpressionMatch match =
        QRegularExpression(QStringLiteral("link/ether ([0-9a-f:]{17})")).match(result.output);
    return match.hasMatch() ? match.captured(1) : QString();
}

qintptr NetworkNamespace::connectedTcpSocket(const QString& address, quint16 port) const
{
    sockaddr_in peer;
    if (!toSocketAddress(address, port, peer))
        return -1;
    int descriptor = -1;
    inNamespace(name_, [&] {
        descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (descriptor >= 0 && ::connect(descriptor, reinterpret_cast<sockaddr*>(&peer), sizeof peer) != 0) {
            ::close(descriptor);
            descriptor = -1;
        }
    });
    return descriptor;
}

qintptr NetworkNamespace::boundUdpSocket(const QString& address, quint16 port) const
{
    sockaddr_in local;
    if (!toSocketAddress(address, port, local))
        return -1;
    int descriptor = -1;
    inNamespace(name_, [&] {
        descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        if (descriptor >= 0 && ::bind(descriptor, reinterpret_cast<sockaddr*>(&local), sizeof local) != 0) {
            ::close(descriptor);
            descriptor = -1;
        }
    });
    return descriptor;
}

} // namespace zelmor::testsupport
