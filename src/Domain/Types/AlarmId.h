#pragma once

namespace zelmor::domain::types {

// Row id of table "application_alarm"; 0 means an alarm not stored yet.
class AlarmId
{
public:
    AlarmId(int id = 0);
    AlarmId(const AlarmId& other) = default;
    AlarmId& operator=(const AlarmId& other) = default;
    AlarmId& operator=(int id);

    bool operator==(const AlarmId& other) const;
    bool operator!=(const AlarmId& other) const;
    // Spelled out so that comparing with a plain number isn't ambiguous.
    bool operator==(int other) const;
    bool operator!=(int other) const;

    operator int() const;

    int id;
};

} // namespace zelmor::domain::types
