#pragma once

#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ToleranceRangeHistory.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QMap>
#include <QStringList>
#include <QVariant>
#include <QVector>

namespace zelmor::domain::api {
class IChamberDatabaseConnection;
} // namespace zelmor::domain::api

namespace zelmor::domain::types {
class Recordset;
} // namespace zelmor::domain::types

namespace zelmor::base::connection::databaseconnection {

// Turns raw rows of the recordset store's select list (prepareColumnNames)
// into recordsets: one object per read, for one column count and one signal
// map. Each value comes with the tolerance range its signal had at the row's
// moment, from the tolerance range history of the row's recording.
//
// Threads: the chamber store, and through it the database connection, belong
// to the thread that made this object. convert() and resolve() ask the
// chamber store for the history of each recording the first time they meet
// it, so they run on that thread only. Once resolve() has seen all rows,
// convertResolved() needs nothing but this object's own data and may run on
// any number of threads at once, as long as nobody calls the other two.
class SqlRecordsetConversion
{
public:
    // Positions in a row of prepareColumnNames(): the recordset, its comment
    // (only with comment), then the signal columns.
    enum Column {
        ID,
        RECORDING_ID,
        RECORD_TIME,
        IS_RETRIEVED_FROM_CHAMBER,
        ALARM_TYPE,
        CAMERA_IMAGE_PATH,
        CHAMBER_MODE,
        COMMENT_CREATION_TIME,
        COMMENT_USER_ID,
        COMMENT_TEXT,
        COLUMNS_WITHOUT_COMMENT = COMMENT_CREATION_TIME,
        COLUMNS_WITH_COMMENT = COMMENT_TEXT + 1
    };

    // The select list of a read, in the positions above.
    static QStringList prepareColumnNames(const QStringList& signalColumns, bool withComment);

    // The chamber store isn't owned.
    SqlRecordsetConversion(zelmor::domain::api::IChamberDatabaseConnection* chambers, int columnCount,
                           const QMap<int, zelmor::domain::types::ChamberSignal>& signalMap);

    // A row that doesn't have columnCount columns, or has fewer than there are
    // signals, gives the empty recordset (id -1).
    zelmor::domain::types::Recordset convert(const QList<QVariant>& row);
    // Fetches the history of every recording among the rows not met before.
    void resolve(const QList<QList<QVariant>>& rows);
    // As convert(), for a row whose recording convert() or resolve() has met.
    zelmor::domain::types::Recordset convertResolved(const QList<QVariant>& row) const;

    // The row's moment as convert() gives it, without converting the rest.
    QDateTime getTime(const QList<QVariant>& row) const;

private:
    bool isConvertible(const QList<QVariant>& row) const;
    void resolve(const QList<QVariant>& row);

    // A recording's tolerance range history, read ahead for every moment:
    // what getToleranceRangesAt() gives, found by a search in place of a walk.
    class ResolvedRanges
    {
    public:
        ResolvedRanges() = default;
        explicit ResolvedRanges(const zelmor::domain::types::ToleranceRangeHistory& history);

        // The ranges of each signal of the history at that moment (UTC).
        const QMap<zelmor::domain::types::SignalId, zelmor::domain::types::ToleranceRange>&
        at(const QDateTime& utc) const;

    private:
        // The moments at which a range takes effect, ascending, in ms since the epoch.
        QVector<qint64> changes;
        // The ranges before the first change, then from each change on.
        QVector<QMap<zelmor::domain::types::SignalId, zelmor::domain::types::ToleranceRange>> between;
        QMap<zelmor::domain::types::SignalId, zelmor::domain::types::ToleranceRange> withoutTime;
    };

    zelmor::domain::api::IChamberDatabaseConnection* chambers;
    int columnCount;
    QMap<int, zelmor::domain::types::ChamberSignal> signalMap;
    // Of each signal of the map, in its order.
    QVector<bool> digital;
    // By recording id.
    QHash<int, ResolvedRanges> histories;
};

} // namespace zelmor::base::connection::databaseconnection
