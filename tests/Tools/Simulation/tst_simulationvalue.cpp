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
    int set = setAddress;
    int current = currentAddress;

    QVariant readCurrent() { return reader->read(current); }
    QVariant readSet() { return reader->read(set); }
    void age(qint64 ms) { clock->setLastRequest(clock->getLastRequest().addMSecs(-ms)); }
};

template<typename V, typename T>
TestValue make(double current, double set, float timeConstant, int setAt, int currentAt)
{
    auto value = QSharedPointer<V>::create(static_cast<T>(current), static_cast<T>(set), timeConstant, setAt, currentAt);
    return TestValue{value, value.data(), setAt, currentAt};
}

TestValue makeValue(QByteArray const& kind, double current, double set, float timeConstant,
                    int setAt = setAddress, int currentAt = currentAddress)
{
    if (kind == "bool")
        return make<SimulationValueBool, bool>(current, set, timeConstant, setAt, currentAt);
    if (kind == "int")
        return make<SimulationValueInt, int>(current, set, timeConstant, setAt, currentAt);
    if (kind == "uint")
        return make<SimulationValueUInt, unsigned int>(current, set, timeConstant, setAt, currentAt);
    if (kind == "short")
        return make<SimulationValueShort, short>(current, set, timeConstant, setAt, currentAt);
    if (kind == "ushort")
        return make<SimulationValueUShort, unsigned short>(current, set, timeConstant, setAt, currentAt);
    if (kind == "uchar")
        return make<SimulationValueUChar, unsigned char>(current, set, timeConstant, setAt, currentAt);
    if (kind == "char")
        return make<SimulationValueChar, signed char>(current, set, timeConstant, setAt, currentAt);
    if (kind == "float")
        return make<SimulationValueFloat, float>(current, set, timeConstant, setAt, currentAt);
    qFatal("unknown kind %s", kind.constData());
    return TestValue();
}

// The lag in single precision, written out from the physics, for comparing
// a float value with the time it actually saw.
float expectedLag(float current, float set, float timeConstant, qint64 elapsedMs)
{
    float const seconds = static_cast<float>(elapsedMs) / 1000.0f;
    return current + (set - current) * (1.0f - std::exp(-seconds / timeConstant));
}

} // namespace

class TestSimulationValue : public QObject
{
    Q_OBJECT

private slots:
    void readTypes_data();
    void readTypes();
    void floatLag_data();
    void floatLag();
    void integerLag_data();
    void integerLag();
    void shortReadsWithinASecondChangeNothing_data();
    void shortReadsWithinASecondChangeNothing();
    void readingTheSetAddressNeverAdvances();
    void integerValueDoesNotStallOnSlowReads();
    void unsignedValueClimbsThroughTheTop();
    void boolSwitchesWithAsymmetricDelay();
    void nonPositiveTimeConstant_data();
    void nonPositiveTimeConstant();
    void quietTimeCountsAfterWrite();
    void writeKeepsThePathUpToTheWrite();
    void writeConversions_data();
    void writeConversions();
    void currentAddressIsNotWritable_data();
    void currentAddressIsNotWritable();
    void getTypeByFamily_data();
    void getTypeByFamily();
    void equalAddressesAnswerTheSetValue();
    void minusOneIsNoAddress_data();
    void minusOneIsNoAddress();
    void writerAlias();
    void duplicatorAlias();
};

void TestSimulationValue::readTypes_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<int>("typeId");
    QTest::newRow("bool") << QByteArray("bool") << 1;
    QTest::newRow("int") << QByteArray("int") << 2;
    QTest::newRow("uint") << QByteArray("uint") << 3;
    QTest::newRow("short") << QByteArray("short") << 33;
    QTest::newRow("ushort") << QByteArray("ushort") << 36;
    QTest::newRow("uchar") << QByteArray("uchar") << 37;
    QTest::newRow("char") << QByteArray("char") << 40;
    QTest::newRow("float") << QByteArray("float") << 38;
}

