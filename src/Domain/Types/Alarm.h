#pragma once

#include "Domain/Types/AlarmId.h"
#include "Domain/Types/AlarmStatus.h"
#include "Domain/Types/AlarmType.h"
#include "Domain/Types/ChamberId.h"
#include "Domain/Types/ShortDescription.h"
#include "Domain/Types/SignalId.h"
#include "Domain/Types/UserId.h"

#include <QDateTime>
#include <QList>
#include <QMetaType>
#include <QString>

namespace zelmor::domain::types {

// An alarm of the monitoring application: a row of table "application_alarm"
// with the signals it concerns.
class Alarm
{
public:
    // Id 0 (not stored yet), no time, type and status 0, no user, no chamber (-1).
    Alarm();
    Alarm(const AlarmId& id, const QDateTime& timestamp, AlarmType::TypeId type, bool isActive,
          AlarmStatus::StatusId status, const UserId& userId, const QString& alarmName,
          const ShortDescription& shortDescription, const QString& description, const ChamberId& chamberId,
          const QString& chamberName, const QList<SignalId>& signalIds, const QList<QString>& signalNames);

    // The id is greater than 0.
    bool isValid() const;

    AlarmId id;
    QDateTime timestamp;
    AlarmType::TypeId type;
    bool isActive;
    AlarmStatus::StatusId status;
    UserId userId;
    QString alarmName;
    ShortDescription shortDescription;
    QString description;
    ChamberId chamberId;
    // Not stored with the alarm: filled in from the chamber when alarms are read.
    QString chamberName;
    QList<SignalId> signalIds;
    QList<QString> signalNames;
};

// An alarm is known by its id and its time: the other fields don't take part.
bool operator==(const Alarm& left, const Alarm& right);
bool operator!=(const Alarm& left, const Alarm& right);
// By id, then by time.
bool operator<(const Alarm& left, const Alarm& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::Alarm)
