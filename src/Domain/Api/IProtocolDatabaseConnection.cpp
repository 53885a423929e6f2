#include "Domain/Api/IProtocolDatabaseConnection.h"

namespace zelmor::domain::api {

// Out of line, so that the vtable has one home.
IProtocolDatabaseConnection::~IProtocolDatabaseConnection() = default;

} // namespace zelmor::domain::api
