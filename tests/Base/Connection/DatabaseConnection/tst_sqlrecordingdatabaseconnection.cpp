#include "Base/Connection/DatabaseConnection/SqlChamberDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlConfigurationDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlRecordingDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlRecordsetDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlRoomDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Domain/Types/ChamberId.h"
#include "Domain/Types/RecordingData.h"
#include "Domain/Types/RecordingId.h"
#include "support/LogCapture.h"
#include "support/SampleCatalogue.h"
#include "support/StoreFixture.h"
#include "support/TestDatabase.h"

#include <QLoggingCategory>
#include <QtTest>

#include <ctime>
#include <functional>
#include <memory>

using zelmor::base::connection::databaseconnection::SqlChamberDatabaseConnection;
using zelmor::base::connection::databaseconnection::SqlConfigurationDatabaseConnection;
using zelmor::base::connection::databaseconnection::SqliteConnection;
using zelmor::base::connection::databaseconnection::SqlRecordingDatabaseConnection;
using zelmor::base::connection::databaseconnection::SqlRecordsetDatabaseConnection;
using zelmor::base::connection::databaseconnection::SqlRoomDatabaseConnection;
using zelmor::domain::api::ISqlConnection;
using zelmor::domain::api::RecordingProperty;
using zelmor::testsupport::errorCodes;
using zelmor::testsupport::LogCapture;
using zelmor::testsupport::TestDatabase;
using namespace zelmor::domain::types;

using Store = SqlRecordingDatabaseConnection;
using Fixture = zelmor::testsupport::StoreFixture<Store>;
using Failures = zelmor::testsupport::FailureTable<Store>;
using Operation = Failures::Operation;
Q_DECLARE_METATYPE(Operation)
Q_DECLARE_METATYPE(RecordingProperty)

namespace {

// The catalogue every fixture reads; the other stores of the fixture wired
// last, on that fixture's connection.
SqlConfigurationDatabaseConnection* catalogue = nullptr;
std::unique_ptr<SqlRoomDatabaseConnection> roomStore;
std::unique_ptr<SqlChamberDatabaseConnection> chamberStore;
std::unique_ptr<SqlRecordsetDatabaseConnection> recordsetStore;

} // namespace

template<>
struct zelmor::testsupport::StoreWiring<Store>
{
    static bool wire(Store& store, ISqlConnection* connection)
    {
        roomStore = std::make_unique<SqlRoomDatabaseConnection>();
        chamberStore = std::make_unique<SqlChamberDatabaseConnection>();
        recordsetStore = std::make_unique<SqlRecordsetDatabaseConnection>();
        roomStore->setDependencies(connection);
        chamberStore->setDependencies(connection, catalogue, roomStore.get());
        recordsetStore->setDependencies(connection, catalogue, chamberStore.get());
        return store.setDependencies(connection, chamberStore.get(), recordsetStore.get());
    }
};

namespace {

// Chambers 1 and 2 of type 1, user 2, and on chamber 1 the custom name "Air"
// for signal 101.
const QString commonRows =
    QStringLiteral("INSERT INTO chamber (id, chamber_name, chamber_type_id) VALUES (1, 'C1', 1), (2, 'C2', 1);"
                   "INSERT INTO application_user (id, login_name) VALUES (2, 'anna');"
                   "INSERT INTO chamber_has_custom_signal_name VALUES (1, 101, 'Air');");

// Three recordings for the reads: 5 active on chamber 1, 6 and 7 not.
const QString threeRecordings = QStringLiteral(
    "INSERT INTO recording (id, recording_name, chamber_id, is_active, is_archived, seconds_interval, end_time,"
    " free_text) VALUES (5, 'R5', 1, 1, 0, 30, '2024-03-01T13:00:00.000Z', 'old'), (6, 'R6', 1, 0, 1, 1, NULL, NULL),"
    " (7, 'R7', 2, 0, 0, 1, NULL, NULL);");

QDateTime utc(int hour)
{
    return QDateTime(QDate(2024, 3, 1), QTime(hour, 0), Qt::UTC);
}

QMap<int, ChamberSignal> signalsOf(const QList<SignalId>& ids)
{
    return catalogue->getChamberSignals(ids);
}

// Every column but the id, as the shell quotes them.
const QString columns = QStringLiteral(
    "quote(recording_name), quote(chamber_id), quote(user_id), quote(seconds_interval), quote(start_time),"
    " quote(end_time), quote(is_active), quote(is_archived), quote(additional_info), quote(free_text),"
    " quote(automatically_create_report), quote(is_start_reconding_allowed), quote(number_of_recordsets)");

QString recordingsOf(const QList<QSharedPointer<RecordingData>>& recordings)
{
    QStringList names;
    for (const QSharedPointer<RecordingData>& recording : recordings) {
        names.append(QStringLiteral("%1:%2").arg(int(recording->id)).arg(recording->name));
    }
    return names.join(QLatin1Char(' '));
}

} // namespace

