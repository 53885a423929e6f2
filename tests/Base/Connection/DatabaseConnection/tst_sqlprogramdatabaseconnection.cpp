#include "Base/Connection/DatabaseConnection/SqlProgramDatabaseConnection.h"
#include "Domain/Types/ChamberTypeId.h"
#include "Domain/Types/ProgramSection.h"
#include "Domain/Types/ProgramSectionId.h"
#include "Domain/Types/ProgramStepRepetitionId.h"
#include "Domain/Types/SignalValuePair.h"
#include "Domain/Types/ToleranceRange.h"
#include "support/LogCapture.h"
#include "support/SampleCatalogue.h"
#include "support/StoreFixture.h"
#include "support/TestDatabase.h"

#include <QLoggingCategory>
#include <QtTest>

#include <functional>

using zelmor::base::connection::databaseconnection::SqlProgramDatabaseConnection;
using zelmor::testsupport::errorCodes;
using zelmor::testsupport::LogCapture;
using zelmor::testsupport::TestDatabase;
using namespace zelmor::domain::types;

using Store = SqlProgramDatabaseConnection;
using Fixture = zelmor::testsupport::CatalogueStoreFixture<Store>;
using Failures = zelmor::testsupport::FailureTable<Store, Fixture>;
using Operation = Failures::Operation;
using Create = std::function<bool(Store&, zelmor::domain::api::ISqlConnection&)>;
Q_DECLARE_METATYPE(Operation)
Q_DECLARE_METATYPE(Create)

namespace {

const QString category = QStringLiteral("zelmor.SqlProgramDatabaseConnection");

// The failures are counted through the signals; the store's texts are heard
// only where a test listens to them.
const QString quiet = QStringLiteral("zelmor.*=false");

struct Listening
{
    Listening() { QLoggingCategory::setFilterRules(quiet + '\n' + category + "=true"); }
    ~Listening() { QLoggingCategory::setFilterRules(quiet); }
    LogCapture log{category};
};

// Signals of the sample catalogue: a temperature in °C, a humidity in "% r.F.",
// a switch in BOOL and operating hours in "h", a unit the catalogue doesn't know.
constexpr int temperature = 311;
constexpr int humidity = 312;
constexpr int output = 323;
constexpr int hours = 331;

QSharedPointer<ToleranceRange> band(const UnitValue& lower, const UnitValue& upper)
{
    return QSharedPointer<ToleranceRange>::create(lower, upper);
}

SignalValuePair setpoint(int signal, Unit::UnitId unit, float value)
{
    return SignalValuePair(signal, UnitValue(unit, value));
}

ProgramSection section(int seconds, ProgramSection::TransitionType transition, const QList<SignalValuePair>& setpoints,
                       bool breakpoint = false, const QString& event = QString())
{
    return ProgramSection(0, setpoints, seconds, transition, breakpoint, ProgramSectionEvent(event));
}

QString text(const UnitValue& value)
{
    if (!value.isValid())
        return QStringLiteral("-");
    const QString number = value.value.userType() == QMetaType::Bool ? value.value.toString()
                                                                     : QString::number(value.value.toDouble(), 'g', 6);
    return QStringLiteral("%1 u%2").arg(number).arg(int(value.unit));
}

QString summary(const SignalValuePair& pair)
{
    QString result = QStringLiteral("%1 = %2").arg(pair.signalId).arg(text(pair.value));
    if (pair.toleranceRange) {
        result += QStringLiteral(" [%1 .. %2 %3]")
                      .arg(text(pair.toleranceRange->lower), text(pair.toleranceRange->upper),
                           ToleranceRange::toString(pair.toleranceRange->type));
    }
    return result;
}

QString summary(const QList<SignalValuePair>& pairs)
{
    QStringList texts;
    for (const SignalValuePair& pair : pairs)
        texts.append(summary(pair));
    return texts.join(QStringLiteral(", "));
}

// Shell reads of the file.
QString shell(const QString& path, const QString& sql)
{
    return zelmor::testsupport::ApplicationFiles::shell(path, sql);
}

// Programs, steps, sections, set points and repetitions.
QString counts(const QString& path)
{
    return shell(path, "SELECT (SELECT count(*) FROM program) || ' ' || (SELECT count(*) FROM program_step) || ' ' || "
                       "(SELECT count(*) FROM program_section) || ' ' || (SELECT count(*) FROM program_setpoint) || "
                       "' ' || (SELECT count(*) FROM program_step_repetition);");
}

QString stepRows(const QString& path)
{
    return shell(path, "SELECT id, program_id, order_number, step_type, quote(section_id), quote(sub_program_id) "
                       "FROM program_step ORDER BY id;");
}

QString sectionRows(const QString& path)
{
    return shell(path, "SELECT id, duration_in_seconds, quote(transition_type), breakpoint, "
                       "quote(program_event_message) FROM program_section ORDER BY id;");
}

QString setpointRows(const QString& path)
{
    return shell(path, "SELECT program_section_id, signal_id, round(setpoint, 3), round(tolerance_range_min, 3), "
                       "round(tolerance_range_max, 3) FROM program_setpoint ORDER BY 1, 2;");
}

// Programs 1 "Main" and 2 "Sub", added by the shell.
const QString twoPrograms =
    QStringLiteral("INSERT INTO program (id, program_name, program_type, edited) VALUES (1, 'Main', 0, 0), "
                   "(2, 'Sub', 0, 0);");

// The tables as the creation functions make them, as the engine keeps them.
const QStringList createdTables = {
    "program: CREATE TABLE program (id INTEGER PRIMARY KEY NOT NULL , program_name TEXT, user_id INTEGER, "
    "info_text TEXT, program_type INTEGER, edited BOOLEAN, chamber_type_id INTEGER)",
    "program_section: CREATE TABLE program_section (id INTEGER PRIMARY KEY NOT NULL , duration_in_seconds INTEGER, "
    "transition_type INTEGER, breakpoint BOOLEAN, program_event_message TEXT)",
    "program_step: CREATE TABLE program_step (id INTEGER PRIMARY KEY NOT NULL , program_id INTEGER NOT NULL, "
    "order_number INTEGER NOT NULL, step_type INTEGER NOT NULL, section_id INTEGER, sub_program_id INTEGER, "
    "FOREIGN KEY (program_id) REFERENCES program (id), FOREIGN KEY (sub_program_id) REFERENCES program (id), "
    "FOREIGN KEY (section_id) REFERENCES program_section (id))",
    "program_step_repetition: CREATE TABLE program_step_repetition (id INTEGER PRIMARY KEY NOT NULL , "
    "program_id INTEGER NOT NULL, start_step_id INTEGER NOT NULL, end_step_id INTEGER NOT NULL, "
    "num_repetitions INTEGER, FOREIGN KEY (program_id) REFERENCES program (id), "
    "FOREIGN KEY (start_step_id) REFERENCES program_step (id), "
    "FOREIGN KEY (end_step_id) REFERENCES program_step (id))",
    "program_setpoint: CREATE TABLE program_setpoint (program_section_id INTEGER NOT NULL, "
    "signal_id INTEGER NOT NULL, setpoint REAL, tolerance_range_min REAL, tolerance_range_max REAL, "
    "FOREIGN KEY (program_section_id) REFERENCES program_section (id)PRIMARY KEY (program_section_id, signal_id))",
};

QStringList tablesOf(const QString& path)
{
    return shell(path, "SELECT name || ': ' || sql FROM sqlite_master WHERE type = 'table' AND name LIKE 'program%' "
                       "ORDER BY rowid;")
        .split('\n', Qt::SkipEmptyParts);
}

} // namespace

