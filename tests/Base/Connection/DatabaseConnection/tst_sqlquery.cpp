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
struct FixedStatement : ISqlQuery {
    FixedStatement(const QString& text, const QList<QVariant>& values) : text(text), values(values) {}
    const QString& getPreparedQueryString() const override { return text; }
    const QList<QVariant>& getBindValues() const override { return values; }
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
    void columnDefinitions_data();
    void columnDefinitions();
    void createTable_data();
    void createTable();
    void createTableOnTheEngine_data();
    void createTableOnTheEngine();
    void equality();
};

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
    const FixedStatement fixed(" SELECT x FROM u WHERE y = ? AND z BETWEEN ? AND ?", {"sub1", "sub2", "sub3"});
    const QString fixedText = " SELECT x FROM u WHERE y = ? AND z BETWEEN ? AND ?";
    const FixedStatement one(" SELECT y", {"s"});
    SqlQuery sub;
    sub.selectColumn("signal_id").fromTable("chamber_type_has_signal").whereColumn("chamber_type_id").equals(17);

    row("fresh query", Chain([](SqlQuery& q) -> SqlQuery& { return q; }), "");
    // heads
    row("insert, columns, values twice", CHAIN(.insertTable("chamber").columns({"a", "b"}).values({1, "b"}).values(
                                                   {3, "d"}, false)),
        " INSERT INTO chamber (a, b) VALUES(?,?),(?,?)", {1, "b", 3, "d"});
    row("insert or replace, column, value", CHAIN(.insertOrReplaceTable("chamber").column("a").value(QVariant())),
        " INSERT OR REPLACE INTO chamber (a) VALUES(?)", {QVariant()});
    row("insertTableColumnValuePairs",
        CHAIN(.insertTableColumnValuePairs("chamber", {{"chamber_name", "Oven"}, {"serial_no", 4711}})),
        " INSERT INTO chamber (chamber_name, serial_no) VALUES(?,?)", {"Oven", 4711});
    row("update, set pairs, in list of integers",
        CHAIN(.updateTable("chamber").setColumnValuePairs({{"a", 1}, {"b", "x"}}).whereColumn("id").inList(
            QList<int>{4, 9})),
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
    row("count without column ignores the type", CHAIN(.selectCount(Q::DISTINCT, "")), "SELECT count(*)");
    row("count ALL of a column", CHAIN(.selectCount(Q::ALL, "a")), "SELECT count(ALL a)");
    row("count of a group",
        CHAIN(.selectCount(Q::DISTINCT, "signal_id").fromTable("chamber_has_subscribed_signal").whereColumn(
            "chamber_id").between(1, 3).groupByColumn("chamber_id")),
        "SELECT count(DISTINCT signal_id) FROM chamber_has_subscribed_signal WHERE chamber_id BETWEEN ? AND ?"
        " GROUP BY chamber_id",
        {1, 3});
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
        CHAIN(.inList(QList<QVariant>{1, "x"}).inList(QList<int>{}).inList(QList<QVariant>{})), " IN (?, ?) IN () IN ()",
        {1, "x"});
    row("left joins with name", CHAIN(.leftJoinOnMatches({taUb, tcVd}, "real")),
        " LEFT JOIN real u ON t.a = u.b LEFT JOIN real v ON t.c = v.d");
    row("joins", CHAIN(.joinOnMatches({taUb, tcVd}).leftJoinOnMatch(taUb).joinOnMatch(valueTypes, "signal")),
        " JOIN u ON t.a = u.b JOIN v ON t.c = v.d LEFT JOIN u ON t.a = u.b"
        " JOIN signal destination_ ON source_.value_type = destination_.value_type");
    // sub-query values land at the place of their text
    row("where exists between outer values",
        CHAIN(.selectValues({"outer1", "outer2"}).fromTable("t").whereExists(fixed).andColumn("c").equals("outer3")),
        " SELECT ?,? FROM t WHERE EXISTS (" + fixedText + ") AND c = ?",
        {"outer1", "outer2", "sub1", "sub2", "sub3", "outer3"});
    row("other sub-query calls",
        CHAIN(.selectValue("o1").whereNotExists(one).andColumn("a").equals("o2").andColumn("b").inSelectQuery(
            one).andColumn("c").notInSelectQuery(one).andColumn("d").equals(one).limitTo(5)),
        " SELECT ? WHERE NOT EXISTS ( SELECT y) AND a = ? AND b IN ( SELECT y) AND c NOT IN ( SELECT y)"
        " AND d = ( SELECT y) LIMIT ?",
        {"o1", "s", "o2", "s", "s", "s", 5});
    row("select with alias join and a builder sub-query",
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
    row("the query as its own sub-query", Chain([](SqlQuery& q) -> SqlQuery& {
            q.selectColumn("a").whereColumn("b").equals(1);
            return q.whereExists(q);
        }),
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

    QProcess child;
    child.start(QCoreApplication::applicationFilePath(),
                {QString::fromLatin1(childSwitch), kind, QString::number(value)});
    QVERIFY2(child.waitForFinished(30000), qPrintable(child.errorString()));
    const QString standardError = QString::fromUtf8(child.readAllStandardError());
    QCOMPARE(QString::fromUtf8(child.readAllStandardOutput()), output);
    if (output.isEmpty()) {
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        QVERIFY2(standardError.contains(QLatin1String("ASSERT: \"false\" in file")), qPrintable(standardError));
        QVERIFY2(standardError.contains(QLatin1String("SqlQuery.cpp")), qPrintable(standardError));
    } else {
        QCOMPARE(child.exitStatus(), QProcess::NormalExit);
        QCOMPARE(standardError, QString());
    }
}

void TestSqlQuery::columnDefinitions_data()
{
    QTest::addColumn<Columns>("columns");
    QTest::addColumn<bool>("compositeKey");
    QTest::addColumn<QStringList>("definitions");
    QTest::addColumn<QStringList>("keys");

    QTest::newRow("every type") << Columns{{"a", Q::BOOLEAN}, {"b", Q::INTEGER}, {"c", Q::REAL}, {"d", Q::DATETIME},
                                           {"e", Q::TEXT}, {"f", Q::ENUMERATION}, {"g", Q::BLOB}}
                                << false
                                << QStringList{"a BOOLEAN", "b INTEGER", "c REAL", "d DATETIME", "e TEXT",
                                               "f INTEGER", "g BLOB"}
                                << QStringList{};
    QTest::newRow("numbered id") << Columns{{"id", Q::INTEGER, Q::ColumnFlag(134)}} << false
                                 << QStringList{"id INTEGER PRIMARY KEY NOT NULL "} << QStringList{"id"};
    QTest::newRow("under a composite key")
        << Columns{{"id", Q::INTEGER, Q::ColumnFlag(134)}, {"n", Q::TEXT}, {"chamber_id", Q::INTEGER, Q::ColumnFlag(6)}}
        << true << QStringList{"id INTEGER NOT NULL ", "n TEXT", "chamber_id INTEGER NOT NULL"}
        << QStringList{"id", "chamber_id"};
    QTest::newRow("all flags in order") << Columns{{"v", Q::REAL, Q::ColumnFlag(254)}} << false
                                        << QStringList{"v REAL PRIMARY KEY NOT NULL UNIQUE BINARY UNSIGNED ZERO FILL "}
                                        << QStringList{"v"};
    // The template is filled one argument after the other.
    QTest::newRow("percent digit in name") << Columns{{"signal_%9", Q::REAL, Q::AUTO_INCREMENT}} << false
                                           << QStringList{"signal_  REAL "} << QStringList{};
}

void TestSqlQuery::columnDefinitions()
{
    QFETCH(Columns, columns);
    QFETCH(bool, compositeKey);
    QFETCH(QStringList, keys);

    QTEST(Q::convertColumnConfigurationsToStrings(columns, compositeKey), "definitions");
    QCOMPARE(Q::getPrimaryKeys(columns), keys);
    QCOMPARE(Q::formPrimaryKeyAttribute(keys), QStringLiteral("PRIMARY KEY (%1)").arg(keys.join(", ")));
}

void TestSqlQuery::createTable_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<Columns>("columns");
    QTest::addColumn<ForeignKeys>("foreignKeys");
    QTest::addColumn<QString>("statement");

    const Q::ColumnFlag keyNotNull = Q::PRIMARY_KEY | Q::NOT_NULL;
    const Q::ColumnFlag numberedId = Q::PRIMARY_KEY | Q::NOT_NULL | Q::AUTO_INCREMENT;

    QTest::newRow("numbered id leaves a blank before the comma")
        << "room" << Columns{{"id", Q::INTEGER, numberedId}, {"room_name", Q::TEXT}} << ForeignKeys{}
        << " CREATE TABLE IF NOT EXISTS room (id INTEGER PRIMARY KEY NOT NULL , room_name TEXT)";
    QTest::newRow("foreign keys in list order, NO ACTION not spelled")
        << "program_step"
        << Columns{{"id", Q::INTEGER, numberedId}, {"program_id", Q::INTEGER, Q::NOT_NULL}, {"section_id", Q::INTEGER}}
        << ForeignKeys{{"program_id", "program", "id", Q::NO_ACTION, Q::CASCADE},
                       {"section_id", "program_section", "id", Q::SET_NULL, Q::NO_ACTION},
                       {"program_id", "program_copy", "id", Q::RESTRICT, Q::SET_DEFAULT},
                       {"section_id", "section_copy", "id"}}
        << " CREATE TABLE IF NOT EXISTS program_step (id INTEGER PRIMARY KEY NOT NULL , program_id INTEGER NOT NULL,"
           " section_id INTEGER, FOREIGN KEY (program_id) REFERENCES program (id) ON DELETE CASCADE,"
           " FOREIGN KEY (section_id) REFERENCES program_section (id) ON UPDATE SET NULL,"
           " FOREIGN KEY (program_id) REFERENCES program_copy (id) ON UPDATE RESTRICT ON DELETE SET DEFAULT,"
           " FOREIGN KEY (section_id) REFERENCES section_copy (id))";
    QTest::newRow("composite key directly behind the foreign key")
        << "tolerance_range"
        << Columns{{"effective_from", Q::DATETIME, keyNotNull}, {"chamber_id", Q::INTEGER, keyNotNull},
                   {"signal_id", Q::INTEGER, keyNotNull}, {"range_min", Q::REAL}}
        << ForeignKeys{{"chamber_id", "chamber", "id"}}
        << " CREATE TABLE IF NOT EXISTS tolerance_range (effective_from DATETIME NOT NULL,"
           " chamber_id INTEGER NOT NULL, signal_id INTEGER NOT NULL, range_min REAL,"
           " FOREIGN KEY (chamber_id) REFERENCES chamber (id)PRIMARY KEY (effective_from, chamber_id, signal_id))";
    QTest::newRow("composite key without foreign key")
        << "t" << Columns{{"a", Q::INTEGER, keyNotNull}, {"b", Q::INTEGER, keyNotNull}} << ForeignKeys{}
        << " CREATE TABLE IF NOT EXISTS t (a INTEGER NOT NULL, b INTEGER NOT NULLPRIMARY KEY (a, b))";
}

