#pragma once

#include "Tools/Simulation/SimulationValueFloat.h"

namespace zelmor::simulation {

// Oxygen of a TLX chamber on its CAN-style addresses.
class CanidO2 : public SimulationValueFloat
{
public:
    CanidO2();
};

} // namespace zelmor::simulation