class TestSqlProgramDatabaseConnection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void programs();
    void setpoints_data();
    void setpoints();
    void setpointWithoutUnitIsLeftOut();
    void steps();
    void refusedSteps_data();
    void refusedSteps();
    void repetitions_data();
    void repetitions();
    void deletes_data();
    void deletes();
    void createTables_data();
    void createTables();
    void createTableFails();
    void badInput_data();
    void badInput();

private:
    // A file of the schema: delivered, or with the program tables of the
    // creation functions only.
    QString file(bool delivered, const QString& rows = QString());

    zelmor::testsupport::ApplicationFiles files;
};

void TestSqlProgramDatabaseConnection::initTestCase()
{
    qRegisterMetaType<DatabaseConnectionError>();
    QLoggingCategory::setFilterRules(quiet);
    QVERIFY(files.isValid());
    Fixture::cataloguePath() = zelmor::testsupport::createSampleCatalogue(files.database());
    QVERIFY(!Fixture::cataloguePath().isEmpty());
}

QString TestSqlProgramDatabaseConnection::file(bool delivered, const QString& rows)
{
    if (delivered)
        return files.create(rows);
    static int count = 0;
    const QString path = files.database().createEncrypted(QStringLiteral("created%1.sqlite3").arg(++count),
                                                          "CREATE TABLE database_version_info (version INTEGER);");
    Fixture fixture(path);
    if (!fixture.opened || !fixture.store.createTables(fixture.connection))
        return QString();
    fixture.connection.closeDatabase();
    return shell(path, rows).startsWith("<failed") ? QString() : path;
}

