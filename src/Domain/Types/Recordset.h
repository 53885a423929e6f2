#pragma once

#include "Domain/Types/ChamberOperationMode.h"
#include "Domain/Types/RecordingId.h"
#include "Domain/Types/RecordsetAlarm.h"
#include "Domain/Types/RecordsetComment.h"
#include "Domain/Types/RecordsetId.h"
#include "Domain/Types/SignalId.h"
#include "Domain/Types/SignalValuePair.h"

#include <QDateTime>
#include <QList>
#include <QMetaType>
#include <QString>

namespace zelmor::domain::types {

class ToleranceRange;

// The values of a recording at one moment: a row of table "record_set".
class Recordset
{
public:
    // The empty recordset: id -1, as the recordset store gives for a row it can't read.
    Recordset();
    Recordset(const RecordsetId& id, const RecordingId& recordingId, const QDateTime& time,
              const QList<SignalValuePair>& values, bool isRetrievedFromChamber, const RecordsetComment& comment,
              RecordsetAlarm::Alarm alarm, const QString& cameraImagePath, ChamberOperationMode::Mode chamberMode);

    // The range of the first value of that signal; an INVALID range when there is
    // no such value or it has none.
    ToleranceRange getToleranceRange(SignalId signalId) const;

    RecordsetId id;
    RecordingId recordingId;
    QDateTime time;
    // In ascending signal id when written: the store lines them up with its columns so.
    QList<SignalValuePair> values;
    bool isRetrievedFromChamber;
    RecordsetComment comment;
    RecordsetAlarm::Alarm alarm;
    QString cameraImagePath;
    ChamberOperationMode::Mode chamberMode;
};

bool operator==(const Recordset& left, const Recordset& right);
bool operator!=(const Recordset& left, const Recordset& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::Recordset)
