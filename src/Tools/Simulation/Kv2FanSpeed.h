#pragma once

#include "Tools/Simulation/SimulationValueFloat.h"

namespace zelmor::simulation {

// Fan speed of a KV2 controller: set point and process value, no mirror.
class Kv2FanSpeed : public SimulationValueFloat
{
public:
    Kv2FanSpeed();
};

} // namespace zelmor::simulation
