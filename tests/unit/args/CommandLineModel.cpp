#include "CommandLineModelParts.h"

namespace model {

namespace {

std::string Text(const Raw &raw, const std::string &name) {
    const auto found = raw.text.find(name);
    return found == raw.text.end() ? "" : found->second;
}

long long Word(const Raw &raw, const std::string &option, const std::vector<std::string> &words,
               long long otherwise) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (Text(raw, option) == words[i]) {
            return static_cast<long long>(i) + 1;
        }
    }
    return otherwise;
}

bool Several(unsigned mask) {
    int bits = 0;
    for (int i = 0; i < 32; ++i) {
        bits += (mask >> i & 1U) != 0 ? 1 : 0;
    }
    return bits > 1;
}

/// Bytes of a list; false at a piece that is none, with the bytes before it.
bool Bytes(const std::string &text, char separator, std::vector<unsigned> &bytes) {
    for (const std::string &piece : Pieces(text, separator)) {
        long long value = 0;
        if (!IsNumber(piece, value) || value < 0 || value > 255) {
            return false;
        }
        bytes.push_back(static_cast<unsigned>(value));
    }
    return true;
}

void Action(const Raw &raw, Outcome &o) {
    if (Several(raw.A)) {
        Refuse(o, "Action type undefined or more than one type!\n");
    }
    for (int i = 0; i < 25; ++i) {
        if (raw.A == 1U << i && i != 16) {
            o.number["action"] = i + 1; // the bits follow the values, but for --factoryisp
        }
    }
    if (o.number["action"] == 0) {
        Refuse(o, "Action type undefined or illegal!\n");
    }
}

void MergeInfo(const Raw &raw, Outcome &o) {
    if (raw.M == 0) {
        return;
    }
    o.number["mergeMode"] = raw.M == 2 ? 1 : 0;
    if (raw.M != 2 || raw.mergeData.empty()) {
        return;
    }
    const std::string illegal = "Parameter illegal! --MergeFw --write " + raw.mergeData + " \n";
    std::vector<unsigned> bytes;
    const bool good = Bytes(raw.mergeData, '.', bytes);
    if (bytes.size() > 16) {
        bytes.resize(16);
        o.mergeData = bytes;
        o.number["mergeCount"] = 17;
        Refuse(o, "Input Flag Length: 0x11 ,Max Flag Count: 0x10" + illegal);
    }
    o.mergeData = bytes;
    o.number["mergeCount"] = static_cast<long long>(bytes.size());
    if (!good) {
        Refuse(o, illegal);
    }
}

bool FlashVersion(const Raw &raw, Outcome &o) {
    const std::string addr = Text(raw, "veraddr");
    const std::string total = Text(raw, "totalverlen");
    const std::string major = Text(raw, "majorverlen");
    const std::string sub = Text(raw, "subverlen");
    if ((addr + total + major + sub).empty()) {
        return true;
    }
    if (addr.empty() || total.empty() || major.empty()) {
        return false;
    }
    const std::pair<const char *, std::string> values[] = {
        {"verAddr", addr}, {"totalLen", total}, {"majorLen", major}, {"subLen", sub}};
    for (const auto &[name, text] : values) {
        long long value = 0;
        if (!IsNumber(text, value)) {
            return false;
        }
        o.number[name] = value & 0xFFFFFFFFLL;
    }
    long long mode = 0;
    const std::string text = Text(raw, "recordvermode");
    const bool own = !text.empty() && IsNumber(text, mode) && (mode == 0 || mode == 1);
    o.number["recordMode"] = own ? mode : 2;
    return o.number["totalLen"] < 257 &&
           o.number["majorLen"] + o.number["subLen"] <= o.number["totalLen"] &&
           o.number["majorLen"] != 0 && o.number["verAddr"] + o.number["totalLen"] < 16777216;
}

