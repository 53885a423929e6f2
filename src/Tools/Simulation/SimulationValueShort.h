#pragma once

#include "Tools/Simulation/SimulationValueBase.h"

namespace zelmor::simulation {

extern template class SimulationValueBase<short>;

// A signed 16-bit value; steps keep the low 16 bits.
class SimulationValueShort : public SimulationValueBase<short>
{
public:
    SimulationValueShort(short current, short set, float timeConstant, int setAddress, int currentAddress);
};

} // namespace zelmor::simulation
