#pragma once

#include "Base/Connection/DatabaseConnection/SqlStoreChecks.h"
#include "Domain/Api/IInitializing.h"
#include "Domain/Api/IRecordingDatabaseConnection.h"
#include "Domain/Types/DatabaseConnectionError.h"

#include <QLoggingCategory>
#include <QObject>

namespace zelmor::domain::api {
class IChamberDatabaseConnection;
class IRecordsetDatabaseConnection;
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::base::connection::databaseconnection {

Q_DECLARE_LOGGING_CATEGORY(SQLRECORDINGDATABASECONNECTION)

// The recordings in table "recording", and the sub recordings of meta
// recordings in "meta_recording_has_recording". A recording is read with its
// signals from the recordset store, each under the chamber's custom name
// where it has one; the recordset store's own copy keeps the plain names.
// Values that mean "none" (an empty text, chamber -1, user 0, interval -1, an
// invalid time) are written as NULLs of the column's type; times in UTC.
//
// Failures are logged in "zelmor.SqlRecordingDatabaseConnection" and emitted
// through error(). Use on the thread of the connection.
class SqlRecordingDatabaseConnection : public QObject,
                                       public zelmor::domain::api::IRecordingDatabaseConnection,
                                       public zelmor::domain::api::IInitializing
{
    Q_OBJECT

public:
    explicit SqlRecordingDatabaseConnection(QObject* parent = nullptr);
    ~SqlRecordingDatabaseConnection() override;

    // None is owned. True when all three are set.
    virtual bool setDependencies(zelmor::domain::api::ISqlConnection* connection,
                                 zelmor::domain::api::IChamberDatabaseConnection* chambers,
                                 zelmor::domain::api::IRecordsetDatabaseConnection* recordsets);
    // True when the database has the table "recording" (MISSING_TABLE if not).
    bool initialize() override;

    bool addRecording(zelmor::domain::types::RecordingData& recording) override;
    QList<QSharedPointer<zelmor::domain::types::RecordingData>> getAllRecordingData() const override;
    QSharedPointer<zelmor::domain::types::RecordingData>
    getRecordingData(const zelmor::domain::types::RecordingId& id) const override;
    zelmor::domain::types::RecordingId
    getActiveRecording(const zelmor::domain::types::ChamberId& chamber) const override;
    QVariant getRecordingProperty(const zelmor::domain::types::RecordingId& id,
                                  const zelmor::domain::api::RecordingProperty& property) const override;
    bool hasRecordings(const zelmor::domain::types::ChamberId& chamber) const override;
    bool setRecordingProperty(const zelmor::domain::types::RecordingData& recording,
                              const zelmor::domain::api::RecordingProperty& property) override;
    bool setRecordingProperty(const zelmor::domain::types::RecordingId& id,
                              const zelmor::domain::api::RecordingProperty& property, const QVariant& value) override;
    bool updateRecordingProperties(const zelmor::domain::types::RecordingData& recording) override;
    bool deleteRecording(const zelmor::domain::types::RecordingId& id) override;
    bool archiveRecording(const zelmor::domain::types::RecordingId& id) override;
    bool restoreRecording(const zelmor::domain::types::RecordingId& id) override;

    virtual bool areDependenciesSet() const;

    QList<zelmor::domain::types::RecordingId>
    getMetaRecordingSubRecordings(const zelmor::domain::types::RecordingId& meta) const override;
    bool setMetaRecordingSubRecordings(const zelmor::domain::types::RecordingId& meta,
                                       QList<zelmor::domain::types::RecordingId> recordings) override;
    bool deleteMetaRecordingSubRecordings(const zelmor::domain::types::RecordingId& meta) override;

    // The value a property is written with, a typed NULL for "none". The
    // property is a single bit.
    static QVariant getPropertyValue(const zelmor::domain::types::RecordingData& recording,
                                     zelmor::domain::api::RecordingProperty property);

signals:
    void error(zelmor::domain::types::DatabaseConnectionError error) const override;

private:
    // Null for a row of another width.
    QSharedPointer<zelmor::domain::types::RecordingData> parseRecordingDataRow(const QList<QVariant>& row,
                                                                               int columnCount) const;

    zelmor::domain::api::ISqlConnection* connection = nullptr;
    zelmor::domain::api::IChamberDatabaseConnection* chambers = nullptr;
    zelmor::domain::api::IRecordsetDatabaseConnection* recordsets = nullptr;
    SqlStoreChecks checks;
};

} // namespace zelmor::base::connection::databaseconnection