void Version(const Raw &raw, Outcome &o) {
    o.number["location"] = raw.V == 0 ? 0 : o.number["location"];
    if (raw.V == 0) {
        return;
    }
    if (Several(raw.V)) {
        Refuse(o, "Get version location type undefined or more than one type!\n");
    }
    for (int i = 0; i < 8; ++i) {
        o.number["location"] = raw.V == 1U << i ? i + 1 : o.number["location"];
    }
    if (raw.V == 128) {
        long long mode = 0;
        if (!IsNumber(raw.userMode, mode)) {
            Refuse(o, "User defined version mode illegal, mode is: " + raw.userMode +
                          "\nGet version type fail\n");
        }
        if (mode < 1 || mode > 5) {
            Refuse(o, "Get user defined version mode fail, mode is: " + raw.userMode +
                          "\nGet version type fail\n");
        }
        o.number["userVersion"] = mode;
    }
    if (raw.V == 4 && !FlashVersion(raw, o)) {
        Refuse(o, "Version location type flash setting is illegal\n");
    }
}

void Channel(const Raw &raw, Outcome &o) {
    const std::string text = Text(raw, "comm");
    long long value = 0;
    if (text.empty()) {
        return;
    }
    if (!IsNumber(text, value)) {
        Refuse(o, "Parameter illegal! --comm " + text + " \n");
    }
    if (value <= 0 || value >= 20) {
        Refuse(o, "Parameter out of range! --comm " + text + "\n");
    }
    o.number["comm"] = value;
}

void Slave(const Raw &raw, Outcome &o) {
    const std::string text = Text(raw, "slave");
    long long value = 0;
    if (text.empty()) {
        return;
    }
    if (!IsNumber(text, value)) {
        Refuse(o, "Parameter illegal! --slave " + text + " \n");
    }
    o.number["slaveState"] = value == 0 ? 1 : 0;
    if (value == 0) {
        return;
    }
    if (value < 1 || value >= 255) {
        Refuse(o, "Parameter out of range! --slave " + text + " \n");
    }
    o.number["slave"] = value;
}

void Banks(const World &world, const Raw &raw, Outcome &o) {
    const long long action = o.number["action"];
    const long long location = o.number["location"];
    if (!((action >= 4 && action <= 7) || (action == 8 && (location == 4 || location == 6)))) {
        return;
    }
    if (raw.entries.empty()) {
        if (o.number["autoSearch"] == 0) {
            Refuse(o, "Program fw bin path should not be empty!\n");
        }
        return;
    }
    std::map<unsigned, std::pair<unsigned, std::string>> banks;
    for (const auto &[entry, place] : raw.entries) {
        const std::string path = FullPath(world, place.second);
        if (!Exists(world, path)) {
            Refuse(o, "File open fail! " + path + "\n");
        }
        if (place.second.empty()) {
            o.dependsOnFileSystem = true;
            throw Refused();
        }
        const unsigned count = world.files.at(path.substr(world.folder.size()));
        for (unsigned i = 0; i < count; ++i) {
            if (banks.count(place.first + i) != 0) {
                Refuse(o, "Program fw bank duplicate!\n");
            }
        }
        for (unsigned i = 0; i < count; ++i) {
            banks[place.first + i] = {i, path};
        }
    }
    o.number["bankCount"] = static_cast<long long>(banks.size());
    if (banks.size() > 512) {
        Refuse(o, "Total bank count exceeds 512!\n");
    }
    o.banks = banks;
}

void UserFlag(const Raw &raw, Outcome &o) {
    const std::string addr = Text(raw, "flagaddr");
    const std::string data = Text(raw, "flagdata");
    if (addr.empty()) {
        return;
    }
    long long value = 0;
    if (!IsNumber(addr, value)) {
        Refuse(o, "Parameter illegal! --flagaddr " + addr + " \n");
    }
    o.number["flagAddr"] = value & 0xFFFFFFFFLL;
    const bool good = Bytes(data, ',', o.flagData);
    o.number["flagCount"] = static_cast<long long>(o.flagData.size() % 256);
    if (!good) {
        Refuse(o, "Parameter illegal! --flagdata " + data + " \n");
    }
}

