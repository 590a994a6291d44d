#ifndef ISPCTL_CHECK_CALL_INPUT_H
#define ISPCTL_CHECK_CALL_INPUT_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "explain/RecordFields.h"
#include "scaler_isp/abi/CommandSetting.h"

namespace ispctl::check {

/// The files that calls are given, and those that they make, in a directory of their own.
inline constexpr const char *kFirmwareFile = "firmware.bin";
inline constexpr const char *kSignatureFile = "made-up.sig";
inline constexpr const char *kKeyFile = "made-up.key";
inline constexpr const char *kMadeSignatureFile = "made.sig";
inline constexpr const char *kDumpFile = "dump.bin";

/// UNITS: bytes.
inline constexpr std::size_t kDumpBytes = 256;

/// What one call is given: a record with its defaults, and a buffer for a key.
class CallInput {
  public:
    /// \param directory  where the files are
    CallInput(RecordKind record, std::string directory);

    STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING &Command() {
        return *reinterpret_cast<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *>(m_bytes.data());
    }
    STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS &Sign() {
        return *reinterpret_cast<STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *>(m_bytes.data());
    }
    unsigned char *Key() {
        return m_key.data();
    }
    /// The key for the sign/verify plug-in; null unless one was made up.
    char *KeyFromFlash() {
        return m_hasKey ? reinterpret_cast<char *>(m_key.data()) : nullptr;
    }
    void MakeUpKey();

    std::string PathOf(const char *name) const {
        return m_directory + "/" + name;
    }
    /// Stores the absolute path of a file. REQUIRES: a field of the record.
    void StorePath(wchar_t (&field)[SCALER_ISP_PATH_CHARS], const char *name) const;
    void StorePath(char (&field)[SCALER_ISP_PATH_CHARS], const char *name) const;

    /// To be called when everything is stored.
    void RememberRecord() {
        m_before = m_bytes;
    }
    /// The offset of the first byte that has changed since.
    std::optional<std::size_t> ChangedOffset() const;
    /// Whether something was written past the capacity that a key has.
    bool KeyIsTooLong() const;
    bool KeyIsEmpty() const;

  private:
    std::string m_directory;
    std::vector<unsigned char> m_bytes;
    std::vector<unsigned char> m_before;
    std::vector<unsigned char> m_key;
    bool m_hasKey = false;
};

} // namespace ispctl::check

#endif
