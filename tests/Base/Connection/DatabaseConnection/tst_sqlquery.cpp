#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "support/ChildRun.h"
#include "support/TestDatabase.h"

#include <QCoreApplication>
#include <QTextStream>
#include <QtTest>

#include <functional>

using zelmor::base::connection::databaseconnection::SqlQuery;
using zelmor::domain::api::ISqlQuery;
using zelmor::testsupport::ChildRun;
using zelmor::testsupport::TestDatabase;

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

// A statement that is not a SqlQuery: sub-queries must be taken through the interface.
struct FixedStatement : ISqlQuery
{
    FixedStatement(const QString& text, const QList<QVariant>& values)
        : text(text)
        , values(values)
    {
    }
    const QString& getPreparedQueryString() const override { return text; }
    const QList<QVariant>& getBindValues() const override { return values; }
    QString text;
    QList<QVariant> values;
};

// Type and value of each bind, so that an int 1 and a text "1" differ.
QString describe(const QList<QVariant>& values)
{
    QStringList items;
    for (const QVariant& value : values)
        items << QStringLiteral("%1(%2)").arg(QLatin1String(value.isValid() ? value.typeName() : "invalid"),
                                              value.toString());
    return items.join(QStringLiteral(", "));
}

QString lookupByKind(const QString& kind, int value)
{
    if (kind == QLatin1String("DataType"))
        return Q::lookupDataTypeName(Q::DataType(value));
    if (kind == QLatin1String("ColumnFlag"))
        return Q::lookupColumnFlagName(Q::ColumnFlag(quint32(value)));
    if (kind == QLatin1String("Action"))
        return Q::lookupActionName(Q::Action(value));
    if (kind == QLatin1String("Order"))
        return Q::lookupOrderName(Q::Order(value));
    return Q::lookupCountTypeName(Q::CountType(value));
}

} // namespace

class TestSqlQuery : public QObject
{
    Q_OBJECT

private slots:
    void chain_data();
    void chain();
    void unknownEnumeratorStopsTheProgram_data();
    void unknownEnumeratorStopsTheProgram();
    void createTable_data();
    void createTable();
    void equality();
};

