#include "Domain/Types/ActivityId.h"
#include "Domain/Types/BackupCleanupSettings.h"
#include "Domain/Types/DatabaseConnectionError.h"
#include "Domain/Types/Int10.h"
#include "Domain/Types/UserLevel.h"

#include <QtTest>

using namespace zelmor::domain::types;

class TestMetaTypes : public QObject
{
    Q_OBJECT

private slots:
    void int10();
    void userLevelFromDatabaseValues_data();
    void userLevelFromDatabaseValues();
    void registeredEnumerations_data();
    void registeredEnumerations();
};

void TestMetaTypes::int10()
{
    const int id = Int10::registerMetaType();
    QCOMPARE(Int10::registerMetaType(), id);
    QCOMPARE(QByteArray(QMetaType::typeName(id)), QByteArray("zelmor::domain::types::Int10"));
    QCOMPARE(QMetaType::type("zelmor::domain::types::Int10"), id);
    QCOMPARE(QMetaType::sizeOf(id), 2);

    // a value made from the number alone, as the catalogue's type table does, is zero
    const QVariant made(id, nullptr);
    QCOMPARE(made.userType(), id);
    QCOMPARE(int(made.value<Int10>().bytes[0]) + int(made.value<Int10>().bytes[1]), 0);

    Int10 value;
    value.bytes[1] = 0xF4;
    const Int10 copy(value);
    QVERIFY(copy == value && copy != Int10());

    QCOMPARE(QByteArray(QMetaType::typeName(qMetaTypeId<DatabaseConnectionError>())),
             QByteArray("zelmor::domain::types::DatabaseConnectionError"));
}

void TestMetaTypes::userLevelFromDatabaseValues_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<bool>("converts");
    QTest::addColumn<int>("expected");

    QTest::newRow("int 6") << QVariant(6) << true << 6;
    QTest::newRow("long long 3") << QVariant(qlonglong(3)) << true << 3;
    QTest::newRow("text 4") << QVariant(QStringLiteral("4")) << true << 4;
    // told by the return value only; the enumerator left behind is indeterminate
    QTest::newRow("not a level") << QVariant(QStringLiteral("not a level")) << false << -1;
}

void TestMetaTypes::userLevelFromDatabaseValues()
{
    QFETCH(QVariant, stored);
    QFETCH(bool, converts);
    QFETCH(int, expected);

    QCOMPARE(stored.convert(qMetaTypeId<UserLevel>()), converts);
    if (converts) {
        QCOMPARE(stored.userType(), qMetaTypeId<UserLevel>());
        QCOMPARE(int(stored.value<UserLevel>()), expected);
    }
}

