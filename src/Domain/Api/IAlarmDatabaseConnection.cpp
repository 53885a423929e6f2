#include "Domain/Api/IAlarmDatabaseConnection.h"

namespace zelmor::domain::api {

// Out of line, so that the vtable has one home.
IAlarmDatabaseConnection::~IAlarmDatabaseConnection() = default;

} // namespace zelmor::domain::api
