// The sentences with which a run is explained, step by step.

#include "explain/RunPlan.h"

#include <cstdlib>
#include <cstring>
#include <gmock/gmock.h>

#include "scaler_isp/abi/ResultCodes.h"

namespace ispctl {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class RunPlanSteps : public testing::Test {
  protected:
    RunPlanSteps() {
        m_records->command.enumActionType = ENUM_ACTION_ISP;
        m_records->command.enumIspMode = SCALER_ISP_MODE_NORMAL;
    }
    STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING &Command() {
        return m_records->command;
    }
    STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS &Sign() {
        return m_records->sign;
    }
    std::vector<PlanStep> Plan() const {
        return PlanOf({true, "", m_records}, "/lib/");
    }
    PlanStep Step(const std::string &name) const {
        for (const PlanStep &step : Plan()) {
            if (step.name == name) {
                return step;
            }
        }
        ADD_FAILURE() << "no step " << name;
        return {};
    }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const PlanStep &step : Plan()) {
            names.emplace_back(step.name);
        }
        return names;
    }

  private:
    // The constructors are the library's, which this program does not link.
    std::shared_ptr<Records> m_records{static_cast<Records *>(std::calloc(1, sizeof(Records))),
                                       std::free};
};

TEST_F(RunPlanSteps, Validation_says_what_library_prints) {
    const std::string accepted = "The library validates the line and accepts it.";
    EXPECT_EQ(Step("validate-line").text, accepted);
    const auto refused = PlanOf({false, "", nullptr}, "/lib/");
    ASSERT_EQ(refused.size(), 1U);
    EXPECT_EQ(refused[0].text,
              "The library validates the line and refuses it: no plug-in is loaded "
              "and the device is not accessed.");
    ASSERT_EQ(refused[0].results.size(), 1U);
    EXPECT_EQ(refused[0].results[0].code, SCALER_ISP_REFUSED);
    const auto told = PlanOf({false, "one\n\ntwo \xFF\n", nullptr}, "/lib/");
    EXPECT_THAT(told[0].text, EndsWith("accessed. It prints: one; two \\xFF"));
}

TEST_F(RunPlanSteps, Isp_plugin_is_loaded_called_and_unloaded) {
    Command().stMapFw.ulFwCount = 1;
    EXPECT_THAT(Names(),
                ElementsAre("validate-line", "load-isp-plugin", "set-callbacks",
                            "no-signature-check", "call-action", "unload-isp-plugin", "report"));
    const PlanStep load = Step("load-isp-plugin");
    EXPECT_THAT(
        load.text,
        AllOf(StartsWith("The library loads the ISP plug-in, which must have the functions "),
              HasSubstr("SetUIFunction, "),
              EndsWith(". (ispctl doctor examines whether it has.)")));
    EXPECT_EQ(load.plugIn, "/lib/PlugIn/libIsp.dylib");
    EXPECT_EQ(load.results.at(0).code, SCALER_ISP_PLUGIN_NOT_LOADED);
    EXPECT_EQ(Step("set-callbacks").text,
              "The plug-in is told where to report progress and messages.");
    EXPECT_EQ(Step("set-callbacks").function, "SetUIFunction");
    EXPECT_EQ(Step("unload-isp-plugin").text, "The library unloads the ISP plug-in.");
    const PlanStep call = Step("call-action");
    EXPECT_EQ(call.function, "IspFlash");
    EXPECT_THAT(call.text,
                AllOf(StartsWith("--isp "), EndsWith(". The plug-in gets 1 bank of 64 KiB.")));
    ASSERT_EQ(call.results.size(), 1U);
    EXPECT_EQ(call.results[0].code, std::nullopt);
    EXPECT_EQ(call.results[0].text,
              "any number but 0 is an error code of the plug-in, returned unchanged; "
              "PlugIn/libIsp.codes or the plug-in's documentation says what it means");
    Command().stMapFw.ulFwCount = 2;
    EXPECT_THAT(Step("call-action").text, EndsWith(" The plug-in gets 2 banks of 64 KiB."));
}

TEST_F(RunPlanSteps, Reason_for_no_signature_check_is_given) {
    const std::string start = "The library verifies no signature before programming, ";
    EXPECT_EQ(Step("no-signature-check").text, start + "because the line has no --sw.");
    Command().enumDigitalSignatureType = ENUM_SIGN_TYPE_HW;
    EXPECT_EQ(Step("no-signature-check").text,
              start + "because --hw leaves that to the device and its plug-in.");
    Command().enumDigitalSignatureType = ENUM_SIGN_TYPE_SW;
    Command().enumIspMode = SCALER_ISP_MODE_FACTORY;
    EXPECT_EQ(Step("no-signature-check").text, start + "because of --factory.");
}

TEST_F(RunPlanSteps, Signature_is_verified_with_key_of_line) {
    Command().enumDigitalSignatureType = ENUM_SIGN_TYPE_SW;
    const PlanStep load = Step("load-sign-plugin");
    EXPECT_EQ(load.text, "The library loads the sign/verify plug-in, which must have the functions "
                         "VerifySignatureExport and SignFwExport. If that fails, nothing is "
                         "programmed.");
    EXPECT_EQ(load.plugIn, "/lib/libSignVerify.dylib");
    EXPECT_EQ(load.results.at(0).code, SCALER_ISP_SIGN_PLUGIN_MISSING);
    const PlanStep verify = Step("verify-signature");
    EXPECT_EQ(verify.text,
              "The sign/verify plug-in verifies the firmware file with the key that the "
              "line names. Nothing is programmed unless the signature is valid.");
    EXPECT_EQ(verify.function, "VerifySignatureExport");
    EXPECT_EQ(verify.results.at(0).code, SCALER_ISP_BAD_SIGNATURE);
}

