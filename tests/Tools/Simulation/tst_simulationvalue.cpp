#include "Tools/Simulation/SimulationValueBool.h"
#include "Tools/Simulation/SimulationValueChar.h"
#include "Tools/Simulation/SimulationValueDuplicator.h"
#include "Tools/Simulation/SimulationValueFloat.h"
#include "Tools/Simulation/SimulationValueInt.h"
#include "Tools/Simulation/SimulationValueShort.h"
#include "Tools/Simulation/SimulationValueUChar.h"
#include "Tools/Simulation/SimulationValueUInt.h"
#include "Tools/Simulation/SimulationValueUShort.h"
#include "Tools/Simulation/SimulationValueWriter.h"

#include <QtTest>

#include <climits>
#include <cmath>

using namespace zelmor::simulation;

namespace {

constexpr int setAddress = 0x20;
constexpr int currentAddress = 0x21;

// One value of any class, with its clock reachable. Elapsed time is injected
// by moving the time stamp back, never by waiting.
struct TestValue
{
    QSharedPointer<SimulationReader> reader;
    SimulationValue* clock = nullptr;

    QVariant readCurrent() { return reader->read(currentAddress); }
    void age(qint64 ms) { clock->setLastRequest(clock->getLastRequest().addMSecs(-ms)); }
};

template<typename V, typename T>
TestValue make(double current, double set, float timeConstant, int setAt)
{
    auto value = QSharedPointer<V>::create(T(current), T(set), timeConstant, setAt, currentAddress);
    return TestValue{value, value.data()};
}

TestValue makeValue(const QByteArray& kind, double current, double set, float timeConstant, int setAt = setAddress)
{
    if (kind == "bool")
        return make<SimulationValueBool, bool>(current, set, timeConstant, setAt);
    if (kind == "int")
        return make<SimulationValueInt, int>(current, set, timeConstant, setAt);
    if (kind == "uint")
        return make<SimulationValueUInt, unsigned int>(current, set, timeConstant, setAt);
    if (kind == "short")
        return make<SimulationValueShort, short>(current, set, timeConstant, setAt);
    if (kind == "ushort")
        return make<SimulationValueUShort, unsigned short>(current, set, timeConstant, setAt);
    if (kind == "uchar")
        return make<SimulationValueUChar, unsigned char>(current, set, timeConstant, setAt);
    if (kind == "char")
        return make<SimulationValueChar, signed char>(current, set, timeConstant, setAt);
    return make<SimulationValueFloat, float>(current, set, timeConstant, setAt);
}

// The lag in single precision, written out from the physics.
float expectedLag(float current, float set, float timeConstant, qint64 elapsedMs)
{
    return current + (set - current) * (1.0f - std::exp(-(static_cast<float>(elapsedMs) / 1000.0f) / timeConstant));
}

} // namespace

class TestSimulationValue : public QObject
{
    Q_OBJECT

private slots:
    void perClass_data()
    {
        QTest::addColumn<QByteArray>("kind");
        QTest::addColumn<QVariant>("written");
        // toInt (toFloat), then the low bits; junk is 0. Its type is that of every read.
        QTest::addColumn<QVariant>("stored");

        auto row = [](const char* kind, const QVariant& written, const QVariant& stored) {
            QTest::newRow(kind) << QByteArray(kind) << written << stored;
        };
        row("bool", 256, true);
        row("int", QStringLiteral("x1"), 0);
        row("uint", -1, 4294967295u);
        row("short", 40000, QVariant::fromValue<short>(-25536));
        row("ushort", 65537, QVariant::fromValue<ushort>(1));
        row("uchar", 300, QVariant::fromValue<uchar>(44));
        row("char", 200, QVariant::fromValue<signed char>(-56));
        row("float", QStringLiteral("abc"), 0.0f);
    }

