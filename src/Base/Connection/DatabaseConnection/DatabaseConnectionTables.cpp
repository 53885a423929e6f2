#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"

#include "Domain/Api/ISqlConnection.h"

// The creation of the application tables. They stand for the older core of the
// schema: a delivered database of the current version has further columns and
// tables, which nothing here adds.

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::api;
using zelmor::domain::types::DatabaseConnectionError;

using Column = SqlQuery::ColumnConfiguration;
using ForeignKey = SqlQuery::ForeignKeyConfiguration;

namespace {

// The numbered id column that SQLite fills by itself.
constexpr SqlQuery::ColumnFlag autoId = SqlQuery::PRIMARY_KEY | SqlQuery::NOT_NULL | SqlQuery::AUTO_INCREMENT;
constexpr SqlQuery::ColumnFlag key = SqlQuery::PRIMARY_KEY | SqlQuery::NOT_NULL;

} // namespace

bool DatabaseConnection::createTableChamber()
{
    const QList<Column> columns = {
        {lookupChamberColumnName(ChamberProperty::ID), SqlQuery::INTEGER, autoId},
        {lookupChamberColumnName(ChamberProperty::CHAMBER_TYPE_ID), SqlQuery::INTEGER},
        {lookupChamberColumnName(ChamberProperty::CHAMBER_TYPE_ADDITIONAL_INFO_ID), SqlQuery::INTEGER},
        {lookupChamberColumnName(ChamberProperty::SERIAL_NO), SqlQuery::INTEGER},
        {lookupChamberColumnName(ChamberProperty::IS_ARCHIVED), SqlQuery::BOOLEAN},
        {lookupChamberColumnName(ChamberProperty::IS_SUBSCRIBED), SqlQuery::BOOLEAN},
        {lookupChamberColumnName(ChamberProperty::IS_ACTIVE), SqlQuery::BOOLEAN},
        {lookupChamberColumnName(ChamberProperty::CHAMBER_NAME), SqlQuery::TEXT},
        {lookupChamberColumnName(ChamberProperty::IP_V4_ADDRESS), SqlQuery::TEXT, SqlQuery::UNIQUE},
        {lookupChamberColumnName(ChamberProperty::IP_V6_ADDRESS), SqlQuery::TEXT, SqlQuery::UNIQUE},
        {lookupChamberColumnName(ChamberProperty::MAC_ADDRESS), SqlQuery::TEXT, SqlQuery::UNIQUE},
        {lookupChamberColumnName(ChamberProperty::MODBUS_ADDRESS), SqlQuery::INTEGER},
        {lookupChamberColumnName(ChamberProperty::COM_PORT), SqlQuery::INTEGER},
        {lookupChamberColumnName(ChamberProperty::PARITY), SqlQuery::INTEGER},
        {lookupChamberColumnName(ChamberProperty::BAUD_RATE), SqlQuery::INTEGER},
        {lookupChamberColumnName(ChamberProperty::DATA_BITS), SqlQuery::INTEGER},
        {lookupChamberColumnName(ChamberProperty::STOP_BITS), SqlQuery::INTEGER},
    };
    return createZelmorTable(lookupChamberTableName(), columns);
}

bool DatabaseConnection::createTableGlobalSettings()
{
    const QList<Column> columns = {
        {lookupGlobalSettingsColumnName(GlobalSettingsProperty::ID), SqlQuery::INTEGER, key},
        {lookupGlobalSettingsColumnName(GlobalSettingsProperty::EVENT_DO_REPEAT), SqlQuery::INTEGER},
        {lookupGlobalSettingsColumnName(GlobalSettingsProperty::EVENT_REPETITION_INTERVAL), SqlQuery::INTEGER},
        {lookupGlobalSettingsColumnName(GlobalSettingsProperty::REPORT_CREATION_INTERVAL), SqlQuery::INTEGER},
        {lookupGlobalSettingsColumnName(GlobalSettingsProperty::BASE_PASSWORD), SqlQuery::TEXT},
        {lookupGlobalSettingsColumnName(GlobalSettingsProperty::QUICK_RECORDING_NAME_TEMPLATE), SqlQuery::TEXT},
        {lookupGlobalSettingsColumnName(GlobalSettingsProperty::QUICK_RECORDING_SECONDS_INTERVAL), SqlQuery::INTEGER},
        {lookupGlobalSettingsColumnName(GlobalSettingsProperty::RESUME_RECORDINGS_ON_STARTUP), SqlQuery::INTEGER},
    };
    return createZelmorTable(lookupGlobalSettingsTableName(), columns);
}

