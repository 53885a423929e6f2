// A fleet of TLX chambers under load: start-up time, memory and idle CPU of
// the chamber-simulator process, and answer latency while every chamber is
// polled once a second over a persistent connection.
//
// Runs inside a network namespace whose addresses the fleet takes, e.g.
//   sudo scripts/fleet-netns.sh run 1000 build/bench/bench_tlx_fleet 10,250,1000
// Arguments: [counts] [load seconds] [idle seconds] [first address]
// (defaults 10,250 20 10 10.100.0.1). The simulator is <build>/bin/chamber-simulator
// with the sample catalogue <build>/database/configuration.sqlite3; extra
// environment for it may be given as SIMULATOR_ENV="NAME=value ...".

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <vector>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

namespace {

const QByteArray request = "CANIDGetValue:11400080\r\n";
constexpr qint64 nsPerSecond = 1000LL * 1000 * 1000;

qint64 now()
{
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return ts.tv_sec * nsPerSecond + ts.tv_nsec;
}

QString addressAt(quint32 first, int index)
{
    in_addr address{htonl(first + quint32(index))};
    return QString::fromLatin1(inet_ntoa(address));
}

// CPU time of all threads of a process, in seconds, to the nanosecond
// (the scheduler's account; /proc/<pid>/stat counts in ticks of 10 ms).
double cpuSeconds(qint64 pid)
{
    const QDir tasks(QStringLiteral("/proc/%1/task").arg(pid));
    qint64 total = 0;
    for (const QString& task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile file(tasks.filePath(task) + QStringLiteral("/schedstat"));
        if (file.open(QIODevice::ReadOnly))
            total += file.readAll().split(' ').value(0).toLongLong();
    }
    return double(total) / nsPerSecond;
}

long residentKiB(qint64 pid)
{
    QFile file(QStringLiteral("/proc/%1/status").arg(pid));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').value(0).toLong();
    }
    return -1;
}

double ownCpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_utime.tv_sec + usage.ru_utime.tv_usec / 1e6 + usage.ru_stime.tv_sec + usage.ru_stime.tv_usec / 1e6;
}

int connectBlocking(const QString& address)
{
    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(9000);
    inet_pton(AF_INET, address.toLatin1().constData(), &peer.sin_addr);
    if (::connect(descriptor, reinterpret_cast<sockaddr*>(&peer), sizeof peer) != 0) {
        ::close(descriptor);
        return -1;
    }
    const int one = 1;
    setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
    return descriptor;
}

struct Connection
{
    int descriptor = -1;
    qint64 sentAt = 0; // 0: nothing outstanding
    QByteArray buffer;
};

// True when a whole framed answer is in the buffer (and takes it out).
bool takeFrame(QByteArray& buffer)
{
    const int lineEnd = buffer.indexOf("\r\n");
    if (lineEnd < 0)
        return false;
    const int size = lineEnd + 2 + buffer.left(lineEnd).toInt();
    if (buffer.size() < size)
        return false;
    buffer.remove(0, size);
    return true;
}

double percentile(std::vector<qint64> sorted, double fraction)
{
    if (sorted.empty())
        return 0;
    std::sort(sorted.begin(), sorted.end());
    const size_t index = std::min(sorted.size() - 1, size_t(fraction * double(sorted.size())));
    return sorted[index] / 1e6;
}

struct Figures
{
    int chambers = 0;
    double startSeconds = 0;
    long rssKiB = 0;
    double idleCpuPercent = 0;
    double loadCpuPercent = 0;
    double cpuPerRequestUs = 0;
    double clientCpuPerRequestUs = 0;
    double medianMs = 0;
    double p99Ms = 0;
    double maxMs = 0;
    qint64 answered = 0;
    qint64 missed = 0;
    int listening = 0; // chambers that took a connection in the kernel
    int served = 0;    // of those, the ones whose client the simulator accepted
    QByteArray errorOutput;
};

