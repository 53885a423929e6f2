#include "Base/Connection/DatabaseConnection/SqlProtocolDatabaseConnection.h"
#include "Domain/Types/ProtocolEntry.h"
#include "Domain/Types/TimeSpan.h"
#include "Domain/Types/UserId.h"
#include "support/SampleCatalogue.h"
#include "support/StoreFixture.h"
#include "support/TestDatabase.h"

#include <QLoggingCategory>
#include <QtTest>

#include <ctime>
#include <functional>

using zelmor::base::connection::databaseconnection::SqlProtocolDatabaseConnection;
using zelmor::testsupport::errorCodes;
using zelmor::testsupport::TestDatabase;
using namespace zelmor::domain::types;

using Store = SqlProtocolDatabaseConnection;
using Fixture = zelmor::testsupport::StoreFixture<Store>;
using Read = std::function<QList<ProtocolEntry>(Store&)>;
using Failures = zelmor::testsupport::FailureTable<Store>;
using Operation = Failures::Operation;
Q_DECLARE_METATYPE(Read)
Q_DECLARE_METATYPE(Operation)

namespace {

const QString projectKey = QLatin1String(TestDatabase::projectKey_);

// Anna is BASIC, Bert ADVANCED (NULL for "is_deleted"), Carl ADMINISTRATOR and
// deleted, Dora SUPERUSER.
const QString users = QStringLiteral("INSERT INTO application_user (id, login_name, user_level, is_deleted) VALUES "
                                     "(1, 'anna', 1, 0), (2, 'bert', 2, NULL), (3, 'carl', 3, 1), (4, 'dora', 6, 0);");

// Berlin time, made after main has set the zone: 1 March 2024 at the hour.
QDateTime march(int hour)
{
    return QDateTime(QDate(2024, 3, 1), QTime(hour, 0), Qt::LocalTime);
}

// "time user name: description [arguments]", the time in local time.
QString summary(const QList<ProtocolEntry>& entries)
{
    QStringList texts;
    for (const ProtocolEntry& entry : entries) {
        QStringList arguments;
        for (const QVariant& argument : entry.arguments)
            arguments.append(argument.toString());
        texts.append(QStringLiteral("%1 %2 %3: %4 [%5]")
                         .arg(entry.time.toString(QStringLiteral("hh:mm")))
                         .arg(int(entry.userId))
                         .arg(entry.userName, entry.description, arguments.join(QLatin1Char(','))));
    }
    return texts.join(QStringLiteral("; "));
}

} // namespace

class TestSqlProtocolDatabaseConnection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void arguments();
    void reads_data();
    void reads();
    void badInput_data();
    void badInput();

private:
    zelmor::testsupport::ApplicationFiles files{users};
};

void TestSqlProtocolDatabaseConnection::initTestCase()
{
    qRegisterMetaType<DatabaseConnectionError>();
    QLoggingCategory::setFilterRules(QStringLiteral("zelmor.*=false"));
    QVERIFY(files.isValid());
    QCOMPARE(march(10).offsetFromUtc(), 3600);
}

