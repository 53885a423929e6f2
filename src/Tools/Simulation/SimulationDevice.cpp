#include "Tools/Simulation/SimulationDevice.h"

namespace zelmor {
namespace simulation {

void SimulationDevice::add(QSharedPointer<SimulationReader> const& child)
{
    children.append(child);
}

QList<QSharedPointer<SimulationReader>> SimulationDevice::getChildren() const
{
    return children;
}

QVariant SimulationDevice::read(int address)
{
    for (auto const& child : qAsConst(children)) {
        // A null child (a signal of a type nobody simulates) answers nothing.
        if (!child)
            continue;
        QVariant const result = child->read(address);
        if (result.isValid())
            return result;
    }
    return QVariant();
}

bool SimulationDevice::write(int address, QVariant value)
{
    for (auto const& child : qAsConst(children)) {
        if (child && child->write(address, value))
            return true;
    }
    return false;
}

QVariant SimulationDevice::getType(int address)
{
    for (auto const& child : qAsConst(children)) {
        if (!child)
            continue;
        QVariant const result = child->getType(address);
        if (result.isValid())
            return result;
    }
    return QVariant();
}

} // namespace simulation
} // namespace zelmor
