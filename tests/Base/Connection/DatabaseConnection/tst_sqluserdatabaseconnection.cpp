#include "Base/Connection/DatabaseConnection/SqlConfigurationDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlProtocolDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlUserDatabaseConnection.h"
#include "Domain/Types/ChamberId.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ProtocolEntry.h"
#include "Domain/Types/SecurityQuestionAnswer.h"
#include "Domain/Types/TimeSpan.h"
#include "Domain/Types/UserData.h"
#include "Domain/Types/UserId.h"
#include "Domain/Types/UserPreferences.h"
#include "support/LogCapture.h"
#include "support/SampleCatalogue.h"
#include "support/StoreFixture.h"
#include "support/TestDatabase.h"

#include <QLoggingCategory>
#include <QtTest>

#include <algorithm>
#include <ctime>

using zelmor::base::connection::databaseconnection::SqlConfigurationDatabaseConnection;
using zelmor::base::connection::databaseconnection::SqliteConnection;
using zelmor::base::connection::databaseconnection::SqlProtocolDatabaseConnection;
using zelmor::base::connection::databaseconnection::SqlUserDatabaseConnection;
using zelmor::domain::api::UserPreferencesProperty;
using zelmor::domain::api::UserProperty;
using zelmor::testsupport::ApplicationFiles;
using zelmor::testsupport::TestDatabase;
using namespace zelmor::domain::types;

using Store = SqlUserDatabaseConnection;

namespace zelmor::testsupport {

// The user store's two further dependencies: the shipped sample catalogue on
// a connection of its own, and the log store on the fixture's connection.
template<>
struct StoreWiring<SqlUserDatabaseConnection>
{
    // Set once by the test before the first fixture.
    static QString& cataloguePath()
    {
        static QString path;
        return path;
    }

    StoreWiring()
        : catalogue(QStringLiteral("user_store_catalogue_%1").arg(++count()))
        , protocol(false)
    {
        catalogue.openDatabase(cataloguePath(), QString(), QString(), QLatin1String(TestDatabase::projectKey_));
        configuration.setDependencies(&catalogue);
    }

    static int& count()
    {
        static int value = 0;
        return value;
    }

    bool wire(SqlUserDatabaseConnection& store, zelmor::domain::api::ISqlConnection* connection)
    {
        protocol.setDependencies(connection);
        return store.setDependencies(connection, &configuration, &protocol);
    }

    SqliteConnection catalogue;
    SqlConfigurationDatabaseConnection configuration;
    SqlProtocolDatabaseConnection protocol;
};

} // namespace zelmor::testsupport

using Fixture = zelmor::testsupport::StoreFixture<Store>;
using Failures = zelmor::testsupport::FailureTable<Store>;
using Operation = Failures::Operation;
Q_DECLARE_METATYPE(Operation)

