#include "ScratchFolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

ScratchFolder::ScratchFolder(const std::string &base) {
    const std::filesystem::path place =
        base.empty() ? std::filesystem::temp_directory_path() : std::filesystem::path(base);
    std::string pattern = place / "scaler-isp-bench-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("cannot create a directory for the measurement");
    }
    m_path = pattern + "/";
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

void ScratchFolder::AddFile(const std::string &name, std::uintmax_t size) {
    if (!std::ofstream(m_path + name)) {
        throw std::runtime_error("no file " + name);
    }
    std::filesystem::resize_file(m_path + name, size);
}
