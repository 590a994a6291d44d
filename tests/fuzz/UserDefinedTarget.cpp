// IspUserDefined.txt and the search by it. Whatever the file says: each text comes from it by the
// rules of its mode, and the firmware that is found is one that the directory has and that contains
// all texts that are not ignored. The first line is the number of firmware files.

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "scaler_isp/args/CCpIspArgsParse.h"
#include "support/TempFolder.h"

namespace {

using Info = STRUCT_CP_GET_USER_DEFINED_BIN_INFO;
using Names = std::vector<std::string>;

const Names kFirmware = {"SI_Model_Panel_V1.2.bin",
                         "SI_Model_Panel_V1.3.bin",
                         "Other_2.bin",
                         "\xC3\xA4_V1.2.bin",
                         "V2.13.bin",
                         "Cap_1.2.bin"};

/// A directory for each number of files, made once: only IspUserDefined.txt differs from input to
/// input.
const TempFolder &Directory(std::size_t files) {
    static std::vector<std::unique_ptr<TempFolder>> folders(kFirmware.size() + 1);
    if (!folders[files]) {
        folders[files] = std::make_unique<TempFolder>();
        for (std::size_t i = 0; i < files; ++i) {
            folders[files]->Write(kFirmware[i], "x");
        }
    }
    return *folders[files];
}

bool Contains(const std::string &name, const std::string &text) {
    return name.find(text) != std::string::npos;
}

void CheckInfo(const Info &info) {
    FUZZ_CHECK(info.ulRecordSIMode < 3 && info.ulRecordModelMode < 3 &&
                   info.ulRecordPanelMode < 3 && info.ulRecordVersionMode < 3,
               "modes");
    FUZZ_CHECK(info.enumFindBinUseVerMode < 2, "search mode");
    FUZZ_CHECK(info.bIgnoreSIName == 0 || info.bIgnoreModelName == 0 ||
                   info.bIgnorePanelName == 0 || info.bIgnoreVersionName == 0,
               "all ignored");
    for (const std::string *text : {&info.strSIName, &info.strModelName, &info.strPanelName,
                                    &info.strVersion, &info.strCapabilityInfo}) {
        FUZZ_CHECK(text->find('\0') == std::string::npos, *text);
    }
}

void CheckFound(const Info &info, const std::string &name, std::size_t files) {
    FUZZ_CHECK(std::find(kFirmware.begin(), kFirmware.begin() + static_cast<std::ptrdiff_t>(files),
                         name) != kFirmware.begin() + static_cast<std::ptrdiff_t>(files),
               name);
    FUZZ_CHECK(info.bIgnoreSIName != 0 || Contains(name, info.strSIName), name);
    FUZZ_CHECK(info.bIgnoreModelName != 0 || Contains(name, info.strModelName), name);
    FUZZ_CHECK(info.bIgnorePanelName != 0 || Contains(name, info.strPanelName), name);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    setenv("LC_ALL", "C.UTF-8", 1);
    FuzzInput input(data, size);
    const std::size_t files = input.Below(static_cast<unsigned int>(kFirmware.size()) + 1);
    input.Line();
    const TempFolder &directory = Directory(files);
    directory.Write("IspUserDefined.txt", input.Rest());
    const auto parser = std::make_unique<CCpIspArgsParse>();
    parser->SetCurrentDir(directory.Path());
    Info info;
    const int read = parser->GetUserDefinedInfoFromTxt(info);
    std::string name;
    const int found = parser->GetUserDefinedBinNameFromTxt(name);
    FUZZ_CHECK(found == 0 || read == 1, name);
    if (read == 1) {
        CheckInfo(info);
    }
    if (found == 1) {
        CheckFound(info, name, files);
    }
    return 0;
}
