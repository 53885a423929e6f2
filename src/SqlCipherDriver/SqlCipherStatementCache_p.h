#pragma once

#include <QByteArray>
#include <QHash>
#include <QSqlRecord>
#include <QString>

#include <unordered_map>

struct sqlite3_stmt;

namespace zelmor::sqldriver {

// Prepared statements of one connection, keyed by their SQL text, so that a
// text prepared again (a new QSqlQuery per call) skips the engine's parser.
// The cache owns the statements of its entries. A result borrows an entry
// while it runs the statement, so two live results never share one: a second
// result with the same text gets nothing and prepares its own. A returned
// statement is reset and its bindings cleared. Beyond the capacity, the
// least recently returned idle entry is finalized. Internal to the driver.
class SqlCipherStatementCache
{
public:
    struct Entry
    {
        sqlite3_stmt* statement = nullptr;
        quint8 kind = 0;            // what the result classified the text as
        QSqlRecord record;          // the record a result built for it ...
        QByteArray recordSignature; // ... and the column names and types it came from
        bool inUse = false;
        quint64 lastReturned = 0;
    };

    explicit SqlCipherStatementCache(int capacity = defaultCapacity_);
    ~SqlCipherStatementCache();

    SqlCipherStatementCache(const SqlCipherStatementCache&) = delete;
    SqlCipherStatementCache& operator=(const SqlCipherStatementCache&) = delete;

    // The idle entry for this text, now marked in use; null if there is none.
    Entry* acquire(const QString& sql);

    // Takes a freshly prepared statement over as a new entry in use; null
    // (and the caller keeps the statement) when the text has an entry already.
    Entry* adopt(const QString& sql, sqlite3_stmt* statement, quint8 kind);

    // Gives a borrowed entry back.
    void release(Entry* entry);

    // Finalizes every statement, borrowed ones too: call when no result holds
    // an entry any more (before the connection closes).
    void clear();

    // Idle entries.
    int count() const;
    int capacity() const;

    static constexpr int defaultCapacity_ = 64;

private:
    void evictOldestIdle();

    struct TextHash
    {
        size_t operator()(const QString& text) const { return qHash(text); }
    };
    // Results hold Entry pointers: the standard's node-based map keeps an
    // element's address when others are added or removed, or the table grows.
    std::unordered_map<QString, Entry, TextHash> entries_;
    quint64 clock_ = 0;
    int capacity_;
    int inUse_ = 0;
};

} // namespace zelmor::sqldriver
