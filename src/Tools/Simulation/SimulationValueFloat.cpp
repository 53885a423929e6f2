#include "Tools/Simulation/SimulationValueFloat.h"

namespace zelmor::simulation {

template class SimulationValueFloatBase<float>;

SimulationValueFloat::SimulationValueFloat(float current, float set, float timeConstant, int setAddress,
                                           int currentAddress)
    : SimulationValueFloatBase<float>(current, set, timeConstant, setAddress, currentAddress)
{
}

} // namespace zelmor::simulation
