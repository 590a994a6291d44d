#include "SignFixture.h"

using SignatureFile = SignTest;

TEST_F(SignatureFile, Current_directory_is_empty_before_it_is_set) {
    EXPECT_EQ(CCpDigitalSignArgsHandle().GetCurrentDir(), "");
    EXPECT_EQ(handle.GetCurrentDir(), folder.Path());
}

TEST_F(SignatureFile, Lenovo_signing_and_hardware_verifying_are_rejected) {
    for (int action = 0; action <= 3; ++action) {
        for (int type = 0; type <= 3; ++type) {
            for (int mode = 0; mode <= 5; ++mode) {
                int result = -1;
                const std::string out = OutputOf([&] {
                    result = handle.CheckDigitalSignatureType(
                        static_cast<ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE>(action),
                        static_cast<ENUM_CP_DIGITAL_SIGNATURE_TYPE>(type),
                        static_cast<ENUM_CP_DIGITAL_SIGNATURE_SW_MODE>(mode));
                });
                if (action == 1 && type == 1 && mode == 1) {
                    EXPECT_EQ(result, 0);
                    EXPECT_EQ(out, "Digital signature: Lenovo digital signature can not support "
                                   "sign function!\n");
                } else if (action == 2 && type == 2) {
                    EXPECT_EQ(result, 0);
                    EXPECT_EQ(out, "Digital signature: Hw digital signature can not support "
                                   "verify function!\n");
                } else {
                    EXPECT_EQ(result, 1) << action << type << mode;
                    EXPECT_EQ(out, "");
                }
            }
        }
    }
}

TEST_F(SignatureFile, Default_signature_file_is_in_firmware_directory) {
    Field field;
    EXPECT_PASSES(handle.GetSignatureFile(kSign, "/any/fw.bin", field.Data()));
    EXPECT_EQ(field.Text(), "/any/fw.bin.sig");
    field = Field("new.sig");
    EXPECT_PASSES(handle.GetSignatureFile(kSign, "/any/fw.bin", field.Data()));
    EXPECT_EQ(field.Text(), Full("new.sig"));
    EXPECT_TRUE(field.IsClean());
    field = Field();
    EXPECT_PASSES(handle.GetSignatureFile(kSign, std::string(300, 'f'), field.Data()));
    EXPECT_EQ(field.Text(), std::string(260, 'f'));
    EXPECT_TRUE(field.IsClean());
}

TEST_F(SignatureFile, Verifying_needs_existing_signature_file) {
    Field field;
    EXPECT_REFUSES(handle.GetSignatureFile(kVerify, Full("fw.bin"), field.Data()),
                   "Digital signature: Signature file is missing!\n");
    field = Field("none.sig");
    EXPECT_REFUSES(handle.GetSignatureFile(kVerify, Full("fw.bin"), field.Data()),
                   "Digital signature: Signature file is not exist! " + Full("none.sig") + "\n");
    EXPECT_EQ(field.Text(), "none.sig");
    field = Field("k.pem");
    EXPECT_PASSES(handle.GetSignatureFile(kVerify, Full("fw.bin"), field.Data()));
    EXPECT_EQ(field.Text(), Full("k.pem"));
}

TEST_F(SignatureFile, Action_other_than_sign_and_verify_is_rejected) {
    for (const int action : {0, 3, 77}) {
        Field field("k.pem");
        EXPECT_REFUSES(
            handle.GetSignatureFile(static_cast<ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE>(action),
                                    "fw", field.Data()),
            "Digital signature: Digital signature action type illegal! " + std::to_string(action) +
                "\n");
        EXPECT_EQ(field.Text(), "k.pem");
    }
}
