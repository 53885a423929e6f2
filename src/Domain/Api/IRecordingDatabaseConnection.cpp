#include "Domain/Api/IRecordingDatabaseConnection.h"

namespace zelmor::domain::api {

// Out of line, so that the vtable has one home.
IRecordingDatabaseConnection::~IRecordingDatabaseConnection() = default;

} // namespace zelmor::domain::api
