#include "Tools/DatabaseTool/RecordsetCsv.h"

#include "Domain/Types/Recordset.h"

#include <QtTest>

using zelmor::domain::types::ChamberSignal;
using zelmor::domain::types::Recordset;
using zelmor::domain::types::RecordsetComment;
using zelmor::domain::types::SignalValuePair;
using zelmor::domain::types::Unit;
using zelmor::tools::databasetool::RecordsetCsv;
namespace types = zelmor::domain::types;

namespace {

ChamberSignal signal(int id, const QString& name, Unit::UnitId unit)
{
    ChamberSignal chamberSignal;
    chamberSignal.id = id;
    chamberSignal.name = name;
    chamberSignal.unit = unit;
    return chamberSignal;
}

// Not in the order of their ids, as a map holds them anyway.
const QMap<int, ChamberSignal> recordingSignals = {
    {1102, signal(1102, "SP_Humidity", Unit::RELATIVE_HUMIDITY_RH)},
    {1000, signal(1000, "PV_Temperature", Unit::CELSIUS)},
    {1200, signal(1200, "Door, open", Unit::BOOLEAN)},
    {1300, signal(1300, "Fan \"B\"", Unit::DIMENSIONLESS)},
};

Recordset recordset(const QDateTime& time, const QList<SignalValuePair>& values)
{
    return Recordset(7, 3, time, values, true, RecordsetComment(), types::RecordsetAlarm::Alarm(0), QString(),
                     types::ChamberOperationMode::UNKNOWN_MODE);
}

} // namespace

class TestRecordsetCsv : public QObject
{
    Q_OBJECT

private slots:
    void header();
    void rows_data();
    void rows();
    void numbers_data();
    void numbers();
    void fields_data();
    void fields();
};

void TestRecordsetCsv::header()
{
    // Boolean and dimensionless units have no text to show.
    QCOMPARE(RecordsetCsv(recordingSignals).header(),
             QString("time,PV_Temperature [°C],SP_Humidity [% r.H.],\"Door, open\",\"Fan \"\"B\"\"\"\n"));
    QCOMPARE(RecordsetCsv({}).header(), QString("time\n"));
}

void TestRecordsetCsv::rows_data()
{
    QTest::addColumn<QDateTime>("time");
    QTest::addColumn<QList<SignalValuePair>>("values");
    QTest::addColumn<QString>("line");

    const QDateTime tenPastNine(QDate(2024, 3, 1), QTime(10, 9, 30, 250), Qt::OffsetFromUTC, 3600);
    QTest::newRow("every value") << tenPastNine
                                 << QList<SignalValuePair>{SignalValuePair(recordingSignals[1000], 23.3f),
                                                           SignalValuePair(recordingSignals[1102], 45.5f),
                                                           SignalValuePair(1200, true),
                                                           SignalValuePair(recordingSignals[1300], 1500.0f)}
                                 << "2024-03-01T10:09:30.250+01:00,23.3,45.5,1,1500\n";
    // The store gives a pair without a value for a NULL column.
    QTest::newRow("values missing") << tenPastNine
                                    << QList<SignalValuePair>{SignalValuePair(recordingSignals[1000], QVariant()),
                                                              SignalValuePair(1200, false)}
                                    << "2024-03-01T10:09:30.250+01:00,,,0,\n";
    QTest::newRow("in UTC, negative") << QDateTime(QDate(2024, 12, 31), QTime(23, 59, 59), Qt::UTC)
                                      << QList<SignalValuePair>{SignalValuePair(recordingSignals[1000], -40.125f)}
                                      << "2024-12-31T23:59:59.000Z,-40.125,,,\n";
}

void TestRecordsetCsv::rows()
{
    QFETCH(QDateTime, time);
    QFETCH(QList<SignalValuePair>, values);
    QFETCH(QString, line);

    QCOMPARE(RecordsetCsv(recordingSignals).row(recordset(time, values)), line);
}

void TestRecordsetCsv::numbers_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<QString>("text");

    QTest::newRow("23.3") << 23.3f << "23.3";
    QTest::newRow("0") << 0.0f << "0";
    QTest::newRow("-0.1") << -0.1f << "-0.1";
    QTest::newRow("a third") << 1.0f / 3.0f << "0.33333334";
    QTest::newRow("a million") << 1.0e6f << "1000000";
    QTest::newRow("small") << 1.0e-5f << "0.00001";
    QTest::newRow("tiny") << 1.5e-9f << "1.5e-09";
    QTest::newRow("huge") << 3.0e20f << "3e+20";
    QTest::newRow("16777217 is 16777216 as a float") << 16777217.0f << "16777216";
}

void TestRecordsetCsv::numbers()
{
    QFETCH(float, value);
    QFETCH(QString, text);
    QCOMPARE(RecordsetCsv::number(value), text);
    QCOMPARE(text.toFloat(), value);
}

void TestRecordsetCsv::fields_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("field");

    QTest::newRow("plain") << "PV_Temperature [°C]"
                           << "PV_Temperature [°C]";
    QTest::newRow("a comma") << "a,b"
                             << "\"a,b\"";
    QTest::newRow("quotes") << "say \"hi\""
                            << "\"say \"\"hi\"\"\"";
    QTest::newRow("a line break") << "two\nlines"
                                  << "\"two\nlines\"";
    QTest::newRow("empty") << ""
                           << "";
}

void TestRecordsetCsv::fields()
{
    QFETCH(QString, text);
    QFETCH(QString, field);
    QCOMPARE(RecordsetCsv::field(text), field);
}

QTEST_GUILESS_MAIN(TestRecordsetCsv)
#include "tst_recordsetcsv.moc"
