#include "Domain/Types/ChamberData.h"

#include <QtTest>

using namespace zelmor::domain::types;

namespace {

ChamberData makeChamber()
{
    return ChamberData(7, QStringLiteral("Lab 1"), QStringLiteral("SN-0042"), ChamberTypeId(3, 1),
                       QHostAddress(QStringLiteral("192.168.10.20")), MacAddress("00:1a:2b:3c:4d:5e"),
                       ActivationState::ACTIVE, false, QStringLiteral("COM3"), QSerialPort::Baud9600,
                       QSerialPort::Data8, QSerialPort::OneStop, QSerialPort::NoParity, 17, MODBUS_RTU_TUNNEL,
                       XPORT_CONVERTER, RoomPosition(2, QPointF(10.5, 4.0)), ChamberOperationMode::MANUAL, true);
}

void change(ChamberData& chamber, const QString& field)
{
    if (field == QLatin1String("chamberId")) {
        chamber.chamberId = 8;
    } else if (field == QLatin1String("chamberName")) {
        chamber.chamberName = QStringLiteral("Lab 2");
    } else if (field == QLatin1String("serialNumber")) {
        chamber.serialNumber.clear();
    } else if (field == QLatin1String("chamberTypeId")) {
        chamber.chamberTypeId.additionalInfoId = 0;
    } else if (field == QLatin1String("ipAddress")) {
        chamber.ipAddress = QHostAddress(QStringLiteral("192.168.10.21"));
    } else if (field == QLatin1String("macAddress")) {
        chamber.macAddress = MacAddress("00:1a:2b:3c:4d:5f");
    } else if (field == QLatin1String("activationState")) {
        chamber.activationState = ActivationState::INACTIVE;
    } else if (field == QLatin1String("isArchived")) {
        chamber.isArchived = true;
    } else if (field == QLatin1String("comPort")) {
        chamber.comPort = QStringLiteral("COM4");
    } else if (field == QLatin1String("baudRate")) {
        chamber.baudRate = QSerialPort::Baud19200;
    } else if (field == QLatin1String("dataBits")) {
        chamber.dataBits = QSerialPort::Data7;
    } else if (field == QLatin1String("stopBits")) {
        chamber.stopBits = QSerialPort::TwoStop;
    } else if (field == QLatin1String("parity")) {
        chamber.parity = QSerialPort::EvenParity;
    } else if (field == QLatin1String("modbusAddress")) {
        chamber.modbusAddress = 18;
    } else if (field == QLatin1String("protocol")) {
        chamber.protocol = MODBUS_TCP;
    } else if (field == QLatin1String("converter")) {
        chamber.converter = WUT_CONVERTER;
    } else if (field == QLatin1String("room")) {
        chamber.roomPosition.roomId = 3;
    } else if (field == QLatin1String("position")) {
        chamber.roomPosition.position.ry() += 0.5;
    } else if (field == QLatin1String("operationMode")) {
        chamber.operationMode = ChamberOperationMode::PROGRAM;
    } else if (field == QLatin1String("isSubscribed")) {
        chamber.isSubscribed = false;
    }
}

} // namespace

class TestChamberData : public QObject
{
    Q_OBJECT

private slots:
    void comparisons_data();
    void comparisons();
};

void TestChamberData::comparisons_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<bool>("equal");
    QTest::addColumn<bool>("equalWithoutRoomPosition");
    QTest::addColumn<bool>("roomPositionEqual");
    QTest::addColumn<bool>("connectionConfigurationEqual");

    const auto chamberField = [](const char* field) {
        QTest::newRow(field) << QString::fromLatin1(field) << false << false << true << true;
    };
    const auto connectionField = [](const char* field) {
        QTest::newRow(field) << QString::fromLatin1(field) << false << false << true << false;
    };
    const auto positionField = [](const char* field) {
        QTest::newRow(field) << QString::fromLatin1(field) << false << true << false << true;
    };

    QTest::newRow("nothing") << QString() << true << true << true << true;
    chamberField("chamberId");
    chamberField("chamberName");
    chamberField("serialNumber");
    chamberField("chamberTypeId");
    connectionField("ipAddress");
    connectionField("macAddress");
    chamberField("activationState");
    chamberField("isArchived");
    connectionField("comPort");
    connectionField("baudRate");
    connectionField("dataBits");
    connectionField("stopBits");
    connectionField("parity");
    connectionField("modbusAddress");
    connectionField("protocol");
    connectionField("converter");
    positionField("room");
    positionField("position");
    chamberField("operationMode");
    chamberField("isSubscribed");
}

void TestChamberData::comparisons()
{
    QFETCH(QString, field);

    const ChamberData chamber = makeChamber();
    ChamberData other = chamber;
    change(other, field);

    QTEST(chamber == other, "equal");
    QCOMPARE(chamber != other, !(chamber == other));
    QTEST(chamber.isEqualWithoutRoomPosition(other), "equalWithoutRoomPosition");
    QTEST(chamber.isRoomPositionEqual(other), "roomPositionEqual");
    QTEST(chamber.isConnectionConfigurationEqual(other), "connectionConfigurationEqual");
    // each comparison is the same either way round
    QTEST(other.isEqualWithoutRoomPosition(chamber), "equalWithoutRoomPosition");
    QTEST(other.isConnectionConfigurationEqual(chamber), "connectionConfigurationEqual");
}

QTEST_GUILESS_MAIN(TestChamberData)
#include "tst_chamberdata.moc"
