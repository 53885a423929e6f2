#include "Base/Connection/DatabaseConnection/SqlSettingsDatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Base/Connection/DatabaseConnection/sqlhelper.h"
#include "Base/Connection/DatabaseConnection/sqlvalue.h"
#include "Domain/Api/ISqlConnection.h"
#include "Domain/Types/BackupCleanupSettings.h"
#include "Domain/Types/BackupScheduleConfiguration.h"
#include "Domain/Types/ReportConfiguration.h"
#include "Domain/Types/SirenBoxNetworkConfiguration.h"
#include "Domain/Types/SmtpConfiguration.h"
#include "Domain/Types/ZelmorNetworkConfiguration.h"

namespace zelmor::base::connection::databaseconnection {

Q_LOGGING_CATEGORY(SQLSETTINGSDATABASECONNECTION, "zelmor.SqlSettingsDatabaseConnection")

using namespace zelmor::domain::types;
using zelmor::domain::api::ISqlConnection;
using zelmor::domain::api::MailRecipientProperty;
using Property = zelmor::domain::api::GlobalSettingsProperty;

namespace {

using DC = DatabaseSchema;

constexpr int settingsId = 1;

QString settingsColumn(Property property)
{
    return DC::lookupGlobalSettingsColumnName(property);
}

QString mailColumn(MailRecipientProperty property)
{
    return DC::lookupMailRecipientColumnName(property);
}

// Positions in the row of the mail server's settings.
enum SmtpColumn {
    SMTP_SERVER,
    SMTP_PORT,
    SMTP_CONNECTION_TYPE,
    SMTP_USERNAME,
    SMTP_PASSWORD,
    SMTP_SENDER,
    SMTP_COLUMNS
};

const Property smtpLayout[SMTP_COLUMNS] = {
    Property::SMTP_SERVER,   Property::SMTP_PORT,     Property::SMTP_CONNECTION_TYPE,
    Property::SMTP_USERNAME, Property::SMTP_PASSWORD, Property::SMTP_SENDER,
};

// Positions in the row of the report settings.
enum ReportColumn {
    REPORT_INTERVAL,
    REPORT_LANGUAGE,
    REPORT_FILE_FORMAT,
    REPORT_FILE_PREFIX,
    REPORT_FILE_PATH,
    REPORT_HEADER_LOGO_PATH,
    REPORT_HEADER_LOGO_POSITION,
    REPORT_HEADER_TITLE,
    REPORT_WATERMARK_PATH,
    REPORT_ENABLED_CHAPTERS,
    REPORT_WATERMARK_TEXT,
    REPORT_COLUMNS
};

const Property reportLayout[REPORT_COLUMNS] = {
    Property::REPORT_CREATION_INTERVAL,    Property::REPORT_LANGUAGE,       Property::REPORT_FILE_FORMAT,
    Property::REPORT_FILE_PREFIX,          Property::REPORT_FILE_PATH,      Property::REPORT_HEADER_LOGO_PATH,
    Property::REPORT_HEADER_LOGO_POSITION, Property::REPORT_HEADER_TITLE,   Property::REPORT_WATERMARK_PATH,
    Property::REPORT_ENABLED_CHAPTERS,     Property::REPORT_WATERMARK_TEXT,
};

// Positions in the row of the backup schedule: the time of day first.
enum BackupColumn {
    BACKUP_TIME_OF_DAY,
    BACKUP_INTERVAL,
    BACKUP_DAY_OF_X,
    BACKUP_PATH,
    BACKUP_PASSWORD,
    BACKUP_COLUMNS
};

const Property backupLayout[BACKUP_COLUMNS] = {
    Property::BACKUP_TIME_OF_DAY, Property::BACKUP_INTERVAL, Property::BACKUP_DAY_OF_X,
    Property::BACKUP_PATH,        Property::BACKUP_PASSWORD,
};

// Positions in the row of the backup cleanup.
enum CleanupColumn { CLEANUP_KEEP_STRATEGY, CLEANUP_KEEP_NUM, CLEANUP_COLUMNS };

const Property cleanupLayout[CLEANUP_COLUMNS] = {Property::BACKUP_KEEP_STRATEGY, Property::BACKUP_KEEP_NUM};

QVariant addressText(const QHostAddress& address)
{
    return sqlvalue::text(address.isNull() ? QString() : address.toString());
}

QVariant timeOfDay(const QTime& time)
{
    return time.isValid() ? QVariant(time) : sqlvalue::null<QTime>();
}

} // namespace

SqlSettingsDatabaseConnection::SqlSettingsDatabaseConnection(QObject* parent)
    : QObject(parent)
    , checks(this, SQLSETTINGSDATABASECONNECTION)
{
}

SqlSettingsDatabaseConnection::~SqlSettingsDatabaseConnection() = default;

int SqlSettingsDatabaseConnection::getSettingsId()
{
    return settingsId;
}

bool SqlSettingsDatabaseConnection::setDependencies(ISqlConnection* connection)
{
    this->connection = connection;
    return connection != nullptr;
}

bool SqlSettingsDatabaseConnection::areDependenciesSet() const
{
    return connection != nullptr;
}

bool SqlSettingsDatabaseConnection::initialize()
{
    return checks.hasDependencies("initialize") && checks.hasTables(*connection, {DC::lookupGlobalSettingsTableName()})
           && initializeTableEntry();
}

// The single settings: one column each, the default for NULL.

QString SqlSettingsDatabaseConnection::getQuickRecordingNameTemplate() const
{
    return sqlhelper::readStringSqlValue(getSettingsProperty(Property::QUICK_RECORDING_NAME_TEMPLATE),
                                         QStringLiteral("RECORDING_%USERNAME%_%DATE%_%TIME%"));
}

int SqlSettingsDatabaseConnection::getQuickRecordingSecondsInterval() const
{
    return sqlhelper::readIntSqlValue(getSettingsProperty(Property::QUICK_RECORDING_SECONDS_INTERVAL), 60);
}

bool SqlSettingsDatabaseConnection::isRecordingResumptionOnStartupEnabled() const
{
    return sqlhelper::readBoolSqlValue(getSettingsProperty(Property::RESUME_RECORDINGS_ON_STARTUP), false);
}

bool SqlSettingsDatabaseConnection::isAccessControlActive() const
{
    return sqlhelper::readBoolSqlValue(getSettingsProperty(Property::ACCESS_CONTROL_ACTIVE), true);
}

bool SqlSettingsDatabaseConnection::areSecurityQuestionsActive() const
{
    return sqlhelper::readBoolSqlValue(getSettingsProperty(Property::SECURITY_QUESTIONS_ACTIVE), false);
}

int SqlSettingsDatabaseConnection::getPasswordValidityPeriod() const
{
    return sqlhelper::readIntSqlValue(getSettingsProperty(Property::PASSWORD_VALIDITY_PERIOD), 30);
}

int SqlSettingsDatabaseConnection::getScreenLockTimeout() const
{
    return sqlhelper::readIntSqlValue(getSettingsProperty(Property::SCREEN_LOCK_TIMEOUT), 0);
}

bool SqlSettingsDatabaseConnection::isAlarmRepetitionEnabled() const
{
    return sqlhelper::readBoolSqlValue(getSettingsProperty(Property::EVENT_DO_REPEAT), true);
}

int SqlSettingsDatabaseConnection::getAlarmRepetitionIntervalInSeconds() const
{
    return sqlhelper::readIntSqlValue(getSettingsProperty(Property::EVENT_REPETITION_INTERVAL), 0);
}

int SqlSettingsDatabaseConnection::getPreAlarmDelayInSeconds() const
{
    return sqlhelper::readIntSqlValue(getSettingsProperty(Property::PREALARM_SECONDS_DELAY), 0);
}

int SqlSettingsDatabaseConnection::getAllowedNumberOfFailedLogins() const
{
    return sqlhelper::readIntSqlValue(getSettingsProperty(Property::MAX_NUMBER_OF_ALLOWED_FAILED_LOGINS), 3);
}

int SqlSettingsDatabaseConnection::getZelmorNumConnectionAttempts() const
{
    return sqlhelper::readIntSqlValue(getSettingsProperty(Property::ZELMOR_NUM_CONNECTION_ATTEMPTS), 2);
}

bool SqlSettingsDatabaseConnection::isZelmorConnectionActive() const
{
    return sqlhelper::readBoolSqlValue(getSettingsProperty(Property::ZELMOR_IS_ACTIVE), false);
}

int SqlSettingsDatabaseConnection::getSirenBoxNumConnectionAttempts() const
{
    return sqlhelper::readIntSqlValue(getSettingsProperty(Property::SIRENBOX_NUM_CONNECTION_ATTEMPTS), 2);
}

bool SqlSettingsDatabaseConnection::isSirenBoxActive() const
{
    return sqlhelper::readBoolSqlValue(getSettingsProperty(Property::SIRENBOX_IS_ACTIVE), false);
}

bool SqlSettingsDatabaseConnection::setQuickRecordingNameTemplate(const QString& nameTemplate)
{
    return setSettingsProperty(Property::QUICK_RECORDING_NAME_TEMPLATE, sqlvalue::text(nameTemplate));
}

bool SqlSettingsDatabaseConnection::setQuickRecordingSecondsInterval(int seconds)
{
    return setSettingsProperty(Property::QUICK_RECORDING_SECONDS_INTERVAL, seconds);
}

bool SqlSettingsDatabaseConnection::setRecordingResumptionOnStartupEnabled(bool enabled)
{
    return setSettingsProperty(Property::RESUME_RECORDINGS_ON_STARTUP, enabled);
}

bool SqlSettingsDatabaseConnection::setAccessControlActive(bool active)
{
    return setSettingsProperty(Property::ACCESS_CONTROL_ACTIVE, active);
}

bool SqlSettingsDatabaseConnection::setSecurityQuestionsActive(bool active)
{
    return setSettingsProperty(Property::SECURITY_QUESTIONS_ACTIVE, active);
}

bool SqlSettingsDatabaseConnection::setPasswordValidityPeriod(int days)
{
    return setSettingsProperty(Property::PASSWORD_VALIDITY_PERIOD, days);
}

bool SqlSettingsDatabaseConnection::setScreenLockTimeout(int timeout)
{
    return setSettingsProperty(Property::SCREEN_LOCK_TIMEOUT, timeout);
}

bool SqlSettingsDatabaseConnection::setAlarmRepetitionEnabled(bool enabled)
{
    return setSettingsProperty(Property::EVENT_DO_REPEAT, enabled);
}

bool SqlSettingsDatabaseConnection::setAlarmRepetitionIntervalInSeconds(int seconds)
{
    return setSettingsProperty(Property::EVENT_REPETITION_INTERVAL, seconds);
}

bool SqlSettingsDatabaseConnection::setPreAlarmDelayInSeconds(int seconds)
{
    return setSettingsProperty(Property::PREALARM_SECONDS_DELAY, seconds);
}

bool SqlSettingsDatabaseConnection::setAllowedNumberOfFailedLogins(int number)
{
    return setSettingsProperty(Property::MAX_NUMBER_OF_ALLOWED_FAILED_LOGINS, number);
}

bool SqlSettingsDatabaseConnection::setZelmorNumConnectionAttempts(int attempts)
{
    return setSettingsProperty(Property::ZELMOR_NUM_CONNECTION_ATTEMPTS, attempts);
}

bool SqlSettingsDatabaseConnection::setZelmorConnectionActive(bool active)
{
    return setSettingsProperty(Property::ZELMOR_IS_ACTIVE, active);
}

bool SqlSettingsDatabaseConnection::setSirenBoxNumConnectionAttempts(int attempts)
{
    return setSettingsProperty(Property::SIRENBOX_NUM_CONNECTION_ATTEMPTS, attempts);
}

bool SqlSettingsDatabaseConnection::setSirenBoxActive(bool active)
{
    return setSettingsProperty(Property::SIRENBOX_IS_ACTIVE, active);
}

// The composite settings: several columns in one row, read and written together.

SmtpConfiguration SqlSettingsDatabaseConnection::getSmtpConfiguration() const
{
    const SqlRow row(getSettingsRow(SqlRow::columnNames(settingsColumn, smtpLayout)));
    return SmtpConfiguration(row.toString(SMTP_SERVER), quint16(row.toUInt(SMTP_PORT, 0)),
                             row.toInt(SMTP_CONNECTION_TYPE, -1), row.toString(SMTP_USERNAME),
                             row.toString(SMTP_PASSWORD), row.toString(SMTP_SENDER));
}

bool SqlSettingsDatabaseConnection::setSmtpConfiguration(const SmtpConfiguration& configuration)
{
    return setSettingsColumnValuePairs({
        {settingsColumn(Property::SMTP_SERVER), sqlvalue::text(configuration.server)},
        {settingsColumn(Property::SMTP_PORT), configuration.port},
        {settingsColumn(Property::SMTP_CONNECTION_TYPE), configuration.connectionType},
        {settingsColumn(Property::SMTP_USERNAME), sqlvalue::text(configuration.username)},
        {settingsColumn(Property::SMTP_PASSWORD), sqlvalue::text(configuration.password)},
        {settingsColumn(Property::SMTP_SENDER), sqlvalue::text(configuration.sender)},
    });
}

ReportConfiguration SqlSettingsDatabaseConnection::getReportConfiguration() const
{
    const SqlRow row(getSettingsRow(SqlRow::columnNames(settingsColumn, reportLayout)));
    return ReportConfiguration(ReportConfiguration::Interval(row.toInt(REPORT_INTERVAL, -1)),
                               QLocale::Language(row.toInt(REPORT_LANGUAGE, -1)),
                               FileFormat(row.toInt(REPORT_FILE_FORMAT, -1)), row.toString(REPORT_FILE_PREFIX),
                               row.toString(REPORT_FILE_PATH), row.toString(REPORT_HEADER_LOGO_PATH),
                               row.toInt(REPORT_HEADER_LOGO_POSITION, -1), row.toString(REPORT_HEADER_TITLE),
                               row.toString(REPORT_WATERMARK_PATH), row.toInt(REPORT_ENABLED_CHAPTERS, -1),
                               row.toString(REPORT_WATERMARK_TEXT));
}

bool SqlSettingsDatabaseConnection::setReportConfiguration(const ReportConfiguration& configuration)
{
    return setSettingsColumnValuePairs({
        {settingsColumn(Property::REPORT_CREATION_INTERVAL), int(configuration.interval)},
        {settingsColumn(Property::REPORT_LANGUAGE), int(configuration.language)},
        {settingsColumn(Property::REPORT_FILE_FORMAT), int(configuration.fileFormat)},
        {settingsColumn(Property::REPORT_FILE_PREFIX), sqlvalue::text(configuration.filePrefix)},
        {settingsColumn(Property::REPORT_FILE_PATH), sqlvalue::text(configuration.filePath)},
        {settingsColumn(Property::REPORT_HEADER_LOGO_PATH), sqlvalue::text(configuration.headerLogoPath)},
        {settingsColumn(Property::REPORT_HEADER_LOGO_POSITION), configuration.headerLogoPosition},
        {settingsColumn(Property::REPORT_HEADER_TITLE), sqlvalue::text(configuration.headerTitle)},
        {settingsColumn(Property::REPORT_WATERMARK_PATH), sqlvalue::text(configuration.watermarkPath)},
        {settingsColumn(Property::REPORT_ENABLED_CHAPTERS), configuration.enabledChapters},
        {settingsColumn(Property::REPORT_WATERMARK_TEXT), sqlvalue::text(configuration.watermarkText)},
    });
}

BackupScheduleConfiguration SqlSettingsDatabaseConnection::getBackupScheduleConfiguration() const
{
    const SqlRow row(getSettingsRow(SqlRow::columnNames(settingsColumn, backupLayout)));
    return BackupScheduleConfiguration(
        row.toTime(BACKUP_TIME_OF_DAY), BackupInterval::Interval(row.toInt(BACKUP_INTERVAL, 0)),
        row.toInt(BACKUP_DAY_OF_X, 0), row.toString(BACKUP_PATH), row.toString(BACKUP_PASSWORD));
}

bool SqlSettingsDatabaseConnection::setBackupScheduleConfiguration(const BackupScheduleConfiguration& configuration)
{
    return setSettingsColumnValuePairs({
        {settingsColumn(Property::BACKUP_TIME_OF_DAY), timeOfDay(configuration.time)},
        {settingsColumn(Property::BACKUP_INTERVAL), int(configuration.interval)},
        {settingsColumn(Property::BACKUP_DAY_OF_X), configuration.dayOfX},
        {settingsColumn(Property::BACKUP_PATH), sqlvalue::text(configuration.path)},
        {settingsColumn(Property::BACKUP_PASSWORD), sqlvalue::text(configuration.password)},
    });
}

BackupCleanupSettings SqlSettingsDatabaseConnection::getBackupCleanupSettings() const
{
    const SqlRow row(getSettingsRow(SqlRow::columnNames(settingsColumn, cleanupLayout)));
    return BackupCleanupSettings(BackupCleanupSettings::KeepStrategy(row.toInt(CLEANUP_KEEP_STRATEGY, 0)),
                                 row.toInt(CLEANUP_KEEP_NUM, 0));
}

bool SqlSettingsDatabaseConnection::setBackupCleanupSettings(const BackupCleanupSettings& settings)
{
    return setSettingsColumnValuePairs({
        {settingsColumn(Property::BACKUP_KEEP_STRATEGY), int(settings.keepStrategy)},
        {settingsColumn(Property::BACKUP_KEEP_NUM), settings.numberToKeep},
    });
}

// The two network connections, their address and port read one by one.

ZelmorNetworkConfiguration SqlSettingsDatabaseConnection::getZelmorNetworkConfiguration() const
{
    return ZelmorNetworkConfiguration(
        QHostAddress(sqlhelper::readStringSqlValue(getSettingsProperty(Property::ZELMOR_IP_ADDRESS), QString())),
        quint16(sqlhelper::readUIntSqlValue(getSettingsProperty(Property::ZELMOR_PORT),
                                            ZelmorNetworkConfiguration::defaultPort_)));
}

bool SqlSettingsDatabaseConnection::setZelmorNetworkConfiguration(const ZelmorNetworkConfiguration& configuration)
{
    return setSettingsColumnValuePairs({
        {settingsColumn(Property::ZELMOR_IP_ADDRESS), addressText(configuration.address)},
        {settingsColumn(Property::ZELMOR_PORT), configuration.port},
    });
}

SirenBoxNetworkConfiguration SqlSettingsDatabaseConnection::getSirenBoxNetworkConfiguration() const
{
    return SirenBoxNetworkConfiguration(
        QHostAddress(sqlhelper::readStringSqlValue(getSettingsProperty(Property::SIRENBOX_IP_ADDRESS), QString())),
        quint16(sqlhelper::readUIntSqlValue(getSettingsProperty(Property::SIRENBOX_PORT),
                                            SirenBoxNetworkConfiguration::defaultPort_)));
}

bool SqlSettingsDatabaseConnection::setSirenBoxNetworkConfiguration(const SirenBoxNetworkConfiguration& configuration)
{
    return setSettingsColumnValuePairs({
        {settingsColumn(Property::SIRENBOX_IP_ADDRESS), addressText(configuration.address)},
        {settingsColumn(Property::SIRENBOX_PORT), configuration.port},
    });
}

// The mail recipients, one row each.

QStringList SqlSettingsDatabaseConnection::getRecipientMailAddresses() const
{
    if (!checks.hasDependencies("getRecipientMailAddresses")) {
        return {};
    }
    SqlQuery query;
    query.selectColumn(mailColumn(MailRecipientProperty::MAIL_ADDRESS)).fromTable(DC::lookupMailRecipientTableName());
    QStringList addresses;
    for (const QVariant& value : connection->fetchSingleColumn(query)) {
        addresses.append(sqlhelper::readStringSqlValue(value, QString()));
    }
    return addresses;
}

bool SqlSettingsDatabaseConnection::isMailAddressInRecipients(const QString& address) const
{
    if (!checks.hasDependencies("isMailAddressInRecipients")) {
        return false;
    }
    SqlQuery query;
    query.selectCount(SqlQuery::ALL, QString())
        .fromTable(DC::lookupMailRecipientTableName())
        .whereColumn(mailColumn(MailRecipientProperty::MAIL_ADDRESS))
        .equals(address);
    return sqlhelper::readIntSqlValue(connection->fetchSingleValue(query), 0) != 0;
}

bool SqlSettingsDatabaseConnection::addMailAddressToRecipients(const QString& address)
{
    if (!checks.hasDependencies("addMailAddressToRecipients")) {
        return false;
    }
    SqlQuery query;
    query.insertTableColumnValuePairs(DC::lookupMailRecipientTableName(),
                                      {{mailColumn(MailRecipientProperty::MAIL_ADDRESS), sqlvalue::text(address)}});
    return connection->execute(query).success;
}

bool SqlSettingsDatabaseConnection::deleteMailAddressFromRecipients(const QString& address)
{
    if (!checks.hasDependencies("deleteMailAddressFromRecipients")) {
        return false;
    }
    SqlQuery query;
    query.deleteFromTable(DC::lookupMailRecipientTableName())
        .whereColumn(mailColumn(MailRecipientProperty::MAIL_ADDRESS))
        .equals(address);
    return connection->execute(query).success;
}

// The two generic operations on the settings row.

bool SqlSettingsDatabaseConnection::initializeTableEntry()
{
    if (!checks.hasDependencies("initializeTableEntry")) {
        return false;
    }
    const QString table = DC::lookupGlobalSettingsTableName();
    const QString id = settingsColumn(Property::ID);
    SqlQuery existing;
    existing.selectOne().fromTable(table).whereColumn(id).equals(settingsId);
    // " INSERT INTO global_settings (id) SELECT ? WHERE NOT EXISTS ( SELECT ? FROM ...)"
    SqlQuery query;
    query.insertTable(table).column(id).selectValue(settingsId).whereNotExists(existing);
    return connection->execute(query).success;
}

QVariant SqlSettingsDatabaseConnection::getSettingsProperty(Property property) const
{
    if (!checks.hasDependencies("getSettingsProperty")) {
        return {};
    }
    SqlQuery query;
    query.selectColumn(settingsColumn(property))
        .fromTable(DC::lookupGlobalSettingsTableName())
        .whereColumn(settingsColumn(Property::ID))
        .equals(settingsId);
    return connection->fetchSingleValue(query);
}

QList<QVariant> SqlSettingsDatabaseConnection::getSettingsRow(const QStringList& columns) const
{
    if (!checks.hasDependencies("getSettingsRow")) {
        return {};
    }
    SqlQuery query;
    query.selectColumns(columns)
        .fromTable(DC::lookupGlobalSettingsTableName())
        .whereColumn(settingsColumn(Property::ID))
        .equals(settingsId);
    const QList<QVariant> row = connection->fetchSingleRow(query);
    return checks.hasWidth(row, columns.size(), "getSettingsRow") ? row : QList<QVariant>();
}

bool SqlSettingsDatabaseConnection::setSettingsProperty(Property property, const QVariant& value)
{
    return setSettingsColumnValuePairs({{settingsColumn(property), value}});
}

bool SqlSettingsDatabaseConnection::setSettingsColumnValuePairs(const QList<SqlQuery::ColumnValuePair>& pairs)
{
    if (!checks.hasDependencies("setSettingsColumnValuePairs")) {
        return false;
    }
    SqlQuery query;
    query.updateTable(DC::lookupGlobalSettingsTableName())
        .setColumnValuePairs(pairs)
        .whereColumn(settingsColumn(Property::ID))
        .equals(settingsId);
    return connection->execute(query).success;
}

} // namespace zelmor::base::connection::databaseconnection
