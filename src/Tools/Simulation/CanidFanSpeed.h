#pragma once

#include "Tools/Simulation/SimulationReader.h"

#include <QVariant>

namespace zelmor::simulation {

// The fan speed of a TLX chamber: one float that a write replaces.
class CanidFanSpeed : public SimulationReader
{
public:
    CanidFanSpeed();

    QVariant read(int address) override;
    bool write(int address, QVariant value) override;
    QVariant getType(int address) override;

private:
    int address;
    QVariant value;
};

} // namespace zelmor::simulation
