#include "Base/Connection/DatabaseConnection/SqlQuery.h"

namespace zelmor::base::connection::databaseconnection {

Q_LOGGING_CATEGORY(SQLQUERY, "zelmor.SqlQuery")

namespace {

QString qualifiedName(const SqlQuery::TableColumnPair& pair)
{
    return pair.table + QLatin1Char('.') + pair.column;
}

QString placeholders(int count, const QString& separator)
{
    // Written out directly: a bulk insert asks for one group per row.
    QString marks;
    marks.reserve(count * (separator.size() + 1));
    for (int i = 0; i < count; ++i) {
        if (i > 0) {
            marks += separator;
        }
        marks += QLatin1Char('?');
    }
    return marks;
}

// A blank and the flag's word when the column carries the flag, else nothing.
QString flagWord(SqlQuery::ColumnFlag flags, SqlQuery::ColumnFlag flag)
{
    if ((flags & flag) == 0) {
        return QString();
    }
    return QLatin1Char(' ') + SqlQuery::lookupColumnFlagName(flag);
}

} // namespace

SqlQuery::ColumnConfiguration::ColumnConfiguration(const QString& name, DataType dataType, ColumnFlag flags)
    : name(name)
    , dataType(dataType)
    , flags(flags)
{
}

SqlQuery::ForeignKeyConfiguration::ForeignKeyConfiguration(const QString& column, const QString& referenceTable,
                                                           const QString& referenceColumn, Action onUpdate,
                                                           Action onDelete)
    : column(column)
    , referenceTable(referenceTable)
    , referenceColumn(referenceColumn)
    , onUpdate(onUpdate)
    , onDelete(onDelete)
{
}

QString SqlQuery::lookupDataTypeName(DataType dataType)
{
    switch (dataType) {
    case BOOLEAN:
        return QStringLiteral("BOOLEAN");
    case INTEGER:
        return QStringLiteral("INTEGER");
    case REAL:
        return QStringLiteral("REAL");
    case DATETIME:
        return QStringLiteral("DATETIME");
    case TEXT:
        return QStringLiteral("TEXT");
    case ENUMERATION:
        return QStringLiteral("INTEGER");
    case BLOB:
        return QStringLiteral("BLOB");
    }
    Q_ASSERT(false);
    return QString();
}

QString SqlQuery::lookupColumnFlagName(ColumnFlag flag)
{
    switch (flag) {
    case NO_FLAG:
        return QString();
    case PRIMARY_KEY:
        return QStringLiteral("PRIMARY KEY");
    case NOT_NULL:
        return QStringLiteral("NOT NULL");
    case UNIQUE:
        return QStringLiteral("UNIQUE");
    case BINARY:
        return QStringLiteral("BINARY");
    case UNSIGNED:
        return QStringLiteral("UNSIGNED");
    case ZERO_FILL:
        return QStringLiteral("ZERO FILL");
    case AUTO_INCREMENT:
        return QString();
    }
    Q_ASSERT(false);
    return QString();
}

QString SqlQuery::lookupActionName(Action action)
{
    switch (action) {
    case NO_ACTION:
        return QStringLiteral("NO ACTION");
    case RESTRICT:
        return QStringLiteral("RESTRICT");
    case SET_NULL:
        return QStringLiteral("SET NULL");
    case SET_DEFAULT:
        return QStringLiteral("SET DEFAULT");
    case CASCADE:
        return QStringLiteral("CASCADE");
    }
    Q_ASSERT(false);
    return QString();
}

QString SqlQuery::lookupOrderName(Order order)
{
    switch (order) {
    case ASC:
        return QStringLiteral("ASC");
    case DESC:
        return QStringLiteral("DESC");
    }
    Q_ASSERT(false);
    return QString();
}

QString SqlQuery::lookupCountTypeName(CountType countType)
{
    switch (countType) {
    case ALL:
        return QStringLiteral("ALL");
    case DISTINCT:
        return QStringLiteral("DISTINCT");
    }
    Q_ASSERT(false);
    return QString();
}

const QString& SqlQuery::getPreparedQueryString() const
{
    return preparedQueryString;
}

const QList<QVariant>& SqlQuery::getBindValues() const
{
    return bindValues;
}

bool SqlQuery::operator==(const SqlQuery& other) const
{
    return preparedQueryString == other.preparedQueryString && bindValues == other.bindValues;
}

bool SqlQuery::operator!=(const SqlQuery& other) const
{
    return !(*this == other);
}

SqlQuery& SqlQuery::insertTable(const QString& table)
{
    preparedQueryString += QStringLiteral(" INSERT INTO ") + table;
    return *this;
}

SqlQuery& SqlQuery::insertOrReplaceTable(const QString& table)
{
    preparedQueryString += QStringLiteral(" INSERT OR REPLACE INTO ") + table;
    return *this;
}

SqlQuery& SqlQuery::insertTableColumnValuePairs(const QString& table, const QList<ColumnValuePair>& pairs)
{
    QStringList names;
    QList<QVariant> values;
    names.reserve(pairs.size());
    values.reserve(pairs.size());
    for (const ColumnValuePair& pair : pairs) {
        names.append(pair.column);
        values.append(pair.value);
    }
    return insertTable(table).columns(names).values(values, true);
}

SqlQuery& SqlQuery::updateTable(const QString& table)
{
    preparedQueryString += QStringLiteral(" UPDATE ") + table;
    return *this;
}

SqlQuery& SqlQuery::deleteFromTable(const QString& table)
{
    preparedQueryString += QStringLiteral(" DELETE FROM ") + table;
    return *this;
}

SqlQuery& SqlQuery::selectColumns(const QStringList& columns)
{
    preparedQueryString += QStringLiteral(" SELECT ") + columns.join(QStringLiteral(", "));
    return *this;
}

SqlQuery& SqlQuery::selectColumn(const QString& column)
{
    return selectColumns(QStringList{column});
}

SqlQuery& SqlQuery::selectTableColumns(const QList<TableColumnPair>& pairs)
{
    QStringList names;
    names.reserve(pairs.size());
    for (const TableColumnPair& pair : pairs) {
        names.append(qualifiedName(pair));
    }
    return selectColumns(names);
}

SqlQuery& SqlQuery::selectCount(CountType countType, const QString& column)
{
    const QString prefix = column.isEmpty() ? QString() : lookupCountTypeName(countType) + QLatin1Char(' ');
    const QString argument = column.isEmpty() ? QStringLiteral("*") : column;
    preparedQueryString += QStringLiteral("SELECT count(%1%2)").arg(prefix).arg(argument);
    return *this;
}

SqlQuery& SqlQuery::selectOne()
{
    preparedQueryString += QStringLiteral(" SELECT ?");
    bindValues.append(1);
    return *this;
}

SqlQuery& SqlQuery::selectValues(const QList<QVariant>& values)
{
    preparedQueryString += QStringLiteral(" SELECT ") + placeholders(values.size(), QStringLiteral(","));
    bindValues.append(values);
    return *this;
}

SqlQuery& SqlQuery::selectValue(const QVariant& value)
{
    return selectValues(QList<QVariant>{value});
}

SqlQuery& SqlQuery::vacuum()
{
    preparedQueryString += QStringLiteral("VACUUM ");
    return *this;
}

SqlQuery& SqlQuery::attachDatabase(const QString& path, const QString& name)
{
    preparedQueryString +=
        QStringLiteral("ATTACH DATABASE '") + path + QStringLiteral("' as ") + name + QLatin1Char(';');
    return *this;
}

SqlQuery& SqlQuery::detachDatabase(const QString& name)
{
    preparedQueryString += QStringLiteral("DETACH DATABASE ") + name + QLatin1Char(';');
    return *this;
}

SqlQuery& SqlQuery::sqlcipherExport(const QString& name)
{
    preparedQueryString += QStringLiteral("SELECT sqlcipher_export('") + name + QStringLiteral("');");
    return *this;
}

SqlQuery& SqlQuery::fromTable(const QString& table, const QString& alias)
{
    preparedQueryString += QStringLiteral(" FROM ") + table;
    if (!alias.isEmpty()) {
        preparedQueryString += QLatin1Char(' ') + alias;
    }
    return *this;
}

SqlQuery& SqlQuery::columns(const QStringList& columns)
{
    preparedQueryString += QStringLiteral(" (") + columns.join(QStringLiteral(", ")) + QLatin1Char(')');
    return *this;
}

SqlQuery& SqlQuery::column(const QString& column)
{
    return columns(QStringList{column});
}

SqlQuery& SqlQuery::values(const QList<QVariant>& values, bool withKeyword)
{
    // Bulk inserts of record sets chain thousands of these.
    preparedQueryString.reserve(preparedQueryString.length() + 2 * values.size() + 10);
    preparedQueryString += withKeyword ? QStringLiteral(" VALUES") : QStringLiteral(",");
    preparedQueryString += QLatin1Char('(') + placeholders(values.size(), QStringLiteral(",")) + QLatin1Char(')');
    bindValues.append(values);
    return *this;
}

SqlQuery& SqlQuery::value(const QVariant& value)
{
    return values(QList<QVariant>{value}, true);
}

SqlQuery& SqlQuery::setColumnValuePairs(const QList<ColumnValuePair>& pairs)
{
    QStringList items;
    items.reserve(pairs.size());
    for (const ColumnValuePair& pair : pairs) {
        items.append(pair.column + QStringLiteral(" = ?"));
        bindValues.append(pair.value);
    }
    preparedQueryString += QStringLiteral(" SET ") + items.join(QStringLiteral(", "));
    return *this;
}

SqlQuery& SqlQuery::setColumnValuePair(const ColumnValuePair& pair)
{
    return setColumnValuePairs(QList<ColumnValuePair>{pair});
}

SqlQuery& SqlQuery::appendKeywordColumn(const QString& keyword, const QString& column)
{
    preparedQueryString += keyword + column;
    return *this;
}

SqlQuery& SqlQuery::whereColumn(const QString& column)
{
    return appendKeywordColumn(QStringLiteral(" WHERE "), column);
}

SqlQuery& SqlQuery::andColumn(const QString& column)
{
    return appendKeywordColumn(QStringLiteral(" AND "), column);
}

SqlQuery& SqlQuery::andNotColumn(const QString& column)
{
    return appendKeywordColumn(QStringLiteral(" AND NOT "), column);
}

SqlQuery& SqlQuery::orColumn(const QString& column)
{
    return appendKeywordColumn(QStringLiteral(" OR "), column);
}

SqlQuery& SqlQuery::orNotColumn(const QString& column)
{
    return appendKeywordColumn(QStringLiteral(" OR NOT "), column);
}

SqlQuery& SqlQuery::whereTableColumn(const TableColumnPair& pair)
{
    return whereColumn(qualifiedName(pair));
}

SqlQuery& SqlQuery::andTableColumn(const TableColumnPair& pair)
{
    return andColumn(qualifiedName(pair));
}

SqlQuery& SqlQuery::andNotTableColumn(const TableColumnPair& pair)
{
    return andNotColumn(qualifiedName(pair));
}

SqlQuery& SqlQuery::orTableColumn(const TableColumnPair& pair)
{
    return orColumn(qualifiedName(pair));
}

SqlQuery& SqlQuery::orNotTableColumn(const TableColumnPair& pair)
{
    return orNotColumn(qualifiedName(pair));
}

SqlQuery& SqlQuery::isNull()
{
    preparedQueryString += QStringLiteral(" IS NULL");
    return *this;
}

SqlQuery& SqlQuery::isNotNull()
{
    preparedQueryString += QStringLiteral(" IS NOT NULL");
    return *this;
}

SqlQuery& SqlQuery::compare(const QString& op, const QVariant& value)
{
    preparedQueryString += QStringLiteral(" %1 ?").arg(op);
    bindValues.append(value);
    return *this;
}

SqlQuery& SqlQuery::equals(const QVariant& value)
{
    return compare(QStringLiteral("="), value);
}

SqlQuery& SqlQuery::isNotEqual(const QVariant& value)
{
    return compare(QStringLiteral("<>"), value);
}

SqlQuery& SqlQuery::isLess(const QVariant& value)
{
    return compare(QStringLiteral("<"), value);
}

SqlQuery& SqlQuery::isLessEqual(const QVariant& value)
{
    return compare(QStringLiteral("<="), value);
}

SqlQuery& SqlQuery::isGreater(const QVariant& value)
{
    return compare(QStringLiteral(">"), value);
}

SqlQuery& SqlQuery::isGreaterEqual(const QVariant& value)
{
    return compare(QStringLiteral(">="), value);
}

SqlQuery& SqlQuery::between(const QVariant& lower, const QVariant& upper)
{
    preparedQueryString += QStringLiteral(" BETWEEN ? AND ?");
    bindValues.append(lower);
    bindValues.append(upper);
    return *this;
}

SqlQuery& SqlQuery::notBetween(const QVariant& lower, const QVariant& upper)
{
    preparedQueryString += QStringLiteral(" NOT");
    return between(lower, upper);
}

SqlQuery& SqlQuery::like(const QString& pattern)
{
    preparedQueryString += QStringLiteral(" LIKE ?");
    bindValues.append(pattern);
    return *this;
}

SqlQuery& SqlQuery::notLike(const QString& pattern)
{
    preparedQueryString += QStringLiteral(" NOT");
    return like(pattern);
}

SqlQuery& SqlQuery::inList(const QList<QVariant>& values)
{
    preparedQueryString +=
        QStringLiteral(" IN (") + placeholders(values.size(), QStringLiteral(", ")) + QLatin1Char(')');
    bindValues.append(values);
    return *this;
}

SqlQuery& SqlQuery::inList(const QList<int>& values)
{
    QList<QVariant> variants;
    variants.reserve(values.size());
    for (int value : values) {
        variants.append(value);
    }
    return inList(variants);
}

SqlQuery& SqlQuery::notInList(const QList<QVariant>& values)
{
    preparedQueryString += QStringLiteral(" NOT");
    return inList(values);
}

SqlQuery& SqlQuery::appendSubQuery(const QString& head, const zelmor::domain::api::ISqlQuery& query)
{
    // Copies first: the sub-query may be this very object.
    const QString text = query.getPreparedQueryString();
    const QList<QVariant> values = query.getBindValues();
    preparedQueryString += head + text + QLatin1Char(')');
    bindValues.append(values);
    return *this;
}

SqlQuery& SqlQuery::inSelectQuery(const zelmor::domain::api::ISqlQuery& query)
{
    return appendSubQuery(QStringLiteral(" IN ("), query);
}

SqlQuery& SqlQuery::notInSelectQuery(const zelmor::domain::api::ISqlQuery& query)
{
    preparedQueryString += QStringLiteral(" NOT");
    return inSelectQuery(query);
}

SqlQuery& SqlQuery::equals(const zelmor::domain::api::ISqlQuery& query)
{
    return appendSubQuery(QStringLiteral(" = ("), query);
}

SqlQuery& SqlQuery::whereExists(const zelmor::domain::api::ISqlQuery& query)
{
    return appendSubQuery(QStringLiteral(" WHERE EXISTS ("), query);
}

SqlQuery& SqlQuery::whereNotExists(const zelmor::domain::api::ISqlQuery& query)
{
    return appendSubQuery(QStringLiteral(" WHERE NOT EXISTS ("), query);
}

SqlQuery& SqlQuery::orderBy(const QString& column, Order order)
{
    preparedQueryString += QStringLiteral(" ORDER BY ") + column + QLatin1Char(' ') + lookupOrderName(order);
    return *this;
}

SqlQuery& SqlQuery::orderByTableColumn(const TableColumnPair& pair, Order order)
{
    return orderBy(qualifiedName(pair), order);
}

SqlQuery& SqlQuery::groupByColumns(const QStringList& columns)
{
    preparedQueryString += QStringLiteral(" GROUP BY ") + columns.join(QStringLiteral(", "));
    return *this;
}

SqlQuery& SqlQuery::groupByColumn(const QString& column)
{
    return groupByColumns(QStringList{column});
}

SqlQuery& SqlQuery::limitTo(int count)
{
    preparedQueryString += QStringLiteral(" LIMIT ?");
    bindValues.append(count);
    return *this;
}

SqlQuery& SqlQuery::appendJoins(const QString& keyword, const QList<TableColumnPairMatch>& matches, const QString& name)
{
    for (const TableColumnPairMatch& match : matches) {
        preparedQueryString += keyword;
        if (!name.isEmpty()) {
            preparedQueryString += name + QLatin1Char(' ');
        }
        preparedQueryString += match.second.table + QStringLiteral(" ON ") + qualifiedName(match.first)
                               + QStringLiteral(" = ") + qualifiedName(match.second);
    }
    return *this;
}

SqlQuery& SqlQuery::leftJoinOnMatches(const QList<TableColumnPairMatch>& matches, const QString& name)
{
    return appendJoins(QStringLiteral(" LEFT JOIN "), matches, name);
}

SqlQuery& SqlQuery::joinOnMatches(const QList<TableColumnPairMatch>& matches, const QString& name)
{
    return appendJoins(QStringLiteral(" JOIN "), matches, name);
}

SqlQuery& SqlQuery::leftJoinOnMatch(const TableColumnPairMatch& match, const QString& name)
{
    return leftJoinOnMatches(QList<TableColumnPairMatch>{match}, name);
}

SqlQuery& SqlQuery::joinOnMatch(const TableColumnPairMatch& match, const QString& name)
{
    return joinOnMatches(QList<TableColumnPairMatch>{match}, name);
}

SqlQuery& SqlQuery::createTable(const QString& table, const QList<ColumnConfiguration>& columns,
                                const QList<ForeignKeyConfiguration>& foreignKeys)
{
    const QStringList keys = getPrimaryKeys(columns);
    const bool hasCompositeKey = keys.size() > 1;
    // One arg() after the other, as the stored schemas were made: a "%<digit>"
    // inside a name is filled by a later step.
    preparedQueryString +=
        QStringLiteral(" CREATE TABLE IF NOT EXISTS %1 (%2%3%4%5)")
            .arg(table)
            .arg(convertColumnConfigurationsToStrings(columns, hasCompositeKey).join(QStringLiteral(", ")))
            .arg(foreignKeys.isEmpty() ? QString() : QStringLiteral(", "))
            .arg(convertForeignKeyConfigurationsToStrings(foreignKeys).join(QStringLiteral(", ")))
            .arg(hasCompositeKey ? formPrimaryKeyAttribute(keys) : QString());
    return *this;
}

QStringList SqlQuery::getPrimaryKeys(const QList<ColumnConfiguration>& columns)
{
    QStringList keys;
    for (const ColumnConfiguration& column : columns) {
        if (column.flags & PRIMARY_KEY) {
            keys.append(column.name);
        }
    }
    return keys;
}

QString SqlQuery::formPrimaryKeyAttribute(const QStringList& keys)
{
    return QStringLiteral("PRIMARY KEY (%1)").arg(keys.join(QStringLiteral(", ")));
}

QStringList SqlQuery::convertColumnConfigurationsToStrings(const QList<ColumnConfiguration>& columns,
                                                           bool hasCompositeKey)
{
    QStringList definitions;
    definitions.reserve(columns.size());
    for (const ColumnConfiguration& column : columns) {
        // Under a composite key the key is a table constraint, never a column's.
        const QString primaryKey = hasCompositeKey ? QString() : flagWord(column.flags, PRIMARY_KEY);
        definitions.append(QStringLiteral("%1 %2%3%4%5%6%7%8%9")
                               .arg(column.name)
                               .arg(lookupDataTypeName(column.dataType))
                               .arg(primaryKey)
                               .arg(flagWord(column.flags, NOT_NULL))
                               .arg(flagWord(column.flags, UNIQUE))
                               .arg(flagWord(column.flags, BINARY))
                               .arg(flagWord(column.flags, UNSIGNED))
                               .arg(flagWord(column.flags, ZERO_FILL))
                               .arg((column.flags & AUTO_INCREMENT) ? QStringLiteral(" ") : QString()));
    }
    return definitions;
}

QStringList SqlQuery::convertForeignKeyConfigurationsToStrings(const QList<ForeignKeyConfiguration>& keys)
{
    QStringList definitions;
    definitions.reserve(keys.size());
    for (const ForeignKeyConfiguration& key : keys) {
        // NO ACTION is the engine's default and never spelled out.
        const QString onUpdate =
            key.onUpdate == NO_ACTION ? QString() : QStringLiteral(" ON UPDATE ") + lookupActionName(key.onUpdate);
        const QString onDelete =
            key.onDelete == NO_ACTION ? QString() : QStringLiteral(" ON DELETE ") + lookupActionName(key.onDelete);
        definitions.append(QStringLiteral("FOREIGN KEY (%1) REFERENCES %2 (%3)%4%5")
                               .arg(key.column)
                               .arg(key.referenceTable)
                               .arg(key.referenceColumn)
                               .arg(onUpdate)
                               .arg(onDelete));
    }
    return definitions;
}

} // namespace zelmor::base::connection::databaseconnection
