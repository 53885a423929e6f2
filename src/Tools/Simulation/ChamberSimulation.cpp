#include "Tools/Simulation/ChamberSimulation.h"

#include "Tools/Simulation/SimulationReader.h"

namespace zelmor::simulation {

ChamberSimulation::ChamberSimulation(QSharedPointer<domain::types::ChamberTypeData> chamberType)
    : chamberType(std::move(chamberType))
{
}

ChamberSimulation::~ChamberSimulation() = default;

QString ChamberSimulation::getIpAddress() const
{
    return QString();
}

int ChamberSimulation::getModbusAddress() const
{
    return 0;
}

void ChamberSimulation::setSimulationReader(QSharedPointer<SimulationReader> reader)
{
    simulationReader = std::move(reader);
}

QSharedPointer<SimulationReader> ChamberSimulation::getSimulationReader() const
{
    return simulationReader;
}

QSharedPointer<domain::types::ChamberTypeData> ChamberSimulation::getChamberType() const
{
    return chamberType;
}

} // namespace zelmor::simulation