void TestSimulationValue::readTypes()
{
    QFETCH(QByteArray, kind);
    QFETCH(int, typeId);
    TestValue value = makeValue(kind, 1, 1, 10.0f);
    QCOMPARE(value.readSet().userType(), typeId);
    QCOMPARE(value.readCurrent().userType(), typeId);
    QVERIFY(!value.reader->read(0x22).isValid());
}

void TestSimulationValue::floatLag_data()
{
    QTest::addColumn<float>("current");
    QTest::addColumn<float>("set");
    QTest::addColumn<float>("timeConstant");
    QTest::addColumn<qint64>("elapsedMs");
    QTest::addColumn<float>("approximately");

    // 100 * (1 - e^-0.5)
    QTest::newRow("half a time constant") << 0.0f << 100.0f << 10.0f << qint64(5000) << 39.35f;
    QTest::newRow("falling") << 100.0f << 0.0f << 10.0f << qint64(5000) << 60.65f;
    QTest::newRow("one time constant") << 20.0f << 30.0f << 360.0f << qint64(360000) << 26.32f;
    QTest::newRow("just over a second") << 0.0f << 100.0f << 10.0f << qint64(1000) << 9.52f;
}

void TestSimulationValue::floatLag()
{
    QFETCH(float, current);
    QFETCH(float, set);
    QFETCH(float, timeConstant);
    QFETCH(qint64, elapsedMs);
    QFETCH(float, approximately);

    SimulationValueFloat value(current, set, timeConstant, setAddress, currentAddress);
    QDateTime const before = QDateTime::currentDateTime().addMSecs(-elapsedMs);
    value.setLastRequest(before);
    float const result = value.read(currentAddress).toFloat();

    // The stamp moved to the moment of the read; the value followed exactly
    // the time between.
    qint64 const seen = before.msecsTo(value.getLastRequest());
    QVERIFY2(seen >= elapsedMs && seen < elapsedMs + 500, qPrintable(QString::number(seen)));
    QCOMPARE(result, expectedLag(current, set, timeConstant, seen));
    QVERIFY(qAbs(result - approximately) < 0.05f);
}

void TestSimulationValue::integerLag_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<double>("current");
    QTest::addColumn<double>("set");
    QTest::addColumn<float>("timeConstant");
    QTest::addColumn<qint64>("elapsedMs");
    QTest::addColumn<QVariant>("expected");

    // 39.35 and 60.65 truncate toward zero; a long time constant keeps the
    // milliseconds the test itself takes from tipping a result over.
    QTest::newRow("int rising") << QByteArray("int") << 0.0 << 100.0 << 100.0f << qint64(50000) << QVariant(39);
    QTest::newRow("int falling") << QByteArray("int") << 100.0 << 0.0 << 100.0f << qint64(50000) << QVariant(60);
    QTest::newRow("int negative") << QByteArray("int") << 0.0 << -100.0 << 100.0f << qint64(50000) << QVariant(-39);
    // 2147483600 is 2^31 as a float: the step lands outside the int range
    QTest::newRow("int out of range") << QByteArray("int") << 2147483600.0 << 2147483647.0 << 10.0f << qint64(5000)
                                      << QVariant(INT_MIN);
    QTest::newRow("short") << QByteArray("short") << -100.0 << 100.0 << 100.0f << qint64(50000)
                           << QVariant::fromValue<short>(-21);
    QTest::newRow("ushort") << QByteArray("ushort") << 0.0 << 1000.0 << 100.0f << qint64(50000)
                            << QVariant::fromValue<unsigned short>(393);
    QTest::newRow("uchar") << QByteArray("uchar") << 0.0 << 255.0 << 100.0f << qint64(50000)
                           << QVariant::fromValue<unsigned char>(100);
    QTest::newRow("char") << QByteArray("char") << 100.0 << -100.0 << 100.0f << qint64(50000)
                          << QVariant::fromValue<signed char>(21);
    QTest::newRow("uint rising") << QByteArray("uint") << 0.0 << 100.0 << 100.0f << qint64(50000) << QVariant(39u);
    QTest::newRow("ten time constants") << QByteArray("int") << 0.0 << 100.0 << 10.0f << qint64(100000) << QVariant(100);
    QTest::newRow("short of ten") << QByteArray("int") << 0.0 << 100.0 << 10.0f << qint64(50000) << QVariant(99);
}

