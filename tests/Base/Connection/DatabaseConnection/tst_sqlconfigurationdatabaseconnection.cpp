#include "Base/Connection/DatabaseConnection/SqlConfigurationDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Domain/Api/ISqlQuery.h"
#include "Domain/Types/ChamberOption.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ChamberTypeData.h"
#include "Domain/Types/ChamberTypeId.h"
#include "Domain/Types/ControlSignal.h"
#include "Domain/Types/ControllerAddress.h"
#include "Domain/Types/DefaultToleranceRange.h"
#include "support/SampleCatalogue.h"
#include "support/TestDatabase.h"

#include <QLoggingCategory>
#include <QSignalSpy>
#include <QtTest>

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>

using zelmor::base::connection::databaseconnection::SqlConfigurationDatabaseConnection;
using zelmor::base::connection::databaseconnection::SqliteConnection;
using zelmor::domain::api::ISqlConnection;
using zelmor::domain::api::ISqlQuery;
using zelmor::testsupport::TestDatabase;
using namespace zelmor::domain::types;

using Store = SqlConfigurationDatabaseConnection;
// Runs an operation and tells whether it gave the empty value of its type.
using Operation = std::function<bool(Store&)>;
using Address = QSharedPointer<ControllerAddress>;
using Ids = QList<int>;
using IdsOperation = std::function<Ids(Store&)>;

Q_DECLARE_METATYPE(Operation)
Q_DECLARE_METATYPE(IdsOperation)
Q_DECLARE_METATYPE(ChamberSignal)
Q_DECLARE_METATYPE(ControlSignal)
Q_DECLARE_METATYPE(DefaultToleranceRange)
Q_DECLARE_METATYPE(Ids)

namespace {

const QString projectKey = QLatin1String(TestDatabase::projectKey_);
const float lowest = std::numeric_limits<float>::lowest();
const float highest = std::numeric_limits<float>::max();

// The store with its protected reads in reach.
class OpenStore : public Store
{
public:
    using Store::getControllerAddress;
    using Store::getChamberTypeTestSignalId;
};

// Passes everything on to a real connection, but cuts the last column off the
// rows of statements whose text contains a marker: rows of the wrong width,
// which no well-formed statement on a real engine gives.
class RowCuttingConnection : public ISqlConnection
{
public:
    RowCuttingConnection(ISqlConnection& inner, const QString& marker)
        : inner(inner)
        , marker(marker)
    {
    }

    ExecuteResult execute(const ISqlQuery& query) override { return inner.execute(query); }
    bool executeTransaction(const QList<QSharedPointer<ISqlQuery>>& queries) override
    {
        return inner.executeTransaction(queries);
    }
    QList<QList<QVariant>> fetch(const ISqlQuery& query) const override
    {
        QList<QList<QVariant>> rows = inner.fetch(query);
        if (query.getPreparedQueryString().contains(marker)) {
            for (QList<QVariant>& row : rows) {
                row.removeLast();
            }
        }
        return rows;
    }
    void fetch(const ISqlQuery& query, std::function<void(QList<QVariant>, int)> callback) override
    {
        inner.fetch(query, callback);
    }
    QList<QVariant> fetchSingleColumn(const ISqlQuery& query) const override
    {
        return inner.fetchSingleColumn(query);
    }
    QList<QVariant> fetchSingleRow(const ISqlQuery& query) const override
    {
        QList<QVariant> row = inner.fetchSingleRow(query);
        if (query.getPreparedQueryString().contains(marker) && !row.isEmpty()) {
            row.removeLast();
        }
        return row;
    }
    QVariant fetchSingleValue(const ISqlQuery& query) const override { return inner.fetchSingleValue(query); }
    bool openDatabase(const QString& file, const QString& user, const QString& password, const QString& key) override
    {
        return inner.openDatabase(file, user, password, key);
    }
    void closeDatabase() override { inner.closeDatabase(); }
    bool emptyDatabase() override { return inner.emptyDatabase(); }
    bool containsTable(const QString& table) const override { return inner.containsTable(table); }
    int getDatabaseVersionInfo() override { return inner.getDatabaseVersionInfo(); }
    void error(DatabaseConnectionError) const override {}

private:
    ISqlConnection& inner;
    QString marker;
};

// The catalogue's tables with their columns and no types or constraints, so
// that a purpose-built database can hold what the delivered one never does.
const char* const looseSchema = R"(
CREATE TABLE additional_info (id, article_nr, info);
CREATE TABLE chamber_type_has_additional_info (chamber_type_id, additional_info_id);
CREATE TABLE chamber_type_has_protocol (chamber_type_id, protocol_id);
CREATE TABLE chamber_type_has_signal (chamber_type_id, signal_id);
CREATE TABLE chamber_type (id, type, developement_state, size, voltage, image, description, firmware_start,
    firmware_ende, setup_kennung, setup_version_start, setup_version_ende, kennung_programme, controller_id);
CREATE TABLE controller (id, type);
CREATE TABLE controller_data (id, address, address_type, variable_type, access, description, controller_id,
    set_point_nr, comment);
CREATE TABLE protocol (id, type, interface);
CREATE TABLE signal (id, name, read, write_basic, write_manual, write_auto, unit, user_level, limit_min,
    limit_max, bitposition, signal_type, value_type, set_point_signal, time_programmable, week_programmable);
CREATE TABLE value_type (id, name, decimal_places, color);
CREATE TABLE chamber_type_has_control_signals (chamber_type_id, control_signals_id);
CREATE TABLE control_signals (id, name, bitposition, userlevel, read, write);
CREATE TABLE chamber_type_has_datalogger_signal (chamber_type_id, datalogger_signal_id, channel);
CREATE TABLE chamber_type_has_options (chamber_type_id, options_id);
CREATE TABLE options (id, name, fix);
CREATE TABLE chamber_type_has_test_signal (chamber_type_id, test_signal_id);
CREATE TABLE chamber_type_has_tolerance_range (chamber_type_id, tolerance_range_id);
CREATE TABLE tolerance_range (id, name, set_point, process_value, range_min, range_max, delay1, delay2);
)";

const QStringList requiredTables = {
    QStringLiteral("additional_info"),
    QStringLiteral("chamber_type_has_additional_info"),
    QStringLiteral("chamber_type_has_protocol"),
    QStringLiteral("chamber_type_has_signal"),
    QStringLiteral("chamber_type"),
    QStringLiteral("controller"),
    QStringLiteral("controller_data"),
    QStringLiteral("protocol"),
    QStringLiteral("signal"),
    QStringLiteral("value_type"),
};

Address address(int id, const QString& text, ControllerAddress::Access access, QMetaType::Type type,
                int arraySize, int setPointNr, const QString& description)
{
    return Address::create(id, text, access, type, arraySize, setPointNr, description);
}

// Registers of the sample catalogue, written out from its rows.
Address register1001()
{
    return address(1001, "11400080", ControllerAddress::READ_ONLY, QMetaType::Float, 1, -1,
                   "Temperature actual value");
}
Address register1011()
{
    return address(1011, "11400180", ControllerAddress::READ_WRITE, QMetaType::Float, 1, 1,
                   "Temperature set point");
}
Address register1013()
{
    return address(1013, "11400280", ControllerAddress::WRITE_ONLY, QMetaType::Float, 1, 1,
                   "Temperature set point, program");
}

ChamberSignal signal111()
{
    return ChamberSignal(111, "SP_Temperature", Unit::CELSIUS, QColor("red"), 1, BASIC, -70.0f, 180.0f, -1,
                         ChamberSignal::SET_POINT, nullptr, true, true, register1011(), nullptr, register1011(),
                         register1013());
}

