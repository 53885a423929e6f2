#pragma once

namespace zelmor::domain::types {

// Row id of table "room"; 0 means no room.
class RoomId
{
public:
    RoomId(int id = 0);
    RoomId(const RoomId& other) = default;
    RoomId& operator=(const RoomId& other) = default;
    RoomId& operator=(int id);

    bool operator==(const RoomId& other) const;
    bool operator!=(const RoomId& other) const;
    // Spelled out so that comparing with a plain number isn't ambiguous.
    bool operator==(int other) const;
    bool operator!=(int other) const;

    operator int() const;

    int id;
};

} // namespace zelmor::domain::types
