#pragma once

#include "Tools/Simulation/SimulationReader.h"

#include <QSharedPointer>

namespace zelmor::simulation {

// Makes one more address writable: a write of the alias address is a write
// of the target at the target address. Reads are never answered; getType of
// the alias address reads the target, so it is valid even for a float value.
class SimulationValueWriter : public SimulationReader
{
public:
    SimulationValueWriter(QSharedPointer<SimulationReader> target, int aliasAddress, int targetAddress);

    QVariant read(int address) override;
    bool write(int address, QVariant value) override;
    QVariant getType(int address) override;

private:
    QSharedPointer<SimulationReader> target;
    int aliasAddress;
    int targetAddress;
};

} // namespace zelmor::simulation
