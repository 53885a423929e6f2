#include "Base/Connection/DatabaseConnection/SqlConfigurationDatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/sqlhelper.h"
#include "Domain/Api/ISqlConnection.h"
#include "Domain/Types/ChamberOption.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ChamberTypeData.h"
#include "Domain/Types/ChamberTypeId.h"
#include "Domain/Types/ControlSignal.h"
#include "Domain/Types/ControllerAddress.h"
#include "Domain/Types/DefaultToleranceRange.h"
#include "Domain/Types/UserLevel.h"

#include <QRegExp>

#include <limits>

namespace zelmor::base::connection::databaseconnection {

Q_LOGGING_CATEGORY(SQLCONFIGURATIONDATABASECONNECTION, "zelmor.SqlConfigurationDatabaseConnection")

using namespace zelmor::domain::types;
using zelmor::domain::api::AdditionalInfoProperty;
using zelmor::domain::api::ChamberTypeHasAdditionalInfoProperty;
using zelmor::domain::api::ChamberTypeHasControlSignalsProperty;
using zelmor::domain::api::ChamberTypeHasDataloggerSignalProperty;
using zelmor::domain::api::ChamberTypeHasOptionsProperty;
using zelmor::domain::api::ChamberTypeHasProtocolProperty;
using zelmor::domain::api::ChamberTypeHasSignalProperty;
using zelmor::domain::api::ChamberTypeHasTestSignalProperty;
using zelmor::domain::api::ChamberTypeHasToleranceRangeProperty;
using zelmor::domain::api::ChamberTypeProperty;
using zelmor::domain::api::ControllerDataProperty;
using zelmor::domain::api::ControllerProperty;
using zelmor::domain::api::ControlSignalsProperty;
using zelmor::domain::api::DefaultToleranceRangeProperty;
using zelmor::domain::api::ISqlConnection;
using zelmor::domain::api::OptionsProperty;
using zelmor::domain::api::SignalProperty;
using zelmor::domain::api::ValueTypeProperty;

namespace {

// The facade's names, as DatabaseConnection inherits them.
using DC = DatabaseSchema;

constexpr int signalColumnCount = 16;
constexpr int chamberTypeColumnCount = 14;
constexpr int matchingSignalColumnCount = signalColumnCount + 1;
constexpr int defaultToleranceRangeColumnCount = 8;
constexpr int controllerAddressColumnCount = 6;
constexpr int optionColumnCount = 2;
constexpr int controlSignalColumnCount = 6;

// Positions in the signal row layout.
enum SignalColumn {
    SIGNAL_ID,
    SIGNAL_NAME,
    SIGNAL_UNIT,
    SIGNAL_USER_LEVEL,
    SIGNAL_LIMIT_MIN,
    SIGNAL_LIMIT_MAX,
    SIGNAL_BITPOSITION,
    SIGNAL_TIME_PROGRAMMABLE,
    SIGNAL_WEEK_PROGRAMMABLE,
    SIGNAL_VALUE_TYPE,
    SIGNAL_SIGNAL_TYPE,
    SIGNAL_SET_POINT_SIGNAL,
    SIGNAL_READ,
    SIGNAL_WRITE_BASIC,
    SIGNAL_WRITE_MANUAL,
    SIGNAL_WRITE_AUTO
};

// The columns of the signal row layout, in its order.
const SignalProperty signalLayout[signalColumnCount] = {
    SignalProperty::ID,
    SignalProperty::NAME,
    SignalProperty::UNIT,
    SignalProperty::USER_LEVEL,
    SignalProperty::LIMIT_MIN,
    SignalProperty::LIMIT_MAX,
    SignalProperty::BITPOSITION,
    SignalProperty::TIME_PROGRAMMABLE,
    SignalProperty::WEEK_PROGRAMMABLE,
    SignalProperty::VALUE_TYPE,
    SignalProperty::SIGNAL_TYPE,
    SignalProperty::SET_POINT_SIGNAL,
    SignalProperty::READ,
    SignalProperty::WRITE_BASIC,
    SignalProperty::WRITE_MANUAL,
    SignalProperty::WRITE_AUTO,
};

QList<SqlQuery::TableColumnPair> signalTableColumnPairs(const QString& table)
{
    QList<SqlQuery::TableColumnPair> pairs;
    pairs.reserve(signalColumnCount);
    for (SignalProperty property : signalLayout) {
        pairs.append({table, DC::lookupSignalColumnName(property)});
    }
    return pairs;
}

// " SELECT signal_id FROM chamber_type_has_signal WHERE chamber_type_id = ?"
SqlQuery signalIdsOfType(quint64 typeId)
{
    SqlQuery query;
    query.selectColumn(DC::lookupChamberTypeHasSignalColumnName(ChamberTypeHasSignalProperty::SIGNAL_ID))
        .fromTable(DC::lookupChamberTypeHasSignalTableName())
        .whereColumn(DC::lookupChamberTypeHasSignalColumnName(ChamberTypeHasSignalProperty::CHAMBER_TYPE_ID))
        .equals(typeId);
    return query;
}

// The signal ids of a type, joined to the signal table so that a signal column
// can narrow them down.
SqlQuery signalIdsOfTypeWhere(quint64 typeId, SignalProperty property, const QVariant& value)
{
    const QString links = DC::lookupChamberTypeHasSignalTableName();
    const QString signalTable = DC::lookupSignalTableName();
    SqlQuery query;
    query.selectColumn(DC::lookupChamberTypeHasSignalColumnName(ChamberTypeHasSignalProperty::SIGNAL_ID))
        .fromTable(links)
        .joinOnMatch({{links, DC::lookupChamberTypeHasSignalColumnName(ChamberTypeHasSignalProperty::SIGNAL_ID)},
                      {signalTable, DC::lookupSignalColumnName(SignalProperty::ID)}})
        .whereColumn(DC::lookupChamberTypeHasSignalColumnName(ChamberTypeHasSignalProperty::CHAMBER_TYPE_ID))
        .equals(typeId)
        .andColumn(DC::lookupSignalColumnName(property))
        .equals(value);
    return query;
}

// " SELECT tolerance_range_id FROM chamber_type_has_tolerance_range WHERE chamber_type_id = ?"
SqlQuery toleranceRangeIdsOfType(quint64 typeId)
{
    SqlQuery query;
    query
        .selectColumn(
            DC::lookupChamberTypeHasToleranceRangeColumnName(ChamberTypeHasToleranceRangeProperty::TOLERANCE_RANGE_ID))
        .fromTable(DC::lookupChamberTypeHasToleranceRangeTableName())
        .whereColumn(
            DC::lookupChamberTypeHasToleranceRangeColumnName(ChamberTypeHasToleranceRangeProperty::CHAMBER_TYPE_ID))
        .equals(typeId);
    return query;
}

// " SELECT c FROM t WHERE k = ?"
SqlQuery selectValueById(const QString& table, const QString& column, const QString& key, const QVariant& id)
{
    SqlQuery query;
    query.selectColumn(column).fromTable(table).whereColumn(key).equals(id);
    return query;
}

// The statement that selects the signal columns of the given signals.
SqlQuery selectSignalsIn(const SqlQuery& signalIds)
{
    SqlQuery query;
    query.selectColumns(SqlConfigurationDatabaseConnection::prepareChamberSignalColumnNames())
        .fromTable(DC::lookupSignalTableName())
        .whereColumn(DC::lookupSignalColumnName(SignalProperty::ID))
        .inSelectQuery(signalIds);
    return query;
}

SignalId toSignalId(const QVariant& value)
{
    return sqlhelper::readIntSqlValue(value, -1);
}

QSharedPointer<ControllerAddress> noAddress()
{
    return QSharedPointer<ControllerAddress>();
}

} // namespace

QList<SqlQuery::TableColumnPair> SqlConfigurationDatabaseConnection::prepareDefaultToleranceRangeTableColumnPairs()
{
    const QString ranges = DC::lookupDefaultToleranceRangeTableName();
    return {
        {ranges, DC::lookupDefaultToleranceRangeColumnName(DefaultToleranceRangeProperty::NAME)},
        {ranges, DC::lookupDefaultToleranceRangeColumnName(DefaultToleranceRangeProperty::SET_POINT)},
        {ranges, DC::lookupDefaultToleranceRangeColumnName(DefaultToleranceRangeProperty::PROCESS_VALUE)},
        {ranges, DC::lookupDefaultToleranceRangeColumnName(DefaultToleranceRangeProperty::RANGE_MIN)},
        {ranges, DC::lookupDefaultToleranceRangeColumnName(DefaultToleranceRangeProperty::RANGE_MAX)},
        {ranges, DC::lookupDefaultToleranceRangeColumnName(DefaultToleranceRangeProperty::DELAY1)},
        {ranges, DC::lookupDefaultToleranceRangeColumnName(DefaultToleranceRangeProperty::DELAY2)},
        {DC::lookupSignalTableName(), DC::lookupSignalColumnName(SignalProperty::UNIT)},
    };
}

SqlConfigurationDatabaseConnection::SqlConfigurationDatabaseConnection(QObject* parent)
    : QObject(parent)
    , connection(nullptr)
{
}

SqlConfigurationDatabaseConnection::~SqlConfigurationDatabaseConnection() = default;

bool SqlConfigurationDatabaseConnection::setDependencies(ISqlConnection* connection)
{
    this->connection = connection;
    return connection != nullptr;
}

bool SqlConfigurationDatabaseConnection::areDependenciesSet() const
{
    return connection != nullptr;
}

bool SqlConfigurationDatabaseConnection::initialize()
{
    if (!checkDependencies("initialize")) {
        return false;
    }
    // The core of the catalogue; the other tables are optional parts.
    const QStringList requiredTables = {
        DC::lookupAdditionalInfoTableName(),
        DC::lookupChamberTypeHasAdditionalInfoTableName(),
        DC::lookupChamberTypeHasProtocolTableName(),
        DC::lookupChamberTypeHasSignalTableName(),
        DC::lookupChamberTypeTableName(),
        DC::lookupControllerTableName(),
        DC::lookupControllerDataTableName(),
        DC::lookupProtocolTableName(),
        DC::lookupSignalTableName(),
        DC::lookupValueTypeTableName(),
    };
    for (const QString& table : requiredTables) {
        if (!connection->containsTable(table)) {
            qCCritical(SQLCONFIGURATIONDATABASECONNECTION) << "The configuration database lacks the table" << table;
            emit error(MISSING_TABLE);
            return false;
        }
    }
    return true;
}

QList<ChamberTypeData> SqlConfigurationDatabaseConnection::getAllChamberTypeData(bool withSignals) const
{
    if (!checkDependencies("getAllChamberTypeData")) {
        return {};
    }
    SqlQuery query;
    query.selectColumns(getChamberTypeColumnNames()).fromTable(DC::lookupChamberTypeTableName());

    QList<ChamberTypeData> result;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& row : rows) {
        result.append(parseChamberTypeDataRow(row, chamberTypeColumnCount, withSignals, 0));
    }
    return result;
}