void TestSqlQuery::chain_data()
{
    QTest::addColumn<Chain>("chain");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<QVariant>>("binds");

    const auto row = [](const char* name, const Chain& chain, const QString& text, const QList<QVariant>& binds = {}) {
        QTest::newRow(name) << chain << text << binds;
    };

    const Q::TableColumnPair ta{"t", "a"};
    const Q::TableColumnPair ub{"u", "b"};
    const Q::TableColumnPairMatch taUb{ta, ub};
    const Q::TableColumnPairMatch tcVd{{"t", "c"}, {"v", "d"}};
    const Q::TableColumnPairMatch valueTypes{{"source_", "value_type"}, {"destination_", "value_type"}};
    const FixedStatement fixed(" SELECT x FROM u WHERE y = ? AND z BETWEEN ? AND ?", {"sub1", "sub2", "sub3"});
    const FixedStatement one(" SELECT y", {"s"});
    SqlQuery sub;
    sub.selectColumn("x").fromTable("u").whereColumn("y").equals(17);

    row("fresh query", Chain([](SqlQuery& q) -> SqlQuery& { return q; }), "");
    // heads
    row("insert, columns, values twice",
        CHAIN(.insertTable("chamber").columns({"a", "b"}).values({1, "b"}).values({3, "d"}, false)),
        " INSERT INTO chamber (a, b) VALUES(?,?),(?,?)", {1, "b", 3, "d"});
    row("insert or replace, column, value", CHAIN(.insertOrReplaceTable("chamber").column("a").value(QVariant())),
        " INSERT OR REPLACE INTO chamber (a) VALUES(?)", {QVariant()});
    row("insertTableColumnValuePairs",
        CHAIN(.insertTableColumnValuePairs("chamber", {{"chamber_name", "Oven"}, {"serial_no", 4711}})),
        " INSERT INTO chamber (chamber_name, serial_no) VALUES(?,?)", {"Oven", 4711});
    row("update, set pairs, in list of integers",
        CHAIN(.updateTable("chamber")
                  .setColumnValuePairs({{"a", 1}, {"b", "x"}})
                  .whereColumn("id")
                  .inList(QList<int>{4, 9})),
        " UPDATE chamber SET a = ?, b = ? WHERE id IN (?, ?)", {1, "x", 4, 9});
    row("update, set pair", CHAIN(.updateTable("t").setColumnValuePair({"a", 2.5})), " UPDATE t SET a = ?", {2.5});
    row("delete, not in list", CHAIN(.deleteFromTable("chamber").whereColumn("a").notInList({1, 2})),
        " DELETE FROM chamber WHERE a NOT IN (?, ?)", {1, 2});
    row("select columns, group by columns, default order",
        CHAIN(.selectColumns({"a", "b", "c"}).fromTable("t").groupByColumns({"a", "b"}).orderBy("a")),
        " SELECT a, b, c FROM t GROUP BY a, b ORDER BY a ASC");
    row("select column, alias, group by column, limit",
        CHAIN(.selectColumn("a").fromTable("b", "c").groupByColumn("a").orderBy("a", Q::DESC).limitTo(10)),
        " SELECT a FROM b c GROUP BY a ORDER BY a DESC LIMIT ?", {10});
    row("select values", CHAIN(.selectOne().selectValues({1, "x", 2.5}).selectValue(qlonglong(7))),
        " SELECT ? SELECT ?,?,? SELECT ?", {1, 1, "x", 2.5, qlonglong(7)});
    // Without a column the type is not looked at.
    row("counts", CHAIN(.selectCount(Q::DISTINCT, "").selectCount(Q::ALL, "a")), "SELECT count(*)SELECT count(ALL a)");
    // the engine can't take these as parameters: the text goes in as it is
    row("attach, export, detach, vacuum",
        CHAIN(.attachDatabase("/tmp/it's.db", "export").sqlcipherExport("export").detachDatabase("export").vacuum()),
        "ATTACH DATABASE '/tmp/it's.db' as export;SELECT sqlcipher_export('export');DETACH DATABASE export;VACUUM ");
    // clauses
    row("column conditions", CHAIN(.whereColumn("a").andColumn("b").andNotColumn("c").orColumn("d").orNotColumn("e")),
        " WHERE a AND b AND NOT c OR d OR NOT e");
    row("table column conditions",
        CHAIN(.whereTableColumn(ta).andTableColumn(ub).andNotTableColumn(ta).orTableColumn(ub).orNotTableColumn(ta)),
        " WHERE t.a AND u.b AND NOT t.a OR u.b OR NOT t.a");
    row("equals and nulls", CHAIN(.whereColumn("a").equals(1).andColumn("b").isNull().orColumn("c").isNotNull()),
        " WHERE a = ? AND b IS NULL OR c IS NOT NULL", {1});
    row("comparisons", CHAIN(.compare("!=", 3).isNotEqual(4).isLess(5).isLessEqual(6).isGreater(7).isGreaterEqual(8)),
        " != ? <> ? < ? <= ? > ? >= ?", {3, 4, 5, 6, 7, 8});
    row("between, like", CHAIN(.between(1, 5.5).notBetween("a", "z").like("ab%").notLike("%b")),
        " BETWEEN ? AND ? NOT BETWEEN ? AND ? LIKE ? NOT LIKE ?", {1, 5.5, "a", "z", QString("ab%"), QString("%b")});
    row("in lists, empty ones bind nothing",
        CHAIN(.inList(QList<QVariant>{1, "x"}).inList(QList<int>{}).inList(QList<QVariant>{})),
        " IN (?, ?) IN () IN ()", {1, "x"});
    row("left joins with name", CHAIN(.leftJoinOnMatches({taUb, tcVd}, "real")),
        " LEFT JOIN real u ON t.a = u.b LEFT JOIN real v ON t.c = v.d");
    row("joins", CHAIN(.joinOnMatches({taUb, tcVd}).leftJoinOnMatch(taUb).joinOnMatch(valueTypes, "signal")),
        " JOIN u ON t.a = u.b JOIN v ON t.c = v.d LEFT JOIN u ON t.a = u.b"
        " JOIN signal destination_ ON source_.value_type = destination_.value_type");
    // sub-query values land at the place of their text
    row("where exists between outer values",
        CHAIN(.selectValues({"outer1", "outer2"}).fromTable("t").whereExists(fixed).andColumn("c").equals("outer3")),
        " SELECT ?,? FROM t WHERE EXISTS ( SELECT x FROM u WHERE y = ? AND z BETWEEN ? AND ?) AND c = ?",
        {"outer1", "outer2", "sub1", "sub2", "sub3", "outer3"});
    row("other sub-query calls",
        CHAIN(.selectValue("o1")
                  .whereNotExists(one)
                  .andColumn("a")
                  .equals("o2")
                  .andColumn("b")
                  .inSelectQuery(one)
                  .andColumn("c")
                  .notInSelectQuery(one)
                  .andColumn("d")
                  .equals(one)
                  .limitTo(5)),
        " SELECT ? WHERE NOT EXISTS ( SELECT y) AND a = ? AND b IN ( SELECT y) AND c NOT IN ( SELECT y)"
        " AND d = ( SELECT y) LIMIT ?",
        {"o1", "s", "o2", "s", "s", "s", 5});
    row("table columns and a builder sub-query",
        CHAIN(.selectTableColumns({{"s", "id"}, {"d", "id"}})
                  .inSelectQuery(sub)
                  .orderByTableColumn({"s", "id"}, Q::ASC)),
        " SELECT s.id, d.id IN ( SELECT x FROM u WHERE y = ?) ORDER BY s.id ASC", {17});
    row("the query as its own sub-query", CHAIN(.selectColumn("a").whereColumn("b").equals(1).whereExists(q)),
        " SELECT a WHERE b = ? WHERE EXISTS ( SELECT a WHERE b = ?)", {1, 1});
}

