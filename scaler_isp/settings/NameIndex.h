#ifndef SCALER_ISP_SETTINGS_NAME_INDEX_H
#define SCALER_ISP_SETTINGS_NAME_INDEX_H

#include <cstddef>
#include <functional>
#include <limits>
#include <string_view>
#include <vector>

/// Finds a number by its name: a hash table in one piece of memory, because a list of writes looks
/// up and adds a name for every key. Of equal names the first one counts. Names are borrowed.
class NameIndex {
  public:
    static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

    std::size_t Find(std::string_view name) const {
        return m_places.empty() ? kNone : m_places[PlaceOf(name)].number;
    }

    void Add(std::string_view name, std::size_t number) {
        if (m_places.size() < 2 * (m_used + 1)) {
            Grow();
        }
        Place &place = m_places[PlaceOf(name)];
        if (place.number == kNone) {
            place = {name, number};
            ++m_used;
        }
    }

  private:
    struct Place {
        std::string_view name;
        std::size_t number = kNone;
    };

    static constexpr std::size_t kFirstSize = 64; // sizes are powers of two, at most half in use

    /// The place of a name, or the free one where it belongs.
    std::size_t PlaceOf(std::string_view name) const {
        const std::size_t mask = m_places.size() - 1;
        std::size_t place = std::hash<std::string_view>()(name) & mask;
        while (m_places[place].number != kNone && m_places[place].name != name) {
            place = (place + 1) & mask;
        }
        return place;
    }

    void Grow() {
        std::vector<Place> former(m_places.empty() ? kFirstSize : 4 * m_places.size());
        former.swap(m_places);
        for (const Place &place : former) {
            if (place.number != kNone) {
                m_places[PlaceOf(place.name)] = place;
            }
        }
    }

    std::vector<Place> m_places;
    std::size_t m_used = 0;
};

#endif