ChamberSignal signal114()
{
    const Address register1015 = address(1015, "11400183", ControllerAddress::READ_WRITE, QMetaType::Float, 1, 1,
                                         "Temperature set point (Fahrenheit)");
    return ChamberSignal(114, "SP_Temperature", Unit::FAHRENHEIT, QColor("red"), 1, BASIC, -94.0f, 356.0f, -1,
                         ChamberSignal::SET_POINT, nullptr, false, false, register1015, nullptr, register1015,
                         nullptr);
}

ChamberSignal signal153()
{
    const Address register1063 = address(1063, "11400190", ControllerAddress::READ_WRITE, QMetaType::Float, 1, 3,
                                         "Illuminance top set point");
    return ChamberSignal(153, "SP_Illuminance_Top", Unit::KILOLUX, QColor("#ff7f0e"), 2, BASIC, 0.0f, 30.0f, -1,
                         ChamberSignal::SET_POINT, nullptr, false, true, register1063, nullptr, register1063,
                         nullptr);
}

// The signals of type 11, the smallest complete type of the sample.
QMap<int, ChamberSignal> signalsOfType11()
{
    const ChamberSignal s104(104, "PV_Temperature", Unit::FAHRENHEIT, QColor("red"), 1, BASIC, -103.0f, 356.0f, -1,
                             ChamberSignal::PROCESS_VALUE, QSharedPointer<ChamberSignal>::create(signal114()), false,
                             false,
                             address(1004, "11400083", ControllerAddress::READ_ONLY, QMetaType::Float, 1, -1,
                                     "Temperature actual value (Fahrenheit)"),
                             nullptr, nullptr, nullptr);
    const ChamberSignal s131(131, "PV_Door_Open", Unit::BOOLEAN, QColor("gray"), 0, NONE, 0.0f, 1.0f, 0,
                             ChamberSignal::PROCESS_VALUE, nullptr, false, false,
                             address(1031, "11500010", ControllerAddress::READ_ONLY, QMetaType::UShort, 1, -1,
                                     "Status word 1"),
                             nullptr, nullptr, nullptr);
    const ChamberSignal s133(133, "PV_Collective_Alarm", Unit::BOOLEAN, QColor("gray"), 0, NONE, 0.0f, 1.0f, -1,
                             ChamberSignal::PROCESS_VALUE, nullptr, false, false,
                             address(1032, "11500020", ControllerAddress::READ_ONLY, QMetaType::Bool, 1, -1,
                                     "Collective alarm"),
                             nullptr, nullptr, nullptr);
    return {{104, s104}, {114, signal114()}, {131, s131}, {133, s133}};
}

void compareAddress(const Address& actual, const Address& expected, const QByteArray& what)
{
    QVERIFY2(bool(actual) == bool(expected), what.constData());
    if (!expected) {
        return;
    }
    QCOMPARE(int(actual->id), int(expected->id));
    QCOMPARE(actual->address, expected->address);
    QCOMPARE(actual->access, expected->access);
    QCOMPARE(actual->type, expected->type);
    QCOMPARE(actual->arraySize, expected->arraySize);
    QCOMPARE(actual->setPointNr, expected->setPointNr);
    QCOMPARE(actual->description, expected->description);
}

// Field by field, so that a failure names the field; then the type's own
// comparison, which must agree.
void compareSignal(const ChamberSignal& actual, const ChamberSignal& expected)
{
    QCOMPARE(actual.id, expected.id);
    QCOMPARE(actual.name, expected.name);
    QCOMPARE(actual.unit, expected.unit);
    QCOMPARE(actual.color, expected.color);
    QCOMPARE(actual.decimalPlaces, expected.decimalPlaces);
    QCOMPARE(actual.userLevel, expected.userLevel);
    QCOMPARE(actual.limitMin, expected.limitMin);
    QCOMPARE(actual.limitMax, expected.limitMax);
    QCOMPARE(actual.bitPosition, expected.bitPosition);
    QCOMPARE(actual.signalType, expected.signalType);
    QCOMPARE(actual.timeProgrammable, expected.timeProgrammable);
    QCOMPARE(actual.weekProgrammable, expected.weekProgrammable);
    compareAddress(actual.read, expected.read, "read");
    compareAddress(actual.writeBasic, expected.writeBasic, "writeBasic");
    compareAddress(actual.writeManual, expected.writeManual, "writeManual");
    compareAddress(actual.writeAuto, expected.writeAuto, "writeAuto");
    QVERIFY2(bool(actual.setPointSignal) == bool(expected.setPointSignal), "set point link");
    if (expected.setPointSignal) {
        compareSignal(*actual.setPointSignal, *expected.setPointSignal);
    }
    QVERIFY(actual == expected);
}

void compareRange(const DefaultToleranceRange& actual, const DefaultToleranceRange& expected)
{
    QCOMPARE(actual.name, expected.name);
    QCOMPARE(actual.setPointSignal, expected.setPointSignal);
    QCOMPARE(actual.processValueSignal, expected.processValueSignal);
    QCOMPARE(actual.range.type, expected.range.type);
    QCOMPARE(actual.range.lower.unit, expected.range.lower.unit);
    QCOMPARE(actual.range.lower.value, expected.range.lower.value);
    QCOMPARE(actual.range.upper.unit, expected.range.upper.unit);
    QCOMPARE(actual.range.upper.value, expected.range.upper.value);
    QCOMPARE(actual.delay1, expected.delay1);
    QCOMPARE(actual.delay2, expected.delay2);
    QVERIFY(actual == expected);
}

DefaultToleranceRange relativeRange(const QString& name, int setPoint, int processValue, Unit::UnitId unit,
                                    float lower, float upper, int delay1, int delay2)
{
    return DefaultToleranceRange(name, setPoint, processValue,
                                 ToleranceRange(UnitValue(unit, lower), UnitValue(unit, upper), ToleranceRange::RELATIVE),
                                 delay1, delay2);
}

Ids idsOf(const QList<ChamberSignal>& signalList)
{
    Ids ids;
    for (const ChamberSignal& signal : signalList) {
        ids.append(signal.id);
    }
    return ids;
}

// "type/variant" of each entry, by type and variant: the engine's order is no contract.
QStringList variantsOf(const QList<ChamberTypeData>& types)
{
    QList<std::pair<quint64, quint64>> ids;
    for (const ChamberTypeData& type : types) {
        ids.append({type.chamberTypeId.typeId, type.chamberTypeId.additionalInfoId});
    }
    std::sort(ids.begin(), ids.end());
    QStringList texts;
    for (const auto& id : ids) {
        texts.append(QStringLiteral("%1/%2").arg(id.first).arg(id.second));
    }
    return texts;
}

QList<int> errorCodes(const QSignalSpy& spy)
{
    QList<int> codes;
    for (const QList<QVariant>& arguments : spy) {
        codes.append(int(arguments.at(0).value<DatabaseConnectionError>()));
    }
    return codes;
}

QString uniqueConnectionName()
{
    static int count = 0;
    return QStringLiteral("tst_sqlconfigurationdatabaseconnection_%1").arg(++count);
}

// A store on its own connection to one database file.
struct Fixture
{
    explicit Fixture(const QString& file)
        : connection(uniqueConnectionName())
    {
        opened = connection.openDatabase(file, QString(), QString(), projectKey);
        store.setDependencies(&connection);
    }

    SqliteConnection connection;
    OpenStore store;
    bool opened = false;
};

} // namespace

