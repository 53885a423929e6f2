#include "Domain/Types/BackupScheduleConfiguration.h"

#include <QtGlobal>

namespace zelmor::domain::types {

namespace {

constexpr int daysInWeek = 7;

// The moment at which the local clock shows the time on the date. The C library
// resolves a reading that the clock shows twice by what it was asked before, so
// both offsets around the date are tried here instead, the earlier moment first.
QDateTime atLocalTime(const QDate& date, const QTime& time)
{
    const QDateTime reading(date, time, Qt::UTC);
    const int offsetBefore = reading.addDays(-1).toLocalTime().offsetFromUtc();
    const int offsetAfter = reading.addDays(1).toLocalTime().offsetFromUtc();
    for (const int offset : {offsetBefore, offsetAfter}) {
        const QDateTime moment = reading.addSecs(-offset).toLocalTime();
        if (moment.date() == date && moment.time() == time) {
            return moment;
        }
    }
    // the clock skips the reading: as though it hadn't jumped yet
    return reading.addSecs(-offsetBefore).toLocalTime();
}

QDate getDayOfMonth(int year, int month, int day)
{
    const QDate first(year, month, 1);
    return QDate(year, month, qMin(day, first.daysInMonth()));
}

} // namespace

BackupScheduleConfiguration::BackupScheduleConfiguration()
    : BackupScheduleConfiguration(QTime(), BackupInterval::DAILY, 0, QString(), QString())
{
}

BackupScheduleConfiguration::BackupScheduleConfiguration(const QTime& time, BackupInterval::Interval interval,
                                                         int dayOfX, const QString& path, const QString& password)
    : time(time)
    , interval(interval)
    , dayOfX(dayOfX)
    , path(path)
    , password(password)
    , oldInterval_(BackupInterval::DAILY)
    , oldDayOfX_(0)
{
}

QTime BackupScheduleConfiguration::getBackupTime() const
{
    return time;
}

void BackupScheduleConfiguration::setBackupTime(const QTime& newTime)
{
    time = newTime;
}

BackupInterval::Interval BackupScheduleConfiguration::getBackupInterval() const
{
    return interval;
}

void BackupScheduleConfiguration::setBackupInterval(BackupInterval::Interval newInterval)
{
    interval = newInterval;
}

int BackupScheduleConfiguration::getDayOfX() const
{
    return dayOfX;
}

void BackupScheduleConfiguration::setDayOfX(int newDayOfX)
{
    dayOfX = newDayOfX;
}

QString BackupScheduleConfiguration::getBackupPath() const
{
    return path;
}

void BackupScheduleConfiguration::setBackupPath(const QString& newPath)
{
    path = newPath;
}

QString BackupScheduleConfiguration::getBackupPassword() const
{
    return password;
}

void BackupScheduleConfiguration::setBackupPassword(const QString& newPassword)
{
    password = newPassword;
}

void BackupScheduleConfiguration::setOldConfiguration(const BackupScheduleConfiguration& old)
{
    oldTime_ = old.time;
    oldInterval_ = old.interval;
    oldDayOfX_ = old.dayOfX;
    oldPath_ = old.path;
}

QTime BackupScheduleConfiguration::getOldBackupTime() const
{
    return oldTime_;
}

BackupInterval::Interval BackupScheduleConfiguration::getOldBackupInterval() const
{
    return oldInterval_;
}

int BackupScheduleConfiguration::getOldDayOfX() const
{
    return oldDayOfX_;
}

QString BackupScheduleConfiguration::getOldBackupPath() const
{
    return oldPath_;
}

QDateTime BackupScheduleConfiguration::getNextBackupDate() const
{
    return getNextBackupDate(QDateTime::currentDateTime());
}

QDateTime BackupScheduleConfiguration::getNextBackupDate(const QDateTime& now) const
{
    if (!time.isValid() || !now.isValid()) {
        return QDateTime();
    }
    const QDateTime localNow = now.toLocalTime();
    const QDate today = localNow.date();
    switch (interval) {
    case BackupInterval::DAILY: {
        const QDateTime due = atLocalTime(today, time);
        return due > localNow ? due : atLocalTime(today.addDays(1), time);
    }
    case BackupInterval::WEEKLY: {
        if (dayOfX < 1 || dayOfX > daysInWeek) {
            return QDateTime();
        }
        const QDate day = today.addDays((dayOfX - today.dayOfWeek() + daysInWeek) % daysInWeek);
        const QDateTime due = atLocalTime(day, time);
        return due > localNow ? due : atLocalTime(day.addDays(daysInWeek), time);
    }
    case BackupInterval::MONTHLY: {
        if (dayOfX < 1 || dayOfX > 31) {
            return QDateTime();
        }
        const QDateTime due = atLocalTime(getDayOfMonth(today.year(), today.month(), dayOfX), time);
        if (due > localNow) {
            return due;
        }
        const QDate nextMonth = QDate(today.year(), today.month(), 1).addMonths(1);
        return atLocalTime(getDayOfMonth(nextMonth.year(), nextMonth.month(), dayOfX), time);
    }
    }
    return QDateTime();
}

bool operator==(const BackupScheduleConfiguration& left, const BackupScheduleConfiguration& right)
{
    return left.time == right.time && left.interval == right.interval && left.dayOfX == right.dayOfX
           && left.path == right.path && left.password == right.password;
}

bool operator!=(const BackupScheduleConfiguration& left, const BackupScheduleConfiguration& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
