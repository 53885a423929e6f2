#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"

// The lookups of the configuration database: the chamber catalogue and the
// access table. Each column lookup ends in the assertion after its switch: only
// a number that names no enumerator gets there.

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::api;

QString DatabaseSchema::lookupAdditionalInfoTableName()
{
    return QStringLiteral("additional_info");
}

QString DatabaseSchema::lookupAdditionalInfoColumnName(AdditionalInfoProperty property)
{
    switch (property) {
    case AdditionalInfoProperty::ID:
        return QStringLiteral("id");
    case AdditionalInfoProperty::ARTICLE_NR:
        return QStringLiteral("article_nr");
    case AdditionalInfoProperty::INFO:
        return QStringLiteral("info");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupChamberTypeHasAdditionalInfoTableName()
{
    return QStringLiteral("chamber_type_has_additional_info");
}

QString DatabaseSchema::lookupChamberTypeHasAdditionalInfoColumnName(ChamberTypeHasAdditionalInfoProperty property)
{
    switch (property) {
    case ChamberTypeHasAdditionalInfoProperty::CHAMBER_TYPE_ID:
        return QStringLiteral("chamber_type_id");
    case ChamberTypeHasAdditionalInfoProperty::ADDITIONAL_INFO_ID:
        return QStringLiteral("additional_info_id");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupChamberTypeHasProtocolTableName()
{
    return QStringLiteral("chamber_type_has_protocol");
}

QString DatabaseSchema::lookupChamberTypeHasProtocolColumnName(ChamberTypeHasProtocolProperty property)
{
    switch (property) {
    case ChamberTypeHasProtocolProperty::CHAMBER_TYPE_ID:
        return QStringLiteral("chamber_type_id");
    case ChamberTypeHasProtocolProperty::PROTOCOL_ID:
        return QStringLiteral("protocol_id");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupChamberTypeHasSignalTableName()
{
    return QStringLiteral("chamber_type_has_signal");
}

QString DatabaseSchema::lookupChamberTypeHasSignalColumnName(ChamberTypeHasSignalProperty property)
{
    switch (property) {
    case ChamberTypeHasSignalProperty::CHAMBER_TYPE_ID:
        return QStringLiteral("chamber_type_id");
    case ChamberTypeHasSignalProperty::SIGNAL_ID:
        return QStringLiteral("signal_id");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupChamberTypeTableName()
{
    return QStringLiteral("chamber_type");
}

QString DatabaseSchema::lookupChamberTypeColumnName(ChamberTypeProperty property)
{
    switch (property) {
    case ChamberTypeProperty::ID:
        return QStringLiteral("id");
    case ChamberTypeProperty::TYPE:
        return QStringLiteral("type");
    case ChamberTypeProperty::DEVELOPEMENT_STATE:
        return QStringLiteral("developement_state");
    case ChamberTypeProperty::SIZE:
        return QStringLiteral("size");
    case ChamberTypeProperty::VOLTAGE:
        return QStringLiteral("voltage");
    case ChamberTypeProperty::IMAGE:
        return QStringLiteral("image");
    case ChamberTypeProperty::DESCRIPTION:
        return QStringLiteral("description");
    case ChamberTypeProperty::FIRMWARE_START:
        return QStringLiteral("firmware_start");
    case ChamberTypeProperty::FIRMWARE_ENDE:
        return QStringLiteral("firmware_ende");
    case ChamberTypeProperty::SETUP_KENNUNG:
        return QStringLiteral("setup_kennung");
    case ChamberTypeProperty::SETUP_VERSION_START:
        return QStringLiteral("setup_version_start");
    case ChamberTypeProperty::SETUP_VERSION_ENDE:
        return QStringLiteral("setup_version_ende");
    case ChamberTypeProperty::KENNUNG_PROGRAMME:
        return QStringLiteral("kennung_programme");
    case ChamberTypeProperty::CONTROLLER_ID:
        return QStringLiteral("controller_id");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupControllerTableName()
{
    return QStringLiteral("controller");
}

QString DatabaseSchema::lookupControllerColumnName(ControllerProperty property)
{
    switch (property) {
    case ControllerProperty::ID:
        return QStringLiteral("id");
    case ControllerProperty::TYPE:
        return QStringLiteral("type");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupControllerDataTableName()
{
    return QStringLiteral("controller_data");
}

QString DatabaseSchema::lookupControllerDataColumnName(ControllerDataProperty property)
{
    switch (property) {
    case ControllerDataProperty::ID:
        return QStringLiteral("id");
    case ControllerDataProperty::ADDRESS:
        return QStringLiteral("address");
    case ControllerDataProperty::ADDRESS_TYPE:
        return QStringLiteral("address_type");
    case ControllerDataProperty::VARIABLE_TYPE:
        return QStringLiteral("variable_type");
    case ControllerDataProperty::ACCESS:
        return QStringLiteral("access");
    case ControllerDataProperty::DESCRIPTION:
        return QStringLiteral("description");
    case ControllerDataProperty::CONTROLLER_ID:
        return QStringLiteral("controller_id");
    case ControllerDataProperty::SET_POINT_NR:
        return QStringLiteral("set_point_nr");
    case ControllerDataProperty::COMMENT:
        return QStringLiteral("comment");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupProtocolTableName()
{
    return QStringLiteral("protocol");
}

QString DatabaseSchema::lookupProtocolColumnName(ProtocolProperty property)
{
    switch (property) {
    case ProtocolProperty::ID:
        return QStringLiteral("id");
    case ProtocolProperty::TYPE:
        return QStringLiteral("type");
    case ProtocolProperty::INTERFACE:
        return QStringLiteral("interface");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupSignalTableName()
{
    return QStringLiteral("signal");
}

QString DatabaseSchema::lookupSignalColumnName(SignalProperty property)
{
    switch (property) {
    case SignalProperty::ID:
        return QStringLiteral("id");
    case SignalProperty::NAME:
        return QStringLiteral("name");
    case SignalProperty::READ:
        return QStringLiteral("read");
    case SignalProperty::WRITE_BASIC:
        return QStringLiteral("write_basic");
    case SignalProperty::WRITE_MANUAL:
        return QStringLiteral("write_manual");
    case SignalProperty::WRITE_AUTO:
        return QStringLiteral("write_auto");
    case SignalProperty::UNIT:
        return QStringLiteral("unit");
    case SignalProperty::USER_LEVEL:
        return QStringLiteral("user_level");
    case SignalProperty::LIMIT_MIN:
        return QStringLiteral("limit_min");
    case SignalProperty::LIMIT_MAX:
        return QStringLiteral("limit_max");
    case SignalProperty::BITPOSITION:
        return QStringLiteral("bitposition");
    case SignalProperty::SIGNAL_TYPE:
        return QStringLiteral("signal_type");
    case SignalProperty::VALUE_TYPE:
        return QStringLiteral("value_type");
    case SignalProperty::SET_POINT_SIGNAL:
        return QStringLiteral("set_point_signal");
    case SignalProperty::TIME_PROGRAMMABLE:
        return QStringLiteral("time_programmable");
    case SignalProperty::WEEK_PROGRAMMABLE:
        return QStringLiteral("week_programmable");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupValueTypeTableName()
{
    return QStringLiteral("value_type");
}

QString DatabaseSchema::lookupValueTypeColumnName(ValueTypeProperty property)
{
    switch (property) {
    case ValueTypeProperty::ID:
        return QStringLiteral("id");
    case ValueTypeProperty::NAME:
        return QStringLiteral("name");
    case ValueTypeProperty::DECIMAL_PLACES:
        return QStringLiteral("decimal_places");
    case ValueTypeProperty::COLOR:
        return QStringLiteral("color");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupChamberTypeHasControlSignalsTableName()
{
    return QStringLiteral("chamber_type_has_control_signals");
}

QString DatabaseSchema::lookupChamberTypeHasControlSignalsColumnName(ChamberTypeHasControlSignalsProperty property)
{
    switch (property) {
    case ChamberTypeHasControlSignalsProperty::CHAMBER_TYPE_ID:
        return QStringLiteral("chamber_type_id");
    case ChamberTypeHasControlSignalsProperty::CONTROL_SIGNALS_ID:
        return QStringLiteral("control_signals_id");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupControlSignalsTableName()
{
    return QStringLiteral("control_signals");
}

QString DatabaseSchema::lookupControlSignalsColumnName(ControlSignalsProperty property)
{
    switch (property) {
    case ControlSignalsProperty::ID:
        return QStringLiteral("id");
    case ControlSignalsProperty::NAME:
        return QStringLiteral("name");
    case ControlSignalsProperty::BITPOSITION:
        return QStringLiteral("bitposition");
    case ControlSignalsProperty::USERLEVEL:
        return QStringLiteral("userlevel");
    case ControlSignalsProperty::READ:
        return QStringLiteral("read");
    case ControlSignalsProperty::WRITE:
        return QStringLiteral("write");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupChamberTypeHasDataloggerSignalTableName()
{
    return QStringLiteral("chamber_type_has_datalogger_signal");
}

QString DatabaseSchema::lookupChamberTypeHasDataloggerSignalColumnName(ChamberTypeHasDataloggerSignalProperty property)
{
    switch (property) {
    case ChamberTypeHasDataloggerSignalProperty::CHAMBER_TYPE_ID:
        return QStringLiteral("chamber_type_id");
    case ChamberTypeHasDataloggerSignalProperty::DATALOGGER_SIGNAL_ID:
        return QStringLiteral("datalogger_signal_id");
    case ChamberTypeHasDataloggerSignalProperty::CHANNEL:
        return QStringLiteral("channel");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupChamberTypeHasOptionsTableName()
{
    return QStringLiteral("chamber_type_has_options");
}

QString DatabaseSchema::lookupChamberTypeHasOptionsColumnName(ChamberTypeHasOptionsProperty property)
{
    switch (property) {
    case ChamberTypeHasOptionsProperty::CHAMBER_TYPE_ID:
        return QStringLiteral("chamber_type_id");
    case ChamberTypeHasOptionsProperty::OPTIONS_ID:
        return QStringLiteral("options_id");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupOptionsTableName()
{
    return QStringLiteral("options");
}

QString DatabaseSchema::lookupOptionsColumnName(OptionsProperty property)
{
    switch (property) {
    case OptionsProperty::ID:
        return QStringLiteral("id");
    case OptionsProperty::NAME:
        return QStringLiteral("name");
    case OptionsProperty::FIX:
        return QStringLiteral("fix");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupChamberTypeHasTestSignalTableName()
{
    return QStringLiteral("chamber_type_has_test_signal");
}

QString DatabaseSchema::lookupChamberTypeHasTestSignalColumnName(ChamberTypeHasTestSignalProperty property)
{
    switch (property) {
    case ChamberTypeHasTestSignalProperty::CHAMBER_TYPE_ID:
        return QStringLiteral("chamber_type_id");
    case ChamberTypeHasTestSignalProperty::TEST_SIGNAL_ID:
        return QStringLiteral("test_signal_id");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupChamberTypeHasToleranceRangeTableName()
{
    return QStringLiteral("chamber_type_has_tolerance_range");
}

QString DatabaseSchema::lookupChamberTypeHasToleranceRangeColumnName(ChamberTypeHasToleranceRangeProperty property)
{
    switch (property) {
    case ChamberTypeHasToleranceRangeProperty::CHAMBER_TYPE_ID:
        return QStringLiteral("chamber_type_id");
    case ChamberTypeHasToleranceRangeProperty::TOLERANCE_RANGE_ID:
        return QStringLiteral("tolerance_range_id");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupDefaultToleranceRangeTableName()
{
    return QStringLiteral("tolerance_range");
}

QString DatabaseSchema::lookupDefaultToleranceRangeColumnName(DefaultToleranceRangeProperty property)
{
    switch (property) {
    case DefaultToleranceRangeProperty::ID:
        return QStringLiteral("id");
    case DefaultToleranceRangeProperty::NAME:
        return QStringLiteral("name");
    case DefaultToleranceRangeProperty::SET_POINT:
        return QStringLiteral("set_point");
    case DefaultToleranceRangeProperty::PROCESS_VALUE:
        return QStringLiteral("process_value");
    case DefaultToleranceRangeProperty::RANGE_MIN:
        return QStringLiteral("range_min");
    case DefaultToleranceRangeProperty::RANGE_MAX:
        return QStringLiteral("range_max");
    case DefaultToleranceRangeProperty::DELAY1:
        return QStringLiteral("delay1");
    case DefaultToleranceRangeProperty::DELAY2:
        return QStringLiteral("delay2");
    }
    Q_ASSERT(false);
    return QString();
}

QString DatabaseSchema::lookupActivityAccessTableName()
{
    return QStringLiteral("activity_access");
}

QString DatabaseSchema::lookupActivityAccessColumnName(ActivityAccessProperty property)
{
    switch (property) {
    case ActivityAccessProperty::COMPONENT_ID:
        return QStringLiteral("component_id");
    case ActivityAccessProperty::ACTIVITY_ID:
        return QStringLiteral("activity_id");
    case ActivityAccessProperty::MIN_USER_LEVEL:
        return QStringLiteral("min_user_level");
    }
    Q_ASSERT(false);
    return QString();
}

} // namespace zelmor::base::connection::databaseconnection
