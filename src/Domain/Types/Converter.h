#pragma once

namespace zelmor::domain::types {

// The serial-to-Ethernet converter in front of a tunnelled chamber; column
// "converter_id" of table "chamber". Only the numbers are stored.
enum Converter : int { NO_CONVERTER = -1, XPORT_CONVERTER = 0, WUT_CONVERTER = 1 };

} // namespace zelmor::domain::types
