#pragma once

#include "Domain/Types/ChamberId.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/FileFormat.h"
#include "Domain/Types/RecordingId.h"
#include "Domain/Types/UserId.h"

#include <QDateTime>
#include <QList>
#include <QMap>
#include <QMetaType>
#include <QString>

namespace zelmor::domain::api {
enum class RecordingProperty : quint32;
} // namespace zelmor::domain::api

namespace zelmor::domain::types {

// The head of a measurement series on one chamber: a row of table "recording".
// A recording with sub-recordings is a meta recording that groups them.
class RecordingData
{
public:
    // Bits 1 and 2 of the report flags.
    enum ReportInterval : quint32 { DAILY_REPORT = 0, WEEKLY_REPORT = 1, MONTHLY_REPORT = 2, REPORT_ON_STOP = 3 };

    // What the recording store gives for a row of NULLs: id 0, chamber -1, user 0,
    // interval -1, no times, no report, start allowed, -1 recordsets.
    RecordingData();
    RecordingData(const RecordingId& id, const QString& name, const ChamberId& chamberId, const UserId& userId,
                  int secondsInterval, const QDateTime& startTime, const QDateTime& endTime, bool isActive,
                  bool isArchived, const QString& additionalInfo, const QString& freeText, quint32 reportFlags,
                  const QMap<int, ChamberSignal>& chamberSignals, const QList<RecordingId>& subRecordings,
                  bool isStartAllowed, qint64 numberOfRecordsets);
    // The automatic report alone; a daily report in the first file format.
    RecordingData(const RecordingId& id, const QString& name, const ChamberId& chamberId, const UserId& userId,
                  int secondsInterval, const QDateTime& startTime, const QDateTime& endTime, bool isActive,
                  bool isArchived, const QString& additionalInfo, const QString& freeText, bool automatedReport,
                  qint64 numberOfRecordsets, const QMap<int, ChamberSignal>& chamberSignals,
                  const QList<RecordingId>& subRecordings = QList<RecordingId>(), bool isStartAllowed = true);

    // The id is not 0.
    bool isValid() const;
    bool isMetaRecording() const;

    // Bit 0 of the report flags.
    bool isAutomatedReportActive() const;
    void setAutomatedReport(bool active);
    ReportInterval getReportInterval() const;
    void setReportInterval(ReportInterval interval);
    bool isDailyReportActive() const;
    void setDailyReport();
    bool isWeeklyReportActive() const;
    void setWeeklyReport();
    bool isMonthlyReportActive() const;
    void setMonthlyReport();
    // A report when the recording ends; it takes the place of the interval.
    bool isCreateReportOnStopActive() const;
    void setCreateReportOnStop();
    // Bits 3 to 6 of the report flags; a number above 15 loses its high bits.
    FileFormat getFileFormat() const;
    void setFileFormat(FileFormat format);

    // The columns of table "recording" in which the two differ, as the bits of
    // RecordingProperty; none when they agree. Signals and sub-recordings are no
    // columns and aren't looked at. Times compare as moments.
    api::RecordingProperty diff(const RecordingData& other) const;

    RecordingId id;
    QString name;
    ChamberId chamberId;
    UserId userId;
    int secondsInterval;
    QDateTime startTime;
    QDateTime endTime;
    bool isActive;
    bool isArchived;
    QString additionalInfo;
    QString freeText;
    quint32 reportFlags;
    QMap<int, ChamberSignal> chamberSignals; // by signal id
    QList<RecordingId> subRecordings;
    bool isStartAllowed;
    qint64 numberOfRecordsets;
};

bool operator==(const RecordingData& left, const RecordingData& right);
bool operator!=(const RecordingData& left, const RecordingData& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::RecordingData)
