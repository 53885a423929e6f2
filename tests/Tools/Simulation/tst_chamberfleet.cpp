// The class choice and the reader that the fleet construction builds for a
// chamber type, on hand-made types and this binary's addresses 127.0.58.x
// (tunnelled chambers open their converters there on port 10001).

#include "Domain/Types/ChamberTypeData.h"
#include "Domain/Types/ControllerAddress.h"
#include "Tools/Simulation/ChamberFleet.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/Kv1ProgramOption.h"
#include "Tools/Simulation/Kv2ProgramOption.h"
#include "Tools/Simulation/ModbusChamberSimulation.h"
#include "Tools/Simulation/ModbusRtuOverTcpChamberSimulation.h"
#include "Tools/Simulation/ModbusTcpChamberSimulation.h"
#include "Tools/Simulation/Pl4ProgramOption.h"
#include "Tools/Simulation/SimulationDevice.h"
#include "Tools/Simulation/SimulationSignal.h"
#include "Tools/Simulation/TlxChamberSimulation.h"
#include "support/StreamCapture.h"

#include <QtTest>

using namespace zelmor::simulation;
using namespace zelmor::domain::types;
using zelmor::testsupport::StreamCapture;

namespace {

QSharedPointer<ControllerAddress> registerAt(QString const& text, QMetaType::Type type)
{
    auto result = QSharedPointer<ControllerAddress>::create();
    std::tie(result->address, result->type) = std::make_tuple(text, type);
    return result;
}

ChamberSignal makeSignal(QString const& name, ChamberSignal::SignalType signalType, QString const& read,
                         QMetaType::Type type, Unit::UnitId unit)
{
    ChamberSignal signal;
    std::tie(signal.name, signal.signalType, signal.unit) = std::make_tuple(name, signalType, unit);
    signal.read = registerAt(read, type);
    return signal;
}

// A TLX type whose signals and control words cover every rule of the reader.
// Keys in an order other than the names: the walk goes by key.
ChamberTypeData readerType()
{
    ChamberTypeData type;
    type.type = QStringLiteral("T");
    type.controller = QStringLiteral("TLX");
    ChamberSignal setPoint = makeSignal("SP_A", ChamberSignal::SET_POINT, "1B", QMetaType::Float, Unit::CELSIUS);
    setPoint.writeManual = registerAt("1B", QMetaType::Float);
    setPoint.writeAuto = registerAt("1C", QMetaType::Float);
    ChamberSignal processValue = makeSignal("PV_A", ChamberSignal::PROCESS_VALUE, "1A", QMetaType::Float, Unit::CELSIUS);
    processValue.setPointSignal = QSharedPointer<ChamberSignal>::create(setPoint);
    type.chamberSignals = {
        {5, setPoint},
        {7, processValue},
        {1, makeSignal("SP_Alone", ChamberSignal::SET_POINT, "30", QMetaType::Int, Unit::CELSIUS)},
        {2, makeSignal("PV_B", ChamberSignal::PROCESS_VALUE, "40", QMetaType::UShort, Unit::BOOLEAN)},
        {3, makeSignal("SPPV_C", ChamberSignal::SET_POINT_PROCESS_VALUE, "41", QMetaType::UInt, Unit::PERCENT)},
        {8, makeSignal("PV_B", ChamberSignal::PROCESS_VALUE, "50", QMetaType::Int, Unit::CELSIUS)},
        {9, makeSignal("X", ChamberSignal::NO_SIGNAL_TYPE, "60", QMetaType::Int, Unit::PERCENT)},
    };
    auto const control = [&type](int key, QString const& read, QString const& write, QMetaType::Type valueType) {
        ControlSignal& signal = type.controlSignals[key];
        std::tie(signal.read.address, signal.read.type, signal.write.address, signal.write.type) =
            std::make_tuple(read, valueType, write, valueType);
    };
    control(1, "70", "70", QMetaType::Int);
    control(2, "71", "71", QMetaType::UInt);
    control(3, "72", "72", QMetaType::Short);
    control(4, "73", "73", QMetaType::UShort);
    control(5, "74", "74", QMetaType::Bool);
    control(6, "75", "", QMetaType::Int);
    control(7, "zz", "76", QMetaType::Int);
    return type;
}

} // namespace

