#pragma once

#include "Tools/Simulation/SimulationValueBase.h"

namespace zelmor::simulation {

extern template class SimulationValueBase<int>;

// A signed 32-bit value; a step outside the int range gives INT_MIN.
class SimulationValueInt : public SimulationValueBase<int>
{
public:
    SimulationValueInt(int current, int set, float timeConstant, int setAddress, int currentAddress);
};

} // namespace zelmor::simulation