bool DatabaseConnection::createTableMetaRecordingHasRecordings()
{
    const QString metaRecordingId =
        lookupMetaRecordingHasRecordingColumnName(MetaRecordingHasRecordingProperty::META_RECORDING_ID);
    const QString recordingId =
        lookupMetaRecordingHasRecordingColumnName(MetaRecordingHasRecordingProperty::RECORDING_ID);
    const QList<Column> columns = {
        {metaRecordingId, SqlQuery::INTEGER, SqlQuery::NOT_NULL},
        {recordingId, SqlQuery::INTEGER, SqlQuery::NOT_NULL},
    };
    const QString recordingTable = lookupRecordingTableName();
    const QString recordingKey = lookupRecordingColumnName(RecordingProperty::ID);
    const QList<ForeignKey> foreignKeys = {
        {metaRecordingId, recordingTable, recordingKey},
        {recordingId, recordingTable, recordingKey},
    };
    return createZelmorTable(lookupMetaRecordingHasRecordingTableName(), columns, foreignKeys);
}

bool DatabaseConnection::createTableProtocolEntry()
{
    const QString userId = lookupProtocolEntryColumnName(ProtocolEntryProperty::USER_ID);
    const QList<Column> columns = {
        {lookupProtocolEntryColumnName(ProtocolEntryProperty::ID), SqlQuery::INTEGER, key},
        {lookupProtocolEntryColumnName(ProtocolEntryProperty::CREATION_TIME), SqlQuery::DATETIME},
        {lookupProtocolEntryColumnName(ProtocolEntryProperty::EVENT_DESCRIPTION), SqlQuery::TEXT},
        {userId, SqlQuery::INTEGER},
    };
    const QList<ForeignKey> foreignKeys = {
        {userId, lookupUserTableName(), lookupUserColumnName(UserProperty::ID)},
    };
    return createZelmorTable(lookupProtocolEntryTableName(), columns, foreignKeys);
}

bool DatabaseConnection::createTableRecording()
{
    const QString userId = lookupRecordingColumnName(RecordingProperty::USER_ID);
    const QString chamberId = lookupRecordingColumnName(RecordingProperty::CHAMBER_ID);
    const QList<Column> columns = {
        {lookupRecordingColumnName(RecordingProperty::ID), SqlQuery::INTEGER, autoId},
        {lookupRecordingColumnName(RecordingProperty::RECORDING_NAME), SqlQuery::TEXT},
        {userId, SqlQuery::INTEGER},
        {lookupRecordingColumnName(RecordingProperty::FREE_TEXT), SqlQuery::TEXT},
        {chamberId, SqlQuery::INTEGER},
        {lookupRecordingColumnName(RecordingProperty::START_TIME), SqlQuery::DATETIME},
        {lookupRecordingColumnName(RecordingProperty::END_TIME), SqlQuery::DATETIME},
        {lookupRecordingColumnName(RecordingProperty::SECONDS_INTERVAL), SqlQuery::INTEGER},
        {lookupRecordingColumnName(RecordingProperty::IS_ARCHIVED), SqlQuery::BOOLEAN},
        {lookupRecordingColumnName(RecordingProperty::ADDITIONAL_INFO), SqlQuery::TEXT},
        {lookupRecordingColumnName(RecordingProperty::AUTOMATICALLY_CREATE_REPORT), SqlQuery::BOOLEAN},
        {lookupRecordingColumnName(RecordingProperty::IS_ACTIVE), SqlQuery::BOOLEAN},
        {lookupRecordingColumnName(RecordingProperty::NUMBER_OF_RECORDSETS), SqlQuery::INTEGER},
    };
    const QList<ForeignKey> foreignKeys = {
        {userId, lookupUserTableName(), lookupUserColumnName(UserProperty::ID)},
        {chamberId, lookupChamberTableName(), lookupChamberColumnName(ChamberProperty::ID)},
    };
    return createZelmorTable(lookupRecordingTableName(), columns, foreignKeys);
}