    // Types, addresses and write conversions of every class; the set address
    // never advances time, getType is a read for the integer family and
    // invalid for floats.
    void perClass()
    {
        QFETCH(QByteArray, kind);
        QFETCH(QVariant, written);
        QFETCH(QVariant, stored);
        const int typeId = stored.userType();
        const int typeOfGetType = kind == "float" ? int(QMetaType::UnknownType) : typeId;

        TestValue value = makeValue(kind, 0, 100, 10.0f);
        value.age(5000);
        const QDateTime stamp = value.clock->getLastRequest();
        QCOMPARE(value.reader->read(setAddress).userType(), typeId);
        QCOMPARE(value.reader->getType(setAddress).userType(), typeOfGetType);
        QCOMPARE(value.clock->getLastRequest(), stamp);
        QCOMPARE(value.reader->getType(currentAddress).userType(), typeOfGetType);
        QCOMPARE(value.clock->getLastRequest() > stamp, kind != "float");
        QCOMPARE(value.readCurrent().userType(), typeId);
        QVERIFY(value.clock->getLastRequest() > stamp.addMSecs(4000));
        QVERIFY(!value.reader->read(0x22).isValid());
        QVERIFY(!value.reader->write(currentAddress, 0));
        QVERIFY(value.reader->write(setAddress, written));
        QCOMPARE(value.reader->read(setAddress), stored);

        // Equal addresses answer the set value; -1 is no address at all.
        QCOMPARE(makeValue(kind, 1, 0, 10.0f, currentAddress).readCurrent().toInt(), 0);
        TestValue withoutSet = makeValue(kind, 1, 1, 10.0f, -1);
        QVERIFY(!withoutSet.reader->write(-1, 0) && !withoutSet.reader->read(-1).isValid());
    }

    void lag_data()
    {
        QTest::addColumn<QByteArray>("kind");
        QTest::addColumn<double>("current");
        QTest::addColumn<double>("set");
        QTest::addColumn<float>("timeConstant");
        QTest::addColumn<qint64>("elapsedMs");
        QTest::addColumn<QVariant>("expected");

        auto row = [](const char* name, const char* kind, double current, double set, float timeConstant,
                      qint64 elapsedMs, const QVariant& expected) {
            QTest::newRow(name) << QByteArray(kind) << current << set << timeConstant << elapsedMs << expected;
        };
        row("float after 5 s", "float", 0, 100, 10, 5000, 39.35f);
        row("float at ten time constants", "float", 0, 100, 10, 100000, 100.0f);
        // Integers truncate toward zero (-21.3 for the short); long time
        // constants keep the test's own milliseconds from tipping a result.
        row("int", "int", 0, 100, 100, 50000, 39);
        // 2147483600 is 2^31 as a float: the step lands outside the int range
        row("int out of range", "int", 2147483600.0, 2147483647.0, 10, 5000, INT_MIN);
        row("short", "short", -100, 100, 100, 50000, QVariant::fromValue<short>(-21));
        // The wrapped distance 496 takes 4294967000 past 2^32: the low 32 bits stay.
        row("uint through 2^32", "uint", 4294967000.0, 200, 10, 5000, 0u);
        // Falling from 10 to 5 takes the wrapped distance 2^32 - 5: the value
        // climbs through the top of the range until ten time constants land it.
        // (The long time constant keeps the result on one float for a second.)
        row("uint climbing at 9.9", "uint", 10, 5, 1000, 9900000, 4294751744u);
        row("uint falling lands at ten", "uint", 10, 5, 10, 100000, 5u);
        // With a time constant of 0 or less an integer follows at once, a
        // float after the first full second.
        row("int -10 at once", "int", 0, 1, -10, 0, 1);
        row("float -10 not at once", "float", 0, 1, -10, 0, 0.0f);
        row("float 0 after a second", "float", 0, 1, 0, 1000, 1.0f);
        // A bool turns on at the first full second, off only at ten time constants.
        row("bool on after a second", "bool", 0, 1, 60, 1000, true);
        row("bool still on at 599 s", "bool", 1, 0, 60, 599000, true);
        row("bool off at 600 s", "bool", 1, 0, 60, 600000, false);
    }

    void lag()
    {
        QFETCH(QByteArray, kind);
        QFETCH(double, current);
        QFETCH(double, set);
        QFETCH(float, timeConstant);
        QFETCH(qint64, elapsedMs);
        QFETCH(QVariant, expected);

        TestValue value = makeValue(kind, current, set, timeConstant);
        value.age(elapsedMs);
        const QDateTime before = value.clock->getLastRequest();
        const QVariant result = value.readCurrent();
        if (kind != "float") {
            QCOMPARE(result, expected);
            return;
        }
        // The value followed exactly the time up to the read.
        const qint64 seen = before.msecsTo(value.clock->getLastRequest());
        QVERIFY2(seen >= elapsedMs && seen < elapsedMs + 500, qPrintable(QString::number(seen)));
        const bool arrived = seen > 0 && seen >= qint64(10 * timeConstant * 1000);
        QCOMPARE(result.toFloat(), arrived ? float(set) : expectedLag(current, set, timeConstant, seen));
        QVERIFY(qAbs(result.toFloat() - expected.toFloat()) < 0.05f);
    }

