-- Application database of schema version 19: what the monitoring application
-- records (chambers, rooms, cameras, recordings and their measured rows,
-- programs, users, settings, alarms, the log). scripts/make-application-database.sh
-- turns it into the encrypted database/application.sqlite3.
--
-- The tables that DatabaseConnection's creation functions build come first,
-- each with the columns those functions give it, in their order and with their
-- constraints; the columns that came later stand behind them. The tables that
-- no creation function builds follow. Column types where nothing in the code
-- fixes them are chosen by how the stores read the column:
--   * times are DATETIME and hold the text the driver writes for a time in UTC
--     ("2024-03-01T09:00:00.000Z"), so that they compare as text in the order
--     of time;
--   * flags are BOOLEAN (0 or 1), enumerations INTEGER, texts TEXT, hashes and
--     salts BLOB;
--   * the time of day of the backup is TEXT ("02:30:00.000"), the enabled
--     report chapters one bit each in an INTEGER;
--   * argument columns ("arg_%1", "short_desc_arg_%1") are TEXT: arguments are
--     filled into a text when shown.
-- "Nothing" is NULL throughout: an empty text, an id of 0, a number of -1.
--
-- Deliberate differences from what the creation functions would build:
--   * chamber: the creation function makes "ip_v4_address", "ip_v6_address" and
--     "mac_address" UNIQUE each. A fleet breaks all three: every chamber on one
--     network interface has that interface's MAC, and the tunnelled chambers
--     behind one serial-to-Ethernet converter share its address and differ only
--     in their Modbus address. A chamber is one address and one slave, so the
--     constraint is on the pair, and the MAC is no key at all. Chambers without
--     an address (serial ones) have NULL there, which never collides.
--   * user_has_chamber_signal_visibility_preference: a signal is shown once for
--     a user and a chamber (UNIQUE), which "INSERT OR REPLACE" relies on.
--   * Foreign keys of the program tables delete along what belongs to a row:
--     the steps and repetitions of a program, the set points of a section, the
--     repetitions over a step; a step whose section is deleted keeps its row
--     with a NULL section until it is deleted itself.
--   * The link tables that no creation function builds belong to one row each
--     (a chamber, a recording, a user, an alarm) and go with it.

CREATE TABLE chamber (
    id                              INTEGER PRIMARY KEY NOT NULL,
    chamber_type_id                 INTEGER,
    chamber_type_additional_info_id INTEGER,
    serial_no                       INTEGER,
    is_archived                     BOOLEAN,
    is_subscribed                   BOOLEAN,
    is_active                       BOOLEAN,
    chamber_name                    TEXT,
    ip_v4_address                   TEXT,
    ip_v6_address                   TEXT,
    mac_address                     TEXT,
    modbus_address                  INTEGER,
    com_port                        INTEGER,
    parity                          INTEGER,
    baud_rate                       INTEGER,
    data_bits                       INTEGER,
    stop_bits                       INTEGER,
    -- later columns
    protocol_id                     INTEGER,
    converter_id                    INTEGER,
    UNIQUE (ip_v4_address, modbus_address),
    UNIQUE (ip_v6_address, modbus_address)
);

CREATE TABLE global_settings (
    id                                  INTEGER PRIMARY KEY NOT NULL,
    event_do_repeat                     INTEGER,
    event_repetition_interval           INTEGER,
    report_creation_interval            INTEGER,
    base_password                       TEXT,
    quick_recording_name_template       TEXT,
    quick_recording_seconds_interval    INTEGER,
    resume_recordings_on_startup        INTEGER,
    -- later columns
    report_language                     INTEGER,
    report_file_format                  INTEGER,
    report_file_prefix                  TEXT,
    report_file_path                    TEXT,
    report_header_logo_path             TEXT,
    report_header_logo_position         INTEGER,
    report_header_title                 TEXT,
    report_watermark_path               TEXT,
    report_enabled_chapters             INTEGER,
    report_watermark_text               TEXT,
    access_control_active               BOOLEAN,
    security_questions_active           BOOLEAN,
    password_validity_period            INTEGER,
    screen_lock_timeout                 INTEGER,
    smtp_server                         TEXT,
    smtp_port                           INTEGER,
    smtp_connection_type                INTEGER,
    smtp_username                       TEXT,
    smtp_password                       TEXT,
    smtp_sender                         TEXT,
    prealarm_seconds_delay              INTEGER,
    backup_interval                     INTEGER,
    backup_time_of_day                  TEXT,
    backup_day_of_x                     INTEGER,
    backup_path                         TEXT,
    backup_password                     TEXT,
    backup_keep_strategy                INTEGER,
    backup_keep_num                     INTEGER,
    max_number_of_allowed_failed_logins INTEGER,
    zelmor_ip_address                   TEXT,
    zelmor_port                         INTEGER,
    zelmor_num_connection_attempts      INTEGER,
    zelmor_is_active                    BOOLEAN,
    sirenbox_ip_address                 TEXT,
    sirenbox_port                       INTEGER,
    sirenbox_num_connection_attempts    INTEGER,
    sirenbox_is_active                  BOOLEAN
);

