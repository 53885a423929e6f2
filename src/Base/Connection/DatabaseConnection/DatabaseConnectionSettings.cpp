#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/SqlSettingsDatabaseConnection.h"
#include "Domain/Types/BackupCleanupSettings.h"
#include "Domain/Types/BackupScheduleConfiguration.h"
#include "Domain/Types/ReportConfiguration.h"
#include "Domain/Types/SirenBoxNetworkConfiguration.h"
#include "Domain/Types/SmtpConfiguration.h"
#include "Domain/Types/ZelmorNetworkConfiguration.h"

// The settings store's interface, passed on call by call.

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;

QString DatabaseConnection::getQuickRecordingNameTemplate() const
{
    return settingsStore->getQuickRecordingNameTemplate();
}

int DatabaseConnection::getQuickRecordingSecondsInterval() const
{
    return settingsStore->getQuickRecordingSecondsInterval();
}

bool DatabaseConnection::isRecordingResumptionOnStartupEnabled() const
{
    return settingsStore->isRecordingResumptionOnStartupEnabled();
}

bool DatabaseConnection::isAccessControlActive() const
{
    return settingsStore->isAccessControlActive();
}

bool DatabaseConnection::areSecurityQuestionsActive() const
{
    return settingsStore->areSecurityQuestionsActive();
}

int DatabaseConnection::getPasswordValidityPeriod() const
{
    return settingsStore->getPasswordValidityPeriod();
}

int DatabaseConnection::getScreenLockTimeout() const
{
    return settingsStore->getScreenLockTimeout();
}

SmtpConfiguration DatabaseConnection::getSmtpConfiguration() const
{
    return settingsStore->getSmtpConfiguration();
}

ReportConfiguration DatabaseConnection::getReportConfiguration() const
{
    return settingsStore->getReportConfiguration();
}

bool DatabaseConnection::isAlarmRepetitionEnabled() const
{
    return settingsStore->isAlarmRepetitionEnabled();
}

int DatabaseConnection::getAlarmRepetitionIntervalInSeconds() const
{
    return settingsStore->getAlarmRepetitionIntervalInSeconds();
}

int DatabaseConnection::getPreAlarmDelayInSeconds() const
{
    return settingsStore->getPreAlarmDelayInSeconds();
}

BackupScheduleConfiguration DatabaseConnection::getBackupScheduleConfiguration() const
{
    return settingsStore->getBackupScheduleConfiguration();
}

BackupCleanupSettings DatabaseConnection::getBackupCleanupSettings() const
{
    return settingsStore->getBackupCleanupSettings();
}

bool DatabaseConnection::setQuickRecordingNameTemplate(const QString& nameTemplate)
{
    return settingsStore->setQuickRecordingNameTemplate(nameTemplate);
}

bool DatabaseConnection::setQuickRecordingSecondsInterval(int seconds)
{
    return settingsStore->setQuickRecordingSecondsInterval(seconds);
}

bool DatabaseConnection::setRecordingResumptionOnStartupEnabled(bool enabled)
{
    return settingsStore->setRecordingResumptionOnStartupEnabled(enabled);
}

bool DatabaseConnection::setAccessControlActive(bool active)
{
    return settingsStore->setAccessControlActive(active);
}

bool DatabaseConnection::setSecurityQuestionsActive(bool active)
{
    return settingsStore->setSecurityQuestionsActive(active);
}

bool DatabaseConnection::setPasswordValidityPeriod(int days)
{
    return settingsStore->setPasswordValidityPeriod(days);
}

bool DatabaseConnection::setScreenLockTimeout(int timeout)
{
    return settingsStore->setScreenLockTimeout(timeout);
}

bool DatabaseConnection::setSmtpConfiguration(const SmtpConfiguration& configuration)
{
    return settingsStore->setSmtpConfiguration(configuration);
}

bool DatabaseConnection::setReportConfiguration(const ReportConfiguration& configuration)
{
    return settingsStore->setReportConfiguration(configuration);
}

bool DatabaseConnection::setAlarmRepetitionEnabled(bool enabled)
{
    return settingsStore->setAlarmRepetitionEnabled(enabled);
}

bool DatabaseConnection::setAlarmRepetitionIntervalInSeconds(int seconds)
{
    return settingsStore->setAlarmRepetitionIntervalInSeconds(seconds);
}

bool DatabaseConnection::setPreAlarmDelayInSeconds(int seconds)
{
    return settingsStore->setPreAlarmDelayInSeconds(seconds);
}

bool DatabaseConnection::setBackupScheduleConfiguration(const BackupScheduleConfiguration& configuration)
{
    return settingsStore->setBackupScheduleConfiguration(configuration);
}

bool DatabaseConnection::setBackupCleanupSettings(const BackupCleanupSettings& settings)
{
    return settingsStore->setBackupCleanupSettings(settings);
}

int DatabaseConnection::getAllowedNumberOfFailedLogins() const
{
    return settingsStore->getAllowedNumberOfFailedLogins();
}

bool DatabaseConnection::setAllowedNumberOfFailedLogins(int number)
{
    return settingsStore->setAllowedNumberOfFailedLogins(number);
}

ZelmorNetworkConfiguration DatabaseConnection::getZelmorNetworkConfiguration() const
{
    return settingsStore->getZelmorNetworkConfiguration();
}

bool DatabaseConnection::setZelmorNetworkConfiguration(const ZelmorNetworkConfiguration& configuration)
{
    return settingsStore->setZelmorNetworkConfiguration(configuration);
}

int DatabaseConnection::getZelmorNumConnectionAttempts() const
{
    return settingsStore->getZelmorNumConnectionAttempts();
}

bool DatabaseConnection::setZelmorNumConnectionAttempts(int attempts)
{
    return settingsStore->setZelmorNumConnectionAttempts(attempts);
}

bool DatabaseConnection::isZelmorConnectionActive() const
{
    return settingsStore->isZelmorConnectionActive();
}

bool DatabaseConnection::setZelmorConnectionActive(bool active)
{
    return settingsStore->setZelmorConnectionActive(active);
}

SirenBoxNetworkConfiguration DatabaseConnection::getSirenBoxNetworkConfiguration() const
{
    return settingsStore->getSirenBoxNetworkConfiguration();
}

bool DatabaseConnection::setSirenBoxNetworkConfiguration(const SirenBoxNetworkConfiguration& configuration)
{
    return settingsStore->setSirenBoxNetworkConfiguration(configuration);
}

int DatabaseConnection::getSirenBoxNumConnectionAttempts() const
{
    return settingsStore->getSirenBoxNumConnectionAttempts();
}

bool DatabaseConnection::setSirenBoxNumConnectionAttempts(int attempts)
{
    return settingsStore->setSirenBoxNumConnectionAttempts(attempts);
}

bool DatabaseConnection::isSirenBoxActive() const
{
    return settingsStore->isSirenBoxActive();
}

bool DatabaseConnection::setSirenBoxActive(bool active)
{
    return settingsStore->setSirenBoxActive(active);
}

QStringList DatabaseConnection::getRecipientMailAddresses() const
{
    return settingsStore->getRecipientMailAddresses();
}

bool DatabaseConnection::isMailAddressInRecipients(const QString& address) const
{
    return settingsStore->isMailAddressInRecipients(address);
}

bool DatabaseConnection::addMailAddressToRecipients(const QString& address)
{
    return settingsStore->addMailAddressToRecipients(address);
}

bool DatabaseConnection::deleteMailAddressFromRecipients(const QString& address)
{
    return settingsStore->deleteMailAddressFromRecipients(address);
}

} // namespace zelmor::base::connection::databaseconnection
