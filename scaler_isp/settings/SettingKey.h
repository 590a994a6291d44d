#ifndef SCALER_ISP_SETTINGS_SETTING_KEY_H
#define SCALER_ISP_SETTINGS_SETTING_KEY_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "scaler_isp/settings/ProfileStore.h"

/// One key of a settings file and the 32-bit field of a record that receives it.
struct SettingKey {
    const wchar_t *pszSection;
    const wchar_t *pszKey;
    int nDefault;
    std::size_t nOffset; ///< UNITS: bytes from the start of the record
};

/// A row whose key has the field's own name.
#define SCALER_ISP_SETTING_KEY(RECORD, SECTION, FIELD, DEFAULT)                                    \
    SettingKey {                                                                                   \
        SECTION, L"" #FIELD, DEFAULT, offsetof(RECORD, FIELD)                                      \
    }

/// Reads all keys in order and stores them as they are; no range is checked.
template <class Record>
void LoadKeys(std::span<const SettingKey> keys, const wchar_t *iniFile, Record &record) {
    for (const SettingKey &key : keys) {
        const std::int32_t value =
            CpNxGetPrivateProfileIntW(key.pszSection, key.pszKey, key.nDefault, iniFile);
        std::memcpy(reinterpret_cast<char *>(&record) + key.nOffset, &value, sizeof value);
    }
}

#endif
