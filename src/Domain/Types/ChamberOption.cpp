#include "Domain/Types/ChamberOption.h"

namespace zelmor::domain::types {

const QStringList ChamberOption::optionNames_ = {
    QStringLiteral("TimeProgram"),
    QStringLiteral("WeekProgram"),
    QStringLiteral("TimeProgram_ZELMOR_4"),
    QStringLiteral("WeekProgram_ZELMOR_4"),
    QStringLiteral("InteriorSocket"),
    QStringLiteral("ObjectTemperature"),
    QStringLiteral("ControlOutputs_Standard"),
    QStringLiteral("ControlOutputs"),
    QStringLiteral("LightCassettes"),
    QStringLiteral("Prog._Ventilation_Evacuation"),
    QStringLiteral("24V_OK/BatteryVoltage/CO2_EmergencyCooling"),
    QStringLiteral("OperatingModeSwitching"),
    QStringLiteral("HumidControl_on_off"),
    QStringLiteral("Bedewing_Protection"),
    QStringLiteral("CompressedAirDryer"),
    QStringLiteral("Program_Progressbar"),
    QStringLiteral("CollectiveAlarm"),
    QStringLiteral("Readable_DataStorage"),
    QStringLiteral("Active_Humidification"),
    QStringLiteral("Electromechanical_DoorLock"),
    QStringLiteral("Heated_AccessPort"),
    QStringLiteral("CompressedAirValve"),
    QStringLiteral("CO2_Control"),
    QStringLiteral("AlarmOutput"),
    QStringLiteral("InteriorLight"),
    QStringLiteral("ICH_Q1B"),
    QStringLiteral("LQC"),
};

ChamberOption::ChamberOption(const QString& name, bool fix)
    : name(name)
    , fix(fix)
{
}

bool operator==(const ChamberOption& left, const ChamberOption& right)
{
    return left.name == right.name && left.fix == right.fix;
}

bool operator!=(const ChamberOption& left, const ChamberOption& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types
