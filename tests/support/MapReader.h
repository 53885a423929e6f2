#pragma once

#include "Tools/Simulation/SimulationReader.h"

#include <QList>
#include <QMap>
#include <QPair>
#include <QSet>

#include <functional>

// A reader with fixed values by address, each its own type sample, for tests
// of the chamber servers.
// Header only: it needs the simulation layer, which the helper library
// doesn't link; tests of that layer do.
namespace zelmor::testsupport {

class MapReader : public simulation::SimulationReader
{
public:
    QVariant read(int address) override
    {
        if (onRead)
            onRead();
        return values.value(address);
    }
    QVariant getType(int address) override { return values.value(address); }

    // Every write to a known address is noted; a read-only one is refused.
    bool write(int address, QVariant value) override
    {
        if (!values.contains(address) || readOnly.contains(address))
            return false;
        writes << qMakePair(address, value);
        values[address] = value;
        return true;
    }

    QMap<int, QVariant> values;
    QSet<int> readOnly;
    QList<QPair<int, QVariant>> writes;
    // Called on every read, before the answer.
    std::function<void()> onRead;
};

} // namespace zelmor::testsupport
