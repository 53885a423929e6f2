#include "Base/Connection/DatabaseConnection/SqlChamberRow.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Base/Connection/DatabaseConnection/sqlvalue.h"
#include "Domain/Types/ChamberData.h"

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;
using zelmor::domain::api::ChamberProperty;

namespace {

using DC = DatabaseSchema;

// Positions in a chamber row: prepareChamberColumnNames().
enum ChamberColumn {
    CHAMBER_ID,
    CHAMBER_NAME,
    CHAMBER_SERIAL_NO,
    CHAMBER_TYPE_ID,
    CHAMBER_TYPE_ADDITIONAL_INFO_ID,
    CHAMBER_IP_V4_ADDRESS,
    CHAMBER_IP_V6_ADDRESS,
    CHAMBER_MAC_ADDRESS,
    CHAMBER_IS_ACTIVE,
    CHAMBER_IS_ARCHIVED,
    CHAMBER_COM_PORT,
    CHAMBER_BAUD_RATE,
    CHAMBER_DATA_BITS,
    CHAMBER_STOP_BITS,
    CHAMBER_PARITY,
    CHAMBER_MODBUS_ADDRESS,
    CHAMBER_PROTOCOL_ID,
    CHAMBER_CONVERTER_ID,
    CHAMBER_IS_SUBSCRIBED,
    CHAMBER_COLUMNS = SqlChamberRow::columnCount_
};

const ChamberProperty chamberLayout[CHAMBER_COLUMNS] = {
    ChamberProperty::ID,
    ChamberProperty::CHAMBER_NAME,
    ChamberProperty::SERIAL_NO,
    ChamberProperty::CHAMBER_TYPE_ID,
    ChamberProperty::CHAMBER_TYPE_ADDITIONAL_INFO_ID,
    ChamberProperty::IP_V4_ADDRESS,
    ChamberProperty::IP_V6_ADDRESS,
    ChamberProperty::MAC_ADDRESS,
    ChamberProperty::IS_ACTIVE,
    ChamberProperty::IS_ARCHIVED,
    ChamberProperty::COM_PORT,
    ChamberProperty::BAUD_RATE,
    ChamberProperty::DATA_BITS,
    ChamberProperty::STOP_BITS,
    ChamberProperty::PARITY,
    ChamberProperty::MODBUS_ADDRESS,
    ChamberProperty::PROTOCOL_ID,
    ChamberProperty::CONVERTER_ID,
    ChamberProperty::IS_SUBSCRIBED,
};

QString chamberColumn(ChamberProperty property)
{
    return DC::lookupChamberColumnName(property);
}

// The address in the column of its protocol, or NULL.
QVariant addressIn(const QHostAddress& address, QAbstractSocket::NetworkLayerProtocol protocol)
{
    return sqlvalue::text(address.protocol() == protocol ? address.toString() : QString());
}

// A type id: NULL for 0.
QVariant typeIdValue(quint64 id)
{
    return sqlvalue::orNull(uint(id), 0u);
}

} // namespace

QStringList SqlChamberRow::prepareChamberColumnNames()
{
    return SqlRow::columnNames(chamberColumn, chamberLayout);
}

