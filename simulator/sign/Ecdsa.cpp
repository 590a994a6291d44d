#include "sign/Ecdsa.h"

#include <openssl/bio.h>
#include <openssl/core_names.h>
#include <openssl/err.h>
#include <openssl/params.h>
#include <openssl/pem.h>

namespace virtual_scaler {
namespace {

constexpr std::size_t kPointBytes = 65;
constexpr char kUncompressedPoint = 4;
constexpr char kCurve[] = "prime256v1";

struct FreeBio {
    void operator()(BIO *bio) const {
        BIO_free(bio);
    }
};
struct FreeContext {
    void operator()(EVP_PKEY_CTX *context) const {
        EVP_PKEY_CTX_free(context);
    }
    void operator()(EVP_MD_CTX *context) const {
        EVP_MD_CTX_free(context);
    }
};
using Bio = std::unique_ptr<BIO, FreeBio>;
using KeyContext = std::unique_ptr<EVP_PKEY_CTX, FreeContext>;
using DigestContext = std::unique_ptr<EVP_MD_CTX, FreeContext>;

// Without this callback OpenSSL would prompt on the terminal and stop a production line.
int NoPassPhrase(char *, int, int, void *) {
    return 0;
}

const unsigned char *Data(std::string_view text) {
    return reinterpret_cast<const unsigned char *>(text.data());
}

Bio Source(std::string_view text) {
    Bio bio(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
    if (!bio) {
        throw SignFailure{"no memory"};
    }
    return bio;
}

Key Checked(EVP_PKEY *read, const char *kind, const std::string &origin) {
    Key key(read);
    ERR_clear_error();
    char curve[64] = "";
    std::size_t length = 0;
    if (!key || EVP_PKEY_get_group_name(key.get(), curve, sizeof curve, &length) != 1 ||
        std::string_view(curve) != kCurve) {
        ERR_clear_error();
        throw SignFailure{"no " + std::string(kind) + " key of the curve P-256: " + origin};
    }
    return key;
}

Key PublicKeyFromPoint(std::string_view point, const std::string &origin) {
    const KeyContext context(EVP_PKEY_CTX_new_from_name(nullptr, "EC", nullptr));
    std::string curve = kCurve;
    std::string bytes(point);
    OSSL_PARAM parameters[] = {
        OSSL_PARAM_construct_utf8_string(OSSL_PKEY_PARAM_GROUP_NAME, curve.data(), 0),
        OSSL_PARAM_construct_octet_string(OSSL_PKEY_PARAM_PUB_KEY, bytes.data(), bytes.size()),
        OSSL_PARAM_construct_end()};
    EVP_PKEY *key = nullptr;
    if (context && EVP_PKEY_fromdata_init(context.get()) == 1) {
        EVP_PKEY_fromdata(context.get(), &key, EVP_PKEY_PUBLIC_KEY, parameters);
    }
    return Checked(key, "public", origin);
}

} // namespace

Key PrivateKeyFromPem(std::string_view pem, const std::string &origin) {
    const Bio bio = Source(pem);
    return Checked(PEM_read_bio_PrivateKey(bio.get(), nullptr, NoPassPhrase, nullptr), "private",
                   origin);
}

Key PublicKeyFromPem(std::string_view pem, const std::string &origin) {
    const Bio bio = Source(pem);
    return Checked(PEM_read_bio_PUBKEY(bio.get(), nullptr, NoPassPhrase, nullptr), "public",
                   origin);
}

Key PublicKeyFromData(std::string_view data, const std::string &origin) {
    if (data.size() >= kPointBytes && data.front() == kUncompressedPoint) {
        return PublicKeyFromPoint(data.substr(0, kPointBytes), origin);
    }
    return PublicKeyFromPem(data, origin);
}

bool IsPair(const Key &first, const Key &second) {
    return EVP_PKEY_eq(first.get(), second.get()) == 1;
}

std::vector<std::uint8_t> Sign(const Key &key, std::string_view text) {
    const DigestContext context(EVP_MD_CTX_new());
    std::size_t length = 0;
    if (!context ||
        EVP_DigestSignInit(context.get(), nullptr, EVP_sha256(), nullptr, key.get()) != 1 ||
        EVP_DigestSign(context.get(), nullptr, &length, Data(text), text.size()) != 1) {
        ERR_clear_error();
        throw SignFailure{"the signature cannot be made"};
    }
    std::vector<std::uint8_t> signature(length);
    if (EVP_DigestSign(context.get(), signature.data(), &length, Data(text), text.size()) != 1) {
        ERR_clear_error();
        throw SignFailure{"the signature cannot be made"};
    }
    signature.resize(length);
    return signature;
}

bool IsValidSignature(const Key &key, std::string_view text, std::string_view signature) {
    const DigestContext context(EVP_MD_CTX_new());
    const bool valid =
        context &&
        EVP_DigestVerifyInit(context.get(), nullptr, EVP_sha256(), nullptr, key.get()) == 1 &&
        EVP_DigestVerify(context.get(), Data(signature), signature.size(), Data(text),
                         text.size()) == 1;
    ERR_clear_error();
    return valid;
}

} // namespace virtual_scaler