QList<ChamberTypeData> SqlConfigurationDatabaseConnection::getAllProgrammableChamberTypeData() const
{
    if (!checkDependencies("getAllProgrammableChamberTypeData")) {
        return {};
    }
    SqlQuery programmableSignals;
    programmableSignals.selectColumn(DC::lookupSignalColumnName(SignalProperty::ID))
        .fromTable(DC::lookupSignalTableName())
        .whereColumn(DC::lookupSignalColumnName(SignalProperty::TIME_PROGRAMMABLE))
        .equals(true);
    SqlQuery typesWithThem;
    typesWithThem.selectColumn(DC::lookupChamberTypeHasSignalColumnName(ChamberTypeHasSignalProperty::CHAMBER_TYPE_ID))
        .fromTable(DC::lookupChamberTypeHasSignalTableName())
        .whereColumn(DC::lookupChamberTypeHasSignalColumnName(ChamberTypeHasSignalProperty::SIGNAL_ID))
        .inSelectQuery(programmableSignals);
    SqlQuery query;
    query.selectColumns(getChamberTypeColumnNames())
        .fromTable(DC::lookupChamberTypeTableName())
        .whereColumn(DC::lookupChamberTypeColumnName(ChamberTypeProperty::ID))
        .inSelectQuery(typesWithThem);

    QList<ChamberTypeData> result;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& row : rows) {
        result.append(parseChamberTypeDataRow(row, chamberTypeColumnCount, false, 0));
    }
    return result;
}

