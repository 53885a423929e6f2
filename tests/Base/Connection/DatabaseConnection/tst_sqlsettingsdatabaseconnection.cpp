#include "Base/Connection/DatabaseConnection/SqlSettingsDatabaseConnection.h"
#include "Domain/Types/BackupCleanupSettings.h"
#include "Domain/Types/BackupScheduleConfiguration.h"
#include "Domain/Types/ReportConfiguration.h"
#include "Domain/Types/SirenBoxNetworkConfiguration.h"
#include "Domain/Types/SmtpConfiguration.h"
#include "Domain/Types/ZelmorNetworkConfiguration.h"
#include "support/SampleCatalogue.h"
#include "support/StoreFixture.h"
#include "support/TestDatabase.h"

#include <QLoggingCategory>
#include <QtTest>

#include <functional>

using zelmor::base::connection::databaseconnection::SqlSettingsDatabaseConnection;
using zelmor::testsupport::errorCodes;
using zelmor::testsupport::TestDatabase;
using namespace zelmor::domain::types;

using Store = SqlSettingsDatabaseConnection;
using Fixture = zelmor::testsupport::StoreFixture<Store>;
using Failures = zelmor::testsupport::FailureTable<Store>;
using Operation = Failures::Operation;
using Write = std::function<bool(Store&)>;
Q_DECLARE_METATYPE(Operation)
Q_DECLARE_METATYPE(Write)

namespace {

QString summary(const SmtpConfiguration& c)
{
    return QStringLiteral("%1:%2 type %3 %4/%5 from %6")
        .arg(c.server)
        .arg(c.port)
        .arg(c.connectionType)
        .arg(c.username, c.password, c.sender);
}

QString summary(const ReportConfiguration& c)
{
    return QStringLiteral("interval %1 language %2 format %3 '%4' '%5' logo '%6' at %7 '%8' mark '%9'")
               .arg(c.interval)
               .arg(c.language)
               .arg(c.fileFormat)
               .arg(c.filePrefix, c.filePath, c.headerLogoPath)
               .arg(c.headerLogoPosition)
               .arg(c.headerTitle, c.watermarkPath)
           + QStringLiteral(" chapters %1 '%2'").arg(c.enabledChapters).arg(c.watermarkText);
}

QString summary(const BackupScheduleConfiguration& c)
{
    return QStringLiteral("at '%1' interval %2 day %3 '%4' '%5'")
        .arg(c.time.toString(Qt::ISODate))
        .arg(c.interval)
        .arg(c.dayOfX)
        .arg(c.path, c.password);
}

QString summary(const BackupCleanupSettings& c)
{
    return QStringLiteral("keep %1 %2").arg(c.keepStrategy).arg(c.numberToKeep);
}

template<typename Configuration>
QString address(const Configuration& c)
{
    return QStringLiteral("'%1' port %2").arg(c.address.toString()).arg(c.port);
}

// Every setting as one text, in the order of the getters.
QString allSettings(Store& s)
{
    return QStringList{
        s.getQuickRecordingNameTemplate(),
        QString::number(s.getQuickRecordingSecondsInterval()),
        QString::number(s.isRecordingResumptionOnStartupEnabled()),
        QString::number(s.isAccessControlActive()),
        QString::number(s.areSecurityQuestionsActive()),
        QString::number(s.getPasswordValidityPeriod()),
        QString::number(s.getScreenLockTimeout()),
        summary(s.getSmtpConfiguration()),
        summary(s.getReportConfiguration()),
        QString::number(s.isAlarmRepetitionEnabled()),
        QString::number(s.getAlarmRepetitionIntervalInSeconds()),
        QString::number(s.getPreAlarmDelayInSeconds()),
        summary(s.getBackupScheduleConfiguration()),
        summary(s.getBackupCleanupSettings()),
        QString::number(s.getAllowedNumberOfFailedLogins()),
        address(s.getZelmorNetworkConfiguration()),
        QString::number(s.getZelmorNumConnectionAttempts()),
        QString::number(s.isZelmorConnectionActive()),
        address(s.getSirenBoxNetworkConfiguration()),
        QString::number(s.getSirenBoxNumConnectionAttempts()),
        QString::number(s.isSirenBoxActive()),
    }
        .join(QStringLiteral(" | "));
}

// The defaults, as a new row reads.
const QStringList defaults = {
    "RECORDING_%USERNAME%_%DATE%_%TIME%",
    "60",
    "0",
    "1",
    "0",
    "30",
    "0",
    ":0 type -1 / from ",
    "interval -1 language -1 format -1 '' '' logo '' at -1 '' mark '' chapters -1 ''",
    "1",
    "0",
    "0",
    "at '' interval 0 day 0 '' ''",
    "keep 0 0",
    "3",
    "'' port 22392",
    "2",
    "0",
    "'' port 0",
    "2",
    "0",
};

} // namespace

