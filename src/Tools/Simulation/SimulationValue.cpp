#include "Tools/Simulation/SimulationValue.h"

namespace zelmor::simulation {

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

void SimulationValue::setLastRequest(const QDateTime& lastRequest)
{
    this->lastRequest = lastRequest;
}

qint64 SimulationValue::getTimeDifference()
{
    const QDateTime now = QDateTime::currentDateTime();
    const qint64 difference = lastRequest.msecsTo(now);
    if (difference > finestStepMs) {
        lastRequest = now;
        return difference;
    }
    return 0;
}

} // namespace zelmor::simulation
