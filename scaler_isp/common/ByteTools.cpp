#include "scaler_isp/common/ByteTools.h"

#include <cstddef>
#include <cwchar>
#include <fstream>
#include <string>

#include "scaler_isp/common/EnvironmentLocale.h"
#include "scaler_isp/common/ExceptionBarrier.h"

namespace {

constexpr std::size_t kFailed = static_cast<std::size_t>(-1);
constexpr std::size_t kMaxBytesOfACharacter = 4;

/// The string in the current locale, followed by a zero byte unless charCount truncates it.
std::string ToBuffer(const CCpNxString &text, unsigned int charCount) {
    std::mbstate_t state{};
    const wchar_t *source = text.GetString();
    const std::size_t length = std::wcsrtombs(nullptr, &source, 0, &state);
    const std::size_t size = charCount != 0      ? charCount * kMaxBytesOfACharacter
                             : length != kFailed ? length
                                                 : 0;
    std::string buffer(size + 1, '\0');
    if (length != kFailed) {
        state = {};
        source = text.GetString();
        static_cast<void>(std::wcsrtombs(buffer.data(), &source, buffer.size(), &state));
    }
    return buffer;
}

} // namespace

int CalculateByteChecksum(unsigned char *data, unsigned int size) {
    unsigned int sum = 0;
    for (unsigned int i = 0; data != nullptr && i < size; ++i) {
        sum += data[i];
    }
    return static_cast<int>(sum);
}

unsigned int CalculateWordChecksum(unsigned char *data, unsigned int size) {
    constexpr unsigned int kWordBits = 0xFFFF;
    unsigned int sum = 0;
    for (unsigned int i = 0; data != nullptr && i < size; ++i) {
        const unsigned int shift = i % 2 == 0 ? 0 : 8;
        sum = (sum + (static_cast<unsigned int>(data[i]) << shift)) & kWordBits;
    }
    return sum;
}

int CpNxSaveAnsiFile(CCpNxString path, CCpNxString text, unsigned int charCount, int append) {
    return CatchAll(0, [&] {
        const EnvironmentLocale locale;
        const EnvironmentLocale::InUse use(locale);
        std::ofstream file(path.GetStringBufferBaseOnOS(),
                           append != 0 ? std::ios::app : std::ios::trunc);
        if (!file.is_open()) {
            return 0;
        }
        const std::string buffer = ToBuffer(text, charCount);
        file.write(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        return 1;
    });
}
