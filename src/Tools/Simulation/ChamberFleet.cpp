#include "Tools/Simulation/ChamberFleet.h"

#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"
#include "Domain/Types/ChamberTypeData.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/Kv1ProgramOption.h"
#include "Tools/Simulation/Kv2ProgramOption.h"
#include "Tools/Simulation/ModbusChamberSimulation.h"
#include "Tools/Simulation/ModbusRtuOverTcpChamberSimulation.h"
#include "Tools/Simulation/ModbusTcpChamberSimulation.h"
#include "Tools/Simulation/Pl4ProgramOption.h"
#include "Tools/Simulation/SimulationDevice.h"
#include "Tools/Simulation/SimulationSignal.h"
#include "Tools/Simulation/SimulationValueInt.h"
#include "Tools/Simulation/SimulationValueShort.h"
#include "Tools/Simulation/SimulationValueUInt.h"
#include "Tools/Simulation/SimulationValueUShort.h"
#include "Tools/Simulation/TlxChamberSimulation.h"

#include <QFile>
#include <QHostAddress>
#include <QNetworkInterface>
#include <QRegExp>
#include <QStandardPaths>
#include <QTextStream>

namespace zelmor::simulation {

using base::connection::databaseconnection::DatabaseConnection;
using domain::types::ChamberProtocol;
using domain::types::ChamberSignal;
using domain::types::ChamberTypeData;
using domain::types::ChamberTypeId;
using domain::types::ControlSignal;

QMap<QString, QString> listOfMacAdresses_;
QString currentModbusConverterIpAddress;
int currentModbusConverterModbusAdr = 1;

namespace {

constexpr char kv2Controller[] = "KV2";
constexpr char kv1Controller[] = "KV1";
constexpr char pl4Controller[] = "PL4";
constexpr char tlxController[] = "TLX";
// Controllers that sit on a serial line or behind a serial-to-Ethernet converter.
constexpr const char* modbusRtuControllers[] = {"Q3", "Q3.1", "Q3.2", "Q4", "KV1", "PL4"};

// Searched for anywhere in the address text, not matched as a whole.
constexpr char comPortPattern[] = "COM\\d:\\d+";
constexpr char dottedAddressPattern[] = "\\d+\\.\\d+\\.\\d+\\.\\d+";

constexpr int converterPort = 10001;
constexpr int slavesPerConverter = 100;

// A control word without lag: a written value shows at the next read.
constexpr float controlSignalTimeConstant = -10.0f;

constexpr char extractFileName[] = "/sqlextract.sql";
constexpr int manualRowIdBase = 999;
constexpr int automaticRowIdBase = 99;
constexpr int firstSerialNumber = 100000;

bool isModbusRtuController(const QString& controller)
{
    for (const char* name : modbusRtuControllers) {
        if (controller == QLatin1String(name))
            return true;
    }
    return false;
}

QSharedPointer<ChamberTypeData> copyOf(const ChamberTypeData& type)
{
    return QSharedPointer<ChamberTypeData>::create(type);
}

// Up to 100 tunnelled chambers share one converter address; the 101st opens
// a new converter on the address it was asked for.
QSharedPointer<ChamberSimulation> createTunnelledChamber(const ChamberTypeData& type, const QString& ipAddress)
{
    if (currentModbusConverterIpAddress.isEmpty())
        currentModbusConverterIpAddress = ipAddress;
    if (currentModbusConverterModbusAdr > slavesPerConverter) {
        currentModbusConverterModbusAdr = 1;
        currentModbusConverterIpAddress = ipAddress;
    }
    const QSharedPointer<ChamberSimulation> chamber = QSharedPointer<ModbusRtuOverTcpChamberSimulation>::create(
        copyOf(type), currentModbusConverterIpAddress, converterPort, currentModbusConverterModbusAdr);
    ++currentModbusConverterModbusAdr;
    return chamber;
}

QSharedPointer<ChamberSimulation> createChamber(const ChamberTypeData& type, const QString& ipAddress)
{
    QSharedPointer<ChamberSimulation> chamber;
    if (type.controller == QLatin1String(kv2Controller)) {
        if (type.protocols.contains(domain::types::MODBUS_TCP)) {
            chamber = QSharedPointer<ModbusTcpChamberSimulation>::create(copyOf(type), ipAddress);
        } else if (type.protocols.contains(domain::types::MODBUS_RTU_TUNNEL)) {
            chamber = createTunnelledChamber(type, ipAddress);
        }
    }
    if (type.controller == QLatin1String(tlxController))
        chamber = QSharedPointer<TlxChamberSimulation>::create(copyOf(type), ipAddress);
    if (isModbusRtuController(type.controller)) {
        const QRegExp comPort(QLatin1String(comPortPattern), Qt::CaseSensitive, QRegExp::RegExp);
        const QRegExp dottedAddress(QLatin1String(dottedAddressPattern), Qt::CaseSensitive, QRegExp::RegExp);
        if (type.protocols.contains(domain::types::MODBUS_RTU_TUNNEL) && dottedAddress.indexIn(ipAddress) != -1) {
            chamber = createTunnelledChamber(type, ipAddress);
        } else if (type.protocols.contains(domain::types::MODBUS_RTU) && comPort.indexIn(ipAddress) != -1) {
            chamber = QSharedPointer<ModbusChamberSimulation>::create(copyOf(type), ipAddress);
        }
    }
    return chamber;
}

void addProgramMemory(SimulationDevice& device, const ChamberTypeData& type)
{
    if (!type.isProgrammable())
        return;
    if (type.controller == QLatin1String(kv2Controller))
        device.add(QSharedPointer<Kv2ProgramOption>::create());
    if (type.controller == QLatin1String(kv1Controller))
        device.add(QSharedPointer<Kv1ProgramOption>::create());
    if (type.controller == QLatin1String(pl4Controller))
        device.add(QSharedPointer<Pl4ProgramOption>::create());
}

// Process values first: a process value takes in its set point, which then
// gets no value of its own. Set points nobody took in follow, unprinted.
void addSignals(SimulationDevice& device, const ChamberTypeData& type)
{
    QList<QString> addedNames;
    QList<ChamberSignal> deferred;
    for (const ChamberSignal& signal : type.chamberSignals) {
        if (addedNames.contains(signal.name))
            continue;
        if (signal.signalType & ~ChamberSignal::SET_POINT_PROCESS_VALUE) {
            deferred.append(signal);
            continue;
        }
        consoleOutput() << "Adding Signal " << signal.name << consoleEndLine;
        const QSharedPointer<SimulationSignal> simulationSignal = QSharedPointer<SimulationSignal>::create(signal);
        for (const QString& name : simulationSignal->getSignalNames()) {
            if (!addedNames.contains(name))
                addedNames.append(name);
        }
        device.add(simulationSignal);
    }
    for (const ChamberSignal& signal : deferred) {
        if (addedNames.contains(signal.name))
            continue;
        device.add(QSharedPointer<SimulationSignal>::create(signal));
    }
}

QSharedPointer<SimulationReader> createControlValue(const ControlSignal& controlSignal)
{
    bool readOk = false;
    bool writeOk = false;
    const int readAddress = controlSignal.read.address.toInt(&readOk, 16);
    const int writeAddress = controlSignal.write.address.toInt(&writeOk, 16);
    if (!readOk || !writeOk)
        return {};
    switch (controlSignal.read.type) {
    case QMetaType::Int:
        return QSharedPointer<SimulationValueInt>::create(0, 0, controlSignalTimeConstant, writeAddress, readAddress);
    case QMetaType::UInt:
        return QSharedPointer<SimulationValueUInt>::create(0u, 0u, controlSignalTimeConstant, writeAddress,
                                                           readAddress);
    case QMetaType::Short:
        return QSharedPointer<SimulationValueShort>::create(short(0), short(0), controlSignalTimeConstant, writeAddress,
                                                            readAddress);
    case QMetaType::UShort:
        return QSharedPointer<SimulationValueUShort>::create(static_cast<unsigned short>(0),
                                                             static_cast<unsigned short>(0), controlSignalTimeConstant,
                                                             writeAddress, readAddress);
    default:
        return {};
    }
}

void addControlSignals(SimulationDevice& device, const ChamberTypeData& type)
{
    for (const ControlSignal& controlSignal : type.controlSignals) {
        const QSharedPointer<SimulationReader> value = createControlValue(controlSignal);
        if (value)
            device.add(value);
    }
}

// One INSERT for the monitoring application's table "chamber". Not escaped:
// a quote in a type name goes through as it is.
void writeChamberRow(QTextStream& stream, int rowId, quint64 typeId, int serialNumber, const QString& name,
                     const ChamberSimulation& chamber)
{
    const QString ipAddress = chamber.getIpAddress();
    stream << "INSERT INTO \"chamber\" VALUES(" << rowId << "," << typeId << "," << typeId << ",'666-" << serialNumber
           << "',0,1,'" << name << "','" << ipAddress << "',NULL,'" << listOfMacAdresses_.value(ipAddress) << "',"
           << chamber.getModbusAddress() << ",NULL,NULL,NULL,NULL,NULL,";
    const int protocolId = chamber.getProtocolId();
    if (protocolId == domain::types::MODBUS_RTU_TUNNEL)
        stream << "1,0);\n";
    else
        stream << protocolId << ",-1);\n";
}

// Whether the file opens is not asked: a stream on a closed file writes into nothing.
void openExtractFile(QFile& file, QTextStream& stream)
{
    file.setFileName(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)
                     + QLatin1String(extractFileName));
    file.open(QIODevice::WriteOnly | QIODevice::Text);
    stream.setCodec("UTF-8");
    stream.setDevice(&file);
}

} // namespace

