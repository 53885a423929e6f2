#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ControllerAddress.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

using zelmor::domain::types::ChamberSignal;
using zelmor::domain::types::ControllerAddress;
using zelmor::domain::types::Unit;
using zelmor::domain::types::UserLevel;

namespace {

using AddressPointer = QSharedPointer<ControllerAddress>;

quint32 bitsOf(float value)
{
    quint32 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

AddressPointer makeAddress(QMetaType::Type type, const QString& text = QStringLiteral("0x0100"))
{
    return AddressPointer::create(7, text, ControllerAddress::READ_WRITE, type, 1, -1, QStringLiteral("register"));
}

// Addresses given as a string of four letters for read, basic, manual, auto:
// '-' none, 'b' Bool, 'f' Float.
ChamberSignal makeSignal(Unit::UnitId unit, int bitPosition, const QString& addresses, int userLevel = 0)
{
    auto address = [&addresses](int index) -> AddressPointer {
        const QChar kind = addresses.at(index);
        if (kind == QLatin1Char('b')) {
            return makeAddress(QMetaType::Bool);
        }
        if (kind == QLatin1Char('f')) {
            return makeAddress(QMetaType::Float);
        }
        return {};
    };
    return ChamberSignal(1, QStringLiteral("Signal"), unit, QColor(Qt::red), 1, UserLevel(userLevel), 0.0f, 100.0f,
                         bitPosition, ChamberSignal::PROCESS_VALUE, {}, false, false, address(0), address(1),
                         address(2), address(3));
}

ChamberSignal makeFullSignal()
{
    auto setPoint = QSharedPointer<ChamberSignal>::create(
        10, QStringLiteral("SP_Temperature"), Unit::CELSIUS, QColor(Qt::blue), 1, zelmor::domain::types::BASIC, -40.0f,
        180.0f, -1, ChamberSignal::SET_POINT, QSharedPointer<ChamberSignal>(), true, true, AddressPointer(),
        makeAddress(QMetaType::Float, QStringLiteral("0x10")), makeAddress(QMetaType::Float, QStringLiteral("0x11")),
        AddressPointer());
    return ChamberSignal(11, QStringLiteral("PV_Temperature"), Unit::CELSIUS, QColor(Qt::red), 1,
                         zelmor::domain::types::BASIC, -40.0f, 180.0f, -1, ChamberSignal::PROCESS_VALUE, setPoint,
                         true, false, makeAddress(QMetaType::Float, QStringLiteral("0x20")),
                         makeAddress(QMetaType::Float, QStringLiteral("0x21")),
                         makeAddress(QMetaType::Float, QStringLiteral("0x22")),
                         makeAddress(QMetaType::Float, QStringLiteral("0x23")));
}

ChamberSignal linkedSignal(int id, int setPointId)
{
    ChamberSignal signal;
    signal.id = id;
    if (setPointId != -1) {
        signal.setPointSignal = QSharedPointer<ChamberSignal>::create();
        signal.setPointSignal->id = setPointId;
    }
    return signal;
}

} // namespace

class TestChamberSignal : public QObject
{
    Q_OBJECT

private slots:
    void isDigitalSignal_data();
    void isDigitalSignal();
    void addressPredicates_data();
    void addressPredicates();
    void toleranceLimits_data();
    void toleranceLimits();
    void isAlarmSignal_data();
    void isAlarmSignal();
    void ordering_data();
    void ordering();
    void sortingPutsLinkedSignalsLast();
    void equality_data();
    void equality();
    void equalityIsDeep();
    void emptySignal();
    void hashIsIdXorSeed();
};

void TestChamberSignal::isDigitalSignal_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<int>("bitPosition");
    QTest::addColumn<QString>("addresses");
    QTest::addColumn<bool>("expected");

