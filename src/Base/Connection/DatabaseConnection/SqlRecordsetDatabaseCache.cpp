#include "Base/Connection/DatabaseConnection/SqlRecordsetDatabaseCache.h"

namespace zelmor::base::connection::databaseconnection {

using zelmor::domain::types::RecordingId;

SqlRecordsetDatabaseCache::SqlRecordsetDatabaseCache(int capacity)
    : capacity(capacity)
{
}

bool SqlRecordsetDatabaseCache::contains(const RecordingId& recording) const
{
    return entries.contains(recording);
}

QList<QList<QVariant>> SqlRecordsetDatabaseCache::get(const RecordingId& recording)
{
    return entries.value(recording);
}

void SqlRecordsetDatabaseCache::add(const RecordingId& recording, const QList<QList<QVariant>>& rows)
{
    if (rows.isEmpty() || rows.size() > capacity) {
        return;
    }
    entries.insert(recording, rows);
}

void SqlRecordsetDatabaseCache::remove(const RecordingId& recording)
{
    entries.remove(recording);
}

int SqlRecordsetDatabaseCache::getCapacity() const
{
    return capacity;
}

int SqlRecordsetDatabaseCache::getCost() const
{
    int cost = 0;
    for (const QList<QList<QVariant>>& rows : entries) {
        cost += rows.size();
    }
    return cost;
}

} // namespace zelmor::base::connection::databaseconnection
