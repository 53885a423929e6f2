// The class choice and the reader that the fleet construction builds for a
// chamber type, on hand-made types and this binary's addresses 127.0.58.x
// (tunnelled chambers open their converters there on port 10001).

#include "Domain/Types/ChamberTypeData.h"
#include "Domain/Types/ControllerAddress.h"
#include "Tools/Simulation/ChamberFleet.h"
#include "Tools/Simulation/ConsoleOutput.h"
#include "Tools/Simulation/ModbusChamberSimulation.h"
#include "Tools/Simulation/SimulationDevice.h"
#include "Tools/Simulation/SimulationSignal.h"
#include "support/StreamCapture.h"

#include <QtTest>

#include <typeinfo>

using namespace zelmor::simulation;
using namespace zelmor::domain::types;
using zelmor::testsupport::StreamCapture;

namespace {

QSharedPointer<ControllerAddress> registerAt(const QString& text, QMetaType::Type type)
{
    auto result = QSharedPointer<ControllerAddress>::create();
    std::tie(result->address, result->type) = std::make_tuple(text, type);
    return result;
}

ChamberSignal makeSignal(const QString& name, ChamberSignal::SignalType signalType, const QString& read,
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
    type.controller = QStringLiteral("TLX");
    ChamberSignal setPoint = makeSignal("SP_A", ChamberSignal::SET_POINT, "1B", QMetaType::Float, Unit::CELSIUS);
    setPoint.writeManual = registerAt("1B", QMetaType::Float);
    ChamberSignal processValue =
        makeSignal("PV_A", ChamberSignal::PROCESS_VALUE, "1A", QMetaType::Float, Unit::CELSIUS);
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
    const auto control = [&type](int key, const QString& read, const QString& write, QMetaType::Type valueType) {
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

// Also the program image, the first child of the reader when there is one.
void TestChamberFleet::classChoice_data()
{
    QTest::addColumn<QString>("controller");
    QTest::addColumn<QList<int>>("protocols");
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("protocolId");   // 0: no chamber
    QTest::addColumn<QByteArray>("image"); // class of the image; empty: none
    QTest::addColumn<bool>("programmable");

    auto row = [](const char* name, const char* controller, QList<int> protocols, const char* address, int protocolId,
                  const char* image = "", bool programmable = true) {
        QTest::newRow(name) << controller << protocols << address << protocolId << QByteArray(image) << programmable;
    };
    row("TLX, protocols not looked at", "TLX", {MODBUS_TCP}, "127.0.58.2", 4);
    row("tlx in lower case", "tlx", {TLX}, "127.0.58.4", 0);
    row("KV2 with both: Modbus TCP wins", "KV2", {MODBUS_RTU_TUNNEL, MODBUS_TCP}, "127.0.58.21", 3, "Kv2ProgramOption");
    row("KV2 without time program", "KV2", {MODBUS_TCP}, "127.0.58.20", 3, "", false);
    // The address is not looked at for KV2: no dotted address needed.
    row("KV2 tunnelled on any text", "KV2", {MODBUS_RTU_TUNNEL}, "COM3:1", 2, "Kv2ProgramOption");
    row("KV2 on a serial line only", "KV2", {MODBUS_RTU}, "COM3:1", 0);
    // Serial or tunnelled: the address decides.
    row("KV1 on a COM port", "KV1", {MODBUS_RTU, MODBUS_RTU_TUNNEL}, "COM3:1", 1, "Kv1ProgramOption");
    row("KV1 on a dotted address", "KV1", {MODBUS_RTU, MODBUS_RTU_TUNNEL}, "10.0.0.1", 2, "Kv1ProgramOption");
    row("PL4 tunnelled", "PL4", {MODBUS_RTU_TUNNEL}, "127.0.58.22", 2, "Pl4ProgramOption");
    // Both expressions search the text, they don't match it whole.
    row("COM port found inside a path", "Q4", {MODBUS_RTU}, "/tmp/ports/COM3:12", 1);
    row("dotted address found inside a text", "Q3.1", {MODBUS_RTU_TUNNEL}, "host 127.0.58.23 x", 2);
    // One digit only between "COM" and the colon.
    row("COM port of two digits", "KV1", {MODBUS_RTU}, "COM63:1", 0);
    row("Q3 with Modbus TCP only", "Q3", {MODBUS_TCP}, "127.0.58.5", 0);
    row("tunnelled only, on a COM port", "PL4", {MODBUS_RTU_TUNNEL}, "COM1:1", 0);
}

void TestChamberFleet::classChoice()
{
    QFETCH(QString, controller);
    QFETCH(QList<int>, protocols);
    QFETCH(QString, address);
    QFETCH(int, protocolId);
    QFETCH(QByteArray, image);
    QFETCH(bool, programmable);
    ChamberTypeData type;
    type.controller = controller;
    for (int protocol : protocols)
        type.protocols.append(ChamberProtocol(protocol));
    type.options = {ChamberOption(programmable ? "TimeProgram" : "WeekProgram")};
    // A signal behind the image, so that the image is seen to come first.
    type.chamberSignals.insert(
        1, makeSignal("PV_A", ChamberSignal::PROCESS_VALUE, "2000", QMetaType::Float, Unit::CELSIUS));

    StreamCapture console(consoleOutput());
    const QSharedPointer<ChamberSimulation> chamber = getSimulationByChamberConfigId(type, address);
    QCOMPARE(chamber.isNull(), protocolId == 0);
    if (!chamber)
        return;
    const char* const classes[] = {"", "ModbusChamberSimulation", "ModbusRtuOverTcpChamberSimulation",
                                   "ModbusTcpChamberSimulation", "TlxChamberSimulation"};
    QVERIFY2(QByteArray(typeid(*chamber).name()).contains(classes[protocolId]), typeid(*chamber).name());
    QCOMPARE(chamber->getProtocolId(), protocolId);
    // The first tunnelled chamber of a run opens a converter on its address, as slave 1.
    QCOMPARE(chamber->getIpAddress(), protocolId == 1 ? QString() : address);
    QCOMPARE(chamber->getModbusAddress(), protocolId == 2 ? 1 : 0);
    if (protocolId == 1) {
        const auto serial = chamber.staticCast<ModbusChamberSimulation>();
        QCOMPARE(serial->getSerialPortName() + ':' + QString::number(serial->getServerAddress()), address);
    }

    const auto device = chamber->getSimulationReader().dynamicCast<SimulationDevice>();
    QVERIFY(device);
    const QList<QSharedPointer<SimulationReader>> children = device->getChildren();
    QCOMPARE(children.size(), image.isEmpty() ? 1 : 2);
    const QByteArray firstClass = typeid(*children.first()).name();
    QVERIFY2(firstClass.contains(image.isEmpty() ? "SimulationSignal" : image), firstClass.constData());
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
    const QSharedPointer<ChamberSimulation> chamber = getSimulationByChamberConfigId(readerType(), "127.0.58.10");
    QVERIFY(chamber);
    // Only the signals that take a value first, by key, are printed; the
    // deferred ones follow, but not the set point PV_A took in, nor a second PV_B.
    QCOMPARE(console.text(), QByteArray("Adding Signal PV_B\r\nAdding Signal SPPV_C\r\nAdding Signal PV_A\r\n"));
    QStringList names;
    for (const auto& child : chamber->getSimulationReader().staticCast<SimulationDevice>()->getChildren()) {
        if (const auto signal = child.dynamicCast<SimulationSignal>())
            names << signal->getSignalNames().join('+');
    }
    QCOMPARE(names.join(' '), QStringLiteral("PV_B SPPV_C PV_A+SP_A SP_Alone X"));

    const QVariant read = chamber->getSimulationReader()->read(address);
    QCOMPARE(read.userType(), value.userType());
    QCOMPARE(read, value);
}

// A control word takes a write at its next read; nothing written to one
// chamber shows on another of the same type, and each has its own type.
void TestChamberFleet::chambersOfOneTypeShareNothing()
{
    StreamCapture console(consoleOutput());
    const ChamberTypeData type = readerType();
    const QSharedPointer<ChamberSimulation> first = getSimulationByChamberConfigId(type, "127.0.58.12");
    const QSharedPointer<ChamberSimulation> second = getSimulationByChamberConfigId(type, "127.0.58.13");
    QVERIFY(first->getSimulationReader()->write(0x70, 7));
    QCOMPARE(first->getSimulationReader()->read(0x70), QVariant(7));
    QCOMPARE(second->getSimulationReader()->read(0x70), QVariant(0));
    QVERIFY(first->getChamberType() != second->getChamberType());
}

QTEST_GUILESS_MAIN(TestChamberFleet)
#include "tst_chamberfleet.moc"
