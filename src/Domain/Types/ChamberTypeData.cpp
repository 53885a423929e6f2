#include "Domain/Types/ChamberTypeData.h"

namespace zelmor::domain::types {

ChamberTypeData::ChamberTypeData()
    : size(-1)
    , setupVersionStart(-1)
    , setupVersionEnde(-1)
{
}

ChamberTypeData::ChamberTypeData(const ChamberTypeId& chamberTypeId, const QString& type,
                                 const QString& developementState, int size, const QString& voltage,
                                 const QString& image, const QString& description, const QString& firmwareStart,
                                 const QString& firmwareEnde, const QString& setupKennung, int setupVersionStart,
                                 int setupVersionEnde, const QString& kennungProgramme, const QString& articleNumber,
                                 const QString& info, const QString& controller,
                                 const QList<ChamberProtocol>& protocols,
                                 const QMap<int, ChamberSignal>& chamberSignals,
                                 const QMap<int, ControlSignal>& controlSignals, const QList<ChamberOption>& options,
                                 const QList<ChamberOption>& furtherOptions)
    : chamberTypeId(chamberTypeId)
    , type(type)
    , developementState(developementState)
    , size(size)
    , voltage(voltage)
    , image(image)
    , description(description)
    , firmwareStart(firmwareStart)
    , firmwareEnde(firmwareEnde)
    , setupKennung(setupKennung)
    , setupVersionStart(setupVersionStart)
    , setupVersionEnde(setupVersionEnde)
    , kennungProgramme(kennungProgramme)
    , articleNumber(articleNumber)
    , info(info)
    , controller(controller)
    , protocols(protocols)
    , chamberSignals(chamberSignals)
    , controlSignals(controlSignals)
    , options(options)
    , furtherOptions(furtherOptions)
{
}

QString ChamberTypeData::getQualifiedTypeName() const
{
    if (type.isEmpty()) {
        return QString();
    }
    QString name = type;
    if (size > 0) {
        name += QLatin1Char(' ') + QString::number(size);
    }
    if (!developementState.isEmpty()) {
        name += QLatin1Char(' ') + developementState;
    }
    return name;
}

bool ChamberTypeData::requiresModbusAddress() const
{
    return hasAnyProtocol({MODBUS_RTU, MODBUS_RTU_TUNNEL, MODBUS_ADDRESSED, MODBUS_ADDRESSED_SERIAL});
}

bool ChamberTypeData::isSerial() const
{
    return hasAnyProtocol({MODBUS_RTU, VACUUBRAND, MODBUS_ADDRESSED_SERIAL});
}

bool ChamberTypeData::isProgrammable() const
{
    return hasOption(QStringLiteral("TimeProgram")) || hasOption(QStringLiteral("TimeProgram_ZELMOR_4"));
}

bool ChamberTypeData::isProgramStartable() const
{
    return hasOption(QStringLiteral("OperatingModeSwitching"));
}

bool ChamberTypeData::isProgramDelayedStartable() const
{
    // PL4 is the one controller family without a delayed start
    return isProgramStartable() && controller != QLatin1String("PL4");
}

bool ChamberTypeData::hasDataLogger() const
{
    return hasOption(QStringLiteral("Readable_DataStorage"));
}

ControlSignal ChamberTypeData::getOperatingModeControlSignal() const
{
    for (auto it = controlSignals.cbegin(); it != controlSignals.cend(); ++it) {
        if (it.value().name == QLatin1String("Ctrl_OpMode_Mode")) {
            return it.value();
        }
    }
    return ControlSignal::placeholder();
}

bool ChamberTypeData::hasOption(const QString& name) const
{
    for (const ChamberOption& option : options) {
        if (option.name == name) {
            return true;
        }
    }
    return false;
}

bool ChamberTypeData::hasAnyProtocol(std::initializer_list<int> numbers) const
{
    for (const ChamberProtocol protocol : protocols) {
        for (const int number : numbers) {
            if (protocol == number) {
                return true;
            }
        }
    }
    return false;
}

bool operator==(const ChamberTypeData& left, const ChamberTypeData& right)
{
    return left.chamberTypeId == right.chamberTypeId && left.type == right.type
           && left.developementState == right.developementState && left.size == right.size
           && left.voltage == right.voltage && left.image == right.image && left.description == right.description
           && left.firmwareStart == right.firmwareStart && left.firmwareEnde == right.firmwareEnde
           && left.setupKennung == right.setupKennung && left.kennungProgramme == right.kennungProgramme
           && left.articleNumber == right.articleNumber && left.info == right.info
           && left.controller == right.controller && left.chamberSignals == right.chamberSignals
           && left.controlSignals == right.controlSignals && left.options == right.options
           && left.furtherOptions == right.furtherOptions;
}

bool operator!=(const ChamberTypeData& left, const ChamberTypeData& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
