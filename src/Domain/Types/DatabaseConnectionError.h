#pragma once

#include <QMetaType>

namespace zelmor::domain::types {

// Carried by the error signals of the persistence layer; only the numbers count.
enum DatabaseConnectionError : int {
    DEPENDENCIES_NOT_SET = 0,
    INVALID_CONNECTION = 1,
    DATABASE_NOT_OPENED = 2,
    UNUSED_ERROR = 3, // nothing raises it
    MISSING_TABLE = 4,
    EXECUTION_FAILED = 5,
    PREPARATION_FAILED = 6,
    QUERY_NOT_ACTIVE = 7,
    UNEXPECTED_RESULT = 8
};

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::DatabaseConnectionError)
