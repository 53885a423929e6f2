#include "Base/Connection/DatabaseConnection/SqlCameraDatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Base/Connection/DatabaseConnection/sqlvalue.h"
#include "Domain/Api/ISqlConnection.h"
#include "Domain/Types/Camera.h"
#include "Domain/Types/CameraId.h"
#include "Domain/Types/RecordingId.h"

namespace zelmor::base::connection::databaseconnection {

Q_LOGGING_CATEGORY(SQLCAMERADATABASECONNECTION, "zelmor.SqlCameraDatabaseConnection")

using namespace zelmor::domain::types;
using zelmor::domain::api::CameraProperty;
using zelmor::domain::api::ISqlConnection;

namespace {

using DC = DatabaseSchema;

// Positions in a row of "camera": its columns in order.
enum CameraColumn {
    CAMERA_ID,
    CAMERA_IP_V4_ADDRESS,
    CAMERA_IP_V6_ADDRESS,
    CAMERA_USB_PORT,
    CAMERA_RECORDING_ID,
    CAMERA_RECORDING_INTERVAL,
    CAMERA_COLUMNS
};

const CameraProperty cameraLayout[CAMERA_COLUMNS] = {
    CameraProperty::ID,       CameraProperty::IP_V4_ADDRESS, CameraProperty::IP_V6_ADDRESS,
    CameraProperty::USB_PORT, CameraProperty::RECORDING_ID,  CameraProperty::RECORDING_INTERVAL,
};

QString cameraColumn(CameraProperty property)
{
    return DC::lookupCameraColumnName(property);
}

// The address in the column of its protocol, or nothing.
QVariant addressIn(const QHostAddress& address, QAbstractSocket::NetworkLayerProtocol protocol)
{
    return sqlvalue::text(address.protocol() == protocol ? address.toString() : QString());
}

// The columns a camera is written with; the id is the database's.
QList<SqlQuery::ColumnValuePair> cameraValues(const Camera& camera)
{
    return {
        {cameraColumn(CameraProperty::IP_V4_ADDRESS), addressIn(camera.ipAddress, QAbstractSocket::IPv4Protocol)},
        {cameraColumn(CameraProperty::IP_V6_ADDRESS), addressIn(camera.ipAddress, QAbstractSocket::IPv6Protocol)},
        {cameraColumn(CameraProperty::USB_PORT), sqlvalue::text(camera.usbPort)},
        {cameraColumn(CameraProperty::RECORDING_ID), sqlvalue::orNull(int(camera.recordingId), 0)},
        {cameraColumn(CameraProperty::RECORDING_INTERVAL), camera.recordingInterval},
    };
}

} // namespace

SqlCameraDatabaseConnection::SqlCameraDatabaseConnection(QObject* parent)
    : QObject(parent)
    , checks(this, SQLCAMERADATABASECONNECTION)
{
}

SqlCameraDatabaseConnection::~SqlCameraDatabaseConnection() = default;

bool SqlCameraDatabaseConnection::setDependencies(ISqlConnection* connection)
{
    this->connection = connection;
    return connection != nullptr;
}

bool SqlCameraDatabaseConnection::areDependenciesSet() const
{
    return connection != nullptr;
}

bool SqlCameraDatabaseConnection::initialize()
{
    return checks.hasDependencies("initialize") && checks.hasTables(*connection, {DC::lookupCameraTableName()});
}

QList<Camera> SqlCameraDatabaseConnection::getCameras(const RecordingId& recording) const
{
    if (!checks.hasDependencies("getCameras")) {
        return {};
    }
    SqlQuery query;
    query.selectColumns(SqlRow::columnNames(cameraColumn, cameraLayout))
        .fromTable(DC::lookupCameraTableName())
        .whereColumn(cameraColumn(CameraProperty::RECORDING_ID))
        .equals(int(recording));

    QList<Camera> cameras;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& values : rows) {
        if (!checks.hasWidth(values, CAMERA_COLUMNS, "getCameras")) {
            continue;
        }
        const SqlRow row(values);
        const QHostAddress address(
            row.toString(row.isNull(CAMERA_IP_V4_ADDRESS) ? CAMERA_IP_V6_ADDRESS : CAMERA_IP_V4_ADDRESS));
        cameras.append(Camera(row.toInt(CAMERA_ID, 0), address, row.toString(CAMERA_USB_PORT),
                              row.toInt(CAMERA_RECORDING_ID, 0), row.toInt(CAMERA_RECORDING_INTERVAL, 0)));
    }
    return cameras;
}

bool SqlCameraDatabaseConnection::addCamera(Camera& camera)
{
    if (!checks.hasDependencies("addCamera")) {
        return false;
    }
    SqlQuery query;
    query.insertTableColumnValuePairs(DC::lookupCameraTableName(), cameraValues(camera));
    const ISqlConnection::ExecuteResult result = connection->execute(query);
    if (result.success) {
        camera.id = int(result.lastInsertId);
    }
    return result.success;
}

bool SqlCameraDatabaseConnection::updateCamera(const Camera& camera)
{
    if (!checks.hasDependencies("updateCamera")) {
        return false;
    }
    SqlQuery query;
    query.updateTable(DC::lookupCameraTableName())
        .setColumnValuePairs(cameraValues(camera))
        .whereColumn(cameraColumn(CameraProperty::ID))
        .equals(int(camera.id));
    return connection->execute(query).success;
}

bool SqlCameraDatabaseConnection::deleteCamera(const CameraId& id)
{
    if (!checks.hasDependencies("deleteCamera")) {
        return false;
    }
    SqlQuery query;
    query.deleteFromTable(DC::lookupCameraTableName()).whereColumn(cameraColumn(CameraProperty::ID)).equals(int(id));
    return connection->execute(query).success;
}

} // namespace zelmor::base::connection::databaseconnection