void TestSqlProgramDatabaseConnection::programs()
{
    // A type with two variants and one the catalogue doesn't have.
    const QString path = files.create("INSERT INTO program (id, program_name, chamber_type_id) VALUES (7, 'Two', 2), "
                                      "(8, 'Unknown', 999);");
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    ChamberTypeData kv2;
    kv2.chamberTypeId = ChamberTypeId(247, 0);
    ProgramData cycle(0, "Cycle", 3, "Climate cycle", ProgramData::TIME_PROGRAM, true, kv2);
    ProgramData empty(0, QString(), 0, QString(), ProgramData::WEEK_PROGRAM, false, ChamberTypeData());
    QVERIFY(store.addProgram(cycle) && store.addProgram(empty));
    QCOMPARE(int(cycle.id), 9);
    QCOMPARE(int(empty.id), 10);
    // Nothing is NULL: an empty text, user 0, no chamber type.
    QCOMPARE(shell(path, "SELECT id, quote(program_name), quote(user_id), quote(info_text), program_type, edited, "
                         "quote(chamber_type_id) FROM program WHERE id > 8;"),
             QStringLiteral("9|'Cycle'|3|'Climate cycle'|0|1|247\n10|NULL|NULL|NULL|1|0|NULL"));

    // The chamber type comes whole from the catalogue: its one variant.
    const ProgramData read = store.getProgram(9);
    QCOMPARE(read.name + '|' + read.infoText, QStringLiteral("Cycle|Climate cycle"));
    QCOMPARE(int(read.userId), 3);
    QVERIFY(read.edited && read.type == ProgramData::TIME_PROGRAM && read.steps.isEmpty());
    QCOMPARE(read.chamberType.chamberTypeId, ChamberTypeId(247, 1247));
    QCOMPARE(read.chamberType.getQualifiedTypeName() + ' ' + read.chamberType.controller,
             QStringLiteral("VC 7034 Z2 KV2"));
    QVERIFY(store.getProgram(10).chamberType == ChamberTypeData());
    // A type the catalogue can't give by its id alone keeps the id.
    QCOMPARE(store.getProgram(7).chamberType.chamberTypeId, ChamberTypeId(2, 0));
    QCOMPARE(store.getProgram(8).chamberType.chamberTypeId, ChamberTypeId(999, 0));
    QVERIFY(store.getProgram(11) == ProgramData());
    QCOMPARE(store.getAllPrograms().size(), 4);
    QCOMPARE(int(store.getAllPrograms().value(2).id), 9);

    QCOMPARE(store.getProgramName(9), QStringLiteral("Cycle"));
    QVERIFY(store.getProgramStateEdited(9) && !store.getProgramStateEdited(10));
    QCOMPARE(int(store.getProgramUserId(9)), 3);
    QCOMPARE(store.getProgramChamberTypeId(9), ChamberTypeId(247, 0));
    QCOMPARE(store.getProgramType(10), ProgramData::WEEK_PROGRAM);
    QCOMPARE(store.getProgramProperty(9, zelmor::domain::api::ProgramProperty::INFO_TEXT),
             QVariant(QStringLiteral("Climate cycle")));
    QVERIFY(!store.getProgramProperty(11, zelmor::domain::api::ProgramProperty::INFO_TEXT).isValid());

    QVERIFY(store.updateProgramName(10, "Week"));
    QVERIFY(store.updateProgramProperty(9, zelmor::domain::api::ProgramProperty::EDITED, false));
    cycle.infoText.clear();
    cycle.userId = 4;
    cycle.edited = false;
    QVERIFY(store.updateProgram(cycle));
    QCOMPARE(shell(path, "SELECT id, quote(program_name), quote(user_id), quote(info_text), program_type, edited, "
                         "quote(chamber_type_id) FROM program WHERE id > 8;"),
             QStringLiteral("9|'Cycle'|4|NULL|0|0|247\n10|'Week'|NULL|NULL|1|0|NULL"));

    QCOMPARE(int(store.findProgramByName("Week")), 10);
    QCOMPARE(int(store.findProgramByName("week")), 0);
    // Names aren't unique; a name twice is still found.
    QVERIFY(store.addProgram(empty) && store.updateProgramName(empty.id, "Week"));
    QVERIFY(store.findProgramByName("Week") != 0);
    QVERIFY(store.isProgramIdValid(10) && !store.isProgramIdValid(12));
    QCOMPARE(errors.count(), 0);
}

