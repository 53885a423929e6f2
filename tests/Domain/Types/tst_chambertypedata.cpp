#include "Domain/Types/ChamberTypeData.h"

#include <QtTest>

#include <algorithm>

using namespace zelmor::domain::types;

namespace {

QList<ChamberProtocol> protocolsFrom(const QList<int>& numbers)
{
    QList<ChamberProtocol> protocols;
    for (const int number : numbers) {
        protocols << ChamberProtocol(number);
    }
    return protocols;
}

QList<ChamberOption> optionsFrom(const QStringList& names)
{
    QList<ChamberOption> options;
    for (const QString& name : names) {
        options << ChamberOption(name, false);
    }
    return options;
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
    const ControlSignal mode(9, QStringLiteral("Ctrl_OpMode_Mode"), 2, ADMINISTRATOR, registerAt(1, QStringLiteral("0x10")),
                             registerAt(2, QStringLiteral("0x11")));
    return ChamberTypeData(ChamberTypeId(17, 3), QStringLiteral("HX"), QStringLiteral("Z6"), 60, QStringLiteral("230V"),
                           QStringLiteral("hx.png"), QStringLiteral("climate chamber"), QStringLiteral("1.0"),
                           QStringLiteral("2.0"), QStringLiteral("SK"), 5, 9, QStringLiteral("KP"),
                           QStringLiteral("A-100"), QStringLiteral("info"), QStringLiteral("KV2"),
                           protocolsFrom({4, 3}), {{4, signal}}, {{9, mode}},
                           {ChamberOption(QStringLiteral("TimeProgram"), true)},
                           {ChamberOption(QStringLiteral("LQC"), false)});
}

} // namespace

class TestChamberTypeData : public QObject
{
    Q_OBJECT

private slots:
    void constructorOrder();
    void defaultObject();
    void qualifiedTypeName_data();
    void qualifiedTypeName();
    void protocolPredicates_data();
    void protocolPredicates();
    void optionPredicates_data();
    void optionPredicates();
    void operatingModeControlSignal();
    void operatingModeControlSignalPlaceholder_data();
    void operatingModeControlSignalPlaceholder();
    void equalitySkipsThreeFields_data();
    void equalitySkipsThreeFields();

    void controlSignalEqualityIgnoresUserLevel();
    void controlSignalMapOrder();
    void optionNames();
    void controllerAddressOrderByTextOnly();
    void ids();
};

void TestChamberTypeData::constructorOrder()
{
    const ChamberTypeData type = makeType();
    QCOMPARE(type.chamberTypeId, ChamberTypeId(17, 3));
    QCOMPARE(type.type, QStringLiteral("HX"));
    QCOMPARE(type.developementState, QStringLiteral("Z6"));
    QCOMPARE(type.size, 60);
    QCOMPARE(type.voltage, QStringLiteral("230V"));
    QCOMPARE(type.image, QStringLiteral("hx.png"));
    QCOMPARE(type.description, QStringLiteral("climate chamber"));
    QCOMPARE(type.firmwareStart, QStringLiteral("1.0"));
    QCOMPARE(type.firmwareEnde, QStringLiteral("2.0"));
    QCOMPARE(type.setupKennung, QStringLiteral("SK"));
    QCOMPARE(type.setupVersionStart, 5);
    QCOMPARE(type.setupVersionEnde, 9);
    QCOMPARE(type.kennungProgramme, QStringLiteral("KP"));
    QCOMPARE(type.articleNumber, QStringLiteral("A-100"));
    QCOMPARE(type.info, QStringLiteral("info"));
    QCOMPARE(type.controller, QStringLiteral("KV2"));
    QCOMPARE(type.protocols, protocolsFrom({4, 3}));
    QCOMPARE(type.chamberSignals.keys(), QList<int>{4});
    QCOMPARE(type.controlSignals.keys(), QList<int>{9});
    QCOMPARE(type.options.size(), 1);
    QCOMPARE(type.options.first().name, QStringLiteral("TimeProgram"));
    QCOMPARE(type.furtherOptions.size(), 1);
    QCOMPARE(type.furtherOptions.first().name, QStringLiteral("LQC"));
}

