#include "Base/Connection/DatabaseConnection/SqlCameraDatabaseConnection.h"
#include "Domain/Types/Camera.h"
#include "Domain/Types/CameraId.h"
#include "Domain/Types/RecordingId.h"
#include "support/SampleCatalogue.h"
#include "support/StoreFixture.h"
#include "support/TestDatabase.h"

#include <QLoggingCategory>
#include <QtTest>

#include <functional>

using zelmor::base::connection::databaseconnection::SqlCameraDatabaseConnection;
using zelmor::testsupport::errorCodes;
using zelmor::testsupport::TestDatabase;
using namespace zelmor::domain::types;

using Store = SqlCameraDatabaseConnection;
using Fixture = zelmor::testsupport::StoreFixture<Store>;
using Failures = zelmor::testsupport::FailureTable<Store>;
using Operation = Failures::Operation;
Q_DECLARE_METATYPE(Operation)

namespace {

// Two recordings for the cameras to belong to.
const QString recordings = QStringLiteral("INSERT INTO recording (id, recording_name) VALUES (4, 'R4'), (5, 'R5');");

QString summary(const Camera& camera)
{
    return QStringLiteral("%1 '%2' '%3' recording %4 every %5")
        .arg(int(camera.id))
        .arg(camera.ipAddress.toString(), camera.usbPort)
        .arg(int(camera.recordingId))
        .arg(camera.recordingInterval);
}

QString summary(const QList<Camera>& cameras)
{
    QStringList texts;
    for (const Camera& camera : cameras)
        texts.append(summary(camera));
    return texts.join(QStringLiteral(", "));
}

} // namespace

class TestSqlCameraDatabaseConnection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void writes_data();
    void writes();
    void badInput_data();
    void badInput();

private:
    zelmor::testsupport::ApplicationFiles files{recordings};
};

void TestSqlCameraDatabaseConnection::initTestCase()
{
    qRegisterMetaType<DatabaseConnectionError>();
    QLoggingCategory::setFilterRules(QStringLiteral("zelmor.*=false"));
    QVERIFY(files.isValid());
}

void TestSqlCameraDatabaseConnection::writes_data()
{
    QTest::addColumn<Camera>("camera");
    QTest::addColumn<QString>("stored"); // ip_v4_address|ip_v6_address|usb_port|recording_id|recording_interval
    QTest::addColumn<QString>("read");

    // Each camera's address in the column of its protocol; nothing is NULL.
    QTest::newRow("network, IPv4") << Camera(0, QHostAddress("192.168.7.20"), QString(), 4, 30)
                                   << "'192.168.7.20'|NULL|NULL|4|30"
                                   << "1 '192.168.7.20' '' recording 4 every 30";
    QTest::newRow("network, IPv6") << Camera(0, QHostAddress("fe80::1"), QString(), 5, 5) << "NULL|'fe80::1'|NULL|5|5"
                                   << "1 'fe80::1' '' recording 5 every 5";
    QTest::newRow("USB") << Camera(0, QHostAddress(), "/dev/video0", 4, 0) << "NULL|NULL|'/dev/video0'|4|0"
                         << "1 '' '/dev/video0' recording 4 every 0";
}

void TestSqlCameraDatabaseConnection::writes()
{
    QFETCH(Camera, camera);
    QFETCH(QString, stored);
    QFETCH(QString, read);

    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);
    const auto row = [&](int id) {
        return files.shell(path,
                           QStringLiteral("SELECT quote(ip_v4_address), quote(ip_v6_address), quote(usb_port), "
                                          "quote(recording_id), quote(recording_interval) FROM camera WHERE id = %1;")
                               .arg(id));
    };

    QVERIFY(store.addCamera(camera));
    QCOMPARE(int(camera.id), 1);
    QCOMPARE(row(1), stored);
    const RecordingId recording = camera.recordingId;
    QCOMPARE(summary(store.getCameras(recording)), read);

    // A second camera of the other recording, then the first one changed to it.
    Camera other(0, QHostAddress("10.0.0.1"), QString(), 4 + 5 - int(recording), 10);
    QVERIFY(store.addCamera(other));
    QCOMPARE(int(other.id), 2);
    camera.recordingId = other.recordingId;
    camera.recordingInterval = 60;
    QVERIFY(store.updateCamera(camera));
    QCOMPARE(store.getCameras(recording), QList<Camera>());
    QCOMPARE(store.getCameras(other.recordingId), (QList<Camera>{camera, other}));

    QVERIFY(store.deleteCamera(camera.id));
    QCOMPARE(store.getCameras(other.recordingId), QList<Camera>{other});
    QCOMPARE(row(1), QString());
    QCOMPARE(errors.count(), 0);
}

void TestSqlCameraDatabaseConnection::badInput_data()
{
    Failures::addColumns();
    const Operation initialize = [](Store& s) { return QString::number(s.initialize()); };
    const Operation cameras = [](Store& s) { return summary(s.getCameras(4)); };
    const Operation add = [](Store& s) {
        Camera camera(0, QHostAddress("10.1.1.1"), QString(), 4, 1);
        return QStringLiteral("%1 %2").arg(s.addCamera(camera)).arg(int(camera.id));
    };
    const Operation update = [](Store& s) { return QString::number(s.updateCamera(Camera(1, {}, "usb1", 4, 2))); };
    const Operation remove = [](Store& s) { return QString::number(s.deleteCamera(1)); };

    for (const char* situation : {"unwired", "wrong key"}) {
        const QList<int> codes = QByteArray(situation) == "unwired" ? QList<int>{0} : QList<int>();
        const QByteArray tag = QByteArray(situation) + ": ";
        Failures::row(tag + "initialize", situation, initialize, "0", codes.isEmpty() ? QList<int>{4} : codes);
        Failures::row(tag + "cameras", situation, cameras, "", codes);
        Failures::row(tag + "add", situation, add, "0 0", codes);
        Failures::row(tag + "update", situation, update, "0", codes);
        Failures::row(tag + "delete", situation, remove, "0", codes);
    }
    Failures::row("no camera table: initialize", "no camera table", initialize, "0", {4});
    // A recording that isn't there: refused by the key, nothing written.
    Failures::row("unknown recording", "",
                  [](Store& s) {
                      Camera camera(0, QHostAddress(), "usb2", 9, 1);
                      return QString::number(s.addCamera(camera));
                  },
                  "0", {});
    // The second camera's row comes a column short: reported, the first one still read.
    Failures::row("short row", "short row", cameras, "1 '10.0.0.9' '' recording 4 every 3", {8}, 6);
}

void TestSqlCameraDatabaseConnection::badInput()
{
    QFETCH(QString, situation);

    const QString path = files.create(
        situation == "no camera table" ? QStringLiteral("DROP TABLE camera;")
                                       : QStringLiteral("INSERT INTO camera VALUES (1, '10.0.0.9', NULL, NULL, 4, 3),"
                                                        " (2, NULL, NULL, 'usb0', 4, 4);"));
    QVERIFY(!path.isEmpty());
    // In the short row, the second camera's row comes a column short.
    Failures::check(path, 1);
}

QTEST_GUILESS_MAIN(TestSqlCameraDatabaseConnection)

#include "tst_sqlcameradatabaseconnection.moc"
