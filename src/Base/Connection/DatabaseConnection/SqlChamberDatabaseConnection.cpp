#include "Base/Connection/DatabaseConnection/SqlChamberDatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlChamberRow.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Base/Connection/DatabaseConnection/sqlhelper.h"
#include "Base/Connection/DatabaseConnection/sqlvalue.h"
#include "Domain/Api/IConfigurationDatabaseConnection.h"
#include "Domain/Api/IRoomDatabaseConnection.h"
#include "Domain/Api/ISqlConnection.h"
#include "Domain/Types/ChamberData.h"
#include "Domain/Types/ChamberId.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/RecordingId.h"
#include "Domain/Types/ToleranceRange.h"

#include <QSharedPointer>

namespace zelmor::base::connection::databaseconnection {

Q_LOGGING_CATEGORY(SQLCHAMBERDATABASECONNECTION, "zelmor.SqlChamberDatabaseConnection")

using namespace zelmor::domain::types;
using zelmor::domain::api::ChamberHasCustomSignalNameProperty;
using zelmor::domain::api::ChamberHasSignalDelayProperty;
using zelmor::domain::api::ChamberHasSubscribedSignalProperty;
using zelmor::domain::api::ChamberProperty;
using zelmor::domain::api::IConfigurationDatabaseConnection;
using zelmor::domain::api::IRoomDatabaseConnection;
using zelmor::domain::api::ISqlConnection;

namespace {

using DC = DatabaseSchema;

// Positions in a row of a chamber's names or delays: the signal, then its value.
enum SignalValueColumn { SIGNAL_ID, SIGNAL_VALUE, SIGNAL_VALUE_COLUMNS };

QString chamberColumn(ChamberProperty property)
{
    return DC::lookupChamberColumnName(property);
}

QString subscribedColumn(ChamberHasSubscribedSignalProperty property)
{
    return DC::lookupChamberHasSubscribedSignalColumnName(property);
}

QString nameColumn(ChamberHasCustomSignalNameProperty property)
{
    return DC::lookupChamberHasCustomSignalNameColumnName(property);
}

QString delayColumn(ChamberHasSignalDelayProperty property)
{
    return DC::lookupChamberHasSignalDelayColumnName(property);
}

// The bool of the delay operations: true the second delay.
QString delayColumn(bool second)
{
    return delayColumn(second ? ChamberHasSignalDelayProperty::DELAY2_IN_SECONDS
                              : ChamberHasSignalDelayProperty::DELAY1_IN_SECONDS);
}

// The condition on a chamber's subscribed signal; signal -1 stands for all of them.
SqlQuery& whereSubscribed(SqlQuery& query, const ChamberId& id, const SignalId& signal)
{
    query.whereColumn(subscribedColumn(ChamberHasSubscribedSignalProperty::CHAMBER_ID)).equals(int(id));
    if (signal != -1) {
        query.andColumn(subscribedColumn(ChamberHasSubscribedSignalProperty::SIGNAL_ID)).equals(signal);
    }
    return query;
}

// The condition on the delay row of a chamber's signal.
SqlQuery& whereDelay(SqlQuery& query, const ChamberId& id, const SignalId& signal)
{
    return query.whereColumn(delayColumn(ChamberHasSignalDelayProperty::CHAMBER_ID))
        .equals(int(id))
        .andColumn(delayColumn(ChamberHasSignalDelayProperty::SIGNAL_ID))
        .equals(signal);
}

} // namespace

SqlChamberDatabaseConnection::SqlChamberDatabaseConnection(QObject* parent)
    : QObject(parent)
    , toleranceRangeCache(SqlToleranceRangeCache::defaultCapacity_)
    , checks(this, SQLCHAMBERDATABASECONNECTION)
    , toleranceRanges(checks, toleranceRangeCache)
{
}

SqlChamberDatabaseConnection::~SqlChamberDatabaseConnection() = default;

bool SqlChamberDatabaseConnection::setDependencies(ISqlConnection* connection,
                                                   IConfigurationDatabaseConnection* configuration,
                                                   IRoomDatabaseConnection* rooms)
{
    this->connection = connection;
    this->configuration = configuration;
    this->rooms = rooms;
    toleranceRanges.setDependencies(connection, configuration);
    return areDependenciesSet();
}

bool SqlChamberDatabaseConnection::areDependenciesSet() const
{
    return connection != nullptr && configuration != nullptr && rooms != nullptr;
}

bool SqlChamberDatabaseConnection::initialize()
{
    return checks.hasDependencies("initialize")
           && checks.hasTables(*connection,
                               {DC::lookupChamberTableName(), DC::lookupChamberHasSubscribedSignalTableName()});
}

ChamberData SqlChamberDatabaseConnection::parseChamberDataRow(const QList<QVariant>& row, int columnCount,
                                                              bool withRoomPosition) const
{
    if (!checks.hasWidth(row, columnCount, "parseChamberDataRow")) {
        return {};
    }
    const ChamberId id = SqlChamberRow::readChamberId(row);
    return SqlChamberRow::readChamberData(row, withRoomPosition ? rooms->getRoomPosition(id) : RoomPosition());
}

bool SqlChamberDatabaseConnection::addChamber(ChamberData& chamber)
{
    if (!checks.hasDependencies("addChamber")) {
        return false;
    }
    SqlQuery query;
    query.insertTableColumnValuePairs(DC::lookupChamberTableName(),
                                      SqlChamberRow::createPropertyValuePairs(chamber, true));
    const ISqlConnection::ExecuteResult result = connection->execute(query);
    if (!result.success) {
        qCWarning(SQLCHAMBERDATABASECONNECTION) << "Failed to add chamber";
        return false;
    }
    chamber.chamberId = int(result.lastInsertId);
    return true;
}

QList<ChamberData> SqlChamberDatabaseConnection::getAllChamberData(bool withRoomPosition) const
{
    if (!checks.hasDependencies("getAllChamberData")) {
        return {};
    }
    SqlQuery query;
    query.selectColumns(SqlChamberRow::prepareChamberColumnNames()).fromTable(DC::lookupChamberTableName());

    QList<ChamberData> chambers;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& row : rows) {
        // A row that can't be read is reported and passed over; a good one has its id.
        const ChamberData chamber = parseChamberDataRow(row, SqlChamberRow::columnCount_, withRoomPosition);
        if (chamber.chamberId != -1) {
            chambers.append(chamber);
        }
    }
    return chambers;
}

