#include "Domain/Types/AlarmStatus.h"

namespace zelmor::domain::types {

AlarmStatus::AlarmStatus(StatusId statusId)
    : statusId(statusId)
{
}

QString AlarmStatus::toString() const
{
    switch (statusId) {
    case UNKNOWN_STATUS:
        return QStringLiteral("Status unbekannt");
    case PRE_ALARM:
        return QStringLiteral("Voralarm");
    case NOT_ACKNOWLEDGED:
        return QStringLiteral("nicht bestätigt");
    case ACKNOWLEDGED:
        return QStringLiteral("bestätigt");
    case PRE_ALARM_CANCELLED:
        return QStringLiteral("Voralarm abgebochen"); // spelt so in the stored texts
    case PRE_ALARM_ACKNOWLEDGED:
    case PRE_ALARM_ACKNOWLEDGED_2:
        return QStringLiteral("Voralarm bestätigt");
    }
    return QString();
}

bool AlarmStatus::isPreAlarm() const
{
    switch (statusId) {
    case PRE_ALARM:
    case PRE_ALARM_CANCELLED:
    case PRE_ALARM_ACKNOWLEDGED:
    case PRE_ALARM_ACKNOWLEDGED_2:
        return true;
    default:
        return false;
    }
}

bool AlarmStatus::isAcknowledged() const
{
    switch (statusId) {
    case ACKNOWLEDGED:
    case PRE_ALARM_ACKNOWLEDGED:
    case PRE_ALARM_ACKNOWLEDGED_2:
        return true;
    default:
        return false;
    }
}

bool operator==(const AlarmStatus& left, const AlarmStatus& right)
{
    return left.statusId == right.statusId;
}

bool operator!=(const AlarmStatus& left, const AlarmStatus& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
