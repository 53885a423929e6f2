#include "Tools/DatabaseTool/CommandLine.h"

#include <QtTest>

using zelmor::tools::databasetool::CommandLine;

using Values = QMap<QString, QString>;

class TestCommandLine : public QObject
{
    Q_OBJECT

private slots:
    void validLines_data();
    void validLines();
    void helpRequests_data();
    void helpRequests();
    void usageErrors_data();
    void usageErrors();
    void numbersAndTimes();
    void times_data();
    void times();
    void helpTexts();
};

void TestCommandLine::validLines_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("command");
    QTest::addColumn<Values>("arguments_"); // positional arguments by name
    QTest::addColumn<Values>("options");

    QTest::newRow("a listing") << QStringList{"chambers", "app.db"} << "chambers" << Values{{"FILE", "app.db"}}
                               << Values{};
    QTest::newRow("a flag in front of the file") << QStringList{"chambers", "--json", "app.db"} << "chambers"
                                                 << Values{{"FILE", "app.db"}} << Values{{"--json", ""}};
    QTest::newRow("a common option in front of the command")
        << QStringList{"--key", "abc", "users", "app.db"} << "users" << Values{{"FILE", "app.db"}}
        << Values{{"--key", "abc"}};
    QTest::newRow("a value behind =") << QStringList{"check", "app.db", "--catalogue=c.db"} << "check"
                                      << Values{{"FILE", "app.db"}} << Values{{"--catalogue", "c.db"}};
    QTest::newRow("an optional argument left out")
        << QStringList{"add-chambers", "app.db"} << "add-chambers" << Values{{"FILE", "app.db"}} << Values{};
    QTest::newRow("an optional argument given") << QStringList{"add-chambers", "app.db", "fleet.sql"} << "add-chambers"
                                                << Values{{"FILE", "app.db"}, {"EXTRACT", "fleet.sql"}} << Values{};
    QTest::newRow("every option of recordsets")
        << QStringList{"recordsets", "app.db",           "3", "--csv", "-", "--max", "10", "--from", "2024-03-01",
                       "--to",       "2024-03-02T10:00Z"}
        << "recordsets" << Values{{"FILE", "app.db"}, {"RECORDING", "3"}}
        << Values{{"--csv", "-"}, {"--max", "10"}, {"--from", "2024-03-01"}, {"--to", "2024-03-02T10:00Z"}};
    QTest::newRow("a required option") << QStringList{"import-program", "app.db", "Cycle.prg", "--user", "2"}
                                       << "import-program" << Values{{"FILE", "app.db"}, {"IN", "Cycle.prg"}}
                                       << Values{{"--user", "2"}};
    QTest::newRow("three arguments") << QStringList{"export-program", "app.db", "7", "out.prg"} << "export-program"
                                     << Values{{"FILE", "app.db"}, {"ID", "7"}, {"OUT", "out.prg"}} << Values{};
    QTest::newRow("a file name with a dash behind --")
        << QStringList{"chambers", "--", "-odd.db"} << "chambers" << Values{{"FILE", "-odd.db"}} << Values{};
    QTest::newRow("a lone dash is an argument")
        << QStringList{"chambers", "-"} << "chambers" << Values{{"FILE", "-"}} << Values{};
}

void TestCommandLine::validLines()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, command);
    QFETCH(Values, arguments_);
    QFETCH(Values, options);

    const CommandLine line = CommandLine::parse(arguments);
    QVERIFY2(line.isValid(), qPrintable(line.errorText()));
    QVERIFY(!line.isHelpRequested());
    QCOMPARE(line.command(), command);
    for (const QString name : {"FILE", "EXTRACT", "ID", "OUT", "IN", "RECORDING"})
        QCOMPARE(line.argument(name), arguments_.value(name));
    for (const QString name : {"--key", "--catalogue", "--json", "--max", "--from", "--to", "--csv", "--user"}) {
        QCOMPARE(line.isSet(name), options.contains(name));
        QCOMPARE(line.value(name), options.value(name));
    }
}

