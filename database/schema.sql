-- Configuration database: the chamber type catalogue and the access table.
--
-- The database is delivered read-only; nothing in the tool creates these tables.
-- Column order is the order in which the catalogue reader names the columns.
--
-- Conventions that the reader depends on:
--   * signal.read / write_basic / write_manual / write_auto and
--     control_signals.read / write hold ids of controller_data; NULL or -1
--     means "no register". Because -1 is a legal value there, these columns
--     carry no foreign key.
--   * controller_data.address is the register in the controller's own
--     notation and is read in base 16 (TLX: 8-digit CAN identifier; Modbus
--     controllers: register number).
--   * controller_data.variable_type is one of BOOL, CHAR, FLOAT, INT8, INT16,
--     INT32, TIME, UINT8, UINT16, UINT32, INT10, optionally followed by an
--     array size in brackets ("UINT16[4]").
--   * controller_data.access is RO, WO, RW or empty.
--   * signal.signal_type is process_value, set_point, set_point_process_value
--     or empty/NULL.
--   * signal.unit is the unit text as the screens spell it ("°C", "% r.F.").
--   * tolerance_range.delay1 is in seconds, delay2 in minutes.
--   * Flags (time_programmable, week_programmable, options.fix) are 0 or 1.

CREATE TABLE controller (
    id   INTEGER PRIMARY KEY,
    type TEXT NOT NULL UNIQUE
);

CREATE TABLE protocol (
    id        INTEGER PRIMARY KEY,
    type      TEXT NOT NULL,
    interface TEXT
);

CREATE TABLE value_type (
    id             INTEGER PRIMARY KEY,
    name           TEXT NOT NULL,
    decimal_places INTEGER,
    color          TEXT
);

CREATE TABLE additional_info (
    id         INTEGER PRIMARY KEY,
    article_nr TEXT,
    info       TEXT
);

CREATE TABLE chamber_type (
    id                  INTEGER PRIMARY KEY,
    type                TEXT NOT NULL,
    developement_state  TEXT,
    size                INTEGER,
    voltage             TEXT,
    image               TEXT,
    description         TEXT,
    firmware_start      TEXT,
    firmware_ende       TEXT,
    setup_kennung       TEXT,
    setup_version_start INTEGER,
    setup_version_ende  INTEGER,
    kennung_programme   TEXT,
    controller_id       INTEGER REFERENCES controller (id)
);

CREATE TABLE controller_data (
    id            INTEGER PRIMARY KEY,
    address       TEXT NOT NULL,
    address_type  TEXT,
    variable_type TEXT,
    access        TEXT,
    description   TEXT,
    controller_id INTEGER REFERENCES controller (id),
    set_point_nr  INTEGER,
    comment       TEXT
);

CREATE TABLE signal (
    id                INTEGER PRIMARY KEY,
    name              TEXT NOT NULL,
    read              INTEGER,
    write_basic       INTEGER,
    write_manual      INTEGER,
    write_auto        INTEGER,
    unit              TEXT,
    user_level        INTEGER CHECK (user_level BETWEEN 0 AND 6),
    limit_min         REAL,
    limit_max         REAL,
    bitposition       INTEGER,
    signal_type       TEXT,
    value_type        INTEGER REFERENCES value_type (id),
    set_point_signal  INTEGER REFERENCES signal (id),
    time_programmable INTEGER CHECK (time_programmable IN (0, 1)),
    week_programmable INTEGER CHECK (week_programmable IN (0, 1))
);

CREATE TABLE control_signals (
    id          INTEGER PRIMARY KEY,
    name        TEXT NOT NULL,
    bitposition INTEGER,
    userlevel   INTEGER CHECK (userlevel BETWEEN 0 AND 6),
    read        INTEGER,
    write       INTEGER
);

-- One row per option and "fix" value: the same option name may stand twice,
-- once as an extra and once as standard equipment.
CREATE TABLE options (
    id   INTEGER PRIMARY KEY,
    name TEXT NOT NULL,
    fix  INTEGER CHECK (fix IN (0, 1))
);

CREATE TABLE tolerance_range (
    id            INTEGER PRIMARY KEY,
    name          TEXT,
    set_point     INTEGER REFERENCES signal (id),
    process_value INTEGER REFERENCES signal (id),
    range_min     REAL,
    range_max     REAL,
    delay1        INTEGER,
    delay2        INTEGER
);

CREATE TABLE chamber_type_has_additional_info (
    chamber_type_id    INTEGER NOT NULL REFERENCES chamber_type (id),
    additional_info_id INTEGER NOT NULL REFERENCES additional_info (id),
    PRIMARY KEY (chamber_type_id, additional_info_id)
);

CREATE TABLE chamber_type_has_protocol (
    chamber_type_id INTEGER NOT NULL REFERENCES chamber_type (id),
    protocol_id     INTEGER NOT NULL REFERENCES protocol (id),
    PRIMARY KEY (chamber_type_id, protocol_id)
);

CREATE TABLE chamber_type_has_signal (
    chamber_type_id INTEGER NOT NULL REFERENCES chamber_type (id),
    signal_id       INTEGER NOT NULL REFERENCES signal (id),
    PRIMARY KEY (chamber_type_id, signal_id)
);

CREATE TABLE chamber_type_has_control_signals (
    chamber_type_id    INTEGER NOT NULL REFERENCES chamber_type (id),
    control_signals_id INTEGER NOT NULL REFERENCES control_signals (id),
    PRIMARY KEY (chamber_type_id, control_signals_id)
);

CREATE TABLE chamber_type_has_datalogger_signal (
    chamber_type_id      INTEGER NOT NULL REFERENCES chamber_type (id),
    datalogger_signal_id INTEGER NOT NULL REFERENCES signal (id),
    channel              INTEGER NOT NULL,
    PRIMARY KEY (chamber_type_id, datalogger_signal_id),
    UNIQUE (chamber_type_id, channel)
);

CREATE TABLE chamber_type_has_options (
    chamber_type_id INTEGER NOT NULL REFERENCES chamber_type (id),
    options_id      INTEGER NOT NULL REFERENCES options (id),
    PRIMARY KEY (chamber_type_id, options_id)
);

CREATE TABLE chamber_type_has_test_signal (
    chamber_type_id INTEGER NOT NULL PRIMARY KEY REFERENCES chamber_type (id),
    test_signal_id  INTEGER NOT NULL REFERENCES signal (id)
);

CREATE TABLE chamber_type_has_tolerance_range (
    chamber_type_id    INTEGER NOT NULL REFERENCES chamber_type (id),
    tolerance_range_id INTEGER NOT NULL REFERENCES tolerance_range (id),
    PRIMARY KEY (chamber_type_id, tolerance_range_id)
);

-- Lowest user level (0 none .. 6 superuser) that may carry out an activity.
CREATE TABLE activity_access (
    component_id   INTEGER NOT NULL,
    activity_id    INTEGER NOT NULL,
    min_user_level INTEGER NOT NULL CHECK (min_user_level BETWEEN 0 AND 6),
    PRIMARY KEY (component_id, activity_id)
);
