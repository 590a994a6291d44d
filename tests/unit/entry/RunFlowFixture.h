#ifndef SCALER_ISP_TESTS_UNIT_ENTRY_RUN_FLOW_FIXTURE_H
#define SCALER_ISP_TESTS_UNIT_ENTRY_RUN_FLOW_FIXTURE_H

#include <cstring>
#include <filesystem>
#include <memory>

#include <gmock/gmock.h>

#include "modules/ModuleCalls.h"
#include "scaler_isp/ScalerIsp.h"
#include "scaler_isp/entry/Globals.h"
#include "support/CapturedOutput.h"
#include "support/ProgramDirectory.h"
#include "support/TempFolder.h"

using testing::ElementsAre;
using testing::IsEmpty;

/// Runs ExecuteProcess and DoIsp with test modules as plug-ins.
class RunFlowTest : public testing::Test {
  protected:
    using Record = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
    using Sign = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

    RunFlowTest() {
        record->enumIspMode = 1;
        // A sign/verify plug-in answers 1 for success, the ISP plug-in 0.
        module.answer = [this](const ModuleCall &call) {
            const auto found = results.find(call.name);
            if (found != results.end()) {
                return found->second;
            }
            return call.name == "SignFwExport" || call.name == "VerifySignatureExport" ? 1 : 0;
        };
    }
    ~RunFlowTest() override {
        g_funcNxGetHubDev = nullptr;
        g_funcReturnProg = nullptr;
        g_funcShowMsg = nullptr;
    }

    /// A module's name below the library's folder, which is that of this program.
    static CCpNxString Below(const std::string &name) {
        const auto own = ProgramDirectory();
        const std::string relative =
            std::filesystem::path(ModulePath(name)).lexically_relative(own).string();
        return CCpNxString(std::wstring(relative.begin(), relative.end()).c_str());
    }

    int Run(const std::string &isp = "full", const std::string &sign = "sign_full") {
        CCpNxString ispPath = Below(isp);
        CCpNxString signName = Below(sign);
        module.calls.clear();
        int result = -99;
        out = OutputOf([&] {
            result = ExecuteProcess(record.get(), signArgs.get(), ispPath, signName, device);
        });
        return result;
    }

    void Act(unsigned action) {
        record->enumActionType = static_cast<ENUM_CP_ISPTOOL_ACTION_TYPE>(action);
    }
    void SignedBySoftware(unsigned mode) {
        record->enumDigitalSignatureType = static_cast<ENUM_CP_DIGITAL_SIGNATURE_TYPE>(1);
        signArgs->enumSWDigitalSignatureMode = static_cast<ENUM_CP_DIGITAL_SIGNATURE_SW_MODE>(mode);
    }
    void Boot(const std::string &path) {
        record->enumBootCodeType = 1;
        record->enumIspMode = 2;
        std::memset(record->szBootFwPath, 0, sizeof record->szBootFwPath);
        path.copy(record->szBootFwPath, sizeof record->szBootFwPath);
    }

    ModuleCalls module;
    std::map<std::string, int> results;
    std::unique_ptr<Record> record = std::make_unique<Record>();
    std::unique_ptr<Sign> signArgs = std::make_unique<Sign>();
    void *device = nullptr;
    std::string out;
};

#endif
