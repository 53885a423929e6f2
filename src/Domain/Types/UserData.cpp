#include "Domain/Types/UserData.h"

#include "Domain/Types/UserPreferences.h"

#include <QCoreApplication>

namespace zelmor::domain::types {

const QMap<UserLevel, QString> UserData::USER_LEVEL_NAMES = {
    {BASIC, QStringLiteral(QT_TRANSLATE_NOOP("UserData", "Basic"))},
    {ADVANCED, QStringLiteral(QT_TRANSLATE_NOOP("UserData", "Advanced"))},
    {ADMINISTRATOR, QStringLiteral(QT_TRANSLATE_NOOP("UserData", "Administrator"))},
    {SERVICE, QStringLiteral(QT_TRANSLATE_NOOP("UserData", "Service"))},
    {LABORATORY, QStringLiteral(QT_TRANSLATE_NOOP("UserData", "Laboratory"))},
    {SUPERUSER, QStringLiteral(QT_TRANSLATE_NOOP("UserData", "Superuser"))},
};

UserData::UserData()
    : UserData(0, QString(), BASIC)
{
}

UserData::UserData(const UserId& id, const QString& loginName, UserLevel userLevel)
    : UserData(id, loginName, QString(), QString(), QString(), QByteArray(), QByteArray(), QDateTime(), QDateTime(),
               false, 0, 0, false, userLevel, QSharedPointer<UserPreferences>())
{
}

UserData::UserData(const UserId& id, const QString& loginName, const QString& mailAddress, const QString& firstName,
                   const QString& lastName, const QByteArray& passwordHash, const QByteArray& passwordSalt,
                   const QDateTime& passwordCreationTime, const QDateTime& passwordExpirationTime,
                   bool passwordIsTemporary, int failedLogins, int failedSecurityQuestions, bool isBanned,
                   UserLevel userLevel, const QSharedPointer<UserPreferences>& preferences)
    : id(id)
    , loginName(loginName)
    , mailAddress(mailAddress)
    , firstName(firstName)
    , lastName(lastName)
    , passwordHash(passwordHash)
    , passwordSalt(passwordSalt)
    , passwordCreationTime(passwordCreationTime)
    , passwordExpirationTime(passwordExpirationTime)
    , passwordIsTemporary(passwordIsTemporary)
    , failedLogins(failedLogins)
    , failedSecurityQuestions(failedSecurityQuestions)
    , isBanned(isBanned)
    , userLevel(userLevel)
    , preferences(preferences)
{
}

QString UserData::getUserLevelName() const
{
    const auto name = USER_LEVEL_NAMES.constFind(userLevel);
    if (name == USER_LEVEL_NAMES.constEnd()) {
        return QString();
    }
    // translated on each call, so that a language chosen after start-up shows
    return QCoreApplication::translate("UserData", name->toUtf8().constData());
}

bool operator==(const UserData& left, const UserData& right)
{
    const bool preferencesEqual = left.preferences && right.preferences ? *left.preferences == *right.preferences
                                                                        : !left.preferences && !right.preferences;
    return left.id == right.id && left.loginName == right.loginName && left.mailAddress == right.mailAddress
           && left.firstName == right.firstName && left.lastName == right.lastName
           && left.passwordHash == right.passwordHash && left.passwordSalt == right.passwordSalt
           && left.passwordCreationTime == right.passwordCreationTime
           && left.passwordExpirationTime == right.passwordExpirationTime
           && left.passwordIsTemporary == right.passwordIsTemporary && left.failedLogins == right.failedLogins
           && left.failedSecurityQuestions == right.failedSecurityQuestions && left.isBanned == right.isBanned
           && left.userLevel == right.userLevel && preferencesEqual;
}

bool operator!=(const UserData& left, const UserData& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
