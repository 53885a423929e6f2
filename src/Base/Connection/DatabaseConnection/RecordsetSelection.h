#pragma once

#include <QList>
#include <QVariant>

namespace zelmor::domain::types {
class Recordset;
class TimeSpan;
} // namespace zelmor::domain::types

namespace zelmor::base::connection::databaseconnection {

class SqlRecordsetConversion;

// Which of a recording's raw rows a read converts, and how: the rules of the
// recordset store's reads by position and by time span. Rows are converted
// with the given conversion on the calling thread, which must be the
// connection's; a full read converts them on a thread pool while it waits.
class RecordsetSelection
{
public:
    using Rows = QList<QList<QVariant>>;

    // maxCount rows spread evenly over all rows (end <= 0) or over the first
    // end ones; maxCount -1 all of them, on the pool when end <= 0. A start
    // other than 0 inside the rows never returns. An end beyond the rows stops
    // the program.
    static QList<zelmor::domain::types::Recordset> byPosition(const Rows& rows, SqlRecordsetConversion& conversion,
                                                              qint64 start, qint64 end, qint64 maxCount);
    // The rows within the span (none for an open span on both sides), then
    // maxCount rows spread over all of them (-1: none).
    static QList<zelmor::domain::types::Recordset> bySpan(const Rows& rows, SqlRecordsetConversion& conversion,
                                                          const zelmor::domain::types::TimeSpan& span, qint64 maxCount);
    // All rows on a pool of at most 10 threads, in row order.
    static QList<zelmor::domain::types::Recordset> convertInParallel(const Rows& rows,
                                                                     SqlRecordsetConversion& conversion);

    // The row of the k-th of count picks spread evenly from the first row to
    // the row at last: k * last / (count - 1), integer division; a single pick
    // is the first row.
    static qint64 spreadIndex(qint64 k, qint64 last, qint64 count);

    static constexpr int maxConversionThreads_ = 10;

private:
    // The number of tasks the framework's pool keeps together in its queue.
    static constexpr int queuePage_ = 256;
};

} // namespace zelmor::base::connection::databaseconnection
