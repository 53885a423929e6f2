#include "Tools/Simulation/ChamberSimulation.h"
#include "Tools/Simulation/SimulationDevice.h"
#include "Tools/Simulation/SimulationValueFloat.h"
#include "Tools/Simulation/SimulationValueInt.h"

#include <QtTest>

using namespace zelmor::simulation;

namespace {

// A child that owns one address and counts how often it is asked.
class CountingReader : public SimulationReader
{
public:
    CountingReader(int address, QVariant answer, bool takesWrites, bool answersType)
        : address(address), answer(std::move(answer)), takesWrites(takesWrites), answersType(answersType)
    {
    }

    QVariant read(int a) override
    {
        ++reads;
        return a == address ? answer : QVariant();
    }

    bool write(int a, QVariant value) override
    {
        ++writes;
        if (!takesWrites || a != address)
            return SimulationReader::write(a, value);
        answer = value;
        return true;
    }

    QVariant getType(int a) override
    {
        ++typeQueries;
        if (!answersType)
            return SimulationReader::getType(a);
        return a == address ? answer : QVariant();
    }

    int address;
    QVariant answer;
    bool takesWrites;
    bool answersType;
    int reads = 0;
    int writes = 0;
    int typeQueries = 0;
};

class TestChamber : public ChamberSimulation
{
public:
    TestChamber() : ChamberSimulation(QSharedPointer<zelmor::domain::types::ChamberTypeData>()) {}
    bool start() override { return true; }
    int getProtocolId() const override { return 0; }
    SimulationReader* reader() const { return simulationReader.data(); }
};

// A child in a table row as "address:answer:w:t", where w/t mark a child
// that takes writes / answers getType.
using Children = QList<QSharedPointer<CountingReader>>;

Children makeChildren(QStringList const& texts, SimulationDevice& device)
{
    Children children;
    for (QString const& text : texts) {
        QStringList const parts = text.split(QLatin1Char(':'));
        auto child = QSharedPointer<CountingReader>::create(parts.at(0).toInt(), QVariant(parts.at(1).toInt()),
                                                            parts.contains(QStringLiteral("w")),
                                                            parts.contains(QStringLiteral("t")));
        device.add(child);
        children.append(child);
    }
    return children;
}

} // namespace

class TestSimulationDevice : public QObject
{
    Q_OBJECT

private slots:
    void firstAnswerWins_data();
    void firstAnswerWins();
    void nullChildIsPassedOver();
    void floatValueHasNoTypeButIsRead();
    void deviceOfValuesKeepsUnaskedChildrenStill();
    void chamberDefaults();
    void replacingTheReaderReleasesTheFormerOne();
};

void TestSimulationDevice::firstAnswerWins_data()
{
    QTest::addColumn<QStringList>("children");
    QTest::addColumn<int>("address");
    QTest::addColumn<QVariant>("read");
    QTest::addColumn<QVariant>("type");
    QTest::addColumn<bool>("written");
    QTest::addColumn<QList<int>>("readsAsked");
    QTest::addColumn<QList<int>>("writesAsked");

    QTest::newRow("empty") << QStringList() << 1 << QVariant() << QVariant() << false << QList<int>() << QList<int>();
    QTest::newRow("no owner") << QStringList{"1:10:w:t", "2:20:w:t"} << 3 << QVariant() << QVariant() << false
                              << QList<int>{1, 1} << QList<int>{1, 1};
    QTest::newRow("second owns") << QStringList{"1:10:w:t", "2:20:w:t", "3:30:w:t"} << 2 << QVariant(20)
                                 << QVariant(20) << true << QList<int>{1, 1, 0} << QList<int>{1, 1, 0};
    QTest::newRow("claimed twice") << QStringList{"5:50:w:t", "5:51:w:t"} << 5 << QVariant(50) << QVariant(50) << true
                                   << QList<int>{1, 0} << QList<int>{1, 0};
    // The first owner refuses writes (default write): the walk goes on.
    QTest::newRow("read-only first owner") << QStringList{"5:50:t", "5:51:w:t"} << 5 << QVariant(50) << QVariant(50)
                                           << true << QList<int>{1, 0} << QList<int>{1, 1};
    // The first owner has no type: getType goes on to the second.
    QTest::newRow("untyped first owner") << QStringList{"5:50:w", "5:51:w:t"} << 5 << QVariant(50) << QVariant(51)
                                         << true << QList<int>{1, 0} << QList<int>{1, 0};
    QTest::newRow("untyped only owner") << QStringList{"5:50:w"} << 5 << QVariant(50) << QVariant() << true
                                        << QList<int>{1} << QList<int>{1};
}

