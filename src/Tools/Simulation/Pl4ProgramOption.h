#pragma once

#include "Tools/Simulation/SimulationReader.h"

#include <QMap>
#include <QVariant>

namespace zelmor::simulation {

// Program memory of a PL4 controller: a header and 30 section records from
// 44032 on, read back as written so that a program laid down by a client can
// be compared. Only the first header register has logic: it keeps two bits.
class Pl4ProgramOption : public SimulationReader
{
public:
    Pl4ProgramOption();

    QVariant read(int address) override;
    // True for an address with a cell; a write never creates one.
    bool write(int address, QVariant value) override;

private:
    QMap<int, QVariant> cells;
    quint16 lastCommand = 0;
};

} // namespace zelmor::simulation