class TestSqlRecordingDatabaseConnection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void writes_data();
    void writes();
    void signalNames();
    void properties_data();
    void properties();
    void reads();
    void deleteRecording();
    void metaRecordings();
    void badInput_data();
    void badInput();

private:
    zelmor::testsupport::ApplicationFiles files{commonRows};
    SqliteConnection catalogueConnection{QStringLiteral("recording_test_catalogue")};
    SqlConfigurationDatabaseConnection catalogueStore;
};

void TestSqlRecordingDatabaseConnection::initTestCase()
{
    qRegisterMetaType<DatabaseConnectionError>();
    QLoggingCategory::setFilterRules(QStringLiteral("zelmor.*=false"));
    QVERIFY(files.isValid());
    const QString path = zelmor::testsupport::createSampleCatalogue(files.database());
    QVERIFY2(!path.isEmpty(), qPrintable(files.database().lastError()));
    QVERIFY(catalogueConnection.openDatabase(path, QString(), QString(), QLatin1String(TestDatabase::projectKey_)));
    QVERIFY(catalogueStore.setDependencies(&catalogueConnection));
    catalogue = &catalogueStore;
}

void TestSqlRecordingDatabaseConnection::writes_data()
{
    QTest::addColumn<RecordingData>("recording");
    QTest::addColumn<QString>("stored");

    // Report flags 27: automatic, weekly (1 << 1), file format 3 (3 << 3).
    QTest::newRow("everything") << RecordingData(
        0, "Soak", 1, 2, 60, utc(10), utc(11), true, false, "a", "f", quint32(27), signalsOf({101, 102}), {}, false,
        12) << "'Soak'|1|2|60|'2024-03-01T10:00:00.000Z'|'2024-03-01T11:00:00.000Z'|1|0|'a'|'f'|27|0|12";
    // What means "none" is a NULL; the start is allowed and the count -1 as they are.
    QTest::newRow("nothing") << RecordingData() << "NULL|NULL|NULL|NULL|NULL|NULL|0|0|NULL|NULL|0|1|-1";
    // A time with an offset is kept in UTC.
    QTest::newRow("start at +02:00") << RecordingData(
        0, "T", 2, 0, 5, QDateTime(QDate(2024, 7, 1), QTime(12, 0), Qt::OffsetFromUTC, 7200), QDateTime(), false, true,
        QString(), QString(), quint32(0), signalsOf({131}), {}, true, 0)
                                     << "'T'|2|NULL|5|'2024-07-01T10:00:00.000Z'|NULL|0|1|NULL|NULL|0|1|0";
}