class TestSqlSettingsDatabaseConnection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void newRow();
    void databaseMadeByInitialize();
    void writes_data();
    void writes();
    void mailRecipients();
    void badInput_data();
    void badInput();

private:
    zelmor::testsupport::ApplicationFiles files{QString()};
};

void TestSqlSettingsDatabaseConnection::initTestCase()
{
    qRegisterMetaType<DatabaseConnectionError>();
    QLoggingCategory::setFilterRules(QStringLiteral("zelmor.*=false"));
    QVERIFY(files.isValid());
}

void TestSqlSettingsDatabaseConnection::newRow()
{
    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    QCOMPARE(files.shell(path, "SELECT count(*) FROM global_settings;"), QStringLiteral("0"));
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    // initialize makes the row, all but its id NULL, and the getters read the defaults.
    QVERIFY(store.initialize());
    QCOMPARE(files.shell(path, "SELECT * FROM global_settings;"), QStringLiteral("1") + QString(44, QLatin1Char('|')));
    QCOMPARE(allSettings(store), defaults.join(QStringLiteral(" | ")));

    // A second initialize leaves the row as it stands.
    QVERIFY(store.setQuickRecordingSecondsInterval(15));
    QVERIFY(store.setZelmorNetworkConfiguration(ZelmorNetworkConfiguration(QHostAddress("10.0.0.2"), 0)));
    const QString row = files.shell(path, "SELECT * FROM global_settings;");
    QVERIFY(store.initialize());
    QCOMPARE(files.shell(path, "SELECT * FROM global_settings;"), row);
    QCOMPARE(store.getQuickRecordingSecondsInterval(), 15);
    QCOMPARE(errors.count(), 0);
}

// The older settings table of the creation function: the row is made as in a
// delivered database, the settings it has work, those it lacks read their
// defaults and can't be written.
void TestSqlSettingsDatabaseConnection::databaseMadeByInitialize()
{
    const QString path = zelmor::testsupport::createByInitialize(files.database(), QStringLiteral("created.sqlite3"));
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened);
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    QVERIFY(store.initialize());
    QCOMPARE(files.shell(path, "SELECT * FROM global_settings;"), QStringLiteral("1|||||||"));
    QCOMPARE(store.getQuickRecordingSecondsInterval(), 60);
    QCOMPARE(store.getAllowedNumberOfFailedLogins(), 3);
    QVERIFY(store.setQuickRecordingSecondsInterval(20));
    QCOMPARE(store.getQuickRecordingSecondsInterval(), 20);
    QVERIFY(!store.setAllowedNumberOfFailedLogins(9));
    QCOMPARE(store.getAllowedNumberOfFailedLogins(), 3);
    QCOMPARE(files.shell(path, "SELECT * FROM global_settings;"), QStringLiteral("1||||||20|"));
    QCOMPARE(errors.count(), 0);
}

