#include <cstring>

#include <gmock/gmock.h>
#include <openssl/core_names.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>

#include "VirtualPlugin.h"
#include "support/CapturedOutput.h"

namespace {

using testing::EndsWith;
using testing::StartsWith;

std::string TextHandler(BIO *bio) {
    char *text = nullptr;
    const long length = BIO_get_mem_data(bio, &text);
    std::string result(text, static_cast<std::size_t>(length));
    BIO_free(bio);
    return result;
}

struct KeyPair {
    std::string secret;
    std::string open;
    std::string point;
};

KeyPair MakeKeyPair(const char *curve = "P-256", const char *passPhrase = nullptr) {
    EVP_PKEY *key = EVP_PKEY_Q_keygen(nullptr, nullptr, "EC", curve);
    BIO *secret = BIO_new(BIO_s_mem());
    BIO *open = BIO_new(BIO_s_mem());
    PEM_write_bio_PKCS8PrivateKey(secret, key, passPhrase != nullptr ? EVP_aes_128_cbc() : nullptr,
                                  passPhrase, passPhrase != nullptr ? 4 : 0, nullptr, nullptr);
    PEM_write_bio_PUBKEY(open, key);
    unsigned char point[200];
    std::size_t length = 0;
    EVP_PKEY_get_octet_string_param(key, OSSL_PKEY_PARAM_ENCODED_PUBLIC_KEY, point, sizeof point,
                                    &length);
    EVP_PKEY_free(key);
    return {TextHandler(secret), TextHandler(open), std::string(point, point + length)};
}

/// The sign/verify plug-in with a firmware and two key pairs on disk.
class VirtualSign : public testing::Test {
  protected:
    VirtualSign() {
        static_assert(sizeof(SignArgs) == 1840);
        Set(args.szFwFile, folder.Write("fw.bin", Firmware(70000)));
        Set(args.szSignatureFile, folder.Path("fw.bin.sig"));
        folder.Write("sk.pem", pair.secret);
        folder.Write("vk.pem", pair.open);
        folder.Write("other.pem", other.open);
        args.enumDigitalSignatureType = ENUM_SIGN_TYPE_SW;
    }

    template <std::size_t N> void Set(char (&field)[N], const std::string &text) {
        std::memset(field, 0, N);
        std::memcpy(field, text.data(), std::min(N, text.size()));
    }
    int Sign(unsigned mode, std::string *output = nullptr) {
        args.enumSignActionType = ENUM_SIGN_ACTION_SIGN;
        args.enumSWDigitalSignatureMode = ENUM_CP_DIGITAL_SIGNATURE_SW_MODE(mode);
        int result = -1;
        const std::string text =
            OutputOf([&] { result = plugin.Get<decltype(SignFwExport)>("SignFwExport")(&args); });
        Check(result, text, output);
        return result;
    }
    int Verify(unsigned mode, char *key = nullptr, std::string *output = nullptr) {
        args.enumSignActionType = ENUM_SIGN_ACTION_VERIFY;
        args.enumSWDigitalSignatureMode = ENUM_CP_DIGITAL_SIGNATURE_SW_MODE(mode);
        int result = -1;
        const std::string text = OutputOf([&] {
            result =
                plugin.Get<decltype(VerifySignatureExport)>("VerifySignatureExport")(&args, key);
        });
        Check(result, text, output);
        return result;
    }
    /// Success is silent; a refusal is one line.
    static void Check(int result, const std::string &text, std::string *output) {
        if (result != 0) {
            EXPECT_EQ(text, "");
        } else {
            EXPECT_THAT(text, StartsWith("Virtual sign/verify: "));
            EXPECT_EQ(text.find('\n'), text.size() - 1) << text;
        }
        if (output != nullptr) {
            *output = text;
        }
    }

