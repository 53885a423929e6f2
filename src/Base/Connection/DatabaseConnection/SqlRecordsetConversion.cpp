#include "Base/Connection/DatabaseConnection/SqlRecordsetConversion.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Domain/Api/IChamberDatabaseConnection.h"
#include "Domain/Types/Recordset.h"
#include "Domain/Types/RecordsetComment.h"
#include "Domain/Types/ToleranceRange.h"

#include <QSharedPointer>

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
    const QDateTime time = values.toLocalTime(RECORD_TIME);
    const int recording = values.toInt(RECORDING_ID, noRecording);
    const auto history = histories.constFind(recording);
    Q_ASSERT_X(history != histories.constEnd(), "SqlRecordsetConversion::convertResolved", "recording not resolved");

    const QMap<SignalId, ToleranceRange> ranges = getToleranceRangesAt(history.value(), time);

    // The signal columns are the last ones, in ascending signal id.
    QList<SignalValuePair> pairs;
    pairs.reserve(signalMap.size());
    int column = columnCount - signalMap.size();
    for (auto signal = signalMap.constBegin(); signal != signalMap.constEnd(); ++signal, ++column) {
        // A signal without a range gets an INVALID one.
        const QSharedPointer<ToleranceRange> range = QSharedPointer<ToleranceRange>::create(ranges.value(signal.key()));
        QVariant value;
        if (values.isNull(column)) {
            // No value, not 0.
        } else if (signal->isDigitalSignal()) {
            value = values.toBool(column, false);
        } else {
            value = values.toFloat(column, 0.0f);
        }
        pairs.append(SignalValuePair(signal.value(), value, range));
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
        histories.insert(recording, chambers->getToleranceRangeHistory(recording, signalMap));
    }
}

} // namespace zelmor::base::connection::databaseconnection
