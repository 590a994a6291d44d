#include "station/OriginalNames.h"

#include "Utf8.h"

namespace ispctl {
namespace {

template <class Text> Text Replaced(Text text, const std::vector<std::pair<Text, Text>> &names) {
    for (const auto &[copy, original] : names) {
        for (std::size_t at = 0; (at = text.find(copy, at)) != Text::npos; at += original.size()) {
            text.replace(at, copy.size(), original);
        }
    }
    return text;
}

} // namespace

OriginalNames::OriginalNames(const Json &files, std::vector<RunObserver *> observers)
    : m_observers(std::move(observers)) {
    for (const auto &file : files) {
        if (!file.contains("copy")) {
            continue;
        }
        const std::string copy = file["copy"];
        const std::string given = file["given"];
        const std::string original = given.empty() ? file["path"].get<std::string>() : given;
        m_names.emplace_back(copy, original);
        m_wideNames.emplace_back(WideFromUtf8(copy).value_or(L""),
                                 WideFromUtf8(original).value_or(L""));
    }
}

std::string OriginalNames::Replace(std::string text) const {
    return Replaced(std::move(text), m_names);
}

void OriginalNames::OnProgress(int percent) {
    for (RunObserver *observer : m_observers) {
        observer->OnProgress(percent);
    }
}

void OriginalNames::OnMessage(std::wstring_view text) {
    const std::wstring shown = Replaced(std::wstring(text), m_wideNames);
    for (RunObserver *observer : m_observers) {
        observer->OnMessage(shown);
    }
}

void OriginalNames::OnConsole(Stream stream, std::string_view bytes) {
    const std::string shown = Replace(std::string(bytes));
    for (RunObserver *observer : m_observers) {
        observer->OnConsole(stream, shown);
    }
}

void OriginalNames::OnPause() {
    for (RunObserver *observer : m_observers) {
        observer->OnPause();
    }
}

void OriginalNames::OnNotice(std::string_view text) {
    for (RunObserver *observer : m_observers) {
        observer->OnNotice(text);
    }
}

} // namespace ispctl
