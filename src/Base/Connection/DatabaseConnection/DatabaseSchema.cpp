#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"

#include "Domain/Types/Int10.h"

// The catalogue's lookups are in DatabaseSchemaCatalogue.cpp.

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::api;
using zelmor::domain::types::ChamberSignal;
using zelmor::domain::types::ControllerAddress;
using zelmor::domain::types::Int10;

// Each column lookup ends in the assertion after its switch: only a number that
// names no enumerator gets there.

const QMap<QString, ChamberSignal::SignalType> DatabaseSchema::signalTypeMap = {
    {QStringLiteral("process_value"), ChamberSignal::PROCESS_VALUE},
    {QStringLiteral("set_point"), ChamberSignal::SET_POINT},
    {QStringLiteral("set_point_process_value"), ChamberSignal::SET_POINT_PROCESS_VALUE},
    {QString(), ChamberSignal::NO_SIGNAL_TYPE},
};

const QMap<QString, ControllerAddress::Access> DatabaseSchema::accessMap = {
    {QStringLiteral("RO"), ControllerAddress::READ_ONLY},
    {QStringLiteral("WO"), ControllerAddress::WRITE_ONLY},
    {QStringLiteral("RW"), ControllerAddress::READ_WRITE},
    {QString(), ControllerAddress::UNKNOWN},
};

// "INT8" is a plain int, as "INT32" is: the catalogue's registers are read so.
const QMap<QString, QMetaType::Type> DatabaseSchema::variableTypeMap = {
    {QStringLiteral("BOOL"), QMetaType::Bool},
    {QStringLiteral("CHAR"), QMetaType::Char},
    {QStringLiteral("FLOAT"), QMetaType::Float},
    {QStringLiteral("INT8"), QMetaType::Int},
    {QStringLiteral("INT16"), QMetaType::Short},
    {QStringLiteral("INT32"), QMetaType::Int},
    {QStringLiteral("TIME"), QMetaType::QTime},
    {QStringLiteral("UINT8"), QMetaType::UChar},
    {QStringLiteral("UINT16"), QMetaType::UShort},
    {QStringLiteral("UINT32"), QMetaType::UInt},
    {QStringLiteral("INT10"), QMetaType::Type(Int10::registerMetaType())},
};

int DatabaseSchema::nSignalsMax()
{
    return 48;
}

QString DatabaseSchema::lookupChamberTableName()
{
    return QStringLiteral("chamber");
}