ChamberData SqlChamberDatabaseConnection::getChamberData(const ChamberId& id, bool withRoomPosition) const
{
    if (!checks.hasDependencies("getChamberData")) {
        return {};
    }
    SqlQuery query;
    query.selectColumns(SqlChamberRow::prepareChamberColumnNames())
        .fromTable(DC::lookupChamberTableName())
        .whereColumn(chamberColumn(ChamberProperty::ID))
        .equals(int(id));
    const QList<QVariant> row = connection->fetchSingleRow(query);
    if (row.isEmpty()) {
        checks.reportUnexpected("getChamberData", QStringLiteral("found no chamber %1").arg(int(id)));
        return {};
    }
    return parseChamberDataRow(row, SqlChamberRow::columnCount_, withRoomPosition);
}

QVariant SqlChamberDatabaseConnection::getChamberProperty(const ChamberId& id, const ChamberProperty& property) const
{
    if (!checks.hasDependencies("getChamberProperty")) {
        return {};
    }
    SqlQuery query;
    query.selectColumn(chamberColumn(property))
        .fromTable(DC::lookupChamberTableName())
        .whereColumn(chamberColumn(ChamberProperty::ID))
        .equals(int(id));
    return connection->fetchSingleValue(query);
}

QMap<int, ChamberSignal> SqlChamberDatabaseConnection::getChamberSignals(const ChamberId& id) const
{
    if (!checks.hasDependencies("getChamberSignals")) {
        return {};
    }
    const unsigned type = sqlhelper::readUIntSqlValue(getChamberProperty(id, ChamberProperty::CHAMBER_TYPE_ID), 0);
    if (type == 0) {
        return {};
    }
    return configuration->getChamberSignals(ChamberTypeId(type, 0));
}

bool SqlChamberDatabaseConnection::updateChamber(const ChamberData& chamber, bool withSubscription)
{
    if (!checks.hasDependencies("updateChamber")) {
        return false;
    }
    SqlQuery query;
    query.updateTable(DC::lookupChamberTableName())
        .setColumnValuePairs(SqlChamberRow::createPropertyValuePairs(chamber, withSubscription))
        .whereColumn(chamberColumn(ChamberProperty::ID))
        .equals(int(chamber.chamberId));
    return connection->execute(query).success;
}

bool SqlChamberDatabaseConnection::setChamberProperty(const ChamberData& chamber, const ChamberProperty& property)
{
    return setChamberProperty(chamber.chamberId, property, SqlChamberRow::getPropertyValue(chamber, property));
}

