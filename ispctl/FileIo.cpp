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

std::optional<std::string> ReadInputFile(const std::string &name, std::size_t limit,
                                         std::string &error) {
    const File file(std::fopen(name.c_str(), "rbe"));
    std::string bytes;
    char buffer[65536];
    std::size_t count = 0;
    while (file && (count = std::fread(buffer, 1, sizeof buffer, file.get())) > 0) {
        if (count > limit - bytes.size()) {
            error = fmt::format("{} is too large: at most {} bytes ({} KiB) are read", name, limit,
                                limit / 1024);
            return std::nullopt;
        }
        bytes.append(buffer, count);
    }
    if (!file || std::ferror(file.get()) != 0) {
        error = fmt::format("cannot read {}: {}", name, std::strerror(errno));
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
