#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqliteConnection.h"
#include "Base/EventDispatcher/EpollEventDispatcher.h"
#include "Tools/Simulation/ChamberFleet.h"
#include "Tools/Simulation/ChamberSimulation.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/OpenFileLimit.h"
#include "Tools/Simulation/XmlSimulationReader.h"
#include "Tools/SimulationControl/ControlInterface.h"

#include <QApplication>
#include <QFile>
#include <QList>
#include <QSettings>
#include <QSharedPointer>
#include <QSqlDatabase>
#include <QString>
#include <QTextStream>

using zelmor::base::connection::databaseconnection::DatabaseConnection;
using zelmor::base::connection::databaseconnection::SqliteConnection;
using zelmor::base::connection::databaseconnection::SqlQuery;
using zelmor::simulation::ChamberSimulation;
using zelmor::simulation::consoleEndLine;
using zelmor::simulation::consoleOutput;
using zelmor::simulation::control::ControlInterface;

namespace {

constexpr const char* usageLines[] = {
    "Usage: \n",
    " [-iXXXX] XXXX=IPAddress\n",
    " [-pXXXX] XXXX=Internet Port\n",
    " [tlx] creates a TLX chamber\n",
    " [kv2] creates a TLX chamber\n",
    " [-mXXX] creates a chamber based on the database id XXX\n",
    " [-nXXX] creates XXX instances of chambers\n",
    " [-xXXX] Defines the value file\n",
};

constexpr char defaultIpAddress[] = "127.0.0.1";
constexpr char defaultChamberTypeId[] = "9";
constexpr char tlxChamberTypeId[] = "1";
constexpr char kv2ChamberTypeId[] = "247";

constexpr char iniFile[] = "../ZELMOR4.ini";
constexpr char iniDatabasePathKey[] = "General/ConfigDatabasePath";
constexpr char configurationDatabaseKey[] = "0a1b2c3d4e5f60718293a4b5c6d7e8f9";
constexpr const char* defaultDatabasePaths[] = {
    "database/configuration.sqlite3",
    "../../../database/configuration.sqlite3",
};
constexpr int databaseNotOpened = -1;

// The tool opens no window; on a machine without a display the default
// platform would stop the start, so take one that needs none.
void chooseWindowlessPlatform()
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY")
        && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
}

// Every value read asks for the local time. Without TZ the C library looks
// at /etc/localtime on each call; naming that file reads the same zone once.
void keepLocalTimeCheap()
{
    static const char localTimeFile[] = "/etc/localtime";
    if (!qEnvironmentVariableIsSet("TZ") && QFile::exists(QLatin1String(localTimeFile)))
        qputenv("TZ", QByteArray(":") + localTimeFile);
}

// Qt's own dispatchers poll every socket on every wake-up, so that with a
// fleet each request costs in proportion to the number of chambers. Without
// windows nothing needs them; a platform with windows keeps its own for the
// window system's events. ZELMOR_EVENT_DISPATCHER=qt keeps Qt's in any case.
void installFleetEventDispatcher()
{
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    const bool windowless = platform.startsWith("offscreen") || platform.startsWith("minimal");
    if (!windowless || qgetenv("ZELMOR_EVENT_DISPATCHER") == "qt")
        return;
    auto* const dispatcher = new zelmor::base::eventdispatcher::EpollEventDispatcher;
    if (!dispatcher->isValid()) {
        delete dispatcher;
        return;
    }
    QCoreApplication::setEventDispatcher(dispatcher);
}

void printUsage()
{
    QTextStream& console = consoleOutput();
    for (const char* line : usageLines)
        console << line;
    console.flush();
}

void attachValueFile(const QSharedPointer<ChamberSimulation>& chamber, const QString& valueFilePath)
{
    if (!valueFilePath.isEmpty())
        chamber->setSimulationReader(QSharedPointer<zelmor::simulation::XmlSimulationReader>::create(valueFilePath));
}

// Building a fleet reads the catalogue in thousands of small statements. In
// one read transaction the engine keeps its shared lock and its page cache from
// one to the next and spares the file checks that each statement would make on
// its own (about ten system calls), which dominate loading a large catalogue.
// The transaction ends once the fleet is built: the monitoring application
// shares the file and must be able to write to it while the tool runs. Without
// the transaction the reads are only slower.
bool beginCatalogueRead(SqliteConnection& connection)
{
    return connection.getDatabase().transaction();
}

void endCatalogueRead(SqliteConnection& connection, bool begun)
{
    if (begun)
        connection.getDatabase().rollback();
}

// A wrong key still opens: the engine only tells at the first statement that
// reads a page. Such a catalogue counts as not opened.
bool openReadableCatalogue(SqliteConnection& connection, const QString& path)
{
    if (!connection.openDatabase(path, QString(), QString(), QLatin1String(configurationDatabaseKey)))
        return false;
    SqlQuery probe;
    probe.selectCount(SqlQuery::ALL, QString()).fromTable(QStringLiteral("sqlite_master"));
    return connection.fetchSingleValue(probe).isValid();
}

