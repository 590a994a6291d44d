#include "check/ScratchDirectory.h"

#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <system_error>

#include "FileIo.h"
#include "check/CallInput.h"

namespace ispctl::check {
namespace {

constexpr std::size_t kMadeUpBytes = 32; // as a key of many schemes has

void Write(const std::filesystem::path &file, const std::string &bytes) {
    std::string error;
    if (!WriteOutputFile(file.string(), bytes, error)) {
        throw std::runtime_error(error);
    }
}

} // namespace

ScratchDirectory::ScratchDirectory() {
    std::string name = std::filesystem::temp_directory_path() / "ispctl-check-XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "cannot create " + name);
    }
    m_path = name;
    Write(m_path / kFirmwareFile, std::string(SCALER_ISP_BANK_BYTES, 'F'));
    Write(m_path / kSignatureFile, std::string(kMadeUpBytes, 'S'));
    Write(m_path / kKeyFile, std::string(kMadeUpBytes, 'K'));
}

ScratchDirectory::~ScratchDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

} // namespace ispctl::check
