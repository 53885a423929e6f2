#include "Base/Connection/DatabaseConnection/SqlQuery.h"

#include <QCoreApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QTextStream>
#include <QtTest>

#include <sys/resource.h>

#include <functional>

using zelmor::base::connection::databaseconnection::SqlQuery;
using zelmor::domain::api::ISqlQuery;

using Q = SqlQuery;
// A chain of builder calls; it hands back what the last call returned.
using Chain = std::function<SqlQuery&(SqlQuery&)>;
using Columns = QList<SqlQuery::ColumnConfiguration>;
using ForeignKeys = QList<SqlQuery::ForeignKeyConfiguration>;

Q_DECLARE_METATYPE(Chain)
Q_DECLARE_METATYPE(Columns)
Q_DECLARE_METATYPE(ForeignKeys)

#define CHAIN(...) Chain([=](SqlQuery& q) -> SqlQuery& { return q __VA_ARGS__; })

namespace {

const char* const childSwitch = "--lookup-in-child";

// A statement that is not a SqlQuery: sub-queries must be taken through the interface.
class FixedStatement : public ISqlQuery
{
public:
    FixedStatement(const QString& text, const QList<QVariant>& values)
        : text(text)
        , values(values)
    {
    }
    const QString& getPreparedQueryString() const override { return text; }
    const QList<QVariant>& getBindValues() const override { return values; }

private:
    QString text;
    QList<QVariant> values;
};

// Type and value of each bind, so that an int 1 and a text "1" differ.
QString describe(const QList<QVariant>& values)
{
    QStringList items;
    for (const QVariant& value : values) {
        const QString type = value.isValid() ? QString::fromLatin1(value.typeName()) : QStringLiteral("invalid");
        items.append(type + QLatin1Char('(') + value.toString() + QLatin1Char(')'));
    }
    return items.join(QStringLiteral(", "));
}

QString lookupByKind(const QString& kind, int value)
{
    if (kind == QLatin1String("DataType")) {
        return Q::lookupDataTypeName(Q::DataType(value));
    }
    if (kind == QLatin1String("ColumnFlag")) {
        return Q::lookupColumnFlagName(Q::ColumnFlag(quint32(value)));
    }
    if (kind == QLatin1String("Action")) {
        return Q::lookupActionName(Q::Action(value));
    }
    if (kind == QLatin1String("Order")) {
        return Q::lookupOrderName(Q::Order(value));
    }
    if (kind == QLatin1String("CountType")) {
        return Q::lookupCountTypeName(Q::CountType(value));
    }
    if (kind == QLatin1String("createTableDataType")) {
        return SqlQuery().createTable(QStringLiteral("t"), {{QStringLiteral("a"), Q::DataType(value)}})
            .getPreparedQueryString();
    }
    if (kind == QLatin1String("createTableOnDelete")) {
        return SqlQuery()
            .createTable(QStringLiteral("t"), {{QStringLiteral("a"), Q::INTEGER}},
                         {{QStringLiteral("a"), QStringLiteral("r"), QStringLiteral("id"), Q::NO_ACTION,
                           Q::Action(value)}})
            .getPreparedQueryString();
    }
    return QStringLiteral("unknown kind");
}

} // namespace

class TestSqlQuery : public QObject
{
    Q_OBJECT

private slots:
    void freshQueryIsEmpty();
    void chain_data();
    void chain();
    void subQueryValuesLandAtTheirText_data();
    void subQueryValuesLandAtTheirText();
    void subQueryMayBeTheQueryItself();
    void lookups_data();
    void lookups();
    void unknownEnumeratorStopsTheProgram_data();
    void unknownEnumeratorStopsTheProgram();
    void columnDefinitions_data();
    void columnDefinitions();
    void foreignKeyDefinitions_data();
    void foreignKeyDefinitions();
    void primaryKeys_data();
    void primaryKeys();
    void createTable_data();
    void createTable();
    void createTableOnTheEngine_data();
    void createTableOnTheEngine();
    void equality_data();
    void equality();
    void copyIsIndependent();
};

void TestSqlQuery::freshQueryIsEmpty()
{
    const SqlQuery query;
    QVERIFY(query.getPreparedQueryString().isEmpty());
    QVERIFY(query.getBindValues().isEmpty());
}

