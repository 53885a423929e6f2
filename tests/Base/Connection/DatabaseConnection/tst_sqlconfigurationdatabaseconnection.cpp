#include "Base/Connection/DatabaseConnection/SqlConfigurationDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Domain/Types/ChamberOption.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ChamberTypeData.h"
#include "Domain/Types/ChamberTypeId.h"
#include "Domain/Types/ControlSignal.h"
#include "Domain/Types/ControllerAddress.h"
#include "Domain/Types/DefaultToleranceRange.h"
#include "support/SampleCatalogue.h"
#include "support/StoreFixture.h"
#include "support/TestDatabase.h"

#include <QLoggingCategory>
#include <QSignalSpy>
#include <QtTest>

#include <algorithm>
#include <functional>
#include <memory>

using zelmor::base::connection::databaseconnection::SqlConfigurationDatabaseConnection;
using zelmor::base::connection::databaseconnection::SqliteConnection;
using zelmor::testsupport::CuttingConnection;
using zelmor::testsupport::errorCodes;
using zelmor::testsupport::TestDatabase;
using namespace zelmor::domain::types;

using Store = SqlConfigurationDatabaseConnection;
using Address = QSharedPointer<ControllerAddress>;
using Ids = QList<int>;

namespace {

// The store with its protected reads in reach.
class OpenStore : public Store
{
public:
    using Store::getChamberTypeTestSignalId;
    using Store::getControllerAddress;
};

// A signal's fields in one line; registers by their ids, "-" for none.
QString summary(const ChamberSignal& s)
{
    const auto idOf = [](const Address& a) { return a ? QString::number(a->id) : QStringLiteral("-"); };
    return QStringLiteral("%1 %2, unit %3, %4, %5 places, level %6, [%7, %8], bit %9")
               .arg(s.id)
               .arg(s.name)
               .arg(s.unit)
               .arg(s.color.isValid() ? s.color.name() : QStringLiteral("-"))
               .arg(s.decimalPlaces)
               .arg(int(s.userLevel))
               .arg(s.limitMin)
               .arg(s.limitMax)
               .arg(s.bitPosition)
           + QStringLiteral(", type %1, time %2 week %3, set point %4, registers %5 %6 %7 %8")
                 .arg(s.signalType)
                 .arg(s.timeProgrammable)
                 .arg(s.weekProgrammable)
                 .arg(s.setPointSignal ? QString::number(s.setPointSignal->id) : QStringLiteral("-"))
                 .arg(idOf(s.read), idOf(s.writeBasic), idOf(s.writeManual), idOf(s.writeAuto));
}

// A range's fields in one line: "name set point/process value, type [lower unit, upper unit], delays".
QString summary(const DefaultToleranceRange& r)
{
    return QStringLiteral("%1 %2/%3, %4 [%5 %6, %7 %8], %9")
        .arg(r.name)
        .arg(int(r.setPointSignal))
        .arg(int(r.processValueSignal))
        .arg(r.range.type)
        .arg(r.range.lower.value.toString())
        .arg(r.range.lower.unit)
        .arg(r.range.upper.value.toString())
        .arg(r.range.upper.unit)
        .arg(QStringLiteral("%1 %2").arg(r.delay1).arg(r.delay2));
}

QString ids(const Ids& values)
{
    QStringList texts;
    for (int value : values)
        texts << QString::number(value);
    return texts.join(QLatin1Char(' '));
}

// "type/variant" of each entry, by type and variant: the engine's order is no contract.
QString variantsOf(QList<ChamberTypeData> types)
{
    std::sort(types.begin(), types.end(), [](const ChamberTypeData& a, const ChamberTypeData& b) {
        return std::make_pair(a.chamberTypeId.typeId, a.chamberTypeId.additionalInfoId)
               < std::make_pair(b.chamberTypeId.typeId, b.chamberTypeId.additionalInfoId);
    });
    QStringList texts;
    for (const ChamberTypeData& type : types) {
        texts.append(QStringLiteral("%1/%2").arg(type.chamberTypeId.typeId).arg(type.chamberTypeId.additionalInfoId));
        if (!type.chamberSignals.isEmpty() || !type.controlSignals.isEmpty())
            texts.last() += QStringLiteral("+signals");
    }
    return texts.join(QLatin1Char(' '));
}

// A type's fields in one line; protocols by number, sorted.
QString summary(const ChamberTypeData& type)
{
    QStringList protocols;
    for (ChamberProtocol protocol : type.protocols)
        protocols.append(QString::number(protocol));
    protocols.sort();
    return QStringLiteral("%1/%2 %3, %4, %5, %6, %7")
        .arg(type.chamberTypeId.typeId)
        .arg(type.chamberTypeId.additionalInfoId)
        .arg(type.getQualifiedTypeName(), type.controller, type.articleNumber, type.info, protocols.join(' '));
}

// A store on its own connection to one database file.
struct Fixture
{
    explicit Fixture(const QString& file)
        : connection(QStringLiteral("tst_sqlconfigurationdatabaseconnection_%1").arg(++count))
    {
        opened = connection.openDatabase(file, QString(), QString(), QLatin1String(TestDatabase::projectKey_));
        store.setDependencies(&connection);
    }

