"""Checks the code signature inside a Mach-O image: recomputes every hash of every code directory.
Certificates and notarisation, which only macOS can verify, are not checked."""

import hashlib
import struct

SUPER_BLOB = 0xFADE0CC0
CODE_DIRECTORY = 0xFADE0C02
CMS_SIGNATURE = 0xFADE0B01
AD_HOC = 2
HASHES = {1: "sha1", 2: "sha256"}


def problems(image):
    """The problems of the signature of a macho_reader.Image, as strings; empty if it is valid."""
    if not image.signature_range:
        return ["no signature"]
    start, size = image.signature_range
    blob = image.data[start:start + size]
    magic, _, count = struct.unpack_from(">3I", blob)
    if magic != SUPER_BLOB:
        return ["no signature blob where the load command points"]
    found, directories = [], 0
    for i in range(count):
        _, offset = struct.unpack_from(">2I", blob, 12 + 8 * i)
        if struct.unpack_from(">I", blob, offset)[0] == CODE_DIRECTORY:
            directories += 1
            found += _directory_problems(image, blob, offset, start)
    return found if directories else ["the signature has no code directory"]


def _directory_problems(image, blob, offset_in_blob, signature_start):
    _, _, hashes, _, _, slots, limit = struct.unpack_from(">7I", blob, offset_in_blob + 8)
    hash_size, hash_type, _, page_bits = struct.unpack_from(">4B", blob, offset_in_blob + 36)
    if hash_type not in HASHES:
        return ["unknown hash type %d" % hash_type]
    page = 1 << page_bits
    found = []
    if limit != signature_start:
        found.append("covers %d bytes, the signature starts at %d" % (limit, signature_start))
    if slots != -(-limit // page):
        found.append("%d hashes for %d bytes" % (slots, limit))
    for i in range(slots):
        at = offset_in_blob + hashes + hash_size * i
        content = image.data[i * page:min((i + 1) * page, limit)]
        computed = hashlib.new(HASHES[hash_type], content).digest()[:hash_size]
        if computed != blob[at:at + hash_size]:
            found.append("page %d was changed after signing" % i)
    return found


def is_ad_hoc(image):
    """Whether the image has an ad-hoc signature without a certificate."""
    start, size = image.signature_range
    blob = image.data[start:start + size]
    count, = struct.unpack_from(">I", blob, 8)
    for i in range(count):
        _, offset = struct.unpack_from(">2I", blob, 12 + 8 * i)
        magic, length = struct.unpack_from(">2I", blob, offset)
        if magic == CMS_SIGNATURE and length > 8:
            return False
        if magic == CODE_DIRECTORY and not struct.unpack_from(">I", blob, offset + 12)[0] & AD_HOC:
            return False
    return True