void TestSqlQuery::chain_data()
{
    QTest::addColumn<Chain>("chain");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<QVariant>>("binds");

    const auto row = [](const char* name, const Chain& chain, const QString& text,
                        const QList<QVariant>& binds = {}) { QTest::newRow(name) << chain << text << binds; };

    const Q::TableColumnPair ta{"t", "a"};
    const Q::TableColumnPair ub{"u", "b"};
    const Q::TableColumnPairMatch taUb{ta, ub};
    const Q::TableColumnPairMatch tcVd{{"t", "c"}, {"v", "d"}};
    const Q::TableColumnPairMatch valueTypes{{"source_", "value_type"}, {"destination_", "value_type"}};
    SqlQuery sub;
    sub.selectColumn("signal_id").fromTable("chamber_type_has_signal").whereColumn("chamber_type_id").equals(17);
    const QString subText = " SELECT signal_id FROM chamber_type_has_signal WHERE chamber_type_id = ?";

    // Statement heads
    row("insertTable", CHAIN(.insertTable("chamber")), " INSERT INTO chamber");
    row("insertOrReplaceTable", CHAIN(.insertOrReplaceTable("chamber")), " INSERT OR REPLACE INTO chamber");
    row("insertTableColumnValuePairs",
        CHAIN(.insertTableColumnValuePairs("chamber", {{"chamber_name", "Oven"}, {"serial_no", 4711}})),
        " INSERT INTO chamber (chamber_name, serial_no) VALUES(?,?)", {"Oven", 4711});
    row("insertTableColumnValuePairs without pairs", CHAIN(.insertTableColumnValuePairs("chamber", {})),
        " INSERT INTO chamber () VALUES()");
    row("updateTable", CHAIN(.updateTable("chamber")), " UPDATE chamber");
    row("deleteFromTable", CHAIN(.deleteFromTable("chamber")), " DELETE FROM chamber");
    row("selectColumns", CHAIN(.selectColumns({"a", "b", "c"})), " SELECT a, b, c");
    row("selectColumn", CHAIN(.selectColumn("a")), " SELECT a");
    row("selectTableColumns", CHAIN(.selectTableColumns({ta, ub})), " SELECT t.a, u.b");
    row("selectCount ALL without column", CHAIN(.selectCount(Q::ALL, "")), "SELECT count(*)");
    row("selectCount DISTINCT without column", CHAIN(.selectCount(Q::DISTINCT, "")), "SELECT count(*)");
    row("selectCount defaults", CHAIN(.selectCount()), "SELECT count(*)");
    row("selectCount ALL column", CHAIN(.selectCount(Q::ALL, "a")), "SELECT count(ALL a)");
    row("selectCount DISTINCT column", CHAIN(.selectCount(Q::DISTINCT, "a")), "SELECT count(DISTINCT a)");
    row("selectOne", CHAIN(.selectOne()), " SELECT ?", {1});
    row("selectValues", CHAIN(.selectValues({1, "x", 2.5})), " SELECT ?,?,?", {1, "x", 2.5});
    row("selectValue", CHAIN(.selectValue(qlonglong(7))), " SELECT ?", {qlonglong(7)});
    row("vacuum", CHAIN(.vacuum()), "VACUUM ");
    row("attachDatabase", CHAIN(.attachDatabase("/tmp/export.db", "export")),
        "ATTACH DATABASE '/tmp/export.db' as export;");
    row("attachDatabase does not escape", CHAIN(.attachDatabase("/tmp/it's.db", "ex port")),
        "ATTACH DATABASE '/tmp/it's.db' as ex port;");
    row("detachDatabase", CHAIN(.detachDatabase("export")), "DETACH DATABASE export;");
    row("sqlcipherExport", CHAIN(.sqlcipherExport("export")), "SELECT sqlcipher_export('export');");

    // Clauses
    row("fromTable without alias", CHAIN(.selectColumn("a").fromTable("b")), " SELECT a FROM b");
    row("fromTable with alias", CHAIN(.selectColumn("a").fromTable("b", "c")), " SELECT a FROM b c");
    row("columns", CHAIN(.columns({"a", "b"})), " (a, b)");
    row("column", CHAIN(.column("a")), " (a)");
    row("values with keyword", CHAIN(.values({1, 2})), " VALUES(?,?)", {1, 2});
    row("values without keyword", CHAIN(.values({1, 2}, false)), ",(?,?)", {1, 2});
    row("values twice", CHAIN(.values({1, "b"}, true).values({3, "d"}, false)), " VALUES(?,?),(?,?)",
        {1, "b", 3, "d"});
    row("values empty", CHAIN(.values({})), " VALUES()");
    row("value", CHAIN(.value(QVariant())), " VALUES(?)", {QVariant()});
    row("setColumnValuePairs", CHAIN(.setColumnValuePairs({{"a", 1}, {"b", "x"}})), " SET a = ?, b = ?",
        {1, "x"});
    row("setColumnValuePair", CHAIN(.setColumnValuePair({"a", 2.5})), " SET a = ?", {2.5});
    row("whereColumn", CHAIN(.whereColumn("a")), " WHERE a");
    row("andColumn", CHAIN(.andColumn("a")), " AND a");
    row("andNotColumn", CHAIN(.andNotColumn("a")), " AND NOT a");
    row("orColumn", CHAIN(.orColumn("a")), " OR a");
    row("orNotColumn", CHAIN(.orNotColumn("a")), " OR NOT a");
    row("whereTableColumn", CHAIN(.whereTableColumn(ta)), " WHERE t.a");
    row("andTableColumn", CHAIN(.andTableColumn(ta)), " AND t.a");
    row("andNotTableColumn", CHAIN(.andNotTableColumn(ta)), " AND NOT t.a");
    row("orTableColumn", CHAIN(.orTableColumn(ta)), " OR t.a");
    row("orNotTableColumn", CHAIN(.orNotTableColumn(ta)), " OR NOT t.a");
    row("isNull", CHAIN(.isNull()), " IS NULL");
    row("isNotNull", CHAIN(.isNotNull()), " IS NOT NULL");
    row("compare", CHAIN(.compare("!=", 3)), " != ?", {3});
    row("equals", CHAIN(.equals(1)), " = ?", {1});
    row("isNotEqual", CHAIN(.isNotEqual(1)), " <> ?", {1});
    row("isLess", CHAIN(.isLess(1)), " < ?", {1});
    row("isLessEqual", CHAIN(.isLessEqual(1)), " <= ?", {1});
    row("isGreater", CHAIN(.isGreater(1)), " > ?", {1});
    row("isGreaterEqual", CHAIN(.isGreaterEqual(1)), " >= ?", {1});
    row("between", CHAIN(.between(1, 5.5)), " BETWEEN ? AND ?", {1, 5.5});
    row("notBetween", CHAIN(.notBetween("a", "z")), " NOT BETWEEN ? AND ?", {"a", "z"});
    row("like binds text", CHAIN(.like("ab%")), " LIKE ?", {QString("ab%")});
    row("notLike", CHAIN(.notLike("%b")), " NOT LIKE ?", {QString("%b")});
    row("inList", CHAIN(.inList(QList<QVariant>{1, "x"})), " IN (?, ?)", {1, "x"});
    row("inList of integers", CHAIN(.inList(QList<int>{3, 4, 5})), " IN (?, ?, ?)", {3, 4, 5});
    row("inList empty", CHAIN(.inList(QList<QVariant>{})), " IN ()");
    row("inList of integers empty", CHAIN(.inList(QList<int>{})), " IN ()");
    row("notInList", CHAIN(.notInList({1, 2})), " NOT IN (?, ?)", {1, 2});
    row("inSelectQuery", CHAIN(.inSelectQuery(sub)), " IN (" + subText + ")", {17});
    row("notInSelectQuery", CHAIN(.notInSelectQuery(sub)), " NOT IN (" + subText + ")", {17});
    row("equals sub-query", CHAIN(.equals(sub)), " = (" + subText + ")", {17});
    row("whereExists", CHAIN(.whereExists(sub)), " WHERE EXISTS (" + subText + ")", {17});
    row("whereNotExists", CHAIN(.whereNotExists(sub)), " WHERE NOT EXISTS (" + subText + ")", {17});
    row("orderBy ASC", CHAIN(.orderBy("a", Q::ASC)), " ORDER BY a ASC");
    row("orderBy DESC", CHAIN(.orderBy("a", Q::DESC)), " ORDER BY a DESC");
    row("orderBy default", CHAIN(.orderBy("a")), " ORDER BY a ASC");
    row("orderByTableColumn", CHAIN(.orderByTableColumn(ta, Q::DESC)), " ORDER BY t.a DESC");
    row("groupByColumns", CHAIN(.groupByColumns({"a", "b"})), " GROUP BY a, b");
    row("groupByColumn", CHAIN(.groupByColumn("a")), " GROUP BY a");
    row("limitTo", CHAIN(.limitTo(10)), " LIMIT ?", {10});
    row("leftJoinOnMatches without name", CHAIN(.leftJoinOnMatches({taUb, tcVd})),
        " LEFT JOIN u ON t.a = u.b LEFT JOIN v ON t.c = v.d");
    row("leftJoinOnMatches with name", CHAIN(.leftJoinOnMatches({taUb, tcVd}, "real")),
        " LEFT JOIN real u ON t.a = u.b LEFT JOIN real v ON t.c = v.d");
    row("leftJoinOnMatches empty", CHAIN(.leftJoinOnMatches({}, "real")), "");
    row("joinOnMatches", CHAIN(.joinOnMatches({taUb, tcVd})), " JOIN u ON t.a = u.b JOIN v ON t.c = v.d");
    row("leftJoinOnMatch", CHAIN(.leftJoinOnMatch(taUb)), " LEFT JOIN u ON t.a = u.b");
    row("joinOnMatch with name", CHAIN(.joinOnMatch(valueTypes, "signal")),
        " JOIN signal destination_ ON source_.value_type = destination_.value_type");

    // Whole statements
    row("where equals and is null", CHAIN(.whereColumn("a").equals(1).andColumn("b").isNull()),
        " WHERE a = ? AND b IS NULL", {1});
    row("bulk update",
        CHAIN(.updateTable("chamber").setColumnValuePair({"is_subscribed", true}).whereColumn("id").inList(
            QList<int>{4, 9})),
        " UPDATE chamber SET is_subscribed = ? WHERE id IN (?, ?)", {true, 4, 9});
    row("select with alias join",
        CHAIN(.selectTableColumns({{"source_", "id"}, {"destination_", "id"}})
                  .fromTable("signal", "source_")
                  .joinOnMatch(valueTypes, "signal")
                  .whereTableColumn({"source_", "id"})
                  .inSelectQuery(sub)
                  .orderByTableColumn({"source_", "id"}, Q::ASC)
                  .limitTo(3)),
        " SELECT source_.id, destination_.id FROM signal source_"
        " JOIN signal destination_ ON source_.value_type = destination_.value_type"
        " WHERE source_.id IN ( SELECT signal_id FROM chamber_type_has_signal WHERE chamber_type_id = ?)"
        " ORDER BY source_.id ASC LIMIT ?",
        {17, 3});
    row("count of a group",
        CHAIN(.selectCount(Q::DISTINCT, "signal_id").fromTable("chamber_has_subscribed_signal").whereColumn(
            "chamber_id").between(1, 3).groupByColumn("chamber_id")),
        "SELECT count(DISTINCT signal_id) FROM chamber_has_subscribed_signal WHERE chamber_id BETWEEN ? AND ?"
        " GROUP BY chamber_id",
        {1, 3});
}

