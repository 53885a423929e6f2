// The epoll dispatcher as the main thread's dispatcher of a test application:
// timers, sockets on 127.0.59.x, posts from other threads, its one-thread
// contract.

#include "Base/EventDispatcher/EpollEventDispatcher.h"
#include "support/ChildRun.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <thread>

using zelmor::base::eventdispatcher::EpollEventDispatcher;
using zelmor::testsupport::ChildRun;

class TestEpollEventDispatcher : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void timersNeverEarly_data();
    void timersNeverEarly();
    void timerBookkeeping();
    void socketsBesideABusyTimer();
    void postedEvents();
    void otherThreads_data();
    void otherThreads();
};

void TestEpollEventDispatcher::initTestCase()
{
    QVERIFY(qobject_cast<EpollEventDispatcher*>(QAbstractEventDispatcher::instance()));
}

void TestEpollEventDispatcher::timersNeverEarly_data()
{
    QTest::addColumn<int>("intervalMs");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("ticks"); // 1: single shot; else repeating, stopped at the last
    QTest::newRow("0 ms") << 0 << int(Qt::PreciseTimer) << 1;
    QTest::newRow("20 ms precise") << 20 << int(Qt::PreciseTimer) << 1;
    QTest::newRow("20 ms coarse") << 20 << int(Qt::CoarseTimer) << 1;
    QTest::newRow("10 ms repeating") << 10 << int(Qt::PreciseTimer) << 5;
}

// Waited for in an event loop, so that the dispatcher blocks until the
// timer is due, not in steps of a polling wait; another timer wakes it
// every millisecond meanwhile.
void TestEpollEventDispatcher::timersNeverEarly()
{
    QFETCH(int, intervalMs);
    QFETCH(int, type);
    QFETCH(int, ticks);
    QTimer noise;
    noise.start(1);
    for (int round = 0; round < 3; ++round) {
        QTimer timer;
        timer.setTimerType(Qt::TimerType(type));
        timer.setSingleShot(ticks == 1);
        QList<qint64> firedNs;
        QElapsedTimer clock;
        connect(&timer, &QTimer::timeout, this, [&] {
            firedNs << clock.nsecsElapsed();
            if (firedNs.size() == ticks)
                timer.stop();
        });
        QSignalSpy fired(&timer, &QTimer::timeout);
        clock.start();
        timer.start(intervalMs);
        while (fired.count() < ticks)
            QVERIFY(fired.wait(1000));
        for (int tick = 1; tick <= ticks; ++tick) {
            const qint64 dueNs = qint64(tick) * intervalMs * 1000 * 1000;
            QVERIFY2(firedNs.at(tick - 1) >= dueNs, qPrintable(QString::number(firedNs.at(tick - 1))));
        }
        // Stopped is stopped: nothing more in five more intervals.
        QVERIFY(!fired.wait(5 * intervalMs + 5));
    }
}

void TestEpollEventDispatcher::timerBookkeeping()
{
    QObject owner;
    QAbstractEventDispatcher* const dispatcher = QAbstractEventDispatcher::instance();
    const int first = owner.startTimer(10000);
    const int second = owner.startTimer(500, Qt::VeryCoarseTimer);
    owner.startTimer(20);
    QCOMPARE(dispatcher->registeredTimers(&owner).size(), 3);
    QVERIFY(dispatcher->remainingTime(first) > 9000 && dispatcher->remainingTime(first) <= 10000);
    // A very coarse timer goes by whole seconds.
    QVERIFY(dispatcher->remainingTime(second) > 500 && dispatcher->remainingTime(second) <= 1000);
    owner.killTimer(first);
    QCOMPARE(dispatcher->remainingTime(first), -1);
    QVERIFY(dispatcher->unregisterTimers(&owner));
    QVERIFY(dispatcher->registeredTimers(&owner).isEmpty());
    // Nothing of them stays behind to wake the loop: 50 ms, past the third
    // one's due time, pass in a few passes, not in a spin.
    QSignalSpy passes(dispatcher, &QAbstractEventDispatcher::awake);
    QTimer quiet;
    quiet.setSingleShot(true);
    quiet.start(50);
    QVERIFY(QSignalSpy(&quiet, &QTimer::timeout).wait(1000));
    QVERIFY2(passes.count() < 20, qPrintable(QString::number(passes.count())));
}

