#include "Tools/Simulation/SimulationValueWriter.h"

namespace zelmor::simulation {

SimulationValueWriter::SimulationValueWriter(QSharedPointer<SimulationReader> target, int aliasAddress,
                                             int targetAddress)
    : target(std::move(target))
    , aliasAddress(aliasAddress)
    , targetAddress(targetAddress)
{
}

QVariant SimulationValueWriter::read(int address)
{
    Q_UNUSED(address)
    return QVariant();
}

bool SimulationValueWriter::write(int address, QVariant value)
{
    if (address != aliasAddress || !target)
        return false;
    return target->write(targetAddress, std::move(value));
}

QVariant SimulationValueWriter::getType(int address)
{
    if (address != aliasAddress || !target)
        return QVariant();
    return target->read(targetAddress);
}

} // namespace zelmor::simulation
