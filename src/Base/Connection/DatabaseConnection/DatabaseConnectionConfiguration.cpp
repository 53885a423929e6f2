#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/SqlConfigurationDatabaseConnection.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ChamberTypeData.h"
#include "Domain/Types/ChamberTypeId.h"
#include "Domain/Types/DefaultToleranceRange.h"

// The catalogue's interface, passed on to its store call by call.

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;

QList<ChamberTypeData> DatabaseConnection::getAllChamberTypeData(bool withSignals) const
{
    return configurationStore->getAllChamberTypeData(withSignals);
}

QList<ChamberTypeData> DatabaseConnection::getAllProgrammableChamberTypeData() const
{
    return configurationStore->getAllProgrammableChamberTypeData();
}

ChamberTypeData DatabaseConnection::getChamberTypeData(const ChamberTypeId& id, bool withSignals) const
{
    return configurationStore->getChamberTypeData(id, withSignals);
}

QMap<int, ChamberSignal> DatabaseConnection::getChamberSignals(const ChamberTypeId& id) const
{
    return configurationStore->getChamberSignals(id);
}

QList<std::pair<ChamberSignal, DefaultToleranceRange>>
DatabaseConnection::getTimeProgrammableChamberSignals(const ChamberTypeId& id) const
{
    return configurationStore->getTimeProgrammableChamberSignals(id);
}

QMap<int, ChamberSignal> DatabaseConnection::getSetpointChamberSignals(const ChamberTypeId& id) const
{
    return configurationStore->getSetpointChamberSignals(id);
}

QMap<int, ChamberSignal> DatabaseConnection::getChamberSignals(QList<SignalId> ids) const
{
    return configurationStore->getChamberSignals(ids);
}

QSharedPointer<ChamberSignal> DatabaseConnection::getChamberSignal(const SignalId& id) const
{
    return configurationStore->getChamberSignal(id);
}

QMap<SignalId, ChamberSignal> DatabaseConnection::getMatchingSignals(const ChamberTypeId& source,
                                                                     const ChamberTypeId& destination) const
{
    return configurationStore->getMatchingSignals(source, destination);
}

QList<ChamberSignal> DatabaseConnection::getDataloggerChamberSignal(const ChamberTypeId& id) const
{
    return configurationStore->getDataloggerChamberSignal(id);
}

DefaultToleranceRange DatabaseConnection::getDefaultToleranceRange(const ChamberTypeId& id, const SignalId& signalId,
                                                                   bool isSetPoint) const
{
    return configurationStore->getDefaultToleranceRange(id, signalId, isSetPoint);
}

int DatabaseConnection::getChamberSignalDelay(const ChamberTypeId& id, const SignalId& signalId, bool second) const
{
    return configurationStore->getChamberSignalDelay(id, signalId, second);
}

Unit::UnitId DatabaseConnection::getSignalUnitId(const SignalId& id) const
{
    return configurationStore->getSignalUnitId(id);
}

} // namespace zelmor::base::connection::databaseconnection
