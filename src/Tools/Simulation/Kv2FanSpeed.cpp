#include "Tools/Simulation/Kv2FanSpeed.h"

namespace zelmor::simulation {

Kv2FanSpeed::Kv2FanSpeed()
    : SimulationValueFloat(50.0f, 60.0f, 60.0f, 4432, 4278)
{
}

} // namespace zelmor::simulation