TEST_F(RunPlanSteps, Signature_is_verified_with_key_from_flash) {
    Command().enumDigitalSignatureType = ENUM_SIGN_TYPE_SW;
    Sign().enumSWDigitalSignatureMode = ENUM_SIGN_SW_MODE_VXM_EXTERNAL_NEXT;
    const PlanStep key = Step("key-from-flash");
    EXPECT_EQ(key.text,
              "The ISP plug-in reads the key of the next generation from the flash of the "
              "device. For this it gets a command record without firmware.");
    EXPECT_EQ(key.function, "GetKeyFromFlash");
    ASSERT_EQ(key.results.size(), 2U);
    EXPECT_EQ(key.results[1].code, SCALER_ISP_NO_WORKING_COPY);
    EXPECT_THAT(Step("verify-signature").text, HasSubstr(" with the key from the flash. "));
}

TEST_F(RunPlanSteps, Sign_and_verify_call_no_isp_plugin) {
    Command().enumActionType = ENUM_ACTION_SIGN;
    EXPECT_THAT(Names(), ElementsAre("validate-line", "load-sign-plugin", "sign", "report"));
    EXPECT_THAT(Step("load-sign-plugin").text,
                EndsWith(" The ISP plug-in is not loaded, and the device is not accessed."));
    EXPECT_EQ(Step("sign").text,
              "The plug-in signs the firmware file and writes the signature to a file.");
    EXPECT_EQ(Step("sign").function, "SignFwExport");
    EXPECT_EQ(Step("sign").results.at(0).code, SCALER_ISP_SIGNING_FAILED);
    Command().enumActionType = ENUM_ACTION_VERIFY;
    EXPECT_EQ(Step("verify-signature").text,
              "The plug-in verifies the signature of the firmware file, with the key that the line "
              "names.");
    EXPECT_EQ(Step("verify-signature").function, "VerifySignatureExport");
    EXPECT_EQ(Step("verify-signature").results.at(0).code, SCALER_ISP_BAD_SIGNATURE);
}

TEST_F(RunPlanSteps, Boot_firmware_is_programmed_first_if_all_conditions_hold) {
    Command().enumBootCodeType = SCALER_ISP_NEW_BOOT_CODE;
    Command().enumIspMode = SCALER_ISP_MODE_FACTORY;
    EXPECT_THAT(Names(), Not(testing::Contains(std::string(kBootStep)))) << "no path";
    std::strcpy(Command().szBootFwPath, "/b\xFF.bin");
    const PlanStep boot = Step(std::string(kBootStep));
    EXPECT_EQ(boot.text,
              "The boot firmware /b\\xFF.bin is programmed first, from bank 0 on, as by a "
              "line with nothing but --isp. If the file cannot be read, the plug-in is "
              "called all the same, with no banks.");
    EXPECT_EQ(boot.function, "IspFlash");
    ASSERT_EQ(boot.results.size(), 3U);
    EXPECT_EQ(boot.results[0].code, SCALER_ISP_BOOT_MAP_TOO_LARGE);
    EXPECT_EQ(boot.results[1].code, SCALER_ISP_NO_WORKING_COPY);
    Command().enumIspMode = SCALER_ISP_MODE_NORMAL;
    EXPECT_THAT(Names(), Not(testing::Contains(std::string(kBootStep))));
    Command().enumIspMode = SCALER_ISP_MODE_FACTORY;
    Command().enumBootCodeType = 0;
    EXPECT_THAT(Names(), Not(testing::Contains(std::string(kBootStep))));
}

TEST_F(RunPlanSteps, Actions_without_function_say_how_they_end) {
    Command().enumActionType = ENUM_ACTION_SRSTATUS;
    EXPECT_EQ(Step("call-nothing").text,
              "--srstatus calls no function of the plug-in and still ends "
              "with success: the device is not touched.");
    EXPECT_THAT(Step("call-nothing").results, testing::IsEmpty());
    EXPECT_EQ(Step("report").results.at(0).code, SCALER_ISP_SUCCESS);
    Command().enumActionType = ENUM_ACTION_ERASE;
    EXPECT_EQ(Step("call-nothing").text,
              "--erase calls no function of the plug-in: the library never looks for it, whatever "
              "the plug-in has. The run always ends with 0x6, and the device is not touched.");
    EXPECT_EQ(Step("call-nothing").results.at(0).code, SCALER_ISP_FUNCTION_MISSING);
    EXPECT_THAT(Step("report").results, testing::IsEmpty());
}

TEST_F(RunPlanSteps, Report_says_what_is_printed) {
    const std::string failure =
        "\"Fail! Error Code: 0x...\" with the result of the step that failed, and returns that "
        "result. It returns -1 if a plug-in throws or the system is out of memory.";
    EXPECT_EQ(Step("report").text,
              "If no step failed, the library prints \"Success\" and returns 0. "
              "Otherwise it prints " +
                  failure);
    Command().enumActionType = ENUM_ACTION_USERDEFINEDINFO;
    EXPECT_EQ(Step("report").text,
              "If no step failed, the library returns 0 and prints nothing. Otherwise it prints " +
                  failure);
    Command().enumActionType = ENUM_ACTION_ERASE;
    EXPECT_EQ(Step("report").text, "The library prints " + failure);
}

TEST_F(RunPlanSteps, Results_of_library_have_cause_and_remedy) {
    EXPECT_THAT(Step("load-isp-plugin").results.at(0).text,
                AllOf(HasSubstr(". Likely cause: "), HasSubstr(". Remedy: ")));
}

} // namespace
} // namespace ispctl