void TestChamberTypeData::defaultObject()
{
    const ChamberTypeData type;
    QCOMPARE(type.chamberTypeId.typeId, 0ull);
    QCOMPARE(type.chamberTypeId.additionalInfoId, 0ull);
    QVERIFY(type.type.isEmpty() && type.controller.isEmpty() && type.articleNumber.isEmpty());
    QCOMPARE(type.size, -1);
    QCOMPARE(type.setupVersionStart, -1);
    QCOMPARE(type.setupVersionEnde, -1);
    QVERIFY(type.protocols.isEmpty() && type.chamberSignals.isEmpty() && type.controlSignals.isEmpty());
    QVERIFY(type.options.isEmpty() && type.furtherOptions.isEmpty());
    QVERIFY(type.getQualifiedTypeName().isEmpty());
    QVERIFY(type == ChamberTypeData());
}

void TestChamberTypeData::qualifiedTypeName_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("expected");

    QTest::newRow("type, size and state") << "HX" << 60 << "Z6" << "HX 60 Z6";
    QTest::newRow("size 0 is skipped") << "HX" << 0 << "Z6" << "HX Z6";
    QTest::newRow("size -1 is skipped") << "HX" << -1 << "Z6" << "HX Z6";
    QTest::newRow("no state") << "HX" << 60 << "" << "HX 60";
    QTest::newRow("type alone") << "HX" << -1 << "" << "HX";
    QTest::newRow("size 1") << "KB" << 1 << "" << "KB 1";
    QTest::newRow("empty type with size") << "" << 60 << "" << "";
    QTest::newRow("empty type with size and state") << "" << 60 << "Z6" << "";
}

void TestChamberTypeData::qualifiedTypeName()
{
    QFETCH(QString, type);
    QFETCH(int, size);
    QFETCH(QString, state);
    QFETCH(QString, expected);

    ChamberTypeData data;
    data.type = type;
    data.size = size;
    data.developementState = state;
    QCOMPARE(data.getQualifiedTypeName(), expected);
}

void TestChamberTypeData::protocolPredicates_data()
{
    QTest::addColumn<QList<int>>("protocols");
    QTest::addColumn<bool>("needsModbusAddress");
    QTest::addColumn<bool>("serial");

    QTest::newRow("none") << QList<int>{} << false << false;
    QTest::newRow("1 Modbus RTU") << QList<int>{1} << true << true;
    QTest::newRow("2 tunnel") << QList<int>{2} << true << false;
    QTest::newRow("3 Modbus TCP") << QList<int>{3} << false << false;
    QTest::newRow("4 TLX") << QList<int>{4} << false << false;
    QTest::newRow("5 only") << QList<int>{5} << false << true;
    QTest::newRow("6") << QList<int>{6} << true << false;
    QTest::newRow("7") << QList<int>{7} << true << true;
    QTest::newRow("100 unknown") << QList<int>{100} << false << false;
    QTest::newRow("TLX and Modbus TCP") << QList<int>{4, 3} << false << false;
    QTest::newRow("Modbus TCP and 5") << QList<int>{3, 5} << false << true;
    QTest::newRow("TLX and tunnel") << QList<int>{4, 2} << true << false;
}

void TestChamberTypeData::protocolPredicates()
{
    QFETCH(QList<int>, protocols);
    QFETCH(bool, needsModbusAddress);
    QFETCH(bool, serial);

    ChamberTypeData data;
    data.protocols = protocolsFrom(protocols);
    QCOMPARE(data.requiresModbusAddress(), needsModbusAddress);
    QCOMPARE(data.isSerial(), serial);
}

