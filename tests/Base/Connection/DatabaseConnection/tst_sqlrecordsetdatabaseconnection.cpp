#include "Base/Connection/DatabaseConnection/SqlChamberDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlConfigurationDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlRecordsetConversion.h"
#include "Base/Connection/DatabaseConnection/SqlRecordsetDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlRoomDatabaseConnection.h"
#include "Domain/Types/ChamberId.h"
#include "Domain/Types/RecordingId.h"
#include "Domain/Types/Recordset.h"
#include "Domain/Types/RecordsetComment.h"
#include "Domain/Types/RecordsetId.h"
#include "Domain/Types/TimeSpan.h"
#include "Domain/Types/ToleranceRange.h"
#include "Domain/Types/ToleranceRangeHistory.h"
#include "support/ChildRun.h"
#include "support/SampleCatalogue.h"
#include "support/StoreFixture.h"
#include "support/TestDatabase.h"

#include <QLoggingCategory>
#include <QMutex>
#include <QSet>
#include <QThread>
#include <QtTest>

#include <memory>

using zelmor::base::connection::databaseconnection::SqlChamberDatabaseConnection;
using zelmor::base::connection::databaseconnection::SqlConfigurationDatabaseConnection;
using zelmor::base::connection::databaseconnection::SqliteConnection;
using zelmor::base::connection::databaseconnection::SqlQuery;
using zelmor::base::connection::databaseconnection::SqlRecordsetConversion;
using zelmor::base::connection::databaseconnection::SqlRecordsetDatabaseConnection;
using zelmor::base::connection::databaseconnection::SqlRoomDatabaseConnection;
using zelmor::domain::api::ISqlConnection;
using zelmor::testsupport::ApplicationFiles;
using zelmor::testsupport::ChildRun;
using zelmor::testsupport::CuttingConnection;
using zelmor::testsupport::errorCodes;
using zelmor::testsupport::TestDatabase;
using namespace zelmor::domain::types;

using Store = SqlRecordsetDatabaseConnection;
using Fixture = zelmor::testsupport::StoreFixture<Store>;
using Failures = zelmor::testsupport::FailureTable<Store>;
using Operation = Failures::Operation;
Q_DECLARE_METATYPE(Operation)

namespace {

// The chamber store, noting the thread of every call the recordset store
// makes of it.
class NotingChamberStore : public SqlChamberDatabaseConnection
{
public:
    QMap<SignalId, ToleranceRange> getToleranceRanges(const QDateTime& time, const RecordingId& recording,
                                                      const QMap<int, ChamberSignal>& signalMap) override
    {
        note();
        return SqlChamberDatabaseConnection::getToleranceRanges(time, recording, signalMap);
    }
    ToleranceRangeHistory getToleranceRangeHistory(const RecordingId& recording,
                                                   const QMap<int, ChamberSignal>& signalMap) override
    {
        note();
        return SqlChamberDatabaseConnection::getToleranceRangeHistory(recording, signalMap);
    }

    void note()
    {
        QMutexLocker lock(&mutex);
        threads.insert(QThread::currentThread());
        ++calls;
    }

    QMutex mutex;
    QSet<QThread*> threads;
    int calls = 0;
};

// The catalogue every fixture's stores read; the chamber store and its room
// store of the fixture wired last, on that fixture's connection.
SqlConfigurationDatabaseConnection* catalogue = nullptr;
std::unique_ptr<SqlRoomDatabaseConnection> roomStore;
std::unique_ptr<NotingChamberStore> chamberStore;

} // namespace

template<>
struct zelmor::testsupport::StoreWiring<Store>
{
    static bool wire(Store& store, ISqlConnection* connection)
    {
        roomStore = std::make_unique<SqlRoomDatabaseConnection>();
        chamberStore = std::make_unique<NotingChamberStore>();
        roomStore->setDependencies(connection);
        chamberStore->setDependencies(connection, catalogue, roomStore.get());
        return store.setDependencies(connection, catalogue, chamberStore.get());
    }
};

