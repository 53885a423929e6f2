-- Sample chamber type catalogue shipped with the tool.
--
-- Every id below is stable: tests refer to them. Add rows with new ids rather
-- than renumbering. database/README.md lists the chamber types and the cases
-- each of them stands for.
--
-- Id ranges:
--   chamber_type        1-12 TLX, 30-32 and 247 KV2, 40-41 KV1, 50 PL4,
--                       60-63 Q3 family, 70 Q4, 80 PL3, 90 vacuum controller
--   signal              1xx TLX, 3xx KV2, 4xx KV1, 5xx PL4, 6xx Q3, 7xx Q4,
--                       8xx PL3, 9xx vacuum controller
--   controller_data     1xxx TLX, 3xxx KV2, 4xxx KV1, 5xxx PL4, 6xxx Q3,
--                       7xxx Q4, 8xxx PL3, 9xxx vacuum controller
--   control_signals     1x TLX, 3x KV2, 4x KV1, 5x PL4, 6x Q3, 7x Q4, 8x PL3
--   additional_info     1000 + chamber type id (never equal to a type id)
--
-- Registers kept free on purpose:
--   * program memory of the programmable controllers: KV2 10A4-10A8,
--     1140-114A, 1158, 3000-3004, 3038, 4300; KV1 106C-106F, 1087-108F, 1559,
--     1A00-1A29; PL4 AC00-AD72. Only read-only (or write-only) control
--     signals point there, and those get no value of their own.
--   * the data logger registers that a tunnelled chamber answers by itself:
--     0, 1060, 1087, 1089, 10A6, 10A8, 10B2, 10B6, 1307-1312, 6500.
--   * the TLX link test identifier 10010010.
--
-- Registers are only given value types that a simulated signal can hold
-- (BOOL, INT8, INT16, INT32, UINT8, UINT16, UINT32, FLOAT), except on the PL3
-- and vacuum controller types (80, 90), which no simulation class serves:
-- they carry CHAR, TIME, INT10, an unknown type word and non-hex addresses.
-- Signals of the tunnelled types (30, 40, 50, 60-62, 70) have no UINT8: a
-- tunnelled chamber has no byte form for it, and a client's read of it would
-- never end.

-- ---------------------------------------------------------------------------
-- Controllers and protocols
-- ---------------------------------------------------------------------------

INSERT INTO controller (id, type) VALUES
    (1, 'TLX'),
    (2, 'KV2'),
    (3, 'KV1'),
    (4, 'PL4'),
    (5, 'Q3'),
    (6, 'Q3.1'),
    (7, 'Q3.2'),
    (8, 'Q4'),
    (9, 'PL3'),
    (10, 'CVC');

-- Numbers are those of the chamber protocol: 1, 2 and 6, 7 need a Modbus
-- slave address; 1, 5 and 7 are serial.
INSERT INTO protocol (id, type, interface) VALUES
    (1, 'MODBUS_RTU', 'RS485'),
    (2, 'MODBUS_RTU_TUNNEL', 'ETHERNET'),
    (3, 'MODBUS_TCP', 'ETHERNET'),
    (4, 'TLX', 'ETHERNET'),
    (5, 'VACUUBRAND', 'RS232'),
    (6, 'MODBUS_RTU_GATEWAY', 'ETHERNET'),
    (7, 'MODBUS_RTU_RS232', 'RS232'),
    (100, 'UNKNOWN_PROTOCOL', NULL);

