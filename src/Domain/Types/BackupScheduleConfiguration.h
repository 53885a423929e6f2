#pragma once

#include "Domain/Types/BackupInterval.h"

#include <QDateTime>
#include <QMetaType>
#include <QString>
#include <QTime>

namespace zelmor::domain::types {

// When and where the database is backed up: the "backup_" columns of the global
// settings.
class BackupScheduleConfiguration
{
public:
    // Daily, no time, day 0, no path, no password.
    BackupScheduleConfiguration();
    BackupScheduleConfiguration(const QTime& time, BackupInterval::Interval interval, int dayOfX, const QString& path,
                                const QString& password);

    QTime getBackupTime() const;
    void setBackupTime(const QTime& time);
    BackupInterval::Interval getBackupInterval() const;
    void setBackupInterval(BackupInterval::Interval interval);
    int getDayOfX() const;
    void setDayOfX(int dayOfX);
    QString getBackupPath() const;
    void setBackupPath(const QString& path);
    QString getBackupPassword() const;
    void setBackupPassword(const QString& password);

    // Keeps the time, interval, day and path of an earlier configuration, so that
    // what was changed can be told afterwards. Until then they are those of a
    // default configuration.
    void setOldConfiguration(const BackupScheduleConfiguration& old);
    QTime getOldBackupTime() const;
    BackupInterval::Interval getOldBackupInterval() const;
    int getOldDayOfX() const;
    QString getOldBackupPath() const;

    // The next moment a backup is due, in local time, strictly after now:
    // - DAILY: today at the time, or tomorrow when that isn't ahead any more.
    // - WEEKLY: the next weekday dayOfX (1 Monday to 7 Sunday) at the time, today
    //   included while the time is ahead.
    // - MONTHLY: day dayOfX (1 to 31) of this month at the time, or of the next
    //   month when that isn't ahead any more. A month that is too short for the
    //   day takes its last day.
    // A time that the clock skips on a change to daylight saving time is taken as
    // though the clock hadn't changed yet, which is as much later as the skip;
    // a time the clock shows twice is due the first time. No time, a day out of
    // range or an unknown interval give an invalid QDateTime.
    QDateTime getNextBackupDate() const;
    QDateTime getNextBackupDate(const QDateTime& now) const;

    QTime time;
    BackupInterval::Interval interval;
    int dayOfX; // day of the week or of the month, as the interval says
    QString path;
    QString password;

private:
    QTime oldTime_;
    BackupInterval::Interval oldInterval_;
    int oldDayOfX_;
    QString oldPath_;
};

// The present values only; the earlier ones don't count.
bool operator==(const BackupScheduleConfiguration& left, const BackupScheduleConfiguration& right);
bool operator!=(const BackupScheduleConfiguration& left, const BackupScheduleConfiguration& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::BackupScheduleConfiguration)
