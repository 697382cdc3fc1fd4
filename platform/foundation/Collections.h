// A map and a vector that tell of their changes.
//
// A change event is raised after the change, on the changing thread; an
// exception of a subscriber goes to whoever changed the collection, which is
// then changed all the same. Whoever calls foreign code while walking a
// collection walks a `Snapshot`: iterators end with the next change.
// Threads: one at a time; the owner's lock is the owner's affair.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "platform/foundation/Event.h"
#include "platform/foundation/Exception.h"

namespace Windows::Foundation::Collections {

enum class CollectionChange { Reset = 0, ItemInserted = 1, ItemRemoved = 2, ItemChanged = 3 };

// `Key` is empty for `Reset`.
template <class K>
struct MapChangedEventArgs {
    CollectionChange Change = CollectionChange::Reset;
    std::optional<K> Key;
};

// Ordered by key.
template <class K, class V>
class ObservableMap {
public:
    using Changed = MapChangedEventArgs<K>;
    Event<const ObservableMap&, const Changed&> MapChanged;

    std::size_t Size() const { return m_items.size(); }
    bool HasKey(const K& key) const { return m_items.find(key) != m_items.end(); }

    // The value under the key, or null. Good until the next change.
    const V* Find(const K& key) const {
        const auto it = m_items.find(key);
        return it == m_items.end() ? nullptr : &it->second;
    }

    // Raises `OutOfBoundsException` for a key that is not there.
    V Lookup(const K& key) const {
        if (const V* pValue = Find(key)) {
            return *pValue;
        }
        throw Platform::OutOfBoundsException("no such key");
    }

    // Replaces what was under the key. Returns whether it replaced something.
    bool Insert(const K& key, V value) {
        const bool bNew = m_items.insert_or_assign(key, std::move(value)).second;
        Raise(bNew ? CollectionChange::ItemInserted : CollectionChange::ItemChanged, key);
        return !bNew;
    }

    // Raises `OutOfBoundsException` for a key that is not there.
    void Remove(const K& key) {
        if (m_items.erase(key) == 0) {
            throw Platform::OutOfBoundsException("no such key");
        }
        Raise(CollectionChange::ItemRemoved, key);
    }

    void Clear() {
        m_items.clear();
        Raise(CollectionChange::Reset, std::nullopt);
    }

    std::vector<std::pair<K, V>> Snapshot() const { return {m_items.begin(), m_items.end()}; }
    auto begin() const { return m_items.begin(); }
    auto end() const { return m_items.end(); }

private:
    void Raise(CollectionChange eChange, std::optional<K> key) {
        MapChanged.raise(*this, Changed{eChange, std::move(key)});
    }

    std::map<K, V> m_items;
};

// `Index` is 0 for `Reset`.
struct VectorChangedEventArgs {
    CollectionChange Change = CollectionChange::Reset;
    std::uint32_t Index = 0;
};

// Every index out of range raises `OutOfBoundsException`.
template <class T>
class ObservableVector {
public:
    Event<const ObservableVector&, const VectorChangedEventArgs&> VectorChanged;

    std::uint32_t Size() const { return static_cast<std::uint32_t>(m_items.size()); }

    const T& GetAt(std::uint32_t nIndex) const {
        CheckIndex(nIndex, Size());
        return m_items[nIndex];
    }

    // Index of the first equal item.
    std::optional<std::uint32_t> IndexOf(const T& item) const {
        const auto it = std::find(m_items.begin(), m_items.end(), item);
        if (it == m_items.end()) {
            return std::nullopt;
        }
        return static_cast<std::uint32_t>(it - m_items.begin());
    }

    void SetAt(std::uint32_t nIndex, T item) {
        CheckIndex(nIndex, Size());
        m_items[nIndex] = std::move(item);
        Raise(CollectionChange::ItemChanged, nIndex);
    }

    // `nIndex` may be the size: appends.
    void InsertAt(std::uint32_t nIndex, T item) {
        CheckIndex(nIndex, std::uint64_t{Size()} + 1);
        m_items.insert(m_items.begin() + nIndex, std::move(item));
        Raise(CollectionChange::ItemInserted, nIndex);
    }

    void Append(T item) { InsertAt(Size(), std::move(item)); }

    void RemoveAt(std::uint32_t nIndex) {
        CheckIndex(nIndex, Size());
        m_items.erase(m_items.begin() + nIndex);
        Raise(CollectionChange::ItemRemoved, nIndex);
    }

    void RemoveAtEnd() {
        CheckIndex(0, Size());
        RemoveAt(Size() - 1);
    }

    void Clear() {
        m_items.clear();
        Raise(CollectionChange::Reset, 0);
    }

    std::vector<T> Snapshot() const { return m_items; }
    auto begin() const { return m_items.begin(); }
    auto end() const { return m_items.end(); }

private:
    static void CheckIndex(std::uint64_t nIndex, std::uint64_t nEnd) {
        if (nIndex >= nEnd) {
            throw Platform::OutOfBoundsException();
        }
    }
    void Raise(CollectionChange eChange, std::uint32_t nIndex) {
        VectorChanged.raise(*this, VectorChangedEventArgs{eChange, nIndex});
    }

    std::vector<T> m_items;
};

}
