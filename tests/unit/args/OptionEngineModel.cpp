#include "OptionEngineModel.h"

#include <utility>

OptionEngineModel::OptionEngineModel(std::vector<ModelOption> options, std::string shorts,
                                     std::vector<std::string> arguments)
    : m_options(std::move(options)), m_shorts(std::move(shorts)),
      m_arguments(std::move(arguments)) {
    for (std::size_t i = 0; i < m_arguments.size(); ++i) {
        m_order.push_back(static_cast<int>(i));
    }
}

std::string OptionEngineModel::TextAt(const Place &place) const {
    return m_arguments[static_cast<std::size_t>(place.argument)].substr(place.position);
}

std::string OptionEngineModel::Argument() const {
    if (m_argument.argument < 0) {
        return "-";
    }
    return std::to_string(m_argument.argument) + "+" + std::to_string(m_argument.position) + " \"" +
           TextAt(m_argument) + "\"";
}

void OptionEngineModel::SwapElements(int one, int other) {
    std::swap(m_order[static_cast<std::size_t>(one)], m_order[static_cast<std::size_t>(other)]);
}

void OptionEngineModel::Exchange() {
    int bottom = m_firstNonOption;
    const int middle = m_lastNonOption;
    int top = m_index;
    while (top > middle && middle > bottom) {
        if (middle - bottom < top - middle) {
            const int length = middle - bottom;
            for (int i = 0; i < length; ++i) {
                SwapElements(bottom + i, top - length + i);
            }
            top -= length;
        } else {
            const int length = top - middle;
            for (int i = 0; i < length; ++i) {
                SwapElements(bottom + i, middle + i);
            }
            bottom += length;
        }
    }
    m_firstNonOption += m_index - m_lastNonOption;
    m_lastNonOption = m_index;
}

int OptionEngineModel::Step(bool longOnly) {
    const int argc = static_cast<int>(m_arguments.size());
    // 1
    if (argc < 1) {
        return -1;
    }
    m_argument = {};
    // 2
    if (m_index == 0 || !m_started) {
        if (m_index == 0) {
            m_index = 1;
        }
        m_firstNonOption = 1;
        m_lastNonOption = 1;
        m_next = {};
        m_started = true;
    } else if (m_shorts.substr(0, 1) == "-" || m_shorts.substr(0, 1) == "+") {
        m_shorts = m_shorts.substr(1);
    }
    // 3
    if (m_shorts.substr(0, 1) == ":") {
        m_printErrors = false;
    }
    // 4
    if (m_next.argument >= 0 && !TextAt(m_next).empty()) {
        return ShortStep();
    }
    // 5
    if (m_lastNonOption > m_index) {
        m_lastNonOption = m_index;
    }
    if (m_firstNonOption > m_index) {
        m_firstNonOption = m_index;
    }
    if (m_firstNonOption != m_lastNonOption && m_lastNonOption != m_index) {
        Exchange();
    } else if (m_lastNonOption != m_index) {
        m_firstNonOption = m_index;
    }
    // 6
    while (m_index < argc && (Element(m_index).substr(0, 1) != "-" || Element(m_index) == "-")) {
        m_index++;
    }
    m_lastNonOption = m_index;
    // 7
    if (m_index != argc && Element(m_index) == "--") {
        m_index++;
        if (m_firstNonOption != m_lastNonOption && m_lastNonOption != m_index) {
            Exchange();
        } else if (m_firstNonOption == m_lastNonOption) {
            m_firstNonOption = m_index;
        }
        m_lastNonOption = argc;
        m_index = argc;
    }
    // 8
    if (m_index == argc) {
        if (m_firstNonOption != m_lastNonOption) {
            m_index = m_firstNonOption;
        }
        return -1;
    }
    // 9
    const std::string element = Element(m_index);
    const int original = m_order[static_cast<std::size_t>(m_index)];
    if (element.substr(0, 1) != "-" || element == "-") {
        m_argument = {original, 0};
        m_index++;
        return 1;
    }
    // 10
    if (!m_options.empty()) {
        if (element.substr(0, 2) == "--") {
            m_next = {original, 2};
            return LongStep(longOnly, "--");
        }
        if (longOnly && !(element.size() == 2 && IsShort(element[1]))) {
            m_next = {original, 1};
            const int result = LongStep(longOnly, "-");
            if (result != -1) {
                return result;
            }
        }
    }
    // 11
    if (m_next.argument < 0 || TextAt(m_next).empty()) {
        m_next = {original, 1};
    }
    return ShortStep();
}

