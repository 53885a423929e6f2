#pragma once

#include "Tools/Simulation/FaultPolicy.h"

// One fault for every request, for tests of the chamber servers. Header
// only: it needs the simulation layer, which the helper library doesn't
// link; tests of that layer do.
namespace zelmor::testsupport {

class FixedFaultPolicy : public simulation::FaultPolicy
{
public:
    bool isActive() const override { return active; }
    simulation::RequestFault nextRequest() override
    {
        ++asked;
        return active ? fault : simulation::RequestFault();
    }

    bool active = true;
    simulation::RequestFault fault;
    int asked = 0;
};

} // namespace zelmor::testsupport
