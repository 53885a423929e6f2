#include "Base/Connection/DatabaseConnection/SqlAlarmDatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Base/Connection/DatabaseConnection/sqlhelper.h"
#include "Base/Connection/DatabaseConnection/sqlvalue.h"
#include "Domain/Api/IChamberDatabaseConnection.h"
#include "Domain/Api/IConfigurationDatabaseConnection.h"
#include "Domain/Api/ISqlConnection.h"
#include "Domain/Types/Alarm.h"
#include "Domain/Types/AlarmId.h"
#include "Domain/Types/ChamberId.h"
#include "Domain/Types/ChamberTypeId.h"

#include <QSharedPointer>

namespace zelmor::base::connection::databaseconnection {

Q_LOGGING_CATEGORY(SQLALARMDATABASECONNECTION, "zelmor.SqlAlarmDatabaseConnection")

using namespace zelmor::domain::types;
using zelmor::domain::api::AlarmHasSignalProperty;
using zelmor::domain::api::AlarmProperty;
using zelmor::domain::api::ChamberProperty;
using zelmor::domain::api::IChamberDatabaseConnection;
using zelmor::domain::api::IConfigurationDatabaseConnection;
using zelmor::domain::api::ISqlConnection;

namespace {

using DC = DatabaseSchema;

constexpr int maxNumShortDescriptionArguments = 2;

// Positions in a row of getAlarmsImpl: the alarm, then all argument columns.
enum AlarmColumn {
    ALARM_ID,
    ALARM_TIMESTAMP,
    ALARM_TYPE,
    ALARM_IS_ACTIVE,
    ALARM_STATUS,
    ALARM_USER_ID,
    ALARM_NAME,
    ALARM_SHORT_DESCRIPTION,
    ALARM_NUM_SHORT_DESC_ARGS,
    ALARM_DESCRIPTION,
    ALARM_CHAMBER_ID,
    ALARM_FIRST_ARG,
    ALARM_COLUMNS = ALARM_FIRST_ARG + maxNumShortDescriptionArguments
};

// The columns of the positions up to the first argument.
const AlarmProperty alarmLayout[ALARM_FIRST_ARG] = {
    AlarmProperty::ID,          AlarmProperty::ALARM_TIMESTAMP,   AlarmProperty::ALARM_TYPE,
    AlarmProperty::IS_ACTIVE,   AlarmProperty::ALARM_STATUS,      AlarmProperty::USER_ID,
    AlarmProperty::ALARM_NAME,  AlarmProperty::SHORT_DESCRIPTION, AlarmProperty::NUM_SHORT_DESC_ARGS,
    AlarmProperty::DESCRIPTION, AlarmProperty::CHAMBER_ID,
};

QString alarmColumn(AlarmProperty property)
{
    return DC::lookupAlarmColumnName(property);
}

// "short_desc_arg_1" for the first argument.
QString argumentColumn(int index)
{
    return alarmColumn(AlarmProperty::SHORT_DESC_ARG_N).arg(index + 1);
}

QString signalColumn(AlarmHasSignalProperty property)
{
    return DC::lookupAlarmHasSignalColumnName(property);
}

} // namespace

SqlAlarmDatabaseConnection::SqlAlarmDatabaseConnection(QObject* parent)
    : QObject(parent)
    , checks(this, SQLALARMDATABASECONNECTION)
{
}

SqlAlarmDatabaseConnection::~SqlAlarmDatabaseConnection() = default;

int SqlAlarmDatabaseConnection::getMaxNumShortDescriptionArguments()
{
    return maxNumShortDescriptionArguments;
}

bool SqlAlarmDatabaseConnection::setDependencies(ISqlConnection* connection,
                                                 IConfigurationDatabaseConnection* configuration,
                                                 IChamberDatabaseConnection* chambers)
{
    this->connection = connection;
    this->configuration = configuration;
    this->chambers = chambers;
    return areDependenciesSet();
}

bool SqlAlarmDatabaseConnection::areDependenciesSet() const
{
    return connection != nullptr && configuration != nullptr && chambers != nullptr;
}

bool SqlAlarmDatabaseConnection::initialize()
{
    return checks.hasDependencies("initialize")
           && checks.hasTables(*connection, {DC::lookupAlarmTableName(), DC::lookupAlarmHasSignalTableName()});
}

QList<SqlQuery::ColumnValuePair> SqlAlarmDatabaseConnection::createColumnValueLists(const Alarm& alarm)
{
    const QList<QVariant>& arguments = alarm.shortDescription.arguments;
    QList<SqlQuery::ColumnValuePair> pairs = {
        {alarmColumn(AlarmProperty::ALARM_TIMESTAMP), sqlvalue::utcTime(alarm.timestamp)},
        {alarmColumn(AlarmProperty::ALARM_TYPE), int(alarm.type)},
        {alarmColumn(AlarmProperty::IS_ACTIVE), alarm.isActive},
        {alarmColumn(AlarmProperty::ALARM_STATUS), int(alarm.status)},
        {alarmColumn(AlarmProperty::USER_ID), sqlvalue::orNull(int(alarm.userId), 0)},
        {alarmColumn(AlarmProperty::ALARM_NAME), sqlvalue::text(alarm.alarmName)},
        {alarmColumn(AlarmProperty::SHORT_DESCRIPTION), sqlvalue::text(alarm.shortDescription.text)},
        {alarmColumn(AlarmProperty::NUM_SHORT_DESC_ARGS), arguments.size()},
        {alarmColumn(AlarmProperty::DESCRIPTION), sqlvalue::text(alarm.description)},
        {alarmColumn(AlarmProperty::CHAMBER_ID), sqlvalue::orNull(int(alarm.chamberId), -1)},
    };
    // No limit here: a column past the table's last one makes the statement fail.
    for (int index = 0; index < arguments.size(); ++index) {
        pairs.append({argumentColumn(index), arguments.at(index)});
    }
    return pairs;
}

QList<Alarm> SqlAlarmDatabaseConnection::getAllAlarms() const
{
    if (!checks.hasDependencies("getAllAlarms")) {
        return {};
    }
    return getAlarmsImpl(-1);
}

QList<Alarm> SqlAlarmDatabaseConnection::getAlarms(const ChamberId& chamber) const
{
    if (!checks.hasDependencies("getAlarms")) {
        return {};
    }
    return getAlarmsImpl(chamber);
}

QList<Alarm> SqlAlarmDatabaseConnection::getAlarmsImpl(const ChamberId& chamber) const
{
    QStringList columns = SqlRow::columnNames(alarmColumn, alarmLayout);
    for (int index = 0; index < maxNumShortDescriptionArguments; ++index) {
        columns.append(argumentColumn(index));
    }
    SqlQuery query;
    query.selectColumns(columns).fromTable(DC::lookupAlarmTableName());
    if (chamber != -1) {
        query.whereColumn(alarmColumn(AlarmProperty::CHAMBER_ID)).equals(int(chamber));
    }

    QList<Alarm> alarms;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& values : rows) {
        if (!checks.hasWidth(values, ALARM_COLUMNS, "getAlarms")) {
            continue;
        }
        const SqlRow row(values);
        const AlarmId id = row.toInt(ALARM_ID, 0);
        // Only the arguments in use: the other columns may hold those of an
        // earlier version of the alarm.
        const int numArguments = qBound(0, row.toInt(ALARM_NUM_SHORT_DESC_ARGS, 0), maxNumShortDescriptionArguments);
        QList<QVariant> arguments;
        for (int index = 0; index < numArguments; ++index) {
            arguments.append(row.value(ALARM_FIRST_ARG + index));
        }
        alarms.append(Alarm(id, row.toLocalTime(ALARM_TIMESTAMP), AlarmType::TypeId(row.toInt(ALARM_TYPE, 0)),
                            row.toBool(ALARM_IS_ACTIVE, false), AlarmStatus::StatusId(row.toInt(ALARM_STATUS, 0)),
                            row.toInt(ALARM_USER_ID, 0), row.toString(ALARM_NAME),
                            ShortDescription(row.toString(ALARM_SHORT_DESCRIPTION), arguments),
                            row.toString(ALARM_DESCRIPTION), row.toInt(ALARM_CHAMBER_ID, -1), QString(),
                            getAlarmSignals(id), QList<QString>()));
    }
    return alarms;
}