void TestSqlRecordingDatabaseConnection::writes()
{
    QFETCH(RecordingData, recording);
    QFETCH(QString, stored);

    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    QVERIFY(store.addRecording(recording));
    QCOMPARE(int(recording.id), 1);
    QCOMPARE(files.shell(path, "SELECT " + columns + " FROM recording WHERE id = 1;"), stored);

    // Read back as written, the signals under the chamber's names.
    RecordingData expected = recording;
    if (expected.chamberSignals.contains(101) && expected.chamberId == 1) {
        expected.chamberSignals[101].name = "Air";
    }
    const QSharedPointer<RecordingData> read = store.getRecordingData(1);
    QVERIFY(read);
    QCOMPARE(*read, expected);
    if (recording.startTime.isValid()) {
        QCOMPARE(read->startTime.timeSpec(), Qt::LocalTime);
    }

    // Written again whole, and the same read.
    recording.name = "Changed";
    recording.secondsInterval = -1;
    QVERIFY(store.updateRecordingProperties(recording));
    expected.name = "Changed";
    expected.secondsInterval = -1;
    QCOMPARE(*store.getRecordingData(1), expected);
    QCOMPARE(files.shell(path, "SELECT quote(recording_name), quote(seconds_interval) FROM recording WHERE id = 1;"),
             QStringLiteral("'Changed'|NULL"));
    QCOMPARE(errors.count(), 0);
}

void TestSqlRecordingDatabaseConnection::signalNames()
{
    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    Store& store = fixture.store;

    // The value columns in ascending signal id, laid down with the recording.
    RecordingData recording(0, "R", 1, 0, 60, utc(10), QDateTime(), true, false, QString(), QString(), quint32(0),
                            signalsOf({131, 102, 101}), {}, true, 0);
    QVERIFY(store.addRecording(recording));
    QCOMPARE(files.shell(path, "SELECT * FROM recording_has_signal_column ORDER BY recordset_signal_column;"),
             QStringLiteral("1|101|1\n1|102|2\n1|131|3"));

    // The recordset store keeps the plain names, before and after a read
    // that shows the custom one.
    QCOMPARE(recordsetStore->getRecordingSignalsAndColumnNames(RecordingId(1)).first.value(101).name,
             QStringLiteral("PV_Temperature"));
    const QMap<int, ChamberSignal> named = store.getRecordingData(1)->chamberSignals;
    QCOMPARE(named.value(101).name, QStringLiteral("Air"));
    QCOMPARE(named.value(102).name, QStringLiteral("PV_Humidity"));
    QCOMPARE(named.keys(), (QList<int>{101, 102, 131}));
    QCOMPARE(recordsetStore->getRecordingSignalsAndColumnNames(RecordingId(1)).first.value(101).name,
             QStringLiteral("PV_Temperature"));

    // Chamber 2 has no custom names.
    recording.chamberId = 2;
    QVERIFY(store.addRecording(recording));
    QCOMPARE(store.getRecordingData(2)->chamberSignals.value(101).name, QStringLiteral("PV_Temperature"));

    // A chamber that doesn't exist: refused, and no columns laid down.
    recording.chamberId = 9;
    QVERIFY(!store.addRecording(recording));
    QCOMPARE(files.shell(path, "SELECT count(*) FROM recording_has_signal_column WHERE recording_id > 2;"),
             QStringLiteral("0"));
}