class TestSqlConfigurationDatabaseConnection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void operationsBeforeDependencies_data();
    void operationsBeforeDependencies();
    void setDependencies();

    void initialize_data();
    void initialize();

    void allChamberTypesWithoutSignals();
    void allProgrammableChamberTypes();
    void chamberTypeVariants_data();
    void chamberTypeVariants();
    void wholeChamberType();
    void chamberTypeWithSignals_data();
    void chamberTypeWithSignals();
    void chamberTypeOptions();
    void controlSignals_data();
    void controlSignals();

    void signalRows_data();
    void signalRows();
    void unknownSignal();
    void signalLists_data();
    void signalLists();
    void matchingSignals();
    void timeProgrammableSignals();
    void defaultToleranceRange_data();
    void defaultToleranceRange();
    void signalDelay_data();
    void signalDelay();
    void signalUnit_data();
    void signalUnit();
    void testSignal();

    void setPointLinks();
    void missingManualWriteRegister();
    void variableTypes_data();
    void variableTypes();
    void textInIntegerColumns();
    void ambiguousDefaultToleranceRange();
    void rowsOfWrongWidth_data();
    void rowsOfWrongWidth();

private:
    QString createLoose(const QString& fileName, const QString& rows);

    std::unique_ptr<TestDatabase> databases;
    std::unique_ptr<Fixture> sample;
};

void TestSqlConfigurationDatabaseConnection::initTestCase()
{
    qRegisterMetaType<DatabaseConnectionError>();
    // The store reports every skipped row; the tests count the signals instead.
    QLoggingCategory::setFilterRules(QStringLiteral("zelmor.*.warning=false\nzelmor.*.critical=false"));

    databases = std::make_unique<TestDatabase>();
    QVERIFY(databases->isValid());
    const QString file = zelmor::testsupport::createSampleCatalogue(*databases);
    QVERIFY2(!file.isEmpty(), qPrintable(databases->lastError()));
    sample = std::make_unique<Fixture>(file);
    QVERIFY(sample->opened);
}

void TestSqlConfigurationDatabaseConnection::cleanupTestCase()
{
    sample.reset();
    databases.reset();
}

QString TestSqlConfigurationDatabaseConnection::createLoose(const QString& fileName, const QString& rows)
{
    // One transaction: a commit per statement would cost a disk sync each.
    return databases->createEncrypted(fileName, QStringLiteral("BEGIN;\n") + QLatin1String(looseSchema) + rows
                                                    + QStringLiteral("\nCOMMIT;"));
}

void TestSqlConfigurationDatabaseConnection::operationsBeforeDependencies_data()
{
    QTest::addColumn<Operation>("operation");

    const ChamberTypeId type1(1, 1001);
    QTest::newRow("initialize") << Operation([](Store& s) { return !s.initialize(); });
    QTest::newRow("getAllChamberTypeData") << Operation([](Store& s) { return s.getAllChamberTypeData(true).isEmpty(); });
    QTest::newRow("getAllProgrammableChamberTypeData")
        << Operation([](Store& s) { return s.getAllProgrammableChamberTypeData().isEmpty(); });
    QTest::newRow("getChamberTypeData")
        << Operation([type1](Store& s) { return s.getChamberTypeData(type1, true) == ChamberTypeData(); });
    QTest::newRow("getChamberSignals(type)")
        << Operation([type1](Store& s) { return s.getChamberSignals(type1).isEmpty(); });
    QTest::newRow("getTimeProgrammableChamberSignals")
        << Operation([type1](Store& s) { return s.getTimeProgrammableChamberSignals(type1).isEmpty(); });
    QTest::newRow("getSetpointChamberSignals")
        << Operation([type1](Store& s) { return s.getSetpointChamberSignals(type1).isEmpty(); });
    QTest::newRow("getChamberSignals(ids)")
        << Operation([](Store& s) { return s.getChamberSignals(QList<SignalId>{101}).isEmpty(); });
    QTest::newRow("getChamberSignal") << Operation([](Store& s) { return s.getChamberSignal(101).isNull(); });
    QTest::newRow("getMatchingSignals")
        << Operation([type1](Store& s) { return s.getMatchingSignals(type1, type1).isEmpty(); });
    QTest::newRow("getDataloggerChamberSignal")
        << Operation([](Store& s) { return s.getDataloggerChamberSignal(ChamberTypeId(30, 0)).isEmpty(); });
    QTest::newRow("getDefaultToleranceRange") << Operation([type1](Store& s) {
        return s.getDefaultToleranceRange(type1, 111, true) == DefaultToleranceRange();
    });
    QTest::newRow("getChamberSignalDelay")
        << Operation([type1](Store& s) { return s.getChamberSignalDelay(type1, 101, false) == 0; });
    QTest::newRow("getSignalUnitId") << Operation([](Store& s) { return s.getSignalUnitId(101) == Unit::CELSIUS; });
}

void TestSqlConfigurationDatabaseConnection::operationsBeforeDependencies()
{
    QFETCH(Operation, operation);

    Store store;
    QVERIFY(!store.areDependenciesSet());
    QSignalSpy errors(&store, &Store::error);
    QVERIFY(operation(store));
    QCOMPARE(errorCodes(errors), QList<int>{DEPENDENCIES_NOT_SET});
}

void TestSqlConfigurationDatabaseConnection::setDependencies()
{
    Store store;
    QVERIFY(!store.setDependencies(nullptr));
    QVERIFY(!store.areDependenciesSet());
    QVERIFY(store.setDependencies(&sample->connection));
    QVERIFY(store.areDependenciesSet());
}

void TestSqlConfigurationDatabaseConnection::initialize_data()
{
    QTest::addColumn<QString>("sql");
    QTest::addColumn<bool>("expected");

    // Each required table missing in turn; the rest of the catalogue is there.
    for (const QString& missing : requiredTables) {
        QString sql = QLatin1String(looseSchema);
        sql.replace(QStringLiteral("CREATE TABLE %1 (").arg(missing), QStringLiteral("CREATE TABLE x_%1 (").arg(missing));
        QTest::addRow("without %s", qPrintable(missing)) << sql << false;
    }
    // The optional tables are not looked for.
    QString core;
    for (const QString& table : requiredTables) {
        core += QStringLiteral("CREATE TABLE %1 (id);\n").arg(table);
    }
    QTest::newRow("the ten core tables alone") << core << true;
    QTest::newRow("all tables") << QString::fromLatin1(looseSchema) << true;
}

void TestSqlConfigurationDatabaseConnection::initialize()
{
    QFETCH(QString, sql);
    QFETCH(bool, expected);

    const QString file = databases->createEncrypted(QStringLiteral("%1.sqlite3").arg(QTest::currentDataTag()),
                                                    QStringLiteral("BEGIN;\n%1\nCOMMIT;").arg(sql));
    QVERIFY2(!file.isEmpty(), qPrintable(databases->lastError()));
    Fixture fixture(file);
    QVERIFY(fixture.opened);
    QSignalSpy errors(&fixture.store, &Store::error);
    QCOMPARE(fixture.store.initialize(), expected);
    QCOMPARE(errorCodes(errors), expected ? QList<int>() : QList<int>{MISSING_TABLE});
}

void TestSqlConfigurationDatabaseConnection::allChamberTypesWithoutSignals()
{
    QSignalSpy errors(&sample->store, &Store::error);
    const QList<ChamberTypeData> types = sample->store.getAllChamberTypeData(false);

    // One entry per orderable variant: type 2 twice, types without variants with 0.
    QCOMPARE(variantsOf(types),
             QStringList({"1/1001", "2/1002", "2/1003", "3/1004", "9/1009", "11/0", "12/1012", "30/1030", "31/0",
                          "32/0", "40/1040", "41/0", "50/1050", "60/0", "61/0", "62/0", "63/0", "70/1070", "80/0",
                          "90/0", "247/1247"}));
    for (const ChamberTypeData& type : types) {
        QVERIFY(type.chamberSignals.isEmpty());
        QVERIFY(type.controlSignals.isEmpty());
        QVERIFY(type.furtherOptions.isEmpty());
    }
    QVERIFY(sample->store.initialize());
    QCOMPARE(errors.count(), 0);
}

