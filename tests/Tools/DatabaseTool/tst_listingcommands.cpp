// The listings of the real zelmor-db on files whose rows the sqlcipher shell
// wrote: what the stores give, for a person and for a script. (Chambers: in
// tst_databasetool, after add-chambers.)

#include "support/DatabaseToolRun.h"
#include "support/SampleCatalogue.h"
#include "support/StoreFixture.h"
#include "support/TestDatabase.h"

#include <QtTest>

using namespace zelmor::testsupport;

namespace {

// Times in the file are UTC; the tool shows them in the zone it runs in.
const QStringList berlin{"TZ=Europe/Berlin"};

const QString userRows = QStringLiteral(
    "INSERT INTO application_user (id, login_name, mail_address, password_hash, password_salt, "
    "password_creation_time, password_is_temporary, user_level, number_failed_login_attempts, is_banned, "
    "password_expiration_time, first_name, last_name, is_deleted) VALUES "
    "(1, 'alice', 'alice@example.com', x'0102', x'0304', '2024-01-01T08:00:00.000Z', 0, 3, 2, 0, "
    "'2024-06-01T00:00:00.000Z', 'Alice', 'Smith', 0),"
    "(2, 'bob', NULL, NULL, NULL, NULL, 1, 1, NULL, 1, NULL, 'Bob', NULL, NULL),"
    "(3, 'carol', NULL, NULL, NULL, NULL, 0, 2, NULL, 0, NULL, NULL, NULL, 1);"
    "INSERT INTO user_preferences (user_id) VALUES (1), (2), (3);");

const QString programRows = QStringLiteral(
    "INSERT INTO program VALUES (1, 'Cycle', 1, 'two steps', 0, 0, 1), (2, 'Soak', 1, NULL, 1, 1, 30);"
    "INSERT INTO program_section VALUES (1, 600, 0, 0, NULL), (2, 3600, 1, 0, NULL);"
    "INSERT INTO program_step VALUES (1, 1, 0, 1, 1, NULL), (2, 1, 1, 2, NULL, 2), (3, 2, 0, 1, 2, NULL);"
    "INSERT INTO program_step_repetition VALUES (1, 1, 1, 2, 5);");

} // namespace

class TestListingCommands : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void listings_data();
    void listings();
    void failures_data();
    void failures();

private:
    TestDatabase files;
    QString catalogue;
    int count = 0;
};

void TestListingCommands::initTestCase()
{
    catalogue = createSampleCatalogue(files);
    QVERIFY2(!catalogue.isEmpty(), qPrintable(files.lastError()));
}

void TestListingCommands::listings_data()
{
    QTest::addColumn<QString>("rows");
    QTest::addColumn<QStringList>("arguments"); // behind the file
    QTest::addColumn<QString>("output");

    // Deleted users are left out; hashes and salts never show.
    QTest::newRow("users") << userRows << QStringList{"users"}
                           << "ID  LOGIN  FIRST NAME  LAST NAME  MAIL               LEVEL  LEVEL NAME     BANNED  "
                              "FAILED LOGINS  TEMPORARY PASSWORD  PASSWORD EXPIRES\n"
                              " 1  alice  Alice       Smith      alice@example.com      3  Administrator  no      "
                              "            2  no                  2024-06-01T02:00:00+02:00\n"
                              " 2  bob    Bob                                           1  Basic          yes     "
                              "               yes\n";
    QTest::newRow("users as JSON")
        << userRows << QStringList{"users", "--json"}
        << "[\n"
           "  {\"id\": 1, \"loginName\": \"alice\", \"firstName\": \"Alice\", \"lastName\": \"Smith\", "
           "\"mailAddress\": \"alice@example.com\", \"userLevel\": 3, \"userLevelName\": \"Administrator\", "
           "\"isBanned\": false, \"failedLogins\": 2, \"passwordIsTemporary\": false, "
           "\"passwordExpirationTime\": \"2024-06-01T02:00:00+02:00\"},\n"
           "  {\"id\": 2, \"loginName\": \"bob\", \"firstName\": \"Bob\", \"lastName\": null, \"mailAddress\": null, "
           "\"userLevel\": 1, \"userLevelName\": \"Basic\", \"isBanned\": true, \"failedLogins\": null, "
           "\"passwordIsTemporary\": true, \"passwordExpirationTime\": null}\n"
           "]\n";
    QTest::newRow("no users") << QString() << QStringList{"users", "--json"} << "[]\n";
    // The chamber type's name comes from the catalogue.
    QTest::newRow("programs") << programRows << QStringList{"programs", "--catalogue", catalogue}
                              << "ID  NAME   TYPE  CHAMBER TYPE  TYPE NAME   USER  STEPS  REPETITIONS  EDITED  INFO\n"
                                 " 1  Cycle  time             1  HX 60 Z6       1      2            1  no      two "
                                 "steps\n"
                                 " 2  Soak   week            30  MKF 115 E2     1      1            0  yes\n";
    QTest::newRow("programs as JSON")
        << programRows << QStringList{"programs", "--json", "--catalogue", catalogue}
        << "[\n"
           "  {\"id\": 1, \"name\": \"Cycle\", \"type\": \"time\", \"chamberTypeId\": 1, \"chamberTypeName\": \"HX 60 "
           "Z6\", \"userId\": 1, \"steps\": 2, \"repetitions\": 1, \"edited\": false, \"infoText\": \"two steps\"},\n"
           "  {\"id\": 2, \"name\": \"Soak\", \"type\": \"week\", \"chamberTypeId\": 30, \"chamberTypeName\": \"MKF "
           "115 E2\", \"userId\": 1, \"steps\": 1, \"repetitions\": 0, \"edited\": true, \"infoText\": null}\n"
           "]\n";
}

