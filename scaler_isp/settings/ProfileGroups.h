#ifndef SCALER_ISP_SETTINGS_PROFILE_GROUPS_H
#define SCALER_ISP_SETTINGS_PROFILE_GROUPS_H

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "scaler_isp/settings/NameIndex.h"
#include "scaler_isp/settings/ProfileEdit.h"

/// The lines of an INI text, indexed so that many writes cost one pass.
///
/// A group is a line without "=" and the key lines that follow it. For a plain write the writer's
/// walk only ever stops at groups: a section's keys are those of the group its header leads, and a
/// key is added at the end of a group, which is just before the next line without "=".
class ProfileGroups {
  public:
    /// The text must outlive the object, and so must the texts of every write.
    explicit ProfileGroups(std::string_view text);

    /// Whether the text ended at a line over the limit.
    bool StoppedEarly() const {
        return m_stoppedEarly;
    }

    /// Whether Apply may take the write: header and key line are read again as what they are.
    static bool IsPlain(const KeyWrite<char> &write);

    /// Applies a plain write. False when a line became too long to be read again: the groups are of
    /// no use then.
    bool Apply(const KeyWrite<char> &write);

    std::string Text() const;

  private:
    struct KeyLine {
        std::string_view start; ///< what stands before an "="; of the text's own lines the last one
        std::string_view value; ///< what stands behind it
    };
    struct Group {
        std::string_view head; ///< null in the first group, which only holds what stands before
        std::vector<KeyLine> lines;
        bool indexed = false;
        NameIndex firstByName; ///< once it is indexed
    };

    using Heads = std::vector<std::size_t>; ///< groups, ascending

    void Append(std::string_view head);
    Heads *FindHeads(std::string_view section);
    bool ApplyToSection(const Heads &heads, const KeyWrite<char> &write);
    void AddKey(Group &group, const KeyWrite<char> &write);
    bool ReplaceValue(KeyLine &line, std::string_view value);
    void TrimFresh();
    static void Index(Group &group);

    bool m_stoppedEarly = false;
    std::deque<Group> m_groups;
    std::unordered_map<std::string_view, Heads> m_groupsByHead;
    std::string_view m_lastSection; ///< most writes are for the section of the one before
    Heads *m_lastHeads = nullptr;   ///< its groups
    std::deque<std::string> m_made; ///< owns texts that are neither of the file nor of a write
    std::vector<std::pair<Group *, std::size_t>> m_fresh; ///< lines of the last write, untrimmed
};

#endif