void TestSqlConfigurationDatabaseConnection::allProgrammableChamberTypes()
{
    const QList<ChamberTypeData> types = sample->store.getAllProgrammableChamberTypeData();

    // Every type with a time-programmable signal, type 9 included although its
    // options offer week programs only.
    QCOMPARE(variantsOf(types),
             QStringList({"1/1001", "2/1002", "2/1003", "3/1004", "9/1009", "12/1012", "30/1030", "31/0", "32/0",
                          "40/1040", "41/0", "50/1050", "70/1070", "80/0", "247/1247"}));
    const auto type9 = std::find_if(types.cbegin(), types.cend(),
                                    [](const ChamberTypeData& t) { return t.chamberTypeId.typeId == 9; });
    QVERIFY(!type9->isProgrammable());
    for (const ChamberTypeData& type : types) {
        QVERIFY(type.chamberSignals.isEmpty());
    }
}

void TestSqlConfigurationDatabaseConnection::chamberTypeVariants_data()
{
    QTest::addColumn<quint64>("typeId");
    QTest::addColumn<quint64>("additionalInfoId");
    QTest::addColumn<quint64>("resultInfoId");
    QTest::addColumn<QString>("qualifiedName");
    QTest::addColumn<QString>("controller");
    QTest::addColumn<QString>("articleNumber");
    QTest::addColumn<QString>("info");
    QTest::addColumn<QList<int>>("protocols");
    QTest::addColumn<QList<int>>("errors");

    QTest::newRow("one variant, found by 0") << quint64(1) << quint64(0) << quint64(1001) << "HX 60 Z6" << "TLX" << "HX60-Z6-0001"
                                             << QString::fromUtf8("Standardausführung") << QList<int>{4} << QList<int>();
    QTest::newRow("first of two variants") << quint64(2) << quint64(1002) << quint64(1002) << "HX 120 Z6" << "TLX" << "HX120-Z6-0010"
                                           << "Mit Feuchteregelung" << QList<int>{4} << QList<int>();
    QTest::newRow("second of two variants")
        << quint64(2) << quint64(1003) << quint64(1003) << "HX 120 Z6" << "TLX" << "HX120-Z6-0011"
        << "Mit Feuchteregelung und Innenbeleuchtung" << QList<int>{4} << QList<int>();
    QTest::newRow("two variants, none chosen")
        << quint64(2) << quint64(0) << quint64(0) << "" << "" << "" << "" << QList<int>() << QList<int>{UNEXPECTED_RESULT};
    QTest::newRow("no variants") << quint64(31) << quint64(0) << quint64(0) << "MKF 240 E2" << "KV2" << "" << "" << QList<int>{2, 3}
                                 << QList<int>();
    QTest::newRow("size 0") << quint64(90) << quint64(0) << quint64(0) << "VAC V2" << "CVC" << "" << "" << QList<int>{5}
                            << QList<int>();
    QTest::newRow("protocols 2 and 7") << quint64(62) << quint64(0) << quint64(0) << "VT 4060 Z3" << "Q3.2" << "" << ""
                                       << QList<int>{2, 7} << QList<int>();
    // No row: the empty row has the wrong width.
    QTest::newRow("unknown type") << quint64(1935) << quint64(0) << quint64(0) << "" << "" << "" << "" << QList<int>()
                                  << QList<int>{UNEXPECTED_RESULT};
}

void TestSqlConfigurationDatabaseConnection::chamberTypeVariants()
{
    QFETCH(quint64, typeId);
    QFETCH(quint64, additionalInfoId);
    QFETCH(quint64, resultInfoId);
    QFETCH(QString, qualifiedName);
    QFETCH(QString, controller);
    QFETCH(QString, articleNumber);
    QFETCH(QString, info);
    QFETCH(QList<int>, protocols);
    QFETCH(QList<int>, errors);

    QSignalSpy spy(&sample->store, &Store::error);
    const ChamberTypeData type = sample->store.getChamberTypeData(ChamberTypeId(typeId, additionalInfoId), false);
    QCOMPARE(errorCodes(spy), errors);

    if (qualifiedName.isEmpty()) {
        QVERIFY(type == ChamberTypeData());
        QCOMPARE(type.setupVersionStart, -1);
        QVERIFY(type.protocols.isEmpty());
        return;
    }
    QCOMPARE(type.chamberTypeId, ChamberTypeId(typeId, resultInfoId));
    QCOMPARE(type.getQualifiedTypeName(), qualifiedName);
    QCOMPARE(type.controller, controller);
    QCOMPARE(type.articleNumber, articleNumber);
    QCOMPARE(type.info, info);
    QList<int> actualProtocols;
    for (ChamberProtocol protocol : type.protocols) {
        actualProtocols.append(protocol);
    }
    std::sort(actualProtocols.begin(), actualProtocols.end());
    QCOMPARE(actualProtocols, protocols);
}

void TestSqlConfigurationDatabaseConnection::wholeChamberType()
{
    QSignalSpy errors(&sample->store, &Store::error);
    const ChamberTypeData type = sample->store.getChamberTypeData(ChamberTypeId(11, 0), true);

    // The row of type 11: no state, no size, no options, no control signals.
    const ChamberTypeData expected(ChamberTypeId(11, 0), "WIK", "", -1, "208 V 3/PE AC 60 Hz", "wik.png",
                                   "Begehbare Klimakammer", "1.20", "", "", -1, -1, "", "", "", "TLX", {TLX},
                                   signalsOfType11(), {}, {}, {});
    QCOMPARE(type.chamberSignals.keys(), expected.chamberSignals.keys());
    for (int id : expected.chamberSignals.keys()) {
        compareSignal(type.chamberSignals.value(id), expected.chamberSignals.value(id));
    }
    QVERIFY(type == expected);
    QCOMPARE(type.setupVersionStart, -1);
    QCOMPARE(type.setupVersionEnde, -1);
    QCOMPARE(type.protocols, QList<ChamberProtocol>{TLX});
    QCOMPARE(errors.count(), 0);
}

void TestSqlConfigurationDatabaseConnection::chamberTypeWithSignals_data()
{
    QTest::addColumn<quint64>("typeId");
    QTest::addColumn<quint64>("additionalInfoId");
    QTest::addColumn<Ids>("signalIds");
    QTest::addColumn<Ids>("controlSignalIds");

    QTest::newRow("TLX") << quint64(1) << quint64(1001)
                         << Ids{101, 102, 111, 112, 121, 131, 132, 133, 134, 141, 142, 143, 144}
                         << Ids{11, 12, 13, 14, 15, 16, 17};
    QTest::newRow("broken link") << quint64(12) << quint64(0)
                                 << Ids{101, 102, 111, 112, 133, 151, 152, 154, 160, 161, 162, 163} << Ids{11, 12};
    QTest::newRow("KV2 Modbus TCP") << quint64(247) << quint64(1247)
                                    << Ids{301, 302, 303, 304, 310, 311, 312, 314, 321, 322, 323, 324, 331, 332, 333,
                                           334, 335}
                                    << Ids{31, 32, 33, 34, 35, 36};
    QTest::newRow("vacuum controller") << quint64(90) << quint64(0) << Ids{901, 902, 903} << Ids();
}

void TestSqlConfigurationDatabaseConnection::chamberTypeWithSignals()
{
    QFETCH(quint64, typeId);
    QFETCH(quint64, additionalInfoId);
    QFETCH(Ids, signalIds);
    QFETCH(Ids, controlSignalIds);

    QSignalSpy errors(&sample->store, &Store::error);
    const ChamberTypeData type = sample->store.getChamberTypeData(ChamberTypeId(typeId, additionalInfoId), true);
    QCOMPARE(type.chamberSignals.keys(), signalIds);
    QCOMPARE(type.controlSignals.keys(), controlSignalIds);
    QCOMPARE(errors.count(), 0);
}

