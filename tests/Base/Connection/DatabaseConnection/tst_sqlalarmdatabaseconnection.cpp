#include "Base/Connection/DatabaseConnection/SqlAlarmDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlChamberDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlConfigurationDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlRoomDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Domain/Types/Alarm.h"
#include "Domain/Types/AlarmId.h"
#include "Domain/Types/ChamberId.h"
#include "support/LogCapture.h"
#include "support/SampleCatalogue.h"
#include "support/StoreFixture.h"
#include "support/TestDatabase.h"

#include <QLoggingCategory>
#include <QtTest>

#include <ctime>
#include <functional>

using zelmor::base::connection::databaseconnection::SqlAlarmDatabaseConnection;
using zelmor::base::connection::databaseconnection::SqlChamberDatabaseConnection;
using zelmor::base::connection::databaseconnection::SqlConfigurationDatabaseConnection;
using zelmor::base::connection::databaseconnection::SqliteConnection;
using zelmor::base::connection::databaseconnection::SqlRoomDatabaseConnection;
using zelmor::domain::api::ISqlConnection;
using zelmor::testsupport::errorCodes;
using zelmor::testsupport::LogCapture;
using zelmor::testsupport::TestDatabase;
using namespace zelmor::domain::types;

using Store = SqlAlarmDatabaseConnection;
using Fixture = zelmor::testsupport::StoreFixture<Store>;
using Failures = zelmor::testsupport::FailureTable<Store>;
using Operation = Failures::Operation;
Q_DECLARE_METATYPE(Operation)

namespace {

// The catalogue, and the chamber and room stores that go onto each fixture's
// connection with the alarm store.
SqlConfigurationDatabaseConnection* catalogue = nullptr;
SqlChamberDatabaseConnection* chamberStore = nullptr;
SqlRoomDatabaseConnection* roomStore = nullptr;

} // namespace

template<>
struct zelmor::testsupport::StoreWiring<Store>
{
    bool wire(Store& store, ISqlConnection* connection)
    {
        roomStore->setDependencies(connection);
        chamberStore->setDependencies(connection, catalogue, roomStore);
        return store.setDependencies(connection, catalogue, chamberStore);
    }
};

namespace {

// Chamber 1 of type 1, whose catalogue defaults are 300 s and 15 min for
// signal 101, 600 s and 30 min for 102; chamber 2 of type 11, which has none.
// Chamber 1 has its own delay in the second column of 101, chamber 2 in the
// first column of 104.
const QString chambers =
    QStringLiteral("INSERT INTO chamber (id, chamber_name, chamber_type_id) VALUES (1, 'A', 1), (2, 'B', 11);"
                   "INSERT INTO chamber_has_signal_delay VALUES (1, 101, NULL, 45), (2, 104, 20, NULL);");

// Alarm 1 on chamber 1 with signals 101 and 102, alarm 2 on chamber 2.
const QString alarms = QStringLiteral(
    "INSERT INTO application_alarm (id, alarm_timestamp, alarm_type, is_active, alarm_status, alarm_name, "
    "short_description, num_short_desc_args, short_desc_arg_1, chamber_id) VALUES "
    "(1, '2024-03-01T09:00:00.000Z', 1, 1, 2, 'Temperature', 'Value %1', 1, '31.5', 1),"
    "(2, '2024-03-02T09:00:00.000Z', 3, 0, 3, 'Link', 'Lost', 0, NULL, 2);"
    "INSERT INTO alarm_has_signal VALUES (1, 101), (1, 102);");

QDateTime berlin(const QString& text)
{
    return QDateTime::fromString(text, Qt::ISODateWithMs);
}

QString summary(const Alarm& a)
{
    QStringList arguments;
    for (const QVariant& argument : a.shortDescription.arguments)
        arguments.append(argument.toString());
    QStringList signalIds;
    for (SignalId signal : a.signalIds)
        signalIds.append(QString::number(signal));
    return QStringList{QString::number(a.id),
                       a.timestamp.toString(Qt::ISODateWithMs),
                       QString::number(a.type),
                       QString::number(a.isActive),
                       QString::number(a.status),
                       QString::number(a.userId),
                       a.alarmName,
                       a.shortDescription.text + " [" + arguments.join(", ") + "]",
                       a.description,
                       QString::number(a.chamberId),
                       a.chamberName,
                       signalIds.join(' ')}
        .join(QLatin1Char('|'));
}

QString summary(const QList<Alarm>& alarms)
{
    QStringList texts;
    for (const Alarm& alarm : alarms)
        texts.append(summary(alarm));
    return texts.join('\n');
}

const QString alarmRow = QStringLiteral(
    "SELECT id, alarm_timestamp, alarm_type, is_active, alarm_status, quote(user_id), quote(alarm_name), "
    "quote(short_description), num_short_desc_args, quote(short_desc_arg_1), quote(short_desc_arg_2), "
    "quote(description), quote(chamber_id), (SELECT group_concat(signal_id) FROM alarm_has_signal WHERE alarm_id = "
    "application_alarm.id) FROM application_alarm WHERE id = %1;");

} // namespace

