#include "Tools/Simulation/ModbusOverTcpServerFactory.h"

#include "Tools/Simulation/ModbusOverTcpServer.h"
#include "Tools/Simulation/WutBroadcastSimulation.h"
#include "Tools/Simulation/XPortBroadcastSimulation.h"

#include <QHostAddress>

namespace zelmor {
namespace simulation {

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

ModbusOverTcpServer* ModbusOverTcpServerFactory::create(QString const& address, int port)
{
    ModbusOverTcpServerFactory& factory = getInstance();
    QPair<QString, int> const key(address, port);
    if (ModbusOverTcpServer* const server = factory.servers.value(key))
        return server;
    auto* const server = new ModbusOverTcpServer(address, port);
    factory.servers.insert(key, server);
    QHostAddress const hostAddress(address);
    UdpBroadCaster* const broadcaster = port == xPortConverterPort_
                                            ? static_cast<UdpBroadCaster*>(new XPortBroadcastSimulation(hostAddress))
                                            : new WutBroadcastSimulation(hostAddress);
    factory.broadcasters.insert(key, broadcaster);
    return server;
}

} // namespace simulation
} // namespace zelmor