class TestChamberFleet : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void classChoice_data();
    void classChoice();
    void programImage_data();
    void programImage();
    void readerOfAType_data();
    void readerOfAType();
    void chambersOfOneTypeShareNothing();
};

void TestChamberFleet::init()
{
    // Each test starts a run of its own: no converter being filled.
    currentModbusConverterIpAddress.clear();
    currentModbusConverterModbusAdr = 1;
}

void TestChamberFleet::classChoice_data()
{
    QTest::addColumn<QString>("controller");
    QTest::addColumn<QList<int>>("protocols");
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("protocolId"); // 0: no chamber
    QTest::addColumn<QString>("served"); // what getIpAddress() reports

    auto row = [](char const* name, char const* controller, QList<int> protocols, char const* address,
                  int protocolId, char const* served = "") {
        QTest::newRow(name) << controller << protocols << address << protocolId << served;
    };
    row("TLX, protocols not looked at", "TLX", {MODBUS_TCP}, "127.0.58.2", 4, "127.0.58.2");
    row("tlx in lower case", "tlx", {TLX}, "127.0.58.4", 0);
    row("KV2 with Modbus TCP", "KV2", {MODBUS_TCP}, "127.0.58.20", 3, "127.0.58.20");
    row("KV2 with both: Modbus TCP wins", "KV2", {MODBUS_RTU_TUNNEL, MODBUS_TCP}, "127.0.58.21", 3, "127.0.58.21");
    // The address is not looked at for KV2: no dotted address needed.
    row("KV2 tunnelled on any text", "KV2", {MODBUS_RTU_TUNNEL}, "COM3:1", 2, "COM3:1");
    row("KV2 on a serial line only", "KV2", {MODBUS_RTU}, "COM3:1", 0);
    row("KV1 serial or tunnelled, on a COM port", "KV1", {MODBUS_RTU, MODBUS_RTU_TUNNEL}, "COM3:1", 1);
    row("KV1 serial or tunnelled, on a dotted address", "KV1", {MODBUS_RTU, MODBUS_RTU_TUNNEL}, "10.0.0.1", 2,
        "10.0.0.1");
    // Both expressions search the text, they don't match it whole.
    row("COM port found inside a path", "Q4", {MODBUS_RTU}, "/tmp/ports/COM3:12", 1);
    row("dotted address found inside a text", "Q3.1", {MODBUS_RTU_TUNNEL}, "host 127.0.58.23 x", 2,
        "host 127.0.58.23 x");
    // One digit only between "COM" and the colon.
    row("COM port of two digits", "KV1", {MODBUS_RTU}, "COM63:1", 0);
    row("Q3 with Modbus TCP only", "Q3", {MODBUS_TCP}, "127.0.58.5", 0);
    row("tunnelled only, on a COM port", "PL4", {MODBUS_RTU_TUNNEL}, "COM1:1", 0);
    row("serial only, on a dotted address", "KV1", {MODBUS_RTU}, "127.0.58.6", 0);
    row("PL3 builds nothing", "PL3", {MODBUS_RTU, MODBUS_RTU_TUNNEL}, "127.0.58.7", 0);
}

void TestChamberFleet::classChoice()
{
    QFETCH(QString, controller);
    QFETCH(QList<int>, protocols);
    QFETCH(QString, address);
    QFETCH(int, protocolId);
    QFETCH(QString, served);
    ChamberTypeData type;
    type.type = QStringLiteral("HX");
    type.size = 60;
    type.controller = controller;
    for (int protocol : protocols)
        type.protocols.append(ChamberProtocol(protocol));

    StreamCapture console(consoleOutput());
    QSharedPointer<ChamberSimulation> const chamber = getSimulationByChamberConfigId(type, address);
    QCOMPARE(chamber.isNull(), protocolId == 0);
    if (!chamber)
        return;
    int const byClass = chamber.dynamicCast<ModbusChamberSimulation>()             ? 1
                        : chamber.dynamicCast<ModbusRtuOverTcpChamberSimulation>() ? 2
                        : chamber.dynamicCast<ModbusTcpChamberSimulation>()        ? 3
                        : chamber.dynamicCast<TlxChamberSimulation>()              ? 4
                                                                                   : 0;
    QCOMPARE(byClass, protocolId);
    QCOMPARE(chamber->getProtocolId(), protocolId);
    QCOMPARE(chamber->getIpAddress(), served);
    // The first tunnelled chamber of a run opens a converter on its address, as slave 1.
    QCOMPARE(chamber->getModbusAddress(), protocolId == 2 ? 1 : 0);
    QVERIFY(chamber->getSimulationReader());
    // Its own copy of the type.
    QVERIFY(chamber->getChamberType().data() != &type);
    QCOMPARE(chamber->getChamberType()->getQualifiedTypeName(), QStringLiteral("HX 60"));
    if (protocolId == 1) {
        auto const serial = chamber.staticCast<ModbusChamberSimulation>();
        QCOMPARE(serial->getSerialPortName() + ':' + QString::number(serial->getServerAddress()), address);
    }
}

