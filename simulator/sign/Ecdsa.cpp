#include "sign/Ecdsa.h"

#include <array>
#include <utility>

#include <mbedtls/ecp.h>
#include <mbedtls/sha256.h>

namespace virtual_scaler {
namespace {

constexpr std::size_t kPointBytes = 65;
constexpr char kUncompressedPoint = 4;
constexpr std::size_t kDigestBytes = 32;
using Digest = std::array<unsigned char, kDigestBytes>;

const unsigned char *Data(std::string_view text) {
    return reinterpret_cast<const unsigned char *>(text.data());
}

Key NewKey() {
    Key key(new mbedtls_pk_context);
    mbedtls_pk_init(key.get());
    return key;
}

Key Checked(Key key, bool isRead, const char *kind, const std::string &origin) {
    if (!isRead || mbedtls_pk_can_do(key.get(), MBEDTLS_PK_ECDSA) != 1 ||
        mbedtls_pk_ec(*key)->grp.id != MBEDTLS_ECP_DP_SECP256R1) {
        throw SignFailure{"no " + std::string(kind) + " key of the curve P-256: " + origin};
    }
    return key;
}

Key PublicKeyFromPoint(std::string_view point, const std::string &origin) {
    Key key = NewKey();
    bool isRead = mbedtls_pk_setup(key.get(), mbedtls_pk_info_from_type(MBEDTLS_PK_ECKEY)) == 0;
    if (isRead) {
        mbedtls_ecp_keypair *pair = mbedtls_pk_ec(*key);
        isRead =
            mbedtls_ecp_group_load(&pair->grp, MBEDTLS_ECP_DP_SECP256R1) == 0 &&
            mbedtls_ecp_point_read_binary(&pair->grp, &pair->Q, Data(point), point.size()) == 0 &&
            mbedtls_ecp_check_pubkey(&pair->grp, &pair->Q) == 0;
    }
    return Checked(std::move(key), isRead, "public", origin);
}

Digest Sha256(std::string_view text) {
    Digest digest{};
    mbedtls_sha256_ret(Data(text), text.size(), digest.data(), 0);
    return digest;
}

} // namespace

// The parsers count the terminator of PEM text, and take no pass phrase: a protected key is an
// error, not a question on the terminal that would stop a production line.
Key PrivateKeyFromPem(std::string_view pem, const std::string &origin) {
    const std::string text(pem);
    Key key = NewKey();
    const bool isRead =
        mbedtls_pk_parse_key(key.get(), Data(text), text.size() + 1, nullptr, 0) == 0;
    return Checked(std::move(key), isRead, "private", origin);
}

Key PublicKeyFromPem(std::string_view pem, const std::string &origin) {
    const std::string text(pem);
    Key key = NewKey();
    const bool isRead = mbedtls_pk_parse_public_key(key.get(), Data(text), text.size() + 1) == 0;
    return Checked(std::move(key), isRead, "public", origin);
}

Key PublicKeyFromData(std::string_view data, const std::string &origin) {
    if (data.size() >= kPointBytes && data.front() == kUncompressedPoint) {
        return PublicKeyFromPoint(data.substr(0, kPointBytes), origin);
    }
    return PublicKeyFromPem(data, origin);
}

bool IsPair(const Key &first, const Key &second) {
    return mbedtls_ecp_point_cmp(&mbedtls_pk_ec(*first)->Q, &mbedtls_pk_ec(*second)->Q) == 0;
}

// The signature is deterministic, so it needs no random numbers.
std::vector<std::uint8_t> Sign(const Key &key, std::string_view text) {
    const Digest digest = Sha256(text);
    std::vector<std::uint8_t> signature(MBEDTLS_PK_SIGNATURE_MAX_SIZE);
    std::size_t length = 0;
    if (mbedtls_pk_sign(key.get(), MBEDTLS_MD_SHA256, digest.data(), digest.size(),
                        signature.data(), &length, nullptr, nullptr) != 0) {
        throw SignFailure{"the signature cannot be made"};
    }
    signature.resize(length);
    return signature;
}

bool IsValidSignature(const Key &key, std::string_view text, std::string_view signature) {
    const Digest digest = Sha256(text);
    return mbedtls_pk_verify(key.get(), MBEDTLS_MD_SHA256, digest.data(), digest.size(),
                             Data(signature), signature.size()) == 0;
}

} // namespace virtual_scaler
