#include <cstdio>

#include "CommandLineModelParts.h"
#include "OptionList.h"

namespace model {

void Refuse(Outcome &outcome, const std::string &message) {
    outcome.out += message;
    throw Refused();
}

bool IsNumber(const std::string &text, long long &value) {
    value = -1;
    if (text.empty()) {
        value = 0;
        return true;
    }
    std::size_t i = 0;
    while (i < text.size() && text[i] == ' ') {
        ++i;
    }
    const bool minus = i < text.size() && text[i] == '-';
    if (minus || (i < text.size() && text[i] == '+')) {
        ++i;
    }
    long long base = 10;
    if (i + 1 < text.size() && text[i] == '0' && (text[i + 1] == 'x' || text[i + 1] == 'X')) {
        base = 16;
        i += 2;
    } else if (i < text.size() && text[i] == '0') {
        base = 8;
    }
    if (i == text.size()) {
        return false;
    }
    long long number = 0;
    for (; i < text.size(); ++i) {
        const std::string digits = "0123456789abcdef";
        const char c = text[i] >= 'A' && text[i] <= 'F' ? static_cast<char>(text[i] + 32) : text[i];
        const auto digit = digits.find(c);
        if (digit == std::string::npos || static_cast<long long>(digit) >= base) {
            return false;
        }
        number = number * base + static_cast<long long>(digit);
    }
    number = (minus ? -number : number) & 0xFFFFFFFFLL;
    value = number > 0x7FFFFFFFLL ? number - 0x100000000LL : number;
    return true;
}

std::vector<std::string> Pieces(const std::string &text, char separator) {
    std::vector<std::string> pieces;
    std::string piece;
    for (const char c : text + separator) {
        if (c != separator) {
            piece.push_back(c);
        } else if (!piece.empty()) {
            pieces.push_back(piece);
            piece.clear();
        }
    }
    return pieces;
}

std::string FullPath(const World &world, const std::string &name) {
    if (!name.empty() && name[0] == '/') {
        return name;
    }
    return name.empty() ? world.folder.substr(0, world.folder.size() - 1) : world.folder + name;
}

bool Exists(const World &world, const std::string &fullPath) {
    if (fullPath + "/" == world.folder) {
        return true; // a folder opens for reading
    }
    return fullPath.compare(0, world.folder.size(), world.folder) == 0 &&
           world.files.count(fullPath.substr(world.folder.size())) == 1;
}

namespace {

const ListedOption *Listed(const std::string &name) {
    for (const ListedOption &option : kListedOptions) {
        if (name == option.name) {
            return &option;
        }
    }
    return nullptr;
}

std::string Illegal(unsigned number) {
    return "illegal option ' " + std::string(1, static_cast<char>(number % 256)) + " '!\n";
}

void TakeFile(Raw &raw, unsigned entry, const std::string &path, Outcome &outcome) {
    std::string &file = raw.entries[entry].second;
    if (!file.empty()) {
        Refuse(outcome, "Parameter has been detected two or more times! --fw" +
                            std::to_string(entry) + " \n");
    }
    file = path;
}

void TakeBank(Raw &raw, unsigned entry, const std::string &text, Outcome &outcome) {
    const std::string option = " --bank" + std::to_string(entry) + " ";
    long long value = 0;
    if (!IsNumber(text, value)) {
        Refuse(outcome, "Parameter illegal!" + option + text + " \n");
    }
    if (value == -1) {
        Refuse(outcome, "Parameter illegal, start bank value is loss!" + option + text + " \n");
    }
    if (value < 0 || value > 255) {
        Refuse(outcome, "Parameter out of range 0~255!" + option + text + "\n");
    }
    raw.entries[entry].first = static_cast<unsigned>(value);
}

std::vector<std::string> BinFiles(const World &world) {
    std::vector<std::string> names;
    for (const auto &[name, banks] : world.files) {
        if (name.size() > 4 && name.substr(name.size() - 4) == ".bin") {
            names.push_back(name);
        }
    }
    return names;
}

std::string SearchPrefix(const World &world, const Raw &raw, Outcome &outcome) {
    const auto names = BinFiles(world);
    if (names.empty()) {
        Refuse(outcome, "Cannot find bin in current dir!\n");
    }
    const auto setting = raw.text.find("settingfile");
    std::string prefix;
    if (setting != raw.text.end() && !setting->second.empty()) {
        SetSettingFileField(world, setting->second, outcome);
        prefix = setting->second == world.folder + "my.ini" ? world.prefix : "";
    } else {
        outcome.settingFile = world.library + "IspSetting.ini";
    }
    if (prefix.empty()) {
        Refuse(outcome, "Cannot fw prefix setting!\n");
    }
    std::vector<std::string> found;
    for (const std::string &name : names) {
        if (name.size() > prefix.size() && name.substr(0, prefix.size()) == prefix) {
            found.push_back(name);
        }
    }
    if (found.size() != 1) {
        Refuse(outcome, "find " + std::to_string(found.size()) + " match fw base on prefix " +
                            prefix + ", fail!\n");
    }
    return found[0];
}

std::string SearchUserDefined(const World &world, Outcome &outcome) {
    if (world.searchName.empty()) {
        Refuse(outcome, "get userdefined info fail!\n");
    }
    std::vector<std::string> found;
    for (const std::string &name : BinFiles(world)) {
        if (name.find(world.searchName) != std::string::npos) {
            found.push_back(name);
        }
    }
    if (found.empty()) {
        Refuse(outcome, "cann't find fw use userdefined SI name info!\n");
    }
    if (found.size() > 1) {
        Refuse(outcome, std::to_string(found.size()) + " bin file find user userdefined info!\n");
    }
    return found[0];
}

std::string Search(const World &world, const Raw &raw, const std::string &rule, Outcome &outcome) {
    if (rule == "userdefined") {
        return SearchUserDefined(world, outcome);
    }
    if (rule == "prefix") {
        return SearchPrefix(world, raw, outcome);
    }
    if (rule != "auto") {
        Refuse(outcome, "auto search fw parameter illegal!\n");
    }
    const auto names = BinFiles(world);
    if (names.size() != 1) {
        Refuse(outcome,
               names.empty() ? "cann't find bin file!\n" : "find more than one bin file!\n");
    }
    return names[0];
}

void TakeWord(const std::string &name, const std::string &value, Outcome &outcome) {
    const std::map<std::string, std::pair<std::string, std::vector<std::string>>> words = {
        {"edpmode", {"wrong edp isp mode!", {"isp", "readver"}}},
        {"infotype",
         {"wrong user defined info type!", {"hpscaler", "hpfwname", "hpmodelname", "hphwcid"}}},
        {"mergefwgen", {"wrong merge info generation!", {"gen1", "gen2"}}},
        {"mergeinfotype", {"wrong user defined merge info type!", {"hpfriends"}}},
        {"sendextracmd", {"wrong send extra command mode!", {"before", "after", "both"}}}};
    const auto row = words.find(name);
    if (row == words.end()) {
        return;
    }
    for (const std::string &word : row->second.second) {
        if (word == value) {
            return;
        }
    }
    Refuse(outcome, row->second.first);
}

void TakeValue(const World &world, Raw &raw, const std::string &name, const std::string &value,
               Outcome &outcome) {
    const char last = name.back();
    const unsigned entry = last >= '0' && last <= '9' ? static_cast<unsigned>(last - '0') : 0;
    if (name.compare(0, 4, "bank") == 0) {
        TakeBank(raw, entry, value, outcome);
    } else if (name == "fw") {
        raw.firmware = value;
        raw.given["fw"] = true;
        if (raw.given["searchfw"]) {
            throw Refused();
        }
        TakeFile(raw, 0, value, outcome);
    } else if (name.size() == 3 && name.compare(0, 2, "fw") == 0 && entry != 0) {
        TakeFile(raw, entry, value, outcome);
    } else if (name == "searchfw") {
        raw.given["searchfw"] = true;
        if (raw.given["fw"]) {
            throw Refused();
        }
        raw.firmware = Search(world, raw, value, outcome);
        TakeFile(raw, 0, raw.firmware, outcome);
    } else {
        TakeWord(name, value, outcome);
        raw.text[name] = value;
    }
}

} // namespace

Raw Scan(const World &world, const std::vector<std::string> &words, Outcome &outcome) {
    Raw raw;
    unsigned lastV = 0;
    unsigned lastM = 0;
    std::string strays;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i].compare(0, 2, "--") != 0) {
            strays += words[i] + " ";
            continue;
        }
        const auto equals = words[i].find('=');
        const bool attached = equals != std::string::npos;
        const std::string name = words[i].substr(2, attached ? equals - 2 : std::string::npos);
        const ListedOption *option = Listed(name);
        if (option == nullptr) {
            outcome.err += "tool: unrecognized command '" + words[i] + "'\n";
            outcome.out += Illegal(0);
            continue;
        }
        if (attached && !option->takesValue) {
            outcome.err += "tool: option '--" + name + "' doesn't allow an argument\n";
            outcome.out += Illegal(option->number);
            continue;
        }
        if (!attached && option->takesValue && i + 1 == words.size()) {
            outcome.err += "tool: option '--" + name + "' requires an argument\n";
            outcome.out += Illegal(option->number);
            continue;
        }
        std::string value;
        if (option->takesValue) {
            value = attached ? words[i].substr(equals + 1) : words[++i];
        }
        if (option->word == '-') {
            if (option->takesValue) {
                TakeValue(world, raw, name, value, outcome);
            } else {
                raw.given[name] = true;
            }
            continue;
        }
        raw.A |= option->word == 'A' ? option->number : 0;
        raw.B |= option->word == 'B' ? option->number : 0;
        raw.V |= option->word == 'V' ? option->number : 0;
        raw.M |= option->word == 'M' ? option->number : 0;
        lastV = option->word == 'V' ? option->number : lastV;
        lastM = option->word == 'M' ? option->number : lastM;
        if (option->takesValue && lastV == 0x80) {
            raw.userMode = value;
        }
        if (option->takesValue && raw.A == 0x200000 && lastM == 2) {
            raw.mergeData = value;
        }
    }
    if (!strays.empty()) {
        outcome.out += "non-option ARGV-elements: " + strays + "\n";
    }
    return raw;
}

} // namespace model
