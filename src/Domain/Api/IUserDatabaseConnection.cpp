#include "Domain/Api/IUserDatabaseConnection.h"

namespace zelmor::domain::api {

// Out of line, so that the vtable has one home.
IUserDatabaseConnection::~IUserDatabaseConnection() = default;

} // namespace zelmor::domain::api
