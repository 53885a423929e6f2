#pragma once

#include "Tools/Simulation/SimulationReader.h"

#include <QList>
#include <QSharedPointer>

namespace zelmor::simulation {

// An ordered composite of readers: the first child that answers wins.
//
// Children behind the one that answered are not asked, so they don't advance
// their simulated time. A value is written to one child at most; of two
// children that claim one address, the one added first wins.
class SimulationDevice : public SimulationReader
{
public:
    // Appends at the end; there is no removal.
    void add(const QSharedPointer<SimulationReader>& child);
    // The children in the order they are asked.
    QList<QSharedPointer<SimulationReader>> getChildren() const;

    QVariant read(int address) override;
    bool write(int address, QVariant value) override;
    QVariant getType(int address) override;

private:
    QList<QSharedPointer<SimulationReader>> children;
};

} // namespace zelmor::simulation