void TestSqlConfigurationDatabaseConnection::chamberTypeOptions()
{
    const ChamberTypeData type = sample->store.getChamberTypeData(ChamberTypeId(30, 0), false);
    QCOMPARE(type.options, QList<ChamberOption>({{"Bedewing_Protection", false},
                                                 {"Program_Progressbar", false},
                                                 {"TimeProgram", true},
                                                 {"OperatingModeSwitching", true},
                                                 {"Readable_DataStorage", true}}));
    QVERIFY(type.furtherOptions.isEmpty());
}

void TestSqlConfigurationDatabaseConnection::controlSignals_data()
{
    QTest::addColumn<quint64>("typeId");
    QTest::addColumn<int>("controlSignalId");
    QTest::addColumn<ControlSignal>("expected");

    const ControllerAddress register1051(1051, "11700000", ControllerAddress::READ_WRITE, QMetaType::Int, 1, -1,
                                         "Operating mode");
    QTest::newRow("read and write") << quint64(1) << 11
                                    << ControlSignal(11, "Ctrl_OpMode_Mode", -1, ADVANCED, register1051, register1051);
    QTest::newRow("write NULL") << quint64(1) << 12
                                << ControlSignal(12, "Ctrl_Prog_Time_Remaining", -1, BASIC,
                                                 ControllerAddress(1052, "11700002", ControllerAddress::READ_ONLY,
                                                                   QMetaType::UInt, 1, -1, "Program time remaining"),
                                                 ControllerAddress::placeholder());
    QTest::newRow("write -1") << quint64(1) << 13
                              << ControlSignal(13, "Ctrl_Prog_Time_Elapsed", -1, BASIC,
                                               ControllerAddress(1053, "11700004", ControllerAddress::READ_ONLY,
                                                                 QMetaType::UInt, 1, -1, "Program time elapsed"),
                                               ControllerAddress::placeholder());
    const ControllerAddress register3047(3047, "1156", ControllerAddress::READ_WRITE, QMetaType::Bool, 1, -1,
                                         "Remote operation enabled");
    QTest::newRow("bit 0") << quint64(247) << 36
                           << ControlSignal(36, "Ctrl_Remote_Enable", 0, ADMINISTRATOR, register3047, register3047);
    QTest::newRow("read NULL") << quint64(40) << 43
                               << ControlSignal(43, "Ctrl_Prog_Command", -1, ADVANCED, ControllerAddress::placeholder(),
                                                ControllerAddress(4023, "1A22", ControllerAddress::WRITE_ONLY,
                                                                  QMetaType::UShort, 1, -1, "Program command"));
}

void TestSqlConfigurationDatabaseConnection::controlSignals()
{
    QFETCH(quint64, typeId);
    QFETCH(int, controlSignalId);
    QFETCH(ControlSignal, expected);

    const ChamberTypeData type = sample->store.getChamberTypeData(ChamberTypeId(typeId, 0), true);
    QVERIFY(type.controlSignals.contains(controlSignalId));
    const ControlSignal actual = type.controlSignals.value(controlSignalId);
    QCOMPARE(actual.name, expected.name);
    QCOMPARE(actual.bitPosition, expected.bitPosition);
    // Not part of the comparison below.
    QCOMPARE(actual.userLevel, expected.userLevel);
    QVERIFY(actual == expected);
}

void TestSqlConfigurationDatabaseConnection::signalRows_data()
{
    QTest::addColumn<int>("signalId");
    QTest::addColumn<ChamberSignal>("expected");

    QTest::newRow("set point with three registers") << 111 << signal111();
    QTest::newRow("process value linked to its set point")
        << 101
        << ChamberSignal(101, "PV_Temperature", Unit::CELSIUS, QColor("red"), 1, BASIC, -75.0f, 180.0f, -1,
                         ChamberSignal::PROCESS_VALUE, QSharedPointer<ChamberSignal>::create(signal111()), false,
                         false, register1001(), nullptr, nullptr, nullptr);
    QTest::newRow("names itself as its set point")
        << 121
        << ChamberSignal(121, "SP_Fan_Speed", Unit::PERCENT, QColor("magenta"), 0, ADVANCED, 0.0f, 100.0f, -1,
                         ChamberSignal::SET_POINT_PROCESS_VALUE, nullptr, false, false,
                         address(1021, "11400300", ControllerAddress::READ_WRITE, QMetaType::UChar, 1, -1, "Fan speed"),
                         nullptr,
                         address(1021, "11400300", ControllerAddress::READ_WRITE, QMetaType::UChar, 1, -1, "Fan speed"),
                         nullptr);
    QTest::newRow("NULLs and an array register")
        << 144
        << ChamberSignal(144, "PV_Error_History", Unit::DIMENSIONLESS, QColor(), 0, LABORATORY, lowest, highest, -1,
                         ChamberSignal::NO_SIGNAL_TYPE, nullptr, false, false,
                         address(1044, "11600010", ControllerAddress::READ_ONLY, QMetaType::UShort, 4, -1,
                                 "Error history, last four codes"),
                         nullptr, nullptr, nullptr);
    QTest::newRow("link to a set point of another type")
        << 151
        << ChamberSignal(151, "PV_Illuminance_Top", Unit::KILOLUX, QColor("#ff7f0e"), 2, BASIC, 0.0f, 30.0f, -1,
                         ChamberSignal::PROCESS_VALUE, QSharedPointer<ChamberSignal>::create(signal153()), false,
                         false,
                         address(1061, "11400090", ControllerAddress::READ_ONLY, QMetaType::Float, 1, -1,
                                 "Illuminance top"),
                         nullptr, nullptr, nullptr);
    QTest::newRow("no register at all")
        << 158
        << ChamberSignal(158, "PV_Dew_Point", Unit::CELSIUS, QColor("red"), 1, BASIC, -60.0f, 100.0f, -1,
                         ChamberSignal::PROCESS_VALUE, nullptr, false, false, nullptr, nullptr, nullptr, nullptr);
    const Address register3014 = address(3014, "1106", ControllerAddress::READ_WRITE, QMetaType::Float, 1, 4,
                                         "Pressure set point");
    QTest::newRow("basic write register only")
        << 314
        << ChamberSignal(314, "SP_Pressure", Unit::HECTOPASCAL, QColor("darkgreen"), 1, ADVANCED, 100.0f, 1100.0f, -1,
                         ChamberSignal::SET_POINT, nullptr, true, false, register3014, register3014, nullptr, nullptr);
    const Address register6023 = address(6023, "0322", ControllerAddress::READ_WRITE, QMetaType::Bool, 1, -1,
                                         "Interior light");
    QTest::newRow("empty signal type")
        << 623
        << ChamberSignal(623, "SP_Interior_Light", Unit::BOOLEAN, QColor("gray"), 0, BASIC, 0.0f, 1.0f, -1,
                         ChamberSignal::NO_SIGNAL_TYPE, nullptr, false, false, register6023, nullptr, register6023,
                         nullptr);
    QTest::newRow("empty colour, TIME register, unknown unit")
        << 804
        << ChamberSignal(804, "PV_Controller_Clock", Unit::DIMENSIONLESS, QColor(), 0, ADMINISTRATOR, lowest, highest,
                         -1, ChamberSignal::PROCESS_VALUE, nullptr, false, false,
                         address(8004, "0060", ControllerAddress::READ_ONLY, QMetaType::QTime, 1, -1,
                                 "Controller clock"),
                         nullptr, nullptr, nullptr);
    QTest::newRow("empty access, unknown type word")
        << 903
        << ChamberSignal(903, "PV_Firmware_Version", Unit::DIMENSIONLESS, QColor(), 0, SERVICE, lowest, highest, -1,
                         ChamberSignal::PROCESS_VALUE, nullptr, false, false,
                         address(9004, "IN_VER", ControllerAddress::UNKNOWN, QMetaType::UnknownType, 1, -1,
                                 "Firmware version"),
                         nullptr, nullptr, nullptr);
}

