#pragma once

#include "Tools/Simulation/SimulationReader.h"

#include <QMap>
#include <QMetaType>
#include <QSharedPointer>

namespace zelmor::domain::types {
class ChamberTypeData;
} // namespace zelmor::domain::types

namespace zelmor::simulation {

// A whole chamber as noise: every read of a known address is a fresh number
// from the process's unseeded rand(), so every run gives the same sequence.
// Unknown addresses answer invalid; writes succeed and change nothing.
class RandomSimulationReader : public SimulationReader
{
public:
    // Knows the same addresses as RampSimulationReader.
    explicit RandomSimulationReader(QSharedPointer<domain::types::ChamberTypeData> chamberType);

    QVariant read(int address) override;
    // Always true; the value is dropped.
    bool write(int address, QVariant value) override;

private:
    QMap<int, QMetaType::Type> types;
};

} // namespace zelmor::simulation
