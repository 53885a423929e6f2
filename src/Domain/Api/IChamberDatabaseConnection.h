#pragma once

#include "Domain/Types/DatabaseConnectionError.h"
#include "Domain/Types/SignalId.h"

#include <QDateTime>
#include <QMap>
#include <QString>

namespace zelmor::domain::types {
class ChamberId;
class ChamberSignal;
class RecordingId;
class ToleranceRange;
class ToleranceRangeHistory;
} // namespace zelmor::domain::types

namespace zelmor::domain::api {

// The chambers of the monitoring application. Until the chamber store is in,
// only what the recording and recordset stores ask of it.
class IChamberDatabaseConnection
{
public:
    virtual ~IChamberDatabaseConnection();

    virtual QMap<zelmor::domain::types::SignalId, QString>
    getChamberCustomSignalNames(zelmor::domain::types::ChamberId chamber) = 0;
    // The range of each signal at that moment on the recording's chamber.
    virtual QMap<zelmor::domain::types::SignalId, zelmor::domain::types::ToleranceRange>
    getToleranceRanges(const QDateTime& time, const zelmor::domain::types::RecordingId& recording,
                       const QMap<int, zelmor::domain::types::ChamberSignal>& signalMap) = 0;
    // The whole history behind the form above, which that form reads at one
    // moment: made on the connection's thread, readable on any.
    virtual zelmor::domain::types::ToleranceRangeHistory
    getToleranceRangeHistory(const zelmor::domain::types::RecordingId& recording,
                             const QMap<int, zelmor::domain::types::ChamberSignal>& signalMap) = 0;

    // A signal in the implementations.
    virtual void error(zelmor::domain::types::DatabaseConnectionError error) const = 0;
};

} // namespace zelmor::domain::api
