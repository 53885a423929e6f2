#include "Domain/Api/IConfigurationDatabaseConnection.h"

namespace zelmor::domain::api {

// Out of line, so that the vtable has one home.
IConfigurationDatabaseConnection::~IConfigurationDatabaseConnection() = default;

} // namespace zelmor::domain::api
