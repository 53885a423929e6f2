#pragma once

#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Domain/Api/ConfigurationTableProperties.h"
#include "Domain/Types/SignalId.h"

#include <QList>
#include <QMap>
#include <QMetaType>
#include <QSharedPointer>
#include <QStringList>
#include <QVariant>

#include <utility>

namespace zelmor::domain::api {
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::domain::types {
class ChamberSignal;
class ChamberTypeId;
class ControlSignal;
class ControllerAddress;
class ControllerAddressId;
} // namespace zelmor::domain::types

namespace zelmor::base::connection::databaseconnection {

class SqlStoreChecks;

// The catalogue's signals with all they point at: their registers in
// "controller_data", their value types, their set point signals, and the
// control signals of a type. SqlConfigurationDatabaseConnection owns one and
// passes these reads on to it; the reader reports through the store's checks.
//
// Nothing is cached: a signal reads its registers, value type and set point one
// by one. A set point link is followed to its end; a signal that names itself
// has no link. Use only after the store has checked its dependencies.
class SqlChamberSignalReader
{
public:
    // The number of columns of the signal row layout.
    static constexpr int signalColumnCount_ = 16;

    explicit SqlChamberSignalReader(const SqlStoreChecks& checks);

    void setConnection(zelmor::domain::api::ISqlConnection* connection);

    // The columns of the signal row layout, plain and qualified with a table
    // (or an alias) for joins.
    static QStringList prepareChamberSignalColumnNames();
    static QList<SqlQuery::TableColumnPair> prepareChamberSignalTableColumnPairs(const QString& table);
    // "UINT16[4]" -> (UShort, 4); no brackets: one element; an unknown word: UnknownType.
    static std::pair<QMetaType::Type, int> splitToVariableTypeAndArraySize(const QString& text);

    // Runs a statement that selects the signal columns; rows that can't be read
    // are dropped, a later row of the same id replaces an earlier one.
    QMap<int, zelmor::domain::types::ChamberSignal> getChamberSignals(const SqlQuery& query, int expectedColumns) const;
    QMap<int, zelmor::domain::types::ChamberSignal>
    getChamberSignals(const QList<zelmor::domain::types::SignalId>& ids) const;
    // The reads of the catalogue's interface that give signals, by chamber type.
    QMap<int, zelmor::domain::types::ChamberSignal> getChamberSignals(quint64 typeId) const;
    QMap<int, zelmor::domain::types::ChamberSignal> getSetpointChamberSignals(quint64 typeId) const;
    // In the order of the set point numbers of the manual write registers;
    // signals without one are left out.
    QList<zelmor::domain::types::ChamberSignal> getTimeProgrammableChamberSignals(quint64 typeId) const;
    QMap<zelmor::domain::types::SignalId, zelmor::domain::types::ChamberSignal>
    getMatchingSignals(quint64 sourceTypeId, quint64 destinationTypeId) const;
    QList<zelmor::domain::types::ChamberSignal> getDataloggerChamberSignal(quint64 typeId) const;
    // Null, reported as UNEXPECTED_RESULT, unless the catalogue has the signal once.
    QSharedPointer<zelmor::domain::types::ChamberSignal>
    getChamberSignal(const zelmor::domain::types::SignalId& id) const;
    // The empty signal when the row has the wrong width.
    zelmor::domain::types::ChamberSignal parseChamberSignalTableRow(const QList<QVariant>& row,
                                                                    int expectedColumns) const;
    // Null, without a report, when the register isn't there.
    QSharedPointer<zelmor::domain::types::ControllerAddress>
    getControllerAddress(const zelmor::domain::types::ControllerAddressId& id) const;
    QVariant getValueTypeProperty(int id, zelmor::domain::api::ValueTypeProperty property) const;
    QMap<int, zelmor::domain::types::ControlSignal> getControlSignals(quint64 typeId) const;

private:
    // Parses every row, dropping those that give the empty signal.
    QList<zelmor::domain::types::ChamberSignal> parseRows(const SqlQuery& query, int expectedColumns) const;

    const SqlStoreChecks& checks;
    zelmor::domain::api::ISqlConnection* connection = nullptr;
};

} // namespace zelmor::base::connection::databaseconnection
