#include "Domain/Types/Camera.h"

namespace zelmor::domain::types {

Camera::Camera()
    : Camera(0, QHostAddress(), QString(), 0, 0)
{
}

Camera::Camera(const CameraId& id, const QHostAddress& ipAddress, const QString& usbPort,
               const RecordingId& recordingId, int recordingInterval)
    : id(id)
    , ipAddress(ipAddress)
    , usbPort(usbPort)
    , recordingId(recordingId)
    , recordingInterval(recordingInterval)
{
}

bool operator==(const Camera& left, const Camera& right)
{
    return left.id == right.id && left.ipAddress == right.ipAddress && left.usbPort == right.usbPort
           && left.recordingId == right.recordingId && left.recordingInterval == right.recordingInterval;
}

bool operator!=(const Camera& left, const Camera& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
