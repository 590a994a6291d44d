#ifndef SCALER_ISP_SIMULATOR_SIGN_ECDSA_H
#define SCALER_ISP_SIMULATOR_SIGN_ECDSA_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <mbedtls/pk.h>

namespace virtual_scaler {

/// \file
/// ECDSA on P-256 with SHA-256. Every function that creates a value throws SignFailure on failure.

/// Thrown to end a call; text becomes its one line of output. Never leaves the plug-in.
struct SignFailure {
    std::string text;
};

struct FreeKey {
    void operator()(mbedtls_pk_context *key) const {
        mbedtls_pk_free(key);
        delete key;
    }
};
using Key = std::unique_ptr<mbedtls_pk_context, FreeKey>;

/// \param origin  name of the key in messages
/// A key protected by a pass phrase is rejected without a prompt.
Key PrivateKeyFromPem(std::string_view pem, const std::string &origin);
Key PublicKeyFromPem(std::string_view pem, const std::string &origin);
/// PEM, or the 65 bytes of an uncompressed point, at the start of the data.
Key PublicKeyFromData(std::string_view data, const std::string &origin);

/// RETURNS whether both have the same public key.
bool IsPair(const Key &first, const Key &second);

/// RETURNS the signature in DER.
std::vector<std::uint8_t> Sign(const Key &key, std::string_view text);
bool IsValidSignature(const Key &key, std::string_view text, std::string_view signature);

} // namespace virtual_scaler

#endif