CREATE TABLE application_user (
    id                                       INTEGER PRIMARY KEY NOT NULL,
    login_name                               TEXT,
    mail_address                             TEXT,
    password_hash                            BLOB,
    password_salt                            BLOB,
    password_creation_time                   DATETIME,
    password_is_temporary                    BOOLEAN,
    user_level                               INTEGER,
    number_failed_login_attempts             INTEGER,
    number_failed_security_question_attempts INTEGER,
    is_banned                                BOOLEAN,
    password_expiration_time                 DATETIME,
    first_name                               TEXT,
    last_name                                TEXT,
    -- later columns
    is_deleted                               BOOLEAN
);

CREATE TABLE recording (
    id                          INTEGER PRIMARY KEY NOT NULL,
    recording_name              TEXT,
    user_id                     INTEGER,
    free_text                   TEXT,
    chamber_id                  INTEGER,
    start_time                  DATETIME,
    end_time                    DATETIME,
    seconds_interval            INTEGER,
    is_archived                 BOOLEAN,
    additional_info             TEXT,
    automatically_create_report BOOLEAN,
    is_active                   BOOLEAN,
    number_of_recordsets        INTEGER,
    -- later columns
    is_start_reconding_allowed  BOOLEAN,
    FOREIGN KEY (user_id) REFERENCES application_user (id),
    FOREIGN KEY (chamber_id) REFERENCES chamber (id)
);

CREATE TABLE meta_recording_has_recording (
    meta_recording_id INTEGER NOT NULL,
    recording_id      INTEGER NOT NULL,
    FOREIGN KEY (meta_recording_id) REFERENCES recording (id),
    FOREIGN KEY (recording_id) REFERENCES recording (id)
);

CREATE TABLE log_entry (
    id                INTEGER PRIMARY KEY NOT NULL,
    creation_time     DATETIME,
    event_description TEXT,
    user_id           INTEGER,
    -- later columns: the number of arguments in use, then up to 10 of them
    num_args          INTEGER,
    arg_1             TEXT,
    arg_2             TEXT,
    arg_3             TEXT,
    arg_4             TEXT,
    arg_5             TEXT,
    arg_6             TEXT,
    arg_7             TEXT,
    arg_8             TEXT,
    arg_9             TEXT,
    arg_10            TEXT,
    FOREIGN KEY (user_id) REFERENCES application_user (id)
);

CREATE TABLE record_set (
    id                        INTEGER PRIMARY KEY NOT NULL,
    record_time               DATETIME,
    is_retrieved_from_chamber BOOLEAN,
    recording_id              INTEGER NOT NULL,
    signal_1 REAL, signal_2 REAL, signal_3 REAL, signal_4 REAL, signal_5 REAL, signal_6 REAL,
    signal_7 REAL, signal_8 REAL, signal_9 REAL, signal_10 REAL, signal_11 REAL, signal_12 REAL,
    signal_13 REAL, signal_14 REAL, signal_15 REAL, signal_16 REAL, signal_17 REAL, signal_18 REAL,
    signal_19 REAL, signal_20 REAL, signal_21 REAL, signal_22 REAL, signal_23 REAL, signal_24 REAL,
    signal_25 REAL, signal_26 REAL, signal_27 REAL, signal_28 REAL, signal_29 REAL, signal_30 REAL,
    signal_31 REAL, signal_32 REAL, signal_33 REAL, signal_34 REAL, signal_35 REAL, signal_36 REAL,
    signal_37 REAL, signal_38 REAL, signal_39 REAL, signal_40 REAL, signal_41 REAL, signal_42 REAL,
    signal_43 REAL, signal_44 REAL, signal_45 REAL, signal_46 REAL, signal_47 REAL, signal_48 REAL,
    -- later columns
    alarm_type                INTEGER,
    camera_image_path         TEXT,
    chamber_mode              INTEGER,
    FOREIGN KEY (recording_id) REFERENCES recording (id)
);
-- Every read of measured data picks one recording's rows; without this the
-- whole table is scanned for each of them.
CREATE INDEX record_set_recording_id ON record_set (recording_id);

