#pragma once

#include <sys/resource.h>

namespace zelmor::simulation {

// The process's limit of open files, which a large fleet reaches: a TLX or
// Modbus TCP chamber holds three descriptors (listener, responder, client).
class OpenFileLimit
{
public:
    // The highest limit asked for: room for some 300 000 chambers, far more
    // than one machine's addresses and memory hold.
    static constexpr rlim_t ceiling_ = rlim_t(1) << 20;

    // Raises the soft limit to the hard limit. A process that may (root, or
    // CAP_SYS_RESOURCE) first raises the hard limit to the kernel's ceiling,
    // /proc/sys/fs/nr_open, at most ceiling_. Uses only system calls, so that
    // it may run before anything else of the process.
    static void raise();

    // For a socket that could not be made, bound or accepted. When the reason
    // is that the process has no descriptor left, says so on errorOutput(),
    // once for the whole run; any other failure stays silent, as all socket
    // failures of the tool do. Only call from the thread of the event loop.
    static void reportIfExhausted();

    // Whether the process is at its limit: not one more descriptor now.
    static bool isExhausted();
};

} // namespace zelmor::simulation
