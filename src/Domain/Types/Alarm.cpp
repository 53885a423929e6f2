#include "Domain/Types/Alarm.h"

namespace zelmor::domain::types {

Alarm::Alarm()
    : Alarm(0, QDateTime(), AlarmType::NOT_DEFINED, false, AlarmStatus::UNKNOWN_STATUS, 0, QString(),
            ShortDescription(), QString(), -1, QString(), QList<SignalId>(), QList<QString>())
{
}

Alarm::Alarm(const AlarmId& id, const QDateTime& timestamp, AlarmType::TypeId type, bool isActive,
             AlarmStatus::StatusId status, const UserId& userId, const QString& alarmName,
             const ShortDescription& shortDescription, const QString& description, const ChamberId& chamberId,
             const QString& chamberName, const QList<SignalId>& signalIds, const QList<QString>& signalNames)
    : id(id)
    , timestamp(timestamp)
    , type(type)
    , isActive(isActive)
    , status(status)
    , userId(userId)
    , alarmName(alarmName)
    , shortDescription(shortDescription)
    , description(description)
    , chamberId(chamberId)
    , chamberName(chamberName)
    , signalIds(signalIds)
    , signalNames(signalNames)
{
}

bool Alarm::isValid() const
{
    return id > 0;
}

bool operator==(const Alarm& left, const Alarm& right)
{
    return left.id == right.id && left.timestamp == right.timestamp;
}

bool operator!=(const Alarm& left, const Alarm& right)
{
    return !(left == right);
}

bool operator<(const Alarm& left, const Alarm& right)
{
    if (left.id != right.id) {
        return left.id < right.id;
    }
    return left.timestamp < right.timestamp;
}

} // namespace zelmor::domain::types
