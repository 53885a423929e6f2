#include "Tools/Simulation/SimulationReader.h"

namespace zelmor::simulation {

SimulationReader::~SimulationReader() = default;

bool SimulationReader::write(int address, QVariant value)
{
    Q_UNUSED(address)
    Q_UNUSED(value)
    return false;
}

QVariant SimulationReader::getType(int address)
{
    Q_UNUSED(address)
    return QVariant();
}

} // namespace zelmor::simulation
