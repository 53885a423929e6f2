#include "Domain/Api/ApplicationTableProperties.h"
#include "Domain/Types/RecordingData.h"

#include <QtTest>

using zelmor::domain::types::ChamberSignal;
using zelmor::domain::types::FileFormat;
using zelmor::domain::types::RecordingData;
using zelmor::domain::types::RecordingId;

namespace {

RecordingData makeRecording()
{
    QMap<int, ChamberSignal> signalMap;
    signalMap.insert(7, ChamberSignal());
    return RecordingData(12, QStringLiteral("Long run"), 3, 4, 60, QDateTime(QDate(2024, 5, 10), QTime(8, 0), Qt::UTC),
                         QDateTime(QDate(2024, 5, 11), QTime(8, 0), Qt::UTC), true, false, QStringLiteral("info"),
                         QStringLiteral("free"), quint32(0), signalMap, QList<RecordingId>(), true, 1440);
}

} // namespace

class TestRecordingData : public QObject
{
    Q_OBJECT

private slots:
    void reportFlags_data();
    void reportFlags();
    void automaticReportConstructor();
    void diff_data();
    void diff();
};

void TestRecordingData::reportFlags_data()
{
    QTest::addColumn<uint>("initial");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("argument");
    QTest::addColumn<uint>("flags");
    QTest::addColumn<bool>("automated");
    QTest::addColumn<QString>("interval"); // the one interval question answered with true
    QTest::addColumn<int>("format");

    // bit 0 automated, bits 1-2 interval, bits 3-6 file format
    QTest::newRow("nothing") << 0u << "" << 0 << 0u << false << "daily" << 0;
    QTest::newRow("automated") << 0u << "automated" << 1 << 1u << true << "daily" << 0;
    QTest::newRow("weekly") << 0u << "weekly" << 0 << 2u << false << "weekly" << 0;
    QTest::newRow("monthly") << 0u << "monthly" << 0 << 4u << false << "monthly" << 0;
    QTest::newRow("on stop") << 0u << "on stop" << 0 << 6u << false << "on stop" << 0;
    QTest::newRow("daily after on stop") << 6u << "daily" << 0 << 0u << false << "daily" << 0;
    QTest::newRow("weekly after on stop") << 7u << "weekly" << 0 << 3u << true << "weekly" << 0;
    QTest::newRow("format 2") << 0u << "format" << 2 << 16u << false << "daily" << 2;
    QTest::newRow("format 15") << 0u << "format" << 15 << 120u << false << "daily" << 15;
    QTest::newRow("format 16 loses its high bit") << 0u << "format" << 16 << 0u << false << "daily" << 0;
    QTest::newRow("format 17 loses its high bit") << 0u << "format" << 17 << 8u << false << "daily" << 1;
    QTest::newRow("format replaced, the rest kept") << 127u << "format" << 1 << 15u << true << "on stop" << 1;
    QTest::newRow("automated off, the rest kept") << 127u << "automated" << 0 << 126u << false << "on stop" << 15;
    QTest::newRow("automated on twice") << 1u << "automated" << 1 << 1u << true << "daily" << 0;
    QTest::newRow("bits above 6 untouched") << 128u << "on stop" << 0 << 134u << false << "on stop" << 0;
    // 47 = 0b0101111: automated, interval 3, format 5
    QTest::newRow("read 47") << 47u << "" << 0 << 47u << true << "on stop" << 5;
}

void TestRecordingData::reportFlags()
{
    QFETCH(uint, initial);
    QFETCH(QString, operation);
    QFETCH(int, argument);
    QFETCH(QString, interval);

    RecordingData recording;
    recording.reportFlags = initial;
    if (operation == QLatin1String("automated")) {
        recording.setAutomatedReport(argument != 0);
    } else if (operation == QLatin1String("daily")) {
        recording.setDailyReport();
    } else if (operation == QLatin1String("weekly")) {
        recording.setWeeklyReport();
    } else if (operation == QLatin1String("monthly")) {
        recording.setMonthlyReport();
    } else if (operation == QLatin1String("on stop")) {
        recording.setCreateReportOnStop();
    } else if (operation == QLatin1String("format")) {
        recording.setFileFormat(FileFormat(argument));
    }

    QTEST(uint(recording.reportFlags), "flags");
    QTEST(recording.isAutomatedReportActive(), "automated");
    QCOMPARE(recording.isDailyReportActive(), interval == QLatin1String("daily"));
    QCOMPARE(recording.isWeeklyReportActive(), interval == QLatin1String("weekly"));
    QCOMPARE(recording.isMonthlyReportActive(), interval == QLatin1String("monthly"));
    QCOMPARE(recording.isCreateReportOnStopActive(), interval == QLatin1String("on stop"));
    QTEST(int(recording.getFileFormat()), "format");
}

