#include "support/TempFolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <unistd.h>

namespace fs = std::filesystem;

TempFolder::TempFolder() {
    std::string pattern = fs::canonical(fs::temp_directory_path()).string() + "/scaler-isp-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("no folder could be made as " + pattern);
    }
    m_path = pattern + "/";
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

std::string TempFolder::Write(const std::string &name, const std::string &bytes) const {
    const fs::path path = m_path + name;
    fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + path.string());
    }
    return path.string();
}

std::string TempFolder::MakeFolder(const std::string &name) const {
    fs::create_directories(m_path + name);
    return m_path + name;
}

std::string TempFolder::Read(const std::string &name) const {
    std::ifstream file(m_path + name, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + m_path + name);
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

bool TempFolder::Exists(const std::string &name) const {
    return fs::exists(fs::symlink_status(m_path + name));
}

CurrentFolderGuard::CurrentFolderGuard(const std::string &folder)
    : m_previous(fs::current_path().string()) {
    fs::current_path(folder);
}

CurrentFolderGuard::~CurrentFolderGuard() {
    std::error_code ignored;
    fs::current_path(m_previous, ignored);
}
