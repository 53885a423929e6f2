#include "support/FileLimits.h"

#include <QByteArray>
#include <QFile>

namespace zelmor::testsupport {

namespace {

constexpr int capSysResource = 24;

} // namespace

bool mayRaiseHardLimits()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return false;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("CapEff:"))
            return (line.mid(7).trimmed().toULongLong(nullptr, 16) >> capSysResource) & 1;
    }
    return false;
}

qulonglong simulatorFileLimitCeiling()
{
    QFile kernel(QStringLiteral("/proc/sys/fs/nr_open"));
    if (!kernel.open(QIODevice::ReadOnly))
        return 0;
    return qMin(kernel.readAll().trimmed().toULongLong(), 1048576ULL);
}

} // namespace zelmor::testsupport
