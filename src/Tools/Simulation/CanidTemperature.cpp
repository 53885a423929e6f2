#include "Tools/Simulation/CanidTemperature.h"

namespace zelmor::simulation {

CanidTemperature::CanidTemperature()
    : SimulationValueFloat(263.4f, 222.2f, 600.0f, 0x114000C0, 0x11400080)
{
}

} // namespace zelmor::simulation