    static int count;
    CuttingConnection connection;
    OpenStore store;
    bool opened = false;
};

int Fixture::count = 0;

} // namespace

using Read = std::function<QString(OpenStore&)>;
Q_DECLARE_METATYPE(Read)

class TestSqlConfigurationDatabaseConnection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void operationsBeforeDependencies();

    void reads_data();
    void reads();
    void wholeChamberType();

private:
    // A purpose-built catalogue: the shipped schema with the given rows.
    std::unique_ptr<Fixture> purposeBuilt(const QString& rows);

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
    QVERIFY(sample->store.initialize());
}

void TestSqlConfigurationDatabaseConnection::cleanupTestCase()
{
    sample.reset();
    databases.reset();
}

std::unique_ptr<Fixture> TestSqlConfigurationDatabaseConnection::purposeBuilt(const QString& rows)
{
    const QString file =
        zelmor::testsupport::createCatalogue(*databases, QStringLiteral("built%1.sqlite3").arg(Fixture::count), rows);
    auto fixture = std::make_unique<Fixture>(file);
    if (file.isEmpty() || !fixture->opened) {
        qWarning() << databases->lastError();
        fixture->opened = false;
    }
    return fixture;
}

void TestSqlConfigurationDatabaseConnection::operationsBeforeDependencies()
{
    Store store;
    QVERIFY(!store.setDependencies(nullptr));
    QVERIFY(!store.areDependenciesSet());
    QSignalSpy errors(&store, &Store::error);
    QVERIFY(!store.initialize());
    QVERIFY(store.getAllChamberTypeData(true).isEmpty());
    QVERIFY(store.getChamberSignal(101).isNull());
    QCOMPARE(store.getChamberSignalDelay(ChamberTypeId(1, 0), 101, false), 0);
    QCOMPARE(errorCodes(errors), QVector<int>(4, DEPENDENCIES_NOT_SET).toList());
}

void TestSqlConfigurationDatabaseConnection::wholeChamberType()
{
    QSignalSpy errors(&sample->store, &Store::error);
    const ChamberTypeData type = sample->store.getChamberTypeData(ChamberTypeId(11, 0), true);

    // Type 11: no variants, no state, no size, no options, no control signals.
    QCOMPARE(type, ChamberTypeData(ChamberTypeId(11, 0), "WIK", "", -1, "208 V 3/PE AC 60 Hz", "wik.png",
                                   "Begehbare Klimakammer", "1.20", "", "", -1, -1, "", "", "", "TLX", {TLX},
                                   type.chamberSignals, {}, {}, {}));
    QCOMPARE(type.chamberSignals.keys(), Ids({104, 114, 131, 133}));
    QCOMPARE(errors.count(), 0);

    const ChamberTypeData options = sample->store.getChamberTypeData(ChamberTypeId(30, 0), false);
    QCOMPARE(options.options, QList<ChamberOption>({{"Bedewing_Protection", false},
                                                    {"Program_Progressbar", false},
                                                    {"TimeProgram", true},
                                                    {"OperatingModeSwitching", true},
                                                    {"Readable_DataStorage", true}}));
    QVERIFY(options.furtherOptions.isEmpty());

    // A NULL register id gives the placeholder address.
    const ControlSignal control = sample->store.getChamberTypeData(ChamberTypeId(1, 0), true).controlSignals.value(12);
    QVERIFY(control
            == ControlSignal(12, "Ctrl_Prog_Time_Remaining", -1, BASIC,
                             ControllerAddress(1052, "11700002", ControllerAddress::READ_ONLY, QMetaType::UInt, 1, -1,
                                               "Program time remaining"),
                             ControllerAddress::placeholder()));
}

