#include "Tools/Simulation/SimulationValueInt.h"

namespace zelmor {
namespace simulation {

template class SimulationValueBase<int>;

SimulationValueInt::SimulationValueInt(int current, int set, float timeConstant, int setAddress, int currentAddress)
    : SimulationValueBase<int>(current, set, timeConstant, setAddress, currentAddress)
{
}

} // namespace simulation
} // namespace zelmor