bool DatabaseConnection::createTableRecordset()
{
    const QString recordingId = lookupRecordsetColumnName(RecordsetProperty::RECORDING_ID);
    QList<Column> columns = {
        {lookupRecordsetColumnName(RecordsetProperty::ID), SqlQuery::INTEGER, key},
        {lookupRecordsetColumnName(RecordsetProperty::RECORD_TIME), SqlQuery::DATETIME},
        {lookupRecordsetColumnName(RecordsetProperty::IS_RETRIEVED_FROM_CHAMBER), SqlQuery::BOOLEAN},
        {recordingId, SqlQuery::INTEGER, SqlQuery::NOT_NULL},
    };
    const QString signalColumn = lookupRecordsetColumnName(RecordsetProperty::SIGNAL_N);
    for (int number = 1; number <= nSignalsMax(); ++number) {
        columns.append({signalColumn.arg(number), SqlQuery::REAL});
    }
    const QList<ForeignKey> foreignKeys = {
        {recordingId, lookupRecordingTableName(), lookupRecordingColumnName(RecordingProperty::ID)},
    };
    return createZelmorTable(lookupRecordsetTableName(), columns, foreignKeys);
}

bool DatabaseConnection::createTableRecordsetComment()
{
    const QString recordsetId = lookupRecordsetCommentColumnName(RecordsetCommentProperty::RECORDSET_ID);
    const QList<Column> columns = {
        {recordsetId, SqlQuery::INTEGER, key | SqlQuery::UNIQUE},
        {lookupRecordsetCommentColumnName(RecordsetCommentProperty::USER_ID), SqlQuery::INTEGER},
        {lookupRecordsetCommentColumnName(RecordsetCommentProperty::CREATION_TIME), SqlQuery::DATETIME},
        {lookupRecordsetCommentColumnName(RecordsetCommentProperty::COMMENT_TEXT), SqlQuery::TEXT},
    };
    const QList<ForeignKey> foreignKeys = {
        {recordsetId, lookupRecordsetTableName(), lookupRecordsetColumnName(RecordsetProperty::ID)},
    };
    return createZelmorTable(lookupRecordsetCommentTableName(), columns, foreignKeys);
}

bool DatabaseConnection::createTableToleranceRange()
{
    const QString chamberId = lookupToleranceRangeColumnName(ToleranceRangeProperty::CHAMBER_ID);
    // Three key columns: the key becomes a table constraint behind the foreign key.
    const QList<Column> columns = {
        {lookupToleranceRangeColumnName(ToleranceRangeProperty::EFFECTIVE_FROM), SqlQuery::DATETIME, key},
        {chamberId, SqlQuery::INTEGER, key},
        {lookupToleranceRangeColumnName(ToleranceRangeProperty::SIGNAL_ID), SqlQuery::INTEGER, key},
        {lookupToleranceRangeColumnName(ToleranceRangeProperty::RANGE_TYPE), SqlQuery::INTEGER},
        {lookupToleranceRangeColumnName(ToleranceRangeProperty::RANGE_MIN), SqlQuery::REAL},
        {lookupToleranceRangeColumnName(ToleranceRangeProperty::RANGE_MAX), SqlQuery::REAL},
    };
    const QList<ForeignKey> foreignKeys = {
        {chamberId, lookupChamberTableName(), lookupChamberColumnName(ChamberProperty::ID)},
    };
    // Named through the catalogue's lookup, which gives the same text.
    return createZelmorTable(lookupDefaultToleranceRangeTableName(), columns, foreignKeys);
}

