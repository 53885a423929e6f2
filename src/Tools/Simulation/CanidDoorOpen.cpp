#include "Tools/Simulation/CanidDoorOpen.h"

namespace zelmor::simulation {

CanidDoorOpen::CanidDoorOpen()
    : address(0x10010100)
    , value(QVariant(4369))
{
}

QVariant CanidDoorOpen::read(int requestedAddress)
{
    if (requestedAddress != address)
        return QVariant();
    return value;
}

QVariant CanidDoorOpen::getType(int requestedAddress)
{
    return read(requestedAddress);
}

} // namespace zelmor::simulation