void TestSqlRecordingDatabaseConnection::properties_data()
{
    QTest::addColumn<RecordingProperty>("property");
    QTest::addColumn<QString>("column");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("read"); // as the driver gives it back

    // The recording of each row has every property changed; only the named column is written.
    QTest::newRow("1 id") << RecordingProperty::ID << "id"
                          << "5"
                          << "5";
    QTest::newRow("2 name") << RecordingProperty::RECORDING_NAME << "recording_name"
                            << "'New'"
                            << "New";
    QTest::newRow("4 chamber") << RecordingProperty::CHAMBER_ID << "chamber_id"
                               << "NULL"
                               << "NULL";
    QTest::newRow("8 user") << RecordingProperty::USER_ID << "user_id"
                            << "2"
                            << "2";
    QTest::newRow("16 interval") << RecordingProperty::SECONDS_INTERVAL << "seconds_interval"
                                 << "NULL"
                                 << "NULL";
    QTest::newRow("32 start") << RecordingProperty::START_TIME << "start_time"
                              << "'2024-03-01T12:00:00.000Z'"
                              << "2024-03-01T12:00:00.000Z";
    QTest::newRow("64 end") << RecordingProperty::END_TIME << "end_time"
                            << "NULL"
                            << "NULL";
    QTest::newRow("128 active") << RecordingProperty::IS_ACTIVE << "is_active"
                                << "0"
                                << "0";
    QTest::newRow("256 additional info") << RecordingProperty::ADDITIONAL_INFO << "additional_info"
                                         << "'more'"
                                         << "more";
    QTest::newRow("512 free text") << RecordingProperty::FREE_TEXT << "free_text"
                                   << "NULL"
                                   << "NULL";
    QTest::newRow("1024 archived") << RecordingProperty::IS_ARCHIVED << "is_archived"
                                   << "1"
                                   << "1";
    QTest::newRow("2048 report") << RecordingProperty::AUTOMATICALLY_CREATE_REPORT << "automatically_create_report"
                                 << "7"
                                 << "7";
    QTest::newRow("16384 start allowed") << RecordingProperty::IS_START_RECONDING_ALLOWED
                                         << "is_start_reconding_allowed"
                                         << "0"
                                         << "0";
    QTest::newRow("32768 recordsets") << RecordingProperty::NUMBER_OF_RECORDSETS << "number_of_recordsets"
                                      << "99"
                                      << "99";
}

void TestSqlRecordingDatabaseConnection::properties()
{
    QFETCH(RecordingProperty, property);
    QFETCH(QString, column);
    QFETCH(QString, stored);
    QFETCH(QString, read);

    const QString path = files.create(threeRecordings);
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    Store& store = fixture.store;
    const auto row = [&] { return files.shell(path, "SELECT " + columns + " FROM recording WHERE id = 5;"); };
    const QStringList before = row().split('|');

    RecordingData changed(5, "New", -1, 2, -1, utc(12), QDateTime(), false, true, "more", QString(), quint32(7), {}, {},
                          false, 99);
    QVERIFY(store.setRecordingProperty(changed, property));
    QCOMPARE(files.shell(path, QStringLiteral("SELECT quote(%1) FROM recording WHERE id = 5;").arg(column)), stored);
    const QVariant value = store.getRecordingProperty(5, property);
    QCOMPARE(value.isNull() ? QStringLiteral("NULL") : value.toString(), read);

    // No other column changed.
    const QStringList after = row().split('|');
    int changes = 0;
    for (int index = 0; index < before.size(); ++index) {
        changes += before.at(index) != after.value(index) ? 1 : 0;
    }
    QCOMPARE(changes, property == RecordingProperty::ID ? 0 : 1);
}

void TestSqlRecordingDatabaseConnection::reads()
{
    const QString path = files.create(threeRecordings);
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    QCOMPARE(recordingsOf(store.getAllRecordingData()), QStringLiteral("5:R5 6:R6 7:R7"));
    QCOMPARE(store.getActiveRecording(1), RecordingId(5));
    QCOMPARE(store.getActiveRecording(2), RecordingId(0));
    QVERIFY(store.hasRecordings(2));
    QVERIFY(!store.hasRecordings(3));
    QVERIFY(store.getRecordingData(8).isNull());
    QCOMPARE(store.getRecordingProperty(6, RecordingProperty::RECORDING_NAME).toString(), QStringLiteral("R6"));
    QVERIFY(!store.getRecordingProperty(8, RecordingProperty::RECORDING_NAME).isValid());

    // Archiving touches nothing but "is_archived".
    QVERIFY(store.archiveRecording(5));
    QCOMPARE(files.shell(path, "SELECT is_active, is_archived FROM recording WHERE id = 5;"), QStringLiteral("1|1"));
    QVERIFY(store.restoreRecording(6));
    QCOMPARE(files.shell(path, "SELECT is_active, is_archived FROM recording WHERE id = 6;"), QStringLiteral("0|0"));
    QVERIFY(store.setRecordingProperty(7, RecordingProperty::IS_START_RECONDING_ALLOWED, false));
    QVERIFY(!store.getRecordingData(7)->isStartAllowed);
    QCOMPARE(errors.count(), 0);
}

