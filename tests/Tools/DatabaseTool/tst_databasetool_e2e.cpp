// From a fleet to a database: the real chamber-simulator builds fleets with
// -n in a network namespace of its own (TLX and Modbus TCP chambers on the
// addresses of one interface, tunnelled chambers behind two converters on
// another), and the real zelmor-db enters them into a new database and gives
// them back.

#include "support/DatabaseToolRun.h"
#include "support/NetworkNamespace.h"
#include "support/SampleCatalogue.h"
#include "support/SimulatorProcess.h"
#include "support/StoreFixture.h"
#include "support/TestDatabase.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace zelmor::testsupport;

namespace {

// What a chamber of the fleet must be in the database.
struct Chamber
{
    int type;
    QString name;
    QString address;
    QString mac;
    int slave;
    int protocol;
    int converter;
};

QJsonObject expected(const Chamber& chamber, int serial)
{
    return {{"typeId", chamber.type},         {"additionalInfoId", chamber.type},
            {"name", chamber.name},           {"serialNumber", QStringLiteral("666-%1").arg(serial)},
            {"ipAddress", chamber.address},   {"macAddress", chamber.mac.toLower()},
            {"modbusAddress", chamber.slave}, {"protocol", chamber.protocol},
            {"converter", chamber.converter}};
}

// The fields of a chamber of "chambers --json" that the fleet decides.
QJsonObject built(const QJsonObject& chamber)
{
    QJsonObject fields;
    for (const char* key : {"typeId", "additionalInfoId", "name", "serialNumber", "ipAddress", "macAddress",
                            "modbusAddress", "protocol", "converter"})
        fields.insert(key, chamber.value(key));
    return fields;
}

} // namespace

class TestDatabaseToolEndToEnd : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void fromFleetToDatabase();

private:
    TestDatabase databases;
    QString catalogue;
};

void TestDatabaseToolEndToEnd::initTestCase()
{
    if (!NetworkNamespace::isAvailable())
        QSKIP("needs root and \"ip netns\"");
    catalogue = createSampleCatalogue(databases);
    QVERIFY2(!catalogue.isEmpty(), qPrintable(databases.lastError()));
}

