#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Domain/Api/ISqlQuery.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ChamberTypeData.h"
#include "Domain/Types/ChamberTypeId.h"
#include "support/LogCapture.h"
#include "support/SampleCatalogue.h"
#include "support/TestDatabase.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTextStream>
#include <QtTest>

#include <sys/resource.h>

#include <functional>

using zelmor::base::connection::databaseconnection::DatabaseConnection;
using zelmor::base::connection::databaseconnection::SqliteConnection;
using zelmor::domain::api::ISqlQuery;
using zelmor::domain::types::ChamberTypeData;
using zelmor::domain::types::ChamberTypeId;
using zelmor::domain::types::DatabaseConnectionError;
using zelmor::domain::types::Unit;
using zelmor::testsupport::LogCapture;
using zelmor::testsupport::TestDatabase;

using namespace zelmor::domain::api;

using CreateFunction = bool (DatabaseConnection::*)();

Q_DECLARE_METATYPE(CreateFunction)

namespace {

const char* const childSwitch = "--lookup-in-child";
const QString projectKey = QLatin1String(TestDatabase::projectKey_);

struct Lookup
{
    std::function<QString()> table;
    std::function<QString(int)> column;
};

#define LOOKUP(Table)                                                                                   \
    { QStringLiteral(#Table), Lookup{[] { return DatabaseConnection::lookup##Table##TableName(); },           \
                                     [](int value) { return DatabaseConnection::lookup##Table##ColumnName(Table##Property(value)); }} }

// Every table's pair of lookups, of both databases: the list doesn't compile
// when one is missing.
const QMap<QString, Lookup>& lookups()
{
    static const QMap<QString, Lookup> all = {
        LOOKUP(Chamber), LOOKUP(ChamberHasCustomSignalName), LOOKUP(ChamberHasSignalDelay),
        LOOKUP(ChamberHasSubscribedSignal), LOOKUP(ToleranceRange), LOOKUP(Program), LOOKUP(ProgramStep),
        LOOKUP(ProgramSection), LOOKUP(ProgramSetpoint), LOOKUP(ProgramStepRepetition), LOOKUP(Recording),
        LOOKUP(MetaRecordingHasRecording), LOOKUP(Recordset), LOOKUP(RecordsetComment),
        LOOKUP(RecordingHasSignalColumn), LOOKUP(User), LOOKUP(UserHasSecurityQuestion), LOOKUP(UserPreferences),
        LOOKUP(UserHasChamberSignalVisibilityPreference), LOOKUP(UserRecordingConfig), LOOKUP(GlobalSettings),
        LOOKUP(MailRecipient), LOOKUP(ProtocolEntry), LOOKUP(Room), LOOKUP(RoomChamberPosition), LOOKUP(Camera),
        LOOKUP(Alarm), LOOKUP(AlarmHasSignal), LOOKUP(AdditionalInfo), LOOKUP(ChamberTypeHasAdditionalInfo),
        LOOKUP(ChamberTypeHasProtocol), LOOKUP(ChamberTypeHasSignal), LOOKUP(ChamberType), LOOKUP(Controller),
        LOOKUP(ControllerData), LOOKUP(Protocol), LOOKUP(Signal), LOOKUP(ValueType),
        LOOKUP(ChamberTypeHasControlSignals), LOOKUP(ControlSignals), LOOKUP(ChamberTypeHasDataloggerSignal),
        LOOKUP(ChamberTypeHasOptions), LOOKUP(Options), LOOKUP(ChamberTypeHasTestSignal),
        LOOKUP(ChamberTypeHasToleranceRange), LOOKUP(DefaultToleranceRange), LOOKUP(ActivityAccess),
    };
    return all;
}

// ---------------------------------------------------------------------------
// The statements of the application tables, written out by hand.

const QString chamberStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS chamber (id INTEGER PRIMARY KEY NOT NULL , chamber_type_id INTEGER, "
    "chamber_type_additional_info_id INTEGER, serial_no INTEGER, is_archived BOOLEAN, is_subscribed BOOLEAN, "
    "is_active BOOLEAN, chamber_name TEXT, ip_v4_address TEXT UNIQUE, ip_v6_address TEXT UNIQUE, "
    "mac_address TEXT UNIQUE, modbus_address INTEGER, com_port INTEGER, parity INTEGER, baud_rate INTEGER, "
    "data_bits INTEGER, stop_bits INTEGER)");

const QString globalSettingsStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS global_settings (id INTEGER PRIMARY KEY NOT NULL, event_do_repeat INTEGER, "
    "event_repetition_interval INTEGER, report_creation_interval INTEGER, base_password TEXT, "
    "quick_recording_name_template TEXT, quick_recording_seconds_interval INTEGER, "
    "resume_recordings_on_startup INTEGER)");

const QString metaRecordingStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS meta_recording_has_recording (meta_recording_id INTEGER NOT NULL, "
    "recording_id INTEGER NOT NULL, FOREIGN KEY (meta_recording_id) REFERENCES recording (id), "
    "FOREIGN KEY (recording_id) REFERENCES recording (id))");

const QString logEntryStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS log_entry (id INTEGER PRIMARY KEY NOT NULL, creation_time DATETIME, "
    "event_description TEXT, user_id INTEGER, FOREIGN KEY (user_id) REFERENCES application_user (id))");

const QString recordingStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS recording (id INTEGER PRIMARY KEY NOT NULL , recording_name TEXT, "
    "user_id INTEGER, free_text TEXT, chamber_id INTEGER, start_time DATETIME, end_time DATETIME, "
    "seconds_interval INTEGER, is_archived BOOLEAN, additional_info TEXT, automatically_create_report BOOLEAN, "
    "is_active BOOLEAN, number_of_recordsets INTEGER, FOREIGN KEY (user_id) REFERENCES application_user (id), "
    "FOREIGN KEY (chamber_id) REFERENCES chamber (id))");

QString recordsetStatement()
{
    QString signalColumns;
    for (int number = 1; number <= 48; ++number)
        signalColumns += QStringLiteral("signal_%1 REAL, ").arg(number);
    return QStringLiteral(" CREATE TABLE IF NOT EXISTS record_set (id INTEGER PRIMARY KEY NOT NULL, "
                          "record_time DATETIME, is_retrieved_from_chamber BOOLEAN, recording_id INTEGER NOT NULL, ")
        + signalColumns + QStringLiteral("FOREIGN KEY (recording_id) REFERENCES recording (id))");
}

const QString recordsetCommentStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS record_set_comment (recordset_id INTEGER PRIMARY KEY NOT NULL UNIQUE, "
    "user_id INTEGER, creation_time DATETIME, comment_text TEXT, "
    "FOREIGN KEY (recordset_id) REFERENCES record_set (id))");

// The composite key stands directly behind the foreign key's bracket.
const QString toleranceRangeStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS tolerance_range (effective_from DATETIME NOT NULL, chamber_id INTEGER NOT NULL, "
    "signal_id INTEGER NOT NULL, range_type INTEGER, range_min REAL, range_max REAL, "
    "FOREIGN KEY (chamber_id) REFERENCES chamber (id)PRIMARY KEY (effective_from, chamber_id, signal_id))");

const QString roomStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS room (id INTEGER PRIMARY KEY NOT NULL , room_name TEXT, image_path TEXT, "
    "image_scale REAL)");

const QString roomChamberPositionStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS room_chamber_position (chamber_id INTEGER PRIMARY KEY NOT NULL, room_id INTEGER, "
    "chamber_pos_x REAL, chamber_pos_y REAL, FOREIGN KEY (chamber_id) REFERENCES chamber (id), "
    "FOREIGN KEY (room_id) REFERENCES room (id))");

const QString userStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS application_user (id INTEGER PRIMARY KEY NOT NULL , login_name TEXT, "
    "mail_address TEXT, password_hash BLOB, password_salt BLOB, password_creation_time DATETIME, "
    "password_is_temporary BOOLEAN, user_level INTEGER, number_failed_login_attempts INTEGER, "
    "number_failed_security_question_attempts INTEGER, is_banned BOOLEAN, password_expiration_time DATETIME, "
    "first_name TEXT, last_name TEXT)");

const QString visibilityStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS user_has_chamber_signal_visibility_preference (user_id INTEGER NOT NULL, "
    "chamber_id INTEGER NOT NULL, signal_id INTEGER NOT NULL, "
    "FOREIGN KEY (user_id) REFERENCES application_user (id), FOREIGN KEY (chamber_id) REFERENCES chamber (id))");

const QString userPreferencesStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS user_preferences (user_id INTEGER PRIMARY KEY NOT NULL, "
    "default_file_format INTEGER, localization INTEGER, time_format INTEGER, date_format INTEGER, "
    "decimal_format INTEGER, temperature_unit INTEGER, humidity_unit INTEGER, "
    "FOREIGN KEY (user_id) REFERENCES application_user (id))");

// What the engine keeps in sqlite_master of a statement: "CREATE TABLE" and the
// text from the table's name on.
QString storedText(const QString& statement)
{
    const QString head = QStringLiteral(" CREATE TABLE IF NOT EXISTS ");
    Q_ASSERT(statement.startsWith(head));
    return QStringLiteral("CREATE TABLE ") + statement.mid(head.size());
}

QStringList storedTables(const QStringList& statements)
{
    QStringList tables;
    for (const QString& statement : statements) {
        const QString text = storedText(statement);
        tables.append(text.section(QLatin1Char(' '), 2, 2) + QStringLiteral(": ") + text);
    }
    return tables;
}

// "name: sql" of each table in the order of creation.
QStringList tablesOf(const QString& path)
{
    const TestDatabase::ShellResult result = TestDatabase::runSqlcipher(
        path, projectKey, QStringLiteral("SELECT name || ': ' || sql FROM sqlite_master WHERE type = 'table' ORDER BY rowid;"));
    if (!result.ok)
        return {QStringLiteral("<failed: %1>").arg(result.errorOutput)};
    return result.output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QString versionTable(int version)
{
    return QStringLiteral("CREATE TABLE database_version_info(version INTEGER); "
                          "INSERT INTO database_version_info VALUES (%1);")
        .arg(version);
}

// One chamber type of one signal.
const QString smallCatalogue = QStringLiteral(
    "INSERT INTO controller (id, type) VALUES (1, 'TLX');"
    "INSERT INTO chamber_type (id, type, developement_state, size, controller_id) VALUES (5, 'HX', 'Z6', 60, 1);"
    "INSERT INTO signal (id, name, unit) VALUES (7, 'Temperature', '% r.F.');"
    "INSERT INTO chamber_type_has_signal (chamber_type_id, signal_id) VALUES (5, 7);");

QList<int> codesOf(const QSignalSpy& spy)
{
    QList<int> codes;
    for (const QList<QVariant>& arguments : spy)
        codes.append(int(arguments.at(0).value<DatabaseConnectionError>()));
    return codes;
}

QString uniqueConnectionName()
{
    static int count = 0;
    return QStringLiteral("tst_databaseconnection_%1").arg(++count);
}

// A real connection that notes the statements it runs.
class RecordingConnection : public SqliteConnection
{
public:
    using SqliteConnection::SqliteConnection;

    ExecuteResult execute(const ISqlQuery& query) override
    {
        executed.append(query.getPreparedQueryString());
        return SqliteConnection::execute(query);
    }

    QStringList executed;
};

// Two encrypted files made by the sqlcipher shell, the catalogue on the
// delivered schema, both opened through SqliteConnection, and the facade.
struct Setup
{
    Setup(TestDatabase& files, const QString& applicationSql, const QString& catalogueRows = QString(),
          bool wire = true)
        : application(uniqueConnectionName())
        , configuration(uniqueConnectionName())
        , facade(false)
    {
        static int count = 0;
        ++count;
        applicationPath = files.createEncrypted(QStringLiteral("application%1.db").arg(count), applicationSql);
        const QString catalogue = zelmor::testsupport::createCatalogue(
            files, QStringLiteral("configuration%1.db").arg(count), catalogueRows);
        ok = !applicationPath.isEmpty() && !catalogue.isEmpty()
             && application.openDatabase(applicationPath, QString(), QString(), projectKey)
             && configuration.openDatabase(catalogue, QString(), QString(), projectKey)
             && (!wire || facade.setDependencies(&application, &configuration));
        if (!ok)
            qWarning() << files.lastError();
        application.executed.clear();
    }

    QString applicationPath;
    RecordingConnection application;
    SqliteConnection configuration;
    DatabaseConnection facade;
    bool ok = false;
};

} // namespace

// ---------------------------------------------------------------------------

class TestDatabaseConnection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void names_data();
    void names();
    void unknownEnumeratorStopsTheProgram_data();
    void unknownEnumeratorStopsTheProgram();
    void textMaps_data();
    void textMaps();

    void createTable_data();
    void createTable();
    void existingTablesRunNoStatement();

    void initialize_data();
    void initialize();
    void secondInitializeChangesNothing();
    void initializeStopsAtFailedTable();

    void setDependencies_data();
    void setDependencies();
    void catalogueThroughTheFacade();

private:
    TestDatabase files;
};

void TestDatabaseConnection::initTestCase()
{
    qRegisterMetaType<DatabaseConnectionError>();
    QVERIFY(files.isValid());
}

// ---------------------------------------------------------------------------
// The rest of the names is read back through the creation statements below and
// the catalogue reads on real files.

void TestDatabaseConnection::names_data()
{
    QTest::addColumn<QString>("lookup");
    QTest::addColumn<int>("value"); // -1: the table's name
    QTest::addColumn<QString>("name");

    QTest::newRow("Recording 64") << "Recording" << 64 << "end_time";
    QTest::newRow("Recording 16384, spelled so") << "Recording" << 16384 << "is_start_reconding_allowed";
    QTest::newRow("template column") << "Recordset" << 3 << "signal_%1";
    QTest::newRow("application tolerance ranges") << "ToleranceRange" << -1 << "tolerance_range";
    QTest::newRow("catalogue tolerance ranges") << "DefaultToleranceRange" << -1 << "tolerance_range";
    QTest::newRow("users") << "User" << -1 << "application_user";
    QTest::newRow("protocol entries") << "ProtocolEntry" << -1 << "log_entry";
    QTest::newRow("Chamber 18, not created") << "Chamber" << 18 << "converter_id";
    QTest::newRow("GlobalSettings 44, the last") << "GlobalSettings" << 44 << "sirenbox_is_active";
    QTest::newRow("ChamberType 2, spelled so") << "ChamberType" << 2 << "developement_state";
}

void TestDatabaseConnection::names()
{
    QFETCH(QString, lookup);
    QFETCH(int, value);
    QFETCH(QString, name);
    QVERIFY(lookups().contains(lookup));
    const Lookup functions = lookups().value(lookup);
    QCOMPARE(value < 0 ? functions.table() : functions.column(value), name);
}

void TestDatabaseConnection::unknownEnumeratorStopsTheProgram_data()
{
    QTest::addColumn<QString>("lookup");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("output"); // empty: the assertion stops the child

    // Shows that the child answers when nothing is wrong.
    QTest::newRow("Recording 64") << "Recording" << 64 << "end_time";
    for (const QString& lookup : lookups().keys())
        QTest::addRow("%s -1", qPrintable(lookup)) << lookup << -1 << "";
    QTest::newRow("Chamber 19, past the last") << "Chamber" << 19 << "";
    QTest::newRow("Recording 4096, a gap in the bits") << "Recording" << 4096 << "";
}

void TestDatabaseConnection::unknownEnumeratorStopsTheProgram()
{
    QFETCH(QString, lookup);
    QFETCH(int, value);
    QFETCH(QString, output);

    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(childSwitch), lookup, QString::number(value)});
    QVERIFY2(child.waitForFinished(30000), qPrintable(child.errorString()));
    const QString standardError = QString::fromUtf8(child.readAllStandardError());
    QCOMPARE(QString::fromUtf8(child.readAllStandardOutput()), output);
    if (output.isEmpty()) {
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        QVERIFY2(standardError.contains(QLatin1String("ASSERT: \"false\" in file")), qPrintable(standardError));
    } else {
        QCOMPARE(child.exitStatus(), QProcess::NormalExit);
        QCOMPARE(child.exitCode(), 0);
    }
}

void TestDatabaseConnection::textMaps_data()
{
    QTest::addColumn<QString>("map");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("number");

    QTest::newRow("signal type set_point") << "signalType" << "set_point" << 1;
    QTest::newRow("signal type empty") << "signalType" << "" << 3;
    QTest::newRow("signal type unknown") << "signalType" << "SET_POINT" << 0;
    QTest::newRow("access WO") << "access" << "WO" << 1;
    QTest::newRow("access empty") << "access" << "" << 3;
    QTest::newRow("access unknown") << "access" << "rw" << 0;
    QTest::newRow("variable CHAR") << "variableType" << "CHAR" << 34;
    QTest::newRow("variable INT8 is a plain int") << "variableType" << "INT8" << 2;
    QTest::newRow("variable INT16") << "variableType" << "INT16" << 33;
    QTest::newRow("variable TIME") << "variableType" << "TIME" << 15;
    QTest::newRow("variable unknown") << "variableType" << "DOUBLE" << 0;
    QTest::newRow("variable with array size") << "variableType" << "UINT16[4]" << 0;
    // Nothing in this program registers the type but the map's filling.
    const int int10 = QMetaType::type("zelmor::domain::types::Int10");
    QVERIFY(int10 >= QMetaType::User);
    QTest::newRow("variable INT10") << "variableType" << "INT10" << int10;
}

void TestDatabaseConnection::textMaps()
{
    QFETCH(QString, map);
    QFETCH(QString, text);
    QFETCH(int, number);
    if (map == QLatin1String("signalType"))
        QCOMPARE(int(DatabaseConnection::signalTypeMap.value(text)), number);
    else if (map == QLatin1String("access"))
        QCOMPARE(int(DatabaseConnection::accessMap.value(text)), number);
    else
        QCOMPARE(int(DatabaseConnection::variableTypeMap.value(text)), number);
}

// ---------------------------------------------------------------------------

void TestDatabaseConnection::createTable_data()
{
    QTest::addColumn<CreateFunction>("create");
    QTest::addColumn<QStringList>("statements");

    // Reference tables first, in the order of the foreign keys, each once.
    QTest::newRow("chamber") << &DatabaseConnection::createTableChamber << QStringList{chamberStatement};
    QTest::newRow("global_settings") << &DatabaseConnection::createTableGlobalSettings
                                     << QStringList{globalSettingsStatement};
    QTest::newRow("meta_recording_has_recording")
        << &DatabaseConnection::createTableMetaRecordingHasRecordings
        << QStringList{userStatement, chamberStatement, recordingStatement, metaRecordingStatement};
    QTest::newRow("log_entry") << &DatabaseConnection::createTableProtocolEntry
                               << QStringList{userStatement, logEntryStatement};
    QTest::newRow("recording") << &DatabaseConnection::createTableRecording
                               << QStringList{userStatement, chamberStatement, recordingStatement};
    QTest::newRow("record_set") << &DatabaseConnection::createTableRecordset
                                << QStringList{userStatement, chamberStatement, recordingStatement,
                                               recordsetStatement()};
    QTest::newRow("record_set_comment") << &DatabaseConnection::createTableRecordsetComment
                                        << QStringList{userStatement, chamberStatement, recordingStatement,
                                                       recordsetStatement(), recordsetCommentStatement};
    QTest::newRow("tolerance_range") << &DatabaseConnection::createTableToleranceRange
                                     << QStringList{chamberStatement, toleranceRangeStatement};
    QTest::newRow("room") << &DatabaseConnection::createTableRoom << QStringList{roomStatement};
    QTest::newRow("room_chamber_position") << &DatabaseConnection::createTableRoomChamberPosition
                                           << QStringList{chamberStatement, roomStatement,
                                                          roomChamberPositionStatement};
    QTest::newRow("application_user") << &DatabaseConnection::createTableUser << QStringList{userStatement};
    QTest::newRow("user_has_chamber_signal_visibility_preference")
        << &DatabaseConnection::createTableUserHasChamberSignalVisibilityPreference
        << QStringList{userStatement, chamberStatement, visibilityStatement};
    QTest::newRow("user_preferences") << &DatabaseConnection::createTableUserPreferences
                                      << QStringList{userStatement, userPreferencesStatement};
}

void TestDatabaseConnection::createTable()
{
    QFETCH(CreateFunction, create);
    QFETCH(QStringList, statements);

    Setup setup(files, QString());
    QVERIFY(setup.ok);
    QSignalSpy errors(&setup.facade, &DatabaseConnection::error);

    QVERIFY((setup.facade.*create)());
    QCOMPARE(setup.application.executed, statements);
    QCOMPARE(errors.count(), 0);
    // The engine took each statement as it stands.
    QCOMPARE(tablesOf(setup.applicationPath), storedTables(statements));
}

void TestDatabaseConnection::existingTablesRunNoStatement()
{
    Setup setup(files, QStringLiteral("CREATE TABLE room(x TEXT); INSERT INTO room VALUES ('kept');"));
    QVERIFY(setup.ok);

    QVERIFY(setup.facade.createTableChamber());
    QVERIFY(setup.facade.createTableChamber());
    // An existing table stays as it is, whatever its columns.
    QVERIFY(setup.facade.createTableRoom());
    QVERIFY(setup.facade.createTableRoomChamberPosition());
    QCOMPARE(setup.application.executed, (QStringList{chamberStatement, roomChamberPositionStatement}));
    QCOMPARE(tablesOf(setup.applicationPath).first(), QStringLiteral("room: CREATE TABLE room(x TEXT)"));
    QCOMPARE(TestDatabase::runSqlcipher(setup.applicationPath, projectKey, QStringLiteral("SELECT x FROM room;")).output,
             QStringLiteral("kept\n"));
}

// ---------------------------------------------------------------------------

void TestDatabaseConnection::initialize_data()
{
    QTest::addColumn<QString>("applicationSql");
    QTest::addColumn<QString>("catalogueRows");
    QTest::addColumn<bool>("passes");
    QTest::addColumn<bool>("versionWrong");
    QTest::addColumn<QList<int>>("errors");

    QTest::newRow("no version table") << "CREATE TABLE unrelated(a INTEGER);" << "" << false << true << QList<int>();
    QTest::newRow("18") << versionTable(18) << "" << false << true << QList<int>();
    QTest::newRow("19") << versionTable(19) << "" << true << false << QList<int>();
    QTest::newRow("20") << versionTable(20) << "" << true << false << QList<int>();
    // The application tables are made all the same, then the catalogue store refuses.
    QTest::newRow("catalogue without its signal table")
        << versionTable(19) << "DROP TABLE signal;" << false << false << QList<int>{4};
}

void TestDatabaseConnection::initialize()
{
    QFETCH(QString, applicationSql);
    QFETCH(QString, catalogueRows);
    QFETCH(bool, passes);
    QFETCH(bool, versionWrong);
    QFETCH(QList<int>, errors);

    Setup setup(files, applicationSql, catalogueRows);
    QVERIFY(setup.ok);
    const QStringList before = tablesOf(setup.applicationPath);
    QSignalSpy spy(&setup.facade, &DatabaseConnection::error);

    QCOMPARE(setup.facade.initialize(), passes);
    QCOMPARE(setup.facade.isDatabaseVersionWrong(), versionWrong);
    QCOMPARE(codesOf(spy), errors);
    if (versionWrong) {
        QCOMPARE(setup.application.executed, QStringList());
        QCOMPARE(tablesOf(setup.applicationPath), before);
        return;
    }
    // In the order of initialize, each table after those it references.
    const QStringList statements{chamberStatement,       globalSettingsStatement,   userStatement,
                                 recordingStatement,     metaRecordingStatement,    logEntryStatement,
                                 recordsetStatement(),   recordsetCommentStatement, toleranceRangeStatement,
                                 roomStatement,          roomChamberPositionStatement, visibilityStatement,
                                 userPreferencesStatement};
    QCOMPARE(setup.application.executed, statements);
    QCOMPARE(tablesOf(setup.applicationPath), before + storedTables(statements));
}

void TestDatabaseConnection::secondInitializeChangesNothing()
{
    Setup setup(files, versionTable(19));
    QVERIFY(setup.ok);
    QVERIFY(setup.facade.initialize());
    const TestDatabase::ShellResult filled = TestDatabase::runSqlcipher(
        setup.applicationPath, projectKey,
        QStringLiteral("INSERT INTO chamber (id, chamber_name) VALUES (7, 'C7');"
                       "INSERT INTO room (id, room_name) VALUES (2, 'Lab');"));
    QVERIFY2(filled.ok, qPrintable(filled.errorOutput));
    const QString before = TestDatabase::runSqlcipher(setup.applicationPath, projectKey, QStringLiteral(".dump")).output;
    setup.application.executed.clear();

    QVERIFY(setup.facade.initialize());
    QCOMPARE(setup.application.executed, QStringList());
    QVERIFY(!setup.facade.isDatabaseVersionWrong());
    const QString after = TestDatabase::runSqlcipher(setup.applicationPath, projectKey, QStringLiteral(".dump")).output;
    QCOMPARE(after, before);
    QVERIFY(after.contains(QLatin1String("'C7'")));
}

void TestDatabaseConnection::initializeStopsAtFailedTable()
{
    // An index of the name "application_user": the third table of the list
    // needs it through "recording", and nothing after it is tried.
    Setup setup(files, versionTable(19)
                           + QStringLiteral("CREATE TABLE other(a INTEGER); CREATE INDEX application_user ON other(a);"));
    QVERIFY(setup.ok);
    QSignalSpy errors(&setup.facade, &DatabaseConnection::error);

    LogCapture log(QStringLiteral("zelmor.DatabaseConnection"));
    QVERIFY(!setup.facade.initialize());
    QVERIFY(!setup.facade.isDatabaseVersionWrong());
    QCOMPARE(log.texts(),
             (QStringList{"critical: Could not create table 'application_user'",
                          "critical: Missing reference table. Can't create 'recording'",
                          "critical: Missing reference table. Can't create 'meta_recording_has_recording'"}));
    QCOMPARE(setup.application.executed, (QStringList{chamberStatement, globalSettingsStatement, userStatement}));
    // The facade passes on only the stores' errors.
    QCOMPARE(errors.count(), 0);
}

// ---------------------------------------------------------------------------

void TestDatabaseConnection::setDependencies_data()
{
    QTest::addColumn<bool>("call");
    QTest::addColumn<bool>("withApplication");
    QTest::addColumn<bool>("withConfiguration");

    QTest::newRow("both") << true << true << true;
    QTest::newRow("no configuration database") << true << true << false;
    QTest::newRow("no application database") << true << false << true;
    QTest::newRow("never set") << false << false << false;
}

void TestDatabaseConnection::setDependencies()
{
    QFETCH(bool, call);
    QFETCH(bool, withApplication);
    QFETCH(bool, withConfiguration);

    Setup setup(files, versionTable(19), smallCatalogue, false);
    QVERIFY(setup.ok);
    QSignalSpy errors(&setup.facade, &DatabaseConnection::error);
    const bool both = withApplication && withConfiguration;

    if (call) {
        QCOMPARE(setup.facade.setDependencies(withApplication ? &setup.application : nullptr,
                                              withConfiguration ? &setup.configuration : nullptr),
                 both);
    }
    QCOMPARE(setup.facade.areDependenciesSet(), both);
    // Without both, nothing reaches a database, the catalogue's store included.
    QCOMPARE(setup.facade.createTableRoom(), both);
    QCOMPARE(setup.application.executed, both ? QStringList{roomStatement} : QStringList());
    QCOMPARE(setup.facade.getAllChamberTypeData(false).size(), both ? 1 : 0);
    if (both) {
        QCOMPARE(errors.count(), 0);
        return;
    }
    QVERIFY(!setup.facade.initialize());
    QVERIFY(!setup.facade.isDatabaseVersionWrong());
    QCOMPARE(codesOf(errors), (QList<int>{0, 0, 0}));
}

void TestDatabaseConnection::catalogueThroughTheFacade()
{
    // As the simulator does it: dependencies set, no initialize.
    Setup setup(files, versionTable(19), smallCatalogue);
    QVERIFY(setup.ok);
    QSignalSpy errors(&setup.facade, &DatabaseConnection::error);

    const QList<ChamberTypeData> types = setup.facade.getAllChamberTypeData(false);
    QCOMPARE(types.size(), 1);
    QCOMPARE(types.at(0).chamberTypeId, ChamberTypeId(5, 0));
    QCOMPARE(types.at(0).getQualifiedTypeName(), QStringLiteral("HX 60 Z6"));
    QCOMPARE(types.at(0).controller, QStringLiteral("TLX"));
    QVERIFY(types.at(0).chamberSignals.isEmpty());
    QCOMPARE(setup.facade.getChamberSignals(ChamberTypeId(5, 0)).value(7).name, QStringLiteral("Temperature"));
    QCOMPARE(setup.facade.getSignalUnitId(7), Unit::RELATIVE_HUMIDITY_RF);
    QCOMPARE(setup.application.executed, QStringList());

    // The store's own report reaches the facade's signal, once after any number of initialize calls.
    QVERIFY(setup.facade.getChamberSignal(999).isNull());
    QCOMPARE(codesOf(errors), QList<int>{8});
    QVERIFY(setup.facade.initialize());
    QVERIFY(setup.facade.initialize());
    QVERIFY(setup.facade.getChamberSignal(999).isNull());
    QCOMPARE(codesOf(errors), (QList<int>{8, 8}));
}

// ---------------------------------------------------------------------------

int main(int argc, char** argv)
{
    // Child mode: run one column lookup and print its text, or stop on the assertion.
    if (argc == 4 && qstrcmp(argv[1], childSwitch) == 0) {
        const rlimit noCoreFile{0, 0};
        setrlimit(RLIMIT_CORE, &noCoreFile);
        const auto lookup = lookups().value(QString::fromLatin1(argv[2])).column;
        if (!lookup)
            return 2;
        QTextStream(stdout) << lookup(QByteArray(argv[3]).toInt());
        return 0;
    }
    QCoreApplication application(argc, argv);
    TestDatabaseConnection test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_databaseconnection.moc"
