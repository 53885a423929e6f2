#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Domain/Api/ISqlQuery.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ChamberTypeData.h"
#include "Domain/Types/ChamberTypeId.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"
#include "support/TestPaths.h"

#include <QCoreApplication>
#include <QHash>
#include <QProcess>
#include <QTextStream>
#include <QtTest>

#include <sys/resource.h>

#include <functional>
#include <memory>

using zelmor::base::connection::databaseconnection::DatabaseConnection;
using zelmor::base::connection::databaseconnection::databaseSchemaVersionNumber;
using zelmor::base::connection::databaseconnection::SqliteConnection;
using zelmor::domain::api::ISqlConnection;
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
const QString category = QStringLiteral("zelmor.DatabaseConnection");

// ---------------------------------------------------------------------------
// Lookups by the name of their table, so that data rows and the child process
// can name them.

#define COLUMN_LOOKUP(Table) \
    { QStringLiteral(#Table), [](int value) { return DatabaseConnection::lookup##Table##ColumnName(Table##Property(value)); } }
#define TABLE_LOOKUP(Table) \
    { QStringLiteral(#Table), [] { return DatabaseConnection::lookup##Table##TableName(); } }

const QHash<QString, std::function<QString(int)>>& columnLookups()
{
    static const QHash<QString, std::function<QString(int)>> lookups = {
        COLUMN_LOOKUP(Chamber), COLUMN_LOOKUP(ChamberHasCustomSignalName), COLUMN_LOOKUP(ChamberHasSignalDelay),
        COLUMN_LOOKUP(ChamberHasSubscribedSignal), COLUMN_LOOKUP(ToleranceRange), COLUMN_LOOKUP(Program),
        COLUMN_LOOKUP(ProgramStep), COLUMN_LOOKUP(ProgramSection), COLUMN_LOOKUP(ProgramSetpoint),
        COLUMN_LOOKUP(ProgramStepRepetition), COLUMN_LOOKUP(Recording), COLUMN_LOOKUP(MetaRecordingHasRecording),
        COLUMN_LOOKUP(Recordset), COLUMN_LOOKUP(RecordsetComment), COLUMN_LOOKUP(RecordingHasSignalColumn),
        COLUMN_LOOKUP(User), COLUMN_LOOKUP(UserHasSecurityQuestion), COLUMN_LOOKUP(UserPreferences),
        COLUMN_LOOKUP(UserHasChamberSignalVisibilityPreference), COLUMN_LOOKUP(UserRecordingConfig),
        COLUMN_LOOKUP(GlobalSettings), COLUMN_LOOKUP(MailRecipient), COLUMN_LOOKUP(ProtocolEntry),
        COLUMN_LOOKUP(Room), COLUMN_LOOKUP(RoomChamberPosition), COLUMN_LOOKUP(Camera), COLUMN_LOOKUP(Alarm),
        COLUMN_LOOKUP(AlarmHasSignal),
        COLUMN_LOOKUP(AdditionalInfo), COLUMN_LOOKUP(ChamberTypeHasAdditionalInfo),
        COLUMN_LOOKUP(ChamberTypeHasProtocol), COLUMN_LOOKUP(ChamberTypeHasSignal), COLUMN_LOOKUP(ChamberType),
        COLUMN_LOOKUP(Controller), COLUMN_LOOKUP(ControllerData), COLUMN_LOOKUP(Protocol), COLUMN_LOOKUP(Signal),
        COLUMN_LOOKUP(ValueType), COLUMN_LOOKUP(ChamberTypeHasControlSignals), COLUMN_LOOKUP(ControlSignals),
        COLUMN_LOOKUP(ChamberTypeHasDataloggerSignal), COLUMN_LOOKUP(ChamberTypeHasOptions), COLUMN_LOOKUP(Options),
        COLUMN_LOOKUP(ChamberTypeHasTestSignal), COLUMN_LOOKUP(ChamberTypeHasToleranceRange),
        COLUMN_LOOKUP(DefaultToleranceRange), COLUMN_LOOKUP(ActivityAccess),
    };
    return lookups;
}

const QHash<QString, std::function<QString()>>& tableLookups()
{
    static const QHash<QString, std::function<QString()>> lookups = {
        TABLE_LOOKUP(Chamber), TABLE_LOOKUP(ChamberHasCustomSignalName), TABLE_LOOKUP(ChamberHasSignalDelay),
        TABLE_LOOKUP(ChamberHasSubscribedSignal), TABLE_LOOKUP(ToleranceRange), TABLE_LOOKUP(Program),
        TABLE_LOOKUP(ProgramStep), TABLE_LOOKUP(ProgramSection), TABLE_LOOKUP(ProgramSetpoint),
        TABLE_LOOKUP(ProgramStepRepetition), TABLE_LOOKUP(Recording), TABLE_LOOKUP(MetaRecordingHasRecording),
        TABLE_LOOKUP(Recordset), TABLE_LOOKUP(RecordsetComment), TABLE_LOOKUP(RecordingHasSignalColumn),
        TABLE_LOOKUP(User), TABLE_LOOKUP(UserHasSecurityQuestion), TABLE_LOOKUP(UserPreferences),
        TABLE_LOOKUP(UserHasChamberSignalVisibilityPreference), TABLE_LOOKUP(UserRecordingConfig),
        TABLE_LOOKUP(GlobalSettings), TABLE_LOOKUP(MailRecipient), TABLE_LOOKUP(ProtocolEntry),
        TABLE_LOOKUP(Room), TABLE_LOOKUP(RoomChamberPosition), TABLE_LOOKUP(Camera), TABLE_LOOKUP(Alarm),
        TABLE_LOOKUP(AlarmHasSignal),
        TABLE_LOOKUP(AdditionalInfo), TABLE_LOOKUP(ChamberTypeHasAdditionalInfo),
        TABLE_LOOKUP(ChamberTypeHasProtocol), TABLE_LOOKUP(ChamberTypeHasSignal), TABLE_LOOKUP(ChamberType),
        TABLE_LOOKUP(Controller), TABLE_LOOKUP(ControllerData), TABLE_LOOKUP(Protocol), TABLE_LOOKUP(Signal),
        TABLE_LOOKUP(ValueType), TABLE_LOOKUP(ChamberTypeHasControlSignals), TABLE_LOOKUP(ControlSignals),
        TABLE_LOOKUP(ChamberTypeHasDataloggerSignal), TABLE_LOOKUP(ChamberTypeHasOptions), TABLE_LOOKUP(Options),
        TABLE_LOOKUP(ChamberTypeHasTestSignal), TABLE_LOOKUP(ChamberTypeHasToleranceRange),
        TABLE_LOOKUP(DefaultToleranceRange), TABLE_LOOKUP(ActivityAccess),
    };
    return lookups;
}

// ---------------------------------------------------------------------------
// The names as the databases have them, written out by hand.

struct TableColumns
{
    QString lookup; // the <Table> of the lookup functions
    QString table;
    QStringList columns; // by enumerator number, from 0
};

const QList<TableColumns>& schema()
{
    static const QList<TableColumns> tables = {
        // Application database.
        {"Chamber", "chamber",
         {"id", "chamber_name", "chamber_type_id", "chamber_type_additional_info_id", "serial_no", "is_archived",
          "is_subscribed", "ip_v4_address", "ip_v6_address", "mac_address", "is_active", "modbus_address",
          "com_port", "baud_rate", "data_bits", "stop_bits", "parity", "protocol_id", "converter_id"}},
        {"ChamberHasCustomSignalName", "chamber_has_custom_signal_name", {"chamber_id", "signal_id", "signal_name"}},
        {"ChamberHasSignalDelay", "chamber_has_signal_delay",
         {"chamber_id", "signal_id", "delay1_in_seconds", "delay2_in_seconds"}},
        {"ChamberHasSubscribedSignal", "chamber_has_subscribed_signal", {"chamber_id", "signal_id"}},
        {"ToleranceRange", "tolerance_range",
         {"effective_from", "chamber_id", "signal_id", "range_type", "range_min", "range_max"}},
        {"Program", "program",
         {"id", "program_name", "user_id", "info_text", "program_type", "edited", "chamber_type_id"}},
        {"ProgramStep", "program_step",
         {"id", "program_id", "order_number", "step_type", "section_id", "sub_program_id"}},
        {"ProgramSection", "program_section",
         {"id", "duration_in_seconds", "transition_type", "breakpoint", "program_event_message"}},
        {"ProgramSetpoint", "program_setpoint",
         {"program_section_id", "signal_id", "setpoint", "tolerance_range_min", "tolerance_range_max"}},
        {"ProgramStepRepetition", "program_step_repetition",
         {"id", "program_id", "start_step_id", "end_step_id", "num_repetitions"}},
        // "Recording": bits, see recordingColumnNames().
        {"MetaRecordingHasRecording", "meta_recording_has_recording", {"meta_recording_id", "recording_id"}},
        {"Recordset", "record_set",
         {"id", "recording_id", "record_time", "signal_%1", "is_retrieved_from_chamber", "alarm_type",
          "camera_image_path", "chamber_mode"}},
        {"RecordsetComment", "record_set_comment", {"recordset_id", "user_id", "creation_time", "comment_text"}},
        {"RecordingHasSignalColumn", "recording_has_signal_column",
         {"recording_id", "signal_id", "recordset_signal_column"}},
        {"User", "application_user",
         {"id", "login_name", "mail_address", "first_name", "last_name", "password_hash", "password_salt",
          "password_creation_time", "password_expiration_time", "password_is_temporary",
          "number_failed_login_attempts", "number_failed_security_question_attempts", "is_banned", "is_deleted",
          "user_level"}},
        {"UserHasSecurityQuestion", "user_has_security_question",
         {"user_id", "question_id", "answer_hash", "answer_salt"}},
        {"UserPreferences", "user_preferences",
         {"user_id", "default_file_format", "localization", "time_format", "date_format", "decimal_format",
          "temperature_unit", "humidity_unit"}},
        {"UserHasChamberSignalVisibilityPreference", "user_has_chamber_signal_visibility_preference",
         {"user_id", "chamber_id", "signal_id", "position"}},
        {"UserRecordingConfig", "user_recording_config", {"user_id", "recording_id", "config"}},
        {"GlobalSettings", "global_settings",
         {"id", "event_do_repeat", "event_repetition_interval", "report_creation_interval", "report_language",
          "report_file_format", "report_file_prefix", "report_file_path", "report_header_logo_path",
          "report_header_logo_position", "report_header_title", "report_watermark_path", "report_enabled_chapters",
          "report_watermark_text", "base_password", "quick_recording_name_template",
          "quick_recording_seconds_interval", "resume_recordings_on_startup", "access_control_active",
          "security_questions_active", "password_validity_period", "screen_lock_timeout", "smtp_server",
          "smtp_port", "smtp_connection_type", "smtp_username", "smtp_password", "smtp_sender",
          "prealarm_seconds_delay", "backup_interval", "backup_time_of_day", "backup_day_of_x", "backup_path",
          "backup_password", "backup_keep_strategy", "backup_keep_num", "max_number_of_allowed_failed_logins",
          "zelmor_ip_address", "zelmor_port", "zelmor_num_connection_attempts", "zelmor_is_active",
          "sirenbox_ip_address", "sirenbox_port", "sirenbox_num_connection_attempts", "sirenbox_is_active"}},
        {"MailRecipient", "mail_recipient", {"id", "mail_address"}},
        {"ProtocolEntry", "log_entry",
         {"id", "creation_time", "user_id", "event_description", "num_args", "arg_%1"}},
        {"Room", "room", {"id", "room_name", "image_path", "image_scale"}},
        {"RoomChamberPosition", "room_chamber_position", {"chamber_id", "room_id", "chamber_pos_x", "chamber_pos_y"}},
        {"Camera", "camera",
         {"id", "ip_v4_address", "ip_v6_address", "usb_port", "recording_id", "recording_interval"}},
        {"Alarm", "application_alarm",
         {"id", "alarm_timestamp", "alarm_type", "is_active", "alarm_status", "user_id", "alarm_name",
          "short_description", "num_short_desc_args", "short_desc_arg_%1", "description", "chamber_id"}},
        {"AlarmHasSignal", "alarm_has_signal", {"alarm_id", "signal_id"}},
        // Configuration database.
        {"AdditionalInfo", "additional_info", {"id", "article_nr", "info"}},
        {"ChamberTypeHasAdditionalInfo", "chamber_type_has_additional_info", {"chamber_type_id", "additional_info_id"}},
        {"ChamberTypeHasProtocol", "chamber_type_has_protocol", {"chamber_type_id", "protocol_id"}},
        {"ChamberTypeHasSignal", "chamber_type_has_signal", {"chamber_type_id", "signal_id"}},
        {"ChamberType", "chamber_type",
         {"id", "type", "developement_state", "size", "voltage", "image", "description", "firmware_start",
          "firmware_ende", "setup_kennung", "setup_version_start", "setup_version_ende", "kennung_programme",
          "controller_id"}},
        {"Controller", "controller", {"id", "type"}},
        {"ControllerData", "controller_data",
         {"id", "address", "address_type", "variable_type", "access", "description", "controller_id",
          "set_point_nr", "comment"}},
        {"Protocol", "protocol", {"id", "type", "interface"}},
        {"Signal", "signal",
         {"id", "name", "read", "write_basic", "write_manual", "write_auto", "unit", "user_level", "limit_min",
          "limit_max", "bitposition", "signal_type", "value_type", "set_point_signal", "time_programmable",
          "week_programmable"}},
        {"ValueType", "value_type", {"id", "name", "decimal_places", "color"}},
        {"ChamberTypeHasControlSignals", "chamber_type_has_control_signals", {"chamber_type_id", "control_signals_id"}},
        {"ControlSignals", "control_signals", {"id", "name", "bitposition", "userlevel", "read", "write"}},
        {"ChamberTypeHasDataloggerSignal", "chamber_type_has_datalogger_signal",
         {"chamber_type_id", "datalogger_signal_id", "channel"}},
        {"ChamberTypeHasOptions", "chamber_type_has_options", {"chamber_type_id", "options_id"}},
        {"Options", "options", {"id", "name", "fix"}},
        {"ChamberTypeHasTestSignal", "chamber_type_has_test_signal", {"chamber_type_id", "test_signal_id"}},
        {"ChamberTypeHasToleranceRange", "chamber_type_has_tolerance_range", {"chamber_type_id", "tolerance_range_id"}},
        {"DefaultToleranceRange", "tolerance_range",
         {"id", "name", "set_point", "process_value", "range_min", "range_max", "delay1", "delay2"}},
        {"ActivityAccess", "activity_access", {"component_id", "activity_id", "min_user_level"}},
    };
    return tables;
}

const QList<QPair<int, QString>>& recordingColumnNames()
{
    static const QList<QPair<int, QString>> columns = {
        {1, "id"},
        {2, "recording_name"},
        {4, "chamber_id"},
        {8, "user_id"},
        {16, "seconds_interval"},
        {32, "start_time"},
        {64, "end_time"},
        {128, "is_active"},
        {256, "additional_info"},
        {512, "free_text"},
        {1024, "is_archived"},
        {2048, "automatically_create_report"},
        {16384, "is_start_reconding_allowed"},
        {32768, "number_of_recordsets"},
    };
    return columns;
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

QString tableNameOf(const QString& statement)
{
    return storedText(statement).section(QLatin1Char(' '), 2, 2);
}

// ---------------------------------------------------------------------------

// A connection that records the statements it runs and passes everything on.
class RecordingConnection : public ISqlConnection
{
public:
    explicit RecordingConnection(ISqlConnection& target)
        : target(target)
    {
    }

    ExecuteResult execute(const ISqlQuery& query) override
    {
        executed.append(query.getPreparedQueryString());
        return target.execute(query);
    }
    bool executeTransaction(const QList<QSharedPointer<ISqlQuery>>& queries) override
    {
        for (const QSharedPointer<ISqlQuery>& query : queries)
            executed.append(query ? query->getPreparedQueryString() : QString());
        return target.executeTransaction(queries);
    }
    QList<QList<QVariant>> fetch(const ISqlQuery& query) const override { return target.fetch(query); }
    void fetch(const ISqlQuery& query, std::function<void(QList<QVariant>, int)> callback) override
    {
        target.fetch(query, callback);
    }
    QList<QVariant> fetchSingleColumn(const ISqlQuery& query) const override { return target.fetchSingleColumn(query); }
    QList<QVariant> fetchSingleRow(const ISqlQuery& query) const override { return target.fetchSingleRow(query); }
    QVariant fetchSingleValue(const ISqlQuery& query) const override { return target.fetchSingleValue(query); }
    bool openDatabase(const QString& file, const QString& user, const QString& password, const QString& key) override
    {
        return target.openDatabase(file, user, password, key);
    }
    void closeDatabase() override { target.closeDatabase(); }
    bool emptyDatabase() override
    {
        executed.append(QStringLiteral("<emptyDatabase>"));
        return target.emptyDatabase();
    }
    bool containsTable(const QString& table) const override { return target.containsTable(table); }
    int getDatabaseVersionInfo() override { return target.getDatabaseVersionInfo(); }
    void error(DatabaseConnectionError) const override {}

    QStringList executed;

private:
    ISqlConnection& target;
};

QString uniqueConnectionName()
{
    static int count = 0;
    return QStringLiteral("tst_databaseconnection_%1").arg(++count);
}

QString versionTable(int version)
{
    return QStringLiteral("CREATE TABLE database_version_info(version INTEGER); "
                          "INSERT INTO database_version_info VALUES (%1);")
        .arg(version);
}

// The tables the catalogue store requires, empty.
const QString catalogueTables = QStringLiteral(
    "CREATE TABLE additional_info(id INTEGER); CREATE TABLE chamber_type_has_additional_info(chamber_type_id INTEGER); "
    "CREATE TABLE chamber_type_has_protocol(chamber_type_id INTEGER); "
    "CREATE TABLE chamber_type_has_signal(chamber_type_id INTEGER); CREATE TABLE chamber_type(id INTEGER); "
    "CREATE TABLE controller(id INTEGER); CREATE TABLE controller_data(id INTEGER); "
    "CREATE TABLE protocol(id INTEGER); CREATE TABLE signal(id INTEGER); CREATE TABLE value_type(id INTEGER);");

// The delivered schema of the catalogue with one chamber type of one signal.
QString smallCatalogue()
{
    QFile schema(zelmor::testsupport::sourceDir() + QStringLiteral("/database/schema.sql"));
    if (!schema.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(schema.readAll())
        + QStringLiteral("INSERT INTO controller (id, type) VALUES (1, 'TLX');"
                         "INSERT INTO chamber_type (id, type, developement_state, size, controller_id) "
                         "VALUES (5, 'HX', 'Z6', 60, 1);"
                         "INSERT INTO signal (id, name, unit) VALUES (7, 'Temperature', '% r.F.');"
                         "INSERT INTO chamber_type_has_signal (chamber_type_id, signal_id) VALUES (5, 7);");
}

QList<int> codesOf(const QSignalSpy& spy)
{
    QList<int> codes;
    for (const QList<QVariant>& arguments : spy)
        codes.append(int(arguments.at(0).value<DatabaseConnectionError>()));
    return codes;
}

} // namespace

// ---------------------------------------------------------------------------

class TestDatabaseConnection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void tableNames_data();
    void tableNames();
    void columnNames_data();
    void columnNames();
    void everyLookupIsCovered();
    void unknownEnumeratorStopsTheProgram_data();
    void unknownEnumeratorStopsTheProgram();
    void textMaps_data();
    void textMaps();
    void int10TypeIsRegisteredBeforeUse();
    void signalColumnCount();

    void createTable_data();
    void createTable();
    void secondCreateRunsNoStatement();
    void existingTableIsLeftAsItIs();
    void failedCreationIsReported();

    void initializeChecksVersion_data();
    void initializeChecksVersion();
    void secondInitializeChangesNothing();
    void initializeStopsAtFailedTable();

    void setDependencies_data();
    void setDependencies();
    void withoutDependencies();

    void catalogueWithoutInitialize();
    void catalogueWithoutConnection_data();
    void catalogueWithoutConnection();
    void initializeNeedsTheCatalogue();
    void storeErrorsArePassedOnOnce();

private:
    struct Databases
    {
        std::unique_ptr<SqliteConnection> application;
        std::unique_ptr<SqliteConnection> configuration;
        std::unique_ptr<RecordingConnection> recorder;
        QString applicationPath;
    };
    // Encrypted files made by the sqlcipher shell, opened through SqliteConnection.
    bool open(Databases& databases, const QString& applicationSql,
              const QString& configurationSql = catalogueTables);
    static QStringList tablesOf(const QString& path);

    TestDatabase files;
};

void TestDatabaseConnection::initTestCase()
{
    qRegisterMetaType<DatabaseConnectionError>();
    QVERIFY(files.isValid());
}

bool TestDatabaseConnection::open(Databases& databases, const QString& applicationSql,
                                  const QString& configurationSql)
{
    static int count = 0;
    ++count;
    const QString application = files.createEncrypted(QStringLiteral("application%1.db").arg(count), applicationSql);
    const QString configuration = files.createEncrypted(QStringLiteral("configuration%1.db").arg(count), configurationSql);
    if (application.isEmpty() || configuration.isEmpty()) {
        qWarning() << files.lastError();
        return false;
    }
    databases.application = std::make_unique<SqliteConnection>(uniqueConnectionName());
    databases.configuration = std::make_unique<SqliteConnection>(uniqueConnectionName());
    databases.recorder = std::make_unique<RecordingConnection>(*databases.application);
    databases.applicationPath = application;
    return databases.application->openDatabase(application, QString(), QString(), projectKey)
        && databases.configuration->openDatabase(configuration, QString(), QString(), projectKey);
}

QStringList TestDatabaseConnection::tablesOf(const QString& path)
{
    const TestDatabase::ShellResult result = TestDatabase::runSqlcipher(
        path, projectKey, QStringLiteral("SELECT name || ': ' || sql FROM sqlite_master WHERE type = 'table' ORDER BY rowid;"));
    if (!result.ok)
        return {QStringLiteral("<failed: %1>").arg(result.errorOutput)};
    return result.output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

// ---------------------------------------------------------------------------

void TestDatabaseConnection::tableNames_data()
{
    QTest::addColumn<QString>("lookup");
    QTest::addColumn<QString>("table");
    for (const TableColumns& entry : schema())
        QTest::newRow(qPrintable(entry.lookup)) << entry.lookup << entry.table;
    QTest::newRow("Recording") << "Recording" << "recording";
}

void TestDatabaseConnection::tableNames()
{
    QFETCH(QString, lookup);
    QFETCH(QString, table);
    QVERIFY(tableLookups().contains(lookup));
    QCOMPARE(tableLookups().value(lookup)(), table);
}

void TestDatabaseConnection::columnNames_data()
{
    QTest::addColumn<QString>("lookup");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("column");
    for (const TableColumns& entry : schema()) {
        for (int value = 0; value < entry.columns.size(); ++value) {
            QTest::addRow("%s %d", qPrintable(entry.lookup), value) << entry.lookup << value << entry.columns.at(value);
        }
    }
    for (const auto& column : recordingColumnNames())
        QTest::addRow("Recording %d", column.first) << "Recording" << column.first << column.second;
}

void TestDatabaseConnection::columnNames()
{
    QFETCH(QString, lookup);
    QFETCH(int, value);
    QFETCH(QString, column);
    QVERIFY(columnLookups().contains(lookup));
    QCOMPARE(columnLookups().value(lookup)(value), column);
}

void TestDatabaseConnection::everyLookupIsCovered()
{
    // The hand-written schema names every lookup once, and nothing else.
    QStringList named{QStringLiteral("Recording")};
    for (const TableColumns& entry : schema())
        named.append(entry.lookup);
    QStringList tables = tableLookups().keys();
    QStringList columns = columnLookups().keys();
    named.sort();
    tables.sort();
    columns.sort();
    QCOMPARE(named.size(), 47);
    QCOMPARE(tables, named);
    QCOMPARE(columns, named);
}

void TestDatabaseConnection::unknownEnumeratorStopsTheProgram_data()
{
    QTest::addColumn<QString>("lookup");
    QTest::addColumn<int>("value");
    QTest::addColumn<bool>("stops");
    QTest::addColumn<QString>("output");

    // Shows that the child answers when nothing is wrong.
    QTest::newRow("Recording 64") << "Recording" << 64 << false << "end_time";
    QTest::newRow("Signal 15") << "Signal" << 15 << false << "week_programmable";

    // The first number past each table; below the first, a few.
    for (const TableColumns& entry : schema()) {
        QTest::addRow("%s %d", qPrintable(entry.lookup), int(entry.columns.size()))
            << entry.lookup << int(entry.columns.size()) << true << "";
    }
    QTest::newRow("Chamber -1") << "Chamber" << -1 << true << "";
    QTest::newRow("GlobalSettings -1") << "GlobalSettings" << -1 << true << "";
    QTest::newRow("DefaultToleranceRange -1") << "DefaultToleranceRange" << -1 << true << "";
    // The gaps and combinations of the bits.
    QTest::newRow("Recording 0") << "Recording" << 0 << true << "";
    QTest::newRow("Recording 3") << "Recording" << 3 << true << "";
    QTest::newRow("Recording 4096") << "Recording" << 4096 << true << "";
    QTest::newRow("Recording 8192") << "Recording" << 8192 << true << "";
    QTest::newRow("Recording 65536") << "Recording" << 65536 << true << "";
}

void TestDatabaseConnection::unknownEnumeratorStopsTheProgram()
{
    QFETCH(QString, lookup);
    QFETCH(int, value);
    QFETCH(bool, stops);
    QFETCH(QString, output);

    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(childSwitch), lookup, QString::number(value)});
    QVERIFY2(child.waitForFinished(30000), qPrintable(child.errorString()));
    const QString standardError = QString::fromUtf8(child.readAllStandardError());
    if (stops) {
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        QVERIFY2(standardError.contains(QLatin1String("ASSERT: \"false\" in file")), qPrintable(standardError));
        QVERIFY2(standardError.contains(QLatin1String("DatabaseSchema")), qPrintable(standardError));
    } else {
        QCOMPARE(child.exitStatus(), QProcess::NormalExit);
        QCOMPARE(child.exitCode(), 0);
        QCOMPARE(standardError, QString());
    }
    QCOMPARE(QString::fromUtf8(child.readAllStandardOutput()), output);
}

void TestDatabaseConnection::textMaps_data()
{
    QTest::addColumn<QString>("map");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("number");

    QTest::newRow("signal type process_value") << "signalType" << "process_value" << 0;
    QTest::newRow("signal type set_point") << "signalType" << "set_point" << 1;
    QTest::newRow("signal type set_point_process_value") << "signalType" << "set_point_process_value" << 2;
    QTest::newRow("signal type empty") << "signalType" << "" << 3;
    QTest::newRow("signal type unknown") << "signalType" << "setpoint" << 0;
    QTest::newRow("signal type other case") << "signalType" << "SET_POINT" << 0;

    QTest::newRow("access RO") << "access" << "RO" << 0;
    QTest::newRow("access WO") << "access" << "WO" << 1;
    QTest::newRow("access RW") << "access" << "RW" << 2;
    QTest::newRow("access empty") << "access" << "" << 3;
    QTest::newRow("access unknown") << "access" << "R" << 0;
    QTest::newRow("access other case") << "access" << "rw" << 0;

    QTest::newRow("variable BOOL") << "variableType" << "BOOL" << 1;
    QTest::newRow("variable CHAR") << "variableType" << "CHAR" << 34;
    QTest::newRow("variable FLOAT") << "variableType" << "FLOAT" << 38;
    QTest::newRow("variable INT8") << "variableType" << "INT8" << 2;
    QTest::newRow("variable INT16") << "variableType" << "INT16" << 33;
    QTest::newRow("variable INT32") << "variableType" << "INT32" << 2;
    QTest::newRow("variable TIME") << "variableType" << "TIME" << 15;
    QTest::newRow("variable UINT8") << "variableType" << "UINT8" << 37;
    QTest::newRow("variable UINT16") << "variableType" << "UINT16" << 36;
    QTest::newRow("variable UINT32") << "variableType" << "UINT32" << 3;
    QTest::newRow("variable unknown") << "variableType" << "DOUBLE" << 0;
    QTest::newRow("variable empty") << "variableType" << "" << 0;
    QTest::newRow("variable with array size") << "variableType" << "UINT16[4]" << 0;
}

void TestDatabaseConnection::textMaps()
{
    QFETCH(QString, map);
    QFETCH(QString, text);
    QFETCH(int, number);
    int found = -1;
    if (map == QLatin1String("signalType"))
        found = DatabaseConnection::signalTypeMap.value(text);
    else if (map == QLatin1String("access"))
        found = DatabaseConnection::accessMap.value(text);
    else
        found = DatabaseConnection::variableTypeMap.value(text);
    QCOMPARE(found, number);
}

void TestDatabaseConnection::int10TypeIsRegisteredBeforeUse()
{
    // Nothing in this program registers the type but the map's filling.
    const int registered = QMetaType::type("zelmor::domain::types::Int10");
    QVERIFY(registered >= QMetaType::User);
    QCOMPARE(int(DatabaseConnection::variableTypeMap.value(QStringLiteral("INT10"))), registered);
    QCOMPARE(DatabaseConnection::variableTypeMap.size(), 11);
}

void TestDatabaseConnection::signalColumnCount()
{
    QCOMPARE(DatabaseConnection::nSignalsMax(), 48);
    QCOMPARE(databaseSchemaVersionNumber, 19);
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

    Databases databases;
    QVERIFY(open(databases, QString()));
    DatabaseConnection facade(false, nullptr);
    QVERIFY(facade.setDependencies(databases.recorder.get(), databases.configuration.get()));
    QSignalSpy errors(&facade, &DatabaseConnection::error);

    QVERIFY((facade.*create)());
    QCOMPARE(databases.recorder->executed, statements);
    QCOMPARE(errors.count(), 0);

    // The engine took each statement as it stands.
    QStringList expected;
    for (const QString& statement : statements)
        expected.append(tableNameOf(statement) + QStringLiteral(": ") + storedText(statement));
    QCOMPARE(tablesOf(databases.applicationPath), expected);
}

void TestDatabaseConnection::secondCreateRunsNoStatement()
{
    Databases databases;
    QVERIFY(open(databases, QString()));
    DatabaseConnection facade(false, nullptr);
    QVERIFY(facade.setDependencies(databases.recorder.get(), databases.configuration.get()));

    QVERIFY(facade.createTableChamber());
    QCOMPARE(databases.recorder->executed.size(), 1);
    QVERIFY(facade.createTableChamber());
    QCOMPARE(databases.recorder->executed.size(), 1);
    // A table whose references exist runs its own statement only.
    QVERIFY(facade.createTableToleranceRange());
    QCOMPARE(databases.recorder->executed, (QStringList{chamberStatement, toleranceRangeStatement}));
}

void TestDatabaseConnection::existingTableIsLeftAsItIs()
{
    Databases databases;
    QVERIFY(open(databases, QStringLiteral("CREATE TABLE chamber(x TEXT); INSERT INTO chamber VALUES ('kept');")));
    DatabaseConnection facade(false, nullptr);
    QVERIFY(facade.setDependencies(databases.recorder.get(), databases.configuration.get()));

    QVERIFY(facade.createTableChamber());
    QCOMPARE(databases.recorder->executed, QStringList());
    QCOMPARE(tablesOf(databases.applicationPath), QStringList{"chamber: CREATE TABLE chamber(x TEXT)"});
    const TestDatabase::ShellResult rows =
        TestDatabase::runSqlcipher(databases.applicationPath, projectKey, QStringLiteral("SELECT x FROM chamber;"));
    QCOMPARE(rows.output, QStringLiteral("kept\n"));
}

void TestDatabaseConnection::failedCreationIsReported()
{
    // An index of the table's name: the table isn't there, and the statement fails.
    Databases databases;
    QVERIFY(open(databases, QStringLiteral("CREATE TABLE other(a INTEGER); CREATE INDEX chamber ON other(a);")));
    DatabaseConnection facade(false, nullptr);
    QVERIFY(facade.setDependencies(databases.recorder.get(), databases.configuration.get()));
    QSignalSpy errors(&facade, &DatabaseConnection::error);

    LogCapture log(category);
    QVERIFY(!facade.createTableRoomChamberPosition());
    QCOMPARE(log.texts(), (QStringList{"critical: Could not create table 'chamber'",
                                       "critical: Missing reference table. Can't create 'room_chamber_position'"}));
    // The second reference isn't tried once the first has failed.
    QCOMPARE(databases.recorder->executed, QStringList{chamberStatement});
    QCOMPARE(tablesOf(databases.applicationPath), QStringList{"other: CREATE TABLE other(a INTEGER)"});
    // The facade passes on only the stores' errors.
    QCOMPARE(errors.count(), 0);
}

// ---------------------------------------------------------------------------

void TestDatabaseConnection::initializeChecksVersion_data()
{
    QTest::addColumn<QString>("sql");
    QTest::addColumn<bool>("passes");

    QTest::newRow("no version table") << QStringLiteral("CREATE TABLE unrelated(a INTEGER);") << false;
    QTest::newRow("empty version table") << QStringLiteral("CREATE TABLE database_version_info(version INTEGER);")
                                         << false;
    QTest::newRow("18") << versionTable(18) << false;
    QTest::newRow("19") << versionTable(19) << true;
    QTest::newRow("20") << versionTable(20) << true;
    QTest::newRow("17 and 19") << versionTable(17) + QStringLiteral("INSERT INTO database_version_info VALUES (19);")
                               << true;
}

void TestDatabaseConnection::initializeChecksVersion()
{
    QFETCH(QString, sql);
    QFETCH(bool, passes);

    Databases databases;
    QVERIFY(open(databases, sql));
    const QStringList before = tablesOf(databases.applicationPath);
    DatabaseConnection facade(false, nullptr);
    QVERIFY(facade.setDependencies(databases.recorder.get(), databases.configuration.get()));
    QSignalSpy errors(&facade, &DatabaseConnection::error);

    QCOMPARE(facade.initialize(), passes);
    QCOMPARE(facade.isDatabaseVersionWrong(), !passes);
    QCOMPARE(errors.count(), 0);
    if (!passes) {
        QCOMPARE(databases.recorder->executed, QStringList());
        QCOMPARE(tablesOf(databases.applicationPath), before);
        return;
    }
    // In the order of initialize, each table after those it references.
    const QStringList statements{chamberStatement,
                                 globalSettingsStatement,
                                 userStatement,
                                 recordingStatement,
                                 metaRecordingStatement,
                                 logEntryStatement,
                                 recordsetStatement(),
                                 recordsetCommentStatement,
                                 toleranceRangeStatement,
                                 roomStatement,
                                 roomChamberPositionStatement,
                                 visibilityStatement,
                                 userPreferencesStatement};
    QCOMPARE(databases.recorder->executed, statements);
    QStringList expected = before;
    for (const QString& statement : statements)
        expected.append(tableNameOf(statement) + QStringLiteral(": ") + storedText(statement));
    QCOMPARE(tablesOf(databases.applicationPath), expected);
}

void TestDatabaseConnection::secondInitializeChangesNothing()
{
    Databases databases;
    QVERIFY(open(databases, versionTable(19)));
    DatabaseConnection facade(false, nullptr);
    QVERIFY(facade.setDependencies(databases.recorder.get(), databases.configuration.get()));
    QVERIFY(facade.initialize());
    const TestDatabase::ShellResult filled = TestDatabase::runSqlcipher(
        databases.applicationPath, projectKey,
        QStringLiteral("INSERT INTO chamber (id, chamber_name) VALUES (7, 'C7');"
                       "INSERT INTO room (id, room_name) VALUES (2, 'Lab');"));
    QVERIFY2(filled.ok, qPrintable(filled.errorOutput));
    const TestDatabase::ShellResult before =
        TestDatabase::runSqlcipher(databases.applicationPath, projectKey, QStringLiteral(".dump"));
    QVERIFY(before.ok);
    databases.recorder->executed.clear();

    QVERIFY(facade.initialize());
    QCOMPARE(databases.recorder->executed, QStringList());
    QVERIFY(!facade.isDatabaseVersionWrong());
    const TestDatabase::ShellResult after =
        TestDatabase::runSqlcipher(databases.applicationPath, projectKey, QStringLiteral(".dump"));
    QCOMPARE(after.output, before.output);
    QVERIFY(after.output.contains(QLatin1String("'C7'")));
}

void TestDatabaseConnection::initializeStopsAtFailedTable()
{
    // "application_user" can't be made: the third table of the list needs it
    // through "recording", and nothing after it is tried.
    Databases databases;
    QVERIFY(open(databases,
                 versionTable(19) + QStringLiteral("CREATE TABLE other(a INTEGER); CREATE INDEX application_user ON other(a);")));
    DatabaseConnection facade(false, nullptr);
    QVERIFY(facade.setDependencies(databases.recorder.get(), databases.configuration.get()));

    LogCapture log(category);
    QVERIFY(!facade.initialize());
    QVERIFY(!facade.isDatabaseVersionWrong());
    QCOMPARE(log.texts(),
             (QStringList{"critical: Could not create table 'application_user'",
                          "critical: Missing reference table. Can't create 'recording'",
                          "critical: Missing reference table. Can't create 'meta_recording_has_recording'"}));
    QCOMPARE(databases.recorder->executed, (QStringList{chamberStatement, globalSettingsStatement, userStatement}));
}

// ---------------------------------------------------------------------------

void TestDatabaseConnection::setDependencies_data()
{
    QTest::addColumn<bool>("withApplication");
    QTest::addColumn<bool>("withConfiguration");

    QTest::newRow("both") << true << true;
    QTest::newRow("no configuration database") << true << false;
    QTest::newRow("no application database") << false << true;
    QTest::newRow("neither") << false << false;
}

void TestDatabaseConnection::setDependencies()
{
    QFETCH(bool, withApplication);
    QFETCH(bool, withConfiguration);

    Databases databases;
    QVERIFY(open(databases, versionTable(19)));
    DatabaseConnection facade(false, nullptr);
    QSignalSpy errors(&facade, &DatabaseConnection::error);
    const bool both = withApplication && withConfiguration;

    QCOMPARE(facade.setDependencies(withApplication ? databases.recorder.get() : nullptr,
                                    withConfiguration ? databases.configuration.get() : nullptr),
             both);
    QCOMPARE(facade.areDependenciesSet(), both);
    // Without both, nothing reaches a database.
    QCOMPARE(facade.createTableRoom(), both);
    QCOMPARE(databases.recorder->executed, both ? QStringList{roomStatement} : QStringList());
    QCOMPARE(codesOf(errors), both ? QList<int>() : QList<int>{0});
}

void TestDatabaseConnection::withoutDependencies()
{
    DatabaseConnection facade(false, nullptr);
    QSignalSpy errors(&facade, &DatabaseConnection::error);
    QVERIFY(!facade.areDependenciesSet());
    QVERIFY(!facade.initialize());
    QVERIFY(!facade.isDatabaseVersionWrong());
    QVERIFY(!facade.createTableRecording());
    QCOMPARE(codesOf(errors), (QList<int>{0, 0}));
}

// ---------------------------------------------------------------------------

void TestDatabaseConnection::catalogueWithoutInitialize()
{
    // As the simulator does it: dependencies set, no initialize.
    Databases databases;
    QVERIFY(open(databases, QString(), smallCatalogue()));
    DatabaseConnection facade(false, nullptr);
    QVERIFY(facade.setDependencies(databases.recorder.get(), databases.configuration.get()));
    QSignalSpy errors(&facade, &DatabaseConnection::error);

    const QList<ChamberTypeData> types = facade.getAllChamberTypeData(false);
    QCOMPARE(types.size(), 1);
    QCOMPARE(types.at(0).chamberTypeId.typeId, quint64(5));
    QCOMPARE(types.at(0).getQualifiedTypeName(), QStringLiteral("HX 60 Z6"));
    QCOMPARE(types.at(0).controller, QStringLiteral("TLX"));
    QVERIFY(types.at(0).chamberSignals.isEmpty());

    const QMap<int, zelmor::domain::types::ChamberSignal> signalsOfType = facade.getChamberSignals(ChamberTypeId(5, 0));
    QCOMPARE(signalsOfType.keys(), QList<int>{7});
    QCOMPARE(signalsOfType.value(7).name, QStringLiteral("Temperature"));
    QCOMPARE(facade.getSignalUnitId(7), Unit::RELATIVE_HUMIDITY_RF);
    QCOMPARE(errors.count(), 0);

    // The store's own report reaches the facade's signal.
    QVERIFY(facade.getChamberSignal(999).isNull());
    QCOMPARE(codesOf(errors), QList<int>{8});
    // Nothing touched the application database.
    QCOMPARE(databases.recorder->executed, QStringList());
}

void TestDatabaseConnection::catalogueWithoutConnection_data()
{
    QTest::addColumn<bool>("callSetDependencies");

    QTest::newRow("never set") << false;
    QTest::newRow("configuration database null") << true;
}

void TestDatabaseConnection::catalogueWithoutConnection()
{
    QFETCH(bool, callSetDependencies);

    Databases databases;
    QVERIFY(open(databases, QString(), smallCatalogue()));
    DatabaseConnection facade(false, nullptr);
    QSignalSpy errors(&facade, &DatabaseConnection::error);
    if (callSetDependencies)
        QVERIFY(!facade.setDependencies(databases.recorder.get(), nullptr));

    QVERIFY(facade.getAllChamberTypeData(false).isEmpty());
    QCOMPARE(facade.getChamberSignals(ChamberTypeId(5, 0)).size(), 0);
    QCOMPARE(codesOf(errors), (QList<int>{0, 0}));
}

void TestDatabaseConnection::initializeNeedsTheCatalogue()
{
    // The catalogue without its "signal" table: the application tables are
    // made all the same, then the catalogue store refuses.
    QString withoutSignal = catalogueTables;
    withoutSignal.remove(QStringLiteral("CREATE TABLE signal(id INTEGER); "));
    QVERIFY(withoutSignal != catalogueTables);
    Databases databases;
    QVERIFY(open(databases, versionTable(19), withoutSignal));
    DatabaseConnection facade(false, nullptr);
    QVERIFY(facade.setDependencies(databases.recorder.get(), databases.configuration.get()));
    QSignalSpy errors(&facade, &DatabaseConnection::error);

    QVERIFY(!facade.initialize());
    QVERIFY(!facade.isDatabaseVersionWrong());
    QCOMPARE(codesOf(errors), QList<int>{4});
    QCOMPARE(databases.recorder->executed.size(), 13);
}

void TestDatabaseConnection::storeErrorsArePassedOnOnce()
{
    Databases databases;
    QVERIFY(open(databases, versionTable(19), smallCatalogue()));
    DatabaseConnection facade(false, nullptr);
    QVERIFY(facade.setDependencies(databases.recorder.get(), databases.configuration.get()));
    QVERIFY(facade.initialize());
    QVERIFY(facade.initialize());
    QSignalSpy errors(&facade, &DatabaseConnection::error);

    QVERIFY(facade.getChamberSignal(999).isNull());
    QCOMPARE(codesOf(errors), QList<int>{8});
}

// ---------------------------------------------------------------------------

int main(int argc, char** argv)
{
    // Child mode: run one column lookup and print its text, or stop on the assertion.
    if (argc == 4 && qstrcmp(argv[1], childSwitch) == 0) {
        const rlimit noCoreFile{0, 0};
        setrlimit(RLIMIT_CORE, &noCoreFile);
        const auto lookup = columnLookups().value(QString::fromLatin1(argv[2]));
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