void TestSqlConfigurationDatabaseConnection::reads_data()
{
    QTest::addColumn<Read>("read");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<Ids>("codes");
    QTest::addColumn<QString>("rows"); // a purpose-built catalogue's rows; empty: the shipped sample
    QTest::addColumn<int>("cutWidth"); // rows of this width come a column short
    const auto row = [](const char* tag, const Read& read, const QString& expected, const Ids& codes = {},
                        const QString& rows = QString(),
                        int cutWidth = 0) { QTest::newRow(tag) << read << expected << codes << rows << cutWidth; };
    const Ids unexpected{UNEXPECTED_RESULT};

    // One entry per orderable variant: type 2 twice, types without variants with 0.
    row(
        "all types", [](OpenStore& s) { return variantsOf(s.getAllChamberTypeData(false)); },
        "1/1001 2/1002 2/1003 3/1004 9/1009 11/0 12/1012 30/1030 31/0 32/0 40/1040 41/0 50/1050 60/0 61/0 62/0 63/0 "
        "70/1070 80/0 90/0 247/1247");
    // Every type with a time-programmable signal, type 9 included although its options offer week programs only.
    row(
        "programmable types", [](OpenStore& s) { return variantsOf(s.getAllProgrammableChamberTypeData()); },
        "1/1001 2/1002 2/1003 3/1004 9/1009 12/1012 30/1030 31/0 32/0 40/1040 41/0 50/1050 70/1070 80/0 247/1247");
    const auto type = [](quint64 id, quint64 variant) {
        return Read([=](OpenStore& s) { return summary(s.getChamberTypeData(ChamberTypeId(id, variant), false)); });
    };
    row("one variant, found by 0", type(1, 0),
        QString::fromUtf8("1/1001 HX 60 Z6, TLX, HX60-Z6-0001, Standardausführung, 4"));
    row("second of two variants", type(2, 1003),
        "2/1003 HX 120 Z6, TLX, HX120-Z6-0011, Mit Feuchteregelung und Innenbeleuchtung, 4");
    row("no variants, two protocols", type(31, 0), "31/0 MKF 240 E2, KV2, , , 2 3");
    row("two variants, none chosen", type(2, 0), summary(ChamberTypeData()), unexpected);
    // No row: the empty row has the wrong width.
    row("unknown type", type(1935, 0), summary(ChamberTypeData()), unexpected);

    // Units and signal types by their numbers.
    const auto signal = [](SignalId id) {
        return Read([=](OpenStore& s) {
            const auto found = s.getChamberSignal(id);
            return found ? summary(*found) : QString();
        });
    };
    const QString setPoint = "111 SP_Temperature, unit 0, #ff0000, 1 places, level 1, [-70, 180], bit -1, type 1, "
                             "time 1 week 1, set point -, registers 1011 - 1011 1013";
    row("set point with three registers", signal(111), setPoint);
    row("process value linked to its set point", signal(101),
        "101 PV_Temperature, unit 0, #ff0000, 1 places, level 1, [-75, 180], bit -1, type 0, time 0 week 0, "
        "set point 111, registers 1001 - - -");
    row(
        "the linked set point whole",
        [](OpenStore& s) {
            const auto found = s.getChamberSignal(101);
            return found && found->setPointSignal ? summary(*found->setPointSignal) : QString();
        },
        setPoint);
    row("NULLs and an array register", signal(144),
        "144 PV_Error_History, unit 15, -, 0 places, level 5, [-3.40282e+38, 3.40282e+38], bit -1, type 3, "
        "time 0 week 0, set point -, registers 1044 - - -");
    row("unknown signal", signal(4711), "", unexpected);

    row(
        "signals of a type", [](OpenStore& s) { return ids(s.getChamberSignals(ChamberTypeId(70, 0)).keys()); },
        "701 702 703 711 712 721 722");
    row(
        "signals by id, unknown ones left out",
        [](OpenStore& s) {
            return ids(s.getChamberSignals(QList<SignalId>{131, 4711, 101}).keys());
        },
        "101 131");
    row(
        "set points of TLX type 1, not the combined 121",
        [](OpenStore& s) { return ids(s.getSetpointChamberSignals(ChamberTypeId(1, 0)).keys()); }, "111 112 134");
    row(
        "data logger in channel order, not in signal order",
        [](OpenStore& s) {
            Ids found;
            for (const ChamberSignal& signal : s.getDataloggerChamberSignal(ChamberTypeId(70, 0)))
                found.append(signal.id);
            return ids(found);
        },
        "702 701 703");
    // By the set point number of the manual write register (1, 2, 3); 314 has none and is left out.
    // Each signal is followed by the process value of its set point's default range.
    row(
        "time-programmable with their ranges",
        [](OpenStore& s) {
            Ids found;
            for (const auto& pair : s.getTimeProgrammableChamberSignals(ChamberTypeId(247, 0)))
                found << pair.first.id << pair.second.processValueSignal;
            return ids(found);
        },
        "311 301 312 302 310 -1");

    // Default ranges; type 2 is relative, units 0 Celsius, 6 volume percent, 7 hectopascal.
    const auto range = [](quint64 id, SignalId signal, bool isSetPoint) {
        return Read([=](OpenStore& s) {
            return summary(s.getDefaultToleranceRange(ChamberTypeId(id, 0), signal, isSetPoint));
        });
    };
    row("range by set point", range(1, 111, true), "Temperature 111/101, 2 [2 0, 2 0], 300 15");
    row("range by process value, its unit", range(12, 160, false),
        QString::fromUtf8("CO₂ 161/160, 2 [0.5 6, 0.5 6], 600 -1"));
    row("range of a set point id given as process value", range(1, 111, false), summary(DefaultToleranceRange()));
    row("range with NULL bounds and delays", range(247, 314, true), "Pressure 314/304, 2 [0 7, 0 7], -1 -1");

    // "delay2" is kept in minutes, "delay1" in seconds. A NULL delay is -1 in the catalogue's unit, so -60
    // seconds for "delay2"; only another type's signal, with no row at all, gives 0.
    row(
        "delays",
        [](OpenStore& s) {
            return ids({s.getChamberSignalDelay(ChamberTypeId(70, 0), 701, true),
                        s.getChamberSignalDelay(ChamberTypeId(1, 0), 101, false),
                        s.getChamberSignalDelay(ChamberTypeId(1, 0), 121, false),
                        s.getChamberSignalDelay(ChamberTypeId(12, 0), 160, true),
                        s.getChamberSignalDelay(ChamberTypeId(2, 0), 121, true)});
        },
        "120 300 -1 -60 0");
    // Fahrenheit, and NULL as dimensionless.
    row(
        "units",
        [](OpenStore& s) {
            return ids({s.getSignalUnitId(104), s.getSignalUnitId(142)});
        },
        "1 15");
    row(
        "test signals",
        [](OpenStore& s) {
            return ids({s.getChamberTypeTestSignalId(ChamberTypeId(50, 1050)),
                        s.getChamberTypeTestSignalId(ChamberTypeId(90, 0))});
        },
        "503 0");

    // Source type 11: 104, 114 temperature (value type 1), 131, 133 digital (5); destination type 41:
    // 401, 411 temperature, 421 counter (8), 422, 423 digital. The values are whole signals, registers included.
    row(
        "matching signals",
        [](OpenStore& s) {
            const QMap<SignalId, ChamberSignal> matches =
                s.getMatchingSignals(ChamberTypeId(11, 0), ChamberTypeId(41, 0));
            QStringList found;
            for (auto it = matches.cbegin(); it != matches.cend(); ++it) {
                found << QString::number(it.key())
                             + (Ids{104, 114}.contains(it->id)   ? "T"
                                : Ids{131, 133}.contains(it->id) ? "D"
                                                                 : "?");
            }
            const ChamberSignal& first = matches.value(401);
            return found.join(' ') + QStringLiteral(", unit %1 read %2").arg(first.unit).arg(bool(first.read));
        },
        "401T 411T 422D 423D, unit 1 read 1");

    // Purpose-built catalogues, one per edge.
    // A few required tables missing in turn; the other tables are not looked for.
    const Read initialize = [](OpenStore& s) { return QString::number(s.initialize()); };
    for (const char* missing : {"chamber_type_has_additional_info", "controller_data", "value_type"})
        row(qPrintable(QStringLiteral("without %1").arg(missing)), initialize, "0", {MISSING_TABLE},
            QStringLiteral("DROP TABLE %1;").arg(missing));
    row("without options", initialize, "1", {}, "DROP TABLE options;");

    // 1 names itself; 2 links 3, which names itself; 4 links a signal that isn't there: reported and
    // left out, the signal stays. "name>set point>its set point" of each.
    row(
        "set point links",
        [](OpenStore& s) {
            QStringList links;
            for (const ChamberSignal& signal : s.getChamberSignals(QList<SignalId>{1, 2, 5, 4})) {
                links << signal.name;
                auto link = signal.setPointSignal;
                for (int depth = 0; link && depth < 3; ++depth, link = link->setPointSignal)
                    links.last() += QLatin1Char('>') + link->name;
            }
            return links.join(' ');
        },
        "self chain>end dangling none", unexpected, R"(
INSERT INTO signal (id, name, set_point_signal) VALUES (1, 'self', 1), (2, 'chain', 3), (3, 'end', 3),
    (4, 'dangling', 99), (5, 'none', -1);
)");

    // Type 1 has four time-programmable signals: 10 and 12 with manual write registers of set point
    // number 2 and 1, 11 with NULL, 13 with a register id that isn't there; 14 is not time-programmable.
    row(
        "NULL manual write register",
        [](OpenStore& s) {
            QStringList found;
            for (const auto& pair : s.getTimeProgrammableChamberSignals(ChamberTypeId(1, 0)))
                found << pair.first.name + QLatin1Char(':') + summary(pair.second);
            return found.join(' ');
        },
        "first:" + summary(DefaultToleranceRange()) + " second:" + summary(DefaultToleranceRange()), {}, R"(
INSERT INTO chamber_type_has_signal VALUES (1, 10), (1, 11), (1, 12), (1, 13), (1, 14), (2, 15);
INSERT INTO controller_data (id, address, variable_type, access, set_point_nr) VALUES
    (100, '0100', 'FLOAT', 'RW', 2), (101, '0101', 'FLOAT', 'RW', 1), (102, '0102', 'FLOAT', 'RW', 0);
INSERT INTO signal (id, name, write_manual, time_programmable) VALUES
    (10, 'second', 100, 1), (11, 'no register', NULL, 1), (12, 'first', 101, 1), (13, 'lost register', 77, 1),
    (14, 'not programmable', 102, 0), (15, 'other type', 102, 1);
)");

    // "type/array size" of each register; an unknown register is no failure, the signal just lacks it.
    row(
        "variable types",
        [](OpenStore& s) {
            QStringList found;
            for (int id : {3, 4, 6, 9, 4711}) {
                const Address a = s.getControllerAddress(id);
                found << (a ? QStringLiteral("%1/%2").arg(QMetaType::typeName(a->type)).arg(a->arraySize) : "-");
            }
            return found.join(' ');
        },
        "/1 /8 zelmor::domain::types::Int10/1 char/0 -", {}, R"(
INSERT INTO controller_data (id, address, variable_type, access) VALUES
    (3, 'C', 'WORD', 'RO'), (4, 'D', 'WORD[8]', 'RO'), (6, 'F', 'INT10', 'RO'), (9, 'I', 'CHAR[]', 'RO');
)");

    // Two ranges for one set point: the first is taken and reported; the delay is one value or none.
    const QString twoRanges = QString::fromUtf8(R"(
INSERT INTO signal (id, name, unit) VALUES (1, 'SP', '°C'), (2, 'PV', '°C');
INSERT INTO tolerance_range VALUES (1, 'first', 1, 2, 1.0, 2.0, 10, 1), (2, 'second', 1, 2, 3.0, 4.0, 20, 2);
INSERT INTO chamber_type_has_tolerance_range VALUES (5, 1), (5, 2);
)");
    row(
        "two ranges", [](OpenStore& s) { return summary(s.getDefaultToleranceRange(ChamberTypeId(5, 0), 1, true)); },
        "first 1/2, 2 [1 0, 2 0], 10 1", unexpected, twoRanges);
    row(
        "delay of two ranges",
        [](OpenStore& s) { return QString::number(s.getChamberSignalDelay(ChamberTypeId(5, 0), 2, false)); }, "0", {},
        twoRanges);

    // Rows of the wrong width on the sample: each is reported and skipped.
    const auto wrong = [&row](const char* tag, int width, const Read& read, const QString& expected, int n) {
        row(tag, read, expected, QVector<int>(n, UNEXPECTED_RESULT).toList(), QString(), width);
    };
    // Type 1 has 13 signals, 7 control signals and 6 options.
    const Read type1 = [](OpenStore& s) {
        const ChamberTypeData type = s.getChamberTypeData(ChamberTypeId(1, 1001), true);
        return ids({int(type.chamberTypeId.typeId), type.chamberSignals.size(), type.controlSignals.size(),
                    type.options.size()});
    };
    const auto count = [](auto read) { return Read([read](OpenStore& s) { return QString::number(read(s).size()); }); };
    // By width: chamber types 14, signals 16 (17 with the matching destination), ranges 8, options 2,
    // control signals and registers both 6; the registers of signals and control signals may go
    // missing without a report.
    wrong("chamber type row", 14, type1, "0 0 0 0", 1);
    wrong("control signal rows, the rest stays", 6, type1, "1 13 0 6", 7);
    wrong("option rows, the rest stays", 2, type1, "1 13 7 0", 6);
    wrong("signal rows of a type", 16, count([](OpenStore& s) { return s.getChamberSignals(ChamberTypeId(11, 0)); }),
          "0", 4);
    wrong("time-programmable signal rows", 16,
          count([](OpenStore& s) { return s.getTimeProgrammableChamberSignals(ChamberTypeId(247, 0)); }), "0", 3);
    wrong("matching signal rows", 17,
          count([](OpenStore& s) { return s.getMatchingSignals(ChamberTypeId(11, 0), ChamberTypeId(41, 0)); }), "0", 8);
    wrong("default tolerance range rows", 8, range(1, 111, true), summary(DefaultToleranceRange()), 1);
    // A register row of the wrong width is a missing register, not a failure.
    wrong("register rows", 6, signal(111),
          QString(setPoint).replace(QLatin1String("1011 - 1011 1013"), QLatin1String("- - - -")), 0);
}

void TestSqlConfigurationDatabaseConnection::reads()
{
    QFETCH(Read, read);
    QFETCH(QString, expected);
    QFETCH(Ids, codes);
    QFETCH(QString, rows);
    QFETCH(int, cutWidth);

    std::unique_ptr<Fixture> built;
    if (!rows.isEmpty()) {
        built = purposeBuilt(rows);
        QVERIFY(built->opened);
    }
    Fixture& fixture = built ? *built : *sample;
    QSignalSpy errors(&fixture.store, &Store::error);
    fixture.connection.cutWidth = cutWidth;
    const QString result = read(fixture.store);
    fixture.connection.cutWidth = 0;
    QCOMPARE(result, expected);
    QCOMPARE(errorCodes(errors), codes);
}

QTEST_GUILESS_MAIN(TestSqlConfigurationDatabaseConnection)
#include "tst_sqlconfigurationdatabaseconnection.moc"
