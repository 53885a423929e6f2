#include "Tools/Simulation/WutBroadcastSimulation.h"

#include "Tools/Simulation/ConverterSearchReply.h"

namespace zelmor::simulation {

WutBroadcastSimulation::WutBroadcastSimulation(const QHostAddress& address)
    : UdpBroadCaster(address, discoveryPort_)
{
}

void WutBroadcastSimulation::readUdpData()
{
    answerConverterSearch(*socket, getMacAddress());
}

} // namespace zelmor::simulation
