#pragma once

#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlStoreChecks.h"
#include "Domain/Api/IAlarmDatabaseConnection.h"
#include "Domain/Api/IInitializing.h"
#include "Domain/Types/DatabaseConnectionError.h"

#include <QLoggingCategory>
#include <QObject>

namespace zelmor::domain::api {
class IChamberDatabaseConnection;
class IConfigurationDatabaseConnection;
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::base::connection::databaseconnection {

Q_DECLARE_LOGGING_CATEGORY(SQLALARMDATABASECONNECTION)

// Alarms in table "application_alarm", the signals of each in
// "alarm_has_signal". The arguments of an alarm's short description lie in the
// columns "short_desc_arg_1" and "short_desc_arg_2", "num_short_desc_args"
// saying how many are in use; an alarm with more is written all the same, and
// its insert fails on the column that isn't there. Times are kept in UTC.
//
// The delay of an alarm's signal is the chamber's own (chamber store) or the
// default of the chamber's type (catalogue).
//
// Failures are logged in "zelmor.SqlAlarmDatabaseConnection" and emitted
// through error(). Use on the thread of the connection.
class SqlAlarmDatabaseConnection : public QObject,
                                   public zelmor::domain::api::IAlarmDatabaseConnection,
                                   public zelmor::domain::api::IInitializing
{
    Q_OBJECT

public:
    explicit SqlAlarmDatabaseConnection(QObject* parent = nullptr);
    ~SqlAlarmDatabaseConnection() override;

    // The number of argument columns of the table.
    static int getMaxNumShortDescriptionArguments();

    // None is owned. True when all three are not null.
    virtual bool setDependencies(zelmor::domain::api::ISqlConnection* connection,
                                 zelmor::domain::api::IConfigurationDatabaseConnection* configuration,
                                 zelmor::domain::api::IChamberDatabaseConnection* chambers);
    // True when the tables "application_alarm" and "alarm_has_signal" exist
    // (MISSING_TABLE if not).
    bool initialize() override;

    // Without the chambers' names: the facade adds them.
    QList<zelmor::domain::types::Alarm> getAllAlarms() const override;
    // The chamber's delay of the signal where it has one, with the flag
    // inverted, else the type's default with the flag as given.
    int getSignalAlarmDelay(const zelmor::domain::types::AlarmId& alarm, const zelmor::domain::types::SignalId& signal,
                            bool second) const override;
    // More arguments than columns: a warning, then the insert fails with
    // "Failed to add alarm".
    bool addAlarm(zelmor::domain::types::Alarm& alarm) override;
    bool updateAlarm(const zelmor::domain::types::Alarm& alarm) override;
    bool deleteAlarm(const zelmor::domain::types::AlarmId& id) override;
    QList<zelmor::domain::types::Alarm> getAlarms(const zelmor::domain::types::ChamberId& chamber) const override;
    int countAlarms(const zelmor::domain::types::ChamberId& chamber) const override;

    virtual QList<zelmor::domain::types::SignalId> getAlarmSignals(const zelmor::domain::types::AlarmId& alarm) const;
    // One insert per signal, all in one transaction: all or none.
    virtual bool addAlarmSignals(const zelmor::domain::types::AlarmId& alarm,
                                 const QList<zelmor::domain::types::SignalId>& signalIds);
    // The old signals go first; the new ones follow only if that worked.
    virtual bool updateAlarmSignals(const zelmor::domain::types::AlarmId& alarm,
                                    const QList<zelmor::domain::types::SignalId>& signalIds);
    virtual bool deleteAlarmSignals(const zelmor::domain::types::AlarmId& alarm);

    virtual bool areDependenciesSet() const;

signals:
    void error(zelmor::domain::types::DatabaseConnectionError error) const override;

protected:
    // The alarms of the chamber, or of all chambers for -1.
    QList<zelmor::domain::types::Alarm> getAlarmsImpl(const zelmor::domain::types::ChamberId& chamber) const;
    // Every column but the id, then one argument column for each argument.
    static QList<SqlQuery::ColumnValuePair> createColumnValueLists(const zelmor::domain::types::Alarm& alarm);

private:
    zelmor::domain::api::ISqlConnection* connection = nullptr;
    zelmor::domain::api::IConfigurationDatabaseConnection* configuration = nullptr;
    zelmor::domain::api::IChamberDatabaseConnection* chambers = nullptr;
    SqlStoreChecks checks;
};

} // namespace zelmor::base::connection::databaseconnection
