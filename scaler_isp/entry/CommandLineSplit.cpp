#include "scaler_isp/entry/CommandLineSplit.h"

#include <cstddef>
#include <string_view>
#include <unordered_map>

#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/common/SplitText.h"
#include "scaler_isp/entry/CommandTokens.h"

namespace {

constexpr char kQuote = '"';
// Two quotes can serve as the placeholder: a line with an empty quoted part has been rejected by
// then (except one that begins with a quote, see the quirk).
constexpr const char *kPlaceholder = "\"\"";
constexpr std::size_t kPlaceholderLength = 2;

using Parts = std::vector<std::string_view>;

/// All texts between the quotes, and those before the first and after the last one.
Parts DivideAtQuotes(std::string_view line) {
    Parts parts;
    for (auto quote = line.find(kQuote); quote != std::string_view::npos;
         quote = line.find(kQuote)) {
        parts.push_back(line.substr(0, quote));
        line.remove_prefix(quote + 1);
    }
    parts.push_back(line);
    return parts;
}

/// Collects the quoted ones, from `first` on. False if one is empty.
bool CollectQuoted(const Parts &parts, std::size_t first, Parts &quoted) {
    for (std::size_t i = first; i + 1 < parts.size(); i += 2) {
        if (parts[i].empty()) {
            return false;
        }
        quoted.push_back(parts[i]);
    }
    return true;
}

/// The line without the quoted texts. Each removes the first text between two quotes that equals
/// it, even one that is not quoted itself; their quotes stay, as its placeholder.
std::string WithPlaceholders(const Parts &parts, const Parts &quoted) {
    std::unordered_map<std::string_view, std::size_t> toRemove;
    for (const std::string_view text : quoted) {
        ++toRemove[text];
    }
    std::string line(parts.front());
    for (std::size_t i = 1; i < parts.size(); ++i) {
        line += kQuote;
        const bool isBetweenQuotes = i + 1 < parts.size();
        const auto found = isBetweenQuotes ? toRemove.find(parts[i]) : toRemove.end();
        if (found != toRemove.end() && found->second != 0) {
            --found->second;
        } else {
            line += parts[i];
        }
    }
    return line;
}

/// In a line that begins with a quote, the last quote opens a part that nothing closes; the first
/// place that looks like it becomes its placeholder. RETURNS its text, which lacks a character.
std::string_view TakeUnclosedPart(std::string_view tail, std::string &line) {
    const auto position = line.find(std::string(1, kQuote).append(tail));
    line.replace(position, 1 + tail.size(), kPlaceholder);
    return tail.substr(0, tail.empty() ? 0 : tail.size() - 1);
}

} // namespace

bool SplitCommandLine(const std::string &commandLine, std::vector<std::string> &tokens) {
    const Parts parts = DivideAtQuotes(commandLine);
    const std::size_t quotes = parts.size() - 1;
    // A quote at index 0 is counted, but never taken as an opening one.
    const bool beginsWithQuote = quotes != 0 && parts.front().empty();
    Parts quoted;
    if (quotes % 2 != 0 || !CollectQuoted(parts, beginsWithQuote ? 2 : 1, quoted)) {
        return false;
    }
    std::string line = WithPlaceholders(parts, quoted);
    if (beginsWithQuote) {
        quoted.push_back(TakeUnclosedPart(parts.back(), line));
    }
    tokens = SplitText(line, " ");
    auto text = quoted.begin();
    for (std::string &token : tokens) {
        const auto position = token.find(kPlaceholder);
        if (position != std::string::npos && text != quoted.end()) {
            token.replace(position, kPlaceholderLength, *text);
            ++text;
        }
    }
    return true;
}

int ParseCommandLineParameter(std::vector<std::string> &tokens, const std::string &commandLine) {
    return CatchAll(0, [&] { return SplitCommandLine(commandLine, tokens) ? 1 : 0; });
}