void TestSqlQuery::chain()
{
    QFETCH(Chain, chain);
    QFETCH(QString, text);
    QFETCH(QList<QVariant>, binds);

    SqlQuery query;
    QCOMPARE(&chain(query), &query);
    QCOMPARE(query.getPreparedQueryString(), text);
    QCOMPARE(describe(query.getBindValues()), describe(binds));
}

void TestSqlQuery::unknownEnumeratorStopsTheProgram_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("output"); // empty: the child stops on the assertion

    // The first row shows that the child runs and answers when nothing is wrong.
    QTest::newRow("known DataType") << "DataType" << 6 << "BLOB";
    QTest::newRow("DataType 7") << "DataType" << 7 << "";
    QTest::newRow("ColumnFlag combination") << "ColumnFlag" << 6 << "";
    QTest::newRow("Action 5") << "Action" << 5 << "";
    QTest::newRow("Order 2") << "Order" << 2 << "";
    QTest::newRow("CountType 2") << "CountType" << 2 << "";
}

void TestSqlQuery::unknownEnumeratorStopsTheProgram()
{
    QFETCH(QString, kind);
    QFETCH(int, value);
    QFETCH(QString, output);

    const ChildRun child = ChildRun::start({kind, QString::number(value)});
    QCOMPARE(QString::fromUtf8(child.standardOutput), output);
    QVERIFY2(output.isEmpty() ? child.stoppedOnAssertion("false", "SqlQuery.cpp")
                              : child.finished && !child.crashed && child.standardError.isEmpty(),
             child.standardError.constData());
}

