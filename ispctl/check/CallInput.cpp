#include "check/CallInput.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace ispctl::check {
namespace {

// The library's buffer is as large, and the plug-in is not told how much of it is for the key.
constexpr std::size_t kKeyBufferBytes = 4096;

std::size_t ElementSize(const RecordField &field) {
    switch (field.kind) {
    case FieldKind::BYTES:
    case FieldKind::NARROW:
        return 1;
    case FieldKind::WIDE:
    case FieldKind::BANKS:
        return sizeof(std::uint32_t);
    default:
        return field.width;
    }
}

std::vector<unsigned char> DefaultsOf(RecordKind record) {
    std::vector<unsigned char> bytes(SizeOf(record));
    for (const RecordField &field : FieldsOf(record)) {
        const std::size_t size = ElementSize(field);
        for (std::size_t at = field.offset; at < field.offset + field.width; at += size) {
            // Both systems store numbers with the least significant byte first.
            std::memcpy(&bytes[at], &field.defaultValue, size);
        }
    }
    return bytes;
}

} // namespace

CallInput::CallInput(RecordKind record, std::string directory)
    : m_directory(std::move(directory)), m_bytes(DefaultsOf(record)), m_before(m_bytes),
      m_key(kKeyBufferBytes) {}

void CallInput::MakeUpKey() {
    m_hasKey = true;
    std::fill_n(m_key.begin(), SCALER_ISP_FLASH_KEY_BYTES, static_cast<unsigned char>(0x5A));
}

void CallInput::StorePath(wchar_t (&field)[SCALER_ISP_PATH_CHARS], const char *name) const {
    const std::string path = PathOf(name);
    std::copy_n(path.begin(), std::min(path.size(), std::size(field)), std::begin(field));
}

void CallInput::StorePath(char (&field)[SCALER_ISP_PATH_CHARS], const char *name) const {
    const std::string path = PathOf(name);
    std::copy_n(path.begin(), std::min(path.size(), std::size(field)), std::begin(field));
}

std::optional<std::size_t> CallInput::ChangedOffset() const {
    const auto changed = std::mismatch(m_bytes.begin(), m_bytes.end(), m_before.begin()).first;
    return changed == m_bytes.end()
               ? std::nullopt
               : std::optional(static_cast<std::size_t>(changed - m_bytes.begin()));
}

bool CallInput::KeyIsTooLong() const {
    return std::any_of(m_key.begin() + SCALER_ISP_FLASH_KEY_BYTES, m_key.end(),
                       [](unsigned char byte) { return byte != 0; });
}

bool CallInput::KeyIsEmpty() const {
    return std::all_of(m_key.begin(), m_key.end(), [](unsigned char byte) { return byte == 0; });
}

} // namespace ispctl::check
