#pragma once

#include "Tools/Simulation/SimulationDevice.h"

namespace zelmor::simulation {

// Humidity of a KV2 controller: set point, process value and a read-only mirror of the set point.
class Kv2Humidity : public SimulationDevice
{
public:
    Kv2Humidity();
};

} // namespace zelmor::simulation
