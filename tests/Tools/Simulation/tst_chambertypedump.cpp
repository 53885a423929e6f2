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
    void addressInfo();
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
    QTest::addColumn<QString>("expected");

    QTest::newRow("TLX type without state, size and variant") << 11 << QString::fromUtf8(
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
    QTest::newRow("light units, a signal without registers, German info") << 9 << QString::fromUtf8(
        "Qualified Name: KBF 240 E6\n"
        "Name: KBF\n"
        "Develpment State: E6\n"
        "Additional Info: Lichtprüfschrank nach ICH Q1B\n"
        "Controller: TLX\n"
        "Signals: \n"
        "Signal name : PV_Temperature id: 101 Signal Unit:Celsius\n"
        " Foreign Signal name : SP_Temperature\n"
        " Read Address: 11400080, RO, Float, Temperature actual value\n"
        "Signal name : PV_Humidity id: 102 Signal Unit:%rf\n"
        " Foreign Signal name : SP_Humidity\n"
        " Read Address: 11400081, RO, Float, Humidity actual value\n"
        "Signal name : SP_Temperature id: 111 Signal Unit:Celsius\n"
        " Read Address: 11400180, RW, Float, Temperature set point\n"
        " Wr M Address: 11400180, RW, Float, Temperature set point\n"
        " Wr A Address: 11400280, WO, Float, Temperature set point, program\n"
        "Signal name : SP_Humidity id: 112 Signal Unit:%rf\n"
        " Read Address: 11400181, RW, Float, Humidity set point\n"
        " Wr M Address: 11400181, RW, Float, Humidity set point\n"
        " Wr A Address: 11400281, WO, Float, Humidity set point, program\n"
        "Signal name : PV_Door_Open id: 131 Signal Unit:boolean\n"
        " Read Address: 11500010, RO, UShort, Status word 1\n"
        "Signal name : PV_Collective_Alarm id: 133 Signal Unit:boolean\n"
        " Read Address: 11500020, RO, Bool, Collective alarm\n"
        "Signal name : PV_Illuminance_Top id: 151 Signal Unit:kLUX\n"
        " Foreign Signal name : SP_Illuminance_Top\n"
        " Read Address: 11400090, RO, Float, Illuminance top\n"
        "Signal name : PV_Illuminance_Bottom id: 152 Signal Unit:kLUX\n"
        " Foreign Signal name : SP_Illuminance_Bottom\n"
        " Read Address: 11400091, RO, Float, Illuminance bottom\n"
        "Signal name : SP_Illuminance_Top id: 153 Signal Unit:kLUX\n"
        " Read Address: 11400190, RW, Float, Illuminance top set point\n"
        " Wr M Address: 11400190, RW, Float, Illuminance top set point\n"
        "Signal name : SP_Illuminance_Bottom id: 154 Signal Unit:kLUX\n"
        " Read Address: 11400191, RW, Float, Illuminance bottom set point\n"
        " Wr M Address: 11400191, RW, Float, Illuminance bottom set point\n"
        "Signal name : PV_Light_Dose id: 155 Signal Unit:mLuxh\n"
        " Read Address: 11400092, RO, NA, Light dose\n"
        "Signal name : PV_UV_Irradiance id: 156 Signal Unit:Wm²\n"
        " Read Address: 11400093, RO, Float, UV irradiance\n"
        "Signal name : PV_UV_Dose id: 157 Signal Unit:Whm²\n"
        " Read Address: 11400094, RO, Float, UV dose\n"
        "Signal name : PV_Dew_Point id: 158 Signal Unit:Celsius\n"
        "Protocol: TLX\n");
    QTest::newRow("KV2 with basic write registers") << 30 << QString::fromUtf8(
        "Qualified Name: MKF 115 E2\n"
        "Name: MKF\n"
        "Develpment State: E2\n"
        "Additional Info: Datenspeicher auslesbar\n"
        "Controller: KV2\n"
        "Signals: \n"
        "Signal name : PV_Temperature id: 301 Signal Unit:Celsius\n"
        " Foreign Signal name : SP_Temperature\n"
        " Read Address: 1000, RO, Float, Temperature actual value\n"
        "Signal name : PV_Humidity id: 302 Signal Unit:%rf\n"
        " Foreign Signal name : SP_Humidity\n"
        " Read Address: 1002, RO, Float, Humidity actual value\n"
        "Signal name : SP_Temperature id: 311 Signal Unit:Celsius\n"
        " Read Address: 1100, RW, Float, Temperature set point\n"
        " Wr M Address: 1100, RW, Float, Temperature set point\n"
        " Wr B Address: 1120, WO, Float, Temperature basic set point\n"
        " Wr A Address: 1110, WO, Float, Temperature set point, program\n"
        "Signal name : SP_Humidity id: 312 Signal Unit:%rf\n"
        " Read Address: 1102, RW, Float, Humidity set point\n"
        " Wr M Address: 1102, RW, Float, Humidity set point\n"
        " Wr A Address: 1112, WO, Float, Humidity set point, program\n"
        "Signal name : PV_Door_Open id: 321 Signal Unit:boolean\n"
        " Read Address: 1200, RO, UShort, Status word\n"
        "Signal name : PV_Collective_Alarm id: 324 Signal Unit:boolean\n"
        " Read Address: 1210, RO, Bool, Collective alarm\n"
        "Signal name : PV_Operating_Hours id: 331 Signal Unit:INVALID\n"
        " Read Address: 1220, RO, NA, Operating hours\n"
        "Protocol: MODBUS_RTU_TUNNEL\n");
    QTest::newRow("number without a type") << 4 << QString::fromLatin1(emptyDump);
    // Type 2 has two variants and the walk asks for none of them.
    QTest::newRow("type with two variants") << 2 << QString::fromLatin1(emptyDump);
    QTest::newRow("last number") << 1934 << QString::fromLatin1(emptyDump);
}

