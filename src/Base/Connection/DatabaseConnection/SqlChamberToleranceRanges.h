#pragma once

#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlToleranceRangeCache.h"
#include "Domain/Types/SignalId.h"
#include "Domain/Types/ToleranceRangeHistory.h"

#include <QDateTime>
#include <QMap>

namespace zelmor::domain::api {
class IConfigurationDatabaseConnection;
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::domain::types {
class ChamberId;
class ChamberSignal;
class RecordingId;
class ToleranceRange;
} // namespace zelmor::domain::types

namespace zelmor::base::connection::databaseconnection {

class SqlStoreChecks;

// The history of the chambers' tolerance ranges in the application table
// "tolerance_range": a range holds from its "effective_from" (UTC) until the
// next one of the same chamber and signal, so that old values are judged by
// the range of their time. SqlChamberDatabaseConnection owns one and passes
// these operations on to it; it reports through the store's checks. Limits
// are kept in the unit of their signal.
//
// Two readings of one history, different on purpose: by chamber, a time
// before a signal's first range gives nothing for the signal; by recording,
// it gives that first range. The recording form reads a chamber's whole
// history once and keeps it in the store's SqlToleranceRangeCache, which
// every new range empties whole.
//
// Threads: use on the thread of the connection, like the store. Only the cache
// may be read from other threads; a worker that needs ranges takes the
// history here first and runs getToleranceRangesAt() on it.
class SqlChamberToleranceRanges
{
public:
    // The cache is the store's; this fills and empties it.
    SqlChamberToleranceRanges(const SqlStoreChecks& checks, SqlToleranceRangeCache& cache);

    void setDependencies(zelmor::domain::api::ISqlConnection* connection,
                         zelmor::domain::api::IConfigurationDatabaseConnection* configuration);

    QMap<zelmor::domain::types::SignalId, zelmor::domain::types::ToleranceRange>
    getToleranceRanges(const QDateTime& time, const zelmor::domain::types::ChamberId& chamber,
                       const QMap<int, zelmor::domain::types::ChamberSignal>& chamberSignals) const;
    QMap<zelmor::domain::types::SignalId, zelmor::domain::types::ToleranceRange>
    getToleranceRanges(const QDateTime& time, const zelmor::domain::types::RecordingId& recording,
                       const QMap<int, zelmor::domain::types::ChamberSignal>& chamberSignals);
    // The cache's entry of the recording's chamber, or the history read and cached.
    zelmor::domain::types::ToleranceRangeHistory
    getToleranceRangeHistory(const zelmor::domain::types::RecordingId& recording,
                             const QMap<int, zelmor::domain::types::ChamberSignal>& chamberSignals);
    zelmor::domain::types::ToleranceRange getToleranceRange(const QDateTime& time,
                                                            const zelmor::domain::types::ChamberId& chamber,
                                                            const zelmor::domain::types::SignalId& signal) const;
    // Empties the cache first, whatever comes of the insert.
    bool setToleranceRange(const QDateTime& time, const zelmor::domain::types::ChamberId& chamber,
                           const zelmor::domain::types::SignalId& signal,
                           const zelmor::domain::types::ToleranceRange& range);

private:
    // The newest range of each signal from the time or before, by chamber.
    SqlQuery prepareRangesAtQuery(const QDateTime& time, const zelmor::domain::types::ChamberId& chamber,
                                  const QList<int>& signalIds) const;
    // Decodes the rows of prepareRangesAtQuery, the limits in the signals' units.
    QMap<zelmor::domain::types::SignalId, zelmor::domain::types::ToleranceRange>
    getToleranceRanges(const SqlQuery& query, int columnCount,
                       const QMap<int, zelmor::domain::types::ChamberSignal>& chamberSignals) const;
    // The chamber's ranges of the given signals, by signal and time; false
    // when a row couldn't be read.
    bool readHistory(int chamber, const QList<int>& signalIds,
                     const QMap<int, zelmor::domain::types::ChamberSignal>& chamberSignals,
                     zelmor::domain::types::ToleranceRangeHistory& history) const;

    const SqlStoreChecks& checks;
    zelmor::domain::api::ISqlConnection* connection = nullptr;
    zelmor::domain::api::IConfigurationDatabaseConnection* configuration = nullptr;
    SqlToleranceRangeCache& cache;
};

} // namespace zelmor::base::connection::databaseconnection
