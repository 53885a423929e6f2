#include "Tools/Simulation/ChamberTypeDump.h"

#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Domain/Types/ChamberTypeData.h"
#include "support/SampleCatalogue.h"
#include "support/TestDatabase.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QStandardPaths>
#include <QtTest>

#include <memory>

using zelmor::base::connection::databaseconnection::DatabaseConnection;
using zelmor::base::connection::databaseconnection::SqliteConnection;
using zelmor::testsupport::TestDatabase;
using namespace zelmor::domain::types;
using namespace zelmor::simulation;

namespace {

const QString projectKey = QLatin1String(TestDatabase::projectKey_);

// What a number without a chamber type gives: the headings, empty.
const char* const emptyDump = "Qualified Name: \n"
                              "Name: \n"
                              "Develpment State: \n"
                              "Additional Info: \n"
                              "Controller: \n"
                              "Signals: \n";

QString readFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return QStringLiteral("<cannot read %1>").arg(path);
    }
    return QString::fromUtf8(file.readAll());
}

QString uniqueConnectionName()
{
    static int count = 0;
    return QStringLiteral("tst_chambertypedump_%1").arg(++count);
}

// The facade as the tool builds it: the application database stays closed.
struct Catalogue
{
    explicit Catalogue(const QString& file)
        : application(uniqueConnectionName())
        , configuration(uniqueConnectionName())
        , database(false)
    {
        opened = configuration.openDatabase(file, QString(), QString(), projectKey)
                 && database.setDependencies(&application, &configuration);
    }

    SqliteConnection application;
    SqliteConnection configuration;
    DatabaseConnection database;
    bool opened = false;
};

} // namespace

class TestChamberTypeDump : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    // On the one dump of the sample catalogue made by initTestCase.
    void fileOfOneNumber_data();
    void fileOfOneNumber();
    void everyNumberUpTo1934();
    void wrongChambers();
    void texts_data();
    void texts();
    // Each with a documents folder of its own making.
    void walkEndsAt1934();
    void missingConfigFolder();

private:
    void dumpSample();
    bool prepareDocuments(bool withConfig);

    QTemporaryDir home;
    QString documents;
    std::unique_ptr<TestDatabase> databases;
    std::unique_ptr<Catalogue> sample;
};

void TestChamberTypeDump::initTestCase()
{
    // The documents folder is $HOME/Documents here: no user-dirs file is found
    // under the test-mode configuration folder, which lies inside the new home.
    QVERIFY(home.isValid());
    qputenv("HOME", QFile::encodeName(home.path()));
    qunsetenv("XDG_CONFIG_HOME");
    QStandardPaths::setTestModeEnabled(true);
    documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    // Never write into a real home folder.
    QVERIFY2(documents.startsWith(home.path() + QLatin1Char('/')), qPrintable(documents));

    // Numbers without a type are reported by the store; that is expected here.
    QLoggingCategory::setFilterRules(QStringLiteral("zelmor.*.warning=false\nzelmor.*.critical=false"));
    databases = std::make_unique<TestDatabase>();
    const QString file = zelmor::testsupport::createSampleCatalogue(*databases);
    QVERIFY2(!file.isEmpty(), qPrintable(databases->lastError()));
    sample = std::make_unique<Catalogue>(file);
    QVERIFY(sample->opened);

    QVERIFY(prepareDocuments(true));
    dumpSample();
}

bool TestChamberTypeDump::prepareDocuments(bool withConfig)
{
    QDir(documents).removeRecursively();
    return QDir().mkpath(withConfig ? documents + QStringLiteral("/config") : documents);
}

void TestChamberTypeDump::cleanupTestCase()
{
    sample.reset();
    databases.reset();
}

void TestChamberTypeDump::dumpSample()
{
    QSharedPointer<ChamberTypeData> unused;
    writeDbToFile(unused, sample->database);
}

void TestChamberTypeDump::fileOfOneNumber_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<bool>("whole"); // else a piece of the file
    QTest::addColumn<QString>("expected");

    QTest::newRow("TLX type without state, size and variant") << 11 << true << QString::fromUtf8(
        "Qualified Name: WIK\n"
        "Name: WIK\n"
        "Develpment State: \n"
        "Additional Info: \n"
        "Controller: TLX\n"
        "Signals: \n"
        "Signal name : PV_Temperature id: 104 Signal Unit:Fahrenheit\n"
        " Foreign Signal name : SP_Temperature\n"
        " Read Address: 11400083, RO, Float, Temperature actual value (Fahrenheit)\n"
        "Signal name : SP_Temperature id: 114 Signal Unit:Fahrenheit\n"
        " Read Address: 11400183, RW, Float, Temperature set point (Fahrenheit)\n"
        " Wr M Address: 11400183, RW, Float, Temperature set point (Fahrenheit)\n"
        "Signal name : PV_Door_Open id: 131 Signal Unit:boolean\n"
        " Read Address: 11500010, RO, UShort, Status word 1\n"
        "Signal name : PV_Collective_Alarm id: 133 Signal Unit:boolean\n"
        " Read Address: 11500020, RO, Bool, Collective alarm\n"
        "Protocol: TLX\n");
    QTest::newRow("number without a type") << 4 << true << QString::fromLatin1(emptyDump);
    // Type 2 has two variants and the walk asks for none of them.
    QTest::newRow("type with two variants") << 2 << true << QString::fromLatin1(emptyDump);
    QTest::newRow("last number") << 1934 << true << QString::fromLatin1(emptyDump);

    QTest::newRow("light units, a register without a type text")
        << 9 << false
        << QString::fromUtf8("Signal name : PV_Light_Dose id: 155 Signal Unit:mLuxh\n"
                             " Read Address: 11400092, RO, NA, Light dose\n"
                             "Signal name : PV_UV_Irradiance id: 156 Signal Unit:Wm²\n");
    QTest::newRow("a signal without registers, last")
        << 9 << false << "Signal name : PV_Dew_Point id: 158 Signal Unit:Celsius\nProtocol: TLX\n";
    QTest::newRow("every write register, in order")
        << 30 << false
        << " Wr M Address: 1100, RW, Float, Temperature set point\n"
           " Wr B Address: 1120, WO, Float, Temperature basic set point\n"
           " Wr A Address: 1110, WO, Float, Temperature set point, program\n";
    QTest::newRow("no unit, tunnelled")
        << 30 << false
        << "Signal name : PV_Operating_Hours id: 331 Signal Unit:INVALID\n"
           " Read Address: 1220, RO, NA, Operating hours\n"
           "Protocol: MODBUS_RTU_TUNNEL\n";
}

