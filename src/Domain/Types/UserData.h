#pragma once

#include "Domain/Types/UserId.h"
#include "Domain/Types/UserLevel.h"

#include <QByteArray>
#include <QDateTime>
#include <QMap>
#include <QMetaType>
#include <QSharedPointer>
#include <QString>

namespace zelmor::domain::types {

class UserPreferences;

// A user of the monitoring application: a row of table "application_user" with
// the user's preferences.
class UserData
{
public:
    // The names of the levels 1 to 6 in the source language, marked for the
    // translation context "UserData"; getUserLevelName() gives them translated.
    static const QMap<UserLevel, QString> USER_LEVEL_NAMES;

    // Id 0, level BASIC, nothing else.
    UserData();
    // A user with no password, no counts and no preferences yet.
    UserData(const UserId& id, const QString& loginName, UserLevel userLevel);
    UserData(const UserId& id, const QString& loginName, const QString& mailAddress, const QString& firstName,
             const QString& lastName, const QByteArray& passwordHash, const QByteArray& passwordSalt,
             const QDateTime& passwordCreationTime, const QDateTime& passwordExpirationTime, bool passwordIsTemporary,
             int failedLogins, int failedSecurityQuestions, bool isBanned, UserLevel userLevel,
             const QSharedPointer<UserPreferences>& preferences);

    // The translated name of the user's level; the empty text for a level without one.
    QString getUserLevelName() const;

    UserId id;
    QString loginName;
    QString mailAddress;
    QString firstName;
    QString lastName;
    QByteArray passwordHash;
    QByteArray passwordSalt;
    QDateTime passwordCreationTime;
    QDateTime passwordExpirationTime;
    bool passwordIsTemporary;
    int failedLogins;
    int failedSecurityQuestions;
    bool isBanned;
    UserLevel userLevel;
    // Null until read or set.
    QSharedPointer<UserPreferences> preferences;
};

// Preferences compare by content; two null ones are equal.
bool operator==(const UserData& left, const UserData& right);
bool operator!=(const UserData& left, const UserData& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::UserData)
