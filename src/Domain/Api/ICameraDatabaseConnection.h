#pragma once

#include "Domain/Types/DatabaseConnectionError.h"

#include <QList>

namespace zelmor::domain::types {
class Camera;
class CameraId;
class RecordingId;
} // namespace zelmor::domain::types

namespace zelmor::domain::api {

// The cameras that take pictures for a recording. Every operation returns its
// empty value (false, an empty list) on failure and reports it through error().
class ICameraDatabaseConnection
{
public:
    virtual ~ICameraDatabaseConnection();

    virtual QList<zelmor::domain::types::Camera>
    getCameras(const zelmor::domain::types::RecordingId& recording) const = 0;
    // The new camera's id goes into the argument.
    virtual bool addCamera(zelmor::domain::types::Camera& camera) = 0;
    virtual bool updateCamera(const zelmor::domain::types::Camera& camera) = 0;
    virtual bool deleteCamera(const zelmor::domain::types::CameraId& id) = 0;

    // A signal in the implementations.
    virtual void error(zelmor::domain::types::DatabaseConnectionError error) const = 0;
};

} // namespace zelmor::domain::api
