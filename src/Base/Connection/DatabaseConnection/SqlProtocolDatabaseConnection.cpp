#include "Base/Connection/DatabaseConnection/SqlProtocolDatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Base/Connection/DatabaseConnection/sqlhelper.h"
#include "Base/Connection/DatabaseConnection/sqlvalue.h"
#include "Domain/Api/ISqlConnection.h"
#include "Domain/Types/ProtocolEntry.h"
#include "Domain/Types/TimeSpan.h"
#include "Domain/Types/UserId.h"

namespace zelmor::base::connection::databaseconnection {

Q_LOGGING_CATEGORY(SQLPROTOCOLDATABASECONNECTION, "zelmor.SqlProtocolDatabaseConnection")

using namespace zelmor::domain::types;
using zelmor::domain::api::ISqlConnection;
using zelmor::domain::api::ProtocolEntryProperty;
using zelmor::domain::api::UserProperty;

namespace {

using DC = DatabaseSchema;

constexpr int maxNumArguments = 10;

// Positions in a row of prepareProtocolEntrySelectQuery: the entry, its
// author, the number of arguments, then all argument columns.
enum EntryColumn {
    ENTRY_CREATION_TIME,
    ENTRY_EVENT_DESCRIPTION,
    ENTRY_USER_ID,
    ENTRY_LOGIN_NAME,
    ENTRY_IS_DELETED,
    ENTRY_NUM_ARGS,
    ENTRY_FIRST_ARG,
    ENTRY_COLUMNS = ENTRY_FIRST_ARG + maxNumArguments
};

QString entryColumn(ProtocolEntryProperty property)
{
    return DC::lookupProtocolEntryColumnName(property);
}

// "arg_1" for the first argument.
QString argumentColumn(int index)
{
    return entryColumn(ProtocolEntryProperty::ARG_N).arg(index + 1);
}

SqlQuery::TableColumnPair entryTableColumn(ProtocolEntryProperty property)
{
    return {DC::lookupProtocolEntryTableName(), entryColumn(property)};
}

SqlQuery::TableColumnPair userTableColumn(UserProperty property)
{
    return {DC::lookupUserTableName(), DC::lookupUserColumnName(property)};
}

} // namespace

SqlProtocolDatabaseConnection::SqlProtocolDatabaseConnection(bool mergeUserLevels, QObject* parent)
    : QObject(parent)
    , checks(this, SQLPROTOCOLDATABASECONNECTION)
    , mergeUserLevels(mergeUserLevels)
{
}

SqlProtocolDatabaseConnection::~SqlProtocolDatabaseConnection() = default;

int SqlProtocolDatabaseConnection::getMaxNumArguments()
{
    return maxNumArguments;
}

bool SqlProtocolDatabaseConnection::setDependencies(ISqlConnection* connection)
{
    this->connection = connection;
    return connection != nullptr;
}

bool SqlProtocolDatabaseConnection::areDependenciesSet() const
{
    return connection != nullptr;
}

bool SqlProtocolDatabaseConnection::initialize()
{
    return checks.hasDependencies("initialize") && checks.hasTables(*connection, {DC::lookupProtocolEntryTableName()});
}

bool SqlProtocolDatabaseConnection::addProtocolEntry(const ProtocolEntry& entry)
{
    if (!checks.hasDependencies("addProtocolEntry")) {
        return false;
    }
    QList<SqlQuery::ColumnValuePair> values = {
        {entryColumn(ProtocolEntryProperty::CREATION_TIME), sqlvalue::utcTime(entry.time)},
        {entryColumn(ProtocolEntryProperty::USER_ID), sqlvalue::orNull(int(entry.userId), 0)},
        {entryColumn(ProtocolEntryProperty::EVENT_DESCRIPTION), sqlvalue::text(entry.description)},
        {entryColumn(ProtocolEntryProperty::NUM_ARGS), entry.arguments.size()},
    };
    // As the texts they are shown as.
    for (int index = 0; index < entry.arguments.size(); ++index) {
        values.append({argumentColumn(index), sqlvalue::text(entry.arguments.at(index).toString())});
    }
    SqlQuery query;
    query.insertTableColumnValuePairs(DC::lookupProtocolEntryTableName(), values);
    return connection->execute(query).success;
}

QList<ProtocolEntry> SqlProtocolDatabaseConnection::getProtocolEntries(const TimeSpan& span, UserLevel level) const
{
    if (!checks.hasDependencies("getProtocolEntries")) {
        return {};
    }
    // A user stored as ADVANCED is read as BASIC when levels are merged.
    const UserLevel highest = mergeUserLevels && level == BASIC ? ADVANCED : level;
    SqlQuery users;
    users.selectColumn(DC::lookupUserColumnName(UserProperty::ID))
        .fromTable(DC::lookupUserTableName())
        .whereColumn(DC::lookupUserColumnName(UserProperty::USER_LEVEL))
        .isLessEqual(int(highest));
    return getProtocolEntries(
        prepareProtocolEntrySelectQuery(span, [&users](SqlQuery& query) { query.inSelectQuery(users); }),
        ENTRY_COLUMNS);
}

QList<ProtocolEntry> SqlProtocolDatabaseConnection::getProtocolEntries(const TimeSpan& span, const UserId& user) const
{
    if (!checks.hasDependencies("getProtocolEntries")) {
        return {};
    }
    return getProtocolEntries(
        prepareProtocolEntrySelectQuery(span, [&user](SqlQuery& query) { query.equals(int(user)); }), ENTRY_COLUMNS);
}

bool SqlProtocolDatabaseConnection::hasProtocolEntries(const UserId& user) const
{
    if (!checks.hasDependencies("hasProtocolEntries")) {
        return false;
    }
    SqlQuery query;
    query.selectCount(SqlQuery::ALL, QString())
        .fromTable(DC::lookupProtocolEntryTableName())
        .whereColumn(entryColumn(ProtocolEntryProperty::USER_ID))
        .equals(int(user));
    return sqlhelper::readIntSqlValue(connection->fetchSingleValue(query), 0) != 0;
}

SqlQuery SqlProtocolDatabaseConnection::prepareProtocolEntrySelectQuery(const TimeSpan& span)
{
    QList<SqlQuery::TableColumnPair> columns = {
        entryTableColumn(ProtocolEntryProperty::CREATION_TIME),
        entryTableColumn(ProtocolEntryProperty::EVENT_DESCRIPTION),
        entryTableColumn(ProtocolEntryProperty::USER_ID),
        userTableColumn(UserProperty::LOGIN_NAME),
        userTableColumn(UserProperty::IS_DELETED),
        entryTableColumn(ProtocolEntryProperty::NUM_ARGS),
    };
    for (int index = 0; index < maxNumArguments; ++index) {
        columns.append({DC::lookupProtocolEntryTableName(), argumentColumn(index)});
    }
    SqlQuery query;
    query.selectTableColumns(columns)
        .fromTable(DC::lookupProtocolEntryTableName())
        .joinOnMatch({entryTableColumn(ProtocolEntryProperty::USER_ID), userTableColumn(UserProperty::ID)});

    // Both ends belong to the span; a null end leaves its side open.
    const SqlQuery::TableColumnPair time = entryTableColumn(ProtocolEntryProperty::CREATION_TIME);
    if (span.hasStart() && span.hasEnd()) {
        query.whereTableColumn(time).between(sqlvalue::utcTime(span.start), sqlvalue::utcTime(span.end));
    } else if (span.hasStart()) {
        query.whereTableColumn(time).isGreaterEqual(sqlvalue::utcTime(span.start));
    } else if (span.hasEnd()) {
        query.whereTableColumn(time).isLessEqual(sqlvalue::utcTime(span.end));
    }
    return query;
}

SqlQuery
SqlProtocolDatabaseConnection::prepareProtocolEntrySelectQuery(const TimeSpan& span,
                                                               const std::function<void(SqlQuery&)>& authorCondition)
{
    SqlQuery query = prepareProtocolEntrySelectQuery(span);
    const SqlQuery::TableColumnPair author = entryTableColumn(ProtocolEntryProperty::USER_ID);
    if (span.hasStart() || span.hasEnd()) {
        query.andTableColumn(author);
    } else {
        query.whereTableColumn(author);
    }
    authorCondition(query);
    query.orderByTableColumn(entryTableColumn(ProtocolEntryProperty::CREATION_TIME), SqlQuery::ASC);
    return query;
}

QList<ProtocolEntry> SqlProtocolDatabaseConnection::getProtocolEntries(const SqlQuery& query, int expectedColumns) const
{
    if (!checks.hasDependencies("getProtocolEntries")) {
        return {};
    }
    QList<ProtocolEntry> entries;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& values : rows) {
        if (!checks.hasWidth(values, expectedColumns, "getProtocolEntries")) {
            continue;
        }
        const SqlRow row(values);
        QString userName = row.toString(ENTRY_LOGIN_NAME);
        if (row.toBool(ENTRY_IS_DELETED, false)) {
            userName += tr(" (deleted)");
        }
        // Only the arguments in use, however many columns the row has.
        const int count = qBound(0, row.toInt(ENTRY_NUM_ARGS, 0), row.width() - ENTRY_FIRST_ARG);
        QList<QVariant> arguments;
        for (int index = 0; index < count; ++index) {
            arguments.append(row.toString(ENTRY_FIRST_ARG + index));
        }
        entries.append(ProtocolEntry(row.toLocalTime(ENTRY_CREATION_TIME), row.toString(ENTRY_EVENT_DESCRIPTION),
                                     arguments, row.toInt(ENTRY_USER_ID, 0), userName));
    }
    return entries;
}

} // namespace zelmor::base::connection::databaseconnection
