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

QVariant doubleWord(quint32 value)
{
    return QVariant::fromValue(value);
}

// The image's timers as the event loop holds them.
QList<QAbstractEventDispatcher::TimerInfo> timersOf(QObject* object)
{
    return QAbstractEventDispatcher::instance()->registeredTimers(object);
}

// One tick of a countdown timer, delivered as the event loop would deliver it.
void tick(Kv2ProgramOption& image, int timerId)
{
    QTimerEvent event(timerId);
    QCoreApplication::sendEvent(&image, &event);
}

struct RunningRegisters
{
    quint16 program;
    quint16 state;
    quint32 runTime;
    quint32 remaining;

    bool operator==(RunningRegisters const& other) const
    {
        return program == other.program && state == other.state
            && runTime == other.runTime && remaining == other.remaining;
    }
};

char* toString(RunningRegisters const& registers)
{
    return QTest::toString(QStringLiteral("program %1, state %2, run time %3, remaining %4")
                               .arg(registers.program).arg(registers.state)
                               .arg(registers.runTime).arg(registers.remaining));
}

// The four registers of a running program; a register of the wrong type
// reads as all ones so that the comparison fails.
RunningRegisters readRunning(Kv2ProgramOption& image)
{
    auto const readWord = [&image](int address) -> quint16 {
        QVariant const value = image.read(address);
        return value.userType() == QMetaType::UShort ? value.value<quint16>() : 0xFFFF;
    };
    auto const readDoubleWord = [&image](int address) -> quint32 {
        QVariant const value = image.read(address);
        return value.userType() == QMetaType::UInt ? value.value<quint32>() : 0xFFFFFFFF;
    };
    return RunningRegisters{readWord(4260), readWord(4261), readDoubleWord(4262), readDoubleWord(4264)};
}

} // namespace

Q_DECLARE_METATYPE(RunningRegisters)

class TestKv2ProgramOption : public QObject
{
    Q_OBJECT

private slots:
    // The fresh image, register by register.
    void registerMap_data()
    {
        QTest::addColumn<int>("address");
        QTest::addColumn<QVariant>("expected");

        QTest::newRow("4260 running program") << 4260 << word(0);
        QTest::newRow("4261 program state") << 4261 << word(1);
        QTest::newRow("4262 run time") << 4262 << doubleWord(0);
        QTest::newRow("4264 remaining time") << 4264 << doubleWord(0);
        for (int address = 4416; address <= 4423; ++address)
            QTest::addRow("%d cell", address) << address << word(0);
        QTest::newRow("4424 cell") << 4424 << QVariant::fromValue(qint16(0));
        QTest::newRow("4425 start") << 4425 << word(0);
        QTest::newRow("4426 stop") << 4426 << word(1);
        QTest::newRow("4440 cell") << 4440 << word(0);
        QTest::newRow("12288 program count") << 12288 << doubleWord(128);
        QTest::newRow("12290 zero") << 12290 << word(0);
        QTest::newRow("12291 active flags") << 12291 << word(0);
        QTest::newRow("12292 selected program") << 12292 << word(0);
        QTest::newRow("12344 active") << 12344 << word(0);
        QTest::newRow("17152 program name") << 17152 << QVariant(QStringLiteral("Andromeda Galaxy"));

        for (int address : {0, -1, 4259, 4263, 4265, 4415, 4427, 4439, 4441, 12287, 12289,
                            12293, 12343, 12345, 17151, 17153, 0x7FFFFFFF, int(0x80000000)})
            QTest::addRow("%d nothing", address) << address << QVariant();
    }

    void registerMap()
    {
        QFETCH(int, address);
        QFETCH(QVariant, expected);

        Kv2ProgramOption image;
        QVariant const value = image.read(address);
        QCOMPARE(value.userType(), expected.userType());
        QCOMPARE(value, expected);
        QCOMPARE(image.getType(address), QVariant());
    }

