#include "Base/Connection/DatabaseConnection/SqlProgramDatabaseConnection.h"
#include "Domain/Types/ProgramSection.h"
#include "Domain/Types/SignalValuePair.h"
#include "Domain/Types/ToleranceRange.h"
#include "support/LogCapture.h"
#include "support/SampleCatalogue.h"
#include "support/StoreFixture.h"
#include "support/TestDatabase.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QUrl>
#include <QtTest>

#include <functional>

using zelmor::base::connection::databaseconnection::SqlProgramDatabaseConnection;
using zelmor::testsupport::LogCapture;
using zelmor::testsupport::TestDatabase;
using namespace zelmor::domain::types;

using Store = SqlProgramDatabaseConnection;
using Fixture = zelmor::testsupport::CatalogueStoreFixture<Store>;
// Makes the file to import from a good export at the path.
using Spoil = std::function<bool(const QString& path)>;
Q_DECLARE_METATYPE(Spoil)

namespace {

// The key of every program file, as the monitoring application knows it.
const QString fileKey = QStringLiteral("0a1b2c3d4e5f60718293a4b5c6d7e8f9");
const QString category = QStringLiteral("zelmor.SqlProgramDatabaseConnection");
const QString quiet = QStringLiteral("zelmor.*=false");

// The store's texts, heard only while this lives.
struct Listening
{
    Listening() { QLoggingCategory::setFilterRules(quiet + '\n' + category + "=true"); }
    ~Listening() { QLoggingCategory::setFilterRules(quiet); }
    LogCapture log{category};
};

QString fileShell(const QString& path, const QString& sql, const QString& key = fileKey)
{
    const TestDatabase::ShellResult result = TestDatabase::runSqlcipher(path, key, sql);
    return result.ok ? result.output.trimmed() : QStringLiteral("<failed: %1>").arg(result.errorOutput);
}

QString counts(const QString& path)
{
    return zelmor::testsupport::ApplicationFiles::shell(
        path, "SELECT (SELECT count(*) FROM program) || ' ' || (SELECT count(*) FROM program_step) || ' ' || "
              "(SELECT count(*) FROM program_section) || ' ' || (SELECT count(*) FROM program_setpoint) || ' ' || "
              "(SELECT count(*) FROM program_step_repetition);");
}

SignalValuePair setpoint(int signal, Unit::UnitId unit, float value, float band = 0)
{
    SignalValuePair pair(signal, UnitValue(unit, value));
    if (band != 0)
        pair.toleranceRange = QSharedPointer<ToleranceRange>::create(UnitValue(unit, band), UnitValue(unit, band));
    return pair;
}

ProgramStep sectionStep(int order, int seconds, ProgramSection::TransitionType transition,
                        const QList<SignalValuePair>& setpoints, bool breakpoint = false,
                        const QString& event = QString())
{
    return ProgramStep(0, 0, order,
                       ProgramSection(0, setpoints, seconds, transition, breakpoint, ProgramSectionEvent(event)));
}

// "Cycle" (1) calls "Soak" (2) twice, which calls "Ramp" (3); Cycle and Soak
// repeat runs of their steps. Sections hold temperatures in °C with and
// without bands, a humidity and a switch.
bool addCycle(Store& store)
{
    ChamberTypeData kv2;
    kv2.chamberTypeId = ChamberTypeId(247, 0);
    ProgramData cycle(0, "Cycle", 3, "Climate cycle", ProgramData::TIME_PROGRAM, true, kv2);
    ProgramData soak(0, "Soak", 3, QString(), ProgramData::TIME_PROGRAM, false, kv2);
    ProgramData ramp(0, "Ramp", 4, QString(), ProgramData::TIME_PROGRAM, false, kv2);
    if (!store.addProgram(cycle) || !store.addProgram(soak) || !store.addProgram(ramp))
        return false;

    QList<ProgramStep> rampSteps = {sectionStep(1, 300, ProgramSection::RAMP, {setpoint(311, Unit::CELSIUS, 40, 1)})};
    QList<ProgramStep> soakSteps = {
        sectionStep(1, 120, ProgramSection::JUMP, {setpoint(312, Unit::RELATIVE_HUMIDITY_RF, 80)}),
        ProgramStep(0, 0, 2, ramp.id),
    };
    QList<ProgramStep> cycleSteps = {
        sectionStep(1, 600, ProgramSection::RAMP,
                    {setpoint(311, Unit::CELSIUS, 25, 0.5f), setpoint(312, Unit::RELATIVE_HUMIDITY_RF, 60),
                     SignalValuePair(323, true)}),
        ProgramStep(0, 0, 2, soak.id),
        sectionStep(3, 60, ProgramSection::JUMP, {setpoint(311, Unit::CELSIUS, -10)}, true, "Check"),
        ProgramStep(0, 0, 4, soak.id),
    };
    if (!store.updateProgramSteps(ramp.id, rampSteps) || !store.updateProgramSteps(soak.id, soakSteps)
        || !store.updateProgramSteps(cycle.id, cycleSteps))
        return false;
    QList<ProgramStepRepetition> soakRepetitions = {
        ProgramStepRepetition(0, 0, soakSteps.at(0).id, soakSteps.at(1).id, 2)};
    QList<ProgramStepRepetition> cycleRepetitions = {
        ProgramStepRepetition(0, 0, cycleSteps.at(0).id, cycleSteps.at(2).id, 3)};
    return store.updateProgramStepRepetitions(soak.id, soakRepetitions)
           && store.updateProgramStepRepetitions(cycle.id, cycleRepetitions);
}

QString text(const UnitValue& value)
{
    return value.isValid()
               ? QStringLiteral("%1 %2 u%3").arg(value.value.typeName(), value.value.toString()).arg(value.unit)
               : QStringLiteral("-");
}

// A program with everything it calls, all but ids, names, user and "edited":
// a called program by what it is, a repetition by its steps' positions.
QString describe(Store& store, const ProgramId& id)
{
    const ProgramData program = store.getProgram(id);
    QStringList parts = {QStringLiteral("'%1' type %2 chamber %3 %4")
                             .arg(program.infoText)
                             .arg(program.type)
                             .arg(program.chamberType.chamberTypeId.typeId)
                             .arg(program.chamberType.getQualifiedTypeName())};
    QMap<int, int> positions;
    for (const ProgramStep& step : program.steps) {
        positions.insert(step.id, positions.size() + 1);
        if (!step.isSection()) {
            parts.append(
                QStringLiteral("%1 calls {%2}").arg(step.orderNumber).arg(describe(store, step.getSubProgramId())));
            continue;
        }
        const ProgramSection section = step.getSection();
        QStringList setpoints;
        for (const SignalValuePair& pair : section.setpoints) {
            QString band;
            if (pair.toleranceRange)
                band = QStringLiteral(" [%1 .. %2 %3]")
                           .arg(text(pair.toleranceRange->lower), text(pair.toleranceRange->upper))
                           .arg(pair.toleranceRange->type);
            setpoints.append(QStringLiteral("%1 = %2%3").arg(pair.signalId).arg(text(pair.value), band));
        }
        // Transition and breakpoint as numbers.
        parts.append(QStringLiteral("%1 section %2 s %3 %4 '%5': %6")
                         .arg(step.orderNumber)
                         .arg(section.durationInSeconds)
                         .arg(section.transitionType)
                         .arg(section.breakpoint)
                         .arg(section.event.message, setpoints.join(", ")));
    }
    for (const ProgramStepRepetition& repetition : program.repetitions)
        parts.append(QStringLiteral("repeat %1 to %2 x%3")
                         .arg(positions.value(repetition.startStepId))
                         .arg(positions.value(repetition.endStepId))
                         .arg(repetition.repetitions));
    return parts.join(QStringLiteral("; "));
}

} // namespace

