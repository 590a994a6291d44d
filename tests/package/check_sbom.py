#!/usr/bin/env python3
"""The list of what an archive consists of has every field that SPDX 2.3 requires, its identifiers resolve,
and its hashes are those of the files in the archive.

usage: check_sbom.py LIST ARCHIVE
"""

import copy
import hashlib
import json
import pathlib
import re
import sys
import tarfile
import zipfile

IDENTIFIER = re.compile(r"SPDXRef-[A-Za-z0-9.-]+")
URI = re.compile(r"[a-z][a-z0-9+.-]*:[^#\s]+")
HEX = {"SHA1": re.compile(r"[0-9a-f]{40}"), "SHA256": re.compile(r"[0-9a-f]{64}")}
TIME = re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ")
CREATOR = re.compile(r"(Person|Organization|Tool): \S.*")
RELATIONSHIPS = {"DESCRIBES", "CONTAINS", "STATIC_LINK"}
# Required by SPDX; version and supplier of packages are what readers of such lists ask for besides.
REQUIRED = {
    "document": ("spdxVersion", "dataLicense", "SPDXID", "name", "documentNamespace", "creationInfo",
                 "packages", "files", "relationships"),
    "creationInfo": ("created", "creators"),
    "package": ("SPDXID", "name", "versionInfo", "supplier", "downloadLocation", "filesAnalyzed",
                "licenseConcluded", "licenseDeclared", "copyrightText"),
    "analysed package": ("packageVerificationCode", "licenseInfoFromFiles", "packageFileName", "checksums"),
    "file": ("SPDXID", "fileName", "checksums", "licenseConcluded", "licenseInfoInFiles", "copyrightText"),
    "relationship": ("spdxElementId", "relationshipType", "relatedSpdxElement"),
}


def contents(archive):
    """{name: data} of the files, named as in the list."""
    if archive.suffix == ".zip":
        with zipfile.ZipFile(archive) as packed:
            found = {name: packed.read(name) for name in packed.namelist() if not name.endswith("/")}
    else:
        with tarfile.open(archive) as packed:
            found = {entry.name: packed.extractfile(entry).read() for entry in packed if entry.isfile()}
    return {"./" + name.split("/", 1)[1]: data for name, data in found.items()}


def elements(document):
    """(kind, element) of everything that has required fields."""
    yield "document", document
    yield "creationInfo", document.get("creationInfo", {})
    for package in document.get("packages", []):
        yield "package", package
        if package.get("filesAnalyzed"):
            yield "analysed package", package
    for name, kind in (("files", "file"), ("relationships", "relationship")):
        for element in document.get(name, []):
            yield kind, element


def form_problems(document):
    found = [f"{kind} without {field}" for kind, element in elements(document)
             for field in REQUIRED[kind] if element.get(field) in (None, "", [], {})]
    if found:
        return found
    if (document["spdxVersion"], document["dataLicense"]) != ("SPDX-2.3", "CC0-1.0"):
        found.append("another version or licence of the document")
    if not URI.fullmatch(document["documentNamespace"]):
        found.append("the namespace is no URI without a fragment")
    if not TIME.fullmatch(document["creationInfo"]["created"]):
        found.append("the time is not in UTC")
    found += [f"creator {name}" for name in document["creationInfo"]["creators"]
              if not CREATOR.fullmatch(name)]
    return found + checksum_problems(document) + reference_problems(document)


def checksum_problems(document):
    found = []
    for element in [*document["packages"], *document["files"]]:
        sums = {entry["algorithm"]: entry["checksumValue"] for entry in element.get("checksums", [])}
        found += [f"{element['SPDXID']}: {name}" for name, value in sums.items()
                  if name not in HEX or not HEX[name].fullmatch(value)]
        if "fileName" in element and "SHA1" not in sums:
            found.append(f"{element['fileName']} without SHA1")
    return found


def reference_problems(document):
    ids = [element["SPDXID"] for element in [document, *document["packages"], *document["files"]]]
    found = [f"identifier {name}" for name in ids if not IDENTIFIER.fullmatch(name) or ids.count(name) > 1]
    for relation in document["relationships"]:
        if relation["relationshipType"] not in RELATIONSHIPS:
            found.append(f"relationship {relation['relationshipType']}")
        found += [f"{relation[end]} is nothing here" for end in ("spdxElementId", "relatedSpdxElement")
                  if relation[end] not in ids]
    related = {relation["relatedSpdxElement"] for relation in document["relationships"]}
    return found + [f"{package['name']} is in nothing" for package in document["packages"]
                    if package["SPDXID"] not in related]


def content_problems(document, archive):
    """What the list says of the files, against the files."""
    files = contents(archive)
    listed = {entry["fileName"]: entry for entry in document["files"]}
    found = [f"{name} is not both listed and there" for name in sorted(files.keys() ^ listed.keys())]
    for name in files.keys() & listed.keys():
        for entry in listed[name]["checksums"]:
            computed = hashlib.new(entry["algorithm"].lower(), files[name]).hexdigest()
            if computed != entry["checksumValue"]:
                found.append(f"{name}: {entry['algorithm']} differs")
    own = next(package for package in document["packages"] if package["filesAnalyzed"])
    sums = sorted(hashlib.sha1(data).hexdigest() for data in files.values())
    if own["packageVerificationCode"] != {
            "packageVerificationCodeValue": hashlib.sha1("".join(sums).encode()).hexdigest()}:
        found.append("the verification code differs")
    if own["checksums"][0]["checksumValue"] != hashlib.sha256(archive.read_bytes()).hexdigest():
        found.append("the hash of the archive differs")
    return found


def check_that_problems_are_found(document):
    """Each required field, taken away where it is first, is missed."""
    for kind, fields in REQUIRED.items():
        for field in fields:
            spoilt = copy.deepcopy(document)
            del next(element for name, element in elements(spoilt) if name == kind)[field]
            assert form_problems(spoilt), f"{kind} without {field} is accepted"


def main():
    document, archive = json.loads(pathlib.Path(sys.argv[1]).read_text()), pathlib.Path(sys.argv[2])
    problems = form_problems(document) or content_problems(document, archive)
    for problem in problems:
        print(problem)
    if problems:
        return 1
    check_that_problems_are_found(document)
    others = [f"{package['name']} {package['versionInfo']}" for package in document["packages"][1:]]
    print(f"{archive.name}: {len(document['files'])} files; compiled in: {', '.join(others)}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
