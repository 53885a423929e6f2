#pragma once

#include "Tools/Simulation/SimulationValueBase.h"

namespace zelmor::simulation {

extern template class SimulationValueBase<unsigned char>;

// An unsigned 8-bit value; steps keep the low 8 bits.
class SimulationValueUChar : public SimulationValueBase<unsigned char>
{
public:
    SimulationValueUChar(unsigned char current, unsigned char set, float timeConstant, int setAddress,
                         int currentAddress);
};

} // namespace zelmor::simulation