void TestChamberTypeData::optionPredicates_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QStringList>("furtherOptions");
    QTest::addColumn<QString>("controller");
    QTest::addColumn<bool>("programmable");
    QTest::addColumn<bool>("startable");
    QTest::addColumn<bool>("delayedStartable");
    QTest::addColumn<bool>("dataLogger");

    const QStringList none;
    QTest::newRow("no options") << none << none << "KV2" << false << false << false << false;
    QTest::newRow("TimeProgram") << QStringList{"TimeProgram"} << none << "KV2" << true << false << false << false;
    QTest::newRow("TimeProgram_ZELMOR_4") << QStringList{"TimeProgram_ZELMOR_4"} << none << "KV2" << true << false
                                          << false << false;
    QTest::newRow("WeekProgram only") << QStringList{"WeekProgram"} << none << "KV2" << false << false << false
                                      << false;
    QTest::newRow("WeekProgram_ZELMOR_4 only") << QStringList{"WeekProgram_ZELMOR_4"} << none << "KV2" << false
                                               << false << false << false;
    QTest::newRow("case differs") << QStringList{"timeprogram", "operatingmodeswitching"} << none << "KV2" << false
                                  << false << false << false;
    QTest::newRow("only in furtherOptions") << none << QStringList{"TimeProgram", "Readable_DataStorage"} << "KV2"
                                            << false << false << false << false;
    QTest::newRow("mode switching, PL4") << QStringList{"OperatingModeSwitching"} << none << "PL4" << false << true
                                         << false << false;
    QTest::newRow("mode switching, PL3") << QStringList{"OperatingModeSwitching"} << none << "PL3" << false << true
                                         << true << false;
    QTest::newRow("mode switching, no controller name") << QStringList{"OperatingModeSwitching"} << none << ""
                                                        << false << true << true << false;
    QTest::newRow("mode switching, pl4 lower case") << QStringList{"OperatingModeSwitching"} << none << "pl4"
                                                    << false << true << true << false;
    QTest::newRow("PL4 without mode switching") << QStringList{"TimeProgram"} << none << "PL4" << true << false
                                                << false << false;
    QTest::newRow("data logger") << QStringList{"CO2_Control", "Readable_DataStorage"} << none << "TLX" << false
                                 << false << false << true;
}

void TestChamberTypeData::optionPredicates()
{
    QFETCH(QStringList, options);
    QFETCH(QStringList, furtherOptions);
    QFETCH(QString, controller);
    QFETCH(bool, programmable);
    QFETCH(bool, startable);
    QFETCH(bool, delayedStartable);
    QFETCH(bool, dataLogger);

    ChamberTypeData data;
    data.options = optionsFrom(options);
    data.furtherOptions = optionsFrom(furtherOptions);
    data.controller = controller;
    QCOMPARE(data.isProgrammable(), programmable);
    QCOMPARE(data.isProgramStartable(), startable);
    QCOMPARE(data.isProgramDelayedStartable(), delayedStartable);
    QCOMPARE(data.hasDataLogger(), dataLogger);
}

void TestChamberTypeData::operatingModeControlSignal()
{
    ChamberTypeData data;
    const ControllerAddress read = registerAt(1, QStringLiteral("0x10"));
    data.controlSignals.insert(2, ControlSignal(2, QStringLiteral("Ctrl_Prog_Start"), 0, BASIC, read, read));
    data.controlSignals.insert(7, ControlSignal(7, QStringLiteral("Ctrl_OpMode_Mode"), 4, BASIC, read, read));
    data.controlSignals.insert(5, ControlSignal(5, QStringLiteral("Ctrl_OpMode_Mode"), 1, SERVICE, read, read));

    const ControlSignal found = data.getOperatingModeControlSignal();
    QCOMPARE(int(found.id), 5);
    QCOMPARE(found.bitPosition, 1);
    QCOMPARE(found.userLevel, SERVICE);
    QCOMPARE(found.read, read);
}

