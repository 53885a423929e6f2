#include "Base/Connection/DatabaseConnection/SqlChamberDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlConfigurationDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlRoomDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Domain/Types/ChamberData.h"
#include "Domain/Types/ChamberId.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/RecordingId.h"
#include "Domain/Types/ToleranceRange.h"
#include "support/SampleCatalogue.h"
#include "support/StoreFixture.h"
#include "support/TestDatabase.h"

#include <QLoggingCategory>
#include <QtTest>

#include <ctime>
#include <functional>

using zelmor::base::connection::databaseconnection::SqlChamberDatabaseConnection;
using zelmor::base::connection::databaseconnection::SqlConfigurationDatabaseConnection;
using zelmor::base::connection::databaseconnection::SqliteConnection;
using zelmor::base::connection::databaseconnection::SqlRoomDatabaseConnection;
using zelmor::domain::api::ChamberProperty;
using zelmor::domain::api::ISqlConnection;
using zelmor::testsupport::errorCodes;
using zelmor::testsupport::TestDatabase;
using namespace zelmor::domain::types;

using Store = SqlChamberDatabaseConnection;
using Fixture = zelmor::testsupport::StoreFixture<Store>;
using Failures = zelmor::testsupport::FailureTable<Store>;
using Operation = Failures::Operation;
Q_DECLARE_METATYPE(Operation)

namespace {

// The catalogue and the room store that every fixture's chamber store is
// wired to; the room store goes onto the fixture's own connection.
SqlConfigurationDatabaseConnection* catalogue = nullptr;
SqlRoomDatabaseConnection* roomStore = nullptr;

} // namespace

template<>
struct zelmor::testsupport::StoreWiring<Store>
{
    bool wire(Store& store, ISqlConnection* connection)
    {
        roomStore->setDependencies(connection);
        return store.setDependencies(connection, catalogue, roomStore);
    }
};

namespace {

// Chambers 1 (type 1) and 2 (type 11) with a recording each.
const QString chambers =
    QStringLiteral("INSERT INTO chamber (id, chamber_name, chamber_type_id, is_subscribed) VALUES "
                   "(1, 'A', 1, 0), (2, 'B', 11, 0);"
                   "INSERT INTO recording (id, recording_name, chamber_id) VALUES (1, 'R1', 1), (2, 'R2', 2);");

// The history of chamber 1: signal 101 absolute 10..20 from 1 March 09:00 UTC,
// relative 2..3 from 5 March 12:00; signal 102 relative 5..5 from 3 March.
// Chamber 2 and signal 103 mustn't show.
const QString ranges = QStringLiteral(
    "INSERT INTO tolerance_range VALUES ('2024-03-01T09:00:00.000Z', 1, 101, 1, 10.0, 20.0),"
    "('2024-03-05T12:00:00.000Z', 1, 101, 2, 2.0, 3.0), ('2024-03-03T00:00:00.000Z', 1, 102, 2, 5.0, 5.0),"
    "('2024-01-01T00:00:00.000Z', 2, 101, 1, 0.0, 1.0), ('2024-01-01T00:00:00.000Z', 1, 103, 1, 0.0, 1.0);");

// A delete that fails for chamber 2's subscribed signals.
const QString failingSignalDelete =
    QStringLiteral("CREATE TRIGGER keep_signals BEFORE DELETE ON chamber_has_subscribed_signal WHEN old.chamber_id = 2 "
                   "BEGIN SELECT RAISE(ABORT, 'kept'); END;");

// Signals as the recordset store hands them over: only id and unit count here.
QMap<int, ChamberSignal> signalMap()
{
    QMap<int, ChamberSignal> map;
    for (const auto& [id, unit] : {std::pair{101, Unit::CELSIUS}, std::pair{102, Unit::RELATIVE_HUMIDITY_RF}}) {
        ChamberSignal signal;
        signal.id = id;
        signal.unit = unit;
        map.insert(id, signal);
    }
    return map;
}

QDateTime berlin(const QString& text)
{
    return QDateTime::fromString(text, Qt::ISODateWithMs);
}

QString summary(const UnitValue& value)
{
    return value.isValid() ? QString::number(value.value.toDouble()) : QStringLiteral("-");
}

QString summary(const ToleranceRange& range)
{
    return QStringLiteral("%1 %2..%3 %4")
        .arg(ToleranceRange::toString(range.type), summary(range.lower), summary(range.upper),
             Unit::toString(range.lower.unit));
}

QString summary(const QMap<SignalId, ToleranceRange>& ranges)
{
    QStringList texts;
    for (auto range = ranges.cbegin(); range != ranges.cend(); ++range)
        texts.append(QStringLiteral("%1: %2").arg(range.key()).arg(summary(range.value())));
    return texts.join(QStringLiteral("; "));
}

QString summary(const ChamberData& c)
{
    return QStringList{QString::number(c.chamberId),
                       c.chamberName,
                       c.serialNumber,
                       QStringLiteral("%1/%2").arg(c.chamberTypeId.typeId).arg(c.chamberTypeId.additionalInfoId),
                       c.ipAddress.toString(),
                       c.macAddress.toString(),
                       QString::number(c.activationState),
                       QString::number(c.isArchived),
                       c.comPort,
                       QStringLiteral("%1 %2 %3 %4").arg(c.baudRate).arg(c.dataBits).arg(c.stopBits).arg(c.parity),
                       QString::number(c.modbusAddress),
                       QString::number(c.protocol),
                       QString::number(c.converter),
                       QStringLiteral("room %1 at %2/%3")
                           .arg(int(c.roomPosition.roomId))
                           .arg(c.roomPosition.position.x())
                           .arg(c.roomPosition.position.y()),
                       QString::number(c.isSubscribed)}
        .join(QLatin1Char('|'));
}

template<typename Key, typename Value>
QString summary(const QMap<Key, Value>& map)
{
    QStringList texts;
    for (auto entry = map.cbegin(); entry != map.cend(); ++entry)
        texts.append(QStringLiteral("%1=%2").arg(entry.key()).arg(entry.value()));
    return texts.join(' ');
}

QString summary(const QList<SignalId>& ids)
{
    QStringList texts;
    for (SignalId id : ids)
        texts.append(QString::number(id));
    return texts.join(' ');
}

// The columns of a chamber as the shell quotes them, in the order of the table.
const QString chamberRow = QStringLiteral(
    "SELECT quote(chamber_type_id), quote(chamber_type_additional_info_id), quote(serial_no), quote(is_archived), "
    "quote(is_subscribed), quote(is_active), quote(chamber_name), quote(ip_v4_address), quote(ip_v6_address), "
    "quote(mac_address), quote(modbus_address), quote(com_port), quote(parity), quote(baud_rate), "
    "quote(data_bits), quote(stop_bits), quote(protocol_id), quote(converter_id) FROM chamber WHERE id = %1;");

} // namespace