void TestSqlQuery::chain()
{
    QFETCH(Chain, chain);
    QFETCH(QString, text);
    QFETCH(QList<QVariant>, binds);

    SqlQuery query;
    SqlQuery& returned = chain(query);
    QCOMPARE(&returned, &query);
    QCOMPARE(query.getPreparedQueryString(), text);
    QCOMPARE(describe(query.getBindValues()), describe(binds));
    QCOMPARE(query.getPreparedQueryString().count(QLatin1Char('?')), query.getBindValues().size());
}

void TestSqlQuery::subQueryValuesLandAtTheirText_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<QString>("keyword");

    QTest::newRow("whereExists") << 0 << " WHERE EXISTS (";
    QTest::newRow("whereNotExists") << 1 << " WHERE NOT EXISTS (";
    QTest::newRow("inSelectQuery") << 2 << " IN (";
    QTest::newRow("notInSelectQuery") << 3 << " NOT IN (";
    QTest::newRow("equals") << 4 << " = (";
}

void TestSqlQuery::subQueryValuesLandAtTheirText()
{
    QFETCH(int, call);
    QFETCH(QString, keyword);

    const FixedStatement sub(" SELECT x FROM u WHERE y = ? AND z BETWEEN ? AND ?", {"sub1", "sub2", "sub3"});
    SqlQuery query;
    query.selectValues({"outer1", "outer2"}).fromTable("t");
    switch (call) {
    case 0:
        query.whereExists(sub);
        break;
    case 1:
        query.whereNotExists(sub);
        break;
    case 2:
        query.inSelectQuery(sub);
        break;
    case 3:
        query.notInSelectQuery(sub);
        break;
    default:
        query.equals(sub);
        break;
    }
    query.andColumn("c").equals("outer3");

    QCOMPARE(query.getPreparedQueryString(),
             " SELECT ?,? FROM t" + keyword + " SELECT x FROM u WHERE y = ? AND z BETWEEN ? AND ?) AND c = ?");
    QCOMPARE(describe(query.getBindValues()),
             describe({"outer1", "outer2", "sub1", "sub2", "sub3", "outer3"}));
}

