#include "Tools/SimulationControl/PrometheusMetrics.h"

#include "Domain/Types/ChamberProtocol.h"
#include "Tools/Simulation/ChamberSimulation.h"
#include "Tools/Simulation/ChamberTypeDump.h"

#include <QMap>
#include <QString>

#include <array>

namespace zelmor::simulation::control {

namespace {

constexpr double nanosecondsPerSecond = 1e9;

struct ProtocolTotals
{
    quint64 online = 0;
    quint64 offline = 0;
    quint64 clients = 0;
    quint64 requests = 0;
    quint64 errors = 0;
    std::array<quint64, 4> faults{};
    qint64 latencySumNs = 0;
    std::array<quint64, ChamberStatistics::latencyBucketCount_> latencyBuckets{};
};

const std::array<std::pair<RequestFault::Kind, const char*>, 3> faultNames = {
    {{RequestFault::Drop, "drop"}, {RequestFault::Error, "error"}, {RequestFault::Stray, "stray"}}};

QByteArray seconds(qint64 nanoseconds)
{
    return QByteArray::number(double(nanoseconds) / nanosecondsPerSecond, 'g', 12);
}

void header(QByteArray& text, const char* name, const char* type, const char* help)
{
    text += QByteArray("# HELP ") + name + ' ' + help + "\n# TYPE " + name + ' ' + type + '\n';
}

} // namespace

QByteArray PrometheusMetrics::render(const QList<QSharedPointer<ChamberSimulation>>& chambers)
{
    QMap<QByteArray, ProtocolTotals> totals;
    for (const QSharedPointer<ChamberSimulation>& chamber : chambers) {
        ProtocolTotals& total =
            totals[getProtocolString(domain::types::ChamberProtocol(chamber->getProtocolId())).toLatin1()];
        const ChamberStatistics& statistics = chamber->getStatistics();
        ++(chamber->isOnline() ? total.online : total.offline);
        total.clients += quint64(chamber->getClientCount());
        total.requests += statistics.getRequests();
        total.errors += statistics.getErrors();
        for (const auto& [kind, name] : faultNames) {
            Q_UNUSED(name)
            total.faults[std::size_t(kind)] += statistics.getFaults(kind);
        }
        total.latencySumNs += statistics.getLatencySumNs();
        for (std::size_t bucket = 0; bucket < total.latencyBuckets.size(); ++bucket)
            total.latencyBuckets[bucket] += statistics.getLatencyBuckets()[bucket];
    }

    QByteArray text;
    header(text, "zelmor_chambers", "gauge", "Chambers of the fleet, by protocol and state.");
    for (auto total = totals.cbegin(); total != totals.cend(); ++total) {
        text += "zelmor_chambers{protocol=\"" + total.key() + "\",state=\"online\"} "
                + QByteArray::number(total->online) + '\n';
        text += "zelmor_chambers{protocol=\"" + total.key() + "\",state=\"offline\"} "
                + QByteArray::number(total->offline) + '\n';
    }
    header(text, "zelmor_chamber_clients", "gauge",
           "Clients connected to the chambers (a converter's count once per chamber).");
    for (auto total = totals.cbegin(); total != totals.cend(); ++total)
        text += "zelmor_chamber_clients{protocol=\"" + total.key() + "\"} " + QByteArray::number(total->clients) + '\n';
    header(text, "zelmor_chamber_requests_total", "counter", "Requests that reached a chamber.");
    for (auto total = totals.cbegin(); total != totals.cend(); ++total)
        text += "zelmor_chamber_requests_total{protocol=\"" + total.key() + "\"} " + QByteArray::number(total->requests)
                + '\n';
    header(text, "zelmor_chamber_errors_total", "counter",
           "Requests answered with the protocol's error (TLX \"Error\", a Modbus exception).");
    for (auto total = totals.cbegin(); total != totals.cend(); ++total)
        text +=
            "zelmor_chamber_errors_total{protocol=\"" + total.key() + "\"} " + QByteArray::number(total->errors) + '\n';
    header(text, "zelmor_chamber_faults_total", "counter", "Requests that a fault took: dropped, errors, stray bytes.");
    for (auto total = totals.cbegin(); total != totals.cend(); ++total) {
        for (const auto& [kind, name] : faultNames)
            text += "zelmor_chamber_faults_total{protocol=\"" + total.key() + "\",fault=\"" + name + "\"} "
                    + QByteArray::number(total->faults[std::size_t(kind)]) + '\n';
    }
    header(text, "zelmor_chamber_answer_latency_seconds", "histogram",
           "Time from a request's arrival to its answer being written.");
    for (auto total = totals.cbegin(); total != totals.cend(); ++total) {
        quint64 cumulative = 0;
        for (std::size_t bucket = 0; bucket < total->latencyBuckets.size(); ++bucket) {
            cumulative += total->latencyBuckets[bucket];
            const QByteArray bound = bucket < ChamberStatistics::latencyBoundsNs_.size()
                                         ? seconds(ChamberStatistics::latencyBoundsNs_[bucket])
                                         : QByteArray("+Inf");
            text += "zelmor_chamber_answer_latency_seconds_bucket{protocol=\"" + total.key() + "\",le=\"" + bound
                    + "\"} " + QByteArray::number(cumulative) + '\n';
        }
        text += "zelmor_chamber_answer_latency_seconds_sum{protocol=\"" + total.key() + "\"} "
                + seconds(total->latencySumNs) + '\n';
        text += "zelmor_chamber_answer_latency_seconds_count{protocol=\"" + total.key() + "\"} "
                + QByteArray::number(cumulative) + '\n';
    }
    return text;
}

} // namespace zelmor::simulation::control
