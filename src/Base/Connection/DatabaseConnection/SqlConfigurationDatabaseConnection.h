#pragma once

#include "Base/Connection/DatabaseConnection/SqlChamberSignalReader.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlStoreChecks.h"
#include "Domain/Api/ConfigurationTableProperties.h"
#include "Domain/Api/IConfigurationDatabaseConnection.h"
#include "Domain/Api/IInitializing.h"
#include "Domain/Types/ChamberProtocol.h"
#include "Domain/Types/DatabaseConnectionError.h"

#include <QLoggingCategory>
#include <QMetaType>
#include <QObject>
#include <QStringList>
#include <QVariant>

#include <utility>

namespace zelmor::domain::api {
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::domain::types {
class ChamberOption;
class ControlSignal;
class ControllerAddress;
class ControllerAddressId;
} // namespace zelmor::domain::types

namespace zelmor::base::connection::databaseconnection {

Q_DECLARE_LOGGING_CATEGORY(SQLCONFIGURATIONDATABASECONNECTION)

// The read-only chamber type catalogue of the configuration database. Turns its
// rows into chamber types, signals, registers, control signals, options and
// default tolerance ranges. It never writes and caches nothing: each call reads
// afresh, and a type with signals takes many small statements, since every
// signal reads its registers, value type and set point one by one. The signals
// and what they point at are read by its SqlChamberSignalReader.
//
// Rows are decoded by position in the order in which the statements name the
// columns; a row of another width is reported as UNEXPECTED_RESULT and passed
// over, so a partly bad type still yields what could be read. Failures are
// logged in "zelmor.SqlConfigurationDatabaseConnection" and emitted through
// error(). Use on the thread of the connection.
class SqlConfigurationDatabaseConnection : public QObject,
                                           public zelmor::domain::api::IConfigurationDatabaseConnection,
                                           public zelmor::domain::api::IInitializing
{
    Q_OBJECT

public:
    explicit SqlConfigurationDatabaseConnection(QObject* parent = nullptr);
    ~SqlConfigurationDatabaseConnection() override;

    // The connection is not owned. True when it is not null.
    virtual bool setDependencies(zelmor::domain::api::ISqlConnection* connection);
    // Checks that the catalogue's ten core tables exist (MISSING_TABLE if not).
    bool initialize() override;

    QList<zelmor::domain::types::ChamberTypeData> getAllChamberTypeData(bool withSignals) const override;
    QList<zelmor::domain::types::ChamberTypeData> getAllProgrammableChamberTypeData() const override;
    zelmor::domain::types::ChamberTypeData getChamberTypeData(const zelmor::domain::types::ChamberTypeId& id,
                                                              bool withSignals) const override;
    QMap<int, zelmor::domain::types::ChamberSignal>
    getChamberSignals(const zelmor::domain::types::ChamberTypeId& id) const override;
    QList<std::pair<zelmor::domain::types::ChamberSignal, zelmor::domain::types::DefaultToleranceRange>>
    getTimeProgrammableChamberSignals(const zelmor::domain::types::ChamberTypeId& id) const override;
    QMap<int, zelmor::domain::types::ChamberSignal>
    getSetpointChamberSignals(const zelmor::domain::types::ChamberTypeId& id) const override;
    QMap<int, zelmor::domain::types::ChamberSignal>
    getChamberSignals(QList<zelmor::domain::types::SignalId> ids) const override;
    QSharedPointer<zelmor::domain::types::ChamberSignal>
    getChamberSignal(const zelmor::domain::types::SignalId& id) const override;
    QMap<zelmor::domain::types::SignalId, zelmor::domain::types::ChamberSignal>
    getMatchingSignals(const zelmor::domain::types::ChamberTypeId& source,
                       const zelmor::domain::types::ChamberTypeId& destination) const override;
    QList<zelmor::domain::types::ChamberSignal>
    getDataloggerChamberSignal(const zelmor::domain::types::ChamberTypeId& id) const override;
    zelmor::domain::types::DefaultToleranceRange
    getDefaultToleranceRange(const zelmor::domain::types::ChamberTypeId& id,
                             const zelmor::domain::types::SignalId& signalId, bool isSetPoint) const override;
    int getChamberSignalDelay(const zelmor::domain::types::ChamberTypeId& id,
                              const zelmor::domain::types::SignalId& signalId, bool second) const override;
    zelmor::domain::types::Unit::UnitId getSignalUnitId(const zelmor::domain::types::SignalId& id) const override;

    virtual bool areDependenciesSet() const;

    // "UINT16[4]" -> (UShort, 4); no brackets: one element; an unknown word: UnknownType.
    static std::pair<QMetaType::Type, int> splitToVariableTypeAndArraySize(const QString& text);

    // The row layouts: the columns in the order in which the statements name them.
    static QStringList prepareChamberSignalColumnNames();
    static QStringList getChamberTypeColumnNames();
    // The default tolerance range columns and, last, the unit of the joined signal.
    static QList<SqlQuery::TableColumnPair> prepareDefaultToleranceRangeTableColumnPairs();

signals:
    void error(zelmor::domain::types::DatabaseConnectionError error) const override;

protected:
    virtual QList<quint64> getAdditionalInfoIds(unsigned long long typeId) const;
    // The column's value of the row with that id; invalid when there is none.
    virtual QVariant getAdditionalInfoProperty(int id, zelmor::domain::api::AdditionalInfoProperty property) const;
    virtual QVariant getControllerProperty(int id, zelmor::domain::api::ControllerProperty property) const;
    virtual QVariant getValueTypeProperty(int id, zelmor::domain::api::ValueTypeProperty property) const;
    // In the engine's order.
    virtual QList<zelmor::domain::types::ChamberProtocol>
    getSupportedProtocols(const zelmor::domain::types::ChamberTypeId& id) const;
    // The signal reads below pass on to the SqlChamberSignalReader, whose
    // own reads call each other directly, not through these.
    //
    // Runs a statement that selects the signal columns; rows that can't be read
    // are dropped, a later row of the same id replaces an earlier one.
    virtual QMap<int, zelmor::domain::types::ChamberSignal> getChamberSignals(const SqlQuery& query,
                                                                              int expectedColumns) const;
    virtual zelmor::domain::types::SignalId
    getChamberTypeTestSignalId(const zelmor::domain::types::ChamberTypeId& id) const;
    virtual QVariant getChamberSignalProperty(const zelmor::domain::types::SignalId& id,
                                              zelmor::domain::api::SignalProperty property) const;
    // Null, without a report, when the register isn't there.
    virtual QSharedPointer<zelmor::domain::types::ControllerAddress>
    getControllerAddress(const zelmor::domain::types::ControllerAddressId& id) const;
    virtual QMap<int, zelmor::domain::types::ControlSignal>
    getControlSignals(const zelmor::domain::types::ChamberTypeId& id) const;
    virtual QList<zelmor::domain::types::ChamberOption>
    getChamberOptions(const zelmor::domain::types::ChamberTypeId& id) const;
    virtual QList<zelmor::domain::types::DefaultToleranceRange>
    getDefaultToleranceRanges(const zelmor::domain::types::ChamberTypeId& id) const;
    virtual QList<zelmor::domain::types::DefaultToleranceRange> getDefaultToleranceRanges(const SqlQuery& query,
                                                                                          int expectedColumns) const;
    // One entry per orderable variant of the row's type; additionalInfoId 0
    // means all variants the catalogue lists.
    virtual QList<zelmor::domain::types::ChamberTypeData>
    parseChamberTypeDataRow(const QList<QVariant>& row, int expectedColumns, bool withSignals,
                            unsigned long long additionalInfoId) const;
    // The empty signal when the row has the wrong width. Follows the set point
    // link, so a chain of links is read in full.
    virtual zelmor::domain::types::ChamberSignal parseChamberSignalTableRow(const QList<QVariant>& row,
                                                                            int expectedColumns) const;

private:
    zelmor::domain::api::ISqlConnection* connection = nullptr;
    SqlStoreChecks checks;
    SqlChamberSignalReader signalReader;
};

} // namespace zelmor::base::connection::databaseconnection
