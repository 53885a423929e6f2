#pragma once

namespace zelmor::domain::types {

// Row id of table "controller_data"; -1 means no address.
class ControllerAddressId
{
public:
    ControllerAddressId(int id = -1);
    ControllerAddressId(const ControllerAddressId& other) = default;
    ControllerAddressId& operator=(const ControllerAddressId& other) = default;
    ControllerAddressId& operator=(int id);

    bool operator==(const ControllerAddressId& other) const;
    bool operator!=(const ControllerAddressId& other) const;
    // Spelled out so that comparing with a plain number isn't ambiguous.
    bool operator==(int other) const;
    bool operator!=(int other) const;

    operator int() const;

    int id;
};

} // namespace zelmor::domain::types
