#pragma once

#include "Domain/Types/SignalId.h"
#include "Domain/Types/ToleranceRange.h"

#include <QDateTime>
#include <QMap>
#include <QMetaType>

namespace zelmor::domain::types {

// The tolerance ranges a chamber's signals had over time: for each signal its
// ranges by the moment from which each held, as the chamber store keeps them.
// A plain value without any tie to a database: once made, it may be read from
// any number of threads at once.
class ToleranceRangeHistory
{
public:
    ToleranceRangeHistory();
    explicit ToleranceRangeHistory(const QMap<SignalId, QMap<QDateTime, ToleranceRange>>& ranges);

    // The range of each signal of the history at that moment: the latest one
    // not after it. A moment before a signal's first range gets that first
    // range; a signal without ranges gets an INVALID one.
    QMap<SignalId, ToleranceRange> getToleranceRanges(const QDateTime& time) const;
    // The same for one signal; an INVALID range for a signal not in the history.
    ToleranceRange getToleranceRange(SignalId signal, const QDateTime& time) const;

    QMap<SignalId, QMap<QDateTime, ToleranceRange>> ranges;
};

bool operator==(const ToleranceRangeHistory& left, const ToleranceRangeHistory& right);
bool operator!=(const ToleranceRangeHistory& left, const ToleranceRangeHistory& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::ToleranceRangeHistory)