class TestSqlAlarmDatabaseConnection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void addAndRead_data();
    void addAndRead();
    void readAndCount();
    void threeArguments();
    void updateAndSignals();
    void signalDelay_data();
    void signalDelay();
    void badInput_data();
    void badInput();

private:
    zelmor::testsupport::ApplicationFiles files{chambers};
    SqliteConnection catalogueConnection{QStringLiteral("alarm_test_catalogue")};
    SqlConfigurationDatabaseConnection catalogueStore;
    SqlChamberDatabaseConnection chamberStoreOfFixtures;
    SqlRoomDatabaseConnection roomStoreOfFixtures;
};

void TestSqlAlarmDatabaseConnection::initTestCase()
{
    qRegisterMetaType<DatabaseConnectionError>();
    // The failures are counted through the signals.
    QLoggingCategory::setFilterRules(QStringLiteral("zelmor.*=false"));
    QVERIFY(files.isValid());
    const QString path = zelmor::testsupport::createSampleCatalogue(files.database());
    QVERIFY2(!path.isEmpty(), qPrintable(files.database().lastError()));
    QVERIFY(catalogueConnection.openDatabase(path, QString(), QString(), QLatin1String(TestDatabase::projectKey_)));
    QVERIFY(catalogueStore.setDependencies(&catalogueConnection));
    catalogue = &catalogueStore;
    chamberStore = &chamberStoreOfFixtures;
    roomStore = &roomStoreOfFixtures;
}

void TestSqlAlarmDatabaseConnection::cleanupTestCase()
{
    catalogueConnection.closeDatabase();
}

void TestSqlAlarmDatabaseConnection::addAndRead_data()
{
    QTest::addColumn<Alarm>("alarm");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("readBack");

    // Berlin is an hour ahead of UTC in March: the time is kept in UTC.
    QTest::newRow("two arguments, two signals")
        << Alarm(0, berlin("2024-03-04T10:30:00"), AlarmType::PROGRAM_EVENT, true, AlarmStatus::PRE_ALARM, 7, "Door",
                 ShortDescription("Door %1 open for %2 s", {"left", 30}), "Close it", 1, "ignored", {102, 101}, {})
        << "1|2024-03-04T09:30:00.000Z|2|1|1|7|'Door'|'Door %1 open for %2 s'|2|'left'|'30'|'Close it'|1|101,102"
        << "1|2024-03-04T10:30:00.000|2|1|1|7|Door|Door %1 open for %2 s [left, 30]|Close it|1||101 102";
    // Nothing in it: NULLs for the user, the texts and the chamber.
    QTest::newRow("an empty alarm") << Alarm() << "1||0|0|0|NULL|NULL|NULL|0|NULL|NULL|NULL|NULL|"
                                    << "1||0|0|0|0|| []||-1||";
}

