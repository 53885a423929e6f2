#include "Tools/Simulation/Kv2Humidity.h"

#include "Tools/Simulation/SimulationValueDuplicator.h"
#include "Tools/Simulation/SimulationValueFloat.h"

namespace zelmor::simulation {

namespace {

const int setAddress_ = 4430;
const int currentAddress_ = 4106;
const int mirrorAddress_ = 4276;

} // namespace

Kv2Humidity::Kv2Humidity()
{
    const auto value = QSharedPointer<SimulationValueFloat>::create(50.0f, 60.0f, 600.0f, setAddress_, currentAddress_);
    add(value);
    add(QSharedPointer<SimulationValueDuplicator>::create(value, mirrorAddress_, setAddress_));
}

} // namespace zelmor::simulation
