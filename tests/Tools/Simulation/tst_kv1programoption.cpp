#include "Tools/Simulation/Kv1ProgramOption.h"

#include <QtTest>

using zelmor::simulation::Kv1ProgramOption;

class TestKv1ProgramOption : public QObject
{
    Q_OBJECT

private slots:
    // A few cells of each block, read fresh and after a write, and addresses
    // without a cell (0 type): the upper halves of 32-bit pairs and the edges.
    void registerMap_data()
    {
        QTest::addColumn<int>("address");
        QTest::addColumn<int>("type");

        QTest::newRow("4204") << 4204 << int(QMetaType::UShort);
        QTest::newRow("4231 run time") << 4231 << int(QMetaType::UInt);
        QTest::newRow("5465") << 5465 << int(QMetaType::UChar);
        QTest::newRow("6658") << 6658 << int(QMetaType::Short);
        QTest::newRow("6662") << 6662 << int(QMetaType::SChar);
        QTest::newRow("6669") << 6669 << int(QMetaType::Float);
        QTest::newRow("6697 last") << 6697 << int(QMetaType::UShort);
        for (int address : {4203, 4208, 4232, 6664, 6698})
            QTest::addRow("%d none", address) << address << 0;
    }

    void registerMap()
    {
        QFETCH(int, address);
        QFETCH(int, type);

        Kv1ProgramOption image;
        QVariant const fresh = image.read(address);
        QCOMPARE(fresh.userType(), type);
        QCOMPARE(fresh.toDouble(), 0.0);
        QVERIFY(!image.getType(address).isValid());

        QVariant const written = QVariant::fromValue(qlonglong(77));
        QCOMPARE(image.write(address, written), type != 0);
        QCOMPARE(image.read(address), type != 0 ? written : QVariant());
        QCOMPARE(image.read(address).userType(), type != 0 ? written.userType() : 0);
    }

    // 6656 answers 2 whatever was written there.
    void constantRegister()
    {
        Kv1ProgramOption image;
        QVERIFY(image.write(6656, QVariant(9)));
        QCOMPARE(image.read(6656).userType(), int(QMetaType::UShort));
        QCOMPARE(image.read(6656), QVariant::fromValue(quint16(2)));
    }

    // 1024 sets the run-time cells to 600 and 300, 0, 2048 and 4096 clear them.
    void command_data()
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

    void command()
    {
        QFETCH(QVariantList, commands);
        QFETCH(bool, started);

        Kv1ProgramOption image;
        for (QVariant const& command : commands)
            QVERIFY(image.write(6690, command));
        QCOMPARE(image.read(4231), QVariant(started ? 600u : 0u));
        QCOMPARE(image.read(4233), QVariant(started ? 300u : 0u));
        QVERIFY(image.read(4231).userType() == QMetaType::UInt && image.read(4233).userType() == QMetaType::UInt);
        QCOMPARE(image.read(6690), commands.last());
    }
};

QTEST_GUILESS_MAIN(TestKv1ProgramOption)
#include "tst_kv1programoption.moc"
