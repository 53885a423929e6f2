#pragma once

#include <QObject>

namespace zelmor::domain::types {

// This header carries the meta-object of the namespace. Any further enumeration
// that is to be registered with the namespace (Q_ENUM_NS) belongs here, since a
// namespace can have only one meta-object in the program.
Q_NAMESPACE

// Lowest level a user must have to see something. Registered, so it travels in a
// QVariant and converts from the integers of the database through QVariant::convert.
enum UserLevel : int {
    NONE = 0,
    BASIC = 1,
    ADVANCED = 2,
    ADMINISTRATOR = 3,
    SERVICE = 4,
    LABORATORY = 5,
    SUPERUSER = 6
};
Q_ENUM_NS(UserLevel)

// Why an operation of the SirenDesk management was refused.
enum SirenDeskManagementError : int {
    OBJECT_IS_NULL = 0,
    INSUFFICIENT_PERMISSIONS = 1,
    WRONG_PARAMETER = 2,
    DATABASE_INTERACTION_FAILED = 3
};
Q_ENUM_NS(SirenDeskManagementError)

} // namespace zelmor::domain::types