    QTest::newRow("unit 13 without any address") << 13 << -1 << QStringLiteral("----") << true;
    QTest::newRow("unit 13 with a float register") << 13 << -1 << QStringLiteral("f---") << true;
    QTest::newRow("unit 0 without any address") << 0 << -1 << QStringLiteral("----") << false;
    QTest::newRow("bit without any address") << 0 << 3 << QStringLiteral("----") << false;
    QTest::newRow("bit 3 of a float register") << 0 << 3 << QStringLiteral("f---") << true;
    QTest::newRow("bit 0 of a float write register") << 0 << 0 << QStringLiteral("---f") << true;
    QTest::newRow("bool read register") << 0 << -1 << QStringLiteral("b---") << true;
    QTest::newRow("bool auto write register only") << 5 << -1 << QStringLiteral("---b") << true;
    QTest::newRow("all four bool") << 0 << -1 << QStringLiteral("bbbb") << true;
    QTest::newRow("bool and float") << 0 << -1 << QStringLiteral("b-f-") << false;
    QTest::newRow("float and bool") << 0 << -1 << QStringLiteral("f--b") << false;
    QTest::newRow("float only") << 0 << -1 << QStringLiteral("-f--") << false;
}

void TestChamberSignal::isDigitalSignal()
{
    QFETCH(int, unit);
    QFETCH(int, bitPosition);
    QFETCH(QString, addresses);
    QFETCH(bool, expected);

    QCOMPARE(makeSignal(Unit::UnitId(unit), bitPosition, addresses).isDigitalSignal(), expected);
}

void TestChamberSignal::addressPredicates_data()
{
    QTest::addColumn<QString>("addresses");
    QTest::addColumn<int>("userLevel");
    QTest::addColumn<bool>("read");
    QTest::addColumn<bool>("write");
    QTest::addColumn<bool>("readOnly");
    QTest::addColumn<bool>("subscribable");

    QTest::newRow("no address, level 0") << QStringLiteral("----") << 0 << false << false << false << true;
    QTest::newRow("no address, level 2") << QStringLiteral("----") << 2 << false << false << false << false;
    QTest::newRow("read only, level 1") << QStringLiteral("f---") << 1 << true << false << true << true;
    QTest::newRow("read only, level 2") << QStringLiteral("f---") << 2 << true << false << true << false;
    QTest::newRow("read only, level 6") << QStringLiteral("f---") << 6 << true << false << true << false;
    QTest::newRow("read and basic write") << QStringLiteral("ff--") << 0 << true << true << false << false;
    QTest::newRow("manual write only") << QStringLiteral("--f-") << 0 << false << true << false << false;
    QTest::newRow("auto write only") << QStringLiteral("---b") << 1 << false << true << false << false;
    QTest::newRow("all four") << QStringLiteral("ffff") << 0 << true << true << false << false;
}

void TestChamberSignal::addressPredicates()
{
    QFETCH(QString, addresses);
    QFETCH(int, userLevel);
    QFETCH(bool, read);
    QFETCH(bool, write);
    QFETCH(bool, readOnly);
    QFETCH(bool, subscribable);

    const ChamberSignal signal = makeSignal(Unit::CELSIUS, -1, addresses, userLevel);
    QCOMPARE(signal.isReadSignal(), read);
    QCOMPARE(signal.isWriteSignal(), write);
    QCOMPARE(signal.isReadOnlySignal(), readOnly);
    QCOMPARE(signal.isSubscribable(), subscribable);
}

void TestChamberSignal::toleranceLimits_data()
{
    QTest::addColumn<float>("limitMin");
    QTest::addColumn<float>("limitMax");
    QTest::addColumn<quint32>("offset");
    QTest::addColumn<quint32>("toleranceMax");
    QTest::addColumn<quint32>("toleranceMin");

    QTest::newRow("0 to 100") << 0.0f << 100.0f << bitsOf(25.0f) << bitsOf(125.0f) << bitsOf(-25.0f);
    QTest::newRow("-40 to 180") << -40.0f << 180.0f << bitsOf(55.0f) << bitsOf(235.0f) << bitsOf(-95.0f);
    QTest::newRow("empty band") << 10.0f << 10.0f << bitsOf(0.0f) << bitsOf(10.0f) << bitsOf(10.0f);
    // worked out in single precision; in double the minimum would be 0xBD4CCCCC
    QTest::newRow("0.1 to 0.7") << 0.1f << 0.7f << 0x3E199999u << 0x3F599999u << 0xBD4CCCCAu;
    QTest::newRow("reversed limits") << 100.0f << 0.0f << bitsOf(-25.0f) << bitsOf(-25.0f) << bitsOf(125.0f);
}

