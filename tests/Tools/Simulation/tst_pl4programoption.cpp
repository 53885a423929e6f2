#include "Tools/Simulation/Pl3ProgramOption.h"
#include "Tools/Simulation/Pl4ProgramOption.h"

#include <QtTest>

#include <climits>

using zelmor::simulation::Pl3ProgramOption;
using zelmor::simulation::Pl4ProgramOption;

class TestPl4ProgramOption : public QObject
{
    Q_OBJECT

private slots:
    // The block's edges and one section record: a fresh cell of its type
    // holding 0 (type 0: no cell), then a write and what reads back.
    void registerMap_data()
    {
        QTest::addColumn<int>("address");
        QTest::addColumn<int>("type");
        QTest::addColumn<QVariant>("written");
        QTest::addColumn<QVariant>("readBack");

        QVariant const nothing;
        // 44032 keeps the integer form masked with 3, as an Int.
        QTest::newRow("44032 7 keeps 3") << 44032 << int(QMetaType::UShort) << QVariant::fromValue(quint16(7))
                                         << QVariant(3);
        QTest::newRow("44032 4 keeps 0") << 44032 << int(QMetaType::UShort) << QVariant(4) << QVariant(0);
        QTest::newRow("44032 text is 0") << 44032 << int(QMetaType::UShort) << QVariant(QStringLiteral("seven"))
                                         << QVariant(0);
        QTest::newRow("44041") << 44041 << int(QMetaType::Int) << QVariant(-100000) << QVariant(-100000);
        QTest::newRow("44042 gap") << 44042 << 0 << QVariant(1) << nothing;
        QTest::newRow("44043 first float") << 44043 << int(QMetaType::Float) << QVariant(1.5f) << QVariant(1.5f);
        QTest::newRow("44044 upper half") << 44044 << 0 << QVariant(1.5f) << nothing;
        QTest::newRow("44051 double word") << 44051 << int(QMetaType::UInt) << QVariant(7u) << QVariant(7u);
        QTest::newRow("44391 last record") << 44391 << int(QMetaType::Float) << QVariant(3.5f) << QVariant(3.5f);
        QTest::newRow("44402 last cell") << 44402 << int(QMetaType::UShort) << QVariant::fromValue(quint16(9))
                                         << QVariant::fromValue(quint16(9));
        QTest::newRow("44403 beyond") << 44403 << 0 << QVariant(1) << nothing;
    }

    void registerMap()
    {
        QFETCH(int, address);
        QFETCH(int, type);
        QFETCH(QVariant, written);
        QFETCH(QVariant, readBack);

        Pl4ProgramOption image;
        QVariant const fresh = image.read(address);
        QCOMPARE(fresh.userType(), type);
        QCOMPARE(fresh.toDouble(), 0.0);
        QVERIFY(!image.getType(address).isValid());

        QCOMPARE(image.write(address, written), type != 0);
        QVariant const result = image.read(address);
        QCOMPARE(result.userType(), readBack.userType());
        QCOMPARE(result, readBack);
    }

    void pl3OwnsNothing()
    {
        Pl3ProgramOption image;
        for (int address : {0, -1, 6690, 44032, 44043, INT_MAX, INT_MIN}) {
            QVERIFY(!image.write(address, QVariant(1)));
            QVERIFY(!image.read(address).isValid());
            QVERIFY(!image.getType(address).isValid());
        }
    }
};

QTEST_GUILESS_MAIN(TestPl4ProgramOption)
#include "tst_pl4programoption.moc"
