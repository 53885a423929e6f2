// The recordsets and recordings commands of the real zelmor-db on a
// recording whose rows were written through the stores: the CSV compared
// value by value with values worked out by hand, thinned as the recordset
// store thins a recording for a chart.

#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Domain/Types/ChamberData.h"
#include "Domain/Types/RecordingData.h"
#include "Domain/Types/Recordset.h"
#include "Domain/Types/RecordsetComment.h"
#include "Tools/DatabaseTool/RecordsetsCommand.h"
#include "support/DatabaseToolRun.h"
#include "support/SampleCatalogue.h"
#include "support/StoreFixture.h"
#include "support/TestDatabase.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using zelmor::base::connection::databaseconnection::DatabaseConnection;
using zelmor::base::connection::databaseconnection::SqliteConnection;
using zelmor::tools::databasetool::RecordsetsCommand;
using namespace zelmor::domain::types;
using namespace zelmor::testsupport;

namespace {

// 2024-03-01 is winter time in Berlin: UTC+1.
const QStringList berlin{"TZ=Europe/Berlin"};
const QString header = QStringLiteral("time,PV_Temperature [°C],PV_Humidity [% r.F.],PV_Door_Open\n");

// Row i of recording 1: at 09:00 UTC + i minutes, 20 + i/2 °C, 50 + i % r.F.
// (none in row 4), the door open in the odd rows.
QString line(int i)
{
    const QString humidity = i == 4 ? QString() : QString::number(50 + i);
    const QString temperature = i % 2 ? QStringLiteral("%1.5").arg(20 + i / 2) : QString::number(20 + i / 2);
    return QStringLiteral("2024-03-01T10:%1:00.000+01:00,%2,%3,%4\n")
        .arg(i, 2, 10, QLatin1Char('0'))
        .arg(temperature, humidity)
        .arg(i % 2);
}

QString lines(const QList<int>& rows)
{
    QString text = header;
    for (int row : rows)
        text += line(row);
    return text;
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestRecordsetsCommand : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void csv_data();
    void csv();
    void toStandardOutput();
    void recordings();
    void failures_data();
    void failures();
    void thinning_data();
    void thinning();

private:
    TestDatabase files;
    QString catalogue;
    QString path; // the database with recording 1
};

// Written through the facade as the monitoring application writes: a
// chamber of type 1, a recording of three of its signals, ten rows.
void TestRecordsetsCommand::initTestCase()
{
    catalogue = createSampleCatalogue(files);
    QVERIFY2(!catalogue.isEmpty(), qPrintable(files.lastError()));
    path = createApplicationDatabase(files, "app.sqlite3");
    QVERIFY2(!path.isEmpty(), qPrintable(files.lastError()));

    SqliteConnection application(QStringLiteral("recordings"));
    SqliteConnection configuration(QStringLiteral("recordings_catalogue"));
    DatabaseConnection facade(false);
    QVERIFY(application.openDatabase(path, QString(), QString(), TestDatabase::projectKey_));
    QVERIFY(configuration.openDatabase(catalogue, QString(), QString(), TestDatabase::projectKey_));
    QVERIFY(facade.setDependencies(&application, &configuration));
    QVERIFY(facade.initialize());

    ChamberData chamber;
    chamber.chamberName = "HX 60 Z6 at 10.9.0.1";
    chamber.chamberTypeId = ChamberTypeId(1, 1);
    chamber.ipAddress = QHostAddress("10.9.0.1");
    chamber.protocol = TLX;
    QVERIFY(facade.addChamber(chamber));
    const QMap<int, ChamberSignal> all = facade.getChamberSignals(ChamberTypeId(1, 0));
    QMap<int, ChamberSignal> recorded;
    for (int id : {101, 102, 131})
        recorded.insert(id, all.value(id));
    const QDateTime nine(QDate(2024, 3, 1), QTime(9, 0), Qt::UTC);
    RecordingData recording(0, "Soak test", chamber.chamberId, 0, 60, nine, nine.addSecs(600), false, false, QString(),
                            QString(), quint32(0), recorded, {}, true, 10);
    QVERIFY(facade.addRecording(recording));
    QCOMPARE(int(recording.id), 1);

    QList<Recordset> rows;
    for (int i = 0; i < 10; ++i) {
        const QList<SignalValuePair> values{
            SignalValuePair(recorded[101], QVariant(20.0f + 0.5f * i)),
            SignalValuePair(recorded[102], i == 4 ? QVariant() : QVariant(50.0f + i)),
            SignalValuePair(recorded[131], QVariant(i % 2 == 1)),
        };
        rows.append(Recordset(-1, recording.id, nine.addSecs(60 * i), values, true, RecordsetComment(),
                              RecordsetAlarm::NO_ALARM, QString(), ChamberOperationMode::MANUAL));
    }
    QVERIFY(facade.addRecordsToQuery(rows));
    application.closeDatabase();
    configuration.closeDatabase();
}

void TestRecordsetsCommand::csv_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("content");