int OptionEngineModel::ShortStep() {
    const int argc = static_cast<int>(m_arguments.size());
    const std::string program = m_arguments[0];
    const char letter = TextAt(m_next)[0];
    m_next.position++;
    const std::string rest = TextAt(m_next);
    if (rest.empty()) {
        m_index++;
    }
    if (!IsShort(letter) || letter == ':' || letter == ';') {
        if (m_printErrors) {
            Say(program + ": invalid option -- '" + letter + "'\n");
        }
        m_unknown = letter;
        return 63;
    }
    const std::string following = m_shorts.substr(m_shorts.find(letter) + 1, 2);
    const int found = static_cast<unsigned char>(letter);
    if (following == "::") {
        if (!rest.empty()) {
            m_argument = m_next;
            m_index++;
        }
        m_next = {};
        return found;
    }
    if (following.substr(0, 1) == ":") {
        if (!rest.empty()) {
            m_argument = m_next;
            m_index++;
        } else if (m_index == argc) {
            if (m_printErrors) {
                Say(program + ": option requires an argument -- '" + letter + "'\n");
            }
            m_unknown = letter;
            return m_shorts[0] == ':' ? 58 : 63;
        } else {
            m_argument = {m_order[static_cast<std::size_t>(m_index)], 0};
            m_index++;
        }
        m_next = {};
    }
    return found;
}

int OptionEngineModel::LongStep(bool longOnly, const std::string &prefix) {
    const int argc = static_cast<int>(m_arguments.size());
    const std::string program = m_arguments[0];
    const std::string text = TextAt(m_next);
    // 1
    const std::size_t equals = text.find('=');
    const std::string name = text.substr(0, equals);
    // 2
    int found = -1;
    for (std::size_t i = 0; i < m_options.size() && found < 0; ++i) {
        if (m_options[i].name == name) {
            found = static_cast<int>(i);
        }
    }
    // 3
    bool ambiguous = false;
    if (found < 0) {
        for (std::size_t i = 0; i < m_options.size(); ++i) {
            const ModelOption &option = m_options[i];
            if (option.name.substr(0, name.size()) != name) {
                continue;
            }
            if (found < 0) {
                found = static_cast<int>(i);
                continue;
            }
            const ModelOption &kept = m_options[static_cast<std::size_t>(found)];
            if (!longOnly && kept.hasArg == option.hasArg && kept.flag == option.flag &&
                kept.val == option.val) {
                continue;
            }
            if (!ambiguous && m_printErrors) {
                Say(program + ": command '" + prefix + text + "' is ambiguous; possibilities:");
                Say(" '" + prefix + kept.name + "'");
            }
            ambiguous = true;
            Say(" '" + prefix + option.name + "'\n");
        }
    }
    // 4
    if (ambiguous) {
        m_next.position += text.size();
        m_index++;
        m_unknown = 0;
        return 63;
    }
    // 5
    if (found >= 0) {
        const ModelOption &option = m_options[static_cast<std::size_t>(found)];
        const Place start = m_next;
        m_index++;
        m_next = {};
        if (equals != std::string::npos) {
            if (option.hasArg == 0) {
                if (m_printErrors) {
                    Say(program + ": option '" + prefix + option.name +
                        "' doesn't allow an argument\n");
                }
                m_unknown = option.val;
                return 63;
            }
            m_argument = {start.argument, start.position + equals + 1};
        } else if (option.hasArg == 1) {
            if (m_index >= argc) {
                if (m_printErrors) {
                    Say(program + ": option '" + prefix + option.name + "' requires an argument\n");
                }
                m_unknown = option.val;
                return m_shorts.substr(0, 1) == ":" ? 58 : 63;
            }
            m_argument = {m_order[static_cast<std::size_t>(m_index)], 0};
            m_index++;
        }
        m_longIndex = found;
        if (option.flag != nullptr) {
            *option.flag = option.val;
            return 0;
        }
        return option.val;
    }
    // 6
    if (longOnly && Element(m_index).substr(0, 2) != "--" && !name.empty() && IsShort(name[0])) {
        return -1;
    }
    if (m_printErrors) {
        Say(program + ": unrecognized command '" + prefix + text + "'\n");
    }
    m_next = {};
    m_index++;
    m_unknown = 0;
    return 63;
}
