#include "Base/Connection/DatabaseConnection/SqlUserDatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Base/Connection/DatabaseConnection/sqlhelper.h"
#include "Base/Connection/DatabaseConnection/sqlvalue.h"
#include "Domain/Api/IConfigurationDatabaseConnection.h"
#include "Domain/Api/IProtocolDatabaseConnection.h"
#include "Domain/Api/ISqlConnection.h"
#include "Domain/Types/ChamberId.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ChamberTypeId.h"
#include "Domain/Types/SecurityQuestionAnswer.h"
#include "Domain/Types/UserData.h"
#include "Domain/Types/UserId.h"
#include "Domain/Types/UserPreferences.h"

namespace zelmor::base::connection::databaseconnection {

Q_LOGGING_CATEGORY(SQLUSERDATABASECONNECTION, "zelmor.SqlUserDatabaseConnection")

using namespace zelmor::domain::types;
using zelmor::domain::api::ChamberProperty;
using zelmor::domain::api::IConfigurationDatabaseConnection;
using zelmor::domain::api::IProtocolDatabaseConnection;
using zelmor::domain::api::ISqlConnection;
using zelmor::domain::api::UserPreferencesProperty;
using zelmor::domain::api::UserProperty;
using zelmor::domain::api::UserRecordingConfigProperty;
using VisibilityProperty = zelmor::domain::api::UserHasChamberSignalVisibilityPreferenceProperty;

namespace {

using DC = DatabaseSchema;

// Positions in a row of "application_user": its columns in table order.
enum UserColumn {
    USER_ID,
    USER_LOGIN_NAME,
    USER_MAIL_ADDRESS,
    USER_FIRST_NAME,
    USER_LAST_NAME,
    USER_PASSWORD_HASH,
    USER_PASSWORD_SALT,
    USER_PASSWORD_CREATION_TIME,
    USER_PASSWORD_EXPIRATION_TIME,
    USER_PASSWORD_IS_TEMPORARY,
    USER_NUMBER_FAILED_LOGIN_ATTEMPTS,
    USER_NUMBER_FAILED_SECURITY_QUESTION_ATTEMPTS,
    USER_IS_BANNED,
    USER_IS_DELETED,
    USER_LEVEL,
    USER_COLUMNS
};

const UserProperty userLayout[USER_COLUMNS] = {
    UserProperty::ID,
    UserProperty::LOGIN_NAME,
    UserProperty::MAIL_ADDRESS,
    UserProperty::FIRST_NAME,
    UserProperty::LAST_NAME,
    UserProperty::PASSWORD_HASH,
    UserProperty::PASSWORD_SALT,
    UserProperty::PASSWORD_CREATION_TIME,
    UserProperty::PASSWORD_EXPIRATION_TIME,
    UserProperty::PASSWORD_IS_TEMPORARY,
    UserProperty::NUMBER_FAILED_LOGIN_ATTEMPTS,
    UserProperty::NUMBER_FAILED_SECURITY_QUESTION_ATTEMPTS,
    UserProperty::IS_BANNED,
    UserProperty::IS_DELETED,
    UserProperty::USER_LEVEL,
};

// Positions in a row of a user's recording configurations.
enum RecordingConfigColumn { CONFIG_RECORDING_ID, CONFIG_TEXT, CONFIG_COLUMNS };

QString userColumn(UserProperty property)
{
    return DC::lookupUserColumnName(property);
}

QString visibilityColumn(VisibilityProperty property)
{
    return DC::lookupUserHasChamberSignalVisibilityPreferenceColumnName(property);
}

// The columns a user is written with: all but the id and "is_deleted".
QList<SqlQuery::ColumnValuePair> userValues(const UserData& user)
{
    return {
        {userColumn(UserProperty::LOGIN_NAME), sqlvalue::text(user.loginName)},
        {userColumn(UserProperty::MAIL_ADDRESS), sqlvalue::text(user.mailAddress)},
        {userColumn(UserProperty::FIRST_NAME), sqlvalue::text(user.firstName)},
        {userColumn(UserProperty::LAST_NAME), sqlvalue::text(user.lastName)},
        {userColumn(UserProperty::PASSWORD_HASH), sqlvalue::bytes(user.passwordHash)},
        {userColumn(UserProperty::PASSWORD_SALT), sqlvalue::bytes(user.passwordSalt)},
        {userColumn(UserProperty::PASSWORD_CREATION_TIME), sqlvalue::utcTime(user.passwordCreationTime)},
        {userColumn(UserProperty::PASSWORD_EXPIRATION_TIME), sqlvalue::utcTime(user.passwordExpirationTime)},
        {userColumn(UserProperty::PASSWORD_IS_TEMPORARY), user.passwordIsTemporary},
        {userColumn(UserProperty::NUMBER_FAILED_LOGIN_ATTEMPTS), sqlvalue::orNull(user.failedLogins, -1)},
        {userColumn(UserProperty::NUMBER_FAILED_SECURITY_QUESTION_ATTEMPTS),
         sqlvalue::orNull(user.failedSecurityQuestions, -1)},
        {userColumn(UserProperty::IS_BANNED), user.isBanned},
        // The number: a registered enumeration would be bound as its key's text.
        {userColumn(UserProperty::USER_LEVEL), int(user.userLevel)},
    };
}

// The user's row, or the user's and chamber's rows of the visible signals.
SqlQuery& whereUser(SqlQuery& query, const UserId& id)
{
    return query.whereColumn(userColumn(UserProperty::ID)).equals(int(id));
}

SqlQuery& whereUserAndChamber(SqlQuery& query, const UserId& user, const ChamberId& chamber)
{
    return query.whereColumn(visibilityColumn(VisibilityProperty::USER_ID))
        .equals(int(user))
        .andColumn(visibilityColumn(VisibilityProperty::CHAMBER_ID))
        .equals(int(chamber));
}

} // namespace

const QString SqlUserDatabaseConnection::columnNameUserId_ =
    DC::lookupUserRecordingConfigColumnName(UserRecordingConfigProperty::USER_ID);
const QString SqlUserDatabaseConnection::columnNameRecordingId_ =
    DC::lookupUserRecordingConfigColumnName(UserRecordingConfigProperty::RECORDING_ID);
const QString SqlUserDatabaseConnection::columnNameConfiguration =
    DC::lookupUserRecordingConfigColumnName(UserRecordingConfigProperty::CONFIG);

SqlUserDatabaseConnection::SqlUserDatabaseConnection(bool mergeUserLevels, QObject* parent)
    : QObject(parent)
    , checks(this, SQLUSERDATABASECONNECTION)
    , preferencesAndAnswers(checks)
    , mergeUserLevels(mergeUserLevels)
{
}

SqlUserDatabaseConnection::~SqlUserDatabaseConnection() = default;

bool SqlUserDatabaseConnection::setDependencies(ISqlConnection* connection,
                                                IConfigurationDatabaseConnection* configuration,
                                                IProtocolDatabaseConnection* protocol)
{
    this->connection = connection;
    this->configuration = configuration;
    this->protocol = protocol;
    preferencesAndAnswers.setConnection(connection);
    return areDependenciesSet();
}

bool SqlUserDatabaseConnection::areDependenciesSet() const
{
    return connection != nullptr && configuration != nullptr && protocol != nullptr;
}

bool SqlUserDatabaseConnection::initialize()
{
    return checks.hasDependencies("initialize")
           && checks.hasTables(*connection, {DC::lookupUserTableName(), DC::lookupUserPreferencesTableName()});
}

// Reading users.

QList<QSharedPointer<UserData>> SqlUserDatabaseConnection::getAllUserData() const
{
    if (!checks.hasDependencies("getAllUserData")) {
        return {};
    }
    // A NULL "is_deleted" is a user from before the column: not deleted.
    SqlQuery query;
    query.selectColumns(SqlRow::columnNames(userColumn, userLayout))
        .fromTable(DC::lookupUserTableName())
        .whereColumn(userColumn(UserProperty::IS_DELETED))
        .equals(false)
        .orColumn(userColumn(UserProperty::IS_DELETED))
        .isNull();
    return getUsers(query);
}

QSharedPointer<UserData> SqlUserDatabaseConnection::getUserData(const UserId& id) const
{
    if (!checks.hasDependencies("getUserData")) {
        return {};
    }
    SqlQuery query;
    query.selectColumns(SqlRow::columnNames(userColumn, userLayout)).fromTable(DC::lookupUserTableName());
    return getUser(whereUser(query, id));
}

QSharedPointer<UserData> SqlUserDatabaseConnection::getUserDataByName(const QString& loginName) const
{
    if (!checks.hasDependencies("getUserDataByName")) {
        return {};
    }
    SqlQuery query;
    query.selectColumns(SqlRow::columnNames(userColumn, userLayout))
        .fromTable(DC::lookupUserTableName())
        .whereColumn(userColumn(UserProperty::LOGIN_NAME))
        .equals(loginName);
    return getUser(query);
}

QList<SecurityQuestionAnswer> SqlUserDatabaseConnection::getUserSecurityQuestionAnswers(const UserId& id) const
{
    if (!checks.hasDependencies("getUserSecurityQuestionAnswers")) {
        return {};
    }
    QList<SecurityQuestionAnswer> answers;
    const QList<QList<QVariant>> rows =
        connection->fetch(SqlUserPreferencesAndAnswers::prepareSecurityQuestionAnswerSelectQuery(id));
    for (const QList<QVariant>& row : rows) {
        const SecurityQuestionAnswer answer =
            parseUserHasSecurityQuestionTableRow(row, SqlUserPreferencesAndAnswers::answerColumnCount_);
        if (answer != SecurityQuestionAnswer()) {
            answers.append(answer);
        }
    }
    return answers;
}

QSharedPointer<UserPreferences> SqlUserDatabaseConnection::getUserPreferences(const UserId& id) const
{
    if (!checks.hasDependencies("getUserPreferences")) {
        return {};
    }
    return preferencesAndAnswers.getUserPreferences(id);
}

QStringList SqlUserDatabaseConnection::getAllUserNames() const
{
    if (!checks.hasDependencies("getAllUserNames")) {
        return {};
    }
    SqlQuery query;
    query.selectColumn(userColumn(UserProperty::LOGIN_NAME)).fromTable(DC::lookupUserTableName());
    QStringList names;
    for (const QVariant& value : connection->fetchSingleColumn(query)) {
        names.append(sqlhelper::readStringSqlValue(value, QString()));
    }
    return names;
}

QString SqlUserDatabaseConnection::getUserName(const UserId& id) const
{
    return sqlhelper::readStringSqlValue(getUserPropertyValue(id, UserProperty::LOGIN_NAME), QString());
}

QVariant SqlUserDatabaseConnection::getUserPropertyValue(const UserId& id, UserProperty property) const
{
    if (!checks.hasDependencies("getUserPropertyValue")) {
        return {};
    }
    SqlQuery query;
    query.selectColumn(userColumn(property)).fromTable(DC::lookupUserTableName());
    return connection->fetchSingleValue(whereUser(query, id));
}

QVariant SqlUserDatabaseConnection::getUserPreferencesPropertyValue(const UserId& id,
                                                                    UserPreferencesProperty property) const
{
    if (!checks.hasDependencies("getUserPreferencesPropertyValue")) {
        return {};
    }
    return preferencesAndAnswers.getUserPreferencesPropertyValue(id, property);
}

// Writing users.

bool SqlUserDatabaseConnection::addUser(UserData& user)
{
    if (!checks.hasDependencies("addUser")) {
        return false;
    }
    SqlQuery query;
    query.insertTableColumnValuePairs(
        DC::lookupUserTableName(),
        userValues(user) + QList<SqlQuery::ColumnValuePair>{{userColumn(UserProperty::IS_DELETED), false}});
    const ISqlConnection::ExecuteResult result = connection->execute(query);
    if (!result.success) {
        qCWarning(SQLUSERDATABASECONNECTION) << "Failed to add user";
        return false;
    }
    user.id = int(result.lastInsertId);
    // Every user has a row of preferences, so that they can be updated later.
    return addUserPreferences(user.id, user.preferences ? *user.preferences : UserPreferences());
}

bool SqlUserDatabaseConnection::setUserSecurityQuestionAnswers(const UserId& id,
                                                               const QList<SecurityQuestionAnswer>& answers)
{
    if (!checks.hasDependencies("setUserSecurityQuestionAnswers")
        || !preferencesAndAnswers.deleteUserSecurityQuestionAnswers(id)) {
        return false;
    }
    for (const SecurityQuestionAnswer& answer : answers) {
        if (!addUserSecurityQuestionAnswer(id, answer)) {
            return false;
        }
    }
    return true;
}

bool SqlUserDatabaseConnection::addUserSecurityQuestionAnswer(const UserId& id, const SecurityQuestionAnswer& answer)
{
    if (!checks.hasDependencies("addUserSecurityQuestionAnswer")) {
        return false;
    }
    return preferencesAndAnswers.addUserSecurityQuestionAnswer(id, answer);
}

bool SqlUserDatabaseConnection::addUserPreferences(const UserId& id, const UserPreferences& preferences)
{
    if (!checks.hasDependencies("addUserPreferences")) {
        return false;
    }
    return preferencesAndAnswers.addUserPreferences(id, preferences);
}

bool SqlUserDatabaseConnection::updateUserPreferences(const UserId& id, const UserPreferences& preferences)
{
    if (!checks.hasDependencies("updateUserPreferences")) {
        return false;
    }
    return preferencesAndAnswers.updateUserPreferences(id, preferences);
}

bool SqlUserDatabaseConnection::updateUser(const UserData& user)
{
    if (!checks.hasDependencies("updateUser")) {
        return false;
    }
    SqlQuery query;
    query.updateTable(DC::lookupUserTableName()).setColumnValuePairs(userValues(user));
    if (!connection->execute(whereUser(query, user.id)).success) {
        return false;
    }
    return !user.preferences || updateUserPreferences(user.id, *user.preferences);
}

bool SqlUserDatabaseConnection::setUserPropertyValue(const UserId& id, UserProperty property, const QVariant& value)
{
    if (!checks.hasDependencies("setUserPropertyValue")) {
        return false;
    }
    SqlQuery query;
    query.updateTable(DC::lookupUserTableName()).setColumnValuePair({userColumn(property), value});
    return connection->execute(whereUser(query, id)).success;
}

bool SqlUserDatabaseConnection::deleteUser(const UserId& id)
{
    if (!checks.hasDependencies("deleteUser")) {
        return false;
    }
    const QSharedPointer<SqlQuery> user = QSharedPointer<SqlQuery>::create();
    if (!protocol->hasProtocolEntries(id)) {
        user->deleteFromTable(DC::lookupUserTableName());
    } else {
        // The log names the user by the row: it stays with the login name alone.
        const QSharedPointer<UserData> old = getUserData(id);
        if (!old) {
            qCWarning(SQLUSERDATABASECONNECTION) << "deleteUser found no user" << int(id) << "to blank";
            return false;
        }
        UserData blank(old->id, old->loginName, NONE);
        blank.failedLogins = -1;
        blank.failedSecurityQuestions = -1;
        user->updateTable(DC::lookupUserTableName())
            .setColumnValuePairs(userValues(blank)
                                 + QList<SqlQuery::ColumnValuePair>{{userColumn(UserProperty::IS_DELETED), true}});
    }
    whereUser(*user, id);
    return connection->executeTransaction({SqlUserPreferencesAndAnswers::prepareUserPreferencesDeleteQuery(id), user});
}

// The signals a user shows of a chamber.

QList<ChamberSignal> SqlUserDatabaseConnection::getVisibleChamberSignals(const UserId& user,
                                                                         const ChamberId& chamber) const
{
    if (!checks.hasDependencies("getVisibleChamberSignals")) {
        return {};
    }
    const QList<SignalId> ids = getVisibleChamberSignalIds(user, chamber, true);
    if (ids.isEmpty()) {
        return {};
    }
    const QMap<int, ChamberSignal> chamberSignals = getChamberSignals(chamber);
    QList<ChamberSignal> visible;
    for (SignalId id : ids) {
        const auto found = chamberSignals.constFind(id);
        if (found != chamberSignals.constEnd()) {
            visible.append(found.value());
        }
    }
    return visible;
}

QList<SignalId> SqlUserDatabaseConnection::getVisibleChamberSignalIds(const UserId& user, const ChamberId& chamber,
                                                                      bool ordered) const
{
    if (!checks.hasDependencies("getVisibleChamberSignalIds")) {
        return {};
    }
    SqlQuery query;
    query.selectColumn(visibilityColumn(VisibilityProperty::SIGNAL_ID))
        .fromTable(DC::lookupUserHasChamberSignalVisibilityPreferenceTableName());
    whereUserAndChamber(query, user, chamber);
    if (ordered) {
        query.orderBy(visibilityColumn(VisibilityProperty::POSITION), SqlQuery::ASC);
    }
    QList<SignalId> ids;
    for (const QVariant& value : connection->fetchSingleColumn(query)) {
        ids.append(sqlhelper::readIntSqlValue(value, -1));
    }
    return ids;
}

bool SqlUserDatabaseConnection::setVisibleChamberSignals(const QList<SignalId>& signalIds, const UserId& user,
                                                         const ChamberId& chamber)
{
    if (!checks.hasDependencies("setVisibleChamberSignals")) {
        return false;
    }
    const QString table = DC::lookupUserHasChamberSignalVisibilityPreferenceTableName();
    const QSharedPointer<SqlQuery> clear = QSharedPointer<SqlQuery>::create();
    clear->deleteFromTable(table);
    whereUserAndChamber(*clear, user, chamber);
    QList<QSharedPointer<zelmor::domain::api::ISqlQuery>> statements = {clear};
    for (int position = 0; position < signalIds.size(); ++position) {
        const QSharedPointer<SqlQuery> insert = QSharedPointer<SqlQuery>::create();
        insert->insertTableColumnValuePairs(
            table, {
                       {visibilityColumn(VisibilityProperty::USER_ID), int(user)},
                       {visibilityColumn(VisibilityProperty::CHAMBER_ID), int(chamber)},
                       {visibilityColumn(VisibilityProperty::SIGNAL_ID), signalIds.at(position)},
                       {visibilityColumn(VisibilityProperty::POSITION), position},
                   });
        statements.append(insert);
    }
    return connection->executeTransaction(statements);
}

bool SqlUserDatabaseConnection::showChamberSignal(const UserId& user, const ChamberId& chamber,
                                                  const SignalId& signalId)
{
    if (!checks.hasDependencies("showChamberSignal")) {
        return false;
    }
    SqlQuery query;
    query.insertOrReplaceTable(DC::lookupUserHasChamberSignalVisibilityPreferenceTableName())
        .columns({visibilityColumn(VisibilityProperty::USER_ID), visibilityColumn(VisibilityProperty::CHAMBER_ID),
                  visibilityColumn(VisibilityProperty::SIGNAL_ID)})
        .values({int(user), int(chamber), signalId}, true);
    return connection->execute(query).success;
}

bool SqlUserDatabaseConnection::hideChamberSignal(const UserId& user, const ChamberId& chamber,
                                                  const SignalId& signalId)
{
    if (!checks.hasDependencies("hideChamberSignal")) {
        return false;
    }
    SqlQuery query;
    query.deleteFromTable(DC::lookupUserHasChamberSignalVisibilityPreferenceTableName());
    whereUserAndChamber(query, user, chamber)
        .andColumn(visibilityColumn(VisibilityProperty::SIGNAL_ID))
        .equals(signalId);
    return connection->execute(query).success;
}

// The recording configurations.

QMap<int, QString> SqlUserDatabaseConnection::getUserRecordingConfig(const UserId& user)
{
    if (!checks.hasDependencies("getUserRecordingConfig")) {
        return {};
    }
    SqlQuery query;
    query.selectColumns({columnNameRecordingId_, columnNameConfiguration})
        .fromTable(DC::lookupUserRecordingConfigTableName())
        .whereColumn(columnNameUserId_)
        .equals(int(user));
    QMap<int, QString> configurations;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& values : rows) {
        if (checks.hasWidth(values, CONFIG_COLUMNS, "getUserRecordingConfig")) {
            const SqlRow row(values);
            configurations.insert(row.toInt(CONFIG_RECORDING_ID, 0), row.toString(CONFIG_TEXT));
        }
    }
    return configurations;
}

