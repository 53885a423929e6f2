#include "Domain/Types/ChamberTypeData.h"

#include <QtTest>

#include <functional>

using namespace zelmor::domain::types;

using Change = std::function<void(ChamberTypeData&)>;
Q_DECLARE_METATYPE(Change)

#define CHANGE(...) Change([](ChamberTypeData& t) { __VA_ARGS__; })

namespace {

QList<ChamberProtocol> protocolsFrom(const QList<int>& numbers)
{
    QList<ChamberProtocol> protocols;
    for (const int number : numbers) {
        protocols << ChamberProtocol(number);
    }
    return protocols;
}

ControllerAddress registerAt(int id, const QString& address)
{
    return ControllerAddress(id, address, ControllerAddress::READ_WRITE, QMetaType::UShort, 1, -1,
                             QStringLiteral("mode"));
}

ChamberTypeData makeType()
{
    ChamberSignal signal;
    signal.id = 4;
    signal.name = QStringLiteral("PV_Temperature");
    const ControlSignal mode(9, QStringLiteral("Ctrl_OpMode_Mode"), 2, ADMINISTRATOR,
                             registerAt(1, QStringLiteral("0x10")), registerAt(2, QStringLiteral("0x11")));
    return ChamberTypeData(
        ChamberTypeId(17, 3), QStringLiteral("HX"), QStringLiteral("Z6"), 60, QStringLiteral("230V"),
        QStringLiteral("hx.png"), QStringLiteral("climate chamber"), QStringLiteral("1.0"), QStringLiteral("2.0"),
        QStringLiteral("SK"), 5, 9, QStringLiteral("KP"), QStringLiteral("A-100"), QStringLiteral("info"),
        QStringLiteral("KV2"), protocolsFrom({4, 3}), {{4, signal}}, {{9, mode}},
        {ChamberOption(QStringLiteral("TimeProgram"), true)}, {ChamberOption(QStringLiteral("LQC"), false)});
}

} // namespace

class TestChamberTypeData : public QObject
{
    Q_OBJECT

private slots:
    void qualifiedTypeName_data();
    void qualifiedTypeName();
    void protocolPredicates_data();
    void protocolPredicates();
    void optionPredicates_data();
    void optionPredicates();
    void operatingModeControlSignal_data();
    void operatingModeControlSignal();
    void equalitySkipsThreeFields_data();
    void equalitySkipsThreeFields();
    void staticTablesAndAddressOrder();
};

void TestChamberTypeData::qualifiedTypeName_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("expected");

    QTest::newRow("type, size and state") << "HX" << 60 << "Z6"
                                          << "HX 60 Z6";
    QTest::newRow("size 0 is skipped") << "HX" << 0 << "Z6"
                                       << "HX Z6";
    QTest::newRow("size -1, no state") << "HX" << -1 << ""
                                       << "HX";
    QTest::newRow("empty type with size and state") << "" << 60 << "Z6"
                                                    << "";
}

void TestChamberTypeData::qualifiedTypeName()
{
    QFETCH(QString, type);
    QFETCH(int, size);
    QFETCH(QString, state);

    ChamberTypeData data;
    data.type = type;
    data.size = size;
    data.developementState = state;
    QTEST(data.getQualifiedTypeName(), "expected");
}

void TestChamberTypeData::protocolPredicates_data()
{
    QTest::addColumn<QList<int>>("protocols");
    QTest::addColumn<bool>("needsModbusAddress");
    QTest::addColumn<bool>("serial");

    QTest::newRow("none") << QList<int>{} << false << false;
    QTest::newRow("1 Modbus RTU") << QList<int>{1} << true << true;
    QTest::newRow("2 tunnel") << QList<int>{2} << true << false;
    QTest::newRow("5 only") << QList<int>{5} << false << true;
    QTest::newRow("TLX, Modbus TCP, unknown") << QList<int>{4, 3, 100} << false << false;
    QTest::newRow("TLX and 7") << QList<int>{4, 7} << true << true;
}

void TestChamberTypeData::protocolPredicates()
{
    QFETCH(QList<int>, protocols);

    ChamberTypeData data;
    data.protocols = protocolsFrom(protocols);
    QTEST(data.requiresModbusAddress(), "needsModbusAddress");
    QTEST(data.isSerial(), "serial");
}

void TestChamberTypeData::optionPredicates_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("controller");
    QTest::addColumn<QList<bool>>("expected"); // programmable, startable, delayed startable, data logger

    using F = QList<bool>;
    const QString modeSwitch = QStringLiteral("OperatingModeSwitching");
    QTest::newRow("TimeProgram") << QStringList{"TimeProgram"} << "PL4" << F{true, false, false, false};
    QTest::newRow("TimeProgram_ZELMOR_4")
        << QStringList{"TimeProgram_ZELMOR_4"} << "KV2" << F{true, false, false, false};
    QTest::newRow("case differs") << QStringList{"timeprogram", "operatingmodeswitching", "readable_datastorage"}
                                  << "KV2" << F{false, false, false, false};
    QTest::newRow("mode switching, PL4") << QStringList{modeSwitch} << "PL4" << F{false, true, false, false};
    QTest::newRow("mode switching, pl4") << QStringList{modeSwitch} << "pl4" << F{false, true, true, false};
    QTest::newRow("data logger") << QStringList{"CO2_Control", "Readable_DataStorage"} << "TLX"
                                 << F{false, false, false, true};
}