QVariant SqlChamberRow::getPropertyValue(const ChamberData& chamber, ChamberProperty property)
{
    switch (property) {
    case ChamberProperty::ID:
        return sqlvalue::orNull(int(chamber.chamberId), -1);
    case ChamberProperty::CHAMBER_NAME:
        return sqlvalue::text(chamber.chamberName);
    case ChamberProperty::CHAMBER_TYPE_ID:
        return typeIdValue(chamber.chamberTypeId.typeId);
    case ChamberProperty::CHAMBER_TYPE_ADDITIONAL_INFO_ID:
        return typeIdValue(chamber.chamberTypeId.additionalInfoId);
    case ChamberProperty::SERIAL_NO:
        return sqlvalue::text(chamber.serialNumber);
    case ChamberProperty::IS_ARCHIVED:
        return chamber.isArchived;
    case ChamberProperty::IS_SUBSCRIBED:
        return chamber.isSubscribed;
    case ChamberProperty::IP_V4_ADDRESS:
        return addressIn(chamber.ipAddress, QAbstractSocket::IPv4Protocol);
    case ChamberProperty::IP_V6_ADDRESS:
        return addressIn(chamber.ipAddress, QAbstractSocket::IPv6Protocol);
    case ChamberProperty::MAC_ADDRESS:
        return sqlvalue::text(chamber.macAddress.isValid() ? chamber.macAddress.toString() : QString());
    case ChamberProperty::IS_ACTIVE:
        return sqlvalue::orNull(int(chamber.activationState), -1);
    case ChamberProperty::MODBUS_ADDRESS:
        return int(chamber.modbusAddress);
    case ChamberProperty::COM_PORT:
        return sqlvalue::text(chamber.comPort);
    case ChamberProperty::BAUD_RATE:
        return sqlvalue::orNull(int(chamber.baudRate), -1);
    case ChamberProperty::DATA_BITS:
        return sqlvalue::orNull(int(chamber.dataBits), -1);
    case ChamberProperty::STOP_BITS:
        return sqlvalue::orNull(int(chamber.stopBits), -1);
    case ChamberProperty::PARITY:
        return sqlvalue::orNull(int(chamber.parity), -1);
    case ChamberProperty::PROTOCOL_ID:
        return sqlvalue::orNull(int(chamber.protocol), -1);
    case ChamberProperty::CONVERTER_ID:
        return sqlvalue::orNull(int(chamber.converter), -1);
    }
    // The lookup of the column stops a number outside the enumeration.
    DC::lookupChamberColumnName(property);
    return QVariant();
}

QList<SqlQuery::ColumnValuePair> SqlChamberRow::createPropertyValuePairs(const ChamberData& chamber,
                                                                         bool withSubscription)
{
    QList<SqlQuery::ColumnValuePair> pairs;
    for (int value = int(ChamberProperty::CHAMBER_NAME); value <= int(ChamberProperty::CONVERTER_ID); ++value) {
        const ChamberProperty property = ChamberProperty(value);
        if (property != ChamberProperty::IS_SUBSCRIBED || withSubscription) {
            pairs.append({chamberColumn(property), getPropertyValue(chamber, property)});
        }
    }
    return pairs;
}

int SqlChamberRow::readChamberId(const QList<QVariant>& row)
{
    return SqlRow(row).toInt(CHAMBER_ID, -1);
}

ChamberData SqlChamberRow::readChamberData(const QList<QVariant>& values, const RoomPosition& position)
{
    const SqlRow row(values);
    const ChamberId id = row.toInt(CHAMBER_ID, -1);
    QHostAddress address;
    if (!row.isNull(CHAMBER_IP_V4_ADDRESS)) {
        const QHostAddress v4(row.toString(CHAMBER_IP_V4_ADDRESS));
        address = v4.isNull() ? QHostAddress(row.toString(CHAMBER_IP_V6_ADDRESS)) : v4;
    }
    return ChamberData(id, row.toString(CHAMBER_NAME), row.toString(CHAMBER_SERIAL_NO),
                       ChamberTypeId(row.toUInt(CHAMBER_TYPE_ID, 0), row.toUInt(CHAMBER_TYPE_ADDITIONAL_INFO_ID, 0)),
                       address, MacAddress(row.toString(CHAMBER_MAC_ADDRESS)),
                       ActivationState::State(row.toInt(CHAMBER_IS_ACTIVE, ActivationState::UNKNOWN_STATE)),
                       // The flags as the driver gives them: NULL is false.
                       row.value(CHAMBER_IS_ARCHIVED).toBool(), row.toString(CHAMBER_COM_PORT),
                       QSerialPort::BaudRate(row.toInt(CHAMBER_BAUD_RATE, -1)),
                       QSerialPort::DataBits(row.toInt(CHAMBER_DATA_BITS, -1)),
                       QSerialPort::StopBits(row.toInt(CHAMBER_STOP_BITS, -1)),
                       QSerialPort::Parity(row.toInt(CHAMBER_PARITY, -1)), quint8(row.toInt(CHAMBER_MODBUS_ADDRESS, 0)),
                       ChamberProtocol(row.toInt(CHAMBER_PROTOCOL_ID, UNKNOWN_PROTOCOL)),
                       Converter(row.toInt(CHAMBER_CONVERTER_ID, NO_CONVERTER)), position,
                       ChamberOperationMode::UNKNOWN_MODE, row.value(CHAMBER_IS_SUBSCRIBED).toBool());
}

} // namespace zelmor::base::connection::databaseconnection
