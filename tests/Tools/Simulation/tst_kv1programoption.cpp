#include "Tools/Simulation/Kv1ProgramOption.h"

#include <QtTest>

using zelmor::simulation::Kv1ProgramOption;

namespace {

struct Cell
{
    int address;
    QMetaType::Type type;
};

// The memory as the controller documents it.
const Cell cells_[] = {
    {0x106C, QMetaType::UShort},
    {0x106D, QMetaType::UChar}, {0x106E, QMetaType::UChar}, {0x106F, QMetaType::UChar},
    {0x1087, QMetaType::UInt}, {0x1089, QMetaType::UInt}, {0x108B, QMetaType::UInt},
    {0x108D, QMetaType::UInt}, {0x108F, QMetaType::UInt},
    {0x1559, QMetaType::UChar},
    {0x1A00, QMetaType::UShort}, {0x1A01, QMetaType::UShort}, {0x1A02, QMetaType::Short},
    {0x1A03, QMetaType::SChar}, {0x1A04, QMetaType::SChar}, {0x1A05, QMetaType::UChar},
    {0x1A06, QMetaType::SChar},
    {0x1A07, QMetaType::Float}, {0x1A09, QMetaType::Float}, {0x1A0B, QMetaType::Float},
    {0x1A0D, QMetaType::Float},
    {0x1A0F, QMetaType::UInt},
    {0x1A11, QMetaType::UChar}, {0x1A12, QMetaType::UChar}, {0x1A13, QMetaType::UChar},
    {0x1A14, QMetaType::UChar},
    {0x1A22, QMetaType::UShort}, {0x1A23, QMetaType::UShort}, {0x1A24, QMetaType::UShort},
    {0x1A25, QMetaType::UInt}, {0x1A27, QMetaType::UInt},
    {0x1A29, QMetaType::UShort},
};

QVariant uint32(quint32 value)
{
    return QVariant::fromValue(value);
}

} // namespace

class TestKv1ProgramOption : public QObject
{
    Q_OBJECT

private slots:
    void cellTable()
    {
        QCOMPARE(int(sizeof(cells_) / sizeof(cells_[0])), 32);
    }

    void registerMap_data()
    {
        QTest::addColumn<int>("address");
        QTest::addColumn<int>("type");
        QTest::addColumn<QVariant>("written");
        QTest::addColumn<QVariant>("readBack");

        for (auto const& cell : cells_) {
            // 6656 answers a constant; 6690 is the command register, and 77 is no command.
            QVariant const written = QVariant::fromValue(qlonglong(77));
            QVariant const readBack = cell.address == 6656 ? QVariant::fromValue(quint16(2)) : written;
            QTest::addRow("%d", cell.address) << cell.address << int(cell.type) << written << readBack;
        }
    }

    void registerMap()
    {
        QFETCH(int, address);
        QFETCH(int, type);
        QFETCH(QVariant, written);
        QFETCH(QVariant, readBack);

        Kv1ProgramOption image;
        QVariant const fresh = image.read(address);
        QCOMPARE(fresh.userType(), type);
        if (address == 6656)
            QCOMPARE(fresh, QVariant::fromValue(quint16(2)));
        else
            QCOMPARE(fresh.toDouble(), 0.0);
        QCOMPARE(image.getType(address), QVariant());

        QVERIFY(image.write(address, written));
        QVariant const value = image.read(address);
        QCOMPARE(value.userType(), readBack.userType());
        QCOMPARE(value, readBack);
    }

    void noCell_data()
    {
        QTest::addColumn<int>("address");
        for (int address : {0, -1, 4203, 4208, 4230, 4232, 4234, 4236, 4238, 4240, 5464, 5466,
                            6655, 6664, 6666, 6668, 6670, 6672, 6677, 6689, 6694, 6696, 6698,
                            0x7FFFFFFF})
            QTest::addRow("%d", address) << address;
    }

    void noCell()
    {
        QFETCH(int, address);
        Kv1ProgramOption image;
        QCOMPARE(image.read(address), QVariant());
        QVERIFY(!image.write(address, QVariant(1)));
        QCOMPARE(image.read(address), QVariant());
    }

    void constantRegister()
    {
        Kv1ProgramOption image;
        QVERIFY(image.write(6656, QVariant(9)));
        QVariant const value = image.read(6656);
        QCOMPARE(value.userType(), int(QMetaType::UShort));
        QCOMPARE(value, QVariant::fromValue(quint16(2)));
    }

    void command_data()
    {
        QTest::addColumn<QVariantList>("commands");
        QTest::addColumn<QVariant>("first");
        QTest::addColumn<QVariant>("second");

        QVariant const start = QVariant(1024);
        QTest::newRow("start") << QVariantList{start} << uint32(600) << uint32(300);
        QTest::newRow("start as ushort") << QVariantList{QVariant::fromValue(quint16(0x0400))}
                                         << uint32(600) << uint32(300);
        QTest::newRow("start then 2048") << QVariantList{start, 2048} << uint32(0) << uint32(0);
        QTest::newRow("start then 4096") << QVariantList{start, 4096} << uint32(0) << uint32(0);
        QTest::newRow("start then 0") << QVariantList{start, 0} << uint32(0) << uint32(0);
        QTest::newRow("start then 2049") << QVariantList{start, 2049} << uint32(600) << uint32(300);
        QTest::newRow("start then 3072") << QVariantList{start, 0x0C00} << uint32(600) << uint32(300);
        QTest::newRow("start then 6144") << QVariantList{start, 0x1800} << uint32(600) << uint32(300);
        QTest::newRow("start then 0x10800") << QVariantList{start, 0x10800} << uint32(0) << uint32(0);
        QTest::newRow("start then 0x20000") << QVariantList{start, 0x20000} << uint32(0) << uint32(0);
        QTest::newRow("start then text") << QVariantList{start, QStringLiteral("stop")} << uint32(0) << uint32(0);
        QTest::newRow("start then invalid") << QVariantList{start, QVariant()} << uint32(0) << uint32(0);
        QTest::newRow("0x10400 is a start") << QVariantList{0x10400} << uint32(600) << uint32(300);
        QTest::newRow("-64512 is a start") << QVariantList{-64512} << uint32(600) << uint32(300);
        QTest::newRow("start as text") << QVariantList{QStringLiteral("1024")} << uint32(600) << uint32(300);
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
        // The register keeps the whole value as written.
        QCOMPARE(image.read(6690), commands.last());
    }

    // A command that means nothing leaves what was written to the run-time cells.
    void otherCommandKeepsCells()
    {
        Kv1ProgramOption image;
        QVERIFY(image.write(4231, QVariant(5)));
        QVERIFY(image.write(4233, QVariant(6)));
        QVERIFY(image.write(6690, QVariant(2049)));
        QCOMPARE(image.read(4231), QVariant(5));
        QCOMPARE(image.read(4233), QVariant(6));
        QCOMPARE(image.read(4235), uint32(0));
    }
};

QTEST_GUILESS_MAIN(TestKv1ProgramOption)
#include "tst_kv1programoption.moc"
