#pragma once

#include "Domain/Api/ApplicationTableProperties.h"
#include "Domain/Api/ConfigurationTableProperties.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ControllerAddress.h"

#include <QMap>
#include <QMetaType>
#include <QString>

namespace zelmor::base::connection::databaseconnection {

// The oldest schema of the application database that the stores can work on.
constexpr int databaseSchemaVersionNumber = 19;

// The names of all tables and columns of both databases, and the texts with
// which the catalogue spells its enumerated columns. No other place of the
// system spells a table or column. DatabaseConnection inherits all of it, so
// callers may name either class.
//
// A column lookup given a number outside its enumeration stops the program
// through an assertion: that is a programming error, never a data error.
// Template columns ("signal_%1", "arg_%1", "short_desc_arg_%1") come back as the
// template; the caller puts the column's number in place of %1.
class DatabaseSchema
{
public:
    // Texts of the catalogue's columns "signal_type", "access" and
    // "variable_type". A text in none of them reads as 0 (QMap::value).
    // Filled before main; the type number of "INT10" is registered then.
    static const QMap<QString, zelmor::domain::types::ChamberSignal::SignalType> signalTypeMap;
    static const QMap<QString, zelmor::domain::types::ControllerAddress::Access> accessMap;
    static const QMap<QString, QMetaType::Type> variableTypeMap;

    // The number of value columns "signal_1" ... of table "record_set".
    static int nSignalsMax();

    // Application database.
    static QString lookupChamberTableName();
    static QString lookupChamberColumnName(zelmor::domain::api::ChamberProperty property);
    static QString lookupChamberHasCustomSignalNameTableName();
    static QString
    lookupChamberHasCustomSignalNameColumnName(zelmor::domain::api::ChamberHasCustomSignalNameProperty property);
    static QString lookupChamberHasSignalDelayTableName();
    static QString lookupChamberHasSignalDelayColumnName(zelmor::domain::api::ChamberHasSignalDelayProperty property);
    static QString lookupChamberHasSubscribedSignalTableName();
    static QString
    lookupChamberHasSubscribedSignalColumnName(zelmor::domain::api::ChamberHasSubscribedSignalProperty property);
    static QString lookupToleranceRangeTableName();
    static QString lookupToleranceRangeColumnName(zelmor::domain::api::ToleranceRangeProperty property);
    static QString lookupProgramTableName();
    static QString lookupProgramColumnName(zelmor::domain::api::ProgramProperty property);
    static QString lookupProgramStepTableName();
    static QString lookupProgramStepColumnName(zelmor::domain::api::ProgramStepProperty property);
    static QString lookupProgramSectionTableName();
    static QString lookupProgramSectionColumnName(zelmor::domain::api::ProgramSectionProperty property);
    static QString lookupProgramSetpointTableName();
    static QString lookupProgramSetpointColumnName(zelmor::domain::api::ProgramSetpointProperty property);
    static QString lookupProgramStepRepetitionTableName();
    static QString lookupProgramStepRepetitionColumnName(zelmor::domain::api::ProgramStepRepetitionProperty property);
    static QString lookupRecordingTableName();
    // One bit only: a combination of bits names no column.
    static QString lookupRecordingColumnName(zelmor::domain::api::RecordingProperty property);
    static QString lookupMetaRecordingHasRecordingTableName();
    static QString
    lookupMetaRecordingHasRecordingColumnName(zelmor::domain::api::MetaRecordingHasRecordingProperty property);
    static QString lookupRecordsetTableName();
    static QString lookupRecordsetColumnName(zelmor::domain::api::RecordsetProperty property);
    static QString lookupRecordsetCommentTableName();
    static QString lookupRecordsetCommentColumnName(zelmor::domain::api::RecordsetCommentProperty property);
    static QString lookupRecordingHasSignalColumnTableName();
    static QString
    lookupRecordingHasSignalColumnColumnName(zelmor::domain::api::RecordingHasSignalColumnProperty property);
    static QString lookupUserTableName();
    static QString lookupUserColumnName(zelmor::domain::api::UserProperty property);
    static QString lookupUserHasSecurityQuestionTableName();
    static QString
    lookupUserHasSecurityQuestionColumnName(zelmor::domain::api::UserHasSecurityQuestionProperty property);
    static QString lookupUserPreferencesTableName();
    static QString lookupUserPreferencesColumnName(zelmor::domain::api::UserPreferencesProperty property);
    static QString lookupUserHasChamberSignalVisibilityPreferenceTableName();
    static QString lookupUserHasChamberSignalVisibilityPreferenceColumnName(
        zelmor::domain::api::UserHasChamberSignalVisibilityPreferenceProperty property);
    static QString lookupUserRecordingConfigTableName();
    static QString lookupUserRecordingConfigColumnName(zelmor::domain::api::UserRecordingConfigProperty property);
    static QString lookupGlobalSettingsTableName();
    static QString lookupGlobalSettingsColumnName(zelmor::domain::api::GlobalSettingsProperty property);
    static QString lookupMailRecipientTableName();
    static QString lookupMailRecipientColumnName(zelmor::domain::api::MailRecipientProperty property);
    static QString lookupProtocolEntryTableName();
    static QString lookupProtocolEntryColumnName(zelmor::domain::api::ProtocolEntryProperty property);
    static QString lookupRoomTableName();
    static QString lookupRoomColumnName(zelmor::domain::api::RoomProperty property);
    static QString lookupRoomChamberPositionTableName();
    static QString lookupRoomChamberPositionColumnName(zelmor::domain::api::RoomChamberPositionProperty property);
    static QString lookupCameraTableName();
    static QString lookupCameraColumnName(zelmor::domain::api::CameraProperty property);
    static QString lookupAlarmTableName();
    static QString lookupAlarmColumnName(zelmor::domain::api::AlarmProperty property);
    static QString lookupAlarmHasSignalTableName();
    static QString lookupAlarmHasSignalColumnName(zelmor::domain::api::AlarmHasSignalProperty property);

