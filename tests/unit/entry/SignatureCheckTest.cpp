#include "RunFlowFixture.h"
#include "support/TestHeap.h"

/// The verification before programming. Modules that stay loaded are not those of other tests.
class SignatureCheck : public RunFlowTest {
  protected:
    SignatureCheck() {
        Act(4);
    }
    int Check() {
        return Run("without_GetUserDefinedInfoFromDDCCI");
    }
};

TEST_F(SignatureCheck, Signed_file_is_verified_before_programming) {
    for (const unsigned mode : {0U, 1U, 2U, 3U, 5U}) {
        SignedBySoftware(mode);
        EXPECT_EQ(Check(), 0);
        ASSERT_THAT(module.Names(),
                    ElementsAre("SetUIFunction", "VerifySignatureExport", "IspFlash"));
        EXPECT_EQ(module.calls[1].first, signArgs.get());
        EXPECT_EQ(module.calls[1].second, nullptr);
        EXPECT_EQ(module.calls[2].first, record.get());
        EXPECT_EQ(out, "");
    }
}

TEST_F(SignatureCheck, Signature_is_verified_for_every_action_of_signed_line) {
    Act(9);
    SignedBySoftware(1);
    EXPECT_EQ(Check(), 0);
    EXPECT_THAT(module.Names(), ElementsAre("SetUIFunction", "VerifySignatureExport"));
}

TEST_F(SignatureCheck, Only_software_signatures_in_normal_mode_are_verified) {
    SignedBySoftware(1);
    for (const unsigned mode : {0U, 2U, 3U}) {
        record->enumIspMode = mode;
        EXPECT_EQ(Check(), 0);
        EXPECT_THAT(module.Names(), ElementsAre("SetUIFunction", "IspFlash"));
    }
    record->enumIspMode = 1;
    for (const unsigned type : {0U, 2U, 3U}) {
        record->enumDigitalSignatureType = static_cast<ENUM_CP_DIGITAL_SIGNATURE_TYPE>(type);
        EXPECT_EQ(Check(), 0);
        EXPECT_THAT(module.Names(), ElementsAre("SetUIFunction", "IspFlash"));
    }
}

TEST_F(SignatureCheck, Type_is_read_from_command_record_and_mode_from_sign_record) {
    SignedBySoftware(1);
    record->enumSWDigitalSignatureMode = static_cast<ENUM_CP_DIGITAL_SIGNATURE_SW_MODE>(4);
    signArgs->enumDigitalSignatureType = static_cast<ENUM_CP_DIGITAL_SIGNATURE_TYPE>(2);
    EXPECT_EQ(Check(), 0);
    EXPECT_THAT(module.Names(), ElementsAre("SetUIFunction", "VerifySignatureExport", "IspFlash"));
}

TEST_F(SignatureCheck, Invalid_signature_ends_run_before_programming) {
    SignedBySoftware(1);
    results["VerifySignatureExport"] = 0;
    EXPECT_EQ(Check(), 0x4003);
    EXPECT_THAT(module.Names(), ElementsAre("SetUIFunction", "VerifySignatureExport"));
    EXPECT_EQ(Run("without_GetUserDefinedInfoFromDDCCI", "no_such"), 0x4004);
    EXPECT_THAT(module.Names(), ElementsAre("SetUIFunction"));
}

