// The real zelmor-db executable on real encrypted files, read back with
// Debian's sqlcipher shell: create, check, add-chambers, chambers, and the
// command line's errors. A command that fails leaves its file byte for byte
// as it was, and nothing beside it.

#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Tools/DatabaseTool/CommandLine.h"
#include "support/DatabaseToolRun.h"
#include "support/SampleCatalogue.h"
#include "support/StoreFixture.h"
#include "support/TestDatabase.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using zelmor::base::connection::databaseconnection::DatabaseConnection;
using zelmor::base::connection::databaseconnection::SqliteConnection;
using namespace zelmor::testsupport;

namespace {

const QString key = QLatin1String(TestDatabase::projectKey_);
const QString otherKey = QStringLiteral("ffeeddccbbaa99887766554433221100");

// Rows as chamber-simulator writes them for a fleet on two interfaces: two
// TLX chambers and a Modbus TCP one on the MAC of the first interface, two
// tunnelled chambers behind one converter on the second.
const QString fleetExtract = QStringLiteral(
    "INSERT INTO \"chamber\" VALUES(1000,9,9,'666-100000',0,1,'KBF 240 E6 at 10.9.0.1','10.9.0.1',NULL,"
    "'02:00:0A:09:00:01',0,NULL,NULL,NULL,NULL,NULL,4,-1);\n"
    "INSERT INTO \"chamber\" VALUES(1001,9,9,'666-100001',0,1,'KBF 240 E6 at 10.9.0.2','10.9.0.2',NULL,"
    "'02:00:0A:09:00:01',0,NULL,NULL,NULL,NULL,NULL,4,-1);\n"
    "INSERT INTO \"chamber\" VALUES(100,247,247,'666-100000',0,1,'VC 7034 Z2','10.9.0.3',NULL,"
    "'02:00:0A:09:00:01',0,NULL,NULL,NULL,NULL,NULL,3,-1);\n"
    "INSERT INTO \"chamber\" VALUES(1000,60,60,'666-100000',0,1,'VT 4021 Z3 at 10.8.0.1','10.8.0.1',NULL,"
    "'02:00:0A:08:00:01',1,NULL,NULL,NULL,NULL,NULL,1,0);\n"
    "INSERT INTO \"chamber\" VALUES(1001,60,60,'666-100001',0,1,'VT 4021 Z3 at 10.8.0.2','10.8.0.1',NULL,"
    "'02:00:0A:08:00:01',2,NULL,NULL,NULL,NULL,NULL,1,0);\n");

// The columns of the delivered table "chamber" but the id, as the shell shows
// them. The store writes "no converter" (-1) as NULL.
const QString chamberColumns =
    QStringLiteral("SELECT chamber_type_id, chamber_type_additional_info_id, serial_no, is_archived, is_subscribed, "
                   "quote(is_active), chamber_name, ip_v4_address, quote(ip_v6_address), mac_address, modbus_address, "
                   "quote(com_port), quote(parity), quote(baud_rate), quote(data_bits), quote(stop_bits), protocol_id, "
                   "quote(converter_id) "
                   "FROM chamber ORDER BY id;");
const QStringList fleetRows = {
    "9|9|666-100000|0|1|NULL|KBF 240 E6 at 10.9.0.1|10.9.0.1|NULL|02:00:0a:09:00:01|0|NULL|NULL|NULL|NULL|NULL|4|NULL",
    "9|9|666-100001|0|1|NULL|KBF 240 E6 at 10.9.0.2|10.9.0.2|NULL|02:00:0a:09:00:01|0|NULL|NULL|NULL|NULL|NULL|4|NULL",
    "247|247|666-100000|0|1|NULL|VC 7034 Z2|10.9.0.3|NULL|02:00:0a:09:00:01|0|NULL|NULL|NULL|NULL|NULL|3|NULL",
    "60|60|666-100000|0|1|NULL|VT 4021 Z3 at 10.8.0.1|10.8.0.1|NULL|02:00:0a:08:00:01|1|NULL|NULL|NULL|NULL|NULL|1|0",
    "60|60|666-100001|0|1|NULL|VT 4021 Z3 at 10.8.0.2|10.8.0.1|NULL|02:00:0a:08:00:01|2|NULL|NULL|NULL|NULL|NULL|1|0",
};

QString shell(const QString& path, const QString& sql)
{
    return ApplicationFiles::shell(path, sql);
}

// The folder's entries, to see that nothing was left beside a file.
QStringList entries(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

bool writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(content) == content.size();
}

} // namespace