bool SqlChamberDatabaseConnection::setChamberProperty(const ChamberId& id, const ChamberProperty& property,
                                                      const QVariant& value)
{
    if (!checks.hasDependencies("setChamberProperty")) {
        return false;
    }
    SqlQuery query;
    query.updateTable(DC::lookupChamberTableName())
        .setColumnValuePair({chamberColumn(property), value})
        .whereColumn(chamberColumn(ChamberProperty::ID))
        .equals(int(id));
    return connection->execute(query).success;
}

bool SqlChamberDatabaseConnection::setChamberCustomSignalNames(ChamberId id, const QMap<SignalId, QString>& names)
{
    if (!checks.hasDependencies("setChamberCustomSignalNames")) {
        return false;
    }
    for (auto name = names.cbegin(); name != names.cend(); ++name) {
        SqlQuery query;
        query.insertOrReplaceTable(DC::lookupChamberHasCustomSignalNameTableName())
            .columns({nameColumn(ChamberHasCustomSignalNameProperty::CHAMBER_ID),
                      nameColumn(ChamberHasCustomSignalNameProperty::SIGNAL_ID),
                      nameColumn(ChamberHasCustomSignalNameProperty::SIGNAL_NAME)})
            .values({int(id), name.key(), sqlvalue::text(name.value())});
        if (!connection->execute(query).success) {
            return false;
        }
    }
    return true;
}

QMap<SignalId, QString> SqlChamberDatabaseConnection::getChamberCustomSignalNames(ChamberId id)
{
    if (!checks.hasDependencies("getChamberCustomSignalNames")) {
        return {};
    }
    SqlQuery query;
    query
        .selectColumns({nameColumn(ChamberHasCustomSignalNameProperty::SIGNAL_ID),
                        nameColumn(ChamberHasCustomSignalNameProperty::SIGNAL_NAME)})
        .fromTable(DC::lookupChamberHasCustomSignalNameTableName())
        .whereColumn(nameColumn(ChamberHasCustomSignalNameProperty::CHAMBER_ID))
        .equals(int(id));

    QMap<SignalId, QString> names;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& values : rows) {
        if (checks.hasWidth(values, SIGNAL_VALUE_COLUMNS, "getChamberCustomSignalNames")) {
            const SqlRow row(values);
            names.insert(row.toInt(SIGNAL_ID, -1), row.toString(SIGNAL_VALUE));
        }
    }
    return names;
}

bool SqlChamberDatabaseConnection::deleteChamber(const ChamberId& id)
{
    if (!checks.hasDependencies("deleteChamber")) {
        return false;
    }
    SqlQuery query;
    query.deleteFromTable(DC::lookupChamberTableName()).whereColumn(chamberColumn(ChamberProperty::ID)).equals(int(id));
    return connection->execute(query).success;
}

bool SqlChamberDatabaseConnection::archiveChamber(const ChamberId& id)
{
    return setChamberProperty(id, ChamberProperty::IS_ARCHIVED, true);
}

bool SqlChamberDatabaseConnection::restoreChamber(const ChamberId& id)
{
    return setChamberProperty(id, ChamberProperty::IS_ARCHIVED, false);
}

QMap<SignalId, ToleranceRange>
SqlChamberDatabaseConnection::getToleranceRanges(const QDateTime& time, const ChamberId& chamber,
                                                 const QMap<int, ChamberSignal>& chamberSignals)
{
    if (!checks.hasDependencies("getToleranceRanges")) {
        return {};
    }
    return toleranceRanges.getToleranceRanges(time, chamber, chamberSignals);
}

QMap<SignalId, ToleranceRange>
SqlChamberDatabaseConnection::getToleranceRanges(const QDateTime& time, const RecordingId& recording,
                                                 const QMap<int, ChamberSignal>& chamberSignals)
{
    if (!checks.hasDependencies("getToleranceRanges")) {
        return {};
    }
    return toleranceRanges.getToleranceRanges(time, recording, chamberSignals);
}

ToleranceRangeHistory
SqlChamberDatabaseConnection::getToleranceRangeHistory(const RecordingId& recording,
                                                       const QMap<int, ChamberSignal>& chamberSignals)
{
    if (!checks.hasDependencies("getToleranceRangeHistory")) {
        return {};
    }
    return toleranceRanges.getToleranceRangeHistory(recording, chamberSignals);
}

ToleranceRange SqlChamberDatabaseConnection::getToleranceRange(const QDateTime& time, const ChamberId& chamber,
                                                               const SignalId& signal)
{
    if (!checks.hasDependencies("getToleranceRange")) {
        return {};
    }
    return toleranceRanges.getToleranceRange(time, chamber, signal);
}

