#ifndef ISPCTL_STATION_DEVICE_LOCK_H
#define ISPCTL_STATION_DEVICE_LOCK_H

#include <filesystem>
#include <optional>
#include <string>

#include "Pipe.h"

namespace ispctl {

/// An advisory lock on a device: one directory of a library, one interface number. It is held by
/// the library's process, which may outlive the ispctl that started it, and ends with that process.
/// Nothing in the library respects it, only other runs with `--station`.
class DeviceLock {
  public:
    /// \param directory  of the library
    /// \param interface  number of the communication interface; 0: none given
    DeviceLock(const std::filesystem::path &directory, int interface);

    /// Tries once. \param holder  one line for those who find the device locked
    /// RETURNS false if it is locked or cannot be locked; Problem() says which.
    bool Take(const std::string &holder);
    /// Who holds the lock, as far as it is known; after a failed Take.
    const std::string &Holder() const {
        return m_holder;
    }
    /// Why the lock cannot be taken by anyone; empty: it can.
    const std::string &Problem() const {
        return m_problem;
    }
    const std::filesystem::path &File() const {
        return m_file;
    }

  private:
    bool Open();
    bool OpenFile();
    bool IsCurrent() const;
    void WriteHolder(const std::string &holder) const;

    std::filesystem::path m_file;
    Descriptor m_descriptor;
    std::string m_holder;
    std::string m_problem;
};

} // namespace ispctl

#endif