class TestDatabaseTool : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void createFromAnyFolder();
    void createWithCatalogue();
    void createNeverWritesOverAFile_data();
    void createNeverWritesOverAFile();
    void checkFaults_data();
    void checkFaults();
    void checkFindsTheCatalogueAsTheSimulator_data();
    void checkFindsTheCatalogueAsTheSimulator();
    void addChambersOfAFleet();
    void addChambersFromTheDocumentsFolder();
    void addChambersBadInput_data();
    void addChambersBadInput();
    void addChambersAllOrNothing();
    void readingWritesNothing();
    void usage_data();
    void usage();

private:
    QString delivered(const QString& rows = QString());

    TestDatabase files;
    QString catalogue;
    int count = 0;
};

void TestDatabaseTool::initTestCase()
{
    QVERIFY(files.isValid());
    catalogue = createSampleCatalogue(files);
    QVERIFY2(!catalogue.isEmpty(), qPrintable(files.lastError()));
}

QString TestDatabaseTool::delivered(const QString& rows)
{
    const QString path = createApplicationDatabase(files, QStringLiteral("app%1.sqlite3").arg(++count), rows);
    if (path.isEmpty())
        qWarning() << files.lastError();
    return path;
}

// From a folder with no catalogue and no schema: the schema is in the binary.
void TestDatabaseTool::createFromAnyFolder()
{
    QTemporaryDir work;
    const DatabaseToolRun run = DatabaseToolRun::start({"create", "new.sqlite3"}, work.path());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.standardOutput, QByteArray("new.sqlite3: new application database of schema version 19; "
                                            "initialize() not tried: no catalogue found (--catalogue names one)\n"));
    QCOMPARE(run.standardError, QByteArray());
    QCOMPARE(entries(work.path()), QStringList{"new.sqlite3"});

    // Table for table what the delivery script makes, whole, of version 19.
    const QString path = work.filePath("new.sqlite3");
    const QString schema = QStringLiteral("SELECT type, name, sql FROM sqlite_master ORDER BY name;");
    QCOMPARE(shell(path, schema), shell(delivered(), schema));
    QCOMPARE(shell(path, "SELECT version FROM database_version_info; PRAGMA integrity_check;"), QString("19\nok"));
    QCOMPARE(shell(path, "SELECT count(*) FROM global_settings;"), QString("0"));
    QCOMPARE(QFile::permissions(path) & (QFile::ReadOther | QFile::WriteOwner),
             QFile::ReadOther | QFile::WriteOwner); // as any new file under the usual umask

    // The monitoring application's facade takes it.
    {
        SqliteConnection application(QStringLiteral("created"));
        SqliteConnection configuration(QStringLiteral("created_catalogue"));
        DatabaseConnection facade(false);
        QVERIFY(application.openDatabase(path, QString(), QString(), key));
        QVERIFY(configuration.openDatabase(catalogue, QString(), QString(), key));
        QVERIFY(facade.setDependencies(&application, &configuration));
        QVERIFY(facade.initialize());
        application.closeDatabase();
        configuration.closeDatabase();
    }
}

// Confirmed by initialize(), which writes the settings row as the application would.
void TestDatabaseTool::createWithCatalogue()
{
    QTemporaryDir work;
    const QString path = work.filePath("new.sqlite3");
    const DatabaseToolRun run = DatabaseToolRun::start({"create", path, "--catalogue", catalogue});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(QString::fromUtf8(run.standardOutput),
             path + ": new application database of schema version 19, accepted by initialize() (catalogue " + catalogue
                 + ")\n");
    QCOMPARE(shell(path, "SELECT count(*) FROM global_settings; PRAGMA integrity_check;"), QString("1\nok"));
    QCOMPARE(entries(work.path()), QStringList{"new.sqlite3"});
}

