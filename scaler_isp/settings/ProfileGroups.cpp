#include "scaler_isp/settings/ProfileGroups.h"

#include "scaler_isp/settings/ProfileLines.h"

template <class Char> ProfileGroups<Char>::ProfileGroups(View text) : m_groups(1) {
    ProfileLineReader<Char> reader(text);
    View line;
    while (reader.Next(line)) {
        if (line.find(Char('=')) == View::npos) {
            Append(line);
        } else {
            m_groups.back().lines.push_back(line);
        }
    }
}

template <class Char> bool ProfileGroups<Char>::IsPlain(const KeyWrite<Char> &write) {
    const auto has = [](View text, char character) {
        return text.find(Char(character)) != View::npos;
    };
    const bool header = !has(write.section, '=') && !has(write.section, '\n') &&
                        write.section.size() + 2 <= kProfileLineLimit;
    const bool key = !has(write.key, '=') && !has(write.key, '\n') &&
                     (write.key.empty() || write.key.front() != Char(' '));
    return header && key && !has(write.value, '\n') &&
           write.key.size() + 1 + write.value.size() <= kProfileLineLimit;
}

template <class Char> bool ProfileGroups<Char>::Apply(const KeyWrite<Char> &write) {
    TrimFresh();
    const String header = ProfileHeader(write.section);
    const auto heads = m_groupsByHead.find(header);
    if (heads != m_groupsByHead.end()) {
        return ApplyToSection(heads->second, write);
    }
    m_made.push_back(header);
    Append(m_made.back());
    AddKey(m_groups.size() - 1, write);
    return true;
}

template <class Char>
bool ProfileGroups<Char>::ApplyToSection(const std::vector<std::size_t> &heads,
                                         const KeyWrite<Char> &write) {
    bool written = false;
    std::size_t next = 0; // groups before this one are behind the walk
    for (const std::size_t at : heads) {
        if (at < next) {
            continue;
        }
        Group &group = m_groups[at];
        Index(group);
        const auto line = group.firstByName.find(write.key);
        if (line != group.firstByName.end()) {
            if (!ReplaceValue(at, line->second, write.value)) {
                return false;
            }
            written = true;
            continue;
        }
        if (!written) {
            AddKey(at, write);
            written = true;
        }
        next =
            at + 2; // the line that ended the section is passed over, even if it is the same header
    }
    return true;
}

template <class Char> typename ProfileGroups<Char>::String ProfileGroups<Char>::Text() const {
    std::size_t size = 0;
    for (const Group &group : m_groups) {
        size += group.head.size() + 1;
        for (const View line : group.lines) {
            size += line.size() + 1;
        }
    }
    String text;
    text.reserve(size);
    for (const Group &group : m_groups) {
        if (group.head.data() != nullptr) {
            text.append(group.head) += Char('\n');
        }
        for (const View line : group.lines) {
            text.append(line) += Char('\n');
        }
    }
    return text;
}

template <class Char> void ProfileGroups<Char>::Append(View head) {
    m_groupsByHead[head].push_back(m_groups.size());
    m_groups.emplace_back().head = head;
}

template <class Char> void ProfileGroups<Char>::Index(Group &group) {
    if (group.indexed) {
        return;
    }
    group.indexed = true;
    group.firstByName.reserve(group.lines.size());
    for (std::size_t i = 0; i < group.lines.size(); ++i) {
        const View line = group.lines[i];
        group.firstByName.emplace(line.substr(0, line.find(Char('='))), i);
    }
}

template <class Char>
void ProfileGroups<Char>::AddKey(std::size_t group, const KeyWrite<Char> &write) {
    String line;
    line.reserve(write.key.size() + 1 + write.value.size());
    line.append(write.key) += Char('=');
    line.append(write.value);
    m_made.push_back(std::move(line));
    Group &target = m_groups[group];
    const std::size_t at = target.lines.size();
    target.lines.push_back(m_made.back());
    if (target.indexed) {
        target.firstByName.emplace(write.key, at);
    }
    m_fresh.emplace_back(group, at);
}

template <class Char>
bool ProfileGroups<Char>::ReplaceValue(std::size_t group, std::size_t line, View value) {
    View &old = m_groups[group].lines[line];
    String made(old.substr(0, old.rfind(Char('=')) + 1));
    made += value;
    if (made.size() > kProfileLineLimit) {
        return false;
    }
    m_made.push_back(std::move(made));
    old = m_made.back();
    m_fresh.emplace_back(group, line);
    return true;
}

// What a write puts down is trimmed when the next one reads it.
template <class Char> void ProfileGroups<Char>::TrimFresh() {
    for (const auto &[group, line] : m_fresh) {
        View &text = m_groups[group].lines[line];
        text = TrimBlanks(text);
    }
    m_fresh.clear();
}

template class ProfileGroups<char>;
template class ProfileGroups<wchar_t>;