void TestSqlAlarmDatabaseConnection::addAndRead()
{
    QFETCH(Alarm, alarm);
    QFETCH(QString, stored);
    QFETCH(QString, readBack);

    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    QVERIFY(store.addAlarm(alarm));
    QCOMPARE(int(alarm.id), 1);
    QCOMPARE(files.shell(path, alarmRow.arg(1)), stored);
    // The store reads no chamber names: the facade adds them.
    QCOMPARE(summary(store.getAllAlarms()), readBack);
    QCOMPARE(errors.count(), 0);
}

void TestSqlAlarmDatabaseConnection::readAndCount()
{
    const QString path = files.create(alarms);
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    const QString first = QStringLiteral("1|2024-03-01T10:00:00.000|1|1|2|0|Temperature|Value %1 [31.5]||1||101 102");
    const QString second = QStringLiteral("2|2024-03-02T10:00:00.000|3|0|3|0|Link|Lost []||2||");
    QCOMPARE(summary(store.getAllAlarms()), first + '\n' + second);
    QCOMPARE(summary(store.getAlarms(2)), second);
    QCOMPARE(summary(store.getAlarms(9)), QString());
    QCOMPARE(store.countAlarms(1), 1);
    QCOMPARE(store.countAlarms(9), 0);

    // Its signals go with it.
    QVERIFY(store.deleteAlarm(1));
    QCOMPARE(files.shell(path, "SELECT count(*) FROM alarm_has_signal;"), QStringLiteral("0"));
    QCOMPARE(store.countAlarms(1), 0);
    QCOMPARE(errors.count(), 0);
}

void TestSqlAlarmDatabaseConnection::threeArguments()
{
    const QString path = files.create(alarms);
    QVERIFY(!path.isEmpty());
    const QString dump = files.shell(path, ".dump");
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    Alarm alarm(0, berlin("2024-03-04T10:30:00"), AlarmType::PROGRAM_EVENT, true, AlarmStatus::PRE_ALARM, 7, "Door",
                ShortDescription("%1 %2 %3", {"a", "b", "c"}), QString(), 1, QString(), {101}, {});
    QLoggingCategory::setFilterRules(QStringLiteral("zelmor.*=false\nzelmor.SqlAlarmDatabaseConnection=true"));
    LogCapture log(QStringLiteral("zelmor.SqlAlarmDatabaseConnection"));
    const bool added = store.addAlarm(alarm);
    QLoggingCategory::setFilterRules(QStringLiteral("zelmor.*=false"));

    // Warned about, tried all the same: the third argument's column isn't there.
    QVERIFY(!added);
    QCOMPARE(log.texts(), (QStringList{"warning: Too many short description arguments: 3 instead of 2",
                                       "warning: Failed to add alarm"}));
    QCOMPARE(int(alarm.id), 0);
    QCOMPARE(files.shell(path, ".dump"), dump);
    QCOMPARE(errors.count(), 0);
}

