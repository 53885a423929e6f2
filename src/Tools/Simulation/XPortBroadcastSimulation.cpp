#include "Tools/Simulation/XPortBroadcastSimulation.h"

#include "Tools/Simulation/ConverterSearchReply.h"

namespace zelmor {
namespace simulation {

XPortBroadcastSimulation::XPortBroadcastSimulation(QHostAddress const& address)
    : UdpBroadCaster(address, discoveryPort_)
{
}

void XPortBroadcastSimulation::readUdpData()
{
    answerConverterSearch(*socket, getMacAddress());
}

} // namespace simulation
} // namespace zelmor
