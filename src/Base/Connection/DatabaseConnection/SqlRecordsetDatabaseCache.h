#pragma once

#include "Base/Connection/DatabaseConnection/LruCache.h"
#include "Domain/Types/RecordingId.h"

#include <QList>
#include <QVariant>

namespace zelmor::base::connection::databaseconnection {

// The raw rows of the recordings read last, as read: a recording costs its
// number of rows, and the least recently used recordings make room. An empty
// list isn't kept; nor is one that alone is over the capacity, which also
// drops what the recording had here before.
class SqlRecordsetDatabaseCache : public LruCache<zelmor::domain::types::RecordingId, QList<QList<QVariant>>>
{
public:
    explicit SqlRecordsetDatabaseCache(int capacity)
        : LruCache(capacity)
    {
    }

    using LruCache::add;
    void add(const zelmor::domain::types::RecordingId& recording, const QList<QList<QVariant>>& rows)
    {
        LruCache::add(recording, rows, rows.size());
    }
};

} // namespace zelmor::base::connection::databaseconnection