void TestSqlQuery::subQueryMayBeTheQueryItself()
{
    SqlQuery query;
    query.selectColumn("a").whereColumn("b").equals(1);
    query.whereExists(query);
    QCOMPARE(query.getPreparedQueryString(), QString(" SELECT a WHERE b = ? WHERE EXISTS ( SELECT a WHERE b = ?)"));
    QCOMPARE(describe(query.getBindValues()), describe({1, 1}));
}

void TestSqlQuery::lookups_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");

    const auto row = [](const char* kind, int value, const char* text) {
        QTest::addRow("%s %d", kind, value) << QString(kind) << value << QString(text);
    };
    row("DataType", 0, "BOOLEAN");
    row("DataType", 1, "INTEGER");
    row("DataType", 2, "REAL");
    row("DataType", 3, "DATETIME");
    row("DataType", 4, "TEXT");
    row("DataType", 5, "INTEGER");
    row("DataType", 6, "BLOB");
    row("ColumnFlag", 1, "");
    row("ColumnFlag", 2, "PRIMARY KEY");
    row("ColumnFlag", 4, "NOT NULL");
    row("ColumnFlag", 8, "UNIQUE");
    row("ColumnFlag", 16, "BINARY");
    row("ColumnFlag", 32, "UNSIGNED");
    row("ColumnFlag", 64, "ZERO FILL");
    row("ColumnFlag", 128, "");
    row("Action", 0, "NO ACTION");
    row("Action", 1, "RESTRICT");
    row("Action", 2, "SET NULL");
    row("Action", 3, "SET DEFAULT");
    row("Action", 4, "CASCADE");
    row("Order", 0, "ASC");
    row("Order", 1, "DESC");
    row("CountType", 0, "ALL");
    row("CountType", 1, "DISTINCT");
}

void TestSqlQuery::lookups()
{
    QFETCH(QString, kind);
    QFETCH(int, value);
    QFETCH(QString, text);
    QCOMPARE(lookupByKind(kind, value), text);
}