namespace {

const QString projectKey = QLatin1String(TestDatabase::projectKey_);

// Chambers of the sample types 11 (signals 104, 114, 131, 133) and 1, and one without a type.
const QString chambers = QStringLiteral(
    "INSERT INTO chamber (id, chamber_name, chamber_type_id) VALUES (7, 'WIK', 11), (8, 'HX', 1), (9, 'bare', NULL);");

// Local time is Berlin's: 10:00 on 1 March is 09:00 UTC, on 1 July 08:00 UTC.
QDateTime berlin(int month)
{
    return QDateTime(QDate(2024, month, 1), QTime(10, 0), Qt::LocalTime);
}

QString summary(const UserPreferences& preferences)
{
    return QStringLiteral("%1/%2/'%3'/'%4'/'%5'/%6/%7")
        .arg(int(preferences.fileFormat))
        .arg(int(preferences.language))
        .arg(preferences.timeFormat, preferences.dateFormat,
             preferences.decimalSeparator.isNull() ? QString() : QString(preferences.decimalSeparator))
        .arg(int(preferences.temperatureUnit))
        .arg(int(preferences.humidityUnit));
}

// "id 'login' level L failed F/S banned B temporary T hash H created C prefs P",
// the time in local time.
QString summary(const QSharedPointer<UserData>& user)
{
    if (!user)
        return QStringLiteral("null");
    return QStringLiteral("%1 '%2' level %3 failed %4/%5 banned %6 temporary %7 hash '%8' created %9 prefs %10")
        .arg(int(user->id))
        .arg(user->loginName)
        .arg(int(user->userLevel))
        .arg(user->failedLogins)
        .arg(user->failedSecurityQuestions)
        .arg(int(user->isBanned))
        .arg(int(user->passwordIsTemporary))
        .arg(QString::fromLatin1(user->passwordHash.toHex()),
             user->passwordCreationTime.isValid()
                 ? user->passwordCreationTime.toString(QStringLiteral("dd.MM. hh:mm t"))
                 : QStringLiteral("-"),
             user->preferences ? summary(*user->preferences) : QStringLiteral("none"));
}

QString ids(const QList<QSharedPointer<UserData>>& users)
{
    QStringList texts;
    for (const QSharedPointer<UserData>& user : users)
        texts.append(QString::number(int(user->id)));
    return texts.join(' ');
}

QString summary(const QList<ChamberSignal>& chamberSignals)
{
    QStringList texts;
    for (const ChamberSignal& chamberSignal : chamberSignals)
        texts.append(QStringLiteral("%1 %2").arg(chamberSignal.id).arg(chamberSignal.name));
    return texts.join(QStringLiteral(", "));
}

// By question: the engine may give them in the order of its key.
QString summary(QList<SecurityQuestionAnswer> answers)
{
    std::sort(answers.begin(), answers.end(),
              [](const SecurityQuestionAnswer& left, const SecurityQuestionAnswer& right) {
                  return left.questionId < right.questionId;
              });
    QStringList texts;
    for (const SecurityQuestionAnswer& answer : answers)
        texts.append(
            QStringLiteral("%1:%2:%3")
                .arg(answer.questionId)
                .arg(QString::fromLatin1(answer.answerHash.toHex()), QString::fromLatin1(answer.answerSalt.toHex())));
    return texts.join(' ');
}

QString summary(const QMap<int, QString>& configurations)
{
    QStringList texts;
    for (auto entry = configurations.cbegin(); entry != configurations.cend(); ++entry)
        texts.append(QStringLiteral("%1=%2").arg(entry.key()).arg(entry.value()));
    return texts.join(' ');
}

// Every column of "application_user" as the shell quotes it, one user a line.
const QString userRows = QStringLiteral(
    "SELECT id, quote(login_name), quote(mail_address), quote(first_name), quote(last_name), quote(password_hash), "
    "quote(password_salt), quote(password_creation_time), quote(password_expiration_time), password_is_temporary, "
    "quote(number_failed_login_attempts), quote(number_failed_security_question_attempts), is_banned, "
    "quote(is_deleted), user_level FROM application_user ORDER BY id;");

const QString preferencesRows =
    QStringLiteral("SELECT user_id, default_file_format, localization, quote(time_format), quote(date_format), "
                   "quote(decimal_format), temperature_unit, humidity_unit FROM user_preferences ORDER BY user_id;");

const QString visibilityRows = QStringLiteral(
    "SELECT user_id, chamber_id, signal_id, quote(position) FROM user_has_chamber_signal_visibility_preference "
    "ORDER BY user_id, chamber_id, position, signal_id;");

} // namespace

class TestSqlUserDatabaseConnection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void writeAndRead();
    void addUserRefused();
    void readRows_data();
    void readRows();
    void deletedUsers();
    void deleteUser_data();
    void deleteUser();
    void visibleSignals();
    void securityAnswers();
    void recordingConfigurations();
    void badInput_data();
    void badInput();

private:
    ApplicationFiles files{chambers};
};

void TestSqlUserDatabaseConnection::initTestCase()
{
    qRegisterMetaType<DatabaseConnectionError>();
    QLoggingCategory::setFilterRules(QStringLiteral("zelmor.*=false"));
    QVERIFY(files.isValid());
    QCOMPARE(berlin(3).offsetFromUtc(), 3600);
    QCOMPARE(berlin(7).offsetFromUtc(), 7200);
    zelmor::testsupport::StoreWiring<Store>::cataloguePath() =
        zelmor::testsupport::createSampleCatalogue(files.database());
    QVERIFY(!zelmor::testsupport::StoreWiring<Store>::cataloguePath().isEmpty());
}