void TestChamberSignal::toleranceLimits()
{
    QFETCH(float, limitMin);
    QFETCH(float, limitMax);
    QFETCH(quint32, offset);
    QFETCH(quint32, toleranceMax);
    QFETCH(quint32, toleranceMin);

    ChamberSignal signal;
    signal.limitMin = limitMin;
    signal.limitMax = limitMax;
    QCOMPARE(QString::number(bitsOf(signal.getTolarenceOffset()), 16), QString::number(offset, 16));
    QCOMPARE(QString::number(bitsOf(signal.getToleranceLimitMax()), 16), QString::number(toleranceMax, 16));
    QCOMPARE(QString::number(bitsOf(signal.getToleranceLimitMin()), 16), QString::number(toleranceMin, 16));
}

void TestChamberSignal::isAlarmSignal_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("expected");

    QTest::newRow("exact") << QStringLiteral("PV_Collective_Alarm") << true;
    QTest::newRow("lower case") << QStringLiteral("pv_collective_alarm") << false;
    QTest::newRow("trailing blank") << QStringLiteral("PV_Collective_Alarm ") << false;
    QTest::newRow("set point spelling") << QStringLiteral("SP_Collective_Alarm") << false;
    QTest::newRow("empty") << QString() << false;
}

void TestChamberSignal::isAlarmSignal()
{
    QFETCH(QString, name);
    QFETCH(bool, expected);

    ChamberSignal signal;
    signal.name = name;
    QCOMPARE(signal.isAlarmSignal(), expected);
}

void TestChamberSignal::ordering_data()
{
    QTest::addColumn<int>("leftId");
    QTest::addColumn<int>("leftSetPoint");
    QTest::addColumn<int>("rightId");
    QTest::addColumn<int>("rightSetPoint");
    QTest::addColumn<bool>("less");
    QTest::addColumn<bool>("greater");

    QTest::newRow("linked, smaller set point") << 50 << 5 << 2 << 7 << true << false;
    QTest::newRow("linked, greater set point") << 2 << 7 << 50 << 5 << false << true;
    QTest::newRow("linked, same set point") << 2 << 5 << 3 << 5 << false << false;
    QTest::newRow("linked against unlinked") << 1 << 5 << 100 << -1 << false << true;
    QTest::newRow("unlinked against linked") << 100 << -1 << 1 << 5 << true << false;
    QTest::newRow("unlinked, smaller id") << 3 << -1 << 8 << -1 << true << false;
    QTest::newRow("unlinked, greater id") << 8 << -1 << 3 << -1 << false << true;
    QTest::newRow("unlinked, same id") << 3 << -1 << 3 << -1 << false << false;
}

void TestChamberSignal::ordering()
{
    QFETCH(int, leftId);
    QFETCH(int, leftSetPoint);
    QFETCH(int, rightId);
    QFETCH(int, rightSetPoint);
    QFETCH(bool, less);
    QFETCH(bool, greater);

    ChamberSignal left = linkedSignal(leftId, leftSetPoint);
    const ChamberSignal right = linkedSignal(rightId, rightSetPoint);
    QCOMPARE(left < right, less);
    QCOMPARE(left > right, greater);
}

