#include "scaler_isp/settings/IniEdit.h"

#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include "support/TestLocale.h"
#include "unit/settings/ReferenceProfile.h"

namespace {

using reference::Encoding;

/// One bank of a map, as SaveSetting and SaveFwPathFromFile tell it.
struct Bank {
    unsigned int targetKey;
    unsigned int targetValue;
    std::wstring path;
};

struct Map {
    unsigned int count;
    std::vector<Bank> banks;
};

using Writes = std::vector<std::pair<std::wstring, std::wstring>>; // key, value

/// The writes that a map stands for, one after the other.
Writes WritesOf(const Map &map) {
    const auto number = [](unsigned int value) { return std::to_wstring(static_cast<int>(value)); };
    Writes writes = {{L"fwFileCount", number(map.count)}};
    for (unsigned int i = 0; i < map.banks.size(); ++i) {
        const Bank &bank = map.banks[i];
        writes.emplace_back(L"fw" + number(bank.targetKey) + L"_TargetBank",
                            number(bank.targetValue));
        writes.emplace_back(L"fw" + number(i) + L"_FileBank", number(i));
        writes.emplace_back(L"fw" + number(i) + L"_Path", bank.path);
    }
    return writes;
}

/// The file after all writes, and how many of them were possible.
struct Edited {
    std::string file;
    std::size_t written = 0;
    std::size_t possible = 0; ///< each tried on the file as it was
    bool operator==(const Edited &other) const {
        return file == other.file && written == other.written && possible == other.possible;
    }
};

void PrintTo(const Edited &edited, std::ostream *stream) {
    *stream << edited.written << '/' << edited.possible << ' '
            << testing::PrintToString(edited.file);
}

std::vector<IniWrite> ViewsOf(const Writes &writes) {
    std::vector<IniWrite> views;
    for (const auto &[key, value] : writes) {
        views.push_back({key, value});
    }
    return views;
}

Edited ByTheLibrary(const std::string &before, const Map &map) {
    const Writes writes = WritesOf(map);
    TextFileEncoding encoding(TextFileEncoding::Charset::Environment);
    Edited result;
    result.written = EditIniBytes(encoding, before, L"ISP_Fw", ViewsOf(writes), result.file);
    result.possible = CountEncodableWrites(encoding, before, ViewsOf(writes));
    return result;
}

/// One write as the slow second version of the rules does it.
auto SecondVersion(Encoding encoding) {
    return
        [encoding](const std::string &before, const std::wstring &key, const std::wstring &value) {
            return reference::Write(before, encoding, L"ISP_Fw", key, value);
        };
}

/// One write as the library's own single writer does it, for encodings that the other lacks.
class SingleWriter {
  public:
    std::optional<std::string> operator()(const std::string &before, const std::wstring &key,
                                          const std::wstring &value) {
        std::string after;
        const IniWrite write{key, value};
        const bool possible = EditIniBytes(m_encoding, before, L"ISP_Fw", {&write, 1}, after) == 1;
        return possible ? std::optional(after) : std::nullopt;
    }

  private:
    TextFileEncoding m_encoding{TextFileEncoding::Charset::Environment};
};

template <class Write> Edited KeyByKey(const std::string &before, const Map &map, Write &&write) {
    Edited result;
    result.file = before;
    for (const auto &[key, value] : WritesOf(map)) {
        if (const auto after = write(result.file, key, value)) {
            result.file = *after;
            ++result.written;
        }
        result.possible += write(before, key, value) ? 1U : 0U;
    }
    return result;
}

TEST(IniEdit, Single_pass_equals_single_writes_for_all_small_files) {
    const Map maps[] = {{1, {{1, 0, L"/a"}}}, {2, {{1, 0, L"/a=b "}, {1, 1, L"/c "}}}};
    const std::vector<std::string> lines = {
        "", "[ISP_Fw]", "fw0_Path=/o=p", " fw1_TargetBank=7 ", "fw0_FileBank =1", "x"};
    for (const std::string &file : reference::SmallFiles(4, lines)) {
        for (const Map &map : maps) {
            ASSERT_EQ(ByTheLibrary(file, map), KeyByKey(file, map, SecondVersion(Encoding::Utf8)))
                << testing::PrintToString(file);
        }
    }
}

TEST(IniEdit, Unencodable_path_is_left_out_of_all_small_files) {
    const EnvironmentLocaleGuard locale("C");
    const Map map{2, {{0, 0, L"/\x4E2D"}, {1, 1, L"/a"}}};
    for (const std::string &file : reference::SmallFiles(6, {"", "[ISP_Fw]", "fw0_Path=/o"})) {
        ASSERT_EQ(ByTheLibrary(file, map), KeyByKey(file, map, SecondVersion(Encoding::Bytes)))
            << testing::PrintToString(file);
    }
}

TEST(IniEdit, Target_written_twice_at_line_limit_equals_single_writes) {
    const unsigned int values[] = {1, 0xFFFFFFFFU, 1234, 0x80000000U};
    for (std::size_t filler = 998; filler < 1010; ++filler) {
        const std::string file =
            "[ISP_Fw]\nfw1_TargetBank=" + std::string(filler, 'v') + "=\nK=1\n";
        for (const unsigned int first : values) {
            for (const unsigned int second : values) {
                const Map map{2, {{1, first, L""}, {1, second, L""}}};
                ASSERT_EQ(ByTheLibrary(file, map),
                          KeyByKey(file, map, SecondVersion(Encoding::Utf8)))
                    << filler << ' ' << first << ' ' << second;
            }
        }
    }
}

/// Random files and maps made of interesting pieces.
class Pieces {
  public:
    explicit Pieces(unsigned int seed) : m_random(seed) {}

