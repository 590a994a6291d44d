#include "check/CallWatch.h"

#include <algorithm>
#include <exception>
#include <fmt/format.h>
#include <mutex>
#include <string>

#include "RunWire.h"
#include "Utf8.h"
#include "VisibleText.h"

namespace ispctl::check {
namespace {

using doctor::FindingId;

// Plug-ins may call back from threads of their own.
std::mutex g_mutex;
CallReporter *g_reporter = nullptr;
int g_percent = 0;

// UNITS: characters of a message that a finding shows.
constexpr std::size_t kShownCharacters = 60;
constexpr wchar_t kLastCharacter = 0x10FFFF;

bool IsControlInMessage(wchar_t value) {
    return value != L'\n' && value != L'\t' && IsControl(static_cast<char32_t>(value));
}

bool IsCharacter(wchar_t value) {
    return value >= 0 && value <= kLastCharacter && (value < 0xD800 || value > 0xDFFF);
}

std::string Shown(std::wstring_view text) {
    return Visible(EscapeWide(text.substr(0, kShownCharacters)).text, Layout::OneLine,
                   Charset::Ascii);
}

void ExamineProgress(int percent) {
    const std::lock_guard lock(g_mutex);
    if (g_reporter == nullptr) {
        return;
    }
    if (percent < 0 || percent > 100) {
        g_reporter->Add(FindingId::ProgressRange, std::to_string(percent));
    } else if (percent < g_percent) {
        g_reporter->Add(FindingId::ProgressBackwards, fmt::format("{} to {}", g_percent, percent));
    }
    g_percent = std::clamp(percent, g_percent, std::max(g_percent, 100));
}

void ExamineMessage(const wchar_t *text) {
    const std::lock_guard lock(g_mutex);
    if (g_reporter == nullptr) {
        return;
    }
    if (text == nullptr) {
        g_reporter->Add(FindingId::MessageNotText, "a null pointer");
        return;
    }
    std::size_t length = 0;
    while (length < kMaxMessage && text[length] != 0) {
        ++length;
    }
    const std::wstring_view message(text, length);
    if (!std::all_of(message.begin(), message.end(), IsCharacter)) {
        g_reporter->Add(FindingId::MessageNotText, Shown(message));
    } else if (std::any_of(message.begin(), message.end(), IsControlInMessage)) {
        g_reporter->Add(FindingId::EscapeSequence, Shown(message));
    }
}

} // namespace

CallWatch::CallWatch(CallReporter &reporter) {
    g_reporter = &reporter;
}

CallWatch::~CallWatch() {
    const std::lock_guard lock(g_mutex);
    g_reporter = nullptr;
}

void CallWatch::BeginAction() {
    const std::lock_guard lock(g_mutex);
    g_percent = 0;
}

// No exception of this program may pass through the stack frames of a plug-in.
void CallWatch::OnProgress(int percent) {
    try {
        ExamineProgress(percent);
    } catch (const std::exception &) {
    }
}

void CallWatch::OnMessage(wchar_t *text) {
    try {
        ExamineMessage(text);
    } catch (const std::exception &) {
    }
}

} // namespace ispctl::check
