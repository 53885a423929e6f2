#include "Base/Connection/DatabaseConnection/SqlRoomDatabaseConnection.h"
#include "Domain/Types/ChamberId.h"
#include "Domain/Types/Room.h"
#include "Domain/Types/RoomId.h"
#include "Domain/Types/RoomPosition.h"
#include "support/SampleCatalogue.h"
#include "support/StoreFixture.h"
#include "support/TestDatabase.h"

#include <QLoggingCategory>
#include <QtTest>

#include <functional>

using zelmor::base::connection::databaseconnection::SqlRoomDatabaseConnection;
using zelmor::testsupport::CuttingConnection;
using zelmor::testsupport::errorCodes;
using zelmor::testsupport::TestDatabase;
using namespace zelmor::domain::types;

using Store = SqlRoomDatabaseConnection;
using Fixture = zelmor::testsupport::StoreFixture<Store>;
using Failures = zelmor::testsupport::FailureTable<Store>;
using Operation = Failures::Operation;
Q_DECLARE_METATYPE(Operation)

namespace {

// Chambers to place; rooms come through the store.
const QString chambers = QStringLiteral("INSERT INTO chamber (id, chamber_name) VALUES (1, 'A'), (2, 'B'), (3, 'C');");

QString summary(const Room& room)
{
    QStringList placed;
    for (const ChamberId& chamber : room.chamberIds)
        placed.append(QString::number(int(chamber)));
    return QStringLiteral("%1 '%2' <%3> x%4 [%5]")
        .arg(int(room.id))
        .arg(room.name, room.image.toString())
        .arg(room.scale)
        .arg(placed.join(' '));
}

QString summary(const QList<Room>& rooms)
{
    QStringList texts;
    for (const Room& room : rooms)
        texts.append(summary(room));
    return texts.join(QStringLiteral(", "));
}

QString summary(const RoomPosition& position)
{
    return QStringLiteral("room %1 at %2/%3")
        .arg(int(position.roomId))
        .arg(position.position.x())
        .arg(position.position.y());
}

QString ids(const QList<ChamberId>& chambers)
{
    QStringList texts;
    for (const ChamberId& chamber : chambers)
        texts.append(QString::number(int(chamber)));
    return texts.join(' ');
}

} // namespace

class TestSqlRoomDatabaseConnection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void rooms();
    void positions_data();
    void positions();
    void badInput_data();
    void badInput();

private:
    zelmor::testsupport::ApplicationFiles files{chambers};
};

void TestSqlRoomDatabaseConnection::initTestCase()
{
    qRegisterMetaType<DatabaseConnectionError>();
    // The failures are counted through the signals.
    QLoggingCategory::setFilterRules(QStringLiteral("zelmor.*=false"));
    QVERIFY(files.isValid());
}

void TestSqlRoomDatabaseConnection::rooms()
{
    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    Room lab(0, "Lab", QUrl::fromLocalFile("/srv/plans/lab 1.png"), 2.5f);
    Room store2(0, QLatin1String(""), QUrl(), 1.0f);
    QVERIFY(store.addRoom(lab));
    QVERIFY(store.addRoom(store2));
    QCOMPARE(int(lab.id), 1);
    QCOMPARE(int(store2.id), 2);
    // An empty name and no floor plan are NULL; the plan is kept as its URL.
    QCOMPARE(files.shell(path, "SELECT id, quote(room_name), quote(image_path), image_scale FROM room ORDER BY id;"),
             QStringLiteral("1|'Lab'|'file:///srv/plans/lab 1.png'|2.5\n2|NULL|NULL|1.0"));

    QVERIFY(store.setRoomPosition(3, RoomPosition(1, QPointF(0.25, 4))));
    QVERIFY(store.setRoomPosition(1, RoomPosition(1, QPointF(1, 1))));
    QCOMPARE(summary(store.getAllRooms()),
             QStringLiteral("1 'Lab' <file:///srv/plans/lab 1.png> x2.5 [1 3], 2 '' <> x1 []"));
    QCOMPARE(store.getRoomImagePath(1), QUrl::fromLocalFile("/srv/plans/lab 1.png"));
    QCOMPARE(store.getRoomImagePath(2), QUrl());
    QCOMPARE(store.getRoomImagePath(9), QUrl());

    lab.name = "Lab 2";
    lab.image = QUrl("qrc:/plans/lab.svg");
    lab.scale = 0.5f;
    QVERIFY(store.updateRoom(lab));
    QCOMPARE(summary(store.getAllRooms().value(0)), QStringLiteral("1 'Lab 2' <qrc:/plans/lab.svg> x0.5 [1 3]"));

    // A room with chambers in it stays; an empty one goes.
    QVERIFY(!store.deleteRoom(1));
    QVERIFY(store.deleteRoom(2));
    QCOMPARE(files.shell(path, "SELECT group_concat(id) FROM room;"), QStringLiteral("1"));
    QCOMPARE(errors.count(), 0);
}

void TestSqlRoomDatabaseConnection::positions_data()
{
    QTest::addColumn<bool>("delivered");

    // The room tables are among those the creation functions build.
    QTest::newRow("delivered") << true;
    QTest::newRow("made by initialize") << false;
}