class TestSqlChamberDatabaseConnection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void addAndRead_data();
    void addAndRead();
    void updateAndProperties();
    void signalsAndNames();
    void subscriptions();
    void subscriptionFailures_data();
    void subscriptionFailures();
    void delays();
    void toleranceHistory_data();
    void toleranceHistory();
    void setToleranceRange();
    void cacheEmptiedForEveryChamber();
    void cacheEvictsLeastRecentlyUsed();
    void badInput_data();
    void badInput();

private:
    zelmor::testsupport::ApplicationFiles files{chambers};
    SqliteConnection catalogueConnection{QStringLiteral("chamber_test_catalogue")};
    SqlConfigurationDatabaseConnection catalogueStore;
    SqlRoomDatabaseConnection rooms;
};

void TestSqlChamberDatabaseConnection::initTestCase()
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
    roomStore = &rooms;
}

void TestSqlChamberDatabaseConnection::cleanupTestCase()
{
    catalogueConnection.closeDatabase();
}

void TestSqlChamberDatabaseConnection::addAndRead_data()
{
    QTest::addColumn<ChamberData>("chamber");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("readBack");

    const ChamberData full(-1, "Lab 1", "4711", ChamberTypeId(2, 1003), QHostAddress("192.168.1.20"),
                           MacAddress("00-1A-2B-3C-4D-5E"), ActivationState::ACTIVE, true, "COM3",
                           QSerialPort::Baud9600, QSerialPort::Data8, QSerialPort::TwoStop, QSerialPort::EvenParity, 7,
                           MODBUS_RTU_TUNNEL, WUT_CONVERTER, RoomPosition(), ChamberOperationMode::UNKNOWN_MODE, true);
    QTest::newRow("every field") << full
                                 << "2|1003|4711|1|1|1|'Lab 1'|'192.168.1.20'|NULL|'00:1a:2b:3c:4d:5e'|7|'COM3'|2|9600|"
                                    "8|2|2|1"
                                 << "3|Lab 1|4711|2/1003|192.168.1.20|00:1a:2b:3c:4d:5e|1|1|COM3|9600 8 2 2|7|2|1|"
                                    "room 0 at 0/0|1";
    // Nothing in it: typed NULLs, never empty texts, zeros or -1; the Modbus
    // address and the protocol have numbers of their own.
    QTest::newRow("a default chamber")
        << ChamberData() << "NULL|NULL|NULL|0|0|NULL|NULL|NULL|NULL|NULL|0|NULL|NULL|NULL|NULL|NULL|100|NULL"
        << "3|||0/0|||-1|0||-1 -1 -1 -1|0|100|-1|room 0 at 0/0|0";
    // An IPv6 address is kept in its column, but only "ip_v4_address" makes a
    // chamber read back with an address.
    ChamberData v6;
    v6.ipAddress = QHostAddress("fe80::1");
    QTest::newRow("an IPv6 address")
        << v6 << "NULL|NULL|NULL|0|0|NULL|NULL|NULL|'fe80::1'|NULL|0|NULL|NULL|NULL|NULL|NULL|100|NULL"
        << "3|||0/0|||-1|0||-1 -1 -1 -1|0|100|-1|room 0 at 0/0|0";
}