void TestChamberTypeDump::fileOfOneNumber()
{
    QFETCH(int, number);
    QFETCH(QString, expected);

    QCOMPARE(readFile(documents + QStringLiteral("/config/Config_%1.txt").arg(number)), expected);
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
    QVERIFY(!QFile::exists(documents + QStringLiteral("/config/Config_1935.txt")));
    QCOMPARE(readFile(documents + QStringLiteral("/config/Config_1934.txt")),
             QStringLiteral("Qualified Name: LAST\n"
                            "Name: LAST\n"
                            "Develpment State: \n"
                            "Additional Info: \n"
                            "Controller: TLX\n"
                            "Signals: \n"
                            "Signal name : PV_A id: 1 Signal Unit:INVALID\n"
                            " Foreign Signal name : SP_A\n"
                            "Signal name : PV_C id: 5 Signal Unit:INVALID\n"
                            " Foreign Signal name : SP_C\n"));
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

    // The dump's own spellings where they differ from the units' texts.
    QTest::newRow("unit 8") << getUnitText(Unit::MILLIBAR) << "mBar";
    QTest::newRow("unit 10") << getUnitText(Unit::MEGALUX_HOURS) << "mLuxh";
    QTest::newRow("unit 12") << getUnitText(Unit::WATT_HOURS_PER_SQUARE_METRE) << QString::fromUtf8("Whm²");
    QTest::newRow("unit 13") << getUnitText(Unit::BOOLEAN) << "boolean";
    QTest::newRow("unit 14") << getUnitText(Unit::VOLT) << "Volt";
    QTest::newRow("no unit") << getUnitText(Unit::DIMENSIONLESS) << "INVALID";
    QTest::newRow("undefined unit") << getUnitText(Unit::UNDEFINED) << "INVALID";
    QTest::newRow("unknown access") << getAccessString(ControllerAddress::UNKNOWN) << "UNKNOWN";
    QTest::newRow("access out of range") << getAccessString(ControllerAddress::Access(4)) << "--";
    QTest::newRow("Long") << getTypeString(QMetaType::Long) << "Long";
    QTest::newRow("Void") << getTypeString(QMetaType::Void) << "Void";
    QTest::newRow("UInt has no text") << getTypeString(QMetaType::UInt) << "NA";
    QTest::newRow("unknown type") << getTypeString(QMetaType::UnknownType) << "NA";
    QTest::newRow("protocol 5") << getProtocolString(VACUUBRAND) << "VACUUBRAND";
    QTest::newRow("protocol 6 has no text") << getProtocolString(ChamberProtocol(6)) << "NA";
    QTest::newRow("protocol 7 has no text") << getProtocolString(ChamberProtocol(7)) << "NA";
    QTest::newRow("protocol 100") << getProtocolString(UNKNOWN_PROTOCOL) << "UNKNOWN_PROTOCOL";
}

void TestChamberTypeDump::texts()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(text, expected);
}

void TestChamberTypeDump::addressInfo()
{
    QSharedPointer<ControllerAddress> placeholder = QSharedPointer<ControllerAddress>::create();
    QCOMPARE(getSignalAddressInfo(placeholder), QStringLiteral(", UNKNOWN, NA, "));
}

QTEST_GUILESS_MAIN(TestChamberTypeDump)
#include "tst_chambertypedump.moc"