QSharedPointer<ChamberSimulation> getSimulationByChamberConfigId(const ChamberTypeData& type, QString ipAddress)
{
    const QSharedPointer<SimulationDevice> device = QSharedPointer<SimulationDevice>::create();
    const QSharedPointer<ChamberSimulation> chamber = createChamber(type, ipAddress);
    if (!chamber)
        return {};
    addProgramMemory(*device, type);
    addSignals(*device, type);
    addControlSignals(*device, type);
    chamber->setSimulationReader(device);
    return chamber;
}

QSharedPointer<ChamberSimulation> getSimulationByChamberConfigId(DatabaseConnection& database, int id,
                                                                 QString ipAddress)
{
    const quint64 typeId = static_cast<quint64>(id);
    return getSimulationByChamberConfigId(database.getChamberTypeData(ChamberTypeId(typeId, typeId), true),
                                          std::move(ipAddress));
}

QList<QString> getAllIpAddresses(QString ipAddress)
{
    QList<QString> addresses;
    const bool everyAddress = ipAddress == QLatin1String("127.0.0.1");
    const quint32 selector = QHostAddress(ipAddress).toIPv4Address();
    QNetworkInterface::InterfaceFlags const required = QNetworkInterface::IsUp | QNetworkInterface::CanBroadcast;
    for (const QNetworkInterface& networkInterface : QNetworkInterface::allInterfaces()) {
        QNetworkInterface::InterfaceFlags const flags = networkInterface.flags();
        if ((flags & required) != required || flags.testFlag(QNetworkInterface::IsLoopBack))
            continue;
        for (const QNetworkAddressEntry& entry : networkInterface.addressEntries()) {
            if (entry.ip().protocol() != QAbstractSocket::IPv4Protocol)
                continue;
            const quint32 netmask = entry.netmask().toIPv4Address();
            const bool inSubnet = (entry.ip().toIPv4Address() & netmask) == (selector & netmask);
            if (!inSubnet && !everyAddress)
                continue;
            const QString address = entry.ip().toString();
            addresses.append(address);
            listOfMacAdresses_[address] = networkInterface.hardwareAddress();
        }
    }
    return addresses;
}