void TestCommandLine::helpRequests_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("command"); // asked about; empty for the general help

    QTest::newRow("-h alone") << QStringList{"-h"} << "";
    QTest::newRow("--help alone") << QStringList{"--help"} << "";
    QTest::newRow("help alone") << QStringList{"help"} << "";
    QTest::newRow("a command's -h") << QStringList{"chambers", "-h"} << "chambers";
    QTest::newRow("--help in front of the command") << QStringList{"--help", "check"} << "check";
    QTest::newRow("help for a command") << QStringList{"help", "recordsets"} << "recordsets";
    QTest::newRow("over a missing argument") << QStringList{"export-program", "--help"} << "export-program";
    QTest::newRow("over a bad option") << QStringList{"chambers", "--bogus", "-h"} << "chambers";
}

void TestCommandLine::helpRequests()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, command);

    const CommandLine line = CommandLine::parse(arguments);
    QVERIFY(line.isHelpRequested());
    QCOMPARE(line.command(), command);
    if (!command.isEmpty())
        QVERIFY2(line.isValid(), qPrintable(line.errorText()));
}

void TestCommandLine::usageErrors_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");

    QTest::newRow("nothing") << QStringList{} << "no command given";
    QTest::newRow("an unknown command") << QStringList{"frobnicate", "app.db"} << "unknown command 'frobnicate'";
    QTest::newRow("help for an unknown command") << QStringList{"help", "frobnicate"} << "unknown command 'frobnicate'";
    QTest::newRow("no file") << QStringList{"chambers"} << "'chambers' needs FILE";
    QTest::newRow("an argument too many")
        << QStringList{"chambers", "a.db", "b.db"} << "'chambers' takes no argument 'b.db'";
    QTest::newRow("an unknown option") << QStringList{"chambers", "a.db", "--bogus"} << "unknown option '--bogus'";
    QTest::newRow("an unknown short option") << QStringList{"chambers", "a.db", "-j"} << "unknown option '-j'";
    QTest::newRow("another command's option")
        << QStringList{"chambers", "a.db", "--max", "3"} << "'chambers' has no option --max";
    QTest::newRow("a value for a flag") << QStringList{"chambers", "a.db", "--json=yes"} << "--json takes no value";
    QTest::newRow("a missing value") << QStringList{"chambers", "a.db", "--key"} << "--key needs a value (KEY)";
    QTest::newRow("an empty value") << QStringList{"chambers", "a.db", "--key="}
                                    << "--key needs a value that isn't empty";
    QTest::newRow("an option twice") << QStringList{"chambers", "a.db", "--key", "a", "--key=b"}
                                     << "--key is given twice";
    QTest::newRow("a quote in the key") << QStringList{"chambers", "a.db", "--key", "it's"}
                                        << "--key can't hold a quote";
    QTest::newRow("an id that is no number")
        << QStringList{"export-program", "a.db", "x", "out.prg"} << "ID wants a whole number above 0, not 'x'";
    QTest::newRow("an id of 0") << QStringList{"export-program", "a.db", "0", "out.prg"}
                                << "ID wants a whole number above 0, not '0'";
    QTest::newRow("an id with a sign") << QStringList{"recordsets", "a.db", "+3", "--csv", "-"}
                                       << "RECORDING wants a whole number above 0, not '+3'";
    QTest::newRow("a missing required option")
        << QStringList{"recordsets", "a.db", "1"} << "'recordsets' needs --csv OUT";
    QTest::newRow("a negative maximum") << QStringList{"recordsets", "a.db", "1", "--csv", "o.csv", "--max", "-3"}
                                        << "--max wants a whole number above 0, not '-3'";
    QTest::newRow("a time that is none") << QStringList{"recordsets", "a.db",   "1",        "--csv",
                                                        "o.csv",      "--from", "yesterday"}
                                         << "--from wants a time such as 2024-03-01T10:00:00, not 'yesterday'";
    QTest::newRow("no importing user") << QStringList{"import-program", "a.db", "in.prg"}
                                       << "'import-program' needs --user ID";
    QTest::newRow("a user that is no number") << QStringList{"import-program", "a.db", "in.prg", "--user", "bob"}
                                              << "--user wants a whole number above 0, not 'bob'";
    // The first error is named; the rest come after it is fixed.
    QTest::newRow("two errors") << QStringList{"chambers", "--bogus", "--max", "x"} << "unknown option '--bogus'";
}

