// Holding register reads against the Modbus servers of the simulator, in one
// run, all driven by the same load client (modbus_load_client, over
// libmodbus; raw RTU frames for the converter):
//   (a) one Modbus TCP chamber,
//   (b) one tunnelled chamber among 100 on one converter, and the same with
//       the chamber alone on its converter,
//   (c) a reference server outside the project (modbus_reference_server,
//       over libmodbus) serving the same registers,
//   and a bare QModbusTcpServer with a register map for orientation.
// Then, in-process, what one tunnelled frame costs the chambers of a
// converter that don't answer it.
//
// Usage: bench_modbus [requests [frames]]
//   requests: per run with 1 client, default 20000; 10 clients make a tenth
//   each; 0 skips the load runs. frames: in-process emissions, default 200000.
// The servers live in this process; the load client and the reference
// server are child processes from the same folder.

#include "Domain/Types/ChamberTypeData.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/ModbusOverTcpServer.h"
#include "Tools/Simulation/ModbusOverTcpServerFactory.h"
#include "Tools/Simulation/ModbusRtuOverTcpChamberSimulation.h"
#include "Tools/Simulation/ModbusTcpChamberSimulation.h"
#include "Tools/Simulation/SimulationDevice.h"
#include "Tools/Simulation/SimulationValueFloat.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QModbusTcpServer>
#include <QProcess>
#include <QTextStream>
#include <QTimer>

#include <cstdio>
#include <memory>
#include <vector>

using namespace zelmor::simulation;
using zelmor::domain::types::ChamberTypeData;

namespace {

// Loopback addresses of this benchmark alone.
constexpr char modbusTcpAddress[] = "127.0.79.1";
constexpr char converterAddress[] = "127.0.79.2";       // 100 chambers
constexpr char lonelyConverterAddress[] = "127.0.79.3"; // 1 chamber
constexpr char referenceAddress[] = "127.0.79.4";
constexpr char bareQtAddress[] = "127.0.79.5";
constexpr int modbusTcpPort = 502;
constexpr int referencePort = 1502;
constexpr int converterPort = 10001;
constexpr int targetRegister = 0x100;
constexpr int targetSlave = 50;
constexpr int chambersOnConverter = 100;
constexpr int valuesInReader = 20;
constexpr int waitMs = 600000;

QSharedPointer<ChamberTypeData> kv2()
{
    auto type = QSharedPointer<ChamberTypeData>::create();
    type->type = QStringLiteral("KB");
    type->size = 240;
    type->controller = QStringLiteral("KV2");
    return type;
}

// The size of a chamber's signal list: 20 lagged floats, the last of them,
// the one read, with its process value 23.5 at register 100. Every read walks
// the device to it and catches up with the clock.
QSharedPointer<SimulationReader> reader()
{
    auto device = QSharedPointer<SimulationDevice>::create();
    for (int i = 0; i < valuesInReader - 1; ++i)
        device->add(QSharedPointer<SimulationValueFloat>::create(20.0f, 20.0f, 60.0f, 0x200 + 4 * i, 0x202 + 4 * i));
    device->add(QSharedPointer<SimulationValueFloat>::create(23.5f, 23.5f, 60.0f, 0x300, targetRegister));
    return device;
}

QString program(const char* name)
{
    return QCoreApplication::applicationDirPath() + QLatin1Char('/') + QLatin1String(name);
}

// Runs the load client while this process's event loop serves; its one line of figures.
QByteArray load(const QString& kind, const QString& address, int port, int slave, int clients, int requests)
{
    QProcess client;
    QEventLoop loop;
    QObject::connect(&client, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), &loop, &QEventLoop::quit);
    QObject::connect(&client, &QProcess::errorOccurred, &loop, &QEventLoop::quit);
    QTimer::singleShot(waitMs, &loop, &QEventLoop::quit);
    client.start(program("modbus_load_client"),
                 {kind, address, QString::number(port), QString::number(slave), QString::number(targetRegister),
                  QString::number(clients), QString::number(requests)});
    loop.exec();
    if (client.state() != QProcess::NotRunning) {
        client.kill();
        client.waitForFinished();
    }
    return client.readAllStandardOutput().trimmed() + client.readAllStandardError().trimmed();
}

// "requests N seconds S rps R median_us M p99_us P failures F" as numbers by name.
QMap<QByteArray, double> figures(const QByteArray& line)
{
    QMap<QByteArray, double> byName;
    const QList<QByteArray> words = line.split(' ');
    for (int i = 0; i + 1 < words.size(); i += 2)
        byName.insert(words.at(i), words.at(i + 1).toDouble());
    return byName;
}

// Nanoseconds per emission of one frame on the converter.
double nanosecondsPerFrame(ModbusOverTcpServer* converter, const QByteArray& frame, int rounds)
{
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < rounds; ++i)
        emit converter->dataReceived(frame);
    return double(clock.nsecsElapsed()) / rounds;
}

} // namespace

