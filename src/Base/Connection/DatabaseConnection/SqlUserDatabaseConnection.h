#pragma once

#include "Base/Connection/DatabaseConnection/SqlStoreChecks.h"
#include "Base/Connection/DatabaseConnection/SqlUserPreferencesAndAnswers.h"
#include "Domain/Api/IInitializing.h"
#include "Domain/Api/IUserDatabaseConnection.h"
#include "Domain/Types/DatabaseConnectionError.h"

#include <QLoggingCategory>
#include <QObject>

namespace zelmor::domain::api {
class IConfigurationDatabaseConnection;
class IProtocolDatabaseConnection;
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::base::connection::databaseconnection {

Q_DECLARE_LOGGING_CATEGORY(SQLUSERDATABASECONNECTION)

// The users in table "application_user", with the tables that hang on them:
// preferences and security answers (through SqlUserPreferencesAndAnswers),
// the signals a user shows of a chamber in
// "user_has_chamber_signal_visibility_preference", in the user's order
// ("position", from 0), and a configuration text per recording in
// "user_recording_config". Times are kept in UTC; empty texts, hashes and
// salts, invalid times and counters of -1 are written as NULL.
//
// A user whom the log names is never removed: deleteUser() blanks the row but
// for the id and the login name and marks it "is_deleted". A NULL there counts
// as not deleted. The signals of a chamber are those of its type in the
// catalogue, found through the chamber's "chamber_type_id".
//
// Failures are logged in "zelmor.SqlUserDatabaseConnection" and emitted
// through error(). Use on the thread of the connection.
class SqlUserDatabaseConnection : public QObject,
                                  public zelmor::domain::api::IUserDatabaseConnection,
                                  public zelmor::domain::api::IInitializing
{
    Q_OBJECT

public:
    // With mergeUserLevels, users stored as ADVANCED are read as BASIC ones.
    explicit SqlUserDatabaseConnection(bool mergeUserLevels, QObject* parent = nullptr);
    ~SqlUserDatabaseConnection() override;

    // None is owned. True when all three are set.
    virtual bool setDependencies(zelmor::domain::api::ISqlConnection* connection,
                                 zelmor::domain::api::IConfigurationDatabaseConnection* configuration,
                                 zelmor::domain::api::IProtocolDatabaseConnection* protocol);
    // True when the database has the tables "application_user" and
    // "user_preferences" (MISSING_TABLE if not).
    bool initialize() override;

    QList<QSharedPointer<zelmor::domain::types::UserData>> getAllUserData() const override;
    QSharedPointer<zelmor::domain::types::UserData> getUserData(const zelmor::domain::types::UserId& id) const override;
    QSharedPointer<zelmor::domain::types::UserData> getUserDataByName(const QString& loginName) const override;
    QList<zelmor::domain::types::SecurityQuestionAnswer>
    getUserSecurityQuestionAnswers(const zelmor::domain::types::UserId& id) const override;
    QSharedPointer<zelmor::domain::types::UserPreferences>
    getUserPreferences(const zelmor::domain::types::UserId& id) const override;
    QStringList getAllUserNames() const override;
    QString getUserName(const zelmor::domain::types::UserId& id) const override;
    QList<zelmor::domain::types::ChamberSignal>
    getVisibleChamberSignals(const zelmor::domain::types::UserId& user,
                             const zelmor::domain::types::ChamberId& chamber) const override;
    bool setVisibleChamberSignals(const QList<zelmor::domain::types::SignalId>& signalIds,
                                  const zelmor::domain::types::UserId& user,
                                  const zelmor::domain::types::ChamberId& chamber) override;
    QVariant getUserPropertyValue(const zelmor::domain::types::UserId& id,
                                  zelmor::domain::api::UserProperty property) const override;
    QVariant getUserPreferencesPropertyValue(const zelmor::domain::types::UserId& id,
                                             zelmor::domain::api::UserPreferencesProperty property) const override;
    // A failed insert is logged as "Failed to add user".
    bool addUser(zelmor::domain::types::UserData& user) override;
    // Not one transaction: the answers added before a failing one stay.
    bool setUserSecurityQuestionAnswers(const zelmor::domain::types::UserId& id,
                                        const QList<zelmor::domain::types::SecurityQuestionAnswer>& answers) override;
    bool addUserPreferences(const zelmor::domain::types::UserId& id,
                            const zelmor::domain::types::UserPreferences& preferences) override;
    bool updateUserPreferences(const zelmor::domain::types::UserId& id,
                               const zelmor::domain::types::UserPreferences& preferences) override;
    bool updateUser(const zelmor::domain::types::UserData& user) override;
    bool setUserPropertyValue(const zelmor::domain::types::UserId& id, zelmor::domain::api::UserProperty property,
                              const QVariant& value) override;
    // One transaction with the preferences' delete first. A user whom the log
    // doesn't name is removed, which the database refuses while rows of the
    // user's visible signals refer to it.
    bool deleteUser(const zelmor::domain::types::UserId& id) override;
    // The signal joins the user's choice without a position.
    bool showChamberSignal(const zelmor::domain::types::UserId& user, const zelmor::domain::types::ChamberId& chamber,
                           const zelmor::domain::types::SignalId& signalId) override;
    bool hideChamberSignal(const zelmor::domain::types::UserId& user, const zelmor::domain::types::ChamberId& chamber,
                           const zelmor::domain::types::SignalId& signalId) override;
    QMap<int, QString> getUserRecordingConfig(const zelmor::domain::types::UserId& user) override;
    bool setUserRecordingConfig(const zelmor::domain::types::UserId& user, int recording,
                                QString configuration) override;

    virtual bool areDependenciesSet() const;

signals:
    void error(zelmor::domain::types::DatabaseConnectionError error) const override;

protected:
    // The ids of the user's chosen signals of the chamber, by "position"
    // ascending when ordered, else in the engine's order.
    virtual QList<zelmor::domain::types::SignalId>
    getVisibleChamberSignalIds(const zelmor::domain::types::UserId& user,
                               const zelmor::domain::types::ChamberId& chamber, bool ordered) const;
    virtual bool addUserSecurityQuestionAnswer(const zelmor::domain::types::UserId& id,
                                               const zelmor::domain::types::SecurityQuestionAnswer& answer);
    // Null, reported as UNEXPECTED_RESULT, for a row of another width. A user
    // with an id comes with its preferences.
    virtual QSharedPointer<zelmor::domain::types::UserData> parseUserDataTableRow(const QList<QVariant>& row,
                                                                                  int expectedColumns) const;
    // The empty answer, reported as UNEXPECTED_RESULT, for a row of another width.
    virtual zelmor::domain::types::SecurityQuestionAnswer
    parseUserHasSecurityQuestionTableRow(const QList<QVariant>& row, int expectedColumns) const;

private:
    // The users of the statement's rows; rows that can't be read are left out.
    QList<QSharedPointer<zelmor::domain::types::UserData>> getUsers(const SqlQuery& query) const;
    // The one user of the statement, or null.
    QSharedPointer<zelmor::domain::types::UserData> getUser(const SqlQuery& query) const;
    // The signals of the chamber's type; empty for an unknown chamber.
    QMap<int, zelmor::domain::types::ChamberSignal>
    getChamberSignals(const zelmor::domain::types::ChamberId& chamber) const;

    // The columns of "user_recording_config".
    static const QString columnNameUserId_;
    static const QString columnNameRecordingId_;
    static const QString columnNameConfiguration;

    zelmor::domain::api::ISqlConnection* connection = nullptr;
    zelmor::domain::api::IConfigurationDatabaseConnection* configuration = nullptr;
    zelmor::domain::api::IProtocolDatabaseConnection* protocol = nullptr;
    SqlStoreChecks checks;
    SqlUserPreferencesAndAnswers preferencesAndAnswers;
    bool mergeUserLevels;
};

} // namespace zelmor::base::connection::databaseconnection