void TestSqlProgramDatabaseConnection::setpoints_data()
{
    QTest::addColumn<SignalValuePair>("setpoint");
    QTest::addColumn<QString>("row");
    QTest::addColumn<QString>("readBack");

    SignalValuePair ranged = setpoint(temperature, Unit::CELSIUS, 25.5f);
    ranged.toleranceRange = band(UnitValue(Unit::CELSIUS, 1.0f), UnitValue(Unit::CELSIUS, 2.0f));
    QTest::newRow("in the signal's unit") << ranged << "1|311|25.5|1.0|2.0"
                                          << "311 = 25.5 u0 [1 u0 .. 2 u0 relative]";
    // 212 °F is 100 °C; a band of 9 and 18 °F is one of 5 and 10 °C, not shifted by the offset.
    SignalValuePair fahrenheit = setpoint(temperature, Unit::FAHRENHEIT, 212.0f);
    fahrenheit.toleranceRange = band(UnitValue(Unit::FAHRENHEIT, 9.0f), UnitValue(Unit::FAHRENHEIT, 18.0f));
    QTest::newRow("in another unit") << fahrenheit << "1|311|100.0|5.0|10.0"
                                     << "311 = 100 u0 [5 u0 .. 10 u0 relative]";
    QTest::newRow("without a band") << setpoint(humidity, Unit::RELATIVE_HUMIDITY_RF, 60.0f) << "1|312|60.0||"
                                    << "312 = 60 u3";
    QTest::newRow("a switch") << SignalValuePair(output, true) << "1|323|1.0||"
                              << "323 = true u13";
    QTest::newRow("no value") << SignalValuePair(temperature, UnitValue()) << "1|311|||"
                              << "311 = -";
    SignalValuePair upperOnly = setpoint(temperature, Unit::CELSIUS, 20.0f);
    upperOnly.toleranceRange = band(UnitValue(), UnitValue(Unit::CELSIUS, 3.0f));
    QTest::newRow("an upper bound only") << upperOnly << "1|311|20.0||3.0"
                                         << "311 = 20 u0 [- .. 3 u0 relative]";
}

void TestSqlProgramDatabaseConnection::setpoints()
{
    QFETCH(SignalValuePair, setpoint);
    QFETCH(QString, row);
    QFETCH(QString, readBack);

    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    ProgramSection added = section(30, ProgramSection::RAMP, {setpoint});
    QVERIFY(store.addSection(added));
    QCOMPARE(int(added.id), 1);
    QCOMPARE(setpointRows(path), row);
    QCOMPARE(summary(store.getProgramSectionSetpoints(1)), readBack);
    QCOMPARE(summary(store.getProgramSection(1).setpoints), readBack);
    QCOMPARE(errors.count(), 0);
}

void TestSqlProgramDatabaseConnection::setpointWithoutUnitIsLeftOut()
{
    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    Store& store = fixture.store;

    ProgramSection added = section(30, ProgramSection::RAMP,
                                   {setpoint(temperature, Unit::CELSIUS, 25), setpoint(hours, Unit::UNDEFINED, 100),
                                    setpoint(humidity, Unit::RELATIVE_HUMIDITY_RF, 50)});
    Listening listening;
    QVERIFY(store.addSection(added));
    QCOMPARE(listening.log.texts(), QStringList{"warning: Can't write setpoint to database with invalid unit"});
    QCOMPARE(setpointRows(path), QStringLiteral("1|311|25.0||\n1|312|50.0||"));

    // Replacing the list: the same again.
    QVERIFY(store.addSetpoints(
        1, {setpoint(hours, Unit::UNDEFINED, 3), setpoint(humidity, Unit::RELATIVE_HUMIDITY_RF, 70)}));
    QCOMPARE(setpointRows(path), QStringLiteral("1|312|70.0||"));
}

