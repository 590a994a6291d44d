#include "explain/RunPlan.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>
#include <iterator>

#include "Utf8.h"
#include "scaler_isp/abi/ResultCodes.h"
#include "scaler_isp/args/CommandFacts.h"

namespace ispctl {
namespace {

using ScalerIspFacts::ActionFacts;

constexpr std::string_view kNoCallStep = "call-nothing";

constexpr std::string_view kOptionalFunctions[] = {
#define SCALER_ISP_OPTIONAL_SYMBOL(NAME) #NAME,
#include "scaler_isp/plugins/isp_functions.def"
};

std::string RequiredFunctions() {
    std::string names;
#define SCALER_ISP_REQUIRED_SYMBOL(NAME)                                                           \
    names += names.empty() ? "" : ", ";                                                            \
    names += #NAME;
#include "scaler_isp/plugins/isp_functions.def"
    return names;
}

PlanResult OfLibrary(ScalerIspResultCode code) {
    std::string text;
    switch (code) {
#define ISPCTL_RESULT_CASE(NAME, VALUE, MEANING, CAUSE, REMEDY)                                    \
    case NAME:                                                                                     \
        text = MEANING ". Likely cause: " CAUSE ". Remedy: " REMEDY;                               \
        break;
        SCALER_ISP_RESULT_CODES(ISPCTL_RESULT_CASE)
#undef ISPCTL_RESULT_CASE
    }
    return {code, "library", std::move(text)};
}

PlanResult OfPlugIn() {
    return {
        std::nullopt, "plug-in",
        "any number but 0 is an error code of the plug-in, returned unchanged; PlugIn/libIsp.codes "
        "or the plug-in's documentation says what it means"};
}

/// What stands between the parentheses of the column CALL: "CALL(IspFlash)" gives "IspFlash".
std::string FunctionOf(std::string_view call) {
    const auto open = call.find('(');
    return open == std::string_view::npos
               ? std::string()
               : std::string(call.substr(open + 1, call.rfind(')') - open - 1));
}

const ActionFacts *ActionOf(const Records &records) {
    const auto *found = std::find_if(
        std::begin(ScalerIspFacts::kActions), std::end(ScalerIspFacts::kActions),
        [&](const ActionFacts &row) { return row.action == records.command.enumActionType; });
    return found != std::end(ScalerIspFacts::kActions) ? found : nullptr;
}

/// Writes the steps in the order in which the library takes them.
class PlanWriter {
  public:
    PlanWriter(const Records &records, const std::string &directory)
        : m_records(records), m_isp(directory + "PlugIn/libIsp.dylib"),
          m_sign(directory + "libSignVerify.dylib") {}

    std::vector<PlanStep> Write(const ActionFacts &action) {
        if (action.call.starts_with("SIGN_VERIFY")) {
            LoadSignPlugIn("The ISP plug-in is not loaded, and the device is not accessed.");
            CallSignPlugIn(action);
        } else {
            LoadIspPlugIn();
            CheckSignature(action);
            ProgramBootFirmware();
            CallAction(action);
            m_steps.push_back(
                {"unload-isp-plugin", "The library unloads the ISP plug-in.", m_isp, "", {}});
        }
        Report(action);
        return std::move(m_steps);
    }

  private:
    void LoadIspPlugIn() {
        m_steps.push_back({"load-isp-plugin",
                           "The library loads the ISP plug-in, which must have the functions " +
                               RequiredFunctions() + ". (ispctl doctor examines whether it has.)",
                           m_isp,
                           "",
                           {OfLibrary(SCALER_ISP_PLUGIN_NOT_LOADED)}});
        m_steps.push_back({"set-callbacks",
                           "The plug-in is told where to report progress and messages.",
                           m_isp,
                           "SetUIFunction",
                           {}});
    }

    void LoadSignPlugIn(std::string_view remark) {
        m_steps.push_back(
            {"load-sign-plugin",
             fmt::format("The library loads the sign/verify plug-in, which must have the "
                         "functions VerifySignatureExport and SignFwExport. {}",
                         remark),
             m_sign,
             "",
             {OfLibrary(SCALER_ISP_SIGN_PLUGIN_MISSING)}});
    }

