#include "Tools/Simulation/WutBroadcastSimulation.h"

#include "Tools/Simulation/ConverterSearchReply.h"

namespace zelmor {
namespace simulation {

WutBroadcastSimulation::WutBroadcastSimulation(QHostAddress const& address)
    : UdpBroadCaster(address, discoveryPort_)
{
}

void WutBroadcastSimulation::readUdpData()
{
    answerConverterSearch(*socket, getMacAddress());
}

} // namespace simulation
} // namespace zelmor