void TestSqlQuery::unknownEnumeratorStopsTheProgram_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("value");
    QTest::addColumn<bool>("stops");
    QTest::addColumn<QString>("output");

    // The first row shows that the child runs and answers when nothing is wrong.
    QTest::newRow("known DataType") << "DataType" << 6 << false << "BLOB";
    QTest::newRow("DataType 7") << "DataType" << 7 << true << "";
    QTest::newRow("DataType -1") << "DataType" << -1 << true << "";
    QTest::newRow("ColumnFlag 0") << "ColumnFlag" << 0 << true << "";
    QTest::newRow("ColumnFlag combination") << "ColumnFlag" << 6 << true << "";
    QTest::newRow("ColumnFlag 256") << "ColumnFlag" << 256 << true << "";
    QTest::newRow("Action 5") << "Action" << 5 << true << "";
    QTest::newRow("Order 2") << "Order" << 2 << true << "";
    QTest::newRow("CountType 2") << "CountType" << 2 << true << "";
    QTest::newRow("createTable column type 9") << "createTableDataType" << 9 << true << "";
    QTest::newRow("createTable on delete 7") << "createTableOnDelete" << 7 << true << "";
}

void TestSqlQuery::unknownEnumeratorStopsTheProgram()
{
    QFETCH(QString, kind);
    QFETCH(int, value);
    QFETCH(bool, stops);
    QFETCH(QString, output);

    QProcess child;
    child.start(QCoreApplication::applicationFilePath(),
                {QString::fromLatin1(childSwitch), kind, QString::number(value)});
    QVERIFY2(child.waitForFinished(30000), qPrintable(child.errorString()));
    const QString standardError = QString::fromUtf8(child.readAllStandardError());
    if (stops) {
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        QVERIFY2(standardError.contains(QLatin1String("ASSERT: \"false\" in file")), qPrintable(standardError));
        QVERIFY2(standardError.contains(QLatin1String("SqlQuery.cpp")), qPrintable(standardError));
    } else {
        QCOMPARE(child.exitStatus(), QProcess::NormalExit);
        QCOMPARE(child.exitCode(), 0);
        QCOMPARE(standardError, QString());
    }
    QCOMPARE(QString::fromUtf8(child.readAllStandardOutput()), output);
}

void TestSqlQuery::columnDefinitions_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("dataType");
    QTest::addColumn<uint>("flags");
    QTest::addColumn<bool>("compositeKey");
    QTest::addColumn<QString>("definition");

    QTest::newRow("numbered id") << "id" << 1 << 134u << false << "id INTEGER PRIMARY KEY NOT NULL ";
    QTest::newRow("numbered id under composite key") << "id" << 1 << 134u << true << "id INTEGER NOT NULL ";
    QTest::newRow("key under composite key") << "chamber_id" << 1 << 6u << true << "chamber_id INTEGER NOT NULL";
    QTest::newRow("plain text") << "chamber_name" << 4 << 1u << false << "chamber_name TEXT";
    QTest::newRow("unique") << "ip_v4_address" << 4 << 8u << false << "ip_v4_address TEXT UNIQUE";
    QTest::newRow("key, not null, unique") << "recordset_id" << 1 << 14u << false
                                           << "recordset_id INTEGER PRIMARY KEY NOT NULL UNIQUE";
    QTest::newRow("all flags in order") << "v" << 2 << 254u << false
                                        << "v REAL PRIMARY KEY NOT NULL UNIQUE BINARY UNSIGNED ZERO FILL ";
    QTest::newRow("all flags and NO_FLAG") << "v" << 2 << 255u << false
                                           << "v REAL PRIMARY KEY NOT NULL UNIQUE BINARY UNSIGNED ZERO FILL ";
    QTest::newRow("unsigned zero fill") << "n" << 1 << 96u << false << "n INTEGER UNSIGNED ZERO FILL";
    QTest::newRow("binary blob") << "password_hash" << 6 << 16u << false << "password_hash BLOB BINARY";
    QTest::newRow("auto increment alone") << "n" << 1 << 128u << false << "n INTEGER ";
    QTest::newRow("boolean") << "is_active" << 0 << 1u << false << "is_active BOOLEAN";
    QTest::newRow("datetime") << "start_time" << 3 << 1u << false << "start_time DATETIME";
    QTest::newRow("enumeration") << "user_level" << 5 << 1u << false << "user_level INTEGER";
    QTest::newRow("expanded signal column") << "signal_12" << 2 << 1u << false << "signal_12 REAL";
    // The template is filled one argument after the other.
    QTest::newRow("percent digit in name") << "signal_%9" << 2 << 128u << false << "signal_  REAL ";
}

void TestSqlQuery::columnDefinitions()
{
    QFETCH(QString, name);
    QFETCH(int, dataType);
    QFETCH(uint, flags);
    QFETCH(bool, compositeKey);
    QFETCH(QString, definition);

    const Columns columns{{name, Q::DataType(dataType), Q::ColumnFlag(flags)}};
    QCOMPARE(Q::convertColumnConfigurationsToStrings(columns, compositeKey), QStringList{definition});
}

