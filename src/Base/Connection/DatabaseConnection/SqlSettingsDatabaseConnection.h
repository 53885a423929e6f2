#pragma once

#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlStoreChecks.h"
#include "Domain/Api/ApplicationTableProperties.h"
#include "Domain/Api/IInitializing.h"
#include "Domain/Api/ISettingsDatabaseConnection.h"
#include "Domain/Types/DatabaseConnectionError.h"

#include <QLoggingCategory>
#include <QObject>

namespace zelmor::domain::api {
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::base::connection::databaseconnection {

Q_DECLARE_LOGGING_CATEGORY(SQLSETTINGSDATABASECONNECTION)

// The global settings in the one row of table "global_settings" (id 1), and the
// recipients of alarm mails in "mail_recipient". Every setting is one column;
// a column that is NULL reads as the setting's default, so a new row, which
// initialize() makes with every other column NULL, reads as the defaults.
// Empty texts and null addresses are written as NULL, numbers as they are.
//
// Failures are logged in "zelmor.SqlSettingsDatabaseConnection" and emitted
// through error(). Use on the thread of the connection.
class SqlSettingsDatabaseConnection : public QObject,
                                      public zelmor::domain::api::ISettingsDatabaseConnection,
                                      public zelmor::domain::api::IInitializing
{
    Q_OBJECT

public:
    explicit SqlSettingsDatabaseConnection(QObject* parent = nullptr);
    ~SqlSettingsDatabaseConnection() override;

    // The id of the settings row.
    static int getSettingsId();

    // The connection is not owned. True when it is not null.
    virtual bool setDependencies(zelmor::domain::api::ISqlConnection* connection);
    // Makes the settings row unless it is there (MISSING_TABLE without the table).
    bool initialize() override;

    QString getQuickRecordingNameTemplate() const override;
    int getQuickRecordingSecondsInterval() const override;
    bool isRecordingResumptionOnStartupEnabled() const override;
    bool isAccessControlActive() const override;
    bool areSecurityQuestionsActive() const override;
    int getPasswordValidityPeriod() const override;
    int getScreenLockTimeout() const override;
    zelmor::domain::types::SmtpConfiguration getSmtpConfiguration() const override;
    zelmor::domain::types::ReportConfiguration getReportConfiguration() const override;
    bool isAlarmRepetitionEnabled() const override;
    int getAlarmRepetitionIntervalInSeconds() const override;
    int getPreAlarmDelayInSeconds() const override;
    zelmor::domain::types::BackupScheduleConfiguration getBackupScheduleConfiguration() const override;
    zelmor::domain::types::BackupCleanupSettings getBackupCleanupSettings() const override;

    bool setQuickRecordingNameTemplate(const QString& nameTemplate) override;
    bool setQuickRecordingSecondsInterval(int seconds) override;
    bool setRecordingResumptionOnStartupEnabled(bool enabled) override;
    bool setAccessControlActive(bool active) override;
    bool setSecurityQuestionsActive(bool active) override;
    bool setPasswordValidityPeriod(int days) override;
    bool setScreenLockTimeout(int timeout) override;
    bool setSmtpConfiguration(const zelmor::domain::types::SmtpConfiguration& configuration) override;
    bool setReportConfiguration(const zelmor::domain::types::ReportConfiguration& configuration) override;
    bool setAlarmRepetitionEnabled(bool enabled) override;
    bool setAlarmRepetitionIntervalInSeconds(int seconds) override;
    bool setPreAlarmDelayInSeconds(int seconds) override;
    bool
    setBackupScheduleConfiguration(const zelmor::domain::types::BackupScheduleConfiguration& configuration) override;
    bool setBackupCleanupSettings(const zelmor::domain::types::BackupCleanupSettings& settings) override;

    int getAllowedNumberOfFailedLogins() const override;
    bool setAllowedNumberOfFailedLogins(int number) override;

    zelmor::domain::types::ZelmorNetworkConfiguration getZelmorNetworkConfiguration() const override;
    bool setZelmorNetworkConfiguration(const zelmor::domain::types::ZelmorNetworkConfiguration& configuration) override;
    int getZelmorNumConnectionAttempts() const override;
    bool setZelmorNumConnectionAttempts(int attempts) override;
    bool isZelmorConnectionActive() const override;
    bool setZelmorConnectionActive(bool active) override;
    zelmor::domain::types::SirenBoxNetworkConfiguration getSirenBoxNetworkConfiguration() const override;
    bool
    setSirenBoxNetworkConfiguration(const zelmor::domain::types::SirenBoxNetworkConfiguration& configuration) override;
    int getSirenBoxNumConnectionAttempts() const override;
    bool setSirenBoxNumConnectionAttempts(int attempts) override;
    bool isSirenBoxActive() const override;
    bool setSirenBoxActive(bool active) override;

    QStringList getRecipientMailAddresses() const override;
    bool isMailAddressInRecipients(const QString& address) const override;
    bool addMailAddressToRecipients(const QString& address) override;
    bool deleteMailAddressFromRecipients(const QString& address) override;

    virtual bool areDependenciesSet() const;

signals:
    void error(zelmor::domain::types::DatabaseConnectionError error) const override;

protected:
    // One statement that makes the row with every column but the id NULL, and
    // leaves a row that is there as it is.
    virtual bool initializeTableEntry();
    // The column's value, NULL as the driver gives it; invalid without the row.
    virtual QVariant getSettingsProperty(zelmor::domain::api::GlobalSettingsProperty property) const;
    // The columns' values in their order; empty, reported as UNEXPECTED_RESULT,
    // when the row has another width or isn't there.
    virtual QList<QVariant> getSettingsRow(const QStringList& columns) const;
    virtual bool setSettingsProperty(zelmor::domain::api::GlobalSettingsProperty property, const QVariant& value);
    // One update of the settings row.
    virtual bool setSettingsColumnValuePairs(const QList<SqlQuery::ColumnValuePair>& pairs);

private:
    zelmor::domain::api::ISqlConnection* connection = nullptr;
    SqlStoreChecks checks;
};

} // namespace zelmor::base::connection::databaseconnection