void TestSqlQuery::createTable_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<Columns>("columns");
    QTest::addColumn<ForeignKeys>("foreignKeys");
    QTest::addColumn<QString>("statement");
    // Run on the sqlite3 engine behind the statement, unless both are empty.
    QTest::addColumn<QString>("probe");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("error");

    const Q::ColumnFlag keyNotNull = Q::PRIMARY_KEY | Q::NOT_NULL;
    const Columns pair{{"a", Q::INTEGER, keyNotNull}, {"b", Q::INTEGER, keyNotNull}, {"c", Q::TEXT}};

    QTest::newRow("numbered id leaves a blank before the comma")
        << "room" << Columns{{"id", Q::INTEGER, keyNotNull | Q::AUTO_INCREMENT}, {"room_name", Q::TEXT, Q::UNIQUE}}
        << ForeignKeys{} << " CREATE TABLE IF NOT EXISTS room (id INTEGER PRIMARY KEY NOT NULL , room_name TEXT UNIQUE)"
        << "INSERT INTO room (room_name) VALUES ('a'), ('b'); SELECT id, room_name FROM room;"
        << "1|a\n2|b\n"
        << "";
    // The template is filled one argument after the other: "%9" in a name goes too.
    QTest::newRow("type texts, flags in order, percent digit in a name")
        << "t"
        << Columns{{"e", Q::ENUMERATION},
                   {"v", Q::REAL, Q::ColumnFlag(254)},
                   {"signal_%9", Q::BOOLEAN, Q::AUTO_INCREMENT}}
        << ForeignKeys{}
        << " CREATE TABLE IF NOT EXISTS t (e INTEGER, v REAL PRIMARY KEY NOT NULL UNIQUE BINARY UNSIGNED ZERO FILL ,"
           " signal_  BOOLEAN )"
        << ""
        << ""
        << "";
    // foreign_key_list: id|seq|table|from|to|on_update|on_delete|match, the last declared first
    QTest::newRow("foreign keys in list order, NO ACTION not spelled")
        << "s" << Columns{{"p", Q::INTEGER}, {"q", Q::INTEGER}}
        << ForeignKeys{{"p", "r", "id", Q::NO_ACTION, Q::CASCADE},
                       {"q", "r", "id", Q::SET_NULL, Q::NO_ACTION},
                       {"p", "u", "id", Q::RESTRICT, Q::SET_DEFAULT},
                       {"q", "u", "id"}}
        << " CREATE TABLE IF NOT EXISTS s (p INTEGER, q INTEGER, FOREIGN KEY (p) REFERENCES r (id) ON DELETE CASCADE,"
           " FOREIGN KEY (q) REFERENCES r (id) ON UPDATE SET NULL,"
           " FOREIGN KEY (p) REFERENCES u (id) ON UPDATE RESTRICT ON DELETE SET DEFAULT, FOREIGN KEY (q) REFERENCES u "
           "(id))"
        << "PRAGMA foreign_key_list(s);"
        << "0|0|u|q|id|NO ACTION|NO ACTION|NONE\n1|0|u|p|id|RESTRICT|SET DEFAULT|NONE\n"
           "2|0|r|q|id|SET NULL|NO ACTION|NONE\n3|0|r|p|id|NO ACTION|CASCADE|NONE\n"
        << "";
    // table_info: cid|name|type|notnull|default|position in the primary key
    QTest::newRow("composite key directly behind the foreign key")
        << "t" << pair << ForeignKeys{{"a", "r", "id"}}
        << " CREATE TABLE IF NOT EXISTS t (a INTEGER NOT NULL, b INTEGER NOT NULL, c TEXT,"
           " FOREIGN KEY (a) REFERENCES r (id)PRIMARY KEY (a, b))"
        << "PRAGMA table_info(t); INSERT INTO t VALUES (1, 2, 'x'); INSERT INTO t VALUES (1, 2, 'y');"
        << "0|a|INTEGER|1||1\n1|b|INTEGER|1||2\n2|c|TEXT|0||0\n"
        << "UNIQUE constraint failed: t.a, t.b";
    // The limits of the joining: the key must follow a closing bracket.
    QTest::newRow("composite key without foreign key is refused")
        << "t" << pair.mid(0, 2) << ForeignKeys{}
        << " CREATE TABLE IF NOT EXISTS t (a INTEGER NOT NULL, b INTEGER NOT NULLPRIMARY KEY (a, b))"
        << ""
        << ""
        << "near \"NULLPRIMARY\": syntax error";
    QTest::newRow("composite key behind an action is refused")
        << "t" << pair << ForeignKeys{{"b", "r", "id", Q::NO_ACTION, Q::CASCADE}}
        << " CREATE TABLE IF NOT EXISTS t (a INTEGER NOT NULL, b INTEGER NOT NULL, c TEXT,"
           " FOREIGN KEY (b) REFERENCES r (id) ON DELETE CASCADEPRIMARY KEY (a, b))"
        << ""
        << ""
        << "near \"CASCADEPRIMARY\": syntax error";
}

void TestSqlQuery::createTable()
{
    QFETCH(QString, table);
    QFETCH(Columns, columns);
    QFETCH(ForeignKeys, foreignKeys);
    QFETCH(QString, probe);
    QFETCH(QString, error);

    SqlQuery query;
    QCOMPARE(&query.createTable(table, columns, foreignKeys), &query);
    QTEST(query.getPreparedQueryString(), "statement");
    QVERIFY(query.getBindValues().isEmpty());
    if (probe.isEmpty() && error.isEmpty())
        return;
    const TestDatabase::ShellResult engine = TestDatabase::runSqlcipher(QStringLiteral(":memory:"), QString(),
                                                                        query.getPreparedQueryString() + ";\n" + probe);
    QTEST(engine.output, "output");
    QVERIFY2(error.isEmpty() ? engine.ok : engine.errorOutput.contains(error), qPrintable(engine.errorOutput));
}

void TestSqlQuery::equality()
{
    SqlQuery first, second, otherValue, otherText;
    first.whereColumn("a").equals(1);
    second.whereColumn("a").equals(qlonglong(1)); // values by the framework's equality
    otherValue.whereColumn("a").equals(2);
    otherText.whereColumn("b").equals(1);
    QVERIFY(first == second && !(first != second));
    QVERIFY(first != otherValue && !(first == otherValue));
    QVERIFY(first != otherText);
}

int main(int argc, char** argv)
{
    // Child mode: run one lookup and print its text, or stop on the assertion.
    if (zelmor::testsupport::isChildRun(argc, argv)) {
        const QStringList arguments = ChildRun::arguments(argc, argv);
        QTextStream(stdout) << lookupByKind(arguments.value(0), arguments.value(1).toInt());
        return 0;
    }
    QCoreApplication application(argc, argv);
    TestSqlQuery test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_sqlquery.moc"
