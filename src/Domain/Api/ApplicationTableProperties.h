#pragma once

#include <QtGlobal>

// The columns of the application database's tables, one enumeration per table,
// the enumerators in the order of their numbers. A column's text comes from
// DatabaseConnection::lookup<Table>ColumnName; the numbers are what the stores
// use to address columns. The fixed underlying types make any stored number a
// value of the enumeration, so a stray one reaches the lookup's assertion.
// Enumerators ending in _N name a template column ("signal_%1"): callers put the
// column's number in place of %1.
namespace zelmor::domain::api {

// Table "chamber".
enum class ChamberProperty : int {
    ID = 0,
    CHAMBER_NAME = 1,
    CHAMBER_TYPE_ID = 2,
    CHAMBER_TYPE_ADDITIONAL_INFO_ID = 3,
    SERIAL_NO = 4,
    IS_ARCHIVED = 5,
    IS_SUBSCRIBED = 6,
    IP_V4_ADDRESS = 7,
    IP_V6_ADDRESS = 8,
    MAC_ADDRESS = 9,
    IS_ACTIVE = 10,
    MODBUS_ADDRESS = 11,
    COM_PORT = 12,
    BAUD_RATE = 13,
    DATA_BITS = 14,
    STOP_BITS = 15,
    PARITY = 16,
    PROTOCOL_ID = 17,
    CONVERTER_ID = 18
};

// Table "chamber_has_custom_signal_name".
enum class ChamberHasCustomSignalNameProperty : int { CHAMBER_ID = 0, SIGNAL_ID = 1, SIGNAL_NAME = 2 };

// Table "chamber_has_signal_delay".
enum class ChamberHasSignalDelayProperty : int {
    CHAMBER_ID = 0,
    SIGNAL_ID = 1,
    DELAY1_IN_SECONDS = 2,
    DELAY2_IN_SECONDS = 3
};

// Table "chamber_has_subscribed_signal".
enum class ChamberHasSubscribedSignalProperty : int { CHAMBER_ID = 0, SIGNAL_ID = 1 };

// Table "tolerance_range" of the application database: the history of a
// chamber's ranges. Not the catalogue's table of the same name.
enum class ToleranceRangeProperty : int {
    EFFECTIVE_FROM = 0,
    CHAMBER_ID = 1,
    SIGNAL_ID = 2,
    RANGE_TYPE = 3,
    RANGE_MIN = 4,
    RANGE_MAX = 5
};

// Table "program".
enum class ProgramProperty : int {
    ID = 0,
    PROGRAM_NAME = 1,
    USER_ID = 2,
    INFO_TEXT = 3,
    PROGRAM_TYPE = 4,
    EDITED = 5,
    CHAMBER_TYPE_ID = 6
};

// Table "program_step".
enum class ProgramStepProperty : int {
    ID = 0,
    PROGRAM_ID = 1,
    ORDER_NUMBER = 2,
    STEP_TYPE = 3,
    SECTION_ID = 4,
    SUB_PROGRAM_ID = 5
};

// Table "program_section".
enum class ProgramSectionProperty : int {
    ID = 0,
    DURATION_IN_SECONDS = 1,
    TRANSITION_TYPE = 2,
    BREAKPOINT = 3,
    PROGRAM_EVENT_MESSAGE = 4
};

// Table "program_setpoint".
enum class ProgramSetpointProperty : int {
    PROGRAM_SECTION_ID = 0,
    SIGNAL_ID = 1,
    SETPOINT = 2,
    TOLERANCE_RANGE_MIN = 3,
    TOLERANCE_RANGE_MAX = 4
};

// Table "program_step_repetition".
enum class ProgramStepRepetitionProperty : int {
    ID = 0,
    PROGRAM_ID = 1,
    START_STEP_ID = 2,
    END_STEP_ID = 3,
    NUM_REPETITIONS = 4
};

// Table "recording". Single bits, so that a set of columns fits in one value;
// 4096 and 8192 name no column.
enum class RecordingProperty : quint32 {
    ID = 1,
    RECORDING_NAME = 2,
    CHAMBER_ID = 4,
    USER_ID = 8,
    SECONDS_INTERVAL = 16,
    START_TIME = 32,
    END_TIME = 64,
    IS_ACTIVE = 128,
    ADDITIONAL_INFO = 256,
    FREE_TEXT = 512,
    IS_ARCHIVED = 1024,
    AUTOMATICALLY_CREATE_REPORT = 2048,
    IS_START_RECONDING_ALLOWED = 16384, // the column is spelt so
    NUMBER_OF_RECORDSETS = 32768
};

constexpr RecordingProperty operator|(RecordingProperty left, RecordingProperty right)
{
    return RecordingProperty(quint32(left) | quint32(right));
}

constexpr RecordingProperty operator&(RecordingProperty left, RecordingProperty right)
{
    return RecordingProperty(quint32(left) & quint32(right));
}

// Table "meta_recording_has_recording".
enum class MetaRecordingHasRecordingProperty : int { META_RECORDING_ID = 0, RECORDING_ID = 1 };

// Table "record_set". SIGNAL_N stands for the 48 value columns "signal_1" to "signal_48".
enum class RecordsetProperty : int {
    ID = 0,
    RECORDING_ID = 1,
    RECORD_TIME = 2,
    SIGNAL_N = 3,
    IS_RETRIEVED_FROM_CHAMBER = 4,
    ALARM_TYPE = 5,
    CAMERA_IMAGE_PATH = 6,
    CHAMBER_MODE = 7
};

// Table "record_set_comment".
enum class RecordsetCommentProperty : int { RECORDSET_ID = 0, USER_ID = 1, CREATION_TIME = 2, COMMENT_TEXT = 3 };

// Table "recording_has_signal_column".
enum class RecordingHasSignalColumnProperty : int { RECORDING_ID = 0, SIGNAL_ID = 1, RECORDSET_SIGNAL_COLUMN = 2 };

// Table "application_user".
enum class UserProperty : int {
    ID = 0,
    LOGIN_NAME = 1,
    MAIL_ADDRESS = 2,
    FIRST_NAME = 3,
    LAST_NAME = 4,
    PASSWORD_HASH = 5,
    PASSWORD_SALT = 6,
    PASSWORD_CREATION_TIME = 7,
    PASSWORD_EXPIRATION_TIME = 8,
    PASSWORD_IS_TEMPORARY = 9,
    NUMBER_FAILED_LOGIN_ATTEMPTS = 10,
    NUMBER_FAILED_SECURITY_QUESTION_ATTEMPTS = 11,
    IS_BANNED = 12,
    IS_DELETED = 13,
    USER_LEVEL = 14
};

// Table "user_has_security_question".
enum class UserHasSecurityQuestionProperty : int { USER_ID = 0, QUESTION_ID = 1, ANSWER_HASH = 2, ANSWER_SALT = 3 };

// Table "user_preferences".
enum class UserPreferencesProperty : int {
    USER_ID = 0,
    DEFAULT_FILE_FORMAT = 1,
    LOCALIZATION = 2,
    TIME_FORMAT = 3,
    DATE_FORMAT = 4,
    DECIMAL_FORMAT = 5,
    TEMPERATURE_UNIT = 6,
    HUMIDITY_UNIT = 7
};

// Table "user_has_chamber_signal_visibility_preference".
enum class UserHasChamberSignalVisibilityPreferenceProperty : int {
    USER_ID = 0,
    CHAMBER_ID = 1,
    SIGNAL_ID = 2,
    POSITION = 3
};

// Table "user_recording_config".
enum class UserRecordingConfigProperty : int { USER_ID = 0, RECORDING_ID = 1, CONFIG = 2 };

// Table "global_settings", a table of one row.
enum class GlobalSettingsProperty : int {
    ID = 0,
    EVENT_DO_REPEAT = 1,
    EVENT_REPETITION_INTERVAL = 2,
    REPORT_CREATION_INTERVAL = 3,
    REPORT_LANGUAGE = 4,
    REPORT_FILE_FORMAT = 5,
    REPORT_FILE_PREFIX = 6,
    REPORT_FILE_PATH = 7,
    REPORT_HEADER_LOGO_PATH = 8,
    REPORT_HEADER_LOGO_POSITION = 9,
    REPORT_HEADER_TITLE = 10,
    REPORT_WATERMARK_PATH = 11,
    REPORT_ENABLED_CHAPTERS = 12,
    REPORT_WATERMARK_TEXT = 13,
    BASE_PASSWORD = 14,
    QUICK_RECORDING_NAME_TEMPLATE = 15,
    QUICK_RECORDING_SECONDS_INTERVAL = 16,
    RESUME_RECORDINGS_ON_STARTUP = 17,
    ACCESS_CONTROL_ACTIVE = 18,
    SECURITY_QUESTIONS_ACTIVE = 19,
    PASSWORD_VALIDITY_PERIOD = 20,
    SCREEN_LOCK_TIMEOUT = 21,
    SMTP_SERVER = 22,
    SMTP_PORT = 23,
    SMTP_CONNECTION_TYPE = 24,
    SMTP_USERNAME = 25,
    SMTP_PASSWORD = 26,
    SMTP_SENDER = 27,
    PREALARM_SECONDS_DELAY = 28,
    BACKUP_INTERVAL = 29,
    BACKUP_TIME_OF_DAY = 30,
    BACKUP_DAY_OF_X = 31,
    BACKUP_PATH = 32,
    BACKUP_PASSWORD = 33,
    BACKUP_KEEP_STRATEGY = 34,
    BACKUP_KEEP_NUM = 35,
    MAX_NUMBER_OF_ALLOWED_FAILED_LOGINS = 36,
    ZELMOR_IP_ADDRESS = 37,
    ZELMOR_PORT = 38,
    ZELMOR_NUM_CONNECTION_ATTEMPTS = 39,
    ZELMOR_IS_ACTIVE = 40,
    SIRENBOX_IP_ADDRESS = 41,
    SIRENBOX_PORT = 42,
    SIRENBOX_NUM_CONNECTION_ATTEMPTS = 43,
    SIRENBOX_IS_ACTIVE = 44
};

// Table "mail_recipient".
enum class MailRecipientProperty : int { ID = 0, MAIL_ADDRESS = 1 };

// Table "log_entry", the application's log. ARG_N stands for the argument
// columns "arg_1" upward.
enum class ProtocolEntryProperty : int {
    ID = 0,
    CREATION_TIME = 1,
    USER_ID = 2,
    EVENT_DESCRIPTION = 3,
    NUM_ARGS = 4,
    ARG_N = 5
};

// Table "room".
enum class RoomProperty : int { ID = 0, ROOM_NAME = 1, IMAGE_PATH = 2, IMAGE_SCALE = 3 };

// Table "room_chamber_position".
enum class RoomChamberPositionProperty : int { CHAMBER_ID = 0, ROOM_ID = 1, CHAMBER_POS_X = 2, CHAMBER_POS_Y = 3 };

// Table "camera".
enum class CameraProperty : int {
    ID = 0,
    IP_V4_ADDRESS = 1,
    IP_V6_ADDRESS = 2,
    USB_PORT = 3,
    RECORDING_ID = 4,
    RECORDING_INTERVAL = 5
};

// Table "application_alarm". SHORT_DESC_ARG_N stands for the argument columns
// "short_desc_arg_1" upward.
enum class AlarmProperty : int {
    ID = 0,
    ALARM_TIMESTAMP = 1,
    ALARM_TYPE = 2,
    IS_ACTIVE = 3,
    ALARM_STATUS = 4,
    USER_ID = 5,
    ALARM_NAME = 6,
    SHORT_DESCRIPTION = 7,
    NUM_SHORT_DESC_ARGS = 8,
    SHORT_DESC_ARG_N = 9,
    DESCRIPTION = 10,
    CHAMBER_ID = 11
};

// Table "alarm_has_signal".
enum class AlarmHasSignalProperty : int { ALARM_ID = 0, SIGNAL_ID = 1 };

} // namespace zelmor::domain::api
