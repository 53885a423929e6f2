#include "Tools/Simulation/Kv1ProgramOption.h"

#include <QtTest>

using zelmor::simulation::Kv1ProgramOption;

namespace {

QVariant uint32(quint32 value)
{
    return QVariant::fromValue(value);
}

} // namespace

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
        QTest::newRow("4207") << 4207 << int(QMetaType::UChar);
        QTest::newRow("4231 run time") << 4231 << int(QMetaType::UInt);
        QTest::newRow("4239") << 4239 << int(QMetaType::UInt);
        QTest::newRow("5465") << 5465 << int(QMetaType::UChar);
        QTest::newRow("6658") << 6658 << int(QMetaType::Short);
        QTest::newRow("6662") << 6662 << int(QMetaType::SChar);
        QTest::newRow("6669") << 6669 << int(QMetaType::Float);
        QTest::newRow("6676") << 6676 << int(QMetaType::UChar);
        QTest::newRow("6695") << 6695 << int(QMetaType::UInt);
        QTest::newRow("6697 last") << 6697 << int(QMetaType::UShort);
        for (int address : {-1, 4203, 4208, 4232, 5464, 6655, 6664, 6672, 6689, 6698})
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

    void command_data()
    {
        QTest::addColumn<QVariantList>("commands");
        QTest::addColumn<QVariant>("first");
        QTest::addColumn<QVariant>("second");

        QVariant const start = QVariant(1024);
        QTest::newRow("start") << QVariantList{start} << uint32(600) << uint32(300);
        QTest::newRow("start then 2048") << QVariantList{start, 2048} << uint32(0) << uint32(0);
        QTest::newRow("start then 4096") << QVariantList{start, 4096} << uint32(0) << uint32(0);
        QTest::newRow("start then 0") << QVariantList{start, 0} << uint32(0) << uint32(0);
        QTest::newRow("start then 2049 changes nothing") << QVariantList{start, 2049} << uint32(600) << uint32(300);
        QTest::newRow("start then 6144 changes nothing") << QVariantList{start, 0x1800} << uint32(600) << uint32(300);
        QTest::newRow("start then text is 0") << QVariantList{start, QStringLiteral("stop")} << uint32(0) << uint32(0);
        // Only the low 16 bits are compared; the register keeps the whole value.
        QTest::newRow("0x10400 is a start") << QVariantList{0x10400} << uint32(600) << uint32(300);
        QTest::newRow("1025 is no start") << QVariantList{1025} << uint32(0) << uint32(0);
    }

    void command()
    {
        QFETCH(QVariantList, commands);
        QFETCH(QVariant, first);
        QFETCH(QVariant, second);

        Kv1ProgramOption image;
        for (QVariant const& command : commands)
            QVERIFY(image.write(6690, command));
        QCOMPARE(image.read(4231).userType(), first.userType());
        QCOMPARE(image.read(4231), first);
        QCOMPARE(image.read(4233).userType(), second.userType());
        QCOMPARE(image.read(4233), second);
        QCOMPARE(image.read(6690), commands.last());
    }
};

QTEST_GUILESS_MAIN(TestKv1ProgramOption)
#include "tst_kv1programoption.moc"
