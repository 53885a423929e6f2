#include "Tools/Simulation/Kv2Temperature.h"

#include "Tools/Simulation/SimulationValueDuplicator.h"
#include "Tools/Simulation/SimulationValueFloat.h"

namespace zelmor::simulation {

namespace {

const int setAddress_ = 4428;
const int currentAddress_ = 4100;
const int mirrorAddress_ = 4274;

} // namespace

Kv2Temperature::Kv2Temperature()
{
    const auto value =
        QSharedPointer<SimulationValueFloat>::create(266.0f, 256.0f, 600.0f, setAddress_, currentAddress_);
    add(value);
    add(QSharedPointer<SimulationValueDuplicator>::create(value, mirrorAddress_, setAddress_));
}

} // namespace zelmor::simulation
