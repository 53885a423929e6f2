#pragma once

#include "Domain/Api/ISqlQuery.h"

#include <QList>
#include <QLoggingCategory>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace zelmor::base::connection::databaseconnection {

Q_DECLARE_LOGGING_CATEGORY(SQLQUERY)

// Composes one SQL statement call by call. Each call appends a fixed piece of
// text and, for every "?" in it, one value, so placeholders and values stay in
// step. The builder knows no grammar: the order of the calls is the order of the
// text, and a wrong order gives a wrong statement for the connection to report.
// Identifiers go into the text as given; values only through placeholders.
class SqlQuery : public zelmor::domain::api::ISqlQuery
{
public:
    // Fixed underlying types: any stored number is a value of the enumeration,
    // so a stray one reaches the lookup's assertion instead of undefined behaviour.
    enum DataType : int {
        BOOLEAN = 0,
        INTEGER = 1,
        REAL = 2,
        DATETIME = 3,
        TEXT = 4,
        ENUMERATION = 5, // stored as INTEGER
        BLOB = 6
    };

    // Single bits; a column's flags are any combination of them.
    enum ColumnFlag : quint32 {
        NO_FLAG = 1,
        PRIMARY_KEY = 2,
        NOT_NULL = 4,
        UNIQUE = 8,
        BINARY = 16,
        UNSIGNED = 32,
        ZERO_FILL = 64,
        AUTO_INCREMENT = 128 // SQLite numbers an INTEGER PRIMARY KEY by itself
    };

    enum Action : int { NO_ACTION = 0, RESTRICT = 1, SET_NULL = 2, SET_DEFAULT = 3, CASCADE = 4 };

    enum Order : int { ASC = 0, DESC = 1 };

    enum CountType : int { ALL = 0, DISTINCT = 1 };

    friend constexpr ColumnFlag operator|(ColumnFlag a, ColumnFlag b) { return ColumnFlag(quint32(a) | quint32(b)); }

    struct TableColumnPair
    {
        QString table;
        QString column;
    };

    // A join condition: first.table.first.column = second.table.second.column.
    struct TableColumnPairMatch
    {
        TableColumnPair first;
        TableColumnPair second;
    };

    struct ColumnValuePair
    {
        QString column;
        QVariant value;
    };

    struct ColumnConfiguration
    {
        ColumnConfiguration() = default;
        ColumnConfiguration(const QString& name, DataType dataType, ColumnFlag flags = NO_FLAG);

        QString name;
        DataType dataType = INTEGER;
        ColumnFlag flags = NO_FLAG;
    };

    struct ForeignKeyConfiguration
    {
        ForeignKeyConfiguration() = default;
        ForeignKeyConfiguration(const QString& column, const QString& referenceTable, const QString& referenceColumn,
                                Action onUpdate = NO_ACTION, Action onDelete = NO_ACTION);

        QString column;
        QString referenceTable;
        QString referenceColumn;
        Action onUpdate = NO_ACTION;
        Action onDelete = NO_ACTION;
    };

    // The lookups stop the program on a value outside their table.
    static QString lookupDataTypeName(DataType dataType);
    static QString lookupColumnFlagName(ColumnFlag flag);
    static QString lookupActionName(Action action);
    static QString lookupOrderName(Order order);
    static QString lookupCountTypeName(CountType countType);

    const QString& getPreparedQueryString() const override;
    const QList<QVariant>& getBindValues() const override;

    bool operator==(const SqlQuery& other) const;
    bool operator!=(const SqlQuery& other) const;

    // Statement heads.
    SqlQuery& insertTable(const QString& table);
    SqlQuery& insertOrReplaceTable(const QString& table);
    SqlQuery& insertTableColumnValuePairs(const QString& table, const QList<ColumnValuePair>& pairs);
    SqlQuery& updateTable(const QString& table);
    SqlQuery& deleteFromTable(const QString& table);
    SqlQuery& selectColumns(const QStringList& columns);
    SqlQuery& selectColumn(const QString& column);
    SqlQuery& selectTableColumns(const QList<TableColumnPair>& pairs);
    // The only piece without a leading blank. The type counts only with a column.
    SqlQuery& selectCount(CountType countType = ALL, const QString& column = QString());
    SqlQuery& selectOne();
    SqlQuery& selectValues(const QList<QVariant>& values);
    SqlQuery& selectValue(const QVariant& value);
    SqlQuery& vacuum();
    // The engine takes no parameters here: path and names enter the text
    // unquoted and unescaped, so they must come from the program, not a user.
    SqlQuery& attachDatabase(const QString& path, const QString& name);
    SqlQuery& detachDatabase(const QString& name);
    SqlQuery& sqlcipherExport(const QString& name);

