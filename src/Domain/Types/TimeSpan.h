#pragma once

#include <QDateTime>
#include <QMetaType>

namespace zelmor::domain::types {

// A stretch of time for reading recordsets and log entries. An end that isn't
// valid (a null QDateTime) leaves that side open; both open is all time.
class TimeSpan
{
public:
    TimeSpan();
    TimeSpan(const QDateTime& start, const QDateTime& end);

    bool hasStart() const;
    bool hasEnd() const;
    // Both ends belong to the span.
    bool contains(const QDateTime& time) const;

    QDateTime start;
    QDateTime end;
};

bool operator==(const TimeSpan& left, const TimeSpan& right);
bool operator!=(const TimeSpan& left, const TimeSpan& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::TimeSpan)
