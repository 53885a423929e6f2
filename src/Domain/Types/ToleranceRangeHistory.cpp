#include "Domain/Types/ToleranceRangeHistory.h"

namespace zelmor::domain::types {

QMap<SignalId, ToleranceRange> getToleranceRangesAt(const ToleranceRangeHistory& history, const QDateTime& time)
{
    // Compared in UTC: a local time would be converted again at every comparison.
    const QDateTime utc = time.toUTC();
    QMap<SignalId, ToleranceRange> ranges;
    for (auto signal = history.cbegin(); signal != history.cend(); ++signal) {
        ToleranceRange range;
        bool first = true;
        for (auto entry = signal.value().cbegin(); entry != signal.value().cend(); ++entry) {
            // Ascending: once past the time, no later entry is taken.
            if (!first && entry.key() > utc) {
                break;
            }
            range = entry.value();
            first = false;
        }
        ranges.insert(signal.key(), range);
    }
    return ranges;
}

} // namespace zelmor::domain::types