void TestDatabaseTool::createNeverWritesOverAFile_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("error");

    const QString existing = delivered();
    QTest::newRow("a database") << existing
                                << "zelmor-db: " + existing
                                       + ": exists already; create makes a new file and never writes over one\n";
    const QString text = files.createFile("notes.txt", "my notes");
    QTest::newRow("a text") << text
                            << "zelmor-db: " + text
                                   + ": exists already; create makes a new file and never writes over one\n";
    const QString nowhere = files.filePath("nowhere/new.sqlite3");
    QTest::newRow("a folder that isn't there") << nowhere << "zelmor-db: " + nowhere + ": can't write in its folder (";
}

void TestDatabaseTool::createNeverWritesOverAFile()
{
    QFETCH(QString, path);
    QFETCH(QString, error);

    const QByteArray before = fileBytes(path);
    const QStringList around = entries(QFileInfo(path).path());
    const DatabaseToolRun run = DatabaseToolRun::start({"create", path, "--catalogue", catalogue});
    QCOMPARE(run.exitCode, 3);
    QVERIFY2(QString::fromUtf8(run.standardError).startsWith(error), run.standardError.constData());
    QCOMPARE(run.standardOutput, QByteArray());
    QCOMPARE(fileBytes(path), before);
    QCOMPARE(entries(QFileInfo(path).path()), around);
}

void TestDatabaseTool::checkFaults_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QStringList>("lines"); // standard output, each behind "<path>: "
    QTest::addColumn<QString>("error");     // the first line on standard error, behind "zelmor-db: <path>: "

    const QStringList withCatalogue{"--catalogue", catalogue};
    const QStringList opens{"opens with the key"};
    const QStringList version19 = opens + QStringList{"schema version 19"};
    const QStringList whole = version19 + QStringList{"integrity_check ok"};

    QTest::newRow("as delivered") << delivered() << withCatalogue << 0 << whole + QStringList{"initialize() passes"}
                                  << QString();
    QTest::newRow("a newer version")
        << delivered("UPDATE database_version_info SET version = 20;") << withCatalogue << 0
        << opens + QStringList{"schema version 20", "integrity_check ok", "initialize() passes"} << QString();
    // initialize() would make the table; the file itself stays without it.
    QTest::newRow("a table that initialize makes")
        << delivered("DROP TABLE room_chamber_position; DROP TABLE room;") << withCatalogue << 0
        << whole + QStringList{"initialize() passes (it creates the tables room, room_chamber_position)"} << QString();
    // No store asks for it at initialize(); told all the same.
    QTest::newRow("a table nothing asks for")
        << delivered("DROP TABLE mail_recipient;") << withCatalogue << 0
        << whole + QStringList{"initialize() passes", "tables of the delivered schema that it lacks: mail_recipient"}
        << QString();
    QTest::newRow("another key") << delivered() << withCatalogue + QStringList{"--key", otherKey} << 4 << QStringList{}
                                 << "is not a database, or not one encrypted with this key";
    QTest::newRow("unencrypted") << files.createPlain("plain.sqlite3", "CREATE TABLE t (a);") << withCatalogue << 4
                                 << QStringList{}
                                 << "is an SQLite database without encryption, not an application database";
    QTest::newRow("random bytes") << files.createFile("random.bin", QByteArray(8192, '\x5a')) << withCatalogue << 4
                                  << QStringList{} << "is not a database, or not one encrypted with this key";
    QTest::newRow("empty") << files.createFile("empty.sqlite3", QByteArray()) << withCatalogue << 4 << QStringList{}
                           << "is empty, not a database";
    QTest::newRow("missing") << files.filePath("missing.sqlite3") << withCatalogue << 3 << QStringList{}
                             << "no such file";
    QTest::newRow("a folder") << files.filePath(QString()) << withCatalogue << 3 << QStringList{}
                              << "is a folder, not a file";
    QTest::newRow("no version") << files.createEncrypted("noversion.sqlite3", "CREATE TABLE chamber (id INTEGER);")
                                << withCatalogue << 5 << opens
                                << "has no schema version (no table database_version_info); the monitoring "
                                   "application needs 19 or later";
    QTest::newRow("version 18") << delivered("UPDATE database_version_info SET version = 18;") << withCatalogue << 5
                                << opens << "has schema version 18; the monitoring application needs 19 or later";
    // Cut behind the first page, whose header still tells the whole size.
    const QString truncated = delivered();
    QVERIFY(QFile::resize(truncated, 5 * 4096));
    QTest::newRow("cut short") << truncated << withCatalogue << 7 << QStringList{}
                               << "is damaged or cut short (database disk image is malformed)";
    // An index that no longer fits its table.
    const QString index = files.createEncrypted(
        "index.sqlite3", "CREATE TABLE database_version_info (version INTEGER);"
                         "INSERT INTO database_version_info VALUES (19);"
                         "CREATE TABLE t (a); CREATE INDEX i ON t (a); INSERT INTO t VALUES (1), (2), (3);"
                         "PRAGMA writable_schema = ON;"
                         "UPDATE sqlite_master SET sql = 'CREATE INDEX i ON t (a DESC)' WHERE name = 'i';");
    QTest::newRow("a faulty index") << index << withCatalogue << 7 << version19
                                    << "is damaged: integrity_check finds 2 fault(s): row 1 missing from index i; "
                                       "row 3 missing from index i";
    // A table that none of the facade's creation functions makes.
    QTest::newRow("a store's table missing") << delivered("DROP TABLE camera;") << withCatalogue << 6 << whole
                                             << "initialize() fails; missing tables: camera";
    QTest::newRow("only what initialize makes")
        << files.createEncrypted("core.sqlite3", "CREATE TABLE database_version_info (version INTEGER);"
                                                 "INSERT INTO database_version_info VALUES (19);")
        << withCatalogue << 6 << whole
        << "initialize() fails; missing tables: program, program_section, program_step, program_step_repetition, "
           "program_setpoint, application_alarm, alarm_has_signal, camera, chamber_has_custom_signal_name, "
           "chamber_has_signal_delay, chamber_has_subscribed_signal, mail_recipient, recording_has_signal_column, "
           "user_has_security_question, user_recording_config";
    QTest::newRow("a catalogue that isn't one")
        << delivered() << QStringList{"--catalogue", files.createFile("catalogue.txt", "not a catalogue")} << 8 << whole
        << "";
}

