#ifndef ISPCTL_EXPLAIN_EXPLANATION_H
#define ISPCTL_EXPLAIN_EXPLANATION_H

#include <string>
#include <vector>

#include "ExitStatus.h"
#include "explain/FlashPicture.h"
#include "explain/RecordDiff.h"
#include "explain/RecordRows.h"
#include "explain/RunPlan.h"
#include "line/CorrectLine.h"

namespace ispctl {

/// Everything that `ispctl explain` shows. The writers of text, JSON and HTML add nothing to it.
struct Explanation {
    std::string library;                    ///< absolute path; empty: a record of a file is shown
    std::string ownPart = "ispctl explain"; ///< what stands before the arguments of a line to copy
    std::vector<std::string> arguments;     ///< for the library, as typed
    std::string commandLine; ///< as the library would get it; empty: it cannot be passed
    std::string notPassed;   ///< why it cannot be; empty: it can
    bool accepted = false;   ///< by the library
    std::string printed;     ///< by the library while it validated the line
    std::vector<PlanStep> plan;
    std::vector<Finding> findings;
    CorrectedLine corrected;
    std::string command; ///< bytes of the command record; empty: there is none
    std::string sign;    ///< bytes of the sign record; empty: there is none
    FieldChoice choice = FieldChoice::NotDefault;
    std::vector<BankUse> banks;
    FlashPicture flash;
    std::string comparedFile; ///< of --diff; empty: nothing is compared
    std::vector<FieldDifference> differences;
};

/// RETURNS kExitRefused if the line would be refused or cannot be passed, kExitFindings for
/// any other finding, else kExitSuccess.
ExitStatus StatusOf(const Explanation &explanation);

/// The records that the explanation has, with their bytes.
std::vector<std::pair<RecordKind, std::string_view>> RecordsOf(const Explanation &explanation);

} // namespace ispctl

#endif
