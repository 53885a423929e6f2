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
#include "Tools/Simulation/SimulationReader.h"
#include "Tools/Simulation/SimulationSignal.h"
#include "Tools/Simulation/TlxChamberSimulation.h"
#include "support/RtuOverTcp.h"

#include <QBuffer>
#include <QTcpSocket>
#include <QtTest>

using namespace zelmor::simulation;
using namespace zelmor::testsupport;
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
    void init();
    void classChoice_data();
    void classChoice();
    void hundredSlavesOnAConverter();
    void programImage_data();
    void programImage();
    void readerOfAType_data();
    void readerOfAType();
    void controlWordsTakeWritesAtOnce();
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

    using namespace zelmor::domain::types;
    QTest::newRow("TLX") << "TLX" << QList<int>{TLX} << "127.0.58.1" << 4 << "127.0.58.1";
    QTest::newRow("TLX, protocols not looked at") << "TLX" << QList<int>{MODBUS_TCP} << "127.0.58.2" << 4
                                                  << "127.0.58.2";
    QTest::newRow("TLX without protocols") << "TLX" << QList<int>{} << "127.0.58.3" << 4 << "127.0.58.3";
    QTest::newRow("tlx in lower case") << "tlx" << QList<int>{TLX} << "127.0.58.4" << 0 << "";
    QTest::newRow("KV2 with Modbus TCP") << "KV2" << QList<int>{MODBUS_TCP} << "127.0.58.20" << 3 << "127.0.58.20";
    QTest::newRow("KV2 with both: Modbus TCP wins")
        << "KV2" << QList<int>{MODBUS_RTU_TUNNEL, MODBUS_TCP} << "127.0.58.21" << 3 << "127.0.58.21";
    QTest::newRow("KV2 tunnelled") << "KV2" << QList<int>{MODBUS_RTU_TUNNEL} << "127.0.58.22" << 2 << "127.0.58.22";
    // The address is not looked at for KV2: no dotted address needed.
    QTest::newRow("KV2 tunnelled on any text") << "KV2" << QList<int>{MODBUS_RTU_TUNNEL} << "COM3:1" << 2 << "COM3:1";
    QTest::newRow("KV2 on a serial line only") << "KV2" << QList<int>{MODBUS_RTU} << "COM3:1" << 0 << "";
    QTest::newRow("KV1 serial or tunnelled, on a COM port")
        << "KV1" << QList<int>{MODBUS_RTU, MODBUS_RTU_TUNNEL} << "COM3:1" << 1 << "";
    QTest::newRow("KV1 serial or tunnelled, on a dotted address")
        << "KV1" << QList<int>{MODBUS_RTU, MODBUS_RTU_TUNNEL} << "10.0.0.1" << 2 << "10.0.0.1";
    // Both expressions search the text, they don't match it whole.
    QTest::newRow("COM port found inside a path")
        << "KV1" << QList<int>{MODBUS_RTU} << "/tmp/ports/COM3:12" << 1 << "";
    QTest::newRow("dotted address found inside a text")
        << "Q3.1" << QList<int>{MODBUS_RTU_TUNNEL} << "host 127.0.58.23 x" << 2 << "host 127.0.58.23 x";
    // One digit only between "COM" and the colon.
    QTest::newRow("COM port of two digits") << "KV1" << QList<int>{MODBUS_RTU} << "COM63:1" << 0 << "";
    QTest::newRow("COM port without slave") << "Q4" << QList<int>{MODBUS_RTU} << "COM3" << 0 << "";
    QTest::newRow("Q3 tunnelled") << "Q3" << QList<int>{MODBUS_RTU_TUNNEL} << "127.0.58.24" << 2 << "127.0.58.24";
    QTest::newRow("Q3.2 tunnelled") << "Q3.2" << QList<int>{MODBUS_RTU_TUNNEL, MODBUS_ADDRESSED_SERIAL} << "127.0.58.25"
                                    << 2 << "127.0.58.25";
    QTest::newRow("PL4 tunnelled") << "PL4" << QList<int>{MODBUS_RTU_TUNNEL} << "127.0.58.26" << 2 << "127.0.58.26";
    QTest::newRow("Q4 serial") << "Q4" << QList<int>{MODBUS_RTU} << "COM4:2" << 1 << "";
    QTest::newRow("Q3 with Modbus TCP only") << "Q3" << QList<int>{MODBUS_TCP} << "127.0.58.5" << 0 << "";
    QTest::newRow("tunnelled only, on a COM port") << "Q4" << QList<int>{MODBUS_RTU_TUNNEL} << "COM1:1" << 0 << "";
    QTest::newRow("serial only, on a dotted address") << "KV1" << QList<int>{MODBUS_RTU} << "127.0.58.6" << 0 << "";
    QTest::newRow("PL3 builds nothing") << "PL3" << QList<int>{MODBUS_RTU, MODBUS_RTU_TUNNEL} << "127.0.58.7" << 0
                                        << "";
    QTest::newRow("no controller") << "" << QList<int>{TLX} << "127.0.58.8" << 0 << "";
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

    ConsoleCapture console;
    QSharedPointer<ChamberSimulation> const chamber = getSimulationByChamberConfigId(type, address);
    QCOMPARE(chamber.isNull(), protocolId == 0);
    if (!chamber)
        return;
    QCOMPARE(chamber->getProtocolId(), protocolId);
    bool const rightClass = (protocolId == 1 && chamber.dynamicCast<ModbusChamberSimulation>())
        || (protocolId == 2 && chamber.dynamicCast<ModbusRtuOverTcpChamberSimulation>())
        || (protocolId == 3 && chamber.dynamicCast<ModbusTcpChamberSimulation>())
        || (protocolId == 4 && chamber.dynamicCast<TlxChamberSimulation>());
    QVERIFY(rightClass);
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

