#include "Tools/Simulation/Pl3ProgramOption.h"
#include "Tools/Simulation/Pl4ProgramOption.h"

#include <QMap>
#include <QtTest>

#include <climits>

using zelmor::simulation::Pl3ProgramOption;
using zelmor::simulation::Pl4ProgramOption;

namespace {

// The memory as the controller documents it: the header, then 30 section
// records of 12 addresses (four floats, a double word, two words).
QMap<int, QMetaType::Type> expectedCells()
{
    QMap<int, QMetaType::Type> cells{
        {0xAC00, QMetaType::UShort}, {0xAC01, QMetaType::UShort}, {0xAC02, QMetaType::Short},
        {0xAC03, QMetaType::UShort}, {0xAC04, QMetaType::UShort}, {0xAC05, QMetaType::UShort},
        {0xAC06, QMetaType::UShort}, {0xAC07, QMetaType::UShort}, {0xAC08, QMetaType::UShort},
        {0xAC09, QMetaType::Int},
    };
    for (int record = 0xAC0B; record <= 0xAD67; record += 12) {
        cells.insert(record, QMetaType::Float);
        cells.insert(record + 2, QMetaType::Float);
        cells.insert(record + 4, QMetaType::Float);
        cells.insert(record + 6, QMetaType::Float);
        cells.insert(record + 8, QMetaType::UInt);
        cells.insert(record + 10, QMetaType::UShort);
        cells.insert(record + 11, QMetaType::UShort);
    }
    return cells;
}

} // namespace

class TestPl4ProgramOption : public QObject
{
    Q_OBJECT

private slots:
    void expectedTable()
    {
        auto const cells = expectedCells();
        QCOMPARE(cells.size(), 220);
        QCOMPARE(cells.lastKey(), 44402);
        QCOMPARE(cells.value(44391), QMetaType::Float);
    }

    // Every address around the block: a cell of the documented type holding
    // 0, or nothing at all.
    void registerMap()
    {
        auto const cells = expectedCells();
        Pl4ProgramOption image;
        for (int address = 43900; address < 44600; ++address) {
            QVariant const value = image.read(address);
            auto const expected = cells.constFind(address);
            if (expected == cells.constEnd()) {
                QVERIFY2(!value.isValid(), qPrintable(QString::number(address)));
                QVERIFY2(!image.write(address, QVariant(1)), qPrintable(QString::number(address)));
                QVERIFY2(!image.read(address).isValid(), qPrintable(QString::number(address)));
                continue;
            }
            QCOMPARE(value.userType(), int(*expected));
            QCOMPARE(value.toDouble(), 0.0);
            QCOMPARE(image.getType(address), QVariant());
        }
    }

    // Every cell reads back what was written, type included.
    void readBack()
    {
        auto const cells = expectedCells();
        Pl4ProgramOption image;
        for (auto it = cells.constBegin() + 1; it != cells.constEnd(); ++it)
            QVERIFY(image.write(it.key(), QVariant(float(it.key()) + 0.5f)));
        for (auto it = cells.constBegin() + 1; it != cells.constEnd(); ++it)
            QCOMPARE(image.read(it.key()), QVariant(float(it.key()) + 0.5f));
    }

    void write_data()
    {
        QTest::addColumn<int>("address");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<QVariant>("readBack");

        QTest::newRow("7 to 44032 keeps 3") << 44032 << QVariant::fromValue(quint16(7)) << true << QVariant(3);
        QTest::newRow("4 to 44032 keeps 0") << 44032 << QVariant(4) << true << QVariant(0);
        QTest::newRow("2 to 44032") << 44032 << QVariant(2) << true << QVariant(2);
        QTest::newRow("-1 to 44032") << 44032 << QVariant(-1) << true << QVariant(3);
        QTest::newRow("float to 44032") << 44032 << QVariant(1.0f) << true << QVariant(1);
        QTest::newRow("text to 44032") << 44032 << QVariant(QStringLiteral("seven")) << true << QVariant(0);
        QTest::newRow("number text to 44032") << 44032 << QVariant(QStringLiteral("7")) << true << QVariant(3);
        QTest::newRow("invalid to 44032") << 44032 << QVariant() << true << QVariant(0);
        QTest::newRow("float to 44043") << 44043 << QVariant(1.5f) << true << QVariant(1.5f);
        QTest::newRow("upper half 44044") << 44044 << QVariant(1.5f) << false << QVariant();
        QTest::newRow("gap 44042") << 44042 << QVariant(1) << false << QVariant();
        QTest::newRow("int to 44041") << 44041 << QVariant(-100000) << true << QVariant(-100000);
        QTest::newRow("last cell 44402") << 44402 << QVariant::fromValue(quint16(9)) << true
                                         << QVariant::fromValue(quint16(9));
        QTest::newRow("beyond 44403") << 44403 << QVariant(1) << false << QVariant();
        QTest::newRow("before 44031") << 44031 << QVariant(1) << false << QVariant();
        QTest::newRow("text to a float cell") << 44045 << QVariant(QStringLiteral("x")) << true
                                              << QVariant(QStringLiteral("x"));
        QTest::newRow("invalid to a word") << 44053 << QVariant() << true << QVariant();
    }

    void write()
    {
        QFETCH(int, address);
        QFETCH(QVariant, value);
        QFETCH(bool, accepted);
        QFETCH(QVariant, readBack);

        Pl4ProgramOption image;
        QCOMPARE(image.write(address, value), accepted);
        QVariant const result = image.read(address);
        QCOMPARE(result.userType(), readBack.userType());
        QCOMPARE(result, readBack);
    }

    void pl3OwnsNothing_data()
    {
        QTest::addColumn<int>("address");
        for (int address : {0, 1, -1, 4204, 6690, 44032, 44043, 44402, INT_MAX, INT_MIN})
            QTest::addRow("%d", address) << address;
    }

    void pl3OwnsNothing()
    {
        QFETCH(int, address);
        Pl3ProgramOption image;
        QVERIFY(!image.read(address).isValid());
        QVERIFY(!image.write(address, QVariant(1)));
        QVERIFY(!image.write(address, QVariant()));
        QVERIFY(!image.read(address).isValid());
        QVERIFY(!image.getType(address).isValid());
    }
};

QTEST_GUILESS_MAIN(TestPl4ProgramOption)
#include "tst_pl4programoption.moc"
