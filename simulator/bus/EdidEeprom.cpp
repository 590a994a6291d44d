#include "bus/EdidEeprom.h"

#include <cerrno>

#include "bus/BusStatus.h"
#include "bus/DefaultEdid.h"
#include "common/Files.h"
#include "common/Text.h"
#include "device/Failure.h"

namespace virtual_scaler {

EdidEeprom::EdidEeprom(const std::string &directory) : m_path(directory + "edid.bin") {
    std::string text;
    if (ReadText(m_path, text)) {
        m_bytes.assign(text.begin(), text.end());
    } else if (errno == ENOENT) {
        const auto defaultValue = DefaultEdid();
        m_bytes.assign(defaultValue.begin(), defaultValue.end());
        Save();
    } else {
        throw Failure{VIRTUAL_BUS_NO_STATE,
                      Format("edid.bin cannot be read: %s", ErrorText(errno))};
    }
    const std::size_t segments = m_bytes.empty() ? 1 : (m_bytes.size() + 255) / 256;
    m_bytes.resize(segments * 256, 0xFF);
}

void EdidEeprom::Save() const {
    if (!ReplaceFile(m_path, m_bytes.data(), m_bytes.size())) {
        throw Failure{VIRTUAL_BUS_NO_STATE,
                      Format("edid.bin cannot be written: %s", ErrorText(errno))};
    }
}

} // namespace virtual_scaler