CREATE TABLE record_set_comment (
    recordset_id  INTEGER PRIMARY KEY NOT NULL UNIQUE,
    user_id       INTEGER,
    creation_time DATETIME,
    comment_text  TEXT,
    FOREIGN KEY (recordset_id) REFERENCES record_set (id)
);

-- The history of a chamber's tolerance ranges; not the catalogue's table of
-- the same name.
CREATE TABLE tolerance_range (
    effective_from DATETIME NOT NULL,
    chamber_id     INTEGER NOT NULL,
    signal_id      INTEGER NOT NULL,
    range_type     INTEGER,
    range_min      REAL,
    range_max      REAL,
    FOREIGN KEY (chamber_id) REFERENCES chamber (id),
    PRIMARY KEY (effective_from, chamber_id, signal_id)
);

CREATE TABLE room (
    id          INTEGER PRIMARY KEY NOT NULL,
    room_name   TEXT,
    image_path  TEXT,
    image_scale REAL
);

CREATE TABLE room_chamber_position (
    chamber_id    INTEGER PRIMARY KEY NOT NULL,
    room_id       INTEGER,
    chamber_pos_x REAL,
    chamber_pos_y REAL,
    FOREIGN KEY (chamber_id) REFERENCES chamber (id),
    FOREIGN KEY (room_id) REFERENCES room (id)
);

CREATE TABLE user_has_chamber_signal_visibility_preference (
    user_id    INTEGER NOT NULL,
    chamber_id INTEGER NOT NULL,
    signal_id  INTEGER NOT NULL,
    -- later columns
    position   INTEGER,
    FOREIGN KEY (user_id) REFERENCES application_user (id),
    FOREIGN KEY (chamber_id) REFERENCES chamber (id),
    UNIQUE (user_id, chamber_id, signal_id)
);

CREATE TABLE user_preferences (
    user_id             INTEGER PRIMARY KEY NOT NULL,
    default_file_format INTEGER,
    localization        INTEGER,
    time_format         INTEGER,
    date_format         INTEGER,
    decimal_format      INTEGER,
    temperature_unit    INTEGER,
    humidity_unit       INTEGER,
    FOREIGN KEY (user_id) REFERENCES application_user (id)
);

-- The program store's five tables.

CREATE TABLE program (
    id              INTEGER PRIMARY KEY NOT NULL,
    program_name    TEXT,
    user_id         INTEGER,
    info_text       TEXT,
    program_type    INTEGER,
    edited          BOOLEAN,
    chamber_type_id INTEGER
);

CREATE TABLE program_section (
    id                    INTEGER PRIMARY KEY NOT NULL,
    duration_in_seconds   INTEGER,
    transition_type       INTEGER,
    breakpoint            BOOLEAN,
    program_event_message TEXT
);

CREATE TABLE program_step (
    id             INTEGER PRIMARY KEY NOT NULL,
    program_id     INTEGER NOT NULL,
    order_number   INTEGER NOT NULL,
    step_type      INTEGER NOT NULL,
    section_id     INTEGER,
    sub_program_id INTEGER,
    FOREIGN KEY (program_id) REFERENCES program (id) ON DELETE CASCADE,
    FOREIGN KEY (sub_program_id) REFERENCES program (id),
    FOREIGN KEY (section_id) REFERENCES program_section (id) ON DELETE SET NULL
);

CREATE TABLE program_step_repetition (
    id              INTEGER PRIMARY KEY NOT NULL,
    program_id      INTEGER NOT NULL,
    start_step_id   INTEGER NOT NULL,
    end_step_id     INTEGER NOT NULL,
    num_repetitions INTEGER,
    FOREIGN KEY (program_id) REFERENCES program (id) ON DELETE CASCADE,
    FOREIGN KEY (start_step_id) REFERENCES program_step (id) ON DELETE CASCADE,
    FOREIGN KEY (end_step_id) REFERENCES program_step (id) ON DELETE CASCADE
);

