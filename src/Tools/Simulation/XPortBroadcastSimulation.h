#pragma once

#include "Tools/Simulation/UdpBroadCaster.h"

namespace zelmor::simulation {

// The discovery responder of a simulated XPort converter, as each Modbus
// TCP chamber and each converter on port 8000 has one.
// Every datagram to port 30718, whatever it holds, is answered with 28
// bytes: 22 zero bytes, then the six bytes of the hardware address of the
// bound address (all zero on loopback). Each request is printed.
class XPortBroadcastSimulation : public UdpBroadCaster
{
    Q_OBJECT

public:
    static constexpr int discoveryPort_ = 30718;

    explicit XPortBroadcastSimulation(const QHostAddress& address);

protected slots:
    void readUdpData() override;
};

} // namespace zelmor::simulation
