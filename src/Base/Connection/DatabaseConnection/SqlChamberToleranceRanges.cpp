#include "Base/Connection/DatabaseConnection/SqlChamberToleranceRanges.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Base/Connection/DatabaseConnection/SqlStoreChecks.h"
#include "Base/Connection/DatabaseConnection/sqlhelper.h"
#include "Base/Connection/DatabaseConnection/sqlvalue.h"
#include "Domain/Api/IConfigurationDatabaseConnection.h"
#include "Domain/Api/ISqlConnection.h"
#include "Domain/Types/ChamberId.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/RecordingId.h"
#include "Domain/Types/ToleranceRange.h"

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;
using zelmor::domain::api::IConfigurationDatabaseConnection;
using zelmor::domain::api::ISqlConnection;
using zelmor::domain::api::RecordingProperty;
using zelmor::domain::api::ToleranceRangeProperty;

namespace {

using DC = DatabaseSchema;

// Positions in a row of prepareRangesAtQuery.
enum RangeAtColumn { AT_RANGE_TYPE, AT_SIGNAL_ID, AT_RANGE_MIN, AT_RANGE_MAX, AT_EFFECTIVE_FROM, AT_COLUMNS };

// Positions in a row of a chamber's history.
enum HistoryColumn {
    HISTORY_EFFECTIVE_FROM,
    HISTORY_RANGE_TYPE,
    HISTORY_SIGNAL_ID,
    HISTORY_RANGE_MIN,
    HISTORY_RANGE_MAX,
    HISTORY_COLUMNS
};

const ToleranceRangeProperty historyLayout[HISTORY_COLUMNS] = {
    ToleranceRangeProperty::EFFECTIVE_FROM, ToleranceRangeProperty::RANGE_TYPE, ToleranceRangeProperty::SIGNAL_ID,
    ToleranceRangeProperty::RANGE_MIN,      ToleranceRangeProperty::RANGE_MAX,
};

QString rangeColumn(ToleranceRangeProperty property)
{
    return DC::lookupToleranceRangeColumnName(property);
}

// A limit as read: no value for NULL.
UnitValue readLimit(const SqlRow& row, int position, Unit::UnitId unit)
{
    return UnitValue(unit, row.isNull(position) ? QVariant() : QVariant(row.toFloat(position, 0.0f)));
}

ToleranceRange readRange(const SqlRow& row, int type, int lower, int upper, Unit::UnitId unit)
{
    return ToleranceRange(readLimit(row, lower, unit), readLimit(row, upper, unit),
                          ToleranceRange::Type(row.toInt(type, ToleranceRange::INVALID)));
}

// A limit as written, in the signal's unit: a relative limit is a distance,
// which a change of unit scales but doesn't shift.
QVariant writeLimit(const UnitValue& limit, ToleranceRange::Type type, Unit::UnitId unit)
{
    const QVariant value = type == ToleranceRange::RELATIVE ? limit.getRelativeValue(unit) : limit.getValue(unit);
    return value.isValid() ? QVariant(value.toDouble()) : sqlvalue::null<double>();
}

} // namespace

SqlChamberToleranceRanges::SqlChamberToleranceRanges(const SqlStoreChecks& checks, SqlToleranceRangeCache& cache)
    : checks(checks)
    , cache(cache)
{
}

void SqlChamberToleranceRanges::setDependencies(ISqlConnection* connection,
                                                IConfigurationDatabaseConnection* configuration)
{
    this->connection = connection;
    this->configuration = configuration;
}

QMap<SignalId, ToleranceRange>
SqlChamberToleranceRanges::getToleranceRanges(const QDateTime& time, const ChamberId& chamber,
                                              const QMap<int, ChamberSignal>& chamberSignals) const
{
    return getToleranceRanges(prepareRangesAtQuery(time, chamber, chamberSignals.keys()), AT_COLUMNS, chamberSignals);
}

QMap<SignalId, ToleranceRange>
SqlChamberToleranceRanges::getToleranceRanges(const QDateTime& time, const RecordingId& recording,
                                              const QMap<int, ChamberSignal>& chamberSignals)
{
    return getToleranceRangesAt(getToleranceRangeHistory(recording, chamberSignals), time);
}

ToleranceRangeHistory
SqlChamberToleranceRanges::getToleranceRangeHistory(const RecordingId& recording,
                                                    const QMap<int, ChamberSignal>& chamberSignals)
{
    SqlQuery chamberOfRecording;
    chamberOfRecording.selectColumn(DC::lookupRecordingColumnName(RecordingProperty::CHAMBER_ID))
        .fromTable(DC::lookupRecordingTableName())
        .whereColumn(DC::lookupRecordingColumnName(RecordingProperty::ID))
        .equals(int(recording));
    const int chamber = sqlhelper::readIntSqlValue(connection->fetchSingleValue(chamberOfRecording), -1);
    if (chamber == -1) {
        return {};
    }
    if (const std::optional<ToleranceRangeHistory> cached = cache.find(chamber)) {
        return *cached;
    }
    // One entry per chamber does for all its recordings: they record the
    // signals of the chamber's type.
    ToleranceRangeHistory history;
    if (readHistory(chamber, chamberSignals.keys(), chamberSignals, history)) {
        cache.add(chamber, history);
    }
    return history;
}

