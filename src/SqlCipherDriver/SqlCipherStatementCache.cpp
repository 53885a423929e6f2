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
    if (it == entries_.end() || it->inUse)
        return nullptr;
    it->inUse = true;
    ++inUse_;
    return &*it;
}

SqlCipherStatementCache::Entry* SqlCipherStatementCache::adopt(const QString& sql, sqlite3_stmt* statement, quint8 kind)
{
    if (entries_.contains(sql))
        return nullptr;
    Entry& entry = entries_[sql];
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
    if (entries_.size() - inUse_ > capacity_)
        evictOldestIdle();
}

void SqlCipherStatementCache::clear()
{
    for (const Entry& entry : qAsConst(entries_))
        sqlite3_finalize(entry.statement);
    entries_.clear();
    inUse_ = 0;
}

int SqlCipherStatementCache::count() const
{
    return entries_.size() - inUse_;
}

int SqlCipherStatementCache::capacity() const
{
    return capacity_;
}

void SqlCipherStatementCache::evictOldestIdle()
{
    auto oldest = entries_.end();
    for (auto it = entries_.begin(); it != entries_.end(); ++it) {
        if (!it->inUse && (oldest == entries_.end() || it->lastReturned < oldest->lastReturned))
            oldest = it;
    }
    if (oldest != entries_.end()) {
        sqlite3_finalize(oldest->statement);
        entries_.erase(oldest);
    }
}

} // namespace zelmor::sqldriver
