#include "Tools/Simulation/SimulationValueShort.h"

namespace zelmor::simulation {

template class SimulationValueBase<short>;

SimulationValueShort::SimulationValueShort(short current, short set, float timeConstant, int setAddress,
                                           int currentAddress)
    : SimulationValueBase<short>(current, set, timeConstant, setAddress, currentAddress)
{
}

} // namespace zelmor::simulation