void TestChamberTypeData::operatingModeControlSignalPlaceholder_data()
{
    QTest::addColumn<QStringList>("names");

    QTest::newRow("no control signals") << QStringList{};
    QTest::newRow("other names") << QStringList{"Ctrl_Prog_Start", "Ctrl_OpMode"};
    QTest::newRow("case differs") << QStringList{"ctrl_opmode_mode"};
    QTest::newRow("trailing blank") << QStringList{"Ctrl_OpMode_Mode "};
}

void TestChamberTypeData::operatingModeControlSignalPlaceholder()
{
    QFETCH(QStringList, names);

    ChamberTypeData data;
    for (int i = 0; i < names.size(); ++i) {
        data.controlSignals.insert(i, ControlSignal(i, names.at(i), 0, BASIC, registerAt(i, QStringLiteral("0x1")),
                                                    registerAt(i, QStringLiteral("0x1"))));
    }

    const ControlSignal placeholder = data.getOperatingModeControlSignal();
    QCOMPARE(int(placeholder.id), -1);
    QVERIFY(placeholder.name.isEmpty());
    QCOMPARE(placeholder.bitPosition, -1);
    QCOMPARE(int(placeholder.userLevel), 6);
    for (const ControllerAddress& address : {placeholder.read, placeholder.write}) {
        QCOMPARE(int(address.id), -1);
        QVERIFY(address.address.isEmpty());
        QCOMPARE(int(address.access), 3);
        QCOMPARE(int(address.type), 0);
        QCOMPARE(address.arraySize, 1);
        QCOMPARE(address.setPointNr, -1);
        QVERIFY(address.description.isEmpty());
    }
    QCOMPARE(placeholder.read, ControllerAddress::placeholder());
    QCOMPARE(placeholder, ControlSignal::placeholder());
}

void TestChamberTypeData::equalitySkipsThreeFields_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<bool>("equal");

    QTest::newRow("setupVersionStart is skipped") << "setupVersionStart" << true;
    QTest::newRow("setupVersionEnde is skipped") << "setupVersionEnde" << true;
    QTest::newRow("protocols are skipped") << "protocols" << true;
    QTest::newRow("all three at once are skipped") << "allThree" << true;
    QTest::newRow("typeId") << "typeId" << false;
    QTest::newRow("additionalInfoId") << "additionalInfoId" << false;
    QTest::newRow("type") << "type" << false;
    QTest::newRow("developementState") << "developementState" << false;
    QTest::newRow("size") << "size" << false;
    QTest::newRow("voltage") << "voltage" << false;
    QTest::newRow("image") << "image" << false;
    QTest::newRow("description") << "description" << false;
    QTest::newRow("firmwareStart") << "firmwareStart" << false;
    QTest::newRow("firmwareEnde") << "firmwareEnde" << false;
    QTest::newRow("setupKennung") << "setupKennung" << false;
    QTest::newRow("kennungProgramme") << "kennungProgramme" << false;
    QTest::newRow("articleNumber") << "articleNumber" << false;
    QTest::newRow("info") << "info" << false;
    QTest::newRow("controller") << "controller" << false;
    QTest::newRow("a signal's name") << "chamberSignals" << false;
    QTest::newRow("a control signal's bit") << "controlSignals" << false;
    QTest::newRow("an option's fix flag") << "options" << false;
    QTest::newRow("furtherOptions") << "furtherOptions" << false;
}