void TestDatabaseTool::checkFaults()
{
    QFETCH(QString, path);
    QFETCH(QStringList, options);
    QFETCH(int, exitCode);
    QFETCH(QStringList, lines);
    QFETCH(QString, error);

    QVERIFY(!path.isEmpty());
    const QByteArray before = fileBytes(path);
    const QStringList around = entries(files.filePath(QString()));
    const DatabaseToolRun run = DatabaseToolRun::start(QStringList{"check", path} + options);
    QVERIFY2(run.finished, run.said().constData());
    QCOMPARE(run.exitCode, exitCode);
    QString output;
    for (const QString& line : lines)
        output += path + ": " + line + "\n";
    QCOMPARE(QString::fromUtf8(run.standardOutput), output);
    const QString firstError = QString::fromUtf8(run.standardError).section('\n', 0, 0);
    if (exitCode == 0)
        QCOMPARE(run.standardError, QByteArray());
    else if (exitCode == 8)
        QCOMPARE(firstError,
                 "zelmor-db: " + options.last() + ": is not a database, or not one encrypted with this key");
    else
        QCOMPARE(firstError, "zelmor-db: " + path + ": " + error);
    // Not a byte written, and nothing left beside it.
    QCOMPARE(fileBytes(path), before);
    QCOMPARE(entries(files.filePath(QString())), around);
}

void TestDatabaseTool::checkFindsTheCatalogueAsTheSimulator_data()
{
    QTest::addColumn<QString>("catalogueAt"); // relative to the working folder; empty: none
    // ../ZELMOR4.ini; empty: none. Qt keeps "[General]" for keys without a
    // group, so the simulator's "General/ConfigDatabasePath" stands under "[%General]".
    QTest::addColumn<QByteArray>("ini");
    QTest::addColumn<int>("exitCode");

    QTest::newRow("in database/") << "database/configuration.sqlite3" << QByteArray() << 0;
    QTest::newRow("three folders up") << "../../../database/configuration.sqlite3" << QByteArray() << 0;
    QTest::newRow("named in the ini file")
        << "elsewhere/catalogue.sqlite3" << QByteArray("[%General]\nConfigDatabasePath=elsewhere/catalogue.sqlite3\n")
        << 0;
    // As the simulator: a path in the ini file is the only one tried.
    QTest::newRow("the ini file names a missing one")
        << "database/configuration.sqlite3" << QByteArray("[%General]\nConfigDatabasePath=missing.sqlite3\n") << 8;
    QTest::newRow("none") << "" << QByteArray() << 8;
}