// Up to 100 tunnelled chambers share one converter, whatever address each
// was asked for; the 101st opens a converter on its own address as slave 1.
void TestChamberFleet::hundredSlavesOnAConverter()
{
    ChamberTypeData type;
    type.controller = QStringLiteral("Q3");
    type.protocols = {zelmor::domain::types::MODBUS_RTU_TUNNEL};
    ConsoleCapture console;
    QList<QSharedPointer<ChamberSimulation>> chambers;
    for (int index = 0; index < 101; ++index) {
        QString const asked = index == 0 ? QStringLiteral("127.0.58.30") : QStringLiteral("127.0.58.31");
        chambers.append(getSimulationByChamberConfigId(type, asked));
        QVERIFY(chambers.last());
        QCOMPARE(chambers.last()->getIpAddress(), index < 100 ? QStringLiteral("127.0.58.30") : asked);
        QCOMPARE(chambers.last()->getModbusAddress(), index < 100 ? index + 1 : 1);
    }
    QCOMPARE(currentModbusConverterIpAddress, QStringLiteral("127.0.58.31"));
    QCOMPARE(currentModbusConverterModbusAdr, 2);

    // On the wire: register 0 reads as the int 1 of the logger's table.
    auto const answers = [](QString const& converter, char slave) {
        QTcpSocket client;
        client.connectToHost(QHostAddress(converter), ModbusRtuOverTcpChamberSimulation::converterPort_);
        // Read one value from register 0, quantity 2.
        QByteArray const request = withCrc(QByteArray(1, slave) + QByteArray("\x03\0\0\0\x02", 5));
        if (!client.waitForConnected(5000) || !deliver(client, request))
            return QByteArray("no connection");
        return receive(client, 9, 500);
    };
    QCOMPARE(answers("127.0.58.30", 100), withCrc(QByteArray("\x64\x03\x04\0\0\0\x01", 7)));
    QCOMPARE(answers("127.0.58.30", 101), QByteArray());
    QCOMPARE(answers("127.0.58.31", 1), withCrc(QByteArray("\x01\x03\x04\0\0\0\x01", 7)));
    QCOMPARE(answers("127.0.58.31", 2), QByteArray());
}

void TestChamberFleet::programImage_data()
{
    QTest::addColumn<QString>("controller");
    QTest::addColumn<int>("protocol");
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("image"); // the class of the first child; empty: none

    using namespace zelmor::domain::types;
    QTest::newRow("KV2, time program") << "KV2" << int(MODBUS_TCP) << "TimeProgram" << "Kv2";
    QTest::newRow("KV2, ZELMOR 4 time program") << "KV2" << int(MODBUS_RTU_TUNNEL) << "TimeProgram_ZELMOR_4"
                                                << "Kv2";
    QTest::newRow("KV2, week program only") << "KV2" << int(MODBUS_TCP) << "WeekProgram" << "";
    QTest::newRow("KV1 tunnelled") << "KV1" << int(MODBUS_RTU_TUNNEL) << "TimeProgram" << "Kv1";
    QTest::newRow("KV1 not programmable") << "KV1" << int(MODBUS_RTU_TUNNEL) << "" << "";
    QTest::newRow("PL4") << "PL4" << int(MODBUS_RTU_TUNNEL) << "TimeProgram" << "Pl4";
    QTest::newRow("Q3") << "Q3" << int(MODBUS_RTU_TUNNEL) << "TimeProgram" << "";
    QTest::newRow("Q3.1") << "Q3.1" << int(MODBUS_RTU_TUNNEL) << "TimeProgram" << "";
    QTest::newRow("Q3.2") << "Q3.2" << int(MODBUS_RTU_TUNNEL) << "TimeProgram" << "";
    QTest::newRow("Q4") << "Q4" << int(MODBUS_RTU_TUNNEL) << "TimeProgram_ZELMOR_4" << "";
    QTest::newRow("TLX") << "TLX" << int(TLX) << "TimeProgram" << "";
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
        type.options = {zelmor::domain::types::ChamberOption(option)};
    // A signal behind the image, so that the image is seen to come first.
    type.chamberSignals.insert(1, makeSignal("PV_A", ChamberSignal::PROCESS_VALUE, "2000", QMetaType::Float,
                                             Unit::CELSIUS));

    ConsoleCapture console;
    QSharedPointer<ChamberSimulation> const chamber = getSimulationByChamberConfigId(type, "127.0.58.40");
    QVERIFY(chamber);
    auto const device = chamber->getSimulationReader().dynamicCast<SimulationDevice>();
    QVERIFY(device);
    QList<QSharedPointer<SimulationReader>> const children = device->getChildren();
    QCOMPARE(children.size(), image.isEmpty() ? 1 : 2);
    QSharedPointer<SimulationReader> const first = children.first();
    QCOMPARE(!first.dynamicCast<Kv2ProgramOption>().isNull(), image == QLatin1String("Kv2"));
    QCOMPARE(!first.dynamicCast<Kv1ProgramOption>().isNull(), image == QLatin1String("Kv1"));
    QCOMPARE(!first.dynamicCast<Pl4ProgramOption>().isNull(), image == QLatin1String("Pl4"));
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
