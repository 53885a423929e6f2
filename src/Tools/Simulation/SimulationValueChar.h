#pragma once

#include "Tools/Simulation/SimulationValueBase.h"

namespace zelmor::simulation {

extern template class SimulationValueBase<signed char>;

// A signed 8-bit value (QMetaType::SChar); steps keep the low 8 bits.
class SimulationValueChar : public SimulationValueBase<signed char>
{
public:
    SimulationValueChar(signed char current, signed char set, float timeConstant, int setAddress, int currentAddress);
};

} // namespace zelmor::simulation
