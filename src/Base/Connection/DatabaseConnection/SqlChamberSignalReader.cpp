#include "Base/Connection/DatabaseConnection/SqlChamberSignalReader.h"

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlRow.h"
#include "Base/Connection/DatabaseConnection/SqlStoreChecks.h"
#include "Base/Connection/DatabaseConnection/sqlhelper.h"
#include "Domain/Api/ISqlConnection.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/ControlSignal.h"
#include "Domain/Types/ControllerAddress.h"
#include "Domain/Types/UserLevel.h"

#include <QRegExp>

#include <limits>

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;
using zelmor::domain::api::ChamberTypeHasControlSignalsProperty;
using zelmor::domain::api::ChamberTypeHasDataloggerSignalProperty;
using zelmor::domain::api::ChamberTypeHasSignalProperty;
using zelmor::domain::api::ControllerDataProperty;
using zelmor::domain::api::ControlSignalsProperty;
using zelmor::domain::api::ISqlConnection;
using zelmor::domain::api::SignalProperty;
using zelmor::domain::api::ValueTypeProperty;

namespace {

using DC = DatabaseSchema;

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
    SIGNAL_WRITE_AUTO,
    SIGNAL_COLUMNS
};
static_assert(SIGNAL_COLUMNS == SqlChamberSignalReader::signalColumnCount_, "one position per column");

// The columns of the signal row layout, in its order.
const SignalProperty signalLayout[SIGNAL_COLUMNS] = {
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

// Positions in a row of "controller_data".
enum RegisterColumn {
    REGISTER_ID,
    REGISTER_ADDRESS,
    REGISTER_ACCESS,
    REGISTER_VARIABLE_TYPE,
    REGISTER_SET_POINT_NR,
    REGISTER_DESCRIPTION,
    REGISTER_COLUMNS
};

// Positions in a row of "control_signals".
enum ControlSignalColumn {
    CONTROL_ID,
    CONTROL_NAME,
    CONTROL_BITPOSITION,
    CONTROL_USERLEVEL,
    CONTROL_READ,
    CONTROL_WRITE,
    CONTROL_COLUMNS
};

// A row of matching signals: the signal columns of a source type's signal,
// then the id of the destination type's signal that it matches.
enum MatchColumn { MATCH_DESTINATION_ID = SIGNAL_COLUMNS, MATCH_COLUMNS };

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

// The statement that selects the signal columns of the given signals.
SqlQuery selectSignalsIn(const SqlQuery& signalIds)
{
    SqlQuery query;
    query.selectColumns(SqlChamberSignalReader::prepareChamberSignalColumnNames())
        .fromTable(DC::lookupSignalTableName())
        .whereColumn(DC::lookupSignalColumnName(SignalProperty::ID))
        .inSelectQuery(signalIds);
    return query;
}

} // namespace

SqlChamberSignalReader::SqlChamberSignalReader(const SqlStoreChecks& checks)
    : checks(checks)
{
}

void SqlChamberSignalReader::setConnection(ISqlConnection* connection)
{
    this->connection = connection;
}

QStringList SqlChamberSignalReader::prepareChamberSignalColumnNames()
{
    // Built once: a full catalogue read names these columns thousands of times.
    static const QStringList names = SqlRow::columnNames(DC::lookupSignalColumnName, signalLayout);
    return names;
}

QList<SqlQuery::TableColumnPair> SqlChamberSignalReader::prepareChamberSignalTableColumnPairs(const QString& table)
{
    QList<SqlQuery::TableColumnPair> pairs;
    pairs.reserve(SIGNAL_COLUMNS);
    for (const QString& column : prepareChamberSignalColumnNames()) {
        pairs.append({table, column});
    }
    return pairs;
}

std::pair<QMetaType::Type, int> SqlChamberSignalReader::splitToVariableTypeAndArraySize(const QString& text)
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

QMap<int, ChamberSignal> SqlChamberSignalReader::getChamberSignals(const SqlQuery& query, int expectedColumns) const
{
    QMap<int, ChamberSignal> result;
    for (const ChamberSignal& signal : parseRows(query, expectedColumns)) {
        result.insert(signal.id, signal);
    }
    return result;
}

QList<ChamberSignal> SqlChamberSignalReader::parseRows(const SqlQuery& query, int expectedColumns) const
{
    QList<ChamberSignal> result;
    const ChamberSignal emptySignal;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& row : rows) {
        const ChamberSignal signal = parseChamberSignalTableRow(row, expectedColumns);
        if (signal != emptySignal) {
            result.append(signal);
        }
    }
    return result;
}

QMap<int, ChamberSignal> SqlChamberSignalReader::getChamberSignals(const QList<SignalId>& ids) const
{
    SqlQuery query;
    query.selectColumns(prepareChamberSignalColumnNames())
        .fromTable(DC::lookupSignalTableName())
        .whereColumn(DC::lookupSignalColumnName(SignalProperty::ID))
        .inList(ids);
    return getChamberSignals(query, SIGNAL_COLUMNS);
}