void TestChamberTypeDump::fileOfOneNumber()
{
    QFETCH(int, number);
    QFETCH(bool, whole);
    QFETCH(QString, expected);

    const QString text = readFile(documents + QStringLiteral("/config/Config_%1.txt").arg(number));
    if (whole)
        QCOMPARE(text, expected);
    else
        QVERIFY2(text.contains(expected), qPrintable(text));
}

void TestChamberTypeDump::everyNumberUpTo1934()
{
    const QStringList files = QDir(documents + QStringLiteral("/config")).entryList(QDir::Files);
    QCOMPARE(files.size(), 1934);
    for (int number = 1; number <= 1934; ++number) {
        QVERIFY2(files.contains(QStringLiteral("Config_%1.txt").arg(number)), qPrintable(QString::number(number)));
    }
}

void TestChamberTypeDump::wrongChambers()
{
    // Signal 151 of type 12 links set point 153, which only type 9 has.
    QCOMPARE(readFile(documents + QStringLiteral("/WrongChambers.txt")), QStringLiteral("12 : 153 \n"));
}

void TestChamberTypeDump::walkEndsAt1934()
{
    // Two broken links on the last number; one on the number after it.
    const QString file = zelmor::testsupport::createCatalogue(*databases, QStringLiteral("edge.sqlite3"), R"(
INSERT INTO controller VALUES (1, 'TLX');
INSERT INTO chamber_type (id, type, controller_id) VALUES (1934, 'LAST', 1), (1935, 'BEYOND', 1);
INSERT INTO signal (id, name, set_point_signal) VALUES (1, 'PV_A', 2), (2, 'SP_A', NULL), (3, 'PV_B', 4),
    (4, 'SP_B', NULL), (5, 'PV_C', 6), (6, 'SP_C', NULL);
INSERT INTO chamber_type_has_signal VALUES (1934, 1), (1934, 5), (1935, 3);
)");
    QVERIFY2(!file.isEmpty(), qPrintable(databases->lastError()));
    Catalogue catalogue(file);
    QVERIFY(catalogue.opened);
    QVERIFY(prepareDocuments(true));

    QSharedPointer<ChamberTypeData> unused;
    writeDbToFile(unused, catalogue.database);

    QCOMPARE(readFile(documents + QStringLiteral("/WrongChambers.txt")), QStringLiteral("1934 : 2 6 \n"));
    QVERIFY(QFile::exists(documents + QStringLiteral("/config/Config_1934.txt")));
    QVERIFY(!QFile::exists(documents + QStringLiteral("/config/Config_1935.txt")));
}

void TestChamberTypeDump::missingConfigFolder()
{
    QVERIFY(prepareDocuments(false));
    dumpSample();

    // Only the report, which goes into the documents folder itself.
    QCOMPARE(QDir(documents).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList{QStringLiteral("WrongChambers.txt")});
}

void TestChamberTypeDump::texts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    // The dump's own spellings where they differ from the units' texts, and what
    // the sample's files don't show.
    QTest::newRow("unit 8") << getUnitText(Unit::MILLIBAR) << "mBar";
    QTest::newRow("unit 12") << getUnitText(Unit::WATT_HOURS_PER_SQUARE_METRE) << QString::fromUtf8("Whm²");
    QTest::newRow("undefined unit") << getUnitText(Unit::UNDEFINED) << "INVALID";
    QTest::newRow("access out of range") << getAccessString(ControllerAddress::Access(4)) << "--";
    QTest::newRow("Long") << getTypeString(QMetaType::Long) << "Long";
    QTest::newRow("UInt has no text") << getTypeString(QMetaType::UInt) << "NA";
    QTest::newRow("protocol 6 has no text") << getProtocolString(ChamberProtocol(6)) << "NA";
    QTest::newRow("protocol 100") << getProtocolString(UNKNOWN_PROTOCOL) << "UNKNOWN_PROTOCOL";
    QSharedPointer<ControllerAddress> placeholder = QSharedPointer<ControllerAddress>::create();
    QTest::newRow("placeholder address") << getSignalAddressInfo(placeholder) << ", UNKNOWN, NA, ";
}

void TestChamberTypeDump::texts()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(text, expected);
}

QTEST_GUILESS_MAIN(TestChamberTypeDump)
#include "tst_chambertypedump.moc"