void TestChamberTypeData::optionPredicates()
{
    QFETCH(QStringList, options);
    QFETCH(QString, controller);

    ChamberTypeData data;
    for (const QString& name : options) {
        data.options << ChamberOption(name, false);
    }
    data.controller = controller;
    QTEST(QList<bool>({data.isProgrammable(), data.isProgramStartable(), data.isProgramDelayedStartable(),
                       data.hasDataLogger()}),
          "expected");

    // the second option list plays no part
    data.furtherOptions = data.options;
    data.options.clear();
    QVERIFY(!data.isProgrammable() && !data.isProgramStartable() && !data.hasDataLogger());
}

void TestChamberTypeData::operatingModeControlSignal_data()
{
    QTest::addColumn<QStringList>("names"); // inserted under keys 10, 9, 8, ...
    QTest::addColumn<int>("expectedKey");   // -1: the placeholder

    QTest::newRow("other names") << QStringList{"Ctrl_Prog_Start", "ctrl_opmode_mode", "Ctrl_OpMode_Mode "} << -1;
    QTest::newRow("lowest key wins") << QStringList{"Ctrl_OpMode_Mode", "Ctrl_Prog_Start", "Ctrl_OpMode_Mode"} << 8;
}

void TestChamberTypeData::operatingModeControlSignal()
{
    QFETCH(QStringList, names);
    QFETCH(int, expectedKey);

    ChamberTypeData data;
    for (int i = 0; i < names.size(); ++i) {
        const int key = 10 - i;
        const ControllerAddress address = registerAt(key, QStringLiteral("0x1"));
        data.controlSignals.insert(key, ControlSignal(key, names.at(i), key, SERVICE, address, address));
    }

    const ControlSignal found = data.getOperatingModeControlSignal();
    if (expectedKey != -1) {
        QCOMPARE(found, data.controlSignals.value(expectedKey));
        QCOMPARE(found.userLevel, SERVICE);
        return;
    }
    // the placeholder: no id, no bit, no register type, for the highest level only
    QVERIFY(found.name.isNull());
    QCOMPARE(QList<int>({found.id, found.bitPosition, int(found.userLevel), int(found.read.type), found.write.id}),
             QList<int>({-1, -1, 6, int(QMetaType::UnknownType), -1}));
}

void TestChamberTypeData::equalitySkipsThreeFields_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<bool>("equal");

    QTest::newRow("setupVersionStart is skipped") << CHANGE(t.setupVersionStart = 6) << true;
    QTest::newRow("setupVersionEnde is skipped") << CHANGE(t.setupVersionEnde = -1) << true;
    QTest::newRow("protocols are skipped") << CHANGE(t.protocols = protocolsFrom({1})) << true;
    QTest::newRow("typeId beyond 32 bits") << CHANGE(t.chamberTypeId.typeId += 0x100000000ull) << false;
    QTest::newRow("type") << CHANGE(t.type = "HY") << false;
    QTest::newRow("a signal's name") << CHANGE(t.chamberSignals[4].name = "PV_Humidity") << false;
    QTest::newRow("a control signal's bit") << CHANGE(t.controlSignals[9].bitPosition = 3) << false;
    QTest::newRow("a control signal's user level is skipped") << CHANGE(t.controlSignals[9].userLevel = BASIC) << true;
    QTest::newRow("a control signal's read id") << CHANGE(t.controlSignals[9].read.id = 99) << false;
    QTest::newRow("an option's fix flag") << CHANGE(t.options[0].fix = false) << false;
    QTest::newRow("furtherOptions") << CHANGE(t.furtherOptions.clear()) << false;
}

void TestChamberTypeData::equalitySkipsThreeFields()
{
    QFETCH(Change, change);
    QFETCH(bool, equal);

    const ChamberTypeData original = makeType();
    ChamberTypeData changed = makeType();
    QVERIFY(changed == original);
    change(changed);
    QCOMPARE(changed == original, equal);
    QCOMPARE(original == changed, equal);
}

void TestChamberTypeData::staticTablesAndAddressOrder()
{
    // a few rows of the names tables; within one key the later insertion stands in front
    QCOMPARE(ControlSignal::controlSignalMap_.size(), 11);
    QCOMPARE(ControlSignal::controlSignalMap_.values(ControlSignal::ControlSignalEnum(6)),
             QStringList({"Ctrl_Prog_Act_SectNumber", "Ctrl_Prog_SectNumber", "Ctrl_Prog_SectNr_ZP1"}));
    QCOMPARE(ChamberOption::optionNames_.size(), 27);
    QCOMPARE(ChamberOption::optionNames_.at(10), QStringLiteral("24V_OK/BatteryVoltage/CO2_EmergencyCooling"));
    QCOMPARE(ChamberOption::optionNames_.last(), QStringLiteral("LQC"));

    // registers sort by the text of their address, not its number; nothing else plays a part in the order
    const ControllerAddress first = registerAt(1, QStringLiteral("0x10"));
    const ControllerAddress second = registerAt(2, QStringLiteral("0x10"));
    QVERIFY(registerAt(3, QStringLiteral("0x0A")) < first && first < registerAt(4, QStringLiteral("0x2")));
    QVERIFY(!(first < second) && !(second < first) && first != second);
}

QTEST_GUILESS_MAIN(TestChamberTypeData)
#include "tst_chambertypedata.moc"
