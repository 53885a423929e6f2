#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ControllerAddress.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>

using zelmor::domain::types::ChamberSignal;
using zelmor::domain::types::ControllerAddress;
using zelmor::domain::types::Unit;
using zelmor::domain::types::UserLevel;

using Change = std::function<void(ChamberSignal&)>;
Q_DECLARE_METATYPE(Change)

#define CHANGE(...) Change([](ChamberSignal& s) { __VA_ARGS__; })

namespace {

using AddressPointer = QSharedPointer<ControllerAddress>;

quint32 bitsOf(float value)
{
    quint32 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

// Addresses given as four letters for read, basic, manual, auto: '-' none, 'b' Bool, 'f' Float.
ChamberSignal makeSignal(Unit::UnitId unit, int bitPosition, const QString& addresses, int userLevel = 0)
{
    AddressPointer address[4];
    for (int i = 0; i < 4; ++i) {
        const QChar kind = addresses.at(i);
        if (kind != QLatin1Char('-')) {
            address[i] = AddressPointer::create(7, QStringLiteral("0x0100"), ControllerAddress::READ_WRITE,
                                                kind == QLatin1Char('b') ? QMetaType::Bool : QMetaType::Float, 1, -1,
                                                QStringLiteral("register"));
        }
    }
    return ChamberSignal(1, QStringLiteral("Signal"), unit, QColor(Qt::red), 1, UserLevel(userLevel), 0.0f, 100.0f,
                         bitPosition, ChamberSignal::PROCESS_VALUE, {}, false, false, address[0], address[1],
                         address[2], address[3]);
}

// A process value linked to its set point, every link set; each call builds fresh objects.
ChamberSignal makeFullSignal()
{
    ChamberSignal signal = makeSignal(Unit::CELSIUS, -1, QStringLiteral("ffff"));
    signal.setPointSignal =
        QSharedPointer<ChamberSignal>::create(makeSignal(Unit::CELSIUS, -1, QStringLiteral("-ff-")));
    return signal;
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
    void predicates_data();
    void predicates();
    void toleranceLimits();
    void ordering_data();
    void ordering();
    void equality_data();
    void equality();
};

void TestChamberSignal::predicates_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<int>("bitPosition");
    QTest::addColumn<QString>("addresses");
    QTest::addColumn<int>("userLevel");
    QTest::addColumn<QList<bool>>("expected"); // digital, read, write, read only, subscribable

    using F = QList<bool>;
    // digital: unit 13 first, then no address, then a bit, then every set address Bool
    QTest::newRow("unit 13 without any address") << 13 << -1 << "----" << 0 << F{true, false, false, false, true};
    QTest::newRow("unit 13 with a float register") << 13 << -1 << "f---" << 1 << F{true, true, false, true, true};
    QTest::newRow("unit 0 without any address") << 0 << -1 << "----" << 2 << F{false, false, false, false, false};
    QTest::newRow("bit without any address") << 0 << 3 << "----" << 0 << F{false, false, false, false, true};
    QTest::newRow("bit 3 of a float register") << 0 << 3 << "f---" << 2 << F{true, true, false, true, false};
    QTest::newRow("bool auto write only") << 5 << -1 << "---b" << 1 << F{true, false, true, false, false};
    QTest::newRow("bool and float") << 0 << -1 << "b-f-" << 0 << F{false, true, true, false, false};
    QTest::newRow("float manual write only") << 0 << -1 << "--f-" << 0 << F{false, false, true, false, false};
}

void TestChamberSignal::predicates()
{
    QFETCH(int, unit);
    QFETCH(int, bitPosition);
    QFETCH(QString, addresses);
    QFETCH(int, userLevel);

    const ChamberSignal s = makeSignal(Unit::UnitId(unit), bitPosition, addresses, userLevel);
    QTEST(QList<bool>(
              {s.isDigitalSignal(), s.isReadSignal(), s.isWriteSignal(), s.isReadOnlySignal(), s.isSubscribable()}),
          "expected");
}

void TestChamberSignal::toleranceLimits()
{
    ChamberSignal signal;
    signal.limitMin = 0.1f;
    signal.limitMax = 0.7f;
    // offset, maximum and minimum worked out in single precision; in double the minimum would be 0xBD4CCCCC
    QCOMPARE(QList<quint32>({bitsOf(signal.getTolarenceOffset()), bitsOf(signal.getToleranceLimitMax()),
                             bitsOf(signal.getToleranceLimitMin())}),
             QList<quint32>({0x3E199999u, 0x3F599999u, 0xBD4CCCCAu}));
}

void TestChamberSignal::ordering_data()
{
    QTest::addColumn<int>("leftId");
    QTest::addColumn<int>("leftSetPoint"); // -1: no set point link
    QTest::addColumn<int>("rightId");
    QTest::addColumn<int>("rightSetPoint");
    QTest::addColumn<int>("order"); // -1: less, 1: greater, 0: neither

    QTest::newRow("linked, smaller set point") << 50 << 5 << 2 << 7 << -1;
    QTest::newRow("linked, same set point") << 2 << 5 << 3 << 5 << 0;
    QTest::newRow("linked against unlinked") << 1 << 5 << 100 << -1 << 1;
    QTest::newRow("unlinked against linked") << 100 << -1 << 1 << 5 << -1;
    QTest::newRow("unlinked, smaller id") << 3 << -1 << 8 << -1 << -1;
    QTest::newRow("unlinked, greater id") << 8 << -1 << 3 << -1 << 1;
}

void TestChamberSignal::ordering()
{
    QFETCH(int, leftId);
    QFETCH(int, leftSetPoint);
    QFETCH(int, rightId);
    QFETCH(int, rightSetPoint);
    QFETCH(int, order);

    ChamberSignal left = linkedSignal(leftId, leftSetPoint);
    const ChamberSignal right = linkedSignal(rightId, rightSetPoint);
    QCOMPARE(left < right, order < 0);
    QCOMPARE(left > right, order > 0);

    // a process value sorts next to its set point, after all unlinked signals
    QList<ChamberSignal> list = {linkedSignal(21, 20), linkedSignal(20, -1), linkedSignal(11, 10), linkedSignal(5, -1),
                                 linkedSignal(10, -1)};
    std::sort(list.begin(), list.end());
    QList<int> ids;
    for (const ChamberSignal& signal : list) {
        ids << signal.id;
    }
    QCOMPARE(ids, (QList<int>{5, 10, 20, 11, 21}));
}

void TestChamberSignal::equality_data()
{
    QTest::addColumn<Change>("change");

    QTest::newRow("id") << CHANGE(s.id = 12);
    QTest::newRow("name") << CHANGE(s.name = QStringLiteral("pv_temperature"));
    QTest::newRow("userLevel") << CHANGE(s.userLevel = zelmor::domain::types::ADVANCED);
    QTest::newRow("limitMax") << CHANGE(s.limitMax = 180.5f);
    // a NaN limit makes a signal unequal even to its own copy (checked below)
    QTest::newRow("limitMin NaN") << CHANGE(s.limitMin = std::numeric_limits<float>::quiet_NaN());
    QTest::newRow("set point dropped") << CHANGE(s.setPointSignal.reset());
    QTest::newRow("set point content") << CHANGE(s.setPointSignal->writeManual->setPointNr = 4);
    QTest::newRow("read dropped") << CHANGE(s.read.reset());
    QTest::newRow("read content") << CHANGE(s.read->type = QMetaType::Int);
    QTest::newRow("writeAuto dropped") << CHANGE(s.writeAuto.reset());
}

void TestChamberSignal::equality()
{
    QFETCH(Change, change);

    // separately built signals share no object, so equality must look at content
    const ChamberSignal original = makeFullSignal();
    ChamberSignal changed = makeFullSignal();
    QVERIFY(changed.read != original.read);
    QVERIFY(changed == original);

    change(changed);
    QVERIFY(!(changed == original) && !(original == changed));
    // a copy is equal, unless a limit is NaN
    const ChamberSignal copy = changed;
    QCOMPARE(copy == changed, !std::isnan(changed.limitMin));
    // the catalogue recognises a row it couldn't read by comparing with the empty signal
    QVERIFY(ChamberSignal() == ChamberSignal() && changed != ChamberSignal());
    QCOMPARE(ChamberSignal().limitMin, -std::numeric_limits<float>::max());
}

QTEST_GUILESS_MAIN(TestChamberSignal)
#include "tst_chambersignal.moc"
