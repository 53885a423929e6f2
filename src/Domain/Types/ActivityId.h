#pragma once

#include <QMetaType>
#include <QObject>

namespace zelmor::domain::types {

// One thing a user can do, as the access table keys it: a component and an
// activity of that component. The enumerations are registered so that the
// numbers of the database convert to them through QVariant::convert. A
// converted component is read with value<ComponentId>(): toInt() reads a
// one-byte enumeration signed, and GUI comes out as -1.
class ActivityId
{
    Q_GADGET

public:
    enum ComponentId : quint8 {
        INVALID = 0,
        CHAMBER_MANAGEMENT = 1,
        RECORDING_MANAGEMENT = 2,
        ACCESS_MANAGEMENT = 3,
        ROOM_MANAGEMENT = 4,
        SOFTWARE_UPDATE = 5,
        PROGRAM_MANAGEMENT = 6,
        BACKUP_RESTORE = 7,
        PROTOCOL_MANAGEMENT = 8,
        REPORT_MANAGEMENT = 9,
        SMTP_CONNECTION = 10,
        ALARM_MANAGEMENT = 11,
        SIREN_BOX_MANAGEMENT = 12,
        SIREN_DESK_MANAGEMENT = 13,
        GUI = 255
    };
    Q_ENUM(ComponentId)

    enum class ChamberManagementActivityId : quint16 {
        CREATE_CHAMBER = 1,
        CHANGE_CHAMBER_CONFIGURATION = 2,
        DELETE_CHAMBER = 3,
        ARCHIVE_CHAMBER = 4,
        FETCH_ARCHIVED_CHAMBER = 5,
        RESTORE_ARCHIVED_CHAMBER = 6,
        CHANGE_CHAMBER_ACTIVATION = 7,
        CHECK_ACCESSABILITY_OF_CHAMBER = 8,
        WRITE_SETPOINT = 9,
        WRITE_SETPOINT_WITHOUT_COMMENT = 10,
        WRITE_IO = 11,
        WRITE_ACTOR = 12,
        RENAME_IO = 13,
        COLLECT_CURRENT_VALUES = 14,
        RESTORE_DATA_FROM_CHAMBER = 15,
        CHANGE_CHAMBER_MAC_ADDRESS = 16,
        RESTORE_CHAMBER = 17,
        CHANGE_CHAMBER_SUBSCRIPTION = 18,
        CHANGE_CHAMBER_SIGNAL_SUBSCRIPTION = 19,
        CHANGE_CHAMBER_SIGNAL_DELAY = 20,
        LAST_VALUE = 21
    };
    Q_ENUM(ChamberManagementActivityId)

    enum class RecordingManagementActivityId : quint16 {
        CREATE_RECORDING = 1,
        ARCHIVE_OWN_RECORDING = 2,
        ARCHIVE_LE_RECORDING = 3,
        ARCHIVE_ANY_RECORDING = 4,
        DELETE_OWN_RECORDING = 5,
        DELETE_LE_RECORDING = 6,
        DELETE_ANY_RECORDING = 7,
        CHANGE_OWN_RECORDING_NAME = 8,
        CHANGE_LE_RECORDING_NAME = 9,
        CHANGE_ANY_RECORDING_NAME = 10,
        CHANGE_OWN_RECORDING_INTERVAL = 11,
        CHANGE_LE_RECORDING_INTERVAL = 12,
        CHANGE_ANY_RECORDING_INTERVAL = 13,
        CHANGE_OWN_RECORDING_ADDITIONAL_INFO = 14,
        CHANGE_LE_RECORDING_ADDITIONAL_INFO = 15,
        CHANGE_ANY_RECORDING_ADDITIONAL_INFO = 16,
        CHANGE_OWN_RECORDING_FREETEXT = 17,
        CHANGE_LE_RECORDING_FREETEXT = 18,
        CHANGE_ANY_RECORDING_FREETEXT = 19,
        START_OWN_RECORDING = 20,
        START_LE_RECORDING = 21,
        START_ANY_RECORDING = 22,
        STOP_OWN_RECORDING = 23,
        STOP_LE_RECORDING = 24,
        STOP_ANY_RECORDING = 25,
        RECORD_WITH_MSEC_INTERVAL = 26,
        START_QUICK_RECORDING = 27,
        DELETE_OWN_RECORDSET_COMMENT = 28,
        DELETE_LE_RECORDSET_COMMENT = 29,
        DELETE_ANY_RECORDSET_COMMENT = 30,
        RESTORE_OWN_RECORDING = 31,
        RESTORE_LE_RECORDING = 32,
        RESTORE_ANY_RECORDING = 33,
        SHOWDATA_OWN_RECORDING = 34,
        SHOWDATA_LE_RECORDING = 35,
        SHOWDATA_ANY_RECORDING = 36,
        CHANGE_OWN_CREATE_REPORT_ON_STOP = 37,
        CHANGE_LE_CREATE_REPORT_ON_STOP = 38,
        CHANGE_ANY_CREATE_REPORT_ON_STOP = 39,
        CHANGE_QUICK_RECORDING_CONFIG = 40,
        LAST_VALUE = 41
    };
    Q_ENUM(RecordingManagementActivityId)