void TestChamberSignal::sortingPutsLinkedSignalsLast()
{
    QList<ChamberSignal> signalList = {linkedSignal(21, 20), linkedSignal(20, -1), linkedSignal(11, 10),
                                       linkedSignal(5, -1), linkedSignal(10, -1)};
    std::sort(signalList.begin(), signalList.end());
    QList<int> ids;
    for (const ChamberSignal& signal : signalList) {
        ids << signal.id;
    }
    QCOMPARE(ids, (QList<int>{5, 10, 20, 11, 21}));
}

void TestChamberSignal::equality_data()
{
    QTest::addColumn<QString>("field");

    QTest::newRow("id") << QStringLiteral("id");
    QTest::newRow("name") << QStringLiteral("name");
    QTest::newRow("unit") << QStringLiteral("unit");
    QTest::newRow("color") << QStringLiteral("color");
    QTest::newRow("decimalPlaces") << QStringLiteral("decimalPlaces");
    QTest::newRow("userLevel") << QStringLiteral("userLevel");
    QTest::newRow("limitMin") << QStringLiteral("limitMin");
    QTest::newRow("limitMax") << QStringLiteral("limitMax");
    QTest::newRow("limitMin NaN") << QStringLiteral("limitMinNaN");
    QTest::newRow("bitPosition") << QStringLiteral("bitPosition");
    QTest::newRow("signalType") << QStringLiteral("signalType");
    QTest::newRow("setPointSignal dropped") << QStringLiteral("setPointSignalNull");
    QTest::newRow("setPointSignal content") << QStringLiteral("setPointSignalContent");
    QTest::newRow("timeProgrammable") << QStringLiteral("timeProgrammable");
    QTest::newRow("weekProgrammable") << QStringLiteral("weekProgrammable");
    QTest::newRow("read dropped") << QStringLiteral("readNull");
    QTest::newRow("read content") << QStringLiteral("readContent");
    QTest::newRow("writeBasic content") << QStringLiteral("writeBasic");
    QTest::newRow("writeManual content") << QStringLiteral("writeManual");
    QTest::newRow("writeAuto dropped") << QStringLiteral("writeAuto");
}

void TestChamberSignal::equality()
{
    QFETCH(QString, field);

    const ChamberSignal original = makeFullSignal();
    ChamberSignal changed = makeFullSignal();
    QVERIFY(changed == original);

    // changes go to fresh objects, so that nothing shared with original moves
    if (field == QLatin1String("id")) {
        changed.id = 12;
    } else if (field == QLatin1String("name")) {
        changed.name = QStringLiteral("pv_temperature");
    } else if (field == QLatin1String("unit")) {
        changed.unit = Unit::FAHRENHEIT;
    } else if (field == QLatin1String("color")) {
        changed.color = QColor(Qt::green);
    } else if (field == QLatin1String("decimalPlaces")) {
        changed.decimalPlaces = 2;
    } else if (field == QLatin1String("userLevel")) {
        changed.userLevel = zelmor::domain::types::ADVANCED;
    } else if (field == QLatin1String("limitMin")) {
        changed.limitMin = -39.5f;
    } else if (field == QLatin1String("limitMax")) {
        changed.limitMax = 180.5f;
    } else if (field == QLatin1String("limitMinNaN")) {
        changed.limitMin = std::numeric_limits<float>::quiet_NaN();
    } else if (field == QLatin1String("bitPosition")) {
        changed.bitPosition = 0;
    } else if (field == QLatin1String("signalType")) {
        changed.signalType = ChamberSignal::SET_POINT_PROCESS_VALUE;
    } else if (field == QLatin1String("setPointSignalNull")) {
        changed.setPointSignal.reset();
    } else if (field == QLatin1String("setPointSignalContent")) {
        changed.setPointSignal = QSharedPointer<ChamberSignal>::create(*original.setPointSignal);
        changed.setPointSignal->writeManual = makeAddress(QMetaType::Float, QStringLiteral("0x12"));
    } else if (field == QLatin1String("timeProgrammable")) {
        changed.timeProgrammable = false;
    } else if (field == QLatin1String("weekProgrammable")) {
        changed.weekProgrammable = true;
    } else if (field == QLatin1String("readNull")) {
        changed.read.reset();
    } else if (field == QLatin1String("readContent")) {
        changed.read = makeAddress(QMetaType::Int, QStringLiteral("0x20"));
    } else if (field == QLatin1String("writeBasic")) {
        changed.writeBasic = makeAddress(QMetaType::Float, QStringLiteral("0x31"));
    } else if (field == QLatin1String("writeManual")) {
        changed.writeManual = makeAddress(QMetaType::Float, QStringLiteral("0x32"));
        changed.writeManual->setPointNr = 4;
    } else if (field == QLatin1String("writeAuto")) {
        changed.writeAuto.reset();
    } else {
        QFAIL("unknown field");
    }

    QVERIFY(!(changed == original));
    QVERIFY(!(original == changed));
    QVERIFY(changed != original);
}

