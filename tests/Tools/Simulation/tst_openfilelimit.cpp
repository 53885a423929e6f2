// The limit of open files: raised at start as far as the process may, and
// a chamber that can't take its client for want of a descriptor, said once on
// standard error. Real descriptors, a real listener on 127.0.42.x.

#include "Domain/Types/ChamberTypeData.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/OpenFileLimit.h"
#include "Tools/Simulation/TlxChamberSimulation.h"
#include "support/FileLimits.h"
#include "support/StreamCapture.h"

#include <QDir>
#include <QTcpSocket>
#include <QtTest>

#include <vector>

#include <fcntl.h>
#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

using zelmor::simulation::OpenFileLimit;
using zelmor::simulation::TlxChamberSimulation;
using zelmor::testsupport::mayRaiseHardLimits;
using zelmor::testsupport::StreamCapture;

namespace {

const QByteArray message =
    "Out of file descriptors (limit %1): chambers can't listen or take their clients from "
    "here on. Raise the limit of open files (ulimit -n), or run as root with CAP_SYS_RESOURCE to let the tool "
    "raise it.\n";

// The limits that raise() leaves in a child process that started with
// `before` and, unless privileged, runs as the user nobody.
QString raisedInChild(const rlimit& before, bool privileged)
{
    const bool dropPrivilege = !privileged && ::geteuid() == 0;
    int channel[2];
    if (::pipe(channel) != 0)
        return QStringLiteral("no pipe");
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(channel[0]);
        bool ok = ::setrlimit(RLIMIT_NOFILE, &before) == 0;
        if (dropPrivilege)
            ok = ok && ::setgroups(0, nullptr) == 0 && ::setgid(65534) == 0 && ::setuid(65534) == 0;
        OpenFileLimit::raise();
        rlimit after{};
        ok = ok && ::getrlimit(RLIMIT_NOFILE, &after) == 0;
        const qulonglong values[2] = {after.rlim_cur, after.rlim_max};
        ok = ok && ::write(channel[1], values, sizeof values) == ssize_t(sizeof values);
        ::_exit(ok ? 0 : 1);
    }
    ::close(channel[1]);
    qulonglong values[2] = {};
    const bool read = ::read(channel[0], values, sizeof values) == ssize_t(sizeof values);
    ::close(channel[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (!read || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return QStringLiteral("child failed");
    return QStringLiteral("%1/%2").arg(values[0]).arg(values[1]);
}

// Holds every descriptor below a lowered soft limit but `free` of them, and
// gives both back when it goes.
class Exhaustion
{
public:
    explicit Exhaustion(int free)
    {
        ::getrlimit(RLIMIT_NOFILE, &former);
        rlimit lowered = former;
        lowered.rlim_cur = rlim_t(highestOpenDescriptor() + 32);
        ::setrlimit(RLIMIT_NOFILE, &lowered);
        limit = lowered.rlim_cur;
        for (int file; (file = ::open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0;)
            held.push_back(file);
        for (int i = 0; i < free && !held.empty(); ++i) {
            ::close(held.back());
            held.pop_back();
        }
    }
    ~Exhaustion()
    {
        for (int file : held)
            ::close(file);
        ::setrlimit(RLIMIT_NOFILE, &former);
    }

    rlim_t limit = 0;

private:
    static int highestOpenDescriptor()
    {
        int highest = 0;
        for (const QString& name :
             QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot))
            highest = qMax(highest, name.toInt());
        return highest;
    }

    rlimit former{};
    std::vector<int> held;
};

} // namespace

class TestOpenFileLimit : public QObject
{
    Q_OBJECT

private slots:
    void raise_data();
    void raise();
    void runningOutIsSaidOnce();
};

void TestOpenFileLimit::raise_data()
{
    QTest::addColumn<bool>("privileged");
    QTest::addColumn<rlim_t>("soft");
    QTest::addColumn<rlim_t>("hard");
    QTest::addColumn<QString>("expected"); // "soft/hard"; "ceiling": the kernel's, at most 1048576 each

    QTest::newRow("privileged: the hard limit too") << true << rlim_t(100) << rlim_t(200) << "ceiling";
    QTest::newRow("unprivileged: the soft limit to the hard") << false << rlim_t(100) << rlim_t(200) << "200/200";
    QTest::newRow("unprivileged, at the hard limit already") << false << rlim_t(200) << rlim_t(200) << "200/200";
}

void TestOpenFileLimit::raise()
{
    QFETCH(bool, privileged);
    QFETCH(rlim_t, soft);
    QFETCH(rlim_t, hard);
    QFETCH(QString, expected);

    if (privileged && !mayRaiseHardLimits())
        QSKIP("needs CAP_SYS_RESOURCE, which not even root has on every machine");
    if (expected == QLatin1String("ceiling"))
        expected = QStringLiteral("%1/%1").arg(zelmor::testsupport::simulatorFileLimitCeiling());
    QCOMPARE(raisedInChild(rlimit{soft, hard}, privileged), expected);
}

void TestOpenFileLimit::runningOutIsSaidOnce()
{
    StreamCapture console(zelmor::simulation::consoleOutput());
    StreamCapture errors(zelmor::simulation::errorOutput());
    auto type = QSharedPointer<zelmor::domain::types::ChamberTypeData>::create();
    TlxChamberSimulation chamber(type, QStringLiteral("127.0.42.1"));
    QVERIFY(chamber.start());

    // Failures with descriptors to spare are passed over in silence.
    TlxChamberSimulation sameAddress(type, QStringLiteral("127.0.42.1"));
    QVERIFY(!sameAddress.start());
    OpenFileLimit::reportIfExhausted();
    QCOMPARE(errors.text(), QByteArray());

    {
        // One descriptor left: the client's. The chamber's accept gets none.
        Exhaustion exhaustion(1);
        QTcpSocket client;
        client.connectToHost(QStringLiteral("127.0.42.1"), 9000);
        QVERIFY(client.waitForConnected(10000));
        QVERIFY(OpenFileLimit::isExhausted());
        const QByteArray expected = QString::fromLatin1(message).arg(qulonglong(exhaustion.limit)).toLatin1();
        QTRY_COMPARE(errors.text(), expected);
        QVERIFY(!console.text().contains("Connect TLX simulation"));

        // Said once for the run, not for each failure.
        OpenFileLimit::reportIfExhausted();
        QCOMPARE(errors.text(), expected);
    }
    QVERIFY(!OpenFileLimit::isExhausted());
}

QTEST_GUILESS_MAIN(TestOpenFileLimit)
#include "tst_openfilelimit.moc"
