#include "Tools/Simulation/FaultPolicy.h"

namespace zelmor::simulation {

FaultPolicy::~FaultPolicy() = default;

} // namespace zelmor::simulation
