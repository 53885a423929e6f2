#pragma once

#include <QDateTime>

namespace zelmor::simulation {

// The time account of a simulated value. There is no timer: a value moves
// only when asked, by the time that passed since its last update.
class SimulationValue
{
public:
    // An address of -1 stands for none: a value never answers on it, so a
    // signal without a write address takes no writes and its aliases of the
    // set value answer invalid.
    static constexpr int noAddress_ = -1;

    // Opens the account now: the lag starts at construction.
    SimulationValue();

    QDateTime getLastRequest() const;
    // Also the seam for tests: moving the stamp back stands for elapsed time.
    void setLastRequest(const QDateTime& lastRequest);

    // Milliseconds since the last update, at a resolution of one second:
    // up to 999 ms counts as no time and leaves the stamp where it was, so
    // the time isn't lost; anything longer moves the stamp to now.
    qint64 getTimeDifference();

private:
    QDateTime lastRequest;
};

} // namespace zelmor::simulation
