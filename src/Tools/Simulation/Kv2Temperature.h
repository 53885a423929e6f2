#pragma once

#include "Tools/Simulation/SimulationDevice.h"

namespace zelmor::simulation {

// Temperature of a KV2 controller: set point, process value and a read-only mirror of the set point.
class Kv2Temperature : public SimulationDevice
{
public:
    Kv2Temperature();
};

} // namespace zelmor::simulation