void TestChamberTypeData::equalitySkipsThreeFields()
{
    QFETCH(QString, field);
    QFETCH(bool, equal);

    const ChamberTypeData original = makeType();
    ChamberTypeData changed = makeType();
    QVERIFY(changed == original);

    if (field == QLatin1String("setupVersionStart")) {
        changed.setupVersionStart = 6;
    } else if (field == QLatin1String("setupVersionEnde")) {
        changed.setupVersionEnde = -1;
    } else if (field == QLatin1String("protocols")) {
        changed.protocols = protocolsFrom({1});
    } else if (field == QLatin1String("allThree")) {
        changed.setupVersionStart = 1;
        changed.setupVersionEnde = 2;
        changed.protocols.clear();
    } else if (field == QLatin1String("typeId")) {
        changed.chamberTypeId.typeId = 18;
    } else if (field == QLatin1String("additionalInfoId")) {
        changed.chamberTypeId.additionalInfoId = 0;
    } else if (field == QLatin1String("type")) {
        changed.type = QStringLiteral("HY");
    } else if (field == QLatin1String("developementState")) {
        changed.developementState = QStringLiteral("Z7");
    } else if (field == QLatin1String("size")) {
        changed.size = 61;
    } else if (field == QLatin1String("voltage")) {
        changed.voltage = QStringLiteral("400V");
    } else if (field == QLatin1String("image")) {
        changed.image.clear();
    } else if (field == QLatin1String("description")) {
        changed.description = QStringLiteral("Climate chamber");
    } else if (field == QLatin1String("firmwareStart")) {
        changed.firmwareStart = QStringLiteral("1.1");
    } else if (field == QLatin1String("firmwareEnde")) {
        changed.firmwareEnde = QStringLiteral("2.1");
    } else if (field == QLatin1String("setupKennung")) {
        changed.setupKennung = QStringLiteral("SL");
    } else if (field == QLatin1String("kennungProgramme")) {
        changed.kennungProgramme = QStringLiteral("KQ");
    } else if (field == QLatin1String("articleNumber")) {
        changed.articleNumber = QStringLiteral("A-101");
    } else if (field == QLatin1String("info")) {
        changed.info = QStringLiteral("other");
    } else if (field == QLatin1String("controller")) {
        changed.controller = QStringLiteral("KV1");
    } else if (field == QLatin1String("chamberSignals")) {
        changed.chamberSignals[4].name = QStringLiteral("PV_Humidity");
    } else if (field == QLatin1String("controlSignals")) {
        changed.controlSignals[9].bitPosition = 3;
    } else if (field == QLatin1String("options")) {
        changed.options[0].fix = false;
    } else if (field == QLatin1String("furtherOptions")) {
        changed.furtherOptions.clear();
    } else {
        QFAIL("unknown field");
    }

    QCOMPARE(changed == original, equal);
    QCOMPARE(original == changed, equal);
    QCOMPARE(changed != original, !equal);
}

void TestChamberTypeData::controlSignalEqualityIgnoresUserLevel()
{
    const ControlSignal base(3, QStringLiteral("Ctrl_OpMode_Mode"), 2, BASIC, registerAt(1, QStringLiteral("0x10")),
                             registerAt(2, QStringLiteral("0x11")));

    ControlSignal otherLevel = base;
    otherLevel.userLevel = SUPERUSER;
    QVERIFY(otherLevel == base);

    ControlSignal otherName = base;
    otherName.name = QStringLiteral("Ctrl_OpMode");
    QVERIFY(otherName != base);

    ControlSignal otherBit = base;
    otherBit.bitPosition = -1;
    QVERIFY(otherBit != base);

    ControlSignal otherId = base;
    otherId.id = 4;
    QVERIFY(otherId != base);

    ControlSignal otherWrite = base;
    otherWrite.write.description = QStringLiteral("changed");
    QVERIFY(otherWrite != base);

    ControlSignal otherRead = base;
    otherRead.read.id = 99;
    QVERIFY(otherRead != base);
}

void TestChamberTypeData::controlSignalMapOrder()
{
    // within one key the later insertion stands in front
    const QList<QPair<int, QString>> expected = {
        {1, "Ctrl_Prog_Remaining"},      {1, "Ctrl_Prog_Time_Remaining"},
        {2, "Ctrl_Prog_Elapsed"},        {2, "Ctrl_Prog_Time_Elapsed"},
        {3, "Ctrl_Prog_Act_ProgNumber"}, {3, "Ctrl_Prog_ProgNumber"},
        {4, "Ctrl_Prog_HaltSignal"},     {5, "Ctrl_Prog_HaltSignal_Tolerance"},
        {6, "Ctrl_Prog_Act_SectNumber"}, {6, "Ctrl_Prog_SectNumber"},
        {6, "Ctrl_Prog_SectNr_ZP1"},
    };

    QList<QPair<int, QString>> actual;
    const auto& map = ControlSignal::controlSignalMap_;
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        actual.append({int(it.key()), it.value()});
    }
    QCOMPARE(actual, expected);
    QCOMPARE(map.values(ControlSignal::ControlSignalEnum(6)).first(), QStringLiteral("Ctrl_Prog_Act_SectNumber"));
}

