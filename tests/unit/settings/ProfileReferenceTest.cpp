#include <gtest/gtest.h>
#include <random>

#include "scaler_isp/settings/IniEdit.h"
#include "support/TempFolder.h"
#include "support/TestLocale.h"
#include "unit/settings/LibraryRead.h"
#include "unit/settings/ProfileFamilies.h"
#include "unit/settings/ReferenceProfile.h"

namespace {

using reference::Encoding;

struct ProfileWrite {
    std::wstring section;
    std::wstring key;
    std::wstring value;
};

std::string Shown(const std::string &bytes) {
    return testing::PrintToString(bytes);
}

std::string Shown(const ProfileWrite &write) {
    return " | " + testing::PrintToString(write.section) + " " + testing::PrintToString(write.key) +
           " " + testing::PrintToString(write.value);
}

/// A string as the narrow family gets it.
std::wstring AsBytes(const std::wstring &text) {
    return Wide(Narrow(text).c_str()); // ends at a NUL
}

using Charset = TextFileEncoding::Charset;

/// The library's search and writer for one family.
void CompareFamily(const std::string &bytes, Charset charset, Encoding encoding,
                   const ProfileWrite &write) {
    EXPECT_EQ(ReadByLibrary(bytes, charset, write.section, write.key),
              reference::GetString(bytes, encoding, write.section, write.key, L"dflt"));
    const auto expected = reference::Write(bytes, encoding, write.section, write.key, write.value);
    TextFileEncoding native(charset);
    const IniWrite request{write.key, write.value};
    std::string after;
    EXPECT_EQ(EditIniBytes(native, bytes, write.section, {&request, 1}, after),
              expected.has_value() ? 1U : 0U);
    EXPECT_EQ(after, expected.value_or(bytes));
}

void CompareSingle(const std::string &bytes, Encoding encoding, const ProfileWrite &write) {
    CompareFamily(bytes, Charset::Environment, encoding, write);
    CompareFamily(bytes, Charset::Bytes, Encoding::Bytes,
                  {AsBytes(write.section), AsBytes(write.key), AsBytes(write.value)});
    if (testing::Test::HasFailure()) {
        ADD_FAILURE() << Shown(bytes) << Shown(write);
    }
}

TEST(ProfileReference, All_small_files_agree_with_reference) {
    const std::vector<std::string> lines = {"", "[S]", "K=1", "L=2", " K = 3 ", "x"};
    for (const std::string &file : reference::SmallFiles(5, lines)) {
        CompareSingle(file, Encoding::Utf8, {L"S", L"K", L"9"});
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

/// Random files and writes made of interesting pieces.
class Pieces {
  public:
    explicit Pieces(unsigned int seed) : m_random(seed) {}

    std::size_t Below(std::size_t end) {
        return m_random() % end;
    }

    template <class List> auto OneOf(const List &list) {
        return list[Below(list.size())];
    }

    std::string File() {
        static const std::vector<std::string> lines = {"[S]",
                                                       "[S]",
                                                       "[T]",
                                                       "[]",
                                                       " [S] ",
                                                       "[S]\r",
                                                       "[a=b]",
                                                       "[\xC3\xA4]",
                                                       "",
                                                       "  ",
                                                       "x",
                                                       ";=",
                                                       "K=1",
                                                       "K=1",
                                                       "L=2",
                                                       "K = 3",
                                                       " K=4 ",
                                                       "K=a=b",
                                                       "=v",
                                                       "=",
                                                       "K=",
                                                       "k=5",
                                                       "K=\xC3\xA4",
                                                       "\xC3\xA4=6",
                                                       "[\xE4]",
                                                       "K=\xE4",
                                                       "\xC3",
                                                       std::string("K=1\0x=2", 7),
                                                       std::string("[S]\0", 4),
                                                       "K=" + std::string(1021, 'v'),
                                                       std::string(1024, 'o'),
                                                       "L=" + Repeated("\xC3\xA4", 900),
                                                       "M=" + std::string(1015, 'w') + "=x"};
        // Most files are of the plain sort, else nothing would ever be read to its end.
        const std::size_t sorts = Below(3) == 0 ? lines.size() : 21;
        std::string file;
        for (std::size_t count = Below(9); count > 0; --count) {
            file += lines[Below(sorts)] + (count == 1 && Below(2) == 0 ? "" : "\n");
        }
        return file;
    }

    ProfileWrite Write() {
        static const std::vector<std::wstring> sections = {L"S",   L"S",  L"T",      L"",
                                                           L"a=b", L"S ", L"\x00E4", L"S]\n[T"};
        static const std::vector<std::wstring> keys = {
            L"K",  L"K",   L"L",      L"J",   L"M",   L"",       L"K ",
            L" K", L"K=a", L"\x00E4", L"[S]", L"K\n", L"\x4E2D", L"J\n[T]\nx"};
        static const std::vector<std::wstring> values = {L"1",
                                                         L"22",
                                                         L"",
                                                         L" v ",
                                                         L"a=b",
                                                         L"=",
                                                         L"= ",
                                                         L"\x00E4",
                                                         L"\x4E2D\x6587",
                                                         L"\nK=2",
                                                         L"1\n\n[S]\n",
                                                         L"\xD800",
                                                         std::wstring(1021, L'n'),
                                                         std::wstring(1022, L'n'),
                                                         std::wstring(600, L'\x00E4'),
                                                         std::wstring(1000, L'n') + L"=="};
        const bool plain = Below(3) != 0;
        return {sections[Below(plain ? 3 : sections.size())], keys[Below(plain ? 6 : keys.size())],
                values[Below(plain ? 7 : values.size())]};
    }

  private:
    static std::string Repeated(const std::string &text, int count) {
        std::string all;
        for (; count > 0; --count) {
            all += text;
        }
        return all;
    }

    std::mt19937 m_random;
};

void CompareRandomInputs(Encoding encoding, unsigned int seed) {
    Pieces pieces(seed);
    for (int round = 0; round < 5000; ++round) {
        CompareSingle(pieces.File(), encoding, pieces.Write());
        ASSERT_FALSE(testing::Test::HasFailure()) << "round " << round;
    }
}

/// A search of a long file may end in its first bytes, when nothing is known of the others.
void CompareLongFiles(unsigned int seed) {
    Pieces pieces(seed);
    const TempFolder folder;
    for (int round = 0; round < 2000; ++round) {
        std::string bytes = "[S]\n";
        for (const std::size_t size = 3900 + pieces.Below(400); bytes.size() < size;) {
            bytes += pieces.Below(4) == 0 ? pieces.File() : "fw" + std::to_string(round) + "=x\n";
        }
        const std::string path = folder.Write("p.ini", bytes);
        const ProfileWrite names = pieces.Write();
        for (const Charset charset : {Charset::Environment, Charset::Bytes}) {
            ASSERT_EQ(ReadFileByLibrary(path, charset, names.section, names.key),
                      ReadByLibrary(bytes, charset, names.section, names.key))
                << Shown(bytes) << Shown(names);
        }
    }
}

TEST(ProfileReference, Long_files_are_searched_as_complete_text_in_UTF8) {
    CompareLongFiles(5);
}

TEST(ProfileReference, Long_files_are_searched_as_complete_text_in_ASCII) {
    const EnvironmentLocaleGuard locale("C");
    CompareLongFiles(6);
}

TEST(ProfileReference, Random_inputs_agree_with_reference_in_UTF8) {
    CompareRandomInputs(Encoding::Utf8, 1);
}

TEST(ProfileReference, Random_inputs_agree_with_reference_in_ASCII_locale) {
    const EnvironmentLocaleGuard locale("C");
    CompareRandomInputs(Encoding::Bytes, 2);
}

TEST(ProfileReference, Random_inputs_agree_with_reference_in_invalid_locale) {
    const EnvironmentLocaleGuard locale("xx_YY.nothing");
    CompareRandomInputs(Encoding::Bytes, 3);
}

TEST(ProfileReference, Random_inputs_agree_with_reference_in_Latin_1) {
    if (!HasTestLocale("de_DE.ISO-8859-1")) {
        GTEST_SKIP() << "the locale de_DE.ISO-8859-1 was not made";
    }
    const EnvironmentLocaleGuard locale("de_DE.ISO-8859-1");
    CompareRandomInputs(Encoding::Bytes, 4);
}

} // namespace