    void CallSignPlugIn(const ActionFacts &action) {
        const bool signs = action.action == ENUM_ACTION_SIGN;
        m_steps.push_back(
            {signs ? "sign" : "verify-signature",
             signs ? "The plug-in signs the firmware file and writes the signature to a file."
                   : "The plug-in verifies the signature of the firmware file, with the key that "
                     "the line names.",
             m_sign,
             FunctionOf(action.call) + "Export",
             {OfLibrary(signs ? SCALER_ISP_SIGNING_FAILED : SCALER_ISP_BAD_SIGNATURE)}});
    }

    void CheckSignature(const ActionFacts &action) {
        const auto &setting = m_records.command;
        if (setting.enumIspMode != SCALER_ISP_MODE_NORMAL ||
            setting.enumDigitalSignatureType != ENUM_SIGN_TYPE_SW) {
            if (action.files == "PROGRAM") {
                m_steps.push_back({"no-signature-check", WhyUnverified(), "", "", {}});
            }
            return;
        }
        LoadSignPlugIn("If that fails, nothing is programmed.");
        const bool fromFlash =
            m_records.sign.enumSWDigitalSignatureMode == ENUM_SIGN_SW_MODE_VXM_EXTERNAL_NEXT;
        if (fromFlash) {
            m_steps.push_back({"key-from-flash",
                               "The ISP plug-in reads the key of the next generation from the "
                               "flash of the device. For this it gets a command record without "
                               "firmware.",
                               m_isp,
                               "GetKeyFromFlash",
                               {OfPlugIn(), OfLibrary(SCALER_ISP_NO_WORKING_COPY)}});
        }
        m_steps.push_back({"verify-signature",
                           fmt::format("The sign/verify plug-in verifies the firmware file {}. "
                                       "Nothing is programmed unless the signature is valid.",
                                       fromFlash ? "with the key from the flash"
                                                 : "with the key that the line names"),
                           m_sign,
                           "VerifySignatureExport",
                           {OfLibrary(SCALER_ISP_BAD_SIGNATURE)}});
    }

    std::string WhyUnverified() const {
        const auto &setting = m_records.command;
        std::string_view reason = "because the line has no --sw";
        if (setting.enumDigitalSignatureType == ENUM_SIGN_TYPE_HW) {
            reason = "because --hw leaves that to the device and its plug-in";
        } else if (setting.enumDigitalSignatureType == ENUM_SIGN_TYPE_SW) {
            reason = "because of --factory";
        }
        return fmt::format("The library verifies no signature before programming, {}.", reason);
    }

    void ProgramBootFirmware() {
        const auto &setting = m_records.command;
        if (setting.enumBootCodeType != SCALER_ISP_NEW_BOOT_CODE ||
            setting.enumIspMode != SCALER_ISP_MODE_FACTORY || setting.szBootFwPath[0] == '\0') {
            return;
        }
        const char *path = setting.szBootFwPath;
        m_steps.push_back(
            {kBootStep,
             fmt::format("The boot firmware {} is programmed first, from bank 0 on, as by a line "
                         "with nothing but --isp. If the file cannot be read, the plug-in is "
                         "called all the same, with no banks.",
                         EscapeBytes({path, ::strnlen(path, SCALER_ISP_PATH_CHARS)}).text),
             m_isp,
             "IspFlash",
             {OfLibrary(SCALER_ISP_BOOT_MAP_TOO_LARGE), OfLibrary(SCALER_ISP_NO_WORKING_COPY),
              OfPlugIn()}});
    }