void TestSqlProgramDatabaseConnection::steps()
{
    const QString path = files.create(twoPrograms);
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    QList<ProgramStep> steps = {
        ProgramStep(0, 0, 1, section(600, ProgramSection::RAMP, {setpoint(temperature, Unit::CELSIUS, 25)})),
        ProgramStep(0, 0, 2, ProgramId(2)),
        ProgramStep(0, 0, 3, section(60, ProgramSection::JUMP, {SignalValuePair(output, true)}, true, "Door open")),
    };
    QVERIFY(store.updateProgramSteps(1, steps));
    QCOMPARE(stepRows(path), QStringLiteral("1|1|1|1|1|NULL\n2|1|2|2|NULL|2\n3|1|3|1|2|NULL"));
    QCOMPARE(sectionRows(path), QStringLiteral("1|600|0|0|NULL\n2|60|1|1|'Door open'"));
    QCOMPARE(setpointRows(path), QStringLiteral("1|311|25.0||\n2|323|1.0||"));
    // The list now holds what was stored: ids, the program, the sections' ids.
    QCOMPARE(int(steps.at(2).id), 3);
    QCOMPARE(int(steps.at(2).programId), 1);
    QCOMPARE(int(steps.at(2).getSection().id), 2);
    QVERIFY(store.getProgramSteps(1) == steps);
    QVERIFY(store.hasSubPrograms(1) && !store.hasSubPrograms(2));
    QCOMPARE(int(store.getProgramSectionId(3)), 2);
    QCOMPARE(int(store.getProgramSectionId(2)), 0);
    QCOMPARE(store.getProgramStepPropertyValue(2, zelmor::domain::api::ProgramStepProperty::SUB_PROGRAM_ID),
             QVariant(2));

    // The first section changed in place, the call dropped, the last section
    // replaced by a new step whose section is new too.
    ProgramSection first = steps.at(0).getSection();
    first.durationInSeconds = 900;
    first.setpoints = {setpoint(temperature, Unit::CELSIUS, 30)};
    QList<ProgramStep> edited = {
        ProgramStep(steps.at(0).id, 1, 1, first),
        ProgramStep(0, 1, 2, section(120, ProgramSection::RAMP, {setpoint(humidity, Unit::RELATIVE_HUMIDITY_RF, 40)})),
    };
    QVERIFY(store.updateProgramSteps(1, edited));
    QCOMPARE(stepRows(path), QStringLiteral("1|1|1|1|1|NULL\n4|1|2|1|3|NULL"));
    QCOMPARE(sectionRows(path), QStringLiteral("1|900|0|0|NULL\n3|120|0|0|NULL"));
    QCOMPARE(setpointRows(path), QStringLiteral("1|311|30.0||\n3|312|40.0||"));

    // A section step turned into a call loses its section; back into a section
    // without an id, it gets a new one.
    QVERIFY(store.updateProgramStep(ProgramStep(1, 1, 1, ProgramId(2))));
    QCOMPARE(stepRows(path), QStringLiteral("1|1|1|2|NULL|2\n4|1|2|1|3|NULL"));
    QCOMPARE(sectionRows(path), QStringLiteral("3|120|0|0|NULL"));
    QVERIFY(store.updateProgramStep(ProgramStep(1, 1, 1, section(5, ProgramSection::JUMP, {}))));
    QCOMPARE(stepRows(path), QStringLiteral("1|1|1|1|4|NULL\n4|1|2|1|3|NULL"));

    // An empty list deletes every step, with the sections and set points.
    QList<ProgramStep> none;
    QVERIFY(store.updateProgramSteps(1, none));
    QCOMPARE(counts(path), QStringLiteral("2 0 0 0 0"));
    QCOMPARE(errors.count(), 0);
}

void TestSqlProgramDatabaseConnection::refusedSteps_data()
{
    QTest::addColumn<ProgramStep>("step");
    QTest::addColumn<QString>("warning");

    const QVariant aSection = QVariant::fromValue(section(5, ProgramSection::RAMP, {}));
    QTest::newRow("section step without a section")
        << ProgramStep(0, 1, 1, ProgramStep::SECTION, QVariant()) << "Refused a section step without a section";
    QTest::newRow("section step calling a program")
        << ProgramStep(0, 1, 1, ProgramStep::SECTION, QVariant::fromValue(ProgramId(2)))
        << "Refused a section step without a section";
    QTest::newRow("call with a section") << ProgramStep(0, 1, 1, ProgramStep::SUB_PROGRAM, aSection)
                                         << "Refused a sub program step without a program to call";
    QTest::newRow("call of program 0") << ProgramStep(0, 1, 1, ProgramId(0))
                                       << "Refused a sub program step without a program to call";
    QTest::newRow("no type") << ProgramStep(0, 1, 1, ProgramStep::INVALID, aSection)
                             << "Refused a program step of the unknown type 0";
}

void TestSqlProgramDatabaseConnection::refusedSteps()
{
    QFETCH(ProgramStep, step);
    QFETCH(QString, warning);

    const QString path = files.create(twoPrograms
                                      + "INSERT INTO program_section (id, duration_in_seconds) VALUES (1, 9);"
                                        "INSERT INTO program_step VALUES (1, 1, 1, 1, 1, NULL);");
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    Store& store = fixture.store;
    const QString dump = shell(path, ".dump");

    // Added, given as an update of step 1, or as the whole list: nothing is written.
    Listening listening;
    ProgramStep added = step;
    QVERIFY(!store.addProgramStep(added));
    ProgramStep update = step;
    update.id = 1;
    QVERIFY(!store.updateProgramStep(update));
    QList<ProgramStep> list = {step};
    QVERIFY(!store.updateProgramSteps(1, list));
    QCOMPARE(listening.log.texts(), QStringList()
                                        << "warning: " + warning << "warning: " + warning << "warning: " + warning);
    QCOMPARE(int(added.id), 0);
    QCOMPARE(shell(path, ".dump"), dump);
}

