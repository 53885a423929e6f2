#pragma once

#include "Tools/Simulation/SimulationValueFloat.h"

namespace zelmor::simulation {

// Humidity of a TLX chamber on its CAN-style addresses.
class CanidHumidity : public SimulationValueFloat
{
public:
    CanidHumidity();
};

} // namespace zelmor::simulation
