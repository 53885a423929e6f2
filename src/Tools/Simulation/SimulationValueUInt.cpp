#include "Tools/Simulation/SimulationValueUInt.h"

namespace zelmor::simulation {

template class SimulationValueBase<unsigned int>;

SimulationValueUInt::SimulationValueUInt(unsigned int current, unsigned int set, float timeConstant, int setAddress,
                                         int currentAddress)
    : SimulationValueBase<unsigned int>(current, set, timeConstant, setAddress, currentAddress)
{
}

} // namespace zelmor::simulation