void TestSqlProgramDatabaseConnection::repetitions_data()
{
    QTest::addColumn<ProgramStepRepetition>("asked");
    QTest::addColumn<bool>("contained");

    // Stored: 1 from step 1 to 3, 2 from step 2 to 2, both of program 1; 3 of program 2.
    QTest::newRow("itself") << ProgramStepRepetition(1, 0, 1, 3, 0) << true;
    QTest::newRow("starting later") << ProgramStepRepetition(1, 0, 2, 3, 0) << false;
    QTest::newRow("starting earlier") << ProgramStepRepetition(1, 0, 0, 3, 0) << true;
    QTest::newRow("another's end") << ProgramStepRepetition(1, 0, 1, 2, 0) << true;
    QTest::newRow("the other program's") << ProgramStepRepetition(3, 0, 1, 3, 0) << false;
    QTest::newRow("unknown") << ProgramStepRepetition(9, 0, 1, 3, 0) << false;
}

void TestSqlProgramDatabaseConnection::repetitions()
{
    QFETCH(ProgramStepRepetition, asked);
    QFETCH(bool, contained);

    const QString path = files.create(twoPrograms
                                      + "INSERT INTO program_step VALUES (1, 1, 1, 2, NULL, 2), "
                                        "(2, 1, 2, 2, NULL, 2), (3, 1, 3, 2, NULL, 2), (4, 2, 1, 2, NULL, 1);");
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    QList<ProgramStepRepetition> repetitions = {ProgramStepRepetition(0, 0, 1, 3, 2),
                                                ProgramStepRepetition(0, 0, 2, 2, 5)};
    ProgramStepRepetition other(0, 2, 4, 4, 1);
    QVERIFY(store.updateProgramStepRepetitions(1, repetitions) && store.addProgramStepRepetition(other));
    QCOMPARE(int(repetitions.at(1).id), 2);
    QCOMPARE(int(other.id), 3);
    QCOMPARE(store.containsProgramStepRepetitions(asked), contained);
    QVERIFY(store.getProgramStepRepetitions(1) == repetitions);
    QVERIFY(store.getProgramStepRepetition(2, 2) == repetitions.at(1));
    QVERIFY(store.getProgramStepRepetition(3, 1) == ProgramStepRepetition());

    // The first changed, a new one, the second no longer in the list.
    repetitions[0].repetitions = 4;
    repetitions[1] = ProgramStepRepetition(0, 0, 3, 3, 1);
    QVERIFY(store.updateProgramStepRepetitions(1, repetitions));
    QCOMPARE(shell(path, "SELECT * FROM program_step_repetition ORDER BY id;"),
             QStringLiteral("1|1|1|3|4\n3|2|4|4|1\n4|1|3|3|1"));
    QVERIFY(store.deleteProgramStepRepetition(4));
    QCOMPARE(shell(path, "SELECT group_concat(id) FROM program_step_repetition;"), QStringLiteral("1,3"));
    QCOMPARE(errors.count(), 0);
}

void TestSqlProgramDatabaseConnection::deletes_data()
{
    QTest::addColumn<bool>("delivered");

    QTest::newRow("delivered") << true;
    QTest::newRow("made by the creation functions") << false;
}