// A user with everything and one with nothing, added, updated and read back
// through the store and the shell.
void TestSqlUserDatabaseConnection::writeAndRead()
{
    const QString path = files.create();
    QVERIFY(!path.isEmpty());
    Fixture fixture(path, projectKey, false);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    const auto preferences = QSharedPointer<UserPreferences>::create(
        CSV_FILE, QLocale::German, "HH:mm", "dd.MM.yyyy", QChar(','), Unit::CELSIUS, Unit::RELATIVE_HUMIDITY_RF);
    UserData anna(0, "anna", "anna@lab.example", "Anna", "Berg", QByteArray::fromHex("a1b2"),
                  QByteArray::fromHex("0c0d"), berlin(3), berlin(7), true, 2, 1, false, ADMINISTRATOR, preferences);
    QVERIFY(store.addUser(anna));
    QCOMPARE(int(anna.id), 1);
    UserData bert(0, "bert", BASIC);
    QVERIFY(store.addUser(bert));
    QCOMPARE(int(bert.id), 2);

    // Times in UTC; a user without preferences gets the default ones.
    QCOMPARE(files.shell(path, userRows),
             QStringLiteral("1|'anna'|'anna@lab.example'|'Anna'|'Berg'|X'A1B2'|X'0C0D'|'2024-03-01T09:00:00.000Z'|"
                            "'2024-07-01T08:00:00.000Z'|1|2|1|0|0|3\n"
                            "2|'bert'|NULL|NULL|NULL|NULL|NULL|NULL|NULL|0|0|0|0|0|1"));
    QCOMPARE(files.shell(path, preferencesRows), QStringLiteral("1|1|42|'HH:mm'|'dd.MM.yyyy'|','|0|3\n"
                                                                "2|0|0|NULL|NULL|NULL|16|16"));

    const QSharedPointer<UserData> read = store.getUserData(1);
    QVERIFY(read && *read == anna);
    QCOMPARE(read->passwordExpirationTime.timeSpec(), Qt::LocalTime);
    QCOMPARE(summary(store.getUserDataByName("bert")),
             QStringLiteral("2 'bert' level 1 failed 0/0 banned 0 temporary 0 hash '' created - "
                            "prefs 0/0/''/''/''/16/16"));
    QCOMPARE(ids(store.getAllUserData()), QStringLiteral("1 2"));
    QCOMPARE(store.getAllUserNames(), (QStringList{"anna", "bert"}));
    QCOMPARE(store.getUserName(2), QStringLiteral("bert"));
    QCOMPARE(store.getUserPropertyValue(1, UserProperty::MAIL_ADDRESS).toString(), QStringLiteral("anna@lab.example"));
    QCOMPARE(store.getUserPreferencesPropertyValue(1, UserPreferencesProperty::LOCALIZATION).toInt(), 42);
    QVERIFY(store.getUserPropertyValue(7, UserProperty::LOGIN_NAME).isNull());

    // Emptied fields become NULL; the preferences follow the user.
    anna.mailAddress.clear();
    anna.passwordSalt.clear();
    anna.passwordExpirationTime = QDateTime();
    anna.failedLogins = -1;
    anna.isBanned = true;
    anna.userLevel = SUPERUSER;
    *anna.preferences = UserPreferences(XLSX_FILE, QLocale::French, "h:mm ap", QString(), QChar(), Unit::FAHRENHEIT,
                                        Unit::RELATIVE_HUMIDITY_RH);
    QVERIFY(store.updateUser(anna));
    QVERIFY(store.setUserPropertyValue(2, UserProperty::NUMBER_FAILED_LOGIN_ATTEMPTS, 5));
    QCOMPARE(files.shell(path, userRows),
             QStringLiteral("1|'anna'|NULL|'Anna'|'Berg'|X'A1B2'|NULL|'2024-03-01T09:00:00.000Z'|NULL|1|NULL|1|1|0|6\n"
                            "2|'bert'|NULL|NULL|NULL|NULL|NULL|NULL|NULL|0|5|0|0|0|1"));
    QCOMPARE(files.shell(path, preferencesRows), QStringLiteral("1|2|37|'h:mm ap'|NULL|NULL|1|4\n"
                                                                "2|0|0|NULL|NULL|NULL|16|16"));
    QVERIFY(*store.getUserData(1) == anna);
    QCOMPARE(store.getUserData(2)->failedLogins, 5);

    // The preferences on their own; a second row for a user is refused.
    const UserPreferences other(PDF_FILE, QLocale::English, "HH", "yy", QChar('.'), Unit::KELVIN, Unit::PERCENT);
    QVERIFY(store.updateUserPreferences(2, other));
    QCOMPARE(*store.getUserPreferences(2), other);
    QVERIFY(store.getUserPreferences(3).isNull());
    QCOMPARE(errors.count(), 0);
    QVERIFY(!store.addUserPreferences(2, other));
    QCOMPARE(errors.count(), 0);
}