ChamberTypeData SqlConfigurationDatabaseConnection::getChamberTypeData(const ChamberTypeId& id, bool withSignals) const
{
    if (!checkDependencies("getChamberTypeData")) {
        return ChamberTypeData();
    }
    SqlQuery query;
    query.selectColumns(getChamberTypeColumnNames())
        .fromTable(DC::lookupChamberTypeTableName())
        .whereColumn(DC::lookupChamberTypeColumnName(ChamberTypeProperty::ID))
        .equals(id.typeId);

    const QList<ChamberTypeData> variants = parseChamberTypeDataRow(
        connection->fetchSingleRow(query), chamberTypeColumnCount, withSignals, id.additionalInfoId);
    if (variants.size() > 1) {
        qCWarning(SQLCONFIGURATIONDATABASECONNECTION) << "Chamber type" << id.typeId << "has" << variants.size()
                                                      << "variants; an additional info id must choose one";
        emit error(UNEXPECTED_RESULT);
        return ChamberTypeData();
    }
    return variants.isEmpty() ? ChamberTypeData() : variants.first();
}

QMap<int, ChamberSignal> SqlConfigurationDatabaseConnection::getChamberSignals(const ChamberTypeId& id) const
{
    if (!checkDependencies("getChamberSignals")) {
        return {};
    }
    return getChamberSignals(selectSignalsIn(signalIdsOfType(id.typeId)), signalColumnCount);
}

QList<std::pair<ChamberSignal, DefaultToleranceRange>>
SqlConfigurationDatabaseConnection::getTimeProgrammableChamberSignals(const ChamberTypeId& id) const
{
    if (!checkDependencies("getTimeProgrammableChamberSignals")) {
        return {};
    }
    const QString signalTable = DC::lookupSignalTableName();
    const QString registers = DC::lookupControllerDataTableName();
    SqlQuery query;
    query.selectTableColumns(signalTableColumnPairs(signalTable))
        .fromTable(signalTable)
        // The inner join leaves out signals without a manual write register.
        .joinOnMatch({{signalTable, DC::lookupSignalColumnName(SignalProperty::WRITE_MANUAL)},
                      {registers, DC::lookupControllerDataColumnName(ControllerDataProperty::ID)}})
        .whereTableColumn({signalTable, DC::lookupSignalColumnName(SignalProperty::ID)})
        .inSelectQuery(signalIdsOfTypeWhere(id.typeId, SignalProperty::TIME_PROGRAMMABLE, true))
        .orderBy(DC::lookupControllerDataColumnName(ControllerDataProperty::SET_POINT_NR), SqlQuery::ASC);

    QList<std::pair<ChamberSignal, DefaultToleranceRange>> result;
    const ChamberSignal emptySignal;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& row : rows) {
        const ChamberSignal signal = parseChamberSignalTableRow(row, signalColumnCount);
        if (signal != emptySignal) {
            result.append({signal, getDefaultToleranceRange(id, signal.id, true)});
        }
    }
    return result;
}

QMap<int, ChamberSignal> SqlConfigurationDatabaseConnection::getSetpointChamberSignals(const ChamberTypeId& id) const
{
    if (!checkDependencies("getSetpointChamberSignals")) {
        return {};
    }
    const QString setPointText = DC::signalTypeMap.key(ChamberSignal::SET_POINT);
    return getChamberSignals(
        selectSignalsIn(signalIdsOfTypeWhere(id.typeId, SignalProperty::SIGNAL_TYPE, setPointText)), signalColumnCount);
}

QMap<int, ChamberSignal> SqlConfigurationDatabaseConnection::getChamberSignals(QList<SignalId> ids) const
{
    if (!checkDependencies("getChamberSignals")) {
        return {};
    }
    SqlQuery query;
    query.selectColumns(prepareChamberSignalColumnNames())
        .fromTable(DC::lookupSignalTableName())
        .whereColumn(DC::lookupSignalColumnName(SignalProperty::ID))
        .inList(ids);
    return getChamberSignals(query, signalColumnCount);
}