bool SqlChamberDatabaseConnection::setToleranceRange(const QDateTime& time, const ChamberId& chamber,
                                                     const SignalId& signal, const ToleranceRange& range)
{
    if (!checks.hasDependencies("setToleranceRange")) {
        return false;
    }
    return toleranceRanges.setToleranceRange(time, chamber, signal, range);
}

bool SqlChamberDatabaseConnection::isChamberSubscribed(const ChamberId& id) const
{
    return sqlhelper::readBoolSqlValue(getChamberProperty(id, ChamberProperty::IS_SUBSCRIBED), false);
}

QList<SignalId> SqlChamberDatabaseConnection::getSubscribedChamberSignals(const ChamberId& id) const
{
    if (!checks.hasDependencies("getSubscribedChamberSignals")) {
        return {};
    }
    SqlQuery query;
    query.selectColumn(subscribedColumn(ChamberHasSubscribedSignalProperty::SIGNAL_ID))
        .fromTable(DC::lookupChamberHasSubscribedSignalTableName())
        .whereColumn(subscribedColumn(ChamberHasSubscribedSignalProperty::CHAMBER_ID))
        .equals(int(id));
    QList<SignalId> signalIds;
    for (const QVariant& value : connection->fetchSingleColumn(query)) {
        signalIds.append(sqlhelper::readIntSqlValue(value, -1));
    }
    return signalIds;
}

bool SqlChamberDatabaseConnection::isAnyChamberSignalSubscribed(const ChamberId& id,
                                                                const QList<SignalId>& signalIds) const
{
    if (!checks.hasDependencies("isAnyChamberSignalSubscribed")) {
        return false;
    }
    SqlQuery query;
    query.selectCount()
        .fromTable(DC::lookupChamberHasSubscribedSignalTableName())
        .whereColumn(subscribedColumn(ChamberHasSubscribedSignalProperty::CHAMBER_ID))
        .equals(int(id))
        .andColumn(subscribedColumn(ChamberHasSubscribedSignalProperty::SIGNAL_ID))
        .inList(signalIds);
    return sqlhelper::readIntSqlValue(connection->fetchSingleValue(query), 0) != 0;
}

bool SqlChamberDatabaseConnection::isChamberSignalSubscribed(const ChamberId& id, const SignalId& signal) const
{
    return isAnyChamberSignalSubscribed(id, {signal});
}

bool SqlChamberDatabaseConnection::subscribeChamber(const ChamberId& id)
{
    return setChamberProperty(id, ChamberProperty::IS_SUBSCRIBED, true);
}

bool SqlChamberDatabaseConnection::unsubscribeChamber(const ChamberId& id)
{
    // A chamber whose signals stay subscribed stays subscribed itself.
    return unsubscribeChamberSignal(id, -1) && setChamberProperty(id, ChamberProperty::IS_SUBSCRIBED, false);
}

bool SqlChamberDatabaseConnection::bulkSubscribeChambers(const QList<ChamberId>& ids)
{
    if (!checks.hasDependencies("bulkSubscribeChambers")) {
        return false;
    }
    QList<QVariant> values;
    for (const ChamberId& id : ids) {
        values.append(int(id));
    }
    SqlQuery query;
    query.updateTable(DC::lookupChamberTableName())
        .setColumnValuePair({chamberColumn(ChamberProperty::IS_SUBSCRIBED), true})
        .whereColumn(chamberColumn(ChamberProperty::ID))
        .inList(values);
    return connection->execute(query).success;
}

bool SqlChamberDatabaseConnection::bulkUnsubscribeChambers(const QList<ChamberId>& ids)
{
    if (!checks.hasDependencies("bulkUnsubscribeChambers")) {
        return false;
    }
    QList<QSharedPointer<zelmor::domain::api::ISqlQuery>> statements;
    QList<QVariant> values;
    for (const ChamberId& id : ids) {
        auto signalsOfChamber = QSharedPointer<SqlQuery>::create();
        signalsOfChamber->deleteFromTable(DC::lookupChamberHasSubscribedSignalTableName());
        whereSubscribed(*signalsOfChamber, id, -1);
        statements.append(signalsOfChamber);
        values.append(int(id));
    }
    auto flags = QSharedPointer<SqlQuery>::create();
    flags->updateTable(DC::lookupChamberTableName())
        .setColumnValuePair({chamberColumn(ChamberProperty::IS_SUBSCRIBED), false})
        .whereColumn(chamberColumn(ChamberProperty::ID))
        .inList(values);
    statements.append(flags);
    return connection->executeTransaction(statements);
}

