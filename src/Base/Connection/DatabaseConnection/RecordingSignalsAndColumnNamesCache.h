#pragma once

#include "Domain/Types/ChamberSignal.h"

#include <QHash>
#include <QMap>
#include <QStringList>

#include <utility>

namespace zelmor::base::connection::databaseconnection {

// A recording's signals by id and the names of their value columns, in the
// same order.
using SignalsAndColumnNames = std::pair<QMap<int, zelmor::domain::types::ChamberSignal>, QStringList>;

// The mapping of the most recently used recordings, each costing 1. Nothing
// leaves it but by eviction: a recording's mapping never changes. Used on the
// connection's thread only.
class RecordingSignalsAndColumnNamesCache
{
public:
    explicit RecordingSignalsAndColumnNamesCache(int capacity = 20);

    bool contains(int recording) const;
    // A copy; makes the entry the most recent. Empty when missing.
    SignalsAndColumnNames get(int recording);
    // Replaces an entry of the recording; a mapping without signals and
    // columns isn't kept.
    void add(int recording, const SignalsAndColumnNames& mapping);

    int getCapacity() const;

private:
    // Until the shared least-recently-used cache is in: nothing is evicted.
    QHash<int, SignalsAndColumnNames> entries;
    int capacity;
};

} // namespace zelmor::base::connection::databaseconnection
