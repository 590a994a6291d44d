#include "PluginCodes.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <fcntl.h>
#include <sys/stat.h>

#include "Pipe.h"

namespace ispctl {
namespace {

constexpr std::size_t kMaxFile = std::size_t{64} * 1024;
constexpr std::string_view kSpace = " \t\r";

std::string_view Trim(std::string_view text) {
    const auto begin = text.find_first_not_of(kSpace);
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(kSpace) + 1 - begin);
}

/// The number in front of a line, which is removed. Codes are 32 bits, written with or without
/// sign.
std::optional<int> TakeCode(std::string_view &line) {
    const auto end = std::min(line.find_first_of(kSpace), line.size());
    std::string_view word = line.substr(0, end);
    const bool hex = word.starts_with("0x") || word.starts_with("0X");
    word.remove_prefix(hex ? 2 : 0);
    std::int64_t number = 0;
    const auto [stop, error] =
        std::from_chars(word.data(), word.data() + word.size(), number, hex ? 16 : 10);
    if (error != std::errc() || stop != word.data() + word.size() || number < INT32_MIN ||
        number > std::int64_t{UINT32_MAX}) {
        return std::nullopt;
    }
    line.remove_prefix(end);
    return static_cast<int>(static_cast<std::uint32_t>(number));
}

PluginCode SplitWords(std::string_view words) {
    words = Trim(words);
    for (const std::string_view separator : {std::string_view("\t"), std::string_view(" | ")}) {
        if (const auto at = words.find(separator); at != std::string_view::npos) {
            return {std::string(Trim(words.substr(0, at))),
                    std::string(Trim(words.substr(at + separator.size())))};
        }
    }
    return {std::string(words), ""};
}

std::optional<PluginCode> FindInFile(const std::filesystem::path &path, int code) {
    // Without waiting for the writer of a pipe that has this name.
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file.IsOpen() || ::fstat(file.Number(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    std::string text;
    std::array<char, 4096> buffer{};
    for (long length = 0; text.size() < kMaxFile &&
                          (length = ReadSome(file.Number(), buffer.data(), buffer.size())) > 0;) {
        text.append(buffer.data(), static_cast<std::size_t>(length));
    }
    text.resize(std::min(text.size(), kMaxFile));
    return FindPluginCodeIn(text, code);
}

} // namespace

std::optional<PluginCode> FindPluginCodeIn(std::string_view file, int code) {
    while (!file.empty()) {
        std::string_view line = file.substr(0, file.find('\n'));
        file.remove_prefix(std::min(line.size() + 1, file.size()));
        line = Trim(line);
        if (TakeCode(line) == code && !Trim(line).empty()) {
            return SplitWords(line);
        }
    }
    return std::nullopt;
}

std::optional<PluginCode> FindPluginCode(const std::filesystem::path &libraryDirectory, int code) {
    return FindInFile(libraryDirectory / "PlugIn/libIsp.codes", code);
}

std::optional<PluginCode> FindCommCode(const std::filesystem::path &commLibrary, int code) {
    return FindInFile(std::filesystem::path(commLibrary).replace_extension(".codes"), code);
}

} // namespace ispctl
