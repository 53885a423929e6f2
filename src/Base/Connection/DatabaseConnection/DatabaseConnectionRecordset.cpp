#include "Base/Connection/DatabaseConnection/DatabaseConnection.h"

#include "Base/Connection/DatabaseConnection/SqlRecordsetDatabaseConnection.h"
#include "Domain/Types/ChamberSignal.h"
#include "Domain/Types/RecordingId.h"
#include "Domain/Types/Recordset.h"
#include "Domain/Types/RecordsetComment.h"
#include "Domain/Types/RecordsetId.h"
#include "Domain/Types/TimeSpan.h"

// The recordset store's interface, passed on call by call.

namespace zelmor::base::connection::databaseconnection {

using namespace zelmor::domain::types;

bool DatabaseConnection::addRecordset(Recordset& recordset)
{
    return recordsetStore->addRecordset(recordset);
}

bool DatabaseConnection::addRecordsetComment(const RecordsetComment& comment)
{
    return recordsetStore->addRecordsetComment(comment);
}

bool DatabaseConnection::deleteRecordsetComment(const RecordsetId& id)
{
    return recordsetStore->deleteRecordsetComment(id);
}

bool DatabaseConnection::deleteRecordset(const RecordsetId& id)
{
    return recordsetStore->deleteRecordset(id);
}

bool DatabaseConnection::deleteAllRecordsets(const RecordingId& recording)
{
    return recordsetStore->deleteAllRecordsets(recording);
}

Recordset DatabaseConnection::getRecordset(const RecordsetId& id)
{
    return recordsetStore->getRecordset(id);
}

QList<Recordset> DatabaseConnection::getLatestNRecordsets(const RecordingId& recording, int count,
                                                          const QDateTime& before)
{
    return recordsetStore->getLatestNRecordsets(recording, count, before);
}

QList<Recordset> DatabaseConnection::getNRecordsets(const RecordingId& recording, int count, const RecordsetId& before)
{
    return recordsetStore->getNRecordsets(recording, count, before);
}

QList<Recordset> DatabaseConnection::getRecordsets(const RecordingId& recording, const TimeSpan& span,
                                                   long long maxCount)
{
    return recordsetStore->getRecordsets(recording, span, maxCount);
}

QList<Recordset> DatabaseConnection::getRecordsets(const RecordingId& recording, long long start, long long end,
                                                   long long maxCount)
{
    return recordsetStore->getRecordsets(recording, start, end, maxCount);
}

RecordsetComment DatabaseConnection::getRecordsetComment(const RecordsetId& id) const
{
    return recordsetStore->getRecordsetComment(id);
}

bool DatabaseConnection::matchSignalRecordsetColumn(const RecordingId& recording, const QList<SignalId>& signalIds)
{
    return recordsetStore->matchSignalRecordsetColumn(recording, signalIds);
}

QMap<int, ChamberSignal> DatabaseConnection::getRecordingSignals(const RecordingId& recording) const
{
    return recordsetStore->getRecordingSignals(recording);
}

bool DatabaseConnection::addRecordsToQuery(QList<Recordset>& recordsets) const
{
    return recordsetStore->addRecordsToQuery(recordsets);
}

long long DatabaseConnection::getRecordsetLenght(const RecordingId& recording)
{
    return recordsetStore->getRecordsetLenght(recording);
}

QList<Recordset> DatabaseConnection::getRecordsetsWithImagePath(const RecordingId& recording, const TimeSpan& span,
                                                                long long maxCount)
{
    return recordsetStore->getRecordsetsWithImagePath(recording, span, maxCount);
}

} // namespace zelmor::base::connection::databaseconnection
