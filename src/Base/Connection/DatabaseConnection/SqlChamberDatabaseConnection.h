#pragma once

#include "Base/Connection/DatabaseConnection/SqlChamberToleranceRanges.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Base/Connection/DatabaseConnection/SqlStoreChecks.h"
#include "Base/Connection/DatabaseConnection/SqlToleranceRangeCache.h"
#include "Domain/Api/IChamberDatabaseConnection.h"
#include "Domain/Api/IInitializing.h"
#include "Domain/Types/DatabaseConnectionError.h"

#include <QLoggingCategory>
#include <QObject>
#include <QStringList>

namespace zelmor::domain::api {
class IConfigurationDatabaseConnection;
class IRoomDatabaseConnection;
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::base::connection::databaseconnection {

Q_DECLARE_LOGGING_CATEGORY(SQLCHAMBERDATABASECONNECTION)

// The chambers of the monitoring application in table "chamber", with the
// signals subscribed to ("chamber_has_subscribed_signal"), custom signal names
// ("chamber_has_custom_signal_name"), two delays per signal
// ("chamber_has_signal_delay", either may be NULL) and the history of the
// tolerance ranges, which SqlChamberToleranceRanges keeps. The chamber's type
// and signals come from the catalogue, its place in a room from the room store.
//
// A chamber's row is read and written by SqlChamberRow.
//
// Failures are logged in "zelmor.SqlChamberDatabaseConnection" and emitted
// through error(). Use on the thread of the connection; only the tolerance
// range cache may be read from other threads (SqlToleranceRangeCache).
class SqlChamberDatabaseConnection : public QObject,
                                     public zelmor::domain::api::IChamberDatabaseConnection,
                                     public zelmor::domain::api::IInitializing
{
    Q_OBJECT

public:
    explicit SqlChamberDatabaseConnection(QObject* parent = nullptr);
    ~SqlChamberDatabaseConnection() override;

    // None is owned. True when all three are not null.
    virtual bool setDependencies(zelmor::domain::api::ISqlConnection* connection,
                                 zelmor::domain::api::IConfigurationDatabaseConnection* configuration,
                                 zelmor::domain::api::IRoomDatabaseConnection* rooms);
    // True when the tables "chamber" and "chamber_has_subscribed_signal" exist
    // (MISSING_TABLE if not).
    bool initialize() override;

    bool addChamber(zelmor::domain::types::ChamberData& chamber) override;
    QList<zelmor::domain::types::ChamberData> getAllChamberData(bool withRoomPosition) const override;
    // A chamber that isn't there is reported as UNEXPECTED_RESULT.
    zelmor::domain::types::ChamberData getChamberData(const zelmor::domain::types::ChamberId& id,
                                                      bool withRoomPosition) const override;
    QVariant getChamberProperty(const zelmor::domain::types::ChamberId& id,
                                const zelmor::domain::api::ChamberProperty& property) const override;
    QMap<int, zelmor::domain::types::ChamberSignal>
    getChamberSignals(const zelmor::domain::types::ChamberId& id) const override;
    bool updateChamber(const zelmor::domain::types::ChamberData& chamber, bool withSubscription) override;
    bool setChamberProperty(const zelmor::domain::types::ChamberData& chamber,
                            const zelmor::domain::api::ChamberProperty& property) override;
    bool setChamberProperty(const zelmor::domain::types::ChamberId& id,
                            const zelmor::domain::api::ChamberProperty& property, const QVariant& value) override;
    // One statement per name, each on its own; stops at the first that fails.
    bool setChamberCustomSignalNames(zelmor::domain::types::ChamberId id,
                                     const QMap<zelmor::domain::types::SignalId, QString>& names) override;
    QMap<zelmor::domain::types::SignalId, QString>
    getChamberCustomSignalNames(zelmor::domain::types::ChamberId id) override;
    bool deleteChamber(const zelmor::domain::types::ChamberId& id) override;
    bool archiveChamber(const zelmor::domain::types::ChamberId& id) override;
    bool restoreChamber(const zelmor::domain::types::ChamberId& id) override;

    QMap<zelmor::domain::types::SignalId, zelmor::domain::types::ToleranceRange>
    getToleranceRanges(const QDateTime& time, const zelmor::domain::types::ChamberId& chamber,
                       const QMap<int, zelmor::domain::types::ChamberSignal>& chamberSignals) override;
    // Reads the recording's chamber with a statement: call on the connection's
    // thread. Workers take getToleranceRangeHistory() beforehand instead.
    QMap<zelmor::domain::types::SignalId, zelmor::domain::types::ToleranceRange>
    getToleranceRanges(const QDateTime& time, const zelmor::domain::types::RecordingId& recording,
                       const QMap<int, zelmor::domain::types::ChamberSignal>& chamberSignals) override;
    zelmor::domain::types::ToleranceRangeHistory
    getToleranceRangeHistory(const zelmor::domain::types::RecordingId& recording,
                             const QMap<int, zelmor::domain::types::ChamberSignal>& chamberSignals) override;
    zelmor::domain::types::ToleranceRange getToleranceRange(const QDateTime& time,
                                                            const zelmor::domain::types::ChamberId& chamber,
                                                            const zelmor::domain::types::SignalId& signal) override;
    // Empties the whole tolerance range cache first. A signal that the
    // catalogue doesn't know is refused (UNEXPECTED_RESULT): its unit is missing.
    bool setToleranceRange(const QDateTime& time, const zelmor::domain::types::ChamberId& chamber,
                           const zelmor::domain::types::SignalId& signal,
                           const zelmor::domain::types::ToleranceRange& range) override;

    bool isChamberSubscribed(const zelmor::domain::types::ChamberId& id) const override;
    QList<zelmor::domain::types::SignalId>
    getSubscribedChamberSignals(const zelmor::domain::types::ChamberId& id) const override;
    bool isAnyChamberSignalSubscribed(const zelmor::domain::types::ChamberId& id,
                                      const QList<zelmor::domain::types::SignalId>& signalIds) const override;
    bool isChamberSignalSubscribed(const zelmor::domain::types::ChamberId& id,
                                   const zelmor::domain::types::SignalId& signal) const override;
    bool subscribeChamber(const zelmor::domain::types::ChamberId& id) override;
    bool unsubscribeChamber(const zelmor::domain::types::ChamberId& id) override;
    bool bulkSubscribeChambers(const QList<zelmor::domain::types::ChamberId>& ids) override;
    // The signals of every chamber and the flags in one transaction: all or nothing.
    bool bulkUnsubscribeChambers(const QList<zelmor::domain::types::ChamberId>& ids) override;
    // A failure is also reported as EXECUTION_FAILED by the store.
    bool subscribeChamberSignal(const zelmor::domain::types::ChamberId& id,
                                const zelmor::domain::types::SignalId& signal) override;
    bool unsubscribeChamberSignal(const zelmor::domain::types::ChamberId& id,
                                  const zelmor::domain::types::SignalId& signal) override;

    QMap<zelmor::domain::types::SignalId, int>
    getAllChamberSignalDelaysInSeconds(const zelmor::domain::types::ChamberId& id, bool second) const override;
    int getChamberSignalDelayInSeconds(const zelmor::domain::types::ChamberId& id,
                                       const zelmor::domain::types::SignalId& signal, bool second) const override;
    bool hasChamberSignalDelay(const zelmor::domain::types::ChamberId& id,
                               const zelmor::domain::types::SignalId& signal, bool second) const override;
    bool setChamberSignalDelay(const zelmor::domain::types::ChamberId& id,
                               const zelmor::domain::types::SignalId& signal, bool second, int seconds) override;

    virtual bool areDependenciesSet() const;

signals:
    void error(zelmor::domain::types::DatabaseConnectionError error) const override;

protected:
    // A default chamber, reported as UNEXPECTED_RESULT, for a row of another width.
    zelmor::domain::types::ChamberData parseChamberDataRow(const QList<QVariant>& row, int columnCount,
                                                           bool withRoomPosition) const;
    // The raw value of the delay column picked by second; invalid without a row.
    QVariant getChamberSignalDelay(const zelmor::domain::types::ChamberId& id,
                                   const zelmor::domain::types::SignalId& signal, bool second) const;
    // The chamber has a row for the signal, whichever delays it holds.
    bool hasChamberSignalDelayEntry(const zelmor::domain::types::ChamberId& id,
                                    const zelmor::domain::types::SignalId& signal) const;

private:
    zelmor::domain::api::ISqlConnection* connection = nullptr;
    zelmor::domain::api::IConfigurationDatabaseConnection* configuration = nullptr;
    zelmor::domain::api::IRoomDatabaseConnection* rooms = nullptr;
    SqlToleranceRangeCache toleranceRangeCache;
    SqlStoreChecks checks;
    SqlChamberToleranceRanges toleranceRanges;
};

} // namespace zelmor::base::connection::databaseconnection
