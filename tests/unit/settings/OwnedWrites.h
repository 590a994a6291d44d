#ifndef TESTS_UNIT_SETTINGS_OWNED_WRITES_H
#define TESTS_UNIT_SETTINGS_OWNED_WRITES_H

#include <string>
#include <vector>

#include "scaler_isp/settings/ProfileBatch.h"

/// A key to write that owns its texts.
struct ProfileWrite {
    std::wstring section;
    std::wstring key;
    std::wstring value;
};

/// WriteProfileBatchW for writes that own their texts.
inline int WriteOwnedBatch(const std::vector<ProfileWrite> &writes, const wchar_t *fileName) {
    std::vector<KeyWrite<wchar_t>> views;
    views.reserve(writes.size());
    for (const ProfileWrite &write : writes) {
        views.push_back({write.section, write.key, write.value});
    }
    return WriteProfileBatchW(views, fileName);
}

#endif
