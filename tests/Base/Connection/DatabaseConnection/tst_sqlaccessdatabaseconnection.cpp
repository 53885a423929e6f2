#include "Base/Connection/DatabaseConnection/SqlAccessDatabaseConnection.h"
#include "Domain/Types/ActivityId.h"
#include "support/SampleCatalogue.h"
#include "support/StoreFixture.h"
#include "support/TestDatabase.h"

#include <QLoggingCategory>
#include <QtTest>

#include <algorithm>

using zelmor::base::connection::databaseconnection::SqlAccessDatabaseConnection;
using zelmor::testsupport::errorCodes;
using zelmor::testsupport::TestDatabase;
using namespace zelmor::domain::types;

using Store = SqlAccessDatabaseConnection;
using Fixture = zelmor::testsupport::StoreFixture<Store>;
using Failures = zelmor::testsupport::FailureTable<Store>;
using Operation = Failures::Operation;
Q_DECLARE_METATYPE(Operation)

namespace {

// "component/activity" of each id, sorted by id: the table's order is the engine's.
QString summary(QList<ActivityId> activities)
{
    std::sort(activities.begin(), activities.end());
    QStringList texts;
    for (const ActivityId& activity : activities)
        texts.append(
            QStringLiteral("%1/%2").arg(int(activity.getComponentId())).arg(activity.getComponentActivityId()));
    return texts.join(' ');
}

// The access table of the shipped schema replaced by one without its checks,
// so that it can hold what a damaged catalogue might.
const QString uncheckedTable =
    QStringLiteral("DROP TABLE activity_access;"
                   "CREATE TABLE activity_access (component_id, activity_id, min_user_level);");

} // namespace

class TestSqlAccessDatabaseConnection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void requiredUserLevel_data();
    void requiredUserLevel();
    void grantedActivities_data();
    void grantedActivities();
    void oddValues();
    void badInput_data();
    void badInput();

private:
    TestDatabase files;
    QString sample;
};

void TestSqlAccessDatabaseConnection::initTestCase()
{
    qRegisterMetaType<DatabaseConnectionError>();
    QLoggingCategory::setFilterRules(QStringLiteral("zelmor.*=false"));
    QVERIFY(files.isValid());
    // The shipped sample catalogue, encrypted by the shell.
    sample = zelmor::testsupport::createSampleCatalogue(files);
    QVERIFY2(!sample.isEmpty(), qPrintable(files.lastError()));
}

void TestSqlAccessDatabaseConnection::requiredUserLevel_data()
{
    QTest::addColumn<ActivityId>("activity");
    QTest::addColumn<int>("level");

    using Id = ActivityId;
    QTest::newRow("create chamber") << Id(Id::ChamberManagementActivityId::CREATE_CHAMBER) << 3;
    QTest::newRow("rename I/O") << Id(Id::ChamberManagementActivityId::RENAME_IO) << 2;
    QTest::newRow("reset password by questions, level 0")
        << Id(Id::AccessManagementActivityId::RESET_PASSWORD_VIA_SECURITY_QUESTIONS) << 0;
    QTest::newRow("delete norm program, laboratory") << Id(Id::ProgramManagementActivityId::DELETE_NORM_PROGRAM) << 5;
    QTest::newRow("view software version") << Id(Id::SoftwareUpdateManagementActivityId::VIEW_SOFTWARE_VERSION) << 1;
    QTest::newRow("request chambers, last component") << Id(Id::SirenDeskManagementActivityId::REQUEST_CHAMBERS) << 3;
    // The screens' component is 255, their first activity 0.
    QTest::newRow("GUI 0") << Id(Id::GUI, 0) << 3;
    QTest::newRow("GUI 73") << Id(Id::GUI, 73) << 4;
    // What the table doesn't know gives the enumeration's default, without an error.
    QTest::newRow("GUI activity without a row") << Id(Id::GUI, 5) << 0;
    QTest::newRow("chamber activity past its range") << Id(Id::CHAMBER_MANAGEMENT, 21) << 0;
    QTest::newRow("invalid id") << Id() << 0;
}

void TestSqlAccessDatabaseConnection::requiredUserLevel()
{
    QFETCH(ActivityId, activity);
    QFETCH(int, level);

    Fixture fixture(sample);
    QVERIFY(fixture.opened && fixture.store.initialize());
    QSignalSpy errors(&fixture.store, &Store::error);
    const UserLevel required = fixture.store.getRequiredUserLevel(activity);
    QCOMPARE(int(required), level);
    QCOMPARE(errors.count(), 0);
}