void TestSimulationDevice::firstAnswerWins()
{
    QFETCH(QStringList, children);
    QFETCH(int, address);
    QFETCH(QVariant, read);
    QFETCH(QVariant, type);
    QFETCH(bool, written);
    QFETCH(QList<int>, readsAsked);
    QFETCH(QList<int>, writesAsked);

    SimulationDevice device;
    Children const made = makeChildren(children, device);

    QCOMPARE(device.read(address), read);
    QCOMPARE(device.getType(address), type);
    QCOMPARE(device.write(address, 99), written);

    for (int i = 0; i < made.size(); ++i) {
        QCOMPARE(made.at(i)->reads, readsAsked.at(i));
        QCOMPARE(made.at(i)->writes, writesAsked.at(i));
    }
    // A value goes to one child at most.
    int taken = 0;
    for (auto const& child : made)
        taken += child->answer == QVariant(99) ? 1 : 0;
    QCOMPARE(taken, written ? 1 : 0);
}

void TestSimulationDevice::nullChildIsPassedOver()
{
    SimulationDevice device;
    device.add(QSharedPointer<SimulationReader>());
    device.add(QSharedPointer<SimulationValueInt>::create(1, 2, 10.0f, 0x10, 0x11));
    QCOMPARE(device.read(0x10), QVariant(2));
    QCOMPARE(device.getType(0x10), QVariant(2));
    QVERIFY(device.write(0x10, 3));
    QVERIFY(!device.write(0x12, 3));
}

void TestSimulationDevice::floatValueHasNoTypeButIsRead()
{
    SimulationDevice device;
    device.add(QSharedPointer<SimulationValueFloat>::create(1.0f, 2.0f, 10.0f, 0x10, 0x11));
    QCOMPARE(device.read(0x10), QVariant(2.0f));
    QCOMPARE(device.read(0x11), QVariant(1.0f));
    QVERIFY(!device.getType(0x10).isValid());
    QVERIFY(!device.getType(0x11).isValid());
}

void TestSimulationDevice::deviceOfValuesKeepsUnaskedChildrenStill()
{
    // Two values on one current address: the one behind is never advanced.
    auto first = QSharedPointer<SimulationValueInt>::create(0, 100, 10.0f, 0x10, 0x11);
    auto second = QSharedPointer<SimulationValueInt>::create(0, 100, 10.0f, 0x20, 0x11);
    SimulationDevice device;
    device.add(first);
    device.add(second);
    QDateTime const old = QDateTime::currentDateTime().addSecs(-100);
    first->setLastRequest(old);
    second->setLastRequest(old);

    QCOMPARE(device.read(0x11), QVariant(100));
    QCOMPARE(second->getCurrentValue(), 0);
    QCOMPARE(second->getLastRequest(), old);
}

void TestSimulationDevice::chamberDefaults()
{
    TestChamber chamber;
    QVERIFY(chamber.getIpAddress().isEmpty());
    QCOMPARE(chamber.getModbusAddress(), 0);
    QVERIFY(chamber.getSimulationReader().isNull());
    QVERIFY(chamber.getChamberType().isNull());
}

void TestSimulationDevice::replacingTheReaderReleasesTheFormerOne()
{
    TestChamber chamber;
    QWeakPointer<SimulationReader> first;
    {
        auto device = QSharedPointer<SimulationDevice>::create();
        device->add(QSharedPointer<SimulationValueInt>::create(1, 1, 10.0f, 0x10, 0x11));
        first = device;
        chamber.setSimulationReader(device);
    }
    QVERIFY(!first.isNull());
    QCOMPARE(chamber.reader()->read(0x10), QVariant(1));

    auto second = QSharedPointer<SimulationValueInt>::create(2, 2, 10.0f, 0x30, 0x31);
    chamber.setSimulationReader(second);
    QVERIFY(first.isNull());
    QCOMPARE(chamber.getSimulationReader(), QSharedPointer<SimulationReader>(second));
    // No fallback to the former reader.
    QVERIFY(!chamber.reader()->read(0x10).isValid());
    QCOMPARE(chamber.reader()->read(0x30), QVariant(2));
}

QTEST_GUILESS_MAIN(TestSimulationDevice)
#include "tst_simulationdevice.moc"
