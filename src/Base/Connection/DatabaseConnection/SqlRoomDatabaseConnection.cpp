#include "Base/Connection/DatabaseConnection/SqlRoomDatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Base/Connection/DatabaseConnection/sqlhelper.h"
#include "Base/Connection/DatabaseConnection/sqlvalue.h"
#include "Domain/Api/ISqlConnection.h"
#include "Domain/Types/ChamberId.h"
#include "Domain/Types/Room.h"
#include "Domain/Types/RoomId.h"
#include "Domain/Types/RoomPosition.h"

namespace zelmor::base::connection::databaseconnection {

Q_LOGGING_CATEGORY(SQLROOMDATABASECONNECTION, "zelmor.SqlRoomDatabaseConnection")

using namespace zelmor::domain::types;
using zelmor::domain::api::ISqlConnection;
using zelmor::domain::api::RoomChamberPositionProperty;
using zelmor::domain::api::RoomProperty;

namespace {

using DC = DatabaseSchema;

// Positions in a row of "room": its columns in order.
enum RoomColumn { ROOM_ID, ROOM_NAME, ROOM_IMAGE_PATH, ROOM_IMAGE_SCALE, ROOM_COLUMNS };

const RoomProperty roomLayout[ROOM_COLUMNS] = {
    RoomProperty::ID,
    RoomProperty::ROOM_NAME,
    RoomProperty::IMAGE_PATH,
    RoomProperty::IMAGE_SCALE,
};

// Positions in a row of a chamber's position.
enum PositionColumn { POSITION_ROOM_ID, POSITION_X, POSITION_Y, POSITION_COLUMNS };

const RoomChamberPositionProperty positionLayout[POSITION_COLUMNS] = {
    RoomChamberPositionProperty::ROOM_ID,
    RoomChamberPositionProperty::CHAMBER_POS_X,
    RoomChamberPositionProperty::CHAMBER_POS_Y,
};

QString roomColumn(RoomProperty property)
{
    return DC::lookupRoomColumnName(property);
}

QString positionColumn(RoomChamberPositionProperty property)
{
    return DC::lookupRoomChamberPositionColumnName(property);
}

// The columns a room is written with; the id is the database's.
QList<SqlQuery::ColumnValuePair> roomValues(const Room& room)
{
    return {
        {roomColumn(RoomProperty::ROOM_NAME), sqlvalue::text(room.name)},
        {roomColumn(RoomProperty::IMAGE_PATH), sqlvalue::text(room.image.toString())},
        {roomColumn(RoomProperty::IMAGE_SCALE), double(room.scale)},
    };
}

} // namespace

SqlRoomDatabaseConnection::SqlRoomDatabaseConnection(QObject* parent)
    : QObject(parent)
    , checks(this, SQLROOMDATABASECONNECTION)
{
}

SqlRoomDatabaseConnection::~SqlRoomDatabaseConnection() = default;

bool SqlRoomDatabaseConnection::setDependencies(ISqlConnection* connection)
{
    this->connection = connection;
    return connection != nullptr;
}

bool SqlRoomDatabaseConnection::areDependenciesSet() const
{
    return connection != nullptr;
}

bool SqlRoomDatabaseConnection::initialize()
{
    return checks.hasDependencies("initialize") && checks.hasTables(*connection, {DC::lookupRoomTableName()});
}

QList<Room> SqlRoomDatabaseConnection::getAllRooms() const
{
    if (!checks.hasDependencies("getAllRooms")) {
        return {};
    }
    SqlQuery query;
    query.selectColumns(SqlRow::columnNames(roomColumn, roomLayout)).fromTable(DC::lookupRoomTableName());

    QList<Room> rooms;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& values : rows) {
        if (!checks.hasWidth(values, ROOM_COLUMNS, "getAllRooms")) {
            continue;
        }
        const SqlRow row(values);
        const RoomId id = row.toInt(ROOM_ID, 0);
        rooms.append(Room(id, row.toString(ROOM_NAME), QUrl(row.toString(ROOM_IMAGE_PATH)),
                          row.toFloat(ROOM_IMAGE_SCALE, Room().scale), getChambersInRoom(id)));
    }
    return rooms;
}

