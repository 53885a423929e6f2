#include "SqlCipherDriver/SqlCipherStatementCache_p.h"

#include <sqlite3.h>

namespace zelmor::sqldriver {

SqlCipherStatementCache::SqlCipherStatementCache(int capacity)
    : capacity_(qMax(1, capacity))
{
}

SqlCipherStatementCache::~SqlCipherStatementCache()
{
    clear();
}

SqlCipherStatementCache::Entry* SqlCipherStatementCache::acquire(const QString& sql)
{
    const auto it = entries_.find(sql);
    if (it == entries_.end() || it->second.inUse)
        return nullptr;
    it->second.inUse = true;
    ++inUse_;
    return &it->second;
}

SqlCipherStatementCache::Entry* SqlCipherStatementCache::adopt(const QString& sql, sqlite3_stmt* statement, quint8 kind)
{
    const auto inserted = entries_.emplace(sql, Entry());
    if (!inserted.second)
        return nullptr;
    Entry& entry = inserted.first->second;
    entry.statement = statement;
    entry.kind = kind;
    entry.inUse = true;
    ++inUse_;
    return &entry;
}

void SqlCipherStatementCache::release(Entry* entry)
{
    // The return code of reset repeats the last step's error, which the
    // result has already reported.
    sqlite3_reset(entry->statement);
    sqlite3_clear_bindings(entry->statement);
    entry->inUse = false;
    entry->lastReturned = ++clock_;
    --inUse_;
    if (count() > capacity_)
        evictOldestIdle();
}

void SqlCipherStatementCache::clear()
{
    for (const auto& entry : entries_)
        sqlite3_finalize(entry.second.statement);
    entries_.clear();
    inUse_ = 0;
}

int SqlCipherStatementCache::count() const
{
    return int(entries_.size()) - inUse_;
}

int SqlCipherStatementCache::capacity() const
{
    return capacity_;
}

void SqlCipherStatementCache::evictOldestIdle()
{
    auto oldest = entries_.end();
    for (auto it = entries_.begin(); it != entries_.end(); ++it) {
        if (!it->second.inUse && (oldest == entries_.end() || it->second.lastReturned < oldest->second.lastReturned))
            oldest = it;
    }
    if (oldest != entries_.end()) {
        sqlite3_finalize(oldest->second.statement);
        entries_.erase(oldest);
    }
}

} // namespace zelmor::sqldriver