bool openConfigurationDatabase(SqliteConnection& connection, const QString& iniDatabasePath)
{
    if (!iniDatabasePath.isEmpty()) {
        consoleOutput() << "Reading database " << iniDatabasePath << consoleEndLine;
        return openReadableCatalogue(connection, iniDatabasePath);
    }
    consoleOutput() << "Reading database in default folders" << consoleEndLine;
    for (const char* path : defaultDatabasePaths) {
        if (openReadableCatalogue(connection, QLatin1String(path)))
            return true;
    }
    return false;
}

} // namespace

int main(int argc, char* argv[])
{
    chooseWindowlessPlatform();
    keepLocalTimeCheap();
    // The usual soft limit of 1024 would end a fleet at about 330 chambers.
    zelmor::simulation::OpenFileLimit::raise();
    installFleetEventDispatcher();

    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling, true);
    QApplication application(argc, argv);

    QList<QSharedPointer<ChamberSimulation>> chambers;
    QString ipAddress;
    QList<QString> chamberTypeIds;
    QString countText;
    QString portText;
    QString automaticAddress;
    QString valueFilePath;
    ControlInterface control;

    // Every element is tested against every option, with no else between
    // them; text options concatenate, the type ids accumulate in order.
    for (int index = 1; index < argc; ++index) {
        const QString argument = QString::fromLocal8Bit(argv[index]);
        if (argument == QLatin1String("kv2"))
            chamberTypeIds.append(QLatin1String(kv2ChamberTypeId));
        if (argument == QLatin1String("tlx"))
            chamberTypeIds.append(QLatin1String(tlxChamberTypeId));
        if (argument == QLatin1String("-h")) {
            printUsage();
            return 0;
        }
        if (argument.startsWith(QLatin1String("-i")))
            ipAddress.append(argument.mid(2));
        if (argument.startsWith(QLatin1String("-m")))
            chamberTypeIds.append(argument.mid(2));
        if (argument.startsWith(QLatin1String("-n")))
            countText.append(argument.mid(2));
        // Ports come from the protocols; the value is kept and not used.
        if (argument.startsWith(QLatin1String("-p")))
            portText.append(argument.mid(2));
        if (argument.startsWith(QLatin1String("-a")))
            automaticAddress.append(argument.mid(2));
        if (argument.startsWith(QLatin1String("-x")))
            valueFilePath.append(argument.mid(2));
        control.takeArgument(argument);
    }
    if (!control.checkOption())
        return ControlInterface::badOption_;
    if (ipAddress.isEmpty())
        ipAddress.append(QLatin1String(defaultIpAddress));
    if (chamberTypeIds.isEmpty())
        chamberTypeIds.append(QLatin1String(defaultChamberTypeId));

    // The application database stays closed: only the catalogue is read.
    SqliteConnection configurationConnection(QStringLiteral("configDB"));
    SqliteConnection applicationConnection(QStringLiteral("zelmor4"));
    DatabaseConnection database(false);
    database.setDependencies(&applicationConnection, &configurationConnection);

    QSettings settings(QLatin1String(iniFile), QSettings::IniFormat);
    settings.setIniCodec("UTF-8");
    const QString iniDatabasePath = settings.value(QLatin1String(iniDatabasePathKey), QString()).toString();

    if (!openConfigurationDatabase(configurationConnection, iniDatabasePath))
        return databaseNotOpened;
    const bool catalogueRead = beginCatalogueRead(configurationConnection);

    if (!automaticAddress.isEmpty()) {
        const QList<QSharedPointer<ChamberSimulation>> fleet =
            zelmor::simulation::createAutoSimulation(database, automaticAddress);
        for (const QSharedPointer<ChamberSimulation>& chamber : fleet) {
            attachValueFile(chamber, valueFilePath);
            chamber->start();
        }
        chambers.append(fleet);
    } else if (!countText.isEmpty()) {
        for (const QString& id : chamberTypeIds) {
            const QList<QSharedPointer<ChamberSimulation>> fleet =
                zelmor::simulation::createSimulations(database, ipAddress, countText, id.toInt(nullptr, 10));
            for (const QSharedPointer<ChamberSimulation>& chamber : fleet)
                attachValueFile(chamber, valueFilePath);
            chambers.append(fleet);
        }
    } else {
        for (const QString& id : chamberTypeIds) {
            const QSharedPointer<ChamberSimulation> chamber =
                zelmor::simulation::getSimulationByChamberConfigId(database, id.toInt(nullptr, 10), ipAddress);
            if (!chamber)
                continue;
            attachValueFile(chamber, valueFilePath);
            chambers.append(chamber);
        }
    }

    endCatalogueRead(configurationConnection, catalogueRead);

    // In the automatic path every chamber starts a second time here; a
    // second start() leaves the first one's listener as it is.
    for (const QSharedPointer<ChamberSimulation>& chamber : chambers)
        chamber->start();

    if (!control.start(chambers))
        return ControlInterface::notListening_;

    return application.exec();
}
