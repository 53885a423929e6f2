#include "Base/EventDispatcher/EpollEventDispatcher.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTimerEvent>
#include <QVarLengthArray>

#include <cerrno>
#include <climits>

#include <pthread.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <time.h>
#include <unistd.h>

namespace zelmor::base::eventdispatcher {

namespace {

constexpr int eventCapacity = 256;
constexpr quint64 wakeUpKey = ~quint64(0);
constexpr qint64 nsPerMs = 1000 * 1000;

qint64 monotonicNs()
{
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return qint64(now.tv_sec) * 1000 * nsPerMs + now.tv_nsec;
}

quint64 keyOf(int descriptor, quint32 generation)
{
    return (quint64(generation) << 32) | quint32(descriptor);
}

// Qt rounds a very coarse timer to whole seconds.
qint64 effectiveIntervalNs(int interval, Qt::TimerType type)
{
    if (type == Qt::VeryCoarseTimer)
        return qint64((interval + 500) / 1000) * 1000 * nsPerMs;
    return qint64(interval) * nsPerMs;
}

} // namespace

EpollEventDispatcher::EpollEventDispatcher(QObject* parent)
    : QAbstractEventDispatcher(parent)
    , epollDescriptor(epoll_create1(EPOLL_CLOEXEC))
    , wakeUpDescriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    , ownerThread(pthread_self())
{
    if (epollDescriptor < 0 || wakeUpDescriptor < 0)
        return;
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.u64 = wakeUpKey;
    if (epoll_ctl(epollDescriptor, EPOLL_CTL_ADD, wakeUpDescriptor, &event) != 0) {
        close(wakeUpDescriptor);
        wakeUpDescriptor = -1;
    }
}

EpollEventDispatcher::~EpollEventDispatcher()
{
    if (wakeUpDescriptor >= 0)
        close(wakeUpDescriptor);
    if (epollDescriptor >= 0)
        close(epollDescriptor);
}

bool EpollEventDispatcher::isValid() const
{
    return epollDescriptor >= 0 && wakeUpDescriptor >= 0;
}

bool EpollEventDispatcher::isOwnerThread() const
{
    return pthread_equal(pthread_self(), pthread_t(ownerThread));
}

bool EpollEventDispatcher::processEvents(QEventLoop::ProcessEventsFlags flags)
{
    Q_ASSERT(isOwnerThread());
    interrupted.store(false);
    emit awake();

    bool processed = wakeUpPending.exchange(false);
    QCoreApplication::sendPostedEvents();
    if (interrupted.load())
        return processed;

    const bool mayBlock = flags.testFlag(QEventLoop::WaitForMoreEvents) && !wakeUpPending.load();
    processed = waitAndDispatch(flags, mayBlock) || processed;

    // What the handlers posted (a timer's deleteLater, say) goes out now,
    // not after another round through the kernel.
    if (wakeUpPending.exchange(false)) {
        QCoreApplication::sendPostedEvents();
        processed = true;
    }
    return processed;
}

bool EpollEventDispatcher::hasPendingEvents()
{
    Q_ASSERT(isOwnerThread());
    return wakeUpPending.load();
}

int EpollEventDispatcher::wait(void* events, int capacity, qint64 timeoutNs)
{
    epoll_event* const buffer = static_cast<epoll_event*>(events);
    if (epollWaitWithNanoseconds) {
        timespec timeout{};
        timeout.tv_sec = time_t(timeoutNs / (1000 * nsPerMs));
        timeout.tv_nsec = long(timeoutNs % (1000 * nsPerMs));
        const int ready = epoll_pwait2(epollDescriptor, buffer, capacity, timeoutNs < 0 ? nullptr : &timeout, nullptr);
        if (ready >= 0 || errno != ENOSYS)
            return ready;
        epollWaitWithNanoseconds = false;
    }
    // Whole milliseconds, rounded up: a timer may come late, never early.
    const int timeoutMs = timeoutNs < 0 ? -1 : int(qMin<qint64>((timeoutNs + nsPerMs - 1) / nsPerMs, INT_MAX));
    return epoll_wait(epollDescriptor, buffer, capacity, timeoutMs);
}

bool EpollEventDispatcher::waitAndDispatch(QEventLoop::ProcessEventsFlags flags, bool mayBlock)
{
    const bool withTimers = !flags.testFlag(QEventLoop::X11ExcludeTimers);
    qint64 timeoutNs = 0;
    if (mayBlock && !interrupted.load()) {
        const qint64 deadline = withTimers ? nextDeadline() : -1;
        timeoutNs = deadline < 0 ? -1 : qMax<qint64>(0, deadline - monotonicNs());
    }
    if (timeoutNs != 0)
        emit aboutToBlock();

    epoll_event events[eventCapacity];
    int ready = wait(events, eventCapacity, timeoutNs);
    if (timeoutNs != 0)
        emit awake();
    if (ready < 0)
        ready = 0; // EINTR: a signal; the caller comes round again

    bool processed = false;
    const bool withSockets = !flags.testFlag(QEventLoop::ExcludeSocketNotifiers);
    for (int index = 0; index < ready; ++index) {
        const quint64 key = events[index].data.u64;
        if (key == wakeUpKey) {
            drainWakeUps();
            processed = true;
        } else if (withSockets) {
            processed = activateSocket(int(quint32(key)), quint32(key >> 32), events[index].events) || processed;
        }
    }
    if (withTimers)
        processed = activateTimers() || processed;
    return processed;
}

bool EpollEventDispatcher::activateSocket(int descriptor, quint32 generation, quint32 events)
{
    // Read first: a hang-up or error is news for the reader; a writer hears
    // of it too, so that a socket watched for writing alone can't spin.
    struct Slot
    {
        QSocketNotifier* Watch::*notifier;
        quint32 events;
    };
    const Slot order[] = {
        {&Watch::read, EPOLLIN | EPOLLHUP | EPOLLERR},
        {&Watch::write, EPOLLOUT | EPOLLHUP | EPOLLERR},
        {&Watch::exception, EPOLLPRI},
    };
    bool processed = false;
    for (const Slot& kind : order) {
        if (!(events & kind.events))
            continue;
        // A handler before may have closed the descriptor or replaced its notifiers.
        const auto watch = watches.constFind(descriptor);
        if (watch == watches.constEnd() || watch->generation != generation)
            return processed;
        QSocketNotifier* const notifier = (*watch).*kind.notifier;
        if (!notifier)
            continue;
        QEvent activation(QEvent::SockAct);
        QCoreApplication::sendEvent(notifier, &activation);
        processed = true;
    }
    return processed;
}

bool EpollEventDispatcher::activateTimers()
{
    const qint64 now = monotonicNs();
    // Each timer due at this moment fires once in this pass, so that a zero
    // timer can't starve the sockets.
    QVarLengthArray<int, 32> due;
    for (auto it = deadlines.cbegin(); it != deadlines.cend() && it->first <= now; ++it)
        due.append(it->second);

    bool processed = false;
    for (const int timerId : due) {
        auto timer = timers.find(timerId);
        if (timer == timers.end() || timer->activating || timer->deadlineNs > now)
            continue;
        // Rescheduled before delivery: the handler may kill or restart it.
        removeDeadline(timerId, *timer);
        const qint64 step = effectiveIntervalNs(timer->interval, timer->type);
        qint64 next = timer->deadlineNs + step;
        if (next <= now)
            next = now + step;
        timer->deadlineNs = next;
        deadlines.emplace(next, timerId);
        timer->activating = true;
        QObject* const object = timer->object;

        QTimerEvent event(timerId);
        QCoreApplication::sendEvent(object, &event);
        processed = true;

        timer = timers.find(timerId);
        if (timer != timers.end())
            timer->activating = false;
    }
    return processed;
}

void EpollEventDispatcher::drainWakeUps()
{
    quint64 count = 0;
    while (read(wakeUpDescriptor, &count, sizeof count) > 0) {
    }
}

bool EpollEventDispatcher::updateWatch(int descriptor, const Watch& watch, bool added)
{
    epoll_event event{};
    event.events = (watch.read ? quint32(EPOLLIN) : 0u) | (watch.write ? quint32(EPOLLOUT) : 0u)
                   | (watch.exception ? quint32(EPOLLPRI) : 0u);
    event.data.u64 = keyOf(descriptor, watch.generation);
    if (added) {
        if (epoll_ctl(epollDescriptor, EPOLL_CTL_ADD, descriptor, &event) == 0)
            return true;
        return errno == EEXIST && epoll_ctl(epollDescriptor, EPOLL_CTL_MOD, descriptor, &event) == 0;
    }
    if (epoll_ctl(epollDescriptor, EPOLL_CTL_MOD, descriptor, &event) == 0)
        return true;
    return errno == ENOENT && epoll_ctl(epollDescriptor, EPOLL_CTL_ADD, descriptor, &event) == 0;
}

void EpollEventDispatcher::registerSocketNotifier(QSocketNotifier* notifier)
{
    Q_ASSERT(isOwnerThread());
    const int descriptor = int(notifier->socket());
    auto watch = watches.find(descriptor);
    const bool added = watch == watches.end();
    if (added) {
        watch = watches.insert(descriptor, Watch());
        watch->generation = ++nextGeneration;
    }
    QSocketNotifier** slot = nullptr;
    switch (notifier->type()) {
    case QSocketNotifier::Read:
        slot = &watch->read;
        break;
    case QSocketNotifier::Write:
        slot = &watch->write;
        break;
    case QSocketNotifier::Exception:
        slot = &watch->exception;
        break;
    }
    if (*slot && *slot != notifier)
        qWarning("EpollEventDispatcher: a second socket notifier of one type on descriptor %d", descriptor);
    *slot = notifier;
    if (!updateWatch(descriptor, *watch, added)) {
        qWarning("EpollEventDispatcher: cannot watch descriptor %d: %s", descriptor, strerror(errno));
        *slot = nullptr;
        if (added)
            watches.erase(watch);
    }
}

void EpollEventDispatcher::unregisterSocketNotifier(QSocketNotifier* notifier)
{
    Q_ASSERT(isOwnerThread());
    const int descriptor = int(notifier->socket());
    auto watch = watches.find(descriptor);
    if (watch == watches.end())
        return;
    QSocketNotifier** const slot =
        notifier->type() == QSocketNotifier::Read
            ? &watch->read
            : (notifier->type() == QSocketNotifier::Write ? &watch->write : &watch->exception);
    if (*slot != notifier)
        return;
    *slot = nullptr;
    if (watch->read || watch->write || watch->exception) {
        updateWatch(descriptor, *watch, false);
        return;
    }
    // The descriptor may be closed already; the kernel then forgot it by itself.
    epoll_ctl(epollDescriptor, EPOLL_CTL_DEL, descriptor, nullptr);
    watches.erase(watch);
}

void EpollEventDispatcher::registerTimer(int timerId, int interval, Qt::TimerType timerType, QObject* object)
{
    Q_ASSERT(isOwnerThread());
    Timer timer;
    timer.object = object;
    timer.interval = interval;
    timer.type = timerType;
    timer.deadlineNs = monotonicNs() + effectiveIntervalNs(interval, timerType);
    const auto former = timers.constFind(timerId);
    if (former != timers.constEnd())
        removeDeadline(timerId, *former);
    timers.insert(timerId, timer);
    deadlines.emplace(timer.deadlineNs, timerId);
}

void EpollEventDispatcher::removeDeadline(int timerId, const Timer& timer)
{
    deadlines.erase(std::make_pair(timer.deadlineNs, timerId));
}

bool EpollEventDispatcher::unregisterTimer(int timerId)
{
    Q_ASSERT(isOwnerThread());
    const auto timer = timers.find(timerId);
    if (timer == timers.end())
        return false;
    removeDeadline(timerId, *timer);
    timers.erase(timer);
    return true;
}

bool EpollEventDispatcher::unregisterTimers(QObject* object)
{
    Q_ASSERT(isOwnerThread());
    bool found = false;
    for (auto timer = timers.begin(); timer != timers.end();) {
        if (timer->object == object) {
            removeDeadline(timer.key(), *timer);
            timer = timers.erase(timer);
            found = true;
        } else {
            ++timer;
        }
    }
    return found;
}

QList<QAbstractEventDispatcher::TimerInfo> EpollEventDispatcher::registeredTimers(QObject* object) const
{
    Q_ASSERT(isOwnerThread());
    QList<TimerInfo> result;
    for (auto timer = timers.cbegin(); timer != timers.cend(); ++timer) {
        if (timer->object == object)
            result.append(TimerInfo(timer.key(), timer->interval, timer->type));
    }
    return result;
}

int EpollEventDispatcher::remainingTime(int timerId)
{
    Q_ASSERT(isOwnerThread());
    const auto timer = timers.constFind(timerId);
    if (timer == timers.constEnd())
        return -1;
    const qint64 left = qMax<qint64>(0, timer->deadlineNs - monotonicNs());
    return int(qMin<qint64>((left + nsPerMs - 1) / nsPerMs, INT_MAX));
}

qint64 EpollEventDispatcher::nextDeadline() const
{
    return deadlines.empty() ? -1 : deadlines.cbegin()->first;
}

void EpollEventDispatcher::wakeUp()
{
    if (wakeUpPending.exchange(true))
        return;
    // On its own thread the dispatcher is running, not waiting: it looks at
    // the flag before it waits again.
    if (isOwnerThread())
        return;
    const quint64 one = 1;
    const ssize_t written = write(wakeUpDescriptor, &one, sizeof one);
    Q_UNUSED(written) // only a full counter refuses, and then it is readable anyway
}

void EpollEventDispatcher::interrupt()
{
    interrupted.store(true);
    wakeUp();
}

void EpollEventDispatcher::flush() {}

} // namespace zelmor::base::eventdispatcher