class TestSqlProgramTransfer : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void exportAndImport();
    void baseName_data();
    void baseName();
    void badFiles_data();
    void badFiles();
    void exportFails_data();
    void exportFails();

private:
    // A delivered application file with the cycle in it, and the store on it.
    QString cycleFile();

    zelmor::testsupport::ApplicationFiles files;
    QTemporaryDir folder;
};

void TestSqlProgramTransfer::initTestCase()
{
    qRegisterMetaType<DatabaseConnectionError>();
    QLoggingCategory::setFilterRules(quiet);
    QVERIFY(files.isValid() && folder.isValid());
    Fixture::cataloguePath() = zelmor::testsupport::createSampleCatalogue(files.database());
    QVERIFY(!Fixture::cataloguePath().isEmpty());
}

QString TestSqlProgramTransfer::cycleFile()
{
    const QString path = files.create();
    Fixture fixture(path);
    const bool added = fixture.opened && addCycle(fixture.store);
    fixture.connection.closeDatabase();
    return added ? path : QString();
}

void TestSqlProgramTransfer::exportAndImport()
{
    const QString path = cycleFile();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    // Over an older export: the file holds the new one alone.
    const QString exported = folder.filePath("Cycle.2024.prg");
    QVERIFY(store.exportProgram(2, QUrl::fromLocalFile(exported)));
    QVERIFY(store.exportProgram(1, QUrl::fromLocalFile(exported)));

    // The five tables and nothing else; the ids are the file's, each called
    // program copied once: Cycle 1, Soak 2, Ramp 3, in the order they are met.
    QCOMPARE(fileShell(exported, "SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name;"),
             QStringLiteral("program\nprogram_section\nprogram_setpoint\nprogram_step\nprogram_step_repetition"));
    QCOMPARE(fileShell(exported, "SELECT id, program_name, user_id, quote(info_text), program_type, edited, "
                                 "chamber_type_id FROM program ORDER BY id;"),
             QStringLiteral("1|Cycle|3|'Climate cycle'|0|1|247\n2|Soak|3|NULL|0|0|247\n3|Ramp|4|NULL|0|0|247"));
    // Both calls of Soak point at its one row.
    QCOMPARE(fileShell(exported, "SELECT id, program_id, order_number, step_type, quote(section_id), "
                                 "quote(sub_program_id) FROM program_step ORDER BY id;"),
             QStringLiteral("1|1|1|1|1|NULL\n2|2|1|1|2|NULL\n3|3|1|1|3|NULL\n4|2|2|2|NULL|3\n"
                            "5|1|2|2|NULL|2\n6|1|3|1|4|NULL\n7|1|4|2|NULL|2"));
    QCOMPARE(fileShell(exported, "SELECT id, duration_in_seconds, transition_type, breakpoint, "
                                 "quote(program_event_message) FROM program_section ORDER BY id;"),
             QStringLiteral("1|600|0|0|NULL\n2|120|1|0|NULL\n3|300|0|0|NULL\n4|60|1|1|'Check'"));
    QCOMPARE(fileShell(exported, "SELECT program_section_id, signal_id, setpoint, tolerance_range_min, "
                                 "tolerance_range_max FROM program_setpoint ORDER BY 1, 2;"),
             QStringLiteral("1|311|25.0|0.5|0.5\n1|312|60.0||\n1|323|1.0||\n2|312|80.0||\n3|311|40.0|1.0|1.0\n"
                            "4|311|-10.0||"));
    QCOMPARE(fileShell(exported, "SELECT * FROM program_step_repetition ORDER BY id;"),
             QStringLiteral("1|2|2|4|2\n2|1|1|6|3"));
    QCOMPARE(fileShell(exported, "PRAGMA foreign_key_check;"), QString());

    // Imported twice under user 7, named after the file up to its first dot.
    QCOMPARE(int(store.importProgram(QUrl::fromLocalFile(exported), 7)), 4);
    QCOMPARE(int(store.importProgram(QUrl::fromLocalFile(exported), 7)), 7);
    const QString rows = zelmor::testsupport::ApplicationFiles::shell(
        path, "SELECT id, program_name, user_id, edited FROM program WHERE id > 3 ORDER BY id;");
    QCOMPARE(rows, QStringLiteral("4|Cycle_imported|7|0\n5|Cycle_subimported|7|0\n6|Cycle_subimported1|7|0\n"
                                  "7|Cycle_imported1|7|0\n8|Cycle_subimported2|7|0\n9|Cycle_subimported3|7|0"));
    QCOMPARE(zelmor::testsupport::ApplicationFiles::shell(
                 path, "SELECT program_id, order_number, sub_program_id FROM program_step WHERE step_type = 2 "
                       "AND program_id > 3 ORDER BY program_id, order_number;"),
             QStringLiteral("4|2|5\n4|4|5\n5|2|6\n7|2|8\n7|4|8\n8|2|9"));

    const QString original = describe(store, 1);
    QCOMPARE(original,
             QStringLiteral("'Climate cycle' type 0 chamber 247 VC 7034 Z2; "
                            "1 section 600 s 0 0 '': 311 = float 25 u0 [float 0.5 u0 .. float 0.5 u0 2], "
                            "312 = float 60 u3, 323 = bool true u13; "
                            "2 calls {'' type 0 chamber 247 VC 7034 Z2; 1 section 120 s 1 0 '': 312 = float 80 u3; "
                            "2 calls {'' type 0 chamber 247 VC 7034 Z2; 1 section 300 s 0 0 '': "
                            "311 = float 40 u0 [float 1 u0 .. float 1 u0 2]}; repeat 1 to 2 x2}; "
                            "3 section 60 s 1 1 'Check': 311 = float -10 u0; "
                            "4 calls {'' type 0 chamber 247 VC 7034 Z2; 1 section 120 s 1 0 '': 312 = float 80 u3; "
                            "2 calls {'' type 0 chamber 247 VC 7034 Z2; 1 section 300 s 0 0 '': "
                            "311 = float 40 u0 [float 1 u0 .. float 1 u0 2]}; repeat 1 to 2 x2}; repeat 1 to 3 x3"));
    QCOMPARE(describe(store, 4), original);
    QCOMPARE(describe(store, 7), original);
    QCOMPARE(errors.count(), 0);
}