void TestSqlConfigurationDatabaseConnection::signalRows()
{
    QFETCH(int, signalId);
    QFETCH(ChamberSignal, expected);

    QSignalSpy errors(&sample->store, &Store::error);
    const QSharedPointer<ChamberSignal> signal = sample->store.getChamberSignal(signalId);
    QVERIFY(signal);
    compareSignal(*signal, expected);
    QCOMPARE(errors.count(), 0);
}

void TestSqlConfigurationDatabaseConnection::unknownSignal()
{
    QSignalSpy errors(&sample->store, &Store::error);
    QVERIFY(sample->store.getChamberSignal(4711).isNull());
    QCOMPARE(errorCodes(errors), QList<int>{UNEXPECTED_RESULT});

    // An unknown register is no failure: the address is just missing.
    errors.clear();
    QVERIFY(sample->store.getControllerAddress(4711).isNull());
    QCOMPARE(errors.count(), 0);
}

void TestSqlConfigurationDatabaseConnection::signalLists_data()
{
    QTest::addColumn<IdsOperation>("operation");
    QTest::addColumn<Ids>("expected");

    QTest::newRow("signals of a type")
        << IdsOperation([](Store& s) { return s.getChamberSignals(ChamberTypeId(70, 0)).keys(); })
        << Ids{701, 702, 703, 711, 712, 721, 722};
    QTest::newRow("signals by id, unknown ones left out")
        << IdsOperation([](Store& s) { return s.getChamberSignals(QList<SignalId>{131, 4711, 101}).keys(); })
        << Ids{101, 131};
    QTest::newRow("set points of TLX type 1, not the combined 121")
        << IdsOperation([](Store& s) { return s.getSetpointChamberSignals(ChamberTypeId(1, 0)).keys(); })
        << Ids{111, 112, 134};
    QTest::newRow("set points of KV2 type 247")
        << IdsOperation([](Store& s) { return s.getSetpointChamberSignals(ChamberTypeId(247, 0)).keys(); })
        << Ids{310, 311, 312, 314, 323};
    QTest::newRow("data logger in channel order, 30")
        << IdsOperation([](Store& s) { return idsOf(s.getDataloggerChamberSignal(ChamberTypeId(30, 0))); })
        << Ids{301, 302, 311, 312};
    QTest::newRow("data logger in channel order, 70")
        << IdsOperation([](Store& s) { return idsOf(s.getDataloggerChamberSignal(ChamberTypeId(70, 0))); })
        << Ids{702, 701, 703};
    QTest::newRow("no data logger")
        << IdsOperation([](Store& s) { return idsOf(s.getDataloggerChamberSignal(ChamberTypeId(1, 0))); }) << Ids{};
    QTest::newRow("signals of an unknown type")
        << IdsOperation([](Store& s) { return s.getChamberSignals(ChamberTypeId(4711, 0)).keys(); }) << Ids{};
}

void TestSqlConfigurationDatabaseConnection::signalLists()
{
    QFETCH(IdsOperation, operation);
    QFETCH(Ids, expected);

    QSignalSpy errors(&sample->store, &Store::error);
    QCOMPARE(operation(sample->store), expected);
    QCOMPARE(errors.count(), 0);
}

void TestSqlConfigurationDatabaseConnection::matchingSignals()
{
    // Source type 11: 104, 114 temperature (value type 1), 131, 133 digital (5).
    // Destination type 41: 401, 411 temperature, 421 counter (8), 422, 423 digital.
    const QMap<SignalId, ChamberSignal> matches =
        sample->store.getMatchingSignals(ChamberTypeId(11, 0), ChamberTypeId(41, 0));
    QCOMPARE(matches.keys(), Ids({401, 411, 422, 423}));
    QVERIFY(Ids({104, 114}).contains(matches.value(401).id));
    QVERIFY(Ids({104, 114}).contains(matches.value(411).id));
    QVERIFY(Ids({131, 133}).contains(matches.value(422).id));
    QVERIFY(Ids({131, 133}).contains(matches.value(423).id));
    // The values are whole signals, links included.
    const ChamberSignal source = matches.value(401);
    compareSignal(source, signalsOfType11().value(source.id));
}

void TestSqlConfigurationDatabaseConnection::timeProgrammableSignals()
{
    QSignalSpy errors(&sample->store, &Store::error);
    const QList<std::pair<ChamberSignal, DefaultToleranceRange>> result =
        sample->store.getTimeProgrammableChamberSignals(ChamberTypeId(247, 0));

    // By the set point number of the manual write register (1, 2, 3); 314 has
    // none and is left out.
    QCOMPARE(result.size(), 3);
    QCOMPARE(result.at(0).first.id, 311);
    QCOMPARE(result.at(1).first.id, 312);
    QCOMPARE(result.at(2).first.id, 310);
    compareRange(result.at(0).second, relativeRange("Temperature", 311, 301, Unit::CELSIUS, 1.0f, 1.0f, 180, 10));
    compareRange(result.at(1).second,
                 relativeRange("Humidity", 312, 302, Unit::RELATIVE_HUMIDITY_RF, 3.0f, 3.0f, 300, 20));
    compareRange(result.at(2).second, DefaultToleranceRange());
    QCOMPARE(errors.count(), 0);
}

void TestSqlConfigurationDatabaseConnection::defaultToleranceRange_data()
{
    QTest::addColumn<quint64>("typeId");
    QTest::addColumn<int>("signalId");
    QTest::addColumn<bool>("isSetPoint");
    QTest::addColumn<DefaultToleranceRange>("expected");

    const DefaultToleranceRange temperature = relativeRange("Temperature", 111, 101, Unit::CELSIUS, 2.0f, 2.0f, 300, 15);
    QTest::newRow("by set point") << quint64(1) << 111 << true << temperature;
    QTest::newRow("by process value") << quint64(1) << 101 << false << temperature;
    QTest::newRow("set point id given as process value") << quint64(1) << 111 << false << DefaultToleranceRange();
    QTest::newRow("range of another type") << quint64(2) << 121 << true << DefaultToleranceRange();
    QTest::newRow("one NULL delay") << quint64(1) << 121 << true
                                    << relativeRange("Fan speed", 121, 121, Unit::PERCENT, 10.0f, 10.0f, -1, 1);
    QTest::newRow("unit of the joined process value")
        << quint64(12) << 160 << false
        << relativeRange(QString::fromUtf8("CO₂"), 161, 160, Unit::VOLUME_PERCENT, 0.5f, 0.5f, 600, -1);
    QTest::newRow("NULL bounds and delays")
        << quint64(247) << 314 << true << relativeRange("Pressure", 314, 304, Unit::HECTOPASCAL, 0.0f, 0.0f, -1, -1);
}

void TestSqlConfigurationDatabaseConnection::defaultToleranceRange()
{
    QFETCH(quint64, typeId);
    QFETCH(int, signalId);
    QFETCH(bool, isSetPoint);
    QFETCH(DefaultToleranceRange, expected);

    QSignalSpy errors(&sample->store, &Store::error);
    compareRange(sample->store.getDefaultToleranceRange(ChamberTypeId(typeId, 0), signalId, isSetPoint), expected);
    QCOMPARE(errors.count(), 0);
}