int main(int argc, char** argv)
{
    // As the simulator's entry point does: with TZ unset the C library looks
    // at /etc/localtime on every local time, which every value read asks for.
    if (!qEnvironmentVariableIsSet("TZ"))
        qputenv("TZ", ":/etc/localtime");
    QCoreApplication application(argc, argv);
    const int requests = argc > 1 ? QByteArray(argv[1]).toInt() : 20000;
    const int rounds = argc > 2 ? QByteArray(argv[2]).toInt() : 200000;
    QTextStream out(stdout);
    out.setCodec("UTF-8");

    // The servers' own console lines aren't part of the figures.
    QBuffer console;
    console.open(QIODevice::WriteOnly);
    QIODevice* const standardOutput = consoleOutput().device();
    consoleOutput().setDevice(&console);

    ModbusTcpChamberSimulation modbusTcp(kv2(), QLatin1String(modbusTcpAddress), modbusTcpPort);
    modbusTcp.setSimulationReader(reader());
    if (!modbusTcp.start()) {
        out << "Modbus TCP chamber could not listen on " << modbusTcpAddress << "\n";
        return 1;
    }
    std::vector<std::unique_ptr<ModbusRtuOverTcpChamberSimulation>> tunnelled;
    for (int slave = 1; slave <= chambersOnConverter; ++slave) {
        tunnelled.push_back(std::make_unique<ModbusRtuOverTcpChamberSimulation>(kv2(), QLatin1String(converterAddress),
                                                                                converterPort, slave));
        tunnelled.back()->setSimulationReader(reader());
    }
    ModbusRtuOverTcpChamberSimulation lonely(kv2(), QLatin1String(lonelyConverterAddress), converterPort, targetSlave);
    lonely.setSimulationReader(reader());

    QModbusTcpServer bareQt;
    QModbusDataUnitMap map;
    map.insert(QModbusDataUnit::HoldingRegisters, QModbusDataUnit(QModbusDataUnit::HoldingRegisters, 0, 0x200));
    bareQt.setMap(map);
    bareQt.setData(QModbusDataUnit::HoldingRegisters, quint16(targetRegister + 1), 0x41BC);
    bareQt.setConnectionParameter(QModbusDevice::NetworkAddressParameter, QLatin1String(bareQtAddress));
    bareQt.setConnectionParameter(QModbusDevice::NetworkPortParameter, modbusTcpPort);
    bareQt.connectDevice();

    QProcess reference;
    reference.start(program("modbus_reference_server"),
                    {QLatin1String(referenceAddress), QString::number(referencePort)});
    if (!reference.waitForReadyRead(10000)) {
        out << "reference server did not start: " << reference.readAllStandardError() << "\n";
        return 1;
    }

    struct Server
    {
        const char* name;
        const char* kind;
        const char* address;
        int port;
        int slave;
    };
    const Server servers[] = {
        {"(c) reference, libmodbus", "tcp", referenceAddress, referencePort, 255},
        {"(a) Modbus TCP chamber", "tcp", modbusTcpAddress, modbusTcpPort, 255},
        {"(b) tunnelled chamber, 100 on the converter", "rtu", converterAddress, converterPort, targetSlave},
        {"(b) tunnelled chamber, alone on the converter", "rtu", lonelyConverterAddress, converterPort, targetSlave},
        {"bare QModbusTcpServer with a map", "tcp", bareQtAddress, modbusTcpPort, 255},
    };

    out << QStringLiteral("| server | clients | requests/s | median µs | p99 µs | requests/s to reference |\n")
        << "|---|---|---|---|---|---|\n";
    out.flush();
    for (int clients : {1, 10}) {
        if (requests < clients)
            break;
        double referenceRate = 0.0;
        for (const Server& server : servers) {
            const QByteArray line = load(QLatin1String(server.kind), QLatin1String(server.address), server.port,
                                         server.slave, clients, requests / clients);
            const QMap<QByteArray, double> measured = figures(line);
            if (!measured.contains("rps") || measured.value("failures") != 0.0) {
                out << "| " << server.name << " | " << clients << " | failed: " << line << " | | | |\n";
                out.flush();
                continue;
            }
            const double rate = measured.value("rps");
            if (referenceRate == 0.0)
                referenceRate = rate;
            out << "| " << server.name << " | " << clients << " | " << qRound(rate) << " | "
                << QString::number(measured.value("median_us"), 'f', 1) << " | "
                << QString::number(measured.value("p99_us"), 'f', 1) << " | "
                << QString::number(rate / referenceRate, 'f', 2) << " |\n";
            out.flush();
        }
    }
    reference.kill();
    reference.waitForFinished();

    // In-process: the converter hands each frame to all its chambers. A
    // frame for slave 101 wakes 100 chambers that don't answer; the same
    // frame on the lonely converter wakes one.
    ModbusOverTcpServer* const crowded =
        ModbusOverTcpServerFactory::create(QLatin1String(converterAddress), converterPort);
    ModbusOverTcpServer* const alone =
        ModbusOverTcpServerFactory::create(QLatin1String(lonelyConverterAddress), converterPort);
    const QByteArray foreign =
        QByteArray::fromHex("650301000002") + ModbusOverTcpServer::calcCrc(QByteArray::fromHex("650301000002"));
    QByteArray request = QByteArray::fromHex("000301000002");
    request[0] = char(targetSlave);
    request += ModbusOverTcpServer::calcCrc(request);
    const double foreign100 = nanosecondsPerFrame(crowded, foreign, rounds);
    const double foreign1 = nanosecondsPerFrame(alone, foreign, rounds);
    const double answered100 = nanosecondsPerFrame(crowded, request, rounds);
    const double answered1 = nanosecondsPerFrame(alone, request, rounds);
    out << "\n| in-process, per frame (no socket) | 100 chambers | 1 chamber | per further chamber |\n"
        << "|---|---|---|---|\n"
        << "| frame for no chamber | " << QString::number(foreign100, 'f', 0) << " ns | "
        << QString::number(foreign1, 'f', 0) << " ns | " << QString::number((foreign100 - foreign1) / 99, 'f', 1)
        << " ns |\n"
        << "| frame for one chamber, reply built | " << QString::number(answered100, 'f', 0) << " ns | "
        << QString::number(answered1, 'f', 0) << " ns | " << QString::number((answered100 - answered1) / 99, 'f', 1)
        << " ns |\n";
    consoleOutput().setDevice(standardOutput);
    return 0;
}
