#include "Tools/Simulation/SimulationValueInt.h"

namespace zelmor::simulation {

template class SimulationValueBase<int>;

SimulationValueInt::SimulationValueInt(int current, int set, float timeConstant, int setAddress, int currentAddress)
    : SimulationValueBase<int>(current, set, timeConstant, setAddress, currentAddress)
{
}

} // namespace zelmor::simulation
