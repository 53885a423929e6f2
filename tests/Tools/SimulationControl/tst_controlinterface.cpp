// The control option's value, and how many HTTP connections the free file
// descriptors allow.

#include "Tools/SimulationControl/ControlInterface.h"

#include <QDir>
#include <QtTest>

#include <sys/resource.h>

using zelmor::simulation::control::ControlInterface;

class TestControlInterface : public QObject
{
    Q_OBJECT

private slots:
    void parseAddress_data();
    void parseAddress();
    void connectionLimitFollowsFreeDescriptors_data();
    void connectionLimitFollowsFreeDescriptors();
    void nothingWithoutTheOption();
};

void TestControlInterface::parseAddress_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("address"); // empty: refused
    QTest::addColumn<int>("port");
    QTest::addColumn<QString>("error");
    QTest::newRow("port alone") << "8080"
                                << "127.0.0.1" << 8080 << QString();
    QTest::newRow("address and port") << "10.100.0.1:80"
                                      << "10.100.0.1" << 80 << QString();
    QTest::newRow("any address, any port") << "0.0.0.0:0"
                                           << "0.0.0.0" << 0 << QString();
    QTest::newRow("localhost") << "localhost:65535"
                               << "127.0.0.1" << 65535 << QString();
    QTest::newRow("IPv6") << "[::1]:8080"
                          << "::1" << 8080 << QString();
    QTest::newRow("empty") << "" << QString() << 0 << "\"\" is not PORT, ADDRESS:PORT or [IPv6 ADDRESS]:PORT";
    QTest::newRow("a name") << "example:80" << QString() << 0
                            << "\"example:80\" is not PORT, ADDRESS:PORT or [IPv6 ADDRESS]:PORT";
    QTest::newRow("three numbers") << "1.2.3:80" << QString() << 0
                                   << "\"1.2.3:80\" is not PORT, ADDRESS:PORT or [IPv6 ADDRESS]:PORT";
    QTest::newRow("IPv6 without brackets")
        << "::1:80" << QString() << 0 << "\"::1:80\" is not PORT, ADDRESS:PORT or [IPv6 ADDRESS]:PORT";
    QTest::newRow("no port") << "127.0.0.1" << QString() << 0
                             << "\"127.0.0.1\" is not PORT, ADDRESS:PORT or [IPv6 ADDRESS]:PORT";
    QTest::newRow("port too large") << "127.0.0.1:65536" << QString() << 0 << "port 65536 lies outside 0 to 65535";
    QTest::newRow("number above 255") << "300.1.1.1:8" << QString() << 0 << "\"300.1.1.1\" is no IP address";
    QTest::newRow("IPv4 in brackets") << "[1.2.3.4]:8" << QString() << 0 << "\"1.2.3.4\" is no IP address";
}

void TestControlInterface::parseAddress()
{
    QFETCH(QString, text);
    QFETCH(QString, address);
    QFETCH(int, port);
    QFETCH(QString, error);
    QHostAddress parsed;
    quint16 parsedPort = 0;
    QString message;
    QCOMPARE(ControlInterface::parseAddress(text, &parsed, &parsedPort, &message), error.isEmpty());
    QCOMPARE(message, error);
    if (error.isEmpty()) {
        QCOMPARE(parsed, QHostAddress(address));
        QCOMPARE(int(parsedPort), port);
    }
}

void TestControlInterface::connectionLimitFollowsFreeDescriptors_data()
{
    QTest::addColumn<int>("chambers");
    QTest::addColumn<int>("spare"); // beyond what is open, two per chamber and 64
    QTest::addColumn<int>("limit");
    QTest::newRow("half of what is spare") << 100 << 300 << 150;
    QTest::newRow("no fewer than 16") << 1000 << 0 << 16;
    QTest::newRow("no more than 512") << 10 << 5000 << 512;
}

void TestControlInterface::connectionLimitFollowsFreeDescriptors()
{
    QFETCH(int, chambers);
    QFETCH(int, spare);
    QFETCH(int, limit);
    rlimit saved{};
    QCOMPARE(getrlimit(RLIMIT_NOFILE, &saved), 0);
    // The listing itself holds one descriptor while it reads.
    const int open = QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::Files | QDir::System).size();
    rlimit lowered = saved;
    lowered.rlim_cur = rlim_t(open + 2 * chambers + 64 + spare);
    if (lowered.rlim_cur > saved.rlim_max)
        QSKIP("the hard limit of open files is too low");
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &lowered), 0);
    const int computed = ControlInterface::connectionLimitFor(chambers);
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &saved), 0);
    QCOMPARE(computed, limit);
}

void TestControlInterface::nothingWithoutTheOption()
{
    ControlInterface control;
    control.takeArgument(QStringLiteral("-control=80"));
    control.takeArgument(QStringLiteral("-i127.0.0.1"));
    QVERIFY(!control.isRequested());
    QVERIFY(control.checkOption());
    QVERIFY(control.start({}));
    control.takeArgument(QStringLiteral("--control=9"));
    QVERIFY(control.isRequested());
}

QTEST_GUILESS_MAIN(TestControlInterface)
#include "tst_controlinterface.moc"