CREATE TABLE program_setpoint (
    program_section_id  INTEGER NOT NULL,
    signal_id           INTEGER NOT NULL,
    setpoint            REAL,
    tolerance_range_min REAL,
    tolerance_range_max REAL,
    FOREIGN KEY (program_section_id) REFERENCES program_section (id) ON DELETE CASCADE,
    PRIMARY KEY (program_section_id, signal_id)
);

-- Tables that no creation function builds.

CREATE TABLE application_alarm (
    id                  INTEGER PRIMARY KEY NOT NULL,
    alarm_timestamp     DATETIME,
    alarm_type          INTEGER,
    is_active           BOOLEAN,
    alarm_status        INTEGER,
    user_id             INTEGER,
    alarm_name          TEXT,
    short_description   TEXT,
    num_short_desc_args INTEGER,
    short_desc_arg_1    TEXT,
    short_desc_arg_2    TEXT,
    description         TEXT,
    chamber_id          INTEGER
);

CREATE TABLE alarm_has_signal (
    alarm_id  INTEGER NOT NULL,
    signal_id INTEGER NOT NULL,
    FOREIGN KEY (alarm_id) REFERENCES application_alarm (id) ON DELETE CASCADE,
    PRIMARY KEY (alarm_id, signal_id)
);

CREATE TABLE camera (
    id                 INTEGER PRIMARY KEY NOT NULL,
    ip_v4_address      TEXT,
    ip_v6_address      TEXT,
    usb_port           TEXT,
    recording_id       INTEGER,
    recording_interval INTEGER,
    FOREIGN KEY (recording_id) REFERENCES recording (id) ON DELETE CASCADE
);

CREATE TABLE chamber_has_custom_signal_name (
    chamber_id  INTEGER NOT NULL,
    signal_id   INTEGER NOT NULL,
    signal_name TEXT,
    FOREIGN KEY (chamber_id) REFERENCES chamber (id) ON DELETE CASCADE,
    PRIMARY KEY (chamber_id, signal_id)
);

-- Both delays in seconds; either may be NULL.
CREATE TABLE chamber_has_signal_delay (
    chamber_id        INTEGER NOT NULL,
    signal_id         INTEGER NOT NULL,
    delay1_in_seconds INTEGER,
    delay2_in_seconds INTEGER,
    FOREIGN KEY (chamber_id) REFERENCES chamber (id) ON DELETE CASCADE,
    PRIMARY KEY (chamber_id, signal_id)
);

CREATE TABLE chamber_has_subscribed_signal (
    chamber_id INTEGER NOT NULL,
    signal_id  INTEGER NOT NULL,
    FOREIGN KEY (chamber_id) REFERENCES chamber (id) ON DELETE CASCADE,
    PRIMARY KEY (chamber_id, signal_id)
);

CREATE TABLE mail_recipient (
    id           INTEGER PRIMARY KEY NOT NULL,
    mail_address TEXT UNIQUE
);

-- Which of the 48 "signal_%1" columns of record_set holds a recording's signal.
CREATE TABLE recording_has_signal_column (
    recording_id            INTEGER NOT NULL,
    signal_id               INTEGER NOT NULL,
    recordset_signal_column INTEGER NOT NULL,
    FOREIGN KEY (recording_id) REFERENCES recording (id) ON DELETE CASCADE,
    PRIMARY KEY (recording_id, signal_id)
);

CREATE TABLE user_has_security_question (
    user_id     INTEGER NOT NULL,
    question_id INTEGER NOT NULL,
    answer_hash BLOB,
    answer_salt BLOB,
    FOREIGN KEY (user_id) REFERENCES application_user (id) ON DELETE CASCADE,
    PRIMARY KEY (user_id, question_id)
);

CREATE TABLE user_recording_config (
    user_id      INTEGER NOT NULL,
    recording_id INTEGER NOT NULL,
    config       TEXT,
    FOREIGN KEY (user_id) REFERENCES application_user (id) ON DELETE CASCADE,
    FOREIGN KEY (recording_id) REFERENCES recording (id) ON DELETE CASCADE,
    PRIMARY KEY (user_id, recording_id)
);

CREATE TABLE database_version_info (
    version INTEGER
);
INSERT INTO database_version_info (version) VALUES (19);
