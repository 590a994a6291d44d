#include "SignFixture.h"

/// All checks of one run on one record.
class SignValidate : public SignTest {
  protected:
    using Args = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

    template <std::size_t N> static void Put(char (&field)[N], const std::string &text) {
        std::fill(std::begin(field), std::end(field), '\0');
        text.copy(field, N);
    }
    template <std::size_t N> static std::string Get(const char (&field)[N]) {
        const std::string text(field, N);
        return text.substr(0, text.find('\0'));
    }
    void Set(int action, int type, int swMode, int hwMode = 0) {
        args = Args();
        args.enumSignActionType = static_cast<ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE>(action);
        args.enumDigitalSignatureType = static_cast<ENUM_CP_DIGITAL_SIGNATURE_TYPE>(type);
        args.enumSWDigitalSignatureMode = static_cast<ENUM_CP_DIGITAL_SIGNATURE_SW_MODE>(swMode);
        args.enumHWDigitalSignatureMode = static_cast<ENUM_CP_DIGITAL_SIGNATURE_HW_MODE>(hwMode);
        Put(args.szFwFile, "fw.bin");
        Put(args.szSignatureFile, "fw.bin");
        Put(args.szKeyPair, "9");
        Put(args.szVerifyKeyFile, "v");
        Put(args.szSignKeyFile, "s");
        Put(args.szSubCertFile, "c");
        Put(args.szNextVerifyKeyFile, "n");
    }
    Args args;
};

TEST_F(SignValidate, Null_record_is_rejected) {
    EXPECT_REFUSES(handle.JudgeArgument(nullptr), "");
    EXPECT_REFUSES(handle.JudgeArgumentFwFileAndSigFile(nullptr), "");
}

TEST_F(SignValidate, Each_mode_checks_its_own_keys) {
    const std::string gone = " is not exist! ";
    const struct {
        int action, type, mode;
        std::string message;
    } rows[] = {
        {1, 1, 1, "Digital signature: Lenovo digital signature can not support sign function!\n"},
        {2, 1, 1, "Digital signature: Lenovo verify key file" + gone + Full("v") + "\n"},
        {1, 1, 2, "Digital signature: Vxm Key Pair out if range! --keypair 9\n"},
        {2, 1, 2, "Digital signature: Vxm Key Pair out if range! --keypair 9\n"},
        {1, 1, 3, "Digital signature: Vxm external sign key file" + gone + Full("s") + "\n"},
        {2, 1, 3, "Digital signature: Vxm external verify key file" + gone + Full("v") + "\n"},
        {1, 1, 4, "Digital signature: Vxm external next verify key file" + gone + Full("n") + "\n"},
        {2, 1, 4, "Digital signature: Vxm external next verify key file" + gone + Full("n") + "\n"},
        {1, 2, 3, "Digital signature: Vxm hw sign key file" + gone + Full("s") + "\n"},
        {1, 2, 0, "Digital signature: Vxm hw sign key file" + gone + Full("s") + "\n"},
        {2, 2, 0, "Digital signature: Hw digital signature can not support verify function!\n"}};
    for (const auto &row : rows) {
        Set(row.action, row.type, row.mode);
        EXPECT_REFUSES(handle.JudgeArgument(&args), row.message);
    }
}

TEST_F(SignValidate, Unknown_type_or_mode_is_accepted_after_signature_file) {
    for (const int mode : {0, 5}) {
        Set(1, 1, mode);
        EXPECT_PASSES(handle.JudgeArgument(&args));
        EXPECT_EQ(Get(args.szSignatureFile), Full("fw.bin"));
    }
    for (const int type : {0, 3}) {
        Set(2, type, 1);
        EXPECT_PASSES(handle.JudgeArgument(&args));
        EXPECT_EQ(Get(args.szVerifyKeyFile), "v");
    }
}

TEST_F(SignValidate, Fields_that_passed_keep_absolute_path) {
    Set(2, 1, 3);
    EXPECT_REFUSES(handle.JudgeArgument(&args),
                   "Digital signature: Vxm external verify key file is not exist! " + Full("v") +
                       "\n");
    EXPECT_EQ(Get(args.szFwFile), Full("fw.bin"));
    EXPECT_EQ(Get(args.szSignatureFile), Full("fw.bin"));
    EXPECT_EQ(Get(args.szVerifyKeyFile), "v");
}

TEST_F(SignValidate, Firmware_is_checked_before_signature_file) {
    Set(2, 1, 3);
    Put(args.szFwFile, "none.bin");
    Put(args.szSignatureFile, "");
    EXPECT_REFUSES(handle.JudgeArgument(&args),
                   "Digital signature: fw file is not exist! " + Full("none.bin") + "\n");
    EXPECT_EQ(Get(args.szFwFile), "none.bin");
    Put(args.szFwFile, "fw.bin");
    EXPECT_REFUSES(handle.JudgeArgument(&args), "Digital signature: Signature file is missing!\n");
}