    void write_data()
    {
        QTest::addColumn<int>("address");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<int>("readAddress");
        QTest::addColumn<QVariant>("expected");

        QTest::newRow("4260 refused") << 4260 << QVariant(5) << false << 4260 << word(0);
        QTest::newRow("4261 refused") << 4261 << QVariant(5) << false << 4261 << word(1);
        QTest::newRow("4262 refused") << 4262 << QVariant(5) << false << 4262 << doubleWord(0);
        QTest::newRow("4263 refused") << 4263 << QVariant(5) << false << 4263 << QVariant();
        QTest::newRow("4264 refused") << 4264 << QVariant(5) << false << 4264 << doubleWord(0);
        QTest::newRow("4427 refused") << 4427 << QVariant(5) << false << 4427 << QVariant();
        QTest::newRow("12290 refused") << 12290 << QVariant(5) << false << 12290 << word(0);
        QTest::newRow("12291 refused") << 12291 << QVariant(5) << false << 12291 << word(0);
        QTest::newRow("12344 refused") << 12344 << QVariant(5) << false << 12344 << word(0);
        QTest::newRow("17152 refused") << 17152 << QVariant(QStringLiteral("Milky Way")) << false
                                       << 17152 << QVariant(QStringLiteral("Andromeda Galaxy"));
        QTest::newRow("0 refused") << 0 << QVariant(5) << false << 0 << QVariant();

        QTest::newRow("float into 4416") << 4416 << QVariant(1.5f) << true << 4416 << QVariant(1.5f);
        QTest::newRow("int into 4422") << 4422 << QVariant(7) << true << 4422 << QVariant(7);
        QTest::newRow("ushort into 4423") << 4423 << word(3) << true << 4423 << word(3);
        QTest::newRow("negative into 4424") << 4424 << QVariant::fromValue(qint16(-2)) << true
                                            << 4424 << QVariant::fromValue(qint16(-2));
        QTest::newRow("text into 4440") << 4440 << QVariant(QStringLiteral("x")) << true
                                        << 4440 << QVariant(QStringLiteral("x"));
        QTest::newRow("invalid into 4417") << 4417 << QVariant() << true << 4417 << QVariant();

        QTest::newRow("12288 stays 128") << 12288 << QVariant(5) << true << 12288 << doubleWord(128);
        QTest::newRow("12288 takes text") << 12288 << QVariant(QStringLiteral("many")) << true
                                          << 12288 << doubleWord(128);

        QTest::newRow("selected 20") << 12292 << QVariant(20) << true
                                     << 17152 << QVariant(QStringLiteral("Whirlpool Galaxy"));
        QTest::newRow("selected 15") << 12292 << QVariant(15) << true
                                     << 17152 << QVariant(QStringLiteral("Milky Way"));
        QTest::newRow("selected 3") << 12292 << QVariant(3) << true
                                    << 17152 << QVariant(QStringLiteral("Bode's Galaxy"));
        QTest::newRow("selected 21") << 12292 << QVariant(21) << true
                                     << 17152 << QVariant(QStringLiteral("Not defined 21"));
        QTest::newRow("selected 65536 wraps") << 12292 << QVariant(65536) << true
                                              << 17152 << QVariant(QStringLiteral("Andromeda Galaxy"));
        QTest::newRow("selected 65536 reads 0") << 12292 << QVariant(65536) << true << 12292 << word(0);
        QTest::newRow("selected -1") << 12292 << QVariant(-1) << true
                                     << 17152 << QVariant(QStringLiteral("Not defined 65535"));
        QTest::newRow("selected text is 0") << 12292 << QVariant(QStringLiteral("two")) << true
                                            << 12292 << word(0);
        QTest::newRow("selected from text") << 12292 << QVariant(QStringLiteral("9")) << true
                                            << 17152 << QVariant(QStringLiteral("Cosmos Redshift 7"));

        QTest::newRow("start 0 does nothing") << 4425 << QVariant(0) << true << 4261 << word(1);
        QTest::newRow("start text does nothing") << 4425 << QVariant(QStringLiteral("go")) << true
                                                 << 4261 << word(1);
        QTest::newRow("stop 0 does nothing") << 4426 << QVariant(0) << true << 4261 << word(1);
        QTest::newRow("stop with nothing running") << 4426 << QVariant(1) << true << 4261 << word(0);
        QTest::newRow("start does not store") << 4425 << QVariant(1) << true << 4425 << word(0);
        QTest::newRow("stop does not store") << 4426 << QVariant(1) << true << 4426 << word(1);
    }

    void write()
    {
        QFETCH(int, address);
        QFETCH(QVariant, value);
        QFETCH(bool, accepted);
        QFETCH(int, readAddress);
        QFETCH(QVariant, expected);

        Kv2ProgramOption image;
        QCOMPARE(image.write(address, value), accepted);
        QVariant const readBack = image.read(readAddress);
        QCOMPARE(readBack.userType(), expected.userType());
        QCOMPARE(readBack, expected);
    }

