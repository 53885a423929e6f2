#include "Domain/Types/ToleranceRangeHistory.h"

namespace zelmor::domain::types {

namespace {

ToleranceRange rangeAt(const QMap<QDateTime, ToleranceRange>& ranges, const QDateTime& time)
{
    if (ranges.isEmpty()) {
        return ToleranceRange();
    }
    // The first range counts for everything before it, too.
    auto next = ranges.upperBound(time);
    return next == ranges.constBegin() ? next.value() : (--next).value();
}

} // namespace

ToleranceRangeHistory::ToleranceRangeHistory() = default;

ToleranceRangeHistory::ToleranceRangeHistory(const QMap<SignalId, QMap<QDateTime, ToleranceRange>>& ranges)
    : ranges(ranges)
{
}

QMap<SignalId, ToleranceRange> ToleranceRangeHistory::getToleranceRanges(const QDateTime& time) const
{
    QMap<SignalId, ToleranceRange> result;
    for (auto signal = ranges.constBegin(); signal != ranges.constEnd(); ++signal) {
        result.insert(signal.key(), rangeAt(signal.value(), time));
    }
    return result;
}

ToleranceRange ToleranceRangeHistory::getToleranceRange(SignalId signal, const QDateTime& time) const
{
    const auto found = ranges.constFind(signal);
    return found == ranges.constEnd() ? ToleranceRange() : rangeAt(found.value(), time);
}

bool operator==(const ToleranceRangeHistory& left, const ToleranceRangeHistory& right)
{
    return left.ranges == right.ranges;
}

bool operator!=(const ToleranceRangeHistory& left, const ToleranceRangeHistory& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