    void CallAction(const ActionFacts &action) {
        const std::string function = FunctionOf(action.call);
        if (action.call.starts_with("CALL")) {
            const bool optional =
                std::find(std::begin(kOptionalFunctions), std::end(kOptionalFunctions), function) !=
                std::end(kOptionalFunctions);
            PlanStep step{"call-action", Purpose(action), m_isp, function, {OfPlugIn()}};
            if (optional) {
                step.results.push_back(OfLibrary(SCALER_ISP_FUNCTION_MISSING));
            }
            m_steps.push_back(std::move(step));
            return;
        }
        std::string text = fmt::format("--{} calls no function of the plug-in", action.name);
        std::vector<PlanResult> results;
        if (action.call == "NO_CALL") {
            text += " and still ends with success: the device is not touched.";
        } else {
            text +=
                ": the library never looks for it, whatever the plug-in has. The run always ends "
                "with 0x6, and the device is not touched.";
            results.push_back(OfLibrary(SCALER_ISP_FUNCTION_MISSING));
        }
        m_steps.push_back({kNoCallStep, std::move(text), "", "", std::move(results)});
    }

    std::string Purpose(const ActionFacts &action) const {
        const auto *option = ScalerIspFacts::FindOption(action.name); // every action is one
        std::string text = fmt::format("--{} {}.", action.name, option->meaning);
        const std::size_t banks =
            std::min<std::size_t>(m_records.command.stMapFw.ulFwCount, SCALER_ISP_MAX_BANKS);
        if (action.files == "PROGRAM") {
            text +=
                fmt::format(" The plug-in gets {} bank{} of 64 KiB.", banks, banks == 1 ? "" : "s");
        }
        return text;
    }

    void Report(const ActionFacts &action) {
        const bool fails = HasOnlyResult(SCALER_ISP_FUNCTION_MISSING);
        const bool silent = action.action == ENUM_ACTION_USERDEFINEDINFO;
        std::string text =
            silent ? "If no step failed, the library returns 0 and prints nothing. "
                   : "If no step failed, the library prints \"Success\" and returns 0. ";
        text += "Otherwise it prints ";
        if (fails) {
            text = "The library prints ";
        }
        text +=
            "\"Fail! Error Code: 0x...\" with the result of the step that failed, and returns that "
            "result. It returns -1 if a plug-in throws or the system is out of memory.";
        std::vector<PlanResult> results;
        if (!fails) {
            results.push_back({SCALER_ISP_SUCCESS, "library", "success"});
        }
        m_steps.push_back({"report", std::move(text), "", "", std::move(results)});
    }

    /// Whether the action can end with this code only.
    bool HasOnlyResult(ScalerIspResultCode code) const {
        return std::any_of(m_steps.begin(), m_steps.end(), [=](const PlanStep &step) {
            return step.name == kNoCallStep && !step.results.empty() &&
                   step.results.front().code == code;
        });
    }

    const Records &m_records;
    std::string m_isp;
    std::string m_sign;
    std::vector<PlanStep> m_steps;
};

/// What the library prints, with its lines separated by semicolons.
std::string OnOneLine(std::string_view printed) {
    std::string text;
    while (!printed.empty()) {
        const auto end = printed.find('\n');
        const std::string_view line = printed.substr(0, end);
        text += text.empty() || line.empty() ? "" : "; ";
        text += EscapeBytes(line).text;
        printed.remove_prefix(end == std::string_view::npos ? printed.size() : end + 1);
    }
    return text;
}

PlanStep Validation(const ParsedLine &line) {
    PlanStep step{"validate-line", "", "", "", {}};
    step.text = line.accepted ? "The library validates the line and accepts it."
                              : "The library validates the line and refuses it: no plug-in is "
                                "loaded and the device is not accessed.";
    if (!line.printed.empty()) {
        step.text += " It prints: " + OnOneLine(line.printed);
    }
    if (!line.accepted) {
        step.results.push_back(OfLibrary(SCALER_ISP_REFUSED));
    }
    return step;
}

} // namespace

std::vector<PlanStep> PlanOf(const ParsedLine &line, const std::string &directory) {
    std::vector<PlanStep> plan{Validation(line)};
    const ActionFacts *action = line.accepted ? ActionOf(*line.records) : nullptr;
    if (action != nullptr) {
        const auto steps = PlanWriter(*line.records, directory).Write(*action);
        plan.insert(plan.end(), steps.begin(), steps.end());
    }
    return plan;
}

} // namespace ispctl