void TestChamberFleet::programImage_data()
{
    QTest::addColumn<QString>("controller");
    QTest::addColumn<int>("protocol");
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("image"); // the class of the first child; empty: none

    QTest::newRow("KV2, time program") << "KV2" << int(MODBUS_TCP) << "TimeProgram" << "Kv2";
    QTest::newRow("KV2, week program only") << "KV2" << int(MODBUS_TCP) << "WeekProgram" << "";
    QTest::newRow("KV1 tunnelled") << "KV1" << int(MODBUS_RTU_TUNNEL) << "TimeProgram" << "Kv1";
    QTest::newRow("PL4") << "PL4" << int(MODBUS_RTU_TUNNEL) << "TimeProgram" << "Pl4";
    QTest::newRow("Q3") << "Q3" << int(MODBUS_RTU_TUNNEL) << "TimeProgram" << "";
}

void TestChamberFleet::programImage()
{
    QFETCH(QString, controller);
    QFETCH(int, protocol);
    QFETCH(QString, option);
    QFETCH(QString, image);
    ChamberTypeData type;
    type.controller = controller;
    type.protocols = {ChamberProtocol(protocol)};
    if (!option.isEmpty())
        type.options = {ChamberOption(option)};
    // A signal behind the image, so that the image is seen to come first.
    type.chamberSignals.insert(1, makeSignal("PV_A", ChamberSignal::PROCESS_VALUE, "2000", QMetaType::Float,
                                             Unit::CELSIUS));

    StreamCapture console(consoleOutput());
    QSharedPointer<ChamberSimulation> const chamber = getSimulationByChamberConfigId(type, "127.0.58.40");
    QVERIFY(chamber);
    auto const device = chamber->getSimulationReader().dynamicCast<SimulationDevice>();
    QVERIFY(device);
    QList<QSharedPointer<SimulationReader>> const children = device->getChildren();
    QCOMPARE(children.size(), image.isEmpty() ? 1 : 2);
    QSharedPointer<SimulationReader> const first = children.first();
    QString const firstClass = first.dynamicCast<Kv2ProgramOption>() ? "Kv2"
                               : first.dynamicCast<Kv1ProgramOption>() ? "Kv1"
                               : first.dynamicCast<Pl4ProgramOption>() ? "Pl4"
                                                                       : "";
    QCOMPARE(firstClass, image);
    QVERIFY(!children.last().dynamicCast<SimulationSignal>().isNull());
}

void TestChamberFleet::readerOfAType_data()
{
    QTest::addColumn<int>("address");
    QTest::addColumn<QVariant>("value");

    // The process value takes its set point in: the set point's own signal
    // is passed over, and its registers answer with the set side.
    QTest::newRow("process value") << 0x1A << QVariant(23.3f);
    QTest::newRow("set point read through the process value") << 0x1B << QVariant(23.3f);
    // A set point nobody took in gets its own value.
    QTest::newRow("lonely set point") << 0x30 << QVariant(23);
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
    StreamCapture console(consoleOutput());
    QSharedPointer<ChamberSimulation> const chamber = getSimulationByChamberConfigId(readerType(), "127.0.58.10");
    QVERIFY(chamber);
    // Only the signals that take a value first, by key, are printed.
    QCOMPARE(console.text(), QByteArray("Adding Signal PV_B\r\nAdding Signal SPPV_C\r\nAdding Signal PV_A\r\n"));

    QVariant const read = chamber->getSimulationReader()->read(address);
    QCOMPARE(read.userType(), value.userType());
    QCOMPARE(read, value);
}

// A control word takes a write at its next read; nothing written to one
// chamber shows on another of the same type.
void TestChamberFleet::chambersOfOneTypeShareNothing()
{
    StreamCapture console(consoleOutput());
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
