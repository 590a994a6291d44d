#include "scaler_isp/settings/ProfileGroups.h"

#include <algorithm>

#include "scaler_isp/settings/ProfileLines.h"

namespace {

bool IsPlainName(std::string_view name) {
    return std::none_of(name.begin(), name.end(), [](char c) { return c == '=' || c == '\n'; });
}

} // namespace

ProfileGroups::ProfileGroups(std::string_view text) : m_groups(1) {
    ProfileLineReader<char> reader(text);
    std::string_view line;
    while (reader.Next(line)) {
        const std::size_t equals = FindLastEquals(line);
        if (equals == std::string_view::npos) {
            Append(line);
        } else {
            m_groups.back().lines.push_back({line.substr(0, equals), line.substr(equals + 1)});
        }
    }
    m_stoppedEarly = reader.StoppedEarly();
}

bool ProfileGroups::IsPlain(const KeyWrite<char> &write) {
    const bool header = IsPlainName(write.section) && write.section.size() + 2 <= kProfileLineLimit;
    const bool key = IsPlainName(write.key) && (write.key.empty() || write.key.front() != ' ');
    return header && key && write.value.find('\n') == std::string_view::npos &&
           write.key.size() + 1 + write.value.size() <= kProfileLineLimit;
}

bool ProfileGroups::Apply(const KeyWrite<char> &write) {
    TrimFresh();
    if (const Heads *heads = FindHeads(write.section)) {
        return ApplyToSection(*heads, write);
    }
    m_made.push_back(ProfileHeader(write.section));
    Append(m_made.back());
    AddKey(m_groups.back(), write);
    return true;
}

ProfileGroups::Heads *ProfileGroups::FindHeads(std::string_view section) {
    if (m_lastHeads == nullptr || section != m_lastSection) {
        const auto found = m_groupsByHead.find(ProfileHeader(section));
        m_lastHeads = found != m_groupsByHead.end() ? &found->second : nullptr;
        m_lastSection = section;
    }
    return m_lastHeads;
}

bool ProfileGroups::ApplyToSection(const Heads &heads, const KeyWrite<char> &write) {
    bool written = false;
    std::size_t next = 0; // groups before this one are behind the walk
    for (const std::size_t at : heads) {
        if (at < next) {
            continue;
        }
        Group &group = m_groups[at];
        Index(group);
        const std::size_t found = group.firstByName.Find(write.key);
        if (found != NameIndex::kNone) {
            if (!ReplaceValue(group.lines[found], write.value)) {
                return false;
            }
            m_fresh.emplace_back(&group, found);
            written = true;
            continue;
        }
        if (!written) {
            AddKey(group, write);
            written = true;
        }
        // The line that ends the section is passed over, even if it is the same header.
        next = at + 2;
    }
    return true;
}

std::string ProfileGroups::Text() const {
    std::size_t size = 0;
    for (const Group &group : m_groups) {
        size += group.head.size() + 1;
        for (const KeyLine &line : group.lines) {
            size += line.start.size() + line.value.size() + 2;
        }
    }
    std::string text;
    text.reserve(size);
    for (const Group &group : m_groups) {
        if (group.head.data() != nullptr) {
            text.append(group.head) += '\n';
        }
        for (const KeyLine &line : group.lines) {
            text.append(line.start) += '=';
            text.append(line.value) += '\n';
        }
    }
    return text;
}

void ProfileGroups::Append(std::string_view head) {
    m_groupsByHead[head].push_back(m_groups.size());
    m_groups.emplace_back().head = head;
}

void ProfileGroups::Index(Group &group) {
    if (group.indexed) {
        return;
    }
    group.indexed = true;
    for (std::size_t i = 0; i < group.lines.size(); ++i) {
        const std::string_view start = group.lines[i].start;
        group.firstByName.Add(start.substr(0, start.find('=')), i);
    }
}

void ProfileGroups::AddKey(Group &group, const KeyWrite<char> &write) {
    m_fresh.emplace_back(&group, group.lines.size());
    if (group.indexed) {
        group.firstByName.Add(write.key, group.lines.size());
    }
    group.lines.push_back({write.key, write.value});
}

bool ProfileGroups::ReplaceValue(KeyLine &line, std::string_view value) {
    const std::size_t equals = FindLastEquals(line.value);
    if (equals != std::string_view::npos) { // only in a value that was written
        std::string start(line.start);
        start += '=';
        start += line.value.substr(0, equals);
        m_made.push_back(std::move(start));
        line.start = m_made.back();
    }
    line.value = value;
    return line.start.size() + 1 + value.size() <= kProfileLineLimit;
}

// What a write puts down is trimmed when the next one reads it. It begins with its key, which has
// no blank in front.
void ProfileGroups::TrimFresh() {
    for (const auto &[group, at] : m_fresh) {
        std::string_view &value = group->lines[at].value;
        while (!value.empty() && value.back() == ' ') {
            value.remove_suffix(1);
        }
    }
    m_fresh.clear();
}