    enum class RoomManagementActivityId : quint16 {
        CREATE_ROOM = 1,
        DELETE_ROOM = 2,
        PLACE_CHAMBER_IN_ROOM = 3,
        MOVE_CHAMBER_IN_ROOM = 4,
        LAST_VALUE = 5
    };
    Q_ENUM(RoomManagementActivityId)

    enum class AccessManagementActivityId : quint16 {
        CREATE_USER = 1,
        DELETE_USER = 2,
        RENAME_USER = 3,
        ASSIGN_USER_LEVEL = 4,
        ASSIGN_SERVICE_LEVEL = 5,
        DEACTIVATE_ACCESS_CONTROL = 6,
        REACTIVATE_ACCESS_CONTROL = 7,
        CHANGE_OWN_PASSWORD = 8,
        RESET_USER_PASSWORD = 9,
        RESET_SERVICE_PASSWORD = 10,
        LOCK_SCREEN = 11,
        UNLOCK_OWN_SCREENLOCK = 12,
        UNLOCK_ANY_SCREENLOCK = 13,
        CONFIGURE_AUTO_SCREENLOCK_TIME = 14,
        SHUTDOWN_SOFTWARE_INACTIVE = 15,
        SHUTDOWN_SOFTWARE_ACTIVE = 16,
        SET_PASSWORD_VALIDITY_PERIOD = 17,
        UNBAN_USER = 18,
        CHANGE_GENERAL_PREFERENCES = 19,
        CHANGE_SECURITY_QUESTIONS = 20,
        TOGGLE_SECURITY_QUESTIONS = 21,
        RESET_PASSWORD_VIA_SECURITY_QUESTIONS = 22,
        LAST_VALUE = 23
    };
    Q_ENUM(AccessManagementActivityId)

    enum class SoftwareUpdateManagementActivityId : quint16 {
        UPDATE_SOFTWARE = 1,
        AUTO_UPDATE_SOFTWARE = 2,
        VIEW_SOFTWARE_VERSION = 3,
        LAST_VALUE = 4
    };
    Q_ENUM(SoftwareUpdateManagementActivityId)

    enum class ProgramManagementActivityId : quint16 {
        CREATE_PROGRAM = 1,
        MODIFY_OWN_PROGRAM = 2,
        MODIFY_LE_PROGRAM = 3,
        MODIFY_ANY_PROGRAM = 4,
        DELETE_OWN_PROGRAM = 5,
        DELETE_LE_PROGRAM = 6,
        DELETE_ANY_PROGRAM = 7,
        COPY_PROGRAM = 8,
        CREATE_NESTED_LOOP = 9,
        CREATE_CONDITIONAL_WAITING_POINT = 10,
        ADD_SUB_PROGRAM = 11,
        CHANGE_SUB_PROGRAM = 12,
        START_SIMULTANEOUS_RECORDING = 13,
        START_SIMULTANEOUS_QUICK_RECORDING = 14,
        STOP_SIMULTANEOUS_RECORDING_AUTOMATICALLY = 15,
        ADD_INFOTEXT = 16,
        CHANGE_OWN_INFOTEXT = 17,
        CHANGE_LE_INFOTEXT = 18,
        CHANGE_ANY_INFOTEXT = 19,
        INSERT_PROGRAM_SECTION = 20,
        DELETE_PROGRAM_SECTION = 21,
        MOVE_PROGRAM_SECTION = 22,
        COPY_PROGRAM_SECTION = 23,
        SET_END_MODE = 24,
        SET_PROGRAM_SECTION_TOLERANCE_RANGE = 25,
        SET_PROGRAM_TOLERANCE_RANGE = 26,
        SET_TOLERANCE_RANGE_ACTIVATION_STATE = 27,
        SET_PROGRAM_SECTION_TRANSITION_TYPE = 28,
        LOAD_PROGRAM = 29,
        INTERPRET_PROGRAM = 30,
        PAUSE_OWN_INTERPRETED_PROGRAM = 31,
        PAUSE_LE_INTERPRETED_PROGRAM = 32,
        PAUSE_ANY_INTERPRETED_PROGRAM = 33,
        RESUME_OWN_INTERPRETED_PROGRAM = 34,
        RESUME_LE_INTERPRETED_PROGRAM = 35,
        RESUME_ANY_INTERPRETED_PROGRAM = 36,
        START_PROGRAM_ON_MULTIPLE_CHAMBERS = 37,
        DELAY_PROGRAM_START = 38,
        SET_PROGRAM_START_SECTION = 39,
        ADD_PROGRAM_EVENT = 40,
        START_PROGRAM = 41,
        DELETE_PROGRAM = 42,
        TRANSFER_PROGRAM_VIA_MODBUS = 43,
        TRANSFER_PROGRAM = 44,
        TRANSFER_MULTIPLE_PROGRAMS_TO_CHAMBER = 45,
        TRANSFER_PROGRAM_TO_MULTIPLE_CHAMBERS = 46,
        CREATE_WEEKLY_PROGRAM = 47,
        CHANGE_WEEKLY_PROGRAM = 48,
        DELETE_NORM_PROGRAM = 49,
        CHANGE_NORM_PROGRAM = 50,
        LAST_VALUE = 51
    };
    Q_ENUM(ProgramManagementActivityId)

