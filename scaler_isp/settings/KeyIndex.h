#ifndef SCALER_ISP_SETTINGS_KEY_INDEX_H
#define SCALER_ISP_SETTINGS_KEY_INDEX_H

#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

/// Finds the lines of a key, by a hash table without an allocation per key. Keys must outlive it.
class KeyIndex {
  public:
    static constexpr std::size_t kNone = std::string_view::npos;

    struct Entry {
        std::string_view key;
        std::size_t line = kNone;  ///< the first in the text
        std::size_t added = kNone; ///< the first of the added lines
    };

    /// The entry of a key, created if it is missing.
    Entry &operator[](std::string_view key) {
        if (m_slots.size() < 2 * (m_entries.size() + 1)) {
            Grow();
        }
        std::size_t &slot = Slot(key);
        if (slot == kNone) {
            slot = m_entries.size();
            m_entries.push_back({key});
        }
        return m_entries[slot];
    }

    /// The entry of a key, or null.
    const Entry *Find(std::string_view key) {
        const std::size_t slot = m_slots.empty() ? kNone : Slot(key);
        return slot != kNone ? &m_entries[slot] : nullptr;
    }

    void Clear() {
        m_slots.clear();
        m_entries.clear();
    }

  private:
    /// The slot of the key, or the empty slot where it belongs.
    std::size_t &Slot(std::string_view key) {
        std::size_t at = std::hash<std::string_view>()(key);
        while (true) {
            std::size_t &slot = m_slots[at++ & (m_slots.size() - 1)];
            if (slot == kNone || m_entries[slot].key == key) {
                return slot;
            }
        }
    }

    void Grow() {
        // Every size is a power of two, because Slot masks the hash.
        constexpr std::size_t kInitialSlots = 4096;
        m_slots.assign(m_slots.empty() ? kInitialSlots : 2 * m_slots.size(), kNone);
        for (std::size_t i = 0; i < m_entries.size(); ++i) {
            Slot(m_entries[i].key) = i;
        }
    }

    std::vector<std::size_t> m_slots; ///< indices of entries; at least half are empty
    std::vector<Entry> m_entries;
};

#endif
