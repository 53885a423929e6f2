#pragma once

#include "Domain/Api/ApplicationTableProperties.h"
#include "Domain/Types/DatabaseConnectionError.h"

#include <QList>
#include <QSharedPointer>
#include <QVariant>

namespace zelmor::domain::types {
class ChamberId;
class RecordingData;
class RecordingId;
} // namespace zelmor::domain::types

namespace zelmor::domain::api {

// The recordings: the heads of measurement series, with the signals they
// record under the chamber's custom names, and meta recordings grouping
// others. Every operation returns its empty value (false, an empty list, a
// null pointer, an invalid QVariant) on failure and reports it through error().
class IRecordingDatabaseConnection
{
public:
    virtual ~IRecordingDatabaseConnection();

    // The new id goes into the argument; the recording's signals get their
    // value columns now, once and for all.
    virtual bool addRecording(zelmor::domain::types::RecordingData& recording) = 0;
    virtual QList<QSharedPointer<zelmor::domain::types::RecordingData>> getAllRecordingData() const = 0;
    // Null when there is no such recording.
    virtual QSharedPointer<zelmor::domain::types::RecordingData>
    getRecordingData(const zelmor::domain::types::RecordingId& id) const = 0;
    // The chamber's active recording; id 0 when none is.
    virtual zelmor::domain::types::RecordingId
    getActiveRecording(const zelmor::domain::types::ChamberId& chamber) const = 0;
    // One column; the property is a single bit.
    virtual QVariant getRecordingProperty(const zelmor::domain::types::RecordingId& id,
                                          const RecordingProperty& property) const = 0;
    virtual bool hasRecordings(const zelmor::domain::types::ChamberId& chamber) const = 0;
    virtual bool setRecordingProperty(const zelmor::domain::types::RecordingData& recording,
                                      const RecordingProperty& property) = 0;
    virtual bool setRecordingProperty(const zelmor::domain::types::RecordingId& id, const RecordingProperty& property,
                                      const QVariant& value) = 0;
    virtual bool updateRecordingProperties(const zelmor::domain::types::RecordingData& recording) = 0;
    // With its recordsets; a recording whose recordsets can't be deleted stays.
    virtual bool deleteRecording(const zelmor::domain::types::RecordingId& id) = 0;
    virtual bool archiveRecording(const zelmor::domain::types::RecordingId& id) = 0;
    virtual bool restoreRecording(const zelmor::domain::types::RecordingId& id) = 0;
    virtual QList<zelmor::domain::types::RecordingId>
    getMetaRecordingSubRecordings(const zelmor::domain::types::RecordingId& meta) const = 0;
    // Replaces the meta recording's sub recordings, all in one transaction.
    virtual bool setMetaRecordingSubRecordings(const zelmor::domain::types::RecordingId& meta,
                                               QList<zelmor::domain::types::RecordingId> recordings) = 0;
    virtual bool deleteMetaRecordingSubRecordings(const zelmor::domain::types::RecordingId& meta) = 0;

    // A signal in the implementations.
    virtual void error(zelmor::domain::types::DatabaseConnectionError error) const = 0;
};

} // namespace zelmor::domain::api
