#include "Tools/Simulation/CanidFanSpeed.h"

namespace zelmor::simulation {

CanidFanSpeed::CanidFanSpeed()
    : address(0x112000E1)
    , value(QVariant(66.6f))
{
}

QVariant CanidFanSpeed::read(int requestedAddress)
{
    if (requestedAddress != address)
        return QVariant();
    return value;
}

bool CanidFanSpeed::write(int requestedAddress, QVariant written)
{
    if (requestedAddress != address)
        return false;
    value = QVariant(written.toFloat());
    return true;
}

QVariant CanidFanSpeed::getType(int requestedAddress)
{
    return read(requestedAddress);
}

} // namespace zelmor::simulation
