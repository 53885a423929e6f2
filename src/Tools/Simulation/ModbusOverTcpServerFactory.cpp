#include "Tools/Simulation/ModbusOverTcpServerFactory.h"

#include "Tools/Simulation/ModbusOverTcpServer.h"
#include "Tools/Simulation/WutBroadcastSimulation.h"
#include "Tools/Simulation/XPortBroadcastSimulation.h"

#include <QHostAddress>

namespace zelmor::simulation {

ModbusOverTcpServerFactory::ModbusOverTcpServerFactory() = default;

ModbusOverTcpServerFactory::~ModbusOverTcpServerFactory()
{
    for (ModbusOverTcpServer* const server : qAsConst(servers))
        server->deleteLater();
    for (UdpBroadCaster* const broadcaster : qAsConst(broadcasters))
        broadcaster->deleteLater();
}

ModbusOverTcpServerFactory& ModbusOverTcpServerFactory::getInstance()
{
    static ModbusOverTcpServerFactory instance;
    return instance;
}

ModbusOverTcpServer* ModbusOverTcpServerFactory::create(const QString& address, int port)
{
    ModbusOverTcpServerFactory& factory = getInstance();
    const QPair<QString, int> key(address, port);
    if (ModbusOverTcpServer* const server = factory.servers.value(key))
        return server;
    auto* const server = new ModbusOverTcpServer(address, port);
    factory.servers.insert(key, server);
    const QHostAddress hostAddress(address);
    UdpBroadCaster* const broadcaster = port == xPortConverterPort_
                                            ? static_cast<UdpBroadCaster*>(new XPortBroadcastSimulation(hostAddress))
                                            : new WutBroadcastSimulation(hostAddress);
    factory.broadcasters.insert(key, broadcaster);
    return server;
}

} // namespace zelmor::simulation
