// Doctor's own reading of settings files and the library's must be the same: a key that doctor
// calls seen is what the library's reader returns.

#include <gmock/gmock.h>
#include <map>
#include <random>

#include "doctor/Places.h"
#include "doctor/PluginProbe.h"
#include "doctor/SettingText.h"
#include "scaler_isp/entry/Globals.h"
#include "scaler_isp/settings/ProfileStore.h"
#include "support/TempFolder.h"

namespace {

using ispctl::doctor::ExamineSettings;
using ispctl::doctor::SeenKey;
using ispctl::doctor::SettingText;

std::string RandomText(std::mt19937 &random) {
    const char *const pieces[] = {"[A]\n",   "[B]\n", "k=1\n", "k=2\n",   "k = 3\n", "l=a=b\n",
                                  " l = 4 ", "\n",    "; x\n", " [A] \n", "[A] x\n", "k\n",
                                  "l",       "=\n",   "=5\n",  "\tk=6\n", "[B",      "]\n",
                                  "k=\n",    "[A]",   "l=7"};
    std::uniform_int_distribution<std::size_t> piece(0, std::size(pieces) - 1);
    std::string text;
    for (int i = 0; i < 12; ++i) {
        text += pieces[piece(random)];
    }
    if (random() % 8 == 0) {
        text.insert(random() % text.size(), "\nk=" + std::string(1020 + random() % 4, 'x') + "\n");
    }
    return text;
}

std::string ValueInLibrary(const std::string &file, const std::string &section,
                           const std::string &key) {
    std::string buffer(2048, '\0');
    // The reader leaves the buffer as it was if a line without "=" ends its search.
    const unsigned int size =
        CpNxGetPrivateProfileStringA(section.c_str(), key.c_str(), "missing", buffer.data(),
                                     static_cast<unsigned int>(buffer.size()), file.c_str());
    return size == 0 ? "missing" : buffer.substr(0, size);
}

TEST(SettingText, Seen_keys_are_those_of_library) {
    const TempFolder folder;
    std::mt19937 random(20240611); // NOLINT(cert-msc51-cpp)
    int found = 0;
    for (int round = 0; round < 500; ++round) {
        const std::string text = RandomText(random);
        const std::string file = folder.Write("a.ini", text);
        SCOPED_TRACE(text);
        const SettingText examined =
            ExamineSettings(text, [](std::string_view line) { return line.size(); });
        std::map<std::pair<std::string, std::string>, std::string> seen;
        for (const SeenKey &key : examined.seen) {
            seen[{key.section, key.key}] = key.value.empty() ? "missing" : key.value;
        }
        for (const char *section : {"A", "B"}) {
            for (const char *key : {"k", "l", "\tk"}) {
                const auto at = seen.find({section, key});
                const std::string expected = at != seen.end() ? at->second : "missing";
                ASSERT_EQ(ValueInLibrary(file, section, key), expected) << section << " " << key;
                found += expected != "missing" ? 1 : 0;
            }
        }
    }
    EXPECT_GT(found, 150);
}

TEST(SettingText, Plugin_names_are_those_of_library) {
    ispctl::doctor::Options options;
    options.library = "/a/lib";
    const auto places = ispctl::doctor::PlacesOf(options);
    EXPECT_EQ(places.ispPlugin.wstring(), std::wstring(L"/a/") + STR_ISP_DLL_PATH);
    EXPECT_EQ(places.signPlugin.wstring(), std::wstring(L"/a/") + STR_SIGN_VERIFY_DLL);
}

} // namespace
