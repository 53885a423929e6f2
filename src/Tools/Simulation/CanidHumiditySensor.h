#pragma once

#include "Tools/Simulation/SimulationReader.h"

#include <QVariant>

namespace zelmor::simulation {

// The humidity sensor state of a TLX chamber: a fixed float.
class CanidHumiditySensor : public SimulationReader
{
public:
    CanidHumiditySensor();

    QVariant read(int address) override;
    QVariant getType(int address) override;

private:
    int address;
    QVariant value;
};

} // namespace zelmor::simulation
