#include "Domain/Types/RecordingData.h"

#include "Domain/Api/ApplicationTableProperties.h"

namespace zelmor::domain::types {

namespace {

constexpr quint32 automatedReportBit = 0x1;
constexpr int reportIntervalShift = 1;
constexpr quint32 reportIntervalMask = 0x3;
constexpr int fileFormatShift = 3;
constexpr quint32 fileFormatMask = 0xF;

quint32 replaceBits(quint32 flags, int shift, quint32 mask, quint32 value)
{
    return (flags & ~(mask << shift)) | ((value & mask) << shift);
}

} // namespace

RecordingData::RecordingData()
    : RecordingData(0, QString(), -1, 0, -1, QDateTime(), QDateTime(), false, false, QString(), QString(), quint32(0),
                    QMap<int, ChamberSignal>(), QList<RecordingId>(), true, -1)
{
}

RecordingData::RecordingData(const RecordingId& id, const QString& name, const ChamberId& chamberId,
                             const UserId& userId, int secondsInterval, const QDateTime& startTime,
                             const QDateTime& endTime, bool isActive, bool isArchived, const QString& additionalInfo,
                             const QString& freeText, quint32 reportFlags,
                             const QMap<int, ChamberSignal>& chamberSignals, const QList<RecordingId>& subRecordings,
                             bool isStartAllowed, qint64 numberOfRecordsets)
    : id(id)
    , name(name)
    , chamberId(chamberId)
    , userId(userId)
    , secondsInterval(secondsInterval)
    , startTime(startTime)
    , endTime(endTime)
    , isActive(isActive)
    , isArchived(isArchived)
    , additionalInfo(additionalInfo)
    , freeText(freeText)
    , reportFlags(reportFlags)
    , chamberSignals(chamberSignals)
    , subRecordings(subRecordings)
    , isStartAllowed(isStartAllowed)
    , numberOfRecordsets(numberOfRecordsets)
{
}

RecordingData::RecordingData(const RecordingId& id, const QString& name, const ChamberId& chamberId,
                             const UserId& userId, int secondsInterval, const QDateTime& startTime,
                             const QDateTime& endTime, bool isActive, bool isArchived, const QString& additionalInfo,
                             const QString& freeText, bool automatedReport, qint64 numberOfRecordsets,
                             const QMap<int, ChamberSignal>& chamberSignals, const QList<RecordingId>& subRecordings,
                             bool isStartAllowed)
    : RecordingData(id, name, chamberId, userId, secondsInterval, startTime, endTime, isActive, isArchived,
                    additionalInfo, freeText, automatedReport ? automatedReportBit : 0, chamberSignals, subRecordings,
                    isStartAllowed, numberOfRecordsets)
{
}

bool RecordingData::isValid() const
{
    return id != 0;
}

bool RecordingData::isMetaRecording() const
{
    return !subRecordings.isEmpty();
}

bool RecordingData::isAutomatedReportActive() const
{
    return (reportFlags & automatedReportBit) != 0;
}

void RecordingData::setAutomatedReport(bool active)
{
    reportFlags = active ? reportFlags | automatedReportBit : reportFlags & ~automatedReportBit;
}

RecordingData::ReportInterval RecordingData::getReportInterval() const
{
    return ReportInterval((reportFlags >> reportIntervalShift) & reportIntervalMask);
}

void RecordingData::setReportInterval(ReportInterval interval)
{
    reportFlags = replaceBits(reportFlags, reportIntervalShift, reportIntervalMask, interval);
}

bool RecordingData::isDailyReportActive() const
{
    return getReportInterval() == DAILY_REPORT;
}

void RecordingData::setDailyReport()
{
    setReportInterval(DAILY_REPORT);
}

bool RecordingData::isWeeklyReportActive() const
{
    return getReportInterval() == WEEKLY_REPORT;
}

void RecordingData::setWeeklyReport()
{
    setReportInterval(WEEKLY_REPORT);
}

bool RecordingData::isMonthlyReportActive() const
{
    return getReportInterval() == MONTHLY_REPORT;
}

void RecordingData::setMonthlyReport()
{
    setReportInterval(MONTHLY_REPORT);
}

bool RecordingData::isCreateReportOnStopActive() const
{
    return getReportInterval() == REPORT_ON_STOP;
}

void RecordingData::setCreateReportOnStop()
{
    setReportInterval(REPORT_ON_STOP);
}

FileFormat RecordingData::getFileFormat() const
{
    return FileFormat((reportFlags >> fileFormatShift) & fileFormatMask);
}

void RecordingData::setFileFormat(FileFormat format)
{
    reportFlags = replaceBits(reportFlags, fileFormatShift, fileFormatMask, quint32(format));
}

api::RecordingProperty RecordingData::diff(const RecordingData& other) const
{
    using api::RecordingProperty;
    quint32 differences = 0;
    const auto note = [&differences](bool differ, RecordingProperty property) {
        if (differ) {
            differences |= quint32(property);
        }
    };
    note(id != other.id, RecordingProperty::ID);
    note(name != other.name, RecordingProperty::RECORDING_NAME);
    note(chamberId != other.chamberId, RecordingProperty::CHAMBER_ID);
    note(userId != other.userId, RecordingProperty::USER_ID);
    note(secondsInterval != other.secondsInterval, RecordingProperty::SECONDS_INTERVAL);
    note(startTime != other.startTime, RecordingProperty::START_TIME);
    note(endTime != other.endTime, RecordingProperty::END_TIME);
    note(isActive != other.isActive, RecordingProperty::IS_ACTIVE);
    note(additionalInfo != other.additionalInfo, RecordingProperty::ADDITIONAL_INFO);
    note(freeText != other.freeText, RecordingProperty::FREE_TEXT);
    note(isArchived != other.isArchived, RecordingProperty::IS_ARCHIVED);
    note(reportFlags != other.reportFlags, RecordingProperty::AUTOMATICALLY_CREATE_REPORT);
    note(isStartAllowed != other.isStartAllowed, RecordingProperty::IS_START_RECONDING_ALLOWED);
    note(numberOfRecordsets != other.numberOfRecordsets, RecordingProperty::NUMBER_OF_RECORDSETS);
    return RecordingProperty(differences);
}

bool operator==(const RecordingData& left, const RecordingData& right)
{
    return quint32(left.diff(right)) == 0 && left.chamberSignals == right.chamberSignals
           && left.subRecordings == right.subRecordings;
}

bool operator!=(const RecordingData& left, const RecordingData& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
