#include "Tools/Simulation/ChamberSimulation.h"

#include "Tools/Simulation/FaultPolicy.h"
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

bool ChamberSimulation::setOnline(bool online)
{
    return online == this->online;
}

bool ChamberSimulation::isOnline() const
{
    return online;
}

int ChamberSimulation::getPort() const
{
    return 0;
}

int ChamberSimulation::getClientCount() const
{
    return 0;
}

bool ChamberSimulation::acceptsFaults() const
{
    return false;
}

void ChamberSimulation::setFaultPolicy(QSharedPointer<FaultPolicy> policy)
{
    faultPolicy = std::move(policy);
}

QSharedPointer<FaultPolicy> ChamberSimulation::getFaultPolicy() const
{
    return faultPolicy;
}

const ChamberStatistics& ChamberSimulation::getStatistics() const
{
    return statistics;
}

RequestFault ChamberSimulation::nextFault()
{
    if (!faultPolicy)
        return RequestFault();
    const RequestFault fault = faultPolicy->nextRequest();
    if (fault.kind != RequestFault::None)
        statistics.countFault(fault.kind);
    return fault;
}

} // namespace zelmor::simulation
