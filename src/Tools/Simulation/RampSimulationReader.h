#pragma once

#include "Tools/Simulation/SimulationReader.h"

#include <QMap>
#include <QMetaType>
#include <QSharedPointer>

namespace zelmor::domain::types {
class ChamberTypeData;
} // namespace zelmor::domain::types

namespace zelmor::simulation {

// A whole chamber as a saw-tooth: every read of an address steps its value
// once, int and float from 20 up to 101 and back to 20, bool toggling. No
// time, no set points, no units; writes succeed and change nothing. Each
// read is echoed on standard output.
class RampSimulationReader : public SimulationReader
{
public:
    explicit RampSimulationReader(QSharedPointer<domain::types::ChamberTypeData> chamberType);

    QVariant read(int address) override;
    // Always true; the value is dropped.
    bool write(int address, QVariant value) override;

    // The type of every read address and writeManual address of the
    // signals, in key order, a later signal overwriting an earlier one on a
    // number (and writeManual its own read address).
    static QMap<int, QMetaType::Type> getAddressTypes(const domain::types::ChamberTypeData& chamberType);

private:
    QMap<int, QVariant> values;
    QMap<int, QMetaType::Type> types;
};

} // namespace zelmor::simulation
