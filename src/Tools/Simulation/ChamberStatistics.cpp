#include "Tools/Simulation/ChamberStatistics.h"

#include <algorithm>

namespace zelmor::simulation {

void ChamberStatistics::countRequest()
{
    ++requests;
}

void ChamberStatistics::countAnswer(qint64 latencyNs, bool isError)
{
    ++answers;
    if (isError)
        ++errors;
    latencyNs = qMax<qint64>(0, latencyNs);
    latencySumNs += latencyNs;
    const auto bucket = std::lower_bound(latencyBoundsNs_.cbegin(), latencyBoundsNs_.cend(), latencyNs);
    ++latencyBuckets[std::size_t(bucket - latencyBoundsNs_.cbegin())];
}

void ChamberStatistics::countFault(RequestFault::Kind kind)
{
    ++faults[std::size_t(kind)];
}

quint64 ChamberStatistics::getFaults(RequestFault::Kind kind) const
{
    return faults[std::size_t(kind)];
}

} // namespace zelmor::simulation
