#include "Base/Connection/DatabaseConnection/RecordsetSelection.h"

#include "Base/Connection/DatabaseConnection/RecordsetConverter.h"
#include "Base/Connection/DatabaseConnection/SqlRecordsetConversion.h"
#include "Domain/Types/Recordset.h"
#include "Domain/Types/TimeSpan.h"

#include <QThread>
#include <QThreadPool>

namespace zelmor::base::connection::databaseconnection {

using zelmor::domain::types::Recordset;
using zelmor::domain::types::TimeSpan;

namespace {

const QList<QVariant>& rowAt(const RecordsetSelection::Rows& rows, qint64 index)
{
    Q_ASSERT(index >= 0 && index < rows.size());
    return rows.at(int(index));
}

// maxCount rows spread over the first last rows, or all of them when there
// are fewer; none for a maxCount below 1.
void appendSpread(QList<Recordset>& result, const RecordsetSelection::Rows& rows, SqlRecordsetConversion& conversion,
                  qint64 last, qint64 maxCount)
{
    if (last < maxCount) {
        for (qint64 index = 0; index < last; ++index) {
            result.append(conversion.convert(rowAt(rows, index)));
        }
        return;
    }
    if (maxCount < 1) {
        return;
    }
    for (qint64 k = 0; k < maxCount; ++k) {
        result.append(conversion.convert(rowAt(rows, RecordsetSelection::spreadIndex(k, last - 1, maxCount))));
    }
}

} // namespace

qint64 RecordsetSelection::spreadIndex(qint64 k, qint64 last, qint64 count)
{
    return count > 1 ? k * last / (count - 1) : 0;
}

QList<Recordset> RecordsetSelection::byPosition(const Rows& rows, SqlRecordsetConversion& conversion, qint64 start,
                                                qint64 end, qint64 maxCount)
{
    const qint64 count = rows.size();
    QList<Recordset> result;
    if (start != 0) {
        // start never advances, deliberately: a start inside the rows appends
        // the same row until memory runs out. Callers pass 0.
        while (end >= start && start < count) {
            result.append(conversion.convert(rowAt(rows, start)));
        }
        return result;
    }
    if (count > 0) {
        // Fetches the tolerance ranges before the bulk work; the result isn't needed.
        conversion.convert(rows.first());
    }
    if (maxCount == -1) {
        if (end <= 0) {
            return convertInParallel(rows, conversion);
        }
        // end isn't looked at.
        for (const QList<QVariant>& row : rows) {
            result.append(conversion.convert(row));
        }
        return result;
    }
    appendSpread(result, rows, conversion, end > 0 ? end : count, maxCount);
    return result;
}

QList<Recordset> RecordsetSelection::bySpan(const Rows& rows, SqlRecordsetConversion& conversion, const TimeSpan& span,
                                            qint64 maxCount)
{
    QList<Recordset> result;
    if ((span.hasStart() || span.hasEnd()) && !rows.isEmpty()) {
        const QDateTime first = conversion.convert(rows.first()).time;
        const QDateTime last = conversion.convert(rows.last()).time;
        // An open side holds every row.
        if ((!span.hasEnd() || !(span.end < last)) && (!span.hasStart() || !(first < span.start))) {
            for (const QList<QVariant>& row : rows) {
                result.append(conversion.convert(row));
            }
        } else {
            for (const QList<QVariant>& row : rows) {
                if (span.contains(conversion.getTime(row))) {
                    result.append(conversion.convert(row));
                }
            }
        }
    }
    // Behind the rows of the span: a spread over all rows, span or not.
    if (maxCount != -1) {
        appendSpread(result, rows, conversion, rows.size(), maxCount);
    }
    return result;
}

QList<Recordset> RecordsetSelection::convertInParallel(const Rows& rows, SqlRecordsetConversion& conversion)
{
    // Everything the workers need is fetched here, on the connection's thread.
    conversion.resolve(rows);

    QList<RecordsetConverter*> converters;
    converters.reserve(rows.size());
    {
        QThreadPool pool;
        // At most 10, and no more than the machine runs at once: more would only take turns.
        pool.setMaxThreadCount(qMin(maxConversionThreads_, QThread::idealThreadCount()));
        // Qt 5's pool files a task by walking its queue from the front to a
        // page (256 tasks) of the task's priority that has room: with one
        // priority for all, each start walks past every page queued before,
        // and the queue of a full read holds nearly all its rows. A priority
        // that rises with each page's worth of rows ends the walk at the front.
        // The order in which the rows are converted doesn't matter.
        int index = 0;
        for (const QList<QVariant>& row : rows) {
            RecordsetConverter* converter = new RecordsetConverter(row, conversion);
            converters.append(converter);
            pool.start(converter, index++ / queuePage_);
        }
        // The caller stays blocked; each wait ends early when the pool is done.
        while (pool.activeThreadCount() >= 1) {
            pool.waitForDone(100);
        }
        pool.waitForDone(-1);
    }

    QList<Recordset> result;
    result.reserve(converters.size());
    for (RecordsetConverter* converter : converters) {
        result.append((*converter)());
        delete converter;
    }
    return result;
}

} // namespace zelmor::base::connection::databaseconnection