// Many connections in a row, each closed while the next arrives, so that
// descriptors are reused between passes; every byte comes back, and a
// zero timer spinning all the while starves no socket.
void TestEpollEventDispatcher::socketsBesideABusyTimer()
{
    QTimer busy;
    int spins = 0;
    connect(&busy, &QTimer::timeout, this, [&] { ++spins; });
    busy.start(0);
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress(QStringLiteral("127.0.59.2")), 0));
    QPointer<QTcpSocket> current;
    connect(&server, &QTcpServer::newConnection, this, [&] {
        delete current;
        current = server.nextPendingConnection();
        connect(current, &QTcpSocket::readyRead, this, [&] { current->write(current->readAll()); });
    });
    for (int round = 0; round < 50; ++round) {
        QTcpSocket client;
        client.connectToHost(server.serverAddress(), server.serverPort());
        QTRY_COMPARE(client.state(), QAbstractSocket::ConnectedState);
        const QByteArray text = "round " + QByteArray::number(round) + '\n';
        client.write(text);
        QByteArray echoed;
        QTRY_COMPARE(echoed += client.readAll(), text);
    }
    QVERIFY(spins > 0);
}

// A post from another thread wakes the loop; a deleteLater() from a
// timer's handler goes out in the pass that fired the timer, not one round
// through the kernel later.
void TestEpollEventDispatcher::postedEvents()
{
    QEventLoop loop;
    std::thread poster;
    QTimer::singleShot(0, this, [&] {
        poster = std::thread([&loop] {
            QMetaObject::invokeMethod(
                &loop, [&loop] { loop.exit(7); }, Qt::QueuedConnection);
        });
    });
    QCOMPARE(loop.exec(), 7);
    poster.join();

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

void TestEpollEventDispatcher::otherThreads_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<bool>("stops");
    QTest::newRow("wakeUp") << "wakeUp" << false;
    QTest::newRow("interrupt") << "interrupt" << false;
    QTest::newRow("registerTimer") << "registerTimer" << true;
    QTest::newRow("unregisterTimers") << "unregisterTimers" << true;
    QTest::newRow("processEvents") << "processEvents" << true;
}

// The call made from a second thread of a child (see main): a wake-up may
// come from anywhere, the rest stops the program.
void TestEpollEventDispatcher::otherThreads()
{
    QFETCH(QString, call);
    QFETCH(bool, stops);
    const ChildRun child = ChildRun::start({call});
    if (stops)
        QVERIFY2(child.stoppedOnAssertion("isOwnerThread()", "EpollEventDispatcher.cpp"),
                 child.standardError.constData());
    else
        QVERIFY2(child.finished && !child.crashed && child.exitCode == 0, child.standardError.constData());
}

// Child mode: one call on the main thread's dispatcher from another thread.
int callFromOtherThread(int argc, char* argv[])
{
    auto* const dispatcher = new EpollEventDispatcher;
    QCoreApplication::setEventDispatcher(dispatcher);
    QCoreApplication application(argc, argv);
    const QString call = ChildRun::arguments(argc, argv).value(0);
    QObject owner;
    std::thread other([&] {
        if (call == QLatin1String("wakeUp"))
            dispatcher->wakeUp();
        else if (call == QLatin1String("interrupt"))
            dispatcher->interrupt();
        else if (call == QLatin1String("registerTimer"))
            dispatcher->registerTimer(1, 10, Qt::CoarseTimer, &owner);
        else if (call == QLatin1String("unregisterTimers"))
            dispatcher->unregisterTimers(&owner);
        else if (call == QLatin1String("processEvents"))
            dispatcher->processEvents(QEventLoop::AllEvents);
    });
    other.join();
    return 0;
}

int main(int argc, char* argv[])
{
    if (zelmor::testsupport::isChildRun(argc, argv))
        return callFromOtherThread(argc, argv);
    QCoreApplication::setEventDispatcher(new EpollEventDispatcher);
    QCoreApplication application(argc, argv);
    TestEpollEventDispatcher test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_epolleventdispatcher.moc"
