#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/SqlAlarmDatabaseConnection.h"
#include "Base/Connection/DatabaseConnection/SqlChamberDatabaseConnection.h"
#include "Domain/Types/Alarm.h"
#include "Domain/Types/AlarmId.h"
#include "Domain/Types/ChamberData.h"
#include "Domain/Types/ChamberId.h"

// The alarm store's interface, passed on call by call but for getAllAlarms.

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;

QList<Alarm> DatabaseConnection::getAllAlarms() const
{
    // The alarm store knows only the chambers' ids.
    QMap<int, QString> names;
    for (const ChamberData& chamber : chamberStore->getAllChamberData(false)) {
        names.insert(chamber.chamberId, chamber.chamberName);
    }
    QList<Alarm> alarms = alarmStore->getAllAlarms();
    for (Alarm& alarm : alarms) {
        alarm.chamberName = names.value(alarm.chamberId);
    }
    return alarms;
}

int DatabaseConnection::getSignalAlarmDelay(const AlarmId& alarm, const SignalId& signal, bool second) const
{
    return alarmStore->getSignalAlarmDelay(alarm, signal, second);
}

bool DatabaseConnection::addAlarm(Alarm& alarm)
{
    return alarmStore->addAlarm(alarm);
}

bool DatabaseConnection::updateAlarm(const Alarm& alarm)
{
    return alarmStore->updateAlarm(alarm);
}

bool DatabaseConnection::deleteAlarm(const AlarmId& id)
{
    return alarmStore->deleteAlarm(id);
}

QList<Alarm> DatabaseConnection::getAlarms(const ChamberId& chamber) const
{
    return alarmStore->getAlarms(chamber);
}

int DatabaseConnection::countAlarms(const ChamberId& chamber) const
{
    return alarmStore->countAlarms(chamber);
}

} // namespace zelmor::base::connection::databaseconnection
