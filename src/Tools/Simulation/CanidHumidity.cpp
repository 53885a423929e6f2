#include "Tools/Simulation/CanidHumidity.h"

namespace zelmor::simulation {

CanidHumidity::CanidHumidity()
    : SimulationValueFloat(50.0f, 23.3f, 60.0f, 0x116000C6, 0x11600083)
{
}

} // namespace zelmor::simulation