void TestSqlProgramTransfer::baseName_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("names");

    QTest::newRow("one dot") << "Cycle.prg"
                             << "Cycle_imported Cycle_subimported Cycle_subimported1";
    QTest::newRow("two dots") << "Cycle.v2.prg"
                              << "Cycle_imported Cycle_subimported Cycle_subimported1";
    QTest::newRow("no dot") << "Cycle"
                            << "Cycle_imported Cycle_subimported Cycle_subimported1";
    QTest::newRow("a blank") << "Hot run.tar.prg"
                             << "Hot run_imported Hot run_subimported Hot run_subimported1";
}

void TestSqlProgramTransfer::baseName()
{
    QFETCH(QString, fileName);
    QFETCH(QString, names);

    const QString path = cycleFile();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    const QUrl url = QUrl::fromLocalFile(folder.filePath(fileName));
    QVERIFY(fixture.store.exportProgram(1, url));
    QCOMPARE(int(fixture.store.importProgram(url, 1)), 4);
    QCOMPARE(zelmor::testsupport::ApplicationFiles::shell(
                 path, "SELECT group_concat(program_name, ' ') FROM program WHERE id > 3;"),
             names);
}

void TestSqlProgramTransfer::badFiles_data()
{
    QTest::addColumn<Spoil>("spoil");
    QTest::addColumn<QStringList>("warnings");

    const auto sql = [](const QString& statements) {
        return Spoil([statements](const QString& path) {
            return !fileShell(path, statements).startsWith(QLatin1String("<failed"));
        });
    };
    const QString noProgram = QStringLiteral("warning: No program found");
    QTest::newRow("missing") << Spoil([](const QString& path) { return QFile::remove(path); })
                             << QStringList{"warning: Could not open file <url>"};
    QTest::newRow("not a database") << Spoil([](const QString& path) {
        QFile file(path);
        return file.open(QIODevice::WriteOnly | QIODevice::Truncate)
               && file.write(QByteArray("Cycle\n600 s at 25 degrees\n").repeated(100)) > 0;
    }) << QStringList{noProgram + " (the file lacks the table 'program')"};
    QTest::newRow("another key") << sql("PRAGMA rekey = 'ffeeddccbbaa99887766554433221100';")
                                 << QStringList{noProgram + " (the file lacks the table 'program')"};
    QTest::newRow("a table missing") << sql("DROP TABLE program_step_repetition;")
                                     << QStringList{noProgram
                                                    + " (the file lacks the table 'program_step_repetition')"};
    QTest::newRow("no program") << sql("DELETE FROM program_step_repetition; DELETE FROM program_setpoint; "
                                       "DELETE FROM program_step; DELETE FROM program_section; DELETE FROM program;")
                                << QStringList{noProgram};
    // Cycle's second call of Soak, the last step, calls a program the file lacks.
    QTest::newRow("sub program step pointing nowhere")
        << sql("UPDATE program_step SET sub_program_id = 99 WHERE id = 7;")
        << QStringList{noProgram, "warning: Could not import subprogram"};
    // Soak calls Cycle, which calls Soak.
    QTest::newRow("a program calling itself")
        << sql("UPDATE program_step SET sub_program_id = 1 WHERE id = 4;")
        << QStringList{"warning: Program 1 calls itself", "warning: Could not import subprogram",
                       "warning: Could not import subprogram"};
    QTest::newRow("steps that can't be read")
        << sql("DROP TABLE program_step; CREATE TABLE program_step (id INTEGER PRIMARY KEY, program_id INTEGER);"
               "INSERT INTO program_step VALUES (1, 1);")
        << QStringList{noProgram};
    QTest::newRow("a step of no known type")
        << sql("UPDATE program_step SET step_type = 3 WHERE id = 6;")
        << QStringList{"warning: Refused a program step of the unknown type 3", "warning: Could not add program step"};
    // Cycle's repetition starting at a step of Ramp: the last thing imported.
    QTest::newRow("a repetition over another program's step")
        << sql("UPDATE program_step_repetition SET start_step_id = 3 WHERE id = 2;")
        << QStringList{"warning: Could not add program step repetition"};
}

