#pragma once

#include "Domain/Types/DatabaseConnectionError.h"
#include "Domain/Types/SignalId.h"

#include <QDateTime>
#include <QList>
#include <QMap>

namespace zelmor::domain::types {
class ChamberSignal;
class RecordingId;
class Recordset;
class RecordsetComment;
class RecordsetId;
class TimeSpan;
} // namespace zelmor::domain::types

namespace zelmor::domain::api {

// The values measured by recordings, one recordset per moment, with a comment
// per recordset. Each recording has its own mapping of signals to the value
// columns, laid down once by matchSignalRecordsetColumn. Every operation
// returns its empty value (false, an empty list, an object with id -1) on
// failure and reports it through error().
class IRecordsetDatabaseConnection
{
public:
    virtual ~IRecordsetDatabaseConnection();

    // The new recordset's id goes into the argument. Its values must be in
    // ascending signal id.
    virtual bool addRecordset(zelmor::domain::types::Recordset& recordset) = 0;
    virtual bool addRecordsetComment(const zelmor::domain::types::RecordsetComment& comment) = 0;
    virtual bool deleteRecordsetComment(const zelmor::domain::types::RecordsetId& id) = 0;
    virtual bool deleteRecordset(const zelmor::domain::types::RecordsetId& id) = 0;
    virtual bool deleteAllRecordsets(const zelmor::domain::types::RecordingId& recording) = 0;
    virtual zelmor::domain::types::Recordset getRecordset(const zelmor::domain::types::RecordsetId& id) = 0;
    // The newest count recordsets, newest first; with a valid time only those before it.
    virtual QList<zelmor::domain::types::Recordset>
    getLatestNRecordsets(const zelmor::domain::types::RecordingId& recording, int count, const QDateTime& before) = 0;
    // The count recordsets before the given one, the nearest first.
    virtual QList<zelmor::domain::types::Recordset>
    getNRecordsets(const zelmor::domain::types::RecordingId& recording, int count,
                   const zelmor::domain::types::RecordsetId& before) = 0;
    // The recordsets within the span, then maxCount of all of them spread
    // evenly behind those (-1: none behind).
    virtual QList<zelmor::domain::types::Recordset> getRecordsets(const zelmor::domain::types::RecordingId& recording,
                                                                  const zelmor::domain::types::TimeSpan& span,
                                                                  long long maxCount) = 0;
    // maxCount recordsets spread evenly over the first end ones (end 0: over
    // all); maxCount -1 for all of them. Callers pass start 0.
    virtual QList<zelmor::domain::types::Recordset> getRecordsets(const zelmor::domain::types::RecordingId& recording,
                                                                  long long start, long long end,
                                                                  long long maxCount) = 0;
    virtual zelmor::domain::types::RecordsetComment
    getRecordsetComment(const zelmor::domain::types::RecordsetId& id) const = 0;
    // The signals' columns in list order; at most 48 signals.
    virtual bool matchSignalRecordsetColumn(const zelmor::domain::types::RecordingId& recording,
                                            const QList<zelmor::domain::types::SignalId>& signalIds) = 0;
    virtual QMap<int, zelmor::domain::types::ChamberSignal>
    getRecordingSignals(const zelmor::domain::types::RecordingId& recording) const = 0;
    // All recordsets in one transaction: all of them or none. The first one
    // decides the columns; all must have the same signals.
    virtual bool addRecordsToQuery(QList<zelmor::domain::types::Recordset>& recordsets) const = 0;
    virtual long long getRecordsetLenght(const zelmor::domain::types::RecordingId& recording) = 0;
    // As the span form, only recordsets with a camera image.
    virtual QList<zelmor::domain::types::Recordset>
    getRecordsetsWithImagePath(const zelmor::domain::types::RecordingId& recording,
                               const zelmor::domain::types::TimeSpan& span, long long maxCount) = 0;

    // A signal in the implementations.
    virtual void error(zelmor::domain::types::DatabaseConnectionError error) const = 0;
};

} // namespace zelmor::domain::api