void TestSqlSettingsDatabaseConnection::writes_data()
{
    QTest::addColumn<Write>("write");
    QTest::addColumn<int>("setting"); // its place in allSettings
    QTest::addColumn<QString>("read");
    QTest::addColumn<QString>("columns"); // the columns written, as the shell reads them
    QTest::addColumn<QString>("stored");

    const auto row = [](const char* tag, const Write& write, int setting, const char* read, const char* columns,
                        const char* stored) {
        QTest::newRow(tag) << write << setting << QString(read) << QString(columns) << QString(stored);
    };
    row(
        "name template", [](Store& s) { return s.setQuickRecordingNameTemplate("Q_%DATE%"); }, 0, "Q_%DATE%",
        "quick_recording_name_template", "'Q_%DATE%'");
    // An empty text is NULL, which reads as the default.
    row(
        "empty name template", [](Store& s) { return s.setQuickRecordingNameTemplate(""); }, 0,
        "RECORDING_%USERNAME%_%DATE%_%TIME%", "quick_recording_name_template", "NULL");
    row(
        "seconds interval", [](Store& s) { return s.setQuickRecordingSecondsInterval(5); }, 1, "5",
        "quick_recording_seconds_interval", "5");
    row(
        "resumption", [](Store& s) { return s.setRecordingResumptionOnStartupEnabled(true); }, 2, "1",
        "resume_recordings_on_startup", "1");
    row(
        "access control off", [](Store& s) { return s.setAccessControlActive(false); }, 3, "0", "access_control_active",
        "0");
    row(
        "security questions", [](Store& s) { return s.setSecurityQuestionsActive(true); }, 4, "1",
        "security_questions_active", "1");
    row(
        "password validity", [](Store& s) { return s.setPasswordValidityPeriod(90); }, 5, "90",
        "password_validity_period", "90");
    row(
        "screen lock", [](Store& s) { return s.setScreenLockTimeout(300); }, 6, "300", "screen_lock_timeout", "300");
    row(
        "mail server",
        [](Store& s) { return s.setSmtpConfiguration(SmtpConfiguration("smtp.lab", 587, 2, "lab", "pw", "")); }, 7,
        "smtp.lab:587 type 2 lab/pw from ",
        "smtp_server, smtp_port, smtp_connection_type, smtp_username, smtp_password, smtp_sender",
        "'smtp.lab'|587|2|'lab'|'pw'|NULL");
    row(
        "report",
        [](Store& s) {
            return s.setReportConfiguration(ReportConfiguration(ReportConfiguration::MONTHLY, QLocale::German,
                                                                FileFormat(1), "R_", "/srv/reports", "", 2, "Lab",
                                                                "/srv/mark.png", 0x85, "Draft"));
        },
        8,
        "interval 2 language 42 format 1 'R_' '/srv/reports' logo '' at 2 'Lab' mark '/srv/mark.png' chapters 133 "
        "'Draft'",
        "report_creation_interval, report_language, report_file_format, report_file_prefix, report_file_path, "
        "report_header_logo_path, report_header_logo_position, report_header_title, report_watermark_path, "
        "report_enabled_chapters, report_watermark_text",
        "2|42|1|'R_'|'/srv/reports'|NULL|2|'Lab'|'/srv/mark.png'|133|'Draft'");
    row(
        "alarm repetition off", [](Store& s) { return s.setAlarmRepetitionEnabled(false); }, 9, "0", "event_do_repeat",
        "0");
    row(
        "alarm repetition interval", [](Store& s) { return s.setAlarmRepetitionIntervalInSeconds(120); }, 10, "120",
        "event_repetition_interval", "120");
    row(
        "pre-alarm delay", [](Store& s) { return s.setPreAlarmDelayInSeconds(45); }, 11, "45", "prealarm_seconds_delay",
        "45");
    row(
        "backup schedule",
        [](Store& s) {
            return s.setBackupScheduleConfiguration(
                BackupScheduleConfiguration(QTime(2, 30), BackupInterval::WEEKLY, 7, "/srv/backup", "secret"));
        },
        12, "at '02:30:00' interval 1 day 7 '/srv/backup' 'secret'",
        "backup_time_of_day, backup_interval, backup_day_of_x, backup_path, backup_password",
        "'02:30:00.000'|1|7|'/srv/backup'|'secret'");
    row(
        "backup schedule without a time",
        [](Store& s) {
            return s.setBackupScheduleConfiguration(
                BackupScheduleConfiguration(QTime(), BackupInterval::DAILY, 0, "", ""));
        },
        12, "at '' interval 0 day 0 '' ''",
        "backup_time_of_day, backup_interval, backup_day_of_x, backup_path, backup_password", "NULL|0|0|NULL|NULL");
    row(
        "backup cleanup",
        [](Store& s) {
            return s.setBackupCleanupSettings(BackupCleanupSettings(BackupCleanupSettings::KEEP_N_DAYS, 14));
        },
        13, "keep 2 14", "backup_keep_strategy, backup_keep_num", "2|14");
    row(
        "failed logins", [](Store& s) { return s.setAllowedNumberOfFailedLogins(5); }, 14, "5",
        "max_number_of_allowed_failed_logins", "5");
    // A port of 0 is a port: the default is for NULL only.
    row(
        "zelmor connection on port 0",
        [](Store& s) {
            return s.setZelmorNetworkConfiguration(ZelmorNetworkConfiguration(QHostAddress("192.168.1.5"), 0));
        },
        15, "'192.168.1.5' port 0", "zelmor_ip_address, zelmor_port", "'192.168.1.5'|0");
    row(
        "zelmor connection without an address",
        [](Store& s) { return s.setZelmorNetworkConfiguration(ZelmorNetworkConfiguration(QHostAddress(), 4000)); }, 15,
        "'' port 4000", "zelmor_ip_address, zelmor_port", "NULL|4000");
    row(
        "zelmor attempts", [](Store& s) { return s.setZelmorNumConnectionAttempts(9); }, 16, "9",
        "zelmor_num_connection_attempts", "9");
    row(
        "zelmor active", [](Store& s) { return s.setZelmorConnectionActive(true); }, 17, "1", "zelmor_is_active", "1");
    row(
        "siren box connection",
        [](Store& s) {
            return s.setSirenBoxNetworkConfiguration(SirenBoxNetworkConfiguration(QHostAddress("fe80::7"), 8888));
        },
        18, "'fe80::7' port 8888", "sirenbox_ip_address, sirenbox_port", "'fe80::7'|8888");
    row(
        "siren box attempts", [](Store& s) { return s.setSirenBoxNumConnectionAttempts(0); }, 19, "0",
        "sirenbox_num_connection_attempts", "0");
    row(
        "siren box active", [](Store& s) { return s.setSirenBoxActive(true); }, 20, "1", "sirenbox_is_active", "1");
}

