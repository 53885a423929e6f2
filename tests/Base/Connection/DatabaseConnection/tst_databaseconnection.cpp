#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Domain/Api/ISqlQuery.h"
#include "Domain/Types/ActivityId.h"
#include "Domain/Types/Alarm.h"
#include "Domain/Types/AlarmId.h"
#include "Domain/Types/BackupCleanupSettings.h"
#include "Domain/Types/BackupScheduleConfiguration.h"
#include "Domain/Types/Camera.h"
#include "Domain/Types/ChamberData.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ChamberTypeData.h"
#include "Domain/Types/ChamberTypeId.h"
#include "Domain/Types/ProgramData.h"
#include "Domain/Types/ProgramSection.h"
#include "Domain/Types/ProgramStepRepetitionId.h"
#include "Domain/Types/ProtocolEntry.h"
#include "Domain/Types/RecordingData.h"
#include "Domain/Types/RecordingId.h"
#include "Domain/Types/Recordset.h"
#include "Domain/Types/RecordsetComment.h"
#include "Domain/Types/RecordsetId.h"
#include "Domain/Types/ReportConfiguration.h"
#include "Domain/Types/Room.h"
#include "Domain/Types/RoomPosition.h"
#include "Domain/Types/SecurityQuestionAnswer.h"
#include "Domain/Types/SignalValuePair.h"
#include "Domain/Types/SirenBoxNetworkConfiguration.h"
#include "Domain/Types/SmtpConfiguration.h"
#include "Domain/Types/TimeSpan.h"
#include "Domain/Types/ToleranceRange.h"
#include "Domain/Types/UserData.h"
#include "Domain/Types/UserId.h"
#include "Domain/Types/UserPreferences.h"
#include "Domain/Types/ZelmorNetworkConfiguration.h"
#include "support/ChildRun.h"
#include "support/LogCapture.h"
#include "support/SampleCatalogue.h"
#include "support/StoreFixture.h"
#include "support/TestDatabase.h"

#include <QCoreApplication>
#include <QTextStream>
#include <QtTest>

#include <functional>

using zelmor::base::connection::databaseconnection::DatabaseConnection;
using zelmor::base::connection::databaseconnection::SqliteConnection;
using zelmor::domain::api::ISqlQuery;
using namespace zelmor::domain::types;
using zelmor::testsupport::errorCodes;
using zelmor::testsupport::LogCapture;
using zelmor::testsupport::TestDatabase;

using namespace zelmor::domain::api;

using CreateFunction = bool (DatabaseConnection::*)();
using Name = std::function<QString()>;

Q_DECLARE_METATYPE(CreateFunction)
Q_DECLARE_METATYPE(Name)