void TestSqlRoomDatabaseConnection::positions()
{
    QFETCH(bool, delivered);

    const QString rooms = QStringLiteral("INSERT INTO room (id, room_name) VALUES (1, 'Lab'), (2, 'Hall');");
    QString path;
    if (delivered) {
        path = files.create(rooms);
    } else {
        static int count = 0;
        path =
            zelmor::testsupport::createByInitialize(files.database(), QStringLiteral("created%1.sqlite3").arg(++count));
        QVERIFY(!path.isEmpty());
        QVERIFY(!files.shell(path, chambers + rooms).startsWith(QLatin1String("<failed")));
    }
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    const auto rows = [&] {
        return files.shell(path, "SELECT chamber_id, room_id, chamber_pos_x, chamber_pos_y FROM room_chamber_position "
                                 "ORDER BY chamber_id;");
    };
    // Not placed: a position without a room.
    QCOMPARE(summary(store.getRoomPosition(2)), QStringLiteral("room 0 at 0/0"));

    QVERIFY(store.setRoomPosition(2, RoomPosition(1, QPointF(12.5, -3))));
    QVERIFY(store.setRoomPosition(3, RoomPosition(1, QPointF(1, 2))));
    QCOMPARE(rows(), QStringLiteral("2|1|12.5|-3.0\n3|1|1.0|2.0"));
    QCOMPARE(summary(store.getRoomPosition(2)), QStringLiteral("room 1 at 12.5/-3"));

    // Moved to another room: the one row replaced.
    QVERIFY(store.setRoomPosition(2, RoomPosition(2, QPointF(7, 8))));
    QCOMPARE(rows(), QStringLiteral("2|2|7.0|8.0\n3|1|1.0|2.0"));
    QCOMPARE(ids(store.getChambersInRoom(1)), QStringLiteral("3"));
    QCOMPARE(ids(store.getChambersInRoom(2)), QStringLiteral("2"));

    // A position without a room takes the chamber out: its row goes.
    QVERIFY(store.setRoomPosition(2, RoomPosition(0, QPointF(7, 8))));
    QVERIFY(store.setRoomPosition(1, RoomPosition()));
    QCOMPARE(rows(), QStringLiteral("3|1|1.0|2.0"));
    QCOMPARE(summary(store.getRoomPosition(2)), QStringLiteral("room 0 at 0/0"));
    QCOMPARE(ids(store.getChambersInRoom(2)), QString());

    // A room or a chamber that isn't there: refused by the keys.
    QVERIFY(!store.setRoomPosition(3, RoomPosition(9, QPointF())));
    QVERIFY(!store.setRoomPosition(9, RoomPosition(1, QPointF())));
    QCOMPARE(rows(), QStringLiteral("3|1|1.0|2.0"));
    QCOMPARE(errors.count(), 0);
}

void TestSqlRoomDatabaseConnection::badInput_data()
{
    Failures::addColumns();
    const Operation initialize = [](Store& s) { return QString::number(s.initialize()); };
    const Operation allRooms = [](Store& s) { return summary(s.getAllRooms()); };
    const Operation position = [](Store& s) { return summary(s.getRoomPosition(3)); };
    const Operation addRoom = [](Store& s) {
        Room room(0, "New", QUrl(), 1);
        return QStringLiteral("%1 %2").arg(s.addRoom(room)).arg(int(room.id));
    };
    const Operation place = [](Store& s) { return QString::number(s.setRoomPosition(1, RoomPosition(1, QPointF()))); };
    const Operation unplace = [](Store& s) { return QString::number(s.setRoomPosition(3, RoomPosition())); };
    const Operation inRoom = [](Store& s) { return ids(s.getChambersInRoom(1)); };

    // Unwired, every operation reports 0; with a wrong key the connection
    // reports, and the store only misses its table.
    for (const char* situation : {"unwired", "wrong key"}) {
        const QList<int> codes = QByteArray(situation) == "unwired" ? QList<int>{0} : QList<int>();
        const QByteArray tag = QByteArray(situation) + ": ";
        Failures::row(tag + "initialize", situation, initialize, "0", codes.isEmpty() ? QList<int>{4} : codes);
        Failures::row(tag + "all rooms", situation, allRooms, "", codes);
        Failures::row(tag + "position", situation, position, "room 0 at 0/0", codes);
        Failures::row(tag + "add room", situation, addRoom, "0 0", codes);
        Failures::row(tag + "place", situation, place, "0", codes);
        Failures::row(tag + "take out", situation, unplace, "0", codes);
        Failures::row(tag + "chambers in room", situation, inRoom, "", codes);
    }
    Failures::row("no room table: initialize", "no room table", initialize, "0", {4});
    // Every row of the rooms comes a column short: each reported and passed over.
    Failures::row("short rows of rooms", "short rows", allRooms, "", {8, 8}, 4);
    Failures::row("short row of a position", "short rows", position, "room 0 at 0/0", {8}, 3);
}

void TestSqlRoomDatabaseConnection::badInput()
{
    QFETCH(QString, situation);

    const QString path = files.create(
        situation == "no room table" ? QStringLiteral("DROP TABLE room_chamber_position; DROP TABLE room;")
                                     : QStringLiteral("INSERT INTO room (id, room_name) VALUES (1, 'Lab'), (2, 'Hall');"
                                                      "INSERT INTO room_chamber_position VALUES (3, 1, 0.5, 0.5);"));
    QVERIFY(!path.isEmpty());
    Failures::check(path, -1);
}

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    TestSqlRoomDatabaseConnection test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_sqlroomdatabaseconnection.moc"
