#include "Tools/Simulation/ChamberSimulation.h"
#include "Tools/Simulation/SimulationDevice.h"
#include "Tools/Simulation/SimulationValueInt.h"

#include <QtTest>

using namespace zelmor::simulation;

namespace {

// A child that owns one address and counts how often it is read. Made from
// "address:answer" plus ":w" if it takes writes and ":t" if it answers getType.
class CountingReader : public SimulationReader
{
public:
    explicit CountingReader(const QString& text)
        : parts(text.split(':'))
        , address(parts.at(0).toInt())
        , answer(parts.at(1).toInt())
    {
    }

    QVariant read(int a) override
    {
        ++reads;
        return a == address ? answer : QVariant();
    }

    bool write(int a, QVariant value) override
    {
        if (!parts.contains("w") || a != address)
            return SimulationReader::write(a, value);
        answer = value;
        return true;
    }

    QVariant getType(int a) override
    {
        return parts.contains("t") && a == address ? answer : SimulationReader::getType(a);
    }

    const QStringList parts;
    const int address;
    QVariant answer;
    int reads = 0;
};

class TestChamber : public ChamberSimulation
{
public:
    TestChamber()
        : ChamberSimulation(QSharedPointer<zelmor::domain::types::ChamberTypeData>())
    {
    }
    bool start() override { return true; }
    int getProtocolId() const override { return 0; }
};

} // namespace

class TestSimulationDevice : public QObject
{
    Q_OBJECT

private slots:
    // What the device answers, how many children (from the first) a read
    // asked, and which child took a written value (-1: none).
    void firstAnswerWins_data()
    {
        QTest::addColumn<QStringList>("children");
        QTest::addColumn<int>("address");
        QTest::addColumn<QVariant>("read");
        QTest::addColumn<QVariant>("type");
        QTest::addColumn<int>("readsAsked");
        QTest::addColumn<int>("takenBy");

        auto row = [](const char* name, const QStringList& children, int address, const QVariant& read,
                      const QVariant& type, int readsAsked, int takenBy) {
            QTest::newRow(name) << children << address << read << type << readsAsked << takenBy;
        };
        row("empty", {}, 1, QVariant(), QVariant(), 0, -1);
        row("no owner", {"1:10:w:t", "2:20:w:t"}, 3, QVariant(), QVariant(), 2, -1);
        // The children behind the one that answered are not asked.
        row("claimed twice", {"5:50:w:t", "5:51:w:t"}, 5, 50, 50, 1, 0);
        // The first owner refuses writes (default write): the walk goes on.
        row("read-only first owner", {"5:50:t", "5:51:w:t"}, 5, 50, 50, 1, 1);
        // The first owner has no type: getType goes on to the second, or is invalid.
        row("untyped first owner", {"5:50:w", "5:51:w:t"}, 5, 50, 51, 1, 0);
        row("untyped only owner", {"5:50:w"}, 5, 50, QVariant(), 1, 0);
    }

    void firstAnswerWins()
    {
        QFETCH(QStringList, children);
        QFETCH(int, address);
        QFETCH(QVariant, read);
        QFETCH(QVariant, type);
        QFETCH(int, readsAsked);
        QFETCH(int, takenBy);

        SimulationDevice device;
        QList<QSharedPointer<CountingReader>> made;
        for (const QString& text : children) {
            made << QSharedPointer<CountingReader>::create(text);
            device.add(made.last());
        }
        QCOMPARE(device.read(address), read);
        QCOMPARE(device.getType(address), type);
        QCOMPARE(device.write(address, 99), takenBy >= 0);
        // A value goes to one child at most.
        for (int i = 0; i < made.size(); ++i) {
            QCOMPARE(made.at(i)->reads, i < readsAsked ? 1 : 0);
            QCOMPARE(made.at(i)->answer == QVariant(99), i == takenBy);
        }
    }

    void replacingTheReaderReleasesTheFormerOne()
    {
        TestChamber chamber;
        QVERIFY(chamber.getSimulationReader().isNull());
        auto first = QSharedPointer<SimulationValueInt>::create(1, 1, 10.0f, 0x10, 0x11);
        const QWeakPointer<SimulationReader> watch = first;
        chamber.setSimulationReader(first);
        first.reset();
        QCOMPARE(chamber.getSimulationReader()->read(0x10), QVariant(1));

        chamber.setSimulationReader(QSharedPointer<SimulationValueInt>::create(2, 2, 10.0f, 0x30, 0x31));
        QVERIFY(watch.isNull());
        // No fallback to the former reader.
        QVERIFY(!chamber.getSimulationReader()->read(0x10).isValid());
        QCOMPARE(chamber.getSimulationReader()->read(0x30), QVariant(2));
    }
};

QTEST_GUILESS_MAIN(TestSimulationDevice)
#include "tst_simulationdevice.moc"
