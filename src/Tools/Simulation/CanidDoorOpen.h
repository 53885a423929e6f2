#pragma once

#include "Tools/Simulation/SimulationReader.h"

#include <QVariant>

namespace zelmor::simulation {

// The door state of a TLX chamber: a fixed word that no write changes.
class CanidDoorOpen : public SimulationReader
{
public:
    CanidDoorOpen();

    QVariant read(int address) override;
    QVariant getType(int address) override;

private:
    int address;
    QVariant value;
};

} // namespace zelmor::simulation
