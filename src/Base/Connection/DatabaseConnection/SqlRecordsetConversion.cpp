#include "Base/Connection/DatabaseConnection/SqlRecordsetConversion.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Base/Connection/DatabaseConnection/sqlhelper.h"
#include "Domain/Api/IChamberDatabaseConnection.h"
#include "Domain/Types/Recordset.h"
#include "Domain/Types/RecordsetComment.h"
#include "Domain/Types/ToleranceRange.h"

#include <QSharedPointer>

#include <algorithm>

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;
using zelmor::domain::api::IChamberDatabaseConnection;
using zelmor::domain::api::RecordsetCommentProperty;
using zelmor::domain::api::RecordsetProperty;

namespace {

using DC = DatabaseSchema;

constexpr int noRecording = 0;

} // namespace

QStringList SqlRecordsetConversion::prepareColumnNames(const QStringList& signalColumns, bool withComment)
{
    QStringList names = {
        DC::lookupRecordsetColumnName(RecordsetProperty::ID),
        DC::lookupRecordsetColumnName(RecordsetProperty::RECORDING_ID),
        DC::lookupRecordsetColumnName(RecordsetProperty::RECORD_TIME),
        DC::lookupRecordsetColumnName(RecordsetProperty::IS_RETRIEVED_FROM_CHAMBER),
        DC::lookupRecordsetColumnName(RecordsetProperty::ALARM_TYPE),
        DC::lookupRecordsetColumnName(RecordsetProperty::CAMERA_IMAGE_PATH),
        DC::lookupRecordsetColumnName(RecordsetProperty::CHAMBER_MODE),
    };
    if (withComment) {
        names << DC::lookupRecordsetCommentColumnName(RecordsetCommentProperty::CREATION_TIME)
              << DC::lookupRecordsetCommentColumnName(RecordsetCommentProperty::USER_ID)
              << DC::lookupRecordsetCommentColumnName(RecordsetCommentProperty::COMMENT_TEXT);
    }
    return names + signalColumns;
}

SqlRecordsetConversion::SqlRecordsetConversion(IChamberDatabaseConnection* chambers, int columnCount,
                                               const QMap<int, ChamberSignal>& signalMap)
    : chambers(chambers)
    , columnCount(columnCount)
    , signalMap(signalMap)
{
    for (const ChamberSignal& signal : signalMap) {
        digital.append(signal.isDigitalSignal());
    }
}

Recordset SqlRecordsetConversion::convert(const QList<QVariant>& row)
{
    if (isConvertible(row)) {
        resolve(row);
    }
    return convertResolved(row);
}

void SqlRecordsetConversion::resolve(const QList<QList<QVariant>>& rows)
{
    for (const QList<QVariant>& row : rows) {
        if (isConvertible(row)) {
            resolve(row);
        }
    }
}

Recordset SqlRecordsetConversion::convertResolved(const QList<QVariant>& row) const
{
    if (!isConvertible(row)) {
        return Recordset();
    }
    const SqlRow values(row);
    const QDateTime utc = values.toUtcTime(RECORD_TIME);
    const QDateTime time = utc.isValid() ? utc.toLocalTime() : QDateTime();
    const int recording = values.toInt(RECORDING_ID, noRecording);
    const auto resolved = histories.constFind(recording);
    Q_ASSERT_X(resolved != histories.constEnd(), "SqlRecordsetConversion::convertResolved", "recording not resolved");
    const QMap<SignalId, ToleranceRange>& ranges = resolved->at(utc);

    // The signal columns are the last ones, in ascending signal id.
    QList<SignalValuePair> pairs;
    pairs.reserve(signalMap.size());
    int column = columnCount - signalMap.size();
    int index = 0;
    for (auto signal = signalMap.constBegin(); signal != signalMap.constEnd(); ++signal, ++column, ++index) {
        // Made in its place in the list, as SignalValuePair(signal, value, range) would make it.
        pairs.append(SignalValuePair());
        SignalValuePair& pair = pairs.last();
        pair.signalId = signal.key();
        pair.value.unit = signal->unit;
        const QVariant& cell = row.at(column);
        if (!sqlhelper::isSqlValueValid(cell)) {
            // No value, not 0.
        } else if (digital.at(index)) {
            pair.value.value = cell.toBool();
        } else {
            pair.value.value = cell.toFloat();
        }
        // A signal without a range gets an INVALID one.
        pair.toleranceRange = QSharedPointer<ToleranceRange>::create(ranges.value(signal.key()));
    }

    RecordsetComment comment;
    if (row.size() > COMMENT_TEXT) {
        comment = RecordsetComment(values.toLocalTime(COMMENT_CREATION_TIME), values.toInt(COMMENT_USER_ID, 0),
                                   values.toInt(ID, -1), values.toString(COMMENT_TEXT));
    }
    return Recordset(values.toInt(ID, -1), recording, time, pairs, values.toBool(IS_RETRIEVED_FROM_CHAMBER, false),
                     comment, RecordsetAlarm::Alarm(values.toInt(ALARM_TYPE, 0)), values.toString(CAMERA_IMAGE_PATH),
                     ChamberOperationMode::Mode(values.toInt(CHAMBER_MODE, 0)));
}

QDateTime SqlRecordsetConversion::getTime(const QList<QVariant>& row) const
{
    return isConvertible(row) ? SqlRow(row).toLocalTime(RECORD_TIME) : QDateTime();
}

bool SqlRecordsetConversion::isConvertible(const QList<QVariant>& row) const
{
    return row.size() == columnCount && row.size() >= signalMap.size();
}

void SqlRecordsetConversion::resolve(const QList<QVariant>& row)
{
    const int recording = SqlRow(row).toInt(RECORDING_ID, noRecording);
    if (!histories.contains(recording)) {
        histories.insert(recording, ResolvedRanges(chambers->getToleranceRangeHistory(recording, signalMap)));
    }
}

SqlRecordsetConversion::ResolvedRanges::ResolvedRanges(const ToleranceRangeHistory& history)
{
    // The ranges change only where one of them takes effect: between two such
    // moments, and before the first, every time gives the same ranges.
    for (const QMap<QDateTime, ToleranceRange>& ranges : history) {
        for (auto entry = ranges.constBegin(); entry != ranges.constEnd(); ++entry) {
            changes.append(entry.key().toMSecsSinceEpoch());
        }
    }
    std::sort(changes.begin(), changes.end());
    changes.erase(std::unique(changes.begin(), changes.end()), changes.end());
    const auto utc = [](qint64 msecs) { return QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC); };
    between.append(getToleranceRangesAt(history, utc(changes.isEmpty() ? 0 : changes.first() - 1)));
    for (qint64 change : qAsConst(changes)) {
        between.append(getToleranceRangesAt(history, utc(change)));
    }
    withoutTime = getToleranceRangesAt(history, QDateTime());
}

const QMap<SignalId, ToleranceRange>& SqlRecordsetConversion::ResolvedRanges::at(const QDateTime& utc) const
{
    if (!utc.isValid()) {
        return withoutTime;
    }
    const auto after = std::upper_bound(changes.constBegin(), changes.constEnd(), utc.toMSecsSinceEpoch());
    return between.at(int(after - changes.constBegin()));
}

} // namespace zelmor::base::connection::databaseconnection
