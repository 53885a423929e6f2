// export-program and import-program of the real zelmor-db through the
// program store, read back with Debian's sqlcipher shell. An export makes a
// new file only; an import changes the database only when it succeeds.

#include "support/DatabaseToolRun.h"
#include "support/SampleCatalogue.h"
#include "support/StoreFixture.h"
#include "support/TestDatabase.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace zelmor::testsupport;

namespace {

// "Cycle" for type 1 heats to 40 °C for ten minutes, then calls "Soak", which
// holds 80 % r.F. for an hour. Alice wrote them; Bob imports.
const QString programRows = QStringLiteral(
    "INSERT INTO application_user (id, login_name, user_level) VALUES (1, 'alice', 3), (2, 'bob', 1);"
    "INSERT INTO user_preferences (user_id) VALUES (1), (2);"
    "INSERT INTO program VALUES (1, 'Cycle', 1, 'two steps', 0, 0, 1), (2, 'Soak', 1, NULL, 0, 1, 1);"
    "INSERT INTO program_section VALUES (1, 600, 0, 0, NULL), (2, 3600, 1, 0, 'soaking');"
    "INSERT INTO program_step VALUES (1, 1, 0, 1, 1, NULL), (2, 1, 1, 2, NULL, 2), (3, 2, 0, 1, 2, NULL);"
    "INSERT INTO program_setpoint VALUES (1, 111, 40.0, NULL, NULL), (2, 112, 80.0, NULL, NULL);");

const QString programs = QStringLiteral("SELECT id, program_name, user_id, quote(info_text), program_type, edited, "
                                        "chamber_type_id FROM program ORDER BY id;");
const QString steps = QStringLiteral(
    "SELECT id, program_id, order_number, step_type, quote(section_id), quote(sub_program_id) FROM program_step "
    "ORDER BY id;");
const QString sections = QStringLiteral(
    "SELECT s.id, duration_in_seconds, transition_type, quote(program_event_message), signal_id, setpoint "
    "FROM program_section s JOIN program_setpoint p ON p.program_section_id = s.id ORDER BY s.id;");

QString shell(const QString& path, const QString& sql)
{
    return ApplicationFiles::shell(path, sql);
}

QStringList entries(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace

class TestProgramCommands : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void exportAndImport();
    void exportFailures_data();
    void exportFailures();
    void importFailures_data();
    void importFailures();

private:
    QString database(const QString& rows = programRows);
    // A program file exported from a database with the program rows.
    QString programFile(const QString& name);

    TestDatabase files;
    QString catalogue;
    int count = 0;
};

void TestProgramCommands::initTestCase()
{
    catalogue = createSampleCatalogue(files);
    QVERIFY2(!catalogue.isEmpty(), qPrintable(files.lastError()));
}

QString TestProgramCommands::database(const QString& rows)
{
    return createApplicationDatabase(files, QStringLiteral("app%1.sqlite3").arg(++count), rows);
}

QString TestProgramCommands::programFile(const QString& name)
{
    const QString path = files.filePath(name);
    const DatabaseToolRun run =
        DatabaseToolRun::start({"export-program", database(), "1", path, "--catalogue", catalogue});
    return run.exitCode == 0 ? path : QString();
}

void TestProgramCommands::exportAndImport()
{
    const QString path = database();
    QTemporaryDir work;
    const QString out = work.filePath("Cycle.v2.prg");
    DatabaseToolRun run = DatabaseToolRun::start({"export-program", path, "1", out, "--catalogue", catalogue});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(QString::fromUtf8(run.standardOutput),
             out + ": program 1 (\"Cycle\") of " + path + ", with the programs it calls\n");
    QCOMPARE(entries(work.path()), QStringList{"Cycle.v2.prg"});

    // The program first, then its steps in order; the called program is
    // copied when its step comes, before that step is written.
    QCOMPARE(shell(out, programs), QString("1|Cycle|1|'two steps'|0|0|1\n2|Soak|1|NULL|0|1|1"));
    QCOMPARE(shell(out, steps), QString("1|1|0|1|1|NULL\n2|2|0|1|2|NULL\n3|1|1|2|NULL|2"));
    QCOMPARE(shell(out, sections), QString("1|600|0|NULL|111|40.0\n2|3600|1|'soaking'|112|80.0"));
    QCOMPARE(shell(out, "SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name;"),
             QString("program\nprogram_section\nprogram_setpoint\nprogram_step\nprogram_step_repetition"));

    // Back in as Bob's, named after the file up to its first dot.
    const QByteArray exported = fileBytes(out);
    run = DatabaseToolRun::start({"import-program", path, out, "--user", "2", "--catalogue", catalogue});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(QString::fromUtf8(run.standardOutput),
             path + ": program 3 (\"Cycle_imported\") imported from " + out + " for user 2\n");
    QCOMPARE(run.standardError, QByteArray());
    QCOMPARE(shell(path, programs), QString("1|Cycle|1|'two steps'|0|0|1\n"
                                            "2|Soak|1|NULL|0|1|1\n"
                                            "3|Cycle_imported|2|'two steps'|0|0|1\n"
                                            "4|Cycle_subimported|2|NULL|0|0|1"));
    QCOMPARE(shell(path, steps + "PRAGMA integrity_check;"), QString("1|1|0|1|1|NULL\n"
                                                                     "2|1|1|2|NULL|2\n"
                                                                     "3|2|0|1|2|NULL\n"
                                                                     "4|3|0|1|3|NULL\n"
                                                                     "5|4|0|1|4|NULL\n"
                                                                     "6|3|1|2|NULL|4\n"
                                                                     "ok"));
    QCOMPARE(fileBytes(out), exported);
}

void TestProgramCommands::exportFailures_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QStringList>("arguments"); // behind the file; %1 the file out
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("error"); // the first line; %1 the database, %2 the file out

