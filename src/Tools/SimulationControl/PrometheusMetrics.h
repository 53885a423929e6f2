#pragma once

#include <QByteArray>
#include <QList>
#include <QSharedPointer>

namespace zelmor::simulation {
class ChamberSimulation;
} // namespace zelmor::simulation

namespace zelmor::simulation::control {

// The fleet's counters in the Prometheus text format (version 0.0.4), summed
// by protocol: chambers online and offline, clients, requests, error
// answers, faults by kind, and the histogram of the answer latency.
class PrometheusMetrics
{
public:
    static QByteArray render(const QList<QSharedPointer<ChamberSimulation>>& chambers);
};

} // namespace zelmor::simulation::control
