#pragma once

#include <QAbstractEventDispatcher>
#include <QHash>
#include <QList>

#include <atomic>
#include <set>
#include <utility>

namespace zelmor::base::eventdispatcher {

// An event dispatcher on Linux epoll, for a thread that watches many sockets
// (the simulator's main thread with a large fleet).
//
// Qt's own dispatchers hand every socket to poll() on every wake-up, so an
// event costs time in proportion to the number of sockets watched. Here the
// kernel keeps the interest list, and a wake-up costs only what became ready. Timers keep
// Qt's promise: never earlier than asked, to the nanosecond of the
// monotonic clock. Posted events that handlers leave behind go out in the
// same pass, without another round through the kernel.
//
// For a process without windows: window system events are not delivered.
// Install with QCoreApplication::setEventDispatcher() before the application
// object exists; then it serves the main thread only. wakeUp(), interrupt()
// and flush() may be called from any thread, everything else only from the
// thread that made it, which an assertion checks.
class EpollEventDispatcher : public QAbstractEventDispatcher
{
    Q_OBJECT

public:
    explicit EpollEventDispatcher(QObject* parent = nullptr);
    ~EpollEventDispatcher() override;

    // False when the kernel refused the epoll or eventfd descriptors; such a
    // dispatcher must not be installed.
    bool isValid() const;

    bool processEvents(QEventLoop::ProcessEventsFlags flags) override;
    bool hasPendingEvents() override;

    void registerSocketNotifier(QSocketNotifier* notifier) override;
    void unregisterSocketNotifier(QSocketNotifier* notifier) override;

    void registerTimer(int timerId, int interval, Qt::TimerType timerType, QObject* object) override;
    bool unregisterTimer(int timerId) override;
    bool unregisterTimers(QObject* object) override;
    QList<TimerInfo> registeredTimers(QObject* object) const override;
    int remainingTime(int timerId) override;

    void wakeUp() override;
    void interrupt() override;
    void flush() override;

private:
    struct Watch
    {
        QSocketNotifier* read = nullptr;
        QSocketNotifier* write = nullptr;
        QSocketNotifier* exception = nullptr;
        // Tells an event of a closed descriptor from one of its reuse.
        quint32 generation = 0;
    };

    struct Timer
    {
        QObject* object = nullptr;
        int interval = 0;
        Qt::TimerType type = Qt::CoarseTimer;
        qint64 deadlineNs = 0;
        bool activating = false;
    };

    bool isOwnerThread() const;
    bool updateWatch(int descriptor, const Watch& watch, bool added);
    void removeDeadline(int timerId, const Timer& timer);
    qint64 nextDeadline() const;
    bool waitAndDispatch(QEventLoop::ProcessEventsFlags flags, bool mayBlock);
    int wait(void* events, int capacity, qint64 timeoutNs);
    bool activateSocket(int descriptor, quint32 generation, quint32 events);
    bool activateTimers();
    void drainWakeUps();

    int epollDescriptor = -1;
    int wakeUpDescriptor = -1;
    quint32 nextGeneration = 0;
    QHash<int, Watch> watches;
    QHash<int, Timer> timers;
    std::set<std::pair<qint64, int>> deadlines;
    std::atomic<bool> wakeUpPending{false};
    std::atomic<bool> interrupted{false};
    bool epollWaitWithNanoseconds = true;
    // The thread it serves: its own posts need no trip through the eventfd.
    unsigned long ownerThread = 0;
};

} // namespace zelmor::base::eventdispatcher
