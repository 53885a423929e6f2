#include "Tools/Simulation/CanidCo2.h"

namespace zelmor::simulation {

CanidCo2::CanidCo2()
    : SimulationValueFloat(0.0f, 15.6f, 600.0f, 0x116000C9, 0x11600B07)
{
}

} // namespace zelmor::simulation
