#include "Domain/Types/Alarm.h"
#include "support/MarkingTranslator.h"

#include <QtTest>

using zelmor::domain::types::Alarm;
using zelmor::domain::types::AlarmStatus;
using zelmor::domain::types::AlarmType;
using zelmor::domain::types::ShortDescription;
using zelmor::testsupport::MarkingTranslator;

class TestAlarm : public QObject
{
    Q_OBJECT

private slots:
    void status_data();
    void status();
    void type_data();
    void type();
    void shortDescription_data();
    void shortDescription();
    void identityAndOrder();
};

void TestAlarm::status_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("preAlarm");
    QTest::addColumn<bool>("acknowledged");

    QTest::newRow("0") << 0 << QStringLiteral("Status unbekannt") << false << false;
    QTest::newRow("1") << 1 << QStringLiteral("Voralarm") << true << false;
    QTest::newRow("2") << 2 << QStringLiteral("nicht best\u00e4tigt") << false << false;
    QTest::newRow("3") << 3 << QStringLiteral("best\u00e4tigt") << false << true;
    QTest::newRow("4") << 4 << QStringLiteral("Voralarm abgebochen") << true << false;
    QTest::newRow("5") << 5 << QStringLiteral("Voralarm best\u00e4tigt") << true << true;
    QTest::newRow("6") << 6 << QStringLiteral("Voralarm best\u00e4tigt") << true << true;
    QTest::newRow("7") << 7 << QString() << false << false;
    QTest::newRow("-1") << -1 << QString() << false << false;
}

void TestAlarm::status()
{
    QFETCH(int, number);

    // shown as they stand, not translated
    MarkingTranslator marking;
    const AlarmStatus status(AlarmStatus::StatusId{number});
    QTEST(status.toString(), "text");
    QTEST(status.isPreAlarm(), "preAlarm");
    QTEST(status.isAcknowledged(), "acknowledged");
}

void TestAlarm::type_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("text");

    QTest::newRow("0") << 0 << QStringLiteral("Nicht definiert");
    QTest::newRow("1") << 1 << QStringLiteral("Toleranzbandverletzung");
    QTest::newRow("2") << 2 << QStringLiteral("Programm-Ereignis");
    QTest::newRow("3") << 3 << QStringLiteral("Verbindungs-Alarm");
    QTest::newRow("4") << 4 << QStringLiteral("Collective Alarm");
    QTest::newRow("5") << 5 << QStringLiteral("Toleranzbandverletzung");
    QTest::newRow("6") << 6 << QStringLiteral("SirenDesk Alarm");
    QTest::newRow("7") << 7 << QStringLiteral("SirenBox Verbindungs-Alarm");
    QTest::newRow("8") << 8 << QStringLiteral("SirenBox Plausibilit\u00e4ts-Alarm");
    QTest::newRow("9") << 9 << QString();
    QTest::newRow("-1") << -1 << QString();
}

void TestAlarm::type()
{
    QFETCH(int, number);
    QFETCH(QString, text);

    const AlarmType type(AlarmType::TypeId{number});
    QCOMPARE(type.toUntranslatedString(), text);
    QCOMPARE(type.toString(), text);

    MarkingTranslator marking;
    QCOMPARE(type.toUntranslatedString(), text);
    QCOMPARE(type.toString(), text.isEmpty() ? QString() : QStringLiteral("[AlarmType] ") + text);
}

void TestAlarm::shortDescription_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QString>("expected");

    QTest::newRow("no arguments") << "Door open" << QVariantList() << "Door open";
    QTest::newRow("two arguments") << "%1 above %2" << QVariantList{QStringLiteral("Temperature"), 42.5}
                                   << "Temperature above 42.5";
    // arguments go in order into the lowest placeholder left, wherever it stands
    QTest::newRow("placeholders turned round")
        << "%2 before %1" << QVariantList{QStringLiteral("a"), QStringLiteral("b")} << "b before a";
}

void TestAlarm::shortDescription()
{
    QFETCH(QString, text);
    QFETCH(QVariantList, arguments);
    QFETCH(QString, expected);

    const ShortDescription description(text, arguments);
    QCOMPARE(description.toString(), expected);

    MarkingTranslator marking;
    QCOMPARE(description.toString(), QStringLiteral("[AlarmShortDescription] ") + expected);
}

void TestAlarm::identityAndOrder()
{
    const QDateTime noon(QDate(2024, 5, 10), QTime(12, 0), Qt::UTC);
    const Alarm first(4, noon, AlarmType::CONNECTION_ALARM, true, AlarmStatus::PRE_ALARM, 1, QStringLiteral("a"),
                      ShortDescription(QStringLiteral("t")), QStringLiteral("d"), 2, QStringLiteral("HX"), {5},
                      {QStringLiteral("PV_Temp")});

    // only id and time make an alarm
    Alarm sameAlarm;
    sameAlarm.id = 4;
    sameAlarm.timestamp = noon.toLocalTime();
    QVERIFY(first == sameAlarm);

    Alarm later = first;
    later.timestamp = noon.addSecs(1);
    QVERIFY(first != later);
    QVERIFY(first < later);
    QVERIFY(!(later < first));

    // the id comes first, whatever the time
    Alarm nextId = first;
    nextId.id = 5;
    nextId.timestamp = noon.addDays(-1);
    QVERIFY(later < nextId);
    QVERIFY(!(first < first));

    QVERIFY(first.isValid());
    QVERIFY(!Alarm().isValid());
}

QTEST_GUILESS_MAIN(TestAlarm)
#include "tst_alarm.moc"
