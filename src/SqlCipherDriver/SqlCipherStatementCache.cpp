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

sqlite3_stmt* SqlCipherStatementCache::take(const QString& sql)
{
    const auto it = entries_.find(sql);
    if (it == entries_.end())
        return nullptr;
    sqlite3_stmt* statement = it->statement;
    entries_.erase(it);
    return statement;
}

void SqlCipherStatementCache::give(const QString& sql, sqlite3_stmt* statement)
{
    if (!statement)
        return;
    // The return code of reset repeats the last step's error, which the
    // result has already reported.
    sqlite3_reset(statement);
    sqlite3_clear_bindings(statement);

    auto it = entries_.find(sql);
    if (it != entries_.end()) {
        sqlite3_finalize(statement);
        it->lastReturned = ++clock_;
        return;
    }
    if (entries_.size() >= capacity_)
        evictOldest();
    entries_.insert(sql, Entry{statement, ++clock_});
}

void SqlCipherStatementCache::clear()
{
    for (const Entry& entry : qAsConst(entries_))
        sqlite3_finalize(entry.statement);
    entries_.clear();
}

int SqlCipherStatementCache::count() const
{
    return entries_.size();
}

int SqlCipherStatementCache::capacity() const
{
    return capacity_;
}

void SqlCipherStatementCache::evictOldest()
{
    auto oldest = entries_.begin();
    for (auto it = entries_.begin(); it != entries_.end(); ++it) {
        if (it->lastReturned < oldest->lastReturned)
            oldest = it;
    }
    if (oldest != entries_.end()) {
        sqlite3_finalize(oldest->statement);
        entries_.erase(oldest);
    }
}

} // namespace zelmor::sqldriver
