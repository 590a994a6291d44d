// What the C library underneath decides, held on the macOS library itself: a bundle linked with it,
// whose one function a plain host calls. LC_ALL says which locale is in force.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "scaler_isp/ScalerIsp.h"

namespace {

int failures;
int checks;

void Check(bool holds, const char *text, int line) {
    ++checks;
    if (!holds) {
        ++failures;
        std::printf("line %d: %s\n", line, text);
    }
}

#define CHECK(...) Check((__VA_ARGS__), #__VA_ARGS__, __LINE__)

std::string Folder() {
    const char *folder = std::getenv("MODULE_FOLDER");
    return folder == nullptr ? "." : folder;
}

std::string Contents(const std::string &path) {
    std::string text;
    std::FILE *file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        return "no file";
    }
    char buffer[256];
    for (std::size_t n = 0; (n = std::fread(buffer, 1, sizeof buffer, file)) != 0;) {
        text.append(buffer, n);
    }
    std::fclose(file);
    return text;
}

void Store(const std::string &path, const char *text) {
    std::FILE *file = std::fopen(path.c_str(), "wb");
    if (file != nullptr) {
        std::fwrite(text, 1, std::strlen(text), file);
        std::fclose(file);
    }
}

void Utf8_is_converted_in_every_locale() {
    const CCpTransform transform;
    const std::wstring wide = L"a\u00e9\u20ac\U0001F600";
    const std::string narrow = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";
    CHECK(transform.ConvertUnicodeStringToUTF8(wide) == narrow);
    CHECK(transform.ConvertUTF8StringToUnicode(narrow) == wide);
    CHECK(transform.ConvertUnicodeStringToUTF8(std::wstring(1, wchar_t{0xD800})).empty());
    CHECK(transform.ConvertUnicodeStringToUTF8(std::wstring(1, wchar_t{0x110000})).empty());
    CHECK(transform.ConvertUTF8StringToUnicode("\xED\xA0\x80").empty());
    CHECK(transform.ConvertUTF8StringToUnicode("\xF4\x90\x80\x80").empty());
    CHECK(transform.ConvertUTF8StringToUnicode("\xF8\x88\x80\x80\x80").empty());
    CHECK(transform.ConvertUTF8StringToUnicode("a\xC3").empty());
    CHECK(transform.ConvertUTF8StringToUnicode("\xC0\x80").empty());
}

void Locale_text_follows_the_environment(const std::string &locale) {
    const CCpTransform transform;
    const std::string one = locale == "C.UTF-8" ? "\xC3\xA9" : "\xE9";
    CHECK(transform.ConvertUnicodeStringToANSI(L"\u00e9") == one);
    CHECK(transform.ConvertANSIStringToUnicode(one) == L"\u00e9");
    CHECK(transform.ConvertUnicodeStringToANSI(L"\u20ac") ==
          (locale == "C.UTF-8" ? "\xE2\x82\xAC" : ""));
}

void Wide_formatting_knows_numbers_and_text() {
    CCpNxString text;
    text.Format(L"%d|%08X|%ls|%c|%5.2f", -5, 0xBEEFU, L"wide", 'x', 2.5);
    CHECK(text == L"-5|0000BEEF|wide|x| 2.50");
    text.Format(L"%lld %lu %hu", 9007199254740993LL, 4294967295UL, 65535);
    CHECK(text == L"9007199254740993 4294967295 65535");
}

