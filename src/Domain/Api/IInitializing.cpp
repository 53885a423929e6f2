#include "Domain/Api/IInitializing.h"

namespace zelmor::domain::api {

// Out of line, so that the vtable has one home.
IInitializing::~IInitializing() = default;

} // namespace zelmor::domain::api
