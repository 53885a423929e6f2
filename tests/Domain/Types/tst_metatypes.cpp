#include "Domain/Types/DatabaseConnectionError.h"
#include "Domain/Types/Int10.h"
#include "Domain/Types/UserLevel.h"

#include <QtTest>

using namespace zelmor::domain::types;

namespace {

// Stands in for a persistence class reporting through its error signal.
class ErrorSource : public QObject
{
    Q_OBJECT

signals:
    void error(zelmor::domain::types::DatabaseConnectionError code) const;
};

} // namespace

class TestMetaTypes : public QObject
{
    Q_OBJECT

private slots:
    void int10Registration();
    void int10Value();
    void userLevelFromDatabaseNumbers_data();
    void userLevelFromDatabaseNumbers();
    void userLevelFromUnconvertibleValue();
    void databaseConnectionErrorTravelsInSignals();
};

void TestMetaTypes::int10Registration()
{
    const int id = Int10::registerMetaType();
    QVERIFY(id >= int(QMetaType::User));
    QCOMPARE(Int10::registerMetaType(), id);
    QCOMPARE(QByteArray(QMetaType::typeName(id)), QByteArray("zelmor::domain::types::Int10"));
    QCOMPARE(QMetaType::type("zelmor::domain::types::Int10"), id);
    QCOMPARE(qMetaTypeId<Int10>(), id);
    QCOMPARE(QMetaType::sizeOf(id), 2);
    // a value of the type can be made from the number alone, as the catalogue's type table does
    QVERIFY(QMetaType::isRegistered(id));
    const QVariant made(id, nullptr);
    QVERIFY(made.isValid());
    QCOMPARE(made.userType(), id);
}

void TestMetaTypes::int10Value()
{
    const Int10 zero;
    QCOMPARE(int(zero.bytes[0]), 0);
    QCOMPARE(int(zero.bytes[1]), 0);

    Int10 value;
    value.bytes[0] = 0x12;
    value.bytes[1] = 0xF4;
    const Int10 copy(value);
    QCOMPARE(int(copy.bytes[0]), 0x12);
    QCOMPARE(int(copy.bytes[1]), 0xF4);
    QVERIFY(copy == value);
    QVERIFY(copy != zero);

    const QVariant variant = QVariant::fromValue(value);
    QCOMPARE(variant.value<Int10>(), value);
    QCOMPARE(QVariant(Int10::registerMetaType(), nullptr).value<Int10>(), zero);
}

void TestMetaTypes::userLevelFromDatabaseNumbers_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<int>("expected");

    QTest::newRow("int 0") << QVariant(0) << 0;
    QTest::newRow("int 1") << QVariant(1) << 1;
    QTest::newRow("int 6") << QVariant(6) << 6;
    QTest::newRow("long long 3") << QVariant(qlonglong(3)) << 3;
    QTest::newRow("text 4") << QVariant(QStringLiteral("4")) << 4;
}

void TestMetaTypes::userLevelFromDatabaseNumbers()
{
    QFETCH(QVariant, stored);
    QFETCH(int, expected);

    QVariant value = stored;
    QVERIFY(value.convert(qMetaTypeId<UserLevel>()));
    QCOMPARE(value.userType(), qMetaTypeId<UserLevel>());
    QCOMPARE(int(value.value<UserLevel>()), expected);
}

void TestMetaTypes::userLevelFromUnconvertibleValue()
{
    QCOMPARE(QByteArray(QMetaType::typeName(qMetaTypeId<UserLevel>())),
             QByteArray("zelmor::domain::types::UserLevel"));

    // a failed conversion is told by the return value only: the variant it leaves
    // behind holds an indeterminate enumerator, so readers must fall back themselves
    QVariant value(QStringLiteral("not a level"));
    QVERIFY(!value.convert(qMetaTypeId<UserLevel>()));

    const QVariant level = QVariant::fromValue(SERVICE);
    QCOMPARE(level.toInt(), 4);
}

void TestMetaTypes::databaseConnectionErrorTravelsInSignals()
{
    ErrorSource source;
    QSignalSpy spy(&source, &ErrorSource::error);
    QVERIFY(spy.isValid());

    emit source.error(UNEXPECTED_RESULT);
    emit source.error(DatabaseConnectionError(0));

    QCOMPARE(spy.count(), 2);
    QCOMPARE(int(spy.at(0).at(0).value<DatabaseConnectionError>()), 8);
    QCOMPARE(int(spy.at(1).at(0).value<DatabaseConnectionError>()), 0);
    QCOMPARE(QByteArray(QMetaType::typeName(qMetaTypeId<DatabaseConnectionError>())),
             QByteArray("zelmor::domain::types::DatabaseConnectionError"));
}

QTEST_GUILESS_MAIN(TestMetaTypes)
#include "tst_metatypes.moc"