void TestMetaTypes::registeredEnumerations_data()
{
    QTest::addColumn<int>("typeId");
    QTest::addColumn<QByteArray>("typeName");
    QTest::addColumn<int>("keyCount");
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<int>("value");

    const auto row = [](const char* name, int typeId, int keyCount, const char* key, int value) {
        QTest::newRow(name) << typeId << QByteArray(name) << keyCount << QByteArray(key) << value;
    };
    using Id = ActivityId;

    row("zelmor::domain::types::SirenDeskManagementError", qMetaTypeId<SirenDeskManagementError>(), 4,
        "DATABASE_INTERACTION_FAILED", 3);
    row("zelmor::domain::types::BackupCleanupSettings::KeepStrategy",
        qMetaTypeId<BackupCleanupSettings::KeepStrategy>(), 3, "KEEP_N_DAYS", 2);
    // GUI (255) in tst_activityid: a one-byte enumeration reads back signed through toInt()
    row("zelmor::domain::types::ActivityId::ComponentId", qMetaTypeId<Id::ComponentId>(), 15, "SIREN_DESK_MANAGEMENT",
        13);
    row("zelmor::domain::types::ActivityId::ChamberManagementActivityId",
        qMetaTypeId<Id::ChamberManagementActivityId>(), 21, "CHANGE_CHAMBER_SIGNAL_DELAY", 20);
    row("zelmor::domain::types::ActivityId::RecordingManagementActivityId",
        qMetaTypeId<Id::RecordingManagementActivityId>(), 41, "CHANGE_QUICK_RECORDING_CONFIG", 40);
    row("zelmor::domain::types::ActivityId::RoomManagementActivityId", qMetaTypeId<Id::RoomManagementActivityId>(), 5,
        "LAST_VALUE", 5);
    row("zelmor::domain::types::ActivityId::AccessManagementActivityId", qMetaTypeId<Id::AccessManagementActivityId>(),
        23, "RESET_PASSWORD_VIA_SECURITY_QUESTIONS", 22);
    row("zelmor::domain::types::ActivityId::SoftwareUpdateManagementActivityId",
        qMetaTypeId<Id::SoftwareUpdateManagementActivityId>(), 4, "AUTO_UPDATE_SOFTWARE", 2);
    row("zelmor::domain::types::ActivityId::ProgramManagementActivityId",
        qMetaTypeId<Id::ProgramManagementActivityId>(), 51, "TRANSFER_PROGRAM_VIA_MODBUS", 43);
    row("zelmor::domain::types::ActivityId::BackupRestoreManagementActivityId",
        qMetaTypeId<Id::BackupRestoreManagementActivityId>(), 3, "BACKUP_DATABASE", 1);
    row("zelmor::domain::types::ActivityId::ProtocolManagementActivityId",
        qMetaTypeId<Id::ProtocolManagementActivityId>(), 3, "FETCH_OWN_ENTRIES", 1);
    row("zelmor::domain::types::ActivityId::ReportManagementActivityId", qMetaTypeId<Id::ReportManagementActivityId>(),
        3, "CHOOSE_PATH", 1);
    row("zelmor::domain::types::ActivityId::SmtpConnectionActivityId", qMetaTypeId<Id::SmtpConnectionActivityId>(), 5,
        "CHANGE_AC_SMTP_CONFIG", 2);
    row("zelmor::domain::types::ActivityId::AlarmManagementActivityId", qMetaTypeId<Id::AlarmManagementActivityId>(), 3,
        "CHANGE_ALARM_CONFIG", 1);
    row("zelmor::domain::types::ActivityId::SirenBoxManagementActivityId",
        qMetaTypeId<Id::SirenBoxManagementActivityId>(), 5, "CHANGE_NUM_CONNECTION_ATTEMPTS", 2);
    row("zelmor::domain::types::ActivityId::SirenDeskManagementActivityId",
        qMetaTypeId<Id::SirenDeskManagementActivityId>(), 5, "REQUEST_CHAMBERS", 4);
    // the GUI's activities start at 0
    row("zelmor::domain::types::ActivityId::GuiActivityId", qMetaTypeId<Id::GuiActivityId>(), 75,
        "CHANGE_ACCESS_CONTROL_ACTIVATION", 0);
}

void TestMetaTypes::registeredEnumerations()
{
    QFETCH(int, typeId);
    QFETCH(QByteArray, typeName);
    QFETCH(QByteArray, key);
    QFETCH(int, value);

    QCOMPARE(QByteArray(QMetaType::typeName(typeId)), typeName);
    QCOMPARE(QMetaType::type(typeName.constData()), typeId);

    const QMetaObject* const scope = QMetaType::metaObjectForType(typeId);
    QVERIFY(scope);
    const QMetaEnum enumeration = scope->enumerator(scope->indexOfEnumerator(typeName.split(':').last().constData()));
    QVERIFY(enumeration.isValid());
    QTEST(enumeration.keyCount(), "keyCount");
    QCOMPARE(enumeration.keyToValue(key.constData()), value);

    // a number of the database becomes the enumeration
    QVariant stored = QVariant::fromValue(qlonglong(value));
    QVERIFY(stored.convert(typeId));
    QCOMPARE(stored.userType(), typeId);
    QCOMPARE(stored.toInt(), value);
}

QTEST_GUILESS_MAIN(TestMetaTypes)
#include "tst_metatypes.moc"
