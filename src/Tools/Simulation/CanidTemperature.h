#pragma once

#include "Tools/Simulation/SimulationValueFloat.h"

namespace zelmor::simulation {

// Temperature of a TLX chamber on its CAN-style addresses.
class CanidTemperature : public SimulationValueFloat
{
public:
    CanidTemperature();
};

} // namespace zelmor::simulation
