#include "Tools/SimulationControl/ChamberFaults.h"

#include <QString>

namespace zelmor::simulation::control {

ChamberFaults::ChamberFaults(quint32 seed)
    : random(seed)
{
}

bool ChamberFaults::isActive() const
{
    return settings.delayMs > 0 || settings.dropRate > 0 || settings.errorRate > 0 || settings.strayRate > 0;
}

RequestFault ChamberFaults::nextRequest()
{
    RequestFault fault;
    if (!isActive())
        return fault;
    fault.delayMs = settings.delayMs;
    if (settings.dropRate + settings.errorRate + settings.strayRate <= 0)
        return fault;
    const double draw = random.generateDouble();
    if (draw < settings.dropRate) {
        fault.kind = RequestFault::Drop;
    } else if (draw < settings.dropRate + settings.errorRate) {
        fault.kind = RequestFault::Error;
    } else if (draw < settings.dropRate + settings.errorRate + settings.strayRate) {
        fault.kind = RequestFault::Stray;
        fault.strayBytes.resize(random.bounded(minimumStrayBytes_, maximumStrayBytes_ + 1));
        for (char& byte : fault.strayBytes)
            byte = char(random.bounded(256));
    }
    return fault;
}

bool ChamberFaults::setSettings(const Settings& settings, QString* error)
{
    QString problem;
    const auto isRate = [](double rate) { return rate >= 0 && rate <= 1; };
    if (settings.delayMs < 0 || settings.delayMs > maximumDelayMs_)
        problem = QStringLiteral("delayMs must lie from 0 to %1").arg(maximumDelayMs_);
    else if (!isRate(settings.dropRate) || !isRate(settings.errorRate) || !isRate(settings.strayRate))
        problem = QStringLiteral("dropRate, errorRate and strayRate must each lie from 0 to 1");
    else if (settings.dropRate + settings.errorRate + settings.strayRate > 1 + 1e-9)
        problem = QStringLiteral("dropRate, errorRate and strayRate must add up to 1 at most");
    if (!problem.isEmpty()) {
        if (error)
            *error = problem;
        return false;
    }
    this->settings = settings;
    return true;
}

void ChamberFaults::clear()
{
    settings = Settings();
}

} // namespace zelmor::simulation::control
