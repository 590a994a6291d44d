#include "SignFixture.h"

using KeyFiles = SignTest;

TEST_F(KeyFiles, Lenovo_needs_verify_key) {
    Field key;
    EXPECT_REFUSES(handle.CheckLenovoKeyFile(key.Data(), nullptr),
                   "Digital signature: Lenovo verify key file should not be empty!\n");
    key = Field("none.pem");
    EXPECT_REFUSES(handle.CheckLenovoKeyFile(key.Data(), nullptr),
                   "Digital signature: Lenovo verify key file is not exist! " + Full("none.pem") +
                       "\n");
    EXPECT_EQ(key.Text(), "none.pem");
    key = Field("k.pem");
    EXPECT_PASSES(handle.CheckLenovoKeyFile(key.Data(), nullptr));
    EXPECT_EQ(key.Text(), Full("k.pem"));
    EXPECT_TRUE(key.IsClean());
}

TEST_F(KeyFiles, Lenovo_sub_certificate_is_checked_if_given) {
    folder.Write("c.pem", "certificate");
    Field key("none.pem");
    Field certificate;
    EXPECT_REFUSES(handle.CheckLenovoKeyFile(key.Data(), certificate.Data()),
                   "Digital signature: Lenovo subcert file should not be empty!\n");
    key = Field();
    EXPECT_REFUSES(handle.CheckLenovoKeyFile(key.Data(), certificate.Data()),
                   "Digital signature: Lenovo verify key file should not be empty!\n");
    key = Field("none.pem");
    certificate = Field("gone.pem");
    EXPECT_REFUSES(handle.CheckLenovoKeyFile(key.Data(), certificate.Data()),
                   "Digital signature: Lenovo verify key file is not exist! " + Full("none.pem") +
                       "\n");
    key = Field("k.pem");
    EXPECT_REFUSES(handle.CheckLenovoKeyFile(key.Data(), certificate.Data()),
                   "Digital signature: Lenovo subcert file is not exist! " + Full("gone.pem") +
                       "\n");
    EXPECT_EQ(key.Text(), Full("k.pem"));
    EXPECT_EQ(certificate.Text(), "gone.pem");
    certificate = Field("c.pem");
    EXPECT_PASSES(handle.CheckLenovoKeyFile(key.Data(), certificate.Data()));
    EXPECT_EQ(certificate.Text(), Full("c.pem"));
}

TEST_F(KeyFiles, Internal_key_pair_outside_0_to_4_is_rejected) {
    const struct {
        const char *text;
        int key;
    } good[] = {{"", 0}, {"0", 0}, {"4", 4}, {"0x4", 4}, {"03", 3}};
    for (const auto &row : good) {
        int key = 99;
        EXPECT_PASSES(handle.CheckVxmInternalKey(row.text, key));
        EXPECT_EQ(key, row.key) << row.text;
    }
    const struct {
        const char *text;
        const char *message;
    } bad[] = {{"5", "Digital signature: Vxm Key Pair out if range! --keypair 5\n"},
               {"-1", "Digital signature: Vxm Key Pair out if range! --keypair -1\n"},
               {"1a", "Digital signature: Vxm internal key pair value is illegal! --keypair 1a \n"},
               {"x", "Digital signature: Vxm internal key pair value is illegal! --keypair x \n"}};
    for (const auto &row : bad) {
        int key = 99;
        EXPECT_REFUSES(handle.CheckVxmInternalKey(row.text, key), row.message);
        EXPECT_EQ(key, 0) << row.text;
    }
}

TEST_F(KeyFiles, External_key_file_depends_on_action) {
    Field empty;
    Field missing("none.pem");
    Field key("k.pem");
    EXPECT_REFUSES(handle.CheckVxmExternalKeyFile(kSign, key.Data(), empty.Data()),
                   "Digital signature: Vxm external sign key file should not be empty!\n");
    EXPECT_REFUSES(handle.CheckVxmExternalKeyFile(kSign, key.Data(), missing.Data()),
                   "Digital signature: Vxm external sign key file is not exist! " +
                       Full("none.pem") + "\n");
    EXPECT_REFUSES(handle.CheckVxmExternalKeyFile(kVerify, empty.Data(), key.Data()),
                   "Digital signature: Vxm external verify key file should not be empty!\n");
    EXPECT_REFUSES(handle.CheckVxmExternalKeyFile(kVerify, missing.Data(), key.Data()),
                   "Digital signature: Vxm external verify key file is not exist! " +
                       Full("none.pem") + "\n");
    EXPECT_EQ(key.Text(), "k.pem");
    EXPECT_PASSES(handle.CheckVxmExternalKeyFile(kSign, missing.Data(), key.Data()));
    EXPECT_EQ(key.Text(), Full("k.pem"));
    key = Field("k.pem");
    EXPECT_PASSES(handle.CheckVxmExternalKeyFile(kVerify, key.Data(), missing.Data()));
    EXPECT_EQ(key.Text(), Full("k.pem"));
    EXPECT_EQ(missing.Text(), "none.pem");
}