    // Configuration database.
    static QString lookupAdditionalInfoTableName();
    static QString lookupAdditionalInfoColumnName(zelmor::domain::api::AdditionalInfoProperty property);
    static QString lookupChamberTypeHasAdditionalInfoTableName();
    static QString
    lookupChamberTypeHasAdditionalInfoColumnName(zelmor::domain::api::ChamberTypeHasAdditionalInfoProperty property);
    static QString lookupChamberTypeHasProtocolTableName();
    static QString lookupChamberTypeHasProtocolColumnName(zelmor::domain::api::ChamberTypeHasProtocolProperty property);
    static QString lookupChamberTypeHasSignalTableName();
    static QString lookupChamberTypeHasSignalColumnName(zelmor::domain::api::ChamberTypeHasSignalProperty property);
    static QString lookupChamberTypeTableName();
    static QString lookupChamberTypeColumnName(zelmor::domain::api::ChamberTypeProperty property);
    static QString lookupControllerTableName();
    static QString lookupControllerColumnName(zelmor::domain::api::ControllerProperty property);
    static QString lookupControllerDataTableName();
    static QString lookupControllerDataColumnName(zelmor::domain::api::ControllerDataProperty property);
    static QString lookupProtocolTableName();
    static QString lookupProtocolColumnName(zelmor::domain::api::ProtocolProperty property);
    static QString lookupSignalTableName();
    static QString lookupSignalColumnName(zelmor::domain::api::SignalProperty property);
    static QString lookupValueTypeTableName();
    static QString lookupValueTypeColumnName(zelmor::domain::api::ValueTypeProperty property);
    static QString lookupChamberTypeHasControlSignalsTableName();
    static QString
    lookupChamberTypeHasControlSignalsColumnName(zelmor::domain::api::ChamberTypeHasControlSignalsProperty property);
    static QString lookupControlSignalsTableName();
    static QString lookupControlSignalsColumnName(zelmor::domain::api::ControlSignalsProperty property);
    static QString lookupChamberTypeHasDataloggerSignalTableName();
    static QString lookupChamberTypeHasDataloggerSignalColumnName(
        zelmor::domain::api::ChamberTypeHasDataloggerSignalProperty property);
    static QString lookupChamberTypeHasOptionsTableName();
    static QString lookupChamberTypeHasOptionsColumnName(zelmor::domain::api::ChamberTypeHasOptionsProperty property);
    static QString lookupOptionsTableName();
    static QString lookupOptionsColumnName(zelmor::domain::api::OptionsProperty property);
    static QString lookupChamberTypeHasTestSignalTableName();
    static QString
    lookupChamberTypeHasTestSignalColumnName(zelmor::domain::api::ChamberTypeHasTestSignalProperty property);
    static QString lookupChamberTypeHasToleranceRangeTableName();
    static QString
    lookupChamberTypeHasToleranceRangeColumnName(zelmor::domain::api::ChamberTypeHasToleranceRangeProperty property);
    // The same text as lookupToleranceRangeTableName(); the two databases keep them apart.
    static QString lookupDefaultToleranceRangeTableName();
    static QString lookupDefaultToleranceRangeColumnName(zelmor::domain::api::DefaultToleranceRangeProperty property);
    static QString lookupActivityAccessTableName();
    static QString lookupActivityAccessColumnName(zelmor::domain::api::ActivityAccessProperty property);
};

} // namespace zelmor::base::connection::databaseconnection