// Entries of 0, 1 and 10 arguments written and read back, through the store
// and through the shell.
void TestSqlProtocolDatabaseConnection::arguments()
{
    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path, projectKey, false);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    QList<QVariant> ten;
    for (int index = 1; index <= 10; ++index)
        ten.append(QStringLiteral("a%1").arg(index));
    ten[4] = QLatin1String(""); // an empty argument is NULL, and reads back empty
    ten[5] = 42;                // kept as the text it is shown as
    QVERIFY(store.addProtocolEntry(ProtocolEntry(march(8), "Started", {}, 1)));
    QVERIFY(store.addProtocolEntry(ProtocolEntry(march(9), "Chamber %1 renamed", {"tr(Lab)"}, 2)));
    QVERIFY(store.addProtocolEntry(ProtocolEntry(march(10), QLatin1String(""), ten, 3)));

    // Times in UTC, NULL for the empty description and the arguments not in use.
    QCOMPARE(files.shell(path, "SELECT id, creation_time, quote(event_description), user_id, num_args, quote(arg_1), "
                               "quote(arg_2), quote(arg_5), quote(arg_6), quote(arg_10) FROM log_entry ORDER BY id;"),
             QStringLiteral("1|2024-03-01T07:00:00.000Z|'Started'|1|0|NULL|NULL|NULL|NULL|NULL\n"
                            "2|2024-03-01T08:00:00.000Z|'Chamber %1 renamed'|2|1|'tr(Lab)'|NULL|NULL|NULL|NULL\n"
                            "3|2024-03-01T09:00:00.000Z|NULL|3|10|'a1'|'a2'|NULL|'42'|'a10'"));
    // Back in local time, with exactly "num_args" arguments; a deleted author is named so.
    QCOMPARE(summary(store.getProtocolEntries(TimeSpan(), SUPERUSER)),
             QStringLiteral("08:00 1 anna: Started []; 09:00 2 bert: Chamber %1 renamed [tr(Lab)]; "
                            "10:00 3 carl (deleted):  [a1,a2,a3,a4,,42,a7,a8,a9,a10]"));
    const ProtocolEntry entry = store.getProtocolEntries(TimeSpan(), UserId(2)).value(0);
    QCOMPARE(entry.time, march(9));
    QCOMPARE(entry.time.timeSpec(), Qt::LocalTime);

    // An eleventh argument has no column: the entry isn't written.
    ten.append("a11");
    QVERIFY(!store.addProtocolEntry(ProtocolEntry(march(11), "Too many", ten, 1)));
    QCOMPARE(files.shell(path, "SELECT count(*) FROM log_entry;"), QStringLiteral("3"));
    QCOMPARE(errors.count(), 0);
}

void TestSqlProtocolDatabaseConnection::reads_data()
{
    QTest::addColumn<bool>("mergeUserLevels");
    QTest::addColumn<Read>("read");
    QTest::addColumn<QString>("entries"); // hours of the entries, oldest first

    // Entries at 8 (anna), 9 (bert), 10 (carl), 11 (dora), 12 (anna); both ends belong to a span.
    const auto row = [](const char* tag, bool merge, const Read& read, const char* entries) {
        QTest::newRow(tag) << merge << read << QString(entries);
    };
    const auto level = [](const QDateTime& start, const QDateTime& end, UserLevel level) {
        return Read([=](Store& s) { return s.getProtocolEntries(TimeSpan(start, end), level); });
    };
    const auto user = [](const QDateTime& start, const QDateTime& end, int id) {
        return Read([=](Store& s) { return s.getProtocolEntries(TimeSpan(start, end), UserId(id)); });
    };
    const QDateTime open;
    row("all time, all levels", false, level(open, open, SUPERUSER), "8 9 10 11 12");
    row("from 9", false, level(march(9), open, SUPERUSER), "9 10 11 12");
    row("up to 10", false, level(open, march(10), SUPERUSER), "8 9 10");
    row("9 to 11", false, level(march(9), march(11), SUPERUSER), "9 10 11");
    row("between two entries", false, level(march(9).addSecs(1), march(10).addSecs(-1), SUPERUSER), "");
    row("basic users", false, level(open, open, BASIC), "8 12");
    row("advanced merged into basic", true, level(open, open, BASIC), "8 9 12");
    row("up to administrators", false, level(open, open, ADMINISTRATOR), "8 9 10 12");
    row("no level", false, level(open, open, NONE), "");
    row("one user", false, user(open, open, 1), "8 12");
    row("one user from 9", false, user(march(9), open, 1), "12");
    row("one user up to 11", false, user(open, march(11), 4), "11");
    row("unknown user", false, user(open, open, 7), "");
}

