#include "Tools/Simulation/SimulationValue.h"

namespace zelmor {
namespace simulation {

namespace {
constexpr qint64 finestStepMs = 999;
}

SimulationValue::SimulationValue()
    : lastRequest(QDateTime::currentDateTime())
{
}

QDateTime SimulationValue::getLastRequest() const
{
    return lastRequest;
}

void SimulationValue::setLastRequest(QDateTime const& lastRequest)
{
    this->lastRequest = lastRequest;
}

qint64 SimulationValue::getTimeDifference()
{
    QDateTime const now = QDateTime::currentDateTime();
    qint64 const difference = lastRequest.msecsTo(now);
    if (difference > finestStepMs) {
        lastRequest = now;
        return difference;
    }
    return 0;
}

} // namespace simulation
} // namespace zelmor
