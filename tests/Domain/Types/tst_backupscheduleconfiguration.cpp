#include "Domain/Types/BackupScheduleConfiguration.h"

#include <QtTest>

#include <ctime>

using zelmor::domain::types::BackupScheduleConfiguration;
namespace BackupInterval = zelmor::domain::types::BackupInterval;

class TestBackupScheduleConfiguration : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void getNextBackupDate_data();
    void getNextBackupDate();
    void oldConfiguration();
};

void TestBackupScheduleConfiguration::initTestCase()
{
    // the rule works in local time; a zone with daylight saving time shows it
    qputenv("TZ", "Europe/Berlin");
    tzset();
    QCOMPARE(QDateTime(QDate(2024, 1, 15), QTime(12, 0)).offsetFromUtc(), 3600);
    QCOMPARE(QDateTime(QDate(2024, 7, 15), QTime(12, 0)).offsetFromUtc(), 7200);
}

void TestBackupScheduleConfiguration::getNextBackupDate_data()
{
    QTest::addColumn<int>("interval");
    QTest::addColumn<int>("dayOfX");
    QTest::addColumn<QTime>("time");
    QTest::addColumn<QString>("now");
    QTest::addColumn<QString>("expected"); // empty: no date

    const int daily = BackupInterval::DAILY;
    const int weekly = BackupInterval::WEEKLY;
    const int monthly = BackupInterval::MONTHLY;
    const auto row = [](const char* name, int interval, int dayOfX, QTime time, const char* now, const char* expected) {
        QTest::newRow(name) << interval << dayOfX << time << QString::fromLatin1(now) << QString::fromLatin1(expected);
    };

    // Berlin: +01:00 in winter, +02:00 in summer; the clock jumped from 02:00 to
    // 03:00 on 31 March 2024 and from 03:00 back to 02:00 on 27 October 2024.
    row("daily, later today", daily, 0, QTime(22, 0), "2024-05-10T08:00:00+02:00", "2024-05-10T22:00:00+02:00");
    row("daily, passed", daily, 0, QTime(22, 0), "2024-05-10T23:00:00+02:00", "2024-05-11T22:00:00+02:00");
    row("daily, due this moment", daily, 0, QTime(22, 0), "2024-05-10T22:00:00+02:00", "2024-05-11T22:00:00+02:00");
    row("daily, last of January", daily, 0, QTime(2, 0), "2024-01-31T23:30:00+01:00", "2024-02-01T02:00:00+01:00");
    row("daily, new year", daily, 0, QTime(0, 0), "2023-12-31T23:59:59+01:00", "2024-01-01T00:00:00+01:00");
    row("daily, onto a leap day", daily, 0, QTime(3, 0), "2024-02-28T12:00:00+01:00", "2024-02-29T03:00:00+01:00");
    row("daily, common February", daily, 0, QTime(3, 0), "2023-02-28T12:00:00+01:00", "2023-03-01T03:00:00+01:00");
    // 21:30 UTC is 23:30 in Berlin, past 22:00 there
    row("daily, now in UTC, passed", daily, 0, QTime(22, 0), "2024-05-10T21:30:00Z", "2024-05-11T22:00:00+02:00");
    row("daily, now in UTC, ahead", daily, 0, QTime(22, 0), "2024-05-10T19:30:00Z", "2024-05-10T22:00:00+02:00");
    row("daily, across the spring change", daily, 0, QTime(12, 0), "2024-03-30T13:00:00+01:00",
        "2024-03-31T12:00:00+02:00");
    // 02:30 doesn't exist that night: as though the clock hadn't jumped, 01:30 UTC
    row("daily, time skipped in spring", daily, 0, QTime(2, 30), "2024-03-30T12:00:00+01:00",
        "2024-03-31T03:30:00+02:00");
    row("daily, after the skipped night", daily, 0, QTime(2, 30), "2024-03-31T04:00:00+02:00",
        "2024-04-01T02:30:00+02:00");
    // 02:30 comes twice that night: due the first time, 00:30 UTC, and once only
    row("daily, autumn, before the hour", daily, 0, QTime(2, 30), "2024-10-27T01:00:00+02:00",
        "2024-10-27T02:30:00+02:00");
    row("daily, autumn, first pass over", daily, 0, QTime(2, 30), "2024-10-27T02:45:00+02:00",
        "2024-10-28T02:30:00+01:00");
    row("daily, autumn, in the second pass", daily, 0, QTime(2, 30), "2024-10-27T02:15:00+01:00",
        "2024-10-28T02:30:00+01:00");
    row("daily, autumn, the day before", daily, 0, QTime(2, 30), "2024-10-26T12:00:00+02:00",
        "2024-10-27T02:30:00+02:00");

    // 8 May 2024 is a Wednesday; days 1 Monday to 7 Sunday
    row("weekly, later this week", weekly, 5, QTime(9, 0), "2024-05-08T10:00:00+02:00", "2024-05-10T09:00:00+02:00");
    row("weekly, today, ahead", weekly, 3, QTime(9, 0), "2024-05-08T08:00:00+02:00", "2024-05-08T09:00:00+02:00");
    row("weekly, today, passed", weekly, 3, QTime(9, 0), "2024-05-08T10:00:00+02:00", "2024-05-15T09:00:00+02:00");
    row("weekly, earlier weekday", weekly, 1, QTime(9, 0), "2024-05-08T10:00:00+02:00", "2024-05-13T09:00:00+02:00");
    row("weekly, across a month end", weekly, 1, QTime(9, 0), "2024-01-31T12:00:00+01:00", "2024-02-05T09:00:00+01:00");
    row("weekly, Sunday across new year", weekly, 7, QTime(18, 0), "2023-12-31T20:00:00+01:00",
        "2024-01-07T18:00:00+01:00");
    row("weekly, onto a leap day", weekly, 4, QTime(9, 0), "2024-02-26T10:00:00+01:00", "2024-02-29T09:00:00+01:00");
    row("weekly, across the spring change", weekly, 1, QTime(8, 0), "2024-03-30T12:00:00+01:00",
        "2024-04-01T08:00:00+02:00");
    row("weekly, onto the skipped hour", weekly, 7, QTime(2, 30), "2024-03-28T12:00:00+01:00",
        "2024-03-31T03:30:00+02:00");
    row("weekly, day 0", weekly, 0, QTime(9, 0), "2024-05-08T10:00:00+02:00", "");
    row("weekly, day 8", weekly, 8, QTime(9, 0), "2024-05-08T10:00:00+02:00", "");

    row("monthly, later this month", monthly, 15, QTime(1, 0), "2024-05-10T12:00:00+02:00",
        "2024-05-15T01:00:00+02:00");
    row("monthly, today, ahead", monthly, 15, QTime(1, 0), "2024-05-15T00:30:00+02:00", "2024-05-15T01:00:00+02:00");
    row("monthly, passed", monthly, 15, QTime(1, 0), "2024-05-20T12:00:00+02:00", "2024-06-15T01:00:00+02:00");
    // a month too short for the day takes its last day
    row("monthly, 31 in April", monthly, 31, QTime(1, 0), "2024-04-10T12:00:00+02:00", "2024-04-30T01:00:00+02:00");
    row("monthly, 31 into a leap February", monthly, 31, QTime(1, 0), "2024-01-31T12:00:00+01:00",
        "2024-02-29T01:00:00+01:00");
    row("monthly, 31 into a common February", monthly, 31, QTime(1, 0), "2023-01-31T12:00:00+01:00",
        "2023-02-28T01:00:00+01:00");
    row("monthly, 29 in a common February", monthly, 29, QTime(1, 0), "2023-02-01T12:00:00+01:00",
        "2023-02-28T01:00:00+01:00");
    row("monthly, 30 after the leap day", monthly, 30, QTime(1, 0), "2024-02-29T12:00:00+01:00",
        "2024-03-30T01:00:00+01:00");
    row("monthly, 31 on the 31st, passed", monthly, 31, QTime(1, 0), "2024-03-31T12:00:00+02:00",
        "2024-04-30T01:00:00+02:00");
    row("monthly, December to January", monthly, 5, QTime(1, 0), "2023-12-20T12:00:00+01:00",
        "2024-01-05T01:00:00+01:00");
    row("monthly, onto the skipped hour", monthly, 31, QTime(2, 30), "2024-03-10T12:00:00+01:00",
        "2024-03-31T03:30:00+02:00");
    row("monthly, day 0", monthly, 0, QTime(1, 0), "2024-05-10T12:00:00+02:00", "");
    row("monthly, day 32", monthly, 32, QTime(1, 0), "2024-05-10T12:00:00+02:00", "");

    row("no time", daily, 0, QTime(), "2024-05-10T12:00:00+02:00", "");
    row("unknown interval", 3, 1, QTime(1, 0), "2024-05-10T12:00:00+02:00", "");
}