void TestDatabaseTool::checkFindsTheCatalogueAsTheSimulator()
{
    QFETCH(QString, catalogueAt);
    QFETCH(QByteArray, ini);
    QFETCH(int, exitCode);

    QTemporaryDir top;
    const QString work = top.filePath("a/b/c/work");
    QVERIFY(QDir().mkpath(work));
    if (!catalogueAt.isEmpty()) {
        QVERIFY(QDir().mkpath(QFileInfo(work + "/" + catalogueAt).path()));
        QVERIFY(QFile::copy(catalogue, work + "/" + catalogueAt));
    }
    if (!ini.isEmpty())
        QVERIFY(writeFile(top.filePath("a/b/c/ZELMOR4.ini"), ini));
    const QString path = delivered();
    const DatabaseToolRun run = DatabaseToolRun::start({"check", path}, work);
    QCOMPARE(run.exitCode, exitCode);
    if (exitCode == 8 && ini.isEmpty())
        QCOMPARE(QString::fromUtf8(run.standardError),
                 "zelmor-db: no chamber type catalogue found (looked for database/configuration.sqlite3 and "
                 "../../../database/configuration.sqlite3 in "
                     + QFileInfo(work).canonicalFilePath() + "); name one with --catalogue\n");
    if (exitCode == 8 && !ini.isEmpty())
        QCOMPARE(QString::fromUtf8(run.standardError),
                 "zelmor-db: no chamber type catalogue found (looked for missing.sqlite3 in "
                     + QFileInfo(work).canonicalFilePath() + "); name one with --catalogue\n");
}