TEST_F(KeyFiles, Unknown_action_checks_no_external_key) {
    Field key("none.pem");
    EXPECT_PASSES(handle.CheckVxmExternalKeyFile(kNone, key.Data(), key.Data()));
    EXPECT_PASSES(handle.CheckVxmExternalKeyFile(
        static_cast<ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE>(3), key.Data(), key.Data()));
    EXPECT_EQ(key.Text(), "none.pem");
}

TEST_F(KeyFiles, Next_verify_key_is_checked_before_sign_key) {
    Field empty;
    Field missing("none.pem");
    Field key("k.pem");
    Field next("k.pem");
    EXPECT_REFUSES(handle.CheckVxmExternalNextKeyFile(kSign, empty.Data(), empty.Data()),
                   "Digital signature: Vxm external next verify key file should not be empty!\n");
    EXPECT_REFUSES(handle.CheckVxmExternalNextKeyFile(kVerify, empty.Data(), missing.Data()),
                   "Digital signature: Vxm external next verify key file is not exist! " +
                       Full("none.pem") + "\n");
    EXPECT_REFUSES(handle.CheckVxmExternalNextKeyFile(kSign, empty.Data(), next.Data()),
                   "Digital signature: Vxm external sign key file should not be empty!\n");
    EXPECT_EQ(next.Text(), Full("k.pem"));
    EXPECT_REFUSES(handle.CheckVxmExternalNextKeyFile(kSign, missing.Data(), next.Data()),
                   "Digital signature: Vxm external sign key file is not exist! " +
                       Full("none.pem") + "\n");
    EXPECT_PASSES(handle.CheckVxmExternalNextKeyFile(kSign, key.Data(), next.Data()));
    EXPECT_EQ(key.Text(), Full("k.pem"));
    EXPECT_PASSES(handle.CheckVxmExternalNextKeyFile(kVerify, missing.Data(), next.Data()));
    EXPECT_EQ(missing.Text(), "none.pem");
}

TEST_F(KeyFiles, Next_key_check_ignores_sign_key_unless_signing) {
    for (const int action : {0, 3}) {
        Field next("k.pem");
        Field missing("none.pem");
        EXPECT_PASSES(handle.CheckVxmExternalNextKeyFile(
            static_cast<ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE>(action), missing.Data(),
            next.Data()));
        EXPECT_EQ(next.Text(), Full("k.pem"));
    }
}

TEST_F(KeyFiles, Hardware_sign_key_is_optional_and_checked_first) {
    Field empty;
    Field missing("none.pem");
    Field key("k.pem");
    Field next("k.pem");
    EXPECT_REFUSES(handle.CheckVxmHwKeyFile(missing.Data(), empty.Data()),
                   "Digital signature: Vxm hw sign key file is not exist! " + Full("none.pem") +
                       "\n");
    EXPECT_REFUSES(handle.CheckVxmHwKeyFile(key.Data(), empty.Data()),
                   "Digital signature: Vxm hw next verify key file should not be empty!\n");
    EXPECT_EQ(key.Text(), Full("k.pem"));
    EXPECT_REFUSES(handle.CheckVxmHwKeyFile(empty.Data(), missing.Data()),
                   "Digital signature: Vxm hw next verify key file is not exist! " +
                       Full("none.pem") + "\n");
    EXPECT_PASSES(handle.CheckVxmHwKeyFile(empty.Data(), next.Data()));
    EXPECT_EQ(empty.Text(), "");
    EXPECT_EQ(next.Text(), Full("k.pem"));
}

TEST_F(KeyFiles, Absolute_key_path_is_kept_unchanged) {
    const std::string path =
        folder.Path() + "../" +
        folder.Path().substr(folder.Path().rfind('/', folder.Path().size() - 2) + 1) + "k.pem";
    Field key(path);
    EXPECT_PASSES(handle.CheckLenovoKeyFile(key.Data(), nullptr));
    EXPECT_EQ(key.Text(), path);
}

TEST_F(KeyFiles, Full_field_is_read_and_written_up_to_260_bytes) {
    std::string deep;
    for (int i = 0; i < 4; ++i) {
        deep += std::string(60, static_cast<char>('a' + i)) + "/";
    }
    folder.Write(deep + "k.pem", "key");
    Field key(deep + "k.pem");
    EXPECT_PASSES(handle.CheckLenovoKeyFile(key.Data(), nullptr));
    EXPECT_EQ(key.Text(), Full(deep + "k.pem").substr(0, 260));
    EXPECT_TRUE(key.IsClean());
    Field full("/" + std::string(400, 'f'));
    EXPECT_REFUSES(handle.CheckLenovoKeyFile(full.Data(), nullptr),
                   "Digital signature: Lenovo verify key file is not exist! /" +
                       std::string(259, 'f') + "\n");
}
