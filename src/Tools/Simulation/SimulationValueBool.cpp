#include "Tools/Simulation/SimulationValueBool.h"

namespace zelmor::simulation {

template class SimulationValueBase<bool>;

SimulationValueBool::SimulationValueBool(bool current, bool set, float timeConstant, int setAddress, int currentAddress)
    : SimulationValueBase<bool>(current, set, timeConstant, setAddress, currentAddress)
{
}

} // namespace zelmor::simulation
