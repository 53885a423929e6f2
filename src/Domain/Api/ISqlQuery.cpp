#include "Domain/Api/ISqlQuery.h"

namespace zelmor::domain::api {

// Out of line, so that the vtable has one home.
ISqlQuery::~ISqlQuery() = default;

} // namespace zelmor::domain::api