namespace {

// Recording 7 on chamber 1 records 101 (PV_Temperature, °C) in signal_2, 102
// (PV_Humidity, % r.F.) in signal_1 and 131 (PV_Door_Open, a switch) in
// signal_3. Its rows 100 to 109 are taken at 10:00, 10:01, ... 10:09 UTC on
// 1 March 2024; row 100 + k holds 50 + k humidity, 20.5 + k degrees (none in
// row 104), the door open in odd rows, which also came from the chamber; an
// alarm in row 106, camera images in rows 102 and 105, all in manual mode.
// Row 103 has a comment. Recording 8 has no mapping and no rows.
const QString commonRows = QStringLiteral(
    "INSERT INTO chamber (id, chamber_name) VALUES (1, 'C1');"
    "INSERT INTO recording (id, recording_name, chamber_id) VALUES (7, 'R7', 1), (8, 'R8', 1), (9, 'R9', 1),"
    " (10, 'R10', 1);"
    "INSERT INTO recording_has_signal_column VALUES (7, 101, 2), (7, 102, 1), (7, 131, 3);"
    "WITH RECURSIVE n(k) AS (SELECT 0 UNION ALL SELECT k + 1 FROM n WHERE k < 9)"
    " INSERT INTO record_set (id, record_time, is_retrieved_from_chamber, recording_id, signal_1, signal_2,"
    " signal_3, alarm_type, camera_image_path, chamber_mode)"
    " SELECT 100 + k, printf('2024-03-01T10:%02d:00.000Z', k), k % 2, 7, 50 + k,"
    " CASE k WHEN 4 THEN NULL ELSE 20.5 + k END, k % 2, CASE k WHEN 6 THEN 2 END,"
    " CASE WHEN k IN (2, 5) THEN printf('/img/%d.png', k) END, 1 FROM n;"
    "INSERT INTO record_set_comment VALUES (103, 5, '2024-03-02T08:00:00.000Z', 'door left open');"
    "INSERT INTO tolerance_range VALUES ('2024-03-01T10:03:00.000Z', 1, 101, 1, 15.0, 25.0),"
    " ('2024-03-01T10:06:00.000Z', 1, 101, 1, 18.0, 22.0);");

// Minutes after 10:00 UTC on 1 March 2024.
QDateTime utc(int minute, int second = 0)
{
    return QDateTime(QDate(2024, 3, 1), QTime(10, 0), Qt::UTC).addSecs(60 * minute + second);
}

// Temperature ranges of chamber 1: 15 to 25 °C from 10:03, 18 to 22 °C from
// 10:06; the humidity and the door have none.
ToleranceRange firstRange()
{
    return ToleranceRange(UnitValue(Unit::CELSIUS, 15.0f), UnitValue(Unit::CELSIUS, 25.0f), ToleranceRange::ABSOLUTE);
}

ToleranceRange secondRange()
{
    return ToleranceRange(UnitValue(Unit::CELSIUS, 18.0f), UnitValue(Unit::CELSIUS, 22.0f), ToleranceRange::ABSOLUTE);
}

// "100 103 106", or "-" for none.
QString ids(const QList<Recordset>& recordsets)
{
    QStringList texts;
    for (const Recordset& recordset : recordsets) {
        texts.append(QString::number(int(recordset.id)));
    }
    return texts.isEmpty() ? QStringLiteral("-") : texts.join(QLatin1Char(' '));
}

// The value of one signal of a recordset, as text: "-" without a value.
QString valueOf(const Recordset& recordset, SignalId signal)
{
    for (const SignalValuePair& pair : recordset.values) {
        if (pair.signalId == signal) {
            return pair.hasValue() ? pair.value.value.toString() : QStringLiteral("-");
        }
    }
    return QStringLiteral("missing");
}

QString commentOf(const Recordset& recordset)
{
    return recordset.comment.isValid() ? recordset.comment.text : QStringLiteral("-");
}

// A recordset of recording 9, whose 27 signals 201 to 227 lie in signal_1 to
// signal_27: 33 columns in an insert. Signal 200 + j has the value 100 * index + j.
Recordset wideRecordset(int index, const RecordingId& recording = 9)
{
    QList<SignalValuePair> values;
    for (int j = 1; j <= 27; ++j) {
        values.append(SignalValuePair(200 + j, UnitValue(Unit::CELSIUS, float(100 * index + j))));
    }
    return Recordset(-1, recording, utc(20).addSecs(index), values, true, RecordsetComment(), RecordsetAlarm::NO_ALARM,
                     QString(), ChamberOperationMode::MANUAL);
}

const QString wideMapping =
    QStringLiteral("WITH RECURSIVE n(j) AS (SELECT 1 UNION ALL SELECT j + 1 FROM n WHERE j < 27)"
                   " INSERT INTO recording_has_signal_column SELECT 9, 200 + j, j FROM n;");

} // namespace

class TestSqlRecordsetDatabaseConnection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void positionalReads_data();
    void positionalReads();
    void spanReads_data();
    void spanReads();
    void imageReads_data();
    void imageReads();
    void rowDecoding();
    void latestAndPrevious();
    void streamedRead();
    void rowCache_data();
    void rowCache();
    void writes();
    void mapping();
    void tooManySignals();
    void bulkStatements();
    void bulkFailure();
    void killedInTheMiddle();
    void parallelConversion();
    void badInput_data();
    void badInput();

private:
    ApplicationFiles files{commonRows};
    QString cataloguePath;
    SqliteConnection catalogueConnection{QStringLiteral("recordset_test_catalogue")};
    SqlConfigurationDatabaseConnection catalogueStore;
};

void TestSqlRecordsetDatabaseConnection::initTestCase()
{
    qRegisterMetaType<DatabaseConnectionError>();
    QLoggingCategory::setFilterRules(QStringLiteral("zelmor.*=false"));
    QVERIFY(files.isValid());
    cataloguePath = zelmor::testsupport::createSampleCatalogue(files.database());
    QVERIFY2(!cataloguePath.isEmpty(), qPrintable(files.database().lastError()));
    QVERIFY(catalogueConnection.openDatabase(cataloguePath, QString(), QString(),
                                             QLatin1String(TestDatabase::projectKey_)));
    QVERIFY(catalogueStore.setDependencies(&catalogueConnection));
    catalogue = &catalogueStore;
}

void TestSqlRecordsetDatabaseConnection::positionalReads_data()
{
    QTest::addColumn<qlonglong>("start");
    QTest::addColumn<qlonglong>("end");
    QTest::addColumn<qlonglong>("maxCount");
    QTest::addColumn<QString>("rows");

    const QString all = QStringLiteral("100 101 102 103 104 105 106 107 108 109");
    // Picks k * (rows - 1) / (maxCount - 1), over all 10 rows or the first end ones.
    QTest::newRow("4 of 10") << 0LL << 0LL << 4LL << "100 103 106 109";
    QTest::newRow("3 of 10") << 0LL << 0LL << 3LL << "100 104 109";
    QTest::newRow("1 of 10") << 0LL << 0LL << 1LL << "100";
    QTest::newRow("10 of 10") << 0LL << 0LL << 10LL << all;
    QTest::newRow("more than there are") << 0LL << 0LL << 11LL << all;
    QTest::newRow("none") << 0LL << 0LL << 0LL << "-";
    QTest::newRow("below -1") << 0LL << 0LL << -2LL << "-";
    QTest::newRow("all, on the pool") << 0LL << 0LL << -1LL << all;
    QTest::newRow("end 5, all of them, end not looked at") << 0LL << 5LL << -1LL << all;
    QTest::newRow("end 5, none") << 0LL << 5LL << 0LL << "-";
    QTest::newRow("end 5, more than end") << 0LL << 5LL << 6LL << "100 101 102 103 104";
    QTest::newRow("end 5, 3 of them") << 0LL << 5LL << 3LL << "100 102 104";
    QTest::newRow("end 7, 3 of them") << 0LL << 7LL << 3LL << "100 103 106";
    QTest::newRow("end 10, 5 of them") << 0LL << 10LL << 5LL << "100 102 104 106 109";
    // A start other than 0 returns only when it lies outside the rows or behind end.
    QTest::newRow("start behind the rows") << 10LL << 20LL << -1LL << "-";
    QTest::newRow("start behind end") << 3LL << 2LL << 4LL << "-";
}