int SqlAlarmDatabaseConnection::getSignalAlarmDelay(const AlarmId& alarm, const SignalId& signal, bool second) const
{
    if (!checks.hasDependencies("getSignalAlarmDelay")) {
        return 0;
    }
    SqlQuery chamberOfAlarm;
    chamberOfAlarm.selectColumn(alarmColumn(AlarmProperty::CHAMBER_ID))
        .fromTable(DC::lookupAlarmTableName())
        .whereColumn(alarmColumn(AlarmProperty::ID))
        .equals(int(alarm));
    const ChamberId chamber = sqlhelper::readIntSqlValue(connection->fetchSingleValue(chamberOfAlarm), -1);

    // The chamber's two delay columns hold the alarm's delays the other way
    // round; the catalogue's don't.
    if (chambers->hasChamberSignalDelay(chamber, signal, !second)) {
        return chambers->getChamberSignalDelayInSeconds(chamber, signal, !second);
    }
    SqlQuery typeOfChamber;
    typeOfChamber.selectColumn(DC::lookupChamberColumnName(ChamberProperty::CHAMBER_TYPE_ID))
        .fromTable(DC::lookupChamberTableName())
        .whereColumn(DC::lookupChamberColumnName(ChamberProperty::ID))
        .equals(int(chamber));
    const unsigned type = sqlhelper::readUIntSqlValue(connection->fetchSingleValue(typeOfChamber), 0);
    return configuration->getChamberSignalDelay(ChamberTypeId(type, 0), signal, second);
}

