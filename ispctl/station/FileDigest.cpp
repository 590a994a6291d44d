#include "station/FileDigest.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <functional>
#include <sys/stat.h>

#include "ConsoleStreams.h"
#include "Pipe.h"
#include "station/Sha256.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;

/// Ignores the signal of a file size limit, so that a write fails with a reason.
class NoSizeSignal {
  public:
    NoSizeSignal() : m_previous(std::signal(SIGXFSZ, SIG_IGN)) {}
    ~NoSizeSignal() {
        std::signal(SIGXFSZ, m_previous);
    }
    NoSizeSignal(const NoSizeSignal &) = delete;
    NoSizeSignal &operator=(const NoSizeSignal &) = delete;

  private:
    void (*m_previous)(int);
};

// O_NONBLOCK: opening a pipe would wait for its writer.
Descriptor OpenRegular(const fs::path &file, std::uint64_t &size, std::string &error) {
    Descriptor source(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)); // NOLINT(*-vararg)
    struct stat status {};
    if (!source.IsOpen() || ::fstat(source.Number(), &status) != 0) {
        error = fmt::format("cannot read {}: {}", file.string(), std::strerror(errno));
        return Descriptor();
    }
    if (!S_ISREG(status.st_mode)) {
        error = fmt::format("{} is not a file", file.string());
        return Descriptor();
    }
    size = static_cast<std::uint64_t>(status.st_size);
    return source;
}

/// Passes everything to `use`, which returns false to stop.
std::optional<FileDigest>
Read(const fs::path &file, const std::function<bool(std::string_view)> &use, std::string &error) {
    std::uint64_t size = 0;
    const Descriptor source = OpenRegular(file, size, error);
    if (!source.IsOpen()) {
        return std::nullopt;
    }
    FileDigest digest;
    Sha256 hash;
    std::string buffer(1U << 16U, '\0');
    long count = 0;
    while ((count = ReadSome(source.Number(), buffer.data(), buffer.size())) > 0) {
        const std::string_view bytes(buffer.data(), static_cast<std::size_t>(count));
        hash.Add(bytes);
        digest.size += bytes.size();
        if (digest.size > size) {
            break;
        }
        if (!use(bytes)) {
            return std::nullopt;
        }
    }
    if (count < 0) {
        error = fmt::format("cannot read {}: {}", file.string(), std::strerror(errno));
        return std::nullopt;
    }
    if (digest.size != size) {
        error = fmt::format("{} changes while it is read; run again when it is complete",
                            file.string());
        return std::nullopt;
    }
    digest.sha256 = hash.Finish();
    return digest;
}

} // namespace

std::optional<FileDigest> DigestOf(const fs::path &file, std::string &error) {
    return Read(
        file, [](std::string_view) { return true; }, error);
}

std::optional<FileDigest> CopyFile(const fs::path &file, const fs::path &copy, std::string &error) {
    const NoSizeSignal guard;
    const auto fail = [&](int number) {
        error = fmt::format("cannot copy {} to {}: {}; set TMPDIR to a directory with enough space",
                            file.string(), copy.string(), std::strerror(number));
    };
    Descriptor target(
        ::open(copy.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0400)); // NOLINT(*-vararg)
    if (!target.IsOpen()) {
        fail(errno);
        return std::nullopt;
    }
    const auto write = [&](std::string_view bytes) {
        const int number = WriteAll(target.Number(), bytes);
        if (number != 0) {
            fail(number);
        }
        return number == 0;
    };
    auto digest = Read(file, write, error);
    const int number = target.Close();
    if (digest && number != 0) {
        fail(number);
        return std::nullopt;
    }
    return digest;
}

} // namespace ispctl