void TestSqlSettingsDatabaseConnection::writes()
{
    QFETCH(Write, write);
    QFETCH(int, setting);
    QFETCH(QString, read);
    QFETCH(QString, columns);
    QFETCH(QString, stored);

    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    QSignalSpy errors(&fixture.store, &Store::error);

    QVERIFY(write(fixture.store));
    // That setting changed, all others still read their defaults.
    QStringList expected = defaults;
    expected[setting] = read;
    QCOMPARE(allSettings(fixture.store), expected.join(QStringLiteral(" | ")));
    QString quoted = columns;
    quoted.replace(QRegularExpression(QStringLiteral("(\\w+)")), QStringLiteral("quote(\\1)"));
    QCOMPARE(files.shell(path, QStringLiteral("SELECT %1 FROM global_settings WHERE id = 1;").arg(quoted)), stored);
    QCOMPARE(errors.count(), 0);
}

void TestSqlSettingsDatabaseConnection::mailRecipients()
{
    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    QCOMPARE(store.getRecipientMailAddresses(), QStringList());
    QVERIFY(!store.isMailAddressInRecipients("lab@example.org"));
    QVERIFY(store.addMailAddressToRecipients("lab@example.org"));
    QVERIFY(store.addMailAddressToRecipients("night@example.org"));
    // Each address once.
    QVERIFY(!store.addMailAddressToRecipients("lab@example.org"));
    QCOMPARE(store.getRecipientMailAddresses(), (QStringList{"lab@example.org", "night@example.org"}));
    QVERIFY(store.isMailAddressInRecipients("night@example.org"));
    QVERIFY(!store.isMailAddressInRecipients("NIGHT@example.org"));

    QVERIFY(store.deleteMailAddressFromRecipients("lab@example.org"));
    QVERIFY(store.deleteMailAddressFromRecipients("nobody@example.org"));
    QCOMPARE(files.shell(path, "SELECT id, mail_address FROM mail_recipient;"), QStringLiteral("2|night@example.org"));
    QCOMPARE(errors.count(), 0);
}

