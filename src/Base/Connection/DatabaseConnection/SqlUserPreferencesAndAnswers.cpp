#include "Base/Connection/DatabaseConnection/SqlUserPreferencesAndAnswers.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Base/Connection/DatabaseConnection/SqlStoreChecks.h"
#include "Base/Connection/DatabaseConnection/sqlvalue.h"
#include "Domain/Api/ISqlConnection.h"
#include "Domain/Types/SecurityQuestionAnswer.h"
#include "Domain/Types/UserId.h"
#include "Domain/Types/UserPreferences.h"

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;
using zelmor::domain::api::ISqlConnection;
using zelmor::domain::api::UserHasSecurityQuestionProperty;
using zelmor::domain::api::UserPreferencesProperty;

namespace {

using DC = DatabaseSchema;

// Positions in a row of preferences: the table's columns behind the user.
enum PreferencesColumn {
    PREFERENCES_FILE_FORMAT,
    PREFERENCES_LOCALIZATION,
    PREFERENCES_TIME_FORMAT,
    PREFERENCES_DATE_FORMAT,
    PREFERENCES_DECIMAL_FORMAT,
    PREFERENCES_TEMPERATURE_UNIT,
    PREFERENCES_HUMIDITY_UNIT,
    PREFERENCES_COLUMNS
};
static_assert(PREFERENCES_COLUMNS == SqlUserPreferencesAndAnswers::preferencesColumnCount_, "one per column");

const UserPreferencesProperty preferencesLayout[PREFERENCES_COLUMNS] = {
    UserPreferencesProperty::DEFAULT_FILE_FORMAT, UserPreferencesProperty::LOCALIZATION,
    UserPreferencesProperty::TIME_FORMAT,         UserPreferencesProperty::DATE_FORMAT,
    UserPreferencesProperty::DECIMAL_FORMAT,      UserPreferencesProperty::TEMPERATURE_UNIT,
    UserPreferencesProperty::HUMIDITY_UNIT,
};

// Positions in a row of an answer: the table's columns in order.
enum AnswerColumn { ANSWER_USER_ID, ANSWER_QUESTION_ID, ANSWER_HASH, ANSWER_SALT, ANSWER_COLUMNS };
static_assert(ANSWER_COLUMNS == SqlUserPreferencesAndAnswers::answerColumnCount_, "one position per column");

const UserHasSecurityQuestionProperty answerLayout[ANSWER_COLUMNS] = {
    UserHasSecurityQuestionProperty::USER_ID,
    UserHasSecurityQuestionProperty::QUESTION_ID,
    UserHasSecurityQuestionProperty::ANSWER_HASH,
    UserHasSecurityQuestionProperty::ANSWER_SALT,
};

QString preferencesColumn(UserPreferencesProperty property)
{
    return DC::lookupUserPreferencesColumnName(property);
}

QString answerColumn(UserHasSecurityQuestionProperty property)
{
    return DC::lookupUserHasSecurityQuestionColumnName(property);
}

// The seven columns behind the user, as they are written.
QList<SqlQuery::ColumnValuePair> preferencesValues(const UserPreferences& preferences)
{
    // QString(QChar()) would be a text of one NUL character, not an empty one.
    const QVariant separator = preferences.decimalSeparator.isNull() ? sqlvalue::null<QString>()
                                                                     : QVariant(QString(preferences.decimalSeparator));
    return {
        {preferencesColumn(UserPreferencesProperty::DEFAULT_FILE_FORMAT), int(preferences.fileFormat)},
        {preferencesColumn(UserPreferencesProperty::LOCALIZATION), int(preferences.language)},
        {preferencesColumn(UserPreferencesProperty::TIME_FORMAT), sqlvalue::text(preferences.timeFormat)},
        {preferencesColumn(UserPreferencesProperty::DATE_FORMAT), sqlvalue::text(preferences.dateFormat)},
        {preferencesColumn(UserPreferencesProperty::DECIMAL_FORMAT), separator},
        {preferencesColumn(UserPreferencesProperty::TEMPERATURE_UNIT), int(preferences.temperatureUnit)},
        {preferencesColumn(UserPreferencesProperty::HUMIDITY_UNIT), int(preferences.humidityUnit)},
    };
}

} // namespace

SqlUserPreferencesAndAnswers::SqlUserPreferencesAndAnswers(const SqlStoreChecks& checks)
    : checks(checks)
{
}

void SqlUserPreferencesAndAnswers::setConnection(ISqlConnection* connection)
{
    this->connection = connection;
}

