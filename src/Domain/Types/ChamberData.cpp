#include "Domain/Types/ChamberData.h"

namespace zelmor::domain::types {

ChamberData::ChamberData()
    : ChamberData(-1, QString(), QString(), ChamberTypeId(), QHostAddress(), MacAddress(),
                  ActivationState::UNKNOWN_STATE, false, QString(), QSerialPort::BaudRate(-1),
                  QSerialPort::DataBits(-1), QSerialPort::StopBits(-1), QSerialPort::Parity(-1), 0, UNKNOWN_PROTOCOL,
                  NO_CONVERTER, RoomPosition(), ChamberOperationMode::UNKNOWN_MODE, false)
{
}

ChamberData::ChamberData(const ChamberId& chamberId, const QString& chamberName, const QString& serialNumber,
                         const ChamberTypeId& chamberTypeId, const QHostAddress& ipAddress,
                         const MacAddress& macAddress, ActivationState::State activationState, bool isArchived,
                         const QString& comPort, QSerialPort::BaudRate baudRate, QSerialPort::DataBits dataBits,
                         QSerialPort::StopBits stopBits, QSerialPort::Parity parity, quint8 modbusAddress,
                         ChamberProtocol protocol, Converter converter, const RoomPosition& roomPosition,
                         ChamberOperationMode::Mode operationMode, bool isSubscribed)
    : chamberId(chamberId)
    , chamberName(chamberName)
    , serialNumber(serialNumber)
    , chamberTypeId(chamberTypeId)
    , ipAddress(ipAddress)
    , macAddress(macAddress)
    , activationState(activationState)
    , isArchived(isArchived)
    , comPort(comPort)
    , baudRate(baudRate)
    , dataBits(dataBits)
    , stopBits(stopBits)
    , parity(parity)
    , modbusAddress(modbusAddress)
    , protocol(protocol)
    , converter(converter)
    , roomPosition(roomPosition)
    , operationMode(operationMode)
    , isSubscribed(isSubscribed)
{
}

bool ChamberData::isEqualWithoutRoomPosition(const ChamberData& other) const
{
    return chamberId == other.chamberId && chamberName == other.chamberName && serialNumber == other.serialNumber
           && chamberTypeId == other.chamberTypeId && activationState == other.activationState
           && isArchived == other.isArchived && isConnectionConfigurationEqual(other)
           && operationMode == other.operationMode && isSubscribed == other.isSubscribed;
}

bool ChamberData::isRoomPositionEqual(const ChamberData& other) const
{
    return roomPosition == other.roomPosition;
}

bool ChamberData::isConnectionConfigurationEqual(const ChamberData& other) const
{
    return ipAddress == other.ipAddress && macAddress == other.macAddress && comPort == other.comPort
           && baudRate == other.baudRate && dataBits == other.dataBits && stopBits == other.stopBits
           && parity == other.parity && modbusAddress == other.modbusAddress && protocol == other.protocol
           && converter == other.converter;
}

bool operator==(const ChamberData& left, const ChamberData& right)
{
    return left.isEqualWithoutRoomPosition(right) && left.isRoomPositionEqual(right);
}

bool operator!=(const ChamberData& left, const ChamberData& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