QSharedPointer<ChamberSignal> SqlConfigurationDatabaseConnection::getChamberSignal(const SignalId& id) const
{
    if (!checkDependencies("getChamberSignal")) {
        return {};
    }
    const QMap<int, ChamberSignal> signalMap = getChamberSignals(QList<SignalId>{id});
    if (signalMap.size() != 1 || signalMap.firstKey() != id) {
        qCWarning(SQLCONFIGURATIONDATABASECONNECTION) << "Signal" << id << "is not in the catalogue, or not once";
        emit error(UNEXPECTED_RESULT);
        return {};
    }
    return QSharedPointer<ChamberSignal>::create(signalMap.first());
}

QMap<SignalId, ChamberSignal>
SqlConfigurationDatabaseConnection::getMatchingSignals(const ChamberTypeId& source,
                                                       const ChamberTypeId& destination) const
{
    if (!checkDependencies("getMatchingSignals")) {
        return {};
    }
    const QString signalTable = DC::lookupSignalTableName();
    const QString sourceAlias = QStringLiteral("source_") + signalTable;
    const QString destinationAlias = QStringLiteral("destination_") + signalTable;
    const QString idColumn = DC::lookupSignalColumnName(SignalProperty::ID);
    const QString valueTypeColumn = DC::lookupSignalColumnName(SignalProperty::VALUE_TYPE);

    QList<SqlQuery::TableColumnPair> columns = signalTableColumnPairs(sourceAlias);
    columns.append({destinationAlias, idColumn});
    SqlQuery query;
    query.selectTableColumns(columns)
        .fromTable(signalTable, sourceAlias)
        .joinOnMatch({{sourceAlias, valueTypeColumn}, {destinationAlias, valueTypeColumn}}, signalTable)
        .whereTableColumn({sourceAlias, idColumn})
        .inSelectQuery(signalIdsOfType(source.typeId))
        .andTableColumn({destinationAlias, idColumn})
        .inSelectQuery(signalIdsOfType(destination.typeId));

    QMap<SignalId, ChamberSignal> result;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& row : rows) {
        if (row.size() != matchingSignalColumnCount) {
            reportUnexpectedRow("getMatchingSignals", row.size(), matchingSignalColumnCount);
            continue;
        }
        result.insert(toSignalId(row.last()),
                      parseChamberSignalTableRow(row.mid(0, signalColumnCount), signalColumnCount));
    }
    return result;
}

QList<ChamberSignal> SqlConfigurationDatabaseConnection::getDataloggerChamberSignal(const ChamberTypeId& id) const
{
    if (!checkDependencies("getDataloggerChamberSignal")) {
        return {};
    }
    const QString signalTable = DC::lookupSignalTableName();
    const QString channels = DC::lookupChamberTypeHasDataloggerSignalTableName();
    SqlQuery query;
    query.selectTableColumns(signalTableColumnPairs(signalTable))
        .fromTable(signalTable)
        .joinOnMatch({{signalTable, DC::lookupSignalColumnName(SignalProperty::ID)},
                      {channels, DC::lookupChamberTypeHasDataloggerSignalColumnName(
                                     ChamberTypeHasDataloggerSignalProperty::DATALOGGER_SIGNAL_ID)}})
        .whereTableColumn({channels, DC::lookupChamberTypeHasDataloggerSignalColumnName(
                                         ChamberTypeHasDataloggerSignalProperty::CHAMBER_TYPE_ID)})
        .equals(id.typeId)
        .orderByTableColumn({channels, DC::lookupChamberTypeHasDataloggerSignalColumnName(
                                           ChamberTypeHasDataloggerSignalProperty::CHANNEL)},
                            SqlQuery::ASC);

    QList<ChamberSignal> result;
    const ChamberSignal emptySignal;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& row : rows) {
        const ChamberSignal signal = parseChamberSignalTableRow(row, signalColumnCount);
        if (signal != emptySignal) {
            result.append(signal);
        }
    }
    return result;
}

DefaultToleranceRange SqlConfigurationDatabaseConnection::getDefaultToleranceRange(const ChamberTypeId& id,
                                                                                   const SignalId& signalId,
                                                                                   bool isSetPoint) const
{
    if (!checkDependencies("getDefaultToleranceRange")) {
        return DefaultToleranceRange();
    }
    const QString ranges = DC::lookupDefaultToleranceRangeTableName();
    const QString signalTable = DC::lookupSignalTableName();
    const QString signalColumn = DC::lookupDefaultToleranceRangeColumnName(
        isSetPoint ? DefaultToleranceRangeProperty::SET_POINT : DefaultToleranceRangeProperty::PROCESS_VALUE);
    SqlQuery query;
    query.selectTableColumns(prepareDefaultToleranceRangeTableColumnPairs())
        .fromTable(ranges)
        .joinOnMatch({{ranges, signalColumn}, {signalTable, DC::lookupSignalColumnName(SignalProperty::ID)}})
        .whereTableColumn({ranges, DC::lookupDefaultToleranceRangeColumnName(DefaultToleranceRangeProperty::ID)})
        .inSelectQuery(toleranceRangeIdsOfType(id.typeId))
        .andTableColumn({ranges, signalColumn})
        .equals(signalId);

    const QList<DefaultToleranceRange> found = getDefaultToleranceRanges(query, defaultToleranceRangeColumnCount);
    if (found.size() > 1) {
        qCWarning(SQLCONFIGURATIONDATABASECONNECTION)
            << "Chamber type" << id.typeId << "has" << found.size() << "default tolerance ranges for signal" << signalId
            << "; the first one counts";
        emit error(UNEXPECTED_RESULT);
    }
    return found.isEmpty() ? DefaultToleranceRange() : found.first();
}

