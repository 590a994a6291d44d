/* A sign/verify plug-in: the two functions that the library calls. Both return non-zero for
 * success, which is the opposite of the ISP plug-in: see the named values in PluginKit.h.
 *
 * The signature is an HMAC-SHA-256 of the firmware. That works as it is, but whoever can verify it
 * can sign, too, since both need the same key file of 32 bytes. Put your own scheme with a public
 * key here before you ship anything. Never report a signature as valid that was not checked to its
 * end. */

#include <stdio.h>
#include <string.h>

#include <scaler_isp/abi/PluginKit.h>
#include <scaler_isp/abi/SignVerifyPlugin.h>

#include "hmac_sha256.h"

typedef STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS Args;

/* A message on standard output; this plug-in has no callbacks. RETURNS 0, the value for failure. */
static int Fail(const char *reason) {
    printf("Sign/verify: %s\n", reason);
    return 0;
}

/* RETURNS whether the file of a path field has exactly this many bytes, which are then in out. */
static int ReadExactly(const char field[SCALER_ISP_PATH_CHARS], unsigned char *out, size_t count) {
    char path[SCALER_ISP_PATH_BYTES];
    FILE *file = fopen(ScalerIspPath(field, path), "rb");
    int ok = 0;
    if (file != NULL) {
        ok = fread(out, 1, count, file) == count && fgetc(file) == EOF && ferror(file) == 0;
        fclose(file);
    }
    return ok;
}

static int HmacOfFirmware(const Args *args, const unsigned char *key, unsigned char *out) {
    char path[SCALER_ISP_PATH_BYTES];
    FILE *file = fopen(ScalerIspPath(args->szFwFile, path), "rb");
    int ok = 0;
    if (file != NULL) {
        ok = HmacOfFile(key, file, out);
        fclose(file);
    }
    return ok;
}

/* Only software signatures with a key file (--sw --dsmode 3), or with a key from the chip (4). */
static int IsSupported(const Args *args) {
    return args->enumDigitalSignatureType == ENUM_SIGN_TYPE_SW &&
           (args->enumSWDigitalSignatureMode == ENUM_SIGN_SW_MODE_VXM_EXTERNAL ||
            args->enumSWDigitalSignatureMode == ENUM_SIGN_SW_MODE_VXM_EXTERNAL_NEXT);
}

int SignFwExport(const Args *args) {
    unsigned char key[HMAC_KEY_BYTES];
    unsigned char signature[HMAC_BYTES];
    char path[SCALER_ISP_PATH_BYTES];
    FILE *file;
    if (!IsSupported(args)) {
        return Fail("only --sw with --dsmode 3 or 4 is supported");
    }
    if (!ReadExactly(args->szSignKeyFile, key, sizeof key)) {
        return Fail("the sign key file is not a file of 32 bytes");
    }
    if (!HmacOfFirmware(args, key, signature)) {
        return Fail("the firmware cannot be read");
    }
    file = fopen(ScalerIspPath(args->szSignatureFile, path), "wb");
    if (file == NULL) {
        return Fail("the signature cannot be written");
    }
    const int written = fwrite(signature, 1, sizeof signature, file) == sizeof signature;
    return fclose(file) == 0 && written ? SCALER_ISP_SIGNED
                                        : Fail("the signature cannot be written");
}

/* The time that this takes does not depend on where the bytes differ. */
static int AreEqual(const unsigned char *left, const unsigned char *right, size_t count) {
    unsigned char difference = 0;
    while (count-- > 0) {
        difference |= (unsigned char)(left[count] ^ right[count]);
    }
    return difference == 0;
}

int VerifySignatureExport(const Args *args, char *keyFromFlash) {
    unsigned char key[HMAC_KEY_BYTES];
    unsigned char expected[HMAC_BYTES];
    unsigned char signature[HMAC_BYTES];
    if (!IsSupported(args)) {
        return Fail("only --sw with --dsmode 3 or 4 is supported");
    }
    /* keyFromFlash is null unless the ISP plug-in has read a key from the chip. */
    if (keyFromFlash != NULL) {
        memcpy(key, keyFromFlash, sizeof key);
    } else if (!ReadExactly(args->szVerifyKeyFile, key, sizeof key)) {
        return Fail("the verify key file is not a file of 32 bytes");
    }
    if (!ReadExactly(args->szSignatureFile, signature, sizeof signature)) {
        return Fail("the signature is not a file of 32 bytes");
    }
    if (!HmacOfFirmware(args, key, expected)) {
        return Fail("the firmware cannot be read");
    }
    return AreEqual(expected, signature, sizeof expected) ? SCALER_ISP_SIGNATURE_VALID
                                                          : Fail("the signature is invalid");
}