void TestDatabaseToolEndToEnd::fromFleetToDatabase()
{
    // Three addresses for TLX, two of another subnet for Modbus TCP, both on
    // "fa"; two on "fb" for the converters.
    NetworkNamespace space({"10.211.0.1/24", "10.211.0.2/24", "10.211.0.3/24", "10.212.0.1/24", "10.212.0.2/24"},
                           {"10.213.0.1/24", "10.213.0.2/24"});
    QVERIFY2(space.lastError().isEmpty(), qPrintable(space.lastError()));
    // Gone before the namespace: a namespace goes only with its last process.
    std::unique_ptr<SimulatorProcess> simulators[3];
    const QStringList arguments[3] = {
        {"-m9", "-n3", "-i10.211.0.1"}, {"-m247", "-n2", "-i10.212.0.1"}, {"-m60", "-n150", "-i10.213.0.1"}};
    // The last chamber's start line of each: its extract is written by then.
    const QByteArray lastStart[3] = {
        "Start TLX simulation KBF 240 E6 on 10.211.0.3:9000\r\n",
        "Start Modbus simulation VC 7034 Z2 on 10.212.0.2:502\r\n",
        "Start Modbus RTU over TCP simulation VT 4021 Z3 on 10.213.0.2 Modbus Address: 1\r\n"};
    for (int fleet = 0; fleet < 3; ++fleet) {
        simulators[fleet] = std::make_unique<SimulatorProcess>();
        QVERIFY(simulators[fleet]->installCatalogue(catalogue));
        simulators[fleet]->setNetworkNamespace(space.name());
        simulators[fleet]->start(arguments[fleet]);
    }
    for (int fleet = 0; fleet < 3; ++fleet)
        QVERIFY2(simulators[fleet]->waitForOutput(lastStart[fleet], 30000),
                 simulators[fleet]->standardOutput().right(500).constData());

    // What was built, worked out from the addresses: TLX and Modbus TCP one
    // chamber an address; the tunnelled ones 100 on the first converter, the
    // 101st on the second, named after the address the simulator was at.
    const QString fa = space.macAddress("fa");
    const QString fb = space.macAddress("fb");
    QList<QJsonObject> fleetChambers[3];
    for (int host = 1; host <= 3; ++host) {
        const QString address = QStringLiteral("10.211.0.%1").arg(host);
        fleetChambers[0].append(expected({9, "KBF 240 E6 at " + address, address, fa, 0, 4, -1}, 99999 + host));
    }
    for (int host = 1; host <= 2; ++host) {
        const QString address = QStringLiteral("10.212.0.%1").arg(host);
        fleetChambers[1].append(expected({247, "VC 7034 Z2 at " + address, address, fa, 0, 3, -1}, 99999 + host));
    }
    for (int index = 0; index <= 100; ++index) {
        const QString converter = index < 100 ? "10.213.0.1" : "10.213.0.2";
        const QString asked = index == 0 ? "10.213.0.1" : "10.213.0.2";
        fleetChambers[2].append(
            expected({60, "VT 4021 Z3 at " + asked, converter, fb, index % 100 + 1, 1, 0}, 100000 + index));
    }

    QTemporaryDir work;
    const QString path = work.filePath("zelmor4.sqlite3");
    DatabaseToolRun run = DatabaseToolRun::start({"create", path, "--catalogue", catalogue});
    QVERIFY2(run.exitCode == 0, run.said().constData());
    QStringList extracts;
    for (int fleet = 0; fleet < 3; ++fleet) {
        extracts.append(work.filePath(QStringLiteral("fleet%1.sql").arg(fleet)));
        QFile file(extracts.last());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(simulators[fleet]->documentsFile("sqlextract.sql"));
    }
    // The first fleet from where the simulator left its extract, the others as files.
    run = DatabaseToolRun::start({"add-chambers", path}, QString(), simulators[0]->home());
    QCOMPARE(QString::fromUtf8(run.standardOutput),
             path + ": 3 chamber(s) added, 0 already there (" + simulators[0]->home() + "/Documents/sqlextract.sql)\n");
    run = DatabaseToolRun::start({"add-chambers", path, extracts.at(1)});
    QCOMPARE(QString::fromUtf8(run.standardOutput),
             path + ": 2 chamber(s) added, 0 already there (" + extracts.at(1) + ")\n");
    run = DatabaseToolRun::start({"add-chambers", path, extracts.at(2)});
    QCOMPARE(QString::fromUtf8(run.standardOutput),
             path + ": 101 chamber(s) added, 0 already there (" + extracts.at(2) + ")\n");

    run = DatabaseToolRun::start({"chambers", path, "--json"});
    QCOMPARE(run.exitCode, 0);
    QJsonParseError error;
    const QJsonArray chambers = QJsonDocument::fromJson(run.standardOutput, &error).array();
    QCOMPARE(error.error, QJsonParseError::NoError);
    const QList<QJsonObject> all = fleetChambers[0] + fleetChambers[1] + fleetChambers[2];
    QCOMPARE(chambers.size(), all.size());
    for (int index = 0; index < all.size(); ++index) {
        QCOMPARE(chambers.at(index).toObject().value("id").toInt(), index + 1);
        QCOMPARE(built(chambers.at(index).toObject()), all.at(index));
    }

    // Entered once only: a second run adds nothing and leaves the file as it is.
    const QByteArray before = fileBytes(path);
    for (int fleet = 0; fleet < 3; ++fleet) {
        run = DatabaseToolRun::start({"add-chambers", path, extracts.at(fleet)});
        QCOMPARE(QString::fromUtf8(run.standardOutput),
                 path + QStringLiteral(": 0 chamber(s) added, %1 already there (").arg(fleetChambers[fleet].size())
                     + extracts.at(fleet) + ")\n");
    }
    QCOMPARE(fileBytes(path), before);

    // A database the monitoring application can open.
    run = DatabaseToolRun::start({"check", path, "--catalogue", catalogue});
    QVERIFY2(run.exitCode == 0, run.said().constData());
    QCOMPARE(ApplicationFiles::shell(path, "SELECT count(*), count(DISTINCT mac_address) FROM chamber;"),
             QString("106|2"));
}

QTEST_GUILESS_MAIN(TestDatabaseToolEndToEnd)
#include "tst_databasetool_e2e.moc"
