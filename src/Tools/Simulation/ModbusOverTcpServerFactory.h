#pragma once

#include <QMap>
#include <QObject>
#include <QPair>
#include <QString>

namespace zelmor::simulation {

class ModbusOverTcpServer;
class UdpBroadCaster;

// Keeps exactly one converter socket, with its discovery responder, for
// each address and port, so that the chambers given the same address and
// port share them. Exists once; only call from the thread of the event loop.
class ModbusOverTcpServerFactory : public QObject
{
    Q_OBJECT

public:
    // The converter port whose responder is an XPort one; every other port
    // gets a Wut responder.
    static constexpr int xPortConverterPort_ = 8000;

    ~ModbusOverTcpServerFactory() override;

    static ModbusOverTcpServerFactory& getInstance();
    // The socket of the address and port, made with its responder at the
    // first call. Never null: a socket that failed to listen is kept as well.
    static ModbusOverTcpServer* create(const QString& address, int port);

private:
    ModbusOverTcpServerFactory();

    QMap<QPair<QString, int>, ModbusOverTcpServer*> servers;
    QMap<QPair<QString, int>, UdpBroadCaster*> broadcasters;
};

} // namespace zelmor::simulation