void TestListingCommands::listings()
{
    QFETCH(QString, rows);
    QFETCH(QStringList, arguments);
    QFETCH(QString, output);

    const QString path = createApplicationDatabase(files, QStringLiteral("app%1.sqlite3").arg(++count), rows);
    QVERIFY2(!path.isEmpty(), qPrintable(files.lastError()));
    const QByteArray before = fileBytes(path);
    arguments.insert(1, path);
    const DatabaseToolRun run = DatabaseToolRun::start(arguments, QString(), QString(), berlin);
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(QString::fromUtf8(run.standardOutput), output);
    QCOMPARE(run.standardError, QByteArray());
    QCOMPARE(fileBytes(path), before);
}

void TestListingCommands::failures_data()
{
    QTest::addColumn<QString>("rows");
    QTest::addColumn<QStringList>("arguments"); // behind the file
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QStringList>("error"); // lines that standard error starts with; %1 the file

    // The store's own words stand below the tool's.
    QTest::newRow("a table the store needs")
        << "DROP TABLE user_preferences; INSERT INTO application_user (id, login_name) VALUES (1, 'alice');"
        << QStringList{"users"} << 1
        << QStringList{"zelmor-db: %1: the users can't be read", "  zelmor.SqliteConnection: "};
    QTest::newRow("no catalogue for programs")
        << QString() << QStringList{"programs", "--catalogue", files.filePath("none.sqlite3")} << 8
        << QStringList{"zelmor-db: " + files.filePath("none.sqlite3") + ": no such file"};
    QTest::newRow("an old database") << "UPDATE database_version_info SET version = 17;" << QStringList{"chambers"} << 5
                                     << QStringList{"zelmor-db: %1: has schema version 17; the monitoring application "
                                                    "needs 19 or later"};
}

void TestListingCommands::failures()
{
    QFETCH(QString, rows);
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QStringList, error);

    const QString path = createApplicationDatabase(files, QStringLiteral("app%1.sqlite3").arg(++count), rows);
    QVERIFY2(!path.isEmpty(), qPrintable(files.lastError()));
    const QByteArray before = fileBytes(path);
    arguments.insert(1, path);
    const DatabaseToolRun run = DatabaseToolRun::start(arguments);
    QCOMPARE(run.exitCode, exitCode);
    QCOMPARE(run.standardOutput, QByteArray());
    const QStringList lines = QString::fromUtf8(run.standardError).split('\n');
    for (int index = 0; index < error.size(); ++index) {
        QVERIFY2(index < lines.size() && lines.at(index).startsWith(QString(error.at(index)).replace("%1", path)),
                 run.standardError.constData());
    }
    QCOMPARE(fileBytes(path), before);
}

QTEST_GUILESS_MAIN(TestListingCommands)
#include "tst_listingcommands.moc"