void TestSqlQuery::foreignKeyDefinitions_data()
{
    QTest::addColumn<int>("onUpdate");
    QTest::addColumn<int>("onDelete");
    QTest::addColumn<QString>("definition");

    const QString head = "FOREIGN KEY (recording_id) REFERENCES recording (id)";
    QTest::newRow("no actions") << 0 << 0 << head;
    QTest::newRow("on update") << 4 << 0 << head + " ON UPDATE CASCADE";
    QTest::newRow("on delete") << 0 << 2 << head + " ON DELETE SET NULL";
    QTest::newRow("both") << 1 << 3 << head + " ON UPDATE RESTRICT ON DELETE SET DEFAULT";
}

void TestSqlQuery::foreignKeyDefinitions()
{
    QFETCH(int, onUpdate);
    QFETCH(int, onDelete);
    QFETCH(QString, definition);

    const ForeignKeys keys{{"recording_id", "recording", "id", Q::Action(onUpdate), Q::Action(onDelete)}};
    QCOMPARE(Q::convertForeignKeyConfigurationsToStrings(keys), QStringList{definition});
}

void TestSqlQuery::primaryKeys_data()
{
    QTest::addColumn<Columns>("columns");
    QTest::addColumn<QStringList>("keys");
    QTest::addColumn<QString>("attribute");

    QTest::newRow("none") << Columns{{"a", Q::TEXT}, {"b", Q::INTEGER, Q::NOT_NULL}} << QStringList{}
                          << "PRIMARY KEY ()";
    QTest::newRow("one") << Columns{{"id", Q::INTEGER, Q::PRIMARY_KEY | Q::NOT_NULL | Q::AUTO_INCREMENT},
                                    {"a", Q::TEXT}}
                         << QStringList{"id"} << "PRIMARY KEY (id)";
    QTest::newRow("three in list order")
        << Columns{{"effective_from", Q::DATETIME, Q::PRIMARY_KEY | Q::NOT_NULL},
                   {"range_type", Q::INTEGER},
                   {"signal_id", Q::INTEGER, Q::PRIMARY_KEY},
                   {"chamber_id", Q::INTEGER, Q::PRIMARY_KEY | Q::NOT_NULL}}
        << QStringList{"effective_from", "signal_id", "chamber_id"}
        << "PRIMARY KEY (effective_from, signal_id, chamber_id)";
}

void TestSqlQuery::primaryKeys()
{
    QFETCH(Columns, columns);
    QFETCH(QStringList, keys);
    QFETCH(QString, attribute);

    QCOMPARE(Q::getPrimaryKeys(columns), keys);
    QCOMPARE(Q::formPrimaryKeyAttribute(keys), attribute);
}

void TestSqlQuery::createTable_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<Columns>("columns");
    QTest::addColumn<ForeignKeys>("foreignKeys");
    QTest::addColumn<QString>("statement");

    const Q::ColumnFlag keyNotNull = Q::PRIMARY_KEY | Q::NOT_NULL;
    const Q::ColumnFlag numberedId = Q::PRIMARY_KEY | Q::NOT_NULL | Q::AUTO_INCREMENT;

    QTest::newRow("single key") << "global_settings"
                                << Columns{{"id", Q::INTEGER, keyNotNull}, {"event_do_repeat", Q::INTEGER}}
                                << ForeignKeys{}
                                << " CREATE TABLE IF NOT EXISTS global_settings"
                                   " (id INTEGER PRIMARY KEY NOT NULL, event_do_repeat INTEGER)";
    QTest::newRow("numbered id leaves a blank before the comma")
        << "room" << Columns{{"id", Q::INTEGER, numberedId}, {"room_name", Q::TEXT}, {"image_scale", Q::REAL}}
        << ForeignKeys{}
        << " CREATE TABLE IF NOT EXISTS room (id INTEGER PRIMARY KEY NOT NULL , room_name TEXT, image_scale REAL)";
    QTest::newRow("single key and foreign key")
        << "log_entry"
        << Columns{{"id", Q::INTEGER, keyNotNull}, {"creation_time", Q::DATETIME}, {"user_id", Q::INTEGER}}
        << ForeignKeys{{"user_id", "application_user", "id"}}
        << " CREATE TABLE IF NOT EXISTS log_entry (id INTEGER PRIMARY KEY NOT NULL, creation_time DATETIME,"
           " user_id INTEGER, FOREIGN KEY (user_id) REFERENCES application_user (id))";
    QTest::newRow("foreign keys in list order with actions")
        << "program_step"
        << Columns{{"id", Q::INTEGER, numberedId}, {"program_id", Q::INTEGER, Q::NOT_NULL},
                   {"section_id", Q::INTEGER}}
        << ForeignKeys{{"program_id", "program", "id", Q::NO_ACTION, Q::CASCADE},
                       {"section_id", "program_section", "id", Q::SET_NULL, Q::NO_ACTION}}
        << " CREATE TABLE IF NOT EXISTS program_step (id INTEGER PRIMARY KEY NOT NULL , program_id INTEGER NOT NULL,"
           " section_id INTEGER, FOREIGN KEY (program_id) REFERENCES program (id) ON DELETE CASCADE,"
           " FOREIGN KEY (section_id) REFERENCES program_section (id) ON UPDATE SET NULL)";
    QTest::newRow("composite key directly behind the foreign key")
        << "tolerance_range"
        << Columns{{"effective_from", Q::DATETIME, keyNotNull}, {"chamber_id", Q::INTEGER, keyNotNull},
                   {"signal_id", Q::INTEGER, keyNotNull}, {"range_type", Q::INTEGER}, {"range_min", Q::REAL},
                   {"range_max", Q::REAL}}
        << ForeignKeys{{"chamber_id", "chamber", "id"}}
        << " CREATE TABLE IF NOT EXISTS tolerance_range (effective_from DATETIME NOT NULL,"
           " chamber_id INTEGER NOT NULL, signal_id INTEGER NOT NULL, range_type INTEGER, range_min REAL,"
           " range_max REAL, FOREIGN KEY (chamber_id) REFERENCES chamber (id)"
           "PRIMARY KEY (effective_from, chamber_id, signal_id))";
    QTest::newRow("composite key behind the last of two foreign keys")
        << "t" << Columns{{"a", Q::INTEGER, keyNotNull}, {"b", Q::INTEGER, keyNotNull}}
        << ForeignKeys{{"a", "r", "id"}, {"b", "s", "id"}}
        << " CREATE TABLE IF NOT EXISTS t (a INTEGER NOT NULL, b INTEGER NOT NULL,"
           " FOREIGN KEY (a) REFERENCES r (id), FOREIGN KEY (b) REFERENCES s (id)PRIMARY KEY (a, b))";
    QTest::newRow("composite key without foreign key")
        << "t" << Columns{{"a", Q::INTEGER, keyNotNull}, {"b", Q::INTEGER, keyNotNull}} << ForeignKeys{}
        << " CREATE TABLE IF NOT EXISTS t (a INTEGER NOT NULL, b INTEGER NOT NULLPRIMARY KEY (a, b))";
    QTest::newRow("percent digit in table name is filled later")
        << "t%3" << Columns{{"a", Q::INTEGER, Q::PRIMARY_KEY}} << ForeignKeys{{"a", "r", "id"}}
        << " CREATE TABLE IF NOT EXISTS t,  (a INTEGER PRIMARY KEY, FOREIGN KEY (a) REFERENCES r (id))";
}