void TestSqlRecordsetDatabaseConnection::positionalReads()
{
    QFETCH(qlonglong, start);
    QFETCH(qlonglong, end);
    QFETCH(qlonglong, maxCount);
    QFETCH(QString, rows);

    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    QSignalSpy errors(&fixture.store, &Store::error);

    QCOMPARE(ids(fixture.store.getRecordsets(RecordingId(7), start, end, maxCount)), rows);
    // The second time from the row cache.
    QCOMPARE(ids(fixture.store.getRecordsets(RecordingId(7), start, end, maxCount)), rows);
    // A recording without rows has none to give; with an end, its missing rows would stop the program.
    if (end <= 0) {
        QCOMPARE(ids(fixture.store.getRecordsets(RecordingId(8), start, end, maxCount)), QStringLiteral("-"));
    }
    QCOMPARE(errors.count(), 0);
}

void TestSqlRecordsetDatabaseConnection::spanReads_data()
{
    QTest::addColumn<TimeSpan>("span");
    QTest::addColumn<qlonglong>("maxCount");
    QTest::addColumn<QString>("rows");

    const QString all = QStringLiteral("100 101 102 103 104 105 106 107 108 109");
    QTest::newRow("all time, -1: nothing") << TimeSpan() << -1LL << "-";
    QTest::newRow("all time, 3 spread") << TimeSpan() << 3LL << "100 104 109";
    QTest::newRow("closed") << TimeSpan(utc(2), utc(4)) << -1LL << "102 103 104";
    QTest::newRow("within a minute") << TimeSpan(utc(2, 30), utc(4)) << -1LL << "103 104";
    QTest::newRow("around all rows") << TimeSpan(utc(-5), utc(20)) << -1LL << all;
    QTest::newRow("exactly the first and last row") << TimeSpan(utc(0), utc(9)) << -1LL << all;
    QTest::newRow("open start") << TimeSpan(QDateTime(), utc(3)) << -1LL << "100 101 102 103";
    QTest::newRow("open end") << TimeSpan(utc(7), QDateTime()) << -1LL << "107 108 109";
    QTest::newRow("after all rows") << TimeSpan(utc(11), utc(20)) << -1LL << "-";
    QTest::newRow("closed, 0 more") << TimeSpan(utc(2), utc(4)) << 0LL << "102 103 104";
    // The spread over all rows is appended behind the rows of the span.
    QTest::newRow("closed, 3 spread behind") << TimeSpan(utc(2), utc(4)) << 3LL << "102 103 104 100 104 109";
    QTest::newRow("open end, all behind") << TimeSpan(utc(7), QDateTime()) << 11LL << "107 108 109 " + all;
}

void TestSqlRecordsetDatabaseConnection::spanReads()
{
    QFETCH(TimeSpan, span);
    QFETCH(qlonglong, maxCount);
    QFETCH(QString, rows);

    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    QCOMPARE(ids(fixture.store.getRecordsets(RecordingId(7), span, maxCount)), rows);
    QCOMPARE(ids(fixture.store.getRecordsets(RecordingId(7), span, maxCount)), rows);
}

void TestSqlRecordsetDatabaseConnection::imageReads_data()
{
    QTest::addColumn<TimeSpan>("span");
    QTest::addColumn<qlonglong>("maxCount");
    QTest::addColumn<QString>("rows");

    // Rows 102 and 105 have an image.
    QTest::newRow("all time, -1: nothing") << TimeSpan() << -1LL << "-";
    QTest::newRow("all time, 1") << TimeSpan() << 1LL << "102";
    QTest::newRow("around all rows") << TimeSpan(utc(0), utc(9)) << -1LL << "102 105";
    QTest::newRow("from 10:03") << TimeSpan(utc(3), utc(9)) << -1LL << "105";
    QTest::newRow("from 10:03, all behind") << TimeSpan(utc(3), utc(9)) << 5LL << "105 102 105";
}

void TestSqlRecordsetDatabaseConnection::imageReads()
{
    QFETCH(TimeSpan, span);
    QFETCH(qlonglong, maxCount);
    QFETCH(QString, rows);

    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    QCOMPARE(ids(fixture.store.getRecordsetsWithImagePath(RecordingId(7), span, maxCount)), rows);
}