void Dump(const Raw &raw, Outcome &o) {
    const std::string addr = Text(raw, "dumpaddr");
    const std::string len = Text(raw, "dumplen");
    const std::string name = Text(raw, "dumpname");
    long long value = 0;
    if ((addr + len).empty() || !IsNumber(addr, value)) {
        throw Refused();
    }
    o.number["dumpAddr"] = value & 0xFFFFFFFFLL;
    if (!IsNumber(len, value)) {
        throw Refused();
    }
    o.number["dumpLen"] = value & 0xFFFFFFFFLL;
    if (value == 0) {
        throw Refused();
    }
    const bool good = name.size() >= 5 && name.substr(name.size() - 4) == ".bin";
    o.dumpFile = good ? name : "dumpFile.bin";
}

void I2CWrite(const Raw &raw, Outcome &o) {
    std::vector<unsigned> bytes;
    if (!Bytes(Text(raw, "writedata"), ',', bytes) || bytes.size() < 3 || bytes.size() > 258) {
        throw Refused();
    }
    const bool ddcci = raw.given.count("ddccicmd") != 0;
    o.number["ddcci"] = ddcci ? 1 : 0;
    o.number["i2cSlave"] = bytes[0];
    o.number["i2cSub"] = bytes[1];
    const std::vector<unsigned> data(bytes.begin() + (ddcci ? 3 : 2), bytes.end());
    o.number["i2cLen"] = static_cast<long long>(ddcci ? bytes[2] % 128 : data.size() % 256);
    if (ddcci && bytes[2] % 128 != data.size()) {
        throw Refused();
    }
    o.i2cData = data;
}

} // namespace

void SetSettingFileField(const World &world, const std::string &name, Outcome &o) {
    const std::string path = name[0] == '/' ? name : world.library + name;
    const std::string former = o.settingFile;
    o.settingFile = path + (former.size() > path.size() ? former.substr(path.size()) : "");
}

void Judge(const World &world, const Raw &raw, Outcome &o) {
    Action(raw, o);
    o.number["bootCode"] = raw.given.count("newboot") != 0 ? 1 : 0;
    o.number["ispMode"] = raw.given.count("factory") != 0 ? 2 : 1;
    MergeInfo(raw, o);
    if (raw.B != 0 && JudgeSignature(world, raw, o)) {
        return;
    }
    Version(raw, o);
    Channel(raw, o);
    Slave(raw, o);
    o.number["autoSearch"] = raw.given.count("searchfw") != 0 && raw.given.at("searchfw") ? 1 : 0;
    Banks(world, raw, o);
    o.number["compare"] = raw.given.count("comparever") != 0 ? 1 : 0;
    o.number["channel"] = raw.given.count("ispchannel") != 0 ? 1 : 0;
    if (o.number["action"] == 5) {
        UserFlag(raw, o);
    }
    if (o.number["action"] == 16) {
        Dump(raw, o);
    }
    if (o.number["action"] == 24) {
        I2CWrite(raw, o);
    }
    const std::string setting = Text(raw, "settingfile");
    if (setting.empty()) {
        o.settingFile = world.library + "IspSetting.ini";
    } else {
        SetSettingFileField(world, setting, o);
    }
    o.number["edpMode"] = Word(raw, "edpmode", {"isp", "readver"}, 0);
    o.number["infoType"] =
        Word(raw, "infotype", {"hpscaler", "hpfwname", "hpmodelname", "hphwcid"}, 0);
    o.number["generation"] = Word(raw, "mergefwgen", {"gen1", "gen2"}, 2);
    o.number["mergeType"] = Word(raw, "mergeinfotype", {"hpfriends"}, 0);
    o.number["extraMode"] = Word(raw, "sendextracmd", {"before", "after", "both"}, 0);
}

Outcome Predict(const World &world, const std::vector<std::string> &words) {
    Outcome outcome;
    try {
        const Raw raw = Scan(world, words, outcome);
        Judge(world, raw, outcome);
        outcome.result = 1;
    } catch (const Refused &) {
        outcome.result = 0;
    }
    return outcome;
}

} // namespace model
