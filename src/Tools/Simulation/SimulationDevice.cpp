#include "Tools/Simulation/SimulationDevice.h"

namespace zelmor::simulation {

void SimulationDevice::add(const QSharedPointer<SimulationReader>& child)
{
    children.append(child);
}

QList<QSharedPointer<SimulationReader>> SimulationDevice::getChildren() const
{
    return children;
}

QVariant SimulationDevice::read(int address)
{
    for (const auto& child : qAsConst(children)) {
        // A null child (a signal of a type nobody simulates) answers nothing.
        if (!child)
            continue;
        const QVariant result = child->read(address);
        if (result.isValid())
            return result;
    }
    return QVariant();
}

bool SimulationDevice::write(int address, QVariant value)
{
    for (const auto& child : qAsConst(children)) {
        if (child && child->write(address, value))
            return true;
    }
    return false;
}

QVariant SimulationDevice::getType(int address)
{
    for (const auto& child : qAsConst(children)) {
        if (!child)
            continue;
        const QVariant result = child->getType(address);
        if (result.isValid())
            return result;
    }
    return QVariant();
}

} // namespace zelmor::simulation