void TestSimulationValue::integerLag()
{
    QFETCH(QByteArray, kind);
    QFETCH(double, current);
    QFETCH(double, set);
    QFETCH(float, timeConstant);
    QFETCH(qint64, elapsedMs);
    QFETCH(QVariant, expected);

    TestValue value = makeValue(kind, current, set, timeConstant);
    value.age(elapsedMs);
    QCOMPARE(value.readCurrent(), expected);
}

void TestSimulationValue::shortReadsWithinASecondChangeNothing_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::addRow("float") << QByteArray("float");
    QTest::addRow("int") << QByteArray("int");
}

void TestSimulationValue::shortReadsWithinASecondChangeNothing()
{
    QFETCH(QByteArray, kind);
    TestValue value = makeValue(kind, 0, 100, 10.0f);
    value.age(5000);
    QVariant const first = value.readCurrent();
    QDateTime const stamp = value.clock->getLastRequest();
    QCOMPARE(value.readCurrent(), first);
    QCOMPARE(value.clock->getLastRequest(), stamp);

    // 900 ms is no time, and it isn't lost: with 200 ms more the step is a
    // whole 1.1 seconds.
    value.age(900);
    QCOMPARE(value.readCurrent(), first);
    QCOMPARE(value.clock->getLastRequest(), stamp.addMSecs(-900));
    value.age(200);
    float const after = value.readCurrent().toFloat();
    float const expected = expectedLag(first.toFloat(), 100.0f, 10.0f, 1100);
    QVERIFY2(qAbs(after - expected) < 1.0f, qPrintable(QString::number(after)));
    QVERIFY(after > first.toFloat());
}

void TestSimulationValue::readingTheSetAddressNeverAdvances()
{
    SimulationValueFloat value(0.0f, 100.0f, 10.0f, setAddress, currentAddress);
    value.setLastRequest(QDateTime::currentDateTime().addSecs(-5));
    QDateTime const stamp = value.getLastRequest();
    QCOMPARE(value.read(setAddress), QVariant(100.0f));
    QCOMPARE(value.getLastRequest(), stamp);
    QCOMPARE(value.getCurrentValue(), 0.0f);
}

void TestSimulationValue::integerValueDoesNotStallOnSlowReads()
{
    // Read once a second, every step alone rounds to nothing. The time stays
    // on account: the first step of 1 comes when the accumulated seconds s
    // reach 10 * (1 - e^(-s/360)) >= 1, that is s >= 360 * ln(10/9) = 37.9.
    SimulationValueInt value(0, 10, 360.0f, setAddress, currentAddress);
    int firstStepAt = 0;
    for (int second = 1; second <= 60 && firstStepAt == 0; ++second) {
        value.setLastRequest(value.getLastRequest().addSecs(-1));
        if (value.read(currentAddress).toInt() == 1)
            firstStepAt = second;
    }
    QCOMPARE(firstStepAt, 38);
}

void TestSimulationValue::unsignedValueClimbsThroughTheTop()
{
    // Falling from 10 to 5 takes the wrapped distance 2^32 - 5: the value
    // climbs instead, about 39% of the range after half a time constant...
    SimulationValueUInt value(10u, 5u, 10.0f, setAddress, currentAddress);
    value.setLastRequest(QDateTime::currentDateTime().addSecs(-5));
    unsigned int const climbed = value.read(currentAddress).toUInt();
    QVERIFY2(climbed > 1600000000u && climbed < 1800000000u, qPrintable(QString::number(climbed)));

    // ... and lands only at ten time constants.
    value.setLastRequest(QDateTime::currentDateTime().addSecs(-100));
    QCOMPARE(value.read(currentAddress), QVariant(5u));

    // Just below the top the step passes 2^32 and keeps the low 32 bits.
    SimulationValueUInt nearTop(4294967000u, 200u, 10.0f, setAddress, currentAddress);
    nearTop.setLastRequest(QDateTime::currentDateTime().addSecs(-5));
    QCOMPARE(nearTop.read(currentAddress), QVariant(0u));
}