void TestSqlConfigurationDatabaseConnection::signalDelay_data()
{
    QTest::addColumn<quint64>("typeId");
    QTest::addColumn<int>("signalId");
    QTest::addColumn<bool>("second");
    QTest::addColumn<int>("expected");

    QTest::newRow("delay2 of 2 minutes") << quint64(70) << 701 << true << 120;
    QTest::newRow("delay1 in seconds") << quint64(70) << 701 << false << 120;
    QTest::newRow("delay2 of 15 minutes") << quint64(1) << 101 << true << 900;
    QTest::newRow("delay1 of 300 seconds") << quint64(1) << 101 << false << 300;
    QTest::newRow("delay1 NULL") << quint64(1) << 121 << false << 0;
    QTest::newRow("delay2 of 1 minute") << quint64(1) << 121 << true << 60;
    QTest::newRow("range not of this type") << quint64(2) << 121 << true << 0;
    QTest::newRow("set point id is no process value") << quint64(1) << 111 << false << 0;
}

void TestSqlConfigurationDatabaseConnection::signalDelay()
{
    QFETCH(quint64, typeId);
    QFETCH(int, signalId);
    QFETCH(bool, second);
    QFETCH(int, expected);

    QCOMPARE(sample->store.getChamberSignalDelay(ChamberTypeId(typeId, 0), signalId, second), expected);
}

void TestSqlConfigurationDatabaseConnection::signalUnit_data()
{
    QTest::addColumn<int>("signalId");
    QTest::addColumn<int>("expected");

    QTest::newRow("°C") << 101 << int(Unit::CELSIUS);
    QTest::newRow("°F") << 104 << int(Unit::FAHRENHEIT);
    QTest::newRow("% r.H.") << 702 << int(Unit::RELATIVE_HUMIDITY_RH);
    QTest::newRow("W/m²") << 156 << int(Unit::WATT_PER_SQUARE_METRE);
    QTest::newRow("h, no unit of the system") << 141 << int(Unit::UNDEFINED);
    QTest::newRow("NULL") << 142 << int(Unit::DIMENSIONLESS);
    QTest::newRow("unknown signal") << 4711 << int(Unit::DIMENSIONLESS);
}

void TestSqlConfigurationDatabaseConnection::signalUnit()
{
    QFETCH(int, signalId);
    QFETCH(int, expected);

    QCOMPARE(int(sample->store.getSignalUnitId(signalId)), expected);
}

void TestSqlConfigurationDatabaseConnection::testSignal()
{
    QCOMPARE(sample->store.getChamberTypeTestSignalId(ChamberTypeId(11, 0)), 104);
    QCOMPARE(sample->store.getChamberTypeTestSignalId(ChamberTypeId(50, 1050)), 503);
    QCOMPARE(sample->store.getChamberTypeTestSignalId(ChamberTypeId(90, 0)), -1);
}

void TestSqlConfigurationDatabaseConnection::setPointLinks()
{
    // 1 names itself; 2 links 3, which names itself; 4 links a signal that isn't there.
    const QString file = createLoose(QStringLiteral("links.sqlite3"), R"(
INSERT INTO signal (id, name, set_point_signal) VALUES (1, 'self', 1), (2, 'chain', 3), (3, 'end', 3),
    (4, 'dangling', 99), (5, 'none', -1);
)");
    QVERIFY2(!file.isEmpty(), qPrintable(databases->lastError()));
    Fixture fixture(file);
    QSignalSpy errors(&fixture.store, &Store::error);

    const QMap<int, ChamberSignal> signalMap = fixture.store.getChamberSignals(QList<SignalId>{1, 2, 5});
    QCOMPARE(signalMap.keys(), Ids({1, 2, 5}));
    QVERIFY(signalMap.value(1).setPointSignal.isNull());
    QVERIFY(signalMap.value(2).setPointSignal);
    QCOMPARE(signalMap.value(2).setPointSignal->name, QStringLiteral("end"));
    QVERIFY(signalMap.value(2).setPointSignal->setPointSignal.isNull());
    QVERIFY(signalMap.value(5).setPointSignal.isNull());
    QCOMPARE(errors.count(), 0);

    // The dangling link is reported and left out; the signal itself stays.
    const QSharedPointer<ChamberSignal> dangling = fixture.store.getChamberSignal(4);
    QVERIFY(dangling);
    QVERIFY(dangling->setPointSignal.isNull());
    QCOMPARE(errorCodes(errors), QList<int>{UNEXPECTED_RESULT});
}

void TestSqlConfigurationDatabaseConnection::missingManualWriteRegister()
{
    // Type 1 has four time-programmable signals: 10 and 12 with manual write
    // registers of set point number 2 and 1, 11 with NULL, 13 with a register
    // id that isn't there; 14 is not time-programmable.
    const QString file = createLoose(QStringLiteral("manual.sqlite3"), R"(
INSERT INTO chamber_type_has_signal VALUES (1, 10), (1, 11), (1, 12), (1, 13), (1, 14), (2, 15);
INSERT INTO controller_data (id, address, variable_type, access, set_point_nr) VALUES
    (100, '0100', 'FLOAT', 'RW', 2), (101, '0101', 'FLOAT', 'RW', 1), (102, '0102', 'FLOAT', 'RW', 0);
INSERT INTO signal (id, name, write_manual, time_programmable) VALUES
    (10, 'second', 100, 1), (11, 'no register', NULL, 1), (12, 'first', 101, 1), (13, 'lost register', 77, 1),
    (14, 'not programmable', 102, 0), (15, 'other type', 102, 1);
)");
    QVERIFY2(!file.isEmpty(), qPrintable(databases->lastError()));
    Fixture fixture(file);

    const QList<std::pair<ChamberSignal, DefaultToleranceRange>> result =
        fixture.store.getTimeProgrammableChamberSignals(ChamberTypeId(1, 0));
    QCOMPARE(result.size(), 2);
    QCOMPARE(result.at(0).first.name, QStringLiteral("first"));
    QCOMPARE(result.at(1).first.name, QStringLiteral("second"));
    compareRange(result.at(0).second, DefaultToleranceRange());
}

void TestSqlConfigurationDatabaseConnection::variableTypes_data()
{
    QTest::addColumn<int>("registerId");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("arraySize");

    QTest::newRow("FLOAT") << 1 << int(QMetaType::Float) << 1;
    QTest::newRow("UINT16[4]") << 2 << int(QMetaType::UShort) << 4;
    QTest::newRow("unknown word") << 3 << int(QMetaType::UnknownType) << 1;
    QTest::newRow("unknown word with size") << 4 << int(QMetaType::UnknownType) << 8;
    QTest::newRow("INT8 is a plain int") << 5 << int(QMetaType::Int) << 1;
    QTest::newRow("INT10") << 6 << QMetaType::type("zelmor::domain::types::Int10") << 1;
    QTest::newRow("lower case") << 7 << int(QMetaType::UnknownType) << 1;
    QTest::newRow("NULL") << 8 << int(QMetaType::UnknownType) << 1;
    QTest::newRow("empty brackets") << 9 << int(QMetaType::Char) << 0;
}

void TestSqlConfigurationDatabaseConnection::variableTypes()
{
    QFETCH(int, registerId);
    QFETCH(int, type);
    QFETCH(int, arraySize);

    static const QString file = createLoose(QStringLiteral("types.sqlite3"), R"(
INSERT INTO controller_data (id, address, variable_type, access) VALUES
    (1, 'A', 'FLOAT', 'RO'), (2, 'B', 'UINT16[4]', 'RO'), (3, 'C', 'WORD', 'RO'), (4, 'D', 'WORD[8]', 'RO'),
    (5, 'E', 'INT8', 'RO'), (6, 'F', 'INT10', 'RO'), (7, 'G', 'float', 'RO'), (8, 'H', NULL, 'RO'),
    (9, 'I', 'CHAR[]', 'RO');
)");
    QVERIFY2(!file.isEmpty(), qPrintable(databases->lastError()));
    Fixture fixture(file);

    const Address register_ = fixture.store.getControllerAddress(registerId);
    QVERIFY(register_);
    QCOMPARE(int(register_->type), type);
    QCOMPARE(register_->arraySize, arraySize);
}

