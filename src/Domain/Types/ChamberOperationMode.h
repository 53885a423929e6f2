#pragma once

namespace zelmor::domain::types::ChamberOperationMode {

// How a chamber was driven when a value was taken; column "chamber_mode" of table
// "record_set". Only the numbers are stored.
enum Mode : int { UNKNOWN_MODE = 0, MANUAL = 1, PROGRAM = 2 };

} // namespace zelmor::domain::types::ChamberOperationMode
