#pragma once

#include "Domain/Api/ApplicationTableProperties.h"
#include "Domain/Types/DatabaseConnectionError.h"
#include "Domain/Types/SignalId.h"
#include "Domain/Types/ToleranceRangeHistory.h"

#include <QDateTime>
#include <QList>
#include <QMap>
#include <QString>
#include <QVariant>

namespace zelmor::domain::types {
class ChamberData;
class ChamberId;
class ChamberSignal;
class RecordingId;
class ToleranceRange;
} // namespace zelmor::domain::types

namespace zelmor::domain::api {

// The chambers that the monitoring application knows, with their
// subscriptions, custom signal names, signal delays and the history of their
// tolerance ranges. Every operation returns its empty value (false, an empty
// list or map, an invalid value, a default object) on failure and reports it
// through error().
class IChamberDatabaseConnection
{
public:
    virtual ~IChamberDatabaseConnection();

    // The new chamber's id goes into the argument.
    virtual bool addChamber(zelmor::domain::types::ChamberData& chamber) = 0;
    // With the room position or with an empty one.
    virtual QList<zelmor::domain::types::ChamberData> getAllChamberData(bool withRoomPosition) const = 0;
    virtual zelmor::domain::types::ChamberData getChamberData(const zelmor::domain::types::ChamberId& id,
                                                              bool withRoomPosition) const = 0;
    // Invalid when the chamber isn't there.
    virtual QVariant getChamberProperty(const zelmor::domain::types::ChamberId& id,
                                        const ChamberProperty& property) const = 0;
    // The signals of the chamber's type; empty for an unknown chamber.
    virtual QMap<int, zelmor::domain::types::ChamberSignal>
    getChamberSignals(const zelmor::domain::types::ChamberId& id) const = 0;
    // Every column but the id; "is_subscribed" only with withSubscription, as
    // the subscription has operations of its own.
    virtual bool updateChamber(const zelmor::domain::types::ChamberData& chamber, bool withSubscription) = 0;
    virtual bool setChamberProperty(const zelmor::domain::types::ChamberData& chamber,
                                    const ChamberProperty& property) = 0;
    virtual bool setChamberProperty(const zelmor::domain::types::ChamberId& id, const ChamberProperty& property,
                                    const QVariant& value) = 0;
    virtual bool setChamberCustomSignalNames(zelmor::domain::types::ChamberId id,
                                             const QMap<zelmor::domain::types::SignalId, QString>& names) = 0;
    virtual QMap<zelmor::domain::types::SignalId, QString>
    getChamberCustomSignalNames(zelmor::domain::types::ChamberId id) = 0;
    virtual bool deleteChamber(const zelmor::domain::types::ChamberId& id) = 0;
    // Archiving and restoring leave the subscriptions as they are.
    virtual bool archiveChamber(const zelmor::domain::types::ChamberId& id) = 0;
    virtual bool restoreChamber(const zelmor::domain::types::ChamberId& id) = 0;

    // The range of each given signal that holds at the time; a signal without
    // a range from that time or before has no entry. Limits in each signal's unit.
    virtual QMap<zelmor::domain::types::SignalId, zelmor::domain::types::ToleranceRange>
    getToleranceRanges(const QDateTime& time, const zelmor::domain::types::ChamberId& chamber,
                       const QMap<int, zelmor::domain::types::ChamberSignal>& chamberSignals) = 0;
    // The same for the chamber of a recording, from the cached history: a time
    // before a signal's first range gets that first range.
    virtual QMap<zelmor::domain::types::SignalId, zelmor::domain::types::ToleranceRange>
    getToleranceRanges(const QDateTime& time, const zelmor::domain::types::RecordingId& recording,
                       const QMap<int, zelmor::domain::types::ChamberSignal>& chamberSignals) = 0;
    // The whole history behind the recording form, from the cache or read and
    // cached; getToleranceRangesAt() of it is that form's answer, on any thread.
    virtual zelmor::domain::types::ToleranceRangeHistory
    getToleranceRangeHistory(const zelmor::domain::types::RecordingId& recording,
                             const QMap<int, zelmor::domain::types::ChamberSignal>& chamberSignals) = 0;
    // An empty range when none holds at the time.
    virtual zelmor::domain::types::ToleranceRange getToleranceRange(const QDateTime& time,
                                                                    const zelmor::domain::types::ChamberId& chamber,
                                                                    const zelmor::domain::types::SignalId& signal) = 0;
    // A new range from the time on; the earlier ones stay in the history.
    virtual bool setToleranceRange(const QDateTime& time, const zelmor::domain::types::ChamberId& chamber,
                                   const zelmor::domain::types::SignalId& signal,
                                   const zelmor::domain::types::ToleranceRange& range) = 0;

    virtual bool isChamberSubscribed(const zelmor::domain::types::ChamberId& id) const = 0;
    virtual QList<zelmor::domain::types::SignalId>
    getSubscribedChamberSignals(const zelmor::domain::types::ChamberId& id) const = 0;
    virtual bool isAnyChamberSignalSubscribed(const zelmor::domain::types::ChamberId& id,
                                              const QList<zelmor::domain::types::SignalId>& signalIds) const = 0;
    virtual bool isChamberSignalSubscribed(const zelmor::domain::types::ChamberId& id,
                                           const zelmor::domain::types::SignalId& signal) const = 0;
    virtual bool subscribeChamber(const zelmor::domain::types::ChamberId& id) = 0;
    // Removes the chamber's signals first; the chamber stays subscribed when that fails.
    virtual bool unsubscribeChamber(const zelmor::domain::types::ChamberId& id) = 0;
    virtual bool bulkSubscribeChambers(const QList<zelmor::domain::types::ChamberId>& ids) = 0;
    virtual bool bulkUnsubscribeChambers(const QList<zelmor::domain::types::ChamberId>& ids) = 0;
    virtual bool subscribeChamberSignal(const zelmor::domain::types::ChamberId& id,
                                        const zelmor::domain::types::SignalId& signal) = 0;
    // Signal -1 stands for all signals of the chamber.
    virtual bool unsubscribeChamberSignal(const zelmor::domain::types::ChamberId& id,
                                          const zelmor::domain::types::SignalId& signal) = 0;

    // The delays picked by second: false the first, true the second, in
    // seconds; -1 for a signal that has only the other one.
    virtual QMap<zelmor::domain::types::SignalId, int>
    getAllChamberSignalDelaysInSeconds(const zelmor::domain::types::ChamberId& id, bool second) const = 0;
    // -1 when the chamber has none for the signal.
    virtual int getChamberSignalDelayInSeconds(const zelmor::domain::types::ChamberId& id,
                                               const zelmor::domain::types::SignalId& signal, bool second) const = 0;
    virtual bool hasChamberSignalDelay(const zelmor::domain::types::ChamberId& id,
                                       const zelmor::domain::types::SignalId& signal, bool second) const = 0;
    // The other delay of the signal stays as it is, NULL on a new row.
    virtual bool setChamberSignalDelay(const zelmor::domain::types::ChamberId& id,
                                       const zelmor::domain::types::SignalId& signal, bool second, int seconds) = 0;

    // A signal in the implementations.
    virtual void error(zelmor::domain::types::DatabaseConnectionError error) const = 0;
};

} // namespace zelmor::domain::api