void TestSqlRecordingDatabaseConnection::deleteRecording()
{
    // Recording 5 has two rows, one with a comment; 6 has one row; 7 is part of meta recording 6.
    const QString path =
        files.create(threeRecordings
                     + "INSERT INTO recording_has_signal_column VALUES (5, 101, 1), (6, 101, 1);"
                       "INSERT INTO record_set (id, record_time, recording_id, signal_1) VALUES"
                       " (1, '2024-03-01T10:00:00.000Z', 5, 1.0), (2, '2024-03-01T10:01:00.000Z', 5, 2.0),"
                       " (3, '2024-03-01T10:00:00.000Z', 6, 3.0);"
                       "INSERT INTO record_set_comment VALUES (2, 2, '2024-03-01T11:00:00.000Z', 'kept');"
                       "INSERT INTO meta_recording_has_recording VALUES (6, 7);");
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    Store& store = fixture.store;

    // The comment holds on to its row: the recording stays whole.
    {
        QLoggingCategory::setFilterRules(QStringLiteral("zelmor.*=false\nzelmor.SqlRecordingDatabaseConnection=true"));
        LogCapture log(QStringLiteral("zelmor.SqlRecordingDatabaseConnection"));
        QVERIFY(!store.deleteRecording(5));
        QLoggingCategory::setFilterRules(QStringLiteral("zelmor.*=false"));
        QCOMPARE(log.texts(), QStringList{"warning: Can't delete recording 5: Can't delete recording's recordsets"});
    }
    QCOMPARE(files.shell(path, "SELECT count(*) FROM recording WHERE id = 5;"), QStringLiteral("1"));
    QCOMPARE(files.shell(path, "SELECT count(*) FROM record_set WHERE recording_id = 5;"), QStringLiteral("2"));

    // Part of a meta recording: its rows go first, the recording stays.
    QVERIFY(!store.deleteRecording(7));
    QCOMPARE(files.shell(path, "SELECT count(*) FROM recording WHERE id = 7;"), QStringLiteral("1"));

    // Rows and mapping go with the recording.
    QVERIFY(store.deleteMetaRecordingSubRecordings(6));
    QVERIFY(store.deleteRecording(7));
    QVERIFY(store.deleteRecording(6));
    QCOMPARE(files.shell(path, "SELECT group_concat(id) FROM recording;"), QStringLiteral("5"));
    QCOMPARE(files.shell(path, "SELECT count(*) FROM record_set WHERE recording_id = 6;"), QStringLiteral("0"));
    QCOMPARE(files.shell(path, "SELECT count(*) FROM recording_has_signal_column WHERE recording_id = 6;"),
             QStringLiteral("0"));
}

void TestSqlRecordingDatabaseConnection::metaRecordings()
{
    const QString path = files.create(threeRecordings);
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    Store& store = fixture.store;
    const auto subRecordings = [&] {
        QStringList ids;
        for (const RecordingId& id : store.getMetaRecordingSubRecordings(5)) {
            ids.append(QString::number(int(id)));
        }
        return ids.join(QLatin1Char(' '));
    };

    QVERIFY(store.setMetaRecordingSubRecordings(5, {6, 7}));
    QCOMPARE(subRecordings(), QStringLiteral("6 7"));
    QVERIFY(store.setMetaRecordingSubRecordings(5, {7}));
    QCOMPARE(subRecordings(), QStringLiteral("7"));
    QVERIFY(store.setMetaRecordingSubRecordings(5, {}));
    QCOMPARE(subRecordings(), QString());
    // The new list goes in whole or not at all; the old one is gone before it.
    QVERIFY(store.setMetaRecordingSubRecordings(5, {6}));
    QVERIFY(!store.setMetaRecordingSubRecordings(5, {7, 99}));
    QCOMPARE(subRecordings(), QString());
    QCOMPARE(fixture.connection.transactions, (QList<QList<int>>{{2, 2}, {2}, {2}, {2, 2}}));
}