    void start_data()
    {
        QTest::addColumn<QVariant>("programToStart");
        QTest::addColumn<QVariant>("command");
        QTest::addColumn<RunningRegisters>("expected");

        QTest::newRow("program 0") << QVariant(0) << QVariant(1) << RunningRegisters{1, 10, 3000, 100};
        QTest::newRow("program 4") << QVariant(4) << QVariant(1) << RunningRegisters{5, 10, 32243, 100};
        QTest::newRow("program 5") << QVariant(5) << QVariant(1) << RunningRegisters{6, 10, 673455, 100};
        QTest::newRow("program 19") << QVariant(19) << QVariant(1) << RunningRegisters{20, 10, 2558, 100};
        QTest::newRow("program 29, last entry") << QVariant(29) << QVariant(1) << RunningRegisters{30, 10, 20, 100};
        QTest::newRow("program 30, beyond the table") << QVariant(30) << QVariant(1) << RunningRegisters{31, 10, 2222, 100};
        QTest::newRow("all ones reaches entry 0") << word(0xFFFF) << QVariant(1) << RunningRegisters{0, 10, 1000, 100};
        QTest::newRow("-1 reaches entry 0") << QVariant(-1) << QVariant(1) << RunningRegisters{0, 10, 1000, 100};
        QTest::newRow("65534") << word(0xFFFE) << QVariant(1) << RunningRegisters{0xFFFF, 10, 2222, 100};
        QTest::newRow("int beyond 16 bits") << QVariant(0x10002) << QVariant(1) << RunningRegisters{3, 10, 4444, 100};
        QTest::newRow("largest int") << QVariant(0x7FFFFFFF) << QVariant(1) << RunningRegisters{0, 10, 1000, 100};
        QTest::newRow("text in the cell is 0") << QVariant(QStringLiteral("x")) << QVariant(1) << RunningRegisters{1, 10, 3000, 100};
        QTest::newRow("any non-zero command") << QVariant(2) << QVariant(-7) << RunningRegisters{3, 10, 4444, 100};
        QTest::newRow("command as text") << QVariant(2) << QVariant(QStringLiteral("1")) << RunningRegisters{3, 10, 4444, 100};
    }

    void start()
    {
        QFETCH(QVariant, programToStart);
        QFETCH(QVariant, command);
        QFETCH(RunningRegisters, expected);

        Kv2ProgramOption image;
        QVERIFY(image.write(4423, programToStart));
        QVERIFY(timersOf(&image).isEmpty());
        QVERIFY(image.write(4425, command));
        QCOMPARE(readRunning(image), expected);

        // The start and stop registers don't show the run.
        QCOMPARE(image.read(4425), word(0));
        QCOMPARE(image.read(4426), word(1));
        QCOMPARE(image.read(12291), word(0));
        QCOMPARE(image.read(12344), word(0));

        auto const timers = timersOf(&image);
        QCOMPARE(timers.size(), 1);
        QCOMPARE(timers.first().interval, 1000);
        QCOMPARE(timers.first().timerType, Qt::CoarseTimer);

        QVERIFY(image.write(4426, QVariant(1)));
        QCOMPARE(readRunning(image), (RunningRegisters{0, 0, 0, 0}));
        QVERIFY(timersOf(&image).isEmpty());
    }

    // A few ticks of the real timer, then a stop.
    void countdownOnTheRealTimer()
    {
        Kv2ProgramOption image;
        QElapsedTimer elapsed;
        elapsed.start();
        QVERIFY(image.write(4425, QVariant(1)));
        QCOMPARE(readRunning(image), (RunningRegisters{1, 10, 3000, 100}));

        QTRY_COMPARE_WITH_TIMEOUT(image.read(4264), doubleWord(99), 3000);
        QTRY_COMPARE_WITH_TIMEOUT(image.read(4264), doubleWord(98), 3000);
        QTRY_COMPARE_WITH_TIMEOUT(image.read(4264), doubleWord(97), 3000);
        // A coarse timer may fire up to 5 % early.
        QVERIFY2(elapsed.elapsed() >= 2850, qPrintable(QString::number(elapsed.elapsed())));
        QCOMPARE(readRunning(image), (RunningRegisters{1, 10, 3000, 97}));

        QVERIFY(image.write(4426, QVariant(1)));
        QCOMPARE(readRunning(image), (RunningRegisters{0, 0, 0, 0}));
        QVERIFY(timersOf(&image).isEmpty());
    }

