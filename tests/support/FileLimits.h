#pragma once

#include <QtGlobal>

// What this machine lets a process do with its limit of open files.
namespace zelmor::testsupport {

// Whether this process may raise hard limits: CAP_SYS_RESOURCE in its
// effective set, which a container's root may lack.
bool mayRaiseHardLimits();

// The highest hard limit the simulator asks for when it may: the kernel's
// ceiling (/proc/sys/fs/nr_open), at most 1048576; 0 when unreadable.
qulonglong simulatorFileLimitCeiling();

} // namespace zelmor::testsupport