void TestDatabaseTool::addChambersOfAFleet()
{
    QTemporaryDir work;
    const QString extract = work.filePath("sqlextract.sql");
    QVERIFY(writeFile(extract, fleetExtract.toUtf8()));
    const QString path = work.filePath("app.sqlite3");
    QCOMPARE(DatabaseToolRun::start({"create", path}).exitCode, 0);

    DatabaseToolRun run = DatabaseToolRun::start({"add-chambers", path, extract});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(QString::fromUtf8(run.standardOutput), path + ": 5 chamber(s) added, 0 already there (" + extract + ")\n");
    QCOMPARE(run.standardError, QByteArray());
    QCOMPARE(shell(path, chamberColumns), fleetRows.join('\n'));
    QCOMPARE(shell(path, "PRAGMA integrity_check;"), QString("ok"));
    QCOMPARE(entries(work.path()), QStringList({"app.sqlite3", "sqlextract.sql"}));

    // What the chamber store gives back, for a script.
    run = DatabaseToolRun::start({"chambers", path, "--json"});
    QCOMPARE(run.exitCode, 0);
    const QString tail = QStringLiteral(
        "\"isActive\": null, \"isSubscribed\": true, \"isArchived\": false, \"comPort\": null, \"baudRate\": null, "
        "\"dataBits\": null, \"stopBits\": null, \"parity\": null}");
    QCOMPARE(QString::fromUtf8(run.standardOutput),
             "[\n"
             "  {\"id\": 1, \"name\": \"KBF 240 E6 at 10.9.0.1\", \"typeId\": 9, \"additionalInfoId\": 9, "
             "\"serialNumber\": \"666-100000\", \"ipAddress\": \"10.9.0.1\", \"macAddress\": \"02:00:0a:09:00:01\", "
             "\"modbusAddress\": 0, \"protocol\": 4, \"converter\": -1, "
                 + tail
                 + ",\n"
                   "  {\"id\": 2, \"name\": \"KBF 240 E6 at 10.9.0.2\", \"typeId\": 9, \"additionalInfoId\": 9, "
                   "\"serialNumber\": \"666-100001\", \"ipAddress\": \"10.9.0.2\", \"macAddress\": "
                   "\"02:00:0a:09:00:01\", \"modbusAddress\": 0, \"protocol\": 4, \"converter\": -1, "
                 + tail
                 + ",\n"
                   "  {\"id\": 3, \"name\": \"VC 7034 Z2\", \"typeId\": 247, \"additionalInfoId\": 247, "
                   "\"serialNumber\": \"666-100000\", \"ipAddress\": \"10.9.0.3\", \"macAddress\": "
                   "\"02:00:0a:09:00:01\", \"modbusAddress\": 0, \"protocol\": 3, \"converter\": -1, "
                 + tail
                 + ",\n"
                   "  {\"id\": 4, \"name\": \"VT 4021 Z3 at 10.8.0.1\", \"typeId\": 60, \"additionalInfoId\": 60, "
                   "\"serialNumber\": \"666-100000\", \"ipAddress\": \"10.8.0.1\", \"macAddress\": "
                   "\"02:00:0a:08:00:01\", \"modbusAddress\": 1, \"protocol\": 1, \"converter\": 0, "
                 + tail
                 + ",\n"
                   "  {\"id\": 5, \"name\": \"VT 4021 Z3 at 10.8.0.2\", \"typeId\": 60, \"additionalInfoId\": 60, "
                   "\"serialNumber\": \"666-100001\", \"ipAddress\": \"10.8.0.1\", \"macAddress\": "
                   "\"02:00:0a:08:00:01\", \"modbusAddress\": 2, \"protocol\": 1, \"converter\": 0, "
                 + tail + "\n]\n");

    // For a person.
    run = DatabaseToolRun::start({"chambers", path});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(QString::fromUtf8(run.standardOutput),
             "ID  NAME                    TYPE  VARIANT  SERIAL      ADDRESS   MAC                MODBUS  "
             "PROTOCOL    CONVERTER  ACTIVE  SUBSCRIBED  ARCHIVED\n"
             " 1  KBF 240 E6 at 10.9.0.1     9        9  666-100000  10.9.0.1  02:00:0a:09:00:01       0  "
             "TLX                            yes         no\n"
             " 2  KBF 240 E6 at 10.9.0.2     9        9  666-100001  10.9.0.2  02:00:0a:09:00:01       0  "
             "TLX                            yes         no\n"
             " 3  VC 7034 Z2               247      247  666-100000  10.9.0.3  02:00:0a:09:00:01       0  "
             "Modbus TCP                     yes         no\n"
             " 4  VT 4021 Z3 at 10.8.0.1    60       60  666-100000  10.8.0.1  02:00:0a:08:00:01       1  "
             "Modbus RTU  XPort              yes         no\n"
             " 5  VT 4021 Z3 at 10.8.0.2    60       60  666-100001  10.8.0.1  02:00:0a:08:00:01       2  "
             "Modbus RTU  XPort              yes         no\n");

    // Again: everything is there, and the file isn't touched.
    const QByteArray before = fileBytes(path);
    run = DatabaseToolRun::start({"add-chambers", path, extract});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(QString::fromUtf8(run.standardOutput), path + ": 0 chamber(s) added, 5 already there (" + extract + ")\n");
    QCOMPARE(fileBytes(path), before);

    // A fleet that grew by a third slave on the converter and a chamber on a new address.
    QVERIFY(writeFile(extract, (fleetExtract
                                + "INSERT INTO \"chamber\" VALUES(1002,60,60,'666-100002',0,1,'VT 4021 Z3 at 10.8.0.3',"
                                  "'10.8.0.1',NULL,'02:00:0A:08:00:01',3,NULL,NULL,NULL,NULL,NULL,1,0);\n"
                                  "INSERT INTO \"chamber\" VALUES(1002,9,9,'666-100002',0,1,'KBF 240 E6 at 10.9.0.4',"
                                  "'10.9.0.4',NULL,'02:00:0A:09:00:01',0,NULL,NULL,NULL,NULL,NULL,4,-1);\n")
                                   .toUtf8()));
    run = DatabaseToolRun::start({"add-chambers", path, extract});
    QCOMPARE(QString::fromUtf8(run.standardOutput), path + ": 2 chamber(s) added, 5 already there (" + extract + ")\n");
    QCOMPARE(shell(path, "SELECT id, chamber_name, ip_v4_address, modbus_address FROM chamber WHERE id > 5;"),
             QString("6|VT 4021 Z3 at 10.8.0.3|10.8.0.1|3\n7|KBF 240 E6 at 10.9.0.4|10.9.0.4|0"));
}

