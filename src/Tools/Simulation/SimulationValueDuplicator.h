#pragma once

#include "Tools/Simulation/SimulationReader.h"

#include <QSharedPointer>

namespace zelmor::simulation {

// Makes one more address readable: the alias address reads the target at the
// target address. It takes no writes.
class SimulationValueDuplicator : public SimulationReader
{
public:
    SimulationValueDuplicator(QSharedPointer<SimulationReader> target, int aliasAddress, int targetAddress);

    QVariant read(int address) override;
    QVariant getType(int address) override;

private:
    QSharedPointer<SimulationReader> target;
    int aliasAddress;
    int targetAddress;
};

} // namespace zelmor::simulation
