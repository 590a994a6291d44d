#include "scaler_isp/entry/CommandLineSplit.h"

#include <algorithm>
#include <cstddef>

#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/common/SplitText.h"
#include "scaler_isp/entry/CommandTokens.h"

namespace {

constexpr char kQuote = '"';
// Two quotes can serve as the placeholder: a line with an empty quoted part has been rejected by
// then (except one that begins with a quote, see the quirk).
constexpr const char *kPlaceholder = "\"\"";
constexpr std::size_t kPlaceholderLength = 2;

/// Collects the quoted parts of a line, quotes included. False if one is empty.
bool CollectSegments(const std::string &line, std::size_t quotes,
                     std::vector<std::string> &segments) {
    std::string::size_type found = 0;
    std::string::size_type opening = 0;
    while (quotes > 0) {
        // The search starts after the last position, at index 1 the first time. A quote at index 0
        // is therefore counted but never found, and the last search then finds the end of the line.
        found = line.find(kQuote, found + 1);
        --quotes;
        if (quotes % 2 == 0) {
            if (found != std::string::npos && found - opening == 1) {
                return false;
            }
            segments.push_back(line.substr(opening, found - opening + 1));
        }
        opening = found;
    }
    return true;
}

/// A segment without its quotes. After a line that begins with a quote, a segment may be a single
/// character.
std::string Inner(const std::string &segment) {
    return segment.size() < 2 ? std::string() : segment.substr(1, segment.size() - 2);
}

} // namespace

bool SplitCommandLine(const std::string &commandLine, std::vector<std::string> &tokens) {
    const auto quotes =
        static_cast<std::size_t>(std::count(commandLine.begin(), commandLine.end(), kQuote));
    std::vector<std::string> segments;
    if (quotes % 2 != 0 || !CollectSegments(commandLine, quotes, segments)) {
        return false;
    }
    std::string copy = commandLine;
    for (const std::string &segment : segments) {
        const auto position = copy.find(segment);
        if (position != std::string::npos) {
            copy.replace(position, segment.size(), kPlaceholder);
        }
    }
    tokens = SplitText(copy, " ");
    auto segment = segments.begin();
    for (std::string &token : tokens) {
        const auto position = token.find(kPlaceholder);
        if (position != std::string::npos && segment != segments.end()) {
            token.replace(position, kPlaceholderLength, Inner(*segment));
            ++segment;
        }
    }
    return true;
}

int ParseCommandLineParameter(std::vector<std::string> &tokens, const std::string &commandLine) {
    return CatchAll(0, [&] { return SplitCommandLine(commandLine, tokens) ? 1 : 0; });
}
