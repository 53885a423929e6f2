#include "Domain/Types/ActivityId.h"

#include <QtTest>

using zelmor::domain::types::ActivityId;

class TestActivityId : public QObject
{
    Q_OBJECT

private slots:
    void rangeCheck_data();
    void rangeCheck();
    void getId_data();
    void getId();
    void componentConstructors_data();
    void componentConstructors();
    void order();
    void componentFromDatabase_data();
    void componentFromDatabase();
};

void TestActivityId::rangeCheck_data()
{
    QTest::addColumn<int>("component");
    QTest::addColumn<int>("activity");
    QTest::addColumn<int>("keptComponent");
    QTest::addColumn<int>("keptActivity");
    QTest::addColumn<bool>("valid");

    const auto kept = [](const char* name, int component, int activity, bool valid) {
        QTest::newRow(name) << component << activity << component << activity << valid;
    };
    const auto refused = [](const char* name, int component, int activity) {
        QTest::newRow(name) << component << activity << 0 << 0 << false;
    };

    // the last activity of each component and the first one past it
    kept("chamber 20", 1, 20, true);
    refused("chamber 21", 1, 21);
    kept("recording 40", 2, 40, true);
    refused("recording 41", 2, 41);
    kept("access 22", 3, 22, true);
    refused("access 23", 3, 23);
    kept("room 4", 4, 4, true);
    refused("room 5", 4, 5);
    kept("software update 3", 5, 3, true);
    refused("software update 4", 5, 4);
    kept("program 50", 6, 50, true);
    refused("program 51", 6, 51);
    kept("backup 2", 7, 2, true);
    refused("backup 3", 7, 3);
    kept("protocol 2", 8, 2, true);
    refused("protocol 3", 8, 3);
    kept("report 2", 9, 2, true);
    refused("report 3", 9, 3);
    kept("smtp 4", 10, 4, true);
    refused("smtp 5", 10, 5);
    kept("alarm 2", 11, 2, true);
    refused("alarm 3", 11, 3);
    kept("siren box 4", 12, 4, true);
    refused("siren box 5", 12, 5);
    kept("siren desk 4", 13, 4, true);
    refused("siren desk 5", 13, 5);
    refused("chamber, largest activity", 1, 65535);

    // only an upper bound: activity 0 stays, and isn't valid
    kept("chamber 0", 1, 0, false);
    // components without an enumeration of their own aren't checked
    kept("14 70", 14, 70, true);
    kept("GUI 73", 255, 73, true);
    kept("GUI past its last", 255, 65535, true);
    kept("component 200", 200, 9, true);
    kept("invalid component keeps its activity", 0, 5, false);
    kept("nothing", 0, 0, false);
}

void TestActivityId::rangeCheck()
{
    QFETCH(int, component);
    QFETCH(int, activity);

    const ActivityId id{ActivityId::ComponentId(component), quint16(activity)};
    QTEST(int(id.getComponentId()), "keptComponent");
    QTEST(int(id.getComponentActivityId()), "keptActivity");
    QTEST(id.isValid(), "valid");
}

void TestActivityId::getId_data()
{
    QTest::addColumn<int>("component");
    QTest::addColumn<int>("activity");
    QTest::addColumn<int>("expected");

    QTest::newRow("2 3") << 2 << 3 << 131075; // 2 * 65536 + 3
    QTest::newRow("1 1") << 1 << 1 << 65537;
    QTest::newRow("13 4") << 13 << 4 << 851972;   // 13 * 65536 + 4
    QTest::newRow("14 70") << 14 << 70 << 917574; // 14 * 65536 + 70
    QTest::newRow("GUI 73") << 255 << 73 << 16711753;
    QTest::newRow("GUI 65535") << 255 << 65535 << 16777215;
    QTest::newRow("refused") << 1 << 21 << 0;
}

void TestActivityId::getId()
{
    QFETCH(int, component);
    QFETCH(int, activity);

    QTEST(ActivityId(ActivityId::ComponentId(component), quint16(activity)).getId(), "expected");
}