void TestSqlAccessDatabaseConnection::grantedActivities_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("activities");

    QTest::newRow("none") << int(NONE) << "3/22";
    // Every row of level 0 or 1 in the sample data, read off by hand.
    QTest::newRow("basic") << int(BASIC)
                           << "1/8 1/9 1/14 2/1 2/2 2/5 2/8 2/11 2/14 2/17 2/20 2/23 2/27 2/28 2/31 2/34 2/37 "
                              "3/8 3/11 3/12 3/15 3/20 3/22 5/3 6/16 6/17 6/29 6/30 6/31 6/34 6/38 6/41 8/1 255/17";
    QTest::newRow("below none") << -1 << "";
}

void TestSqlAccessDatabaseConnection::grantedActivities()
{
    QFETCH(int, level);
    QFETCH(QString, activities);

    Fixture fixture(sample);
    QVERIFY(fixture.opened && fixture.store.initialize());
    QSignalSpy errors(&fixture.store, &Store::error);
    QCOMPARE(summary(fixture.store.getGrantedActivities(UserLevel(level))), activities);
    QCOMPARE(errors.count(), 0);
}

// A damaged table: what doesn't convert reads as the default, the others as stored.
void TestSqlAccessDatabaseConnection::oddValues()
{
    const QString path = zelmor::testsupport::createCatalogue(
        files, QStringLiteral("odd.sqlite3"),
        uncheckedTable
            + QStringLiteral("INSERT INTO activity_access VALUES "
                             "(1, 1, 'high'), (1, 2, NULL), (1, 3, '4'), (2, 1, 9), ('x', 5, 1);"));
    QVERIFY2(!path.isEmpty(), qPrintable(files.lastError()));
    Fixture fixture(path);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    QCOMPARE(int(store.getRequiredUserLevel(ActivityId(ActivityId::CHAMBER_MANAGEMENT, 1))), 0);
    QCOMPARE(int(store.getRequiredUserLevel(ActivityId(ActivityId::CHAMBER_MANAGEMENT, 2))), 0);
    QCOMPARE(int(store.getRequiredUserLevel(ActivityId(ActivityId::CHAMBER_MANAGEMENT, 3))), 4);
    // A level beyond the enumeration's keys is passed on as its number.
    QCOMPARE(int(store.getRequiredUserLevel(ActivityId(ActivityId::RECORDING_MANAGEMENT, 1))), 9);
    // The component 'x' doesn't convert: INVALID, which keeps its activity
    // unchecked. The engine compares a text as greater than any number, so
    // '4' isn't at most 6.
    QCOMPARE(summary(store.getGrantedActivities(SUPERUSER)), QStringLiteral("0/5"));
    QCOMPARE(errors.count(), 0);
}

void TestSqlAccessDatabaseConnection::badInput_data()
{
    Failures::addColumns();
    const Operation initialize = [](Store& s) { return QString::number(s.initialize()); };
    const Operation required = [](Store& s) {
        return QString::number(s.getRequiredUserLevel(ActivityId(ActivityId::ChamberManagementActivityId::WRITE_IO)));
    };
    const Operation granted = [](Store& s) { return summary(s.getGrantedActivities(SUPERUSER)); };

    for (const char* situation : {"unwired", "wrong key"}) {
        const QList<int> codes = QByteArray(situation) == "unwired" ? QList<int>{0} : QList<int>();
        const QByteArray tag = QByteArray(situation) + ": ";
        Failures::row(tag + "initialize", situation, initialize, "0", codes.isEmpty() ? QList<int>{4} : codes);
        Failures::row(tag + "required level", situation, required, "0", codes);
        Failures::row(tag + "granted", situation, granted, "", codes);
    }
    Failures::row("no access table: initialize", "no access table", initialize, "0", {4});
    // The second row comes a column short: reported, the others still read.
    Failures::row("short row", "short row", granted, "1/11 3/1", {8}, 2);
}

void TestSqlAccessDatabaseConnection::badInput()
{
    QFETCH(QString, situation);

    static int count = 0;
    const QString path = zelmor::testsupport::createCatalogue(
        files, QStringLiteral("bad%1.sqlite3").arg(++count),
        situation == "no access table" ? QStringLiteral("DROP TABLE activity_access;")
                                       : QStringLiteral("INSERT INTO activity_access VALUES "
                                                        "(1, 11, 2), (3, 2, 3), (3, 1, 3);"));
    QVERIFY2(!path.isEmpty(), qPrintable(files.lastError()));
    Failures::check(path, 1);
}

QTEST_GUILESS_MAIN(TestSqlAccessDatabaseConnection)

#include "tst_sqlaccessdatabaseconnection.moc"
