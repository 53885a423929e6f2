#include "Domain/Types/Recordset.h"

#include "Domain/Types/ToleranceRange.h"

namespace zelmor::domain::types {

Recordset::Recordset()
    : Recordset(-1, 0, QDateTime(), {}, false, RecordsetComment(), RecordsetAlarm::NO_ALARM, QString(),
                ChamberOperationMode::UNKNOWN_MODE)
{
}

Recordset::Recordset(const RecordsetId& id, const RecordingId& recordingId, const QDateTime& time,
                     const QList<SignalValuePair>& values, bool isRetrievedFromChamber, const RecordsetComment& comment,
                     RecordsetAlarm::Alarm alarm, const QString& cameraImagePath,
                     ChamberOperationMode::Mode chamberMode)
    : id(id)
    , recordingId(recordingId)
    , time(time)
    , values(values)
    , isRetrievedFromChamber(isRetrievedFromChamber)
    , comment(comment)
    , alarm(alarm)
    , cameraImagePath(cameraImagePath)
    , chamberMode(chamberMode)
{
}

ToleranceRange Recordset::getToleranceRange(SignalId signalId) const
{
    for (const SignalValuePair& value : values) {
        if (value.signalId == signalId) {
            return value.toleranceRange ? *value.toleranceRange : ToleranceRange();
        }
    }
    return ToleranceRange();
}

bool operator==(const Recordset& left, const Recordset& right)
{
    return left.id == right.id && left.recordingId == right.recordingId && left.time == right.time
           && left.values == right.values && left.isRetrievedFromChamber == right.isRetrievedFromChamber
           && left.comment == right.comment && left.alarm == right.alarm
           && left.cameraImagePath == right.cameraImagePath && left.chamberMode == right.chamberMode;
}

bool operator!=(const Recordset& left, const Recordset& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
