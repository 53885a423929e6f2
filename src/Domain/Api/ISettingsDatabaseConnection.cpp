#include "Domain/Api/ISettingsDatabaseConnection.h"

namespace zelmor::domain::api {

// Out of line, so that the vtable has one home.
ISettingsDatabaseConnection::~ISettingsDatabaseConnection() = default;

} // namespace zelmor::domain::api