void TestBackupScheduleConfiguration::getNextBackupDate()
{
    QFETCH(int, interval);
    QFETCH(int, dayOfX);
    QFETCH(QTime, time);
    QFETCH(QString, now);
    QFETCH(QString, expected);

    const QDateTime nowTime = QDateTime::fromString(now, Qt::ISODate);
    QVERIFY(nowTime.isValid());
    const BackupScheduleConfiguration configuration(time, BackupInterval::Interval(interval), dayOfX,
                                                    QStringLiteral("/backup"), QString());
    const QDateTime next = configuration.getNextBackupDate(nowTime);

    if (expected.isEmpty()) {
        QVERIFY(!next.isValid());
        return;
    }
    const QDateTime expectedTime = QDateTime::fromString(expected, Qt::ISODate);
    QVERIFY(next.isValid());
    QCOMPARE(next.timeSpec(), Qt::LocalTime);
    // the same moment, and the clock in Berlin shows what was worked out
    QCOMPARE(next.toUTC(), expectedTime.toUTC());
    QCOMPARE(next.offsetFromUtc(), expectedTime.offsetFromUtc());
}

void TestBackupScheduleConfiguration::oldConfiguration()
{
    BackupScheduleConfiguration configuration(QTime(1, 0), BackupInterval::WEEKLY, 3, QStringLiteral("/old"),
                                              QStringLiteral("secret"));
    configuration.setOldConfiguration(configuration);
    configuration.setBackupTime(QTime(2, 0));
    configuration.setBackupInterval(BackupInterval::MONTHLY);
    configuration.setDayOfX(28);
    configuration.setBackupPath(QStringLiteral("/new"));

    QCOMPARE(configuration.getOldBackupTime(), QTime(1, 0));
    QCOMPARE(configuration.getOldBackupInterval(), BackupInterval::WEEKLY);
    QCOMPARE(configuration.getOldDayOfX(), 3);
    QCOMPARE(configuration.getOldBackupPath(), QStringLiteral("/old"));
    QCOMPARE(configuration.getBackupPath(), QStringLiteral("/new"));
    // the earlier values take no part in a comparison
    QCOMPARE(configuration, BackupScheduleConfiguration(QTime(2, 0), BackupInterval::MONTHLY, 28,
                                                        QStringLiteral("/new"), QStringLiteral("secret")));
}

QTEST_GUILESS_MAIN(TestBackupScheduleConfiguration)
#include "tst_backupscheduleconfiguration.moc"
