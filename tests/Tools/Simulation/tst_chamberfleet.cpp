// The class choice and the reader that the fleet construction builds for a
// chamber type, on hand-made types and this binary's addresses 127.0.58.x.

#include "Domain/Types/ChamberTypeData.h"
#include "Domain/Types/ControllerAddress.h"
#include "Tools/Simulation/ChamberFleet.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/SimulationReader.h"
#include "Tools/Simulation/TlxChamberSimulation.h"

#include <QBuffer>
#include <QtTest>

using namespace zelmor::simulation;
using zelmor::domain::types::ChamberProtocol;
using zelmor::domain::types::ChamberSignal;
using zelmor::domain::types::ChamberTypeData;
using zelmor::domain::types::ControllerAddress;
using zelmor::domain::types::ControlSignal;
using zelmor::domain::types::Unit;

namespace {

QSharedPointer<ControllerAddress> registerAt(QString const& text, QMetaType::Type type)
{
    auto result = QSharedPointer<ControllerAddress>::create();
    result->address = text;
    result->type = type;
    return result;
}

ChamberSignal makeSignal(QString const& name, ChamberSignal::SignalType signalType, QString const& read,
                         QMetaType::Type type, Unit::UnitId unit)
{
    ChamberSignal signal;
    signal.name = name;
    signal.signalType = signalType;
    signal.unit = unit;
    signal.read = registerAt(read, type);
    return signal;
}

ControlSignal makeControlSignal(QString const& read, QString const& write, QMetaType::Type type)
{
    ControlSignal control;
    control.read.address = read;
    control.read.type = type;
    control.write.address = write;
    control.write.type = type;
    return control;
}

// A TLX type whose signals and control words cover every rule of the reader.
ChamberTypeData readerType()
{
    ChamberTypeData type;
    type.type = QStringLiteral("T");
    type.controller = QStringLiteral("TLX");
    ChamberSignal setPoint = makeSignal("SP_A", ChamberSignal::SET_POINT, "1B", QMetaType::Float, Unit::CELSIUS);
    setPoint.writeManual = registerAt("1B", QMetaType::Float);
    setPoint.writeAuto = registerAt("1C", QMetaType::Float);
    ChamberSignal processValue = makeSignal("PV_A", ChamberSignal::PROCESS_VALUE, "1A", QMetaType::Float,
                                            Unit::CELSIUS);
    processValue.setPointSignal = QSharedPointer<ChamberSignal>::create(setPoint);
    // Keys in an order other than the names: the walk goes by key.
    type.chamberSignals.insert(5, setPoint);
    type.chamberSignals.insert(7, processValue);
    type.chamberSignals.insert(1, makeSignal("SP_Alone", ChamberSignal::SET_POINT, "30", QMetaType::Int,
                                             Unit::CELSIUS));
    type.chamberSignals.insert(2, makeSignal("PV_B", ChamberSignal::PROCESS_VALUE, "40", QMetaType::UShort,
                                             Unit::BOOLEAN));
    type.chamberSignals.insert(3, makeSignal("SPPV_C", ChamberSignal::SET_POINT_PROCESS_VALUE, "41",
                                             QMetaType::UInt, Unit::PERCENT));
    type.chamberSignals.insert(8, makeSignal("PV_B", ChamberSignal::PROCESS_VALUE, "50", QMetaType::Int,
                                             Unit::CELSIUS));
    type.chamberSignals.insert(9, makeSignal("X", ChamberSignal::NO_SIGNAL_TYPE, "60", QMetaType::Int,
                                             Unit::PERCENT));
    type.controlSignals.insert(1, makeControlSignal("70", "70", QMetaType::Int));
    type.controlSignals.insert(2, makeControlSignal("71", "71", QMetaType::UInt));
    type.controlSignals.insert(3, makeControlSignal("72", "72", QMetaType::Short));
    type.controlSignals.insert(4, makeControlSignal("73", "73", QMetaType::UShort));
    type.controlSignals.insert(5, makeControlSignal("74", "74", QMetaType::Bool));
    type.controlSignals.insert(6, makeControlSignal("75", "", QMetaType::Int));
    type.controlSignals.insert(7, makeControlSignal("zz", "76", QMetaType::Int));
    return type;
}

// Puts the shared console stream onto a buffer while it lives.
class ConsoleCapture
{
public:
    ConsoleCapture()
        : previous(consoleOutput().device())
    {
        buffer.open(QIODevice::WriteOnly);
        consoleOutput().setDevice(&buffer);
    }
    ~ConsoleCapture()
    {
        consoleOutput().setDevice(previous);
    }
    QByteArray text()
    {
        consoleOutput().flush();
        return buffer.data();
    }

private:
    QIODevice* previous;
    QBuffer buffer;
};

} // namespace

