#include "scaler_isp/settings/ProfileFile.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sys/stat.h>
#include <utility>

namespace {

constexpr std::size_t kBlockBytes = std::size_t{64} * 1024;

struct CloseFile {
    void operator()(std::FILE *file) const {
        std::fclose(file);
    }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

/// Opens without a buffer: whole blocks go through it, a copy would be waste.
File Open(const std::string &path, const char *mode) {
    File file(std::fopen(path.c_str(), mode));
    if (file) {
        std::setvbuf(file.get(), nullptr, _IONBF, 0);
    }
    return file;
}

/// The size of a regular file; of anything else 0, since it may have no end.
std::size_t RegularSize(std::FILE *file) {
    struct stat status {};
    const bool regular = ::fstat(::fileno(file), &status) == 0 && S_ISREG(status.st_mode);
    return regular ? static_cast<std::size_t>(status.st_size) : 0;
}

bool WriteAll(File file, const std::string &bytes) {
    const std::size_t written = std::fwrite(bytes.data(), 1, bytes.size(), file.get());
    const bool closed = std::fclose(file.release()) == 0;
    return closed && written == bytes.size();
}

} // namespace

ProfileBytes ReadProfileFile(const std::string &path) {
    ProfileBytes result;
    const File file = Open(path, "rb");
    result.opened = file != nullptr;
    result.missing = !result.opened && errno == ENOENT;
    if (!result.opened) {
        return result;
    }
    const std::size_t size = RegularSize(file.get());
    std::size_t used = 0;
    std::size_t block = size + 1; // one more, so that the end is seen without another round
    while (true) {
        block = block > 1 ? block : kBlockBytes;
        result.bytes.resize(used + block);
        const std::size_t got = std::fread(&result.bytes[used], 1, block, file.get());
        // A device that sends zeros for ever holds one overlong line, which nobody reads.
        const bool endless = size == 0 && std::memchr(&result.bytes[used], '\n', got) == nullptr;
        used += got;
        if (got < block || endless) {
            break;
        }
        block = kBlockBytes;
    }
    result.bytes.resize(used);
    return result;
}

RewriteResult RewriteProfileFile(const std::string &path, const std::string &bytes,
                                 const ProfileBytes &before) {
    File file = Open(path, "wb");
    if (!file) {
        return RewriteResult::CannotOpen;
    }
    if (WriteAll(std::move(file), bytes)) {
        return RewriteResult::Written;
    }
    if (before.missing) {
        std::remove(path.c_str());
    } else if (File again = Open(path, "wb")) {
        WriteAll(std::move(again), before.bytes);
    }
    return RewriteResult::Restored;
}
