#pragma once

#include "Tools/Simulation/SimulationValueBase.h"

namespace zelmor::simulation {

extern template class SimulationValueBase<bool>;

// A digital value: it turns on at the first step with any fraction and off
// only when ten time constants have passed, a switch with asymmetric delay.
class SimulationValueBool : public SimulationValueBase<bool>
{
public:
    SimulationValueBool(bool current, bool set, float timeConstant, int setAddress, int currentAddress);
};

} // namespace zelmor::simulation