int SqlConfigurationDatabaseConnection::getChamberSignalDelay(const ChamberTypeId& id, const SignalId& signalId,
                                                              bool second) const
{
    if (!checkDependencies("getChamberSignalDelay")) {
        return 0;
    }
    SqlQuery query;
    query
        .selectColumn(DC::lookupDefaultToleranceRangeColumnName(second ? DefaultToleranceRangeProperty::DELAY2
                                                                       : DefaultToleranceRangeProperty::DELAY1))
        .fromTable(DC::lookupDefaultToleranceRangeTableName())
        .whereColumn(DC::lookupDefaultToleranceRangeColumnName(DefaultToleranceRangeProperty::PROCESS_VALUE))
        .equals(signalId)
        .andColumn(DC::lookupDefaultToleranceRangeColumnName(DefaultToleranceRangeProperty::ID))
        .inSelectQuery(toleranceRangeIdsOfType(id.typeId));

    const QVariant value = connection->fetchSingleValue(query);
    if (!value.isValid()) {
        return 0;
    }
    const int delay = sqlhelper::readIntSqlValue(value, -1);
    // The catalogue keeps the second delay in minutes.
    return second ? delay * 60 : delay;
}

Unit::UnitId SqlConfigurationDatabaseConnection::getSignalUnitId(const SignalId& id) const
{
    if (!checkDependencies("getSignalUnitId")) {
        return Unit::UnitId(0);
    }
    return Unit::toUnitId(getChamberSignalProperty(id, SignalProperty::UNIT).toString());
}

std::pair<QMetaType::Type, int> SqlConfigurationDatabaseConnection::splitToVariableTypeAndArraySize(const QString& text)
{
    // Most registers are scalars: without a bracket the split has one part.
    if (!text.contains(QLatin1Char('[')) && !text.contains(QLatin1Char(']'))) {
        return {DC::variableTypeMap.value(text, QMetaType::UnknownType), 1};
    }
    static const QRegExp brackets(QStringLiteral("(\\[|\\])"));
    const QStringList parts = text.split(brackets, Qt::KeepEmptyParts);
    const QMetaType::Type type = DC::variableTypeMap.value(parts.value(0), QMetaType::UnknownType);
    const int arraySize = parts.size() > 1 ? parts.at(1).toInt(nullptr, 10) : 1;
    return {type, arraySize};
}

QStringList SqlConfigurationDatabaseConnection::prepareChamberSignalColumnNames()
{
    // Built once: a full catalogue read names these columns thousands of times.
    static const QStringList names = [] {
        QStringList list;
        list.reserve(signalColumnCount);
        for (SignalProperty property : signalLayout) {
            list.append(DC::lookupSignalColumnName(property));
        }
        return list;
    }();
    return names;
}

QStringList SqlConfigurationDatabaseConnection::getChamberTypeColumnNames()
{
    static const QStringList names = [] {
        QStringList list;
        list.reserve(chamberTypeColumnCount);
        for (int column = int(ChamberTypeProperty::ID); column <= int(ChamberTypeProperty::CONTROLLER_ID); ++column) {
            list.append(DC::lookupChamberTypeColumnName(ChamberTypeProperty(column)));
        }
        return list;
    }();
    return names;
}

QList<quint64> SqlConfigurationDatabaseConnection::getAdditionalInfoIds(unsigned long long typeId) const
{
    if (!checkDependencies("getAdditionalInfoIds")) {
        return {};
    }
    SqlQuery query;
    query
        .selectColumn(
            DC::lookupChamberTypeHasAdditionalInfoColumnName(ChamberTypeHasAdditionalInfoProperty::ADDITIONAL_INFO_ID))
        .fromTable(DC::lookupChamberTypeHasAdditionalInfoTableName())
        .whereColumn(
            DC::lookupChamberTypeHasAdditionalInfoColumnName(ChamberTypeHasAdditionalInfoProperty::CHAMBER_TYPE_ID))
        .equals(typeId);

    QList<quint64> ids;
    const QList<QVariant> values = connection->fetchSingleColumn(query);
    ids.reserve(values.size());
    for (const QVariant& value : values) {
        ids.append(value.toULongLong());
    }
    return ids;
}

QVariant SqlConfigurationDatabaseConnection::getAdditionalInfoProperty(int id, AdditionalInfoProperty property) const
{
    if (!checkDependencies("getAdditionalInfoProperty")) {
        return {};
    }
    return connection->fetchSingleValue(
        selectValueById(DC::lookupAdditionalInfoTableName(), DC::lookupAdditionalInfoColumnName(property),
                        DC::lookupAdditionalInfoColumnName(AdditionalInfoProperty::ID), id));
}

QVariant SqlConfigurationDatabaseConnection::getControllerProperty(int id, ControllerProperty property) const
{
    if (!checkDependencies("getControllerProperty")) {
        return {};
    }
    return connection->fetchSingleValue(selectValueById(DC::lookupControllerTableName(),
                                                        DC::lookupControllerColumnName(property),
                                                        DC::lookupControllerColumnName(ControllerProperty::ID), id));
}

QVariant SqlConfigurationDatabaseConnection::getValueTypeProperty(int id, ValueTypeProperty property) const
{
    if (!checkDependencies("getValueTypeProperty")) {
        return {};
    }
    return connection->fetchSingleValue(selectValueById(DC::lookupValueTypeTableName(),
                                                        DC::lookupValueTypeColumnName(property),
                                                        DC::lookupValueTypeColumnName(ValueTypeProperty::ID), id));
}

