#pragma once

namespace zelmor::domain::types {

// Row id of table "record_set"; -1 means none.
class RecordsetId
{
public:
    RecordsetId(int id = -1);
    RecordsetId(const RecordsetId& other) = default;
    RecordsetId& operator=(const RecordsetId& other) = default;
    RecordsetId& operator=(int id);

    bool operator==(const RecordsetId& other) const;
    bool operator!=(const RecordsetId& other) const;
    // Spelled out so that comparing with a plain number isn't ambiguous.
    bool operator==(int other) const;
    bool operator!=(int other) const;

    operator int() const;

    int id;
};

} // namespace zelmor::domain::types
