#include "Domain/Api/IAccessDatabaseConnection.h"

namespace zelmor::domain::api {

// Out of line, so that the vtable has one home.
IAccessDatabaseConnection::~IAccessDatabaseConnection() = default;

} // namespace zelmor::domain::api