void TestSimulationValue::boolSwitchesWithAsymmetricDelay()
{
    // On at the first full second...
    SimulationValueBool on(false, true, 60.0f, setAddress, currentAddress);
    QCOMPARE(on.read(currentAddress), QVariant(false));
    on.setLastRequest(QDateTime::currentDateTime().addSecs(-1));
    QCOMPARE(on.read(currentAddress), QVariant(true));

    // ... off only at ten time constants.
    SimulationValueBool off(true, false, 60.0f, setAddress, currentAddress);
    off.setLastRequest(QDateTime::currentDateTime().addSecs(-599));
    QCOMPARE(off.read(currentAddress), QVariant(true));
    off.setLastRequest(off.getLastRequest().addSecs(-1));
    QCOMPARE(off.read(currentAddress), QVariant(false));
}

void TestSimulationValue::nonPositiveTimeConstant_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<float>("timeConstant");
    QTest::addColumn<bool>("followsAtOnce");

    QTest::newRow("int -10") << QByteArray("int") << -10.0f << true;
    QTest::newRow("int 0") << QByteArray("int") << 0.0f << true;
    QTest::newRow("ushort -10") << QByteArray("ushort") << -10.0f << true;
    QTest::newRow("bool 0") << QByteArray("bool") << 0.0f << true;
    QTest::newRow("float -10") << QByteArray("float") << -10.0f << false;
    QTest::newRow("float 0") << QByteArray("float") << 0.0f << false;
}

void TestSimulationValue::nonPositiveTimeConstant()
{
    QFETCH(QByteArray, kind);
    QFETCH(float, timeConstant);
    QFETCH(bool, followsAtOnce);

    TestValue value = makeValue(kind, 0, 0, timeConstant);
    QVERIFY(value.reader->write(setAddress, 1));
    QVariant const immediate = value.readCurrent();
    QCOMPARE(immediate.toInt(), followsAtOnce ? 1 : 0);

    // Within the same second nothing has changed for a float; a full second
    // later every class has landed.
    value.age(1000);
    QCOMPARE(value.readCurrent().toInt(), 1);
}

void TestSimulationValue::quietTimeCountsAfterWrite()
{
    // A value at rest keeps its account open: after 300 quiet seconds a write
    // lets the first read show 1 - e^(-300/360), about 56.5%, of the step.
    SimulationValueFloat value(20.0f, 20.0f, 360.0f, setAddress, currentAddress);
    value.setLastRequest(QDateTime::currentDateTime().addSecs(-300));
    QVERIFY(value.write(setAddress, 30.0f));
    float const jumped = value.read(currentAddress).toFloat();
    float const expected = 20.0f + 10.0f * (1.0f - std::exp(-300.0f / 360.0f));
    QVERIFY2(qAbs(jumped - expected) < 0.01f, qPrintable(QString::number(jumped)));
    QVERIFY(qAbs(jumped - 25.65f) < 0.01f);
}

void TestSimulationValue::writeKeepsThePathUpToTheWrite()
{
    // Rising from 0 to 100 for 5 seconds, then a write of 0: the value stays
    // where the old path had brought it.
    SimulationValueFloat value(0.0f, 100.0f, 10.0f, setAddress, currentAddress);
    value.setLastRequest(QDateTime::currentDateTime().addSecs(-5));
    QVERIFY(value.write(setAddress, 0));
    QVERIFY(qAbs(value.getCurrentValue() - 39.35f) < 0.05f);
    QCOMPARE(value.read(setAddress), QVariant(0.0f));
    QVERIFY(qAbs(value.read(currentAddress).toFloat() - 39.35f) < 0.05f);
}