bool DatabaseConnection::createTableRoom()
{
    const QList<Column> columns = {
        {lookupRoomColumnName(RoomProperty::ID), SqlQuery::INTEGER, autoId},
        {lookupRoomColumnName(RoomProperty::ROOM_NAME), SqlQuery::TEXT},
        {lookupRoomColumnName(RoomProperty::IMAGE_PATH), SqlQuery::TEXT},
        {lookupRoomColumnName(RoomProperty::IMAGE_SCALE), SqlQuery::REAL},
    };
    return createZelmorTable(lookupRoomTableName(), columns);
}

bool DatabaseConnection::createTableRoomChamberPosition()
{
    const QString chamberId = lookupRoomChamberPositionColumnName(RoomChamberPositionProperty::CHAMBER_ID);
    const QString roomId = lookupRoomChamberPositionColumnName(RoomChamberPositionProperty::ROOM_ID);
    const QList<Column> columns = {
        {chamberId, SqlQuery::INTEGER, key},
        {roomId, SqlQuery::INTEGER},
        {lookupRoomChamberPositionColumnName(RoomChamberPositionProperty::CHAMBER_POS_X), SqlQuery::REAL},
        {lookupRoomChamberPositionColumnName(RoomChamberPositionProperty::CHAMBER_POS_Y), SqlQuery::REAL},
    };
    const QList<ForeignKey> foreignKeys = {
        {chamberId, lookupChamberTableName(), lookupChamberColumnName(ChamberProperty::ID)},
        {roomId, lookupRoomTableName(), lookupRoomColumnName(RoomProperty::ID)},
    };
    return createZelmorTable(lookupRoomChamberPositionTableName(), columns, foreignKeys);
}

bool DatabaseConnection::createTableUser()
{
    const QList<Column> columns = {
        {lookupUserColumnName(UserProperty::ID), SqlQuery::INTEGER, autoId},
        {lookupUserColumnName(UserProperty::LOGIN_NAME), SqlQuery::TEXT},
        {lookupUserColumnName(UserProperty::MAIL_ADDRESS), SqlQuery::TEXT},
        {lookupUserColumnName(UserProperty::PASSWORD_HASH), SqlQuery::BLOB},
        {lookupUserColumnName(UserProperty::PASSWORD_SALT), SqlQuery::BLOB},
        {lookupUserColumnName(UserProperty::PASSWORD_CREATION_TIME), SqlQuery::DATETIME},
        {lookupUserColumnName(UserProperty::PASSWORD_IS_TEMPORARY), SqlQuery::BOOLEAN},
        {lookupUserColumnName(UserProperty::USER_LEVEL), SqlQuery::ENUMERATION},
        {lookupUserColumnName(UserProperty::NUMBER_FAILED_LOGIN_ATTEMPTS), SqlQuery::INTEGER},
        {lookupUserColumnName(UserProperty::NUMBER_FAILED_SECURITY_QUESTION_ATTEMPTS), SqlQuery::INTEGER},
        {lookupUserColumnName(UserProperty::IS_BANNED), SqlQuery::BOOLEAN},
        {lookupUserColumnName(UserProperty::PASSWORD_EXPIRATION_TIME), SqlQuery::DATETIME},
        {lookupUserColumnName(UserProperty::FIRST_NAME), SqlQuery::TEXT},
        {lookupUserColumnName(UserProperty::LAST_NAME), SqlQuery::TEXT},
    };
    return createZelmorTable(lookupUserTableName(), columns);
}