void TestChamberTypeData::optionNames()
{
    const QStringList& names = ChamberOption::optionNames_;
    QCOMPARE(names.size(), 27);
    QCOMPARE(names.first(), QStringLiteral("TimeProgram"));
    QCOMPARE(names.at(2), QStringLiteral("TimeProgram_ZELMOR_4"));
    QCOMPARE(names.at(10), QStringLiteral("24V_OK/BatteryVoltage/CO2_EmergencyCooling"));
    QCOMPARE(names.at(11), QStringLiteral("OperatingModeSwitching"));
    QCOMPARE(names.at(17), QStringLiteral("Readable_DataStorage"));
    QCOMPARE(names.last(), QStringLiteral("LQC"));
    QStringList unique = names;
    QCOMPARE(unique.removeDuplicates(), 0);

    // every option a predicate looks for is a known name
    for (const char* name : {"TimeProgram", "TimeProgram_ZELMOR_4", "OperatingModeSwitching", "Readable_DataStorage"}) {
        QVERIFY2(names.contains(QLatin1String(name)), name);
    }
}

void TestChamberTypeData::controllerAddressOrderByTextOnly()
{
    QList<ControllerAddress> addresses = {registerAt(1, QStringLiteral("0x2")), registerAt(2, QStringLiteral("0x10")),
                                          registerAt(3, QStringLiteral("0x0A"))};
    std::sort(addresses.begin(), addresses.end());
    // text order, not numeric order
    QCOMPARE(addresses.at(0).address, QStringLiteral("0x0A"));
    QCOMPARE(addresses.at(1).address, QStringLiteral("0x10"));
    QCOMPARE(addresses.at(2).address, QStringLiteral("0x2"));

    // registers that differ only in their id are equivalent in a sort, yet unequal
    const ControllerAddress first = registerAt(1, QStringLiteral("0x10"));
    const ControllerAddress second = registerAt(2, QStringLiteral("0x10"));
    QVERIFY(!(first < second));
    QVERIFY(!(second < first));
    QVERIFY(first != second);
}

void TestChamberTypeData::ids()
{
    ControllerAddressId address;
    QCOMPARE(int(address), -1);
    QVERIFY(address == -1);
    address = 42;
    QVERIFY(address == 42);
    QVERIFY(address != -1);
    QVERIFY(address == ControllerAddressId(42));
    QVERIFY(address != ControllerAddressId(43));
    const int asInt = address;
    QCOMPARE(asInt, 42);

    ControlSignalId control = 7;
    QCOMPARE(int(control), 7);
    control = ControlSignalId(8);
    QVERIFY(control == 8);
    QVERIFY(ControlSignalId() == -1);

    QMap<int, QString> byId;
    byId.insert(ControllerAddressId(5), QStringLiteral("five"));
    QCOMPARE(byId.value(ControllerAddressId(5)), QStringLiteral("five"));

    QVERIFY(ChamberTypeId(1, 2) == ChamberTypeId(1, 2));
    QVERIFY(ChamberTypeId(1, 2) != ChamberTypeId(1, 0));
    QVERIFY(ChamberTypeId(1, 2) != ChamberTypeId(2, 2));
    QVERIFY(ChamberTypeId() == ChamberTypeId(0, 0));
    // ids above 32 bits survive
    QVERIFY(ChamberTypeId(0x100000001ull, 0) != ChamberTypeId(1, 0));
}

QTEST_GUILESS_MAIN(TestChamberTypeData)
#include "tst_chambertypedata.moc"