// An insert that the database refuses is logged, and nothing follows it.
void TestSqlUserDatabaseConnection::addUserRefused()
{
    // A login name that the file's own rule refuses.
    const QString path = files.create("CREATE TRIGGER no_root BEFORE INSERT ON application_user "
                                      "WHEN NEW.login_name = 'root' BEGIN SELECT RAISE(ABORT, 'no root'); END;");
    QVERIFY(!path.isEmpty());
    Fixture fixture(path, projectKey, false);
    QVERIFY(fixture.opened && fixture.store.initialize());
    QSignalSpy errors(&fixture.store, &Store::error);

    QLoggingCategory::setFilterRules(QStringLiteral("zelmor.*=false\nzelmor.SqlUserDatabaseConnection=true"));
    UserData root(0, "root", SUPERUSER);
    {
        zelmor::testsupport::LogCapture log(QStringLiteral("zelmor.SqlUserDatabaseConnection"));
        QVERIFY(!fixture.store.addUser(root));
        QCOMPARE(log.texts(), QStringList{"warning: Failed to add user"});
    }
    QLoggingCategory::setFilterRules(QStringLiteral("zelmor.*=false"));
    QCOMPARE(int(root.id), 0);
    QCOMPARE(files.shell(path, "SELECT count(*) FROM application_user; SELECT count(*) FROM user_preferences;"),
             QStringLiteral("0\n0"));
    QCOMPARE(errors.count(), 0);
}

void TestSqlUserDatabaseConnection::readRows_data()
{
    QTest::addColumn<QString>("rows");
    QTest::addColumn<bool>("mergeUserLevels");
    QTest::addColumn<QString>("user"); // user 5

    const QString none = QStringLiteral(" failed -1/-1 banned 0 temporary 0 hash '' created - prefs none");
    QTest::newRow("all NULL but the id") << "INSERT INTO application_user (id) VALUES (5);" << false
                                         << "5 '' level 1" + none;
    QTest::newRow("advanced") << "INSERT INTO application_user (id, user_level) VALUES (5, 2);" << false
                              << "5 '' level 2" + none;
    QTest::newRow("advanced, merged") << "INSERT INTO application_user (id, user_level) VALUES (5, 2);" << true
                                      << "5 '' level 1" + none;
    QTest::newRow("administrator, merged")
        << "INSERT INTO application_user (id, user_level) VALUES (5, 3);" << true << "5 '' level 3" + none;
    // Another tool's time without an offset counts as UTC; an empty blob as none.
    QTest::newRow("time without offset, empty hash")
        << "INSERT INTO application_user (id, login_name, password_hash, password_creation_time) "
           "VALUES (5, 'eva', X'', '2024-03-01T09:00:00');"
        << false << "5 'eva' level 1 failed -1/-1 banned 0 temporary 0 hash '' created 01.03. 10:00 CET prefs none";
    QTest::newRow("preferences all NULL")
        << "INSERT INTO application_user (id, is_banned, password_is_temporary) VALUES (5, 1, 1);"
           "INSERT INTO user_preferences (user_id) VALUES (5);"
        << false << "5 '' level 1 failed -1/-1 banned 1 temporary 1 hash '' created - prefs 0/0/''/''/''/16/16";
}

void TestSqlUserDatabaseConnection::readRows()
{
    QFETCH(QString, rows);
    QFETCH(bool, mergeUserLevels);
    QFETCH(QString, user);

    const QString path = files.create(rows);
    QVERIFY(!path.isEmpty());
    Fixture fixture(path, projectKey, mergeUserLevels);
    QVERIFY(fixture.opened && fixture.store.initialize());
    QSignalSpy errors(&fixture.store, &Store::error);
    QCOMPARE(summary(fixture.store.getUserData(5)), user);
    QCOMPARE(summary(fixture.store.getAllUserData().value(0)), user);
    QCOMPARE(errors.count(), 0);
}

// "is_deleted" NULL counts as not deleted; deleted users are found by id and name only.
void TestSqlUserDatabaseConnection::deletedUsers()
{
    const QString path = files.create("INSERT INTO application_user (id, login_name, is_deleted) VALUES "
                                      "(1, 'anna', 0), (2, 'bert', NULL), (3, 'carl', 1), (4, 'dora', 0);");
    QVERIFY(!path.isEmpty());
    Fixture fixture(path, projectKey, false);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    QCOMPARE(ids(store.getAllUserData()), QStringLiteral("1 2 4"));
    QCOMPARE(store.getUserData(3)->loginName, QStringLiteral("carl"));
    QCOMPARE(int(store.getUserDataByName("carl")->id), 3);
    QCOMPARE(store.getAllUserNames(), (QStringList{"anna", "bert", "carl", "dora"}));
    QCOMPARE(errors.count(), 0);
}