void Numbers_are_read_without_a_binary_prefix(const std::string &path) {
    const CCpNxString name(std::wstring(path.begin(), path.end()).c_str());
    Store(path, "[s]\na=0x10\nb=010\nc=0b11\nd=-7\ne=abc\nf=4294967296\n");
    CHECK(CpNxGetPrivateProfileIntW(L"s", L"a", 1, name.GetString()) == 16);
    CHECK(CpNxGetPrivateProfileIntW(L"s", L"b", 1, name.GetString()) == 8);
    CHECK(CpNxGetPrivateProfileIntW(L"s", L"c", 1, name.GetString()) == 0);
    CHECK(CpNxGetPrivateProfileIntW(L"s", L"d", 1, name.GetString()) == -7);
    CHECK(CpNxGetPrivateProfileIntW(L"s", L"e", 1, name.GetString()) == 0);
    CHECK(CpNxGetPrivateProfileIntW(L"s", L"f", 1, name.GetString()) == 0);
    CHECK(CpNxGetPrivateProfileIntW(L"s", L"none", 1, name.GetString()) == 1);
    CHECK(CpNxGetPrivateProfileIntA("s", "a", 1, path.c_str()) == 16);
    CHECK(CpNxGetPrivateProfileIntA("s", "c", 1, path.c_str()) == 0);
}

void Settings_are_written_in_the_locale(const std::string &path, const std::string &locale) {
    const CCpNxString name(std::wstring(path.begin(), path.end()).c_str());
    const std::string stored =
        locale == "C.UTF-8" ? "[s]\nk=1\nn=\xC3\xA9\n" : "[s]\nk=1\nn=\xE9\n";
    Store(path, "[s]\nk=1\n");
    CHECK(CpNxWritePrivateProfileStringW(L"s", L"n", L"\u00e9", name.GetString()) == 1);
    CHECK(Contents(path) == stored);
    wchar_t value[8] = L"";
    CHECK(CpNxGetPrivateProfileStringW(L"s", L"n", L"", value, 8, name.GetString()) == 1);
    CHECK(std::wstring(value) == L"\u00e9");
    if (locale != "C.UTF-8") { // what cannot be expressed leaves the file as it was
        CHECK(CpNxWritePrivateProfileStringW(L"s", L"e", L"\u20ac", name.GetString()) == 0);
        CHECK(Contents(path) == stored);
    }
}

void Missing_file_has_its_full_path() {
    CHECK(GetFileFullPath("missing.bin", Folder() + "/") == Folder() + "/missing.bin");
    CHECK(GetFileFullPath("/missing.bin", Folder() + "/") == "/missing.bin");
    CHECK(GetFileFullPath("../missing.bin", Folder() + "/x/../").find("..") == std::string::npos);
}

/// Only the limit differs between systems; the path never becomes a part of what was named.
void Path_that_is_too_long_is_empty() {
    const std::string name = "/" + std::string(255, 'x');
    std::string path = Folder();
    std::size_t made = 0;
    for (; path.size() <= 1023; path += name, ++made) {
        CHECK(mkdir((path + name).c_str(), 0700) == 0 || path.size() + name.size() > 1023);
    }
    CHECK(made >= 3);
    CHECK(GetAbsolutePath(path).empty());
    CHECK(GetAbsolutePath(path + "/..").empty());
    for (; made > 0; --made) {
        rmdir(path.c_str());
        path.resize(path.size() - name.size());
    }
    CHECK(GetAbsolutePath(path) == Folder());
}

void File_used_as_directory_is_empty(const std::string &path) {
    Store(path, "x");
    for (const char *ending : {"/", "/.", "/..", "/x"}) {
        CHECK(GetAbsolutePath(path + ending).empty());
    }
    CHECK(GetAbsolutePath(path) == path);
}

} // namespace

/// RETURNS the number of checks that fail, each named on standard output; the number of all in `all`.
extern "C" SCALER_ISP_API int RunPlatformChecks(const char *locale, int *all) {
    const std::string path = Folder() + "/settings.ini";
    Utf8_is_converted_in_every_locale();
    Locale_text_follows_the_environment(locale);
    Wide_formatting_knows_numbers_and_text();
    Numbers_are_read_without_a_binary_prefix(path);
    Settings_are_written_in_the_locale(path, locale);
    Missing_file_has_its_full_path();
    Path_that_is_too_long_is_empty();
    File_used_as_directory_is_empty(path);
    std::remove(path.c_str());
    *all = checks;
    return failures;
}
