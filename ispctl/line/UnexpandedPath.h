#ifndef ISPCTL_LINE_UNEXPANDED_PATH_H
#define ISPCTL_LINE_UNEXPANDED_PATH_H

#include <string>

namespace ispctl {

/// A path with something in it that only a shell, or another system, replaces.
struct UnexpandedPath {
    std::string reason;   ///< a sentence without a full stop; empty: there is nothing of the kind
    std::string expanded; ///< the path that was meant; empty: nobody can know
};

/// Reads "~", variables of shells and paths of Windows.
UnexpandedPath FindUnexpanded(const std::string &path);

} // namespace ispctl

#endif
