#ifndef ISPCTL_EXPLAIN_GIVEN_BANKS_H
#define ISPCTL_EXPLAIN_GIVEN_BANKS_H

#include <functional>
#include <string>
#include <vector>

#include "explain/FlashPicture.h"
#include "line/ParsedLine.h"

namespace ispctl {

using ParseArguments = std::function<ParsedLine(const std::vector<std::string> &)>;

/// The banks that the firmware files of a refused line would take, each as if it were alone, so
/// that overlaps can be seen. A file that the library cannot open takes none.
std::vector<BankUse> GivenBanks(const std::vector<std::string> &arguments,
                                const ParseArguments &parse);

/// The banks of the boot firmware in its own pass, which begins with bank 0.
std::vector<BankUse> BootBanks(const std::string &path, const ParseArguments &parse);

} // namespace ispctl

#endif