void TestSqlRecordingDatabaseConnection::badInput_data()
{
    Failures::addColumns();
    const Operation initialize = [](Store& s) { return QString::number(s.initialize()); };
    const Operation all = [](Store& s) { return recordingsOf(s.getAllRecordingData()); };
    const Operation one = [](Store& s) { return QString::number(!s.getRecordingData(6).isNull()); };
    const Operation active = [](Store& s) { return QString::number(int(s.getActiveRecording(1))); };
    const Operation property = [](Store& s) {
        return s.getRecordingProperty(5, RecordingProperty::RECORDING_NAME).toString();
    };
    const Operation has = [](Store& s) { return QString::number(s.hasRecordings(1)); };
    const Operation add = [](Store& s) {
        RecordingData recording(0, "N", 1, 0, 1, QDateTime(), QDateTime(), false, false, QString(), QString(),
                                quint32(0), signalsOf({101}), {}, true, 0);
        return QStringLiteral("%1 %2").arg(s.addRecording(recording)).arg(int(recording.id));
    };
    const Operation update = [](Store& s) {
        return QString::number(
            s.updateRecordingProperties(RecordingData(5, "X", 1, 0, 1, QDateTime(), QDateTime(), false, false,
                                                      QString(), QString(), quint32(0), {}, {}, true, 0)));
    };
    const Operation set = [](Store& s) {
        return QString::number(s.setRecordingProperty(5, RecordingProperty::RECORDING_NAME, "Y"));
    };
    const Operation remove = [](Store& s) { return QString::number(s.deleteRecording(7)); };
    const Operation meta = [](Store& s) { return QString::number(s.setMetaRecordingSubRecordings(5, {6})); };
    const Operation subs = [](Store& s) { return QString::number(s.getMetaRecordingSubRecordings(5).size()); };

    for (const char* situation : {"unwired", "wrong key"}) {
        const bool unwired = QByteArray(situation) == "unwired";
        const QList<int> codes = unwired ? QList<int>{0} : QList<int>();
        const QByteArray tag = QByteArray(situation) + ": ";
        Failures::row(tag + "initialize", situation, initialize, "0", unwired ? codes : QList<int>{4});
        Failures::row(tag + "all", situation, all, "", codes);
        Failures::row(tag + "one", situation, one, "0", codes);
        Failures::row(tag + "active", situation, active, "0", codes);
        Failures::row(tag + "property", situation, property, "", codes);
        Failures::row(tag + "has", situation, has, "0", codes);
        Failures::row(tag + "add", situation, add, "0 0", codes);
        Failures::row(tag + "update", situation, update, "0", codes);
        Failures::row(tag + "set", situation, set, "0", codes);
        Failures::row(tag + "delete", situation, remove, "0", codes);
        Failures::row(tag + "meta", situation, meta, "0", codes);
        Failures::row(tag + "sub recordings", situation, subs, "0", codes);
    }
    Failures::row("no recording table: initialize", "no recording table", initialize, "0", {4});
    // The second recording's row comes a column short: reported, the others read.
    Failures::row("short row: all", "short row", all, "5:R5 7:R7", {8}, 14);
    Failures::row("short row: one", "short row", one, "1", {}, 14);
}

void TestSqlRecordingDatabaseConnection::badInput()
{
    QFETCH(QString, situation);

    const QString path = files.create(situation == "no recording table"
                                          ? QStringLiteral("PRAGMA foreign_keys = OFF; DROP TABLE recording;")
                                          : threeRecordings);
    QVERIFY(!path.isEmpty());
    Failures::check(path, 1);
}

int main(int argc, char** argv)
{
    // Local time is Berlin's, so that UTC and local time differ.
    qputenv("TZ", "Europe/Berlin");
    tzset();
    QCoreApplication application(argc, argv);
    TestSqlRecordingDatabaseConnection test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_sqlrecordingdatabaseconnection.moc"
