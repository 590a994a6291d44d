#ifndef SCALER_ISP_SETTINGS_PROFILE_GROUPS_H
#define SCALER_ISP_SETTINGS_PROFILE_GROUPS_H

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "scaler_isp/settings/ProfileEdit.h"

/// The lines of an INI text, indexed so that many writes cost one pass.
///
/// A group is a line without "=" and the key lines that follow it. For a plain write the writer's
/// walk only ever stops at groups: a section's keys are those of the group its header leads, and a
/// key is added at the end of a group, which is just before the next line without "=".
template <class Char> class ProfileGroups {
  public:
    using View = std::basic_string_view<Char>;
    using String = std::basic_string<Char>;

    /// The text must outlive the object, and so must the texts of every write.
    explicit ProfileGroups(View text);

    /// Whether Apply may take the write: header and key line are read again as exactly what they
    /// are.
    static bool IsPlain(const KeyWrite<Char> &write);

    /// Applies a plain write. False when a line became too long to be read again: the groups are of
    /// no use then.
    bool Apply(const KeyWrite<Char> &write);

    String Text() const;

  private:
    struct Group {
        View head;               ///< null in the first group, which only holds what stands before
        std::vector<View> lines; ///< the key lines
        bool indexed = false;
        std::unordered_map<View, std::size_t> firstByName; ///< raw names, once it is indexed
    };

    void Append(View head);
    void Index(Group &group);
    bool ApplyToSection(const std::vector<std::size_t> &heads, const KeyWrite<Char> &write);
    void AddKey(std::size_t group, const KeyWrite<Char> &write);
    bool ReplaceValue(std::size_t group, std::size_t line, View value);
    void TrimFresh();

    std::vector<Group> m_groups;
    std::unordered_map<View, std::vector<std::size_t>> m_groupsByHead;
    std::deque<String> m_made; ///< owns the lines that were written
    std::vector<std::pair<std::size_t, std::size_t>>
        m_fresh; ///< lines of the last write, untrimmed
};

#endif
