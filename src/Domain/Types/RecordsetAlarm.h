#pragma once

namespace zelmor::domain::types::RecordsetAlarm {

// The alarm state of a chamber when a value was taken; column "alarm_type" of
// table "record_set", NULL for NO_ALARM. Only the numbers are stored.
enum Alarm : int { NO_ALARM = 0, PRE_ALARM = 1, ALARM = 2 };

} // namespace zelmor::domain::types::RecordsetAlarm
