#include "Tools/Simulation/Kv1ProgramOption.h"
#include "Tools/Simulation/Pl3ProgramOption.h"
#include "Tools/Simulation/Pl4ProgramOption.h"

#include <QtTest>

using namespace zelmor::simulation;

namespace {

QSharedPointer<SimulationReader> makeImage(const QByteArray& name)
{
    if (name == "KV1")
        return QSharedPointer<Kv1ProgramOption>::create();
    if (name == "PL4")
        return QSharedPointer<Pl4ProgramOption>::create();
    return QSharedPointer<Pl3ProgramOption>::create();
}

} // namespace

// The program memory images of KV1, PL3 and PL4 controllers.
class TestProgramOptions : public QObject
{
    Q_OBJECT

private slots:
    // Representative cells, the upper halves of 32-bit pairs and the edges of
    // the blocks: a fresh cell holds 0 in its type (type 0: no cell, a write
    // is refused), then a write and what reads back.
    void registerMap_data()
    {
        QTest::addColumn<QByteArray>("image");
        QTest::addColumn<int>("address");
        QTest::addColumn<int>("type");
        QTest::addColumn<QVariant>("written");
        QTest::addColumn<QVariant>("readBack");

        auto row = [](const char* image, int address, int type, const QVariant& written, const QVariant& readBack) {
            QTest::addRow("%s %d <- %s", image, address, qPrintable(written.toString()))
                << QByteArray(image) << address << type << written << readBack;
        };
        const QVariant none;
        const auto word = [](quint16 value) { return QVariant::fromValue(value); };
        // A cell takes the written variant with its type.
        row("KV1", 4204, QMetaType::UShort, -3, -3);
        row("KV1", 4231, QMetaType::UInt, 7u, 7u);
        row("KV1", 6662, QMetaType::SChar, QVariant::fromValue(qlonglong(77)), QVariant::fromValue(qlonglong(77)));
        row("KV1", 6669, QMetaType::Float, "x", "x");
        for (int address : {4203, 4232, 6664, 6698})
            row("KV1", address, 0, 1, none);
        // 44032 keeps the integer form masked with 3, as an Int.
        row("PL4", 44032, QMetaType::UShort, word(7), 3);
        row("PL4", 44032, QMetaType::UShort, 4, 0);
        row("PL4", 44032, QMetaType::UShort, "seven", 0);
        row("PL4", 44041, QMetaType::Int, -100000, -100000);
        row("PL4", 44043, QMetaType::Float, 1.5f, 1.5f);
        row("PL4", 44051, QMetaType::UInt, 7u, 7u);
        row("PL4", 44391, QMetaType::Float, 3.5f, 3.5f);
        row("PL4", 44402, QMetaType::UShort, word(9), word(9));
        for (int address : {44031, 44042, 44044, 44052, 44403})
            row("PL4", address, 0, 1, none);
        for (int address : {-1, 6690, 44032, 44043})
            row("PL3", address, 0, 1, none);
    }

    void registerMap()
    {
        QFETCH(QByteArray, image);
        QFETCH(int, address);
        QFETCH(int, type);
        QFETCH(QVariant, written);
        QFETCH(QVariant, readBack);

        const auto reader = makeImage(image);
        const QVariant fresh = reader->read(address);
        QCOMPARE(fresh.userType(), type);
        QCOMPARE(fresh.toDouble(), 0.0);
        QVERIFY(!reader->getType(address).isValid());
        QCOMPARE(reader->write(address, written), type != 0);
        const QVariant result = reader->read(address);
        QCOMPARE(result.userType(), readBack.userType());
        QCOMPARE(result, readBack);
    }

    // KV1: 6656 answers 2 whatever was written there.
    void kv1ConstantRegister()
    {
        Kv1ProgramOption image;
        QVERIFY(image.write(6656, QVariant(9)));
        QCOMPARE(image.read(6656).userType(), int(QMetaType::UShort));
        QCOMPARE(image.read(6656), QVariant::fromValue(quint16(2)));
    }

    // KV1: 1024 sets the run-time cells to 600 and 300, 0, 2048 and 4096
    // clear them.
    void kv1Command_data()
    {
        QTest::addColumn<QVariantList>("commands");
        QTest::addColumn<bool>("started");

        QTest::newRow("start") << QVariantList{1024} << true;
        QTest::newRow("start then 2048") << QVariantList{1024, 2048} << false;
        QTest::newRow("start then 4096") << QVariantList{1024, 4096} << false;
        QTest::newRow("start then 0") << QVariantList{1024, 0} << false;
        QTest::newRow("start then 2049 changes nothing") << QVariantList{1024, 2049} << true;
        QTest::newRow("start then text is 0") << QVariantList{1024, QStringLiteral("stop")} << false;
        // Only the low 16 bits are compared; the register keeps the whole value.
        QTest::newRow("0x10400 is a start") << QVariantList{0x10400} << true;
        QTest::newRow("1025 is no start") << QVariantList{1025} << false;
    }

    void kv1Command()
    {
        QFETCH(QVariantList, commands);
        QFETCH(bool, started);

        Kv1ProgramOption image;
        for (const QVariant& command : commands)
            QVERIFY(image.write(6690, command));
        QCOMPARE(image.read(4231), QVariant(started ? 600u : 0u));
        QCOMPARE(image.read(4233), QVariant(started ? 300u : 0u));
        QVERIFY(image.read(4231).userType() == QMetaType::UInt && image.read(4233).userType() == QMetaType::UInt);
        QCOMPARE(image.read(6690), commands.last());
    }
};

QTEST_GUILESS_MAIN(TestProgramOptions)
#include "tst_programoptions.moc"
