// Firmware files on banks of the flash: what a line of --fwN and --bankN makes, against a plain
// model; a map that goes through the record; a record whose contents nobody validated. One
// operation per line: "f" entry file, "b" entry value, "r" count and targets of a hostile record.

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "scaler_isp/args/CCpIspArgsParse.h"
#include "scaler_isp/args/FwBankMap.h"
#include "scaler_isp/common/TextUtil.h"
#include "support/TempFolder.h"

namespace {

/// The files by their number: how many banks each has; the last one is missing.
constexpr std::array<unsigned int, 5> kBanksOfFile = {0, 1, 2, 3, 200};
constexpr unsigned int kFiles = kBanksOfFile.size() + 1;

const TempFolder &Files() {
    static const TempFolder folder;
    static const bool made = [] {
        for (std::size_t file = 0; file < kBanksOfFile.size(); ++file) {
            // One byte into the last bank is a bank.
            const std::size_t size =
                kBanksOfFile[file] == 0 ? 0 : (kBanksOfFile[file] - 1) * 65536UL + 1;
            folder.Write(std::to_string(file) + ".bin", std::string(size, 'f'));
        }
        return true;
    }();
    static_cast<void>(made);
    return folder;
}

struct ModelFile {
    std::optional<unsigned int> file;
    unsigned int start = 0;
};

/// Target bank to file and bank of the file.
using ModelMap = std::map<unsigned int, std::pair<unsigned int, unsigned int>>;

/// REQUIRES: every entry has a file.
std::optional<ModelMap> Expand(const std::map<unsigned int, ModelFile> &entries) {
    ModelMap banks;
    if (entries.empty()) {
        return std::nullopt;
    }
    for (const auto &[entry, file] : entries) {
        if (*file.file == kBanksOfFile.size()) {
            return std::nullopt;
        }
        for (unsigned int bank = 0; bank < kBanksOfFile[*file.file]; ++bank) {
            if (!banks.insert({file.start + bank, {*file.file, bank}}).second) {
                return std::nullopt;
            }
        }
    }
    return banks;
}

/// Both sides of one line.
class Line {
  public:
    Line() : m_parser(std::make_unique<CCpIspArgsParse>()) {
        auto setting = std::make_unique<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>();
        setting->enumActionType = ENUM_ACTION_ISP;
        m_parser->SetISPCmdSetting(*setting);
        m_parser->SetCurrentDir(Files().Path());
    }

    void AddFile(unsigned int entry, unsigned int file) {
        const std::string name = std::to_string(file) + ".bin";
        const int accepted = m_parser->InsertCommandFwFile(entry, name.c_str());
        FUZZ_CHECK(accepted == (m_model[entry].file ? 0 : 1), name);
        if (accepted == 1) {
            m_model[entry].file = file;
        }
    }

    void SetStart(unsigned int entry, const std::string &value) {
        int number = 0;
        const bool valid = StringtoInt(value, number) == 1 && number >= 0 && number <= 255;
        const int accepted = m_parser->InsertCommandStartBank(entry, value);
        FUZZ_CHECK(accepted == (valid ? 1 : 0), value);
        if (valid) {
            m_model[entry].start = static_cast<unsigned int>(number);
        }
    }

    void Compare() {
        FwBankMap map;
        const int accepted = m_parser->JudgeFwMap(map);
        if (std::any_of(m_model.begin(), m_model.end(),
                        [](const auto &entry) { return !entry.second.file; })) {
            return; // its path is a directory, whose size the file system decides
        }
        const std::optional<ModelMap> expected = Expand(m_model);
        FUZZ_CHECK(accepted == (expected ? 1 : 0), "accepted");
        if (!expected) {
            return;
        }
        FUZZ_CHECK(map.size() == expected->size(), "size");
        for (const auto &[target, bank] : map) {
            const auto found = expected->find(target);
            FUZZ_CHECK(found != expected->end(), std::to_string(target));
            FUZZ_CHECK(bank.ulFileBank == found->second.second, std::to_string(target));
            const std::string path = Files().Path(std::to_string(found->second.first) + ".bin");
            FUZZ_CHECK(std::wstring_view(bank.strFwPath) == std::wstring(path.begin(), path.end()),
                       path);
        }
        CompareRecord(map);
    }

  private:
    static void CompareRecord(const FwBankMap &map) {
        const auto record = std::make_unique<STRUCT_C_STYLE_MAP_FW>();
        const int copied = CopyMapFwToCStyleStruct(*record, map);
        FUZZ_CHECK(copied == (map.size() <= SCALER_ISP_MAX_BANKS ? 1 : 0), "copied");
        FUZZ_CHECK(record->ulFwCount == map.size(), "count");
        if (copied == 0) {
            return;
        }
        FwBankMap again;
        CopyCStyleStructToMapFw(again, *record);
        FUZZ_CHECK(again.size() == map.size(), "size of the copy");
        for (const auto &[target, bank] : map) {
            FUZZ_CHECK(again.contains(target), std::to_string(target));
            FUZZ_CHECK(again[target].ulFileBank == bank.ulFileBank, std::to_string(target));
            FUZZ_CHECK(std::wstring_view(again[target].strFwPath) ==
                           std::wstring_view(bank.strFwPath),
                       std::to_string(target));
        }
    }

    std::unique_ptr<CCpIspArgsParse> m_parser;
    std::map<unsigned int, ModelFile> m_model;
};

/// Entries with the same target, counts beyond the arrays, paths without a terminator.
void CheckHostileRecord(const std::string &bytes) {
    const auto record = std::make_unique<STRUCT_C_STYLE_MAP_FW>();
    FuzzInput input(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
    record->ulFwCount = input.Byte() * 0x1010101U + input.Byte();
    std::map<unsigned int, unsigned int> expected;
    const unsigned int used = std::min<unsigned int>(record->ulFwCount, SCALER_ISP_MAX_BANKS);
    for (unsigned int i = 0; i < SCALER_ISP_MAX_BANKS; ++i) {
        record->ulTargetBank[i] = input.Byte() * 0x1000001U;
        record->stFwBank[i].ulFileBank = i;
        std::fill(std::begin(record->stFwBank[i].wszFwPath),
                  std::end(record->stFwBank[i].wszFwPath), static_cast<wchar_t>(input.Byte()));
        if (i < used) {
            expected.emplace(record->ulTargetBank[i], i);
        }
    }
    FwBankMap map;
    CopyCStyleStructToMapFw(map, *record);
    FUZZ_CHECK(map.size() == expected.size(), bytes);
    for (const auto &[target, entry] : expected) {
        FUZZ_CHECK(map.contains(target) && map[target].ulFileBank == entry, bytes);
        const std::wstring_view path(map[target].strFwPath);
        FUZZ_CHECK(path.size() ==
                       (record->stFwBank[entry].wszFwPath[0] == 0 ? 0 : SCALER_ISP_PATH_CHARS),
                   bytes);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    constexpr int kMostOperations = 24;
    FuzzInput input(data, size);
    Line line;
    for (int count = 0; count < kMostOperations && !input.IsEmpty(); ++count) {
        const unsigned int operation = input.Byte();
        if (operation == 'r') {
            CheckHostileRecord(input.Rest());
            break;
        }
        const unsigned int entry = input.Below(10);
        if (operation == 'f') {
            line.AddFile(entry, input.Below(kFiles));
            input.Line();
        } else {
            line.SetStart(entry, input.Line());
        }
    }
    line.Compare();
    return 0;
}
