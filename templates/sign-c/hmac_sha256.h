/* HMAC-SHA-256 (RFC 2104, FIPS 180-4) of a file. */

#ifndef HMAC_SHA256_H
#define HMAC_SHA256_H

#include <stdio.h>

#define HMAC_KEY_BYTES 32u
#define HMAC_BYTES 32u

/* Reads the file to its end. Returns 1, or 0 if it cannot be read. */
int HmacOfFile(const unsigned char key[HMAC_KEY_BYTES], FILE *file, unsigned char out[HMAC_BYTES]);

#endif
