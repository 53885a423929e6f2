#pragma once

#include "Domain/Types/CameraId.h"
#include "Domain/Types/RecordingId.h"

#include <QHostAddress>
#include <QMetaType>
#include <QString>

namespace zelmor::domain::types {

// A camera that takes pictures for a recording, on the network or on a USB port.
class Camera
{
public:
    // Id 0 (not stored yet), no address, no port, recording 0, interval 0.
    Camera();
    Camera(const CameraId& id, const QHostAddress& ipAddress, const QString& usbPort, const RecordingId& recordingId,
           int recordingInterval);

    CameraId id;
    QHostAddress ipAddress;
    QString usbPort;
    RecordingId recordingId;
    int recordingInterval; // seconds between two pictures
};

bool operator==(const Camera& left, const Camera& right);
bool operator!=(const Camera& left, const Camera& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::Camera)