bool SqlUserDatabaseConnection::setUserRecordingConfig(const UserId& user, int recording, QString configuration)
{
    if (!checks.hasDependencies("setUserRecordingConfig")) {
        return false;
    }
    const QString table = DC::lookupUserRecordingConfigTableName();
    SqlQuery existing;
    existing.selectColumns({columnNameUserId_, columnNameRecordingId_, columnNameConfiguration})
        .fromTable(table)
        .whereColumn(columnNameUserId_)
        .equals(int(user))
        .andColumn(columnNameRecordingId_)
        .equals(recording);
    SqlQuery query;
    if (connection->fetch(existing).isEmpty()) {
        query.insertTableColumnValuePairs(table, {{columnNameUserId_, int(user)},
                                                  {columnNameRecordingId_, recording},
                                                  {columnNameConfiguration, sqlvalue::text(configuration)}});
    } else {
        query.updateTable(table)
            .setColumnValuePair({columnNameConfiguration, sqlvalue::text(configuration)})
            .whereColumn(columnNameUserId_)
            .equals(int(user))
            .andColumn(columnNameRecordingId_)
            .equals(recording);
    }
    return connection->execute(query).success;
}

// Row decoding.

QSharedPointer<UserData> SqlUserDatabaseConnection::parseUserDataTableRow(const QList<QVariant>& row,
                                                                          int expectedColumns) const
{
    if (!checks.hasWidth(row, expectedColumns, "parseUserDataTableRow")) {
        return {};
    }
    const SqlRow values(row);
    UserLevel level = UserLevel(values.toInt(USER_LEVEL, BASIC));
    if (mergeUserLevels && level == ADVANCED) {
        level = BASIC;
    }
    const UserId id = values.toInt(USER_ID, 0);
    return QSharedPointer<UserData>::create(
        id, values.toString(USER_LOGIN_NAME), values.toString(USER_MAIL_ADDRESS), values.toString(USER_FIRST_NAME),
        values.toString(USER_LAST_NAME), values.value(USER_PASSWORD_HASH).toByteArray(),
        values.value(USER_PASSWORD_SALT).toByteArray(), values.toLocalTime(USER_PASSWORD_CREATION_TIME),
        values.toLocalTime(USER_PASSWORD_EXPIRATION_TIME), values.value(USER_PASSWORD_IS_TEMPORARY).toBool(),
        values.toInt(USER_NUMBER_FAILED_LOGIN_ATTEMPTS, -1),
        values.toInt(USER_NUMBER_FAILED_SECURITY_QUESTION_ATTEMPTS, -1), values.toBool(USER_IS_BANNED, false), level,
        id != 0 ? getUserPreferences(id) : QSharedPointer<UserPreferences>());
}

