#ifndef ISPCTL_EXPLAIN_EXPLAIN_OPTIONS_H
#define ISPCTL_EXPLAIN_EXPLAIN_OPTIONS_H

#include <string>
#include <vector>

namespace ispctl {

/// What `ispctl explain` was asked for.
struct ExplainOptions {
    std::string library;        ///< empty: the installed one
    bool virtualScaler = false; ///< open the virtual scaler's library
    bool json = false;          ///< standard output is one JSON document
    bool all = false;           ///< show the fields that have their defaults, too
    std::string svg;            ///< files to write; empty: none
    std::string html;
    std::string record;
    std::string decode;                 ///< a record to show instead of a line's; empty: none
    std::string diff;                   ///< a record to compare with; empty: none
    std::vector<std::string> arguments; ///< for the library, as typed

    /// Whether the picture or the page is standard output, in place of the text.
    bool OutputIsFile() const {
        return svg == "-" || html == "-";
    }
};

} // namespace ispctl

#endif
