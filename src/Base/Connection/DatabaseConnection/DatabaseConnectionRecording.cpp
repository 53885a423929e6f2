#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/SqlRecordingDatabaseConnection.h"
#include "Domain/Types/ChamberId.h"
#include "Domain/Types/RecordingData.h"
#include "Domain/Types/RecordingId.h"

// The recording store's interface, passed on call by call.

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;
using zelmor::domain::api::RecordingProperty;

bool DatabaseConnection::addRecording(RecordingData& recording)
{
    return recordingStore->addRecording(recording);
}

QList<QSharedPointer<RecordingData>> DatabaseConnection::getAllRecordingData() const
{
    return recordingStore->getAllRecordingData();
}

QSharedPointer<RecordingData> DatabaseConnection::getRecordingData(const RecordingId& id) const
{
    return recordingStore->getRecordingData(id);
}

RecordingId DatabaseConnection::getActiveRecording(const ChamberId& chamber) const
{
    return recordingStore->getActiveRecording(chamber);
}

QVariant DatabaseConnection::getRecordingProperty(const RecordingId& id, const RecordingProperty& property) const
{
    return recordingStore->getRecordingProperty(id, property);
}

bool DatabaseConnection::hasRecordings(const ChamberId& chamber) const
{
    return recordingStore->hasRecordings(chamber);
}

bool DatabaseConnection::setRecordingProperty(const RecordingData& recording, const RecordingProperty& property)
{
    return recordingStore->setRecordingProperty(recording, property);
}

bool DatabaseConnection::setRecordingProperty(const RecordingId& id, const RecordingProperty& property,
                                              const QVariant& value)
{
    return recordingStore->setRecordingProperty(id, property, value);
}

bool DatabaseConnection::updateRecordingProperties(const RecordingData& recording)
{
    return recordingStore->updateRecordingProperties(recording);
}

bool DatabaseConnection::deleteRecording(const RecordingId& id)
{
    return recordingStore->deleteRecording(id);
}

bool DatabaseConnection::archiveRecording(const RecordingId& id)
{
    return recordingStore->archiveRecording(id);
}

bool DatabaseConnection::restoreRecording(const RecordingId& id)
{
    return recordingStore->restoreRecording(id);
}

QList<RecordingId> DatabaseConnection::getMetaRecordingSubRecordings(const RecordingId& meta) const
{
    return recordingStore->getMetaRecordingSubRecordings(meta);
}

bool DatabaseConnection::setMetaRecordingSubRecordings(const RecordingId& meta, QList<RecordingId> recordings)
{
    return recordingStore->setMetaRecordingSubRecordings(meta, recordings);
}

bool DatabaseConnection::deleteMetaRecordingSubRecordings(const RecordingId& meta)
{
    return recordingStore->deleteMetaRecordingSubRecordings(meta);
}

} // namespace zelmor::base::connection::databaseconnection
