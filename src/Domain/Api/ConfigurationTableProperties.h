#pragma once

// The columns of the configuration database's tables (the chamber catalogue and
// the access table), one enumeration per table, the enumerators in the order of
// their numbers. A column's text comes from
// DatabaseConnection::lookup<Table>ColumnName. The fixed underlying types make
// any stored number a value of the enumeration, so a stray one reaches the
// lookup's assertion.
namespace zelmor::domain::api {

// Table "additional_info": the orderable variants of a chamber type.
enum class AdditionalInfoProperty : int { ID = 0, ARTICLE_NR = 1, INFO = 2 };

// Table "chamber_type_has_additional_info".
enum class ChamberTypeHasAdditionalInfoProperty : int { CHAMBER_TYPE_ID = 0, ADDITIONAL_INFO_ID = 1 };

// Table "chamber_type_has_protocol".
enum class ChamberTypeHasProtocolProperty : int { CHAMBER_TYPE_ID = 0, PROTOCOL_ID = 1 };

// Table "chamber_type_has_signal".
enum class ChamberTypeHasSignalProperty : int { CHAMBER_TYPE_ID = 0, SIGNAL_ID = 1 };

// Table "chamber_type". The German column names and "developement_state" are
// spelt as the delivered catalogue has them.
enum class ChamberTypeProperty : int {
    ID = 0,
    TYPE = 1,
    DEVELOPEMENT_STATE = 2,
    SIZE = 3,
    VOLTAGE = 4,
    IMAGE = 5,
    DESCRIPTION = 6,
    FIRMWARE_START = 7,
    FIRMWARE_ENDE = 8,
    SETUP_KENNUNG = 9,
    SETUP_VERSION_START = 10,
    SETUP_VERSION_ENDE = 11,
    KENNUNG_PROGRAMME = 12,
    CONTROLLER_ID = 13
};

// Table "controller".
enum class ControllerProperty : int { ID = 0, TYPE = 1 };

// Table "controller_data": the registers of the controllers.
enum class ControllerDataProperty : int {
    ID = 0,
    ADDRESS = 1,
    ADDRESS_TYPE = 2,
    VARIABLE_TYPE = 3,
    ACCESS = 4,
    DESCRIPTION = 5,
    CONTROLLER_ID = 6,
    SET_POINT_NR = 7,
    COMMENT = 8
};

// Table "protocol" (the chamber protocols, not the application's log).
enum class ProtocolProperty : int { ID = 0, TYPE = 1, INTERFACE = 2 };

// Table "signal".
enum class SignalProperty : int {
    ID = 0,
    NAME = 1,
    READ = 2,
    WRITE_BASIC = 3,
    WRITE_MANUAL = 4,
    WRITE_AUTO = 5,
    UNIT = 6,
    USER_LEVEL = 7,
    LIMIT_MIN = 8,
    LIMIT_MAX = 9,
    BITPOSITION = 10,
    SIGNAL_TYPE = 11,
    VALUE_TYPE = 12,
    SET_POINT_SIGNAL = 13,
    TIME_PROGRAMMABLE = 14,
    WEEK_PROGRAMMABLE = 15
};

// Table "value_type".
enum class ValueTypeProperty : int { ID = 0, NAME = 1, DECIMAL_PLACES = 2, COLOR = 3 };

// Table "chamber_type_has_control_signals".
enum class ChamberTypeHasControlSignalsProperty : int { CHAMBER_TYPE_ID = 0, CONTROL_SIGNALS_ID = 1 };

// Table "control_signals".
enum class ControlSignalsProperty : int { ID = 0, NAME = 1, BITPOSITION = 2, USERLEVEL = 3, READ = 4, WRITE = 5 };

// Table "chamber_type_has_datalogger_signal".
enum class ChamberTypeHasDataloggerSignalProperty : int { CHAMBER_TYPE_ID = 0, DATALOGGER_SIGNAL_ID = 1, CHANNEL = 2 };

// Table "chamber_type_has_options".
enum class ChamberTypeHasOptionsProperty : int { CHAMBER_TYPE_ID = 0, OPTIONS_ID = 1 };

// Table "options".
enum class OptionsProperty : int { ID = 0, NAME = 1, FIX = 2 };

// Table "chamber_type_has_test_signal".
enum class ChamberTypeHasTestSignalProperty : int { CHAMBER_TYPE_ID = 0, TEST_SIGNAL_ID = 1 };

// Table "chamber_type_has_tolerance_range".
enum class ChamberTypeHasToleranceRangeProperty : int { CHAMBER_TYPE_ID = 0, TOLERANCE_RANGE_ID = 1 };

// Table "tolerance_range" of the catalogue: the default ranges of the chamber
// types. Not the application database's table of the same name.
enum class DefaultToleranceRangeProperty : int {
    ID = 0,
    NAME = 1,
    SET_POINT = 2,
    PROCESS_VALUE = 3,
    RANGE_MIN = 4,
    RANGE_MAX = 5,
    DELAY1 = 6,
    DELAY2 = 7
};

// Table "activity_access": the user level each activity requires.
enum class ActivityAccessProperty : int { COMPONENT_ID = 0, ACTIVITY_ID = 1, MIN_USER_LEVEL = 2 };

} // namespace zelmor::domain::api