void TestCommandLine::usageErrors()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);

    const CommandLine line = CommandLine::parse(arguments);
    QVERIFY(!line.isValid());
    QCOMPARE(line.errorText(), error);
}

void TestCommandLine::numbersAndTimes()
{
    const CommandLine line =
        CommandLine::parse({"recordsets", "a.db", "12", "--csv", "-", "--max", "250", "--to", "2024-03-01T10:30"});
    QVERIFY2(line.isValid(), qPrintable(line.errorText()));
    QCOMPARE(line.number("RECORDING"), 12);
    QCOMPARE(line.number("--max"), 250);
    QCOMPARE(line.time("--to"), QDateTime(QDate(2024, 3, 1), QTime(10, 30), Qt::LocalTime));
    QVERIFY(!line.time("--from").isValid());
}

void TestCommandLine::times_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QDateTime>("time"); // invalid: refused

    const QDateTime ten(QDate(2024, 3, 1), QTime(10, 0), Qt::LocalTime);
    const QDateTime nineUtc(QDate(2024, 3, 1), QTime(9, 0), Qt::UTC);
    QTest::newRow("local with seconds") << "2024-03-01T10:00:00" << ten;
    QTest::newRow("local with minutes") << "2024-03-01T10:00" << ten;
    QTest::newRow("a space for the T") << "2024-03-01 10:00" << ten;
    QTest::newRow("milliseconds") << "2024-03-01T10:00:00.250" << ten.addMSecs(250);
    QTest::newRow("a date alone is its midnight")
        << "2024-03-01" << QDateTime(QDate(2024, 3, 1), QTime(0, 0), Qt::LocalTime);
    QTest::newRow("UTC") << "2024-03-01T09:00:00Z" << nineUtc;
    QTest::newRow("an offset") << "2024-03-01T10:00:00+01:00" << nineUtc;
    QTest::newRow("a negative offset") << "2024-03-01T04:00-05:00" << nineUtc;
    QTest::newRow("no such month") << "2024-13-01" << QDateTime();
    QTest::newRow("no such hour") << "2024-03-01T25:00" << QDateTime();
    QTest::newRow("hours alone") << "2024-03-01T10" << QDateTime();
    QTest::newRow("a word") << "yesterday" << QDateTime();
    QTest::newRow("seconds since 1970") << "1709280000" << QDateTime();
    QTest::newRow("empty") << "" << QDateTime();
}

void TestCommandLine::times()
{
    QFETCH(QString, text);
    QFETCH(QDateTime, time);

    const QDateTime parsed = CommandLine::parseTime(text);
    QCOMPARE(parsed.isValid(), time.isValid());
    if (time.isValid())
        QCOMPARE(parsed.toUTC(), time.toUTC());
}

// Every command has its help, naming its arguments and options.
void TestCommandLine::helpTexts()
{
    const QString general = CommandLine::generalHelp();
    const QMap<QString, QStringList> commands = {
        {"create", {"FILE"}},
        {"check", {"FILE"}},
        {"add-chambers", {"FILE [EXTRACT]"}},
        {"chambers", {"FILE", "--json"}},
        {"programs", {"FILE", "--json"}},
        {"recordings", {"FILE", "--json"}},
        {"users", {"FILE", "--json"}},
        {"export-program", {"FILE ID OUT"}},
        {"import-program", {"FILE IN", "--user ID"}},
        {"recordsets", {"FILE RECORDING", "--max N", "--from TIME", "--to TIME", "--csv OUT"}},
    };
    for (auto it = commands.cbegin(); it != commands.cend(); ++it) {
        QVERIFY2(general.contains("  " + it.key() + " FILE"), qPrintable(it.key()));
        const QString help = CommandLine::commandHelp(it.key());
        QVERIFY2(help.startsWith("Usage: zelmor-db " + it.key() + " "), qPrintable(help));
        for (const QString& part : it.value() + QStringList{"--key KEY", "--catalogue CATALOGUE", "-h, --help"})
            QVERIFY2(help.contains(part), qPrintable(it.key() + ": " + part));
        QVERIFY2(help.contains("Exit status: 0 done"), qPrintable(it.key()));
    }
    QCOMPARE(CommandLine::commandHelp("frobnicate"), QString());
}

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_commandline.moc"
