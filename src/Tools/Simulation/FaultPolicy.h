#pragma once

#include "Tools/Simulation/RequestFault.h"

namespace zelmor::simulation {

// Decides, request by request, whether a chamber misbehaves. A chamber
// without one answers as it always does. Only call from the thread of the
// event loop.
class FaultPolicy
{
public:
    virtual ~FaultPolicy();

    // False while every request would get RequestFault::None: then a chamber
    // may serve the way it does without a policy.
    virtual bool isActive() const = 0;
    // The fault for the request that just arrived; asked exactly once for
    // each request.
    virtual RequestFault nextRequest() = 0;
};

} // namespace zelmor::simulation