void TestSqlUserDatabaseConnection::deleteUser_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("users");
    QTest::addColumn<QString>("preferences");
    QTest::addColumn<QString>("answers");
    QTest::addColumn<QString>("configurations");
    QTest::addColumn<QString>("listed");
    QTest::addColumn<QString>("log");

    // Anna isn't in the log: her row goes, and her answers and configurations with it.
    QTest::newRow("not in the log") << 1 << "2|'bert'|X'B2'|'b@x'|NULL|2"
                                    << "2"
                                    << "2|1"
                                    << "0"
                                    << "2"
                                    << "bert: Logged in";
    // Bert is: his row stays with the id and the login name, blanked, marked
    // deleted; only his preferences go with it.
    QTest::newRow("in the log") << 2 << "1|'anna'|X'A1'|'a@x'|0|1\n2|'bert'|NULL|NULL|1|0"
                                << "1"
                                << "1|1\n2|1"
                                << "1"
                                << "1"
                                << "bert (deleted): Logged in";
}

void TestSqlUserDatabaseConnection::deleteUser()
{
    QFETCH(int, id);
    QFETCH(QString, users);
    QFETCH(QString, preferences);
    QFETCH(QString, answers);
    QFETCH(QString, configurations);
    QFETCH(QString, listed);
    QFETCH(QString, log);

    const QString path =
        files.create("INSERT INTO application_user (id, login_name, mail_address, first_name, password_hash, "
                     "number_failed_login_attempts, password_creation_time, is_banned, is_deleted, user_level) VALUES "
                     "(1, 'anna', 'a@x', 'Anna', X'A1', 0, '2024-03-01T09:00:00.000Z', 0, 0, 1), "
                     "(2, 'bert', 'b@x', 'Bert', X'B2', 1, '2024-03-01T09:00:00.000Z', 0, NULL, 2);"
                     "INSERT INTO user_preferences (user_id, localization) VALUES (1, 42), (2, 37);"
                     "INSERT INTO user_has_security_question VALUES (1, 1, X'01', X'02'), (2, 1, X'03', X'04');"
                     "INSERT INTO recording (id, recording_name) VALUES (3, 'R');"
                     "INSERT INTO user_recording_config VALUES (1, 3, 'a');"
                     "INSERT INTO log_entry (creation_time, event_description, user_id, num_args) VALUES "
                     "('2024-03-01T09:00:00.000Z', 'Logged in', 2, 0);");
    QVERIFY(!path.isEmpty());
    Fixture fixture(path, projectKey, false);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    QVERIFY(store.deleteUser(id));
    QCOMPARE(files.shell(path, "SELECT id, quote(login_name), quote(password_hash), quote(mail_address), "
                               "quote(is_deleted), user_level FROM application_user ORDER BY id;"),
             users);
    QCOMPARE(files.shell(path, "SELECT user_id FROM user_preferences ORDER BY user_id;"), preferences);
    QCOMPARE(files.shell(path, "SELECT user_id, question_id FROM user_has_security_question ORDER BY user_id;"),
             answers);
    QCOMPARE(ids(store.getAllUserData()), listed);
    QCOMPARE(files.shell(path, "SELECT count(*) FROM user_recording_config;"), configurations);

    // The blanked row, every column: only the id, the name and the mark are left.
    if (id == 2) {
        QCOMPARE(files.shell(path, userRows).section('\n', 1),
                 QStringLiteral("2|'bert'|NULL|NULL|NULL|NULL|NULL|NULL|NULL|0|NULL|NULL|0|1|0"));
        QCOMPARE(summary(store.getUserData(2)),
                 QStringLiteral("2 'bert' level 0 failed -1/-1 banned 0 temporary 0 hash '' created - prefs none"));
    }
    // The log still names its author.
    const ProtocolEntry entry = fixture.wiring.protocol.getProtocolEntries(TimeSpan(), SUPERUSER).value(0);
    QCOMPARE(entry.userName + ": " + entry.description, log);
    QCOMPARE(errors.count(), 0);
}

