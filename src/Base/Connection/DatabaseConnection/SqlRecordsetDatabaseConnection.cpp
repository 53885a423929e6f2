#include "Base/Connection/DatabaseConnection/SqlRecordsetDatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/RecordsetSelection.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlRecordsetConversion.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Base/Connection/DatabaseConnection/sqlvalue.h"
#include "Domain/Api/IChamberDatabaseConnection.h"
#include "Domain/Api/IConfigurationDatabaseConnection.h"
#include "Domain/Api/ISqlConnection.h"
#include "Domain/Types/Recordset.h"
#include "Domain/Types/RecordsetComment.h"
#include "Domain/Types/TimeSpan.h"

#include <QHash>

namespace zelmor::base::connection::databaseconnection {

Q_LOGGING_CATEGORY(SQLRECORDSETDATABASECONNECTION, "zelmor.SqlRecordsetDatabaseConnection")

using namespace zelmor::domain::types;
using zelmor::domain::api::IChamberDatabaseConnection;
using zelmor::domain::api::IConfigurationDatabaseConnection;
using zelmor::domain::api::ISqlConnection;
using zelmor::domain::api::ISqlQuery;
using zelmor::domain::api::RecordingHasSignalColumnProperty;
using zelmor::domain::api::RecordsetCommentProperty;
using zelmor::domain::api::RecordsetProperty;

namespace {

using DC = DatabaseSchema;
using Rows = QList<QList<QVariant>>;

// Positions in a row of the mapping's statements.
enum MappingColumn { MAPPING_SIGNAL_ID, MAPPING_COLUMN_NUMBER, MAPPING_COLUMNS };

// Positions in a row of getRecordsetComment.
enum CommentColumn { COMMENT_CREATION_TIME, COMMENT_USER_ID, COMMENT_TEXT, COMMENT_COLUMNS };

QString recordsetColumn(RecordsetProperty property)
{
    return DC::lookupRecordsetColumnName(property);
}

QString commentColumn(RecordsetCommentProperty property)
{
    return DC::lookupRecordsetCommentColumnName(property);
}

QString mappingColumn(RecordingHasSignalColumnProperty property)
{
    return DC::lookupRecordingHasSignalColumnColumnName(property);
}

// "signal_3" for the column number 3.
QString signalColumn(int number)
{
    return recordsetColumn(RecordsetProperty::SIGNAL_N).arg(number);
}

// The rows with their comments; the condition follows.
SqlQuery selectWithComment(const QStringList& columns)
{
    SqlQuery query;
    query.selectColumns(columns)
        .fromTable(DC::lookupRecordsetTableName())
        .leftJoinOnMatch(
            {{DC::lookupRecordsetTableName(), recordsetColumn(RecordsetProperty::ID)},
             {DC::lookupRecordsetCommentTableName(), commentColumn(RecordsetCommentProperty::RECORDSET_ID)}});
    return query;
}

// A recording's mapping; the recording follows.
SqlQuery selectMapping()
{
    SqlQuery query;
    query
        .selectColumns({mappingColumn(RecordingHasSignalColumnProperty::SIGNAL_ID),
                        mappingColumn(RecordingHasSignalColumnProperty::RECORDSET_SIGNAL_COLUMN)})
        .fromTable(DC::lookupRecordingHasSignalColumnTableName())
        .whereColumn(mappingColumn(RecordingHasSignalColumnProperty::RECORDING_ID));
    return query;
}

} // namespace

SqlRecordsetDatabaseConnection::SqlRecordsetDatabaseConnection(QObject* parent, int rowCacheCapacity)
    : QObject(parent)
    , rowCache(rowCacheCapacity)
    , checks(this, SQLRECORDSETDATABASECONNECTION)
{
}

SqlRecordsetDatabaseConnection::~SqlRecordsetDatabaseConnection() = default;

bool SqlRecordsetDatabaseConnection::setDependencies(ISqlConnection* connection,
                                                     IConfigurationDatabaseConnection* configuration,
                                                     IChamberDatabaseConnection* chambers)
{
    this->connection = connection;
    this->configuration = configuration;
    this->chambers = chambers;
    return areDependenciesSet();
}

bool SqlRecordsetDatabaseConnection::areDependenciesSet() const
{
    return connection != nullptr && configuration != nullptr && chambers != nullptr;
}

bool SqlRecordsetDatabaseConnection::initialize()
{
    return checks.hasDependencies("initialize")
           && checks.hasTables(*connection, {DC::lookupRecordsetCommentTableName(), DC::lookupRecordsetTableName()});
}

bool SqlRecordsetDatabaseConnection::addRecordset(Recordset& recordset)
{
    if (!checks.hasDependencies("addRecordset")) {
        return false;
    }
    rowCache.remove(recordset.recordingId);
    SqlQuery query;
    query.insertTable(DC::lookupRecordsetTableName())
        .columns(getRecordsetColumnNames(recordset))
        .values(createColumnValueLists(recordset, getRecordingSignalsAndColumnNames(recordset.recordingId).first));
    const ISqlConnection::ExecuteResult result = connection->execute(query);
    if (result.success) {
        recordset.id = int(result.lastInsertId);
    }
    return result.success;
}

bool SqlRecordsetDatabaseConnection::addRecordsetComment(const RecordsetComment& comment)
{
    if (!checks.hasDependencies("addRecordsetComment")) {
        return false;
    }
    forgetRecordingOf(comment.recordsetId);
    SqlQuery query;
    query.insertTableColumnValuePairs(
        DC::lookupRecordsetCommentTableName(),
        {{commentColumn(RecordsetCommentProperty::RECORDSET_ID), sqlvalue::orNull(int(comment.recordsetId), -1)},
         {commentColumn(RecordsetCommentProperty::CREATION_TIME), sqlvalue::utcTime(comment.time)},
         {commentColumn(RecordsetCommentProperty::USER_ID), sqlvalue::orNull(int(comment.userId), 0)},
         {commentColumn(RecordsetCommentProperty::COMMENT_TEXT), sqlvalue::text(comment.text)}});
    return connection->execute(query).success;
}

bool SqlRecordsetDatabaseConnection::deleteRecordsetComment(const RecordsetId& id)
{
    if (!checks.hasDependencies("deleteRecordsetComment")) {
        return false;
    }
    forgetRecordingOf(id);
    SqlQuery query;
    query.deleteFromTable(DC::lookupRecordsetCommentTableName())
        .whereColumn(commentColumn(RecordsetCommentProperty::RECORDSET_ID))
        .equals(int(id));
    return connection->execute(query).success;
}

bool SqlRecordsetDatabaseConnection::deleteRecordset(const RecordsetId& id)
{
    if (!checks.hasDependencies("deleteRecordset")) {
        return false;
    }
    // The row cache keeps the row, as decided.
    SqlQuery query;
    query.deleteFromTable(DC::lookupRecordsetTableName())
        .whereColumn(recordsetColumn(RecordsetProperty::ID))
        .equals(int(id));
    return connection->execute(query).success;
}

bool SqlRecordsetDatabaseConnection::deleteAllRecordsets(const RecordingId& recording)
{
    if (!checks.hasDependencies("deleteAllRecordsets")) {
        return false;
    }
    // The row cache keeps the rows, as decided.
    SqlQuery query;
    query.deleteFromTable(DC::lookupRecordsetTableName())
        .whereColumn(recordsetColumn(RecordsetProperty::RECORDING_ID))
        .equals(int(recording));
    return connection->execute(query).success;
}

Recordset SqlRecordsetDatabaseConnection::getRecordset(const RecordsetId& id)
{
    if (!checks.hasDependencies("getRecordset")) {
        return Recordset();
    }
    const SignalsAndColumnNames mapping = getRecordingSignalsAndColumnNames(id);
    const QStringList columns = SqlRecordsetConversion::prepareColumnNames(mapping.second, true);
    SqlQuery query = selectWithComment(columns);
    query.whereColumn(recordsetColumn(RecordsetProperty::ID)).equals(int(id));
    const Rows rows = connection->fetch(query);
    if (rows.isEmpty()) {
        return Recordset();
    }
    return SqlRecordsetConversion(chambers, columns.size(), mapping.first).convert(rows.first());
}

QList<Recordset> SqlRecordsetDatabaseConnection::getLatestNRecordsets(const RecordingId& recording, int count,
                                                                      const QDateTime& before)
{
    if (!checks.hasDependencies("getLatestNRecordsets")) {
        return {};
    }
    const SignalsAndColumnNames mapping = getRecordingSignalsAndColumnNames(recording);
    const QStringList columns = SqlRecordsetConversion::prepareColumnNames(mapping.second, true);
    SqlQuery query = selectWithComment(columns);
    query.whereColumn(recordsetColumn(RecordsetProperty::RECORDING_ID)).equals(int(recording));
    if (before.isValid()) {
        query.andColumn(recordsetColumn(RecordsetProperty::RECORD_TIME)).isLess(sqlvalue::utcTime(before));
    }
    query.orderBy(recordsetColumn(RecordsetProperty::RECORD_TIME), SqlQuery::DESC).limitTo(count);
    return getRecordsets(query, columns.size(), mapping.first, -1, -1);
}

QList<Recordset> SqlRecordsetDatabaseConnection::getNRecordsets(const RecordingId& recording, int count,
                                                                const RecordsetId& before)
{
    if (!checks.hasDependencies("getNRecordsets")) {
        return {};
    }
    const SignalsAndColumnNames mapping = getRecordingSignalsAndColumnNames(recording);
    const QStringList columns = SqlRecordsetConversion::prepareColumnNames(mapping.second, true);
    SqlQuery query = selectWithComment(columns);
    query.whereColumn(recordsetColumn(RecordsetProperty::RECORDING_ID))
        .equals(int(recording))
        .andColumn(recordsetColumn(RecordsetProperty::ID))
        .isLess(int(before))
        .orderBy(recordsetColumn(RecordsetProperty::ID), SqlQuery::DESC)
        .limitTo(count);
    return getRecordsets(query, columns.size(), mapping.first, -1, -1);
}

QList<Recordset> SqlRecordsetDatabaseConnection::getRecordsets(const RecordingId& recording, const TimeSpan& span,
                                                               long long maxCount)
{
    if (!checks.hasDependencies("getRecordsets")) {
        return {};
    }
    const SignalsAndColumnNames mapping = getRecordingSignalsAndColumnNames(recording);
    const QStringList columns = SqlRecordsetConversion::prepareColumnNames(mapping.second, true);
    const Rows rows = getCachedRows(recording, columns);
    SqlRecordsetConversion conversion(chambers, columns.size(), mapping.first);
    return RecordsetSelection::bySpan(rows, conversion, span, maxCount);
}

QList<Recordset> SqlRecordsetDatabaseConnection::getRecordsets(const RecordingId& recording, long long start,
                                                               long long end, long long maxCount)
{
    if (!checks.hasDependencies("getRecordsets")) {
        return {};
    }
    const SignalsAndColumnNames mapping = getRecordingSignalsAndColumnNames(recording);
    const QStringList columns = SqlRecordsetConversion::prepareColumnNames(mapping.second, true);
    const Rows rows = getCachedRows(recording, columns);
    SqlRecordsetConversion conversion(chambers, columns.size(), mapping.first);
    return RecordsetSelection::byPosition(rows, conversion, start, end, maxCount);
}

RecordsetComment SqlRecordsetDatabaseConnection::getRecordsetComment(const RecordsetId& id) const
{
    if (!checks.hasDependencies("getRecordsetComment")) {
        return RecordsetComment();
    }
    SqlQuery query;
    query
        .selectColumns({commentColumn(RecordsetCommentProperty::CREATION_TIME),
                        commentColumn(RecordsetCommentProperty::USER_ID),
                        commentColumn(RecordsetCommentProperty::COMMENT_TEXT)})
        .fromTable(DC::lookupRecordsetCommentTableName())
        .whereColumn(commentColumn(RecordsetCommentProperty::RECORDSET_ID))
        .equals(int(id));
    const QList<QVariant> values = connection->fetchSingleRow(query);
    if (values.isEmpty() || !checks.hasWidth(values, COMMENT_COLUMNS, "getRecordsetComment")) {
        return RecordsetComment();
    }
    const SqlRow row(values);
    return RecordsetComment(row.toLocalTime(COMMENT_CREATION_TIME), row.toInt(COMMENT_USER_ID, 0), id,
                            row.toString(COMMENT_TEXT));
}

bool SqlRecordsetDatabaseConnection::matchSignalRecordsetColumn(const RecordingId& recording,
                                                                const QList<SignalId>& signalIds)
{
    if (!checks.hasDependencies("matchSignalRecordsetColumn")) {
        return false;
    }
    Q_ASSERT(signalIds.size() <= DC::nSignalsMax());
    if (signalIds.isEmpty()) {
        return true;
    }
    QList<QSharedPointer<ISqlQuery>> statements;
    for (int index = 0; index < signalIds.size(); ++index) {
        const QSharedPointer<SqlQuery> statement = QSharedPointer<SqlQuery>::create();
        statement->insertTable(DC::lookupRecordingHasSignalColumnTableName())
            .columns({mappingColumn(RecordingHasSignalColumnProperty::RECORDING_ID),
                      mappingColumn(RecordingHasSignalColumnProperty::SIGNAL_ID),
                      mappingColumn(RecordingHasSignalColumnProperty::RECORDSET_SIGNAL_COLUMN)})
            .values({int(recording), signalIds.at(index), index + 1});
        statements.append(statement);
    }
    return connection->executeTransaction(statements);
}

QMap<int, ChamberSignal> SqlRecordsetDatabaseConnection::getRecordingSignals(const RecordingId& recording) const
{
    if (!checks.hasDependencies("getRecordingSignals")) {
        return {};
    }
    SqlQuery query;
    query.selectColumn(mappingColumn(RecordingHasSignalColumnProperty::SIGNAL_ID))
        .fromTable(DC::lookupRecordingHasSignalColumnTableName())
        .whereColumn(mappingColumn(RecordingHasSignalColumnProperty::RECORDING_ID))
        .equals(int(recording));
    QList<SignalId> ids;
    for (const QVariant& id : connection->fetchSingleColumn(query)) {
        ids.append(id.toInt());
    }
    return configuration->getChamberSignals(ids);
}

bool SqlRecordsetDatabaseConnection::addRecordsToQuery(QList<Recordset>& recordsets) const
{
    if (!checks.hasDependencies("addRecordsToQuery")) {
        return false;
    }
    if (recordsets.isEmpty()) {
        return true;
    }
    const QStringList columns = getRecordsetColumnNames(recordsets.first());
    const int rowsPerStatement = maxBindValues_ / columns.size();
    // Usually all of one recording.
    QHash<int, QMap<int, ChamberSignal>> signalMaps;
    const auto signalsOf = [&](const RecordingId& recording) -> const QMap<int, ChamberSignal>& {
        auto found = signalMaps.find(recording);
        if (found == signalMaps.end()) {
            found = signalMaps.insert(recording, getRecordingSignalsAndColumnNames(recording).first);
        }
        return found.value();
    };

    QList<QSharedPointer<ISqlQuery>> statements;
    statements.reserve(recordsets.size() / rowsPerStatement + 1);
    QSharedPointer<SqlQuery> statement;
    int rows = 0;
    for (const Recordset& recordset : recordsets) {
        if (rows == 0) {
            statement = QSharedPointer<SqlQuery>::create();
            statement->insertTable(DC::lookupRecordsetTableName()).columns(columns);
            statements.append(statement);
        }
        statement->values(createColumnValueLists(recordset, signalsOf(recordset.recordingId)), rows == 0);
        rows = (rows + 1) % rowsPerStatement;
    }
    return connection->executeTransaction(statements);
}

long long SqlRecordsetDatabaseConnection::getRecordsetLenght(const RecordingId& recording)
{
    if (!checks.hasDependencies("getRecordsetLenght")) {
        return 0;
    }
    SqlQuery query;
    query.selectCount()
        .fromTable(DC::lookupRecordsetTableName())
        .whereColumn(recordsetColumn(RecordsetProperty::RECORDING_ID))
        .equals(int(recording));
    return SqlRow({connection->fetchSingleValue(query)}).toLongLong(0, 0);
}

QList<Recordset> SqlRecordsetDatabaseConnection::getRecordsets(const SqlQuery& query, int columnCount,
                                                               const QMap<int, ChamberSignal>& signalMap,
                                                               long long total, long long wanted)
{
    if (!checks.hasDependencies("getRecordsets")) {
        return {};
    }
    QList<Recordset> result;
    SqlRecordsetConversion conversion(chambers, columnCount, signalMap);
    const Recordset empty;
    const auto append = [&](const QList<QVariant>& row) {
        const Recordset recordset = conversion.convert(row);
        if (recordset != empty) {
            result.append(recordset);
        }
    };
    if (total <= 0) {
        connection->fetch(query, [&](const QList<QVariant>& row, int) { append(row); });
        return result;
    }
    qint64 index = 0;
    connection->fetch(query, [&](const QList<QVariant>& row, int) {
        if (index++ == RecordsetSelection::spreadIndex(result.size(), total, wanted)) {
            append(row);
        }
    });
    return result;
}

SignalsAndColumnNames
SqlRecordsetDatabaseConnection::getRecordingSignalsAndColumnNames(const RecordingId& recording) const
{
    if (!checks.hasDependencies("getRecordingSignalsAndColumnNames")) {
        return {};
    }
    if (signalsCache.contains(recording)) {
        return signalsCache.get(recording);
    }
    SqlQuery query = selectMapping();
    query.equals(int(recording)).orderBy(mappingColumn(RecordingHasSignalColumnProperty::SIGNAL_ID), SqlQuery::ASC);
    const SignalsAndColumnNames mapping = getRecordingSignalsAndColumnNames(query, MAPPING_COLUMNS);
    signalsCache.add(recording, mapping);
    return mapping;
}

SignalsAndColumnNames SqlRecordsetDatabaseConnection::getRecordingSignalsAndColumnNames(const RecordsetId& id) const
{
    if (!checks.hasDependencies("getRecordingSignalsAndColumnNames")) {
        return {};
    }
    SqlQuery recording;
    recording.selectColumn(recordsetColumn(RecordsetProperty::RECORDING_ID))
        .fromTable(DC::lookupRecordsetTableName())
        .whereColumn(recordsetColumn(RecordsetProperty::ID))
        .equals(int(id));
    SqlQuery query = selectMapping();
    query.equals(recording).orderBy(mappingColumn(RecordingHasSignalColumnProperty::SIGNAL_ID), SqlQuery::ASC);
    return getRecordingSignalsAndColumnNames(query, MAPPING_COLUMNS);
}

SignalsAndColumnNames SqlRecordsetDatabaseConnection::getRecordingSignalsAndColumnNames(const SqlQuery& query,
                                                                                        int columnCount) const
{
    if (!checks.hasDependencies("getRecordingSignalsAndColumnNames")) {
        return {};
    }
    QList<SignalId> ids;
    QStringList names;
    for (const QList<QVariant>& values : connection->fetch(query)) {
        if (!checks.hasWidth(values, columnCount, "getRecordingSignalsAndColumnNames")) {
            break;
        }
        const SqlRow row(values);
        ids.append(row.toInt(MAPPING_SIGNAL_ID, -1));
        names.append(signalColumn(row.toInt(MAPPING_COLUMN_NUMBER, 0)));
    }
    return {configuration->getChamberSignals(ids), names};
}

QStringList SqlRecordsetDatabaseConnection::getRecordsetColumnNames(const Recordset& recordset) const
{
    if (!checks.hasDependencies("getRecordsetColumnNames")) {
        return {};
    }
    QList<QVariant> ids;
    for (const SignalValuePair& pair : recordset.values) {
        ids.append(pair.signalId);
    }
    SqlQuery query;
    query.selectColumn(mappingColumn(RecordingHasSignalColumnProperty::RECORDSET_SIGNAL_COLUMN))
        .fromTable(DC::lookupRecordingHasSignalColumnTableName())
        .whereColumn(mappingColumn(RecordingHasSignalColumnProperty::RECORDING_ID))
        .equals(int(recordset.recordingId))
        .andColumn(mappingColumn(RecordingHasSignalColumnProperty::SIGNAL_ID))
        .inList(ids)
        .orderBy(mappingColumn(RecordingHasSignalColumnProperty::SIGNAL_ID), SqlQuery::ASC);

    QStringList columns = {
        recordsetColumn(RecordsetProperty::RECORDING_ID),
        recordsetColumn(RecordsetProperty::RECORD_TIME),
        recordsetColumn(RecordsetProperty::IS_RETRIEVED_FROM_CHAMBER),
        recordsetColumn(RecordsetProperty::ALARM_TYPE),
        recordsetColumn(RecordsetProperty::CAMERA_IMAGE_PATH),
        recordsetColumn(RecordsetProperty::CHAMBER_MODE),
    };
    for (const QVariant& number : connection->fetchSingleColumn(query)) {
        columns.append(signalColumn(number.toInt()));
    }
    return columns;
}

QList<Recordset> SqlRecordsetDatabaseConnection::getRecordsetsWithImagePath(const RecordingId& recording,
                                                                            const TimeSpan& span, long long maxCount)
{
    if (!checks.hasDependencies("getRecordsetsWithImagePath")) {
        return {};
    }
    const SignalsAndColumnNames mapping = getRecordingSignalsAndColumnNames(recording);
    const QStringList columns = SqlRecordsetConversion::prepareColumnNames(mapping.second, true);
    SqlQuery query = selectWithComment(columns);
    query.whereColumn(recordsetColumn(RecordsetProperty::RECORDING_ID))
        .equals(int(recording))
        .andColumn(recordsetColumn(RecordsetProperty::CAMERA_IMAGE_PATH))
        .isNotNull();
    // Not from the row cache, and not into it.
    SqlRecordsetConversion conversion(chambers, columns.size(), mapping.first);
    return RecordsetSelection::bySpan(connection->fetch(query), conversion, span, maxCount);
}

bool SqlRecordsetDatabaseConnection::setProperty(const RecordsetId& id, RecordsetProperty property,
                                                 const QVariant& value)
{
    if (!checks.hasDependencies("setProperty")) {
        return false;
    }
    SqlQuery query;
    query.updateTable(DC::lookupRecordsetTableName())
        .setColumnValuePair({recordsetColumn(property), value})
        .whereColumn(recordsetColumn(RecordsetProperty::ID))
        .equals(int(id));
    return connection->execute(query).success;
}

Recordset SqlRecordsetDatabaseConnection::convert(const QList<QVariant>& row, int columnCount,
                                                  const QMap<int, ChamberSignal>& signalMap)
{
    return SqlRecordsetConversion(chambers, columnCount, signalMap).convert(row);
}

Rows SqlRecordsetDatabaseConnection::getCachedRows(const RecordingId& recording, const QStringList& columns)
{
    if (rowCache.contains(recording)) {
        return rowCache.get(recording);
    }
    SqlQuery query = selectWithComment(columns);
    query.whereColumn(recordsetColumn(RecordsetProperty::RECORDING_ID)).equals(int(recording));
    const Rows rows = connection->fetch(query);
    rowCache.add(recording, rows);
    return rows;
}

QList<QVariant> SqlRecordsetDatabaseConnection::createColumnValueLists(const Recordset& recordset,
                                                                       const QMap<int, ChamberSignal>& signalMap)
{
    QList<QVariant> values = {
        sqlvalue::orNull(unsigned(int(recordset.recordingId)), 0u),
        sqlvalue::utcTime(recordset.time),
        recordset.isRetrievedFromChamber,
        sqlvalue::orNull(int(recordset.alarm), 0),
        sqlvalue::text(recordset.cameraImagePath),
        int(recordset.chamberMode),
    };
    values.reserve(values.size() + recordset.values.size());
    for (const SignalValuePair& pair : recordset.values) {
        if (!pair.hasValue()) {
            values.append(sqlvalue::null<double>());
            continue;
        }
        const auto signal = signalMap.constFind(pair.signalId);
        if (signal == signalMap.constEnd() || pair.value.unit == signal->unit) {
            values.append(pair.value.value);
            continue;
        }
        SignalValuePair converted = pair;
        converted.convertToSignal(signal.value());
        values.append(converted.value.value);
    }
    return values;
}

void SqlRecordsetDatabaseConnection::forgetRecordingOf(const RecordsetId& id)
{
    rowCache.remove(getRecordset(id).recordingId);
}

} // namespace zelmor::base::connection::databaseconnection