void TestSqlChamberDatabaseConnection::addAndRead()
{
    QFETCH(ChamberData, chamber);
    QFETCH(QString, stored);
    QFETCH(QString, readBack);

    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    QVERIFY(store.addChamber(chamber));
    QCOMPARE(int(chamber.chamberId), 3);
    QCOMPARE(files.shell(path, chamberRow.arg(3)), stored);
    QCOMPARE(summary(store.getChamberData(3, false)), readBack);
    QCOMPARE(summary(store.getAllChamberData(false).value(2)), readBack);
    QCOMPARE(errors.count(), 0);
}

void TestSqlChamberDatabaseConnection::updateAndProperties()
{
    const QString path = files.create(QStringLiteral("INSERT INTO room (id, room_name) VALUES (4, 'Lab');"
                                                     "INSERT INTO room_chamber_position VALUES (2, 4, 1.5, 2.5);"
                                                     "INSERT INTO chamber_has_subscribed_signal VALUES (1, 101);"
                                                     "UPDATE chamber SET is_subscribed = 1 WHERE id = 1;"));
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    // With the room position only when asked for.
    QCOMPARE(store.getChamberData(2, true).roomPosition, RoomPosition(4, QPointF(1.5, 2.5)));
    QCOMPARE(store.getChamberData(2, false).roomPosition, RoomPosition());
    const QList<ChamberData> all = store.getAllChamberData(true);
    QCOMPARE(all.size(), 2);
    QCOMPARE(all.at(1).roomPosition, RoomPosition(4, QPointF(1.5, 2.5)));

    // An update without the subscription leaves "is_subscribed" alone.
    ChamberData chamber = store.getChamberData(1, false);
    chamber.chamberName = "A2";
    chamber.isSubscribed = false;
    chamber.ipAddress = QHostAddress("10.0.0.9");
    QVERIFY(store.updateChamber(chamber, false));
    QCOMPARE(files.shell(path, "SELECT chamber_name, ip_v4_address, is_subscribed FROM chamber WHERE id = 1;"),
             QStringLiteral("A2|10.0.0.9|1"));
    QVERIFY(store.isChamberSubscribed(1));
    QVERIFY(store.updateChamber(chamber, true));
    QVERIFY(!store.isChamberSubscribed(1));

    // One column, from a chamber or as a value.
    chamber.comPort = "COM9";
    QVERIFY(store.setChamberProperty(chamber, ChamberProperty::COM_PORT));
    QVERIFY(store.setChamberProperty(1, ChamberProperty::MODBUS_ADDRESS, 12));
    QCOMPARE(store.getChamberProperty(1, ChamberProperty::COM_PORT).toString(), QStringLiteral("COM9"));
    QCOMPARE(files.shell(path, "SELECT com_port, modbus_address FROM chamber WHERE id = 1;"),
             QStringLiteral("COM9|12"));

    // Archiving leaves the subscriptions as they are.
    QVERIFY(store.subscribeChamber(1));
    QVERIFY(store.archiveChamber(1));
    QCOMPARE(files.shell(path,
                         "SELECT is_archived, is_subscribed, (SELECT count(*) FROM chamber_has_subscribed_signal) "
                         "FROM chamber WHERE id = 1;"),
             QStringLiteral("1|1|1"));
    QVERIFY(store.getChamberData(1, false).isArchived);
    QVERIFY(store.restoreChamber(1));
    QCOMPARE(files.shell(path, "SELECT is_archived, is_subscribed FROM chamber WHERE id = 1;"), QStringLiteral("0|1"));

    // A chamber without rows that refer to it goes; one with them stays.
    ChamberData spare;
    QVERIFY(store.addChamber(spare));
    QVERIFY(store.deleteChamber(spare.chamberId));
    QVERIFY(!store.deleteChamber(2));
    QCOMPARE(files.shell(path, "SELECT group_concat(id) FROM (SELECT id FROM chamber ORDER BY id);"),
             QStringLiteral("1,2"));
    QCOMPARE(errors.count(), 0);
}

void TestSqlChamberDatabaseConnection::signalsAndNames()
{
    const QString path = files.create(QStringLiteral("INSERT INTO chamber (id) VALUES (3);"));
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    // The signals of the chamber's type in the catalogue: type 11 has four.
    QCOMPARE(store.getChamberSignals(2).keys(), (QList<int>{104, 114, 131, 133}));
    QCOMPARE(store.getChamberSignals(2).value(104).unit, Unit::FAHRENHEIT);
    // No type, no chamber: nothing.
    QVERIFY(store.getChamberSignals(3).isEmpty());
    QVERIFY(store.getChamberSignals(99).isEmpty());

    QVERIFY(store.setChamberCustomSignalNames(1, {{102, "Moisture"}, {101, "Air"}}));
    QVERIFY(store.setChamberCustomSignalNames(1, {{101, "Inlet"}}));
    QVERIFY(store.setChamberCustomSignalNames(2, {{104, ""}}));
    QCOMPARE(files.shell(path, "SELECT chamber_id, signal_id, quote(signal_name) FROM chamber_has_custom_signal_name "
                               "ORDER BY chamber_id, signal_id;"),
             QStringLiteral("1|101|'Inlet'\n1|102|'Moisture'\n2|104|NULL"));
    QCOMPARE(summary(store.getChamberCustomSignalNames(1)), QStringLiteral("101=Inlet 102=Moisture"));
    QCOMPARE(summary(store.getChamberCustomSignalNames(2)), QStringLiteral("104="));
    QCOMPARE(errors.count(), 0);
}