void TestSqlProtocolDatabaseConnection::reads()
{
    QFETCH(bool, mergeUserLevels);
    QFETCH(Read, read);
    QFETCH(QString, entries);

    // Written by the shell in UTC, in another order than time's.
    const QString path =
        files.create("INSERT INTO log_entry (id, creation_time, event_description, user_id, num_args) VALUES "
                     "(1, '2024-03-01T11:00:00.000Z', 'e', 1, 0), (2, '2024-03-01T07:00:00.000Z', 'e', 1, 0), "
                     "(3, '2024-03-01T08:00:00.000Z', 'e', 2, 0), (4, '2024-03-01T10:00:00.000Z', 'e', 4, 0), "
                     "(5, '2024-03-01T09:00:00.000Z', 'e', 3, 0);");
    QVERIFY(!path.isEmpty());
    Fixture fixture(path, projectKey, mergeUserLevels);
    QVERIFY(fixture.opened && fixture.store.initialize());
    QSignalSpy errors(&fixture.store, &Store::error);

    QStringList hours;
    for (const ProtocolEntry& entry : read(fixture.store))
        hours.append(QString::number(entry.time.time().hour()));
    QCOMPARE(hours.join(' '), entries);
    QCOMPARE(errors.count(), 0);
}

void TestSqlProtocolDatabaseConnection::badInput_data()
{
    Failures::addColumns();
    const Operation initialize = [](Store& s) { return QString::number(s.initialize()); };
    const Operation add = [](Store& s) {
        return QString::number(s.addProtocolEntry(ProtocolEntry(march(12), "x", {"y"}, 1)));
    };
    const Operation byLevel = [](Store& s) { return summary(s.getProtocolEntries(TimeSpan(), SUPERUSER)); };
    const Operation byUser = [](Store& s) { return summary(s.getProtocolEntries(TimeSpan(), UserId(1))); };
    const Operation has = [](Store& s) { return QString::number(s.hasProtocolEntries(1)); };

    for (const char* situation : {"unwired", "wrong key"}) {
        const QList<int> codes = QByteArray(situation) == "unwired" ? QList<int>{0} : QList<int>();
        const QByteArray tag = QByteArray(situation) + ": ";
        Failures::row(tag + "initialize", situation, initialize, "0", codes.isEmpty() ? QList<int>{4} : codes);
        Failures::row(tag + "add", situation, add, "0", codes);
        Failures::row(tag + "by level", situation, byLevel, "", codes);
        Failures::row(tag + "by user", situation, byUser, "", codes);
        Failures::row(tag + "has entries", situation, has, "0", codes);
    }
    Failures::row("no log table: initialize", "no log table", initialize, "0", {4});
    // The second entry comes a column short: reported, the others still read.
    Failures::row("short row", "short row", byLevel, "08:00 1 anna: first []; 10:00 3 carl (deleted): third []", {8},
                  16);
}

void TestSqlProtocolDatabaseConnection::badInput()
{
    QFETCH(QString, situation);

    const QString path = files.create(situation == "no log table"
                                          ? QStringLiteral("DROP TABLE log_entry;")
                                          : QStringLiteral("INSERT INTO log_entry (creation_time, event_description, "
                                                           "user_id, num_args) VALUES "
                                                           "('2024-03-01T07:00:00.000Z', 'first', 1, 0), "
                                                           "('2024-03-01T08:00:00.000Z', 'second', 2, 0), "
                                                           "('2024-03-01T09:00:00.000Z', 'third', 3, 0);"));
    QVERIFY(!path.isEmpty());
    // In the short row, the second entry comes a column short.
    Failures::check(path, 1, false);
}

int main(int argc, char** argv)
{
    // Local time is Berlin's, so that UTC and local time differ.
    qputenv("TZ", "Europe/Berlin");
    tzset();
    QCoreApplication application(argc, argv);
    TestSqlProtocolDatabaseConnection test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_sqlprotocoldatabaseconnection.moc"