    TempFolder folder;
    EnvGuard device{"SCALER_ISP_VIRTUAL_DEVICE", folder.Path("device")};
    OpenLibrary plugin{VIRTUAL_SIGN_VERIFY_FILE};
    const KeyPair pair = MakeKeyPair();
    const KeyPair other = MakeKeyPair();
    SignArgs args = [] {
        alignas(SignArgs) unsigned char zero[sizeof(SignArgs)] = {};
        return reinterpret_cast<SignArgs &>(zero);
    }();
};

TEST_F(VirtualSign, Internal_key_pair_verifies_only_its_own_signatures) {
    for (int signer = 0; signer <= 4; ++signer) {
        args.nKeyPair = signer;
        ASSERT_EQ(Sign(2), 1);
        for (int verifier = 0; verifier <= 4; ++verifier) {
            args.nKeyPair = verifier;
            EXPECT_EQ(Verify(2), signer == verifier ? 1 : 0) << signer << " " << verifier;
        }
    }
    for (const int pairNumber : {-1, 5}) {
        args.nKeyPair = pairNumber;
        EXPECT_EQ(Sign(2), 0);
        EXPECT_EQ(Verify(2), 0);
    }
}

TEST_F(VirtualSign, External_key_signs_and_only_its_verify_key_verifies) {
    Set(args.szSignKeyFile, folder.Path("sk.pem"));
    Set(args.szVerifyKeyFile, folder.Path("vk.pem"));
    ASSERT_EQ(Sign(3), 1);
    EXPECT_EQ(Verify(3), 1);
    EXPECT_EQ(Verify(1), 1) << "mode 1 verifies with the same kind of key file";
    Set(args.szVerifyKeyFile, folder.Path("other.pem"));
    std::string output;
    EXPECT_EQ(Verify(3, nullptr, &output), 0);
    EXPECT_EQ(output, "Virtual sign/verify: the signature is not good: " +
                          folder.Path("fw.bin.sig") + "\n");
    EXPECT_EQ(Verify(1), 0);
}

TEST_F(VirtualSign, Modified_firmware_or_signature_is_rejected) {
    Set(args.szSignKeyFile, folder.Path("sk.pem"));
    Set(args.szVerifyKeyFile, folder.Path("vk.pem"));
    ASSERT_EQ(Sign(3), 1);
    const std::string firmware = folder.Read("fw.bin");
    const std::string signature = folder.Read("fw.bin.sig");
    for (const std::size_t at : {std::size_t{0}, firmware.size() / 2, firmware.size() - 1}) {
        std::string bad = firmware;
        bad[at] ^= 0x10;
        folder.Write("fw.bin", bad);
        EXPECT_EQ(Verify(3), 0) << at;
    }
    folder.Write("fw.bin", firmware + '\0');
    EXPECT_EQ(Verify(3), 0);
    folder.Write("fw.bin", firmware);
    for (std::size_t at = 0; at < signature.size(); ++at) {
        std::string bad = signature;
        bad[at] ^= 1;
        folder.Write("fw.bin.sig", bad);
        EXPECT_EQ(Verify(3), 0) << at;
    }
    folder.Write("fw.bin.sig", "");
    EXPECT_EQ(Verify(3), 0);
    folder.Write("fw.bin.sig", signature);
    EXPECT_EQ(Verify(3), 1);
}

TEST_F(VirtualSign, Next_verify_key_must_match_sign_key) {
    Set(args.szSignKeyFile, folder.Path("sk.pem"));
    Set(args.szNextVerifyKeyFile, folder.Path("other.pem"));
    std::string output;
    EXPECT_EQ(Sign(4, &output), 0);
    EXPECT_EQ(output, "Virtual sign/verify: the sign key and the next verify key are no pair\n");
    EXPECT_FALSE(folder.Exists("fw.bin.sig"));
    Set(args.szNextVerifyKeyFile, folder.Path("vk.pem"));
    EXPECT_EQ(Sign(4), 1);
    EXPECT_EQ(Verify(4), 1);
}

TEST_F(VirtualSign, Key_from_flash_replaces_key_files) {
    Set(args.szSignKeyFile, folder.Path("sk.pem"));
    Set(args.szNextVerifyKeyFile, folder.Path("vk.pem"));
    ASSERT_EQ(Sign(4), 1);
    Set(args.szNextVerifyKeyFile, folder.Path("other.pem"));
    for (const std::string &right : {pair.open, pair.point}) {
        std::string key = right + std::string(1220 - right.size(), '\0');
        EXPECT_EQ(Verify(4, key.data()), 1);
    }
    Set(args.szNextVerifyKeyFile, folder.Path("vk.pem"));
    for (const std::string &wrong :
         {other.open, other.point, std::string("no key"), std::string("\x04"), std::string()}) {
        std::string key = wrong + std::string(1220 - wrong.size(), '\0');
        EXPECT_EQ(Verify(4, key.data()), 0) << wrong;
    }
}

TEST_F(VirtualSign, Hardware_type_signs_with_key_file_or_internal_key) {
    args.enumDigitalSignatureType = ENUM_SIGN_TYPE_HW;
    args.enumHWDigitalSignatureMode = ENUM_SIGN_HW_MODE_2;
    EXPECT_EQ(Sign(0), 0) << "the next verify key is needed";
    Set(args.szNextVerifyKeyFile, folder.Path("vk.pem"));
    ASSERT_EQ(Sign(0), 1);
    EXPECT_EQ(Verify(2), 0) << "the chip checks hardware signatures";
    args.enumDigitalSignatureType = ENUM_SIGN_TYPE_SW;
    EXPECT_EQ(Verify(2), 1) << "made with internal pair 0";

    args.enumDigitalSignatureType = ENUM_SIGN_TYPE_HW;
    Set(args.szSignKeyFile, folder.Path("sk.pem"));
    ASSERT_EQ(Sign(0), 1);
    Set(args.szNextVerifyKeyFile, folder.Path("other.pem"));
    EXPECT_EQ(Sign(0), 0) << "no pair";
}

TEST_F(VirtualSign, Hardware_mode_1_signs_next_verify_key_without_firmware) {
    args.enumDigitalSignatureType = ENUM_SIGN_TYPE_HW;
    args.enumHWDigitalSignatureMode = ENUM_SIGN_HW_MODE_1;
    Set(args.szFwFile, folder.Path("none.bin"));
    Set(args.szSignKeyFile, folder.Path("sk.pem"));
    Set(args.szNextVerifyKeyFile, folder.Path("vk.pem"));
    ASSERT_EQ(Sign(0), 1);
    args.enumDigitalSignatureType = ENUM_SIGN_TYPE_SW;
    Set(args.szFwFile, folder.Path("vk.pem"));
    Set(args.szVerifyKeyFile, folder.Path("vk.pem"));
    EXPECT_EQ(Verify(3), 1);
}

TEST_F(VirtualSign, Missing_file_or_unknown_mode_is_rejected) {
    EXPECT_EQ(Sign(0), 0);
    EXPECT_EQ(Sign(1), 0) << "mode 1 cannot sign";
    EXPECT_EQ(Sign(3), 0) << "no sign key";
    EXPECT_EQ(Verify(0), 0);
    EXPECT_EQ(Verify(3), 0) << "no verify key";
    args.nKeyPair = 0;
    EXPECT_EQ(Verify(2), 0) << "no signature file";
    Set(args.szSignKeyFile, folder.Path("vk.pem"));
    EXPECT_EQ(Sign(3), 0) << "a public key cannot sign";
    Set(args.szSignKeyFile, folder.Write("wide.pem", MakeKeyPair("P-384").secret));
    EXPECT_EQ(Sign(3), 0) << "another curve";
    Set(args.szSignKeyFile, folder.Write("locked.pem", MakeKeyPair("P-256", "pass").secret));
    EXPECT_EQ(Sign(3), 0) << "nobody is asked for a pass phrase";
    Set(args.szSignKeyFile, folder.Path("sk.pem"));
    Set(args.szSignatureFile, folder.Path("no/such/folder.sig"));
    EXPECT_EQ(Sign(3), 0);
    args.enumDigitalSignatureType = ENUM_SIGN_TYPE_NONE;
    EXPECT_EQ(Sign(3), 0);
    std::string output;
    const int result = [&] {
        int value = -1;
        output =
            OutputOf([&] { value = plugin.Get<decltype(SignFwExport)>("SignFwExport")(nullptr); });
        return value;
    }();
    EXPECT_EQ(result, 0);
    EXPECT_EQ(output, "Virtual sign/verify: there is no record\n");
}

TEST_F(VirtualSign, Refusals_name_their_reason) {
    const std::string fw = folder.Path("fw.bin");
    std::string output;
    const auto signs = [&](unsigned mode) {
        EXPECT_EQ(Sign(mode, &output), 0);
        return output;
    };
    const auto verifies = [&](unsigned mode, char *key = nullptr) {
        EXPECT_EQ(Verify(mode, key, &output), 0);
        return output;
    };
    EXPECT_EQ(signs(1), "Virtual sign/verify: software mode 1 cannot sign\n");
    EXPECT_EQ(signs(3), "Virtual sign/verify: the sign key file is not given\n");
    EXPECT_EQ(verifies(0), "Virtual sign/verify: software mode 0 is unknown\n");
    EXPECT_EQ(verifies(3), "Virtual sign/verify: the verify key file is not given\n");
    EXPECT_EQ(verifies(4), "Virtual sign/verify: the next verify key file is not given\n");
    EXPECT_EQ(verifies(2), "Virtual sign/verify: the signature file cannot be read: " + fw +
                               ".sig: No such file or directory\n");
    args.nKeyPair = 99;
    EXPECT_THAT(signs(2),
                StartsWith("Virtual sign/verify: there is no internal key pair 99, only "));
    args.nKeyPair = 0;
    Set(args.szSignKeyFile, folder.Path("vk.pem"));
    EXPECT_EQ(signs(3), "Virtual sign/verify: no private key of the curve P-256: " +
                            folder.Path("vk.pem") + "\n");
    Set(args.szVerifyKeyFile, fw);
    EXPECT_EQ(verifies(3), "Virtual sign/verify: no public key of the curve P-256: " + fw + "\n");
    char flash[SCALER_ISP_FLASH_KEY_BYTES] = "no key";
    EXPECT_EQ(verifies(3, flash),
              "Virtual sign/verify: no public key of the curve P-256: key from the flash\n");
    Set(args.szSignKeyFile, folder.Path("sk.pem"));
    Set(args.szNextVerifyKeyFile, folder.Path("other.pem"));
    EXPECT_EQ(signs(4), "Virtual sign/verify: the sign key and the next verify key are no pair\n");
    Set(args.szSignatureFile, folder.Path("no/such.sig"));
    EXPECT_EQ(signs(3), "Virtual sign/verify: the signature file cannot be written: " +
                            folder.Path("no/such.sig") + ": No such file or directory\n");
    Set(args.szFwFile, folder.Path("none.bin"));
    EXPECT_EQ(signs(3), "Virtual sign/verify: the firmware file cannot be read: " +
                            folder.Path("none.bin") + ": No such file or directory\n");
    args.enumDigitalSignatureType = ENUM_SIGN_TYPE_HW;
    EXPECT_EQ(verifies(3), "Virtual sign/verify: only software signatures can be verified\n");
    args.enumDigitalSignatureType = ENUM_SIGN_TYPE_NONE;
    EXPECT_EQ(signs(3), "Virtual sign/verify: signature type " +
                            std::to_string(unsigned{ENUM_SIGN_TYPE_NONE}) + " is unknown\n");
}

TEST_F(VirtualSign, Path_of_260_bytes_is_read_without_terminator) {
    std::string path = folder.MakeFolder(std::string(100, 'd')) + "/";
    path += std::string(260 - path.size(), 'f');
    folder.Write(path.substr(folder.Path().size()), Firmware(10));
    Set(args.szFwFile, path);
    EXPECT_EQ(Sign(2), 1);
}

TEST_F(VirtualSign, Journal_records_sign_calls_with_isp_calls) {
    args.nKeyPair = 3;
    Set(args.szFwFile, "/none/fw.bin");
    Set(args.szSignatureFile, "/none/s.sig");
    Sign(2);
    std::string key(1220, '\0');
    Verify(4, key.data());
    EXPECT_EQ(folder.Read("device/journal.txt"),
              "SignFwExport enumSignActionType=1 enumDigitalSignatureType=1 "
              "enumSWDigitalSignatureMode=2 nKeyPair=3 szFwFile=\"/none/fw.bin\" "
              "szSignatureFile=\"/none/s.sig\"\n"
              "VerifySignatureExport enumSignActionType=2 enumDigitalSignatureType=1 "
              "enumSWDigitalSignatureMode=4 nKeyPair=3 szFwFile=\"/none/fw.bin\" "
              "szSignatureFile=\"/none/s.sig\" keyFromFlash=yes\n");
}

} // namespace