QUrl SqlRoomDatabaseConnection::getRoomImagePath(const RoomId& id) const
{
    if (!checks.hasDependencies("getRoomImagePath")) {
        return {};
    }
    SqlQuery query;
    query.selectColumn(roomColumn(RoomProperty::IMAGE_PATH))
        .fromTable(DC::lookupRoomTableName())
        .whereColumn(roomColumn(RoomProperty::ID))
        .equals(int(id));
    return QUrl(sqlhelper::readStringSqlValue(connection->fetchSingleValue(query), QString()));
}

bool SqlRoomDatabaseConnection::addRoom(Room& room)
{
    if (!checks.hasDependencies("addRoom")) {
        return false;
    }
    SqlQuery query;
    query.insertTableColumnValuePairs(DC::lookupRoomTableName(), roomValues(room));
    const ISqlConnection::ExecuteResult result = connection->execute(query);
    if (result.success) {
        room.id = int(result.lastInsertId);
    }
    return result.success;
}

bool SqlRoomDatabaseConnection::updateRoom(const Room& room)
{
    if (!checks.hasDependencies("updateRoom")) {
        return false;
    }
    SqlQuery query;
    query.updateTable(DC::lookupRoomTableName())
        .setColumnValuePairs(roomValues(room))
        .whereColumn(roomColumn(RoomProperty::ID))
        .equals(int(room.id));
    return connection->execute(query).success;
}

bool SqlRoomDatabaseConnection::deleteRoom(const RoomId& id)
{
    if (!checks.hasDependencies("deleteRoom")) {
        return false;
    }
    // A room with chambers in it stays: the positions refer to it.
    SqlQuery query;
    query.deleteFromTable(DC::lookupRoomTableName()).whereColumn(roomColumn(RoomProperty::ID)).equals(int(id));
    return connection->execute(query).success;
}

RoomPosition SqlRoomDatabaseConnection::getRoomPosition(const ChamberId& chamber) const
{
    if (!checks.hasDependencies("getRoomPosition")) {
        return {};
    }
    SqlQuery query;
    query.selectColumns(SqlRow::columnNames(positionColumn, positionLayout))
        .fromTable(DC::lookupRoomChamberPositionTableName())
        .whereColumn(positionColumn(RoomChamberPositionProperty::CHAMBER_ID))
        .equals(int(chamber));

    const QList<QVariant> values = connection->fetchSingleRow(query);
    // No row: the chamber isn't placed.
    if (values.isEmpty() || !checks.hasWidth(values, POSITION_COLUMNS, "getRoomPosition")) {
        return {};
    }
    const SqlRow row(values);
    return RoomPosition(row.toInt(POSITION_ROOM_ID, 0),
                        QPointF(row.toDouble(POSITION_X, 0.0), row.toDouble(POSITION_Y, 0.0)));
}

bool SqlRoomDatabaseConnection::setRoomPosition(const ChamberId& chamber, const RoomPosition& position)
{
    if (!checks.hasDependencies("setRoomPosition")) {
        return false;
    }
    const QString chamberColumn = positionColumn(RoomChamberPositionProperty::CHAMBER_ID);
    SqlQuery query;
    if (position.hasRoom()) {
        query.insertOrReplaceTable(DC::lookupRoomChamberPositionTableName())
            .columns({chamberColumn, positionColumn(RoomChamberPositionProperty::ROOM_ID),
                      positionColumn(RoomChamberPositionProperty::CHAMBER_POS_X),
                      positionColumn(RoomChamberPositionProperty::CHAMBER_POS_Y)})
            .values({int(chamber), int(position.roomId), position.position.x(), position.position.y()}, true);
    } else {
        query.deleteFromTable(DC::lookupRoomChamberPositionTableName()).whereColumn(chamberColumn).equals(int(chamber));
    }
    return connection->execute(query).success;
}

QList<ChamberId> SqlRoomDatabaseConnection::getChambersInRoom(const RoomId& id) const
{
    if (!checks.hasDependencies("getChambersInRoom")) {
        return {};
    }
    SqlQuery query;
    query.selectColumn(positionColumn(RoomChamberPositionProperty::CHAMBER_ID))
        .fromTable(DC::lookupRoomChamberPositionTableName())
        .whereColumn(positionColumn(RoomChamberPositionProperty::ROOM_ID))
        .equals(int(id));

    QList<ChamberId> chambers;
    for (const QVariant& value : connection->fetchSingleColumn(query)) {
        chambers.append(sqlhelper::readIntSqlValue(value, -1));
    }
    return chambers;
}

} // namespace zelmor::base::connection::databaseconnection