void TestSqlRecordsetDatabaseConnection::rowDecoding()
{
    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    Store& store = fixture.store;

    // Row 103 at 10:03, exactly when the first range takes effect.
    const Recordset row = store.getRecordset(103);
    const auto pair = [](SignalId signal, const UnitValue& value, const ToleranceRange& range) {
        return SignalValuePair(signal, value, UnitValue(), QSharedPointer<ToleranceRange>::create(range));
    };
    const Recordset expected(
        103, 7, utc(3),
        {pair(101, UnitValue(Unit::CELSIUS, 23.5f), firstRange()),
         pair(102, UnitValue(Unit::RELATIVE_HUMIDITY_RF, 53.0f), ToleranceRange()),
         pair(131, UnitValue(Unit::BOOLEAN, true), ToleranceRange())},
        true, RecordsetComment(QDateTime(QDate(2024, 3, 2), QTime(8, 0), Qt::UTC), 5, 103, "door left open"),
        RecordsetAlarm::NO_ALARM, QString(), ChamberOperationMode::MANUAL);
    QCOMPARE(row, expected);
    QCOMPARE(row.time.timeSpec(), Qt::LocalTime);
    QCOMPARE(row.time.toString(Qt::ISODate), QStringLiteral("2024-03-01T11:03:00"));
    QCOMPARE(row.comment.time.timeSpec(), Qt::LocalTime);

    // A NULL column is a value-less pair, not 0; rows before the first range
    // have the first one, rows from 10:06 the second.
    const QList<Recordset> all = store.getRecordsets(RecordingId(7), 0, 0, -1);
    QCOMPARE(all.size(), 10);
    QVERIFY(!all.at(4).values.at(0).hasValue());
    QCOMPARE(all.at(4).values.at(0).value.unit, Unit::CELSIUS);
    QCOMPARE(valueOf(all.at(4), 102), QStringLiteral("54"));
    QCOMPARE(*all.at(0).values.at(0).toleranceRange, firstRange());
    QCOMPARE(*all.at(5).values.at(0).toleranceRange, firstRange());
    QCOMPARE(*all.at(6).values.at(0).toleranceRange, secondRange());
    QCOMPARE(*all.at(9).values.at(0).toleranceRange, secondRange());
    QCOMPARE(all.at(6).alarm, RecordsetAlarm::ALARM);
    QCOMPARE(all.at(5).cameraImagePath, QStringLiteral("/img/5.png"));
    QCOMPARE(valueOf(all.at(5), 131), QStringLiteral("true"));
    QCOMPARE(valueOf(all.at(6), 131), QStringLiteral("false"));
    QCOMPARE(all.at(3), expected);

    // Each value has its own range object.
    QVERIFY(all.at(0).values.at(0).toleranceRange != all.at(1).values.at(0).toleranceRange);
    QCOMPARE(store.getRecordset(99).id, RecordsetId(-1));
    QCOMPARE(store.getRecordsetComment(103),
             RecordsetComment(QDateTime(QDate(2024, 3, 2), QTime(8, 0), Qt::UTC), 5, 103, "door left open"));
    QCOMPARE(store.getRecordsetComment(104), RecordsetComment());
    QCOMPARE(store.getRecordsetLenght(7), 10LL);
    QCOMPARE(store.getRecordsetLenght(8), 0LL);

    // A row without a time counts as older than every range.
    QCOMPARE(files.shell(path, "INSERT INTO record_set (id, recording_id, signal_2) VALUES (150, 7, 1.5);"), QString());
    const Recordset timeless = store.getRecordset(150);
    QVERIFY(!timeless.time.isValid());
    QCOMPARE(*timeless.values.at(0).toleranceRange, firstRange());
}

void TestSqlRecordsetDatabaseConnection::latestAndPrevious()
{
    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    Store& store = fixture.store;

    QCOMPARE(ids(store.getLatestNRecordsets(7, 3, QDateTime())), QStringLiteral("109 108 107"));
    QCOMPARE(ids(store.getLatestNRecordsets(7, 3, utc(5))), QStringLiteral("104 103 102"));
    QCOMPARE(ids(store.getLatestNRecordsets(7, 0, QDateTime())), QStringLiteral("-"));
    QCOMPARE(ids(store.getLatestNRecordsets(8, 3, QDateTime())), QStringLiteral("-"));
    QCOMPARE(ids(store.getNRecordsets(7, 2, 105)), QStringLiteral("104 103"));
    QCOMPARE(ids(store.getNRecordsets(7, 5, 101)), QStringLiteral("100"));
    QCOMPARE(commentOf(store.getLatestNRecordsets(7, 7, QDateTime()).last()), QStringLiteral("door left open"));
}

void TestSqlRecordsetDatabaseConnection::streamedRead()
{
    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    Store& store = fixture.store;

    const auto mapping = store.getRecordingSignalsAndColumnNames(RecordingId(7));
    const QStringList columns = SqlRecordsetConversion::prepareColumnNames(mapping.second, false);
    SqlQuery query;
    query.selectColumns(columns).fromTable("record_set").whereColumn("recording_id").equals(7).orderBy("id");

    QCOMPARE(ids(store.getRecordsets(query, columns.size(), mapping.first, -1, -1)),
             QStringLiteral("100 101 102 103 104 105 106 107 108 109"));
    // The rows at the running index (recordsets so far) * total / (wanted - 1):
    // 0, 10 / 3 = 3, 20 / 3 = 6; 30 / 3 = 10 is past the rows.
    QCOMPARE(ids(store.getRecordsets(query, columns.size(), mapping.first, 10, 4)), QStringLiteral("100 103 106"));
    QCOMPARE(ids(store.getRecordsets(query, columns.size(), mapping.first, 9, 4)), QStringLiteral("100 103 106 109"));
    // Rows of another width don't convert and aren't given.
    QCOMPARE(ids(store.getRecordsets(query, columns.size() + 1, mapping.first, -1, -1)), QStringLiteral("-"));
}

