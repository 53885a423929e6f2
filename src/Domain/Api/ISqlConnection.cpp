#include "Domain/Api/ISqlConnection.h"

namespace zelmor::domain::api {

// Out of line, so that the vtable has one home.
ISqlConnection::~ISqlConnection() = default;

} // namespace zelmor::domain::api