void TestSqlChamberDatabaseConnection::subscriptions()
{
    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);
    const auto rows = [&] {
        return files.shell(path, "SELECT chamber_id, signal_id FROM chamber_has_subscribed_signal "
                                 "ORDER BY chamber_id, signal_id;");
    };

    QVERIFY(store.subscribeChamber(1));
    QVERIFY(store.subscribeChamberSignal(1, 101));
    QVERIFY(store.subscribeChamberSignal(1, 102));
    QVERIFY(store.subscribeChamberSignal(2, 104));
    QVERIFY(store.isChamberSubscribed(1) && !store.isChamberSubscribed(2));
    QCOMPARE(summary(store.getSubscribedChamberSignals(1)), QStringLiteral("101 102"));
    QVERIFY(store.isChamberSignalSubscribed(1, 102) && !store.isChamberSignalSubscribed(2, 102));
    QVERIFY(store.isAnyChamberSignalSubscribed(1, {103, 102}));
    QVERIFY(!store.isAnyChamberSignalSubscribed(1, {103, 104}));
    QVERIFY(!store.isAnyChamberSignalSubscribed(1, {}));

    QVERIFY(store.unsubscribeChamberSignal(1, 101));
    QCOMPARE(rows(), QStringLiteral("1|102\n2|104"));
    // All signals of the chamber go, then the flag.
    QVERIFY(store.unsubscribeChamber(1));
    QCOMPARE(rows(), QStringLiteral("2|104"));
    QVERIFY(!store.isChamberSubscribed(1));

    QVERIFY(store.bulkSubscribeChambers({1, 2}));
    QCOMPARE(files.shell(path, "SELECT group_concat(is_subscribed) FROM chamber;"), QStringLiteral("1,1"));
    QVERIFY(store.subscribeChamberSignal(1, 101));
    QVERIFY(store.bulkUnsubscribeChambers({1, 2}));
    QCOMPARE(rows(), QString());
    QCOMPARE(files.shell(path, "SELECT group_concat(is_subscribed) FROM chamber;"), QStringLiteral("0,0"));
    QCOMPARE(errors.count(), 0);
}

void TestSqlChamberDatabaseConnection::subscriptionFailures_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QString>("result");
    QTest::addColumn<QList<int>>("codes");

    // Chamber 2 can't lose its signals. Its flag stays, the signals of chamber 1
    // too: the transaction's second statement fails, so its first is undone.
    QTest::newRow("unsubscribe") << Operation([](Store& s) { return QString::number(s.unsubscribeChamber(2)); }) << "0"
                                 << QList<int>();
    QTest::newRow("bulk unsubscribe") << Operation([](Store& s) {
        return QString::number(s.bulkUnsubscribeChambers({1, 2}));
    }) << "0" << QList<int>();
    // The store reports a refused signal itself.
    QTest::newRow("a signal twice") << Operation([](Store& s) {
        return QString::number(s.subscribeChamberSignal(1, 101));
    }) << "0" << QList<int>{5};
    QTest::newRow("a chamber that isn't there")
        << Operation([](Store& s) { return QString::number(s.subscribeChamberSignal(99, 101)); }) << "0"
        << QList<int>{5};
}

void TestSqlChamberDatabaseConnection::subscriptionFailures()
{
    QFETCH(Operation, operation);
    QFETCH(QString, result);
    QFETCH(QList<int>, codes);

    const QString path = files.create(failingSignalDelete
                                      + "UPDATE chamber SET is_subscribed = 1;"
                                        "INSERT INTO chamber_has_subscribed_signal VALUES (1, 101), (2, 104);");
    QVERIFY(!path.isEmpty());
    const QString dump = files.shell(path, ".dump");
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    QSignalSpy errors(&fixture.store, &Store::error);

    QCOMPARE(operation(fixture.store), result);
    QCOMPARE(errorCodes(errors), codes);
    QCOMPARE(files.shell(path, ".dump"), dump);
}

