#include "station/AddStation.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fmt/format.h>
#include <iterator>
#include <string_view>

#include "Utf8.h"
#include "VisibleText.h"

namespace ispctl {
namespace {

constexpr double kLongestWaitSeconds = 86400;
constexpr double kExampleSeconds = 10;
constexpr std::size_t kMaxTagBytes = 1024;

bool IsKeyCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '.' || c == '-';
}

bool HasControl(std::string_view text) {
    for (; !text.empty(); text.remove_prefix(DecodeFirst(text).length)) {
        if (IsControl(DecodeFirst(text).value)) {
            return true;
        }
    }
    return false;
}

/// RETURNS what is wrong with a tag; empty if nothing is.
std::string TagError(const std::string &text, std::size_t equals, const std::vector<Tag> &tags) {
    const std::string key = text.substr(0, equals);
    if (equals == std::string::npos || key.empty()) {
        return "write KEY=VALUE, such as serial=4711";
    }
    if (!std::all_of(key.begin(), key.end(), IsKeyCharacter)) {
        return "a key consists of letters, digits, \"_\", \".\" and \"-\"";
    }
    if (text.size() == equals + 1) {
        return "the value of " + key + " is empty";
    }
    if (text.size() > kMaxTagBytes) {
        return "a tag has at most " + std::to_string(kMaxTagBytes) + " bytes";
    }
    if (!WideFromUtf8(text) || HasControl(text)) {
        return "the value of " + key + " contains control characters or is not valid UTF-8";
    }
    const bool isKnown =
        std::any_of(tags.begin(), tags.end(), [&](const Tag &tag) { return tag.first == key; });
    return isKnown ? key + " is given twice" : "";
}

/// Throws CLI::ValidationError for a tag that a later search would not find.
void AddTag(const std::string &text, std::vector<Tag> &tags) {
    const std::size_t equals = text.find('=');
    const std::string error = TagError(text, equals, tags);
    if (!error.empty()) {
        throw CLI::ValidationError("--tag " + Visible(text, Layout::OneLine, Charset::Utf8), error);
    }
    tags.emplace_back(text.substr(0, equals), text.substr(equals + 1));
}

bool IsWait(double seconds) {
    return seconds >= 0 && seconds <= kLongestWaitSeconds;
}

/// RETURNS why a value of --wait is wrong; empty if it is not. A duration with a unit, such as
/// "10s", is answered with its seconds.
std::string WaitError(const std::string &text) {
    struct Unit {
        std::string_view name;
        double seconds;
    };
    constexpr Unit kUnits[] = {{"s", 1},  {"sec", 1},  {"seconds", 1},  {"ms", 0.001},
                               {"m", 60}, {"min", 60}, {"minutes", 60}, {"h", 3600}};
    char *end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    if (end != text.c_str() && *end == '\0') {
        return IsWait(number) ? ""
                              : fmt::format("{} is out of range: 0 to {} seconds are allowed", text,
                                            kLongestWaitSeconds);
    }
    const std::string_view rest = end + std::strspn(end, " ");
    const auto *unit = std::find_if(std::begin(kUnits), std::end(kUnits),
                                    [&](const Unit &row) { return row.name == rest; });
    const double meant = unit == std::end(kUnits) ? kExampleSeconds : number * unit->seconds;
    return fmt::format("{} is not a plain number of seconds: write it without a unit, such as "
                       "--wait {}",
                       text, IsWait(meant) ? meant : kExampleSeconds);
}

} // namespace

void AddStationOptions(CLI::App &run, StationOptions &options) {
    CLI::Option *station =
        run.add_option("--station", options.file, "append a JSON record to FILE, lock the device")
            ->type_name("FILE");
    run.add_option_function<std::vector<std::string>>(
           "--tag",
           [&options](const std::vector<std::string> &texts) {
               for (const std::string &text : texts) {
                   AddTag(text, options.tags);
               }
           },
           "put this into record and log; repeatable")
        ->type_name("KEY=VALUE")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    run.add_option("--wait", options.wait, "wait so long for a device in use")
        ->check(WaitError)
        ->type_name("SECONDS")
        ->needs(station);
    run.add_option("--backup", options.backup, "first read what is programmed over into DIR")
        ->type_name("DIR");
    CLI::Option *copy = run.add_flag("--private-copy", options.privateCopy,
                                     "run on copies; the default with --station")
                            ->disable_flag_override();
    run.add_flag("--no-private-copy", options.noPrivateCopy, "run on the files themselves")
        ->disable_flag_override()
        ->excludes(copy);
}

} // namespace ispctl