class TestChamberFleet : public QObject
{
    Q_OBJECT

private slots:
    void classChoice_data();
    void classChoice();
    void readerOfAType_data();
    void readerOfAType();
    void controlWordsTakeWritesAtOnce();
    void chambersOfOneTypeShareNothing();
};

void TestChamberFleet::classChoice_data()
{
    QTest::addColumn<QString>("controller");
    QTest::addColumn<QList<int>>("protocols");
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("tlx");

    using namespace zelmor::domain::types;
    QTest::newRow("TLX") << "TLX" << QList<int>{TLX} << "127.0.58.1" << true;
    QTest::newRow("TLX, protocols not looked at") << "TLX" << QList<int>{MODBUS_TCP} << "127.0.58.2"
                                                  << true;
    QTest::newRow("TLX without protocols") << "TLX" << QList<int>{} << "127.0.58.3" << true;
    QTest::newRow("tlx in lower case") << "tlx" << QList<int>{TLX} << "127.0.58.4" << false;
    QTest::newRow("KV2 on a serial line only") << "KV2" << QList<int>{MODBUS_RTU} << "COM3:1" << false;
    QTest::newRow("Q3 with Modbus TCP only") << "Q3" << QList<int>{MODBUS_TCP} << "127.0.58.5" << false;
    QTest::newRow("tunnelled only, on a COM port") << "Q4" << QList<int>{MODBUS_RTU_TUNNEL} << "COM1:1"
                                                   << false;
    QTest::newRow("serial only, on a dotted address")
        << "KV1" << QList<int>{MODBUS_RTU} << "127.0.58.6" << false;
    QTest::newRow("PL3 builds nothing") << "PL3" << QList<int>{MODBUS_RTU, MODBUS_RTU_TUNNEL}
                                        << "127.0.58.7" << false;
    QTest::newRow("no controller") << "" << QList<int>{TLX} << "127.0.58.8" << false;
}

void TestChamberFleet::classChoice()
{
    QFETCH(QString, controller);
    QFETCH(QList<int>, protocols);
    QFETCH(QString, address);
    QFETCH(bool, tlx);
    ChamberTypeData type;
    type.type = QStringLiteral("HX");
    type.size = 60;
    type.controller = controller;
    for (int protocol : protocols)
        type.protocols.append(ChamberProtocol(protocol));

    ConsoleCapture console;
    QSharedPointer<ChamberSimulation> const chamber = getSimulationByChamberConfigId(type, address);
    QCOMPARE(!chamber.dynamicCast<TlxChamberSimulation>().isNull(), tlx);
    QCOMPARE(chamber.isNull(), !tlx);
    if (!tlx)
        return;
    QCOMPARE(chamber->getIpAddress(), address);
    QCOMPARE(chamber->getProtocolId(), 4);
    QCOMPARE(chamber->getModbusAddress(), 0);
    QVERIFY(chamber->getSimulationReader());
    // Its own copy of the type.
    QVERIFY(chamber->getChamberType().data() != &type);
    QCOMPARE(chamber->getChamberType()->getQualifiedTypeName(), QStringLiteral("HX 60"));
}