void TestSqlSettingsDatabaseConnection::badInput_data()
{
    Failures::addColumns();
    const Operation initialize = [](Store& s) { return QString::number(s.initialize()); };
    const Operation interval = [](Store& s) { return QString::number(s.getQuickRecordingSecondsInterval()); };
    const Operation smtp = [](Store& s) { return summary(s.getSmtpConfiguration()); };
    const Operation zelmor = [](Store& s) { return address(s.getZelmorNetworkConfiguration()); };
    const Operation setInterval = [](Store& s) { return QString::number(s.setQuickRecordingSecondsInterval(1)); };
    const Operation setSmtp = [](Store& s) { return QString::number(s.setSmtpConfiguration(SmtpConfiguration())); };
    const Operation recipients = [](Store& s) { return s.getRecipientMailAddresses().join(' '); };
    const Operation addRecipient = [](Store& s) { return QString::number(s.addMailAddressToRecipients("a@b.c")); };

    // Unwired, each read costs one 0 per column it asks for.
    Failures::row("unwired: initialize", "unwired", initialize, "0", {0});
    Failures::row("unwired: interval", "unwired", interval, "60", {0});
    Failures::row("unwired: mail server", "unwired", smtp, ":0 type -1 / from ", {0});
    Failures::row("unwired: zelmor connection", "unwired", zelmor, "'' port 22392", {0, 0});
    Failures::row("unwired: set interval", "unwired", setInterval, "0", {0});
    Failures::row("unwired: set mail server", "unwired", setSmtp, "0", {0});
    Failures::row("unwired: recipients", "unwired", recipients, "", {0});
    Failures::row("unwired: add recipient", "unwired", addRecipient, "0", {0});
    // With a wrong key the connection reports; the store misses its table.
    Failures::row("wrong key: initialize", "wrong key", initialize, "0", {4});
    Failures::row("wrong key: interval", "wrong key", interval, "60", {});
    Failures::row("wrong key: mail server", "wrong key", smtp, ":0 type -1 / from ", {8});
    Failures::row("wrong key: set interval", "wrong key", setInterval, "0", {});
    Failures::row("wrong key: recipients", "wrong key", recipients, "", {});
    Failures::row("wrong key: add recipient", "wrong key", addRecipient, "0", {});
    // Nothing is created: no table, no row.
    Failures::row("no settings table: initialize", "no settings table", initialize, "0", {4});
    // No row: a single setting reads its default, a row of several is reported.
    Failures::row("no row: interval", "no row", interval, "60", {});
    Failures::row("no row: mail server", "no row", smtp, ":0 type -1 / from ", {8});
    Failures::row("short row: mail server", "short row", smtp, ":0 type -1 / from ", {8}, 6);
}

void TestSqlSettingsDatabaseConnection::badInput()
{
    QFETCH(QString, situation);

    const QString path = files.create(
        situation == "no settings table" ? QStringLiteral("DROP TABLE global_settings;")
        : situation == "no row"
            ? QString()
            : QStringLiteral("INSERT INTO global_settings (id, smtp_server, smtp_port) VALUES (1, 'mail', 25);"));
    QVERIFY(!path.isEmpty());
    Failures::check(path, -1);
}

QTEST_GUILESS_MAIN(TestSqlSettingsDatabaseConnection)

#include "tst_sqlsettingsdatabaseconnection.moc"