QList<ChamberProtocol> SqlConfigurationDatabaseConnection::getSupportedProtocols(const ChamberTypeId& id) const
{
    if (!checkDependencies("getSupportedProtocols")) {
        return {};
    }
    SqlQuery query;
    query.selectColumn(DC::lookupChamberTypeHasProtocolColumnName(ChamberTypeHasProtocolProperty::PROTOCOL_ID))
        .fromTable(DC::lookupChamberTypeHasProtocolTableName())
        .whereColumn(DC::lookupChamberTypeHasProtocolColumnName(ChamberTypeHasProtocolProperty::CHAMBER_TYPE_ID))
        .equals(id.typeId);

    QList<ChamberProtocol> protocols;
    const QList<QVariant> values = connection->fetchSingleColumn(query);
    protocols.reserve(values.size());
    for (const QVariant& value : values) {
        // Taken over as the number it is, known or not.
        protocols.append(ChamberProtocol(value.toInt()));
    }
    return protocols;
}

QMap<int, ChamberSignal> SqlConfigurationDatabaseConnection::getChamberSignals(const SqlQuery& query,
                                                                               int expectedColumns) const
{
    if (!checkDependencies("getChamberSignals")) {
        return {};
    }
    QMap<int, ChamberSignal> result;
    const ChamberSignal emptySignal;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& row : rows) {
        const ChamberSignal signal = parseChamberSignalTableRow(row, expectedColumns);
        if (signal != emptySignal) {
            result.insert(signal.id, signal);
        }
    }
    return result;
}

SignalId SqlConfigurationDatabaseConnection::getChamberTypeTestSignalId(const ChamberTypeId& id) const
{
    if (!checkDependencies("getChamberTypeTestSignalId")) {
        return 0;
    }
    // The plain conversion, with no fallback: a type without a test signal gives 0.
    return connection
        ->fetchSingleValue(selectValueById(
            DC::lookupChamberTypeHasTestSignalTableName(),
            DC::lookupChamberTypeHasTestSignalColumnName(ChamberTypeHasTestSignalProperty::TEST_SIGNAL_ID),
            DC::lookupChamberTypeHasTestSignalColumnName(ChamberTypeHasTestSignalProperty::CHAMBER_TYPE_ID), id.typeId))
        .toInt();
}

QVariant SqlConfigurationDatabaseConnection::getChamberSignalProperty(const SignalId& id, SignalProperty property) const
{
    if (!checkDependencies("getChamberSignalProperty")) {
        return {};
    }
    return connection->fetchSingleValue(selectValueById(DC::lookupSignalTableName(),
                                                        DC::lookupSignalColumnName(property),
                                                        DC::lookupSignalColumnName(SignalProperty::ID), id));
}

QSharedPointer<ControllerAddress>
SqlConfigurationDatabaseConnection::getControllerAddress(const ControllerAddressId& id) const
{
    if (!checkDependencies("getControllerAddress")) {
        return {};
    }
    // Read once per signal and register: the names are built only once.
    static const QStringList columns = {
        DC::lookupControllerDataColumnName(ControllerDataProperty::ID),
        DC::lookupControllerDataColumnName(ControllerDataProperty::ADDRESS),
        DC::lookupControllerDataColumnName(ControllerDataProperty::ACCESS),
        DC::lookupControllerDataColumnName(ControllerDataProperty::VARIABLE_TYPE),
        DC::lookupControllerDataColumnName(ControllerDataProperty::SET_POINT_NR),
        DC::lookupControllerDataColumnName(ControllerDataProperty::DESCRIPTION),
    };
    SqlQuery query;
    query.selectColumns(columns)
        .fromTable(DC::lookupControllerDataTableName())
        .whereColumn(DC::lookupControllerDataColumnName(ControllerDataProperty::ID))
        .equals(int(id));

    const QList<QVariant> row = connection->fetchSingleRow(query);
    // A register that isn't there is no failure: the signal just lacks it.
    if (row.size() != controllerAddressColumnCount) {
        return {};
    }
    const std::pair<QMetaType::Type, int> type =
        splitToVariableTypeAndArraySize(sqlhelper::readStringSqlValue(row.at(3), QString()));
    return QSharedPointer<ControllerAddress>::create(
        sqlhelper::readIntSqlValue(row.at(0), -1), sqlhelper::readStringSqlValue(row.at(1), QString()),
        DC::accessMap.value(sqlhelper::readStringSqlValue(row.at(2), QString()), ControllerAddress::Access(0)),
        type.first, type.second, sqlhelper::readIntSqlValue(row.at(4), -1),
        sqlhelper::readStringSqlValue(row.at(5), QString()));
}

QMap<int, ControlSignal> SqlConfigurationDatabaseConnection::getControlSignals(const ChamberTypeId& id) const
{
    if (!checkDependencies("getControlSignals")) {
        return {};
    }
    SqlQuery controlSignalIds;
    controlSignalIds
        .selectColumn(
            DC::lookupChamberTypeHasControlSignalsColumnName(ChamberTypeHasControlSignalsProperty::CONTROL_SIGNALS_ID))
        .fromTable(DC::lookupChamberTypeHasControlSignalsTableName())
        .whereColumn(
            DC::lookupChamberTypeHasControlSignalsColumnName(ChamberTypeHasControlSignalsProperty::CHAMBER_TYPE_ID))
        .equals(id.typeId);
    SqlQuery query;
    query
        .selectColumns({
            DC::lookupControlSignalsColumnName(ControlSignalsProperty::ID),
            DC::lookupControlSignalsColumnName(ControlSignalsProperty::NAME),
            DC::lookupControlSignalsColumnName(ControlSignalsProperty::BITPOSITION),
            DC::lookupControlSignalsColumnName(ControlSignalsProperty::USERLEVEL),
            DC::lookupControlSignalsColumnName(ControlSignalsProperty::READ),
            DC::lookupControlSignalsColumnName(ControlSignalsProperty::WRITE),
        })
        .fromTable(DC::lookupControlSignalsTableName())
        .whereColumn(DC::lookupControlSignalsColumnName(ControlSignalsProperty::ID))
        .inSelectQuery(controlSignalIds);

    // A control signal without a register holds the placeholder by value.
    const auto addressOf = [this](int addressId) {
        if (addressId == -1) {
            return ControllerAddress::placeholder();
        }
        const QSharedPointer<ControllerAddress> address = getControllerAddress(addressId);
        return address ? *address : ControllerAddress::placeholder();
    };

    QMap<int, ControlSignal> result;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& row : rows) {
        if (row.size() != controlSignalColumnCount) {
            reportUnexpectedRow("getControlSignals", row.size(), controlSignalColumnCount);
            continue;
        }
        const int controlSignalId = sqlhelper::readIntSqlValue(row.at(0), -1);
        result.insert(controlSignalId,
                      ControlSignal(controlSignalId, sqlhelper::readStringSqlValue(row.at(1), QString()),
                                    sqlhelper::readIntSqlValue(row.at(2), -1),
                                    UserLevel(sqlhelper::readIntSqlValue(row.at(3), -1)),
                                    addressOf(sqlhelper::readIntSqlValue(row.at(4), -1)),
                                    addressOf(sqlhelper::readIntSqlValue(row.at(5), -1))));
    }
    return result;
}

