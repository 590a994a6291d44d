#!/usr/bin/env python3
"""Writes the list of what an archive consists of (SPDX 2.3, JSON): each of its files with hashes, and what is
compiled into them.

usage: write_sbom.py --kind linux|macos|xcframework --version VERSION --time SECONDS ARCHIVE DIRECTORY

ARCHIVE is the archive, DIRECTORY what it was made of. Prints the list; the same input gives the same text.
"""

import argparse
import datetime
import hashlib
import json
import pathlib
import re
import uuid

import components

LICENCE = "MIT"
COPYRIGHT = "Copyright (c) 2026 The ScalerIsp authors"
ORGANIZATION = "Organization: The ScalerIsp authors"
NO_ASSERTION = "NOASSERTION"


def digest(algorithm, data):
    return {"algorithm": algorithm, "checksumValue": hashlib.new(algorithm.lower(), data).hexdigest()}


def identifier(kind, text):
    return f"SPDXRef-{kind}-" + re.sub(r"[^A-Za-z0-9.]", "-", text)


def type_of(data, name):
    if name.endswith((".h", ".def", ".c", ".cpp", ".mm", ".swift", ".py", ".mjs", ".sh")):
        return "SOURCE"
    if b"\0" in data:
        return "BINARY"
    return "DOCUMENTATION" if name.startswith("./share/doc") or name.startswith("./share/man") else "TEXT"


def entry_of(path, root):
    data, name = path.read_bytes(), "./" + str(path.relative_to(root))
    ours = not name.startswith("./licences/")
    return {
        "SPDXID": identifier("File", f"{hashlib.sha1(name.encode()).hexdigest()[:8]}-{path.name}"),
        "fileName": name,
        "fileTypes": [type_of(data, name)],
        "checksums": [digest("SHA1", data), digest("SHA256", data)],
        "licenseConcluded": LICENCE if ours else NO_ASSERTION,
        "licenseInfoInFiles": [NO_ASSERTION],
        "copyrightText": COPYRIGHT if ours else NO_ASSERTION,
    }


def verification_code(files):
    """As SPDX computes it: SHA-1 of the sorted SHA-1 of all files."""
    sums = sorted(entry["checksums"][0]["checksumValue"] for entry in files)
    return {"packageVerificationCodeValue": hashlib.sha1("".join(sums).encode()).hexdigest()}


def package_of_component(component):
    components.check_version(component)
    found = {
        "SPDXID": identifier("Package", component.name),
        "name": component.name,
        "versionInfo": component.version,
        "supplier": component.supplier,
        "downloadLocation": components.POOL + component.source if component.source else NO_ASSERTION,
        "filesAnalyzed": False,
        "licenseConcluded": component.licence,
        "licenseDeclared": component.licence,
        "copyrightText": NO_ASSERTION,
        "externalRefs": [{
            "referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl",
            "referenceLocator": f"pkg:deb/debian/{component.debian}?distro=bookworm"}],
    }
    pinned = components.pinned_hash(component.pinned)
    if pinned:
        found["checksums"] = [{"algorithm": "SHA256", "checksumValue": pinned}]
    return found


def relationships(own, files, kind):
    found = [("SPDXRef-DOCUMENT", "DESCRIBES", own)]
    found += [(own, "CONTAINS", entry["SPDXID"]) for entry in files]
    for component in components.of_kind(kind):
        holders = [entry for entry in files if re.fullmatch(component.files, entry["fileName"])
                   and ".dSYM/" not in entry["fileName"]]
        assert holders, f"{component.name} is in no file"
        found += [(entry["SPDXID"], "STATIC_LINK", identifier("Package", component.name))
                  for entry in holders]
    return [{"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other}
            for one, kind, other in found]


def document(given):
    root = given.directory
    files = [entry_of(path, root) for path in sorted(root.rglob("*")) if path.is_file()]
    archive = given.archive.read_bytes()
    own = identifier("Package", "ScalerIsp")
    moment = datetime.datetime.fromtimestamp(given.time, datetime.timezone.utc)
    package = {
        "SPDXID": own,
        "name": "ScalerIsp",
        "versionInfo": given.version,
        "packageFileName": given.archive.name,
        "checksums": [digest("SHA256", archive)],
        "supplier": ORGANIZATION,
        "downloadLocation": NO_ASSERTION,
        "filesAnalyzed": True,
        "packageVerificationCode": verification_code(files),
        "licenseConcluded": LICENCE,
        "licenseDeclared": LICENCE,
        "licenseInfoFromFiles": [NO_ASSERTION],
        "copyrightText": COPYRIGHT,
    }
    return {
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": "SPDXRef-DOCUMENT",
        "name": given.archive.name,
        # Its own for every archive, as it depends on the bytes.
        "documentNamespace": uuid.uuid5(uuid.NAMESPACE_OID, hashlib.sha256(archive).hexdigest()).urn,
        "creationInfo": {"created": moment.strftime("%Y-%m-%dT%H:%M:%SZ"),
                         "creators": [ORGANIZATION, "Tool: write_sbom.py"]},
        "packages": [package, *map(package_of_component, components.of_kind(given.kind))],
        "files": files,
        "relationships": relationships(own, files, given.kind),
    }


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--kind", required=True)
    parser.add_argument("--version", required=True)
    parser.add_argument("--time", type=int, required=True)
    parser.add_argument("archive", type=pathlib.Path)
    parser.add_argument("directory", type=pathlib.Path)
    print(json.dumps(document(parser.parse_args()), indent=1, sort_keys=True))


if __name__ == "__main__":
    main()