// The choice of signals by position, looked up in the chamber type's signals
// of the shipped sample catalogue.
void TestSqlUserDatabaseConnection::visibleSignals()
{
    const QString path = files.create("INSERT INTO application_user (id, login_name) VALUES (1, 'anna'), (2, 'bert');");
    QVERIFY(!path.isEmpty());
    Fixture fixture(path, projectKey, false);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    // 999 isn't a signal of type 11: kept, but not shown.
    QVERIFY(store.setVisibleChamberSignals({133, 104, 999}, 1, 7));
    QVERIFY(store.setVisibleChamberSignals({131}, 1, 8));
    QVERIFY(store.setVisibleChamberSignals({114}, 2, 7));
    QCOMPARE(files.shell(path, visibilityRows),
             QStringLiteral("1|7|133|0\n1|7|104|1\n1|7|999|2\n1|8|131|0\n2|7|114|0"));
    QCOMPARE(summary(store.getVisibleChamberSignals(1, 7)),
             QStringLiteral("133 PV_Collective_Alarm, 104 PV_Temperature"));
    QCOMPARE(summary(store.getVisibleChamberSignals(1, 8)), QStringLiteral("131 PV_Door_Open"));

    // A new choice replaces the pair's rows and no others.
    QVERIFY(store.setVisibleChamberSignals({104, 133}, 1, 7));
    QCOMPARE(summary(store.getVisibleChamberSignals(1, 7)),
             QStringLiteral("104 PV_Temperature, 133 PV_Collective_Alarm"));
    // A shown signal has no position and comes first; showing it twice keeps one row.
    QVERIFY(store.showChamberSignal(1, 7, 114));
    QVERIFY(store.showChamberSignal(1, 7, 114));
    QCOMPARE(summary(store.getVisibleChamberSignals(1, 7)),
             QStringLiteral("114 SP_Temperature, 104 PV_Temperature, 133 PV_Collective_Alarm"));
    QVERIFY(store.hideChamberSignal(1, 7, 104));
    QCOMPARE(files.shell(path, visibilityRows), QStringLiteral("1|7|114|NULL\n1|7|133|1\n1|8|131|0\n2|7|114|0"));

    // The empty list removes the pair's rows.
    QVERIFY(store.setVisibleChamberSignals({}, 1, 7));
    QCOMPARE(files.shell(path, visibilityRows), QStringLiteral("1|8|131|0\n2|7|114|0"));
    QCOMPARE(summary(store.getVisibleChamberSignals(1, 7)), QString());

    // A chamber without a type shows nothing; nor does one that isn't there.
    QVERIFY(store.showChamberSignal(1, 9, 131));
    QCOMPARE(summary(store.getVisibleChamberSignals(1, 9)), QString());
    QCOMPARE(summary(store.getVisibleChamberSignals(1, 99)), QString());
    QCOMPARE(errors.count(), 0);
}

void TestSqlUserDatabaseConnection::securityAnswers()
{
    const QString path = files.create("INSERT INTO application_user (id, login_name) VALUES (1, 'anna'), (2, 'bert');"
                                      "INSERT INTO user_has_security_question VALUES (2, 1, X'0B', X'0C');");
    QVERIFY(!path.isEmpty());
    Fixture fixture(path, projectKey, false);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);
    const QString rows = QStringLiteral("SELECT user_id, question_id, quote(answer_hash), quote(answer_salt) "
                                        "FROM user_has_security_question ORDER BY user_id, question_id;");

    // An empty salt is NULL.
    QVERIFY(store.setUserSecurityQuestionAnswers(
        1, {SecurityQuestionAnswer(3, QByteArray::fromHex("a3"), QByteArray()),
            SecurityQuestionAnswer(1, QByteArray::fromHex("a1"), QByteArray::fromHex("51"))}));
    QCOMPARE(files.shell(path, rows), QStringLiteral("1|1|X'A1'|X'51'\n1|3|X'A3'|NULL\n2|1|X'0B'|X'0C'"));
    QCOMPARE(summary(store.getUserSecurityQuestionAnswers(1)), QStringLiteral("1:a1:51 3:a3:"));

    // A new set replaces the user's answers only.
    QVERIFY(store.setUserSecurityQuestionAnswers(1, {SecurityQuestionAnswer(2, QByteArray::fromHex("a2"), "s")}));
    QCOMPARE(files.shell(path, rows), QStringLiteral("1|2|X'A2'|X'73'\n2|1|X'0B'|X'0C'"));
    QVERIFY(store.setUserSecurityQuestionAnswers(1, {}));
    QCOMPARE(summary(store.getUserSecurityQuestionAnswers(1)), QString());

    // Not one transaction: the answers before a refused one stay.
    QVERIFY(!store.setUserSecurityQuestionAnswers(
        1, {SecurityQuestionAnswer(4, "x", "y"), SecurityQuestionAnswer(4, "z", "w")}));
    QCOMPARE(summary(store.getUserSecurityQuestionAnswers(1)), QStringLiteral("4:78:79"));
    QCOMPARE(errors.count(), 0);
}

