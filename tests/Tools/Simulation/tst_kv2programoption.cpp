#include "Tools/Simulation/Kv2ProgramOption.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimerEvent>
#include <QtTest>

using zelmor::simulation::Kv2ProgramOption;

namespace {

QVariant word(quint16 value)
{
    return QVariant::fromValue(value);
}

// The image's timers as the event loop holds them.
QList<int> timersOf(QObject* object)
{
    QList<int> ids;
    for (const auto& timer : QAbstractEventDispatcher::instance()->registeredTimers(object))
        ids << timer.timerId;
    return ids;
}

// One tick of a countdown timer, delivered as the event loop would deliver it.
void tick(Kv2ProgramOption& image, int timerId, int times = 1)
{
    for (int i = 0; i < times; ++i) {
        QTimerEvent event(timerId);
        QCoreApplication::sendEvent(&image, &event);
    }
}

// Running program, state, run time and remaining time (4260, 4261, 4262, 4264).
QString running(Kv2ProgramOption& image)
{
    QStringList values;
    for (int address : {4260, 4261, 4262, 4264})
        values << image.read(address).toString();
    return values.join(' ');
}

} // namespace

class TestKv2ProgramOption : public QObject
{
    Q_OBJECT

private slots:
    // A write, then a read: cells, constants, the name and command registers.
    void registerMap_data()
    {
        QTest::addColumn<int>("address");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<int>("readAddress");
        QTest::addColumn<QVariant>("expected");

        QTest::newRow("4260 refused") << 4260 << QVariant(5) << false << 4260 << word(0);
        QTest::newRow("4427 nothing") << 4427 << QVariant(5) << false << 4427 << QVariant();
        QTest::newRow("float into 4416") << 4416 << QVariant(1.5f) << true << 4416 << QVariant(1.5f);
        QTest::newRow("12288 stays 128") << 12288 << QVariant(5) << true << 12288 << QVariant(128u);
        QTest::newRow("17152 refused") << 17152 << QVariant("Milky Way") << false << 17152
                                       << QVariant("Andromeda Galaxy");
        QTest::newRow("selected 20") << 12292 << QVariant(20) << true << 17152 << QVariant("Whirlpool Galaxy");
        QTest::newRow("selected 21") << 12292 << QVariant(21) << true << 17152 << QVariant("Not defined 21");
        QTest::newRow("selected 65536 wraps")
            << 12292 << QVariant(65536) << true << 17152 << QVariant("Andromeda Galaxy");
        QTest::newRow("selected text is 0") << 12292 << QVariant("two") << true << 12292 << word(0);
        QTest::newRow("start 0 does nothing") << 4425 << QVariant(0) << true << 4261 << word(1);
        QTest::newRow("stop with nothing running") << 4426 << QVariant(1) << true << 4261 << word(0);
    }

    void registerMap()
    {
        QFETCH(int, address);
        QFETCH(QVariant, value);
        QFETCH(bool, accepted);
        QFETCH(int, readAddress);
        QFETCH(QVariant, expected);

        Kv2ProgramOption image;
        QCOMPARE(image.write(address, value), accepted);
        const QVariant readBack = image.read(readAddress);
        QCOMPARE(readBack.userType(), expected.userType());
        QCOMPARE(readBack, expected);
    }

    // All ones in 4423 reach the run-time table's entry 0, and any non-zero
    // command starts; the start and stop registers don't show the run.
    void start()
    {
        Kv2ProgramOption image;
        QVERIFY(image.write(4423, word(0xFFFF)));
        QVERIFY(image.write(4425, QVariant(-7)));
        QCOMPARE(running(image), QStringLiteral("0 10 1000 100"));
        QCOMPARE(image.read(4262).userType(), int(QMetaType::UInt));
        for (int address : {4425, 12291, 12344})
            QCOMPARE(image.read(address), word(0));
        QCOMPARE(image.read(4426), word(1));

        const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(&image);
        QCOMPARE(timers.size(), 1);
        QCOMPARE(timers.first().interval, 1000);
        QCOMPARE(timers.first().timerType, Qt::CoarseTimer);
    }

    // A few ticks of the real timer, then a stop.
    void countdownOnTheRealTimer()
    {
        Kv2ProgramOption image;
        QElapsedTimer elapsed;
        elapsed.start();
        QVERIFY(image.write(4425, QVariant(1)));
        QTRY_COMPARE_WITH_TIMEOUT(image.read(4264), QVariant(99u), 3000);
        QTRY_COMPARE_WITH_TIMEOUT(running(image), QStringLiteral("1 10 3000 97"), 3000);
        // A coarse timer may fire up to 5 % early.
        QVERIFY2(elapsed.elapsed() >= 2850, qPrintable(QString::number(elapsed.elapsed())));
        QVERIFY(image.write(4426, QVariant(1)));
        QCOMPARE(running(image), QStringLiteral("0 0 0 0"));
        QVERIFY(timersOf(&image).isEmpty());
    }

    // Driven tick by tick. A second start while running leaves the first
    // timer going: the countdown goes down twice per second, and a stop kills
    // only the newer timer; the older one removes itself at its next tick.
    // A new start then ends by itself after 100 ticks.
    void countdownByTicks()
    {
        Kv2ProgramOption image;
        QCOMPARE(running(image), QStringLiteral("0 1 0 0"));
        QVERIFY(image.write(4425, QVariant(1)));
        const int first = timersOf(&image).value(0);
        tick(image, first, 10);
        QCOMPARE(running(image), QStringLiteral("1 10 3000 90"));

        QVERIFY(image.write(4423, QVariant(29)));
        QVERIFY(image.write(4425, QVariant(1)));
        QCOMPARE(running(image), QStringLiteral("30 10 20 100"));
        QList<int> timers = timersOf(&image);
        QCOMPARE(timers.size(), 2);
        timers.removeOne(first);
        tick(image, first);
        tick(image, timers.first());
        QCOMPARE(running(image), QStringLiteral("30 10 20 98"));
        QVERIFY(image.write(4426, QVariant(1)));
        QCOMPARE(timersOf(&image), QList<int>{first});
        tick(image, first);
        QVERIFY(timersOf(&image).isEmpty());

        // Beyond the table the run time is 2222.
        QVERIFY(image.write(4423, QVariant(30)));
        QVERIFY(image.write(4425, QVariant(1)));
        QCOMPARE(timersOf(&image).size(), 1);
        const int timer = timersOf(&image).first();
        tick(image, timer, 99);
        QCOMPARE(running(image), QStringLiteral("31 10 2222 1"));
        tick(image, timer);
        QCOMPARE(running(image), QStringLiteral("0 0 0 0"));
        QVERIFY(timersOf(&image).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestKv2ProgramOption)
#include "tst_kv2programoption.moc"