QList<ChamberOption> SqlConfigurationDatabaseConnection::getChamberOptions(const ChamberTypeId& id) const
{
    if (!checkDependencies("getChamberOptions")) {
        return {};
    }
    SqlQuery optionIds;
    optionIds.selectColumn(DC::lookupChamberTypeHasOptionsColumnName(ChamberTypeHasOptionsProperty::OPTIONS_ID))
        .fromTable(DC::lookupChamberTypeHasOptionsTableName())
        .whereColumn(DC::lookupChamberTypeHasOptionsColumnName(ChamberTypeHasOptionsProperty::CHAMBER_TYPE_ID))
        .equals(id.typeId);
    SqlQuery query;
    query
        .selectColumns(
            {DC::lookupOptionsColumnName(OptionsProperty::NAME), DC::lookupOptionsColumnName(OptionsProperty::FIX)})
        .fromTable(DC::lookupOptionsTableName())
        .whereColumn(DC::lookupOptionsColumnName(OptionsProperty::ID))
        .inSelectQuery(optionIds);

    QList<ChamberOption> result;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& row : rows) {
        if (row.size() != optionColumnCount) {
            reportUnexpectedRow("getChamberOptions", row.size(), optionColumnCount);
            continue;
        }
        result.append(ChamberOption(sqlhelper::readStringSqlValue(row.at(0), QString()),
                                    sqlhelper::readBoolSqlValue(row.at(1), false)));
    }
    return result;
}

QList<DefaultToleranceRange>
SqlConfigurationDatabaseConnection::getDefaultToleranceRanges(const ChamberTypeId& id) const
{
    if (!checkDependencies("getDefaultToleranceRanges")) {
        return {};
    }
    const QString ranges = DC::lookupDefaultToleranceRangeTableName();
    const QString signalTable = DC::lookupSignalTableName();
    SqlQuery query;
    query.selectTableColumns(prepareDefaultToleranceRangeTableColumnPairs())
        .fromTable(ranges)
        .joinOnMatch({{ranges, DC::lookupDefaultToleranceRangeColumnName(DefaultToleranceRangeProperty::SET_POINT)},
                      {signalTable, DC::lookupSignalColumnName(SignalProperty::ID)}})
        .whereTableColumn({ranges, DC::lookupDefaultToleranceRangeColumnName(DefaultToleranceRangeProperty::ID)})
        .inSelectQuery(toleranceRangeIdsOfType(id.typeId));
    return getDefaultToleranceRanges(query, defaultToleranceRangeColumnCount);
}

QList<DefaultToleranceRange> SqlConfigurationDatabaseConnection::getDefaultToleranceRanges(const SqlQuery& query,
                                                                                           int expectedColumns) const
{
    if (!checkDependencies("getDefaultToleranceRanges")) {
        return {};
    }
    QList<DefaultToleranceRange> result;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& row : rows) {
        if (row.size() != expectedColumns) {
            reportUnexpectedRow("getDefaultToleranceRanges", row.size(), expectedColumns);
            continue;
        }
        const QString unitText = sqlhelper::readStringSqlValue(row.at(7), QString());
        const ToleranceRange range(UnitValue(unitText, sqlhelper::readFloatSqlValue(row.at(3), 0.0f)),
                                   UnitValue(unitText, sqlhelper::readFloatSqlValue(row.at(4), 0.0f)),
                                   ToleranceRange::RELATIVE);
        result.append(DefaultToleranceRange(sqlhelper::readStringSqlValue(row.at(0), QString()), toSignalId(row.at(1)),
                                            toSignalId(row.at(2)), range, sqlhelper::readIntSqlValue(row.at(5), -1),
                                            sqlhelper::readIntSqlValue(row.at(6), -1)));
    }
    return result;
}