ToleranceRange SqlChamberToleranceRanges::getToleranceRange(const QDateTime& time, const ChamberId& chamber,
                                                            const SignalId& signal) const
{
    const QList<QList<QVariant>> rows = connection->fetch(prepareRangesAtQuery(time, chamber, {signal}));
    if (rows.size() > 1) {
        checks.reportUnexpected("getToleranceRange", QStringLiteral("got %1 ranges instead of one").arg(rows.size()));
        return {};
    }
    if (rows.isEmpty() || !checks.hasWidth(rows.first(), AT_COLUMNS, "getToleranceRange")) {
        return {};
    }
    const QSharedPointer<ChamberSignal> chamberSignal = configuration->getChamberSignal(signal);
    const Unit::UnitId unit = chamberSignal ? chamberSignal->unit : Unit::UNDEFINED;
    return readRange(SqlRow(rows.first()), AT_RANGE_TYPE, AT_RANGE_MIN, AT_RANGE_MAX, unit);
}

bool SqlChamberToleranceRanges::setToleranceRange(const QDateTime& time, const ChamberId& chamber,
                                                  const SignalId& signal, const ToleranceRange& range)
{
    // A chamber's entry could be dropped alone; the whole cache goes, as it
    // always has.
    cache.clear();
    const QSharedPointer<ChamberSignal> chamberSignal = configuration->getChamberSignal(signal);
    if (!chamberSignal) {
        checks.reportUnexpected("setToleranceRange",
                                QStringLiteral("knows no signal %1: the range has no unit to be kept in").arg(signal));
        return false;
    }
    const Unit::UnitId unit = chamberSignal->unit;
    SqlQuery query;
    query.insertTableColumnValuePairs(
        DC::lookupToleranceRangeTableName(),
        {
            {rangeColumn(ToleranceRangeProperty::EFFECTIVE_FROM), sqlvalue::utcTime(time)},
            {rangeColumn(ToleranceRangeProperty::CHAMBER_ID), int(chamber)},
            {rangeColumn(ToleranceRangeProperty::SIGNAL_ID), signal},
            {rangeColumn(ToleranceRangeProperty::RANGE_TYPE), int(range.type)},
            {rangeColumn(ToleranceRangeProperty::RANGE_MIN), writeLimit(range.lower, range.type, unit)},
            {rangeColumn(ToleranceRangeProperty::RANGE_MAX), writeLimit(range.upper, range.type, unit)},
        });
    return connection->execute(query).success;
}

SqlQuery SqlChamberToleranceRanges::prepareRangesAtQuery(const QDateTime& time, const ChamberId& chamber,
                                                         const QList<int>& signalIds) const
{
    const QString signalColumn = rangeColumn(ToleranceRangeProperty::SIGNAL_ID);
    const QString effectiveFrom = rangeColumn(ToleranceRangeProperty::EFFECTIVE_FROM);
    // SQLite takes the other columns of a group from the row that gives the MAX.
    SqlQuery query;
    query
        .selectColumns({rangeColumn(ToleranceRangeProperty::RANGE_TYPE), signalColumn,
                        rangeColumn(ToleranceRangeProperty::RANGE_MIN), rangeColumn(ToleranceRangeProperty::RANGE_MAX),
                        QStringLiteral("MAX(") + effectiveFrom + QStringLiteral(")")})
        .fromTable(DC::lookupToleranceRangeTableName())
        .whereColumn(rangeColumn(ToleranceRangeProperty::CHAMBER_ID))
        .equals(int(chamber))
        .andColumn(signalColumn)
        .inList(signalIds)
        .andColumn(effectiveFrom)
        .isLessEqual(sqlvalue::utcTime(time))
        .groupByColumn(signalColumn);
    return query;
}

QMap<SignalId, ToleranceRange>
SqlChamberToleranceRanges::getToleranceRanges(const SqlQuery& query, int columnCount,
                                              const QMap<int, ChamberSignal>& chamberSignals) const
{
    QMap<SignalId, ToleranceRange> ranges;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& values : rows) {
        if (!checks.hasWidth(values, columnCount, "getToleranceRanges")) {
            continue;
        }
        const SqlRow row(values);
        const SignalId signal = row.toInt(AT_SIGNAL_ID, -1);
        ranges.insert(signal,
                      readRange(row, AT_RANGE_TYPE, AT_RANGE_MIN, AT_RANGE_MAX, chamberSignals.value(signal).unit));
    }
    return ranges;
}

bool SqlChamberToleranceRanges::readHistory(int chamber, const QList<int>& signalIds,
                                            const QMap<int, ChamberSignal>& chamberSignals,
                                            ToleranceRangeHistory& history) const
{
    SqlQuery query;
    query.selectColumns(SqlRow::columnNames(rangeColumn, historyLayout))
        .fromTable(DC::lookupToleranceRangeTableName())
        .whereColumn(rangeColumn(ToleranceRangeProperty::CHAMBER_ID))
        .equals(chamber)
        .andColumn(rangeColumn(ToleranceRangeProperty::SIGNAL_ID))
        .inList(signalIds);

    bool complete = true;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& values : rows) {
        if (!checks.hasWidth(values, HISTORY_COLUMNS, "getToleranceRanges")) {
            complete = false;
            continue;
        }
        const SqlRow row(values);
        const SignalId signal = row.toInt(HISTORY_SIGNAL_ID, -1);
        history[signal].insert(row.toLocalTime(HISTORY_EFFECTIVE_FROM).toUTC(),
                               readRange(row, HISTORY_RANGE_TYPE, HISTORY_RANGE_MIN, HISTORY_RANGE_MAX,
                                         chamberSignals.value(signal).unit));
    }
    return complete;
}

} // namespace zelmor::base::connection::databaseconnection
