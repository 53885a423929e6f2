#include "Base/Connection/DatabaseConnection/RecordingSignalsAndColumnNamesCache.h"

namespace zelmor::base::connection::databaseconnection {

RecordingSignalsAndColumnNamesCache::RecordingSignalsAndColumnNamesCache(int capacity)
    : capacity(capacity)
{
}

bool RecordingSignalsAndColumnNamesCache::contains(int recording) const
{
    return entries.contains(recording);
}

SignalsAndColumnNames RecordingSignalsAndColumnNamesCache::get(int recording)
{
    return entries.value(recording);
}

void RecordingSignalsAndColumnNamesCache::add(int recording, const SignalsAndColumnNames& mapping)
{
    if (mapping.first.isEmpty() && mapping.second.isEmpty()) {
        return;
    }
    entries.insert(recording, mapping);
}

int RecordingSignalsAndColumnNamesCache::getCapacity() const
{
    return capacity;
}

} // namespace zelmor::base::connection::databaseconnection
