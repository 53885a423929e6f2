#include "Base/Connection/DatabaseConnection/LruCache.h"
#include "Base/Connection/DatabaseConnection/SqlToleranceRangeCache.h"
#include "Domain/Types/RecordingId.h"

#include <QStringList>
#include <QThread>
#include <QtTest>

#include <atomic>
#include <memory>
#include <vector>

using zelmor::base::connection::databaseconnection::LruCache;
using zelmor::base::connection::databaseconnection::SqlToleranceRangeCache;
using zelmor::domain::types::RecordingId;
using zelmor::domain::types::ToleranceRange;
using zelmor::domain::types::ToleranceRangeHistory;

namespace {

using Cache = LruCache<int, QString>;

// Runs a script on a cache of capacity 10: "a3:2" adds key 3 with the value
// "v3" and cost 2, "g3" gets key 3, "r3" removes it, "c" clears. Gives what
// the gets found, "-" for a miss, and the keys by the cost they hold.
QString run(const QString& script)
{
    Cache cache(10);
    QStringList found;
    for (const QString& step : script.split(' ', Qt::SkipEmptyParts)) {
        const int key = step.mid(1).section(':', 0, 0).toInt();
        switch (step.at(0).toLatin1()) {
        case 'a':
            cache.add(key, QStringLiteral("v%1").arg(key), step.section(':', 1).toLongLong());
            break;
        case 'g': {
            const std::optional<QString> value = cache.find(key);
            found.append(value ? *value : QStringLiteral("-"));
            break;
        }
        case 'r':
            cache.remove(key);
            break;
        default:
            cache.clear();
        }
    }
    QStringList kept;
    for (int key = 0; key < 20; ++key) {
        if (cache.contains(key))
            kept.append(QString::number(key));
    }
    return QStringLiteral("%1 | %2 | %3 entries, cost %4")
        .arg(found.join(' '), kept.join(' '))
        .arg(cache.size())
        .arg(cache.getTotalCost());
}

} // namespace

class TestLruCache : public QObject
{
    Q_OBJECT

private slots:
    void scripts_data();
    void scripts();
    void getGivesDefaultForMiss();
    void toleranceRangeCacheHoldsFiftyChambers();
    void rowsByRecording();
    void concurrentReadersAndWriters();
};

void TestLruCache::scripts_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("result");

    QTest::newRow("empty") << "g1"
                           << "- |  | 0 entries, cost 0";
    QTest::newRow("fits") << "a1:4 a2:6 g1 g2"
                          << "v1 v2 | 1 2 | 2 entries, cost 10";
    // The least recently added goes first.
    QTest::newRow("one over") << "a1:4 a2:6 a3:1 g1"
                              << "- | 2 3 | 2 entries, cost 7";
    // A get makes its entry the most recent, so the other one goes.
    QTest::newRow("get protects") << "a1:4 a2:6 g1 a3:1 g2"
                                  << "v1 - | 1 3 | 2 entries, cost 5";
    // As many as it takes to make room.
    QTest::newRow("several evicted") << "a1:3 a2:3 a3:3 a4:9"
                                     << " | 4 | 1 entries, cost 9";
    // The same key replaces its entry, its old cost taken off first.
    QTest::newRow("replaced") << "a1:8 a1:9 g1"
                              << "v1 | 1 | 1 entries, cost 9";
    QTest::newRow("replaced by smaller") << "a1:8 a2:2 a1:1 a3:7"
                                         << " | 1 2 3 | 3 entries, cost 10";
    // Over the capacity alone: not kept, nor what the key held before.
    QTest::newRow("too big") << "a1:3 a2:3 a2:11 g2"
                             << "- | 1 | 1 entries, cost 3";
    // No cost: nothing happens at all.
    QTest::newRow("zero cost") << "a1:3 a1:0 g1"
                               << "v1 | 1 | 1 entries, cost 3";
    QTest::newRow("remove") << "a1:3 a2:3 r1 r5 g1"
                            << "- | 2 | 1 entries, cost 3";
    QTest::newRow("clear") << "a1:3 a2:3 c a3:1"
                           << " | 3 | 1 entries, cost 1";
}

void TestLruCache::scripts()
{
    QFETCH(QString, script);
    QFETCH(QString, result);

    QCOMPARE(run(script), result);
}

void TestLruCache::getGivesDefaultForMiss()
{
    LruCache<int, QStringList> cache(2);
    cache.add(1, {"a"}, 1);
    QCOMPARE(cache.get(1), QStringList{"a"});
    QCOMPARE(cache.get(2), QStringList());
    QCOMPARE(cache.getCapacity(), qint64(2));
}

void TestLruCache::toleranceRangeCacheHoldsFiftyChambers()
{
    SqlToleranceRangeCache cache;
    ToleranceRangeHistory history;
    history[101].insert(QDateTime(QDate(2024, 1, 1), QTime(0, 0), Qt::UTC), ToleranceRange());
    for (int chamber = 1; chamber <= 51; ++chamber)
        cache.add(chamber, chamber == 1 ? history : ToleranceRangeHistory());
    QCOMPARE(cache.size(), 50);
    QVERIFY(!cache.contains(1));
    // An empty history counts: a chamber without ranges needn't be read again.
    QVERIFY(cache.find(51).has_value());
}

// Rows of recordings, costing one each: a recording of more rows than the
// capacity isn't kept, an empty one changes nothing.
void TestLruCache::rowsByRecording()
{
    using Rows = QList<QList<QVariant>>;
    LruCache<RecordingId, Rows> cache(4);
    const Rows three = {{1}, {2}, {3}};
    cache.add(RecordingId(7), three, three.size());
    cache.add(RecordingId(8), Rows(), 0);
    cache.add(RecordingId(9), {{1}, {2}, {3}, {4}, {5}}, 5);
    QCOMPARE(cache.get(RecordingId(7)), three);
    QVERIFY(!cache.contains(RecordingId(8)) && !cache.contains(RecordingId(9)));
    cache.add(RecordingId(8), {{1}, {2}}, 2);
    QVERIFY(!cache.contains(RecordingId(7)));
    QCOMPARE(cache.getTotalCost(), qint64(2));
}

// Readers touch entries while a writer adds and clears: every value read is
// whole and the costs add up afterwards.
void TestLruCache::concurrentReadersAndWriters()
{
    LruCache<int, QStringList> cache(50);
    std::atomic<int> broken{0};
    std::vector<std::unique_ptr<QThread>> threads;
    for (int reader = 0; reader < 3; ++reader) {
        threads.emplace_back(QThread::create([&cache, &broken] {
            for (int round = 0; round < 20000; ++round) {
                const int key = round % 60;
                const std::optional<QStringList> value = cache.find(key);
                if (value && (value->size() != 2 || value->at(0) != QString::number(key)))
                    ++broken;
            }
        }));
    }
    threads.emplace_back(QThread::create([&cache] {
        for (int round = 0; round < 20000; ++round) {
            const int key = (round * 7) % 60;
            cache.add(key, {QString::number(key), QString::number(round)}, 1);
            if (round % 5000 == 4999)
                cache.clear();
        }
    }));
    for (const auto& thread : threads)
        thread->start();
    for (const auto& thread : threads)
        QVERIFY(thread->wait(60000));

    QCOMPARE(broken.load(), 0);
    QVERIFY(cache.size() <= 50);
    QCOMPARE(cache.getTotalCost(), qint64(cache.size()));
}

QTEST_GUILESS_MAIN(TestLruCache)
#include "tst_lrucache.moc"
