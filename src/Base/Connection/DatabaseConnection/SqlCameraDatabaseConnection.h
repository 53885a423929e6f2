#pragma once

#include "Base/Connection/DatabaseConnection/SqlStoreChecks.h"
#include "Domain/Api/ICameraDatabaseConnection.h"
#include "Domain/Api/IInitializing.h"
#include "Domain/Types/DatabaseConnectionError.h"

#include <QLoggingCategory>
#include <QObject>

namespace zelmor::domain::api {
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::base::connection::databaseconnection {

Q_DECLARE_LOGGING_CATEGORY(SQLCAMERADATABASECONNECTION)

// The cameras of recordings in table "camera". A camera's address goes to the
// column of its protocol, "ip_v4_address" or "ip_v6_address", the other one
// staying NULL; a USB camera has both NULL.
//
// Failures are logged in "zelmor.SqlCameraDatabaseConnection" and emitted
// through error(). Use on the thread of the connection.
class SqlCameraDatabaseConnection : public QObject,
                                    public zelmor::domain::api::ICameraDatabaseConnection,
                                    public zelmor::domain::api::IInitializing
{
    Q_OBJECT

public:
    explicit SqlCameraDatabaseConnection(QObject* parent = nullptr);
    ~SqlCameraDatabaseConnection() override;

    // The connection is not owned. True when it is not null.
    virtual bool setDependencies(zelmor::domain::api::ISqlConnection* connection);
    // True when the database has the table "camera" (MISSING_TABLE if not).
    bool initialize() override;

    QList<zelmor::domain::types::Camera> getCameras(const zelmor::domain::types::RecordingId& recording) const override;
    bool addCamera(zelmor::domain::types::Camera& camera) override;
    bool updateCamera(const zelmor::domain::types::Camera& camera) override;
    bool deleteCamera(const zelmor::domain::types::CameraId& id) override;

    virtual bool areDependenciesSet() const;

signals:
    void error(zelmor::domain::types::DatabaseConnectionError error) const override;

private:
    zelmor::domain::api::ISqlConnection* connection = nullptr;
    SqlStoreChecks checks;
};

} // namespace zelmor::base::connection::databaseconnection
