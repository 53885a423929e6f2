#include "Tools/Simulation/XPortBroadcastSimulation.h"

#include "Tools/Simulation/ConverterSearchReply.h"

namespace zelmor::simulation {

XPortBroadcastSimulation::XPortBroadcastSimulation(const QHostAddress& address)
    : UdpBroadCaster(address, discoveryPort_)
{
}

void XPortBroadcastSimulation::readUdpData()
{
    answerConverterSearch(*socket, getMacAddress());
}

} // namespace zelmor::simulation
