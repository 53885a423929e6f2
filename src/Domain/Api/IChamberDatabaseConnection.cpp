#include "Domain/Api/IChamberDatabaseConnection.h"

namespace zelmor::domain::api {

// Out of line, so that the vtable has one home.
IChamberDatabaseConnection::~IChamberDatabaseConnection() = default;

} // namespace zelmor::domain::api
