#include "Tools/Simulation/SimulationValueDuplicator.h"

namespace zelmor::simulation {

SimulationValueDuplicator::SimulationValueDuplicator(QSharedPointer<SimulationReader> target, int aliasAddress,
                                                     int targetAddress)
    : target(std::move(target))
    , aliasAddress(aliasAddress)
    , targetAddress(targetAddress)
{
}

QVariant SimulationValueDuplicator::read(int address)
{
    if (address != aliasAddress || !target)
        return QVariant();
    return target->read(targetAddress);
}

QVariant SimulationValueDuplicator::getType(int address)
{
    return read(address);
}

} // namespace zelmor::simulation
