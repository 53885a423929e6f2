#pragma once

namespace zelmor::tools::databasetool {

// The exit status of zelmor-db: one number for each kind of failure, so that a
// script can tell them apart. The numbers are part of the tool's interface
// (README, --help) and never change meaning.
enum ExitStatus : int {
    SUCCESS = 0,
    COMMAND_FAILED = 1,   // the stores refused an operation
    USAGE_ERROR = 2,      // unknown command or option, missing or bad argument
    CANNOT_OPEN = 3,      // a file is missing, unreadable, or can't be written
    NOT_A_DATABASE = 4,   // not a database at all, or not for this key
    SCHEMA_TOO_OLD = 5,   // schema version below 19
    INITIALIZE_FAILS = 6, // the facade's initialize() refuses the file
    DAMAGED = 7,          // integrity_check finds faults, or the file is cut short
    NO_CATALOGUE = 8,     // the chamber type catalogue can't be found or read
    BAD_INPUT = 9,        // an extract or program file that can't be read
    NOT_FOUND = 10        // no program, recording or user of that id
};

} // namespace zelmor::tools::databasetool
