#include "Tools/DatabaseTool/ApplicationSchema.h"

#include "support/TestPaths.h"

#include <QFile>
#include <QtTest>

using zelmor::tools::databasetool::ApplicationSchema;

class TestApplicationSchema : public QObject
{
    Q_OBJECT

private slots:
    void theShippedSchema();
    void split_data();
    void split();
};

// The binary carries database/application-schema.sql as it is shipped.
void TestApplicationSchema::theShippedSchema()
{
    QFile shipped(zelmor::testsupport::sourceDir() + "/database/application-schema.sql");
    QVERIFY(shipped.open(QIODevice::ReadOnly));
    QCOMPARE(ApplicationSchema::text(), QString::fromUtf8(shipped.readAll()));

    QCOMPARE(ApplicationSchema::tableNames(), QStringList({"chamber",
                                                           "global_settings",
                                                           "application_user",
                                                           "recording",
                                                           "meta_recording_has_recording",
                                                           "log_entry",
                                                           "record_set",
                                                           "record_set_comment",
                                                           "tolerance_range",
                                                           "room",
                                                           "room_chamber_position",
                                                           "user_has_chamber_signal_visibility_preference",
                                                           "user_preferences",
                                                           "program",
                                                           "program_section",
                                                           "program_step",
                                                           "program_step_repetition",
                                                           "program_setpoint",
                                                           "application_alarm",
                                                           "alarm_has_signal",
                                                           "camera",
                                                           "chamber_has_custom_signal_name",
                                                           "chamber_has_signal_delay",
                                                           "chamber_has_subscribed_signal",
                                                           "mail_recipient",
                                                           "recording_has_signal_column",
                                                           "user_has_security_question",
                                                           "user_recording_config",
                                                           "database_version_info"}));
    const QStringList statements = ApplicationSchema::statements();
    // 29 tables, the index of the measured rows and the row of the version.
    QCOMPARE(statements.size(), 31);
    QVERIFY2(statements.first().startsWith("CREATE TABLE chamber ("), qPrintable(statements.first()));
    QCOMPARE(statements.last(), "INSERT INTO database_version_info (version) VALUES (19);");
}

void TestApplicationSchema::split_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QStringList>("statements");

    QTest::newRow("a semicolon in a text")
        << "CREATE TABLE a (x TEXT DEFAULT ';');\nINSERT INTO a VALUES ('x;y');"
        << QStringList{"CREATE TABLE a (x TEXT DEFAULT ';');", "INSERT INTO a VALUES ('x;y');"};
    QTest::newRow("comments in front, with semicolons")
        << "-- a comment; with a semicolon\n\n  -- another;\nCREATE TABLE b (y);" << QStringList{"CREATE TABLE b (y);"};
    QTest::newRow("a comment inside") << "CREATE TABLE c (\n  -- the id; a number\n  id INTEGER\n);"
                                      << QStringList{"CREATE TABLE c (\n  -- the id; a number\n  id INTEGER\n);"};
    QTest::newRow("a trigger with its own semicolons")
        << "CREATE TRIGGER t AFTER INSERT ON a BEGIN DELETE FROM b; DELETE FROM c; END;"
        << QStringList{"CREATE TRIGGER t AFTER INSERT ON a BEGIN DELETE FROM b; DELETE FROM c; END;"};
    QTest::newRow("a rest that is no statement")
        << "CREATE TABLE d (z);\nCREATE TABLE e (" << QStringList{"CREATE TABLE d (z);"};
    QTest::newRow("empty statements") << ";;CREATE TABLE f (w);;" << QStringList{"CREATE TABLE f (w);"};
    QTest::newRow("nothing") << "" << QStringList{};
}

void TestApplicationSchema::split()
{
    QFETCH(QString, script);
    QFETCH(QStringList, statements);
    QCOMPARE(ApplicationSchema::split(script), statements);
}

QTEST_GUILESS_MAIN(TestApplicationSchema)
#include "tst_applicationschema.moc"
