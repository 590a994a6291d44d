#include "FileIo.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fmt/format.h>
#include <memory>

namespace ispctl {
namespace {

struct Closer {
    void operator()(std::FILE *file) const {
        std::fclose(file);
    }
};
using File = std::unique_ptr<std::FILE, Closer>;

} // namespace

std::optional<std::string> ReadInput(InputSource source, const std::string &shown,
                                     std::size_t limit, InputFault &fault) {
    std::string bytes;
    char buffer[65536];
    long count = -1;
    while (source.IsOpen() && (count = source.Read(buffer, sizeof buffer)) > 0) {
        if (static_cast<std::size_t>(count) > limit - bytes.size()) {
            fault = {InputFault::Kind::TooLarge,
                     fmt::format("{} is too large: at most {} bytes ({} KiB) are read", shown,
                                 limit, limit / 1024)};
            return std::nullopt;
        }
        bytes.append(buffer, static_cast<std::size_t>(count));
    }
    if (count < 0 || source.LacksWriter()) {
        fault = {InputFault::Kind::Unreadable,
                 fmt::format("cannot read {}: {}", shown,
                             count < 0 ? std::strerror(errno) : "nobody writes to this pipe")};
        return std::nullopt;
    }
    return bytes;
}

bool WriteOutputFile(const std::string &name, const std::string &bytes, std::string &error) {
    File file(std::fopen(name.c_str(), "wbe"));
    const bool written =
        file && std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
    // fclose writes the rest of stdio's buffer, so it can fail like a write.
    if (!written || std::fclose(file.release()) != 0) {
        error = fmt::format("cannot write {}: {}", name, std::strerror(errno));
        return false;
    }
    return true;
}

} // namespace ispctl
