#include "Tools/Simulation/CanidO2.h"

namespace zelmor::simulation {

CanidO2::CanidO2()
    : SimulationValueFloat(80.3f, 23.3f, 500.0f, 0x116000CC, 0x11600082)
{
}

} // namespace zelmor::simulation
