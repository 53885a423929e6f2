#pragma once

namespace zelmor::domain::types {

// Row id of table "recording"; 0 means none.
class RecordingId
{
public:
    RecordingId(int id = 0);
    RecordingId(const RecordingId& other) = default;
    RecordingId& operator=(const RecordingId& other) = default;
    RecordingId& operator=(int id);

    bool operator==(const RecordingId& other) const;
    bool operator!=(const RecordingId& other) const;
    // Spelled out so that comparing with a plain number isn't ambiguous.
    bool operator==(int other) const;
    bool operator!=(int other) const;

    operator int() const;

    int id;
};

} // namespace zelmor::domain::types