QString DatabaseSchema::lookupChamberColumnName(ChamberProperty property)
{
    switch (property) {
    case ChamberProperty::ID:
        return QStringLiteral("id");
    case ChamberProperty::CHAMBER_NAME:
        return QStringLiteral("chamber_name");
    case ChamberProperty::CHAMBER_TYPE_ID:
        return QStringLiteral("chamber_type_id");
    case ChamberProperty::CHAMBER_TYPE_ADDITIONAL_INFO_ID:
        return QStringLiteral("chamber_type_additional_info_id");
    case ChamberProperty::SERIAL_NO:
        return QStringLiteral("serial_no");
    case ChamberProperty::IS_ARCHIVED:
        return QStringLiteral("is_archived");
    case ChamberProperty::IS_SUBSCRIBED:
        return QStringLiteral("is_subscribed");
    case ChamberProperty::IP_V4_ADDRESS:
        return QStringLiteral("ip_v4_address");
    case ChamberProperty::IP_V6_ADDRESS:
        return QStringLiteral("ip_v6_address");
    case ChamberProperty::MAC_ADDRESS:
        return QStringLiteral("mac_address");
    case ChamberProperty::IS_ACTIVE:
        return QStringLiteral("is_active");
    case ChamberProperty::MODBUS_ADDRESS:
        return QStringLiteral("modbus_address");
    case ChamberProperty::COM_PORT:
        return QStringLiteral("com_port");
    case ChamberProperty::BAUD_RATE:
        return QStringLiteral("baud_rate");
    case ChamberProperty::DATA_BITS:
        return QStringLiteral("data_bits");
    case ChamberProperty::STOP_BITS:
        return QStringLiteral("stop_bits");
    case ChamberProperty::PARITY:
        return QStringLiteral("parity");
    case ChamberProperty::PROTOCOL_ID:
        return QStringLiteral("protocol_id");
    case ChamberProperty::CONVERTER_ID:
        return QStringLiteral("converter_id");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupChamberHasCustomSignalNameTableName()
{
    return QStringLiteral("chamber_has_custom_signal_name");
}

QString DatabaseSchema::lookupChamberHasCustomSignalNameColumnName(ChamberHasCustomSignalNameProperty property)
{
    switch (property) {
    case ChamberHasCustomSignalNameProperty::CHAMBER_ID:
        return QStringLiteral("chamber_id");
    case ChamberHasCustomSignalNameProperty::SIGNAL_ID:
        return QStringLiteral("signal_id");
    case ChamberHasCustomSignalNameProperty::SIGNAL_NAME:
        return QStringLiteral("signal_name");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupChamberHasSignalDelayTableName()
{
    return QStringLiteral("chamber_has_signal_delay");
}

QString DatabaseSchema::lookupChamberHasSignalDelayColumnName(ChamberHasSignalDelayProperty property)
{
    switch (property) {
    case ChamberHasSignalDelayProperty::CHAMBER_ID:
        return QStringLiteral("chamber_id");
    case ChamberHasSignalDelayProperty::SIGNAL_ID:
        return QStringLiteral("signal_id");
    case ChamberHasSignalDelayProperty::DELAY1_IN_SECONDS:
        return QStringLiteral("delay1_in_seconds");
    case ChamberHasSignalDelayProperty::DELAY2_IN_SECONDS:
        return QStringLiteral("delay2_in_seconds");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupChamberHasSubscribedSignalTableName()
{
    return QStringLiteral("chamber_has_subscribed_signal");
}

QString DatabaseSchema::lookupChamberHasSubscribedSignalColumnName(ChamberHasSubscribedSignalProperty property)
{
    switch (property) {
    case ChamberHasSubscribedSignalProperty::CHAMBER_ID:
        return QStringLiteral("chamber_id");
    case ChamberHasSubscribedSignalProperty::SIGNAL_ID:
        return QStringLiteral("signal_id");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupToleranceRangeTableName()
{
    return QStringLiteral("tolerance_range");
}

QString DatabaseSchema::lookupToleranceRangeColumnName(ToleranceRangeProperty property)
{
    switch (property) {
    case ToleranceRangeProperty::EFFECTIVE_FROM:
        return QStringLiteral("effective_from");
    case ToleranceRangeProperty::CHAMBER_ID:
        return QStringLiteral("chamber_id");
    case ToleranceRangeProperty::SIGNAL_ID:
        return QStringLiteral("signal_id");
    case ToleranceRangeProperty::RANGE_TYPE:
        return QStringLiteral("range_type");
    case ToleranceRangeProperty::RANGE_MIN:
        return QStringLiteral("range_min");
    case ToleranceRangeProperty::RANGE_MAX:
        return QStringLiteral("range_max");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupProgramTableName()
{
    return QStringLiteral("program");
}

QString DatabaseSchema::lookupProgramColumnName(ProgramProperty property)
{
    switch (property) {
    case ProgramProperty::ID:
        return QStringLiteral("id");
    case ProgramProperty::PROGRAM_NAME:
        return QStringLiteral("program_name");
    case ProgramProperty::USER_ID:
        return QStringLiteral("user_id");
    case ProgramProperty::INFO_TEXT:
        return QStringLiteral("info_text");
    case ProgramProperty::PROGRAM_TYPE:
        return QStringLiteral("program_type");
    case ProgramProperty::EDITED:
        return QStringLiteral("edited");
    case ProgramProperty::CHAMBER_TYPE_ID:
        return QStringLiteral("chamber_type_id");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupProgramStepTableName()
{
    return QStringLiteral("program_step");
}

QString DatabaseSchema::lookupProgramStepColumnName(ProgramStepProperty property)
{
    switch (property) {
    case ProgramStepProperty::ID:
        return QStringLiteral("id");
    case ProgramStepProperty::PROGRAM_ID:
        return QStringLiteral("program_id");
    case ProgramStepProperty::ORDER_NUMBER:
        return QStringLiteral("order_number");
    case ProgramStepProperty::STEP_TYPE:
        return QStringLiteral("step_type");
    case ProgramStepProperty::SECTION_ID:
        return QStringLiteral("section_id");
    case ProgramStepProperty::SUB_PROGRAM_ID:
        return QStringLiteral("sub_program_id");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupProgramSectionTableName()
{
    return QStringLiteral("program_section");
}

QString DatabaseSchema::lookupProgramSectionColumnName(ProgramSectionProperty property)
{
    switch (property) {
    case ProgramSectionProperty::ID:
        return QStringLiteral("id");
    case ProgramSectionProperty::DURATION_IN_SECONDS:
        return QStringLiteral("duration_in_seconds");
    case ProgramSectionProperty::TRANSITION_TYPE:
        return QStringLiteral("transition_type");
    case ProgramSectionProperty::BREAKPOINT:
        return QStringLiteral("breakpoint");
    case ProgramSectionProperty::PROGRAM_EVENT_MESSAGE:
        return QStringLiteral("program_event_message");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupProgramSetpointTableName()
{
    return QStringLiteral("program_setpoint");
}

QString DatabaseSchema::lookupProgramSetpointColumnName(ProgramSetpointProperty property)
{
    switch (property) {
    case ProgramSetpointProperty::PROGRAM_SECTION_ID:
        return QStringLiteral("program_section_id");
    case ProgramSetpointProperty::SIGNAL_ID:
        return QStringLiteral("signal_id");
    case ProgramSetpointProperty::SETPOINT:
        return QStringLiteral("setpoint");
    case ProgramSetpointProperty::TOLERANCE_RANGE_MIN:
        return QStringLiteral("tolerance_range_min");
    case ProgramSetpointProperty::TOLERANCE_RANGE_MAX:
        return QStringLiteral("tolerance_range_max");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupProgramStepRepetitionTableName()
{
    return QStringLiteral("program_step_repetition");
}

QString DatabaseSchema::lookupProgramStepRepetitionColumnName(ProgramStepRepetitionProperty property)
{
    switch (property) {
    case ProgramStepRepetitionProperty::ID:
        return QStringLiteral("id");
    case ProgramStepRepetitionProperty::PROGRAM_ID:
        return QStringLiteral("program_id");
    case ProgramStepRepetitionProperty::START_STEP_ID:
        return QStringLiteral("start_step_id");
    case ProgramStepRepetitionProperty::END_STEP_ID:
        return QStringLiteral("end_step_id");
    case ProgramStepRepetitionProperty::NUM_REPETITIONS:
        return QStringLiteral("num_repetitions");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupRecordingTableName()
{
    return QStringLiteral("recording");
}

QString DatabaseSchema::lookupRecordingColumnName(RecordingProperty property)
{
    switch (property) {
    case RecordingProperty::ID:
        return QStringLiteral("id");
    case RecordingProperty::RECORDING_NAME:
        return QStringLiteral("recording_name");
    case RecordingProperty::CHAMBER_ID:
        return QStringLiteral("chamber_id");
    case RecordingProperty::USER_ID:
        return QStringLiteral("user_id");
    case RecordingProperty::SECONDS_INTERVAL:
        return QStringLiteral("seconds_interval");
    case RecordingProperty::START_TIME:
        return QStringLiteral("start_time");
    case RecordingProperty::END_TIME:
        return QStringLiteral("end_time");
    case RecordingProperty::IS_ACTIVE:
        return QStringLiteral("is_active");
    case RecordingProperty::ADDITIONAL_INFO:
        return QStringLiteral("additional_info");
    case RecordingProperty::FREE_TEXT:
        return QStringLiteral("free_text");
    case RecordingProperty::IS_ARCHIVED:
        return QStringLiteral("is_archived");
    case RecordingProperty::AUTOMATICALLY_CREATE_REPORT:
        return QStringLiteral("automatically_create_report");
    case RecordingProperty::IS_START_RECONDING_ALLOWED:
        return QStringLiteral("is_start_reconding_allowed");
    case RecordingProperty::NUMBER_OF_RECORDSETS:
        return QStringLiteral("number_of_recordsets");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupMetaRecordingHasRecordingTableName()
{
    return QStringLiteral("meta_recording_has_recording");
}

QString DatabaseSchema::lookupMetaRecordingHasRecordingColumnName(MetaRecordingHasRecordingProperty property)
{
    switch (property) {
    case MetaRecordingHasRecordingProperty::META_RECORDING_ID:
        return QStringLiteral("meta_recording_id");
    case MetaRecordingHasRecordingProperty::RECORDING_ID:
        return QStringLiteral("recording_id");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupRecordsetTableName()
{
    return QStringLiteral("record_set");
}

QString DatabaseSchema::lookupRecordsetColumnName(RecordsetProperty property)
{
    switch (property) {
    case RecordsetProperty::ID:
        return QStringLiteral("id");
    case RecordsetProperty::RECORDING_ID:
        return QStringLiteral("recording_id");
    case RecordsetProperty::RECORD_TIME:
        return QStringLiteral("record_time");
    case RecordsetProperty::SIGNAL_N:
        return QStringLiteral("signal_%1");
    case RecordsetProperty::IS_RETRIEVED_FROM_CHAMBER:
        return QStringLiteral("is_retrieved_from_chamber");
    case RecordsetProperty::ALARM_TYPE:
        return QStringLiteral("alarm_type");
    case RecordsetProperty::CAMERA_IMAGE_PATH:
        return QStringLiteral("camera_image_path");
    case RecordsetProperty::CHAMBER_MODE:
        return QStringLiteral("chamber_mode");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupRecordsetCommentTableName()
{
    return QStringLiteral("record_set_comment");
}

QString DatabaseSchema::lookupRecordsetCommentColumnName(RecordsetCommentProperty property)
{
    switch (property) {
    case RecordsetCommentProperty::RECORDSET_ID:
        return QStringLiteral("recordset_id");
    case RecordsetCommentProperty::USER_ID:
        return QStringLiteral("user_id");
    case RecordsetCommentProperty::CREATION_TIME:
        return QStringLiteral("creation_time");
    case RecordsetCommentProperty::COMMENT_TEXT:
        return QStringLiteral("comment_text");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupRecordingHasSignalColumnTableName()
{
    return QStringLiteral("recording_has_signal_column");
}

QString DatabaseSchema::lookupRecordingHasSignalColumnColumnName(RecordingHasSignalColumnProperty property)
{
    switch (property) {
    case RecordingHasSignalColumnProperty::RECORDING_ID:
        return QStringLiteral("recording_id");
    case RecordingHasSignalColumnProperty::SIGNAL_ID:
        return QStringLiteral("signal_id");
    case RecordingHasSignalColumnProperty::RECORDSET_SIGNAL_COLUMN:
        return QStringLiteral("recordset_signal_column");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupUserTableName()
{
    return QStringLiteral("application_user");
}

QString DatabaseSchema::lookupUserColumnName(UserProperty property)
{
    switch (property) {
    case UserProperty::ID:
        return QStringLiteral("id");
    case UserProperty::LOGIN_NAME:
        return QStringLiteral("login_name");
    case UserProperty::MAIL_ADDRESS:
        return QStringLiteral("mail_address");
    case UserProperty::FIRST_NAME:
        return QStringLiteral("first_name");
    case UserProperty::LAST_NAME:
        return QStringLiteral("last_name");
    case UserProperty::PASSWORD_HASH:
        return QStringLiteral("password_hash");
    case UserProperty::PASSWORD_SALT:
        return QStringLiteral("password_salt");
    case UserProperty::PASSWORD_CREATION_TIME:
        return QStringLiteral("password_creation_time");
    case UserProperty::PASSWORD_EXPIRATION_TIME:
        return QStringLiteral("password_expiration_time");
    case UserProperty::PASSWORD_IS_TEMPORARY:
        return QStringLiteral("password_is_temporary");
    case UserProperty::NUMBER_FAILED_LOGIN_ATTEMPTS:
        return QStringLiteral("number_failed_login_attempts");
    case UserProperty::NUMBER_FAILED_SECURITY_QUESTION_ATTEMPTS:
        return QStringLiteral("number_failed_security_question_attempts");
    case UserProperty::IS_BANNED:
        return QStringLiteral("is_banned");
    case UserProperty::IS_DELETED:
        return QStringLiteral("is_deleted");
    case UserProperty::USER_LEVEL:
        return QStringLiteral("user_level");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupUserHasSecurityQuestionTableName()
{
    return QStringLiteral("user_has_security_question");
}

QString DatabaseSchema::lookupUserHasSecurityQuestionColumnName(UserHasSecurityQuestionProperty property)
{
    switch (property) {
    case UserHasSecurityQuestionProperty::USER_ID:
        return QStringLiteral("user_id");
    case UserHasSecurityQuestionProperty::QUESTION_ID:
        return QStringLiteral("question_id");
    case UserHasSecurityQuestionProperty::ANSWER_HASH:
        return QStringLiteral("answer_hash");
    case UserHasSecurityQuestionProperty::ANSWER_SALT:
        return QStringLiteral("answer_salt");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupUserPreferencesTableName()
{
    return QStringLiteral("user_preferences");
}

QString DatabaseSchema::lookupUserPreferencesColumnName(UserPreferencesProperty property)
{
    switch (property) {
    case UserPreferencesProperty::USER_ID:
        return QStringLiteral("user_id");
    case UserPreferencesProperty::DEFAULT_FILE_FORMAT:
        return QStringLiteral("default_file_format");
    case UserPreferencesProperty::LOCALIZATION:
        return QStringLiteral("localization");
    case UserPreferencesProperty::TIME_FORMAT:
        return QStringLiteral("time_format");
    case UserPreferencesProperty::DATE_FORMAT:
        return QStringLiteral("date_format");
    case UserPreferencesProperty::DECIMAL_FORMAT:
        return QStringLiteral("decimal_format");
    case UserPreferencesProperty::TEMPERATURE_UNIT:
        return QStringLiteral("temperature_unit");
    case UserPreferencesProperty::HUMIDITY_UNIT:
        return QStringLiteral("humidity_unit");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupUserHasChamberSignalVisibilityPreferenceTableName()
{
    return QStringLiteral("user_has_chamber_signal_visibility_preference");
}

QString DatabaseSchema::lookupUserHasChamberSignalVisibilityPreferenceColumnName(
    UserHasChamberSignalVisibilityPreferenceProperty property)
{
    switch (property) {
    case UserHasChamberSignalVisibilityPreferenceProperty::USER_ID:
        return QStringLiteral("user_id");
    case UserHasChamberSignalVisibilityPreferenceProperty::CHAMBER_ID:
        return QStringLiteral("chamber_id");
    case UserHasChamberSignalVisibilityPreferenceProperty::SIGNAL_ID:
        return QStringLiteral("signal_id");
    case UserHasChamberSignalVisibilityPreferenceProperty::POSITION:
        return QStringLiteral("position");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupUserRecordingConfigTableName()
{
    return QStringLiteral("user_recording_config");
}

QString DatabaseSchema::lookupUserRecordingConfigColumnName(UserRecordingConfigProperty property)
{
    switch (property) {
    case UserRecordingConfigProperty::USER_ID:
        return QStringLiteral("user_id");
    case UserRecordingConfigProperty::RECORDING_ID:
        return QStringLiteral("recording_id");
    case UserRecordingConfigProperty::CONFIG:
        return QStringLiteral("config");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupGlobalSettingsTableName()
{
    return QStringLiteral("global_settings");
}

QString DatabaseSchema::lookupGlobalSettingsColumnName(GlobalSettingsProperty property)
{
    switch (property) {
    case GlobalSettingsProperty::ID:
        return QStringLiteral("id");
    case GlobalSettingsProperty::EVENT_DO_REPEAT:
        return QStringLiteral("event_do_repeat");
    case GlobalSettingsProperty::EVENT_REPETITION_INTERVAL:
        return QStringLiteral("event_repetition_interval");
    case GlobalSettingsProperty::REPORT_CREATION_INTERVAL:
        return QStringLiteral("report_creation_interval");
    case GlobalSettingsProperty::REPORT_LANGUAGE:
        return QStringLiteral("report_language");
    case GlobalSettingsProperty::REPORT_FILE_FORMAT:
        return QStringLiteral("report_file_format");
    case GlobalSettingsProperty::REPORT_FILE_PREFIX:
        return QStringLiteral("report_file_prefix");
    case GlobalSettingsProperty::REPORT_FILE_PATH:
        return QStringLiteral("report_file_path");
    case GlobalSettingsProperty::REPORT_HEADER_LOGO_PATH:
        return QStringLiteral("report_header_logo_path");
    case GlobalSettingsProperty::REPORT_HEADER_LOGO_POSITION:
        return QStringLiteral("report_header_logo_position");
    case GlobalSettingsProperty::REPORT_HEADER_TITLE:
        return QStringLiteral("report_header_title");
    case GlobalSettingsProperty::REPORT_WATERMARK_PATH:
        return QStringLiteral("report_watermark_path");
    case GlobalSettingsProperty::REPORT_ENABLED_CHAPTERS:
        return QStringLiteral("report_enabled_chapters");
    case GlobalSettingsProperty::REPORT_WATERMARK_TEXT:
        return QStringLiteral("report_watermark_text");
    case GlobalSettingsProperty::BASE_PASSWORD:
        return QStringLiteral("base_password");
    case GlobalSettingsProperty::QUICK_RECORDING_NAME_TEMPLATE:
        return QStringLiteral("quick_recording_name_template");
    case GlobalSettingsProperty::QUICK_RECORDING_SECONDS_INTERVAL:
        return QStringLiteral("quick_recording_seconds_interval");
    case GlobalSettingsProperty::RESUME_RECORDINGS_ON_STARTUP:
        return QStringLiteral("resume_recordings_on_startup");
    case GlobalSettingsProperty::ACCESS_CONTROL_ACTIVE:
        return QStringLiteral("access_control_active");
    case GlobalSettingsProperty::SECURITY_QUESTIONS_ACTIVE:
        return QStringLiteral("security_questions_active");
    case GlobalSettingsProperty::PASSWORD_VALIDITY_PERIOD:
        return QStringLiteral("password_validity_period");
    case GlobalSettingsProperty::SCREEN_LOCK_TIMEOUT:
        return QStringLiteral("screen_lock_timeout");
    case GlobalSettingsProperty::SMTP_SERVER:
        return QStringLiteral("smtp_server");
    case GlobalSettingsProperty::SMTP_PORT:
        return QStringLiteral("smtp_port");
    case GlobalSettingsProperty::SMTP_CONNECTION_TYPE:
        return QStringLiteral("smtp_connection_type");
    case GlobalSettingsProperty::SMTP_USERNAME:
        return QStringLiteral("smtp_username");
    case GlobalSettingsProperty::SMTP_PASSWORD:
        return QStringLiteral("smtp_password");
    case GlobalSettingsProperty::SMTP_SENDER:
        return QStringLiteral("smtp_sender");
    case GlobalSettingsProperty::PREALARM_SECONDS_DELAY:
        return QStringLiteral("prealarm_seconds_delay");
    case GlobalSettingsProperty::BACKUP_INTERVAL:
        return QStringLiteral("backup_interval");
    case GlobalSettingsProperty::BACKUP_TIME_OF_DAY:
        return QStringLiteral("backup_time_of_day");
    case GlobalSettingsProperty::BACKUP_DAY_OF_X:
        return QStringLiteral("backup_day_of_x");
    case GlobalSettingsProperty::BACKUP_PATH:
        return QStringLiteral("backup_path");
    case GlobalSettingsProperty::BACKUP_PASSWORD:
        return QStringLiteral("backup_password");
    case GlobalSettingsProperty::BACKUP_KEEP_STRATEGY:
        return QStringLiteral("backup_keep_strategy");
    case GlobalSettingsProperty::BACKUP_KEEP_NUM:
        return QStringLiteral("backup_keep_num");
    case GlobalSettingsProperty::MAX_NUMBER_OF_ALLOWED_FAILED_LOGINS:
        return QStringLiteral("max_number_of_allowed_failed_logins");
    case GlobalSettingsProperty::ZELMOR_IP_ADDRESS:
        return QStringLiteral("zelmor_ip_address");
    case GlobalSettingsProperty::ZELMOR_PORT:
        return QStringLiteral("zelmor_port");
    case GlobalSettingsProperty::ZELMOR_NUM_CONNECTION_ATTEMPTS:
        return QStringLiteral("zelmor_num_connection_attempts");
    case GlobalSettingsProperty::ZELMOR_IS_ACTIVE:
        return QStringLiteral("zelmor_is_active");
    case GlobalSettingsProperty::SIRENBOX_IP_ADDRESS:
        return QStringLiteral("sirenbox_ip_address");
    case GlobalSettingsProperty::SIRENBOX_PORT:
        return QStringLiteral("sirenbox_port");
    case GlobalSettingsProperty::SIRENBOX_NUM_CONNECTION_ATTEMPTS:
        return QStringLiteral("sirenbox_num_connection_attempts");
    case GlobalSettingsProperty::SIRENBOX_IS_ACTIVE:
        return QStringLiteral("sirenbox_is_active");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupMailRecipientTableName()
{
    return QStringLiteral("mail_recipient");
}

QString DatabaseSchema::lookupMailRecipientColumnName(MailRecipientProperty property)
{
    switch (property) {
    case MailRecipientProperty::ID:
        return QStringLiteral("id");
    case MailRecipientProperty::MAIL_ADDRESS:
        return QStringLiteral("mail_address");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupProtocolEntryTableName()
{
    return QStringLiteral("log_entry");
}

QString DatabaseSchema::lookupProtocolEntryColumnName(ProtocolEntryProperty property)
{
    switch (property) {
    case ProtocolEntryProperty::ID:
        return QStringLiteral("id");
    case ProtocolEntryProperty::CREATION_TIME:
        return QStringLiteral("creation_time");
    case ProtocolEntryProperty::USER_ID:
        return QStringLiteral("user_id");
    case ProtocolEntryProperty::EVENT_DESCRIPTION:
        return QStringLiteral("event_description");
    case ProtocolEntryProperty::NUM_ARGS:
        return QStringLiteral("num_args");
    case ProtocolEntryProperty::ARG_N:
        return QStringLiteral("arg_%1");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupRoomTableName()
{
    return QStringLiteral("room");
}

QString DatabaseSchema::lookupRoomColumnName(RoomProperty property)
{
    switch (property) {
    case RoomProperty::ID:
        return QStringLiteral("id");
    case RoomProperty::ROOM_NAME:
        return QStringLiteral("room_name");
    case RoomProperty::IMAGE_PATH:
        return QStringLiteral("image_path");
    case RoomProperty::IMAGE_SCALE:
        return QStringLiteral("image_scale");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupRoomChamberPositionTableName()
{
    return QStringLiteral("room_chamber_position");
}

QString DatabaseSchema::lookupRoomChamberPositionColumnName(RoomChamberPositionProperty property)
{
    switch (property) {
    case RoomChamberPositionProperty::CHAMBER_ID:
        return QStringLiteral("chamber_id");
    case RoomChamberPositionProperty::ROOM_ID:
        return QStringLiteral("room_id");
    case RoomChamberPositionProperty::CHAMBER_POS_X:
        return QStringLiteral("chamber_pos_x");
    case RoomChamberPositionProperty::CHAMBER_POS_Y:
        return QStringLiteral("chamber_pos_y");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupCameraTableName()
{
    return QStringLiteral("camera");
}

QString DatabaseSchema::lookupCameraColumnName(CameraProperty property)
{
    switch (property) {
    case CameraProperty::ID:
        return QStringLiteral("id");
    case CameraProperty::IP_V4_ADDRESS:
        return QStringLiteral("ip_v4_address");
    case CameraProperty::IP_V6_ADDRESS:
        return QStringLiteral("ip_v6_address");
    case CameraProperty::USB_PORT:
        return QStringLiteral("usb_port");
    case CameraProperty::RECORDING_ID:
        return QStringLiteral("recording_id");
    case CameraProperty::RECORDING_INTERVAL:
        return QStringLiteral("recording_interval");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupAlarmTableName()
{
    return QStringLiteral("application_alarm");
}

QString DatabaseSchema::lookupAlarmColumnName(AlarmProperty property)
{
    switch (property) {
    case AlarmProperty::ID:
        return QStringLiteral("id");
    case AlarmProperty::ALARM_TIMESTAMP:
        return QStringLiteral("alarm_timestamp");
    case AlarmProperty::ALARM_TYPE:
        return QStringLiteral("alarm_type");
    case AlarmProperty::IS_ACTIVE:
        return QStringLiteral("is_active");
    case AlarmProperty::ALARM_STATUS:
        return QStringLiteral("alarm_status");
    case AlarmProperty::USER_ID:
        return QStringLiteral("user_id");
    case AlarmProperty::ALARM_NAME:
        return QStringLiteral("alarm_name");
    case AlarmProperty::SHORT_DESCRIPTION:
        return QStringLiteral("short_description");
    case AlarmProperty::NUM_SHORT_DESC_ARGS:
        return QStringLiteral("num_short_desc_args");
    case AlarmProperty::SHORT_DESC_ARG_N:
        return QStringLiteral("short_desc_arg_%1");
    case AlarmProperty::DESCRIPTION:
        return QStringLiteral("description");
    case AlarmProperty::CHAMBER_ID:
        return QStringLiteral("chamber_id");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupAlarmHasSignalTableName()
{
    return QStringLiteral("alarm_has_signal");
}

QString DatabaseSchema::lookupAlarmHasSignalColumnName(AlarmHasSignalProperty property)
{
    switch (property) {
    case AlarmHasSignalProperty::ALARM_ID:
        return QStringLiteral("alarm_id");
    case AlarmHasSignalProperty::SIGNAL_ID:
        return QStringLiteral("signal_id");
    }
    Q_ASSERT(false);
    return QString();
}

} // namespace zelmor::base::connection::databaseconnection
