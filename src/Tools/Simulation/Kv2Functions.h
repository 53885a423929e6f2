#pragma once

#include "Tools/Simulation/SimulationDevice.h"

namespace zelmor::simulation {

// The digital functions of a KV2 controller: an empty composite that the
// functions of a hand-built chamber are added to.
class Kv2Functions : public SimulationDevice
{};

} // namespace zelmor::simulation