void TestSqlAlarmDatabaseConnection::updateAndSignals()
{
    const QString path = files.create(alarms);
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);
    const auto signalRows = [&] {
        return files.shell(path, "SELECT alarm_id, signal_id FROM alarm_has_signal ORDER BY alarm_id, signal_id;");
    };

    QCOMPARE(store.getAlarmSignals(1), (QList<SignalId>{101, 102}));
    // The second insert of the transaction fails: nothing of the first stays.
    QVERIFY(!store.addAlarmSignals(2, {104, 104}));
    QCOMPARE(signalRows(), QStringLiteral("1|101\n1|102"));
    QVERIFY(store.addAlarmSignals(2, {104, 131}));
    QVERIFY(store.updateAlarmSignals(2, {133}));
    QCOMPARE(signalRows(), QStringLiteral("1|101\n1|102\n2|133"));
    QVERIFY(store.deleteAlarmSignals(2));
    QCOMPARE(signalRows(), QStringLiteral("1|101\n1|102"));

    // An update takes the signals and every column; fewer arguments leave the
    // other column as it was, but only those in use are read.
    Alarm alarm = store.getAlarms(1).value(0);
    alarm.status = AlarmStatus::ACKNOWLEDGED;
    alarm.isActive = false;
    alarm.shortDescription = ShortDescription("Now %1", {"x"});
    alarm.signalIds = {103};
    QVERIFY(store.updateAlarm(alarm));
    QCOMPARE(files.shell(path, alarmRow.arg(1)),
             QStringLiteral("1|2024-03-01T09:00:00.000Z|1|0|3|NULL|'Temperature'|'Now %1'|1|'x'|NULL|NULL|1|103"));
    QCOMPARE(summary(store.getAlarms(1)),
             QStringLiteral("1|2024-03-01T10:00:00.000|1|0|3|0|Temperature|Now %1 [x]||1||103"));
    // Without signals the alarm loses those it had.
    alarm.signalIds.clear();
    QVERIFY(store.updateAlarm(alarm));
    QCOMPARE(signalRows(), QString());

    // Signals that can't be added leave the alarm's row without signals: the
    // alarm is written first, on its own.
    Alarm other(0, berlin("2024-03-05T10:00:00"), AlarmType::CONNECTION_ALARM, true, AlarmStatus::NOT_ACKNOWLEDGED, 0,
                "Link", ShortDescription(), QString(), 2, QString(), {104, 104}, {});
    QVERIFY(!store.addAlarm(other));
    QCOMPARE(int(other.id), 3);
    QCOMPARE(store.countAlarms(2), 2);
    QCOMPARE(signalRows(), QString());
    QCOMPARE(errors.count(), 0);
}

void TestSqlAlarmDatabaseConnection::signalDelay_data()
{
    QTest::addColumn<int>("alarm");
    QTest::addColumn<int>("signal");
    QTest::addColumn<bool>("second");
    QTest::addColumn<int>("seconds");

    // The chamber's column is the other one than asked for; the catalogue's is
    // the one asked for, its second delay in minutes.
    QTest::newRow("first: chamber's second column") << 1 << 101 << false << 45;
    QTest::newRow("second: chamber's first column is NULL, type's second") << 1 << 101 << true << 900;
    QTest::newRow("first: type's first") << 1 << 102 << false << 600;
    QTest::newRow("second: type's second") << 1 << 102 << true << 1800;
    QTest::newRow("second: chamber's first column") << 2 << 104 << true << 20;
    QTest::newRow("first: a type without defaults") << 2 << 104 << false << 0;
    QTest::newRow("an alarm that isn't there") << 9 << 101 << false << 0;
}

void TestSqlAlarmDatabaseConnection::signalDelay()
{
    QFETCH(int, alarm);
    QFETCH(int, signal);
    QFETCH(bool, second);
    QFETCH(int, seconds);

    const QString path = files.create(alarms);
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    QSignalSpy errors(&fixture.store, &Store::error);

    QCOMPARE(fixture.store.getSignalAlarmDelay(alarm, signal, second), seconds);
    QCOMPARE(errors.count(), 0);
}

