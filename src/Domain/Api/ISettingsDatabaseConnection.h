#pragma once

#include "Domain/Types/DatabaseConnectionError.h"

#include <QString>
#include <QStringList>

namespace zelmor::domain::types {
class BackupCleanupSettings;
class BackupScheduleConfiguration;
class ReportConfiguration;
class SirenBoxNetworkConfiguration;
class SmtpConfiguration;
class ZelmorNetworkConfiguration;
} // namespace zelmor::domain::types

namespace zelmor::domain::api {

// The application's global settings, one row, and the recipients of alarm
// mails. A setting that was never written reads as its default. Setters return
// false and getters the default on failure; both report it through error().
class ISettingsDatabaseConnection
{
public:
    virtual ~ISettingsDatabaseConnection();

    virtual QString getQuickRecordingNameTemplate() const = 0;
    virtual int getQuickRecordingSecondsInterval() const = 0;
    virtual bool isRecordingResumptionOnStartupEnabled() const = 0;
    virtual bool isAccessControlActive() const = 0;
    virtual bool areSecurityQuestionsActive() const = 0;
    virtual int getPasswordValidityPeriod() const = 0;
    virtual int getScreenLockTimeout() const = 0;
    virtual zelmor::domain::types::SmtpConfiguration getSmtpConfiguration() const = 0;
    virtual zelmor::domain::types::ReportConfiguration getReportConfiguration() const = 0;
    virtual bool isAlarmRepetitionEnabled() const = 0;
    virtual int getAlarmRepetitionIntervalInSeconds() const = 0;
    virtual int getPreAlarmDelayInSeconds() const = 0;
    virtual zelmor::domain::types::BackupScheduleConfiguration getBackupScheduleConfiguration() const = 0;
    virtual zelmor::domain::types::BackupCleanupSettings getBackupCleanupSettings() const = 0;

    virtual bool setQuickRecordingNameTemplate(const QString& nameTemplate) = 0;
    virtual bool setQuickRecordingSecondsInterval(int seconds) = 0;
    virtual bool setRecordingResumptionOnStartupEnabled(bool enabled) = 0;
    virtual bool setAccessControlActive(bool active) = 0;
    virtual bool setSecurityQuestionsActive(bool active) = 0;
    virtual bool setPasswordValidityPeriod(int days) = 0;
    virtual bool setScreenLockTimeout(int timeout) = 0;
    virtual bool setSmtpConfiguration(const zelmor::domain::types::SmtpConfiguration& configuration) = 0;
    virtual bool setReportConfiguration(const zelmor::domain::types::ReportConfiguration& configuration) = 0;
    virtual bool setAlarmRepetitionEnabled(bool enabled) = 0;
    virtual bool setAlarmRepetitionIntervalInSeconds(int seconds) = 0;
    virtual bool setPreAlarmDelayInSeconds(int seconds) = 0;
    virtual bool
    setBackupScheduleConfiguration(const zelmor::domain::types::BackupScheduleConfiguration& configuration) = 0;
    virtual bool setBackupCleanupSettings(const zelmor::domain::types::BackupCleanupSettings& settings) = 0;

    virtual int getAllowedNumberOfFailedLogins() const = 0;
    virtual bool setAllowedNumberOfFailedLogins(int number) = 0;

    virtual zelmor::domain::types::ZelmorNetworkConfiguration getZelmorNetworkConfiguration() const = 0;
    virtual bool
    setZelmorNetworkConfiguration(const zelmor::domain::types::ZelmorNetworkConfiguration& configuration) = 0;
    virtual int getZelmorNumConnectionAttempts() const = 0;
    virtual bool setZelmorNumConnectionAttempts(int attempts) = 0;
    virtual bool isZelmorConnectionActive() const = 0;
    virtual bool setZelmorConnectionActive(bool active) = 0;
    virtual zelmor::domain::types::SirenBoxNetworkConfiguration getSirenBoxNetworkConfiguration() const = 0;
    virtual bool
    setSirenBoxNetworkConfiguration(const zelmor::domain::types::SirenBoxNetworkConfiguration& configuration) = 0;
    virtual int getSirenBoxNumConnectionAttempts() const = 0;
    virtual bool setSirenBoxNumConnectionAttempts(int attempts) = 0;
    virtual bool isSirenBoxActive() const = 0;
    virtual bool setSirenBoxActive(bool active) = 0;

    virtual QStringList getRecipientMailAddresses() const = 0;
    virtual bool isMailAddressInRecipients(const QString& address) const = 0;
    virtual bool addMailAddressToRecipients(const QString& address) = 0;
    virtual bool deleteMailAddressFromRecipients(const QString& address) = 0;

    // A signal in the implementations.
    virtual void error(zelmor::domain::types::DatabaseConnectionError error) const = 0;
};

} // namespace zelmor::domain::api