void TestSqlQuery::createTable()
{
    QFETCH(QString, table);
    QFETCH(Columns, columns);
    QFETCH(ForeignKeys, foreignKeys);
    QFETCH(QString, statement);

    SqlQuery query;
    QCOMPARE(&query.createTable(table, columns, foreignKeys), &query);
    QCOMPARE(query.getPreparedQueryString(), statement);
    QVERIFY(query.getBindValues().isEmpty());
}

void TestSqlQuery::createTableOnTheEngine_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<Columns>("columns");
    QTest::addColumn<ForeignKeys>("foreignKeys");
    QTest::addColumn<QString>("probe");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("error");

    const Q::ColumnFlag keyNotNull = Q::PRIMARY_KEY | Q::NOT_NULL;
    const Columns toleranceRange{{"effective_from", Q::DATETIME, keyNotNull}, {"chamber_id", Q::INTEGER, keyNotNull},
                                 {"signal_id", Q::INTEGER, keyNotNull}, {"range_type", Q::INTEGER},
                                 {"range_min", Q::REAL}, {"range_max", Q::REAL}};
    const Columns pair{{"a", Q::INTEGER, keyNotNull}, {"b", Q::INTEGER, keyNotNull}};

    // table_info: cid|name|type|notnull|default|position in the primary key
    QTest::newRow("composite key behind foreign key is the table's key")
        << "tolerance_range" << toleranceRange << ForeignKeys{{"chamber_id", "chamber", "id"}}
        << "PRAGMA table_info(tolerance_range);"
        << "0|effective_from|DATETIME|1||1\n1|chamber_id|INTEGER|1||2\n2|signal_id|INTEGER|1||3\n"
           "3|range_type|INTEGER|0||0\n4|range_min|REAL|0||0\n5|range_max|REAL|0||0\n"
        << "";
    QTest::newRow("composite key behind two foreign keys holds")
        << "t" << pair << ForeignKeys{{"a", "r", "id"}, {"b", "s", "id"}}
        << "INSERT INTO t VALUES (1, 2); INSERT INTO t VALUES (1, 3); SELECT count(*) FROM t;"
           " INSERT INTO t VALUES (1, 2);"
        << "2\n"
        << "UNIQUE constraint failed: t.a, t.b";
    QTest::newRow("numbered id")
        << "room" << Columns{{"id", Q::INTEGER, keyNotNull | Q::AUTO_INCREMENT}, {"room_name", Q::TEXT, Q::UNIQUE}}
        << ForeignKeys{}
        << "INSERT INTO room (room_name) VALUES ('a'); INSERT INTO room (room_name) VALUES ('b');"
           " SELECT id, room_name FROM room;"
        << "1|a\n2|b\n"
        << "";
    // foreign_key_list: id|seq|table|from|to|on_update|on_delete|match
    QTest::newRow("actions under a single key")
        << "t" << Columns{{"a", Q::INTEGER, keyNotNull}, {"b", Q::INTEGER}}
        << ForeignKeys{{"b", "r", "id", Q::CASCADE, Q::SET_NULL}} << "PRAGMA foreign_key_list(t);"
        << "0|0|r|b|id|CASCADE|SET NULL|NONE\n"
        << "";
    // The limits of the joining: the key must follow a closing bracket.
    QTest::newRow("composite key behind an action is refused")
        << "t" << pair << ForeignKeys{{"b", "r", "id", Q::NO_ACTION, Q::CASCADE}} << "" << ""
        << "near \"CASCADEPRIMARY\": syntax error";
    QTest::newRow("composite key without foreign key is refused")
        << "t" << pair << ForeignKeys{} << "" << "" << "near \"NULLPRIMARY\": syntax error";
}

