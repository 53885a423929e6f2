#pragma once

#include "Tools/Simulation/SimulationValueFloat.h"

namespace zelmor::simulation {

// Carbon dioxide of a TLX chamber on its CAN-style addresses.
class CanidCo2 : public SimulationValueFloat
{
public:
    CanidCo2();
};

} // namespace zelmor::simulation