// Program 1 calls program 2 and has two sections and a repetition; program 2
// has one section.
void TestSqlProgramDatabaseConnection::deletes()
{
    QFETCH(bool, delivered);

    const QString path = file(delivered, twoPrograms
                                             + "INSERT INTO program_section (id, duration_in_seconds) VALUES (1, 10), "
                                               "(2, 20), (3, 30);"
                                               "INSERT INTO program_setpoint VALUES (1, 311, 20, NULL, NULL), "
                                               "(1, 312, 50, NULL, NULL), (2, 311, 25, NULL, NULL), "
                                               "(3, 311, 30, NULL, NULL);"
                                               "INSERT INTO program_step VALUES (1, 1, 1, 1, 1, NULL), "
                                               "(2, 1, 2, 2, NULL, 2), (3, 1, 3, 1, 2, NULL), (4, 2, 1, 1, 3, NULL);"
                                               "INSERT INTO program_step_repetition VALUES (1, 1, 1, 3, 2);");
    QVERIFY(!path.isEmpty());

    // What the schema itself does when only the program's row is deleted:
    // the delivered one takes steps and repetitions along and leaves the
    // sections; the creation functions' keys refuse.
    const QString schemaAlone = files.database().filePath("alone.sqlite3");
    QFile::remove(schemaAlone);
    QVERIFY(QFile::copy(path, schemaAlone));
    const TestDatabase::ShellResult alone =
        TestDatabase::runSqlcipher(schemaAlone, QLatin1String(TestDatabase::projectKey_),
                                   "PRAGMA foreign_keys = ON; DELETE FROM program WHERE id = 1;");
    QCOMPARE(alone.ok, delivered);
    QCOMPARE(counts(schemaAlone), delivered ? QStringLiteral("1 1 3 4 0") : QStringLiteral("2 4 3 4 1"));

    Fixture fixture(path);
    QVERIFY(fixture.opened);
    Store& store = fixture.store;

    // A program that another calls stays, with everything.
    const QString dump = shell(path, ".dump");
    QVERIFY(!store.deleteProgram(2));
    QCOMPARE(shell(path, ".dump"), dump);

    QVERIFY(store.deleteProgram(1));
    QCOMPARE(counts(path), QStringLiteral("1 1 1 1 0"));
    QCOMPARE(stepRows(path), QStringLiteral("4|2|1|1|3|NULL"));
    QCOMPARE(setpointRows(path), QStringLiteral("3|311|30.0||"));

    // A step goes with its section and set points; the program's steps alone.
    QVERIFY(store.deleteProgramStep(4));
    QCOMPARE(counts(path), QStringLiteral("1 0 0 0 0"));
    QVERIFY(store.deleteProgram(2));
    QCOMPARE(counts(path), QStringLiteral("0 0 0 0 0"));
}

void TestSqlProgramDatabaseConnection::createTables_data()
{
    QTest::addColumn<Create>("create");
    QTest::addColumn<QStringList>("tables");

    // Reference tables first, in the order of the foreign keys, each once.
    QTest::newRow("all five") << Create([](Store& s, auto& c) { return s.createTables(c); }) << createdTables;
    QTest::newRow("program") << Create([](Store& s, auto& c) { return s.createProgramTable(c); })
                             << QStringList(createdTables.mid(0, 1));
    QTest::newRow("program_section") << Create([](Store& s, auto& c) { return s.createProgramSectionTable(c); })
                                     << QStringList(createdTables.mid(1, 1));
    QTest::newRow("program_step") << Create([](Store& s, auto& c) { return s.createProgramStepTable(c); })
                                  << QStringList(createdTables.mid(0, 3));
    QTest::newRow("program_step_repetition")
        << Create([](Store& s, auto& c) { return s.createProgramStepRepetitionTable(c); })
        << QStringList(createdTables.mid(0, 4));
    QTest::newRow("program_setpoint") << Create([](Store& s, auto& c) { return s.createProgramSetpointTable(c); })
                                      << QStringList{createdTables.at(1), createdTables.at(4)};
}

void TestSqlProgramDatabaseConnection::createTables()
{
    QFETCH(Create, create);
    QFETCH(QStringList, tables);

    static int count = 0;
    const QString path = files.database().createEncrypted(QStringLiteral("tables%1.sqlite3").arg(++count),
                                                          "CREATE TABLE database_version_info (version INTEGER);");
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    QSignalSpy errors(&fixture.store, &Store::error);

    QVERIFY(create(fixture.store, fixture.connection));
    QCOMPARE(tablesOf(path), tables);
    // Again: what is there stays as it is.
    QVERIFY(create(fixture.store, fixture.connection));
    QCOMPARE(tablesOf(path), tables);
    QCOMPARE(fixture.store.initialize(), tables.size() == 5);
    QCOMPARE(errors.count(), tables.size() == 5 ? 0 : 1);
}

void TestSqlProgramDatabaseConnection::createTableFails()
{
    // An index of the name "program_section": the step table can't reference it.
    const QString path = files.database().createEncrypted(
        "index.sqlite3", "CREATE TABLE other (a INTEGER); CREATE INDEX program_section ON other (a);");
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);

    Listening listening;
    QVERIFY(!fixture.store.createProgramStepRepetitionTable(fixture.connection));
    QCOMPARE(listening.log.texts(),
             (QStringList{"critical: Could not create table 'program_section'",
                          "critical: Missing reference table. Can't create 'program_step'",
                          "critical: Missing reference table. Can't create 'program_step_repetition'"}));
    QCOMPARE(tablesOf(path), createdTables.mid(0, 1));
}

