#include "Tools/DatabaseTool/OutputTable.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QtTest>

using zelmor::tools::databasetool::OutputTable;

class TestOutputTable : public QObject
{
    Q_OBJECT

private slots:
    void textAndJson();
    void noRows();
    void cells_data();
    void cells();
    void jsonReadsBack();

private:
    static OutputTable twoRows();
};

OutputTable TestOutputTable::twoRows()
{
    OutputTable table({{"id", "ID"}, {"name", "NAME"}, {"address", "ADDRESS"}, {"ok", "OK"}, {"n", "N"}});
    table.addRow({1, "KBF", "10.0.0.1", true, QJsonValue()});
    table.addRow({12, "VC 7034 Z2", QJsonValue(), false, 3.5});
    return table;
}

// Columns as wide as their widest cell, two blanks apart; columns of numbers
// (and nothing) to the right; no blanks at the end of a line.
void TestOutputTable::textAndJson()
{
    const OutputTable table = twoRows();
    QCOMPARE(table.rowCount(), 2);
    QCOMPARE(table.toText(), QString("ID  NAME        ADDRESS   OK     N\n"
                                     " 1  KBF         10.0.0.1  yes\n"
                                     "12  VC 7034 Z2            no   3.5\n"));
    QCOMPARE(table.toJson(), QString("[\n"
                                     "  {\"id\": 1, \"name\": \"KBF\", \"address\": \"10.0.0.1\", \"ok\": true, "
                                     "\"n\": null},\n"
                                     "  {\"id\": 12, \"name\": \"VC 7034 Z2\", \"address\": null, \"ok\": false, "
                                     "\"n\": 3.5}\n"
                                     "]\n"));
}

void TestOutputTable::noRows()
{
    const OutputTable table({{"id", "ID"}, {"name", "NAME"}});
    QCOMPARE(table.toText(), QString("ID  NAME\n"));
    QCOMPARE(table.toJson(), QString("[]\n"));
}

void TestOutputTable::cells_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<QString>("text");

    QTest::newRow("null") << QJsonValue() << "";
    QTest::newRow("true") << QJsonValue(true) << "yes";
    QTest::newRow("false") << QJsonValue(false) << "no";
    QTest::newRow("whole number") << QJsonValue(247) << "247";
    QTest::newRow("negative") << QJsonValue(-1) << "-1";
    QTest::newRow("fraction") << QJsonValue(23.25) << "23.25";
    QTest::newRow("text") << QJsonValue("a \"b\"") << "a \"b\"";
}

void TestOutputTable::cells()
{
    QFETCH(QJsonValue, value);
    QFETCH(QString, text);
    QCOMPARE(OutputTable::cellText(value), text);
}

// Quotes, backslashes and units in names stay what they are for a JSON reader.
void TestOutputTable::jsonReadsBack()
{
    OutputTable table({{"name", "NAME"}, {"unit", "UNIT"}});
    table.addRow({"VC \"7034\" \\ Z2", "°C"});
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(table.toJson().toUtf8(), &error);
    QCOMPARE(error.error, QJsonParseError::NoError);
    QCOMPARE(document.array().at(0).toObject().value("name").toString(), QString("VC \"7034\" \\ Z2"));
    QCOMPARE(document.array().at(0).toObject().value("unit").toString(), QString("°C"));
}

QTEST_GUILESS_MAIN(TestOutputTable)
#include "tst_outputtable.moc"