QMap<int, ChamberSignal> SqlChamberSignalReader::getChamberSignals(quint64 typeId) const
{
    return getChamberSignals(selectSignalsIn(signalIdsOfType(typeId)), SIGNAL_COLUMNS);
}

QMap<int, ChamberSignal> SqlChamberSignalReader::getSetpointChamberSignals(quint64 typeId) const
{
    const QString setPointText = DC::signalTypeMap.key(ChamberSignal::SET_POINT);
    return getChamberSignals(selectSignalsIn(signalIdsOfTypeWhere(typeId, SignalProperty::SIGNAL_TYPE, setPointText)),
                             SIGNAL_COLUMNS);
}

QList<ChamberSignal> SqlChamberSignalReader::getTimeProgrammableChamberSignals(quint64 typeId) const
{
    const QString signalTable = DC::lookupSignalTableName();
    const QString registers = DC::lookupControllerDataTableName();
    SqlQuery query;
    query.selectTableColumns(prepareChamberSignalTableColumnPairs(signalTable))
        .fromTable(signalTable)
        // The inner join leaves out signals without a manual write register.
        .joinOnMatch({{signalTable, DC::lookupSignalColumnName(SignalProperty::WRITE_MANUAL)},
                      {registers, DC::lookupControllerDataColumnName(ControllerDataProperty::ID)}})
        .whereTableColumn({signalTable, DC::lookupSignalColumnName(SignalProperty::ID)})
        .inSelectQuery(signalIdsOfTypeWhere(typeId, SignalProperty::TIME_PROGRAMMABLE, true))
        .orderBy(DC::lookupControllerDataColumnName(ControllerDataProperty::SET_POINT_NR), SqlQuery::ASC);
    return parseRows(query, SIGNAL_COLUMNS);
}

QMap<SignalId, ChamberSignal> SqlChamberSignalReader::getMatchingSignals(quint64 sourceTypeId,
                                                                         quint64 destinationTypeId) const
{
    const QString signalTable = DC::lookupSignalTableName();
    const QString sourceAlias = QStringLiteral("source_") + signalTable;
    const QString destinationAlias = QStringLiteral("destination_") + signalTable;
    const QString idColumn = DC::lookupSignalColumnName(SignalProperty::ID);
    const QString valueTypeColumn = DC::lookupSignalColumnName(SignalProperty::VALUE_TYPE);

    QList<SqlQuery::TableColumnPair> columns = prepareChamberSignalTableColumnPairs(sourceAlias);
    columns.append({destinationAlias, idColumn});
    SqlQuery query;
    query.selectTableColumns(columns)
        .fromTable(signalTable, sourceAlias)
        .joinOnMatch({{sourceAlias, valueTypeColumn}, {destinationAlias, valueTypeColumn}}, signalTable)
        .whereTableColumn({sourceAlias, idColumn})
        .inSelectQuery(signalIdsOfType(sourceTypeId))
        .andTableColumn({destinationAlias, idColumn})
        .inSelectQuery(signalIdsOfType(destinationTypeId));

    QMap<SignalId, ChamberSignal> result;
    const QList<QList<QVariant>> rows = connection->fetch(query);
    for (const QList<QVariant>& row : rows) {
        if (checks.hasWidth(row, MATCH_COLUMNS, "getMatchingSignals")) {
            result.insert(SqlRow(row).toInt(MATCH_DESTINATION_ID, -1),
                          parseChamberSignalTableRow(row.mid(0, SIGNAL_COLUMNS), SIGNAL_COLUMNS));
        }
    }
    return result;
}

QList<ChamberSignal> SqlChamberSignalReader::getDataloggerChamberSignal(quint64 typeId) const
{
    const QString signalTable = DC::lookupSignalTableName();
    const QString channels = DC::lookupChamberTypeHasDataloggerSignalTableName();
    SqlQuery query;
    query.selectTableColumns(prepareChamberSignalTableColumnPairs(signalTable))
        .fromTable(signalTable)
        .joinOnMatch({{signalTable, DC::lookupSignalColumnName(SignalProperty::ID)},
                      {channels, DC::lookupChamberTypeHasDataloggerSignalColumnName(
                                     ChamberTypeHasDataloggerSignalProperty::DATALOGGER_SIGNAL_ID)}})
        .whereTableColumn({channels, DC::lookupChamberTypeHasDataloggerSignalColumnName(
                                         ChamberTypeHasDataloggerSignalProperty::CHAMBER_TYPE_ID)})
        .equals(typeId)
        .orderByTableColumn({channels, DC::lookupChamberTypeHasDataloggerSignalColumnName(
                                           ChamberTypeHasDataloggerSignalProperty::CHANNEL)},
                            SqlQuery::ASC);
    return parseRows(query, SIGNAL_COLUMNS);
}

