#include "doctor/LocaleCheck.h"

#include <algorithm>
#include <clocale>
#include <cstdlib>

#if defined(__APPLE__)
#include <xlocale.h>
#endif

#include "Environment.h"
#include "Utf8.h"

namespace ispctl::doctor {
namespace {

// As the system looks for it: the first of these that is not empty.
std::string NameOfLocale() {
    for (const char *variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char *value = std::getenv(variable); // NOLINT(concurrency-mt-unsafe)
        if (value != nullptr && *value != '\0') {
            return std::string(variable) + "=" + value;
        }
    }
    return "no LC_ALL, LC_CTYPE or LANG";
}

bool LocaleExists() {
    const locale_t locale = ::newlocale(LC_CTYPE_MASK, "", nullptr);
    if (locale == nullptr) {
        return false;
    }
    ::freelocale(locale);
    return true;
}

bool IsAscii(const std::string &text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// How the library reads the name: in the environment's encoding, on Linux else as UTF-8.
void CheckDirectoryName(const Places &places, const std::string &encoding, bool ascii,
                        Report &report) {
    const std::string directory = places.directory.string();
    const bool isText = IsTextOfEnvironment(places.directory) && !(ascii && !IsAscii(directory));
    if (IsAscii(directory) || (isText && IsUtf8Environment())) {
        report.Add(FindingId::DirectoryText, directory);
    } else if (isText) {
        report.Add(FindingId::DirectoryMisread, directory, encoding);
    } else if (HasNameInRecords(places.directory)) {
        report.Add(FindingId::DirectoryText, directory);
    } else {
        report.Add(FindingId::DirectoryNotText, directory, encoding);
    }
}

} // namespace

bool IsPlainAscii(const std::string &encoding) {
    return encoding == "ANSI_X3.4-1968" || encoding == "US-ASCII" || encoding.empty();
}

void CheckLocale(const Places &places, Report &report) {
    const std::string encoding = EnvironmentEncoding();
    const bool ascii = IsPlainAscii(encoding);
    if (!LocaleExists()) {
        report.Add(FindingId::LocaleMissing, "", NameOfLocale());
    } else if (IsUtf8Environment()) {
        report.Add(FindingId::LocaleUtf8, "", NameOfLocale());
    } else if (ascii) {
        report.Add(FindingId::LocaleAscii, "", NameOfLocale());
    } else {
        report.Add(FindingId::LocaleOther, "", encoding);
    }
    CheckDirectoryName(places, encoding, ascii, report);
}

} // namespace ispctl::doctor