-- ---------------------------------------------------------------------------
-- Value types: display colour (a colour name or #rrggbb) and decimal places
-- ---------------------------------------------------------------------------

INSERT INTO value_type (id, name, decimal_places, color) VALUES
    (1, 'Temperature', 1, 'red'),
    (2, 'Humidity', 1, '#1f77b4'),
    (3, 'Pressure', 1, 'darkgreen'),
    (4, 'Illuminance', 2, '#ff7f0e'),
    (5, 'Digital', 0, 'gray'),
    (6, 'CO2', 2, '#9467bd'),
    (7, 'Voltage', 2, '#8c564b'),
    (8, 'Counter', 0, 'black'),
    (9, 'Time', 0, ''),            -- empty colour: an invalid colour
    (10, 'Percent', 0, 'magenta'),
    (11, 'Irradiance', 1, '#e377c2'),
    (12, 'Dose', 3, '#bcbd22'),
    (13, 'Text', 0, NULL);

-- ---------------------------------------------------------------------------
-- Orderable variants (article numbers)
-- ---------------------------------------------------------------------------

INSERT INTO additional_info (id, article_nr, info) VALUES
    (1001, 'HX60-Z6-0001', 'Standardausführung'),
    (1002, 'HX120-Z6-0010', 'Mit Feuchteregelung'),
    (1003, 'HX120-Z6-0011', 'Mit Feuchteregelung und Innenbeleuchtung'),
    (1004, 'HX60-Z6-2001', 'Firmware 2, Programme für ZELMOR 4'),
    (1009, 'KBF240-E6-0001', 'Lichtprüfschrank nach ICH Q1B'),
    (1012, 'KBF720-E6-0003', 'CO₂-Regelung, Notkühlung'),
    (1030, 'MKF115-E2-0001', 'Datenspeicher auslesbar'),
    (1040, 'KMF240-E5-0001', 'Zeitprogramm, Datenspeicher'),
    (1050, 'TSC150-Z4-0002', 'Zweikammer-Temperaturschockschrank'),
    (1070, 'VCL4010-Z5-0001', 'Klimaprüfschrank, Q4-Regler'),
    (1247, 'VC7034-Z2-0001', 'Klimaprüfschrank mit Zeitprogramm');

-- ---------------------------------------------------------------------------
-- Options. Ids 1-27 are the known option names in their usual order, fix 0.
-- 28 is a name the software does not know. 1xx are standard-equipment rows
-- (fix 1) of option xx.
-- ---------------------------------------------------------------------------

INSERT INTO options (id, name, fix) VALUES
    (1, 'TimeProgram', 0),
    (2, 'WeekProgram', 0),
    (3, 'TimeProgram_ZELMOR_4', 0),
    (4, 'WeekProgram_ZELMOR_4', 0),
    (5, 'InteriorSocket', 0),
    (6, 'ObjectTemperature', 0),
    (7, 'ControlOutputs_Standard', 0),
    (8, 'ControlOutputs', 0),
    (9, 'LightCassettes', 0),
    (10, 'Prog._Ventilation_Evacuation', 0),
    (11, '24V_OK/BatteryVoltage/CO2_EmergencyCooling', 0),
    (12, 'OperatingModeSwitching', 0),
    (13, 'HumidControl_on_off', 0),
    (14, 'Bedewing_Protection', 0),
    (15, 'CompressedAirDryer', 0),
    (16, 'Program_Progressbar', 0),
    (17, 'CollectiveAlarm', 0),
    (18, 'Readable_DataStorage', 0),
    (19, 'Active_Humidification', 0),
    (20, 'Electromechanical_DoorLock', 0),
    (21, 'Heated_AccessPort', 0),
    (22, 'CompressedAirValve', 0),
    (23, 'CO2_Control', 0),
    (24, 'AlarmOutput', 0),
    (25, 'InteriorLight', 0),
    (26, 'ICH_Q1B', 0),
    (27, 'LQC', 0),
    (28, 'Port_Hole_80mm', 0),
    (101, 'TimeProgram', 1),
    (112, 'OperatingModeSwitching', 1),
    (117, 'CollectiveAlarm', 1),
    (118, 'Readable_DataStorage', 1);

-- ---------------------------------------------------------------------------
-- Controller registers
-- (id, address, address_type, variable_type, access, description,
--  controller_id, set_point_nr, comment)
-- ---------------------------------------------------------------------------

-- TLX: CAN identifiers, 8 hex digits.
INSERT INTO controller_data VALUES
    (1001, '11400080', 'CAN', 'FLOAT', 'RO', 'Temperature actual value', 1, NULL, NULL),
    (1002, '11400081', 'CAN', 'FLOAT', 'RO', 'Humidity actual value', 1, NULL, NULL),
    (1003, '11400082', 'CAN', 'FLOAT', 'RO', 'Specimen temperature', 1, NULL, NULL),
    (1004, '11400083', 'CAN', 'FLOAT', 'RO', 'Temperature actual value (Fahrenheit)', 1, NULL, NULL),
    (1005, '11400084', 'CAN', 'FLOAT', 'RO', 'Temperature gradient', 1, NULL, NULL),
    (1011, '11400180', 'CAN', 'FLOAT', 'RW', 'Temperature set point', 1, 1, NULL),
    (1012, '11400181', 'CAN', 'FLOAT', 'RW', 'Humidity set point', 1, 2, NULL),
    (1013, '11400280', 'CAN', 'FLOAT', 'WO', 'Temperature set point, program', 1, 1, 'written by the running time program'),
    (1014, '11400281', 'CAN', 'FLOAT', 'WO', 'Humidity set point, program', 1, 2, 'written by the running time program'),
    (1015, '11400183', 'CAN', 'FLOAT', 'RW', 'Temperature set point (Fahrenheit)', 1, 1, NULL),
    (1021, '11400300', 'CAN', 'UINT8', 'RW', 'Fan speed', 1, NULL, 'set point and actual value in one'),
    (1031, '11500010', 'CAN', 'UINT16', 'RO', 'Status word 1', 1, NULL, 'bit 0 door open, bit 1 water tank empty'),
    (1032, '11500020', 'CAN', 'BOOL', 'RO', 'Collective alarm', 1, NULL, NULL),
    (1033, '11500030', 'CAN', 'BOOL', 'RW', 'Interior light', 1, NULL, NULL),
    (1041, '11600000', 'CAN', 'UINT32', 'RO', 'Operating hours', 1, NULL, NULL),
    (1042, '11600002', 'CAN', 'INT16', 'RO', 'Compressor stage', 1, NULL, NULL),
    (1043, '11600004', 'CAN', 'INT8', 'RO', 'Heating output', 1, NULL, 'negative while cooling'),
    (1044, '11600010', 'CAN', 'UINT16[4]', 'RO', 'Error history, last four codes', 1, NULL, NULL),
    (1051, '11700000', 'CAN', 'INT32', 'RW', 'Operating mode', 1, NULL, NULL),
    (1052, '11700002', 'CAN', 'UINT32', 'RO', 'Program time remaining', 1, NULL, 'seconds'),
    (1053, '11700004', 'CAN', 'UINT32', 'RO', 'Program time elapsed', 1, NULL, 'seconds'),
    (1054, '11700006', 'CAN', 'UINT16', 'RW', 'Program number', 1, NULL, NULL),
    (1055, '11700007', 'CAN', 'UINT16', 'RO', 'Program section number', 1, NULL, NULL),
    (1056, '11700008', 'CAN', 'BOOL', 'RW', 'Program halt', 1, NULL, NULL),
    (1057, '11700010', 'CAN', 'UINT32', 'RW', 'Delayed program start', 1, NULL, 'seconds'),
    (1061, '11400090', 'CAN', 'FLOAT', 'RO', 'Illuminance top', 1, NULL, NULL),
    (1062, '11400091', 'CAN', 'FLOAT', 'RO', 'Illuminance bottom', 1, NULL, NULL),
    (1063, '11400190', 'CAN', 'FLOAT', 'RW', 'Illuminance top set point', 1, 3, NULL),
    (1064, '11400191', 'CAN', 'FLOAT', 'RW', 'Illuminance bottom set point', 1, 4, NULL),
    (1065, '11400092', 'CAN', 'UINT32', 'RO', 'Light dose', 1, NULL, NULL),
    (1066, '11400093', 'CAN', 'FLOAT', 'RO', 'UV irradiance', 1, NULL, NULL),
    (1067, '11400094', 'CAN', 'FLOAT', 'RO', 'UV dose', 1, NULL, NULL),
    (1071, '114000A0', 'CAN', 'FLOAT', 'RO', 'CO2 concentration', 1, NULL, NULL),
    (1072, '114001A0', 'CAN', 'FLOAT', 'RW', 'CO2 set point', 1, 5, NULL),
    (1073, '114000B0', 'CAN', 'FLOAT', 'RO', 'Battery voltage', 1, NULL, 'emergency cooling supply'),
    (1074, 'C0000010', 'CAN', 'UINT32', 'RO', 'Operating seconds', 1, NULL, 'service counter; identifier above 7FFFFFFF');

-- KV2: Modbus register numbers.
INSERT INTO controller_data VALUES
    (3001, '1000', 'INPUT_REGISTER', 'FLOAT', 'RO', 'Temperature actual value', 2, NULL, NULL),
    (3002, '1002', 'INPUT_REGISTER', 'FLOAT', 'RO', 'Humidity actual value', 2, NULL, NULL),
    (3003, '1004', 'INPUT_REGISTER', 'FLOAT', 'RO', 'Specimen temperature', 2, NULL, NULL),
    (3004, '1006', 'INPUT_REGISTER', 'FLOAT', 'RO', 'Pressure actual value', 2, NULL, NULL),
    (3011, '1100', 'HOLDING_REGISTER', 'FLOAT', 'RW', 'Temperature set point', 2, 1, NULL),
    (3012, '1102', 'HOLDING_REGISTER', 'FLOAT', 'RW', 'Humidity set point', 2, 2, NULL),
    (3013, '1104', 'HOLDING_REGISTER', 'UINT16', 'RW', 'Fan speed set point', 2, 3, NULL),
    (3014, '1106', 'HOLDING_REGISTER', 'FLOAT', 'RW', 'Pressure set point', 2, 4, NULL),
    (3015, '1110', 'HOLDING_REGISTER', 'FLOAT', 'WO', 'Temperature set point, program', 2, 1, 'written by the running time program'),
    (3016, '1112', 'HOLDING_REGISTER', 'FLOAT', 'WO', 'Humidity set point, program', 2, 2, 'written by the running time program'),
    (3017, '1120', 'HOLDING_REGISTER', 'FLOAT', 'WO', 'Temperature basic set point', 2, 1, 'kept over a power failure'),
    (3021, '1200', 'INPUT_REGISTER', 'UINT16', 'RO', 'Status word', 2, NULL, 'bit 0 door open, bit 3 compressor fault'),
    (3022, '1201', 'HOLDING_REGISTER', 'UINT16', 'RW', 'Digital outputs', 2, NULL, 'bit 0 output 1'),
    (3023, '1210', 'COIL', 'BOOL', 'RO', 'Collective alarm', 2, NULL, NULL),
    (3031, '1220', 'INPUT_REGISTER', 'UINT32', 'RO', 'Operating hours', 2, NULL, NULL),
    (3032, '1222', 'INPUT_REGISTER', 'INT16', 'RO', 'Compressor stage', 2, NULL, NULL),
    (3033, '1223', 'INPUT_REGISTER', 'UINT8', 'RO', 'Fan stage', 2, NULL, NULL),
    (3034, '1224', 'INPUT_REGISTER', 'INT32', 'RO', 'Heating output', 2, NULL, 'negative while cooling'),
    (3035, '1226', 'INPUT_REGISTER', 'UINT16[4]', 'RO', 'Error codes, last four', 2, NULL, NULL),
    (3041, '1150', 'HOLDING_REGISTER', 'UINT16', 'RW', 'Operating mode', 2, NULL, NULL),
    (3042, '10A4', 'INPUT_REGISTER', 'UINT16', 'RO', 'Running program number', 2, NULL, 'program memory'),
    (3043, '10A8', 'INPUT_REGISTER', 'UINT32', 'RO', 'Program time remaining', 2, NULL, 'program memory, seconds'),
    (3045, '1152', 'HOLDING_REGISTER', 'INT16', 'RW', 'Manual heating stage', 2, NULL, NULL),
    (3046, '1154', 'HOLDING_REGISTER', 'UINT32', 'RW', 'Delayed program start', 2, NULL, 'seconds'),
    (3047, '1156', 'COIL', 'BOOL', 'RW', 'Remote operation enabled', 2, NULL, NULL);

-- KV1: Modbus register numbers. The process image starts at register 2, so
-- that a serial chamber (registers 0-31) reaches it.
INSERT INTO controller_data VALUES
    (4001, '0002', 'INPUT_REGISTER', 'FLOAT', 'RO', 'Temperature actual value', 3, NULL, NULL),
    (4002, '0004', 'INPUT_REGISTER', 'FLOAT', 'RO', 'Humidity actual value', 3, NULL, NULL),
    (4003, '0006', 'HOLDING_REGISTER', 'FLOAT', 'RW', 'Temperature set point', 3, 1, NULL),
    (4004, '0008', 'HOLDING_REGISTER', 'FLOAT', 'RW', 'Humidity set point', 3, 2, NULL),
    (4005, '000A', 'INPUT_REGISTER', 'INT32', 'RO', 'Operating hours', 3, NULL, NULL),
    (4006, '000C', 'DISCRETE_INPUT', 'BOOL', 'RO', 'Door open', 3, NULL, NULL),
    (4007, '000D', 'DISCRETE_INPUT', 'BOOL', 'RO', 'Collective alarm', 3, NULL, NULL),
    (4008, '000E', 'HOLDING_REGISTER', 'UINT16', 'RW', 'Fan stage', 3, NULL, NULL),
    (4009, '0010', 'INPUT_REGISTER', 'INT16', 'RO', 'Compressor stage', 3, NULL, NULL),
    (4010, '0012', 'INPUT_REGISTER', 'UINT16', 'RO', 'Status word', 3, NULL, NULL),
    (4011, '1240', 'HOLDING_REGISTER', 'FLOAT', 'WO', 'Temperature set point, program', 3, 1, 'written by the running time program'),
    (4012, '1242', 'HOLDING_REGISTER', 'FLOAT', 'WO', 'Humidity set point, program', 3, 2, 'written by the running time program'),
    (4021, '0014', 'HOLDING_REGISTER', 'INT16', 'RW', 'Operating mode', 3, NULL, NULL),
    (4022, '1089', 'INPUT_REGISTER', 'UINT32', 'RO', 'Program time remaining', 3, NULL, 'program memory, seconds'),
    (4023, '1A22', 'HOLDING_REGISTER', 'UINT16', 'WO', 'Program command', 3, NULL, 'program memory'),
    (4024, '0016', 'HOLDING_REGISTER', 'UINT32', 'RW', 'Delayed program start', 3, NULL, 'seconds');

-- PL4: Modbus register numbers.
INSERT INTO controller_data VALUES
    (5001, '2000', 'INPUT_REGISTER', 'FLOAT', 'RO', 'Hot zone temperature', 4, NULL, NULL),
    (5002, '2002', 'INPUT_REGISTER', 'FLOAT', 'RO', 'Cold zone temperature', 4, NULL, NULL),
    (5003, '2004', 'INPUT_REGISTER', 'FLOAT', 'RO', 'Test zone temperature', 4, NULL, NULL),
    (5011, '2100', 'HOLDING_REGISTER', 'FLOAT', 'RW', 'Hot zone set point', 4, 1, NULL),
    (5012, '2102', 'HOLDING_REGISTER', 'FLOAT', 'RW', 'Cold zone set point', 4, 2, NULL),
    (5013, '2104', 'HOLDING_REGISTER', 'UINT16', 'RW', 'Dwell time set point', 4, 3, 'minutes'),
    (5021, '2200', 'INPUT_REGISTER', 'UINT16', 'RO', 'Status word', 4, NULL, 'bit 0 door open'),
    (5022, '2201', 'DISCRETE_INPUT', 'BOOL', 'RO', 'Collective alarm', 4, NULL, NULL),
    (5031, '2300', 'HOLDING_REGISTER', 'INT8', 'RW', 'Operating mode', 4, NULL, NULL),
    (5032, 'AC01', 'HOLDING_REGISTER', 'UINT16', 'RO', 'Program number', 4, NULL, 'program memory'),
    (5033, '2302', 'HOLDING_REGISTER', 'UINT16', 'RW', 'Halt on tolerance band violation', 4, NULL, 'bit 2');

-- Q3: Modbus register numbers. Q3.1 and Q3.2 keep the Q3 register map.
INSERT INTO controller_data VALUES
    (6001, '0300', 'INPUT_REGISTER', 'FLOAT', 'RO', 'Temperature actual value', 5, NULL, NULL),
    (6002, '0302', 'INPUT_REGISTER', 'FLOAT', 'RO', 'Humidity actual value', 5, NULL, NULL),
    (6011, '0310', 'HOLDING_REGISTER', 'FLOAT', 'RW', 'Temperature set point', 5, 1, NULL),
    (6012, '0312', 'HOLDING_REGISTER', 'FLOAT', 'RW', 'Humidity set point', 5, 2, NULL),
    (6021, '0320', 'INPUT_REGISTER', 'UINT16', 'RO', 'Status word', 5, NULL, 'bit 2 door open'),
    (6022, '0321', 'DISCRETE_INPUT', 'BOOL', 'RO', 'Collective alarm', 5, NULL, NULL),
    (6023, '0322', 'COIL', 'BOOL', 'RW', 'Interior light', 5, NULL, NULL),
    (6031, '0330', 'HOLDING_REGISTER', 'UINT16', 'RW', 'Operating mode', 5, NULL, NULL),
    (6032, '0331', 'HOLDING_REGISTER', 'INT16', 'RW', 'Remote operation', 5, NULL, NULL);

-- Q4: Modbus register numbers.
INSERT INTO controller_data VALUES
    (7001, '0500', 'INPUT_REGISTER', 'FLOAT', 'RO', 'Temperature actual value', 8, NULL, NULL),
    (7002, '0502', 'INPUT_REGISTER', 'FLOAT', 'RO', 'Humidity actual value', 8, NULL, NULL),
    (7003, '0504', 'INPUT_REGISTER', 'FLOAT', 'RO', 'Dew point', 8, NULL, NULL),
    (7011, '0510', 'HOLDING_REGISTER', 'FLOAT', 'RW', 'Temperature set point', 8, 1, NULL),
    (7012, '0512', 'HOLDING_REGISTER', 'FLOAT', 'RW', 'Humidity set point', 8, 2, NULL),
    (7013, '0520', 'HOLDING_REGISTER', 'FLOAT', 'WO', 'Temperature set point, program', 8, 1, 'written by the running time program'),
    (7014, '0522', 'HOLDING_REGISTER', 'FLOAT', 'WO', 'Humidity set point, program', 8, 2, 'written by the running time program'),
    (7021, '0530', 'INPUT_REGISTER', 'UINT16', 'RO', 'Status word', 8, NULL, 'bit 0 door open'),
    (7022, '0531', 'DISCRETE_INPUT', 'BOOL', 'RO', 'Collective alarm', 8, NULL, NULL),
    (7031, '0550', 'HOLDING_REGISTER', 'INT16', 'RW', 'Operating mode', 8, NULL, NULL),
    (7032, '0552', 'INPUT_REGISTER', 'UINT32', 'RO', 'Program time remaining', 8, NULL, 'seconds'),
    (7033, '0554', 'HOLDING_REGISTER', 'UINT32', 'RW', 'Delayed program start', 8, NULL, 'seconds'),
    (7034, '0556', 'HOLDING_REGISTER', 'UINT16', 'RW', 'Program number', 8, NULL, NULL),
    (7035, '0557', 'HOLDING_REGISTER', 'INT8', 'RW', 'Program section number', 8, NULL, NULL);

-- PL3: no simulation class serves it; holds the value types that a
-- simulated signal cannot carry.
INSERT INTO controller_data VALUES
    (8001, '0040', 'INPUT_REGISTER', 'INT10', 'RO', 'Temperature actual value', 9, NULL, 'tenths of a degree'),
    (8002, '0041', 'HOLDING_REGISTER', 'INT10', 'RW', 'Temperature set point', 9, 1, 'tenths of a degree'),
    (8003, '0050', 'HOLDING_REGISTER', 'CHAR[16]', 'RO', 'Program name', 9, NULL, NULL),
    (8004, '0060', 'HOLDING_REGISTER', 'TIME', 'RO', 'Controller clock', 9, NULL, NULL),
    (8005, '0062', 'HOLDING_REGISTER', 'TIME', 'RW', 'Program start time', 9, 2, NULL),
    (8006, '0070', 'DISCRETE_INPUT', 'BOOL', 'RO', 'Collective alarm', 9, NULL, NULL),
    (8011, '0080', 'HOLDING_REGISTER', 'UINT8', 'RW', 'Operating mode', 9, NULL, NULL),
    (8012, '0082', 'INPUT_REGISTER', 'TIME', 'RO', 'Program time remaining', 9, NULL, NULL);

-- Vacuum controller: ASCII commands of its serial protocol, not register
-- numbers; the access column is left empty where the manual says nothing.
INSERT INTO controller_data VALUES
    (9001, 'IN_PV_1', 'ASCII', 'FLOAT', 'RO', 'Pressure actual value', 10, NULL, NULL),
    (9002, 'IN_SP_1', 'ASCII', 'FLOAT', 'RO', 'Pressure set point, read back', 10, 1, NULL),
    (9003, 'OUT_SP_1', 'ASCII', 'FLOAT', 'WO', 'Pressure set point', 10, 1, NULL),
    (9004, 'IN_VER', 'ASCII', 'STRING', '', 'Firmware version', 10, NULL, 'type word unknown to the software');

-- ---------------------------------------------------------------------------
-- Signals
-- (id, name, read, write_basic, write_manual, write_auto, unit, user_level,
--  limit_min, limit_max, bitposition, signal_type, value_type,
--  set_point_signal, time_programmable, week_programmable)
-- ---------------------------------------------------------------------------

-- TLX
INSERT INTO signal VALUES
    (101, 'PV_Temperature', 1001, NULL, NULL, NULL, '°C', 1, -75.0, 180.0, NULL, 'process_value', 1, 111, 0, 0),
    (102, 'PV_Humidity', 1002, NULL, NULL, NULL, '% r.F.', 1, 10.0, 98.0, NULL, 'process_value', 2, 112, 0, 0),
    (103, 'PV_Specimen_Temperature', 1003, NULL, NULL, NULL, '°C', 1, -75.0, 180.0, NULL, 'process_value', 1, NULL, 0, 0),
    (104, 'PV_Temperature', 1004, NULL, NULL, NULL, '°F', 1, -103.0, 356.0, NULL, 'process_value', 1, 114, 0, 0),
    (105, 'PV_Temperature_Gradient', 1005, NULL, NULL, NULL, 'K', 2, 0.0, 20.0, NULL, 'process_value', 1, NULL, 0, 0),
    (111, 'SP_Temperature', 1011, NULL, 1011, 1013, '°C', 1, -70.0, 180.0, NULL, 'set_point', 1, NULL, 1, 1),
    (112, 'SP_Humidity', 1012, NULL, 1012, 1014, '% r.F.', 1, 10.0, 98.0, NULL, 'set_point', 2, NULL, 1, 1),
    (114, 'SP_Temperature', 1015, NULL, 1015, NULL, '°F', 1, -94.0, 356.0, NULL, 'set_point', 1, NULL, 0, 0),
    -- Set point and actual value in one register; names itself as its set point.
    (121, 'SP_Fan_Speed', 1021, NULL, 1021, NULL, '%', 2, 0.0, 100.0, NULL, 'set_point_process_value', 10, 121, 0, 0),
    (131, 'PV_Door_Open', 1031, NULL, NULL, NULL, 'BOOL', 0, 0.0, 1.0, 0, 'process_value', 5, NULL, 0, 0),
    (132, 'PV_Water_Tank_Empty', 1031, NULL, NULL, NULL, 'BOOL', 0, 0.0, 1.0, 1, 'process_value', 5, NULL, 0, 0),
    (133, 'PV_Collective_Alarm', 1032, NULL, NULL, NULL, 'BOOL', 0, 0.0, 1.0, NULL, 'process_value', 5, NULL, 0, 0),
    (134, 'SP_Interior_Light', 1033, NULL, 1033, NULL, 'BOOL', 1, 0.0, 1.0, NULL, 'set_point', 5, NULL, 0, 0),
    (141, 'PV_Operating_Hours', 1041, NULL, NULL, NULL, 'h', 4, NULL, NULL, NULL, 'process_value', 8, NULL, 0, 0),
    (142, 'PV_Compressor_Stage', 1042, NULL, NULL, NULL, NULL, 4, 0.0, 3.0, NULL, 'process_value', 8, NULL, 0, 0),
    (143, 'PV_Heating_Output', 1043, NULL, NULL, NULL, '%', 4, -100.0, 100.0, NULL, 'process_value', 10, NULL, 0, 0),
    (144, 'PV_Error_History', 1044, NULL, NULL, NULL, '', 5, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL),
    (151, 'PV_Illuminance_Top', 1061, NULL, NULL, NULL, 'kLUX', 1, 0.0, 30.0, NULL, 'process_value', 4, 153, 0, 0),
    (152, 'PV_Illuminance_Bottom', 1062, NULL, NULL, NULL, 'kLUX', 1, 0.0, 30.0, NULL, 'process_value', 4, 154, 0, 0),
    (153, 'SP_Illuminance_Top', 1063, NULL, 1063, NULL, 'kLUX', 1, 0.0, 30.0, NULL, 'set_point', 4, NULL, 0, 1),
    (154, 'SP_Illuminance_Bottom', 1064, NULL, 1064, NULL, 'kLUX', 1, 0.0, 30.0, NULL, 'set_point', 4, NULL, 0, 1),
    (155, 'PV_Light_Dose', 1065, NULL, NULL, NULL, 'Mluxh', 1, 0.0, NULL, NULL, 'process_value', 12, NULL, 0, 0),
    (156, 'PV_UV_Irradiance', 1066, NULL, NULL, NULL, 'W/m²', 1, 0.0, 50.0, NULL, 'process_value', 11, NULL, 0, 0),
    (157, 'PV_UV_Dose', 1067, NULL, NULL, NULL, 'Wh/m²', 1, 0.0, NULL, NULL, 'process_value', 12, NULL, 0, 0),
    -- Computed by the monitoring side: no register at all.
    (158, 'PV_Dew_Point', NULL, NULL, NULL, NULL, '°C', 1, -60.0, 100.0, NULL, 'process_value', 1, NULL, 0, 0),
    (160, 'PV_CO2', 1071, NULL, NULL, NULL, 'Vol.-%', 1, 0.0, 20.0, NULL, 'process_value', 6, 161, 0, 0),
    (161, 'SP_CO2', 1072, NULL, 1072, NULL, 'Vol.-%', 1, 0.0, 20.0, NULL, 'set_point', 6, NULL, 0, 1),
    (162, 'PV_Battery_Voltage', 1073, NULL, NULL, NULL, 'V', 4, 0.0, 30.0, NULL, 'process_value', 7, NULL, 0, 0),
    (163, 'PV_Operating_Seconds', 1074, NULL, NULL, NULL, 's', 4, NULL, NULL, NULL, 'process_value', 8, NULL, 0, 0);

-- KV2
INSERT INTO signal VALUES
    (301, 'PV_Temperature', 3001, NULL, NULL, NULL, '°C', 1, -80.0, 200.0, NULL, 'process_value', 1, 311, 0, 0),
    (302, 'PV_Humidity', 3002, NULL, NULL, NULL, '% r.F.', 1, 10.0, 98.0, NULL, 'process_value', 2, 312, 0, 0),
    (303, 'PV_Specimen_Temperature', 3003, NULL, NULL, NULL, '°C', 1, -80.0, 200.0, NULL, 'process_value', 1, NULL, 0, 0),
    (304, 'PV_Pressure', 3004, NULL, NULL, NULL, 'hPa', 1, 100.0, 1100.0, NULL, 'process_value', 3, 314, 0, 0),
    -- A set point that no actual value links.
    (310, 'SP_Fan_Speed', 3013, NULL, 3013, NULL, '%', 2, 20.0, 100.0, NULL, 'set_point', 10, NULL, 1, 0),
    -- All three write registers.
    (311, 'SP_Temperature', 3011, 3017, 3011, 3015, '°C', 1, -75.0, 180.0, NULL, 'set_point', 1, NULL, 1, 1),
    (312, 'SP_Humidity', 3012, NULL, 3012, 3016, '% r.F.', 1, 10.0, 98.0, NULL, 'set_point', 2, NULL, 1, 1),
    -- Time-programmable, but written through its basic register only.
    (314, 'SP_Pressure', 3014, 3014, NULL, NULL, 'hPa', 2, 100.0, 1100.0, NULL, 'set_point', 3, NULL, 1, 0),
    (321, 'PV_Door_Open', 3021, NULL, NULL, NULL, 'BOOL', 0, 0.0, 1.0, 0, 'process_value', 5, NULL, 0, 0),
    (322, 'PV_Compressor_Fault', 3021, NULL, NULL, NULL, 'BOOL', 0, 0.0, 1.0, 3, 'process_value', 5, NULL, 0, 0),
    (323, 'SP_Output_1', 3022, NULL, 3022, NULL, 'BOOL', 3, 0.0, 1.0, 0, 'set_point', 5, NULL, 0, 0),
    (324, 'PV_Collective_Alarm', 3023, NULL, NULL, NULL, 'BOOL', 0, 0.0, 1.0, NULL, 'process_value', 5, NULL, 0, 0),
    (331, 'PV_Operating_Hours', 3031, NULL, NULL, NULL, 'h', 4, NULL, NULL, NULL, 'process_value', 8, NULL, 0, 0),
    (332, 'PV_Compressor_Stage', 3032, NULL, NULL, NULL, NULL, 4, 0.0, 3.0, NULL, 'process_value', 8, NULL, 0, 0),
    (333, 'PV_Fan_Stage', 3033, NULL, NULL, NULL, '', 4, 0.0, 5.0, NULL, 'process_value', 8, NULL, 0, 0),
    (334, 'PV_Heating_Output', 3034, NULL, NULL, NULL, '%', 4, -100.0, 100.0, NULL, 'process_value', 10, NULL, 0, 0),
    (335, 'PV_Error_Codes', 3035, NULL, NULL, NULL, '', 5, NULL, NULL, NULL, NULL, NULL, NULL, 0, 0);

-- KV1
INSERT INTO signal VALUES
    (401, 'PV_Temperature', 4001, NULL, NULL, NULL, '°C', 1, -40.0, 180.0, NULL, 'process_value', 1, 411, 0, 0),
    (402, 'PV_Humidity', 4002, NULL, NULL, NULL, '% r.F.', 1, 10.0, 95.0, NULL, 'process_value', 2, 412, 0, 0),
    (411, 'SP_Temperature', 4003, NULL, 4003, 4011, '°C', 1, -40.0, 180.0, NULL, 'set_point', 1, NULL, 1, 0),
    (412, 'SP_Humidity', 4004, NULL, 4004, 4012, '% r.F.', 1, 10.0, 95.0, NULL, 'set_point', 2, NULL, 1, 0),
    (413, 'SP_Fan_Stage', 4008, NULL, 4008, NULL, '', 2, 0.0, 5.0, NULL, 'set_point_process_value', 8, NULL, 0, 0),
    (421, 'PV_Operating_Hours', 4005, NULL, NULL, NULL, 'h', 4, NULL, NULL, NULL, 'process_value', 8, NULL, 0, 0),
    (422, 'PV_Door_Open', 4006, NULL, NULL, NULL, 'BOOL', 0, 0.0, 1.0, NULL, 'process_value', 5, NULL, 0, 0),
    (423, 'PV_Collective_Alarm', 4007, NULL, NULL, NULL, 'BOOL', 0, 0.0, 1.0, NULL, 'process_value', 5, NULL, 0, 0),
    (424, 'PV_Compressor_Stage', 4009, NULL, NULL, NULL, NULL, 4, 0.0, 3.0, NULL, 'process_value', 8, NULL, 0, 0),
    (425, 'PV_Status_Word', 4010, NULL, NULL, NULL, NULL, 5, NULL, NULL, NULL, 'process_value', NULL, NULL, 0, 0);

-- PL4
INSERT INTO signal VALUES
    (501, 'PV_Temperature_Hot_Zone', 5001, NULL, NULL, NULL, '°C', 1, 50.0, 220.0, NULL, 'process_value', 1, 511, 0, 0),
    (502, 'PV_Temperature_Cold_Zone', 5002, NULL, NULL, NULL, '°C', 1, -80.0, 0.0, NULL, 'process_value', 1, 512, 0, 0),
    (503, 'PV_Temperature_Test_Zone', 5003, NULL, NULL, NULL, '°C', 1, -80.0, 220.0, NULL, 'process_value', 1, NULL, 0, 0),
    (511, 'SP_Temperature_Hot_Zone', 5011, NULL, 5011, NULL, '°C', 1, 50.0, 220.0, NULL, 'set_point', 1, NULL, 1, 0),
    (512, 'SP_Temperature_Cold_Zone', 5012, NULL, 5012, NULL, '°C', 1, -80.0, 0.0, NULL, 'set_point', 1, NULL, 1, 0),
    (513, 'SP_Dwell_Time', 5013, NULL, 5013, NULL, 'min', 1, 1.0, 600.0, NULL, 'set_point', 9, NULL, 1, 0),
    (521, 'PV_Door_Open', 5021, NULL, NULL, NULL, 'BOOL', 0, 0.0, 1.0, 0, 'process_value', 5, NULL, 0, 0),
    (522, 'PV_Collective_Alarm', 5022, NULL, NULL, NULL, 'BOOL', 0, 0.0, 1.0, NULL, 'process_value', 5, NULL, 0, 0);

-- Q3, Q3.1, Q3.2
INSERT INTO signal VALUES
    (601, 'PV_Temperature', 6001, NULL, NULL, NULL, '°C', 1, -70.0, 180.0, NULL, 'process_value', 1, 611, 0, 0),
    (602, 'PV_Humidity', 6002, NULL, NULL, NULL, '% r.F.', 1, 10.0, 98.0, NULL, 'process_value', 2, 612, 0, 0),
    (611, 'SP_Temperature', 6011, NULL, 6011, NULL, '°C', 1, -70.0, 180.0, NULL, 'set_point', 1, NULL, 0, 1),
    (612, 'SP_Humidity', 6012, NULL, 6012, NULL, '% r.F.', 1, 10.0, 98.0, NULL, 'set_point', 2, NULL, 0, 1),
    (621, 'PV_Door_Open', 6021, NULL, NULL, NULL, 'BOOL', 0, 0.0, 1.0, 2, 'process_value', 5, NULL, 0, 0),
    (622, 'PV_Collective_Alarm', 6022, NULL, NULL, NULL, 'BOOL', 0, 0.0, 1.0, NULL, 'process_value', 5, NULL, 0, 0),
    (623, 'SP_Interior_Light', 6023, NULL, 6023, NULL, 'BOOL', 1, 0.0, 1.0, NULL, '', 5, NULL, 0, 0);

-- Q4
INSERT INTO signal VALUES
    (701, 'PV_Temperature', 7001, NULL, NULL, NULL, '°C', 1, -70.0, 180.0, NULL, 'process_value', 1, 711, 0, 0),
    (702, 'PV_Humidity', 7002, NULL, NULL, NULL, '% r.H.', 1, 10.0, 98.0, NULL, 'process_value', 2, 712, 0, 0),
    (703, 'PV_Dew_Point', 7003, NULL, NULL, NULL, '°C', 1, -60.0, 95.0, NULL, 'process_value', 1, NULL, 0, 0),
    (711, 'SP_Temperature', 7011, NULL, 7011, 7013, '°C', 1, -70.0, 180.0, NULL, 'set_point', 1, NULL, 1, 1),
    (712, 'SP_Humidity', 7012, NULL, 7012, 7014, '% r.H.', 1, 10.0, 98.0, NULL, 'set_point', 2, NULL, 1, 1),
    (721, 'PV_Door_Open', 7021, NULL, NULL, NULL, 'BOOL', 0, 0.0, 1.0, 0, 'process_value', 5, NULL, 0, 0),
    (722, 'PV_Collective_Alarm', 7022, NULL, NULL, NULL, 'BOOL', 0, 0.0, 1.0, NULL, 'process_value', 5, NULL, 0, 0);

-- PL3
INSERT INTO signal VALUES
    (801, 'PV_Temperature', 8001, NULL, NULL, NULL, '°C', 1, -40.0, 180.0, NULL, 'process_value', 1, 802, 0, 0),
    (802, 'SP_Temperature', 8002, NULL, 8002, NULL, '°C', 1, -40.0, 180.0, NULL, 'set_point', 1, NULL, 1, 0),
    (803, 'PV_Program_Name', 8003, NULL, NULL, NULL, NULL, 1, NULL, NULL, NULL, 'process_value', 13, NULL, 0, 0),
    (804, 'PV_Controller_Clock', 8004, NULL, NULL, NULL, NULL, 3, NULL, NULL, NULL, 'process_value', 9, NULL, 0, 0),
    (805, 'SP_Program_Start_Time', 8005, NULL, 8005, NULL, NULL, 2, NULL, NULL, NULL, 'set_point', 9, NULL, 0, 1),
    (806, 'PV_Collective_Alarm', 8006, NULL, NULL, NULL, 'BOOL', 0, 0.0, 1.0, NULL, 'process_value', 5, NULL, 0, 0);

-- Vacuum controller
INSERT INTO signal VALUES
    (901, 'PV_Pressure', 9001, NULL, NULL, NULL, 'mbar', 1, 1.0, 1100.0, NULL, 'process_value', 3, 902, 0, 0),
    (902, 'SP_Pressure', 9002, NULL, 9003, NULL, 'mbar', 1, 1.0, 1100.0, NULL, 'set_point', 3, NULL, 0, 0),
    (903, 'PV_Firmware_Version', 9004, NULL, NULL, NULL, NULL, 4, NULL, NULL, NULL, 'process_value', 13, NULL, 0, 0);

-- ---------------------------------------------------------------------------
-- Control signals (id, name, bitposition, userlevel, read, write).
-- Without a write register (NULL or -1) a control signal gets no simulated
-- value; neither does one whose read register is not an integer word.
-- ---------------------------------------------------------------------------

INSERT INTO control_signals VALUES
    -- TLX
    (11, 'Ctrl_OpMode_Mode', NULL, 2, 1051, 1051),
    (12, 'Ctrl_Prog_Time_Remaining', NULL, 1, 1052, NULL),
    (13, 'Ctrl_Prog_Time_Elapsed', NULL, 1, 1053, -1),
    (14, 'Ctrl_Prog_ProgNumber', NULL, 2, 1054, 1054),
    (15, 'Ctrl_Prog_SectNumber', NULL, 1, 1055, NULL),
    (16, 'Ctrl_Prog_HaltSignal', 0, 2, 1056, 1056),
    (17, 'Ctrl_Prog_Delay_Time', NULL, 2, 1057, 1057),
    -- KV2
    (31, 'Ctrl_OpMode_Mode', NULL, 2, 3041, 3041),
    (32, 'Ctrl_Prog_Act_ProgNumber', NULL, 1, 3042, NULL),
    (33, 'Ctrl_Prog_Time_Remaining', NULL, 1, 3043, NULL),
    (34, 'Ctrl_Manual_Heating_Stage', NULL, 4, 3045, 3045),
    (35, 'Ctrl_Prog_Delay_Time', NULL, 2, 3046, 3046),
    (36, 'Ctrl_Remote_Enable', 0, 3, 3047, 3047),
    -- KV1
    (41, 'Ctrl_OpMode_Mode', NULL, 2, 4021, 4021),
    (42, 'Ctrl_Prog_Remaining', NULL, 1, 4022, NULL),
    (43, 'Ctrl_Prog_Command', NULL, 2, NULL, 4023),
    (44, 'Ctrl_Prog_Delay_Time', NULL, 2, 4024, 4024),
    -- PL4
    (51, 'Ctrl_OpMode_Mode', NULL, 2, 5031, 5031),
    (52, 'Ctrl_Prog_ProgNumber', NULL, 1, 5032, NULL),
    (53, 'Ctrl_Prog_HaltSignal_Tolerance', 2, 2, 5033, 5033),
    -- Q3 family
    (61, 'Ctrl_OpMode_Mode', NULL, 2, 6031, 6031),
    (62, 'Ctrl_OpMode_Remote', NULL, 3, 6032, 6032),
    -- Q4
    (71, 'Ctrl_OpMode_Mode', NULL, 2, 7031, 7031),
    (72, 'Ctrl_Prog_Time_Remaining', NULL, 1, 7032, NULL),
    (73, 'Ctrl_Prog_Delay_Time', NULL, 2, 7033, 7033),
    (74, 'Ctrl_Prog_ProgNumber', NULL, 2, 7034, 7034),
    (75, 'Ctrl_Prog_Act_SectNumber', NULL, 1, 7035, 7035),
    -- PL3
    (81, 'Ctrl_OpMode_Mode', NULL, 2, 8011, 8011),
    (82, 'Ctrl_Prog_Time_Remaining', NULL, 1, 8012, NULL);

-- ---------------------------------------------------------------------------
-- Default tolerance ranges: distances below and above the set point in the
-- set point's unit; delay1 in seconds, delay2 in minutes.
-- (id, name, set_point, process_value, range_min, range_max, delay1, delay2)
-- ---------------------------------------------------------------------------

INSERT INTO tolerance_range VALUES
    (1, 'Temperature', 111, 101, 2.0, 2.0, 300, 15),
    (2, 'Humidity', 112, 102, 5.0, 5.0, 600, 30),
    (3, 'Illuminance top', 153, 151, 1.5, 1.5, 120, NULL),
    (4, 'CO₂', 161, 160, 0.5, 0.5, 600, NULL),
    (5, 'Fan speed', 121, 121, 10.0, 10.0, NULL, 1),
    (11, 'Temperature', 311, 301, 1.0, 1.0, 180, 10),
    (12, 'Humidity', 312, 302, 3.0, 3.0, 300, 20),
    (13, 'Pressure', 314, 304, NULL, NULL, NULL, NULL),
    (21, 'Temperature', 411, 401, 2.0, 2.0, 300, 15),
    (31, 'Hot zone', 511, 501, 3.0, 5.0, 60, 5),
    (32, 'Cold zone', 512, 502, 5.0, 3.0, 60, 5),
    (41, 'Temperature', 611, 601, 2.0, 2.0, 300, 10),
    (51, 'Temperature', 711, 701, 0.5, 0.5, 120, 2),
    (52, 'Humidity', 712, 702, 2.5, 2.5, 240, 4);

-- ---------------------------------------------------------------------------
-- Chamber types
-- (id, type, developement_state, size, voltage, image, description,
--  firmware_start, firmware_ende, setup_kennung, setup_version_start,
--  setup_version_ende, kennung_programme, controller_id)
-- ---------------------------------------------------------------------------

INSERT INTO chamber_type VALUES
    -- TLX, the type of the "tlx" word.
    (1, 'HX', 'Z6', 60, '230 V 1/N/PE AC 50 Hz', 'hx60.png', 'Klimaprüfschrank, TLX-Regler', '1.00', '1.99', 'HX', 1, 9, 'TLX-P', 1),
    -- TLX, two orderable variants.
    (2, 'HX', 'Z6', 120, '230 V 1/N/PE AC 50 Hz', 'hx120.png', 'Klimaprüfschrank, TLX-Regler', '1.00', '1.99', 'HX', 1, 9, 'TLX-P', 1),
    -- TLX, same model as type 1 with the later firmware: same qualified name.
    (3, 'HX', 'Z6', 60, '230 V 1/N/PE AC 50 Hz', 'hx60.png', 'Klimaprüfschrank, TLX-Regler ab Firmware 2', '2.00', NULL, 'HX', 10, NULL, 'TLX-P4', 1),
    -- TLX, the default type of the command line.
    (9, 'KBF', 'E6', 240, '230 V 1/N/PE AC 50 Hz', 'kbf240.png', 'Konstantklimaschrank mit Licht', '3.10', '3.99', 'KBF', 4, NULL, NULL, 1),
    -- TLX, walk-in room without size or state, US supply.
    (11, 'WIK', NULL, NULL, '208 V 3/PE AC 60 Hz', 'wik.png', 'Begehbare Klimakammer', '1.20', NULL, NULL, NULL, NULL, NULL, 1),
    -- TLX, CO2 and light; one broken set point link.
    (12, 'KBF', 'E6', 720, '400 V 3/N/PE AC 50 Hz', 'kbf720.png', 'Konstantklimaschrank mit Licht und CO₂', '3.10', '3.99', 'KBF', 4, NULL, NULL, 1),
    -- KV2 behind a serial-to-Ethernet converter, programmable, data logger.
    (30, 'MKF', 'E2', 115, '230 V 1/N/PE AC 50 Hz', 'mkf115.png', 'Klimaschrank, KV2-Regler über Schnittstellenwandler', '2.05', '2.99', 'MKF', 2, 5, 'KV2-P', 2),
    -- KV2 with Modbus TCP and converter: Modbus TCP is served.
    (31, 'MKF', 'E2', 240, '230 V 1/N/PE AC 50 Hz', 'mkf240.png', 'Klimaschrank, KV2-Regler, Modbus TCP', '2.05', '2.99', 'MKF', 2, 5, NULL, 2),
    -- KV2 on RS485 only: no simulation class.
    (32, 'MKF', 'E1', 720, '400 V 3/N/PE AC 50 Hz', 'mkf720.png', 'Klimaschrank, KV2-Regler, RS485', '1.10', '2.04', 'MKF', 1, 1, NULL, 2),
    -- KV1 on a serial line or behind a converter, programmable, data logger.
    (40, 'KMF', 'E5', 240, '230 V 1/N/PE AC 50 Hz', 'kmf240.png', 'Klimaschrank, KV1-Regler', '5.00', '5.99', 'KMF', 3, 7, 'KV1-P', 3),
    -- KV1 on a serial line only.
    (41, 'KB', 'E6', 53, '230 V 1/N/PE AC 50 Hz', 'kb53.png', 'Kühlbrutschrank, KV1-Regler', '6.00', NULL, 'KB', 1, NULL, NULL, 3),
    -- PL4 behind a converter, programmable.
    (50, 'TSC', 'Z4', 150, '400 V 3/N/PE AC 50 Hz', 'tsc150.png', 'Temperaturschockschrank, PL4-Regler', '4.02', NULL, 'TSC', 2, NULL, 'PL4-P', 4),
    -- Q3 family behind a converter.
    (60, 'VT', 'Z3', 4021, '230 V 1/N/PE AC 50 Hz', 'vt4021.png', 'Temperaturprüfschrank, Q3-Regler', '3.00', '3.09', 'VT', 1, 3, NULL, 5),
    (61, 'VT', 'Z3', 4034, '230 V 1/N/PE AC 50 Hz', 'vt4034.png', 'Temperaturprüfschrank, Q3.1-Regler', '3.10', '3.19', 'VT', 4, 6, NULL, 6),
    (62, 'VT', 'Z3', 4060, '400 V 3/N/PE AC 50 Hz', 'vt4060.png', 'Temperaturprüfschrank, Q3.2-Regler', '3.20', NULL, 'VT', 7, NULL, NULL, 7),
    -- Q3 with Modbus TCP only: no simulation class.
    (63, 'VT', 'Z3', 7060, '400 V 3/N/PE AC 50 Hz', 'vt7060.png', 'Temperaturprüfschrank, Q3-Regler, Modbus TCP', '3.00', '3.09', 'VT', 1, 3, NULL, 5),
    -- Q4 behind a converter; actual values link their set points.
    (70, 'VCL', 'Z5', 4010, '400 V 3/N/PE AC 50 Hz', 'vcl4010.png', 'Klimaprüfschrank, Q4-Regler', '1.00', NULL, 'VCL', 1, NULL, 'Q4-P', 8),
    -- PL3: no simulation class.
    (80, 'KT', 'Z1', 115, '230 V 1/N/PE AC 50 Hz', 'kt115.png', 'Wärmeschrank, PL3-Regler', '1.00', NULL, 'KT', NULL, NULL, 'PL3-P', 9),
    -- Vacuum pump controller: no simulation class. Size 0 is left out of the name.
    (90, 'VAC', 'V2', 0, '230 V 1/N/PE AC 50 Hz', NULL, 'Vakuumpumpstand', NULL, NULL, NULL, NULL, NULL, NULL, 10),
    -- KV2 with Modbus TCP, programmable: the type of the "kv2" word.
    (247, 'VC', 'Z2', 7034, '400 V 3/N/PE AC 50 Hz', 'vc7034.png', 'Klimaprüfschrank, KV2-Regler, Modbus TCP', '4.00', NULL, 'VC', 3, NULL, 'KV2-P', 2);

INSERT INTO chamber_type_has_additional_info VALUES
    (1, 1001),
    (2, 1002),
    (2, 1003),
    (3, 1004),
    (9, 1009),
    (12, 1012),
    (30, 1030),
    (40, 1040),
    (50, 1050),
    (70, 1070),
    (247, 1247);

INSERT INTO chamber_type_has_protocol VALUES
    (1, 4), (2, 4), (3, 4), (9, 4), (11, 4), (12, 4),
    (30, 2),
    (31, 2), (31, 3),
    (32, 1),
    (40, 1), (40, 2),
    (41, 1),
    (50, 2),
    (60, 2),
    (61, 2), (61, 6),
    (62, 2), (62, 7),
    (63, 3),
    (70, 2),
    (80, 1),
    (90, 5),
    (247, 3);

INSERT INTO chamber_type_has_signal VALUES
    (1, 101), (1, 102), (1, 111), (1, 112), (1, 121), (1, 131), (1, 132),
    (1, 133), (1, 134), (1, 141), (1, 142), (1, 143), (1, 144),

    (2, 101), (2, 102), (2, 111), (2, 112), (2, 121), (2, 131), (2, 133),
    (2, 134),

    (3, 101), (3, 102), (3, 103), (3, 105), (3, 111), (3, 112), (3, 121),
    (3, 131), (3, 132), (3, 133), (3, 134), (3, 141), (3, 142), (3, 143),
    (3, 144),

    (9, 101), (9, 102), (9, 111), (9, 112), (9, 131), (9, 133), (9, 151),
    (9, 152), (9, 153), (9, 154), (9, 155), (9, 156), (9, 157), (9, 158),

    (11, 104), (11, 114), (11, 131), (11, 133),

    -- 151 links set point 153, which this type lacks.
    (12, 101), (12, 102), (12, 111), (12, 112), (12, 133), (12, 151),
    (12, 152), (12, 154), (12, 160), (12, 161), (12, 162), (12, 163),

    (30, 301), (30, 302), (30, 311), (30, 312), (30, 321), (30, 324),
    (30, 331),

    (31, 301), (31, 302), (31, 311), (31, 312), (31, 321), (31, 324),

    (32, 301), (32, 311),

    (40, 401), (40, 402), (40, 411), (40, 412), (40, 413), (40, 421),
    (40, 422), (40, 423), (40, 424), (40, 425),

    (41, 401), (41, 411), (41, 421), (41, 422), (41, 423),

    (50, 501), (50, 502), (50, 503), (50, 511), (50, 512), (50, 513),
    (50, 521), (50, 522),

    (60, 601), (60, 602), (60, 611), (60, 612), (60, 621), (60, 622), (60, 623),
    (61, 601), (61, 602), (61, 611), (61, 612), (61, 621), (61, 622), (61, 623),
    (62, 601), (62, 602), (62, 611), (62, 612), (62, 621), (62, 622), (62, 623),
    (63, 601), (63, 602), (63, 611), (63, 612), (63, 621), (63, 622), (63, 623),

    (70, 701), (70, 702), (70, 703), (70, 711), (70, 712), (70, 721), (70, 722),

    (80, 801), (80, 802), (80, 803), (80, 804), (80, 805), (80, 806),

    (90, 901), (90, 902), (90, 903),

    (247, 301), (247, 302), (247, 303), (247, 304), (247, 310), (247, 311),
    (247, 312), (247, 314), (247, 321), (247, 322), (247, 323), (247, 324),
    (247, 331), (247, 332), (247, 333), (247, 334), (247, 335);

INSERT INTO chamber_type_has_control_signals VALUES
    (1, 11), (1, 12), (1, 13), (1, 14), (1, 15), (1, 16), (1, 17),
    (2, 11), (2, 16),
    (3, 11), (3, 12), (3, 13), (3, 14), (3, 15), (3, 16), (3, 17),
    (9, 11),
    (12, 11), (12, 12),
    (30, 31), (30, 32), (30, 33), (30, 35),
    (31, 31), (31, 34),
    (32, 31),
    (40, 41), (40, 42), (40, 43), (40, 44),
    (41, 41),
    (50, 51), (50, 52), (50, 53),
    (60, 61), (60, 62),
    (61, 61), (61, 62),
    (62, 61), (62, 62),
    (63, 61), (63, 62),
    (70, 71), (70, 72), (70, 73), (70, 74), (70, 75),
    (80, 81), (80, 82),
    (247, 31), (247, 32), (247, 33), (247, 34), (247, 35), (247, 36);

-- Channels are not in signal order everywhere: the reader sorts by channel.
INSERT INTO chamber_type_has_datalogger_signal VALUES
    (30, 311, 3),
    (30, 301, 1),
    (30, 312, 4),
    (30, 302, 2),
    (40, 402, 2),
    (40, 401, 1),
    (70, 703, 3),
    (70, 701, 2),
    (70, 702, 1),
    (247, 301, 1),
    (247, 302, 2),
    (247, 303, 3),
    (247, 304, 4);

INSERT INTO chamber_type_has_options VALUES
    (1, 1), (1, 2), (1, 16), (1, 25), (1, 112), (1, 117),
    (2, 13), (2, 25), (2, 112), (2, 117),
    (3, 2), (3, 3), (3, 4), (3, 6), (3, 16), (3, 25), (3, 101), (3, 112), (3, 117),
    -- Week programs only: not programmable.
    (9, 2), (9, 4), (9, 5), (9, 9), (9, 19), (9, 26), (9, 27), (9, 112),
    (12, 1), (12, 11), (12, 23), (12, 24), (12, 117),
    (30, 14), (30, 16), (30, 101), (30, 112), (30, 118),
    (31, 2), (31, 15), (31, 117),
    (32, 7),
    (40, 1), (40, 12), (40, 13), (40, 18),
    (41, 21), (41, 22), (41, 28),
    (50, 101), (50, 112), (50, 117),
    (60, 17), (60, 25),
    (61, 2),
    (62, 2), (62, 20),
    (63, 117),
    (70, 1), (70, 3), (70, 12), (70, 18),
    (80, 1),
    (90, 24),
    (247, 2), (247, 8), (247, 10), (247, 16), (247, 101), (247, 112), (247, 118);

INSERT INTO chamber_type_has_test_signal VALUES
    (1, 101), (2, 101), (3, 101), (9, 101), (11, 104), (12, 101),
    (30, 301), (31, 301), (40, 401), (41, 401), (50, 503),
    (60, 601), (61, 601), (62, 601), (70, 701), (247, 301);

INSERT INTO chamber_type_has_tolerance_range VALUES
    (1, 1), (1, 2), (1, 5),
    (2, 1), (2, 2),
    (3, 1), (3, 2), (3, 5),
    (9, 1), (9, 2), (9, 3),
    (12, 1), (12, 2), (12, 4),
    (30, 11), (30, 12),
    (31, 11), (31, 12),
    (40, 21),
    (41, 21),
    (50, 31), (50, 32),
    (60, 41), (61, 41), (62, 41), (63, 41),
    (70, 51), (70, 52),
    (247, 11), (247, 12), (247, 13);

-- ---------------------------------------------------------------------------
-- Access table: lowest user level for each activity
-- (1 Basic, 2 Advanced, 3 Administrator, 4 Service, 5 Laboratory).
-- ---------------------------------------------------------------------------

INSERT INTO activity_access VALUES
    -- chamber management
    (1, 1, 3), (1, 2, 3), (1, 3, 3), (1, 4, 3), (1, 5, 2), (1, 6, 3), (1, 7, 2),
    (1, 8, 1), (1, 9, 1), (1, 10, 2), (1, 11, 2), (1, 12, 4), (1, 13, 2),
    (1, 14, 1), (1, 15, 2), (1, 16, 4), (1, 17, 3), (1, 18, 2), (1, 19, 2),
    (1, 20, 2),
    -- recording management: own, others of lower level, any
    (2, 1, 1), (2, 2, 1), (2, 3, 2), (2, 4, 3), (2, 5, 1), (2, 6, 2), (2, 7, 3),
    (2, 8, 1), (2, 9, 2), (2, 10, 3), (2, 11, 1), (2, 12, 2), (2, 13, 3),
    (2, 14, 1), (2, 15, 2), (2, 16, 3), (2, 17, 1), (2, 18, 2), (2, 19, 3),
    (2, 20, 1), (2, 21, 2), (2, 22, 3), (2, 23, 1), (2, 24, 2), (2, 25, 3),
    (2, 26, 4), (2, 27, 1), (2, 28, 1), (2, 29, 2), (2, 30, 3), (2, 31, 1),
    (2, 32, 2), (2, 33, 3), (2, 34, 1), (2, 35, 2), (2, 36, 3), (2, 37, 1),
    (2, 38, 2), (2, 39, 3), (2, 40, 2),
    -- access management
    (3, 1, 3), (3, 2, 3), (3, 3, 3), (3, 4, 3), (3, 5, 4), (3, 6, 3), (3, 7, 3),
    (3, 8, 1), (3, 9, 3), (3, 10, 4), (3, 11, 1), (3, 12, 1), (3, 13, 3),
    (3, 14, 3), (3, 15, 1), (3, 16, 3), (3, 17, 3), (3, 18, 3), (3, 19, 2),
    (3, 20, 1), (3, 21, 3), (3, 22, 0),
    -- room management
    (4, 1, 3), (4, 2, 3), (4, 3, 2), (4, 4, 2),
    -- software update
    (5, 1, 4), (5, 2, 4), (5, 3, 1),
    -- program management
    (6, 1, 2), (6, 2, 2), (6, 3, 2), (6, 4, 3), (6, 5, 2), (6, 6, 2), (6, 7, 3),
    (6, 8, 2), (6, 9, 2), (6, 10, 2), (6, 11, 2), (6, 12, 2), (6, 13, 2),
    (6, 14, 2), (6, 15, 2), (6, 16, 1), (6, 17, 1), (6, 18, 2), (6, 19, 3),
    (6, 20, 2), (6, 21, 2), (6, 22, 2), (6, 23, 2), (6, 24, 2), (6, 25, 2),
    (6, 26, 2), (6, 27, 2), (6, 28, 2), (6, 29, 1), (6, 30, 1), (6, 31, 1),
    (6, 32, 2), (6, 33, 3), (6, 34, 1), (6, 35, 2), (6, 36, 3), (6, 37, 2),
    (6, 38, 1), (6, 39, 2), (6, 40, 2), (6, 41, 1), (6, 42, 3), (6, 43, 2),
    (6, 44, 2), (6, 45, 2), (6, 46, 2), (6, 47, 2), (6, 48, 2), (6, 49, 5),
    (6, 50, 5),
    -- backup and restore
    (7, 1, 3), (7, 2, 4),
    -- protocol (log) management
    (8, 1, 1), (8, 2, 3),
    -- report management
    (9, 1, 2), (9, 2, 2),
    -- mail connection
    (10, 1, 3), (10, 2, 4), (10, 3, 3), (10, 4, 3),
    -- alarm management
    (11, 1, 3), (11, 2, 2),
    -- siren box
    (12, 1, 4), (12, 2, 4), (12, 3, 3), (12, 4, 3),
    -- siren desk
    (13, 1, 4), (13, 2, 4), (13, 3, 3), (13, 4, 3),
    -- the screens' own activities (component 255), numbered from 0
    (255, 0, 3), (255, 4, 3), (255, 17, 1), (255, 73, 4);