QList<ChamberTypeData>
SqlConfigurationDatabaseConnection::parseChamberTypeDataRow(const QList<QVariant>& row, int expectedColumns,
                                                            bool withSignals, unsigned long long additionalInfoId) const
{
    if (row.size() != expectedColumns) {
        reportUnexpectedRow("parseChamberTypeDataRow", row.size(), expectedColumns);
        return {};
    }
    const auto text = [&row](int column) { return sqlhelper::readStringSqlValue(row.at(column), QString()); };
    const auto number = [&row](int column) { return sqlhelper::readIntSqlValue(row.at(column), -1); };

    const quint64 typeId = sqlhelper::readUIntSqlValue(row.at(0), 0);
    const ChamberTypeId baseId(typeId, 0);
    const QString controller =
        sqlhelper::readStringSqlValue(getControllerProperty(number(13), ControllerProperty::TYPE), QString());
    const QList<ChamberProtocol> protocols = getSupportedProtocols(baseId);

    QMap<int, ChamberSignal> chamberSignals;
    QMap<int, ControlSignal> controlSignals;
    if (withSignals) {
        chamberSignals = getChamberSignals(baseId);
        controlSignals = getControlSignals(baseId);
    }
    const QList<ChamberOption> options = getChamberOptions(baseId);

    const QList<quint64> variants =
        additionalInfoId == 0 ? getAdditionalInfoIds(typeId) : QList<quint64>{additionalInfoId};

    const auto makeVariant = [&](quint64 variantId, const QString& articleNumber, const QString& info) {
        return ChamberTypeData(ChamberTypeId(typeId, variantId), text(1), text(2), number(3), text(4), text(5), text(6),
                               text(7), text(8), text(9), number(10), number(11), text(12), articleNumber, info,
                               controller, protocols, chamberSignals, controlSignals, options, QList<ChamberOption>());
    };

    QList<ChamberTypeData> result;
    if (variants.isEmpty()) {
        result.append(makeVariant(0, QString(), QString()));
        return result;
    }
    for (quint64 variantId : variants) {
        result.append(makeVariant(
            variantId,
            sqlhelper::readStringSqlValue(getAdditionalInfoProperty(int(variantId), AdditionalInfoProperty::ARTICLE_NR),
                                          QString()),
            sqlhelper::readStringSqlValue(getAdditionalInfoProperty(int(variantId), AdditionalInfoProperty::INFO),
                                          QString())));
    }
    return result;
}

ChamberSignal SqlConfigurationDatabaseConnection::parseChamberSignalTableRow(const QList<QVariant>& row,
                                                                             int expectedColumns) const
{
    if (row.size() != expectedColumns) {
        reportUnexpectedRow("parseChamberSignalTableRow", row.size(), expectedColumns);
        return ChamberSignal();
    }
    const SignalId id = toSignalId(row.at(SIGNAL_ID));
    const int valueType = sqlhelper::readIntSqlValue(row.at(SIGNAL_VALUE_TYPE), 0);
    const SignalId setPointId = toSignalId(row.at(SIGNAL_SET_POINT_SIGNAL));

    QString colorText;
    int decimalPlaces = 0;
    if (valueType != 0) {
        colorText = sqlhelper::readStringSqlValue(getValueTypeProperty(valueType, ValueTypeProperty::COLOR), QString());
        decimalPlaces =
            sqlhelper::readIntSqlValue(getValueTypeProperty(valueType, ValueTypeProperty::DECIMAL_PLACES), 0);
    }

    // A signal that names itself has no link; longer cycles aren't guarded.
    QSharedPointer<ChamberSignal> setPointSignal;
    if (setPointId != -1 && setPointId != id) {
        setPointSignal = getChamberSignal(setPointId);
    }

    const auto addressAt = [this, &row](int column) {
        const int addressId = sqlhelper::readIntSqlValue(row.at(column), -1);
        return addressId == -1 ? noAddress() : getControllerAddress(addressId);
    };

    QVariant userLevel = sqlhelper::readSqlValue(row.at(SIGNAL_USER_LEVEL), 0);
    if (!userLevel.convert(qMetaTypeId<UserLevel>())) {
        userLevel = QVariant::fromValue(UserLevel(0));
    }

    QColor color;
    color.setNamedColor(colorText);

    return ChamberSignal(id, sqlhelper::readStringSqlValue(row.at(SIGNAL_NAME), QString()),
                         Unit::toUnitId(sqlhelper::readStringSqlValue(row.at(SIGNAL_UNIT), QString())), color,
                         decimalPlaces, userLevel.value<UserLevel>(),
                         sqlhelper::readFloatSqlValue(row.at(SIGNAL_LIMIT_MIN), std::numeric_limits<float>::lowest()),
                         sqlhelper::readFloatSqlValue(row.at(SIGNAL_LIMIT_MAX), std::numeric_limits<float>::max()),
                         sqlhelper::readIntSqlValue(row.at(SIGNAL_BITPOSITION), -1),
                         DC::signalTypeMap.value(sqlhelper::readStringSqlValue(row.at(SIGNAL_SIGNAL_TYPE), QString()),
                                                 ChamberSignal::SignalType(0)),
                         setPointSignal, sqlhelper::readBoolSqlValue(row.at(SIGNAL_TIME_PROGRAMMABLE), false),
                         sqlhelper::readBoolSqlValue(row.at(SIGNAL_WEEK_PROGRAMMABLE), false), addressAt(SIGNAL_READ),
                         addressAt(SIGNAL_WRITE_BASIC), addressAt(SIGNAL_WRITE_MANUAL), addressAt(SIGNAL_WRITE_AUTO));
}

bool SqlConfigurationDatabaseConnection::checkDependencies(const char* operation) const
{
    if (areDependenciesSet()) {
        return true;
    }
    qCWarning(SQLCONFIGURATIONDATABASECONNECTION) << operation << "called before the dependencies were set";
    emit error(DEPENDENCIES_NOT_SET);
    return false;
}

void SqlConfigurationDatabaseConnection::reportUnexpectedRow(const char* operation, int columns,
                                                             int expectedColumns) const
{
    qCWarning(SQLCONFIGURATIONDATABASECONNECTION)
        << operation << "got a row of" << columns << "columns instead of" << expectedColumns;
    emit error(UNEXPECTED_RESULT);
}

} // namespace zelmor::base::connection::databaseconnection
