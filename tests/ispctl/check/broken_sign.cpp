// A sign/verify plug-in that has the fault that the variable BROKEN_PLUGIN names, and no other. Its
// signature is a sum of bytes, which nobody should use.

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "scaler_isp/abi/PluginKit.h"
#include "scaler_isp/abi/SignVerifyPlugin.h"

namespace {

using Args = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

bool HasFault(std::string_view name) {
    const char *fault = std::getenv("BROKEN_PLUGIN");
    return fault != nullptr && fault == name;
}

std::FILE *Open(const char (&field)[SCALER_ISP_PATH_CHARS], const char *mode) {
    char path[SCALER_ISP_PATH_BYTES];
    return std::fopen(ScalerIspPath(field, path), mode);
}

// RETURNS -1 if the file cannot be read.
long SumOf(const char (&field)[SCALER_ISP_PATH_CHARS]) {
    std::FILE *file = Open(field, "rb");
    if (file == nullptr) {
        return -1;
    }
    long sum = 0;
    for (int byte = std::fgetc(file); byte != EOF; byte = std::fgetc(file)) {
        sum += byte;
    }
    std::fclose(file);
    return sum;
}

} // namespace

int SignFwExport(const Args *args) {
    if (HasFault("no-signature-file")) {
        return SCALER_ISP_SIGNED;
    }
    if (HasFault("zero-is-success")) {
        return 1 - SCALER_ISP_SIGNED;
    }
    const long sum = SumOf(args->szFwFile);
    std::FILE *file = sum < 0 ? nullptr : Open(args->szSignatureFile, "wb");
    if (file == nullptr) {
        return SCALER_ISP_NOT_SIGNED;
    }
    std::fprintf(file, "%ld", HasFault("wrong-own") ? sum + 1 : sum);
    return std::fclose(file) == 0 ? SCALER_ISP_SIGNED : SCALER_ISP_NOT_SIGNED;
}

int VerifySignatureExport(const Args *args, char *keyFromFlash) {
    if (HasFault("accepts-all") || (HasFault("accepts-flash-key") && keyFromFlash != nullptr)) {
        return SCALER_ISP_SIGNATURE_VALID;
    }
    if (HasFault("changes-record")) {
        const_cast<Args *>(args)->nKeyPair = 4;
    }
    if (HasFault("crash")) {
        std::abort();
    }
    const long sum = SumOf(args->szFwFile);
    std::FILE *file = sum < 0 ? nullptr : Open(args->szSignatureFile, "rb");
    if (file == nullptr) {
        return SCALER_ISP_SIGNATURE_INVALID;
    }
    long expected = -1;
    const bool read = std::fscanf(file, "%ld", &expected) == 1;
    std::fclose(file);
    const bool valid = HasFault("ignores-firmware") ? read : read && expected == sum;
    return valid ? SCALER_ISP_SIGNATURE_VALID : SCALER_ISP_SIGNATURE_INVALID;
}
