#ifndef SCALER_ISP_SETTINGS_SETTING_KEY_H
#define SCALER_ISP_SETTINGS_SETTING_KEY_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "scaler_isp/common/TextConversion.h"
#include "scaler_isp/settings/IniReader.h"

/// One key of a settings file and the 32-bit field of a record that receives it.
struct SettingKey {
    const wchar_t *pszSection;
    const wchar_t *pszKey;
    int nDefault;
    std::size_t nOffset; ///< UNITS: bytes from the start of the record
};

/// A row whose key has the name of the field.
#define SCALER_ISP_SETTING_KEY(RECORD, SECTION, FIELD, DEFAULT)                                    \
    SettingKey {                                                                                   \
        L"" SECTION, L"" #FIELD, DEFAULT, offsetof(RECORD, FIELD)                                  \
    }

/// Reads all keys before it stores the first, so that the record is unchanged if reading throws. No
/// range is checked.
template <class Record>
void LoadKeys(std::span<const SettingKey> keys, const std::wstring &iniFile, Record &record) {
    const IniReader reader(Utf8FromWide(iniFile));
    std::vector<std::int32_t> values;
    for (const SettingKey &key : keys) {
        values.push_back(reader.Number(key.pszSection, key.pszKey, key.nDefault));
    }
    for (std::size_t i = 0; i < keys.size(); ++i) {
        std::memcpy(reinterpret_cast<char *>(&record) + keys[i].nOffset, &values[i],
                    sizeof values[i]);
    }
}

#endif