Figures run(int count, int loadSeconds, int idleSeconds, quint32 first, const QString& simulator,
            const QString& catalogue)
{
    Figures figures;
    figures.chambers = count;
    QTemporaryDir dir;
    QDir(dir.path()).mkpath(QStringLiteral("work/database"));
    QDir(dir.path()).mkpath(QStringLiteral("home/Documents"));
    QFile::copy(catalogue, dir.path() + QStringLiteral("/work/database/configuration.sqlite3"));

    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), dir.path() + QStringLiteral("/home"));
    for (const QString& assignment : qEnvironmentVariable("SIMULATOR_ENV").split(QLatin1Char(' '), Qt::SkipEmptyParts))
        environment.insert(assignment.section(QLatin1Char('='), 0, 0), assignment.section(QLatin1Char('='), 1));
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(dir.path() + QStringLiteral("/work"));
    process.setStandardOutputFile(dir.path() + QStringLiteral("/out.txt"));
    process.setStandardErrorFile(dir.path() + QStringLiteral("/err.txt"));

    const qint64 started = now();
    process.start(simulator, {QStringLiteral("-n%1").arg(count), QStringLiteral("-i") + addressAt(first, 0)});
    if (!process.waitForStarted()) {
        fprintf(stderr, "cannot start %s\n", qPrintable(simulator));
        return figures;
    }
    const qint64 pid = process.processId();

    // All chambers listening: each accepts a connection, which is kept for the load.
    // A fleet past the limit of open files leaves its last chambers without a
    // listener: after the start-up allowance each gets one more try.
    std::vector<Connection> connections(static_cast<size_t>(count));
    qint64 lastListening = started;
    for (int index = 0; index < count; ++index) {
        int descriptor = -1;
        while ((descriptor = connectBlocking(addressAt(first, index))) < 0 && now() - lastListening < 60 * nsPerSecond)
            usleep(2000);
        if (descriptor >= 0) {
            lastListening = now();
            ++figures.listening;
        }
        connections[size_t(index)].descriptor = descriptor;
    }
    figures.startSeconds = double(lastListening - started) / nsPerSecond;

    // Idle means after the last connection has been taken in, or after ten
    // seconds without one more, when the simulator has no descriptor left.
    QFile output(dir.path() + QStringLiteral("/out.txt"));
    output.open(QIODevice::ReadOnly);
    QByteArray printed;
    qint64 lastProgress = now();
    while (figures.served < figures.listening && now() - lastProgress < 10 * nsPerSecond) {
        usleep(10000);
        printed += output.readAll();
        const int served = printed.count("Connect TLX simulation");
        if (served > figures.served)
            lastProgress = now();
        figures.served = served;
    }
    figures.rssKiB = residentKiB(pid);

    const double idleStart = cpuSeconds(pid);
    sleep(unsigned(idleSeconds));
    figures.idleCpuPercent = 100.0 * (cpuSeconds(pid) - idleStart) / idleSeconds;

    const int poller = epoll_create1(EPOLL_CLOEXEC);
    for (size_t index = 0; index < connections.size(); ++index) {
        if (connections[index].descriptor < 0)
            continue;
        fcntl(connections[index].descriptor, F_SETFL, O_NONBLOCK);
        epoll_event event{};
        event.events = EPOLLIN;
        event.data.u64 = index;
        epoll_ctl(poller, EPOLL_CTL_ADD, connections[index].descriptor, &event);
    }

    fprintf(stderr, "load on %d chambers of process %lld\n", count, pid);
    std::vector<qint64> latencies;
    latencies.reserve(size_t(count) * size_t(loadSeconds));
    // Chamber i is asked at second k + i / count: an even stream of requests.
    const qint64 loadStart = now();
    const qint64 loadEnd = loadStart + loadSeconds * nsPerSecond;
    const double cpuAtStart = cpuSeconds(pid);
    const double ownAtStart = ownCpuSeconds();
    qint64 slot = 0;
    std::vector<epoll_event> events(256);
    for (;;) {
        const qint64 current = now();
        qint64 nextSlotAt = loadStart + slot * nsPerSecond / count;
        while (nextSlotAt <= current && nextSlotAt < loadEnd) {
            Connection& connection = connections[size_t(slot % count)];
            if (connection.descriptor < 0) {
                ++figures.missed;
                ++slot;
                nextSlotAt = loadStart + slot * nsPerSecond / count;
                continue;
            }
            if (connection.sentAt != 0)
                ++figures.missed; // the former answer hasn't come within a second
            connection.sentAt = now();
            connection.buffer.clear();
            if (::send(connection.descriptor, request.constData(), size_t(request.size()), MSG_NOSIGNAL) < 0)
                ++figures.missed;
            ++slot;
            nextSlotAt = loadStart + slot * nsPerSecond / count;
        }
        if (current >= loadEnd + nsPerSecond)
            break;
        // After the last request: the stragglers' answers, for a second at most.
        const qint64 wakeAt = nextSlotAt < loadEnd ? nextSlotAt : loadEnd + nsPerSecond;
        const qint64 waitNs = std::max<qint64>(0, wakeAt - now());
        const int ready = epoll_wait(poller, events.data(), int(events.size()), int((waitNs + 999999) / 1000000));
        for (int index = 0; index < ready; ++index) {
            Connection& connection = connections[events[size_t(index)].data.u64];
            char chunk[4096];
            ssize_t got = 0;
            while ((got = ::recv(connection.descriptor, chunk, sizeof chunk, 0)) > 0)
                connection.buffer.append(chunk, int(got));
            if (connection.sentAt != 0 && takeFrame(connection.buffer)) {
                latencies.push_back(now() - connection.sentAt);
                connection.sentAt = 0;
            }
        }
    }
    const double loadCpu = cpuSeconds(pid) - cpuAtStart;
    const double ownCpu = ownCpuSeconds() - ownAtStart;
    const double loadWall = double(now() - loadStart) / nsPerSecond;

    figures.answered = qint64(latencies.size());
    figures.loadCpuPercent = 100.0 * loadCpu / loadWall;
    figures.cpuPerRequestUs = latencies.empty() ? 0 : 1e6 * loadCpu / double(latencies.size());
    figures.clientCpuPerRequestUs = latencies.empty() ? 0 : 1e6 * ownCpu / double(latencies.size());
    figures.medianMs = percentile(latencies, 0.5);
    figures.p99Ms = percentile(latencies, 0.99);
    figures.maxMs = percentile(latencies, 1.0);

    for (const Connection& connection : connections) {
        if (connection.descriptor >= 0)
            ::close(connection.descriptor);
    }
    ::close(poller);
    process.kill();
    process.waitForFinished();
    QFile errors(dir.path() + QStringLiteral("/err.txt"));
    if (errors.open(QIODevice::ReadOnly))
        figures.errorOutput = errors.readAll();
    return figures;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    const QStringList counts = arguments.value(1, QStringLiteral("10,250")).split(QLatin1Char(','));
    const int loadSeconds = arguments.value(2, QStringLiteral("20")).toInt();
    const int idleSeconds = arguments.value(3, QStringLiteral("10")).toInt();
    in_addr firstAddress{};
    inet_pton(AF_INET, arguments.value(4, QStringLiteral("10.100.0.1")).toLatin1().constData(), &firstAddress);
    const quint32 first = ntohl(firstAddress.s_addr);

    // The client holds one descriptor per chamber.
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);

    const QString build = QDir(QCoreApplication::applicationDirPath() + QStringLiteral("/..")).absolutePath();
    const QString simulator = build + QStringLiteral("/bin/chamber-simulator");
    const QString catalogue = build + QStringLiteral("/database/configuration.sqlite3");

    QTextStream out(stdout);
    out.setCodec("UTF-8");
    out << "| chambers | listening | served | start to all listening | RSS | RSS added per chamber | idle CPU | "
           "CPU under load | CPU per request | client CPU per request | median | p99 | max | answered | missed |\n"
        << "|---|---|---|---|---|---|---|---|---|---|---|---|---|---|---|\n";
    out.flush();
    Figures smallest;
    for (const QString& countText : counts) {
        const Figures figures = run(countText.toInt(), loadSeconds, idleSeconds, first, simulator, catalogue);
        if (smallest.chambers == 0)
            smallest = figures;
        const QString added =
            figures.chambers == smallest.chambers
                ? QStringLiteral("-")
                : QString::number(double(figures.rssKiB - smallest.rssKiB) / (figures.chambers - smallest.chambers),
                                  'f', 1)
                      + QStringLiteral(" KiB");
        out << "| " << figures.chambers << " | " << figures.listening << " | " << figures.served << " | "
            << QString::number(figures.startSeconds, 'f', 2) << " s | "
            << QString::number(figures.rssKiB / 1024.0, 'f', 1) << " MiB | " << added << " | "
            << QString::number(figures.idleCpuPercent, 'f', 2) << " % | "
            << QString::number(figures.loadCpuPercent, 'f', 1) << " % | "
            << QString::number(figures.cpuPerRequestUs, 'f', 1) << QString::fromUtf8(" µs | ")
            << QString::number(figures.clientCpuPerRequestUs, 'f', 1) << QString::fromUtf8(" µs | ")
            << QString::number(figures.medianMs, 'f', 2) << " ms | " << QString::number(figures.p99Ms, 'f', 2)
            << " ms | " << QString::number(figures.maxMs, 'f', 2) << " ms | " << figures.answered << " | "
            << figures.missed << " |\n";
        for (const QByteArray& line : figures.errorOutput.split('\n')) {
            if (!line.isEmpty() && !line.startsWith("QStandardPaths"))
                out << "  simulator, standard error: " << QString::fromUtf8(line) << '\n';
        }
        out.flush();
    }

    // What a value pays for the wall clock on each read, with TZ as this process has it.
    QElapsedTimer clock;
    clock.start();
    const int calls = 200000;
    qint64 sink = 0;
    for (int index = 0; index < calls; ++index)
        sink += QDateTime::currentDateTime().time().msec();
    out << "\nQDateTime::currentDateTime() with TZ " << (qEnvironmentVariableIsSet("TZ") ? qgetenv("TZ") : "unset")
        << ": " << QString::number(clock.nsecsElapsed() / 1000.0 / calls, 'f', 2) << QString::fromUtf8(" µs per call")
        << (sink < 0 ? "" : "") << "\n";
    return 0;
}
