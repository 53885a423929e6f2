#include "Domain/Types/DatabaseConnectionError.h"
#include "Domain/Types/Int10.h"
#include "Domain/Types/UserLevel.h"

#include <QtTest>

using namespace zelmor::domain::types;

class TestMetaTypes : public QObject
{
    Q_OBJECT

private slots:
    void int10();
    void userLevelFromDatabaseValues_data();
    void userLevelFromDatabaseValues();
};

void TestMetaTypes::int10()
{
    const int id = Int10::registerMetaType();
    QCOMPARE(Int10::registerMetaType(), id);
    QCOMPARE(QByteArray(QMetaType::typeName(id)), QByteArray("zelmor::domain::types::Int10"));
    QCOMPARE(QMetaType::type("zelmor::domain::types::Int10"), id);
    QCOMPARE(QMetaType::sizeOf(id), 2);

    // a value made from the number alone, as the catalogue's type table does, is zero
    const QVariant made(id, nullptr);
    QCOMPARE(made.userType(), id);
    QCOMPARE(int(made.value<Int10>().bytes[0]) + int(made.value<Int10>().bytes[1]), 0);

    Int10 value;
    value.bytes[1] = 0xF4;
    const Int10 copy(value);
    QVERIFY(copy == value && copy != Int10());

    QCOMPARE(QByteArray(QMetaType::typeName(qMetaTypeId<DatabaseConnectionError>())),
             QByteArray("zelmor::domain::types::DatabaseConnectionError"));
}

void TestMetaTypes::userLevelFromDatabaseValues_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<bool>("converts");
    QTest::addColumn<int>("expected");

    QTest::newRow("int 6") << QVariant(6) << true << 6;
    QTest::newRow("long long 3") << QVariant(qlonglong(3)) << true << 3;
    QTest::newRow("text 4") << QVariant(QStringLiteral("4")) << true << 4;
    // told by the return value only; the enumerator left behind is indeterminate
    QTest::newRow("not a level") << QVariant(QStringLiteral("not a level")) << false << -1;
}

void TestMetaTypes::userLevelFromDatabaseValues()
{
    QFETCH(QVariant, stored);
    QFETCH(bool, converts);
    QFETCH(int, expected);

    QCOMPARE(stored.convert(qMetaTypeId<UserLevel>()), converts);
    if (converts) {
        QCOMPARE(stored.userType(), qMetaTypeId<UserLevel>());
        QCOMPARE(int(stored.value<UserLevel>()), expected);
    }
}

QTEST_GUILESS_MAIN(TestMetaTypes)
#include "tst_metatypes.moc"
