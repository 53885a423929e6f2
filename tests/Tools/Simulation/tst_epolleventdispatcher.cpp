// The epoll dispatcher as the main thread's dispatcher of a test application:
// timers, sockets on 127.0.59.x, posts from other threads.

#include "Tools/Simulation/EpollEventDispatcher.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <thread>

using zelmor::simulation::EpollEventDispatcher;

class TestEpollEventDispatcher : public QObject
{
    Q_OBJECT

private slots:
    void isTheApplicationsDispatcher();
    void singleShotNeverEarly_data();
    void singleShotNeverEarly();
    void repeatingTimerAndKill();
    void timerBookkeeping();
    void zeroTimerDoesNotStarveSockets();
    void socketsAcrossConnections();
    void postsFromAnotherThreadWake();
    void exitFromAnotherThread();
    void deferredDeleteInTheSamePass();
};

void TestEpollEventDispatcher::isTheApplicationsDispatcher()
{
    QVERIFY(qobject_cast<EpollEventDispatcher*>(QAbstractEventDispatcher::instance()));
}

void TestEpollEventDispatcher::singleShotNeverEarly_data()
{
    QTest::addColumn<int>("intervalMs");
    QTest::addColumn<int>("type");
    QTest::newRow("0 ms") << 0 << int(Qt::PreciseTimer);
    QTest::newRow("1 ms") << 1 << int(Qt::PreciseTimer);
    QTest::newRow("20 ms precise") << 20 << int(Qt::PreciseTimer);
    QTest::newRow("20 ms coarse") << 20 << int(Qt::CoarseTimer);
    QTest::newRow("55 ms") << 55 << int(Qt::PreciseTimer);
}

void TestEpollEventDispatcher::singleShotNeverEarly()
{
    QFETCH(int, intervalMs);
    QFETCH(int, type);
    for (int round = 0; round < 5; ++round) {
        QElapsedTimer clock;
        qint64 firedNs = -1;
        clock.start();
        QTimer::singleShot(intervalMs, Qt::TimerType(type), this, [&] { firedNs = clock.nsecsElapsed(); });
        QTRY_VERIFY(firedNs >= 0);
        QVERIFY2(firedNs >= qint64(intervalMs) * 1000 * 1000, qPrintable(QString::number(firedNs)));
    }
}

void TestEpollEventDispatcher::repeatingTimerAndKill()
{
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    int ticks = 0;
    QElapsedTimer clock;
    connect(&timer, &QTimer::timeout, this, [&] {
        ++ticks;
        // Never ahead of its schedule.
        QVERIFY(clock.nsecsElapsed() >= qint64(ticks) * 10 * 1000 * 1000);
        if (ticks == 5)
            timer.stop();
    });
    clock.start();
    timer.start(10);
    QTRY_COMPARE(ticks, 5);
    QTest::qWait(50);
    QCOMPARE(ticks, 5);
}

void TestEpollEventDispatcher::timerBookkeeping()
{
    QObject owner;
    QAbstractEventDispatcher* const dispatcher = QAbstractEventDispatcher::instance();
    int const first = owner.startTimer(10000);
    int const second = owner.startTimer(500, Qt::VeryCoarseTimer);
    QList<QAbstractEventDispatcher::TimerInfo> const timers = dispatcher->registeredTimers(&owner);
    QCOMPARE(timers.size(), 2);
    QVERIFY(dispatcher->remainingTime(first) > 9000 && dispatcher->remainingTime(first) <= 10000);
    // A very coarse timer goes by whole seconds.
    QVERIFY(dispatcher->remainingTime(second) > 500 && dispatcher->remainingTime(second) <= 1000);
    owner.killTimer(first);
    QCOMPARE(dispatcher->remainingTime(first), -1);
    QVERIFY(dispatcher->unregisterTimers(&owner));
    QVERIFY(dispatcher->registeredTimers(&owner).isEmpty());
}

void TestEpollEventDispatcher::zeroTimerDoesNotStarveSockets()
{
    QTimer busy;
    int spins = 0;
    connect(&busy, &QTimer::timeout, this, [&] { ++spins; });
    busy.start(0);
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress(QStringLiteral("127.0.59.1")), 0));
    QTcpSocket client;
    client.connectToHost(server.serverAddress(), server.serverPort());
    QTRY_VERIFY(server.hasPendingConnections());
    QTRY_COMPARE(client.state(), QAbstractSocket::ConnectedState);
    QVERIFY(spins > 0);
}

// Many connections in a row, each closed while the next arrives, so that
// descriptors are reused between passes; every byte gets through.
void TestEpollEventDispatcher::socketsAcrossConnections()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress(QStringLiteral("127.0.59.2")), 0));
    QByteArray received;
    QPointer<QTcpSocket> current;
    connect(&server, &QTcpServer::newConnection, this, [&] {
        delete current;
        current = server.nextPendingConnection();
        connect(current, &QTcpSocket::readyRead, this, [&] {
            QByteArray const data = current->readAll();
            received += data;
            current->write(data);
        });
    });
    for (int round = 0; round < 50; ++round) {
        QTcpSocket client;
        client.connectToHost(server.serverAddress(), server.serverPort());
        QVERIFY(client.waitForConnected(5000));
        QByteArray const text = "round " + QByteArray::number(round) + '\n';
        client.write(text);
        QTRY_VERIFY(client.bytesAvailable() >= text.size());
        QCOMPARE(client.readAll(), text);
    }
    QCOMPARE(received.count('\n'), 50);
}

void TestEpollEventDispatcher::postsFromAnotherThreadWake()
{
    int calls = 0;
    std::thread poster([this, &calls] {
        for (int index = 0; index < 100; ++index)
            QMetaObject::invokeMethod(this, [&calls] { ++calls; }, Qt::QueuedConnection);
    });
    poster.join();
    QTRY_COMPARE(calls, 100);
}

void TestEpollEventDispatcher::exitFromAnotherThread()
{
    QEventLoop loop;
    std::thread stopper;
    QTimer::singleShot(0, this, [&] { stopper = std::thread([&loop] { loop.exit(7); }); });
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(loop.exec(), 7);
    stopper.join();
    QVERIFY(clock.elapsed() < 5000);
}

// A deleteLater() from a timer's handler goes out in the pass that fired
// the timer, not one round through the kernel later.
void TestEpollEventDispatcher::deferredDeleteInTheSamePass()
{
    QPointer<QObject> doomed = new QObject;
    bool fired = false;
    QTimer::singleShot(1, this, [&] {
        doomed->deleteLater();
        fired = true;
    });
    while (!fired)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QVERIFY(doomed.isNull());
}

int main(int argc, char* argv[])
{
    QCoreApplication::setEventDispatcher(new EpollEventDispatcher);
    QCoreApplication application(argc, argv);
    TestEpollEventDispatcher test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_epolleventdispatcher.moc"
