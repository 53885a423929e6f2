#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/SqlCameraDatabaseConnection.h"
#include "Domain/Types/Camera.h"
#include "Domain/Types/CameraId.h"
#include "Domain/Types/RecordingId.h"

// The camera store's interface, passed on call by call.

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;

QList<Camera> DatabaseConnection::getCameras(const RecordingId& recording) const
{
    return cameraStore->getCameras(recording);
}

bool DatabaseConnection::addCamera(Camera& camera)
{
    return cameraStore->addCamera(camera);
}

bool DatabaseConnection::updateCamera(const Camera& camera)
{
    return cameraStore->updateCamera(camera);
}

bool DatabaseConnection::deleteCamera(const CameraId& id)
{
    return cameraStore->deleteCamera(id);
}

} // namespace zelmor::base::connection::databaseconnection