void TestChamberFleet::readerOfAType_data()
{
    QTest::addColumn<int>("address");
    QTest::addColumn<QVariant>("value");

    // The process value takes its set point in: the set point's own signal
    // is passed over, and its registers answer with the set side.
    QTest::newRow("process value") << 0x1A << QVariant(23.3f);
    QTest::newRow("set point read through the process value") << 0x1B << QVariant(23.3f);
    QTest::newRow("set point's first write register") << 0x1C << QVariant(23.3f);
    // A set point nobody took in gets its own value.
    QTest::newRow("lonely set point") << 0x30 << QVariant(23);
    QTest::newRow("unsigned short process value") << 0x40 << QVariant::fromValue<ushort>(1);
    QTest::newRow("set point and process value in one") << 0x41 << QVariant(50u);
    QTest::newRow("second signal of a name is passed over") << 0x50 << QVariant();
    QTest::newRow("signal without signal type") << 0x60 << QVariant(50);
    QTest::newRow("control word int") << 0x70 << QVariant(0);
    QTest::newRow("control word unsigned int") << 0x71 << QVariant(0u);
    QTest::newRow("control word short") << 0x72 << QVariant::fromValue<short>(0);
    QTest::newRow("control word unsigned short") << 0x73 << QVariant::fromValue<ushort>(0);
    QTest::newRow("control bit: no value") << 0x74 << QVariant();
    QTest::newRow("control word without write register") << 0x75 << QVariant();
    QTest::newRow("control word with a register that is no number") << 0x76 << QVariant();
}

void TestChamberFleet::readerOfAType()
{
    QFETCH(int, address);
    QFETCH(QVariant, value);
    ConsoleCapture console;
    QSharedPointer<ChamberSimulation> const chamber = getSimulationByChamberConfigId(readerType(), "127.0.58.10");
    QVERIFY(chamber);
    // Only the signals that take a value first, by key, are printed.
    QCOMPARE(console.text(), QByteArray("Adding Signal PV_B\r\nAdding Signal SPPV_C\r\nAdding Signal PV_A\r\n"));

    QVariant const read = chamber->getSimulationReader()->read(address);
    QCOMPARE(read.userType(), value.userType());
    QCOMPARE(read, value);
}

void TestChamberFleet::controlWordsTakeWritesAtOnce()
{
    ConsoleCapture console;
    QSharedPointer<ChamberSimulation> const chamber = getSimulationByChamberConfigId(readerType(), "127.0.58.11");
    QSharedPointer<SimulationReader> const reader = chamber->getSimulationReader();
    QVERIFY(reader->write(0x72, QStringLiteral("-5")));
    QCOMPARE(reader->read(0x72), QVariant::fromValue<short>(-5));
    QVERIFY(reader->write(0x71, QStringLiteral("-1")));
    QCOMPARE(reader->read(0x71), QVariant(4294967295u));
    QVERIFY(!reader->write(0x74, QStringLiteral("1")));
}

void TestChamberFleet::chambersOfOneTypeShareNothing()
{
    ConsoleCapture console;
    ChamberTypeData const type = readerType();
    QSharedPointer<ChamberSimulation> const first = getSimulationByChamberConfigId(type, "127.0.58.12");
    QSharedPointer<ChamberSimulation> const second = getSimulationByChamberConfigId(type, "127.0.58.13");
    QVERIFY(first->getSimulationReader()->write(0x70, 7));
    QCOMPARE(first->getSimulationReader()->read(0x70), QVariant(7));
    QCOMPARE(second->getSimulationReader()->read(0x70), QVariant(0));
    QVERIFY(first->getChamberType() != second->getChamberType());
}

QTEST_GUILESS_MAIN(TestChamberFleet)
#include "tst_chamberfleet.moc"
