#pragma once

#include "Tools/Simulation/SimulationValueBase.h"

namespace zelmor::simulation {

extern template class SimulationValueBase<unsigned int>;

// An unsigned 32-bit value; a falling value climbs through the top of the
// range until ten time constants land it.
class SimulationValueUInt : public SimulationValueBase<unsigned int>
{
public:
    SimulationValueUInt(unsigned int current, unsigned int set, float timeConstant, int setAddress, int currentAddress);
};

} // namespace zelmor::simulation