QSharedPointer<UserPreferences> SqlUserPreferencesAndAnswers::getUserPreferences(const UserId& id) const
{
    SqlQuery query;
    query.selectColumns(SqlRow::columnNames(preferencesColumn, preferencesLayout))
        .fromTable(DC::lookupUserPreferencesTableName())
        .whereColumn(preferencesColumn(UserPreferencesProperty::USER_ID))
        .equals(int(id));
    const QList<QVariant> values = connection->fetchSingleRow(query);
    if (values.isEmpty() || !checks.hasWidth(values, PREFERENCES_COLUMNS, "getUserPreferences")) {
        return {};
    }
    const SqlRow row(values);
    const UserPreferences defaults;
    const QString separator = row.toString(PREFERENCES_DECIMAL_FORMAT);
    return QSharedPointer<UserPreferences>::create(
        FileFormat(row.toInt(PREFERENCES_FILE_FORMAT, defaults.fileFormat)),
        QLocale::Language(row.toInt(PREFERENCES_LOCALIZATION, defaults.language)),
        row.toString(PREFERENCES_TIME_FORMAT), row.toString(PREFERENCES_DATE_FORMAT),
        separator.isEmpty() ? defaults.decimalSeparator : separator.at(0),
        Unit::UnitId(row.toInt(PREFERENCES_TEMPERATURE_UNIT, defaults.temperatureUnit)),
        Unit::UnitId(row.toInt(PREFERENCES_HUMIDITY_UNIT, defaults.humidityUnit)));
}

QVariant SqlUserPreferencesAndAnswers::getUserPreferencesPropertyValue(const UserId& id,
                                                                       UserPreferencesProperty property) const
{
    SqlQuery query;
    query.selectColumn(preferencesColumn(property))
        .fromTable(DC::lookupUserPreferencesTableName())
        .whereColumn(preferencesColumn(UserPreferencesProperty::USER_ID))
        .equals(int(id));
    return connection->fetchSingleValue(query);
}

bool SqlUserPreferencesAndAnswers::addUserPreferences(const UserId& id, const UserPreferences& preferences)
{
    SqlQuery query;
    query.insertTableColumnValuePairs(
        DC::lookupUserPreferencesTableName(),
        QList<SqlQuery::ColumnValuePair>{{preferencesColumn(UserPreferencesProperty::USER_ID), int(id)}}
            + preferencesValues(preferences));
    return connection->execute(query).success;
}

bool SqlUserPreferencesAndAnswers::updateUserPreferences(const UserId& id, const UserPreferences& preferences)
{
    SqlQuery query;
    query.updateTable(DC::lookupUserPreferencesTableName())
        .setColumnValuePairs(preferencesValues(preferences))
        .whereColumn(preferencesColumn(UserPreferencesProperty::USER_ID))
        .equals(int(id));
    return connection->execute(query).success;
}

QSharedPointer<SqlQuery> SqlUserPreferencesAndAnswers::prepareUserPreferencesDeleteQuery(const UserId& id)
{
    QSharedPointer<SqlQuery> query = QSharedPointer<SqlQuery>::create();
    query->deleteFromTable(DC::lookupUserPreferencesTableName())
        .whereColumn(preferencesColumn(UserPreferencesProperty::USER_ID))
        .equals(int(id));
    return query;
}

SqlQuery SqlUserPreferencesAndAnswers::prepareSecurityQuestionAnswerSelectQuery(const UserId& id)
{
    SqlQuery query;
    query.selectColumns(SqlRow::columnNames(answerColumn, answerLayout))
        .fromTable(DC::lookupUserHasSecurityQuestionTableName())
        .whereColumn(answerColumn(UserHasSecurityQuestionProperty::USER_ID))
        .equals(int(id));
    return query;
}

SecurityQuestionAnswer SqlUserPreferencesAndAnswers::parseUserHasSecurityQuestionTableRow(const QList<QVariant>& row,
                                                                                          int expectedColumns) const
{
    if (!checks.hasWidth(row, expectedColumns, "parseUserHasSecurityQuestionTableRow")) {
        return SecurityQuestionAnswer();
    }
    const SqlRow values(row);
    return SecurityQuestionAnswer(values.toInt(ANSWER_QUESTION_ID, 0), values.toByteArray(ANSWER_HASH),
                                  values.toByteArray(ANSWER_SALT));
}

bool SqlUserPreferencesAndAnswers::deleteUserSecurityQuestionAnswers(const UserId& id)
{
    SqlQuery query;
    query.deleteFromTable(DC::lookupUserHasSecurityQuestionTableName())
        .whereColumn(answerColumn(UserHasSecurityQuestionProperty::USER_ID))
        .equals(int(id));
    return connection->execute(query).success;
}

bool SqlUserPreferencesAndAnswers::addUserSecurityQuestionAnswer(const UserId& id, const SecurityQuestionAnswer& answer)
{
    SqlQuery query;
    query.insertTableColumnValuePairs(
        DC::lookupUserHasSecurityQuestionTableName(),
        {
            {answerColumn(UserHasSecurityQuestionProperty::USER_ID), int(id)},
            {answerColumn(UserHasSecurityQuestionProperty::QUESTION_ID), answer.questionId},
            {answerColumn(UserHasSecurityQuestionProperty::ANSWER_HASH), sqlvalue::bytes(answer.answerHash)},
            {answerColumn(UserHasSecurityQuestionProperty::ANSWER_SALT), sqlvalue::bytes(answer.answerSalt)},
        });
    return connection->execute(query).success;
}

} // namespace zelmor::base::connection::databaseconnection