    std::string File() {
        static const std::vector<std::string> lines = {
            "[ISP_Fw]", "[ISP_Fw]", " [ISP_Fw] ", "[T]", "", "x", "fwFileCount=3",
            "fwFileCount = 3", "fw0_TargetBank=0", "fw1_TargetBank=9", "fw-1_TargetBank=1",
            "fw0_FileBank=", " fw1_FileBank=1=2 ", "fw0_Path=/a", "fw1_Path=/a=/b", "fw1_Path=/c",
            "fw2_Path= /d ", "fw00_Path=/e", "fw-0_FileBank=1", "fw+1_Path=2", "fw_Path=/f",
            "fw7_Path=/g", "fw1_path=/h", "gw1_Path=/h", "fw4294967296_Path=/i", "fw1_PathX=/j",
            "=", "fw=1", "[ISP_Fw]\r",
            // from here on not every file can be read to its end, or in every encoding
            "fw0_Path=/\xC3\xA4", "fw1_Path=/\xE4", "\xC3",
            "\xA4\xA2=1", // a tilde in EUC-JP that is written back as another
            "fw7_Path=\x8F\xA2\xB7",
            // many bytes, but no more characters than a line may have
            "fw7_Path=" + std::string(50, 'v') + Repeated("\xC3\xA4", 500), "fw0_Path=/\xA4\xA2",
            std::string("fw0_Path=/k\0x=2", 15), std::string("[ISP_Fw]\0", 9),
            "fw1_TargetBank=" + std::string(1004, 'v') + "=1=",
            "fw0_TargetBank=" + std::string(1007, 'v') + "=",
            "fw1_Path=" + std::string(1000, 'v') + "=/l", std::string(1024, 'o')};
        constexpr std::size_t kPlain = 29;
        const std::size_t sorts = Below(3) == 0 ? lines.size() : kPlain;
        std::string file = Below(4) == 0 ? "" : "[ISP_Fw]\n";
        for (std::size_t count = Below(9); count > 0; --count) {
            file += lines[Below(sorts)] + (count == 1 && Below(2) == 0 ? "" : "\n");
        }
        return file;
    }

    Map OneMap() {
        static const std::vector<unsigned int> targets = {0, 1, 1, 2, 7, 0xFFFFFFFFU, 0x80000000U};
        static const std::vector<std::wstring> paths = {L"/a",
                                                        L"/b ",
                                                        L"",
                                                        L" /c",
                                                        L"  ",
                                                        L"/d=e",
                                                        L"=",
                                                        L"/\x00E4",
                                                        L"/\x3042",
                                                        L"/\x4E2D\x6587",
                                                        L"/\xD800",
                                                        L"/f\n[T]\nfw0_Path=/g",
                                                        L"/h\n",
                                                        std::wstring(260, L'p'),
                                                        std::wstring(260, L'\x00E4'),
                                                        std::wstring(1014, L'q'),
                                                        std::wstring(1015, L'q')};
        constexpr std::size_t kPlain = 7;
        const std::size_t sorts = Below(3) == 0 ? paths.size() : kPlain;
        const bool ascending = Below(2) == 0;
        const unsigned int start = targets[Below(targets.size())];
        Map map{static_cast<unsigned int>(Below(20)), {}};
        const std::size_t count = Below(Below(3) == 0 ? 12 : 5);
        for (unsigned int i = 0; i < count; ++i) {
            map.banks.push_back({ascending ? start + i : targets[Below(targets.size())],
                                 targets[Below(targets.size())], paths[Below(sorts)]});
        }
        return map;
    }