TEST_F(SignatureCheck, Mode_4_reads_key_from_flash) {
    SignedBySoftware(4);
    record->stMapFw.ulFwCount = 2;
    record->stMapFw.ulTargetBank[1] = 8;
    record->enumCommID = static_cast<STRUCT_ENUM_COMM_ID>(5);
    record->ulReserved4C = 0x55;
    const auto standardAnswer = module.answer;
    const void *copyPlace = nullptr;
    const void *keyPlace = nullptr;
    module.answer = [&](const ModuleCall &call) {
        if (call.name == "GetKeyFromFlash") {
            const auto *copy = static_cast<const Record *>(call.first);
            copyPlace = copy;
            EXPECT_EQ(copy->stMapFw.ulFwCount, 0U);
            EXPECT_EQ(copy->stMapFw.ulTargetBank[1], 0U);
            EXPECT_EQ(copy->enumCommID, 5U);
            EXPECT_EQ(copy->ulReserved4C, 0x55U);
            auto *key = static_cast<char *>(call.second);
            keyPlace = key;
            EXPECT_EQ(std::string(key, 1220), std::string(1220, '\0'));
            std::memset(key, 'K', 1220);
        }
        if (call.name == "VerifySignatureExport") {
            EXPECT_EQ(call.second, keyPlace);
            EXPECT_EQ(std::string(static_cast<char *>(call.second), 1220), std::string(1220, 'K'));
        }
        return standardAnswer(call);
    };
    const int living = LivingRecords();
    EXPECT_EQ(Check(), 0);
    EXPECT_EQ(LivingRecords(), living);
    EXPECT_EQ(out, "Get Key From Flash ...\n");
    EXPECT_THAT(module.Names(), ElementsAre("SetUIFunction", "GetKeyFromFlash",
                                            "VerifySignatureExport", "IspFlash"));
    EXPECT_NE(copyPlace, record.get());
    EXPECT_EQ(record->stMapFw.ulFwCount, 2U);
}

TEST_F(SignatureCheck, Failed_key_read_ends_run) {
    SignedBySoftware(4);
    results["GetKeyFromFlash"] = 0x77;
    EXPECT_EQ(Check(), 0x77);
    EXPECT_EQ(out, "Get Key From Flash ...\n");
    EXPECT_THAT(module.Names(), ElementsAre("SetUIFunction", "GetKeyFromFlash"));
    results = {{"VerifySignatureExport", 0}};
    EXPECT_EQ(Check(), 0x4003);
    EXPECT_THAT(module.Names(),
                ElementsAre("SetUIFunction", "GetKeyFromFlash", "VerifySignatureExport"));
}

TEST_F(SignatureCheck, Failed_allocation_of_copy_returns_D69) {
    SignedBySoftware(4);
    const RecordAllocationLimit heap(0);
    EXPECT_EQ(Check(), 0xD69);
    EXPECT_EQ(out, "");
    EXPECT_THAT(module.Names(), ElementsAre("SetUIFunction"));
}

namespace {

int g_hubCalls = 0;
void *g_hubAnswer = nullptr;

void *Hub() {
    ++g_hubCalls;
    return g_hubAnswer;
}

} // namespace

TEST_F(SignatureCheck, Hub_device_is_queried_again) {
    SignedBySoftware(1);
    int place = 0;
    const struct {
        unsigned comm;
        bool callback;
        bool device;
        bool answer;
        int calls;
        int result;
    } rows[] = {{6, true, true, true, 1, 0},   {6, true, true, false, 1, 0x2B0D},
                {6, true, false, false, 0, 0}, {6, false, true, false, 0, 0},
                {5, true, true, false, 0, 0},  {7, true, true, false, 0, 0}};
    for (const auto &row : rows) {
        g_hubCalls = 0;
        record->enumCommID = static_cast<STRUCT_ENUM_COMM_ID>(row.comm);
        g_funcNxGetHubDev = row.callback ? &Hub : nullptr;
        device = row.device ? &place : nullptr;
        g_hubAnswer = row.answer ? &place : nullptr;
        EXPECT_EQ(Check(), row.result);
        EXPECT_EQ(g_hubCalls, row.calls);
        EXPECT_EQ(module.Names().size(), row.result == 0 ? 3U : 2U);
    }
}

TEST_F(SignatureCheck, Hub_device_is_not_queried_without_valid_check) {
    g_hubCalls = 0;
    g_hubAnswer = nullptr;
    g_funcNxGetHubDev = &Hub;
    int place = 0;
    device = &place;
    record->enumCommID = static_cast<STRUCT_ENUM_COMM_ID>(6);
    EXPECT_EQ(Check(), 0);
    SignedBySoftware(1);
    results["VerifySignatureExport"] = 0;
    EXPECT_EQ(Check(), 0x4003);
    EXPECT_EQ(g_hubCalls, 0);
}