void TestSqlProgramTransfer::badFiles()
{
    QFETCH(Spoil, spoil);
    QFETCH(QStringList, warnings);

    const QString path = cycleFile();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    static int count = 0;
    const QString file = folder.filePath(QStringLiteral("bad%1.prg").arg(++count));
    QVERIFY(store.exportProgram(1, QUrl::fromLocalFile(file)));
    QVERIFY(spoil(file));
    const QString before = counts(path);
    QCOMPARE(before, QStringLiteral("3 7 4 6 2"));
    const QString dump = zelmor::testsupport::ApplicationFiles::shell(path, ".dump");

    Listening listening;
    QCOMPARE(int(store.importProgram(QUrl::fromLocalFile(file), 7)), 0);
    warnings.replaceInStrings("<url>", QUrl::fromLocalFile(file).toDisplayString());
    QCOMPARE(listening.log.texts(), warnings);
    // Nothing of the import stays.
    QCOMPARE(counts(path), before);
    QCOMPARE(zelmor::testsupport::ApplicationFiles::shell(path, ".dump"), dump);
    // A missing file isn't made by trying.
    QCOMPARE(QFile::exists(file), QTest::currentDataTag() != QByteArray("missing"));
    Q_UNUSED(errors);
}

void TestSqlProgramTransfer::exportFails_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("program");
    QTest::addColumn<QStringList>("warnings");

    QTest::newRow("folder that isn't there")
        << "missing/Cycle.prg" << QByteArray() << 1 << QStringList{"warning: Could not open file <url>"};
    QTest::newRow("a folder") << "." << QByteArray() << 1 << QStringList{"warning: Could not open file <url>"};
    // A file of another kind stays as it was.
    QTest::newRow("a file that is no database")
        << "notes.txt" << QByteArray("Cycle: 600 s at 25 degrees\n").repeated(200) << 1
        << QStringList{"critical: Could not create table 'program'", "warning: Could not create tables"};
    // The file is made, and taken away again.
    QTest::newRow("program that isn't there")
        << "Nothing.prg" << QByteArray() << 9 << QStringList{"warning: No program found"};
}

void TestSqlProgramTransfer::exportFails()
{
    QFETCH(QString, fileName);
    QFETCH(QByteArray, content);
    QFETCH(int, program);
    QFETCH(QStringList, warnings);

    const QString path = cycleFile();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    const QString file = folder.filePath(fileName);
    if (!content.isEmpty()) {
        QFile written(file);
        QVERIFY(written.open(QIODevice::WriteOnly) && written.write(content) == content.size());
    }
    const bool existed = QFileInfo::exists(file);

    Listening listening;
    QVERIFY(!fixture.store.exportProgram(program, QUrl::fromLocalFile(file)));
    warnings.replaceInStrings("<url>", QUrl::fromLocalFile(file).toDisplayString());
    QCOMPARE(listening.log.texts(), warnings);
    QCOMPARE(QFileInfo::exists(file), existed);
    if (!content.isEmpty())
        QCOMPARE(zelmor::testsupport::fileBytes(file), content);
}

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    TestSqlProgramTransfer test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_sqlprogramtransfer.moc"
