#pragma once

namespace zelmor::domain::types {

// Row id of table "chamber"; -1 means none, and is written as NULL.
class ChamberId
{
public:
    ChamberId(int id = -1);
    ChamberId(const ChamberId& other) = default;
    ChamberId& operator=(const ChamberId& other) = default;
    ChamberId& operator=(int id);

    bool operator==(const ChamberId& other) const;
    bool operator!=(const ChamberId& other) const;
    // Spelled out so that comparing with a plain number isn't ambiguous.
    bool operator==(int other) const;
    bool operator!=(int other) const;

    operator int() const;

    int id;
};

} // namespace zelmor::domain::types