void TestSqlRecordsetDatabaseConnection::rowCache_data()
{
    QTest::addColumn<int>("capacity");
    QTest::addColumn<QString>("write");
    QTest::addColumn<QString>("afterChange"); // humidity of row 100 after the file changed underneath
    QTest::addColumn<QString>("afterWrite");  // ... and after the store's own write

    // The file's row 100 gets 99 % behind the store's back; a write through
    // the store drops the recording's entry, so that the next read sees it.
    QTest::newRow("cached, nothing written") << Store::rowCacheCapacity_ << "none"
                                             << "50"
                                             << "50";
    QTest::newRow("over the capacity: read every time") << 9 << "none"
                                                        << "99"
                                                        << "99";
    QTest::newRow("exactly the capacity: cached") << 10 << "none"
                                                  << "50"
                                                  << "50";
    QTest::newRow("a comment added") << Store::rowCacheCapacity_ << "add comment"
                                     << "50"
                                     << "99";
    QTest::newRow("a comment deleted") << Store::rowCacheCapacity_ << "delete comment"
                                       << "50"
                                       << "99";
    QTest::newRow("a recordset added") << Store::rowCacheCapacity_ << "add recordset"
                                       << "50"
                                       << "99";
    QTest::newRow("a recordset deleted: kept") << Store::rowCacheCapacity_ << "delete recordset"
                                               << "50"
                                               << "50";
    QTest::newRow("all recordsets deleted: kept") << Store::rowCacheCapacity_ << "delete all"
                                                  << "50"
                                                  << "50";
    QTest::newRow("a bulk insert: kept") << Store::rowCacheCapacity_ << "bulk"
                                         << "50"
                                         << "50";
}

void TestSqlRecordsetDatabaseConnection::rowCache()
{
    QFETCH(int, capacity);
    QFETCH(QString, write);
    QFETCH(QString, afterChange);
    QFETCH(QString, afterWrite);

    // Without the comment, so that the rows can be deleted.
    const QString path = files.create(QStringLiteral("DELETE FROM record_set_comment;"));
    QVERIFY(!path.isEmpty());
    Fixture fixture(path, QLatin1String(TestDatabase::projectKey_), nullptr, capacity);
    QVERIFY(fixture.opened);
    Store& store = fixture.store;
    const auto humidity = [&] { return valueOf(store.getRecordsets(RecordingId(7), 0, 0, -1).value(0), 102); };

    QCOMPARE(humidity(), QStringLiteral("50"));
    QCOMPARE(files.shell(path, "UPDATE record_set SET signal_1 = 99 WHERE id = 100;"), QString());
    QCOMPARE(humidity(), afterChange);

    Recordset added(-1, 7, utc(10), {SignalValuePair(101, UnitValue(Unit::CELSIUS, 30.0f))}, false, RecordsetComment(),
                    RecordsetAlarm::NO_ALARM, QString(), ChamberOperationMode::MANUAL);
    QList<Recordset> bulk = {added};
    if (write == "add comment") {
        QVERIFY(store.addRecordsetComment(RecordsetComment(utc(30), 3, 101, "checked")));
    } else if (write == "delete comment") {
        QVERIFY(store.deleteRecordsetComment(101));
    } else if (write == "add recordset") {
        QVERIFY(store.addRecordset(added));
    } else if (write == "delete recordset") {
        QVERIFY(store.deleteRecordset(101));
    } else if (write == "delete all") {
        QVERIFY(store.deleteAllRecordsets(7));
    } else if (write == "bulk") {
        QVERIFY(store.addRecordsToQuery(bulk));
    }
    QCOMPARE(humidity(), afterWrite);

    // What the cache still shows of the deleted rows; the file has them no more.
    if (write == "delete recordset") {
        QCOMPARE(ids(store.getRecordsets(RecordingId(7), 0, 0, -1)),
                 QStringLiteral("100 101 102 103 104 105 106 107 108 109"));
        QCOMPARE(store.getRecordset(101).id, RecordsetId(-1));
        QCOMPARE(store.getRecordsetLenght(7), 9LL);
    } else if (write == "delete all") {
        QCOMPARE(store.getRecordsets(RecordingId(7), 0, 0, -1).size(), 10);
        QCOMPARE(store.getRecordsetLenght(7), 0LL);
    } else if (write == "add comment") {
        QCOMPARE(commentOf(store.getRecordsets(RecordingId(7), 0, 0, -1).value(1)), QStringLiteral("checked"));
    }
}

