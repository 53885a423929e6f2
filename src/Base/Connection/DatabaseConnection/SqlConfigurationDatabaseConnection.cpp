#include "Base/Connection/DatabaseConnection/SqlConfigurationDatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Base/Connection/DatabaseConnection/sqlhelper.h"
#include "Domain/Api/ISqlConnection.h"
#include "Domain/Types/ChamberOption.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ChamberTypeData.h"
#include "Domain/Types/ChamberTypeId.h"
#include "Domain/Types/ControlSignal.h"
#include "Domain/Types/ControllerAddress.h"
#include "Domain/Types/DefaultToleranceRange.h"

namespace zelmor::base::connection::databaseconnection {

Q_LOGGING_CATEGORY(SQLCONFIGURATIONDATABASECONNECTION, "zelmor.SqlConfigurationDatabaseConnection")

using namespace zelmor::domain::types;
using zelmor::domain::api::AdditionalInfoProperty;
using zelmor::domain::api::ChamberTypeHasAdditionalInfoProperty;
using zelmor::domain::api::ChamberTypeHasOptionsProperty;
using zelmor::domain::api::ChamberTypeHasProtocolProperty;
using zelmor::domain::api::ChamberTypeHasSignalProperty;
using zelmor::domain::api::ChamberTypeHasTestSignalProperty;
using zelmor::domain::api::ChamberTypeHasToleranceRangeProperty;
using zelmor::domain::api::ChamberTypeProperty;
using zelmor::domain::api::ControllerProperty;
using zelmor::domain::api::DefaultToleranceRangeProperty;
using zelmor::domain::api::ISqlConnection;
using zelmor::domain::api::OptionsProperty;
using zelmor::domain::api::SignalProperty;
using zelmor::domain::api::ValueTypeProperty;

namespace {

// The facade's names, as DatabaseConnection inherits them.
using DC = DatabaseSchema;

// Positions in the chamber type row layout: the table's columns in order.
enum ChamberTypeColumn {
    TYPE_ID,
    TYPE_TYPE,
    TYPE_DEVELOPEMENT_STATE,
    TYPE_SIZE,
    TYPE_VOLTAGE,
    TYPE_IMAGE,
    TYPE_DESCRIPTION,
    TYPE_FIRMWARE_START,
    TYPE_FIRMWARE_ENDE,
    TYPE_SETUP_KENNUNG,
    TYPE_SETUP_VERSION_START,
    TYPE_SETUP_VERSION_ENDE,
    TYPE_KENNUNG_PROGRAMME,
    TYPE_CONTROLLER_ID,
    TYPE_COLUMNS
};

// Positions in the default tolerance range row layout.
enum RangeColumn {
    RANGE_NAME,
    RANGE_SET_POINT,
    RANGE_PROCESS_VALUE,
    RANGE_MIN,
    RANGE_MAX,
    RANGE_DELAY1,
    RANGE_DELAY2,
    RANGE_UNIT,
    RANGE_COLUMNS
};

// Positions in a row of "options".
enum OptionColumn { OPTION_NAME, OPTION_FIX, OPTION_COLUMNS };

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

} // namespace

SqlConfigurationDatabaseConnection::SqlConfigurationDatabaseConnection(QObject* parent)
    : QObject(parent)
    , checks(this, SQLCONFIGURATIONDATABASECONNECTION)
    , signalReader(checks)
{
}

SqlConfigurationDatabaseConnection::~SqlConfigurationDatabaseConnection() = default;

bool SqlConfigurationDatabaseConnection::setDependencies(ISqlConnection* connection)
{
    this->connection = connection;
    signalReader.setConnection(connection);
    return connection != nullptr;
}

bool SqlConfigurationDatabaseConnection::areDependenciesSet() const
{
    return connection != nullptr;
}

bool SqlConfigurationDatabaseConnection::initialize()
{
    // The core of the catalogue; the other tables are optional parts.
    return checks.hasDependencies("initialize")
           && checks.hasTables(*connection, {
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
                                            });
}

QList<ChamberTypeData> SqlConfigurationDatabaseConnection::getAllChamberTypeData(bool withSignals) const
{
    if (!checks.hasDependencies("getAllChamberTypeData")) {
        return {};
    }
    SqlQuery query;
    query.selectColumns(getChamberTypeColumnNames()).fromTable(DC::lookupChamberTypeTableName());

    QList<ChamberTypeData> result;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& row : rows) {
        result.append(parseChamberTypeDataRow(row, TYPE_COLUMNS, withSignals, 0));
    }
    return result;
}

