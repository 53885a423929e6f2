#pragma once

#include "Domain/Api/ApplicationTableProperties.h"

#include <QList>
#include <QSharedPointer>
#include <QVariant>

namespace zelmor::domain::api {
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::domain::types {
class SecurityQuestionAnswer;
class UserId;
class UserPreferences;
} // namespace zelmor::domain::types

namespace zelmor::base::connection::databaseconnection {

class SqlQuery;
class SqlStoreChecks;

// The two tables that hang on a user beside its own row: the display
// preferences in "user_preferences", one row per user, and the security
// answers in "user_has_security_question", one row per question.
// SqlUserDatabaseConnection owns one and passes these operations on to it;
// the helper reports through the store's checks.
//
// Formats and the decimal separator are kept as texts, the file format, the
// language and the units as their numbers; empty texts, hashes and salts are
// written as NULL. Use only after the store has checked its dependencies.
class SqlUserPreferencesAndAnswers
{
public:
    // The columns of a preferences row without the user, and of an answer row.
    static constexpr int preferencesColumnCount_ = 7;
    static constexpr int answerColumnCount_ = 4;

    explicit SqlUserPreferencesAndAnswers(const SqlStoreChecks& checks);

    void setConnection(zelmor::domain::api::ISqlConnection* connection);

    // Null without a row; null, reported as UNEXPECTED_RESULT, for a row of
    // another width. NULL columns read as the defaults of UserPreferences().
    QSharedPointer<zelmor::domain::types::UserPreferences>
    getUserPreferences(const zelmor::domain::types::UserId& id) const;
    QVariant getUserPreferencesPropertyValue(const zelmor::domain::types::UserId& id,
                                             zelmor::domain::api::UserPreferencesProperty property) const;
    bool addUserPreferences(const zelmor::domain::types::UserId& id,
                            const zelmor::domain::types::UserPreferences& preferences);
    bool updateUserPreferences(const zelmor::domain::types::UserId& id,
                               const zelmor::domain::types::UserPreferences& preferences);
    // The delete of the user's preferences, to go into a transaction.
    static QSharedPointer<SqlQuery> prepareUserPreferencesDeleteQuery(const zelmor::domain::types::UserId& id);

    // The answer columns of the user's rows, in the order of the row layout.
    static SqlQuery prepareSecurityQuestionAnswerSelectQuery(const zelmor::domain::types::UserId& id);
    // The empty answer (question 0, no hash, no salt), reported as
    // UNEXPECTED_RESULT, for a row of another width.
    zelmor::domain::types::SecurityQuestionAnswer parseUserHasSecurityQuestionTableRow(const QList<QVariant>& row,
                                                                                       int expectedColumns) const;
    bool deleteUserSecurityQuestionAnswers(const zelmor::domain::types::UserId& id);
    bool addUserSecurityQuestionAnswer(const zelmor::domain::types::UserId& id,
                                       const zelmor::domain::types::SecurityQuestionAnswer& answer);

private:
    const SqlStoreChecks& checks;
    zelmor::domain::api::ISqlConnection* connection = nullptr;
};

} // namespace zelmor::base::connection::databaseconnection
