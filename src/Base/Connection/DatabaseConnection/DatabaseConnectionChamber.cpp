#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/SqlChamberDatabaseConnection.h"
#include "Domain/Types/ChamberData.h"
#include "Domain/Types/ChamberId.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/RecordingId.h"
#include "Domain/Types/ToleranceRange.h"

// The chamber store's interface, passed on call by call.

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;
using zelmor::domain::api::ChamberProperty;

bool DatabaseConnection::addChamber(ChamberData& chamber)
{
    return chamberStore->addChamber(chamber);
}

QList<ChamberData> DatabaseConnection::getAllChamberData(bool withRoomPosition) const
{
    return chamberStore->getAllChamberData(withRoomPosition);
}

ChamberData DatabaseConnection::getChamberData(const ChamberId& id, bool withRoomPosition) const
{
    return chamberStore->getChamberData(id, withRoomPosition);
}

QVariant DatabaseConnection::getChamberProperty(const ChamberId& id, const ChamberProperty& property) const
{
    return chamberStore->getChamberProperty(id, property);
}

QMap<int, ChamberSignal> DatabaseConnection::getChamberSignals(const ChamberId& id) const
{
    return chamberStore->getChamberSignals(id);
}

bool DatabaseConnection::updateChamber(const ChamberData& chamber, bool withSubscription)
{
    return chamberStore->updateChamber(chamber, withSubscription);
}

bool DatabaseConnection::setChamberProperty(const ChamberData& chamber, const ChamberProperty& property)
{
    return chamberStore->setChamberProperty(chamber, property);
}

bool DatabaseConnection::setChamberProperty(const ChamberId& id, const ChamberProperty& property, const QVariant& value)
{
    return chamberStore->setChamberProperty(id, property, value);
}

bool DatabaseConnection::setChamberCustomSignalNames(ChamberId id, const QMap<SignalId, QString>& names)
{
    return chamberStore->setChamberCustomSignalNames(id, names);
}

QMap<SignalId, QString> DatabaseConnection::getChamberCustomSignalNames(ChamberId id)
{
    return chamberStore->getChamberCustomSignalNames(id);
}

bool DatabaseConnection::deleteChamber(const ChamberId& id)
{
    return chamberStore->deleteChamber(id);
}

bool DatabaseConnection::archiveChamber(const ChamberId& id)
{
    return chamberStore->archiveChamber(id);
}

bool DatabaseConnection::restoreChamber(const ChamberId& id)
{
    return chamberStore->restoreChamber(id);
}

QMap<SignalId, ToleranceRange> DatabaseConnection::getToleranceRanges(const QDateTime& time, const ChamberId& chamber,
                                                                      const QMap<int, ChamberSignal>& chamberSignals)
{
    return chamberStore->getToleranceRanges(time, chamber, chamberSignals);
}

QMap<SignalId, ToleranceRange> DatabaseConnection::getToleranceRanges(const QDateTime& time,
                                                                      const RecordingId& recording,
                                                                      const QMap<int, ChamberSignal>& chamberSignals)
{
    return chamberStore->getToleranceRanges(time, recording, chamberSignals);
}

ToleranceRangeHistory DatabaseConnection::getToleranceRangeHistory(const RecordingId& recording,
                                                                   const QMap<int, ChamberSignal>& chamberSignals)
{
    return chamberStore->getToleranceRangeHistory(recording, chamberSignals);
}

ToleranceRange DatabaseConnection::getToleranceRange(const QDateTime& time, const ChamberId& chamber,
                                                     const SignalId& signal)
{
    return chamberStore->getToleranceRange(time, chamber, signal);
}

bool DatabaseConnection::setToleranceRange(const QDateTime& time, const ChamberId& chamber, const SignalId& signal,
                                           const ToleranceRange& range)
{
    return chamberStore->setToleranceRange(time, chamber, signal, range);
}

bool DatabaseConnection::isChamberSubscribed(const ChamberId& id) const
{
    return chamberStore->isChamberSubscribed(id);
}

QList<SignalId> DatabaseConnection::getSubscribedChamberSignals(const ChamberId& id) const
{
    return chamberStore->getSubscribedChamberSignals(id);
}

bool DatabaseConnection::isAnyChamberSignalSubscribed(const ChamberId& id, const QList<SignalId>& signalIds) const
{
    return chamberStore->isAnyChamberSignalSubscribed(id, signalIds);
}

bool DatabaseConnection::isChamberSignalSubscribed(const ChamberId& id, const SignalId& signal) const
{
    return chamberStore->isChamberSignalSubscribed(id, signal);
}

bool DatabaseConnection::subscribeChamber(const ChamberId& id)
{
    return chamberStore->subscribeChamber(id);
}

bool DatabaseConnection::unsubscribeChamber(const ChamberId& id)
{
    return chamberStore->unsubscribeChamber(id);
}

bool DatabaseConnection::bulkSubscribeChambers(const QList<ChamberId>& ids)
{
    return chamberStore->bulkSubscribeChambers(ids);
}

bool DatabaseConnection::bulkUnsubscribeChambers(const QList<ChamberId>& ids)
{
    return chamberStore->bulkUnsubscribeChambers(ids);
}

bool DatabaseConnection::subscribeChamberSignal(const ChamberId& id, const SignalId& signal)
{
    return chamberStore->subscribeChamberSignal(id, signal);
}

bool DatabaseConnection::unsubscribeChamberSignal(const ChamberId& id, const SignalId& signal)
{
    return chamberStore->unsubscribeChamberSignal(id, signal);
}

QMap<SignalId, int> DatabaseConnection::getAllChamberSignalDelaysInSeconds(const ChamberId& id, bool second) const
{
    return chamberStore->getAllChamberSignalDelaysInSeconds(id, second);
}

int DatabaseConnection::getChamberSignalDelayInSeconds(const ChamberId& id, const SignalId& signal, bool second) const
{
    return chamberStore->getChamberSignalDelayInSeconds(id, signal, second);
}

bool DatabaseConnection::hasChamberSignalDelay(const ChamberId& id, const SignalId& signal, bool second) const
{
    return chamberStore->hasChamberSignalDelay(id, signal, second);
}

bool DatabaseConnection::setChamberSignalDelay(const ChamberId& id, const SignalId& signal, bool second, int seconds)
{
    return chamberStore->setChamberSignalDelay(id, signal, second, seconds);
}

} // namespace zelmor::base::connection::databaseconnection
