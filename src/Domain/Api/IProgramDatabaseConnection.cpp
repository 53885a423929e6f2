#include "Domain/Api/IProgramDatabaseConnection.h"

namespace zelmor::domain::api {

// Out of line, so that the vtable has one home.
IProgramDatabaseConnection::~IProgramDatabaseConnection() = default;

} // namespace zelmor::domain::api
