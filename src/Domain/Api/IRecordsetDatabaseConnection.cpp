#include "Domain/Api/IRecordsetDatabaseConnection.h"

namespace zelmor::domain::api {

// Out of line, so that the vtable has one home.
IRecordsetDatabaseConnection::~IRecordsetDatabaseConnection() = default;

} // namespace zelmor::domain::api
