#include "Domain/Types/TimeSpan.h"

namespace zelmor::domain::types {

TimeSpan::TimeSpan() = default;

TimeSpan::TimeSpan(const QDateTime& start, const QDateTime& end)
    : start(start)
    , end(end)
{
}

bool TimeSpan::hasStart() const
{
    return start.isValid();
}

bool TimeSpan::hasEnd() const
{
    return end.isValid();
}

bool TimeSpan::contains(const QDateTime& time) const
{
    return (!hasStart() || time >= start) && (!hasEnd() || time <= end);
}

bool operator==(const TimeSpan& left, const TimeSpan& right)
{
    return left.start == right.start && left.end == right.end;
}

bool operator!=(const TimeSpan& left, const TimeSpan& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
