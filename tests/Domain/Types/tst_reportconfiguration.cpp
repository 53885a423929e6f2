#include "Domain/Types/ReportConfiguration.h"

#include <QtTest>

using zelmor::domain::types::ReportConfiguration;

class TestReportConfiguration : public QObject
{
    Q_OBJECT

private slots:
    void chapters_data();
    void chapters();
};

void TestReportConfiguration::chapters_data()
{
    QTest::addColumn<int>("enabledChapters");
    // summary, release, notes, limit alarms, alarms, pictures, graphic, table
    QTest::addColumn<QString>("expected");

    QTest::newRow("none") << 0 << "00000000";
    QTest::newRow("bit 0") << 1 << "10000000";
    QTest::newRow("bit 1") << 2 << "01000000";
    QTest::newRow("bit 2") << 4 << "00100000";
    QTest::newRow("bit 3") << 8 << "00010000";
    QTest::newRow("bit 4") << 16 << "00001000";
    QTest::newRow("bit 5") << 32 << "00000100";
    QTest::newRow("bit 6") << 64 << "00000010";
    QTest::newRow("bit 7") << 128 << "00000001";
    QTest::newRow("all") << 255 << "11111111";
    QTest::newRow("bit 8 is no chapter") << 256 << "00000000";
    QTest::newRow("summary, alarms and table") << 145 << "10001001";
}

void TestReportConfiguration::chapters()
{
    QFETCH(int, enabledChapters);

    ReportConfiguration configuration;
    configuration.enabledChapters = enabledChapters;
    QString answers;
    for (const bool enabled :
         {configuration.isSummaryEnabled(), configuration.isReleaseEnabled(), configuration.isNotesEnabled(),
          configuration.isLimiAlarmsEnabled(), configuration.isAlarmEnabled(), configuration.isPicturesEnabled(),
          configuration.isGraphicEnabled(), configuration.isTableEnabled()}) {
        answers += enabled ? QLatin1Char('1') : QLatin1Char('0');
    }
    QTEST(answers, "expected");
}

QTEST_GUILESS_MAIN(TestReportConfiguration)
#include "tst_reportconfiguration.moc"