void TestChamberSignal::equalityIsDeep()
{
    // two separately built signals share no object but are equal
    const ChamberSignal first = makeFullSignal();
    const ChamberSignal second = makeFullSignal();
    QVERIFY(first.read != second.read);
    QVERIFY(first.setPointSignal != second.setPointSignal);
    QVERIFY(first == second);

    // a NaN limit makes a signal unequal even to its own copy
    ChamberSignal nan = makeFullSignal();
    nan.limitMax = std::numeric_limits<float>::quiet_NaN();
    const ChamberSignal copy = nan;
    QVERIFY(!(nan == copy));

    // the same through a set point link
    ChamberSignal linkedNan = makeFullSignal();
    linkedNan.setPointSignal->limitMin = std::numeric_limits<float>::quiet_NaN();
    const ChamberSignal linkedCopy = linkedNan;
    QVERIFY(linkedNan != linkedCopy);
}

void TestChamberSignal::emptySignal()
{
    const ChamberSignal empty;
    QCOMPARE(empty.id, -1);
    QVERIFY(empty.name.isEmpty());
    QCOMPARE(int(empty.unit), 16);
    QVERIFY(!empty.color.isValid());
    QCOMPARE(empty.decimalPlaces, 0);
    QCOMPARE(int(empty.userLevel), 0);
    QCOMPARE(empty.limitMin, -std::numeric_limits<float>::max());
    QCOMPARE(empty.limitMax, std::numeric_limits<float>::max());
    QCOMPARE(empty.bitPosition, -1);
    QCOMPARE(int(empty.signalType), 3);
    QVERIFY(empty.setPointSignal.isNull());
    QVERIFY(!empty.timeProgrammable);
    QVERIFY(!empty.weekProgrammable);
    QVERIFY(empty.read.isNull() && empty.writeBasic.isNull() && empty.writeManual.isNull() && empty.writeAuto.isNull());

    // the catalogue recognises a row it couldn't read by comparing with the empty signal
    QVERIFY(empty == ChamberSignal());
    QVERIFY(makeFullSignal() != ChamberSignal());

    // the widest limits overflow the tolerance band to infinity
    QVERIFY(std::isinf(empty.getToleranceLimitMax()) && empty.getToleranceLimitMax() > 0);
    QVERIFY(std::isinf(empty.getToleranceLimitMin()) && empty.getToleranceLimitMin() < 0);
}

void TestChamberSignal::hashIsIdXorSeed()
{
    ChamberSignal signal;
    signal.id = 42;
    QCOMPARE(qHash(signal, 0u), 42u);
    QCOMPARE(qHash(signal, 0x0Fu), 0x25u);
    signal.id = -1;
    QCOMPARE(qHash(signal, 1u), 0xFFFFFFFEu);

    QSet<ChamberSignal> set;
    set << makeFullSignal() << makeFullSignal() << linkedSignal(3, -1);
    QCOMPARE(set.size(), 2);
}

QTEST_GUILESS_MAIN(TestChamberSignal)
#include "tst_chambersignal.moc"