void TestRecordingData::automaticReportConstructor()
{
    const RecordingData automatic(5, QStringLiteral("r"), 1, 2, 10, QDateTime(), QDateTime(), false, false, QString(),
                                  QString(), true, 99, QMap<int, ChamberSignal>());
    QCOMPARE(automatic.reportFlags, quint32(1));
    QCOMPARE(automatic.numberOfRecordsets, qint64(99));
    QVERIFY(automatic.isStartAllowed);

    const RecordingData manual(5, QStringLiteral("r"), 1, 2, 10, QDateTime(), QDateTime(), false, false, QString(),
                               QString(), false, 0, QMap<int, ChamberSignal>());
    QCOMPARE(manual.reportFlags, quint32(0));
}

void TestRecordingData::diff_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<uint>("expected");

    // the flags of the columns, as the recording store names them
    QTest::newRow("none") << "" << 0u;
    QTest::newRow("id") << "id" << 1u;
    QTest::newRow("name") << "name" << 2u;
    QTest::newRow("chamber") << "chamber" << 4u;
    QTest::newRow("user") << "user" << 8u;
    QTest::newRow("interval") << "interval" << 16u;
    QTest::newRow("start") << "start" << 32u;
    QTest::newRow("end") << "end" << 64u;
    QTest::newRow("active") << "active" << 128u;
    QTest::newRow("additional info") << "additional info" << 256u;
    QTest::newRow("free text") << "free text" << 512u;
    QTest::newRow("archived") << "archived" << 1024u;
    QTest::newRow("report flags") << "report" << 2048u;
    QTest::newRow("start allowed") << "start allowed" << 16384u;
    QTest::newRow("number of recordsets") << "count" << 32768u;
    QTest::newRow("name and end") << "name,end" << 66u;
    QTest::newRow("end invalid") << "no end" << 64u;
    // one moment, told in another time zone, is no change
    QTest::newRow("start in another zone") << "start elsewhere" << 0u;
    // no columns of the table
    QTest::newRow("signals") << "signals" << 0u;
    QTest::newRow("sub-recordings") << "sub-recordings" << 0u;
}

void TestRecordingData::diff()
{
    QFETCH(QString, field);
    QFETCH(uint, expected);

    const RecordingData base = makeRecording();
    RecordingData other = base;
    for (const QString& name : field.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        if (name == QLatin1String("id")) {
            other.id = 13;
        } else if (name == QLatin1String("name")) {
            other.name = QStringLiteral("Short run");
        } else if (name == QLatin1String("chamber")) {
            other.chamberId = -1;
        } else if (name == QLatin1String("user")) {
            other.userId = 0;
        } else if (name == QLatin1String("interval")) {
            other.secondsInterval = 61;
        } else if (name == QLatin1String("start")) {
            other.startTime = other.startTime.addSecs(1);
        } else if (name == QLatin1String("end")) {
            other.endTime = other.endTime.addSecs(-1);
        } else if (name == QLatin1String("no end")) {
            other.endTime = QDateTime();
        } else if (name == QLatin1String("active")) {
            other.isActive = false;
        } else if (name == QLatin1String("additional info")) {
            other.additionalInfo.clear();
        } else if (name == QLatin1String("free text")) {
            other.freeText = QStringLiteral("Free");
        } else if (name == QLatin1String("archived")) {
            other.isArchived = true;
        } else if (name == QLatin1String("report")) {
            other.setFileFormat(FileFormat(1));
        } else if (name == QLatin1String("start allowed")) {
            other.isStartAllowed = false;
        } else if (name == QLatin1String("count")) {
            other.numberOfRecordsets = 1441;
        } else if (name == QLatin1String("start elsewhere")) {
            other.startTime = other.startTime.toOffsetFromUtc(3 * 3600);
        } else if (name == QLatin1String("signals")) {
            other.chamberSignals.clear();
        } else if (name == QLatin1String("sub-recordings")) {
            other.subRecordings << 20 << 21;
        }
    }

    QCOMPARE(uint(base.diff(other)), expected);
    QCOMPARE(uint(other.diff(base)), expected);
    // equality also sees what diff leaves out
    QCOMPARE(base == other, field.isEmpty() || field == QLatin1String("start elsewhere"));
}

QTEST_GUILESS_MAIN(TestRecordingData)
#include "tst_recordingdata.moc"
