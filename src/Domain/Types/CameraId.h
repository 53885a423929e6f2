#pragma once

namespace zelmor::domain::types {

// Row id of table "camera"; 0 means a camera not stored yet.
class CameraId
{
public:
    CameraId(int id = 0);
    CameraId(const CameraId& other) = default;
    CameraId& operator=(const CameraId& other) = default;
    CameraId& operator=(int id);

    bool operator==(const CameraId& other) const;
    bool operator!=(const CameraId& other) const;
    // Spelled out so that comparing with a plain number isn't ambiguous.
    bool operator==(int other) const;
    bool operator!=(int other) const;

    operator int() const;

    int id;
};

} // namespace zelmor::domain::types