    // Up to 999 ms is no time, and neither that nor a step that rounds to
    // nothing is lost: the stamp stays where it was.
    void timeAccount()
    {
        TestValue value = makeValue("float", 0, 100, 10.0f);
        value.age(5000);
        const QVariant first = value.readCurrent();
        const QDateTime stamp = value.clock->getLastRequest();
        value.age(900);
        QCOMPARE(value.readCurrent(), first);
        QCOMPARE(value.clock->getLastRequest(), stamp.addMSecs(-900));
        value.age(200); // a step of 1.1 s
        const float after = value.readCurrent().toFloat();
        QVERIFY2(after > first.toFloat() && qAbs(after - expectedLag(first.toFloat(), 100.0f, 10.0f, 1100)) < 1.0f,
                 qPrintable(QString::number(after)));

        // An integer read once a second takes its first step of 1 when the
        // seconds s reach 10 * (1 - e^(-s/360)) >= 1, s >= 360 * ln(10/9) = 37.9.
        TestValue slow = makeValue("int", 0, 10, 360.0f);
        int second = 0;
        while (slow.readCurrent().toInt() == 0 && second < 60) {
            slow.age(1000);
            ++second;
        }
        QCOMPARE(second, 38);

        // A value at rest keeps its account open: after 300 quiet seconds the
        // first read after a write shows 1 - e^(-300/360), about 56.5%, of the step.
        TestValue quiet = makeValue("float", 20, 20, 360.0f);
        quiet.age(300000);
        QVERIFY(quiet.reader->write(setAddress, 30.0f));
        const float jumped = quiet.readCurrent().toFloat();
        QVERIFY2(qAbs(jumped - 25.65f) < 0.01f, qPrintable(QString::number(jumped)));

        // On its way from 0 to 100 for 5 s, then set to 0: it stays where the
        // old path brought it, about 39.35.
        TestValue onTheWay = makeValue("float", 0, 100, 10.0f);
        onTheWay.age(5000);
        QVERIFY(onTheWay.reader->write(setAddress, 0));
        const float kept = onTheWay.readCurrent().toFloat();
        QVERIFY2(qAbs(kept - 39.35f) < 0.5f, qPrintable(QString::number(kept)));
    }

    // A writer makes one more address writable, a duplicator one more readable.
    void aliases()
    {
        auto target = QSharedPointer<SimulationValueFloat>::create(5.0f, 5.0f, 10.0f, 0x20, 0x21);
        SimulationValueWriter writer(target, 0x10, 0x20);
        QVERIFY(!writer.read(0x10).isValid());
        // getType reads the target, valid although the float value itself isn't
        QCOMPARE(writer.getType(0x10), QVariant(5.0f));
        QVERIFY(writer.write(0x10, 7.5f));
        QVERIFY(!writer.write(0x20, 9.0f));
        QCOMPARE(target->read(0x20), QVariant(7.5f));
        // The target's refusal comes through.
        QVERIFY(!SimulationValueWriter(target, 0x11, 0x21).write(0x11, 1.0f));

        SimulationValueDuplicator duplicator(target, 0x10, 0x20);
        QCOMPARE(duplicator.read(0x10), QVariant(7.5f));
        QVERIFY(!duplicator.read(0x20).isValid());
        QVERIFY(!duplicator.write(0x10, 9));
        QVERIFY(!SimulationValueWriter(QSharedPointer<SimulationReader>(), 0x10, 0x20).write(0x10, 1));
        QVERIFY(!SimulationValueDuplicator(QSharedPointer<SimulationReader>(), 0x10, 0x20).read(0x10).isValid());
    }
};

QTEST_GUILESS_MAIN(TestSimulationValue)
#include "tst_simulationvalue.moc"
