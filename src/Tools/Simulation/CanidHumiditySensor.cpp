#include "Tools/Simulation/CanidHumiditySensor.h"

namespace zelmor::simulation {

CanidHumiditySensor::CanidHumiditySensor()
    : address(0x100C1066)
    , value(QVariant(50.0f))
{
}

QVariant CanidHumiditySensor::read(int requestedAddress)
{
    if (requestedAddress != address)
        return QVariant();
    return value;
}

QVariant CanidHumiditySensor::getType(int requestedAddress)
{
    return read(requestedAddress);
}

} // namespace zelmor::simulation