bool SqlAlarmDatabaseConnection::addAlarm(Alarm& alarm)
{
    if (!checks.hasDependencies("addAlarm")) {
        return false;
    }
    const int numArguments = alarm.shortDescription.arguments.size();
    if (numArguments > maxNumShortDescriptionArguments) {
        qCWarning(SQLALARMDATABASECONNECTION) << "Too many short description arguments:" << numArguments << "instead of"
                                              << maxNumShortDescriptionArguments;
    }
    SqlQuery query;
    query.insertTableColumnValuePairs(DC::lookupAlarmTableName(), createColumnValueLists(alarm));
    const ISqlConnection::ExecuteResult result = connection->execute(query);
    if (!result.success) {
        qCWarning(SQLALARMDATABASECONNECTION) << "Failed to add alarm";
        return false;
    }
    alarm.id = int(result.lastInsertId);
    return addAlarmSignals(alarm.id, alarm.signalIds);
}

bool SqlAlarmDatabaseConnection::updateAlarm(const Alarm& alarm)
{
    if (!checks.hasDependencies("updateAlarm")) {
        return false;
    }
    const bool signalsWritten =
        alarm.signalIds.isEmpty() ? deleteAlarmSignals(alarm.id) : updateAlarmSignals(alarm.id, alarm.signalIds);
    if (!signalsWritten) {
        return false;
    }
    SqlQuery query;
    query.updateTable(DC::lookupAlarmTableName())
        .setColumnValuePairs(createColumnValueLists(alarm))
        .whereColumn(alarmColumn(AlarmProperty::ID))
        .equals(int(alarm.id));
    return connection->execute(query).success;
}

bool SqlAlarmDatabaseConnection::deleteAlarm(const AlarmId& id)
{
    if (!checks.hasDependencies("deleteAlarm")) {
        return false;
    }
    SqlQuery query;
    query.deleteFromTable(DC::lookupAlarmTableName()).whereColumn(alarmColumn(AlarmProperty::ID)).equals(int(id));
    return connection->execute(query).success;
}

int SqlAlarmDatabaseConnection::countAlarms(const ChamberId& chamber) const
{
    if (!checks.hasDependencies("countAlarms")) {
        return 0;
    }
    SqlQuery query;
    query.selectCount()
        .fromTable(DC::lookupAlarmTableName())
        .whereColumn(alarmColumn(AlarmProperty::CHAMBER_ID))
        .equals(int(chamber));
    return sqlhelper::readIntSqlValue(connection->fetchSingleValue(query), 0);
}

QList<SignalId> SqlAlarmDatabaseConnection::getAlarmSignals(const AlarmId& alarm) const
{
    if (!checks.hasDependencies("getAlarmSignals")) {
        return {};
    }
    SqlQuery query;
    query.selectColumn(signalColumn(AlarmHasSignalProperty::SIGNAL_ID))
        .fromTable(DC::lookupAlarmHasSignalTableName())
        .whereColumn(signalColumn(AlarmHasSignalProperty::ALARM_ID))
        .equals(int(alarm));
    QList<SignalId> signalIds;
    for (const QVariant& value : connection->fetchSingleColumn(query)) {
        signalIds.append(sqlhelper::readIntSqlValue(value, -1));
    }
    return signalIds;
}

bool SqlAlarmDatabaseConnection::addAlarmSignals(const AlarmId& alarm, const QList<SignalId>& signalIds)
{
    if (!checks.hasDependencies("addAlarmSignals")) {
        return false;
    }
    QList<QSharedPointer<zelmor::domain::api::ISqlQuery>> statements;
    for (SignalId signal : signalIds) {
        auto statement = QSharedPointer<SqlQuery>::create();
        statement->insertTable(DC::lookupAlarmHasSignalTableName())
            .columns({signalColumn(AlarmHasSignalProperty::ALARM_ID), signalColumn(AlarmHasSignalProperty::SIGNAL_ID)})
            .values({int(alarm), signal});
        statements.append(statement);
    }
    return connection->executeTransaction(statements);
}

bool SqlAlarmDatabaseConnection::updateAlarmSignals(const AlarmId& alarm, const QList<SignalId>& signalIds)
{
    return deleteAlarmSignals(alarm) && addAlarmSignals(alarm, signalIds);
}

bool SqlAlarmDatabaseConnection::deleteAlarmSignals(const AlarmId& alarm)
{
    if (!checks.hasDependencies("deleteAlarmSignals")) {
        return false;
    }
    SqlQuery query;
    query.deleteFromTable(DC::lookupAlarmHasSignalTableName())
        .whereColumn(signalColumn(AlarmHasSignalProperty::ALARM_ID))
        .equals(int(alarm));
    return connection->execute(query).success;
}

} // namespace zelmor::base::connection::databaseconnection
