#pragma once

#include "Domain/Api/ApplicationTableProperties.h"
#include "Domain/Types/DatabaseConnectionError.h"
#include "Domain/Types/SignalId.h"

#include <QList>
#include <QMap>
#include <QSharedPointer>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace zelmor::domain::types {
class ChamberId;
class ChamberSignal;
class SecurityQuestionAnswer;
class UserData;
class UserId;
class UserPreferences;
} // namespace zelmor::domain::types

namespace zelmor::domain::api {

// The users of the monitoring application with their login data, security
// answers, display preferences, the signals each wants to see of a chamber and
// the recording settings each chose last. Passwords and answers are moved as
// hash and salt, never computed here. A user named in the log is not removed
// but kept as a deleted one, with only the login name left.
//
// Every operation returns its empty value (false, an empty list, a null
// pointer, an invalid QVariant) on failure and reports it through error().
class IUserDatabaseConnection
{
public:
    virtual ~IUserDatabaseConnection();

    // The users that aren't deleted, each with its preferences.
    virtual QList<QSharedPointer<zelmor::domain::types::UserData>> getAllUserData() const = 0;
    // Null when there is no such user; deleted users are found too.
    virtual QSharedPointer<zelmor::domain::types::UserData>
    getUserData(const zelmor::domain::types::UserId& id) const = 0;
    virtual QSharedPointer<zelmor::domain::types::UserData> getUserDataByName(const QString& loginName) const = 0;
    virtual QList<zelmor::domain::types::SecurityQuestionAnswer>
    getUserSecurityQuestionAnswers(const zelmor::domain::types::UserId& id) const = 0;
    // Null when the user has no preferences.
    virtual QSharedPointer<zelmor::domain::types::UserPreferences>
    getUserPreferences(const zelmor::domain::types::UserId& id) const = 0;
    // Of all users, deleted ones included.
    virtual QStringList getAllUserNames() const = 0;
    virtual QString getUserName(const zelmor::domain::types::UserId& id) const = 0;
    // The chosen signals of the chamber's type, in the user's order; a chosen
    // signal that the type lacks is left out.
    virtual QList<zelmor::domain::types::ChamberSignal>
    getVisibleChamberSignals(const zelmor::domain::types::UserId& user,
                             const zelmor::domain::types::ChamberId& chamber) const = 0;
    // Replaces the user's choice for the chamber as a whole, in list order.
    virtual bool setVisibleChamberSignals(const QList<zelmor::domain::types::SignalId>& signalIds,
                                          const zelmor::domain::types::UserId& user,
                                          const zelmor::domain::types::ChamberId& chamber) = 0;
    // The column's value as stored; invalid without the row.
    virtual QVariant getUserPropertyValue(const zelmor::domain::types::UserId& id, UserProperty property) const = 0;
    virtual QVariant getUserPreferencesPropertyValue(const zelmor::domain::types::UserId& id,
                                                     UserPreferencesProperty property) const = 0;

    // The new user's id goes into the argument; the preferences, default ones
    // when the user has none, are added behind it.
    virtual bool addUser(zelmor::domain::types::UserData& user) = 0;
    // Replaces all answers of the user.
    virtual bool
    setUserSecurityQuestionAnswers(const zelmor::domain::types::UserId& id,
                                   const QList<zelmor::domain::types::SecurityQuestionAnswer>& answers) = 0;
    virtual bool addUserPreferences(const zelmor::domain::types::UserId& id,
                                    const zelmor::domain::types::UserPreferences& preferences) = 0;
    virtual bool updateUserPreferences(const zelmor::domain::types::UserId& id,
                                       const zelmor::domain::types::UserPreferences& preferences) = 0;
    // Every field but the id, and the preferences when the user has them.
    virtual bool updateUser(const zelmor::domain::types::UserData& user) = 0;
    // The value is written as it is given.
    virtual bool setUserPropertyValue(const zelmor::domain::types::UserId& id, UserProperty property,
                                      const QVariant& value) = 0;
    // Removes the user, or blanks it as a deleted user when the log names it.
    // Either way all or nothing.
    virtual bool deleteUser(const zelmor::domain::types::UserId& id) = 0;
    virtual bool showChamberSignal(const zelmor::domain::types::UserId& user,
                                   const zelmor::domain::types::ChamberId& chamber,
                                   const zelmor::domain::types::SignalId& signalId) = 0;
    virtual bool hideChamberSignal(const zelmor::domain::types::UserId& user,
                                   const zelmor::domain::types::ChamberId& chamber,
                                   const zelmor::domain::types::SignalId& signalId) = 0;
    // The user's configuration text of each recording, by recording id.
    virtual QMap<int, QString> getUserRecordingConfig(const zelmor::domain::types::UserId& user) = 0;
    virtual bool setUserRecordingConfig(const zelmor::domain::types::UserId& user, int recording,
                                        QString configuration) = 0;

    // A signal in the implementations.
    virtual void error(zelmor::domain::types::DatabaseConnectionError error) const = 0;
};

} // namespace zelmor::domain::api
