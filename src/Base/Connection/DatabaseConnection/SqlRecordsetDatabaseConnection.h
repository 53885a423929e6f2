#pragma once

#include "Base/Connection/DatabaseConnection/RecordingSignalsAndColumnNamesCache.h"
#include "Base/Connection/DatabaseConnection/SqlRecordsetDatabaseCache.h"
#include "Base/Connection/DatabaseConnection/SqlStoreChecks.h"
#include "Domain/Api/ApplicationTableProperties.h"
#include "Domain/Api/IInitializing.h"
#include "Domain/Api/IRecordsetDatabaseConnection.h"
#include "Domain/Types/DatabaseConnectionError.h"

#include <QLoggingCategory>
#include <QObject>

namespace zelmor::domain::api {
class IChamberDatabaseConnection;
class IConfigurationDatabaseConnection;
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::base::connection::databaseconnection {

class SqlQuery;
class SqlRecordsetConversion;

Q_DECLARE_LOGGING_CATEGORY(SQLRECORDSETDATABASECONNECTION)

// The measured values of recordings in table "record_set", one row per
// moment, with a comment per row in "record_set_comment". A row doesn't name
// its signals: it has 48 value columns "signal_1" to "signal_48", and each
// recording's mapping in "recording_has_signal_column" says which signal
// lies in which column. Times are kept in UTC and read in local time.
//
// The raw rows of the recordings read last are kept (at most 800 000 rows):
// reads by position or time span take them from there. New rows and comments
// drop their recording's entry; deleted rows don't (they stay visible until
// the entry goes). A full read (maxCount -1) converts the rows on a pool of
// at most 10 threads while the caller waits.
//
// Failures are logged in "zelmor.SqlRecordsetDatabaseConnection" and emitted
// through error(). Use on the thread of the connection, which is also the
// thread of the chamber store.
class SqlRecordsetDatabaseConnection : public QObject,
                                       public zelmor::domain::api::IRecordsetDatabaseConnection,
                                       public zelmor::domain::api::IInitializing
{
    Q_OBJECT

public:
    static constexpr int rowCacheCapacity_ = 800000;
    // At most this many values are bound to one statement.
    static constexpr int maxBindValues_ = 999;

    // The row cache holds rowCacheCapacity rows.
    explicit SqlRecordsetDatabaseConnection(QObject* parent = nullptr, int rowCacheCapacity = rowCacheCapacity_);
    ~SqlRecordsetDatabaseConnection() override;

    // None is owned. True when all three are set.
    virtual bool setDependencies(zelmor::domain::api::ISqlConnection* connection,
                                 zelmor::domain::api::IConfigurationDatabaseConnection* configuration,
                                 zelmor::domain::api::IChamberDatabaseConnection* chambers);
    // True when the database has "record_set_comment" and "record_set" (MISSING_TABLE if not).
    bool initialize() override;

    bool addRecordset(zelmor::domain::types::Recordset& recordset) override;
    bool addRecordsetComment(const zelmor::domain::types::RecordsetComment& comment) override;
    bool deleteRecordsetComment(const zelmor::domain::types::RecordsetId& id) override;
    bool deleteRecordset(const zelmor::domain::types::RecordsetId& id) override;
    bool deleteAllRecordsets(const zelmor::domain::types::RecordingId& recording) override;
    zelmor::domain::types::Recordset getRecordset(const zelmor::domain::types::RecordsetId& id) override;
    QList<zelmor::domain::types::Recordset> getLatestNRecordsets(const zelmor::domain::types::RecordingId& recording,
                                                                 int count, const QDateTime& before) override;
    QList<zelmor::domain::types::Recordset> getNRecordsets(const zelmor::domain::types::RecordingId& recording,
                                                           int count,
                                                           const zelmor::domain::types::RecordsetId& before) override;
    QList<zelmor::domain::types::Recordset> getRecordsets(const zelmor::domain::types::RecordingId& recording,
                                                          const zelmor::domain::types::TimeSpan& span,
                                                          long long maxCount) override;
    // A start other than 0 inside the rows never returns: it appends the same
    // row for ever.
    QList<zelmor::domain::types::Recordset> getRecordsets(const zelmor::domain::types::RecordingId& recording,
                                                          long long start, long long end, long long maxCount) override;
    zelmor::domain::types::RecordsetComment
    getRecordsetComment(const zelmor::domain::types::RecordsetId& id) const override;
    // More than 48 signals stop the program.
    bool matchSignalRecordsetColumn(const zelmor::domain::types::RecordingId& recording,
                                    const QList<zelmor::domain::types::SignalId>& signalIds) override;
    QMap<int, zelmor::domain::types::ChamberSignal>
    getRecordingSignals(const zelmor::domain::types::RecordingId& recording) const override;
    bool addRecordsToQuery(QList<zelmor::domain::types::Recordset>& recordsets) const override;
    long long getRecordsetLenght(const zelmor::domain::types::RecordingId& recording) override;

    virtual bool areDependenciesSet() const;

    // Runs a statement of prepareColumnNames' columns and converts its rows as
    // they come. total <= 0: every row that converts; otherwise only the rows
    // at the running index (recordsets so far) * total / (wanted - 1).
    virtual QList<zelmor::domain::types::Recordset>
    getRecordsets(const SqlQuery& query, int columnCount,
                  const QMap<int, zelmor::domain::types::ChamberSignal>& signalMap, long long total, long long wanted);
    // The recording's signals and their column names, kept for the 20
    // recordings asked last.
    virtual SignalsAndColumnNames
    getRecordingSignalsAndColumnNames(const zelmor::domain::types::RecordingId& recording) const;
    // The mapping of the recordset's recording; not kept.
    virtual SignalsAndColumnNames getRecordingSignalsAndColumnNames(const zelmor::domain::types::RecordsetId& id) const;
    // Runs a statement of signal ids and column numbers; a row of another
    // width ends the walk.
    virtual SignalsAndColumnNames getRecordingSignalsAndColumnNames(const SqlQuery& query, int columnCount) const;
    // The columns an insert of the recordset names, its value columns by the
    // ids of its values.
    virtual QStringList getRecordsetColumnNames(const zelmor::domain::types::Recordset& recordset) const;

    QList<zelmor::domain::types::Recordset>
    getRecordsetsWithImagePath(const zelmor::domain::types::RecordingId& recording,
                               const zelmor::domain::types::TimeSpan& span, long long maxCount) override;

    // One column of one row; the row cache is left as it is.
    bool setProperty(const zelmor::domain::types::RecordsetId& id, zelmor::domain::api::RecordsetProperty property,
                     const QVariant& value);
    using QObject::setProperty;

    // Converts one row of prepareColumnNames' columns, on this thread.
    zelmor::domain::types::Recordset convert(const QList<QVariant>& row, int columnCount,
                                             const QMap<int, zelmor::domain::types::ChamberSignal>& signalMap);

signals:
    void error(zelmor::domain::types::DatabaseConnectionError error) const override;

private:
    // The rows of a recording, from the row cache or read and kept.
    QList<QList<QVariant>> getCachedRows(const zelmor::domain::types::RecordingId& recording,
                                         const QStringList& columns);
    // The values of an insert, those of the signals in the signals' units.
    static QList<QVariant> createColumnValueLists(const zelmor::domain::types::Recordset& recordset,
                                                  const QMap<int, zelmor::domain::types::ChamberSignal>& signalMap);
    // Drops the row cache's entry of the recordset's recording.
    void forgetRecordingOf(const zelmor::domain::types::RecordsetId& id);

    zelmor::domain::api::ISqlConnection* connection = nullptr;
    zelmor::domain::api::IConfigurationDatabaseConnection* configuration = nullptr;
    zelmor::domain::api::IChamberDatabaseConnection* chambers = nullptr;
    SqlRecordsetDatabaseCache rowCache;
    // Filled by const reads, too.
    mutable RecordingSignalsAndColumnNamesCache signalsCache;
    SqlStoreChecks checks;
};

} // namespace zelmor::base::connection::databaseconnection
