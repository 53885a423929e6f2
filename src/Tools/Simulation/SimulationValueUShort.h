#pragma once

#include "Tools/Simulation/SimulationValueBase.h"

namespace zelmor::simulation {

extern template class SimulationValueBase<unsigned short>;

// An unsigned 16-bit value; steps keep the low 16 bits.
class SimulationValueUShort : public SimulationValueBase<unsigned short>
{
public:
    SimulationValueUShort(unsigned short current, unsigned short set, float timeConstant, int setAddress,
                          int currentAddress);
};

} // namespace zelmor::simulation