bool SqlChamberDatabaseConnection::subscribeChamberSignal(const ChamberId& id, const SignalId& signal)
{
    if (!checks.hasDependencies("subscribeChamberSignal")) {
        return false;
    }
    SqlQuery query;
    query.insertTable(DC::lookupChamberHasSubscribedSignalTableName())
        .columns({subscribedColumn(ChamberHasSubscribedSignalProperty::CHAMBER_ID),
                  subscribedColumn(ChamberHasSubscribedSignalProperty::SIGNAL_ID)})
        .values({int(id), signal});
    if (!connection->execute(query).success) {
        qCWarning(SQLCHAMBERDATABASECONNECTION).noquote()
            << QStringLiteral("Could not subscribe signal %1 of chamber %2").arg(signal).arg(int(id));
        emit error(DatabaseConnectionError::EXECUTION_FAILED);
        return false;
    }
    return true;
}

bool SqlChamberDatabaseConnection::unsubscribeChamberSignal(const ChamberId& id, const SignalId& signal)
{
    if (!checks.hasDependencies("unsubscribeChamberSignal")) {
        return false;
    }
    SqlQuery query;
    query.deleteFromTable(DC::lookupChamberHasSubscribedSignalTableName());
    whereSubscribed(query, id, signal);
    return connection->execute(query).success;
}

QMap<SignalId, int> SqlChamberDatabaseConnection::getAllChamberSignalDelaysInSeconds(const ChamberId& id,
                                                                                     bool second) const
{
    if (!checks.hasDependencies("getAllChamberSignalDelaysInSeconds")) {
        return {};
    }
    SqlQuery query;
    query.selectColumns({delayColumn(ChamberHasSignalDelayProperty::SIGNAL_ID), delayColumn(second)})
        .fromTable(DC::lookupChamberHasSignalDelayTableName())
        .whereColumn(delayColumn(ChamberHasSignalDelayProperty::CHAMBER_ID))
        .equals(int(id));

    QMap<SignalId, int> delays;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& values : rows) {
        if (checks.hasWidth(values, SIGNAL_VALUE_COLUMNS, "getAllChamberSignalDelaysInSeconds")) {
            const SqlRow row(values);
            delays.insert(row.toInt(SIGNAL_ID, -1), row.toInt(SIGNAL_VALUE, -1));
        }
    }
    return delays;
}

QVariant SqlChamberDatabaseConnection::getChamberSignalDelay(const ChamberId& id, const SignalId& signal,
                                                             bool second) const
{
    SqlQuery query;
    query.selectColumn(delayColumn(second)).fromTable(DC::lookupChamberHasSignalDelayTableName());
    whereDelay(query, id, signal);
    return connection->fetchSingleValue(query);
}

int SqlChamberDatabaseConnection::getChamberSignalDelayInSeconds(const ChamberId& id, const SignalId& signal,
                                                                 bool second) const
{
    if (!checks.hasDependencies("getChamberSignalDelayInSeconds")) {
        return -1;
    }
    return sqlhelper::readIntSqlValue(getChamberSignalDelay(id, signal, second), -1);
}

bool SqlChamberDatabaseConnection::hasChamberSignalDelay(const ChamberId& id, const SignalId& signal, bool second) const
{
    if (!checks.hasDependencies("hasChamberSignalDelay")) {
        return false;
    }
    return sqlhelper::isSqlValueValid(getChamberSignalDelay(id, signal, second));
}

bool SqlChamberDatabaseConnection::hasChamberSignalDelayEntry(const ChamberId& id, const SignalId& signal) const
{
    SqlQuery query;
    query.selectCount().fromTable(DC::lookupChamberHasSignalDelayTableName());
    whereDelay(query, id, signal);
    return sqlhelper::readIntSqlValue(connection->fetchSingleValue(query), 0) != 0;
}

bool SqlChamberDatabaseConnection::setChamberSignalDelay(const ChamberId& id, const SignalId& signal, bool second,
                                                         int seconds)
{
    if (!checks.hasDependencies("setChamberSignalDelay")) {
        return false;
    }
    SqlQuery query;
    if (hasChamberSignalDelayEntry(id, signal)) {
        query.updateTable(DC::lookupChamberHasSignalDelayTableName())
            .setColumnValuePair({delayColumn(second), seconds});
        whereDelay(query, id, signal);
    } else {
        // The other delay stays NULL.
        query.insertTable(DC::lookupChamberHasSignalDelayTableName())
            .columns({delayColumn(ChamberHasSignalDelayProperty::CHAMBER_ID),
                      delayColumn(ChamberHasSignalDelayProperty::SIGNAL_ID), delayColumn(second)})
            .values({int(id), signal, seconds});
    }
    return connection->execute(query).success;
}

} // namespace zelmor::base::connection::databaseconnection