void TestSqlQuery::createTableOnTheEngine()
{
    QFETCH(QString, table);
    QFETCH(Columns, columns);
    QFETCH(ForeignKeys, foreignKeys);
    QFETCH(QString, probe);
    QFETCH(QString, output);
    QFETCH(QString, error);

    QString cli = QStandardPaths::findExecutable(QStringLiteral("sqlite3"));
    if (cli.isEmpty()) {
        cli = QStandardPaths::findExecutable(QStringLiteral("sqlcipher"));
    }
    if (cli.isEmpty()) {
        QSKIP("neither sqlite3 nor sqlcipher is installed");
    }

    SqlQuery query;
    query.createTable(table, columns, foreignKeys);

    QProcess engine;
    engine.start(cli, {"-batch", "-bail", "-list", "-noheader", ":memory:"});
    QVERIFY2(engine.waitForStarted(10000), qPrintable(engine.errorString()));
    engine.write((query.getPreparedQueryString() + ";\n" + probe + "\n").toUtf8());
    engine.closeWriteChannel();
    QVERIFY(engine.waitForFinished(10000));

    const QString standardError = QString::fromUtf8(engine.readAllStandardError());
    QCOMPARE(QString::fromUtf8(engine.readAllStandardOutput()), output);
    if (error.isEmpty()) {
        QVERIFY2(standardError.isEmpty(), qPrintable(standardError));
        QCOMPARE(engine.exitCode(), 0);
    } else {
        QVERIFY2(standardError.contains(error), qPrintable(standardError));
        QVERIFY(engine.exitCode() != 0);
    }
}

void TestSqlQuery::equality_data()
{
    QTest::addColumn<Chain>("left");
    QTest::addColumn<Chain>("right");
    QTest::addColumn<bool>("equal");

    QTest::newRow("fresh") << CHAIN(.vacuum()) << CHAIN(.vacuum()) << true;
    QTest::newRow("same text and values") << CHAIN(.selectValue(1).limitTo(2)) << CHAIN(.selectValue(1).limitTo(2))
                                          << true;
    QTest::newRow("same text, other values") << CHAIN(.selectValue(1)) << CHAIN(.selectValue(2)) << false;
    QTest::newRow("same values, other order") << CHAIN(.selectValues({1, 2})) << CHAIN(.selectValues({2, 1}))
                                              << false;
    QTest::newRow("other text, same values") << CHAIN(.whereColumn("a").equals(1))
                                             << CHAIN(.whereColumn("b").equals(1)) << false;
    QTest::newRow("values by the framework's equality")
        << CHAIN(.selectValue(1)) << CHAIN(.selectValue(qlonglong(1))) << true;
    QTest::newRow("one side empty") << CHAIN(.vacuum()) << Chain([](SqlQuery& q) -> SqlQuery& { return q; })
                                    << false;
}

void TestSqlQuery::equality()
{
    QFETCH(Chain, left);
    QFETCH(Chain, right);
    QFETCH(bool, equal);

    SqlQuery a;
    SqlQuery b;
    left(a);
    right(b);
    QCOMPARE(a == b, equal);
    QCOMPARE(b == a, equal);
    QCOMPARE(a != b, !equal);
}

void TestSqlQuery::copyIsIndependent()
{
    SqlQuery original;
    original.selectColumn("a").whereColumn("b").equals(1);
    SqlQuery copy = original;
    QVERIFY(copy == original);

    copy.andColumn("c").equals(2);
    QCOMPARE(original.getPreparedQueryString(), QString(" SELECT a WHERE b = ?"));
    QCOMPARE(describe(original.getBindValues()), describe({1}));
    QCOMPARE(copy.getPreparedQueryString(), QString(" SELECT a WHERE b = ? AND c = ?"));
    QVERIFY(copy != original);
}

int main(int argc, char** argv)
{
    // Child mode: run one lookup and print its text, or stop on the assertion.
    if (argc == 4 && qstrcmp(argv[1], childSwitch) == 0) {
        const rlimit noCoreFile{0, 0};
        setrlimit(RLIMIT_CORE, &noCoreFile);
        QTextStream(stdout) << lookupByKind(QString::fromLatin1(argv[2]), QByteArray(argv[3]).toInt());
        return 0;
    }
    QCoreApplication application(argc, argv);
    TestSqlQuery test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_sqlquery.moc"
