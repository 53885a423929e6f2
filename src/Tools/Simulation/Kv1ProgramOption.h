#pragma once

#include "Tools/Simulation/SimulationReader.h"

#include <QMap>
#include <QVariant>

namespace zelmor::simulation {

// Program and option memory of a KV1 controller: fixed typed cells that read
// back what was written, one constant register and a command register that
// sets the two run-time cells.
class Kv1ProgramOption : public SimulationReader
{
public:
    Kv1ProgramOption();

    QVariant read(int address) override;
    // True for an address with a cell; a write never creates one.
    bool write(int address, QVariant value) override;

private:
    quint16 lastCommand = 0;
    QMap<int, QVariant> cells;
};

} // namespace zelmor::simulation
