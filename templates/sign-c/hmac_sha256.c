#include "hmac_sha256.h"

#include <stdint.h>
#include <string.h>

#define BLOCK_BYTES 64u

typedef struct {
    uint32_t state[8];
    unsigned char block[BLOCK_BYTES];
    uint64_t length; /* bytes so far */
} Sha256;

static const uint32_t kBegin[8] = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                   0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};

static const uint32_t kRound[64] = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

static uint32_t Rotated(uint32_t value, unsigned count) {
    return (value >> count) | (value << (32 - count));
}

static void Expand(const unsigned char *block, uint32_t words[64]) {
    unsigned i;
    for (i = 0; i < 16; ++i, block += 4) {
        words[i] = (uint32_t)block[0] << 24 | (uint32_t)block[1] << 16 | (uint32_t)block[2] << 8 |
                   block[3];
    }
    for (; i < 64; ++i) {
        const uint32_t a = words[i - 15];
        const uint32_t b = words[i - 2];
        words[i] = words[i - 16] + words[i - 7] + (Rotated(a, 7) ^ Rotated(a, 18) ^ (a >> 3)) +
                   (Rotated(b, 17) ^ Rotated(b, 19) ^ (b >> 10));
    }
}

static void Compress(Sha256 *sha) {
    uint32_t words[64];
    uint32_t s[8];
    unsigned i;
    Expand(sha->block, words);
    memcpy(s, sha->state, sizeof s);
    for (i = 0; i < 64; ++i) {
        const uint32_t choice = (s[4] & s[5]) ^ (~s[4] & s[6]);
        const uint32_t majority = (s[0] & s[1]) ^ (s[0] & s[2]) ^ (s[1] & s[2]);
        const uint32_t first = s[7] + (Rotated(s[4], 6) ^ Rotated(s[4], 11) ^ Rotated(s[4], 25)) +
                               choice + kRound[i] + words[i];
        const uint32_t second =
            (Rotated(s[0], 2) ^ Rotated(s[0], 13) ^ Rotated(s[0], 22)) + majority;
        memmove(s + 1, s, 7 * sizeof s[0]);
        s[4] += first;
        s[0] = first + second;
    }
    for (i = 0; i < 8; ++i) {
        sha->state[i] += s[i];
    }
}

static void Begin(Sha256 *sha) {
    memcpy(sha->state, kBegin, sizeof sha->state);
    sha->length = 0;
}

static void Add(Sha256 *sha, const unsigned char *bytes, size_t count) {
    while (count-- > 0) {
        sha->block[sha->length++ % BLOCK_BYTES] = *bytes++;
        if (sha->length % BLOCK_BYTES == 0) {
            Compress(sha);
        }
    }
}

static void Finish(Sha256 *sha, unsigned char out[HMAC_BYTES]) {
    static const unsigned char zero = 0;
    static const unsigned char mark = 0x80;
    const uint64_t bits = sha->length * 8;
    unsigned i;
    Add(sha, &mark, 1);
    while (sha->length % BLOCK_BYTES != 56) {
        Add(sha, &zero, 1);
    }
    for (i = 0; i < 8; ++i) {
        const unsigned char byte = (unsigned char)(bits >> (56 - 8 * i));
        Add(sha, &byte, 1);
    }
    for (i = 0; i < HMAC_BYTES; ++i) {
        out[i] = (unsigned char)(sha->state[i / 4] >> (24 - 8 * (i % 4)));
    }
}

static void BeginWithKey(Sha256 *sha, const unsigned char key[HMAC_KEY_BYTES], unsigned char pad) {
    unsigned char block[BLOCK_BYTES];
    unsigned i;
    for (i = 0; i < BLOCK_BYTES; ++i) {
        block[i] = (unsigned char)((i < HMAC_KEY_BYTES ? key[i] : 0) ^ pad);
    }
    Begin(sha);
    Add(sha, block, BLOCK_BYTES);
}

int HmacOfFile(const unsigned char key[HMAC_KEY_BYTES], FILE *file, unsigned char out[HMAC_BYTES]) {
    unsigned char buffer[4096];
    unsigned char inner[HMAC_BYTES];
    Sha256 sha;
    size_t count;
    BeginWithKey(&sha, key, 0x36);
    while ((count = fread(buffer, 1, sizeof buffer, file)) > 0) {
        Add(&sha, buffer, count);
    }
    Finish(&sha, inner);
    BeginWithKey(&sha, key, 0x5C);
    Add(&sha, inner, HMAC_BYTES);
    Finish(&sha, out);
    return ferror(file) == 0;
}