namespace {

const QString projectKey = QLatin1String(TestDatabase::projectKey_);

// ---------------------------------------------------------------------------
// The statements of the application tables, written out by hand.

const QString chamberStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS chamber (id INTEGER PRIMARY KEY NOT NULL , chamber_type_id INTEGER, "
    "chamber_type_additional_info_id INTEGER, serial_no INTEGER, is_archived BOOLEAN, is_subscribed BOOLEAN, "
    "is_active BOOLEAN, chamber_name TEXT, ip_v4_address TEXT UNIQUE, ip_v6_address TEXT UNIQUE, "
    "mac_address TEXT UNIQUE, modbus_address INTEGER, com_port INTEGER, parity INTEGER, baud_rate INTEGER, "
    "data_bits INTEGER, stop_bits INTEGER)");

const QString recordingStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS recording (id INTEGER PRIMARY KEY NOT NULL , recording_name TEXT, "
    "user_id INTEGER, free_text TEXT, chamber_id INTEGER, start_time DATETIME, end_time DATETIME, "
    "seconds_interval INTEGER, is_archived BOOLEAN, additional_info TEXT, automatically_create_report BOOLEAN, "
    "is_active BOOLEAN, number_of_recordsets INTEGER, FOREIGN KEY (user_id) REFERENCES application_user (id), "
    "FOREIGN KEY (chamber_id) REFERENCES chamber (id))");

// The composite key stands directly behind the foreign key's bracket.
const QString toleranceRangeStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS tolerance_range (effective_from DATETIME NOT NULL, chamber_id INTEGER NOT NULL, "
    "signal_id INTEGER NOT NULL, range_type INTEGER, range_min REAL, range_max REAL, "
    "FOREIGN KEY (chamber_id) REFERENCES chamber (id)PRIMARY KEY (effective_from, chamber_id, signal_id))");

const QString userStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS application_user (id INTEGER PRIMARY KEY NOT NULL , login_name TEXT, "
    "mail_address TEXT, password_hash BLOB, password_salt BLOB, password_creation_time DATETIME, "
    "password_is_temporary BOOLEAN, user_level INTEGER, number_failed_login_attempts INTEGER, "
    "number_failed_security_question_attempts INTEGER, is_banned BOOLEAN, password_expiration_time DATETIME, "
    "first_name TEXT, last_name TEXT)");

const QString globalSettingsStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS global_settings (id INTEGER PRIMARY KEY NOT NULL, event_do_repeat INTEGER, "
    "event_repetition_interval INTEGER, report_creation_interval INTEGER, base_password TEXT, "
    "quick_recording_name_template TEXT, quick_recording_seconds_interval INTEGER, "
    "resume_recordings_on_startup INTEGER)");

// No primary key at all.
const QString metaRecordingStatement =
    QStringLiteral(" CREATE TABLE IF NOT EXISTS meta_recording_has_recording (meta_recording_id INTEGER NOT NULL, "
                   "recording_id INTEGER NOT NULL, FOREIGN KEY (meta_recording_id) REFERENCES recording (id), "
                   "FOREIGN KEY (recording_id) REFERENCES recording (id))");

const QString logEntryStatement =
    QStringLiteral(" CREATE TABLE IF NOT EXISTS log_entry (id INTEGER PRIMARY KEY NOT NULL, creation_time DATETIME, "
                   "event_description TEXT, user_id INTEGER, FOREIGN KEY (user_id) REFERENCES application_user (id))");

const QString recordSetStatement =
    QStringLiteral(" CREATE TABLE IF NOT EXISTS record_set (id INTEGER PRIMARY KEY NOT NULL, record_time DATETIME, "
                   "is_retrieved_from_chamber BOOLEAN, recording_id INTEGER NOT NULL, "
                   "signal_1 REAL, signal_2 REAL, signal_3 REAL, signal_4 REAL, signal_5 REAL, signal_6 REAL, "
                   "signal_7 REAL, signal_8 REAL, signal_9 REAL, signal_10 REAL, signal_11 REAL, signal_12 REAL, "
                   "signal_13 REAL, signal_14 REAL, signal_15 REAL, signal_16 REAL, signal_17 REAL, signal_18 REAL, "
                   "signal_19 REAL, signal_20 REAL, signal_21 REAL, signal_22 REAL, signal_23 REAL, signal_24 REAL, "
                   "signal_25 REAL, signal_26 REAL, signal_27 REAL, signal_28 REAL, signal_29 REAL, signal_30 REAL, "
                   "signal_31 REAL, signal_32 REAL, signal_33 REAL, signal_34 REAL, signal_35 REAL, signal_36 REAL, "
                   "signal_37 REAL, signal_38 REAL, signal_39 REAL, signal_40 REAL, signal_41 REAL, signal_42 REAL, "
                   "signal_43 REAL, signal_44 REAL, signal_45 REAL, signal_46 REAL, signal_47 REAL, signal_48 REAL"
                   ", FOREIGN KEY (recording_id) REFERENCES recording (id))");

const QString recordSetCommentStatement =
    QStringLiteral(" CREATE TABLE IF NOT EXISTS record_set_comment (recordset_id INTEGER PRIMARY KEY NOT NULL UNIQUE, "
                   "user_id INTEGER, creation_time DATETIME, comment_text TEXT, "
                   "FOREIGN KEY (recordset_id) REFERENCES record_set (id))");

const QString roomStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS room (id INTEGER PRIMARY KEY NOT NULL , room_name TEXT, image_path TEXT, "
    "image_scale REAL)");

const QString roomChamberPositionStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS room_chamber_position (chamber_id INTEGER PRIMARY KEY NOT NULL, room_id INTEGER, "
    "chamber_pos_x REAL, chamber_pos_y REAL, FOREIGN KEY (chamber_id) REFERENCES chamber (id), "
    "FOREIGN KEY (room_id) REFERENCES room (id))");

const QString visibilityStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS user_has_chamber_signal_visibility_preference (user_id INTEGER NOT NULL, "
    "chamber_id INTEGER NOT NULL, signal_id INTEGER NOT NULL, FOREIGN KEY (user_id) REFERENCES application_user (id), "
    "FOREIGN KEY (chamber_id) REFERENCES chamber (id))");

// Enumerations are INTEGER columns.
const QString userPreferencesStatement = QStringLiteral(
    " CREATE TABLE IF NOT EXISTS user_preferences (user_id INTEGER PRIMARY KEY NOT NULL, default_file_format INTEGER, "
    "localization INTEGER, time_format INTEGER, date_format INTEGER, decimal_format INTEGER, "
    "temperature_unit INTEGER, humidity_unit INTEGER, FOREIGN KEY (user_id) REFERENCES application_user (id))");

// In the order of initialize, each table after those it references.
const QStringList applicationTables = {"chamber",
                                       "global_settings",
                                       "application_user",
                                       "recording",
                                       "meta_recording_has_recording",
                                       "log_entry",
                                       "record_set",
                                       "record_set_comment",
                                       "tolerance_range",
                                       "room",
                                       "room_chamber_position",
                                       "user_has_chamber_signal_visibility_preference",
                                       "user_preferences"};

// What the engine keeps in sqlite_master of each statement: "name: CREATE TABLE name (...)".
QStringList storedTables(const QStringList& statements)
{
    QStringList tables;
    for (QString text : statements) {
        text.replace(QLatin1String(" CREATE TABLE IF NOT EXISTS "), QLatin1String("CREATE TABLE "));
        tables.append(text.section(QLatin1Char(' '), 2, 2) + QStringLiteral(": ") + text);
    }
    return tables;
}

QStringList tableNames(const QStringList& statements)
{
    QStringList names;
    for (const QString& statement : statements)
        names.append(statement.section(QLatin1Char(' '), 6, 6));
    return names;
}

// "name: sql" of each table in the order of creation.
QStringList tablesOf(const QString& path)
{
    const TestDatabase::ShellResult result = TestDatabase::runSqlcipher(
        path, projectKey,
        QStringLiteral("SELECT name || ': ' || sql FROM sqlite_master WHERE type = 'table' ORDER BY rowid;"));
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

QString uniqueConnectionName()
{
    static int count = 0;
    return QStringLiteral("tst_databaseconnection_%1").arg(++count);
}

// A real connection that notes the tables it is asked to create; the settings
// store's guarded insert of its row runs at every initialize and isn't noted.
class RecordingConnection : public SqliteConnection
{
public:
    using SqliteConnection::SqliteConnection;

    ExecuteResult execute(const ISqlQuery& query) override
    {
        if (query.getPreparedQueryString().startsWith(QLatin1String(" CREATE TABLE")))
            executed.append(query.getPreparedQueryString());
        return SqliteConnection::execute(query);
    }

    QStringList executed;
};

// The application database as delivered, with the statements of a row of the
// test behind it.
const QString delivered = QStringLiteral("delivered:");

// Two encrypted files made by the sqlcipher shell, the catalogue on the
// delivered schema, both opened through SqliteConnection, and the facade. An
// application text that starts with "delivered:" adds its statements to the
// delivered schema, any other is the whole database.
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
        const QString name = QStringLiteral("application%1.db").arg(count);
        applicationPath =
            applicationSql.startsWith(delivered)
                ? zelmor::testsupport::createApplicationDatabase(files, name, applicationSql.mid(delivered.size()))
                : files.createEncrypted(name, applicationSql);
        const QString catalogue =
            zelmor::testsupport::createCatalogue(files, QStringLiteral("configuration%1.db").arg(count), catalogueRows);
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

    void lookups_data();
    void lookups();
    void lookupPastTheLastStops();

    void createTable_data();
    void createTable();
    void initialize_data();
    void initialize();
    void deliveredSchema();
    void initializeStopsAtFailedTable();

    void setDependencies_data();
    void setDependencies();
    void catalogueThroughTheFacade();
    void storesThroughTheFacade();
    void chamberStoreThroughTheFacade();
    void alarmStoreThroughTheFacade();
    void usersAndAccessThroughTheFacade();
    void programStoreThroughTheFacade();
    void recordingStoresThroughTheFacade();

private:
    TestDatabase files;
};

void TestDatabaseConnection::initTestCase()
{
    qRegisterMetaType<DatabaseConnectionError>();
    QVERIFY(files.isValid());
}

void TestDatabaseConnection::lookups_data()
{
    using DC = DatabaseConnection;
    QTest::addColumn<Name>("lookup");
    QTest::addColumn<QString>("name");

    // Names that no creation statement or catalogue read below shows, and the text maps.
    const auto row = [](const char* tag, Name lookup, const char* name) {
        QTest::newRow(tag) << lookup << QString(name);
    };
    row(
        "Recording 16384, spelled so", [] { return DC::lookupRecordingColumnName(RecordingProperty(16384)); },
        "is_start_reconding_allowed");
    row(
        "Chamber 18, not created", [] { return DC::lookupChamberColumnName(ChamberProperty(18)); }, "converter_id");
    row(
        "signal type set_point", [] { return QString::number(DC::signalTypeMap.value("set_point")); }, "1");
    row(
        "signal type unknown", [] { return QString::number(DC::signalTypeMap.value("SET_POINT")); }, "0");
    row(
        "access WO", [] { return QString::number(DC::accessMap.value("WO")); }, "1");
    row(
        "variable INT16", [] { return QString::number(DC::variableTypeMap.value("INT16")); }, "33");
    row(
        "variable with array size", [] { return QString::number(DC::variableTypeMap.value("UINT16[4]")); }, "0");
    // Nothing in this program registers the type but the map's filling.
    row(
        "variable INT10", [] { return QString(QMetaType::typeName(DC::variableTypeMap.value("INT10"))); },
        "zelmor::domain::types::Int10");
}

void TestDatabaseConnection::lookups()
{
    QFETCH(Name, lookup);
    QFETCH(QString, name);
    QCOMPARE(lookup(), name);
}

// A number past the last enumerator stops the program (see main).
void TestDatabaseConnection::lookupPastTheLastStops()
{
    const zelmor::testsupport::ChildRun child = zelmor::testsupport::ChildRun::start({});
    QCOMPARE(child.standardOutput, QByteArray());
    QVERIFY2(child.stoppedOnAssertion("false", "DatabaseSchema.cpp"), child.standardError.constData());
}

// ---------------------------------------------------------------------------

void TestDatabaseConnection::createTable_data()
{
    QTest::addColumn<CreateFunction>("create");
    QTest::addColumn<QStringList>("statements");

    // Reference tables first, in the order of the foreign keys, each once.
    QTest::newRow("recording") << &DatabaseConnection::createTableRecording
                               << QStringList{userStatement, chamberStatement, recordingStatement};
    QTest::newRow("tolerance_range") << &DatabaseConnection::createTableToleranceRange
                                     << QStringList{chamberStatement, toleranceRangeStatement};
    QTest::newRow("chamber") << &DatabaseConnection::createTableChamber << QStringList{chamberStatement};
    QTest::newRow("global_settings") << &DatabaseConnection::createTableGlobalSettings
                                     << QStringList{globalSettingsStatement};
    // Both foreign keys reference "recording", which is made once.
    QTest::newRow("meta_recording_has_recording")
        << &DatabaseConnection::createTableMetaRecordingHasRecordings
        << QStringList{userStatement, chamberStatement, recordingStatement, metaRecordingStatement};
    QTest::newRow("log_entry") << &DatabaseConnection::createTableProtocolEntry
                               << QStringList{userStatement, logEntryStatement};
    QTest::newRow("record_set") << &DatabaseConnection::createTableRecordset
                                << QStringList{userStatement, chamberStatement, recordingStatement, recordSetStatement};
    QTest::newRow("record_set_comment") << &DatabaseConnection::createTableRecordsetComment
                                        << QStringList{userStatement, chamberStatement, recordingStatement,
                                                       recordSetStatement, recordSetCommentStatement};
    QTest::newRow("room") << &DatabaseConnection::createTableRoom << QStringList{roomStatement};
    QTest::newRow("room_chamber_position")
        << &DatabaseConnection::createTableRoomChamberPosition
        << QStringList{chamberStatement, roomStatement, roomChamberPositionStatement};
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

void TestDatabaseConnection::initialize_data()
{
    QTest::addColumn<QString>("applicationSql");
    QTest::addColumn<QString>("catalogueRows");
    QTest::addColumn<bool>("passes");
    QTest::addColumn<bool>("versionWrong");
    QTest::addColumn<QList<int>>("errors");
    QTest::addColumn<QStringList>("created");

    QStringList withoutChamber = applicationTables;
    withoutChamber.removeFirst();
    QTest::newRow("18") << versionTable(18) << "" << false << true << QList<int>() << QStringList();
    // The creation functions make the older core; the camera store, the first
    // store with a table of its own, then misses it.
    QTest::newRow("19") << versionTable(19) << "" << false << false << QList<int>{4} << applicationTables;
    QTest::newRow("20") << versionTable(20) << "" << false << false << QList<int>{4} << applicationTables;
    // An existing table stays as it is, whatever its columns.
    QTest::newRow("19 with a chamber table of its own") << versionTable(19) + "CREATE TABLE chamber(x TEXT);"
                                                        << "" << false << false << QList<int>{4} << withoutChamber;
    // As delivered, every table is there.
    QTest::newRow("delivered") << delivered << "" << true << false << QList<int>() << QStringList();
    QTest::newRow("delivered, version 20") << delivered + "UPDATE database_version_info SET version = 20;"
                                           << "" << true << false << QList<int>() << QStringList();
    // A table that no creation function builds stays missing.
    QTest::newRow("delivered without the cameras") << delivered + "DROP TABLE camera;"
                                                   << "" << false << false << QList<int>{4} << QStringList();
    QTest::newRow("delivered without the program set points") << delivered + "DROP TABLE program_setpoint;"
                                                              << "" << false << false << QList<int>{4} << QStringList();
    QTest::newRow("catalogue without its signal table")
        << delivered << "DROP TABLE signal;" << false << false << QList<int>{4} << QStringList();
}

void TestDatabaseConnection::initialize()
{
    QFETCH(QString, applicationSql);
    QFETCH(QString, catalogueRows);
    QFETCH(bool, passes);
    QFETCH(bool, versionWrong);
    QFETCH(QList<int>, errors);
    QFETCH(QStringList, created);

    Setup setup(files, applicationSql, catalogueRows);
    QVERIFY(setup.ok);
    const QStringList before = tablesOf(setup.applicationPath);
    QSignalSpy spy(&setup.facade, &DatabaseConnection::error);

    QCOMPARE(setup.facade.initialize(), passes);
    QCOMPARE(setup.facade.isDatabaseVersionWrong(), versionWrong);
    QCOMPARE(errorCodes(spy), errors);
    QCOMPARE(tableNames(setup.application.executed), created);
    QCOMPARE(tablesOf(setup.applicationPath), before + storedTables(setup.application.executed));
    if (!passes)
        return;

    // A second run changes nothing, the rows included.
    const auto dump = [&setup] {
        return TestDatabase::runSqlcipher(setup.applicationPath, projectKey, ".dump").output;
    };
    const TestDatabase::ShellResult filled = TestDatabase::runSqlcipher(
        setup.applicationPath, projectKey, QStringLiteral("INSERT INTO room (id, room_name) VALUES (2, 'Lab');"));
    QVERIFY2(filled.ok, qPrintable(filled.errorOutput));
    const QString dumped = dump();
    setup.application.executed.clear();
    QVERIFY(setup.facade.initialize());
    QVERIFY(!setup.facade.isDatabaseVersionWrong());
    QCOMPARE(setup.application.executed, QStringList());
    QCOMPARE(dump(), dumped);
    QVERIFY(dumped.contains(QLatin1String("'Lab'")));
}

// The delivered schema against the names the stores use and against what the
// creation functions build.
void TestDatabaseConnection::deliveredSchema()
{
    using DC = DatabaseConnection;
    // Every column the lookups name, template columns expanded.
    const auto names = [](auto lookup, int count, int templated = -1, int copies = 0) {
        QStringList columns;
        for (int value = 0; value < count; ++value) {
            const QString name = lookup(value);
            if (value != templated) {
                columns.append(name);
                continue;
            }
            for (int number = 1; number <= copies; ++number)
                columns.append(name.arg(number));
        }
        columns.sort();
        return columns;
    };
    QMap<QString, QStringList> expected;
    expected[DC::lookupChamberTableName()] =
        names([](int v) { return DC::lookupChamberColumnName(ChamberProperty(v)); }, 19);
    expected[DC::lookupChamberHasCustomSignalNameTableName()] = names(
        [](int v) { return DC::lookupChamberHasCustomSignalNameColumnName(ChamberHasCustomSignalNameProperty(v)); }, 3);
    expected[DC::lookupChamberHasSignalDelayTableName()] =
        names([](int v) { return DC::lookupChamberHasSignalDelayColumnName(ChamberHasSignalDelayProperty(v)); }, 4);
    expected[DC::lookupChamberHasSubscribedSignalTableName()] = names(
        [](int v) { return DC::lookupChamberHasSubscribedSignalColumnName(ChamberHasSubscribedSignalProperty(v)); }, 2);
    expected[DC::lookupToleranceRangeTableName()] =
        names([](int v) { return DC::lookupToleranceRangeColumnName(ToleranceRangeProperty(v)); }, 6);
    expected[DC::lookupProgramTableName()] =
        names([](int v) { return DC::lookupProgramColumnName(ProgramProperty(v)); }, 7);
    expected[DC::lookupProgramStepTableName()] =
        names([](int v) { return DC::lookupProgramStepColumnName(ProgramStepProperty(v)); }, 6);
    expected[DC::lookupProgramSectionTableName()] =
        names([](int v) { return DC::lookupProgramSectionColumnName(ProgramSectionProperty(v)); }, 5);
    expected[DC::lookupProgramSetpointTableName()] =
        names([](int v) { return DC::lookupProgramSetpointColumnName(ProgramSetpointProperty(v)); }, 5);
    expected[DC::lookupProgramStepRepetitionTableName()] =
        names([](int v) { return DC::lookupProgramStepRepetitionColumnName(ProgramStepRepetitionProperty(v)); }, 5);
    // The flags of a recording's columns: 1 to 2048, then 16384 and 32768.
    expected[DC::lookupRecordingTableName()] = names(
        [](int v) { return DC::lookupRecordingColumnName(RecordingProperty(v < 12 ? 1u << v : 1u << (v + 2))); }, 14);
    expected[DC::lookupMetaRecordingHasRecordingTableName()] = names(
        [](int v) { return DC::lookupMetaRecordingHasRecordingColumnName(MetaRecordingHasRecordingProperty(v)); }, 2);
    expected[DC::lookupRecordsetTableName()] =
        names([](int v) { return DC::lookupRecordsetColumnName(RecordsetProperty(v)); }, 8, 3, DC::nSignalsMax());
    expected[DC::lookupRecordsetCommentTableName()] =
        names([](int v) { return DC::lookupRecordsetCommentColumnName(RecordsetCommentProperty(v)); }, 4);
    expected[DC::lookupRecordingHasSignalColumnTableName()] = names(
        [](int v) { return DC::lookupRecordingHasSignalColumnColumnName(RecordingHasSignalColumnProperty(v)); }, 3);
    expected[DC::lookupUserTableName()] = names([](int v) { return DC::lookupUserColumnName(UserProperty(v)); }, 15);
    expected[DC::lookupUserHasSecurityQuestionTableName()] =
        names([](int v) { return DC::lookupUserHasSecurityQuestionColumnName(UserHasSecurityQuestionProperty(v)); }, 4);
    expected[DC::lookupUserPreferencesTableName()] =
        names([](int v) { return DC::lookupUserPreferencesColumnName(UserPreferencesProperty(v)); }, 8);
    expected[DC::lookupUserHasChamberSignalVisibilityPreferenceTableName()] = names(
        [](int v) {
            return DC::lookupUserHasChamberSignalVisibilityPreferenceColumnName(
                UserHasChamberSignalVisibilityPreferenceProperty(v));
        },
        4);
    expected[DC::lookupUserRecordingConfigTableName()] =
        names([](int v) { return DC::lookupUserRecordingConfigColumnName(UserRecordingConfigProperty(v)); }, 3);
    expected[DC::lookupGlobalSettingsTableName()] =
        names([](int v) { return DC::lookupGlobalSettingsColumnName(GlobalSettingsProperty(v)); }, 45);
    expected[DC::lookupMailRecipientTableName()] =
        names([](int v) { return DC::lookupMailRecipientColumnName(MailRecipientProperty(v)); }, 2);
    expected[DC::lookupProtocolEntryTableName()] =
        names([](int v) { return DC::lookupProtocolEntryColumnName(ProtocolEntryProperty(v)); }, 6, 5, 10);
    expected[DC::lookupRoomTableName()] = names([](int v) { return DC::lookupRoomColumnName(RoomProperty(v)); }, 4);
    expected[DC::lookupRoomChamberPositionTableName()] =
        names([](int v) { return DC::lookupRoomChamberPositionColumnName(RoomChamberPositionProperty(v)); }, 4);
    expected[DC::lookupCameraTableName()] =
        names([](int v) { return DC::lookupCameraColumnName(CameraProperty(v)); }, 6);
    expected[DC::lookupAlarmTableName()] =
        names([](int v) { return DC::lookupAlarmColumnName(AlarmProperty(v)); }, 12, 9, 2);
    expected[DC::lookupAlarmHasSignalTableName()] =
        names([](int v) { return DC::lookupAlarmHasSignalColumnName(AlarmHasSignalProperty(v)); }, 2);
    expected[QStringLiteral("database_version_info")] = QStringList{"version"};

    // Each table's columns as "name type", in their order, read by the shell
    // (whose engine has no table-valued pragmas yet).
    const auto columnsOf = [](const QString& path) {
        QString script;
        for (const QString& table : tablesOf(path))
            script += QStringLiteral("SELECT 'table|%1'; PRAGMA table_info('%1');\n").arg(table.section(':', 0, 0));
        const TestDatabase::ShellResult result = TestDatabase::runSqlcipher(path, projectKey, script);
        QMap<QString, QStringList> columns;
        QString table;
        for (const QString& line : result.output.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            const QStringList fields = line.split(QLatin1Char('|'));
            if (fields.value(0) == QLatin1String("table"))
                table = fields.value(1);
            else
                columns[table].append(fields.value(1) + QLatin1Char(' ') + fields.value(2));
        }
        return columns;
    };
    Setup deliveredSetup(files, delivered);
    QVERIFY(deliveredSetup.ok);
    const QMap<QString, QStringList> deliveredColumns = columnsOf(deliveredSetup.applicationPath);
    QMap<QString, QStringList> deliveredNames;
    for (auto table = deliveredColumns.cbegin(); table != deliveredColumns.cend(); ++table) {
        QStringList columns;
        for (const QString& column : table.value())
            columns.append(column.section(QLatin1Char(' '), 0, 0));
        columns.sort();
        deliveredNames.insert(table.key(), columns);
    }
    QCOMPARE(deliveredNames.keys(), expected.keys());
    for (const QString& table : expected.keys())
        QCOMPARE(deliveredNames.value(table), expected.value(table));

    // Where a creation function builds the table, its columns come first, in
    // its order and with its types.
    Setup created(files, versionTable(19));
    QVERIFY(created.ok);
    QVERIFY(!created.facade.initialize());
    const QMap<QString, QStringList> createdColumns = columnsOf(created.applicationPath);
    QCOMPARE(createdColumns.size(), applicationTables.size() + 1);
    for (auto table = createdColumns.cbegin(); table != createdColumns.cend(); ++table)
        QCOMPARE(deliveredColumns.value(table.key()).mid(0, table.value().size()), table.value());
}

void TestDatabaseConnection::initializeStopsAtFailedTable()
{
    // An index of the name "application_user": the third table of the list
    // needs it through "recording", and nothing after it is tried.
    Setup setup(files,
                versionTable(19)
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
    QCOMPARE(tableNames(setup.application.executed), applicationTables.mid(0, 3));
    // The facade passes on only the stores' errors.
    QCOMPARE(errors.count(), 0);
}

// ---------------------------------------------------------------------------

void TestDatabaseConnection::setDependencies_data()
{
    QTest::addColumn<bool>("call");
    QTest::addColumn<bool>("withApplication");
    QTest::addColumn<bool>("withConfiguration");

    // With both, the other functions show the wiring.
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
    if (call) {
        QVERIFY(!setup.facade.setDependencies(withApplication ? &setup.application : nullptr,
                                              withConfiguration ? &setup.configuration : nullptr));
    }
    QVERIFY(!setup.facade.areDependenciesSet());
    // Nothing reaches a database, the catalogue's store included.
    QVERIFY(!setup.facade.createTableChamber());
    QVERIFY(setup.facade.getAllChamberTypeData(false).isEmpty());
    QVERIFY(setup.facade.getAllRooms().isEmpty());
    QVERIFY(!setup.facade.setScreenLockTimeout(5));
    QVERIFY(setup.facade.getAllUserData().isEmpty());
    QCOMPARE(setup.facade.getRequiredUserLevel(ActivityId(ActivityId::AccessManagementActivityId::CREATE_USER)), NONE);
    QVERIFY(!setup.facade.initialize());
    QVERIFY(!setup.facade.isDatabaseVersionWrong());
    QCOMPARE(setup.application.executed, QStringList());
    QCOMPARE(errorCodes(errors), (QList<int>{0, 0, 0, 0, 0, 0, 0}));
}

void TestDatabaseConnection::catalogueThroughTheFacade()
{
    // As the simulator does it: dependencies set, no initialize.
    Setup setup(files, delivered, smallCatalogue);
    QVERIFY(setup.ok);
    QSignalSpy errors(&setup.facade, &DatabaseConnection::error);
    QVERIFY(setup.facade.areDependenciesSet());
    const QList<ChamberTypeData> types = setup.facade.getAllChamberTypeData(false);
    QCOMPARE(types.size(), 1);
    QCOMPARE(types.at(0).getQualifiedTypeName() + QLatin1Char(' ') + types.at(0).controller,
             QStringLiteral("HX 60 Z6 TLX"));
    QCOMPARE(setup.facade.getChamberSignals(ChamberTypeId(5, 0)).value(7).name, QStringLiteral("Temperature"));
    QCOMPARE(setup.facade.getSignalUnitId(7), Unit::RELATIVE_HUMIDITY_RF);
    QCOMPARE(setup.application.executed, QStringList());

    // The store's own report reaches the facade's signal, once after any number of initialize calls.
    QVERIFY(setup.facade.getChamberSignal(999).isNull());
    QVERIFY(setup.facade.initialize() && setup.facade.initialize());
    QVERIFY(setup.facade.getChamberSignal(999).isNull());
    QCOMPARE(errorCodes(errors), (QList<int>{8, 8}));
}

// Every operation of the log, room, camera and settings stores once, each
// written value read back through the facade.
void TestDatabaseConnection::storesThroughTheFacade()
{
    Setup setup(files,
                delivered
                    + "INSERT INTO application_user (id, login_name, user_level) VALUES (1, 'anna', 1);"
                      "INSERT INTO chamber (id, chamber_name) VALUES (7, 'A');"
                      "INSERT INTO recording (id, recording_name) VALUES (3, 'R');",
                smallCatalogue);
    QVERIFY(setup.ok);
    DatabaseConnection& facade = setup.facade;
    QVERIFY(facade.initialize());
    QSignalSpy errors(&facade, &DatabaseConnection::error);

    const QDateTime time(QDate(2024, 5, 2), QTime(8, 15), Qt::UTC);
    QVERIFY(facade.addProtocolEntry(ProtocolEntry(time, "Logged in", {"x"}, 1)));
    const ProtocolEntry entry = facade.getProtocolEntries(TimeSpan(), UserId(1)).value(0);
    QCOMPARE(entry.time, time);
    QCOMPARE(entry.userName + entry.arguments.value(0).toString(), QStringLiteral("annax"));
    QCOMPARE(facade.getProtocolEntries(TimeSpan(QDateTime(), time), BASIC).size(), 1);
    QVERIFY(facade.hasProtocolEntries(1) && !facade.hasProtocolEntries(2));

    Room room(0, "Lab", QUrl("file:///plan.png"), 2.0f);
    QVERIFY(facade.addRoom(room));
    room.name = "Lab 2";
    QVERIFY(facade.updateRoom(room));
    QVERIFY(facade.setRoomPosition(7, RoomPosition(room.id, QPointF(1, 2))));
    QCOMPARE(facade.getRoomPosition(7), RoomPosition(room.id, QPointF(1, 2)));
    QCOMPARE(facade.getChambersInRoom(room.id), QList<ChamberId>{7});
    room.chamberIds = {7};
    QCOMPARE(facade.getAllRooms(), QList<Room>{room});
    QCOMPARE(facade.getRoomImagePath(room.id), QUrl("file:///plan.png"));
    QVERIFY(facade.setRoomPosition(7, RoomPosition()));
    QVERIFY(facade.deleteRoom(room.id));
    QCOMPARE(facade.getAllRooms(), QList<Room>());

    Camera camera(0, QHostAddress("10.0.0.3"), QString(), 3, 20);
    QVERIFY(facade.addCamera(camera));
    camera.recordingInterval = 40;
    QVERIFY(facade.updateCamera(camera));
    QCOMPARE(facade.getCameras(3), QList<Camera>{camera});
    QVERIFY(facade.deleteCamera(camera.id));
    QCOMPARE(facade.getCameras(3), QList<Camera>());

    const SmtpConfiguration smtp("mail", 25, 1, "u", "p", "s");
    const ReportConfiguration report(ReportConfiguration::WEEKLY, QLocale::French, FileFormat(2), "p", "/r", "/l", 1,
                                     "t", "/w", 3, "m");
    const BackupScheduleConfiguration backup(QTime(1, 0), BackupInterval::MONTHLY, 31, "/b", "pw");
    const BackupCleanupSettings cleanup(BackupCleanupSettings::KEEP_N_BACKUPS, 4);
    const ZelmorNetworkConfiguration zelmor(QHostAddress("10.0.0.1"), 1);
    const SirenBoxNetworkConfiguration sirenBox(QHostAddress("10.0.0.2"), 2);
    QVERIFY(facade.setQuickRecordingNameTemplate("T") && facade.setQuickRecordingSecondsInterval(11)
            && facade.setRecordingResumptionOnStartupEnabled(true) && facade.setAccessControlActive(false)
            && facade.setSecurityQuestionsActive(true) && facade.setPasswordValidityPeriod(12)
            && facade.setScreenLockTimeout(13) && facade.setSmtpConfiguration(smtp)
            && facade.setReportConfiguration(report) && facade.setAlarmRepetitionEnabled(false)
            && facade.setAlarmRepetitionIntervalInSeconds(14) && facade.setPreAlarmDelayInSeconds(15)
            && facade.setBackupScheduleConfiguration(backup) && facade.setBackupCleanupSettings(cleanup)
            && facade.setAllowedNumberOfFailedLogins(16) && facade.setZelmorNetworkConfiguration(zelmor)
            && facade.setZelmorNumConnectionAttempts(17) && facade.setZelmorConnectionActive(true)
            && facade.setSirenBoxNetworkConfiguration(sirenBox) && facade.setSirenBoxNumConnectionAttempts(18)
            && facade.setSirenBoxActive(true) && facade.addMailAddressToRecipients("a@b.c"));
    QCOMPARE(facade.getQuickRecordingNameTemplate(), QStringLiteral("T"));
    QCOMPARE(QList<int>({facade.getQuickRecordingSecondsInterval(), facade.getPasswordValidityPeriod(),
                         facade.getScreenLockTimeout(), facade.getAlarmRepetitionIntervalInSeconds(),
                         facade.getPreAlarmDelayInSeconds(), facade.getAllowedNumberOfFailedLogins(),
                         facade.getZelmorNumConnectionAttempts(), facade.getSirenBoxNumConnectionAttempts()}),
             QList<int>({11, 12, 13, 14, 15, 16, 17, 18}));
    QCOMPARE(QList<bool>({facade.isRecordingResumptionOnStartupEnabled(), facade.isAccessControlActive(),
                          facade.areSecurityQuestionsActive(), facade.isAlarmRepetitionEnabled(),
                          facade.isZelmorConnectionActive(), facade.isSirenBoxActive()}),
             QList<bool>({true, false, true, false, true, true}));
    QVERIFY(facade.getSmtpConfiguration() == smtp);
    QVERIFY(facade.getReportConfiguration() == report);
    QVERIFY(facade.getBackupScheduleConfiguration() == backup);
    QVERIFY(facade.getBackupCleanupSettings() == cleanup);
    QVERIFY(facade.getZelmorNetworkConfiguration() == zelmor);
    QVERIFY(facade.getSirenBoxNetworkConfiguration() == sirenBox);
    QVERIFY(facade.isMailAddressInRecipients("a@b.c"));
    QCOMPARE(facade.getRecipientMailAddresses(), QStringList{"a@b.c"});
    QVERIFY(facade.deleteMailAddressFromRecipients("a@b.c"));
    QCOMPARE(facade.getRecipientMailAddresses(), QStringList());
    QCOMPARE(errors.count(), 0);
}

// Every operation of the chamber store once, each written value read back
// through the facade.
void TestDatabaseConnection::chamberStoreThroughTheFacade()
{
    Setup setup(files,
                delivered
                    + "INSERT INTO room (id, room_name) VALUES (2, 'Lab');"
                      "INSERT INTO chamber (id, chamber_name, chamber_type_id) VALUES (1, 'Old', 5);"
                      "INSERT INTO recording (id, recording_name, chamber_id) VALUES (3, 'R', 1);",
                smallCatalogue);
    QVERIFY(setup.ok);
    DatabaseConnection& facade = setup.facade;
    QVERIFY(facade.initialize());
    QSignalSpy errors(&facade, &DatabaseConnection::error);

    ChamberData chamber(-1, "A", "12", ChamberTypeId(5, 0), QHostAddress("10.0.0.5"), MacAddress("00:11:22:33:44:55"),
                        ActivationState::ACTIVE, false, QString(), QSerialPort::BaudRate(-1), QSerialPort::DataBits(-1),
                        QSerialPort::StopBits(-1), QSerialPort::Parity(-1), 0, TLX, NO_CONVERTER, RoomPosition(),
                        ChamberOperationMode::UNKNOWN_MODE, false);
    QVERIFY(facade.addChamber(chamber));
    const ChamberId id = chamber.chamberId;
    QCOMPARE(int(id), 2);
    QVERIFY(facade.setRoomPosition(id, RoomPosition(2, QPointF(1, 1))));
    chamber.roomPosition = RoomPosition(2, QPointF(1, 1));
    QCOMPARE(facade.getChamberData(id, true), chamber);
    QCOMPARE(facade.getAllChamberData(true).value(1), chamber);
    chamber.chamberName = "B";
    QVERIFY(facade.updateChamber(chamber, true));
    chamber.comPort = "COM1";
    QVERIFY(facade.setChamberProperty(chamber, ChamberProperty::COM_PORT));
    QVERIFY(facade.setChamberProperty(id, ChamberProperty::MODBUS_ADDRESS, 3));
    QCOMPARE(facade.getChamberProperty(id, ChamberProperty::CHAMBER_NAME).toString(), QStringLiteral("B"));
    QCOMPARE(facade.getChamberData(id, false).comPort + QString::number(facade.getChamberData(id, false).modbusAddress),
             QStringLiteral("COM13"));
    QCOMPARE(facade.getChamberSignals(id).keys(), QList<int>{7});
    QVERIFY(facade.setChamberCustomSignalNames(id, {{7, "Moisture"}}));
    QCOMPARE(facade.getChamberCustomSignalNames(id).value(7), QStringLiteral("Moisture"));
    QVERIFY(facade.archiveChamber(id) && facade.getChamberData(id, false).isArchived);
    QVERIFY(facade.restoreChamber(id) && !facade.getChamberData(id, false).isArchived);

    QVERIFY(facade.subscribeChamber(id) && facade.isChamberSubscribed(id));
    QVERIFY(facade.subscribeChamberSignal(id, 7));
    QCOMPARE(facade.getSubscribedChamberSignals(id), QList<SignalId>{7});
    QVERIFY(facade.isAnyChamberSignalSubscribed(id, {7, 8}) && facade.isChamberSignalSubscribed(id, 7));
    QVERIFY(facade.unsubscribeChamberSignal(id, 7) && !facade.isChamberSignalSubscribed(id, 7));
    QVERIFY(facade.unsubscribeChamber(id) && !facade.isChamberSubscribed(id));
    QVERIFY(facade.bulkSubscribeChambers({1, id}) && facade.isChamberSubscribed(1));
    QVERIFY(facade.bulkUnsubscribeChambers({1, id}) && !facade.isChamberSubscribed(1));

    QVERIFY(facade.setChamberSignalDelay(id, 7, true, 60));
    QVERIFY(facade.hasChamberSignalDelay(id, 7, true) && !facade.hasChamberSignalDelay(id, 7, false));
    QCOMPARE(facade.getChamberSignalDelayInSeconds(id, 7, true), 60);
    QCOMPARE(facade.getAllChamberSignalDelaysInSeconds(id, true).value(7), 60);

    // The signal's unit comes from the catalogue: % r.F.
    const QDateTime time(QDate(2024, 5, 2), QTime(8, 0), Qt::UTC);
    const ToleranceRange range(UnitValue(Unit::RELATIVE_HUMIDITY_RF, 2.0f),
                               UnitValue(Unit::RELATIVE_HUMIDITY_RF, 3.0f));
    QVERIFY(facade.setToleranceRange(time, 1, 7, range));
    QMap<int, ChamberSignal> signalMap = facade.getChamberSignals(ChamberId(1));
    QCOMPARE(facade.getToleranceRange(time, 1, 7), range);
    QCOMPARE(facade.getToleranceRanges(time, ChamberId(1), signalMap).value(7), range);
    QCOMPARE(facade.getToleranceRanges(time, RecordingId(3), signalMap).value(7), range);
    QCOMPARE(facade.getToleranceRangeHistory(RecordingId(3), signalMap).value(7).value(time), range);

    QVERIFY(facade.setRoomPosition(id, RoomPosition()));
    QVERIFY(facade.deleteChamber(id));
    QCOMPARE(facade.getAllChamberData(false).size(), 1);
    QCOMPARE(errors.count(), 0);
}

// Every operation of the alarm store once, and the facade's own getAllAlarms
// with the chambers' names.
void TestDatabaseConnection::alarmStoreThroughTheFacade()
{
    // Signal 7 of type 5 has the defaults 300 s and 15 min.
    Setup setup(files,
                delivered
                    + "INSERT INTO chamber (id, chamber_name, chamber_type_id) VALUES (1, 'Alpha', 5), (2, 'Beta', 5);",
                smallCatalogue
                    + "INSERT INTO tolerance_range VALUES (1, 'Humidity', 7, 7, 1.0, 1.0, 300, 15);"
                      "INSERT INTO chamber_type_has_tolerance_range VALUES (5, 1);");
    QVERIFY(setup.ok);
    DatabaseConnection& facade = setup.facade;
    QVERIFY(facade.initialize());
    QSignalSpy errors(&facade, &DatabaseConnection::error);

    const QDateTime time(QDate(2024, 5, 2), QTime(8, 0), Qt::UTC);
    const auto alarmOn = [&time](const ChamberId& chamber, const QString& name) {
        return Alarm(0, time, AlarmType::TOLERANCE_RANGE_VIOLATION, true, AlarmStatus::PRE_ALARM, 0, name,
                     ShortDescription("%1 too high", {"Humidity"}), QString(), chamber, QString(), {7}, {});
    };
    Alarm onBeta = alarmOn(2, "b");
    Alarm onAlpha = alarmOn(1, "a");
    Alarm onNone = alarmOn(-1, "n");
    QVERIFY(facade.addAlarm(onBeta) && facade.addAlarm(onAlpha) && facade.addAlarm(onNone));
    QStringList names;
    for (const Alarm& alarm : facade.getAllAlarms())
        names.append(alarm.alarmName + ':' + alarm.chamberName);
    QCOMPARE(names, (QStringList{"b:Beta", "a:Alpha", "n:"}));
    QCOMPARE(facade.getAlarms(2).value(0).signalIds, QList<SignalId>{7});
    QCOMPARE(facade.countAlarms(1), 1);

    // The type's default, until the chamber has its own in the other column.
    QCOMPARE(facade.getSignalAlarmDelay(onBeta.id, 7, false), 300);
    QVERIFY(facade.setChamberSignalDelay(2, 7, true, 42));
    QCOMPARE(facade.getSignalAlarmDelay(onBeta.id, 7, false), 42);
    QCOMPARE(facade.getSignalAlarmDelay(onBeta.id, 7, true), 900);

    onBeta.status = AlarmStatus::ACKNOWLEDGED;
    QVERIFY(facade.updateAlarm(onBeta));
    QCOMPARE(facade.getAlarms(2).value(0).status, AlarmStatus::ACKNOWLEDGED);
    QVERIFY(facade.deleteAlarm(onNone.id));
    QCOMPARE(facade.getAllAlarms().size(), 2);
    QCOMPARE(errors.count(), 0);
}

// Every operation of the user and access stores once, each written value read
// back through the facade; the user store reads the chamber's signals from the
// catalogue and asks the log store about its author.
void TestDatabaseConnection::usersAndAccessThroughTheFacade()
{
    Setup setup(files,
                delivered
                    + "INSERT INTO chamber (id, chamber_name, chamber_type_id) VALUES (7, 'A', 5);"
                      "INSERT INTO recording (id, recording_name) VALUES (3, 'R');",
                smallCatalogue + "INSERT INTO activity_access VALUES (3, 1, 3), (3, 8, 1);");
    QVERIFY(setup.ok);
    DatabaseConnection& facade = setup.facade;
    QVERIFY(facade.initialize());
    QSignalSpy errors(&facade, &DatabaseConnection::error);

    using Id = ActivityId;
    QCOMPARE(facade.getRequiredUserLevel(Id(Id::AccessManagementActivityId::CREATE_USER)), ADMINISTRATOR);
    QCOMPARE(facade.getGrantedActivities(BASIC), QList<Id>{Id(Id::AccessManagementActivityId::CHANGE_OWN_PASSWORD)});

    const UserPreferences preferences(CSV_FILE, QLocale::German, "HH:mm", "dd.MM.yyyy", QChar(','), Unit::KELVIN,
                                      Unit::PERCENT);
    UserData anna(0, "anna", "a@b.c", "Anna", "Berg", "hash", "salt",
                  QDateTime(QDate(2024, 5, 2), QTime(8, 0), Qt::UTC), QDateTime(), false, 0, 0, false, ADVANCED,
                  QSharedPointer<UserPreferences>::create(preferences));
    QVERIFY(facade.addUser(anna));
    QCOMPARE(*facade.getUserData(anna.id), anna);
    QCOMPARE(*facade.getUserDataByName("anna"), anna);
    QCOMPARE(facade.getAllUserData().size(), 1);
    QCOMPARE(facade.getAllUserNames(), QStringList{"anna"});
    QCOMPARE(facade.getUserName(anna.id), QStringLiteral("anna"));
    QCOMPARE(*facade.getUserPreferences(anna.id), preferences);
    QCOMPARE(facade.getUserPreferencesPropertyValue(anna.id, UserPreferencesProperty::TIME_FORMAT).toString(),
             QStringLiteral("HH:mm"));
    anna.lastName = "Brandt";
    QVERIFY(facade.updateUser(anna));
    QVERIFY(facade.updateUserPreferences(anna.id, UserPreferences()));
    QVERIFY(facade.setUserPropertyValue(anna.id, UserProperty::IS_BANNED, true));
    QCOMPARE(facade.getUserPropertyValue(anna.id, UserProperty::LAST_NAME).toString(), QStringLiteral("Brandt"));
    QVERIFY(facade.getUserData(anna.id)->isBanned);
    QCOMPARE(*facade.getUserPreferences(anna.id), UserPreferences());

    const QList<SecurityQuestionAnswer> answers = {SecurityQuestionAnswer(1, "h", "s")};
    QVERIFY(facade.setUserSecurityQuestionAnswers(anna.id, answers));
    QCOMPARE(facade.getUserSecurityQuestionAnswers(anna.id), answers);

    QVERIFY(facade.setVisibleChamberSignals({7}, anna.id, 7));
    QCOMPARE(facade.getVisibleChamberSignals(anna.id, 7).value(0).name, QStringLiteral("Temperature"));
    QVERIFY(facade.hideChamberSignal(anna.id, 7, 7));
    QVERIFY(facade.getVisibleChamberSignals(anna.id, 7).isEmpty());
    QVERIFY(facade.showChamberSignal(anna.id, 7, 7));
    QCOMPARE(facade.getVisibleChamberSignals(anna.id, 7).size(), 1);
    QVERIFY(facade.setVisibleChamberSignals({}, anna.id, 7));

    QVERIFY(facade.setUserRecordingConfig(anna.id, 3, "c"));
    QCOMPARE(facade.getUserRecordingConfig(anna.id), (QMap<int, QString>{{3, "c"}}));

    // Named in the log, the user stays as a deleted one; a second user leaves no row.
    QVERIFY(facade.addProtocolEntry(ProtocolEntry(QDateTime::currentDateTimeUtc(), "Logged in", {}, anna.id)));
    QVERIFY(facade.deleteUser(anna.id));
    QVERIFY(facade.getAllUserData().isEmpty());
    QCOMPARE(facade.getProtocolEntries(TimeSpan(), anna.id).value(0).userName, QStringLiteral("anna (deleted)"));
    UserData bert(0, "bert", BASIC);
    QVERIFY(facade.addUser(bert));
    // Every user has its preferences from the start.
    QVERIFY(!facade.addUserPreferences(bert.id, UserPreferences()));
    QVERIFY(facade.deleteUser(bert.id));
    QCOMPARE(facade.getAllUserNames(), QStringList{"anna"});
    QCOMPARE(errors.count(), 0);
}

// Every operation of the program store once, each written value read back
// through the facade.
void TestDatabaseConnection::programStoreThroughTheFacade()
{
    Setup setup(files, delivered, smallCatalogue);
    QVERIFY(setup.ok);
    DatabaseConnection& facade = setup.facade;
    QVERIFY(facade.initialize());
    QSignalSpy errors(&facade, &DatabaseConnection::error);

    ChamberTypeData type;
    type.chamberTypeId = ChamberTypeId(5, 0);
    ProgramData main(0, "Main", 1, "Info", ProgramData::TIME_PROGRAM, true, type);
    ProgramData sub(0, "Sub", 1, QString(), ProgramData::WEEK_PROGRAM, false, type);
    QVERIFY(facade.addProgram(main) && facade.addProgram(sub));
    main.name = "Main 2";
    QVERIFY(facade.updateProgram(main) && facade.updateProgramName(sub.id, "Sub 2"));
    QVERIFY(facade.updateProgramProperty(main.id, ProgramProperty::EDITED, false));
    QCOMPARE(facade.getProgramName(1), QStringLiteral("Main 2"));
    QVERIFY(!facade.getProgramStateEdited(1));
    QCOMPARE(int(facade.getProgramUserId(1)), 1);
    QCOMPARE(facade.getProgramChamberTypeId(1), ChamberTypeId(5, 0));
    QCOMPARE(facade.getProgramType(2), ProgramData::WEEK_PROGRAM);
    QCOMPARE(facade.getProgramProperty(2, ProgramProperty::PROGRAM_NAME), QVariant(QStringLiteral("Sub 2")));
    QCOMPARE(int(facade.findProgramByName("Sub 2")), 2);
    QVERIFY(facade.isProgramIdValid(2) && !facade.isProgramIdValid(3));

    const auto humidity = [](float value) { return SignalValuePair(7, UnitValue(Unit::RELATIVE_HUMIDITY_RF, value)); };
    ProgramStep first(0, 1, 1, ProgramSection(0, {humidity(50)}, 60, ProgramSection::RAMP, false, {}));
    QVERIFY(facade.addProgramStep(first));
    QList<ProgramStep> steps = {first, ProgramStep(0, 1, 2, ProgramId(2))};
    QVERIFY(facade.updateProgramSteps(1, steps));
    QVERIFY(facade.getProgramSteps(1) == steps);
    QVERIFY(facade.hasSubPrograms(1) && !facade.hasSubPrograms(2));
    QCOMPARE(int(facade.getProgramSectionId(1)), 1);
    QCOMPARE(facade.getProgramStepPropertyValue(2, ProgramStepProperty::SUB_PROGRAM_ID), QVariant(2));
    ProgramSection section = facade.getProgramSection(1);
    section.durationInSeconds = 90;
    QVERIFY(facade.updateSection(section) && facade.addSetpoints(1, {humidity(55)}));
    QCOMPARE(facade.getProgramSection(1).durationInSeconds, 90);
    QVERIFY(facade.getProgramSectionSetpoints(1) == QList<SignalValuePair>{humidity(55)});
    ProgramSection loose(0, {humidity(1)}, 1, ProgramSection::JUMP, false, {});
    QVERIFY(facade.addSection(loose) && facade.deleteProgramSectionSetpoints(loose.id));
    QVERIFY(facade.getProgramSectionSetpoints(loose.id).isEmpty() && facade.deleteProgramSection(loose.id));
    QVERIFY(facade.updateProgramStep(ProgramStep(2, 1, 3, ProgramId(2))));
    QCOMPARE(facade.getProgramSteps(1).value(1).orderNumber, 3);

    ProgramStepRepetition repetition(0, 1, 1, 2, 2);
    QVERIFY(facade.addProgramStepRepetition(repetition));
    repetition.repetitions = 3;
    QVERIFY(facade.updateProgramStepRepetition(repetition) && facade.containsProgramStepRepetitions(repetition));
    QVERIFY(facade.getProgramStepRepetition(1, 2) == repetition);
    QList<ProgramStepRepetition> repetitions = facade.getProgramStepRepetitions(1);
    repetitions.append(ProgramStepRepetition(0, 1, 2, 2, 4));
    QVERIFY(facade.updateProgramStepRepetitions(1, repetitions));
    QVERIFY(facade.deleteProgramStepRepetition(repetitions.at(1).id));
    QVERIFY(facade.deleteUnusedProgramStepRepetitions(1, {}) && facade.getProgramStepRepetitions(1).isEmpty());

    const QUrl file = QUrl::fromLocalFile(files.filePath("Main.prg"));
    QVERIFY(facade.exportProgram(1, file));
    QCOMPARE(int(facade.importProgram(file, 4)), 3);
    QCOMPARE(facade.getAllPrograms().size(), 4);
    QCOMPARE(facade.getProgram(3).name + ' ' + facade.getProgram(4).name,
             QStringLiteral("Main_imported Main_subimported"));

    QVERIFY(facade.deleteProgramSetpoints(3) && facade.deleteProgramSections(3));
    QCOMPARE(int(facade.getProgramSectionId(facade.getProgramSteps(3).value(0).id)), 0);
    QVERIFY(facade.deleteUnusedProgramSteps(3, {}) && facade.getProgramSteps(3).isEmpty());
    QVERIFY(facade.deleteProgramStep(2) && facade.deleteProgramSteps(1) && facade.getProgramSteps(1).isEmpty());
    QVERIFY(facade.deleteProgram(3) && facade.deleteProgram(4) && facade.deleteProgram(1));
    QCOMPARE(facade.getAllPrograms().size(), 1);
    QCOMPARE(errors.count(), 0);
}

// Every operation of the recording and recordset stores once.
void TestDatabaseConnection::recordingStoresThroughTheFacade()
{
    // Signal 7 (% r.F.) of chamber 1 has the range 10 to 90 from 1 May.
    Setup setup(files,
                delivered
                    + "INSERT INTO chamber (id, chamber_name, chamber_type_id) VALUES (1, 'C', 5);"
                      "INSERT INTO tolerance_range VALUES ('2024-05-01T00:00:00.000Z', 1, 7, 1, 10.0, 90.0);",
                smallCatalogue);
    QVERIFY(setup.ok);
    DatabaseConnection& facade = setup.facade;
    QVERIFY(facade.initialize());
    QSignalSpy errors(&facade, &DatabaseConnection::error);

    const QDateTime start(QDate(2024, 5, 2), QTime(8, 0), Qt::UTC);
    RecordingData recording(0, "Run", 1, 0, 60, start, QDateTime(), true, false, QString(), QString(), quint32(0),
                            facade.getChamberSignals(ChamberId(1)), {}, true, 0);
    QVERIFY(facade.addRecording(recording));
    const RecordingId id = recording.id;
    QCOMPARE(int(id), 1);
    QVERIFY(facade.setChamberCustomSignalNames(1, {{7, "Moisture"}}));
    QCOMPARE(facade.getRecordingData(id)->chamberSignals.value(7).name, QStringLiteral("Moisture"));
    QCOMPARE(facade.getRecordingSignals(id).value(7).name, QStringLiteral("Temperature"));
    QCOMPARE(facade.getAllRecordingData().size(), 1);
    QCOMPARE(facade.getActiveRecording(1), id);
    QVERIFY(facade.hasRecordings(1));
    recording.name = "Run 2";
    QVERIFY(facade.setRecordingProperty(recording, RecordingProperty::RECORDING_NAME));
    QCOMPARE(facade.getRecordingProperty(id, RecordingProperty::RECORDING_NAME).toString(), QStringLiteral("Run 2"));
    QVERIFY(facade.setRecordingProperty(id, RecordingProperty::IS_ACTIVE, false));
    QCOMPARE(facade.getActiveRecording(1), RecordingId(0));
    recording.freeText = "note";
    QVERIFY(facade.updateRecordingProperties(recording));
    QVERIFY(facade.archiveRecording(id) && facade.getRecordingData(id)->isArchived);
    QVERIFY(facade.restoreRecording(id) && !facade.getRecordingData(id)->isArchived);
    QCOMPARE(facade.getRecordingData(id)->freeText, QStringLiteral("note"));

    RecordingData meta(0, "Meta", 1, 0, 60, start, QDateTime(), false, false, QString(), QString(), quint32(0), {}, {},
                       true, 0);
    QVERIFY(facade.addRecording(meta));
    QVERIFY(facade.setMetaRecordingSubRecordings(meta.id, {id}));
    QCOMPARE(facade.getMetaRecordingSubRecordings(meta.id), QList<RecordingId>{id});
    QVERIFY(facade.deleteMetaRecordingSubRecordings(meta.id));
    QVERIFY(facade.matchSignalRecordsetColumn(meta.id, {7}));
    QCOMPARE(facade.getRecordingSignals(meta.id).keys(), QList<int>{7});

    const auto recordset = [&](int minute, const QString& image) {
        return Recordset(-1, id, start.addSecs(60 * minute),
                         {SignalValuePair(7, UnitValue(Unit::RELATIVE_HUMIDITY_RF, 40.0f))}, true, RecordsetComment(),
                         RecordsetAlarm::NO_ALARM, image, ChamberOperationMode::MANUAL);
    };
    Recordset first = recordset(0, QString());
    QVERIFY(facade.addRecordset(first));
    QList<Recordset> more = {recordset(1, "/a.png"), recordset(2, QString())};
    QVERIFY(facade.addRecordsToQuery(more));
    QCOMPARE(facade.getRecordsetLenght(id), 3LL);
    const QList<Recordset> all = facade.getRecordsets(id, 0, 0, -1);
    QCOMPARE(all.size(), 3);
    QCOMPARE(*all.at(2).values.at(0).toleranceRange,
             ToleranceRange(UnitValue(Unit::RELATIVE_HUMIDITY_RF, 10.0f), UnitValue(Unit::RELATIVE_HUMIDITY_RF, 90.0f),
                            ToleranceRange::ABSOLUTE));
    QCOMPARE(facade.getRecordsets(id, TimeSpan(start.addSecs(60), QDateTime()), -1).size(), 2);
    QCOMPARE(facade.getRecordsetsWithImagePath(id, TimeSpan(start, start.addSecs(600)), -1).value(0).cameraImagePath,
             QStringLiteral("/a.png"));
    QCOMPARE(facade.getLatestNRecordsets(id, 1, QDateTime()).value(0).time, start.addSecs(120));
    QCOMPARE(facade.getNRecordsets(id, 5, all.at(2).id).size(), 2);
    QCOMPARE(facade.getRecordset(first.id).time, start);

    QVERIFY(facade.addRecordsetComment(RecordsetComment(start, 2, first.id, "fine")));
    QCOMPARE(facade.getRecordsetComment(first.id).text, QStringLiteral("fine"));
    QVERIFY(facade.deleteRecordsetComment(first.id));
    QVERIFY(facade.deleteRecordset(first.id));
    QCOMPARE(facade.getRecordsetLenght(id), 2LL);
    QVERIFY(facade.deleteAllRecordsets(id));
    QVERIFY(facade.deleteRecording(id));
    QVERIFY(facade.getRecordingData(id).isNull());
    QCOMPARE(errors.count(), 0);
}

// ---------------------------------------------------------------------------

int main(int argc, char** argv)
{
    // Child mode: a lookup the assertion should stop.
    if (zelmor::testsupport::isChildRun(argc, argv)) {
        QTextStream(stdout) << DatabaseConnection::lookupChamberColumnName(ChamberProperty(19));
        return 0;
    }
    QCoreApplication application(argc, argv);
    TestDatabaseConnection test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_databaseconnection.moc"
