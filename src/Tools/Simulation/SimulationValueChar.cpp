#include "Tools/Simulation/SimulationValueChar.h"

namespace zelmor::simulation {

template class SimulationValueBase<signed char>;

SimulationValueChar::SimulationValueChar(signed char current, signed char set, float timeConstant, int setAddress,
                                         int currentAddress)
    : SimulationValueBase<signed char>(current, set, timeConstant, setAddress, currentAddress)
{
}

} // namespace zelmor::simulation
