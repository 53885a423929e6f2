#include "Domain/Types/ToleranceRangeHistory.h"

#include <QtTest>

using namespace zelmor::domain::types;

namespace {

QDateTime utc(int day, int hour)
{
    return QDateTime(QDate(2024, 3, day), QTime(hour, 0), Qt::UTC);
}

ToleranceRange range(float lower)
{
    return ToleranceRange(UnitValue(Unit::CELSIUS, lower), UnitValue(Unit::CELSIUS, lower + 1));
}

// Signal 1: ranges of 10 from 2 March 12:00 and of 20 from 4 March 12:00.
// Signal 2: one range of 30 from 6 March. Signal 3: nothing.
ToleranceRangeHistory history()
{
    ToleranceRangeHistory history;
    history[1].insert(utc(4, 12), range(20));
    history[1].insert(utc(2, 12), range(10));
    history[2].insert(utc(6, 0), range(30));
    history[3];
    return history;
}

} // namespace

class TestToleranceRangeHistory : public QObject
{
    Q_OBJECT

private slots:
    void rangesAt_data();
    void rangesAt();
};

void TestToleranceRangeHistory::rangesAt_data()
{
    QTest::addColumn<QDateTime>("time");
    QTest::addColumn<QString>("lowers");

    // Before a signal's first range, that first range; a signal without any: an
    // invalid one.
    QTest::newRow("before everything") << utc(1, 0) << "1:10 2:30 3:-";
    QTest::newRow("at the first") << utc(2, 12) << "1:10 2:30 3:-";
    QTest::newRow("a millisecond before the second") << utc(4, 12).addMSecs(-1) << "1:10 2:30 3:-";
    QTest::newRow("at the second") << utc(4, 12) << "1:20 2:30 3:-";
    QTest::newRow("after all") << utc(9, 0) << "1:20 2:30 3:-";
    // The same moment in another zone: 13:00 at UTC+1 is 12:00 UTC.
    QTest::newRow("given with an offset")
        << QDateTime(QDate(2024, 3, 4), QTime(13, 0), Qt::OffsetFromUTC, 3600) << "1:20 2:30 3:-";
}

void TestToleranceRangeHistory::rangesAt()
{
    QFETCH(QDateTime, time);
    QFETCH(QString, lowers);

    QStringList texts;
    const QMap<SignalId, ToleranceRange> ranges = getToleranceRangesAt(history(), time);
    for (auto entry = ranges.cbegin(); entry != ranges.cend(); ++entry) {
        const UnitValue& lower = entry.value().lower;
        texts.append(QStringLiteral("%1:%2").arg(entry.key()).arg(lower.isValid() ? lower.value.toString() : "-"));
    }
    QCOMPARE(texts.join(' '), lowers);
}

QTEST_GUILESS_MAIN(TestToleranceRangeHistory)
#include "tst_tolerancerangehistory.moc"