void TestSqlRecordsetDatabaseConnection::writes()
{
    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);
    const auto row = [&](int id) {
        return files.shell(path, QStringLiteral("SELECT quote(recording_id), quote(record_time), "
                                                "quote(is_retrieved_from_chamber), quote(signal_1), quote(signal_2), "
                                                "quote(signal_3), quote(alarm_type), quote(camera_image_path), "
                                                "quote(chamber_mode) FROM record_set WHERE id = %1;")
                                     .arg(id));
    };

    // In ascending signal id. 298.15 K are 25 °C; the humidity has no value.
    Recordset recordset(-1, 7, QDateTime(QDate(2024, 3, 1), QTime(11, 10), Qt::OffsetFromUTC, 3600),
                        {SignalValuePair(101, UnitValue(Unit::KELVIN, 298.15f)),
                         SignalValuePair(102, UnitValue(Unit::RELATIVE_HUMIDITY_RF, QVariant())),
                         SignalValuePair(131, false)},
                        false, RecordsetComment(), RecordsetAlarm::NO_ALARM, QString(), ChamberOperationMode::PROGRAM);
    QVERIFY(store.addRecordset(recordset));
    QCOMPARE(recordset.id, RecordsetId(110));
    QCOMPARE(row(110), QStringLiteral("7|'2024-03-01T10:10:00.000Z'|0|NULL|25.0|0.0|NULL|NULL|2"));

    recordset.alarm = RecordsetAlarm::PRE_ALARM;
    recordset.cameraImagePath = "/img/11.png";
    recordset.isRetrievedFromChamber = true;
    QVERIFY(store.addRecordset(recordset));
    QCOMPARE(row(111), QStringLiteral("7|'2024-03-01T10:10:00.000Z'|1|NULL|25.0|0.0|1|'/img/11.png'|2"));
    QCOMPARE(valueOf(store.getRecordset(111), 101), QStringLiteral("25"));

    QVERIFY(store.addRecordsetComment(
        RecordsetComment(QDateTime(QDate(2024, 3, 3), QTime(9, 0), Qt::UTC), 4, 110, "calibrated")));
    QCOMPARE(files.shell(path, "SELECT * FROM record_set_comment WHERE recordset_id = 110;"),
             QStringLiteral("110|4|2024-03-03T09:00:00.000Z|calibrated"));
    // One comment per recordset.
    QVERIFY(!store.addRecordsetComment(RecordsetComment(utc(0), 4, 110, "again")));
    QVERIFY(store.deleteRecordsetComment(110));
    QCOMPARE(store.getRecordsetComment(110), RecordsetComment());

    QVERIFY(store.setProperty(110, zelmor::domain::api::RecordsetProperty::CHAMBER_MODE, 1));
    QCOMPARE(files.shell(path, "SELECT chamber_mode FROM record_set WHERE id = 110;"), QStringLiteral("1"));

    // A recordset with a comment can't be deleted, nor its recording's rows.
    QVERIFY(!store.deleteRecordset(103));
    QVERIFY(!store.deleteAllRecordsets(7));
    QCOMPARE(store.getRecordsetLenght(7), 12LL);
    QVERIFY(store.deleteRecordset(110));
    QCOMPARE(store.getRecordsetLenght(7), 11LL);
    QCOMPARE(errors.count(), 0);
}

void TestSqlRecordsetDatabaseConnection::mapping()
{
    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    Store& store = fixture.store;

    // Columns in list order, names in signal order.
    QVERIFY(store.matchSignalRecordsetColumn(8, {131, 101}));
    QCOMPARE(files.shell(path, "SELECT * FROM recording_has_signal_column WHERE recording_id = 8 "
                               "ORDER BY recordset_signal_column;"),
             QStringLiteral("8|131|1\n8|101|2"));
    const auto mapping = store.getRecordingSignalsAndColumnNames(RecordingId(8));
    QCOMPARE(mapping.first.keys(), (QList<int>{101, 131}));
    QCOMPARE(mapping.first.value(101).name, QStringLiteral("PV_Temperature"));
    QCOMPARE(mapping.second, (QStringList{"signal_2", "signal_1"}));
    QCOMPARE(store.getRecordingSignals(8).keys(), (QList<int>{101, 131}));
    QCOMPARE(store.getRecordingSignalsAndColumnNames(RecordsetId(105)).second,
             (QStringList{"signal_2", "signal_1", "signal_3"}));

    // The mapping is kept; the one by recordset isn't.
    QCOMPARE(files.shell(path, "DELETE FROM recording_has_signal_column;"), QString());
    QCOMPARE(store.getRecordingSignalsAndColumnNames(RecordingId(8)), mapping);
    QCOMPARE(store.getRecordingSignalsAndColumnNames(RecordsetId(105)).second, QStringList());
    QCOMPARE(store.getRecordingSignals(8), (QMap<int, ChamberSignal>()));

    // Nothing to lay down; a second mapping of a signal is refused whole.
    QVERIFY(store.matchSignalRecordsetColumn(9, {}));
    QVERIFY(!store.matchSignalRecordsetColumn(9, {101, 102, 101}));
    QCOMPARE(files.shell(path, "SELECT count(*) FROM recording_has_signal_column;"), QStringLiteral("0"));
}

void TestSqlRecordsetDatabaseConnection::tooManySignals()
{
    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    const ChildRun child = ChildRun::start({"49 signals", path, cataloguePath});
    QVERIFY2(child.stoppedOnAssertion("signalIds.size() <= DC::nSignalsMax()", "SqlRecordsetDatabaseConnection.cpp"),
             child.standardError.constData());
    // 48 are fine.
    const ChildRun allowed = ChildRun::start({"48 signals", path, cataloguePath});
    QVERIFY2(allowed.finished && !allowed.crashed && allowed.exitCode == 0, allowed.standardError.constData());
    QCOMPARE(files.shell(path, "SELECT count(*), max(recordset_signal_column) FROM recording_has_signal_column "
                               "WHERE recording_id = 8;"),
             QStringLiteral("48|48"));
}

void TestSqlRecordsetDatabaseConnection::bulkStatements()
{
    const QString path = files.create(wideMapping);
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);

    QList<Recordset> recordsets;
    for (int index = 0; index < 61; ++index) {
        recordsets.append(wideRecordset(index));
    }
    QVERIFY(fixture.store.addRecordsToQuery(recordsets));
    // 999 / 33 = 30 rows of 33 values to a statement, all in one transaction.
    QCOMPARE(fixture.connection.transactions, (QList<QList<int>>{{990, 990, 33}}));
    QCOMPARE(files.shell(path, "SELECT count(*), min(signal_1), max(signal_27), count(DISTINCT record_time) "
                               "FROM record_set WHERE recording_id = 9;"),
             QStringLiteral("61|1.0|6027.0|61"));
    QList<Recordset> none;
    QVERIFY(fixture.store.addRecordsToQuery(none));
    QCOMPARE(fixture.connection.transactions.size(), 1);
}