    QTest::newRow("no such program") << database() << QStringList{"3", "%2", "--catalogue", catalogue} << 10
                                     << "zelmor-db: %1: has no program 3";
    QTest::newRow("another key") << database() << QStringList{"1",       "%2",    "--catalogue",
                                                              catalogue, "--key", "ffeeddccbbaa99887766554433221100"}
                                 << 4 << "zelmor-db: %1: is not a database, or not one encrypted with this key";
    QTest::newRow("a catalogue that isn't there")
        << database() << QStringList{"1", "%2", "--catalogue", files.filePath("none.sqlite3")} << 8
        << "zelmor-db: " + files.filePath("none.sqlite3") + ": no such file";
    QTest::newRow("a folder that isn't there")
        << database() << QStringList{"1", files.filePath("nowhere/out.prg"), "--catalogue", catalogue} << 3
        << "zelmor-db: " + files.filePath("nowhere/out.prg") + ": can't write in its folder (";
}

void TestProgramCommands::exportFailures()
{
    QFETCH(QString, path);
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, error);

    QTemporaryDir work;
    const QString out = work.filePath("out.prg");
    const QByteArray before = fileBytes(path);
    arguments.replaceInStrings("%2", out);
    const DatabaseToolRun run = DatabaseToolRun::start(QStringList{"export-program", path} + arguments);
    QCOMPARE(run.exitCode, exitCode);
    const QString expected = QString(error).replace("%1", path).replace("%2", out);
    QVERIFY2(QString::fromUtf8(run.standardError).startsWith(expected), run.standardError.constData());
    QCOMPARE(fileBytes(path), before);
    QCOMPARE(entries(work.path()), QStringList{});
}

void TestProgramCommands::importFailures_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("in");
    QTest::addColumn<QString>("user");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("error"); // the first line; %1 the database, %2 the file in

    QTest::newRow("no file") << database() << files.filePath("missing.prg") << "2" << 3
                             << "zelmor-db: %2: no such file";
    QTest::newRow("not a database") << database() << files.createFile("notes.prg", QByteArray(5000, 'x')) << "2" << 9
                                    << "zelmor-db: %2: is no program file (not a database, or not one with the fixed "
                                       "key of program files)";
    QTest::newRow("a database, no program file")
        << database() << files.createEncrypted("other.prg", "CREATE TABLE notes (text TEXT);") << "2" << 9
        << "zelmor-db: %2: is no program file (no table program)";
    // The tables are there, the program the file stands for isn't.
    const QString emptied = programFile("emptied.prg");
    QVERIFY(!emptied.isEmpty());
    QVERIFY(TestDatabase::runSqlcipher(emptied, TestDatabase::projectKey_,
                                       "DELETE FROM program_setpoint; DELETE FROM program_step; DELETE FROM program;")
                .ok);
    QTest::newRow("no program in it") << database() << emptied << "2" << 1
                                      << "zelmor-db: %2: its program can't be imported into %1; nothing is written";
    QTest::newRow("no such user") << database() << programFile("nouser.prg") << "7" << 10
                                  << "zelmor-db: %1: has no user 7";
    QTest::newRow("version 18") << database(programRows + "UPDATE database_version_info SET version = 18;")
                                << programFile("old.prg") << "2" << 5
                                << "zelmor-db: %1: has schema version 18; the monitoring application needs 19 or later";
    // The sub program's steps go into a table that refuses them: the main
    // program was in already, and goes with the working copy.
    QTest::newRow("refused half-way") << database(
        programRows
        + "CREATE TRIGGER refuse BEFORE INSERT ON program_step WHEN NEW.program_id = 4 "
          "BEGIN SELECT RAISE(ABORT, 'refused'); END;")
                                      << programFile("halfway.prg") << "2" << 1
                                      << "zelmor-db: %2: its program can't be imported into %1; nothing is written";
}

void TestProgramCommands::importFailures()
{
    QFETCH(QString, path);
    QFETCH(QString, in);
    QFETCH(QString, user);
    QFETCH(int, exitCode);
    QFETCH(QString, error);

    QVERIFY(!path.isEmpty() && !in.isEmpty());
    const QByteArray before = fileBytes(path);
    const QByteArray inBefore = fileBytes(in);
    const QStringList around = entries(files.filePath(QString()));
    const DatabaseToolRun run =
        DatabaseToolRun::start({"import-program", path, in, "--user", user, "--catalogue", catalogue});
    QCOMPARE(run.exitCode, exitCode);
    QCOMPARE(QString::fromUtf8(run.standardError).section('\n', 0, 0),
             QString(error).replace("%1", path).replace("%2", in));
    QCOMPARE(run.standardOutput, QByteArray());
    QCOMPARE(fileBytes(path), before);
    QCOMPARE(fileBytes(in), inBefore);
    QCOMPARE(entries(files.filePath(QString())), around);
}

QTEST_GUILESS_MAIN(TestProgramCommands)
#include "tst_programcommands.moc"
