#pragma once

namespace zelmor::domain::types::BackupInterval {

// How often the database is backed up; column "backup_interval" of table
// "global_settings".
enum Interval : int { DAILY = 0, WEEKLY = 1, MONTHLY = 2 };

} // namespace zelmor::domain::types::BackupInterval
