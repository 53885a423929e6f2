#pragma once

#include "Tools/Simulation/UdpBroadCaster.h"

namespace zelmor::simulation {

// The discovery responder of a simulated Wut converter, as each converter
// on a port other than 8000 has one.
// Every datagram to port 8513, whatever it holds, is answered with 28
// bytes: 22 zero bytes, then the six bytes of the hardware address of the
// bound address (all zero on loopback). Each request is printed.
class WutBroadcastSimulation : public UdpBroadCaster
{
    Q_OBJECT

public:
    static constexpr int discoveryPort_ = 8513;

    explicit WutBroadcastSimulation(const QHostAddress& address);

protected slots:
    void readUdpData() override;
};

} // namespace zelmor::simulation
