#ifndef SCALER_ISP_SIMULATOR_SIGN_INTERNAL_KEYS_H
#define SCALER_ISP_SIMULATOR_SIGN_INTERNAL_KEYS_H

namespace virtual_scaler {

constexpr int kInternalKeyPairs = 5;

/// RETURNS the private key (PEM) of an internal TEST key pair, 0 to 4; null for any other index.
const char *InternalTestKey(int index);

} // namespace virtual_scaler

#endif