// Where the simulator writes it: sqlextract.sql in the documents folder.
void TestDatabaseTool::addChambersFromTheDocumentsFolder()
{
    QTemporaryDir home;
    QVERIFY(QDir().mkpath(home.filePath("Documents")));
    QVERIFY(writeFile(home.filePath("Documents/sqlextract.sql"), fleetExtract.toUtf8()));
    const QString path = delivered();
    const DatabaseToolRun run = DatabaseToolRun::start({"add-chambers", path}, QString(), home.path());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(QString::fromUtf8(run.standardOutput),
             path + ": 5 chamber(s) added, 0 already there (" + home.filePath("Documents/sqlextract.sql") + ")\n");
    QCOMPARE(shell(path, chamberColumns), fleetRows.join('\n'));
}

void TestDatabaseTool::addChambersBadInput_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("extract"); // its content; a null text: no file
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("error"); // the first line on standard error; %1 the file, %2 the extract

    const QString brokenSecondLine =
        fleetExtract.section('\n', 0, 0) + "\n" + fleetExtract.section('\n', 1, 1).replace(",4,-1);", ",4);") + "\n";
    QTest::newRow("a broken line")
        << delivered() << brokenSecondLine << QStringList{} << 9
        << "zelmor-db: %2: line 2: 17 values; a row of the extract has 18 (19 as dumped from the table); nothing is "
           "written to %1";
    QTest::newRow("no extract") << delivered() << QString() << QStringList{} << 3
                                << "zelmor-db: %2: no such file (chamber-simulator writes it for a fleet built with -n "
                                   "or -a)";
    QTest::newRow("no documents folder")
        << delivered() << QString() << QStringList{} << 3
        << "zelmor-db: %2: no such file, nor its folder; chamber-simulator writes it only into a folder that is there";
    QTest::newRow("another key") << delivered() << fleetExtract << QStringList{"--key", otherKey} << 4
                                 << "zelmor-db: %1: is not a database, or not one encrypted with this key";
    QTest::newRow("not a database") << files.createFile("text.sqlite3", "INSERT INTO chamber VALUES (1);")
                                    << fleetExtract << QStringList{} << 4
                                    << "zelmor-db: %1: is not a database, or not one encrypted with this key";
    QTest::newRow("version 18") << delivered("UPDATE database_version_info SET version = 18;") << fleetExtract
                                << QStringList{} << 5
                                << "zelmor-db: %1: has schema version 18; the monitoring application needs 19 or later";
    const QString truncated = delivered();
    QVERIFY(QFile::resize(truncated, 3 * 4096));
    QTest::newRow("cut short") << truncated << fleetExtract << QStringList{} << 7
                               << "zelmor-db: %1: is damaged or cut short (database disk image is malformed)";
}

void TestDatabaseTool::addChambersBadInput()
{
    QFETCH(QString, path);
    QFETCH(QString, extract);
    QFETCH(QStringList, options);
    QFETCH(int, exitCode);
    QFETCH(QString, error);

    QTemporaryDir work;
    const QString extractPath = work.filePath(
        QString(QTest::currentDataTag()) == "no documents folder" ? "Documents/sqlextract.sql" : "fleet.sql");
    if (!extract.isNull())
        QVERIFY(writeFile(extractPath, extract.toUtf8()));
    const QByteArray before = fileBytes(path);
    const QStringList around = entries(files.filePath(QString()));
    const DatabaseToolRun run = DatabaseToolRun::start(QStringList{"add-chambers", path, extractPath} + options);
    QCOMPARE(run.exitCode, exitCode);
    QCOMPARE(QString::fromUtf8(run.standardError).section('\n', 0, 0),
             QString(error).replace("%1", path).replace("%2", extractPath));
    QCOMPARE(run.standardOutput, QByteArray());
    QCOMPARE(fileBytes(path), before);
    QCOMPARE(entries(files.filePath(QString())), around);
}

