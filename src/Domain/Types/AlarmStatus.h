#pragma once

#include <QString>

namespace zelmor::domain::types {

// Where an alarm stands between raising and acknowledgement. Its texts are shown
// as they stand, untranslated.
class AlarmStatus
{
public:
    // 5 and 6 share their text and their meaning.
    enum StatusId : int {
        UNKNOWN_STATUS = 0,
        PRE_ALARM = 1,
        NOT_ACKNOWLEDGED = 2,
        ACKNOWLEDGED = 3,
        PRE_ALARM_CANCELLED = 4,
        PRE_ALARM_ACKNOWLEDGED = 5,
        PRE_ALARM_ACKNOWLEDGED_2 = 6
    };

    AlarmStatus(StatusId statusId = UNKNOWN_STATUS);

    // The empty text for a number without one.
    QString toString() const;
    bool isPreAlarm() const;
    bool isAcknowledged() const;

    StatusId statusId;
};

bool operator==(const AlarmStatus& left, const AlarmStatus& right);
bool operator!=(const AlarmStatus& left, const AlarmStatus& right);

} // namespace zelmor::domain::types
