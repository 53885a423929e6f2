#pragma once

#include "Base/Connection/DatabaseConnection/LruCache.h"
#include "Domain/Types/ChamberSignal.h"

#include <QMap>
#include <QStringList>

#include <utility>

namespace zelmor::base::connection::databaseconnection {

// A recording's signals by id and the names of their value columns, in the
// same order.
using SignalsAndColumnNames = std::pair<QMap<int, zelmor::domain::types::ChamberSignal>, QStringList>;

// The mappings of the recordings asked for last, by recording number, each
// costing 1. A recording's mapping never changes, so nothing leaves but by
// eviction. A mapping without signals and columns isn't kept: it may be laid
// down later.
class RecordingSignalsAndColumnNamesCache : public LruCache<int, SignalsAndColumnNames>
{
public:
    static constexpr int defaultCapacity_ = 20;

    explicit RecordingSignalsAndColumnNamesCache(int capacity = defaultCapacity_)
        : LruCache(capacity)
    {
    }

    using LruCache::add;
    void add(int recording, const SignalsAndColumnNames& mapping)
    {
        LruCache::add(recording, mapping, mapping.first.isEmpty() && mapping.second.isEmpty() ? 0 : 1);
    }
};

} // namespace zelmor::base::connection::databaseconnection
