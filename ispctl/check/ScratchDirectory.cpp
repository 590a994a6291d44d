#include "check/ScratchDirectory.h"

#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include <unistd.h> // mkdtemp on macOS

#include "FileIo.h"
#include "check/CallInput.h"

namespace ispctl::check {
namespace {

constexpr std::size_t kMadeUpBytes = 32; // as a key of many schemes has
constexpr const char *kLongestName = kFirmwareFile;

void Write(const std::filesystem::path &file, const std::string &bytes) {
    std::string error;
    if (!WriteOutputFile(file.string(), bytes, error)) {
        throw std::runtime_error(error);
    }
}

/// Throws std::exception.
std::string MakeDirectory() {
    std::string name = std::filesystem::temp_directory_path() / "ispctl-check-XXXXXX";
    // A record would hold only part of a longer path, which names another file.
    if ((std::filesystem::path(name) / kLongestName).string().size() >= SCALER_ISP_PATH_CHARS) {
        throw std::runtime_error("the path in TMPDIR is too long: the file " + name + "/" +
                                 kLongestName + " would not fit into a record");
    }
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "cannot create " + name);
    }
    return name;
}

} // namespace

ScratchDirectory::ScratchDirectory() : ScratchDirectory(MakeDirectory()) {
    // The directory has an owner by now: whatever fails here, the destructor removes it.
    Write(m_path / kFirmwareFile, std::string(SCALER_ISP_BANK_BYTES, 'F'));
    Write(m_path / kSignatureFile, std::string(kMadeUpBytes, 'S'));
    Write(m_path / kKeyFile, std::string(kMadeUpBytes, 'K'));
}

ScratchDirectory::ScratchDirectory(std::filesystem::path made) : m_path(std::move(made)) {}

ScratchDirectory::~ScratchDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

} // namespace ispctl::check
