#pragma once

#include "Domain/Types/SignalId.h"
#include "Domain/Types/ToleranceRange.h"

#include <QDateTime>
#include <QMap>

namespace zelmor::domain::types {

// The tolerance ranges of one chamber over time: for each signal, each range
// by the moment from which it holds (in UTC), until the next one.
using ToleranceRangeHistory = QMap<SignalId, QMap<QDateTime, ToleranceRange>>;

// The range of each signal of the history at the given time: the newest one
// that holds from that time or before, or, when all of a signal's ranges are
// later, its first one, so that a value older than any range is judged by the
// first range. Every signal of the history has an entry.
//
// Pure: it reads nothing but its arguments, so it may run on any thread with
// a history resolved beforehand.
QMap<SignalId, ToleranceRange> getToleranceRangesAt(const ToleranceRangeHistory& history, const QDateTime& time);

} // namespace zelmor::domain::types