void TestSqlProgramDatabaseConnection::badInput_data()
{
    Failures::addColumns();
    const auto number = [](auto value) { return QString::number(int(value)); };
    const Operation initialize = [](Store& s) { return QString::number(s.initialize()); };
    const Operation allPrograms = [](Store& s) { return QString::number(s.getAllPrograms().size()); };
    const Operation program = [](Store& s) { return s.getProgram(1).name; };
    const Operation steps = [](Store& s) { return QString::number(s.getProgramSteps(1).size()); };
    const Operation readSection = [](Store& s) { return QString::number(s.getProgramSection(1).durationInSeconds); };
    const Operation setpoints = [](Store& s) { return summary(s.getProgramSectionSetpoints(1)); };
    const Operation repetitions = [](Store& s) { return QString::number(s.getProgramStepRepetitions(1).size()); };
    const Operation name = [](Store& s) { return s.getProgramName(1); };
    const Operation find = [number](Store& s) { return number(s.findProgramByName("Main")); };
    const Operation add = [number](Store& s) {
        ProgramData data(0, "New", 1, QString(), ProgramData::TIME_PROGRAM, false, ChamberTypeData());
        return QString::number(s.addProgram(data)) + number(data.id);
    };
    const Operation addStep = [](Store& s) {
        ProgramStep step(0, 1, 3, section(5, ProgramSection::RAMP, {setpoint(temperature, Unit::CELSIUS, 1)}));
        return QString::number(s.addProgramStep(step));
    };
    const Operation updateSteps = [](Store& s) {
        QList<ProgramStep> none;
        return QString::number(s.updateProgramSteps(1, none));
    };
    const Operation remove = [](Store& s) { return QString::number(s.deleteProgram(1)); };
    const Operation exportFile = [](Store& s) {
        return QString::number(s.exportProgram(1, QUrl::fromLocalFile(QDir::temp().filePath("never.prg"))));
    };
    const Operation importFile = [number](Store& s) { return number(s.importProgram(QUrl("file:///nowhere.prg"), 1)); };

    for (const char* situation : {"unwired", "wrong key"}) {
        const bool unwired = QByteArray(situation) == "unwired";
        const QList<int> codes = unwired ? QList<int>{0} : QList<int>();
        const QByteArray tag = QByteArray(situation) + ": ";
        Failures::row(tag + "initialize", situation, initialize, "0", unwired ? codes : QList<int>{4});
        Failures::row(tag + "all programs", situation, allPrograms, "0", codes);
        Failures::row(tag + "program", situation, program, "", codes);
        Failures::row(tag + "steps", situation, steps, "0", codes);
        Failures::row(tag + "section", situation, readSection, "0", codes);
        Failures::row(tag + "set points", situation, setpoints, "", codes);
        Failures::row(tag + "repetitions", situation, repetitions, "0", codes);
        Failures::row(tag + "name", situation, name, "", codes);
        Failures::row(tag + "find", situation, find, "0", codes);
        Failures::row(tag + "add", situation, add, "00", codes);
        Failures::row(tag + "add step", situation, addStep, "0", codes);
        Failures::row(tag + "update steps", situation, updateSteps, unwired ? "0" : "1", codes);
        Failures::row(tag + "delete", situation, remove, "0", codes);
        Failures::row(tag + "export", situation, exportFile, "0", codes);
        Failures::row(tag + "import", situation, importFile, "0", codes);
    }
    Failures::row("no set point table: initialize", "no program_setpoint", initialize, "0", {4});
    Failures::row("no step table: initialize", "no program_step", initialize, "0", {4});
    // Rows a column short, each reported and passed over.
    Failures::row("short program rows", "short rows", allPrograms, "0", {8, 8}, 7);
    Failures::row("short step rows", "short rows", steps, "0", {8, 8}, 6);
    Failures::row("short section row", "short rows", readSection, "0", {8}, 5);
    Failures::row("short set point rows", "short rows", setpoints, "", {8, 8}, 5);
    Failures::row("short repetition rows", "short rows", repetitions, "0", {8}, 5);
}

void TestSqlProgramDatabaseConnection::badInput()
{
    QFETCH(QString, situation);

    QString rows = twoPrograms
                   + "INSERT INTO program_section (id, duration_in_seconds) VALUES (1, 10);"
                     "INSERT INTO program_setpoint VALUES (1, 311, 20, NULL, NULL), (1, 312, 50, NULL, NULL);"
                     "INSERT INTO program_step VALUES (1, 1, 1, 1, 1, NULL), (2, 1, 2, 2, NULL, 2);"
                     "INSERT INTO program_step_repetition VALUES (1, 1, 1, 2, 2);";
    if (situation.startsWith("no "))
        rows = "DROP TABLE " + situation.mid(3) + ";";
    const QString path = files.create(rows);
    QVERIFY(!path.isEmpty());
    Failures::check(path, -1);
}

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    TestSqlProgramDatabaseConnection test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_sqlprogramdatabaseconnection.moc"