void TestSqlChamberDatabaseConnection::delays()
{
    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);
    const auto rows = [&] {
        return files.shell(path, "SELECT chamber_id, signal_id, quote(delay1_in_seconds), quote(delay2_in_seconds) "
                                 "FROM chamber_has_signal_delay ORDER BY signal_id;");
    };

    QCOMPARE(store.getChamberSignalDelayInSeconds(1, 101, false), -1);
    QVERIFY(!store.hasChamberSignalDelay(1, 101, true));

    // A new row holds only the delay given, the other one NULL.
    QVERIFY(store.setChamberSignalDelay(1, 101, true, 120));
    QCOMPARE(rows(), QStringLiteral("1|101|NULL|120"));
    QVERIFY(!store.hasChamberSignalDelay(1, 101, false));
    QVERIFY(store.hasChamberSignalDelay(1, 101, true));
    QCOMPARE(store.getChamberSignalDelayInSeconds(1, 101, false), -1);
    QCOMPARE(store.getChamberSignalDelayInSeconds(1, 101, true), 120);

    // The row that is there gets the other one.
    QVERIFY(store.setChamberSignalDelay(1, 101, false, 30));
    QVERIFY(store.setChamberSignalDelay(1, 102, false, 45));
    QVERIFY(store.setChamberSignalDelay(1, 101, true, 90));
    QCOMPARE(rows(), QStringLiteral("1|101|30|90\n1|102|45|NULL"));
    QCOMPARE(summary(store.getAllChamberSignalDelaysInSeconds(1, false)), QStringLiteral("101=30 102=45"));
    QCOMPARE(summary(store.getAllChamberSignalDelaysInSeconds(1, true)), QStringLiteral("101=90 102=-1"));
    QVERIFY(store.getAllChamberSignalDelaysInSeconds(2, true).isEmpty());

    // A chamber that isn't there gets no row.
    QVERIFY(!store.setChamberSignalDelay(99, 101, false, 5));
    QCOMPARE(rows(), QStringLiteral("1|101|30|90\n1|102|45|NULL"));
    QCOMPARE(errors.count(), 0);
}

void TestSqlChamberDatabaseConnection::toleranceHistory_data()
{
    QTest::addColumn<QDateTime>("time");
    QTest::addColumn<QString>("byChamber");
    QTest::addColumn<QString>("byRecording");
    QTest::addColumn<QString>("single");

    const QString first = QStringLiteral("101: absolute 10..20 °C; 102: relative 5..5 % r.F.");
    const QString later = QStringLiteral("101: relative 2..3 °C; 102: relative 5..5 % r.F.");
    // Local times of Berlin, an hour ahead of UTC in March.
    // Before any range: nothing by chamber, each signal's first range by recording.
    QTest::newRow("before the first range") << berlin("2024-02-28T12:00:00") << "" << first << "invalid -..- ";
    QTest::newRow("a millisecond before it") << berlin("2024-03-01T09:59:59.999") << "" << first << "invalid -..- ";
    QTest::newRow("at its effective_from")
        << berlin("2024-03-01T10:00:00") << "101: absolute 10..20 °C" << first << "absolute 10..20 °C";
    QTest::newRow("between two ranges") << berlin("2024-03-04T00:00:00") << first << first << "absolute 10..20 °C";
    QTest::newRow("at the second range") << berlin("2024-03-05T13:00:00") << later << later << "relative 2..3 °C";
    QTest::newRow("after the last") << berlin("2025-01-01T00:00:00") << later << later << "relative 2..3 °C";
}

void TestSqlChamberDatabaseConnection::toleranceHistory()
{
    QFETCH(QDateTime, time);
    QFETCH(QString, byChamber);
    QFETCH(QString, byRecording);
    QFETCH(QString, single);

    const QString path = files.create(ranges);
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    QCOMPARE(summary(store.getToleranceRanges(time, ChamberId(1), signalMap())), byChamber);
    QCOMPARE(summary(store.getToleranceRanges(time, RecordingId(1), signalMap())), byRecording);
    // Cached now; the history itself gives the same on any thread.
    QCOMPARE(summary(store.getToleranceRanges(time, RecordingId(1), signalMap())), byRecording);
    QCOMPARE(summary(getToleranceRangesAt(store.getToleranceRangeHistory(1, signalMap()), time)), byRecording);
    // The unit of the one signal comes from the catalogue.
    QCOMPARE(summary(store.getToleranceRange(time, 1, 101)), single);
    // A recording that isn't there has no chamber and no ranges.
    QCOMPARE(summary(store.getToleranceRanges(time, RecordingId(9), signalMap())), QString());
    QCOMPARE(errors.count(), 0);
}