bool DatabaseConnection::createTableUserHasChamberSignalVisibilityPreference()
{
    using Property = UserHasChamberSignalVisibilityPreferenceProperty;
    const QString userId = lookupUserHasChamberSignalVisibilityPreferenceColumnName(Property::USER_ID);
    const QString chamberId = lookupUserHasChamberSignalVisibilityPreferenceColumnName(Property::CHAMBER_ID);
    const QList<Column> columns = {
        {userId, SqlQuery::INTEGER, SqlQuery::NOT_NULL},
        {chamberId, SqlQuery::INTEGER, SqlQuery::NOT_NULL},
        {lookupUserHasChamberSignalVisibilityPreferenceColumnName(Property::SIGNAL_ID), SqlQuery::INTEGER,
         SqlQuery::NOT_NULL},
    };
    const QList<ForeignKey> foreignKeys = {
        {userId, lookupUserTableName(), lookupUserColumnName(UserProperty::ID)},
        {chamberId, lookupChamberTableName(), lookupChamberColumnName(ChamberProperty::ID)},
    };
    return createZelmorTable(lookupUserHasChamberSignalVisibilityPreferenceTableName(), columns, foreignKeys);
}

bool DatabaseConnection::createTableUserPreferences()
{
    const QString userId = lookupUserPreferencesColumnName(UserPreferencesProperty::USER_ID);
    const QList<Column> columns = {
        {userId, SqlQuery::INTEGER, key},
        {lookupUserPreferencesColumnName(UserPreferencesProperty::DEFAULT_FILE_FORMAT), SqlQuery::ENUMERATION},
        {lookupUserPreferencesColumnName(UserPreferencesProperty::LOCALIZATION), SqlQuery::ENUMERATION},
        {lookupUserPreferencesColumnName(UserPreferencesProperty::TIME_FORMAT), SqlQuery::ENUMERATION},
        {lookupUserPreferencesColumnName(UserPreferencesProperty::DATE_FORMAT), SqlQuery::ENUMERATION},
        {lookupUserPreferencesColumnName(UserPreferencesProperty::DECIMAL_FORMAT), SqlQuery::ENUMERATION},
        {lookupUserPreferencesColumnName(UserPreferencesProperty::TEMPERATURE_UNIT), SqlQuery::ENUMERATION},
        {lookupUserPreferencesColumnName(UserPreferencesProperty::HUMIDITY_UNIT), SqlQuery::ENUMERATION},
    };
    const QList<ForeignKey> foreignKeys = {
        {userId, lookupUserTableName(), lookupUserColumnName(UserProperty::ID)},
    };
    return createZelmorTable(lookupUserPreferencesTableName(), columns, foreignKeys);
}

bool DatabaseConnection::createZelmorTable(const QString& table, const QList<SqlQuery::ColumnConfiguration>& columns,
                                           const QList<SqlQuery::ForeignKeyConfiguration>& foreignKeys)
{
    if (!areDependenciesSet()) {
        emit error(DatabaseConnectionError::DEPENDENCIES_NOT_SET);
        return false;
    }
    // An existing table stays as it is, whatever its columns.
    if (applicationDatabase->containsTable(table)) {
        return true;
    }
    for (const SqlQuery::ForeignKeyConfiguration& foreignKey : foreignKeys) {
        if (!createReferenceTable(foreignKey.referenceTable)) {
            qCCritical(DATABASECONNECTION).noquote()
                << QStringLiteral("Missing reference table. Can't create '%1'").arg(table);
            return false;
        }
    }
    SqlQuery query;
    query.createTable(table, columns, foreignKeys);
    return executeZelmorCreateTableQuery(query, table);
}

bool DatabaseConnection::createReferenceTable(const QString& table)
{
    // Only these tables are referenced by the application tables.
    if (table == lookupChamberTableName()) {
        return createTableChamber();
    }
    if (table == lookupRecordingTableName()) {
        return createTableRecording();
    }
    if (table == lookupRecordsetTableName()) {
        return createTableRecordset();
    }
    if (table == lookupRoomTableName()) {
        return createTableRoom();
    }
    if (table == lookupUserTableName()) {
        return createTableUser();
    }
    return false;
}

bool DatabaseConnection::executeZelmorCreateTableQuery(const SqlQuery& query, const QString& table)
{
    const bool success = applicationDatabase->execute(query).success;
    if (!success) {
        qCCritical(DATABASECONNECTION).noquote() << QStringLiteral("Could not create table '%1'").arg(table);
    }
    return success;
}

} // namespace zelmor::base::connection::databaseconnection