    void countdownByTicks_data()
    {
        QTest::addColumn<int>("ticks");
        QTest::addColumn<RunningRegisters>("expected");
        QTest::addColumn<bool>("timerRuns");

        QTest::newRow("1 tick") << 1 << RunningRegisters{1, 10, 3000, 99} << true;
        QTest::newRow("50 ticks") << 50 << RunningRegisters{1, 10, 3000, 50} << true;
        QTest::newRow("99 ticks") << 99 << RunningRegisters{1, 10, 3000, 1} << true;
        QTest::newRow("100 ticks end the program") << 100 << RunningRegisters{0, 0, 0, 0} << false;
    }

    void countdownByTicks()
    {
        QFETCH(int, ticks);
        QFETCH(RunningRegisters, expected);
        QFETCH(bool, timerRuns);

        Kv2ProgramOption image;
        QVERIFY(image.write(4425, QVariant(1)));
        auto const timers = timersOf(&image);
        QCOMPARE(timers.size(), 1);
        for (int i = 0; i < ticks; ++i)
            tick(image, timers.first().timerId);

        QCOMPARE(readRunning(image), expected);
        QCOMPARE(timersOf(&image).isEmpty(), !timerRuns);

        // From the end a new start runs again.
        if (!timerRuns) {
            QVERIFY(image.write(4423, QVariant(29)));
            QVERIFY(image.write(4425, QVariant(1)));
            QCOMPARE(readRunning(image), (RunningRegisters{30, 10, 20, 100}));
            QCOMPARE(timersOf(&image).size(), 1);
        }
    }

    // A second start while running leaves the first timer going: the
    // countdown goes down twice per second, and a stop kills only the newer
    // timer; the older one removes itself at its next tick.
    void restartWhileRunning()
    {
        Kv2ProgramOption image;
        QVERIFY(image.write(4425, QVariant(1)));
        int const first = timersOf(&image).first().timerId;
        for (int i = 0; i < 10; ++i)
            tick(image, first);
        QCOMPARE(readRunning(image), (RunningRegisters{1, 10, 3000, 90}));

        QVERIFY(image.write(4423, QVariant(2)));
        QVERIFY(image.write(4425, QVariant(1)));
        QCOMPARE(readRunning(image), (RunningRegisters{3, 10, 4444, 100}));
        auto timers = timersOf(&image);
        QCOMPARE(timers.size(), 2);
        int const second = timers.at(0).timerId == first ? timers.at(1).timerId : timers.at(0).timerId;
        QVERIFY(second != first);

        tick(image, first);
        tick(image, second);
        QCOMPARE(readRunning(image), (RunningRegisters{3, 10, 4444, 98}));

        QVERIFY(image.write(4426, QVariant(1)));
        QCOMPARE(readRunning(image), (RunningRegisters{0, 0, 0, 0}));
        timers = timersOf(&image);
        QCOMPARE(timers.size(), 1);
        QCOMPARE(timers.first().timerId, first);

        tick(image, first);
        QCOMPARE(readRunning(image), (RunningRegisters{0, 0, 0, 0}));
        QVERIFY(timersOf(&image).isEmpty());
    }

    // Two timers counting one program down: the one that takes it to 0 goes
    // first, the other follows at its next tick.
    void restartRunsToTheEnd()
    {
        Kv2ProgramOption image;
        QVERIFY(image.write(4425, QVariant(1)));
        int const first = timersOf(&image).first().timerId;
        QVERIFY(image.write(4425, QVariant(1)));
        auto const timers = timersOf(&image);
        QCOMPARE(timers.size(), 2);
        int const second = timers.at(0).timerId == first ? timers.at(1).timerId : timers.at(0).timerId;

        for (int i = 0; i < 50; ++i) {
            tick(image, first);
            tick(image, second);
        }
        QCOMPARE(readRunning(image), (RunningRegisters{0, 0, 0, 0}));
        QCOMPARE(timersOf(&image).size(), 1);
        QCOMPARE(timersOf(&image).first().timerId, first);
        tick(image, first);
        QVERIFY(timersOf(&image).isEmpty());
        QCOMPARE(readRunning(image), (RunningRegisters{0, 0, 0, 0}));
    }
};

QTEST_GUILESS_MAIN(TestKv2ProgramOption)
#include "tst_kv2programoption.moc"
