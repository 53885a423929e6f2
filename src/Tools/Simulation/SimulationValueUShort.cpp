#include "Tools/Simulation/SimulationValueUShort.h"

namespace zelmor::simulation {

template class SimulationValueBase<unsigned short>;

SimulationValueUShort::SimulationValueUShort(unsigned short current, unsigned short set, float timeConstant,
                                             int setAddress, int currentAddress)
    : SimulationValueBase<unsigned short>(current, set, timeConstant, setAddress, currentAddress)
{
}

} // namespace zelmor::simulation
