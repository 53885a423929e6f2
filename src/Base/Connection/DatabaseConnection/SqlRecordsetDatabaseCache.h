#pragma once

#include "Domain/Types/RecordingId.h"

#include <QHash>
#include <QList>
#include <QVariant>

namespace zelmor::base::connection::databaseconnection {

// The raw rows of recordings, as read: the least recently used recording goes
// first when rows must make room. A recording costs its number of rows. Used
// on the connection's thread only.
class SqlRecordsetDatabaseCache
{
public:
    explicit SqlRecordsetDatabaseCache(int capacity);

    bool contains(const zelmor::domain::types::RecordingId& recording) const;
    // A copy; makes the entry the most recent. Empty when missing.
    QList<QList<QVariant>> get(const zelmor::domain::types::RecordingId& recording);
    // Replaces an entry of the recording. An empty list isn't kept, nor one
    // that alone is over the capacity.
    void add(const zelmor::domain::types::RecordingId& recording, const QList<QList<QVariant>>& rows);
    void remove(const zelmor::domain::types::RecordingId& recording);

    int getCapacity() const;
    // The rows held.
    int getCost() const;

private:
    // Until the shared least-recently-used cache is in: nothing is evicted.
    QHash<int, QList<QList<QVariant>>> entries;
    int capacity;
};

} // namespace zelmor::base::connection::databaseconnection