QSharedPointer<ChamberSignal> SqlChamberSignalReader::getChamberSignal(const SignalId& id) const
{
    const QMap<int, ChamberSignal> signalMap = getChamberSignals(QList<SignalId>{id});
    if (signalMap.size() != 1 || signalMap.firstKey() != id) {
        checks.reportUnexpected("getChamberSignal",
                                QStringLiteral("Signal %1 is not in the catalogue, or not once").arg(id));
        return {};
    }
    return QSharedPointer<ChamberSignal>::create(signalMap.first());
}

ChamberSignal SqlChamberSignalReader::parseChamberSignalTableRow(const QList<QVariant>& values,
                                                                 int expectedColumns) const
{
    if (!checks.hasWidth(values, expectedColumns, "parseChamberSignalTableRow")) {
        return ChamberSignal();
    }
    const SqlRow row(values);
    const SignalId id = row.toInt(SIGNAL_ID, -1);
    const int valueType = row.toInt(SIGNAL_VALUE_TYPE, 0);
    const SignalId setPointId = row.toInt(SIGNAL_SET_POINT_SIGNAL, -1);

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
        const int addressId = row.toInt(column, -1);
        return addressId == -1 ? QSharedPointer<ControllerAddress>() : getControllerAddress(addressId);
    };

    QVariant userLevel = row.toVariant(SIGNAL_USER_LEVEL, 0);
    if (!userLevel.convert(qMetaTypeId<UserLevel>())) {
        userLevel = QVariant::fromValue(UserLevel(0));
    }

    QColor color;
    color.setNamedColor(colorText);

    return ChamberSignal(
        id, row.toString(SIGNAL_NAME), Unit::toUnitId(row.toString(SIGNAL_UNIT)), color, decimalPlaces,
        userLevel.value<UserLevel>(), row.toFloat(SIGNAL_LIMIT_MIN, std::numeric_limits<float>::lowest()),
        row.toFloat(SIGNAL_LIMIT_MAX, std::numeric_limits<float>::max()), row.toInt(SIGNAL_BITPOSITION, -1),
        DC::signalTypeMap.value(row.toString(SIGNAL_SIGNAL_TYPE), ChamberSignal::SignalType(0)), setPointSignal,
        row.toBool(SIGNAL_TIME_PROGRAMMABLE, false), row.toBool(SIGNAL_WEEK_PROGRAMMABLE, false),
        addressAt(SIGNAL_READ), addressAt(SIGNAL_WRITE_BASIC), addressAt(SIGNAL_WRITE_MANUAL),
        addressAt(SIGNAL_WRITE_AUTO));
}

QSharedPointer<ControllerAddress> SqlChamberSignalReader::getControllerAddress(const ControllerAddressId& id) const
{
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

    const SqlRow row(connection->fetchSingleRow(query));
    // A register that isn't there is no failure: the signal just lacks it.
    if (row.width() != REGISTER_COLUMNS) {
        return {};
    }
    const std::pair<QMetaType::Type, int> type = splitToVariableTypeAndArraySize(row.toString(REGISTER_VARIABLE_TYPE));
    return QSharedPointer<ControllerAddress>::create(
        row.toInt(REGISTER_ID, -1), row.toString(REGISTER_ADDRESS),
        DC::accessMap.value(row.toString(REGISTER_ACCESS), ControllerAddress::Access(0)), type.first, type.second,
        row.toInt(REGISTER_SET_POINT_NR, -1), row.toString(REGISTER_DESCRIPTION));
}

QVariant SqlChamberSignalReader::getValueTypeProperty(int id, ValueTypeProperty property) const
{
    SqlQuery query;
    query.selectColumn(DC::lookupValueTypeColumnName(property))
        .fromTable(DC::lookupValueTypeTableName())
        .whereColumn(DC::lookupValueTypeColumnName(ValueTypeProperty::ID))
        .equals(id);
    return connection->fetchSingleValue(query);
}

QMap<int, ControlSignal> SqlChamberSignalReader::getControlSignals(quint64 typeId) const
{
    SqlQuery controlSignalIds;
    controlSignalIds
        .selectColumn(
            DC::lookupChamberTypeHasControlSignalsColumnName(ChamberTypeHasControlSignalsProperty::CONTROL_SIGNALS_ID))
        .fromTable(DC::lookupChamberTypeHasControlSignalsTableName())
        .whereColumn(
            DC::lookupChamberTypeHasControlSignalsColumnName(ChamberTypeHasControlSignalsProperty::CHAMBER_TYPE_ID))
        .equals(typeId);
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
    for (const QList<QVariant>& values : rows) {
        if (!checks.hasWidth(values, CONTROL_COLUMNS, "getControlSignals")) {
            continue;
        }
        const SqlRow row(values);
        const int controlSignalId = row.toInt(CONTROL_ID, -1);
        result.insert(controlSignalId,
                      ControlSignal(controlSignalId, row.toString(CONTROL_NAME), row.toInt(CONTROL_BITPOSITION, -1),
                                    UserLevel(row.toInt(CONTROL_USERLEVEL, -1)), addressOf(row.toInt(CONTROL_READ, -1)),
                                    addressOf(row.toInt(CONTROL_WRITE, -1))));
    }
    return result;
}

} // namespace zelmor::base::connection::databaseconnection
