#pragma once

namespace zelmor::domain::types {

// Row id of table "signal"; -1 means none.
using SignalId = int;

} // namespace zelmor::domain::types