SecurityQuestionAnswer SqlUserDatabaseConnection::parseUserHasSecurityQuestionTableRow(const QList<QVariant>& row,
                                                                                       int expectedColumns) const
{
    return preferencesAndAnswers.parseUserHasSecurityQuestionTableRow(row, expectedColumns);
}

QList<QSharedPointer<UserData>> SqlUserDatabaseConnection::getUsers(const SqlQuery& query) const
{
    QList<QSharedPointer<UserData>> users;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& row : rows) {
        if (const QSharedPointer<UserData> user = parseUserDataTableRow(row, USER_COLUMNS)) {
            users.append(user);
        }
    }
    return users;
}

QSharedPointer<UserData> SqlUserDatabaseConnection::getUser(const SqlQuery& query) const
{
    const QList<QVariant> row = connection->fetchSingleRow(query);
    return row.isEmpty() ? QSharedPointer<UserData>() : parseUserDataTableRow(row, USER_COLUMNS);
}

QMap<int, ChamberSignal> SqlUserDatabaseConnection::getChamberSignals(const ChamberId& chamber) const
{
    // The user store knows no chamber store: the chamber's type comes from its row.
    SqlQuery query;
    query.selectColumn(DC::lookupChamberColumnName(ChamberProperty::CHAMBER_TYPE_ID))
        .fromTable(DC::lookupChamberTableName())
        .whereColumn(DC::lookupChamberColumnName(ChamberProperty::ID))
        .equals(int(chamber));
    const QVariant typeId = connection->fetchSingleValue(query);
    if (!sqlhelper::isSqlValueValid(typeId)) {
        return {};
    }
    return configuration->getChamberSignals(ChamberTypeId(typeId.toULongLong(), 0));
}

} // namespace zelmor::base::connection::databaseconnection
