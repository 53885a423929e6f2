#pragma once

#include "Base/Connection/DatabaseConnection/LruCache.h"
#include "Domain/Types/ToleranceRangeHistory.h"

namespace zelmor::base::connection::databaseconnection {

// The tolerance range histories of the chambers last asked for, by chamber
// number, each chamber costing 1. The recordset store asks for a range with
// every row it decodes; this keeps it from reading the history again.
//
// Threads: as LruCache, every call locks, so the recordset store's worker
// threads may read it while the store's thread writes. The chamber store
// empties it whole at every new range.
class SqlToleranceRangeCache : public LruCache<int, zelmor::domain::types::ToleranceRangeHistory>
{
public:
    static constexpr int defaultCapacity_ = 50;

    explicit SqlToleranceRangeCache(int capacity = defaultCapacity_)
        : LruCache(capacity)
    {
    }

    using LruCache::add;
    void add(int chamber, const zelmor::domain::types::ToleranceRangeHistory& history)
    {
        LruCache::add(chamber, history, 1);
    }
};

} // namespace zelmor::base::connection::databaseconnection