void TestSqlRecordsetDatabaseConnection::bulkFailure()
{
    const QString path = files.create(wideMapping);
    QVERIFY(!path.isEmpty());
    {
        Fixture fixture(path);
        QVERIFY(fixture.opened);
        QList<Recordset> recordsets;
        for (int index = 0; index < 61; ++index) {
            recordsets.append(wideRecordset(index));
        }
        // The last row's recording doesn't exist: the third statement fails.
        recordsets.last().recordingId = 99;
        QVERIFY(!fixture.store.addRecordsToQuery(recordsets));
        QCOMPARE(fixture.connection.transactions, (QList<QList<int>>{{990, 990, 33}}));
        fixture.connection.closeDatabase();
    }
    // Opened again: none of the rows.
    Fixture reopened(path);
    QVERIFY(reopened.opened);
    QCOMPARE(reopened.store.getRecordsetLenght(9), 0LL);
    QCOMPARE(files.shell(path, "SELECT count(*) FROM record_set;"), QStringLiteral("10"));
    QCOMPARE(files.shell(path, "PRAGMA integrity_check;"), QStringLiteral("ok"));
}

void TestSqlRecordsetDatabaseConnection::killedInTheMiddle()
{
    // A file with 50 000 rows already: the batch changes pages that were there
    // before, and the page cache writes some of them out before the commit.
    const QString path = files.create(
        wideMapping
        + QStringLiteral("WITH RECURSIVE n(k) AS (SELECT 0 UNION ALL SELECT k + 1 FROM n WHERE k < 49999)"
                         " INSERT INTO record_set (record_time, recording_id, signal_1, signal_2, signal_3)"
                         " SELECT '2024-01-01T00:00:00.000Z', 7, k, k, k FROM n;"));
    QVERIFY(!path.isEmpty());
    // 100 000 rows in 3334 statements; the process ends at the 3000th.
    const ChildRun child = ChildRun::start({"bulk", path, cataloguePath, "100000", "3000"}, 120000);
    QVERIFY2(child.finished && child.crashed, child.standardError.constData());
    {
        // Opened again, none of the batch is there.
        Fixture reopened(path);
        QVERIFY(reopened.opened);
        QCOMPARE(reopened.store.getRecordsetLenght(9), 0LL);
        QCOMPARE(reopened.store.getRecordsetLenght(7), 50010LL);
        reopened.connection.closeDatabase();
    }
    QCOMPARE(files.shell(path, "PRAGMA integrity_check;"), QStringLiteral("ok"));

    // The file goes on working: the same batch, not killed, goes in whole.
    const ChildRun whole = ChildRun::start({"bulk", path, cataloguePath, "100000", "0"}, 120000);
    QVERIFY2(whole.finished && !whole.crashed && whole.exitCode == 0, whole.standardError.constData());
    QCOMPARE(files.shell(path, "SELECT count(*) FROM record_set WHERE recording_id = 9;"), QStringLiteral("100000"));
    QCOMPARE(files.shell(path, "PRAGMA integrity_check;"), QStringLiteral("ok"));
}

void TestSqlRecordsetDatabaseConnection::parallelConversion()
{
    // 3000 rows of recording 10, one a second from 10:00.
    const QString path = files.create(QStringLiteral(
        "INSERT INTO recording_has_signal_column VALUES (10, 101, 1), (10, 102, 2);"
        "WITH RECURSIVE n(k) AS (SELECT 0 UNION ALL SELECT k + 1 FROM n WHERE k < 2999)"
        " INSERT INTO record_set (id, record_time, recording_id, signal_1, signal_2)"
        " SELECT 1000 + k, strftime('%Y-%m-%dT%H:%M:%S.000Z', '2024-03-01T10:00:00', printf('+%d seconds', k)),"
        " 10, k / 4.0, 40 + k % 50 FROM n;"));
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);

    const QList<Recordset> parallel = fixture.store.getRecordsets(RecordingId(10), 0, 0, -1);
    // The same rows converted on this thread alone.
    const QList<Recordset> single = fixture.store.getRecordsets(RecordingId(10), 0, 1, -1);
    QCOMPARE(parallel.size(), 3000);
    QVERIFY(parallel == single);
    QCOMPARE(parallel.at(2999).id, RecordsetId(3999));
    QCOMPARE(valueOf(parallel.at(2999), 101), QStringLiteral("749.75"));
    QCOMPARE(valueOf(parallel.at(2999), 102), QStringLiteral("89"));
    // Chamber 1's ranges: the first one up to 10:05:59, the second from 10:06.
    QCOMPARE(*parallel.at(0).values.at(0).toleranceRange, firstRange());
    QCOMPARE(*parallel.at(359).values.at(0).toleranceRange, firstRange());
    QCOMPARE(*parallel.at(360).values.at(0).toleranceRange, secondRange());
    QCOMPARE(*parallel.at(2999).values.at(0).toleranceRange, secondRange());

    // No statement and no call of the chamber store left this thread; the
    // history was asked for once per read.
    QCOMPARE(fixture.connection.statementThreads, QSet<QThread*>{QThread::currentThread()});
    QCOMPARE(chamberStore->threads, QSet<QThread*>{QThread::currentThread()});
    QCOMPARE(chamberStore->calls, 2);
}

