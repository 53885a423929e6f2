#pragma once

#include <QHash>
#include <QString>

struct sqlite3_stmt;

namespace zelmor::sqldriver {

// Prepared statements of one connection that no result is using, keyed by
// their SQL text. A statement is taken out while a result runs it, so two
// live results never share one; it comes back reset and with its bindings
// cleared. The least recently returned statement is finalized when the cache
// is full. Internal to the driver.
class SqlCipherStatementCache
{
public:
    explicit SqlCipherStatementCache(int capacity = defaultCapacity_);
    ~SqlCipherStatementCache();

    SqlCipherStatementCache(const SqlCipherStatementCache&) = delete;
    SqlCipherStatementCache& operator=(const SqlCipherStatementCache&) = delete;

    // The cached statement for this text, now owned by the caller, or null.
    sqlite3_stmt* take(const QString& sql);

    // Hands a statement back; the cache resets it, clears its bindings and
    // owns it from now on. A second statement for a text already cached is
    // finalized.
    void give(const QString& sql, sqlite3_stmt* statement);

    // Finalizes every cached statement (before the connection closes).
    void clear();

    int count() const;
    int capacity() const;

    static constexpr int defaultCapacity_ = 64;

private:
    struct Entry
    {
        sqlite3_stmt* statement = nullptr;
        quint64 lastReturned = 0;
    };

    void evictOldest();

    QHash<QString, Entry> entries_;
    quint64 clock_ = 0;
    int capacity_;
};

} // namespace zelmor::sqldriver
