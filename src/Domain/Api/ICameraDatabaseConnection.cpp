#include "Domain/Api/ICameraDatabaseConnection.h"

namespace zelmor::domain::api {

// Out of line, so that the vtable has one home.
ICameraDatabaseConnection::~ICameraDatabaseConnection() = default;

} // namespace zelmor::domain::api