void TestSqlConfigurationDatabaseConnection::textInIntegerColumns()
{
    // Text where numbers belong: numeric text reads as its number, other text as
    // the conversion's zero, not as the column's default.
    const QString file = createLoose(QStringLiteral("text.sqlite3"), R"(
INSERT INTO value_type VALUES (1, 'Temperature', '2', 'blue');
INSERT INTO controller_data (id, address, variable_type, access, set_point_nr) VALUES (10, '0010', 'FLOAT', 'RW', 'x');
INSERT INTO signal VALUES (1, 'S', '10', 'abc', NULL, '', '°C', 'abc', '1.5', 'high', '2', 'set_point', '1', '1',
    'false', 'yes');
INSERT INTO chamber_type VALUES (7, 'T', 'Z1', 'big', '', '', '', '', '', '', '3', 'x', '', NULL);
INSERT INTO chamber_type_has_signal VALUES (7, 1);
)");
    QVERIFY2(!file.isEmpty(), qPrintable(databases->lastError()));
    Fixture fixture(file);
    QSignalSpy errors(&fixture.store, &Store::error);

    const QSharedPointer<ChamberSignal> signal = fixture.store.getChamberSignal(1);
    QVERIFY(signal);
    QCOMPARE(signal->userLevel, NONE);
    QCOMPARE(signal->limitMin, 1.5f);
    QCOMPARE(signal->limitMax, 0.0f);
    QCOMPARE(signal->bitPosition, 2);
    QCOMPARE(signal->color, QColor("blue"));
    QCOMPARE(signal->decimalPlaces, 2);
    // "1" is its own id: no link.
    QVERIFY(signal->setPointSignal.isNull());
    QCOMPARE(signal->timeProgrammable, false);
    QCOMPARE(signal->weekProgrammable, true);
    QVERIFY(signal->read);
    QCOMPARE(signal->read->setPointNr, 0);
    // "abc" is register 0, which isn't there; the empty text is no register.
    QVERIFY(signal->writeBasic.isNull());
    QVERIFY(signal->writeAuto.isNull());

    const ChamberTypeData type = fixture.store.getChamberTypeData(ChamberTypeId(7, 0), true);
    QCOMPARE(type.chamberTypeId, ChamberTypeId(7, 0));
    QCOMPARE(type.size, 0);
    QCOMPARE(type.setupVersionStart, 3);
    QCOMPARE(type.setupVersionEnde, 0);
    QCOMPARE(type.chamberSignals.keys(), Ids{1});
    QCOMPARE(errors.count(), 0);
}

void TestSqlConfigurationDatabaseConnection::ambiguousDefaultToleranceRange()
{
    const QString file = createLoose(QStringLiteral("ranges.sqlite3"), R"(
INSERT INTO signal (id, name, unit) VALUES (1, 'SP', '°C'), (2, 'PV', '°C');
INSERT INTO tolerance_range VALUES (1, 'first', 1, 2, 1.0, 2.0, 10, 1), (2, 'second', 1, 2, 3.0, 4.0, 20, 2);
INSERT INTO chamber_type_has_tolerance_range VALUES (5, 1), (5, 2);
)");
    QVERIFY2(!file.isEmpty(), qPrintable(databases->lastError()));
    Fixture fixture(file);
    QSignalSpy errors(&fixture.store, &Store::error);

    compareRange(fixture.store.getDefaultToleranceRange(ChamberTypeId(5, 0), 1, true),
                 relativeRange("first", 1, 2, Unit::CELSIUS, 1.0f, 2.0f, 10, 1));
    QCOMPARE(errorCodes(errors), QList<int>{UNEXPECTED_RESULT});

    // The delay is one value or none.
    errors.clear();
    QCOMPARE(fixture.store.getChamberSignalDelay(ChamberTypeId(5, 0), 2, false), 0);
    QCOMPARE(errors.count(), 0);
}

void TestSqlConfigurationDatabaseConnection::rowsOfWrongWidth_data()
{
    QTest::addColumn<QString>("marker");
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<int>("expectedErrors");

    const ChamberTypeId type1(1, 1001);
    // Type 1 has 13 signals, 7 control signals and 6 options.
    QTest::newRow("chamber type row")
        << " FROM chamber_type WHERE"
        << Operation([type1](Store& s) { return s.getChamberTypeData(type1, true) == ChamberTypeData(); }) << 1;
    QTest::newRow("all chamber type rows") << " FROM chamber_type"
                                           << Operation([](Store& s) { return s.getAllChamberTypeData(false).isEmpty(); })
                                           << 20;
    QTest::newRow("control signal rows, the rest stays")
        << " FROM control_signals" << Operation([type1](Store& s) {
               const ChamberTypeData type = s.getChamberTypeData(type1, true);
               return type.controlSignals.isEmpty() && type.chamberSignals.size() == 13 && type.options.size() == 6;
           })
        << 7;
    QTest::newRow("option rows, the rest stays") << " FROM options" << Operation([type1](Store& s) {
        const ChamberTypeData type = s.getChamberTypeData(type1, true);
        return type.options.isEmpty() && type.chamberSignals.size() == 13 && type.controlSignals.size() == 7;
    }) << 6;
    QTest::newRow("signal rows of a type")
        << " FROM signal WHERE"
        << Operation([](Store& s) { return s.getChamberSignals(ChamberTypeId(11, 0)).isEmpty(); }) << 4;
    QTest::newRow("time-programmable signal rows")
        << " FROM signal JOIN controller_data"
        << Operation([](Store& s) { return s.getTimeProgrammableChamberSignals(ChamberTypeId(247, 0)).isEmpty(); })
        << 3;
    QTest::newRow("data logger rows")
        << " FROM signal JOIN chamber_type_has_datalogger_signal"
        << Operation([](Store& s) { return s.getDataloggerChamberSignal(ChamberTypeId(70, 0)).isEmpty(); }) << 3;
    QTest::newRow("matching signal rows") << " FROM signal source_signal" << Operation([](Store& s) {
        return s.getMatchingSignals(ChamberTypeId(11, 0), ChamberTypeId(41, 0)).isEmpty();
    }) << 8;
    QTest::newRow("default tolerance range rows") << " FROM tolerance_range JOIN" << Operation([type1](Store& s) {
        return s.getDefaultToleranceRange(type1, 111, true) == DefaultToleranceRange();
    }) << 1;
    // A register row of the wrong width is a missing register, not a failure.
    QTest::newRow("register rows") << " FROM controller_data WHERE" << Operation([](Store& s) {
        const QSharedPointer<ChamberSignal> signal = s.getChamberSignal(111);
        return signal && !signal->read && !signal->writeManual && !signal->writeAuto;
    }) << 0;
}

void TestSqlConfigurationDatabaseConnection::rowsOfWrongWidth()
{
    QFETCH(QString, marker);
    QFETCH(Operation, operation);
    QFETCH(int, expectedErrors);

    RowCuttingConnection cutting(sample->connection, marker);
    Store store;
    store.setDependencies(&cutting);
    QSignalSpy errors(&store, &Store::error);
    QVERIFY(operation(store));
    QCOMPARE(errorCodes(errors), QVector<int>(expectedErrors, UNEXPECTED_RESULT).toList());
}

QTEST_GUILESS_MAIN(TestSqlConfigurationDatabaseConnection)
#include "tst_sqlconfigurationdatabaseconnection.moc"
