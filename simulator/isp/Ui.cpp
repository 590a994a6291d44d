#include "isp/Ui.h"

#include <algorithm>
#include <string>

#include "common/Text.h"

namespace virtual_scaler {

Ui &CurrentUi() {
    static Ui ui;
    return ui;
}

void SendMessage(std::string_view utf8) {
    if (CurrentUi().message != nullptr) {
        std::wstring text = ToWide(utf8);
        text += L'\n';
        CurrentUi().message(text.data());
    }
}

Progress::Progress(std::size_t steps) : m_steps(steps) {
    Report();
}

void Progress::Step(std::size_t count) {
    m_done = std::min(m_done + count, m_steps);
    Report();
}

void Progress::Finish() {
    if (CurrentUi().progress != nullptr) {
        CurrentUi().progress(100);
    }
}

void Progress::Report() {
    if (CurrentUi().progress != nullptr) {
        // 100 % is reserved for the end of the action.
        CurrentUi().progress(m_steps == 0 ? 0 : static_cast<int>(m_done * 99 / m_steps));
    }
}

} // namespace virtual_scaler