    enum class BackupRestoreManagementActivityId : quint16 {
        BACKUP_DATABASE = 1,
        RESTORE_DATABASE = 2,
        LAST_VALUE = 3
    };
    Q_ENUM(BackupRestoreManagementActivityId)

    enum class ProtocolManagementActivityId : quint16 { FETCH_OWN_ENTRIES = 1, FETCH_LE_ENTRIES = 2, LAST_VALUE = 3 };
    Q_ENUM(ProtocolManagementActivityId)

    enum class ReportManagementActivityId : quint16 { CHOOSE_PATH = 1, CHANGE_REPORT_CONFIG = 2, LAST_VALUE = 3 };
    Q_ENUM(ReportManagementActivityId)

    enum class SmtpConnectionActivityId : quint16 {
        CHANGE_SMTP_CONFIG = 1,
        CHANGE_AC_SMTP_CONFIG = 2,
        ADD_MAIL_RECIPIENT = 3,
        REMOVE_MAIL_RECIPIENT = 4,
        LAST_VALUE = 5
    };
    Q_ENUM(SmtpConnectionActivityId)

    enum class AlarmManagementActivityId : quint16 {
        CHANGE_ALARM_CONFIG = 1,
        MUTE_ALARM_ESCALATION = 2,
        LAST_VALUE = 3
    };
    Q_ENUM(AlarmManagementActivityId)

    enum class SirenBoxManagementActivityId : quint16 {
        CHANGE_NETWORK_CONFIGURATION = 1,
        CHANGE_NUM_CONNECTION_ATTEMPTS = 2,
        CHANGE_CONNECTION_ACTIVATION = 3,
        CHANGE_TEST_ACTIVATION = 4,
        LAST_VALUE = 5
    };
    Q_ENUM(SirenBoxManagementActivityId)

    enum class SirenDeskManagementActivityId : quint16 {
        CHANGE_NETWORK_CONFIGURATION = 1,
        CHANGE_NUM_CONNECTION_ATTEMPTS = 2,
        CHANGE_CONNECTION_ACTIVATION = 3,
        REQUEST_CHAMBERS = 4,
        LAST_VALUE = 5
    };
    Q_ENUM(SirenDeskManagementActivityId)

