#pragma once

#include "Domain/Types/ActivationState.h"
#include "Domain/Types/ChamberId.h"
#include "Domain/Types/ChamberOperationMode.h"
#include "Domain/Types/ChamberProtocol.h"
#include "Domain/Types/ChamberTypeId.h"
#include "Domain/Types/Converter.h"
#include "Domain/Types/MacAddress.h"
#include "Domain/Types/RoomPosition.h"

#include <QHostAddress>
#include <QMetaType>
#include <QSerialPort>
#include <QString>

namespace zelmor::domain::types {

// One chamber that the monitoring application knows: a row of table "chamber"
// with its place in a room.
class ChamberData
{
public:
    // What the chamber store gives for a row of NULLs: id -1, no address, no serial
    // settings (-1 each), Modbus address 0, protocol UNKNOWN_PROTOCOL, no converter,
    // no room.
    ChamberData();
    ChamberData(const ChamberId& chamberId, const QString& chamberName, const QString& serialNumber,
                const ChamberTypeId& chamberTypeId, const QHostAddress& ipAddress, const MacAddress& macAddress,
                ActivationState::State activationState, bool isArchived, const QString& comPort,
                QSerialPort::BaudRate baudRate, QSerialPort::DataBits dataBits, QSerialPort::StopBits stopBits,
                QSerialPort::Parity parity, quint8 modbusAddress, ChamberProtocol protocol, Converter converter,
                const RoomPosition& roomPosition, ChamberOperationMode::Mode operationMode, bool isSubscribed);

    // All fields but roomPosition.
    bool isEqualWithoutRoomPosition(const ChamberData& other) const;
    bool isRoomPositionEqual(const ChamberData& other) const;
    // The fields that decide how the chamber is reached: network and MAC address,
    // the serial settings, the Modbus address, the protocol and the converter.
    bool isConnectionConfigurationEqual(const ChamberData& other) const;

    ChamberId chamberId;
    QString chamberName;
    QString serialNumber;
    ChamberTypeId chamberTypeId;
    QHostAddress ipAddress;
    MacAddress macAddress;
    ActivationState::State activationState;
    bool isArchived;
    QString comPort;
    QSerialPort::BaudRate baudRate;
    QSerialPort::DataBits dataBits;
    QSerialPort::StopBits stopBits;
    QSerialPort::Parity parity;
    quint8 modbusAddress;
    ChamberProtocol protocol;
    Converter converter;
    RoomPosition roomPosition;
    ChamberOperationMode::Mode operationMode;
    bool isSubscribed;
};

bool operator==(const ChamberData& left, const ChamberData& right);
bool operator!=(const ChamberData& left, const ChamberData& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::ChamberData)
