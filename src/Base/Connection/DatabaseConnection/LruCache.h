#pragma once

#include <QMap>
#include <QMutex>
#include <QMutexLocker>
#include <QtGlobal>

#include <list>
#include <optional>

namespace zelmor::base::connection::databaseconnection {

// A least-recently-used cache whose capacity counts costs that the caller
// gives with each entry: 1 per entry for a cache of so many entries, or the
// number of rows for a cache of so many rows.
//
//     LruCache<int, QStringList> names(50);
//     names.add(7, {"a", "b"}, 1);
//     const QStringList cached = names.get(7); // now the most recent
//
// - get() and find() hand out a copy and make the entry the most recent.
// - add() replaces an entry of the same key, then evicts from the least
//   recent end until the costs fit. An entry of a cost below 1 is ignored,
//   whatever the cache held for its key; one above the capacity is not kept,
//   and the key's old entry goes with it, so that a stale value never stays.
//
// Threads: every member may be called from any thread; each call holds the
// cache's mutex for its whole length. Reading counts as writing here, since
// get() reorders the entries. Values are copied under the lock; Qt's
// implicitly shared containers make that copy cheap and safe to read on the
// caller's thread. Key needs operator<.
template<typename Key, typename Value>
class LruCache
{
public:
    explicit LruCache(qint64 capacity)
        : capacity_(capacity)
    {
    }

    LruCache(const LruCache&) = delete;
    LruCache& operator=(const LruCache&) = delete;

    qint64 getCapacity() const { return capacity_; }

    // The value, made the most recent; nothing when the key isn't cached.
    std::optional<Value> find(const Key& key)
    {
        const QMutexLocker locker(&mutex_);
        const auto entry = entries_.find(key);
        if (entry == entries_.end()) {
            return std::nullopt;
        }
        touch(entry.value());
        return entry.value().value;
    }

    // The value, made the most recent; a default value when the key isn't cached.
    Value get(const Key& key)
    {
        std::optional<Value> value = find(key);
        return value ? *value : Value();
    }

    bool contains(const Key& key) const
    {
        const QMutexLocker locker(&mutex_);
        return entries_.contains(key);
    }

    void add(const Key& key, const Value& value, qint64 cost)
    {
        if (cost < 1) {
            return;
        }
        const QMutexLocker locker(&mutex_);
        removeEntry(key);
        if (cost > capacity_) {
            return;
        }
        while (totalCost_ + cost > capacity_ && !order_.empty()) {
            removeEntry(order_.back());
        }
        order_.push_front(key);
        entries_.insert(key, Entry{value, cost, order_.begin()});
        totalCost_ += cost;
    }

    void remove(const Key& key)
    {
        const QMutexLocker locker(&mutex_);
        removeEntry(key);
    }

    void clear()
    {
        const QMutexLocker locker(&mutex_);
        entries_.clear();
        order_.clear();
        totalCost_ = 0;
    }

    int size() const
    {
        const QMutexLocker locker(&mutex_);
        return entries_.size();
    }

    qint64 getTotalCost() const
    {
        const QMutexLocker locker(&mutex_);
        return totalCost_;
    }

private:
    struct Entry
    {
        Value value;
        qint64 cost;
        // Its place in order_: moved to the front without a search.
        typename std::list<Key>::iterator position;
    };

    void touch(Entry& entry) { order_.splice(order_.begin(), order_, entry.position); }

    void removeEntry(const Key& key)
    {
        const auto entry = entries_.find(key);
        if (entry == entries_.end()) {
            return;
        }
        totalCost_ -= entry.value().cost;
        order_.erase(entry.value().position);
        entries_.erase(entry);
    }

    const qint64 capacity_;
    mutable QMutex mutex_;
    QMap<Key, Entry> entries_;
    // The most recent first.
    std::list<Key> order_;
    qint64 totalCost_ = 0;
};

} // namespace zelmor::base::connection::databaseconnection
