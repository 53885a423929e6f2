#include "Tools/Simulation/SimulationValueUChar.h"

namespace zelmor::simulation {

template class SimulationValueBase<unsigned char>;

SimulationValueUChar::SimulationValueUChar(unsigned char current, unsigned char set, float timeConstant, int setAddress,
                                           int currentAddress)
    : SimulationValueBase<unsigned char>(current, set, timeConstant, setAddress, currentAddress)
{
}

} // namespace zelmor::simulation