TEST_F(SignValidate, Type_is_checked_before_firmware) {
    Set(1, 1, 1);
    Put(args.szFwFile, "none.bin");
    EXPECT_REFUSES(handle.JudgeArgument(&args),
                   "Digital signature: Lenovo digital signature can not support sign function!\n");
}

TEST_F(SignValidate, Default_signature_path_is_firmware_path_with_sig) {
    Set(1, 1, 2);
    Put(args.szSignatureFile, "");
    Put(args.szKeyPair, "0x4");
    EXPECT_PASSES(handle.JudgeArgument(&args));
    EXPECT_EQ(Get(args.szSignatureFile), Full("fw.bin.sig"));
    EXPECT_EQ(args.nKeyPair, 4);
    Put(args.szKeyPair, "");
    EXPECT_PASSES(handle.JudgeArgument(&args));
    EXPECT_EQ(args.nKeyPair, 0);
}

TEST_F(SignValidate, Hardware_mode_1_needs_no_firmware_file) {
    Set(1, 2, 0, 1);
    Put(args.szFwFile, "none.bin");
    Put(args.szSignatureFile, "");
    Put(args.szSignKeyFile, "");
    Put(args.szNextVerifyKeyFile, "k.pem");
    EXPECT_PASSES(handle.JudgeArgument(&args));
    EXPECT_EQ(Get(args.szFwFile), Full("none.bin"));
    EXPECT_EQ(Get(args.szSignatureFile), Full("none.bin.sig"));
    Set(1, 2, 0, 2);
    Put(args.szFwFile, "none.bin");
    EXPECT_REFUSES(handle.JudgeArgument(&args),
                   "Digital signature: fw file is not exist! " + Full("none.bin") + "\n");
    Set(1, 1, 2, 1); // the mode of a software signature does not count
    Put(args.szFwFile, "none.bin");
    EXPECT_REFUSES(handle.JudgeArgument(&args),
                   "Digital signature: fw file is not exist! " + Full("none.bin") + "\n");
}

TEST_F(SignValidate, Lenovo_check_of_run_ignores_sub_certificate) {
    for (const char *certificate : {"", "none.pem"}) {
        Set(2, 1, 1);
        Put(args.szVerifyKeyFile, "k.pem");
        Put(args.szSubCertFile, certificate);
        EXPECT_PASSES(handle.JudgeArgument(&args));
        EXPECT_EQ(Get(args.szSubCertFile), certificate);
        EXPECT_EQ(Get(args.szVerifyKeyFile), Full("k.pem"));
    }
}

TEST_F(SignValidate, Firmware_and_signature_check_keeps_key_fields) {
    Set(2, 1, 4);
    EXPECT_PASSES(handle.JudgeArgumentFwFileAndSigFile(&args));
    EXPECT_EQ(Get(args.szFwFile), Full("fw.bin"));
    EXPECT_EQ(Get(args.szSignatureFile), Full("fw.bin"));
    EXPECT_EQ(Get(args.szNextVerifyKeyFile), "n");
}

TEST_F(SignValidate, Firmware_and_signature_check_has_no_hardware_exception) {
    Set(2, 2, 0, 1);
    Put(args.szFwFile, "none.bin");
    EXPECT_REFUSES(handle.JudgeArgumentFwFileAndSigFile(&args),
                   "Digital signature: Hw digital signature can not support verify function!\n");
    Set(1, 2, 0, 1);
    Put(args.szFwFile, "none.bin");
    EXPECT_REFUSES(handle.JudgeArgumentFwFileAndSigFile(&args),
                   "Digital signature: fw file is not exist! " + Full("none.bin") + "\n");
    Set(0, 1, 4);
    EXPECT_REFUSES(handle.JudgeArgumentFwFileAndSigFile(&args),
                   "Digital signature: Digital signature action type illegal! 0\n");
}

TEST_F(SignValidate, Unterminated_fields_are_read_up_to_260_bytes) {
    Set(2, 1, 3);
    Put(args.szFwFile, "/" + std::string(300, 'f'));
    EXPECT_REFUSES(handle.JudgeArgument(&args),
                   "Digital signature: fw file is not exist! /" + std::string(259, 'f') + "\n");
    Set(1, 2, 0);
    Put(args.szSignKeyFile, "");
    Put(args.szNextVerifyKeyFile, "/" + std::string(300, 'n'));
    EXPECT_REFUSES(handle.JudgeArgument(&args),
                   "Digital signature: Vxm hw next verify key file is not exist! /" +
                       std::string(259, 'n') + "\n");
}