void TestSqlAlarmDatabaseConnection::badInput_data()
{
    Failures::addColumns();
    const auto number = [](auto value) { return QString::number(value); };
    const auto newAlarm = [](const QList<QVariant>& arguments, const QList<SignalId>& signalIds) {
        return Alarm(0, QDateTime(), AlarmType::NOT_DEFINED, false, AlarmStatus::UNKNOWN_STATUS, 0, "New",
                     ShortDescription("t", arguments), QString(), 1, QString(), signalIds, {});
    };
    const Operation initialize = [=](Store& s) { return number(s.initialize()); };
    const Operation all = [](Store& s) { return summary(s.getAllAlarms()); };
    const Operation ofChamber = [](Store& s) { return summary(s.getAlarms(1)); };
    const Operation delay = [=](Store& s) { return number(s.getSignalAlarmDelay(1, 101, false)); };
    const Operation add = [=](Store& s) {
        Alarm alarm = newAlarm({"a"}, {101});
        return QStringLiteral("%1 %2").arg(s.addAlarm(alarm)).arg(int(alarm.id));
    };
    const Operation update = [=](Store& s) {
        Alarm alarm = newAlarm({}, {101});
        alarm.id = 1;
        return number(s.updateAlarm(alarm));
    };
    const Operation remove = [=](Store& s) { return number(s.deleteAlarm(1)); };
    const Operation count = [=](Store& s) { return number(s.countAlarms(1)); };
    const Operation alarmSignals = [](Store& s) { return QString::number(s.getAlarmSignals(1).size()); };
    const Operation addSignals = [=](Store& s) { return number(s.addAlarmSignals(2, {101})); };
    const Operation updateSignals = [=](Store& s) { return number(s.updateAlarmSignals(1, {103})); };
    const Operation deleteSignals = [=](Store& s) { return number(s.deleteAlarmSignals(1)); };

    const QString first = QStringLiteral("1|2024-03-01T10:00:00.000|1|1|2|0|Temperature|Value %1 [31.5]||1||101 102");
    // Unwired, every operation reports 0; with a wrong key the connection
    // reports, and the store only the tables it finds missing.
    for (const char* situation : {"unwired", "wrong key"}) {
        const bool unwired = QByteArray(situation) == "unwired";
        const QList<int> codes = unwired ? QList<int>{0} : QList<int>();
        const QByteArray tag = QByteArray(situation) + ": ";
        Failures::row(tag + "initialize", situation, initialize, "0", unwired ? codes : QList<int>{4});
        Failures::row(tag + "all", situation, all, "", codes);
        Failures::row(tag + "of a chamber", situation, ofChamber, "", codes);
        Failures::row(tag + "delay", situation, delay, "0", codes);
        Failures::row(tag + "add", situation, add, "0 0", codes);
        Failures::row(tag + "update", situation, update, "0", codes);
        Failures::row(tag + "delete", situation, remove, "0", codes);
        Failures::row(tag + "count", situation, count, "0", codes);
        Failures::row(tag + "signals", situation, alarmSignals, "0", codes);
        Failures::row(tag + "add signals", situation, addSignals, "0", codes);
        Failures::row(tag + "update signals", situation, updateSignals, "0", codes);
        Failures::row(tag + "delete signals", situation, deleteSignals, "0", codes);
    }
    // Refused by the file, nothing written: a third argument, a signal twice in
    // one transaction, signals of an alarm that isn't there.
    Failures::row("three arguments", "file", Operation([=](Store& s) {
                      Alarm alarm = newAlarm({"a", "b", "c"}, {});
                      return QStringLiteral("%1 %2").arg(s.addAlarm(alarm)).arg(int(alarm.id));
                  }),
                  "0 0", {});
    Failures::row("a signal twice", "file", Operation([=](Store& s) {
                      return number(s.addAlarmSignals(2, {104, 104}));
                  }),
                  "0", {});
    Failures::row("signals of alarm 99", "file",
                  Operation([=](Store& s) { return number(s.addAlarmSignals(99, {101})); }), "0", {});
    Failures::row("no signal table: initialize", "no signal table", initialize, "0", {4});
    // Rows a column short: each reported and passed over.
    Failures::row("short alarm rows", "short rows", all, "", {8, 8}, 13);
    Failures::row("short alarm row of two", "short rows", all, first, {8}, 13);
}

void TestSqlAlarmDatabaseConnection::badInput()
{
    QFETCH(QString, situation);

    const QString path =
        files.create(situation == "no signal table" ? QStringLiteral("DROP TABLE alarm_has_signal;") : alarms);
    QVERIFY(!path.isEmpty());
    Failures::check(path, QByteArray(QTest::currentDataTag()) == "short alarm row of two" ? 1 : -1);
}

int main(int argc, char** argv)
{
    // Local time an hour ahead of UTC in winter.
    qputenv("TZ", "Europe/Berlin");
    tzset();
    QCoreApplication application(argc, argv);
    TestSqlAlarmDatabaseConnection test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_sqlalarmdatabaseconnection.moc"