void TestSqlChamberDatabaseConnection::setToleranceRange()
{
    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);
    const auto rows = [&] {
        return files.shell(path, "SELECT effective_from, chamber_id, signal_id, range_type, printf('%.2f', range_min), "
                                 "quote(range_max) FROM tolerance_range ORDER BY effective_from;");
    };

    // 14:00 in Berlin in summer is 12:00 UTC. The limits go in the signal's unit,
    // 101 being in °C: 50 °F is 10 °C; a relative 9 °F is a distance of 5 K.
    const QDateTime summer = berlin("2024-06-01T14:00:00");
    QVERIFY(store.setToleranceRange(
        summer, 1, 101, ToleranceRange(UnitValue(Unit::FAHRENHEIT, 50.0f), UnitValue(), ToleranceRange::ABSOLUTE)));
    QVERIFY(store.setToleranceRange(summer.addDays(1), 1, 101,
                                    ToleranceRange(UnitValue(Unit::FAHRENHEIT, 9.0f), UnitValue(Unit::CELSIUS, 1.5f))));
    QCOMPARE(rows(), QStringLiteral("2024-06-01T12:00:00.000Z|1|101|1|10.00|NULL\n"
                                    "2024-06-02T12:00:00.000Z|1|101|2|5.00|1.5"));
    QCOMPARE(summary(store.getToleranceRange(summer.addSecs(1), 1, 101)), QStringLiteral("absolute 10..- °C"));

    // The same moment twice, a chamber or a signal that isn't there, no time:
    // refused, nothing written. The catalogue knows no signal 999.
    const ToleranceRange range(UnitValue(Unit::CELSIUS, 1.0f), UnitValue(Unit::CELSIUS, 1.0f));
    QVERIFY(!store.setToleranceRange(summer, 1, 101, range));
    QVERIFY(!store.setToleranceRange(summer, 99, 101, range));
    QVERIFY(!store.setToleranceRange(QDateTime(), 1, 101, range));
    QCOMPARE(errorCodes(errors), QList<int>());
    QVERIFY(!store.setToleranceRange(summer, 1, 999, range));
    QCOMPARE(errorCodes(errors), QList<int>{8});
    QCOMPARE(rows(), QStringLiteral("2024-06-01T12:00:00.000Z|1|101|1|10.00|NULL\n"
                                    "2024-06-02T12:00:00.000Z|1|101|2|5.00|1.5"));
}

void TestSqlChamberDatabaseConnection::cacheEmptiedForEveryChamber()
{
    const QString path = files.create(ranges);
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    const QDateTime time = berlin("2024-03-04T00:00:00");
    const QString before = QStringLiteral("101: absolute 10..20 °C; 102: relative 5..5 % r.F.");
    const QString after = QStringLiteral("101: absolute 11..21 °C; 102: relative 5..5 % r.F.");

    QCOMPARE(summary(store.getToleranceRanges(time, RecordingId(1), signalMap())), before);
    QCOMPARE(summary(store.getToleranceRanges(time, RecordingId(2), signalMap())),
             QStringLiteral("101: absolute 0..1 °C"));
    // A newer range written behind the store's back: the recording form still
    // answers from its cache, the chamber form reads the file.
    QVERIFY(!files.shell(path, "INSERT INTO tolerance_range VALUES ('2024-03-02T00:00:00.000Z', 1, 101, 1, 11, 21);")
                 .startsWith(QLatin1String("<failed")));
    QCOMPARE(summary(store.getToleranceRanges(time, RecordingId(1), signalMap())), before);
    QCOMPARE(summary(store.getToleranceRanges(time, ChamberId(1), signalMap())), after);

    // A range of chamber 2 empties the cache of chamber 1 too.
    QVERIFY(store.setToleranceRange(berlin("2024-01-02T00:00:00"), 2, 101,
                                    ToleranceRange(UnitValue(Unit::CELSIUS, 3.0f), UnitValue(Unit::CELSIUS, 4.0f))));
    QCOMPARE(summary(store.getToleranceRanges(time, RecordingId(1), signalMap())), after);
    QCOMPARE(summary(store.getToleranceRanges(time, RecordingId(2), signalMap())),
             QStringLiteral("101: relative 3..4 °C"));
}

void TestSqlChamberDatabaseConnection::cacheEvictsLeastRecentlyUsed()
{
    // Chambers 11 to 61, recording n on chamber n, each with one range of n..n.
    QString rows;
    for (int n = 11; n <= 61; ++n) {
        rows += QStringLiteral("INSERT INTO chamber (id) VALUES (%1); INSERT INTO recording (id, chamber_id) VALUES "
                               "(%1, %1); INSERT INTO tolerance_range VALUES ('2024-01-01T00:00:00.000Z', %1, 101, 1, "
                               "%1, %1);")
                    .arg(n);
    }
    const QString path = files.create(rows);
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    const QDateTime time = berlin("2024-06-01T00:00:00");
    const auto lower = [&](int recording) {
        return store.getToleranceRanges(time, RecordingId(recording), signalMap()).value(101).lower.value.toInt();
    };

    // 50 chambers fill the cache; 11 is touched again, so 12 is the least
    // recently used when the 51st comes.
    for (int n = 11; n <= 60; ++n)
        QCOMPARE(lower(n), n);
    QCOMPARE(lower(11), 11);
    QCOMPARE(lower(61), 61);
    // Every range changed in the file: what comes from the cache keeps its value.
    QVERIFY(!files.shell(path, "UPDATE tolerance_range SET range_min = range_min + 100;").startsWith("<failed"));
    QCOMPARE(lower(11), 11);
    QCOMPARE(lower(61), 61);
    QCOMPARE(lower(12), 112);
    // Reading 12 again has pushed out 13, the least recent then.
    QCOMPARE(lower(13), 113);
    QCOMPARE(lower(60), 60);
}

