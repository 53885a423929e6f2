#pragma once

#include "Tools/Simulation/RequestFault.h"

#include <QtGlobal>

#include <array>

namespace zelmor::simulation {

// What one chamber has served since the start: requests, error answers,
// faults, and a histogram of the time from a request's arrival to its answer.
// Counting is all a chamber does with it; readers sum chambers up as they
// like. Only call from the thread of the event loop.
class ChamberStatistics
{
public:
    // Upper bounds (inclusive) of the latency buckets; a last bucket takes
    // what lies above them all.
    static constexpr std::array<qint64, 14> latencyBoundsNs_ = {
        100'000,     1'000'000,   5'000'000,   10'000'000,    20'000'000,    25'000'000,    50'000'000,
        100'000'000, 250'000'000, 500'000'000, 1'000'000'000, 2'500'000'000, 5'000'000'000, 10'000'000'000};
    static constexpr int latencyBucketCount_ = int(latencyBoundsNs_.size()) + 1;

    // A request reached the chamber (its slave address, for a tunnelled one).
    void countRequest();
    // An answer went out `latencyNs` after its request arrived; an error
    // answer is the protocol's own (TLX "Error", a Modbus exception).
    void countAnswer(qint64 latencyNs, bool isError);
    void countFault(RequestFault::Kind kind);

    quint64 getRequests() const { return requests; }
    quint64 getAnswers() const { return answers; }
    quint64 getErrors() const { return errors; }
    quint64 getFaults(RequestFault::Kind kind) const;
    qint64 getLatencySumNs() const { return latencySumNs; }
    // Answers per bucket, each counted once (not cumulative).
    const std::array<quint64, latencyBucketCount_>& getLatencyBuckets() const { return latencyBuckets; }

private:
    quint64 requests = 0;
    quint64 answers = 0;
    quint64 errors = 0;
    std::array<quint64, 4> faults{};
    qint64 latencySumNs = 0;
    std::array<quint64, latencyBucketCount_> latencyBuckets{};
};

} // namespace zelmor::simulation
