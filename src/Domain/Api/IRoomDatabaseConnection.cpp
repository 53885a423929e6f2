#include "Domain/Api/IRoomDatabaseConnection.h"

namespace zelmor::domain::api {

// Out of line, so that the vtable has one home.
IRoomDatabaseConnection::~IRoomDatabaseConnection() = default;

} // namespace zelmor::domain::api
