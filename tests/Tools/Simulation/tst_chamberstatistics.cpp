// What a chamber counts: requests, answers, errors, faults, and the bucket
// of each answer's latency.

#include "Tools/Simulation/ChamberStatistics.h"

#include <QtTest>

using zelmor::simulation::ChamberStatistics;
using zelmor::simulation::RequestFault;

class TestChamberStatistics : public QObject
{
    Q_OBJECT

private slots:
    void latencyBucket_data();
    void latencyBucket();
    void counts();
};

void TestChamberStatistics::latencyBucket_data()
{
    QTest::addColumn<qint64>("latencyNs");
    QTest::addColumn<int>("bucket");
    // Bounds: 0.1, 1, 5, 10, 20, 25, 50, 100, 250, 500 ms, 1, 2.5, 5, 10 s, then the rest.
    QTest::newRow("nothing") << qint64(0) << 0;
    QTest::newRow("below 0") << qint64(-5) << 0;
    QTest::newRow("on the first bound") << qint64(100000) << 0;
    QTest::newRow("just above it") << qint64(100001) << 1;
    QTest::newRow("a TLX answer on time") << qint64(20000000) << 4;
    QTest::newRow("a TLX answer a little late") << qint64(20400000) << 5;
    QTest::newRow("on the last bound") << qint64(10000000000) << 13;
    QTest::newRow("above every bound") << qint64(10000000001) << 14;
}

void TestChamberStatistics::latencyBucket()
{
    QFETCH(qint64, latencyNs);
    QFETCH(int, bucket);
    ChamberStatistics statistics;
    statistics.countAnswer(latencyNs, false);
    for (int index = 0; index < ChamberStatistics::latencyBucketCount_; ++index)
        QCOMPARE(statistics.getLatencyBuckets()[std::size_t(index)], quint64(index == bucket ? 1 : 0));
    QCOMPARE(statistics.getLatencySumNs(), qMax<qint64>(0, latencyNs));
}

void TestChamberStatistics::counts()
{
    ChamberStatistics statistics;
    for (int request = 0; request < 5; ++request)
        statistics.countRequest();
    statistics.countFault(RequestFault::Drop);
    statistics.countFault(RequestFault::Error);
    statistics.countFault(RequestFault::Error);
    statistics.countAnswer(1000, true);
    statistics.countAnswer(2000, true);
    statistics.countAnswer(3000, false);
    QCOMPARE(statistics.getRequests(), quint64(5));
    QCOMPARE(statistics.getAnswers(), quint64(3));
    QCOMPARE(statistics.getErrors(), quint64(2));
    QCOMPARE(statistics.getFaults(RequestFault::Drop), quint64(1));
    QCOMPARE(statistics.getFaults(RequestFault::Error), quint64(2));
    QCOMPARE(statistics.getFaults(RequestFault::Stray), quint64(0));
    QCOMPARE(statistics.getLatencySumNs(), qint64(6000));
}

QTEST_GUILESS_MAIN(TestChamberStatistics)
#include "tst_chamberstatistics.moc"