void TestSimulationValue::writeConversions_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<QVariant>("written");
    QTest::addColumn<QVariant>("expected");

    QTest::newRow("float from text") << QByteArray("float") << QVariant(QStringLiteral("12.5")) << QVariant(12.5f);
    QTest::newRow("float from junk") << QByteArray("float") << QVariant(QStringLiteral("abc")) << QVariant(0.0f);
    QTest::newRow("float from invalid") << QByteArray("float") << QVariant() << QVariant(0.0f);
    QTest::newRow("int from junk") << QByteArray("int") << QVariant(QStringLiteral("x1")) << QVariant(0);
    QTest::newRow("int from list") << QByteArray("int") << QVariant(QVariantList{1, 2}) << QVariant(0);
    QTest::newRow("int from float") << QByteArray("int") << QVariant(-7.0f) << QVariant(-7);
    QTest::newRow("uint from -1") << QByteArray("uint") << QVariant(-1) << QVariant(4294967295u);
    // toInt gives -294967296, whose bits are 4000000000 again
    QTest::newRow("uint beyond int") << QByteArray("uint") << QVariant(4000000000u) << QVariant(4000000000u);
    QTest::newRow("short low bits") << QByteArray("short") << QVariant(40000) << QVariant::fromValue<short>(-25536);
    QTest::newRow("ushort low bits") << QByteArray("ushort") << QVariant(70000) << QVariant::fromValue<unsigned short>(4464);
    QTest::newRow("uchar low bits") << QByteArray("uchar") << QVariant(300) << QVariant::fromValue<unsigned char>(44);
    QTest::newRow("char low bits") << QByteArray("char") << QVariant(200) << QVariant::fromValue<signed char>(-56);
    QTest::newRow("bool from 2") << QByteArray("bool") << QVariant(2) << QVariant(true);
    QTest::newRow("bool from 0") << QByteArray("bool") << QVariant(0) << QVariant(false);
    QTest::newRow("bool from the word true") << QByteArray("bool") << QVariant(QStringLiteral("true")) << QVariant(false);
    QTest::newRow("bool from 256") << QByteArray("bool") << QVariant(256) << QVariant(true);
}

void TestSimulationValue::writeConversions()
{
    QFETCH(QByteArray, kind);
    QFETCH(QVariant, written);
    QFETCH(QVariant, expected);

    TestValue value = makeValue(kind, 1, 1, 10.0f);
    QVERIFY(value.reader->write(setAddress, written));
    QCOMPARE(value.readSet(), expected);
}

void TestSimulationValue::currentAddressIsNotWritable_data()
{
    readTypes_data();
}

void TestSimulationValue::currentAddressIsNotWritable()
{
    QFETCH(QByteArray, kind);
    TestValue value = makeValue(kind, 1, 1, 10.0f);
    QVariant const before = value.readSet();
    QVERIFY(!value.reader->write(currentAddress, 0));
    QVERIFY(!value.reader->write(0x99, 0));
    QCOMPARE(value.readSet(), before);
    QCOMPARE(value.readCurrent(), before);
}

void TestSimulationValue::getTypeByFamily_data()
{
    readTypes_data();
}

void TestSimulationValue::getTypeByFamily()
{
    QFETCH(QByteArray, kind);
    QFETCH(int, typeId);

    TestValue value = makeValue(kind, 0, 100, 10.0f);
    value.age(5000);
    QDateTime const stamp = value.clock->getLastRequest();
    if (kind == "float") {
        QVERIFY(!value.reader->getType(setAddress).isValid());
        QVERIFY(!value.reader->getType(currentAddress).isValid());
        QCOMPARE(value.clock->getLastRequest(), stamp);
        return;
    }
    QCOMPARE(value.reader->getType(setAddress).userType(), typeId);
    QVERIFY(!value.reader->getType(0x99).isValid());
    // getType at the current address is a read, time and all
    QCOMPARE(value.reader->getType(currentAddress).userType(), typeId);
    QVERIFY(value.clock->getLastRequest() > stamp.addMSecs(4000));
}

