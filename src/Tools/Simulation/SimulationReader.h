#pragma once

#include <QVariant>

namespace zelmor::simulation {

// A source of values addressed by a plain controller address.
//
// `read` answers a valid QVariant for an address the reader owns and an
// invalid one otherwise, so a composite can ask the next child. A read may
// advance simulated time: callers must not read speculatively.
// All calls run on the one thread of the event loop.
class SimulationReader
{
public:
    virtual ~SimulationReader();

    virtual QVariant read(int address) = 0;
    // True when the reader took the value; false for an address it doesn't own.
    virtual bool write(int address, QVariant value);
    // A sample value of the address's type, or an invalid QVariant.
    virtual QVariant getType(int address);
};

} // namespace zelmor::simulation
