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

// What a number without a chamber type gives: the headings, empty.
const char* const emptyDump = "Qualified Name: \nName: \nDevelpment State: \n"
                              "Additional Info: \nController: \nSignals: \n";

QString readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll())
                                          : QStringLiteral("<cannot read %1>").arg(path);
}

// The facade as the tool builds it: the application database stays closed.
struct Catalogue
{
    explicit Catalogue(const QString& file)
        : application(QStringLiteral("tst_chambertypedump_application_%1").arg(file))
        , configuration(QStringLiteral("tst_chambertypedump_configuration_%1").arg(file))
        , database(false)
    {
        opened = configuration.openDatabase(file, QString(), QString(), QLatin1String(TestDatabase::projectKey_))
                 && database.setDependencies(&application, &configuration);
    }

    void dump()
    {
        QSharedPointer<ChamberTypeData> unused;
        writeDbToFile(unused, database);
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
    void initTestCase()
    {
        // Documents is $HOME/Documents: the new home has no user-dirs file.
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
        sample->dump();
    }

    // The files of the one dump of the sample catalogue made by initTestCase,
    // and the text functions.
    void texts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("whole"); // else a piece of the text
        QTest::addColumn<QString>("expected");
        const auto dumped = [this](const char* name) { return readFile(documents + QLatin1Char('/') + name); };

        QTest::newRow("TLX type without state, size and variant")
            << dumped("config/Config_11.txt") << true
            << "Qualified Name: WIK\n"
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
               "Protocol: TLX\n";
        QTest::newRow("number without a type") << dumped("config/Config_4.txt") << true << emptyDump;
        // Type 2 has two variants and the walk asks for none of them.
        QTest::newRow("type with two variants") << dumped("config/Config_2.txt") << true << emptyDump;
        QTest::newRow("light units, a register without a type text")
            << dumped("config/Config_9.txt") << false
            << "Signal name : PV_Light_Dose id: 155 Signal Unit:mLuxh\n"
               " Read Address: 11400092, RO, NA, Light dose\n"
               "Signal name : PV_UV_Irradiance id: 156 Signal Unit:Wm²\n";
        QTest::newRow("a signal without registers, last")
            << dumped("config/Config_9.txt") << false
            << "Signal name : PV_Dew_Point id: 158 Signal Unit:Celsius\nProtocol: TLX\n";
        QTest::newRow("every write register, in order")
            << dumped("config/Config_30.txt") << false
            << " Wr M Address: 1100, RW, Float, Temperature set point\n"
               " Wr B Address: 1120, WO, Float, Temperature basic set point\n"
               " Wr A Address: 1110, WO, Float, Temperature set point, program\n";
        QTest::newRow("no unit, tunnelled") << dumped("config/Config_30.txt") << false
                                            << "Signal name : PV_Operating_Hours id: 331 Signal Unit:INVALID\n"
                                               " Read Address: 1220, RO, NA, Operating hours\n"
                                               "Protocol: MODBUS_RTU_TUNNEL\n";
        // Signal 151 of type 12 links set point 153, which only type 9 has.
        QTest::newRow("broken set point links") << dumped("WrongChambers.txt") << true << "12 : 153 \n";
        // Unit texts of the dump's own spelling, and what the sample doesn't show.
        QTest::newRow("unit 8") << getUnitText(Unit::MILLIBAR) << true << "mBar";
        QTest::newRow("unit 12") << getUnitText(Unit::WATT_HOURS_PER_SQUARE_METRE) << true << "Whm²";
        QTest::newRow("access out of range") << getAccessString(ControllerAddress::Access(4)) << true << "--";
        QTest::newRow("UInt has no text") << getTypeString(QMetaType::UInt) << true << "NA";
        QTest::newRow("protocol 6 has no text") << getProtocolString(ChamberProtocol(6)) << true << "NA";
        QTest::newRow("protocol 100") << getProtocolString(UNKNOWN_PROTOCOL) << true << "UNKNOWN_PROTOCOL";
        QSharedPointer<ControllerAddress> placeholder = QSharedPointer<ControllerAddress>::create();
        QTest::newRow("placeholder address") << getSignalAddressInfo(placeholder) << true << ", UNKNOWN, NA, ";
    }

    void texts()
    {
        QFETCH(QString, text);
        QFETCH(bool, whole);
        QFETCH(QString, expected);
        if (whole)
            QCOMPARE(text, expected);
        else
            QVERIFY2(text.contains(expected), qPrintable(text));
    }

    // Each with a documents folder of its own making.
    void walkEndsAt1934()
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
        catalogue.dump();

        QCOMPARE(readFile(documents + QStringLiteral("/WrongChambers.txt")), QStringLiteral("1934 : 2 6 \n"));
        // One file for every number up to 1934, with or without a type; none beyond.
        const QStringList files = QDir(documents + QStringLiteral("/config")).entryList(QDir::Files);
        QCOMPARE(files.size(), 1934);
        for (int number = 1; number <= 1934; ++number)
            QVERIFY2(files.contains(QStringLiteral("Config_%1.txt").arg(number)), qPrintable(QString::number(number)));
        QVERIFY(readFile(documents + QStringLiteral("/config/Config_1934.txt")).startsWith("Qualified Name: LAST"));
    }

    void missingConfigFolder()
    {
        QVERIFY(prepareDocuments(false));
        sample->dump();

        // Only the report, which goes into the documents folder itself.
        QCOMPARE(QDir(documents).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList{QStringLiteral("WrongChambers.txt")});
    }

private:
    bool prepareDocuments(bool withConfig)
    {
        QDir(documents).removeRecursively();
        return QDir().mkpath(withConfig ? documents + QStringLiteral("/config") : documents);
    }

    QTemporaryDir home;
    QString documents;
    // Declared in this order so that the catalogue closes before its folder goes.
    std::unique_ptr<TestDatabase> databases;
    std::unique_ptr<Catalogue> sample;
};

QTEST_GUILESS_MAIN(TestChamberTypeDump)
#include "tst_chambertypedump.moc"