// The store refuses the fourth chamber (a trigger stands in for any reason):
// the three before it are in the working copy only, which goes.
void TestDatabaseTool::addChambersAllOrNothing()
{
    const QString path = delivered("CREATE TRIGGER refuse BEFORE INSERT ON chamber WHEN NEW.modbus_address = 1 "
                                   "BEGIN SELECT RAISE(ABORT, 'refused'); END;");
    QTemporaryDir work;
    const QString extract = work.filePath("fleet.sql");
    QVERIFY(writeFile(extract, fleetExtract.toUtf8()));
    const QByteArray before = fileBytes(path);
    const QStringList around = entries(files.filePath(QString()));

    const DatabaseToolRun run = DatabaseToolRun::start({"add-chambers", path, extract});
    QCOMPARE(run.exitCode, 1);
    const QStringList error = QString::fromUtf8(run.standardError).split('\n');
    QCOMPARE(error.first(),
             "zelmor-db: " + path
                 + ": the chamber of line 4 (\"VT 4021 Z3 at 10.8.0.1\") can't be added; nothing of this "
                   "run is written");
    // Below it, what the store and the connection said.
    QVERIFY2(error.contains("  zelmor.SqlChamberDatabaseConnection: Failed to add chamber"), run.said().constData());
    QCOMPARE(fileBytes(path), before);
    QCOMPARE(shell(path, "SELECT count(*) FROM chamber;"), QString("0"));
    QCOMPARE(entries(files.filePath(QString())), around);
}

// Not a byte, not a journal, not the time of the last change: the commands
// that read open the file so that the engine refuses to write.
void TestDatabaseTool::readingWritesNothing()
{
    QTemporaryDir work;
    const QString path = work.filePath("app.sqlite3");
    QVERIFY(QFile::copy(delivered(), path));
    const QString extract = work.filePath("fleet.sql");
    QVERIFY(writeFile(extract, fleetExtract.toUtf8()));
    QCOMPARE(DatabaseToolRun::start({"add-chambers", path, extract}).exitCode, 0);
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(
            file.setFileTime(QDateTime(QDate(2020, 1, 1), QTime(12, 0), Qt::UTC), QFileDevice::FileModificationTime));
    }
    const QByteArray before = fileBytes(path);
    const QStringList commands[] = {
        {"chambers", path}, {"chambers", path, "--json"}, {"check", path, "--catalogue", catalogue}};
    for (const QStringList& command : commands) {
        const DatabaseToolRun run = DatabaseToolRun::start(command);
        QVERIFY2(run.exitCode == 0, run.said().constData());
        QCOMPARE(fileBytes(path), before);
        QCOMPARE(QFileInfo(path).lastModified(), QDateTime(QDate(2020, 1, 1), QTime(12, 0), Qt::UTC));
        QCOMPARE(entries(work.path()), QStringList({"app.sqlite3", "fleet.sql"}));
    }
}

void TestDatabaseTool::usage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<QByteArray>("error");

    QTest::newRow("an unknown command") << QStringList{"frobnicate", "%1"} << 2 << QByteArray()
                                        << QByteArray("zelmor-db: unknown command 'frobnicate'\n"
                                                      "Try 'zelmor-db --help'.\n");
    QTest::newRow("an unknown option") << QStringList{"chambers", "%1", "--jsn"} << 2 << QByteArray()
                                       << QByteArray("zelmor-db: unknown option '--jsn'\n"
                                                     "Try 'zelmor-db chambers --help'.\n");
    QTest::newRow("no command") << QStringList{} << 2 << QByteArray()
                                << QByteArray("zelmor-db: no command given\nTry 'zelmor-db --help'.\n");
    QTest::newRow("help") << QStringList{"--help"} << 0
                          << zelmor::tools::databasetool::CommandLine::generalHelp().toUtf8() << QByteArray();
    QTest::newRow("a command's help") << QStringList{"add-chambers", "%1", "-h"} << 0
                                      << zelmor::tools::databasetool::CommandLine::commandHelp("add-chambers").toUtf8()
                                      << QByteArray();
}

void TestDatabaseTool::usage()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QByteArray, output);
    QFETCH(QByteArray, error);

    const QString path = delivered();
    const QByteArray before = fileBytes(path);
    arguments.replaceInStrings("%1", path);
    const DatabaseToolRun run = DatabaseToolRun::start(arguments);
    QCOMPARE(run.exitCode, exitCode);
    QCOMPARE(run.standardOutput, output);
    QCOMPARE(run.standardError, error);
    QCOMPARE(fileBytes(path), before);
}

QTEST_GUILESS_MAIN(TestDatabaseTool)
#include "tst_databasetool.moc"
