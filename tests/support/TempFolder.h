#ifndef SCALER_ISP_TESTS_SUPPORT_TEMP_FOLDER_H
#define SCALER_ISP_TESTS_SUPPORT_TEMP_FOLDER_H

#include <string>

/// A fresh folder of its own, removed with everything in it at the end.
///
/// Its path has no symbolic link in it, so results of realpath can be compared with it.
class TempFolder {
  public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder &) = delete;
    TempFolder &operator=(const TempFolder &) = delete;

    /// The folder's absolute path, ending in "/".
    const std::string &Path() const {
        return m_path;
    }
    /// Absolute path of something in the folder; it need not exist.
    std::string Path(const std::string &name) const {
        return m_path + name;
    }

    /// Writes a file, byte for byte, and the folders above it. RETURNS its absolute path.
    std::string Write(const std::string &name, const std::string &bytes) const;
    /// Makes a folder and the folders above it. RETURNS its absolute path, without "/" at the end.
    std::string MakeFolder(const std::string &name) const;
    /// The bytes of a file; throws where it cannot be read.
    std::string Read(const std::string &name) const;
    bool Exists(const std::string &name) const;

  private:
    std::string m_path;
};

/// Makes a folder the current one while it lives.
class CurrentFolderGuard {
  public:
    explicit CurrentFolderGuard(const std::string &folder);
    ~CurrentFolderGuard();
    CurrentFolderGuard(const CurrentFolderGuard &) = delete;
    CurrentFolderGuard &operator=(const CurrentFolderGuard &) = delete;

  private:
    std::string m_previous;
};

#endif
