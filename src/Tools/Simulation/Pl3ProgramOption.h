#pragma once

#include "Tools/Simulation/SimulationReader.h"

#include <QMap>
#include <QVariant>

namespace zelmor::simulation {

// The place of the PL3 program memory in the image family. It owns no
// address: every read is invalid and every write is refused.
class Pl3ProgramOption : public SimulationReader
{
public:
    QVariant read(int address) override;
    bool write(int address, QVariant value) override;

private:
    // Kept for the PL3 layout still to be filled in; unused so far.
    quint16 lastCommand = 0;
    QMap<int, QVariant> cells;
    qint32 programRunTime = 0;
    qint32 remainingTime = 0;
};

} // namespace zelmor::simulation
