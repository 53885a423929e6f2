#pragma once

#include "Tools/Simulation/SimulationValueFloatBase.h"

namespace zelmor::simulation {

extern template class SimulationValueFloatBase<float>;

// A single-precision value, the kind of every analogue process value and set
// point.
class SimulationValueFloat : public SimulationValueFloatBase<float>
{
public:
    SimulationValueFloat(float current, float set, float timeConstant, int setAddress, int currentAddress);
};

} // namespace zelmor::simulation
