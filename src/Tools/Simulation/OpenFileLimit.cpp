#include "Tools/Simulation/OpenFileLimit.h"

#include "Tools/Simulation/ConsoleOutput.h"

#include <QTextStream>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace zelmor::simulation {

namespace {

// The kernel's ceiling of any process's limit; 0 when it can't be read.
rlim_t kernelCeiling()
{
    const int file = ::open("/proc/sys/fs/nr_open", O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return 0;
    char text[32] = {};
    const ssize_t length = ::read(file, text, sizeof text - 1);
    ::close(file);
    return length > 0 ? rlim_t(std::strtoull(text, nullptr, 10)) : 0;
}

} // namespace

void OpenFileLimit::raise()
{
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return;
    const rlim_t ceiling = std::min(kernelCeiling(), ceiling_);
    if (limit.rlim_max < ceiling) {
        // Refused without the privilege; the hard limit then stays.
        const rlimit raised{ceiling, ceiling};
        if (::setrlimit(RLIMIT_NOFILE, &raised) == 0)
            return;
    }
    if (limit.rlim_cur == limit.rlim_max)
        return;
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

bool OpenFileLimit::isExhausted()
{
    const int probe = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (probe >= 0) {
        ::close(probe);
        return false;
    }
    return errno == EMFILE;
}

void OpenFileLimit::reportIfExhausted()
{
    static bool reported = false;
    if (reported || !isExhausted())
        return;
    reported = true;
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    QTextStream& error = errorOutput();
    error << "Out of file descriptors (limit " << qulonglong(limit.rlim_cur)
          << "): chambers can't listen or take their clients from here on. Raise the limit of open files "
             "(ulimit -n), or run as root with CAP_SYS_RESOURCE to let the tool raise it.\n";
    error.flush();
}

} // namespace zelmor::simulation