    enum class GuiActivityId : quint16 {
        CHANGE_ACCESS_CONTROL_ACTIVATION = 0,
        SET_PASSWORD_VALIDITY_PERIOD = 1,
        CHANGE_SCREEN_LOCK_TIMEOUT = 2,
        TOGGLE_SECURITY_QUESTIONS = 3,
        CREATE_USER = 4,
        CHANGE_USER = 5,
        DELETE_USER = 6,
        ASSIGN_SERVICE_LEVEL = 7,
        CHANGE_USER_SERVICE = 8,
        CHANGE_GENERAL_PREFERENCES = 9,
        CREATE_CHAMBER = 10,
        CHANGE_CHAMBER_CONFIGURATION = 11,
        CHANGE_CHAMBER_MAC_ADDRESS = 12,
        DELETE_CHAMBER = 13,
        ARCHIVE_CHAMBER = 14,
        RESTORE_CHAMBER = 15,
        CHANGE_CHAMBER_ACTIVATION = 16,
        WRITE_SETPOINT = 17,
        WRITE_SETPOINT_WITHOUT_COMMENT = 18,
        WRITE_IO = 19,
        WRITE_ACTOR = 20,
        RENAME_IO = 21,
        COLLECT_CURRENT_VALUES = 22,
        CHANGE_CHAMBER_SUBSCRIPTION = 23,
        CHANGE_CHAMBER_SIGNAL_SUBSCRIPTION = 24,
        CHANGE_CHAMBER_SIGNAL_DELAY = 25,
        CREATE_PROGRAM = 26,
        DELETE_PROGRAM = 27,
        START_PROGRAM = 28,
        PAUSE_PROGRAM = 29,
        STOP_PROGRAM = 30,
        MODIFY_OWN_PROGRAM = 31,
        MODIFY_LE_PROGRAM = 32,
        MODIFY_ANY_PROGRAM = 33,
        CHANGE_PROGRAM_INFOTEXT = 34,
        COPY_PROGRAM = 35,
        CREATE_RECORDING = 36,
        ARCHIVE_RECORDING = 37,
        RESTORE_RECORDING = 38,
        DELETE_RECORDING = 39,
        CHANGE_RECORDING_NAME = 40,
        CHANGE_RECORDING_INTERVAL = 41,
        CHANGE_RECORDING_ADDITIONAL_INFO = 42,
        CHANGE_RECORDING_FREETEXT = 43,
        START_RECORDING = 44,
        STOP_RECORDING = 45,
        START_QUICK_RECORDING = 46,
        DELETE_RECORDSET_COMMENT = 47,
        CHANGE_QUICK_RECORDING_CONFIG = 48,
        CREATE_ROOM = 49,
        DELETE_ROOM = 50,
        PLACE_CHAMBER_IN_ROOM = 51,
        MOVE_CHAMBER_IN_ROOM = 52,
        UPDATE_SOFTWARE = 53,
        AUTO_UPDATE_SOFTWARE = 54,
        VIEW_SOFTWARE_VERSION = 55,
        BACKUP_DATABASE = 56,
        RESTORE_DATABASE = 57,
        CHOOSE_REPORT_PATH = 58,
        CHANGE_REPORT_CONFIG = 59,
        CHANGE_SMTP_CONFIG = 60,
        CHANGE_AC_SMTP_CONFIG = 61,
        ADD_MAIL_RECIPIENT = 62,
        REMOVE_MAIL_RECIPIENT = 63,
        CHANGE_ALARM_CONFIG = 64,
        MUTE_ALARM_ESCALATION = 65,
        CHANGE_SIRENBOX_NETWORK_CONFIGURATION = 66,
        CHANGE_SIRENBOX_NUM_CONNECTION_ATTEMPTS = 67,
        CHANGE_SIRENBOX_CONNECTION_ACTIVATION = 68,
        CHANGE_SIRENBOX_TEST_ACTIVATION = 69,
        CHANGE_SIRENDESK_NETWORK_CONFIGURATION = 70,
        CHANGE_SIRENDESK_NUM_CONNECTION_ATTEMPTS = 71,
        CHANGE_SIRENDESK_CONNECTION_ACTIVATION = 72,
        REQUEST_ZELMOR_CHAMBERS = 73,
        LAST_VALUE = 74
    };
    Q_ENUM(GuiActivityId)

    // The invalid id (0, 0).
    ActivityId();
    // An activity at or above its component's LAST_VALUE gives the invalid id
    // (0, 0). Components without an enumeration of their own, GUI and INVALID
    // among them, keep what they are given, unchecked.
    ActivityId(ComponentId component, quint16 activity);
    ActivityId(ChamberManagementActivityId activity);
    ActivityId(RecordingManagementActivityId activity);
    ActivityId(RoomManagementActivityId activity);
    ActivityId(AccessManagementActivityId activity);
    ActivityId(SoftwareUpdateManagementActivityId activity);
    ActivityId(ProgramManagementActivityId activity);
    ActivityId(BackupRestoreManagementActivityId activity);
    ActivityId(ProtocolManagementActivityId activity);
    ActivityId(ReportManagementActivityId activity);
    ActivityId(SmtpConnectionActivityId activity);
    ActivityId(AlarmManagementActivityId activity);
    ActivityId(SirenBoxManagementActivityId activity);
    ActivityId(SirenDeskManagementActivityId activity);

    // Component in bits 16 to 23, activity in bits 0 to 15.
    int getId() const;
    ComponentId getComponentId() const;
    quint16 getComponentActivityId() const;
    // Both parts are not 0.
    bool isValid() const;

    ComponentId component;
    quint16 activity;
};

// Both compare getId().
bool operator==(const ActivityId& left, const ActivityId& right);
bool operator!=(const ActivityId& left, const ActivityId& right);
bool operator<(const ActivityId& left, const ActivityId& right);

uint qHash(const ActivityId& id, uint seed = 0);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::ActivityId)