void TestSqlRecordsetDatabaseConnection::badInput_data()
{
    Failures::addColumns();
    const Operation initialize = [](Store& s) { return QString::number(s.initialize()); };
    const Operation positional = [](Store& s) { return ids(s.getRecordsets(RecordingId(7), 0, 0, 4)); };
    const Operation all = [](Store& s) { return ids(s.getRecordsets(RecordingId(7), 0, 0, -1)); };
    const Operation span = [](Store& s) { return ids(s.getRecordsets(RecordingId(7), TimeSpan(utc(2), utc(3)), -1)); };
    const Operation images = [](Store& s) { return ids(s.getRecordsetsWithImagePath(RecordingId(7), TimeSpan(), 2)); };
    const Operation latest = [](Store& s) { return ids(s.getLatestNRecordsets(7, 2, QDateTime())); };
    const Operation single = [](Store& s) { return ids({s.getRecordset(103)}); };
    const Operation comment = [](Store& s) { return s.getRecordsetComment(103).text; };
    const Operation length = [](Store& s) { return QString::number(s.getRecordsetLenght(7)); };
    const Operation match = [](Store& s) { return QString::number(s.matchSignalRecordsetColumn(8, {101})); };
    const Operation mapping = [](Store& s) {
        return s.getRecordingSignalsAndColumnNames(RecordingId(7)).second.join(QLatin1Char(' '));
    };
    const Operation add = [](Store& s) {
        Recordset recordset(-1, 7, utc(30), {SignalValuePair(101, UnitValue(Unit::CELSIUS, 1.0f))}, false,
                            RecordsetComment(), RecordsetAlarm::NO_ALARM, QString(), ChamberOperationMode::MANUAL);
        return QStringLiteral("%1 %2").arg(s.addRecordset(recordset)).arg(int(recordset.id));
    };
    const Operation addComment = [](Store& s) {
        return QString::number(s.addRecordsetComment(RecordsetComment(utc(30), 1, 104, "x")));
    };
    const Operation bulk = [](Store& s) {
        QList<Recordset> recordsets = {wideRecordset(1, 7)};
        return QString::number(s.addRecordsToQuery(recordsets));
    };
    const Operation remove = [](Store& s) { return QString::number(s.deleteRecordset(104)); };

    for (const char* situation : {"unwired", "wrong key"}) {
        const bool unwired = QByteArray(situation) == "unwired";
        const QList<int> codes = unwired ? QList<int>{0} : QList<int>();
        const QByteArray tag = QByteArray(situation) + ": ";
        Failures::row(tag + "initialize", situation, initialize, "0", unwired ? codes : QList<int>{4});
        Failures::row(tag + "positional", situation, positional, "-", codes);
        Failures::row(tag + "all", situation, all, "-", codes);
        Failures::row(tag + "span", situation, span, "-", codes);
        Failures::row(tag + "images", situation, images, "-", codes);
        Failures::row(tag + "latest", situation, latest, "-", codes);
        Failures::row(tag + "single", situation, single, "-1", codes);
        Failures::row(tag + "comment", situation, comment, "", codes);
        Failures::row(tag + "length", situation, length, "0", codes);
        Failures::row(tag + "match", situation, match, "0", codes);
        Failures::row(tag + "mapping", situation, mapping, "", codes);
        Failures::row(tag + "add", situation, add, "0 -1", codes);
        Failures::row(tag + "add comment", situation, addComment, "0", codes);
        Failures::row(tag + "bulk", situation, bulk, "0", codes);
        Failures::row(tag + "delete", situation, remove, "0", codes);
    }
    Failures::row("no comment table: initialize", "no comment table", initialize, "0", {4});
    // The second row of each select comes a column short: it doesn't convert.
    Failures::row("short row: all", "short row", all, "100 -1 102 103 104 105 106 107 108 109", {}, 13);
    Failures::row("short row: thinned past it", "short row", positional, "100 103 106 109", {}, 13);
    // The mapping's second row comes short: the walk ends there.
    Failures::row("short mapping row", "short row", mapping, "signal_2", {8}, 2);
}

void TestSqlRecordsetDatabaseConnection::badInput()
{
    QFETCH(QString, situation);

    const QString path =
        files.create(situation == "no comment table" ? QStringLiteral("DROP TABLE record_set_comment;") : QString());
    QVERIFY(!path.isEmpty());
    Failures::check(path, 1);
}

namespace {

// The child's work: lays down too many signals, or inserts a batch of wide
// recordsets, ending itself at the given statement.
int childRun(const QStringList& arguments)
{
    SqliteConnection catalogueConnection(QStringLiteral("child_catalogue"));
    SqlConfigurationDatabaseConnection catalogueStore;
    if (!catalogueConnection.openDatabase(arguments.value(2), QString(), QString(),
                                          QLatin1String(TestDatabase::projectKey_))
        || !catalogueStore.setDependencies(&catalogueConnection)) {
        return 2;
    }
    catalogue = &catalogueStore;
    Fixture fixture(arguments.value(1));
    if (!fixture.opened) {
        return 2;
    }
    if (arguments.value(0).endsWith(QLatin1String("signals"))) {
        QList<SignalId> signalIds;
        for (int index = 0; index < arguments.value(0).split(' ').value(0).toInt(); ++index) {
            signalIds.append(500 + index);
        }
        return fixture.store.matchSignalRecordsetColumn(8, signalIds) ? 0 : 1;
    }
    QList<Recordset> recordsets;
    for (int index = 0; index < arguments.value(3).toInt(); ++index) {
        recordsets.append(wideRecordset(index));
    }
    fixture.connection.killAtStatement = fixture.connection.statements + arguments.value(4).toInt();
    if (arguments.value(4).toInt() == 0) {
        fixture.connection.killAtStatement = 0;
    }
    return fixture.store.addRecordsToQuery(recordsets) ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    // Local time is Berlin's, so that UTC and local time differ.
    qputenv("TZ", "Europe/Berlin");
    tzset();
    if (zelmor::testsupport::isChildRun(argc, argv)) {
        QCoreApplication application(argc, argv);
        QLoggingCategory::setFilterRules(QStringLiteral("zelmor.*=false"));
        return childRun(ChildRun::arguments(argc, argv));
    }
    QCoreApplication application(argc, argv);
    TestSqlRecordsetDatabaseConnection test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_sqlrecordsetdatabaseconnection.moc"