QList<ChamberTypeData> SqlConfigurationDatabaseConnection::getAllProgrammableChamberTypeData() const
{
    if (!checks.hasDependencies("getAllProgrammableChamberTypeData")) {
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
        result.append(parseChamberTypeDataRow(row, TYPE_COLUMNS, false, 0));
    }
    return result;
}

ChamberTypeData SqlConfigurationDatabaseConnection::getChamberTypeData(const ChamberTypeId& id, bool withSignals) const
{
    if (!checks.hasDependencies("getChamberTypeData")) {
        return ChamberTypeData();
    }
    SqlQuery query;
    query.selectColumns(getChamberTypeColumnNames())
        .fromTable(DC::lookupChamberTypeTableName())
        .whereColumn(DC::lookupChamberTypeColumnName(ChamberTypeProperty::ID))
        .equals(id.typeId);

    const QList<ChamberTypeData> variants =
        parseChamberTypeDataRow(connection->fetchSingleRow(query), TYPE_COLUMNS, withSignals, id.additionalInfoId);
    if (variants.size() > 1) {
        checks.reportUnexpected("getChamberTypeData",
                                QStringLiteral("Chamber type %1 has %2 variants; an additional info id must choose one")
                                    .arg(id.typeId)
                                    .arg(variants.size()));
        return ChamberTypeData();
    }
    return variants.isEmpty() ? ChamberTypeData() : variants.first();
}

QMap<int, ChamberSignal> SqlConfigurationDatabaseConnection::getChamberSignals(const ChamberTypeId& id) const
{
    if (!checks.hasDependencies("getChamberSignals")) {
        return {};
    }
    return signalReader.getChamberSignals(id.typeId);
}

QList<std::pair<ChamberSignal, DefaultToleranceRange>>
SqlConfigurationDatabaseConnection::getTimeProgrammableChamberSignals(const ChamberTypeId& id) const
{
    if (!checks.hasDependencies("getTimeProgrammableChamberSignals")) {
        return {};
    }
    QList<std::pair<ChamberSignal, DefaultToleranceRange>> result;
    for (const ChamberSignal& signal : signalReader.getTimeProgrammableChamberSignals(id.typeId)) {
        result.append({signal, getDefaultToleranceRange(id, signal.id, true)});
    }
    return result;
}

QMap<int, ChamberSignal> SqlConfigurationDatabaseConnection::getSetpointChamberSignals(const ChamberTypeId& id) const
{
    if (!checks.hasDependencies("getSetpointChamberSignals")) {
        return {};
    }
    return signalReader.getSetpointChamberSignals(id.typeId);
}

QMap<int, ChamberSignal> SqlConfigurationDatabaseConnection::getChamberSignals(QList<SignalId> ids) const
{
    if (!checks.hasDependencies("getChamberSignals")) {
        return {};
    }
    return signalReader.getChamberSignals(ids);
}

QSharedPointer<ChamberSignal> SqlConfigurationDatabaseConnection::getChamberSignal(const SignalId& id) const
{
    if (!checks.hasDependencies("getChamberSignal")) {
        return {};
    }
    return signalReader.getChamberSignal(id);
}

