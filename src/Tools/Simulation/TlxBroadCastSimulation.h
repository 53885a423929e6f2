#pragma once

#include "Tools/Simulation/UdpBroadCaster.h"

#include <QString>

namespace zelmor::simulation {

// The discovery responder of one TLX chamber: every datagram to port 9001
// on the chamber's address, whatever it holds, is answered with one line of
// text naming the address, the hardware address and the two type texts.
// Each request is printed to the console with its answer.
class TlxBroadCastSimulation : public UdpBroadCaster
{
    Q_OBJECT

public:
    static constexpr int discoveryPort_ = 9001;

    TlxBroadCastSimulation(const QHostAddress& address, QString controllerType, QString chamberType);
    // A responder for controller "S4.1" and chamber "HX 60 Z6".
    explicit TlxBroadCastSimulation(const QHostAddress& address);

protected slots:
    void readUdpData() override;

private:
    const QString controllerType;
    const QString chamberType;
};

} // namespace zelmor::simulation
