#include "Base/Connection/DatabaseConnection/SqlRecordingDatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Base/Connection/DatabaseConnection/sqlvalue.h"
#include "Domain/Api/IChamberDatabaseConnection.h"
#include "Domain/Api/IRecordsetDatabaseConnection.h"
#include "Domain/Api/ISqlConnection.h"
#include "Domain/Types/ChamberId.h"
#include "Domain/Types/RecordingData.h"
#include "Domain/Types/RecordingId.h"

namespace zelmor::base::connection::databaseconnection {

Q_LOGGING_CATEGORY(SQLRECORDINGDATABASECONNECTION, "zelmor.SqlRecordingDatabaseConnection")

using namespace zelmor::domain::types;
using zelmor::domain::api::IChamberDatabaseConnection;
using zelmor::domain::api::IRecordsetDatabaseConnection;
using zelmor::domain::api::ISqlConnection;
using zelmor::domain::api::ISqlQuery;
using zelmor::domain::api::MetaRecordingHasRecordingProperty;
using zelmor::domain::api::RecordingProperty;

namespace {

using DC = DatabaseSchema;

// Positions in a row of a recording: the columns of recordingLayout.
enum RecordingColumn {
    RECORDING_ID,
    RECORDING_NAME,
    RECORDING_CHAMBER_ID,
    RECORDING_USER_ID,
    RECORDING_SECONDS_INTERVAL,
    RECORDING_START_TIME,
    RECORDING_END_TIME,
    RECORDING_IS_ACTIVE,
    RECORDING_IS_ARCHIVED,
    RECORDING_ADDITIONAL_INFO,
    RECORDING_FREE_TEXT,
    RECORDING_AUTOMATICALLY_CREATE_REPORT,
    RECORDING_IS_START_RECONDING_ALLOWED,
    RECORDING_NUMBER_OF_RECORDSETS,
    RECORDING_COLUMNS
};

const RecordingProperty recordingLayout[RECORDING_COLUMNS] = {
    RecordingProperty::ID,
    RecordingProperty::RECORDING_NAME,
    RecordingProperty::CHAMBER_ID,
    RecordingProperty::USER_ID,
    RecordingProperty::SECONDS_INTERVAL,
    RecordingProperty::START_TIME,
    RecordingProperty::END_TIME,
    RecordingProperty::IS_ACTIVE,
    RecordingProperty::IS_ARCHIVED,
    RecordingProperty::ADDITIONAL_INFO,
    RecordingProperty::FREE_TEXT,
    RecordingProperty::AUTOMATICALLY_CREATE_REPORT,
    RecordingProperty::IS_START_RECONDING_ALLOWED,
    RecordingProperty::NUMBER_OF_RECORDSETS,
};

// What an insert or a full update writes: every column but the id, in the
// order of the flags.
const RecordingProperty writtenProperties[] = {
    RecordingProperty::RECORDING_NAME,
    RecordingProperty::CHAMBER_ID,
    RecordingProperty::USER_ID,
    RecordingProperty::SECONDS_INTERVAL,
    RecordingProperty::START_TIME,
    RecordingProperty::END_TIME,
    RecordingProperty::IS_ACTIVE,
    RecordingProperty::ADDITIONAL_INFO,
    RecordingProperty::FREE_TEXT,
    RecordingProperty::IS_ARCHIVED,
    RecordingProperty::AUTOMATICALLY_CREATE_REPORT,
    RecordingProperty::IS_START_RECONDING_ALLOWED,
    RecordingProperty::NUMBER_OF_RECORDSETS,
};

QString recordingColumn(RecordingProperty property)
{
    return DC::lookupRecordingColumnName(property);
}

QString metaColumn(MetaRecordingHasRecordingProperty property)
{
    return DC::lookupMetaRecordingHasRecordingColumnName(property);
}

QList<SqlQuery::ColumnValuePair> writtenValues(const RecordingData& recording)
{
    QList<SqlQuery::ColumnValuePair> pairs;
    for (RecordingProperty property : writtenProperties) {
        pairs.append(
            {recordingColumn(property), SqlRecordingDatabaseConnection::getPropertyValue(recording, property)});
    }
    return pairs;
}

} // namespace

SqlRecordingDatabaseConnection::SqlRecordingDatabaseConnection(QObject* parent)
    : QObject(parent)
    , checks(this, SQLRECORDINGDATABASECONNECTION)
{
}

SqlRecordingDatabaseConnection::~SqlRecordingDatabaseConnection() = default;

bool SqlRecordingDatabaseConnection::setDependencies(ISqlConnection* connection, IChamberDatabaseConnection* chambers,
                                                     IRecordsetDatabaseConnection* recordsets)
{
    this->connection = connection;
    this->chambers = chambers;
    this->recordsets = recordsets;
    return areDependenciesSet();
}

bool SqlRecordingDatabaseConnection::areDependenciesSet() const
{
    return connection != nullptr && chambers != nullptr && recordsets != nullptr;
}

bool SqlRecordingDatabaseConnection::initialize()
{
    return checks.hasDependencies("initialize") && checks.hasTables(*connection, {DC::lookupRecordingTableName()});
}

QVariant SqlRecordingDatabaseConnection::getPropertyValue(const RecordingData& recording, RecordingProperty property)
{
    switch (property) {
    case RecordingProperty::ID:
        return int(recording.id);
    case RecordingProperty::RECORDING_NAME:
        return sqlvalue::text(recording.name);
    case RecordingProperty::CHAMBER_ID:
        return sqlvalue::orNull(int(recording.chamberId), -1);
    case RecordingProperty::USER_ID:
        return sqlvalue::orNull(int(recording.userId), 0);
    case RecordingProperty::SECONDS_INTERVAL:
        return sqlvalue::orNull(recording.secondsInterval, -1);
    case RecordingProperty::START_TIME:
        return sqlvalue::utcTime(recording.startTime);
    case RecordingProperty::END_TIME:
        return sqlvalue::utcTime(recording.endTime);
    case RecordingProperty::IS_ACTIVE:
        return recording.isActive;
    case RecordingProperty::ADDITIONAL_INFO:
        return sqlvalue::text(recording.additionalInfo);
    case RecordingProperty::FREE_TEXT:
        return sqlvalue::text(recording.freeText);
    case RecordingProperty::IS_ARCHIVED:
        return recording.isArchived;
    case RecordingProperty::AUTOMATICALLY_CREATE_REPORT:
        return uint(recording.reportFlags);
    case RecordingProperty::IS_START_RECONDING_ALLOWED:
        return recording.isStartAllowed;
    case RecordingProperty::NUMBER_OF_RECORDSETS:
        return qlonglong(recording.numberOfRecordsets);
    }
    // A combination of bits, or a bit that names no column.
    Q_ASSERT(false);
    return QVariant();
}

bool SqlRecordingDatabaseConnection::addRecording(RecordingData& recording)
{
    if (!checks.hasDependencies("addRecording")) {
        return false;
    }
    SqlQuery query;
    query.insertTableColumnValuePairs(DC::lookupRecordingTableName(), writtenValues(recording));
    const ISqlConnection::ExecuteResult result = connection->execute(query);
    if (!result.success) {
        return false;
    }
    recording.id = int(result.lastInsertId);
    // The value columns are laid down now and never again.
    return recordsets->matchSignalRecordsetColumn(recording.id, recording.chamberSignals.keys());
}

QList<QSharedPointer<RecordingData>> SqlRecordingDatabaseConnection::getAllRecordingData() const
{
    if (!checks.hasDependencies("getAllRecordingData")) {
        return {};
    }
    SqlQuery query;
    query.selectColumns(SqlRow::columnNames(DC::lookupRecordingColumnName, recordingLayout))
        .fromTable(DC::lookupRecordingTableName());
    QList<QSharedPointer<RecordingData>> recordings;
    for (const QList<QVariant>& row : connection->fetch(query)) {
        const QSharedPointer<RecordingData> recording = parseRecordingDataRow(row, RECORDING_COLUMNS);
        if (recording) {
            recordings.append(recording);
        }
    }
    return recordings;
}

QSharedPointer<RecordingData> SqlRecordingDatabaseConnection::getRecordingData(const RecordingId& id) const
{
    if (!checks.hasDependencies("getRecordingData")) {
        return {};
    }
    SqlQuery query;
    query.selectColumns(SqlRow::columnNames(DC::lookupRecordingColumnName, recordingLayout))
        .fromTable(DC::lookupRecordingTableName())
        .whereColumn(recordingColumn(RecordingProperty::ID))
        .equals(int(id));
    const QList<QVariant> row = connection->fetchSingleRow(query);
    return row.isEmpty() ? QSharedPointer<RecordingData>() : parseRecordingDataRow(row, RECORDING_COLUMNS);
}

RecordingId SqlRecordingDatabaseConnection::getActiveRecording(const ChamberId& chamber) const
{
    if (!checks.hasDependencies("getActiveRecording")) {
        return RecordingId();
    }
    SqlQuery query;
    query.selectColumn(recordingColumn(RecordingProperty::ID))
        .fromTable(DC::lookupRecordingTableName())
        .whereColumn(recordingColumn(RecordingProperty::CHAMBER_ID))
        .equals(int(chamber))
        .andColumn(recordingColumn(RecordingProperty::IS_ACTIVE))
        .equals(true);
    return SqlRow({connection->fetchSingleValue(query)}).toInt(0, 0);
}

QVariant SqlRecordingDatabaseConnection::getRecordingProperty(const RecordingId& id,
                                                              const RecordingProperty& property) const
{
    if (!checks.hasDependencies("getRecordingProperty")) {
        return QVariant();
    }
    SqlQuery query;
    query.selectColumn(recordingColumn(property))
        .fromTable(DC::lookupRecordingTableName())
        .whereColumn(recordingColumn(RecordingProperty::ID))
        .equals(int(id));
    return connection->fetchSingleValue(query);
}

bool SqlRecordingDatabaseConnection::hasRecordings(const ChamberId& chamber) const
{
    if (!checks.hasDependencies("hasRecordings")) {
        return false;
    }
    SqlQuery query;
    query.selectCount()
        .fromTable(DC::lookupRecordingTableName())
        .whereColumn(recordingColumn(RecordingProperty::CHAMBER_ID))
        .equals(int(chamber));
    return SqlRow({connection->fetchSingleValue(query)}).toInt(0, 0) != 0;
}

bool SqlRecordingDatabaseConnection::setRecordingProperty(const RecordingData& recording,
                                                          const RecordingProperty& property)
{
    return setRecordingProperty(recording.id, property, getPropertyValue(recording, property));
}

bool SqlRecordingDatabaseConnection::setRecordingProperty(const RecordingId& id, const RecordingProperty& property,
                                                          const QVariant& value)
{
    if (!checks.hasDependencies("setRecordingProperty")) {
        return false;
    }
    SqlQuery query;
    query.updateTable(DC::lookupRecordingTableName())
        .setColumnValuePair({recordingColumn(property), value})
        .whereColumn(recordingColumn(RecordingProperty::ID))
        .equals(int(id));
    return connection->execute(query).success;
}

bool SqlRecordingDatabaseConnection::updateRecordingProperties(const RecordingData& recording)
{
    if (!checks.hasDependencies("updateRecordingProperties")) {
        return false;
    }
    SqlQuery query;
    query.updateTable(DC::lookupRecordingTableName())
        .setColumnValuePairs(writtenValues(recording))
        .whereColumn(recordingColumn(RecordingProperty::ID))
        .equals(int(recording.id));
    return connection->execute(query).success;
}

bool SqlRecordingDatabaseConnection::deleteRecording(const RecordingId& id)
{
    if (!checks.hasDependencies("deleteRecording")) {
        return false;
    }
    if (!recordsets->deleteAllRecordsets(id)) {
        qCWarning(SQLRECORDINGDATABASECONNECTION).noquote()
            << QStringLiteral("Can't delete recording %1: Can't delete recording's recordsets").arg(int(id));
        return false;
    }
    SqlQuery query;
    query.deleteFromTable(DC::lookupRecordingTableName())
        .whereColumn(recordingColumn(RecordingProperty::ID))
        .equals(int(id));
    return connection->execute(query).success;
}

bool SqlRecordingDatabaseConnection::archiveRecording(const RecordingId& id)
{
    return setRecordingProperty(id, RecordingProperty::IS_ARCHIVED, true);
}

bool SqlRecordingDatabaseConnection::restoreRecording(const RecordingId& id)
{
    return setRecordingProperty(id, RecordingProperty::IS_ARCHIVED, false);
}

QList<RecordingId> SqlRecordingDatabaseConnection::getMetaRecordingSubRecordings(const RecordingId& meta) const
{
    if (!checks.hasDependencies("getMetaRecordingSubRecordings")) {
        return {};
    }
    SqlQuery query;
    query.selectColumn(metaColumn(MetaRecordingHasRecordingProperty::RECORDING_ID))
        .fromTable(DC::lookupMetaRecordingHasRecordingTableName())
        .whereColumn(metaColumn(MetaRecordingHasRecordingProperty::META_RECORDING_ID))
        .equals(int(meta));
    QList<RecordingId> recordings;
    for (const QVariant& id : connection->fetchSingleColumn(query)) {
        recordings.append(id.toInt());
    }
    return recordings;
}

bool SqlRecordingDatabaseConnection::setMetaRecordingSubRecordings(const RecordingId& meta,
                                                                   QList<RecordingId> recordings)
{
    if (!deleteMetaRecordingSubRecordings(meta)) {
        return false;
    }
    if (recordings.isEmpty()) {
        return true;
    }
    QList<QSharedPointer<ISqlQuery>> statements;
    for (const RecordingId& recording : recordings) {
        const QSharedPointer<SqlQuery> statement = QSharedPointer<SqlQuery>::create();
        statement->insertTableColumnValuePairs(
            DC::lookupMetaRecordingHasRecordingTableName(),
            {{metaColumn(MetaRecordingHasRecordingProperty::META_RECORDING_ID), int(meta)},
             {metaColumn(MetaRecordingHasRecordingProperty::RECORDING_ID), int(recording)}});
        statements.append(statement);
    }
    return connection->executeTransaction(statements);
}

bool SqlRecordingDatabaseConnection::deleteMetaRecordingSubRecordings(const RecordingId& meta)
{
    if (!checks.hasDependencies("deleteMetaRecordingSubRecordings")) {
        return false;
    }
    SqlQuery query;
    query.deleteFromTable(DC::lookupMetaRecordingHasRecordingTableName())
        .whereColumn(metaColumn(MetaRecordingHasRecordingProperty::META_RECORDING_ID))
        .equals(int(meta));
    return connection->execute(query).success;
}

QSharedPointer<RecordingData> SqlRecordingDatabaseConnection::parseRecordingDataRow(const QList<QVariant>& values,
                                                                                    int columnCount) const
{
    if (!checks.hasWidth(values, columnCount, "parseRecordingDataRow")) {
        return {};
    }
    const SqlRow row(values);
    const RecordingId id = int(row.toUInt(RECORDING_ID, 0));
    QMap<int, ChamberSignal> signalMap = recordsets->getRecordingSignals(id);
    const ChamberId chamber = row.toInt(RECORDING_CHAMBER_ID, -1);
    const QMap<SignalId, QString> customNames = chambers->getChamberCustomSignalNames(chamber);
    // Writing detaches the map from the recordset store's, which keeps the plain names.
    for (auto signal = signalMap.begin(); signal != signalMap.end(); ++signal) {
        const auto name = customNames.constFind(signal.key());
        if (name != customNames.constEnd()) {
            signal->name = name.value();
        }
    }
    return QSharedPointer<RecordingData>::create(
        id, row.toString(RECORDING_NAME), chamber, row.toInt(RECORDING_USER_ID, 0),
        row.toInt(RECORDING_SECONDS_INTERVAL, -1), row.toLocalTime(RECORDING_START_TIME),
        row.toLocalTime(RECORDING_END_TIME), row.toBool(RECORDING_IS_ACTIVE, false),
        row.toBool(RECORDING_IS_ARCHIVED, false), row.toString(RECORDING_ADDITIONAL_INFO),
        row.toString(RECORDING_FREE_TEXT), quint32(row.toUInt(RECORDING_AUTOMATICALLY_CREATE_REPORT, 0)), signalMap,
        QList<RecordingId>(), row.toBool(RECORDING_IS_START_RECONDING_ALLOWED, true),
        qint64(row.toLongLong(RECORDING_NUMBER_OF_RECORDSETS, -1)));
}

} // namespace zelmor::base::connection::databaseconnection
