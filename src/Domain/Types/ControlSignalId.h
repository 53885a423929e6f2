#pragma once

namespace zelmor::domain::types {

// Row id of table "control_signals"; -1 means none.
class ControlSignalId
{
public:
    ControlSignalId(int id = -1);
    ControlSignalId(const ControlSignalId& other) = default;
    ControlSignalId& operator=(const ControlSignalId& other) = default;
    ControlSignalId& operator=(int id);

    bool operator==(const ControlSignalId& other) const;
    bool operator!=(const ControlSignalId& other) const;
    // Spelled out so that comparing with a plain number isn't ambiguous.
    bool operator==(int other) const;
    bool operator!=(int other) const;

    operator int() const;

    int id;
};

} // namespace zelmor::domain::types