void TestSqlChamberDatabaseConnection::badInput_data()
{
    Failures::addColumns();
    const QDateTime time = berlin("2024-03-04T00:00:00");
    const auto number = [](auto value) { return QString::number(value); };
    const Operation initialize = [=](Store& s) { return number(s.initialize()); };
    const Operation add = [=](Store& s) {
        ChamberData chamber;
        return QStringLiteral("%1 %2").arg(s.addChamber(chamber)).arg(int(chamber.chamberId));
    };
    const Operation all = [](Store& s) {
        QStringList names;
        for (const ChamberData& chamber : s.getAllChamberData(true))
            names.append(chamber.chamberName);
        return names.join(' ');
    };
    const Operation one = [](Store& s) { return summary(s.getChamberData(1, true)); };
    const Operation property = [](Store& s) {
        return s.getChamberProperty(1, ChamberProperty::CHAMBER_NAME).toString();
    };
    const Operation chamberSignals = [](Store& s) { return QString::number(s.getChamberSignals(1).size()); };
    const Operation update = [=](Store& s) {
        ChamberData chamber;
        chamber.chamberId = 1;
        return number(s.updateChamber(chamber, true));
    };
    const Operation setProperty = [=](Store& s) {
        return number(s.setChamberProperty(1, ChamberProperty::COM_PORT, "X"));
    };
    const Operation setNames = [=](Store& s) { return number(s.setChamberCustomSignalNames(1, {{101, "x"}})); };
    const Operation names = [](Store& s) { return summary(s.getChamberCustomSignalNames(1)); };
    const Operation remove = [=](Store& s) { return number(s.deleteChamber(1)); };
    const Operation archive = [=](Store& s) { return number(s.archiveChamber(1)); };
    const Operation byChamber = [=](Store& s) {
        return summary(s.getToleranceRanges(time, ChamberId(1), signalMap()));
    };
    const Operation byRecording = [=](Store& s) {
        return summary(s.getToleranceRanges(time, RecordingId(1), signalMap()));
    };
    const Operation single = [=](Store& s) { return summary(s.getToleranceRange(time, 1, 101)); };
    const Operation setRange = [=](Store& s) {
        return number(s.setToleranceRange(time, 1, 101, ToleranceRange(UnitValue(Unit::CELSIUS, 1.0f), UnitValue())));
    };
    const Operation subscribed = [=](Store& s) { return number(s.isChamberSubscribed(1)); };
    const Operation subscribedSignals = [](Store& s) { return summary(s.getSubscribedChamberSignals(1)); };
    const Operation anySignal = [=](Store& s) { return number(s.isAnyChamberSignalSubscribed(1, {101})); };
    const Operation subscribe = [=](Store& s) { return number(s.subscribeChamber(1)); };
    const Operation unsubscribe = [=](Store& s) { return number(s.unsubscribeChamber(1)); };
    const Operation bulk = [=](Store& s) { return number(s.bulkUnsubscribeChambers({1, 2})); };
    const Operation subscribeSignal = [=](Store& s) { return number(s.subscribeChamberSignal(1, 102)); };
    const Operation delays = [](Store& s) { return summary(s.getAllChamberSignalDelaysInSeconds(1, false)); };
    const Operation delay = [=](Store& s) { return number(s.getChamberSignalDelayInSeconds(1, 101, false)); };
    const Operation setDelay = [=](Store& s) { return number(s.setChamberSignalDelay(1, 101, false, 5)); };

    const QString nothing = QStringLiteral("-1|||0/0|||-1|0||-1 -1 -1 -1|0|100|-1|room 0 at 0/0|0");
    // Unwired, every operation reports 0; with a wrong key the connection
    // reports, and the store only what it finds missing.
    for (const char* situation : {"unwired", "wrong key"}) {
        const bool unwired = QByteArray(situation) == "unwired";
        const QList<int> codes = unwired ? QList<int>{0} : QList<int>();
        const QByteArray tag = QByteArray(situation) + ": ";
        Failures::row(tag + "initialize", situation, initialize, "0", unwired ? codes : QList<int>{4});
        Failures::row(tag + "add", situation, add, "0 -1", codes);
        Failures::row(tag + "all", situation, all, "", codes);
        Failures::row(tag + "one", situation, one, nothing, unwired ? codes : QList<int>{8});
        Failures::row(tag + "property", situation, property, "", codes);
        Failures::row(tag + "signals", situation, chamberSignals, "0", codes);
        Failures::row(tag + "update", situation, update, "0", codes);
        Failures::row(tag + "set property", situation, setProperty, "0", codes);
        Failures::row(tag + "set names", situation, setNames, "0", codes);
        Failures::row(tag + "names", situation, names, "", codes);
        Failures::row(tag + "delete", situation, remove, "0", codes);
        Failures::row(tag + "archive", situation, archive, "0", codes);
        Failures::row(tag + "ranges by chamber", situation, byChamber, "", codes);
        Failures::row(tag + "ranges by recording", situation, byRecording, "", codes);
        Failures::row(tag + "one range", situation, single, "invalid -..- ", codes);
        Failures::row(tag + "set range", situation, setRange, "0", codes);
        Failures::row(tag + "subscribed", situation, subscribed, "0", codes);
        Failures::row(tag + "subscribed signals", situation, subscribedSignals, "", codes);
        Failures::row(tag + "any signal", situation, anySignal, "0", codes);
        Failures::row(tag + "subscribe", situation, subscribe, "0", codes);
        Failures::row(tag + "unsubscribe", situation, unsubscribe, "0", codes);
        Failures::row(tag + "bulk unsubscribe", situation, bulk, "0", codes);
        Failures::row(tag + "subscribe signal", situation, subscribeSignal, "0", unwired ? codes : QList<int>{5});
        Failures::row(tag + "delays", situation, delays, "", codes);
        Failures::row(tag + "delay", situation, delay, "-1", codes);
        Failures::row(tag + "set delay", situation, setDelay, "0", codes);
    }
    // A chamber that isn't there: reads give nothing, writes to its own row
    // change nothing, rows that would refer to it are refused.
    const auto on99 = [](std::function<QString(Store&, const ChamberId&)> operation) {
        return Operation([operation](Store& s) { return operation(s, 99); });
    };
    Failures::row("chamber 99: one", "chamber 99",
                  on99([](Store& s, const ChamberId& id) { return summary(s.getChamberData(id, true)); }), nothing,
                  {8});
    Failures::row("chamber 99: property", "chamber 99", on99([](Store& s, const ChamberId& id) {
                      return s.getChamberProperty(id, ChamberProperty::CHAMBER_NAME).toString();
                  }),
                  "", {});
    Failures::row("chamber 99: signals", "chamber 99",
                  on99([](Store& s, const ChamberId& id) { return QString::number(s.getChamberSignals(id).size()); }),
                  "0", {});
    Failures::row("chamber 99: update", "chamber 99", on99([](Store& s, const ChamberId& id) {
                      ChamberData chamber;
                      chamber.chamberId = id;
                      return QString::number(s.updateChamber(chamber, true));
                  }),
                  "1", {});
    Failures::row("chamber 99: subscribe", "chamber 99",
                  on99([](Store& s, const ChamberId& id) { return QString::number(s.subscribeChamber(id)); }), "1", {});
    Failures::row("chamber 99: set names", "chamber 99", on99([](Store& s, const ChamberId& id) {
                      return QString::number(s.setChamberCustomSignalNames(id, {{101, "x"}}));
                  }),
                  "0", {});
    Failures::row("chamber 99: subscribe signal", "chamber 99", on99([](Store& s, const ChamberId& id) {
                      return QString::number(s.subscribeChamberSignal(id, 101));
                  }),
                  "0", {5});
    Failures::row("chamber 99: set delay", "chamber 99", on99([](Store& s, const ChamberId& id) {
                      return QString::number(s.setChamberSignalDelay(id, 101, true, 5));
                  }),
                  "0", {});
    Failures::row("chamber 99: set range", "chamber 99", on99([time](Store& s, const ChamberId& id) {
                      return QString::number(s.setToleranceRange(time, id, 101, ToleranceRange()));
                  }),
                  "0", {});
    Failures::row("chamber 99: ranges", "chamber 99", on99([time](Store& s, const ChamberId& id) {
                      return summary(s.getToleranceRanges(time, id, signalMap()));
                  }),
                  "", {});
    // Each table without the other: initialize tells.
    Failures::row("no subscription table: initialize", "no subscription table", initialize, "0", {4});
    // Rows a column short: each reported and passed over.
    Failures::row("short chamber rows", "short rows", all, "", {8, 8}, 19);
    Failures::row("short chamber row", "short rows", one, nothing, {8}, 19);
    Failures::row("short name rows", "short rows", names, "", {8}, 2);
    Failures::row("short delay rows", "short rows", delays, "", {8}, 2);
    Failures::row("short range rows by chamber", "short rows", byChamber, "", {8, 8}, 5);
    Failures::row("short range rows by recording", "short rows", byRecording, "", {8, 8, 8}, 5);
    Failures::row("short range row", "short rows", single, "invalid -..- ", {8}, 5);
}

void TestSqlChamberDatabaseConnection::badInput()
{
    QFETCH(QString, situation);

    const QString path = files.create(situation == "no subscription table"
                                          ? QStringLiteral("DROP TABLE chamber_has_subscribed_signal;")
                                          : ranges
                                                + "INSERT INTO chamber_has_custom_signal_name VALUES (1, 101, 'Air');"
                                                  "INSERT INTO chamber_has_signal_delay VALUES (1, 101, 30, NULL);");
    QVERIFY(!path.isEmpty());
    Failures::check(path, -1);
}

int main(int argc, char** argv)
{
    // Local time an hour ahead of UTC in winter, two in summer.
    qputenv("TZ", "Europe/Berlin");
    tzset();
    QCoreApplication application(argc, argv);
    TestSqlChamberDatabaseConnection test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_sqlchamberdatabaseconnection.moc"