void TestSqlUserDatabaseConnection::recordingConfigurations()
{
    const QString path = files.create("INSERT INTO application_user (id, login_name) VALUES (1, 'anna'), (2, 'bert');"
                                      "INSERT INTO recording (id, recording_name) VALUES (3, 'R3'), (4, 'R4');"
                                      "INSERT INTO user_recording_config VALUES (2, 3, 'bert''s');");
    QVERIFY(!path.isEmpty());
    Fixture fixture(path, projectKey, false);
    QVERIFY(fixture.opened && fixture.store.initialize());
    Store& store = fixture.store;
    QSignalSpy errors(&store, &Store::error);

    // The first call inserts, the second updates; an empty text is NULL.
    QVERIFY(store.setUserRecordingConfig(1, 3, "{\"zoom\":1}"));
    QVERIFY(store.setUserRecordingConfig(1, 3, "{\"zoom\":2}"));
    QVERIFY(store.setUserRecordingConfig(1, 4, QString()));
    QCOMPARE(files.shell(path, "SELECT user_id, recording_id, quote(config) FROM user_recording_config "
                               "ORDER BY user_id, recording_id;"),
             QStringLiteral("1|3|'{\"zoom\":2}'\n1|4|NULL\n2|3|'bert''s'"));
    QCOMPARE(summary(store.getUserRecordingConfig(1)), QStringLiteral("3={\"zoom\":2} 4="));
    QCOMPARE(summary(store.getUserRecordingConfig(2)), QStringLiteral("3=bert's"));
    QCOMPARE(summary(store.getUserRecordingConfig(7)), QString());
    QCOMPARE(errors.count(), 0);
}

void TestSqlUserDatabaseConnection::badInput_data()
{
    Failures::addColumns();
    const auto number = [](bool value) { return QString::number(value); };
    const Operation initialize = [=](Store& s) { return number(s.initialize()); };
    const Operation all = [](Store& s) { return ids(s.getAllUserData()); };
    const Operation user = [](Store& s) { return summary(s.getUserData(1)); };
    const Operation byName = [](Store& s) { return summary(s.getUserDataByName("anna")); };
    const Operation answers = [](Store& s) { return summary(s.getUserSecurityQuestionAnswers(1)); };
    const Operation preferences = [](Store& s) {
        const QSharedPointer<UserPreferences> read = s.getUserPreferences(1);
        return read ? summary(*read) : QStringLiteral("null");
    };
    const Operation names = [](Store& s) { return s.getAllUserNames().join(' '); };
    const Operation name = [](Store& s) { return s.getUserName(1); };
    const Operation visible = [](Store& s) { return summary(s.getVisibleChamberSignals(1, 7)); };
    const Operation setVisible = [=](Store& s) { return number(s.setVisibleChamberSignals({131}, 1, 7)); };
    const Operation property = [](Store& s) { return s.getUserPropertyValue(1, UserProperty::LOGIN_NAME).toString(); };
    const Operation preferencesProperty = [](Store& s) {
        return s.getUserPreferencesPropertyValue(1, UserPreferencesProperty::LOCALIZATION).toString();
    };
    const Operation add = [](Store& s) {
        UserData eva(0, "eva", BASIC);
        return QStringLiteral("%1 %2").arg(s.addUser(eva)).arg(int(eva.id));
    };
    const Operation setAnswers = [=](Store& s) {
        return number(s.setUserSecurityQuestionAnswers(1, {SecurityQuestionAnswer(5, "h", "s")}));
    };
    const Operation addPreferences = [=](Store& s) { return number(s.addUserPreferences(1, UserPreferences())); };
    const Operation updatePreferences = [=](Store& s) { return number(s.updateUserPreferences(1, UserPreferences())); };
    const Operation update = [=](Store& s) { return number(s.updateUser(UserData(1, "anne", SERVICE))); };
    const Operation setProperty = [=](Store& s) {
        return number(s.setUserPropertyValue(1, UserProperty::IS_BANNED, 1));
    };
    const Operation remove = [=](Store& s) { return number(s.deleteUser(2)); };
    const Operation show = [=](Store& s) { return number(s.showChamberSignal(1, 7, 131)); };
    const Operation hide = [=](Store& s) { return number(s.hideChamberSignal(1, 7, 104)); };
    const Operation configurations = [](Store& s) { return summary(s.getUserRecordingConfig(1)); };
    const Operation setConfiguration = [=](Store& s) { return number(s.setUserRecordingConfig(1, 3, "c")); };

    for (const char* situation : {"unwired", "wrong key"}) {
        const QList<int> codes = QByteArray(situation) == "unwired" ? QList<int>{0} : QList<int>();
        const QByteArray tag = QByteArray(situation) + ": ";
        Failures::row(tag + "initialize", situation, initialize, "0", codes.isEmpty() ? QList<int>{4} : codes);
        Failures::row(tag + "all users", situation, all, "", codes);
        Failures::row(tag + "user", situation, user, "null", codes);
        Failures::row(tag + "user by name", situation, byName, "null", codes);
        Failures::row(tag + "answers", situation, answers, "", codes);
        Failures::row(tag + "preferences", situation, preferences, "null", codes);
        Failures::row(tag + "names", situation, names, "", codes);
        Failures::row(tag + "name", situation, name, "", codes);
        Failures::row(tag + "visible signals", situation, visible, "", codes);
        Failures::row(tag + "set visible signals", situation, setVisible, "0", codes);
        Failures::row(tag + "property", situation, property, "", codes);
        Failures::row(tag + "preferences property", situation, preferencesProperty, "", codes);
        Failures::row(tag + "add", situation, add, "0 0", codes);
        Failures::row(tag + "set answers", situation, setAnswers, "0", codes);
        Failures::row(tag + "add preferences", situation, addPreferences, "0", codes);
        Failures::row(tag + "update preferences", situation, updatePreferences, "0", codes);
        Failures::row(tag + "update", situation, update, "0", codes);
        Failures::row(tag + "set property", situation, setProperty, "0", codes);
        Failures::row(tag + "delete", situation, remove, "0", codes);
        Failures::row(tag + "show", situation, show, "0", codes);
        Failures::row(tag + "hide", situation, hide, "0", codes);
        Failures::row(tag + "configurations", situation, configurations, "", codes);
        Failures::row(tag + "set configuration", situation, setConfiguration, "0", codes);
    }
    Failures::row("no user table: initialize", "no user table", initialize, "0", {4});
    Failures::row("no preferences table: initialize", "no preferences table", initialize, "0", {4});

    // Transactions whose second statement is refused leave the first undone:
    // bert isn't in the log, but his visible signals refer to his row ...
    Failures::row("delete of a user with visible signals", "", remove, "0", {});
    // ... and a signal twice breaks the pair's uniqueness after the delete.
    Failures::row("a signal twice", "",
                  [=](Store& s) {
                      return number(s.setVisibleChamberSignals({131, 131}, 2, 7));
                  },
                  "0", {});
    // Refused by the keys, nothing written.
    Failures::row("answers of an unknown user", "",
                  [=](Store& s) { return number(s.setUserSecurityQuestionAnswers(9, {SecurityQuestionAnswer()})); },
                  "0", {});
    Failures::row("configuration of an unknown recording", "",
                  [=](Store& s) { return number(s.setUserRecordingConfig(1, 9, "c")); }, "0", {});
    Failures::row("second preferences", "", addPreferences, "0", {});

    // Rows a column short: reported, the others still read.
    Failures::row("short user row", "short user row", all, "1", {8}, 15);
    Failures::row("short preferences row", "short preferences row", preferences, "null", {8}, 7);
    Failures::row("user with a short preferences row", "short preferences row", user,
                  "1 'anna' level 1 failed -1/-1 banned 0 temporary 0 hash '' created - prefs none", {8}, 7);
    Failures::row("short answer row", "short answer row", answers, "1:a1:51", {8}, 4);
    Failures::row("short configuration row", "short configuration row", configurations, "3=a", {8}, 2);
}

