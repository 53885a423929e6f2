#pragma once

#include "Domain/Types/Unit.h"
#include "Tools/Simulation/SimulationDevice.h"

#include <QList>
#include <QSharedPointer>
#include <QString>

namespace zelmor::domain::types {
class ChamberSignal;
class ControllerAddress;
} // namespace zelmor::domain::types

namespace zelmor::simulation {

// One signal of a chamber type as a small device: one simulated value on the
// signal's read address and first write address, then aliases for the other
// write addresses and for the read address of its set point signal.
//
// Children in order: the value; a duplicator and a writer for each further
// write address; a duplicator for the set point's read address. The aliases
// answer with the set value, so a process value and its set point are one
// simulated value.
class SimulationSignal : public SimulationDevice
{
public:
    explicit SimulationSignal(const domain::types::ChamberSignal& signal);

    // The own name first (when the signal has a read address), then the name
    // of its set point signal.
    QList<QString> getSignalNames() const;
    // The description of the read address; empty without one.
    QString getAddressDescription() const;

    virtual float getSetDefault(domain::types::Unit::UnitId unit) const;
    virtual float getCurrentDefault(domain::types::Unit::UnitId unit) const;
    virtual float getTimeConstantDefault(domain::types::Unit::UnitId unit) const;

    // Appends the address number (base 16) unless the pointer is null, the
    // text doesn't convert or the number is in the list already.
    static void checkAddress(QSharedPointer<domain::types::ControllerAddress> address, QList<int>& addresses);

private:
    QString addressDescription;
    QList<QString> signalNames;
};

} // namespace zelmor::simulation