    QTest::newRow("all") << QStringList{} << lines({0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
    // The store's chart: row k * 9 / 3.
    QTest::newRow("at most 4") << QStringList{"--max", "4"} << lines({0, 3, 6, 9});
    QTest::newRow("at most 3") << QStringList{"--max", "3"} << lines({0, 4, 9});
    QTest::newRow("at most 1") << QStringList{"--max", "1"} << lines({0});
    QTest::newRow("more than there are") << QStringList{"--max", "20"} << lines({0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
    // Both ends belong to the span; times without an offset are Berlin's.
    QTest::newRow("a span") << QStringList{"--from", "2024-03-01T10:03", "--to", "2024-03-01T10:05"}
                            << lines({3, 4, 5});
    QTest::newRow("a span in UTC") << QStringList{"--from", "2024-03-01T09:03:00Z", "--to", "2024-03-01T09:05:00Z"}
                                   << lines({3, 4, 5});
    QTest::newRow("from a moment on") << QStringList{"--from", "2024-03-01 10:07"} << lines({7, 8, 9});
    QTest::newRow("up to a moment") << QStringList{"--to", "2024-03-01T10:01:30+01:00"} << lines({0, 1});
    // The span's rows thinned by the same rule: row k * 2 / 1 of rows 3 to 5.
    QTest::newRow("a span, at most 2") << QStringList{"--from", "2024-03-01T10:03", "--to", "2024-03-01T10:05", "--max",
                                                      "2"}
                                       << lines({3, 5});
    QTest::newRow("an empty span") << QStringList{"--from", "2024-03-02"} << header;
}

void TestRecordsetsCommand::csv()
{
    QFETCH(QStringList, options);
    QFETCH(QString, content);

    QTemporaryDir work;
    const QString out = work.filePath("rows.csv");
    const QByteArray before = fileBytes(path);
    const DatabaseToolRun run =
        DatabaseToolRun::start(QStringList{"recordsets", path, "1", "--csv", out, "--catalogue", catalogue} + options,
                               QString(), QString(), berlin);
    QVERIFY2(run.exitCode == 0, run.said().constData());
    const int count = content.count('\n') - 1;
    QCOMPARE(QString::fromUtf8(run.standardOutput),
             out + QStringLiteral(": %1 row(s) of recording 1 (\"Soak test\") of ").arg(count) + path + "\n");
    // No progress when standard error is no terminal.
    QCOMPARE(run.standardError, QByteArray());
    QCOMPARE(QString::fromUtf8(readFile(out)), content);
    QCOMPARE(fileBytes(path), before);
}

void TestRecordsetsCommand::toStandardOutput()
{
    const DatabaseToolRun run = DatabaseToolRun::start(
        {"recordsets", path, "1", "--csv", "-", "--max", "2", "--catalogue", catalogue}, QString(), QString(), berlin);
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(QString::fromUtf8(run.standardOutput), lines({0, 9}));
    QCOMPARE(run.standardError, QByteArray());
}

void TestRecordsetsCommand::recordings()
{
    DatabaseToolRun run =
        DatabaseToolRun::start({"recordings", path, "--catalogue", catalogue}, QString(), QString(), berlin);
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(QString::fromUtf8(run.standardOutput),
             "ID  NAME       CHAMBER  USER  START                      END                        INTERVAL  ROWS  "
             "SIGNALS  ACTIVE  ARCHIVED\n"
             " 1  Soak test        1        2024-03-01T10:00:00+01:00  2024-03-01T10:10:00+01:00        60    10  "
             "      3  no      no\n");
    run =
        DatabaseToolRun::start({"recordings", path, "--json", "--catalogue", catalogue}, QString(), QString(), berlin);
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(QString::fromUtf8(run.standardOutput),
             "[\n"
             "  {\"id\": 1, \"name\": \"Soak test\", \"chamberId\": 1, \"userId\": null, "
             "\"startTime\": \"2024-03-01T10:00:00+01:00\", \"endTime\": \"2024-03-01T10:10:00+01:00\", "
             "\"secondsInterval\": 60, \"rows\": 10, \"signals\": [{\"id\":101,\"name\":\"PV_Temperature\","
             "\"unit\":\"°C\"},{\"id\":102,\"name\":\"PV_Humidity\",\"unit\":\"% r.F.\"},{\"id\":131,"
             "\"name\":\"PV_Door_Open\",\"unit\":null}], \"isActive\": false, \"isArchived\": false}\n"
             "]\n");
}

void TestRecordsetsCommand::failures_data()
{
    QTest::addColumn<QStringList>("arguments"); // behind the command; %1 the database, %2 the CSV file
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("error"); // the first line on standard error

    QTest::newRow("no such recording") << QStringList{"%1", "2", "--csv", "%2", "--catalogue", catalogue} << 10
                                       << "zelmor-db: %1: has no recording 2";
    QTest::newRow("the database as the CSV file") << QStringList{"%1", "1", "--csv", "%1", "--catalogue", catalogue}
                                                  << 2 << "zelmor-db: %1: is the database itself";
    QTest::newRow("no catalogue") << QStringList{"%1", "1", "--csv", "%2", "--catalogue", "%2"} << 8
                                  << "zelmor-db: %2: no such file";
    QTest::newRow("no --csv") << QStringList{"%1", "1"} << 2 << "zelmor-db: 'recordsets' needs --csv OUT";
}

void TestRecordsetsCommand::failures()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, error);

    QTemporaryDir work;
    const QString out = work.filePath("rows.csv");
    arguments.replaceInStrings("%1", path).replaceInStrings("%2", out);
    const QByteArray before = fileBytes(path);
    const DatabaseToolRun run = DatabaseToolRun::start(QStringList{"recordsets"} + arguments);
    QCOMPARE(run.exitCode, exitCode);
    QCOMPARE(QString::fromUtf8(run.standardError).section('\n', 0, 0),
             QString(error).replace("%1", path).replace("%2", out));
    QCOMPARE(fileBytes(path), before);
    QVERIFY(!QFile::exists(out));
}

void TestRecordsetsCommand::thinning_data()
{
    QTest::addColumn<qint64>("count");
    QTest::addColumn<qint64>("maxCount");
    QTest::addColumn<QList<qint64>>("rows");

    QTest::newRow("10 rows, 4") << qint64(10) << qint64(4) << QList<qint64>{0, 3, 6, 9};
    QTest::newRow("10 rows, 1") << qint64(10) << qint64(1) << QList<qint64>{0};
    QTest::newRow("10 rows, 10") << qint64(10) << qint64(10) << QList<qint64>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    QTest::newRow("3 rows, 5") << qint64(3) << qint64(5) << QList<qint64>{0, 1, 2};
    QTest::newRow("7 rows, 3") << qint64(7) << qint64(3) << QList<qint64>{0, 3, 6};
    QTest::newRow("no rows") << qint64(0) << qint64(3) << QList<qint64>{};
}

void TestRecordsetsCommand::thinning()
{
    QFETCH(qint64, count);
    QFETCH(qint64, maxCount);
    QFETCH(QList<qint64>, rows);
    QCOMPARE(RecordsetsCommand::thinnedRows(count, maxCount), rows);
}

QTEST_GUILESS_MAIN(TestRecordsetsCommand)
#include "tst_recordsetscommand.moc"
