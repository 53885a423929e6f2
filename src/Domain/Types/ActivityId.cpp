#include "Domain/Types/ActivityId.h"

#include <QHashFunctions>

namespace zelmor::domain::types {

namespace {

// The first activity a component doesn't have; 0 for a component that isn't checked.
quint16 getActivityBound(ActivityId::ComponentId component)
{
    switch (component) {
    case ActivityId::CHAMBER_MANAGEMENT:
        return quint16(ActivityId::ChamberManagementActivityId::LAST_VALUE);
    case ActivityId::RECORDING_MANAGEMENT:
        return quint16(ActivityId::RecordingManagementActivityId::LAST_VALUE);
    case ActivityId::ROOM_MANAGEMENT:
        return quint16(ActivityId::RoomManagementActivityId::LAST_VALUE);
    case ActivityId::ACCESS_MANAGEMENT:
        return quint16(ActivityId::AccessManagementActivityId::LAST_VALUE);
    case ActivityId::SOFTWARE_UPDATE:
        return quint16(ActivityId::SoftwareUpdateManagementActivityId::LAST_VALUE);
    case ActivityId::PROGRAM_MANAGEMENT:
        return quint16(ActivityId::ProgramManagementActivityId::LAST_VALUE);
    case ActivityId::BACKUP_RESTORE:
        return quint16(ActivityId::BackupRestoreManagementActivityId::LAST_VALUE);
    case ActivityId::PROTOCOL_MANAGEMENT:
        return quint16(ActivityId::ProtocolManagementActivityId::LAST_VALUE);
    case ActivityId::REPORT_MANAGEMENT:
        return quint16(ActivityId::ReportManagementActivityId::LAST_VALUE);
    case ActivityId::SMTP_CONNECTION:
        return quint16(ActivityId::SmtpConnectionActivityId::LAST_VALUE);
    case ActivityId::ALARM_MANAGEMENT:
        return quint16(ActivityId::AlarmManagementActivityId::LAST_VALUE);
    case ActivityId::SIREN_BOX_MANAGEMENT:
        return quint16(ActivityId::SirenBoxManagementActivityId::LAST_VALUE);
    case ActivityId::SIREN_DESK_MANAGEMENT:
        return quint16(ActivityId::SirenDeskManagementActivityId::LAST_VALUE);
    default:
        return 0;
    }
}

} // namespace

ActivityId::ActivityId()
    : component(INVALID)
    , activity(0)
{
}

ActivityId::ActivityId(ComponentId component, quint16 activity)
    : component(component)
    , activity(activity)
{
    const quint16 bound = getActivityBound(component);
    if (bound != 0 && activity >= bound) {
        this->component = INVALID;
        this->activity = 0;
    }
}

ActivityId::ActivityId(ChamberManagementActivityId activity)
    : ActivityId(CHAMBER_MANAGEMENT, quint16(activity))
{
}

ActivityId::ActivityId(RecordingManagementActivityId activity)
    : ActivityId(RECORDING_MANAGEMENT, quint16(activity))
{
}

ActivityId::ActivityId(RoomManagementActivityId activity)
    : ActivityId(ROOM_MANAGEMENT, quint16(activity))
{
}

ActivityId::ActivityId(AccessManagementActivityId activity)
    : ActivityId(ACCESS_MANAGEMENT, quint16(activity))
{
}

ActivityId::ActivityId(SoftwareUpdateManagementActivityId activity)
    : ActivityId(SOFTWARE_UPDATE, quint16(activity))
{
}

ActivityId::ActivityId(ProgramManagementActivityId activity)
    : ActivityId(PROGRAM_MANAGEMENT, quint16(activity))
{
}

ActivityId::ActivityId(BackupRestoreManagementActivityId activity)
    : ActivityId(BACKUP_RESTORE, quint16(activity))
{
}

ActivityId::ActivityId(ProtocolManagementActivityId activity)
    : ActivityId(PROTOCOL_MANAGEMENT, quint16(activity))
{
}

ActivityId::ActivityId(ReportManagementActivityId activity)
    : ActivityId(REPORT_MANAGEMENT, quint16(activity))
{
}

ActivityId::ActivityId(SmtpConnectionActivityId activity)
    : ActivityId(SMTP_CONNECTION, quint16(activity))
{
}

ActivityId::ActivityId(AlarmManagementActivityId activity)
    : ActivityId(ALARM_MANAGEMENT, quint16(activity))
{
}

ActivityId::ActivityId(SirenBoxManagementActivityId activity)
    : ActivityId(SIREN_BOX_MANAGEMENT, quint16(activity))
{
}

ActivityId::ActivityId(SirenDeskManagementActivityId activity)
    : ActivityId(SIREN_DESK_MANAGEMENT, quint16(activity))
{
}

int ActivityId::getId() const
{
    return int(component) << 16 | int(activity);
}

ActivityId::ComponentId ActivityId::getComponentId() const
{
    return component;
}

quint16 ActivityId::getComponentActivityId() const
{
    return activity;
}

bool ActivityId::isValid() const
{
    return component != INVALID && activity != 0;
}

bool operator==(const ActivityId& left, const ActivityId& right)
{
    return left.getId() == right.getId();
}

bool operator!=(const ActivityId& left, const ActivityId& right)
{
    return !(left == right);
}

bool operator<(const ActivityId& left, const ActivityId& right)
{
    return left.getId() < right.getId();
}

uint qHash(const ActivityId& id, uint seed)
{
    return ::qHash(id.getId(), seed);
}

} // namespace zelmor::domain::types