void TestSimulationValue::equalAddressesAnswerTheSetValue()
{
    SimulationValueInt value(0, 100, 10.0f, 0x30, 0x30);
    value.setLastRequest(QDateTime::currentDateTime().addSecs(-5));
    QCOMPARE(value.read(0x30), QVariant(100));
    QCOMPARE(value.getCurrentValue(), 0);
}

void TestSimulationValue::minusOneIsNoAddress_data()
{
    readTypes_data();
}

void TestSimulationValue::minusOneIsNoAddress()
{
    QFETCH(QByteArray, kind);
    // A value without a set address takes no write and answers nowhere on -1.
    TestValue withoutSet = makeValue(kind, 1, 1, 10.0f, -1, currentAddress);
    QVERIFY(!withoutSet.reader->write(-1, 0));
    QVERIFY(!withoutSet.reader->read(-1).isValid());
    QVERIFY(!withoutSet.reader->getType(-1).isValid());
    QCOMPARE(withoutSet.readCurrent().toInt(), 1);

    TestValue withoutCurrent = makeValue(kind, 1, 1, 10.0f, setAddress, -1);
    QVERIFY(!withoutCurrent.reader->read(-1).isValid());
    QVERIFY(withoutCurrent.reader->write(setAddress, 0));
    QCOMPARE(withoutCurrent.readSet().toInt(), 0);
}

void TestSimulationValue::writerAlias()
{
    auto target = QSharedPointer<SimulationValueFloat>::create(5.0f, 5.0f, 10.0f, 0x20, 0x21);
    SimulationValueWriter writer(target, 0x10, 0x20);

    QVERIFY(!writer.read(0x10).isValid());
    QVERIFY(!writer.read(0x20).isValid());
    // getType reads the target, valid although the float value itself isn't
    QCOMPARE(writer.getType(0x10), QVariant(5.0f));
    QVERIFY(!writer.getType(0x20).isValid());

    QVERIFY(writer.write(0x10, 7.5f));
    QCOMPARE(target->read(0x20), QVariant(7.5f));
    QVERIFY(!writer.write(0x20, 9.0f));
    QCOMPARE(target->read(0x20), QVariant(7.5f));

    // A writer onto the current address passes on the target's refusal.
    SimulationValueWriter onCurrent(target, 0x11, 0x21);
    QVERIFY(!onCurrent.write(0x11, 1.0f));
    SimulationValueWriter withoutTarget(QSharedPointer<SimulationReader>(), 0x10, 0x20);
    QVERIFY(!withoutTarget.write(0x10, 1));
    QVERIFY(!withoutTarget.getType(0x10).isValid());
}

void TestSimulationValue::duplicatorAlias()
{
    auto target = QSharedPointer<SimulationValueInt>::create(3, 4, 10.0f, 0x20, 0x21);
    SimulationValueDuplicator duplicator(target, 0x10, 0x20);

    QCOMPARE(duplicator.read(0x10), QVariant(4));
    QCOMPARE(duplicator.getType(0x10), QVariant(4));
    QVERIFY(!duplicator.read(0x20).isValid());
    QVERIFY(!duplicator.write(0x10, 9));
    QCOMPARE(target->read(0x20), QVariant(4));

    // An alias of the process value advances it like a read.
    SimulationValueDuplicator ofCurrent(target, 0x11, 0x21);
    target->setLastRequest(QDateTime::currentDateTime().addSecs(-100));
    QCOMPARE(ofCurrent.read(0x11), QVariant(4));

    SimulationValueDuplicator withoutTarget(QSharedPointer<SimulationReader>(), 0x10, -1);
    QVERIFY(!withoutTarget.read(0x10).isValid());
}

QTEST_GUILESS_MAIN(TestSimulationValue)
#include "tst_simulationvalue.moc"