void TestActivityId::componentConstructors_data()
{
    QTest::addColumn<ActivityId>("id");
    QTest::addColumn<int>("component");
    QTest::addColumn<int>("activity");

    QTest::newRow("chamber WRITE_IO") << ActivityId(ActivityId::ChamberManagementActivityId::WRITE_IO) << 1 << 11;
    QTest::newRow("recording START_QUICK_RECORDING")
        << ActivityId(ActivityId::RecordingManagementActivityId::START_QUICK_RECORDING) << 2 << 27;
    QTest::newRow("access UNBAN_USER") << ActivityId(ActivityId::AccessManagementActivityId::UNBAN_USER) << 3 << 18;
    QTest::newRow("room MOVE_CHAMBER_IN_ROOM")
        << ActivityId(ActivityId::RoomManagementActivityId::MOVE_CHAMBER_IN_ROOM) << 4 << 4;
    QTest::newRow("software VIEW_SOFTWARE_VERSION")
        << ActivityId(ActivityId::SoftwareUpdateManagementActivityId::VIEW_SOFTWARE_VERSION) << 5 << 3;
    QTest::newRow("program CHANGE_NORM_PROGRAM")
        << ActivityId(ActivityId::ProgramManagementActivityId::CHANGE_NORM_PROGRAM) << 6 << 50;
    QTest::newRow("backup RESTORE_DATABASE")
        << ActivityId(ActivityId::BackupRestoreManagementActivityId::RESTORE_DATABASE) << 7 << 2;
    QTest::newRow("protocol FETCH_LE_ENTRIES")
        << ActivityId(ActivityId::ProtocolManagementActivityId::FETCH_LE_ENTRIES) << 8 << 2;
    QTest::newRow("report CHANGE_REPORT_CONFIG")
        << ActivityId(ActivityId::ReportManagementActivityId::CHANGE_REPORT_CONFIG) << 9 << 2;
    QTest::newRow("smtp REMOVE_MAIL_RECIPIENT")
        << ActivityId(ActivityId::SmtpConnectionActivityId::REMOVE_MAIL_RECIPIENT) << 10 << 4;
    QTest::newRow("alarm MUTE_ALARM_ESCALATION")
        << ActivityId(ActivityId::AlarmManagementActivityId::MUTE_ALARM_ESCALATION) << 11 << 2;
    QTest::newRow("siren box CHANGE_TEST_ACTIVATION")
        << ActivityId(ActivityId::SirenBoxManagementActivityId::CHANGE_TEST_ACTIVATION) << 12 << 4;
    QTest::newRow("siren desk REQUEST_CHAMBERS")
        << ActivityId(ActivityId::SirenDeskManagementActivityId::REQUEST_CHAMBERS) << 13 << 4;
    // LAST_VALUE marks the end of a group and is no activity
    QTest::newRow("program LAST_VALUE") << ActivityId(ActivityId::ProgramManagementActivityId::LAST_VALUE) << 0 << 0;
    QTest::newRow("default") << ActivityId() << 0 << 0;
}

void TestActivityId::componentConstructors()
{
    QFETCH(ActivityId, id);

    QTEST(int(id.getComponentId()), "component");
    QTEST(int(id.getComponentActivityId()), "activity");
}

void TestActivityId::order()
{
    const ActivityId lastOfChamber(ActivityId::CHAMBER_MANAGEMENT, 20);
    const ActivityId firstOfRecording(ActivityId::RECORDING_MANAGEMENT, 1);
    const ActivityId secondOfRecording(ActivityId::RECORDING_MANAGEMENT, 2);

    // the component weighs more than any activity
    QVERIFY(lastOfChamber < firstOfRecording);
    QVERIFY(!(firstOfRecording < lastOfChamber));
    QVERIFY(firstOfRecording < secondOfRecording);
    QVERIFY(!(firstOfRecording < firstOfRecording));

    QVERIFY(ActivityId(ActivityId::CHAMBER_MANAGEMENT, 11)
            == ActivityId(ActivityId::ChamberManagementActivityId::WRITE_IO));
    QVERIFY(ActivityId(ActivityId::CHAMBER_MANAGEMENT, 11) != ActivityId(ActivityId::RECORDING_MANAGEMENT, 11));
    // every refused id is the one invalid id
    QVERIFY(ActivityId(ActivityId::CHAMBER_MANAGEMENT, 21) == ActivityId(ActivityId::ROOM_MANAGEMENT, 9));
    QVERIFY(ActivityId(ActivityId::ROOM_MANAGEMENT, 9) == ActivityId());
}

void TestActivityId::componentFromDatabase_data()
{
    QTest::addColumn<qlonglong>("stored");
    QTest::addColumn<int>("expected");

    QTest::newRow("chamber management") << qlonglong(1) << 1;
    QTest::newRow("14, no enumerator") << qlonglong(14) << 14;
    QTest::newRow("GUI") << qlonglong(255) << 255;
}

void TestActivityId::componentFromDatabase()
{
    QFETCH(qlonglong, stored);

    QVariant value = QVariant::fromValue(stored);
    QVERIFY(value.convert(qMetaTypeId<ActivityId::ComponentId>()));
    QTEST(int(value.value<ActivityId::ComponentId>()), "expected");
    if (stored > 127) {
        // what a reader must not do: the framework reads one-byte enumerations signed
        QCOMPARE(value.toInt(), int(stored) - 256);
    }
}

QTEST_GUILESS_MAIN(TestActivityId)
#include "tst_activityid.moc"