QMap<SignalId, ChamberSignal>
SqlConfigurationDatabaseConnection::getMatchingSignals(const ChamberTypeId& source,
                                                       const ChamberTypeId& destination) const
{
    if (!checks.hasDependencies("getMatchingSignals")) {
        return {};
    }
    return signalReader.getMatchingSignals(source.typeId, destination.typeId);
}

QList<ChamberSignal> SqlConfigurationDatabaseConnection::getDataloggerChamberSignal(const ChamberTypeId& id) const
{
    if (!checks.hasDependencies("getDataloggerChamberSignal")) {
        return {};
    }
    return signalReader.getDataloggerChamberSignal(id.typeId);
}

DefaultToleranceRange SqlConfigurationDatabaseConnection::getDefaultToleranceRange(const ChamberTypeId& id,
                                                                                   const SignalId& signalId,
                                                                                   bool isSetPoint) const
{
    if (!checks.hasDependencies("getDefaultToleranceRange")) {
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

    const QList<DefaultToleranceRange> found = getDefaultToleranceRanges(query, RANGE_COLUMNS);
    if (found.size() > 1) {
        checks.reportUnexpected(
            "getDefaultToleranceRange",
            QStringLiteral("Chamber type %1 has %2 default tolerance ranges for signal %3; the first one counts")
                .arg(id.typeId)
                .arg(found.size())
                .arg(signalId));
    }
    return found.isEmpty() ? DefaultToleranceRange() : found.first();
}

int SqlConfigurationDatabaseConnection::getChamberSignalDelay(const ChamberTypeId& id, const SignalId& signalId,
                                                              bool second) const
{
    if (!checks.hasDependencies("getChamberSignalDelay")) {
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
    if (!checks.hasDependencies("getSignalUnitId")) {
        return Unit::UnitId(0);
    }
    return Unit::toUnitId(getChamberSignalProperty(id, SignalProperty::UNIT).toString());
}

std::pair<QMetaType::Type, int> SqlConfigurationDatabaseConnection::splitToVariableTypeAndArraySize(const QString& text)
{
    return SqlChamberSignalReader::splitToVariableTypeAndArraySize(text);
}

QStringList SqlConfigurationDatabaseConnection::prepareChamberSignalColumnNames()
{
    return SqlChamberSignalReader::prepareChamberSignalColumnNames();
}

QStringList SqlConfigurationDatabaseConnection::getChamberTypeColumnNames()
{
    static const QStringList names = [] {
        QStringList list;
        list.reserve(TYPE_COLUMNS);
        for (int column = TYPE_ID; column < TYPE_COLUMNS; ++column) {
            list.append(DC::lookupChamberTypeColumnName(ChamberTypeProperty(column)));
        }
        return list;
    }();
    return names;
}

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

QList<quint64> SqlConfigurationDatabaseConnection::getAdditionalInfoIds(unsigned long long typeId) const
{
    if (!checks.hasDependencies("getAdditionalInfoIds")) {
        return {};
    }
    QList<quint64> ids;
    const QList<QVariant> values = connection->fetchSingleColumn(selectValueById(
        DC::lookupChamberTypeHasAdditionalInfoTableName(),
        DC::lookupChamberTypeHasAdditionalInfoColumnName(ChamberTypeHasAdditionalInfoProperty::ADDITIONAL_INFO_ID),
        DC::lookupChamberTypeHasAdditionalInfoColumnName(ChamberTypeHasAdditionalInfoProperty::CHAMBER_TYPE_ID),
        typeId));
    ids.reserve(values.size());
    for (const QVariant& value : values) {
        ids.append(value.toULongLong());
    }
    return ids;
}

QVariant SqlConfigurationDatabaseConnection::getAdditionalInfoProperty(int id, AdditionalInfoProperty property) const
{
    if (!checks.hasDependencies("getAdditionalInfoProperty")) {
        return {};
    }
    return connection->fetchSingleValue(
        selectValueById(DC::lookupAdditionalInfoTableName(), DC::lookupAdditionalInfoColumnName(property),
                        DC::lookupAdditionalInfoColumnName(AdditionalInfoProperty::ID), id));
}

QVariant SqlConfigurationDatabaseConnection::getControllerProperty(int id, ControllerProperty property) const
{
    if (!checks.hasDependencies("getControllerProperty")) {
        return {};
    }
    return connection->fetchSingleValue(selectValueById(DC::lookupControllerTableName(),
                                                        DC::lookupControllerColumnName(property),
                                                        DC::lookupControllerColumnName(ControllerProperty::ID), id));
}

QVariant SqlConfigurationDatabaseConnection::getValueTypeProperty(int id, ValueTypeProperty property) const
{
    if (!checks.hasDependencies("getValueTypeProperty")) {
        return {};
    }
    return signalReader.getValueTypeProperty(id, property);
}

QList<ChamberProtocol> SqlConfigurationDatabaseConnection::getSupportedProtocols(const ChamberTypeId& id) const
{
    if (!checks.hasDependencies("getSupportedProtocols")) {
        return {};
    }
    QList<ChamberProtocol> protocols;
    const QList<QVariant> values = connection->fetchSingleColumn(selectValueById(
        DC::lookupChamberTypeHasProtocolTableName(),
        DC::lookupChamberTypeHasProtocolColumnName(ChamberTypeHasProtocolProperty::PROTOCOL_ID),
        DC::lookupChamberTypeHasProtocolColumnName(ChamberTypeHasProtocolProperty::CHAMBER_TYPE_ID), id.typeId));
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
    if (!checks.hasDependencies("getChamberSignals")) {
        return {};
    }
    return signalReader.getChamberSignals(query, expectedColumns);
}

SignalId SqlConfigurationDatabaseConnection::getChamberTypeTestSignalId(const ChamberTypeId& id) const
{
    if (!checks.hasDependencies("getChamberTypeTestSignalId")) {
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
    if (!checks.hasDependencies("getChamberSignalProperty")) {
        return {};
    }
    return connection->fetchSingleValue(selectValueById(DC::lookupSignalTableName(),
                                                        DC::lookupSignalColumnName(property),
                                                        DC::lookupSignalColumnName(SignalProperty::ID), id));
}

QSharedPointer<ControllerAddress>
SqlConfigurationDatabaseConnection::getControllerAddress(const ControllerAddressId& id) const
{
    if (!checks.hasDependencies("getControllerAddress")) {
        return {};
    }
    return signalReader.getControllerAddress(id);
}

QMap<int, ControlSignal> SqlConfigurationDatabaseConnection::getControlSignals(const ChamberTypeId& id) const
{
    if (!checks.hasDependencies("getControlSignals")) {
        return {};
    }
    return signalReader.getControlSignals(id.typeId);
}

QList<ChamberOption> SqlConfigurationDatabaseConnection::getChamberOptions(const ChamberTypeId& id) const
{
    if (!checks.hasDependencies("getChamberOptions")) {
        return {};
    }
    SqlQuery query;
    query
        .selectColumns(
            {DC::lookupOptionsColumnName(OptionsProperty::NAME), DC::lookupOptionsColumnName(OptionsProperty::FIX)})
        .fromTable(DC::lookupOptionsTableName())
        .whereColumn(DC::lookupOptionsColumnName(OptionsProperty::ID))
        .inSelectQuery(selectValueById(
            DC::lookupChamberTypeHasOptionsTableName(),
            DC::lookupChamberTypeHasOptionsColumnName(ChamberTypeHasOptionsProperty::OPTIONS_ID),
            DC::lookupChamberTypeHasOptionsColumnName(ChamberTypeHasOptionsProperty::CHAMBER_TYPE_ID), id.typeId));

    QList<ChamberOption> result;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& values : rows) {
        if (checks.hasWidth(values, OPTION_COLUMNS, "getChamberOptions")) {
            const SqlRow row(values);
            result.append(ChamberOption(row.toString(OPTION_NAME), row.toBool(OPTION_FIX, false)));
        }
    }
    return result;
}

QList<DefaultToleranceRange>
SqlConfigurationDatabaseConnection::getDefaultToleranceRanges(const ChamberTypeId& id) const
{
    if (!checks.hasDependencies("getDefaultToleranceRanges")) {
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
    return getDefaultToleranceRanges(query, RANGE_COLUMNS);
}

QList<DefaultToleranceRange> SqlConfigurationDatabaseConnection::getDefaultToleranceRanges(const SqlQuery& query,
                                                                                           int expectedColumns) const
{
    if (!checks.hasDependencies("getDefaultToleranceRanges")) {
        return {};
    }
    QList<DefaultToleranceRange> result;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& values : rows) {
        if (!checks.hasWidth(values, expectedColumns, "getDefaultToleranceRanges")) {
            continue;
        }
        const SqlRow row(values);
        const QString unitText = row.toString(RANGE_UNIT);
        const ToleranceRange range(UnitValue(unitText, row.toFloat(RANGE_MIN, 0.0f)),
                                   UnitValue(unitText, row.toFloat(RANGE_MAX, 0.0f)), ToleranceRange::RELATIVE);
        result.append(DefaultToleranceRange(row.toString(RANGE_NAME), row.toInt(RANGE_SET_POINT, -1),
                                            row.toInt(RANGE_PROCESS_VALUE, -1), range, row.toInt(RANGE_DELAY1, -1),
                                            row.toInt(RANGE_DELAY2, -1)));
    }
    return result;
}

QList<ChamberTypeData>
SqlConfigurationDatabaseConnection::parseChamberTypeDataRow(const QList<QVariant>& values, int expectedColumns,
                                                            bool withSignals, unsigned long long additionalInfoId) const
{
    if (!checks.hasWidth(values, expectedColumns, "parseChamberTypeDataRow")) {
        return {};
    }
    const SqlRow row(values);
    const quint64 typeId = row.toUInt(TYPE_ID, 0);
    const ChamberTypeId baseId(typeId, 0);
    const QString controller = sqlhelper::readStringSqlValue(
        getControllerProperty(row.toInt(TYPE_CONTROLLER_ID, -1), ControllerProperty::TYPE), QString());
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
        return ChamberTypeData(
            ChamberTypeId(typeId, variantId), row.toString(TYPE_TYPE), row.toString(TYPE_DEVELOPEMENT_STATE),
            row.toInt(TYPE_SIZE, -1), row.toString(TYPE_VOLTAGE), row.toString(TYPE_IMAGE),
            row.toString(TYPE_DESCRIPTION), row.toString(TYPE_FIRMWARE_START), row.toString(TYPE_FIRMWARE_ENDE),
            row.toString(TYPE_SETUP_KENNUNG), row.toInt(TYPE_SETUP_VERSION_START, -1),
            row.toInt(TYPE_SETUP_VERSION_ENDE, -1), row.toString(TYPE_KENNUNG_PROGRAMME), articleNumber, info,
            controller, protocols, chamberSignals, controlSignals, options, QList<ChamberOption>());
    };

    QList<ChamberTypeData> result;
    if (variants.isEmpty()) {
        result.append(makeVariant(0, QString(), QString()));
        return result;
    }
    for (quint64 variantId : variants) {
        const auto text = [this, variantId](AdditionalInfoProperty property) {
            return sqlhelper::readStringSqlValue(getAdditionalInfoProperty(int(variantId), property), QString());
        };
        result.append(
            makeVariant(variantId, text(AdditionalInfoProperty::ARTICLE_NR), text(AdditionalInfoProperty::INFO)));
    }
    return result;
}

ChamberSignal SqlConfigurationDatabaseConnection::parseChamberSignalTableRow(const QList<QVariant>& row,
                                                                             int expectedColumns) const
{
    return signalReader.parseChamberSignalTableRow(row, expectedColumns);
}

} // namespace zelmor::base::connection::databaseconnection
