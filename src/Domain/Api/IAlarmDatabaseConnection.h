#pragma once

#include "Domain/Types/DatabaseConnectionError.h"
#include "Domain/Types/SignalId.h"

#include <QList>

namespace zelmor::domain::types {
class Alarm;
class AlarmId;
class ChamberId;
} // namespace zelmor::domain::types

namespace zelmor::domain::api {

// The alarms of the monitoring application with the signals they concern.
// Every operation returns its empty value (false, an empty list, 0) on failure
// and reports it through error().
class IAlarmDatabaseConnection
{
public:
    virtual ~IAlarmDatabaseConnection();

    // Each with its signals, and with the name of its chamber where the
    // implementation knows the chambers.
    virtual QList<zelmor::domain::types::Alarm> getAllAlarms() const = 0;
    // In seconds: the chamber's own delay for the signal, or the default of
    // the chamber's type. second picks the delay; the chamber's delays are
    // stored the other way round, so the chamber's column is the other one.
    virtual int getSignalAlarmDelay(const zelmor::domain::types::AlarmId& alarm,
                                    const zelmor::domain::types::SignalId& signal, bool second) const = 0;
    // The new alarm's id goes into the argument; its signals are added after it.
    virtual bool addAlarm(zelmor::domain::types::Alarm& alarm) = 0;
    // The signals first; an alarm without signals loses those it had.
    virtual bool updateAlarm(const zelmor::domain::types::Alarm& alarm) = 0;
    virtual bool deleteAlarm(const zelmor::domain::types::AlarmId& id) = 0;
    virtual QList<zelmor::domain::types::Alarm> getAlarms(const zelmor::domain::types::ChamberId& chamber) const = 0;
    virtual int countAlarms(const zelmor::domain::types::ChamberId& chamber) const = 0;

    // A signal in the implementations.
    virtual void error(zelmor::domain::types::DatabaseConnectionError error) const = 0;
};

} // namespace zelmor::domain::api