void TestSqlQuery::createTable()
{
    QFETCH(QString, table);
    QFETCH(Columns, columns);
    QFETCH(ForeignKeys, foreignKeys);

    SqlQuery query;
    QCOMPARE(&query.createTable(table, columns, foreignKeys), &query);
    QTEST(query.getPreparedQueryString(), "statement");
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
    const Columns pair{{"a", Q::INTEGER, keyNotNull}, {"b", Q::INTEGER, keyNotNull}, {"c", Q::TEXT}};

    // table_info: cid|name|type|notnull|default|position in the primary key
    QTest::newRow("composite key behind foreign key is the table's key")
        << "t" << pair << ForeignKeys{{"a", "r", "id"}}
        << "PRAGMA table_info(t); INSERT INTO t VALUES (1, 2, 'x'); INSERT INTO t VALUES (1, 2, 'y');"
        << "0|a|INTEGER|1||1\n1|b|INTEGER|1||2\n2|c|TEXT|0||0\n" << "UNIQUE constraint failed: t.a, t.b";
    QTest::newRow("numbered id")
        << "room" << Columns{{"id", Q::INTEGER, keyNotNull | Q::AUTO_INCREMENT}, {"room_name", Q::TEXT, Q::UNIQUE}}
        << ForeignKeys{}
        << "INSERT INTO room (room_name) VALUES ('a'); INSERT INTO room (room_name) VALUES ('b');"
           " SELECT id, room_name FROM room;"
        << "1|a\n2|b\n" << "";
    // foreign_key_list: id|seq|table|from|to|on_update|on_delete|match
    QTest::newRow("actions under a single key")
        << "t" << Columns{{"a", Q::INTEGER, keyNotNull}, {"b", Q::INTEGER}}
        << ForeignKeys{{"b", "r", "id", Q::CASCADE, Q::SET_NULL}} << "PRAGMA foreign_key_list(t);"
        << "0|0|r|b|id|CASCADE|SET NULL|NONE\n" << "";
    // The limit of the joining: the key must follow a closing bracket.
    QTest::newRow("composite key behind an action is refused")
        << "t" << pair << ForeignKeys{{"b", "r", "id", Q::NO_ACTION, Q::CASCADE}} << "" << ""
        << "near \"CASCADEPRIMARY\": syntax error";
}

void TestSqlQuery::createTableOnTheEngine()
{
    QFETCH(QString, table);
    QFETCH(Columns, columns);
    QFETCH(ForeignKeys, foreignKeys);
    QFETCH(QString, probe);
    QFETCH(QString, error);

    const QString cli = QStandardPaths::findExecutable(QStringLiteral("sqlite3"));
    if (cli.isEmpty()) {
        QSKIP("sqlite3 is not installed");
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
    QTEST(QString::fromUtf8(engine.readAllStandardOutput()), "output");
    QVERIFY2(error.isEmpty() ? standardError.isEmpty() : standardError.contains(error), qPrintable(standardError));
    QCOMPARE(engine.exitCode() == 0, error.isEmpty());
}

void TestSqlQuery::equality()
{
    SqlQuery first;
    SqlQuery second;
    first.whereColumn("a").equals(1);
    second.whereColumn("a").equals(qlonglong(1));
    // values by the framework's equality
    QVERIFY(first == second && !(first != second));
    SqlQuery otherValue;
    otherValue.whereColumn("a").equals(2);
    QVERIFY(first != otherValue && !(first == otherValue));
    SqlQuery otherText;
    otherText.whereColumn("b").equals(1);
    QVERIFY(first != otherText);
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
