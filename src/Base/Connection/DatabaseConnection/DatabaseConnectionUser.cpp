#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/SqlUserDatabaseConnection.h"
#include "Domain/Types/ChamberId.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/SecurityQuestionAnswer.h"
#include "Domain/Types/UserData.h"
#include "Domain/Types/UserId.h"
#include "Domain/Types/UserPreferences.h"

// The user store's interface, passed on call by call.

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;
using zelmor::domain::api::UserPreferencesProperty;
using zelmor::domain::api::UserProperty;

QList<QSharedPointer<UserData>> DatabaseConnection::getAllUserData() const
{
    return userStore->getAllUserData();
}

QSharedPointer<UserData> DatabaseConnection::getUserData(const UserId& id) const
{
    return userStore->getUserData(id);
}

QSharedPointer<UserData> DatabaseConnection::getUserDataByName(const QString& loginName) const
{
    return userStore->getUserDataByName(loginName);
}

QList<SecurityQuestionAnswer> DatabaseConnection::getUserSecurityQuestionAnswers(const UserId& id) const
{
    return userStore->getUserSecurityQuestionAnswers(id);
}

QSharedPointer<UserPreferences> DatabaseConnection::getUserPreferences(const UserId& id) const
{
    return userStore->getUserPreferences(id);
}

QStringList DatabaseConnection::getAllUserNames() const
{
    return userStore->getAllUserNames();
}

QString DatabaseConnection::getUserName(const UserId& id) const
{
    return userStore->getUserName(id);
}

QList<ChamberSignal> DatabaseConnection::getVisibleChamberSignals(const UserId& user, const ChamberId& chamber) const
{
    return userStore->getVisibleChamberSignals(user, chamber);
}

bool DatabaseConnection::setVisibleChamberSignals(const QList<SignalId>& signalIds, const UserId& user,
                                                  const ChamberId& chamber)
{
    return userStore->setVisibleChamberSignals(signalIds, user, chamber);
}

QVariant DatabaseConnection::getUserPropertyValue(const UserId& id, UserProperty property) const
{
    return userStore->getUserPropertyValue(id, property);
}

QVariant DatabaseConnection::getUserPreferencesPropertyValue(const UserId& id, UserPreferencesProperty property) const
{
    return userStore->getUserPreferencesPropertyValue(id, property);
}

bool DatabaseConnection::addUser(UserData& user)
{
    return userStore->addUser(user);
}

bool DatabaseConnection::setUserSecurityQuestionAnswers(const UserId& id, const QList<SecurityQuestionAnswer>& answers)
{
    return userStore->setUserSecurityQuestionAnswers(id, answers);
}

bool DatabaseConnection::addUserPreferences(const UserId& id, const UserPreferences& preferences)
{
    return userStore->addUserPreferences(id, preferences);
}

bool DatabaseConnection::updateUserPreferences(const UserId& id, const UserPreferences& preferences)
{
    return userStore->updateUserPreferences(id, preferences);
}

bool DatabaseConnection::updateUser(const UserData& user)
{
    return userStore->updateUser(user);
}

bool DatabaseConnection::setUserPropertyValue(const UserId& id, UserProperty property, const QVariant& value)
{
    return userStore->setUserPropertyValue(id, property, value);
}

bool DatabaseConnection::deleteUser(const UserId& id)
{
    return userStore->deleteUser(id);
}

bool DatabaseConnection::showChamberSignal(const UserId& user, const ChamberId& chamber, const SignalId& signalId)
{
    return userStore->showChamberSignal(user, chamber, signalId);
}

bool DatabaseConnection::hideChamberSignal(const UserId& user, const ChamberId& chamber, const SignalId& signalId)
{
    return userStore->hideChamberSignal(user, chamber, signalId);
}

QMap<int, QString> DatabaseConnection::getUserRecordingConfig(const UserId& user)
{
    return userStore->getUserRecordingConfig(user);
}

bool DatabaseConnection::setUserRecordingConfig(const UserId& user, int recording, QString configuration)
{
    return userStore->setUserRecordingConfig(user, recording, configuration);
}

} // namespace zelmor::base::connection::databaseconnection