QList<QSharedPointer<ChamberSimulation>> createSimulations(DatabaseConnection& database, QString ipAddress,
                                                           QString count, int id)
{
    QList<QSharedPointer<ChamberSimulation>> chambers;
    const ChamberTypeData type = database.getChamberTypeData(ChamberTypeId(static_cast<quint64>(id), 0), true);
    const QList<QString> addresses = getAllIpAddresses(ipAddress);
    if (addresses.isEmpty())
        return chambers;

    QFile file;
    QTextStream stream;
    openExtractFile(file, stream);

    const int wanted = count.toInt(nullptr, 10);
    int rowId = manualRowIdBase;
    int serialNumber = firstSerialNumber;
    auto address = addresses.cbegin();
    // A turn whose chamber is null counts all the same. Tunnelled chambers
    // stay on their converter's address, so the iterator waits for the next
    // converter there.
    for (int turn = 0; turn < wanted && address != addresses.cend(); ++turn) {
        const QSharedPointer<ChamberSimulation> chamber = getSimulationByChamberConfigId(type, *address);
        if (!chamber)
            continue;
        ++rowId;
        const QString name = type.getQualifiedTypeName() + QStringLiteral(" at %1").arg(*address);
        writeChamberRow(stream, rowId, type.chamberTypeId.typeId, serialNumber, name, *chamber);
        ++serialNumber;
        if (*address == chamber->getIpAddress())
            ++address;
        chambers.append(chamber);
    }

    stream.flush();
    file.close();
    return chambers;
}

QList<QSharedPointer<ChamberSimulation>> createAutoSimulation(DatabaseConnection& database, QString ipAddress)
{
    QList<QSharedPointer<ChamberSimulation>> chambers;
    const QList<ChamberTypeData> types = database.getAllChamberTypeData(true);
    const QList<QString> addresses = getAllIpAddresses(ipAddress);

    QFile file;
    QTextStream stream;
    openExtractFile(file, stream);

    int rowId = automaticRowIdBase;
    int serialNumber = firstSerialNumber;
    QList<QString> seenNames;
    auto address = addresses.cbegin();
    for (const ChamberTypeData& type : types) {
        // The stream flushes into the file as it goes out of scope.
        if (address == addresses.cend())
            return chambers;
        const QString name = type.getQualifiedTypeName();
        if (seenNames.contains(name))
            continue;
        seenNames.append(name);
        const QSharedPointer<ChamberSimulation> chamber = getSimulationByChamberConfigId(type, *address);
        if (!chamber)
            continue;
        ++rowId;
        writeChamberRow(stream, rowId, type.chamberTypeId.typeId, serialNumber, name, *chamber);
        ++serialNumber;
        if (*address == chamber->getIpAddress())
            ++address;
        chambers.append(chamber);
    }

    stream.flush();
    file.close();
    return chambers;
}

} // namespace zelmor::simulation