    // Clauses.
    SqlQuery& fromTable(const QString& table, const QString& alias = QString());
    SqlQuery& columns(const QStringList& columns);
    SqlQuery& column(const QString& column);
    // Without the keyword the group continues a VALUES list: ",(?,?)".
    SqlQuery& values(const QList<QVariant>& values, bool withKeyword = true);
    SqlQuery& value(const QVariant& value);
    SqlQuery& setColumnValuePairs(const QList<ColumnValuePair>& pairs);
    SqlQuery& setColumnValuePair(const ColumnValuePair& pair);
    SqlQuery& whereColumn(const QString& column);
    SqlQuery& andColumn(const QString& column);
    SqlQuery& andNotColumn(const QString& column);
    SqlQuery& orColumn(const QString& column);
    SqlQuery& orNotColumn(const QString& column);
    SqlQuery& whereTableColumn(const TableColumnPair& pair);
    SqlQuery& andTableColumn(const TableColumnPair& pair);
    SqlQuery& andNotTableColumn(const TableColumnPair& pair);
    SqlQuery& orTableColumn(const TableColumnPair& pair);
    SqlQuery& orNotTableColumn(const TableColumnPair& pair);
    SqlQuery& isNull();
    SqlQuery& isNotNull();
    SqlQuery& compare(const QString& op, const QVariant& value);
    SqlQuery& equals(const QVariant& value);
    SqlQuery& isNotEqual(const QVariant& value);
    SqlQuery& isLess(const QVariant& value);
    SqlQuery& isLessEqual(const QVariant& value);
    SqlQuery& isGreater(const QVariant& value);
    SqlQuery& isGreaterEqual(const QVariant& value);
    SqlQuery& between(const QVariant& lower, const QVariant& upper);
    SqlQuery& notBetween(const QVariant& lower, const QVariant& upper);
    SqlQuery& like(const QString& pattern);
    SqlQuery& notLike(const QString& pattern);
    SqlQuery& inList(const QList<QVariant>& values);
    SqlQuery& inList(const QList<int>& values);
    SqlQuery& notInList(const QList<QVariant>& values);
    // Sub-queries: their values land in the list where their text lands.
    SqlQuery& inSelectQuery(const zelmor::domain::api::ISqlQuery& query);
    SqlQuery& notInSelectQuery(const zelmor::domain::api::ISqlQuery& query);
    SqlQuery& equals(const zelmor::domain::api::ISqlQuery& query);
    SqlQuery& whereExists(const zelmor::domain::api::ISqlQuery& query);
    SqlQuery& whereNotExists(const zelmor::domain::api::ISqlQuery& query);
    SqlQuery& orderBy(const QString& column, Order order = ASC);
    SqlQuery& orderByTableColumn(const TableColumnPair& pair, Order order = ASC);
    SqlQuery& groupByColumns(const QStringList& columns);
    SqlQuery& groupByColumn(const QString& column);
    SqlQuery& limitTo(int count);
    // A non-empty name is the real table and each match's second.table its alias.
    SqlQuery& leftJoinOnMatches(const QList<TableColumnPairMatch>& matches, const QString& name = QString());
    SqlQuery& joinOnMatches(const QList<TableColumnPairMatch>& matches, const QString& name = QString());
    SqlQuery& leftJoinOnMatch(const TableColumnPairMatch& match, const QString& name = QString());
    SqlQuery& joinOnMatch(const TableColumnPairMatch& match, const QString& name = QString());
    // A composite key is appended directly behind the last foreign key, with no
    // separator, as existing databases hold it; SQLite takes that only when the
    // last foreign key has no actions.
    SqlQuery& createTable(const QString& table, const QList<ColumnConfiguration>& columns,
                          const QList<ForeignKeyConfiguration>& foreignKeys = QList<ForeignKeyConfiguration>());

    static QStringList getPrimaryKeys(const QList<ColumnConfiguration>& columns);
    static QString formPrimaryKeyAttribute(const QStringList& keys);
    static QStringList convertColumnConfigurationsToStrings(const QList<ColumnConfiguration>& columns,
                                                            bool hasCompositeKey);
    static QStringList convertForeignKeyConfigurationsToStrings(const QList<ForeignKeyConfiguration>& keys);

private:
    SqlQuery& appendKeywordColumn(const QString& keyword, const QString& column);
    SqlQuery& appendSubQuery(const QString& head, const zelmor::domain::api::ISqlQuery& query);
    SqlQuery& appendJoins(const QString& keyword, const QList<TableColumnPairMatch>& matches, const QString& name);

    QString preparedQueryString;
    QList<QVariant> bindValues;
};

} // namespace zelmor::base::connection::databaseconnection