void TestSqlUserDatabaseConnection::badInput()
{
    QFETCH(QString, situation);

    QString rows = QStringLiteral(
        "INSERT INTO application_user (id, login_name, user_level) VALUES (1, 'anna', 1), (2, 'bert', 2);"
        "INSERT INTO user_preferences (user_id, localization) VALUES (1, 42), (2, 37);"
        "INSERT INTO user_has_security_question VALUES (1, 1, X'A1', X'51'), (1, 2, X'A2', X'52');"
        "INSERT INTO recording (id, recording_name) VALUES (3, 'R3'), (4, 'R4');"
        "INSERT INTO user_recording_config VALUES (1, 3, 'a'), (1, 4, 'b');"
        "INSERT INTO user_has_chamber_signal_visibility_preference VALUES (2, 7, 104, 0), (2, 7, 133, 1);");
    if (situation == "no user table")
        rows = QStringLiteral("DROP TABLE application_user;");
    else if (situation == "no preferences table")
        rows = QStringLiteral("DROP TABLE user_preferences;");
    const QString path = files.create(rows);
    QVERIFY(!path.isEmpty());
    // The single preferences row is the first; of the others, the second comes short.
    Failures::check(path, situation == "short preferences row" ? 0 : 1, false);
}

int main(int argc, char** argv)
{
    // Local time is Berlin's, so that UTC and local time differ.
    qputenv("TZ", "Europe/Berlin");
    tzset();
    QCoreApplication application(argc, argv);
    TestSqlUserDatabaseConnection test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_sqluserdatabaseconnection.moc"
