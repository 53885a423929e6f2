#pragma once

namespace zelmor {
namespace domain {
namespace types {

// Row id of table "signal"; -1 means none.
using SignalId = int;

} // namespace types
} // namespace domain
} // namespace zelmor