  private:
    static std::string Repeated(const std::string &text, int count) {
        std::string all;
        for (; count > 0; --count) {
            all += text;
        }
        return all;
    }

    std::size_t Below(std::size_t end) {
        return m_random() % end;
    }

    std::mt19937 m_random;
};

template <class Write> void CompareRandomInputs(unsigned int seed, Write &&write) {
    Pieces pieces(seed);
    for (int round = 0; round < 1000; ++round) {
        const std::string file = pieces.File();
        const Map map = pieces.OneMap();
        ASSERT_EQ(ByTheLibrary(file, map), KeyByKey(file, map, write))
            << "round " << round << ' ' << testing::PrintToString(file) << ' '
            << testing::PrintToString(WritesOf(map));
    }
}

TEST(IniEdit, Single_pass_equals_single_writes_for_random_UTF8_inputs) {
    CompareRandomInputs(1, SecondVersion(Encoding::Utf8));
}

struct LocaleCase {
    const char *name;
    const char *locale;
    bool mayBeMissing;
};

void PrintTo(const LocaleCase &row, std::ostream *stream) {
    *stream << row.locale;
}

class IniEditInLocale : public testing::TestWithParam<LocaleCase> {};

TEST_P(IniEditInLocale, Single_pass_equals_single_writes_for_random_inputs) {
    if (GetParam().mayBeMissing && !HasTestLocale(GetParam().locale)) {
        GTEST_SKIP() << "the locale was not made";
    }
    const EnvironmentLocaleGuard locale(GetParam().locale);
    CompareRandomInputs(2, SingleWriter());
}

INSTANTIATE_TEST_SUITE_P(Locales, IniEditInLocale,
                         testing::Values(LocaleCase{"plain_ASCII", "C", false},
                                         LocaleCase{"none", "xx_YY.nothing", false},
                                         LocaleCase{"Latin_1", "de_DE.ISO-8859-1", true},
                                         LocaleCase{"UTF_8", "de_DE.UTF-8", true},
                                         LocaleCase{"EUC_JP", "ja_JP.EUC-JP", true}),
                         [](const auto &row) { return row.param.name; });

TEST(IniEdit, Single_pass_equals_single_writes_without_valid_locale) {
    const EnvironmentLocaleGuard locale("xx_YY.nothing");
    CompareRandomInputs(3, SecondVersion(Encoding::Bytes));
}

TEST(IniEdit, Paths_of_several_lines_are_written_one_by_one) {
    std::mt19937 random(5);
    const std::wstring paths[] = {L"/a",
                                  L"/b\nq",
                                  L" /c \n r ",
                                  L"/d\n",
                                  L"\n\n",
                                  L"/e\nfw3_TargetBank=/f",
                                  L"/g\nfw4_TargetBank= 1 \nx\nfw5_Path=",
                                  L"/\x00E4\nfw23_Path=/\x00E4",
                                  L"/h\n=",
                                  L"/i\n[ISP_Fw]\nfw4_TargetBank=/j",
                                  L"/k\n" + std::wstring(1024, L'o'),
                                  L"/l\n\xDC80",
                                  L"/\x00E4\n\x3042"};
    const char *fronts[] = {"",
                            "[ISP_Fw]\n",
                            "[ISP_Fw]\nfw2_Path=/o=p\n\n[T]\nx=1\n",
                            "[ISP_Fw]\nfw1_Path=/o\n[ISP_Fw]\nfw2_Path=/p",
                            "\xE4\n",
                            "[ISP_Fw]\nfw22_Path=\xE4\n"};
    for (int round = 0; round < 150; ++round) {
        Map map{8, {}};
        // Mostly those that end a section; the others make the next write look at all lines.
        const std::size_t sorts = random() % 3 == 0 ? std::size(paths) : 8;
        for (unsigned int i = 0; i < 24; ++i) {
            map.banks.push_back({i % 9, i, paths[random() % sorts]});
        }
        const char *file = fronts[random() % std::size(fronts)];
        ASSERT_EQ(ByTheLibrary(file, map), KeyByKey(file, map, SecondVersion(Encoding::Utf8)))
            << testing::PrintToString(file) << ' ' << testing::PrintToString(WritesOf(map));
    }
}

TEST(IniEdit, File_is_readable_after_last_unreadable_line_is_replaced) {
    const std::string file = "[ISP_Fw]\nfw1_Path=\xE4\n";
    const Map map{
        4, {{0, 0, L"/m\nfw2_Path=/\x00E4"}, {1, 1, L"/a"}, {2, 2, L"/b"}, {3, 3, L"/\x00E4"}}};
    const Edited edited = ByTheLibrary(file, map);
    EXPECT_EQ(edited, KeyByKey(file, map, SecondVersion(Encoding::Utf8)));
    EXPECT_NE(edited.file.find("fw3_Path=/\xC3\xA4\n"), std::string::npos);
}

TEST(IniEdit, Repeated_sections_are_written_as_by_single_writes) {
    std::mt19937 random(4);
    Map map{40, {}};
    for (unsigned int i = 0; i < 40; ++i) {
        map.banks.push_back({i % 7, i, L"/" + std::to_wstring(i)});
    }
    const char *lines[] = {
        "[ISP_Fw]", "fw1_TargetBank=7", "fw30_Path=/o=p", "fw2_FileBank=1", "fw39_FileBank=", "",
        "x"};
    for (int round = 0; round < 50; ++round) {
        std::string file;
        for (unsigned int count = 0; count < 30; ++count) {
            file += std::string(lines[random() % std::size(lines)]) + "\n";
        }
        ASSERT_EQ(ByTheLibrary(file, map), KeyByKey(file, map, SecondVersion(Encoding::Utf8)))
            << file;
    }
}

/// 512 entries, and the file they make.
TEST(IniEdit, Value_with_equals_sign_is_replaced_as_by_single_writes) {
    const Map map{3, {{1, 0, L"/a=b"}, {1, 1, L"/c=d=e"}, {1, 2, L"/f"}}};
    for (const char *file : {"", "[ISP_Fw]\nfw1_TargetBank=1=2\n", "[ISP_Fw]\nfw0_Path=/o=p\n"}) {
        EXPECT_EQ(ByTheLibrary(file, map), KeyByKey(file, map, SecondVersion(Encoding::Utf8)));
    }
    // The value begins after the last "=", which then is that of the first value.
    const IniWrite writes[] = {{L"K", L"a=b"}, {L"K", L"c"}};
    TextFileEncoding encoding(TextFileEncoding::Charset::Environment);
    std::string after;
    EXPECT_EQ(EditIniBytes(encoding, "[S]\nK=1\n", L"S", writes, after), 2U);
    EXPECT_EQ(after, "[S]\nK=a=c\n");
}

TEST(IniEdit, File_of_5000_keys_is_edited_by_index) {
    std::string file = "[S]\n";
    for (int i = 0; i < 5000; ++i) {
        file += "K" + std::to_string(i) + "=0\n";
    }
    std::vector<std::wstring> keys;
    for (int i = 0; i < 40; ++i) {
        keys.push_back(L"K" + std::to_wstring(i * 128));
    }
    std::vector<IniWrite> writes;
    for (const std::wstring &key : keys) {
        writes.push_back({key, L"1"});
    }
    TextFileEncoding encoding(TextFileEncoding::Charset::Environment);
    std::string after;
    EXPECT_EQ(EditIniBytes(encoding, file, L"S", writes, after), writes.size());
    std::string expected = "[S]\n";
    for (int i = 0; i < 5000; ++i) {
        expected += "K" + std::to_string(i) + (i % 128 == 0 ? "=1\n" : "=0\n");
    }
    EXPECT_EQ(after, expected);
}

TEST(IniEdit, Full_map_of_512_banks_is_written_completely) {
    Map map{512, {}};
    std::string expected = "[ISP_Fw]\nfwFileCount=512\n";
    for (unsigned int i = 0; i < 512; ++i) {
        map.banks.push_back({i + 100, i, L"/\x00E4/" + std::to_wstring(i)});
        const std::string prefix = "fw" + std::to_string(i) + "_";
        expected += "fw" + std::to_string(i + 100) + "_TargetBank=" + std::to_string(i) + "\n" +
                    prefix + "FileBank=" + std::to_string(i) + "\n" + prefix + "Path=/\xC3\xA4/" +
                    std::to_string(i) + "\n";
    }
    EXPECT_EQ(ByTheLibrary("", map), (Edited{expected, 1 + 3 * 512U, 1 + 3 * 512U}));
    const std::string more = expected + "\n[X]\nY=1\n";
    EXPECT_EQ(ByTheLibrary(more, map), (Edited{more, 1 + 3 * 512U, 1 + 3 * 512U}));
}

} // namespace
