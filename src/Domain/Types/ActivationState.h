#pragma once

namespace zelmor::domain::types::ActivationState {

// Whether the application polls a chamber; column "is_active" of table "chamber".
// Only the numbers are stored.
enum State : int { UNKNOWN_STATE = -1, INACTIVE = 0, ACTIVE = 1 };

} // namespace zelmor::domain::types::ActivationState
