#pragma once

namespace zelmor::domain::types {

// Row id of table "application_user"; 0 means none, and is written as NULL.
class UserId
{
public:
    UserId(int id = 0);
    UserId(const UserId& other) = default;
    UserId& operator=(const UserId& other) = default;
    UserId& operator=(int id);

    bool operator==(const UserId& other) const;
    bool operator!=(const UserId& other) const;
    // Spelled out so that comparing with a plain number isn't ambiguous.
    bool operator==(int other) const;
    bool operator!=(int other) const;

    operator int() const;

    int id;
};

} // namespace zelmor::domain::types
